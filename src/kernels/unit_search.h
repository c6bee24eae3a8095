// Search for one code unit, forward and backward, in blocks of one vector
// (16 bytes, or 32 with the wide width V).
//
// Forward: the first block is tested with an unaligned load (and, for
// strings of up to two blocks, the last one flush with the end); then the scan
// moves to the next block boundary and tests eight aligned blocks per step
// (folded into one test). Less than eight blocks from the end, eight
// unaligned blocks flush with the end are tested at once (when the string is
// that long) and, without a hit, end the scan; otherwise four, then single
// aligned blocks follow, and one unaligned block flush with the end. Blocks
// that overlap bytes already tested are harmless: those bytes held no hit.
// Backward is the mirror image. Nothing outside [src, src + len) is read.
// A 16u string at an odd address is scanned with unaligned loads throughout.
// A string shorter than one block goes to the next narrower width, and below
// 16 bytes unit by unit.
#pragma once

#include "kernels/simd_units.h"

namespace vkp::kernels {

namespace detail {

template <class T>
VKP_INLINE int ScalarFindUnitFwd(const T* s, int len, T v) {
    int i = 0;
    for (; i + 4 <= len; i += 4) {
        if (LoadUnit(s + i) == v) return i;
        if (LoadUnit(s + i + 1) == v) return i + 1;
        if (LoadUnit(s + i + 2) == v) return i + 2;
        if (LoadUnit(s + i + 3) == v) return i + 3;
    }
    for (; i < len; ++i)
        if (LoadUnit(s + i) == v) return i;
    return -1;
}

template <class T>
VKP_INLINE int ScalarFindUnitRev(const T* s, int len, T v) {
    int i = len - 1;
    for (; i >= 3; i -= 4) {
        if (LoadUnit(s + i) == v) return i;
        if (LoadUnit(s + i - 1) == v) return i - 1;
        if (LoadUnit(s + i - 2) == v) return i - 2;
        if (LoadUnit(s + i - 3) == v) return i - 3;
    }
    for (; i >= 0; --i)
        if (LoadUnit(s + i) == v) return i;
    return -1;
}

template <class T>
VKP_INLINE int UnitIndex(const char* base, const char* block, int bit) {
    return int((block - base + bit) / int(sizeof(T)));
}

template <class V, bool kAligned>
VKP_INLINE typename V::Reg Load(const char* p) {
    if constexpr (kAligned) return V::LoadA(p);
    else return V::LoadU(p);
}

// Hits of the needle in the block at p, one bit per unit.
template <class V, class T, bool kAligned>
VKP_INLINE uint32_t BlockHits(const char* p, typename V::Reg needle) {
    return HitMask<V, T>(Units<V, T>::Equal(Load<V, kAligned>(p), needle));
}

// True when any unit of the kBlocks blocks from p equals the needle.
template <class V, class T, bool kAligned, int kBlocks>
VKP_INLINE bool AnyHit(const char* p, typename V::Reg needle) {
    using U = Units<V, T>;
    typename V::Reg acc = U::Equal(Load<V, kAligned>(p), needle);
    for (int k = 1; k < kBlocks; ++k) acc = V::Or(acc, U::Equal(Load<V, kAligned>(p + V::kBytes * k), needle));
    return HitMask<V, T>(acc) != 0;
}

// What a kernel does with the index it found: hands it back, or stores it
// through the entry point's pointer and returns the status. The out-of-line
// block scans apply it themselves, so that a kernel calls them last (a tail
// call): GCC realigns the stack of an AVX function that keeps anything across
// a call, on every call, a cost the short strings would pay.
struct ReturnIndex {
    VKP_INLINE int operator()(int i) const { return i; }
};
struct StoreIndex {
    int* p;
    VKP_INLINE Status operator()(int i) const {
        *p = i;
        return kOk;
    }
};

// Forward scan of [p, end) after the first block; kAligned: p is aligned to
// the block size. The wide steps only detect a hit; the one-block step then
// locates it, within the group the wide step stopped at. The block scans stay
// out of line and take the unit, not a vector, so that the short-string paths
// of their callers need no stack frame.
template <class V, class T, bool kAligned>
VKP_INLINE int ScanUnitFwdBlocks(const char* base, const char* p, const char* end, T v) {
    constexpr int B = V::kBytes;
    const typename V::Reg needle = Units<V, T>::Splat(v);
    for (size_t n = size_t(end - p) / (8 * B); n && !AnyHit<V, T, kAligned, 8>(p, needle); --n) p += 8 * B;
    // Less than a wide step left and the string that long: one wide test
    // flush with the end settles the rest when it holds no hit.
    if (end - p < 8 * B && end - base >= 8 * B && !AnyHit<V, T, false, 8>(end - 8 * B, needle)) return -1;
    if (end - p >= 4 * B && !AnyHit<V, T, kAligned, 4>(p, needle)) p += 4 * B;
    while (end - p >= B) {
        if (uint32_t m = BlockHits<V, T, kAligned>(p, needle)) return UnitIndex<T>(base, p, LowestBit(m));
        p += B;
    }
    if (p < end) {
        if (uint32_t m = BlockHits<V, T, false>(end - B, needle)) return UnitIndex<T>(base, end - B, LowestBit(m));
    }
    return -1;
}

// Backward scan of [base, q) after the last block (the string ends at end);
// kAligned: q is aligned to the block size.
template <class V, class T, bool kAligned>
VKP_INLINE int ScanUnitRevBlocks(const char* base, const char* q, const char* end, T v) {
    constexpr int B = V::kBytes;
    const typename V::Reg needle = Units<V, T>::Splat(v);
    for (size_t n = size_t(q - base) / (8 * B); n && !AnyHit<V, T, kAligned, 8>(q - 8 * B, needle); --n) q -= 8 * B;
    if (q - base < 8 * B && end - base >= 8 * B && !AnyHit<V, T, false, 8>(base, needle)) return -1;
    if (q - base >= 4 * B && !AnyHit<V, T, kAligned, 4>(q - 4 * B, needle)) q -= 4 * B;
    while (q - base >= B) {
        if (uint32_t m = BlockHits<V, T, kAligned>(q - B, needle)) return UnitIndex<T>(base, q - B, HighestBit(m));
        q -= B;
    }
    if (q > base) {
        if (uint32_t m = BlockHits<V, T, false>(base, needle)) return UnitIndex<T>(base, base, HighestBit(m));
    }
    return -1;
}

template <class V, class T, bool kRev, bool kAligned, class Out>
__attribute__((noinline)) auto FindUnitBlocks(const char* base, const char* from, const char* end, T v, Out out) {
    if constexpr (kRev) return out(ScanUnitRevBlocks<V, T, kAligned>(base, from, end, v));
    else return out(ScanUnitFwdBlocks<V, T, kAligned>(base, from, end, v));
}

// The unit a hit mask of the block at `block` points to: the first hit
// forward, the last backward.
template <class T, bool kRev>
VKP_INLINE int HitIndex(const char* base, const char* block, uint32_t m) {
    return UnitIndex<T>(base, block, kRev ? HighestBit(m) : LowestBit(m));
}

// Both directions: short strings, the block at the starting end, strings of
// up to two blocks (then the block at the other end), then the block scans.
template <class V, class T, bool kRev, class Out>
VKP_INLINE auto FindUnit(const T* s, int len, T v, Out out) {
    constexpr int B = V::kBytes, kUnits = Units<V, T>::kPerVector;
    if (VKP_UNLIKELY(len < kUnits)) {
        if constexpr (V::kHasNarrower) return FindUnit<typename V::Narrower, T, kRev>(s, len, v, out);
        else if constexpr (kRev) return out(ScalarFindUnitRev(s, len, v));
        else return out(ScalarFindUnitFwd(s, len, v));
    }
    const typename V::Reg needle = Units<V, T>::Splat(v);
    const char* base = reinterpret_cast<const char*>(s);
    const char* end = base + size_t(len) * sizeof(T);
    const char* first = kRev ? end - B : base;
    const char* other = kRev ? base : end - B;
    if (end - base <= 2 * B) {  // both blocks tested before one branch
        const uint32_t m = BlockHits<V, T, false>(first, needle), n = BlockHits<V, T, false>(other, needle);
        if (VKP_LIKELY(!(m | n))) return out(-1);
        return out(m ? HitIndex<T, kRev>(base, first, m) : HitIndex<T, kRev>(base, other, n));
    }
    if (uint32_t m = BlockHits<V, T, false>(first, needle)) return out(HitIndex<T, kRev>(base, first, m));
    const bool odd = reinterpret_cast<uintptr_t>(base) % sizeof(T) != 0;
    if (odd) return FindUnitBlocks<V, T, kRev, false>(base, kRev ? end - B : base + B, end, v, out);
    const uintptr_t from = kRev ? (reinterpret_cast<uintptr_t>(end) - 1) & ~uintptr_t(B - 1)
                                : (reinterpret_cast<uintptr_t>(base) + B) & ~uintptr_t(B - 1);
    return FindUnitBlocks<V, T, kRev, true>(base, reinterpret_cast<const char*>(from), end, v, out);
}

}  // namespace detail

// Index of the first unit of s[0, len) equal to v, or -1.
template <class V, class T>
VKP_INLINE int FindUnitFwd(const T* s, int len, T v) {
    return detail::FindUnit<V, T, false>(s, len, v, detail::ReturnIndex{});
}

// Index of the last unit of s[0, len) equal to v, or -1.
template <class V, class T>
VKP_INLINE int FindUnitRev(const T* s, int len, T v) {
    return detail::FindUnit<V, T, true>(s, len, v, detail::ReturnIndex{});
}

// The results stored through pIndex, with the status of a successful call:
// the form in the kernel table, so that an entry point hands the call on whole.
template <class V, class T>
VKP_INLINE Status FindUnitFwdInto(const T* s, int len, T v, int* pIndex) {
    return detail::FindUnit<V, T, false>(s, len, v, detail::StoreIndex{pIndex});
}

template <class V, class T>
VKP_INLINE Status FindUnitRevInto(const T* s, int len, T v, int* pIndex) {
    return detail::FindUnit<V, T, true>(s, len, v, detail::StoreIndex{pIndex});
}

}  // namespace vkp::kernels
