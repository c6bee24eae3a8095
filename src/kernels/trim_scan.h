// Scans for the first (or last) code unit that is not in a set of units.
//
// Sets of up to 16 members are splatted into vectors, padded to 1, 4, 8 or
// 16 with copies of the first member (duplicates do not change membership),
// and compared with 16 bytes of the string at once. Larger sets are tested
// one string unit at a time against the set, 16 bytes of members a compare.
// Nothing outside the string or the set is read.
#pragma once

#include "kernels/simd_units.h"

namespace vkp::kernels {

namespace detail {

template <class T>
VKP_INLINE bool InSet(T u, const T* set, int setLen) {
    constexpr int kPer = Units<Vec128, T>::kPerVector;
    if (setLen < kPer) {
        for (int j = 0; j < setLen; ++j)
            if (LoadUnit(set + j) == u) return true;
        return false;
    }
    const __m128i v = Units<Vec128, T>::Splat(u);
    int j = 0;
    for (; j + kPer <= setLen; j += kPer)
        if (HitMask<Vec128, T>(Units<Vec128, T>::Equal(Vec128::LoadU(set + j), v))) return true;
    return j < setLen && HitMask<Vec128, T>(Units<Vec128, T>::Equal(Vec128::LoadU(set + setLen - kPer), v));
}

// Mask of the units of a 16-byte block that are members of the splatted set.
template <class T, int K>
VKP_INLINE unsigned MemberMask(__m128i block, const __m128i* members) {
    __m128i acc = Units<Vec128, T>::Equal(block, members[0]);
    for (int k = 1; k < K; ++k) acc = _mm_or_si128(acc, Units<Vec128, T>::Equal(block, members[k]));
    return HitMask<Vec128, T>(acc);
}

template <class T, int K>
int SkipFwdVector(const T* s, int len, const __m128i* members) {
    constexpr int kPer = Units<Vec128, T>::kPerVector;
    int i = 0;
    for (; i + kPer <= len; i += kPer)
        if (unsigned out = ~MemberMask<T, K>(Vec128::LoadU(s + i), members) & Units<Vec128, T>::kLaneBits)
            return i + LowestBit(out) / int(sizeof(T));
    if (i < len) {
        const int at = len - kPer;
        if (unsigned out = ~MemberMask<T, K>(Vec128::LoadU(s + at), members) & Units<Vec128, T>::kLaneBits)
            return at + LowestBit(out) / int(sizeof(T));
    }
    return len;
}

template <class T, int K>
int SkipRevVector(const T* s, int len, const __m128i* members) {
    constexpr int kPer = Units<Vec128, T>::kPerVector;
    int e = len;
    for (; e >= kPer; e -= kPer)
        if (unsigned out = ~MemberMask<T, K>(Vec128::LoadU(s + e - kPer), members) & Units<Vec128, T>::kLaneBits)
            return e - kPer + HighestBit(out) / int(sizeof(T)) + 1;
    if (e > 0) {
        if (unsigned out = ~MemberMask<T, K>(Vec128::LoadU(s), members) & Units<Vec128, T>::kLaneBits)
            return HighestBit(out) / int(sizeof(T)) + 1;
    }
    return 0;
}

template <class T, bool kForward, int K>
VKP_INLINE int SkipSplat(const T* s, int len, const T* set, int setLen) {
    __m128i members[K];
    for (int k = 0; k < K; ++k) members[k] = Units<Vec128, T>::Splat(LoadUnit(set + (k < setLen ? k : 0)));
    if constexpr (kForward) return SkipFwdVector<T, K>(s, len, members);
    else return SkipRevVector<T, K>(s, len, members);
}

template <class T, bool kForward>
int Skip(const T* s, int len, const T* set, int setLen) {
    constexpr int kPer = Units<Vec128, T>::kPerVector;
    if (len >= kPer && setLen <= 16) {
        if (setLen == 1) return SkipSplat<T, kForward, 1>(s, len, set, setLen);
        if (setLen <= 4) return SkipSplat<T, kForward, 4>(s, len, set, setLen);
        if (setLen <= 8) return SkipSplat<T, kForward, 8>(s, len, set, setLen);
        return SkipSplat<T, kForward, 16>(s, len, set, setLen);
    }
    if constexpr (kForward) {
        int i = 0;
        while (i < len && InSet(LoadUnit(s + i), set, setLen)) ++i;
        return i;
    } else {
        int e = len;
        while (e > 0 && InSet(LoadUnit(s + e - 1), set, setLen)) --e;
        return e;
    }
}

}  // namespace detail

// Index of the first unit of s[0, len) not in set[0, setLen), or len.
template <class T>
int SkipSetFwd(const T* s, int len, const T* set, int setLen) {
    return detail::Skip<T, true>(s, len, set, setLen);
}

// One past the last unit of s[0, len) not in the set, or 0.
template <class T>
int SkipSetRev(const T* s, int len, const T* set, int setLen) {
    return detail::Skip<T, false>(s, len, set, setLen);
}

}  // namespace vkp::kernels
