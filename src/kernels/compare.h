// The first position at which two strings differ, after an optional
// per-unit mapping (none, or a case fold), in blocks of V::kBytes.
//
// Four blocks per step are compared and their equality masks combined; the
// step with a difference is then resolved block by block. The final partial
// block is taken flush with the end (the units before it are known equal, so
// its first difference is the string's). Strings shorter than a block are
// compared unit by unit. Nothing outside the two ranges is read.
#pragma once

#include "kernels/case_convert.h"
#include "kernels/vec16.h"

namespace vkp::kernels {

// Units compared as they are.
template <class T, class V>
struct SameUnits {
    VKP_INLINE T Unit(T c) const { return c; }
    VKP_INLINE typename V::Reg Vector(typename V::Reg x) const { return x; }
};

// The first i in [from, to) with map(a[i]) != map(b[i]), or to.
template <class T, class Map>
VKP_INLINE int MismatchUnits(const T* a, const T* b, int from, int to, const Map& map) {
    for (int i = from; i < to; ++i)
        if (map.Unit(LoadUnit(a + i)) != map.Unit(LoadUnit(b + i))) return i;
    return to;
}

// Mask of the units of one block whose mapped values differ.
template <class T, class V, class Map>
VKP_INLINE u32 DiffMask(const T* a, const T* b, const Map& map) {
    const auto eq = V::template Equal<T>(map.Vector(V::Load(a)), map.Vector(V::Load(b)));
    return ~V::ByteMask(eq) & V::kAllBytes;
}

// The first i < len with map(a[i]) != map(b[i]), or len.
template <class T, class V, class Map>
int FirstMismatch(const T* a, const T* b, int len, const Map& map) {
    constexpr int per = V::kBytes / int(sizeof(T));
    if (len < per) return MismatchUnits(a, b, 0, len, map);
    int i = 0;
    for (; i + 4 * per <= len; i += 4 * per) {
        auto eq = V::template Equal<T>(map.Vector(V::Load(a + i)), map.Vector(V::Load(b + i)));
        for (int k = 1; k < 4; ++k)
            eq = V::And(eq, V::template Equal<T>(map.Vector(V::Load(a + i + k * per)), map.Vector(V::Load(b + i + k * per))));
        if (V::ByteMask(eq) != V::kAllBytes) break;
    }
    for (; i + per <= len; i += per)
        if (u32 m = DiffMask<T, V>(a + i, b + i, map)) return i + LowBit(m) / int(sizeof(T));
    if (i < len) {
        const int j = len - per;
        if (u32 m = DiffMask<T, V>(a + j, b + j, map)) return j + LowBit(m) / int(sizeof(T));
    }
    return len;
}

// The first i < len at which the full lower-case mappings of a[i] and b[i]
// differ, or len. Blocks of units below 0x80 compare Latin-folded.
template <class V>
int FirstMismatchFolded(const u16* a, const u16* b, int len) {
    constexpr int per = V::kBytes / 2;
    const RangeShift<u16, V> latin = LatinLower<u16, V>();
    int i = 0;
    for (; i + per <= len; i += per) {
        const auto x = V::Load(a + i), y = V::Load(b + i);
        if (AsciiBlock<V>(V::Or(x, y))) {
            const u32 m = ~V::ByteMask(V::template Equal<u16>(latin.Vector(x), latin.Vector(y))) & V::kAllBytes;
            if (m) return i + LowBit(m) / 2;
        } else if (int k = MismatchUnits(a, b, i, i + per, CaseTableMap<true>{}); k < i + per) {
            return k;
        }
    }
    return MismatchUnits(a, b, i, len, CaseTableMap<true>{});
}

}  // namespace vkp::kernels
