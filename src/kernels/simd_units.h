// SSE2 helpers over 16-byte vectors of 8u or 16u code units, so that one
// kernel template serves both unit types.
#pragma once

#include <emmintrin.h>

#include "frame/base.h"

namespace vkp::kernels {

template <class T>
struct Units;

template <>
struct Units<u8> {
    static constexpr int kPerVector = 16;
    static constexpr unsigned kLaneBits = 0xFFFFu;  // one mask bit per unit
    static VKP_INLINE __m128i Splat(u8 v) { return _mm_set1_epi8(char(v)); }
    static VKP_INLINE __m128i Equal(__m128i a, __m128i b) { return _mm_cmpeq_epi8(a, b); }
};

template <>
struct Units<u16> {
    static constexpr int kPerVector = 8;
    static constexpr unsigned kLaneBits = 0x5555u;  // the low mask bit of each unit
    static VKP_INLINE __m128i Splat(u16 v) { return _mm_set1_epi16(short(v)); }
    static VKP_INLINE __m128i Equal(__m128i a, __m128i b) { return _mm_cmpeq_epi16(a, b); }
};

VKP_INLINE __m128i LoadU(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
VKP_INLINE __m128i LoadA(const void* p) { return _mm_load_si128(static_cast<const __m128i*>(p)); }

// Byte-equality mask of a compare result, reduced to one bit per unit.
template <class T>
VKP_INLINE unsigned HitMask(__m128i eq) {
    return unsigned(_mm_movemask_epi8(eq)) & Units<T>::kLaneBits;
}

VKP_INLINE int LowestBit(unsigned m) { return __builtin_ctz(m); }
VKP_INLINE int HighestBit(unsigned m) { return 31 - __builtin_clz(m); }

}  // namespace vkp::kernels
