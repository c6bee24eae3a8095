// Vector helpers over 8u or 16u code units, so that one kernel template
// serves both unit types and both vector widths. A width is a traits type:
// Vec128 here (SSE2, the baseline), Vec256 in kernels/avx2/vec256.h (AVX2,
// usable only in sources compiled for that instruction set).
#pragma once

#include <emmintrin.h>

#include "frame/base.h"

namespace vkp::kernels {

// 16-byte vectors.
struct Vec128 {
    using Reg = __m128i;
    using PairMask = uint32_t;  // the byte masks of two vectors side by side
    static constexpr int kBytes = 16;
    static constexpr bool kHasNarrower = false;  // a narrower width to delegate short strings to
    static constexpr uint32_t kAllBytes = 0xFFFFu;
    static VKP_INLINE Reg LoadU(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
    static VKP_INLINE Reg LoadA(const void* p) { return _mm_load_si128(static_cast<const __m128i*>(p)); }
    static VKP_INLINE Reg Splat8(u8 v) { return _mm_set1_epi8(char(v)); }
    static VKP_INLINE Reg Splat16(u16 v) { return _mm_set1_epi16(short(v)); }
    static VKP_INLINE Reg Equal8(Reg a, Reg b) { return _mm_cmpeq_epi8(a, b); }
    static VKP_INLINE Reg Equal16(Reg a, Reg b) { return _mm_cmpeq_epi16(a, b); }
    static VKP_INLINE Reg Or(Reg a, Reg b) { return _mm_or_si128(a, b); }
    static VKP_INLINE Reg And(Reg a, Reg b) { return _mm_and_si128(a, b); }
    static VKP_INLINE uint32_t ByteMask(Reg a) { return uint32_t(_mm_movemask_epi8(a)); }
};

// Unit-type view of a width: splat, compare, and which mask bits stand for
// whole units.
template <class V, class T>
struct Units;

template <class V>
struct Units<V, u8> {
    static constexpr int kPerVector = V::kBytes;
    static constexpr uint32_t kLaneBits = V::kAllBytes;  // one mask bit per unit
    static VKP_INLINE typename V::Reg Splat(u8 v) { return V::Splat8(v); }
    static VKP_INLINE typename V::Reg Equal(typename V::Reg a, typename V::Reg b) { return V::Equal8(a, b); }
};

template <class V>
struct Units<V, u16> {
    static constexpr int kPerVector = V::kBytes / 2;
    static constexpr uint32_t kLaneBits = V::kAllBytes & 0x55555555u;  // the low mask bit of each unit
    static VKP_INLINE typename V::Reg Splat(u16 v) { return V::Splat16(v); }
    static VKP_INLINE typename V::Reg Equal(typename V::Reg a, typename V::Reg b) { return V::Equal16(a, b); }
};

// Byte-equality mask of a compare result, reduced to one bit per unit.
template <class V, class T>
VKP_INLINE uint32_t HitMask(typename V::Reg eq) {
    return V::ByteMask(eq) & Units<V, T>::kLaneBits;
}

VKP_INLINE int LowestBit(uint32_t m) { return __builtin_ctz(m); }
VKP_INLINE int LowestBit(uint64_t m) { return __builtin_ctzll(m); }
VKP_INLINE int HighestBit(uint32_t m) { return 31 - __builtin_clz(m); }

}  // namespace vkp::kernels
