// Search for one code unit, forward and backward, in 16-byte blocks.
//
// Forward: the first 16 bytes are tested with an unaligned load; then the
// scan moves to the next 16-byte boundary and tests 64 bytes per step (four
// aligned blocks folded into one test), then single aligned blocks, and ends
// with one unaligned block flush with the end of the string. Blocks that
// overlap bytes already tested are harmless: those bytes held no hit.
// Backward is the mirror image. Nothing outside [src, src + len) is read.
// A 16u string at an odd address is scanned with unaligned loads throughout.
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

template <class T, bool kAligned>
VKP_INLINE __m128i Load(const char* p) {
    if constexpr (kAligned) return LoadA(p);
    else return LoadU(p);
}

// True when any unit of the n 16-byte blocks from p equals the needle.
template <class T, bool kAligned, int kBlocks>
VKP_INLINE bool AnyHit(const char* p, __m128i needle) {
    __m128i acc = Units<T>::Equal(Load<T, kAligned>(p), needle);
    for (int k = 1; k < kBlocks; ++k) acc = _mm_or_si128(acc, Units<T>::Equal(Load<T, kAligned>(p + 16 * k), needle));
    return HitMask<T>(acc) != 0;
}

// Forward scan of [p, end) after the first block; kAligned: p is 16-aligned.
// The wide steps only detect a hit; the 16-byte step then locates it, within
// the group the wide step stopped at.
template <class T, bool kAligned>
int FindUnitFwdBlocks(const char* base, const char* p, const char* end, __m128i needle) {
    for (size_t n = size_t(end - p) / 128; n && !AnyHit<T, kAligned, 8>(p, needle); --n) p += 128;
    if (end - p >= 64 && !AnyHit<T, kAligned, 4>(p, needle)) p += 64;
    while (end - p >= 16) {
        if (unsigned m = HitMask<T>(Units<T>::Equal(Load<T, kAligned>(p), needle)))
            return UnitIndex<T>(base, p, LowestBit(m));
        p += 16;
    }
    if (p < end) {
        if (unsigned m = HitMask<T>(Units<T>::Equal(LoadU(end - 16), needle)))
            return UnitIndex<T>(base, end - 16, LowestBit(m));
    }
    return -1;
}

// Backward scan of [base, q) after the last block; kAligned: q is 16-aligned.
template <class T, bool kAligned>
int FindUnitRevBlocks(const char* base, const char* q, __m128i needle) {
    for (size_t n = size_t(q - base) / 128; n && !AnyHit<T, kAligned, 8>(q - 128, needle); --n) q -= 128;
    if (q - base >= 64 && !AnyHit<T, kAligned, 4>(q - 64, needle)) q -= 64;
    while (q - base >= 16) {
        if (unsigned m = HitMask<T>(Units<T>::Equal(Load<T, kAligned>(q - 16), needle)))
            return UnitIndex<T>(base, q - 16, HighestBit(m));
        q -= 16;
    }
    if (q > base) {
        if (unsigned m = HitMask<T>(Units<T>::Equal(LoadU(base), needle)))
            return UnitIndex<T>(base, base, HighestBit(m));
    }
    return -1;
}

}  // namespace detail

// Index of the first unit of s[0, len) equal to v, or -1.
template <class T>
int FindUnitFwd(const T* s, int len, T v) {
    if (len < Units<T>::kPerVector) return detail::ScalarFindUnitFwd(s, len, v);
    const __m128i needle = Units<T>::Splat(v);
    const char* base = reinterpret_cast<const char*>(s);
    const char* end = base + size_t(len) * sizeof(T);
    if (unsigned m = HitMask<T>(Units<T>::Equal(LoadU(base), needle)))
        return LowestBit(m) / int(sizeof(T));
    if (reinterpret_cast<uintptr_t>(base) % sizeof(T) != 0)
        return detail::FindUnitFwdBlocks<T, false>(base, base + 16, end, needle);
    const char* p = reinterpret_cast<const char*>((reinterpret_cast<uintptr_t>(base) + 16) & ~uintptr_t(15));
    return detail::FindUnitFwdBlocks<T, true>(base, p, end, needle);
}

// Index of the last unit of s[0, len) equal to v, or -1.
template <class T>
int FindUnitRev(const T* s, int len, T v) {
    if (len < Units<T>::kPerVector) return detail::ScalarFindUnitRev(s, len, v);
    const __m128i needle = Units<T>::Splat(v);
    const char* base = reinterpret_cast<const char*>(s);
    const char* end = base + size_t(len) * sizeof(T);
    if (unsigned m = HitMask<T>(Units<T>::Equal(LoadU(end - 16), needle)))
        return detail::UnitIndex<T>(base, end - 16, HighestBit(m));
    if (reinterpret_cast<uintptr_t>(base) % sizeof(T) != 0)
        return detail::FindUnitRevBlocks<T, false>(base, end - 16, needle);
    const char* q = reinterpret_cast<const char*>((reinterpret_cast<uintptr_t>(end) - 1) & ~uintptr_t(15));
    return detail::FindUnitRevBlocks<T, true>(base, q, needle);
}

}  // namespace vkp::kernels
