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

// Forward scan of [p, end) after the first block; kAligned: p is 16-aligned.
template <class T, bool kAligned>
int FindUnitFwdBlocks(const char* base, const char* p, const char* end, __m128i needle) {
    using U = Units<T>;
    while (end - p >= 64) {
        const __m128i e0 = U::Equal(Load<T, kAligned>(p), needle);
        const __m128i e1 = U::Equal(Load<T, kAligned>(p + 16), needle);
        const __m128i e2 = U::Equal(Load<T, kAligned>(p + 32), needle);
        const __m128i e3 = U::Equal(Load<T, kAligned>(p + 48), needle);
        if (VKP_UNLIKELY(HitMask<T>(_mm_or_si128(_mm_or_si128(e0, e1), _mm_or_si128(e2, e3))))) {
            if (unsigned m = HitMask<T>(e0)) return UnitIndex<T>(base, p, LowestBit(m));
            if (unsigned m = HitMask<T>(e1)) return UnitIndex<T>(base, p + 16, LowestBit(m));
            if (unsigned m = HitMask<T>(e2)) return UnitIndex<T>(base, p + 32, LowestBit(m));
            return UnitIndex<T>(base, p + 48, LowestBit(HitMask<T>(e3)));
        }
        p += 64;
    }
    while (end - p >= 16) {
        if (unsigned m = HitMask<T>(U::Equal(Load<T, kAligned>(p), needle)))
            return UnitIndex<T>(base, p, LowestBit(m));
        p += 16;
    }
    if (p < end) {
        if (unsigned m = HitMask<T>(U::Equal(LoadU(end - 16), needle)))
            return UnitIndex<T>(base, end - 16, LowestBit(m));
    }
    return -1;
}

// Backward scan of [base, q) after the last block; kAligned: q is 16-aligned.
template <class T, bool kAligned>
int FindUnitRevBlocks(const char* base, const char* q, __m128i needle) {
    using U = Units<T>;
    while (q - base >= 64) {
        const __m128i e3 = U::Equal(Load<T, kAligned>(q - 16), needle);
        const __m128i e2 = U::Equal(Load<T, kAligned>(q - 32), needle);
        const __m128i e1 = U::Equal(Load<T, kAligned>(q - 48), needle);
        const __m128i e0 = U::Equal(Load<T, kAligned>(q - 64), needle);
        if (VKP_UNLIKELY(HitMask<T>(_mm_or_si128(_mm_or_si128(e0, e1), _mm_or_si128(e2, e3))))) {
            if (unsigned m = HitMask<T>(e3)) return UnitIndex<T>(base, q - 16, HighestBit(m));
            if (unsigned m = HitMask<T>(e2)) return UnitIndex<T>(base, q - 32, HighestBit(m));
            if (unsigned m = HitMask<T>(e1)) return UnitIndex<T>(base, q - 48, HighestBit(m));
            return UnitIndex<T>(base, q - 64, HighestBit(HitMask<T>(e0)));
        }
        q -= 64;
    }
    while (q - base >= 16) {
        if (unsigned m = HitMask<T>(U::Equal(Load<T, kAligned>(q - 16), needle)))
            return UnitIndex<T>(base, q - 16, HighestBit(m));
        q -= 16;
    }
    if (q > base) {
        if (unsigned m = HitMask<T>(U::Equal(LoadU(base), needle)))
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
