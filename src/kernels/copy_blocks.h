// Copy, move and zero kernels over a vector width V (16 or 32 bytes).
//
// Blocks up to 256 bytes are done with at most sixteen loads from the two
// ends, all made before the first store, so they are correct for any
// overlap. Longer blocks keep their first vector (or four) and last four
// vectors (or one) in registers, run a loop of four-vector steps with stores
// aligned to the vector size, and store the kept ends last: the loop
// direction follows the address order, so a move never overwrites source
// bytes it has yet to read. Large copies and fills switch to string
// instructions or non-temporal stores (see CopyBlock and ZeroBlock).
#pragma once

#include "kernels/copy.h"
#include "kernels/simd_units.h"

namespace vkp::kernels {

namespace copy_detail {

// Loads K (1, 2, 4 or 8) vectors from each end of the block (they may
// overlap in the middle), then stores them: 2K * B >= n >= K * B. Named
// registers rather than arrays: arrays of vectors were kept on the stack.
template <class V, int K>
VKP_INLINE void Ends(char* d, const char* s, size_t n) {
    static_assert(K == 1 || K == 2 || K == 4 || K == 8);
    constexpr int B = V::kBytes;
    const char* t = s + n - K * B;
    char* u = d + n - K * B;
    typename V::Reg h0 = V::LoadU(s), t0 = V::LoadU(t), h1, t1, h2, t2, h3, t3, h4, t4, h5, t5, h6, t6, h7, t7;
    if constexpr (K > 1) h1 = V::LoadU(s + B), t1 = V::LoadU(t + B);
    if constexpr (K > 2) {
        h2 = V::LoadU(s + 2 * B), t2 = V::LoadU(t + 2 * B), h3 = V::LoadU(s + 3 * B), t3 = V::LoadU(t + 3 * B);
    }
    if constexpr (K > 4) {
        h4 = V::LoadU(s + 4 * B), t4 = V::LoadU(t + 4 * B), h5 = V::LoadU(s + 5 * B), t5 = V::LoadU(t + 5 * B);
        h6 = V::LoadU(s + 6 * B), t6 = V::LoadU(t + 6 * B), h7 = V::LoadU(s + 7 * B), t7 = V::LoadU(t + 7 * B);
    }
    V::StoreU(d, h0), V::StoreU(u, t0);
    if constexpr (K > 1) V::StoreU(d + B, h1), V::StoreU(u + B, t1);
    if constexpr (K > 2) {
        V::StoreU(d + 2 * B, h2), V::StoreU(u + 2 * B, t2), V::StoreU(d + 3 * B, h3), V::StoreU(u + 3 * B, t3);
    }
    if constexpr (K > 4) {
        V::StoreU(d + 4 * B, h4), V::StoreU(u + 4 * B, t4), V::StoreU(d + 5 * B, h5), V::StoreU(u + 5 * B, t5);
        V::StoreU(d + 6 * B, h6), V::StoreU(u + 6 * B, t6), V::StoreU(d + 7 * B, h7), V::StoreU(u + 7 * B, t7);
    }
}

// n <= 256 bytes, any overlap.
template <class V>
VKP_INLINE void Small(char* d, const char* s, size_t n) {
    constexpr int B = V::kBytes;
    if (n > 128) {
        Ends<V, 128 / B>(d, s, n);
    } else if (n > 64) {
        Ends<V, 64 / B>(d, s, n);
    } else if (n > 32) {
        Ends<V, 32 / B>(d, s, n);
    } else if (n >= size_t(B)) {
        Ends<V, 1>(d, s, n);
    } else if constexpr (V::kHasNarrower) {
        Small<typename V::Narrower>(d, s, n);
    } else if (n >= 1) {
        detail::CopyUpTo16(d, s, n);
    }
}

// From these sizes on, string moves and stores (where the processor makes them
// fast) beat the vector loops: they write whole lines at a time. Below them
// the loops win while the block stays in the first- and second-level caches
// (measured: a 4 KiB copy 111 against 94 GB/s, a 4 KiB fill 212 against 101,
// a 256 KiB fill 180 against 152; string stores ahead at 1 MiB).
constexpr size_t kFastCopyFrom = 8192;
constexpr size_t kFastFillFrom = size_t(1) << 20;

// Streaming is worth it from 1 MiB on, once the block is at least half the
// largest cache: it would evict the caller's working set anyway.
VKP_INLINE bool StreamCopy(size_t n) {
    if (n < (size_t(1) << 20)) return false;
    const size_t cache = LargestCacheSize();
    return cache && n >= cache / 2;
}

// n > 256. The four-vector loop from the first aligned destination address
// after d; the first vector and the last four are stored after it. Safe when
// dst is below src.
template <class V, bool kStream>
__attribute__((noinline)) void Forward(char* d, const char* s, size_t n) {
    constexpr int B = V::kBytes;
    using Reg = typename V::Reg;
    const Reg head = V::LoadU(s);
    const Reg t0 = V::LoadU(s + n - 4 * B), t1 = V::LoadU(s + n - 3 * B), t2 = V::LoadU(s + n - 2 * B),
              t3 = V::LoadU(s + n - B);
    const size_t skip = B - (reinterpret_cast<uintptr_t>(d) & (B - 1));
    char* p = d + skip;
    const char* q = s + skip;
    char* const stop = d + n - 4 * B;
    for (; p < stop; p += 4 * B, q += 4 * B) {
        const Reg a = V::LoadU(q), b = V::LoadU(q + B), c = V::LoadU(q + 2 * B), e = V::LoadU(q + 3 * B);
        if constexpr (kStream) {
            // Non-temporal stores straight from the loads: reading the next
            // block ahead first (one touch per line) measured slower here.
            V::StoreStream(p, a), V::StoreStream(p + B, b), V::StoreStream(p + 2 * B, c), V::StoreStream(p + 3 * B, e);
        } else {
            V::StoreA(p, a), V::StoreA(p + B, b), V::StoreA(p + 2 * B, c), V::StoreA(p + 3 * B, e);
        }
    }
    if constexpr (kStream) V::StreamFence();
    V::StoreU(d + n - 4 * B, t0), V::StoreU(d + n - 3 * B, t1), V::StoreU(d + n - 2 * B, t2), V::StoreU(d + n - B, t3);
    V::StoreU(d, head);
}

// n > 256, from the end down; safe when dst is above src.
template <class V>
__attribute__((noinline)) void Backward(char* d, const char* s, size_t n) {
    constexpr int B = V::kBytes;
    using Reg = typename V::Reg;
    const Reg h0 = V::LoadU(s), h1 = V::LoadU(s + B), h2 = V::LoadU(s + 2 * B), h3 = V::LoadU(s + 3 * B);
    const Reg tail = V::LoadU(s + n - B);
    const size_t k = reinterpret_cast<uintptr_t>(d + n) & (B - 1);
    size_t e = n - (k ? k : B);  // d + e is aligned; [e, n) is in `tail`
    while (e > 4 * B) {
        e -= 4 * B;
        const Reg a = V::LoadU(s + e), b = V::LoadU(s + e + B), c = V::LoadU(s + e + 2 * B), f = V::LoadU(s + e + 3 * B);
        V::StoreA(d + e, a), V::StoreA(d + e + B, b), V::StoreA(d + e + 2 * B, c), V::StoreA(d + e + 3 * B, f);
    }
    V::StoreU(d, h0), V::StoreU(d + B, h1), V::StoreU(d + 2 * B, h2), V::StoreU(d + 3 * B, h3);
    V::StoreU(d + n - B, tail);
}

// Blocks of more than 256 bytes that do not overlap.
template <class V>
__attribute__((noinline)) void CopyLarge(char* d, const char* s, size_t n) {
    if (n < kFastCopyFrom) return Forward<V, false>(d, s, n);
    if (VKP_UNLIKELY(StreamCopy(n))) return Forward<V, true>(d, s, n);
    if (HasFastStrings()) {
        asm volatile("rep movsb" : "+D"(d), "+S"(s), "+c"(n) : : "memory");
        return;
    }
    Forward<V, false>(d, s, n);
}

}  // namespace copy_detail

// The forms in the width list (kernels/kernel_list.inc); copy.h's CopyBytes,
// MoveBytes and ZeroBytes call them through the table. Blocks up to 256
// bytes stay in the first function, which needs no stack frame.
template <class V>
void CopyBlock(void* dst, const void* src, size_t n) {
    char* d = static_cast<char*>(dst);
    const char* s = static_cast<const char*>(src);
    if (n <= 256) return copy_detail::Small<V>(d, s, n);
    copy_detail::CopyLarge<V>(d, s, n);
}

template <class V>
void MoveBlock(void* dst, const void* src, size_t n) {
    using namespace copy_detail;
    char* d = static_cast<char*>(dst);
    const char* s = static_cast<const char*>(src);
    if (n <= 256) return Small<V>(d, s, n);
    if (d == s) return;
    // Regions that do not overlap take the copy, with its string moves.
    if (size_t(d > s ? d - s : s - d) >= n) return CopyLarge<V>(d, s, n);
    if (s > d) return Forward<V, false>(d, s, n);
    Backward<V>(d, s, n);
}

template <class V>
void ZeroBlock(void* dst, size_t n) {
    constexpr int B = V::kBytes;
    char* d = static_cast<char*>(dst);
    if (n < size_t(B)) {
        if constexpr (V::kHasNarrower) {
            return ZeroBlock<typename V::Narrower>(dst, n);
        } else if (n >= 8) {
            const uint64_t z = 0;
            __builtin_memcpy(d, &z, 8), __builtin_memcpy(d + n - 8, &z, 8);
        } else if (n >= 4) {
            const uint32_t z = 0;
            __builtin_memcpy(d, &z, 4), __builtin_memcpy(d + n - 4, &z, 4);
        } else {
            for (size_t i = 0; i < n; ++i) static_cast<volatile char*>(dst)[i] = 0;
        }
        return;
    }
    const typename V::Reg z = V::Zero();
    char* const end = d + n;
    // Up to eight vectors: stores from both ends, overlapping in the middle.
    V::StoreU(d, z), V::StoreU(end - B, z);
    if (n <= size_t(2 * B)) return;
    V::StoreU(d + B, z), V::StoreU(end - 2 * B, z);
    if (n <= size_t(4 * B)) return;
    if (n <= size_t(8 * B)) {
        V::StoreU(d + 2 * B, z), V::StoreU(d + 3 * B, z), V::StoreU(end - 4 * B, z), V::StoreU(end - 3 * B, z);
        return;
    }
    char* p = reinterpret_cast<char*>((reinterpret_cast<uintptr_t>(d) + B) & ~uintptr_t(B - 1));
    // Streaming only when the fill is at least the whole largest cache.
    size_t cache;
    if (n > 512 * 1024 && (cache = LargestCacheSize()) != 0 && n >= cache) {
        for (; end - p >= 4 * B; p += 4 * B)
            V::StoreStream(p, z), V::StoreStream(p + B, z), V::StoreStream(p + 2 * B, z), V::StoreStream(p + 3 * B, z);
        V::StreamFence();
    } else if (n >= copy_detail::kFastFillFrom && HasFastStrings()) {
        asm volatile("rep stosb" : "+D"(d), "+c"(n) : "a"(0) : "memory");
        return;
    } else {
        for (; end - p >= 4 * B; p += 4 * B) V::StoreA(p, z), V::StoreA(p + B, z), V::StoreA(p + 2 * B, z), V::StoreA(p + 3 * B, z);
    }
    for (; end - p >= B; p += B) V::StoreA(p, z);
    V::StoreU(end - B, z);
}

}  // namespace vkp::kernels
