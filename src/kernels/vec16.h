// The 16-byte vector operations that the set-search, compare, case and hash
// kernels are written against. Each kernel takes the vector type as a
// template parameter V, so the same loop can be instantiated with a wider
// type that offers these members under the same names.
#pragma once

#include <tmmintrin.h>

#include "frame/base.h"

namespace vkp::kernels {

struct Vec16 {
    using Reg = __m128i;
    static constexpr int kBytes = 16;

    static VKP_INLINE Reg Load(const void* p) { return _mm_loadu_si128(static_cast<const Reg*>(p)); }
    static VKP_INLINE void Store(void* p, Reg v) { _mm_storeu_si128(static_cast<Reg*>(p), v); }
    // A 16-byte table in every 16-byte lane.
    static VKP_INLINE Reg Table(const u8* p16) { return _mm_loadu_si128(reinterpret_cast<const Reg*>(p16)); }
    static VKP_INLINE bool IsZero(Reg v) { return _mm_movemask_epi8(_mm_cmpeq_epi8(v, _mm_setzero_si128())) == 0xFFFF; }
    static VKP_INLINE Reg Zero() { return _mm_setzero_si128(); }
    static VKP_INLINE Reg Or(Reg a, Reg b) { return _mm_or_si128(a, b); }
    static VKP_INLINE Reg And(Reg a, Reg b) { return _mm_and_si128(a, b); }
    static VKP_INLINE Reg Xor(Reg a, Reg b) { return _mm_xor_si128(a, b); }
    // One bit per byte, lowest address in bit 0.
    static VKP_INLINE u32 ByteMask(Reg v) { return u32(_mm_movemask_epi8(v)); }
    static constexpr u32 kAllBytes = 0xFFFFu;

    template <class T>
    static VKP_INLINE Reg Splat(T v) {
        if constexpr (sizeof(T) == 1) return _mm_set1_epi8(char(v));
        else return _mm_set1_epi16(short(v));
    }
    template <class T>
    static VKP_INLINE Reg Equal(Reg a, Reg b) {
        if constexpr (sizeof(T) == 1) return _mm_cmpeq_epi8(a, b);
        else return _mm_cmpeq_epi16(a, b);
    }
    // Signed a > b per unit.
    template <class T>
    static VKP_INLINE Reg Greater(Reg a, Reg b) {
        if constexpr (sizeof(T) == 1) return _mm_cmpgt_epi8(a, b);
        else return _mm_cmpgt_epi16(a, b);
    }
    template <class T>
    static VKP_INLINE Reg Add(Reg a, Reg b) {
        if constexpr (sizeof(T) == 1) return _mm_add_epi8(a, b);
        else return _mm_add_epi16(a, b);
    }
    // Byte lookup of each byte's low four bits in a 16-entry table (0 where
    // the index byte has its top bit set), within each 16-byte lane.
    static VKP_INLINE Reg Lookup(Reg table, Reg index) { return _mm_shuffle_epi8(table, index); }
    static VKP_INLINE Reg ShiftRight16(Reg v, int n) { return _mm_srli_epi16(v, n); }
    static VKP_INLINE Reg ShiftLeft32(Reg v, int n) { return _mm_slli_epi32(v, n); }
    // 8u units widened to 16u, from the low and the high half of the vector.
    static VKP_INLINE Reg WidenLow(Reg v) { return _mm_unpacklo_epi8(v, _mm_setzero_si128()); }
    static VKP_INLINE Reg WidenHigh(Reg v) { return _mm_unpackhi_epi8(v, _mm_setzero_si128()); }
    // Signed 16-bit products, adjacent pairs summed into 32-bit lanes.
    static VKP_INLINE Reg MulAddPairs(Reg a, Reg b) { return _mm_madd_epi16(a, b); }
    static VKP_INLINE Reg Add32(Reg a, Reg b) { return _mm_add_epi32(a, b); }
    static VKP_INLINE u32 Sum32(Reg v) {
        v = _mm_add_epi32(v, _mm_shuffle_epi32(v, 0x4E));
        v = _mm_add_epi32(v, _mm_shuffle_epi32(v, 0xB1));
        return u32(_mm_cvtsi128_si32(v));
    }
};

// Writes one code unit at any address (a 16u string may start at an odd one).
template <class T>
VKP_INLINE void StoreUnit(T* p, T v) { __builtin_memcpy(p, &v, sizeof(T)); }

// Position of the lowest (highest) set bit of a non-zero mask.
VKP_INLINE int LowBit(u32 m) { return __builtin_ctz(m); }
VKP_INLINE int HighBit(u32 m) { return 31 - __builtin_clz(m); }

}  // namespace vkp::kernels
