// The first position at which two strings differ, exactly or ignoring the
// case of A to Z, in blocks of V::kBytes.
//
// Eight blocks per step are compared and their equality masks combined; the
// step with a difference is then resolved block by block (strings of up to
// eight blocks are first tested with blocks from both ends). The final partial
// block is taken flush with the end (the units before it are known equal, so
// its first difference is the string's). Strings shorter than a block are
// compared unit by unit. Nothing outside the two ranges is read.
#pragma once

#include "kernels/case_convert.h"
#include "kernels/simd_units.h"

namespace vkp::kernels {

// Units equal as they are.
template <class T, class V>
struct SameUnits {
    VKP_INLINE bool Unit(T a, T b) const { return a == b; }
    VKP_INLINE typename V::Reg Vector(typename V::Reg a, typename V::Reg b) const { return V::template Equal<T>(a, b); }
};

// Units equal once A to Z are folded to a to z: equal, or differing only in
// bit 5 with a letter (a | 0x20 in a..z).
template <class T, class V>
struct SameIgnoringLatinCase {
    using Reg = typename V::Reg;
    RangeShift<T, V> small = LatinUpper<T, V>();
    Reg caseBit = V::template Splat<T>(T(0x20));

    VKP_INLINE bool Unit(T a, T b) const { return a == b || ((a ^ b) == 0x20 && IsAsciiLetter(a)); }
    VKP_INLINE Reg Vector(Reg a, Reg b) const {
        const Reg caseOnly = V::And(V::template Equal<T>(V::Xor(a, b), caseBit), small.InRange(V::Or(a, caseBit)));
        return V::Or(V::template Equal<T>(a, b), caseOnly);
    }
};

// The first i in [from, to) where a[i] and b[i] are not the same, or to.
template <class T, class Same>
VKP_INLINE int MismatchUnits(const T* a, const T* b, int from, int to, const Same& same) {
    for (int i = from; i < to; ++i)
        if (!same.Unit(LoadUnit(a + i), LoadUnit(b + i))) return i;
    return to;
}

// Mask of the units of one block that are not the same.
template <class T, class V, class Same>
VKP_INLINE u32 DiffMask(typename V::Reg a, typename V::Reg b, const Same& same) {
    return ~V::ByteMask(same.Vector(a, b)) & V::kAllBytes;
}

// The first i < len where a[i] and b[i] are not the same, or len.
template <class T, class V, class Same>
VKP_INLINE int FirstMismatch(const T* a, const T* b, int len, const Same& same) {
    constexpr int per = V::kBytes / int(sizeof(T));
    if (len < per) return MismatchUnits(a, b, 0, len, same);
    // Up to eight blocks: K blocks from each end (overlapping in the middle)
    // settle equal strings with one test; a difference is then located
    // block by block below.
    if (len <= 8 * per) {
        auto eq = [&](int at) { return same.Vector(V::LoadU(a + at), V::LoadU(b + at)); };
        typename V::Reg all;
        if (len <= 2 * per) {
            all = V::And(eq(0), eq(len - per));
        } else if (len <= 4 * per) {
            all = V::And(V::And(eq(0), eq(per)), V::And(eq(len - 2 * per), eq(len - per)));
        } else {
            const auto h = V::And(V::And(eq(0), eq(per)), V::And(eq(2 * per), eq(3 * per)));
            const auto t = V::And(V::And(eq(len - 4 * per), eq(len - 3 * per)), V::And(eq(len - 2 * per), eq(len - per)));
            all = V::And(h, t);
        }
        if (V::ByteMask(all) == V::kAllBytes) return len;
    }
    int i = 0;
    for (; i + 8 * per <= len; i += 8 * per) {
        // Combined as a tree, so that a short string's answer waits on three
        // ANDs after the loads, not seven.
        auto eq = [&](int k) { return same.Vector(V::LoadU(a + i + k * per), V::LoadU(b + i + k * per)); };
        const auto q0 = V::And(V::And(eq(0), eq(1)), V::And(eq(2), eq(3)));
        const auto q1 = V::And(V::And(eq(4), eq(5)), V::And(eq(6), eq(7)));
        if (V::ByteMask(V::And(q0, q1)) != V::kAllBytes) break;
    }
    for (; i + per <= len; i += per)
        if (u32 m = DiffMask<T, V>(V::LoadU(a + i), V::LoadU(b + i), same)) return i + LowestBit(m) / int(sizeof(T));
    if (i < len) {
        const int j = len - per;
        if (u32 m = DiffMask<T, V>(V::LoadU(a + j), V::LoadU(b + j), same)) return j + LowestBit(m) / int(sizeof(T));
    }
    return len;
}

// The forms in the width list (kernels/kernel_list.inc): the first
// difference, exact or ignoring Latin case, or len. Strings shorter than one
// vector go to the narrower width.
template <class V, class T>
VKP_INLINE int FirstDifference(const T* a, const T* b, int len) {
    if constexpr (V::kHasNarrower) {
        if (len < V::kBytes / int(sizeof(T))) return FirstDifference<typename V::Narrower>(a, b, len);
    }
    return FirstMismatch<T, V>(a, b, len, SameUnits<T, V>{});
}

template <class V, class T>
VKP_INLINE int FirstLatinDifference(const T* a, const T* b, int len) {
    if constexpr (V::kHasNarrower) {
        if (len < V::kBytes / int(sizeof(T))) return FirstLatinDifference<typename V::Narrower>(a, b, len);
    }
    return FirstMismatch<T, V>(a, b, len, SameIgnoringLatinCase<T, V>{});
}

// The results stored through pResult, with the status of a successful call:
// the form in the width list, so that an entry point ends with one jump
// through the table. Compare gives the difference of the first differing
// units (of their Latin lower-case forms for the caseless compare), or 0;
// Equal gives 1 when the strings are equal, else 0.
template <class V, class T>
VKP_INLINE Status CompareInto(const T* a, const T* b, int len, int* pResult) {
    const int at = FirstDifference<V>(a, b, len);
    *pResult = at == len ? 0 : int(LoadUnit(a + at)) - int(LoadUnit(b + at));
    return kOk;
}

template <class V, class T>
VKP_INLINE Status EqualInto(const T* a, const T* b, int len, int* pResult) {
    *pResult = FirstDifference<V>(a, b, len) == len;
    return kOk;
}

template <class T>
VKP_INLINE int LatinLowerUnit(T c) { return T(c - 'A') < 26 ? c + 32 : c; }

template <class V, class T>
VKP_INLINE Status CompareLatinInto(const T* a, const T* b, int len, int* pResult) {
    const int at = FirstLatinDifference<V>(a, b, len);
    *pResult = at == len ? 0 : LatinLowerUnit(LoadUnit(a + at)) - LatinLowerUnit(LoadUnit(b + at));
    return kOk;
}

// Units equal under the case map's lower-case mapping.
struct SameLowerCase {
    VKP_INLINE bool Unit(u16 a, u16 b) const { return CaseMapped<true>(a) == CaseMapped<true>(b); }
};

// The first i < len at which the full lower-case mappings of a[i] and b[i]
// differ, or len. Blocks of units below 0x80 compare Latin-folded.
template <class V>
int FirstMismatchFolded(const u16* a, const u16* b, int len) {
    constexpr int per = V::kBytes / 2;
    const SameIgnoringLatinCase<u16, V> latin;
    int i = 0;
    for (; i + per <= len; i += per) {
        const auto x = V::LoadU(a + i), y = V::LoadU(b + i);
        if (AsciiBlock<V>(V::Or(x, y))) {
            if (u32 m = DiffMask<u16, V>(x, y, latin)) return i + LowestBit(m) / 2;
        } else if (int k = MismatchUnits(a, b, i, i + per, SameLowerCase{}); k < i + per) {
            return k;
        }
    }
    return MismatchUnits(a, b, i, len, SameLowerCase{});
}

}  // namespace vkp::kernels
