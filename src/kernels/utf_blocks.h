// 16-unit blocks of the UTF converters: ASCII bytes widened to 16-bit units
// and 16-bit units below 0x80 narrowed to bytes. Each writes the whole block
// (the caller guarantees 16 units of source and of room) and reports how
// many leading units were ASCII: only those count as converted, the rest of
// the block is overwritten by the caller's next step or lies beyond the
// length it reports.
#pragma once

#include <tmmintrin.h>

#include "frame/base.h"

namespace vkp::kernels {

template <bool kSwap>
VKP_INLINE int WidenAscii(const u8* s, u16* d) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s));
    const __m128i z = _mm_setzero_si128();
    __m128i lo, hi;
    if constexpr (kSwap) lo = _mm_unpacklo_epi8(z, v), hi = _mm_unpackhi_epi8(z, v);
    else lo = _mm_unpacklo_epi8(v, z), hi = _mm_unpackhi_epi8(v, z);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d), lo);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 8), hi);
    const unsigned high = unsigned(_mm_movemask_epi8(v));
    return high ? __builtin_ctz(high) : 16;
}

template <bool kSwap>
VKP_INLINE __m128i LoadUnits(const u16* s) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s));
    if constexpr (kSwap) return _mm_or_si128(_mm_slli_epi16(v, 8), _mm_srli_epi16(v, 8));
    else return v;
}

template <bool kSwap>
VKP_INLINE int NarrowAscii(const u16* s, u8* d) {
    const __m128i a = LoadUnits<kSwap>(s), b = LoadUnits<kSwap>(s + 8);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm_packus_epi16(a, b));
    const __m128i high = _mm_set1_epi16(short(0xFF80));
    const __m128i z = _mm_setzero_si128();
    const __m128i okA = _mm_cmpeq_epi16(_mm_and_si128(a, high), z), okB = _mm_cmpeq_epi16(_mm_and_si128(b, high), z);
    const unsigned ok = unsigned(_mm_movemask_epi8(_mm_packs_epi16(okA, okB)));
    return ok == 0xFFFF ? 16 : __builtin_ctz(~ok);
}

}  // namespace vkp::kernels
