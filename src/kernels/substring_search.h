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
// with the same first/last filter. The caseless form (8u) compares every
// unit with a to z folded onto A to Z: a letter of the needle is probed as
// (unit | 0x20) == its lower-case form, any other byte exactly.
#pragma once

#include "kernels/byte_class_scan.h"
#include "kernels/simd_units.h"
#include "kernels/unit_search.h"

namespace vkp::kernels {

// True when the n bytes at a and b are equal.
VKP_INLINE bool EqualBytes(const char* a, const char* b, size_t n) {
    while (n >= 16) {
        if (Vec128::ByteMask(Vec128::Equal<u8>(Vec128::LoadU(a), Vec128::LoadU(b))) != 0xFFFF) return false;
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

// True when the n bytes at a and b are equal with a to z taken as A to Z.
VKP_INLINE bool EqualFolded(const u8* a, const u8* b, int n) {
    for (int i = 0; i < n; ++i) {
        const u8 x = a[i], y = b[i];
        if (x != y && ((x ^ y) != 0x20 || !IsAsciiLetter(x))) return false;
    }
    return true;
}

// One needle unit as the filter sees it: the units u with (u | fold) ==
// want; fold is 0x20 for a letter of a caseless (kFolded) search, else 0.
template <class T, bool kFolded>
struct Probe {
    T want, fold;
    VKP_INLINE explicit Probe(T u) : want(u), fold(0) {
        if constexpr (kFolded) {
            if (IsAsciiLetter(u)) want = T(u | 0x20), fold = 0x20;
        }
    }
    VKP_INLINE bool Unit(T u) const { return T(u | fold) == want; }
};

// A probe splat into a vector.
template <class V, class T, bool kFolded>
struct VectorProbe {
    typename V::Reg want, fold;
    VKP_INLINE explicit VectorProbe(Probe<T, kFolded> p) : want(Units<V, T>::Splat(p.want)), fold(Units<V, T>::Splat(p.fold)) {}
    VKP_INLINE typename V::Reg Hits(typename V::Reg x) const {
        if constexpr (kFolded) return Units<V, T>::Equal(V::Or(x, fold), want);
        else return Units<V, T>::Equal(x, want);
    }
};

template <class T, bool kFolded>
VKP_INLINE bool EqualMiddle(const T* a, const T* b, int n) {
    if constexpr (kFolded) return EqualFolded(a, b, n);
    else return EqualUnits(a, b, n);
}

// Candidate positions j .. j + kPerVector - 1 whose first and last units match.
template <class V, class T, bool kFolded>
VKP_INLINE uint32_t CandidateMask(const T* s, int j, int m, const VectorProbe<V, T, kFolded>& first,
                                  const VectorProbe<V, T, kFolded>& last) {
    return HitMask<V, T>(V::And(first.Hits(V::LoadU(s + j)), last.Hits(V::LoadU(s + j + m - 1))));
}

// Candidates of the two blocks at j and j + kPerVector, in one mask.
template <class V, class T, bool kFolded>
VKP_INLINE typename V::PairMask CandidatePair(const T* s, int j, int m, const VectorProbe<V, T, kFolded>& first,
                                              const VectorProbe<V, T, kFolded>& last) {
    using M = typename V::PairMask;
    return M(CandidateMask<V>(s, j, m, first, last)) |
           M(CandidateMask<V>(s, j + Units<V, T>::kPerVector, m, first, last)) << V::kBytes;
}

// The first candidate in mask (block at j) whose middle matches, or -1.
template <bool kFolded, class T, class M>
VKP_INLINE int VerifyLowest(const T* s, int j, M mask, const T* f, int m) {
    while (mask) {
        const int k = j + LowestBit(mask) / int(sizeof(T));
        if (EqualMiddle<T, kFolded>(s + k + 1, f + 1, m - 2)) return k;
        mask &= mask - 1;
    }
    return -1;
}

// The last candidate in mask (block at j) whose middle matches, or -1. The
// candidates are taken lowest first, as in the forward scan (cheaper bit
// arithmetic), and the last match wins.
template <bool kFolded, class T, class M>
VKP_INLINE int VerifyHighest(const T* s, int j, M mask, const T* f, int m) {
    int found = -1;
    while (mask) {
        const int k = j + LowestBit(mask) / int(sizeof(T));
        if (EqualMiddle<T, kFolded>(s + k + 1, f + 1, m - 2)) found = k;
        mask &= mask - 1;
    }
    return found;
}

// True when f[0, m) stands at s + i; its first and last units are tested
// first. The scan of strings too short for one block.
template <class T, bool kFolded>
VKP_INLINE bool MatchesAt(const T* s, int i, const T* f, int m, Probe<T, kFolded> p0, Probe<T, kFolded> pl) {
    return p0.Unit(LoadUnit(s + i)) && pl.Unit(LoadUnit(s + i + m - 1)) && EqualMiddle<T, kFolded>(s + i + 1, f + 1, m - 2);
}

// Leftmost start of f[0, m) in s[0, len), or -1. Requires 1 <= m <= len.
template <class V, class T, bool kFolded>
VKP_INLINE int FindSubFwd(const T* s, int len, const T* f, int m) {
    if (m == 1) {
        if constexpr (kFolded) {
            const Probe<T, kFolded> p(LoadUnit(f));
            if (p.fold) return FindFoldedFwd<V>(s, len, u8(p.want));
        }
        return FindUnitFwd<V>(s, len, LoadUnit(f));
    }
    constexpr int W = Units<V, T>::kPerVector;
    const int lastPos = len - m;
    const Probe<T, kFolded> p0(LoadUnit(f)), pl(LoadUnit(f + m - 1));
    if (lastPos + 1 < W) {
        if constexpr (V::kHasNarrower) {
            return FindSubFwd<typename V::Narrower, T, kFolded>(s, len, f, m);
        } else {
            for (int i = 0; i <= lastPos; ++i)
                if (MatchesAt(s, i, f, m, p0, pl)) return i;
            return -1;
        }
    }
    const VectorProbe<V, T, kFolded> first(p0), last(pl);
    int i = 0;
    for (; i + 2 * W - 1 <= lastPos; i += 2 * W) {
        if (const auto mask = CandidatePair<V>(s, i, m, first, last)) {
            const int k = VerifyLowest<kFolded>(s, i, mask, f, m);
            if (k >= 0) return k;
        }
    }
    for (; i + W - 1 <= lastPos; i += W) {
        if (const uint32_t mask = CandidateMask<V>(s, i, m, first, last)) {
            const int k = VerifyLowest<kFolded>(s, i, mask, f, m);
            if (k >= 0) return k;
        }
    }
    if (i > lastPos) return -1;
    const int j = lastPos - W + 1;
    const uint32_t mask = CandidateMask<V>(s, j, m, first, last) & (~0u << ((i - j) * int(sizeof(T))));
    return VerifyLowest<kFolded>(s, j, mask, f, m);
}

// Rightmost start of f[0, m) in s[0, len), or -1. Requires 1 <= m <= len.
template <class V, class T, bool kFolded>
VKP_INLINE int FindSubRev(const T* s, int len, const T* f, int m) {
    if (m == 1) {
        if constexpr (kFolded) {
            const Probe<T, kFolded> p(LoadUnit(f));
            if (p.fold) return FindFoldedRev<V>(s, len, u8(p.want));
        }
        return FindUnitRev<V>(s, len, LoadUnit(f));
    }
    constexpr int W = Units<V, T>::kPerVector;
    const int lastPos = len - m;
    const Probe<T, kFolded> p0(LoadUnit(f)), pl(LoadUnit(f + m - 1));
    if (lastPos + 1 < W) {
        if constexpr (V::kHasNarrower) {
            return FindSubRev<typename V::Narrower, T, kFolded>(s, len, f, m);
        } else {
            for (int i = lastPos; i >= 0; --i)
                if (MatchesAt(s, i, f, m, p0, pl)) return i;
            return -1;
        }
    }
    const VectorProbe<V, T, kFolded> first(p0), last(pl);
    int i = lastPos;  // highest candidate not yet tested
    for (; i - 2 * W + 1 >= 0; i -= 2 * W) {
        if (const auto mask = CandidatePair<V>(s, i - 2 * W + 1, m, first, last)) {
            const int k = VerifyHighest<kFolded>(s, i - 2 * W + 1, mask, f, m);
            if (k >= 0) return k;
        }
    }
    for (; i - W + 1 >= 0; i -= W) {
        if (const uint32_t mask = CandidateMask<V>(s, i - W + 1, m, first, last)) {
            const int k = VerifyHighest<kFolded>(s, i - W + 1, mask, f, m);
            if (k >= 0) return k;
        }
    }
    if (i < 0) return -1;
    const uint32_t mask = CandidateMask<V>(s, 0, m, first, last) & ((1u << ((i + 1) * int(sizeof(T)))) - 1);
    return VerifyHighest<kFolded>(s, 0, mask, f, m);
}

}  // namespace detail

// Leftmost (Fwd) or rightmost (Rev) start of f[0, m) in s[0, len), or -1.
// Require 1 <= m <= len.
template <class V, class T>
VKP_INLINE int FindSubFwd(const T* s, int len, const T* f, int m) {
    return detail::FindSubFwd<V, T, false>(s, len, f, m);
}

template <class V, class T>
VKP_INLINE int FindSubRev(const T* s, int len, const T* f, int m) {
    return detail::FindSubRev<V, T, false>(s, len, f, m);
}

// The same ignoring the case of a to z: the forms in the width list
// (kernels/kernel_list.inc).
template <class V>
int FindSubFoldedFwd(const u8* s, int len, const u8* f, int m) {
    return detail::FindSubFwd<V, u8, true>(s, len, f, m);
}

template <class V>
int FindSubFoldedRev(const u8* s, int len, const u8* f, int m) {
    return detail::FindSubRev<V, u8, true>(s, len, f, m);
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
