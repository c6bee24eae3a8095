// Case mapping of 8u and 16u strings.
//
// Latin mappings shift the units of one range (A to Z, or a to z) by a fixed
// delta, a block at a time without branches: one add and one signed compare
// give the in-range mask, which selects the delta. The final partial block is taken flush with the
// end; re-mapping units already mapped changes nothing, because a shifted
// unit lies outside the range.
//
// The full 16u mappings look every unit up in the case map; blocks made of
// units below 0x80 only, where the full mapping is the Latin one, take the
// block path instead.
#pragma once

#include "kernels/simd_units.h"
#include "floor/case_map.h"

namespace vkp::kernels {

// c + delta for lo <= c <= hi, else c (0 < lo <= hi < the unit's maximum).
// Adding 2^(bits-1) - lo moves the range to the bottom of the signed range,
// so that one signed compare tests it.
template <class T, class V>
struct RangeShift {
    using Reg = typename V::Reg;
    static constexpr T kBias = T(1u << (8 * sizeof(T) - 1));
    T lo, hi, delta;
    Reg offset, limit, shift;

    RangeShift(T low, T high, int d) : lo(low), hi(high), delta(T(d)) {
        offset = V::template Splat<T>(T(kBias - lo));
        limit = V::template Splat<T>(T(kBias + (hi - lo) + 1));
        shift = V::template Splat<T>(delta);
    }
    VKP_INLINE T Unit(T c) const { return T(c - lo) <= T(hi - lo) ? T(c + delta) : c; }
    // All ones in the units that lie in the range.
    VKP_INLINE Reg InRange(Reg x) const { return V::template Greater<T>(limit, V::template Add<T>(x, offset)); }
    VKP_INLINE Reg Vector(Reg x) const { return V::template Add<T>(x, V::And(InRange(x), shift)); }
};

template <class T, class V>
RangeShift<T, V> LatinLower() { return RangeShift<T, V>(T('A'), T('Z'), 32); }
template <class T, class V>
RangeShift<T, V> LatinUpper() { return RangeShift<T, V>(T('a'), T('z'), -32); }

// dst[i] = map(src[i]) for i < len; dst may be src. The map must leave its
// own results unchanged (the last block may be mapped twice).
template <class T, class V, class Map>
void MapBlocks(const T* src, T* dst, int len, const Map& map) {
    constexpr int per = V::kBytes / int(sizeof(T));
    if (len < per) {
        for (int i = 0; i < len; ++i) StoreUnit(dst + i, map.Unit(LoadUnit(src + i)));
        return;
    }
    int i = 0;
    for (; i + 2 * per <= len; i += 2 * per) {
        const auto x0 = V::LoadU(src + i), x1 = V::LoadU(src + i + per);
        V::StoreU(dst + i, map.Vector(x0));
        V::StoreU(dst + i + per, map.Vector(x1));
    }
    if (i + per <= len) V::StoreU(dst + i, map.Vector(V::LoadU(src + i))), i += per;
    if (i < len) V::StoreU(dst + len - per, map.Vector(V::LoadU(src + len - per)));
}

// The Latin mappings in the width list; strings shorter than one vector go
// to the narrower width.
template <class V, class T>
void LowercaseLatin(const T* src, T* dst, int len) {
    if constexpr (V::kHasNarrower) {
        if (len < V::kBytes / int(sizeof(T))) return LowercaseLatin<typename V::Narrower>(src, dst, len);
    }
    MapBlocks<T, V>(src, dst, len, LatinLower<T, V>());
}

template <class V, class T>
void UppercaseLatin(const T* src, T* dst, int len) {
    if constexpr (V::kHasNarrower) {
        if (len < V::kBytes / int(sizeof(T))) return UppercaseLatin<typename V::Narrower>(src, dst, len);
    }
    MapBlocks<T, V>(src, dst, len, LatinUpper<T, V>());
}

// The case map's lower (kLower) or upper mapping of one unit.
template <bool kLower>
VKP_INLINE u16 CaseMapped(u16 c) {
    if (c < kCaseDirectUnits) return u16(c + (kLower ? kCaseLowerShift : kCaseUpperShift)[c]);
    const u32 w = CaseMapWord(c);
    const int d = CaseMapDelta(w);
    if constexpr (kLower) return (w & kCaseHasLower) ? u16(c + d) : c;
    else return (w & kCaseHasUpper) ? u16(c - d) : c;
}

template <bool kLower>
struct CaseTableMap {
    VKP_INLINE u16 Unit(u16 c) const { return CaseMapped<kLower>(c); }
};

// True when every unit of the block is below 0x80.
template <class V>
VKP_INLINE bool AsciiBlock(typename V::Reg x) {
    const auto high = V::And(x, V::template Splat<u16>(0xFF80));
    return V::ByteMask(V::template Equal<u16>(high, V::Zero())) == V::kAllBytes;
}

// The full mapping of src[0, len) into dst (dst may be src).
template <bool kLower, class V>
void MapCaseTable(const u16* src, u16* dst, int len) {
    constexpr int per = V::kBytes / 2;
    const RangeShift<u16, V> latin = kLower ? LatinLower<u16, V>() : LatinUpper<u16, V>();
    int i = 0;
    for (; i + per <= len; i += per) {
        const auto x = V::LoadU(src + i);
        if (AsciiBlock<V>(x)) {
            V::StoreU(dst + i, latin.Vector(x));
        } else {
            for (int k = i; k < i + per; ++k) StoreUnit(dst + k, CaseMapped<kLower>(LoadUnit(src + k)));
        }
    }
    for (; i < len; ++i) StoreUnit(dst + i, CaseMapped<kLower>(LoadUnit(src + i)));
}

// The full mappings in the width list.
template <class V>
void LowercaseFull(const u16* src, u16* dst, int len) { MapCaseTable<true, V>(src, dst, len); }
template <class V>
void UppercaseFull(const u16* src, u16* dst, int len) { MapCaseTable<false, V>(src, dst, len); }

}  // namespace vkp::kernels
