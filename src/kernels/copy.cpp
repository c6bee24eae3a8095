// Copy, move and zero kernels on 16-byte vectors.
//
// Blocks up to 256 bytes are done with at most sixteen loads from the two
// ends, all made before the first store, so they are correct for any
// overlap. Longer blocks keep their
// first 16 (or 64) and last 64 (or 16) bytes in registers, run a loop of
// 64-byte steps with stores aligned to 16 bytes, and store the kept ends
// last: the loop direction follows the address order, so a move never
// overwrites source bytes it has yet to read.
#include "kernels/copy.h"

#include <emmintrin.h>


namespace vkp::kernels {
namespace {

using V = __m128i;

VKP_INLINE V Ld(const char* p) { return _mm_loadu_si128(reinterpret_cast<const V*>(p)); }
VKP_INLINE void St(char* p, V v) { _mm_storeu_si128(reinterpret_cast<V*>(p), v); }
VKP_INLINE void StA(char* p, V v) { _mm_store_si128(reinterpret_cast<V*>(p), v); }
VKP_INLINE void StNT(char* p, V v) { _mm_stream_si128(reinterpret_cast<V*>(p), v); }

// Loads K vectors from each end of the block (they may overlap in the
// middle), then stores them: 2K * 16 >= n >= K * 16.
template <int K>
VKP_INLINE void Ends(char* d, const char* s, size_t n) {
    V head[K], tail[K];
    for (int k = 0; k < K; ++k) head[k] = Ld(s + 16 * k), tail[k] = Ld(s + n - 16 * (K - k));
    for (int k = 0; k < K; ++k) St(d + 16 * k, head[k]), St(d + n - 16 * (K - k), tail[k]);
}

// n <= 256 bytes, any overlap.
VKP_INLINE void Small(char* d, const char* s, size_t n) {
    if (n > 128) {
        Ends<8>(d, s, n);
    } else if (n > 64) {
        Ends<4>(d, s, n);
    } else if (n >= 32) {
        V a = Ld(s), b = Ld(s + 16), c = Ld(s + n - 32), e = Ld(s + n - 16);
        St(d, a), St(d + 16, b), St(d + n - 32, c), St(d + n - 16, e);
    } else if (n >= 16) {
        V a = Ld(s), b = Ld(s + n - 16);
        St(d, a), St(d + n - 16, b);
    } else if (n >= 1) {
        detail::CopyUpTo16(d, s, n);
    }
}

// From this size on, string moves and stores (where the processor makes them
// fast) beat the 16-byte loops: they write whole lines at a time.
constexpr size_t kFastStringsFrom = 2048;

// Streaming is worth it from 1 MiB on, once the block is at least half the
// largest cache: it would evict the caller's working set anyway.
bool StreamCopy(size_t n) {
    if (n < (size_t(1) << 20)) return false;
    const size_t cache = LargestCacheSize();
    return cache && n >= cache / 2;
}

// The 64-byte loop from the first aligned destination address; the caller
// stores [0, 16) and the last 64 bytes. Safe when dst is below src.
template <bool kStream>
VKP_INLINE void ForwardLoop(char* d, const char* s, size_t n) {
    const size_t skip = 16 - (reinterpret_cast<uintptr_t>(d) & 15);
    char* p = d + skip;
    const char* q = s + skip;
    char* const stop = d + n - 64;
    if constexpr (kStream) {
        // Non-temporal stores straight from the loads: reading the next block
        // ahead first (one touch per line) measured slower here.
        for (; p < stop; p += 64, q += 64) {
            V a = Ld(q), b = Ld(q + 16), c = Ld(q + 32), e = Ld(q + 48);
            StNT(p, a), StNT(p + 16, b), StNT(p + 32, c), StNT(p + 48, e);
        }
        _mm_sfence();
    } else {
        for (; p < stop; p += 64, q += 64) {
            V a = Ld(q), b = Ld(q + 16), c = Ld(q + 32), e = Ld(q + 48);
            StA(p, a), StA(p + 16, b), StA(p + 32, c), StA(p + 48, e);
        }
    }
}

template <bool kStream>
void Forward(char* d, const char* s, size_t n) {
    const V head = Ld(s);
    const V t0 = Ld(s + n - 64), t1 = Ld(s + n - 48), t2 = Ld(s + n - 32), t3 = Ld(s + n - 16);
    ForwardLoop<kStream>(d, s, n);
    St(d + n - 64, t0), St(d + n - 48, t1), St(d + n - 32, t2), St(d + n - 16, t3);
    St(d, head);
}

// From the end down; safe when dst is above src.
void Backward(char* d, const char* s, size_t n) {
    const V h0 = Ld(s), h1 = Ld(s + 16), h2 = Ld(s + 32), h3 = Ld(s + 48);
    const V tail = Ld(s + n - 16);
    size_t k = reinterpret_cast<uintptr_t>(d + n) & 15;
    size_t e = n - (k ? k : 16);  // d + e is aligned; [e, n) is in `tail`
    while (e > 64) {
        e -= 64;
        V a = Ld(s + e), b = Ld(s + e + 16), c = Ld(s + e + 32), f = Ld(s + e + 48);
        StA(d + e, a), StA(d + e + 16, b), StA(d + e + 32, c), StA(d + e + 48, f);
    }
    St(d, h0), St(d + 16, h1), St(d + 32, h2), St(d + 48, h3);
    St(d + n - 16, tail);
}

}  // namespace

void CopyBytes(void* dst, const void* src, size_t n) {
    char* d = static_cast<char*>(dst);
    const char* s = static_cast<const char*>(src);
    if (n <= 256) return Small(d, s, n);
    if (n < kFastStringsFrom) return Forward<false>(d, s, n);
    if (VKP_UNLIKELY(StreamCopy(n))) return Forward<true>(d, s, n);
    if (HasFastStrings()) {
        asm volatile("rep movsb" : "+D"(d), "+S"(s), "+c"(n) : : "memory");
        return;
    }
    Forward<false>(d, s, n);
}

void MoveBytes(void* dst, const void* src, size_t n) {
    char* d = static_cast<char*>(dst);
    const char* s = static_cast<const char*>(src);
    if (d == s) return;
    if (n <= 256) return Small(d, s, n);
    // Regions that do not overlap take the copy, with its string moves.
    if (size_t(d > s ? d - s : s - d) >= n) return CopyBytes(d, s, n);
    if (s > d) return Forward<false>(d, s, n);
    Backward(d, s, n);
}

void ZeroBytes(void* dst, size_t n) {
    char* d = static_cast<char*>(dst);
    if (n < 16) {
        if (n >= 8) {
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
    const V z = _mm_setzero_si128();
    char* const end = d + n;
    St(d, z);
    char* p = reinterpret_cast<char*>((reinterpret_cast<uintptr_t>(d) + 16) & ~uintptr_t(15));
    // Streaming only when the fill is at least the whole largest cache.
    size_t cache;
    if (n > 512 * 1024 && (cache = LargestCacheSize()) != 0 && n >= cache) {
        for (; end - p >= 64; p += 64) StNT(p, z), StNT(p + 16, z), StNT(p + 32, z), StNT(p + 48, z);
        _mm_sfence();
    } else if (n >= kFastStringsFrom && HasFastStrings()) {
        asm volatile("rep stosb" : "+D"(d), "+c"(n) : "a"(0) : "memory");
        return;
    } else {
        for (; end - p >= 64; p += 64) StA(p, z), StA(p + 16, z), StA(p + 32, z), StA(p + 48, z);
    }
    for (; end - p >= 16; p += 16) StA(p, z);
    St(end - 16, z);
}

}  // namespace vkp::kernels
