// Substring search, forward and backward, without needle preprocessing.
//
// Each step tests two blocks of candidate positions at once (a block is one
// vector: 16 bytes, or 32 with the wide width V): it compares the units at
// those positions with the needle's first unit and the units m - 1 further
// on with its last unit, and verifies the middle only where both agree. A
// single block follows when fewer than two remain. The final partial block
// is taken flush with the last candidate position, with the positions
// already tested masked off, so that no load reaches past the string. Strings with fewer candidates than one block go
// to the next narrower width, and below 16 bytes are scanned unit by unit
// with the same first/last filter.
#pragma once

#include "kernels/simd_units.h"
#include "kernels/unit_search.h"

namespace vkp::kernels {

// True when the n bytes at a and b are equal.
VKP_INLINE bool EqualBytes(const char* a, const char* b, size_t n) {
    while (n >= 16) {
        if (Vec128::ByteMask(Vec128::Equal8(Vec128::LoadU(a), Vec128::LoadU(b))) != 0xFFFF) return false;
        a += 16, b += 16, n -= 16;
    }
    if (n >= 8) {
        uint64_t x, y, x2, y2;
        __builtin_memcpy(&x, a, 8), __builtin_memcpy(&y, b, 8);
        __builtin_memcpy(&x2, a + n - 8, 8), __builtin_memcpy(&y2, b + n - 8, 8);
        return ((x ^ y) | (x2 ^ y2)) == 0;
    }
    if (n >= 4) {
        uint32_t x, y, x2, y2;
        __builtin_memcpy(&x, a, 4), __builtin_memcpy(&y, b, 4);
        __builtin_memcpy(&x2, a + n - 4, 4), __builtin_memcpy(&y2, b + n - 4, 4);
        return ((x ^ y) | (x2 ^ y2)) == 0;
    }
    for (size_t i = 0; i < n; ++i)
        if (a[i] != b[i]) return false;
    return true;
}

template <class T>
VKP_INLINE bool EqualUnits(const T* a, const T* b, int n) {
    return EqualBytes(reinterpret_cast<const char*>(a), reinterpret_cast<const char*>(b), size_t(n) * sizeof(T));
}

namespace detail {

// Candidate positions j .. j + kPerVector - 1 whose first and last units match.
template <class V, class T>
VKP_INLINE uint32_t CandidateMask(const T* s, int j, int m, typename V::Reg first, typename V::Reg last) {
    using U = Units<V, T>;
    return HitMask<V, T>(V::And(U::Equal(V::LoadU(s + j), first), U::Equal(V::LoadU(s + j + m - 1), last)));
}

// Candidates of the two blocks at j and j + kPerVector, in one mask.
template <class V, class T>
VKP_INLINE typename V::PairMask CandidatePair(const T* s, int j, int m, typename V::Reg first, typename V::Reg last) {
    using M = typename V::PairMask;
    return M(CandidateMask<V>(s, j, m, first, last)) |
           M(CandidateMask<V>(s, j + Units<V, T>::kPerVector, m, first, last)) << V::kBytes;
}

// The first candidate in mask (block at j) whose middle matches, or -1.
template <class T, class M>
VKP_INLINE int VerifyLowest(const T* s, int j, M mask, const T* f, int m) {
    while (mask) {
        const int k = j + LowestBit(mask) / int(sizeof(T));
        if (EqualUnits(s + k + 1, f + 1, m - 2)) return k;
        mask &= mask - 1;
    }
    return -1;
}

// The last candidate in mask (block at j) whose middle matches, or -1. The
// candidates are taken lowest first, as in the forward scan (cheaper bit
// arithmetic), and the last match wins.
template <class T, class M>
VKP_INLINE int VerifyHighest(const T* s, int j, M mask, const T* f, int m) {
    int found = -1;
    while (mask) {
        const int k = j + LowestBit(mask) / int(sizeof(T));
        if (EqualUnits(s + k + 1, f + 1, m - 2)) found = k;
        mask &= mask - 1;
    }
    return found;
}

// True when f[0, m) stands at s + i; f0 and fl are its first and last units,
// tested first. The scan of strings too short for one block.
template <class T>
VKP_INLINE bool MatchesAt(const T* s, int i, const T* f, int m, T f0, T fl) {
    return LoadUnit(s + i) == f0 && LoadUnit(s + i + m - 1) == fl && EqualUnits(s + i + 1, f + 1, m - 2);
}

}  // namespace detail

// Leftmost start of f[0, m) in s[0, len), or -1. Requires 1 <= m <= len.
template <class V, class T>
VKP_INLINE int FindSubFwd(const T* s, int len, const T* f, int m) {
    if (m == 1) return FindUnitFwd<V>(s, len, LoadUnit(f));
    constexpr int W = Units<V, T>::kPerVector;
    const int lastPos = len - m;
    const T f0 = LoadUnit(f), fl = LoadUnit(f + m - 1);
    if (lastPos + 1 < W) {
        if constexpr (V::kHasNarrower) {
            return FindSubFwd<typename V::Narrower>(s, len, f, m);
        } else {
            for (int i = 0; i <= lastPos; ++i)
                if (detail::MatchesAt(s, i, f, m, f0, fl)) return i;
            return -1;
        }
    }
    const typename V::Reg first = Units<V, T>::Splat(f0), last = Units<V, T>::Splat(fl);
    int i = 0;
    for (; i + 2 * W - 1 <= lastPos; i += 2 * W) {
        if (const auto mask = detail::CandidatePair<V>(s, i, m, first, last)) {
            const int k = detail::VerifyLowest(s, i, mask, f, m);
            if (k >= 0) return k;
        }
    }
    for (; i + W - 1 <= lastPos; i += W) {
        if (const uint32_t mask = detail::CandidateMask<V>(s, i, m, first, last)) {
            const int k = detail::VerifyLowest(s, i, mask, f, m);
            if (k >= 0) return k;
        }
    }
    if (i > lastPos) return -1;
    const int j = lastPos - W + 1;
    const uint32_t mask = detail::CandidateMask<V>(s, j, m, first, last) & (~0u << ((i - j) * int(sizeof(T))));
    return detail::VerifyLowest(s, j, mask, f, m);
}

// Rightmost start of f[0, m) in s[0, len), or -1. Requires 1 <= m <= len.
template <class V, class T>
VKP_INLINE int FindSubRev(const T* s, int len, const T* f, int m) {
    if (m == 1) return FindUnitRev<V>(s, len, LoadUnit(f));
    constexpr int W = Units<V, T>::kPerVector;
    const int lastPos = len - m;
    const T f0 = LoadUnit(f), fl = LoadUnit(f + m - 1);
    if (lastPos + 1 < W) {
        if constexpr (V::kHasNarrower) {
            return FindSubRev<typename V::Narrower>(s, len, f, m);
        } else {
            for (int i = lastPos; i >= 0; --i)
                if (detail::MatchesAt(s, i, f, m, f0, fl)) return i;
            return -1;
        }
    }
    const typename V::Reg first = Units<V, T>::Splat(f0), last = Units<V, T>::Splat(fl);
    int i = lastPos;  // highest candidate not yet tested
    for (; i - 2 * W + 1 >= 0; i -= 2 * W) {
        if (const auto mask = detail::CandidatePair<V>(s, i - 2 * W + 1, m, first, last)) {
            const int k = detail::VerifyHighest(s, i - 2 * W + 1, mask, f, m);
            if (k >= 0) return k;
        }
    }
    for (; i - W + 1 >= 0; i -= W) {
        if (const uint32_t mask = detail::CandidateMask<V>(s, i - W + 1, m, first, last)) {
            const int k = detail::VerifyHighest(s, i - W + 1, mask, f, m);
            if (k >= 0) return k;
        }
    }
    if (i < 0) return -1;
    const uint32_t mask = detail::CandidateMask<V>(s, 0, m, first, last) & ((1u << ((i + 1) * int(sizeof(T)))) - 1);
    return detail::VerifyHighest(s, 0, mask, f, m);
}

// As FindUnitFwdInto: the results stored through pIndex.
template <class V, class T>
VKP_INLINE Status FindSubFwdInto(const T* s, int len, const T* f, int m, int* pIndex) {
    *pIndex = FindSubFwd<V>(s, len, f, m);
    return kOk;
}

template <class V, class T>
VKP_INLINE Status FindSubRevInto(const T* s, int len, const T* f, int m, int* pIndex) {
    *pIndex = FindSubRev<V>(s, len, f, m);
    return kOk;
}

}  // namespace vkp::kernels
