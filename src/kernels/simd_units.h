// Vector helpers over 8u or 16u code units, so that one kernel template
// serves both unit types and both vector widths. A width is a traits type:
// Vec128 here (SSE2 and SSSE3, the baseline), Vec256 in kernels/avx2/vec256.h
// (AVX2, usable only in sources compiled for that instruction set).
#pragma once

#include <tmmintrin.h>

#include "floor/base.h"

namespace vkp::kernels {

// The per-unit operations of a width W, chosen by the unit type T from W's
// 8- and 16-bit ones: V::template Splat<T>(v), Equal<T>, Greater<T> (signed
// a > b) and Add<T>.
template <class W>
struct UnitOps {
    template <class T>
    static VKP_INLINE auto Splat(T v) {
        if constexpr (sizeof(T) == 1) return W::Splat8(u8(v));
        else return W::Splat16(u16(v));
    }
    template <class T, class R>
    static VKP_INLINE R Equal(R a, R b) {
        if constexpr (sizeof(T) == 1) return W::Equal8(a, b);
        else return W::Equal16(a, b);
    }
    template <class T, class R>
    static VKP_INLINE R Greater(R a, R b) {
        if constexpr (sizeof(T) == 1) return W::Greater8(a, b);
        else return W::Greater16(a, b);
    }
    template <class T, class R>
    static VKP_INLINE R Add(R a, R b) {
        if constexpr (sizeof(T) == 1) return W::Add8(a, b);
        else return W::Add16(a, b);
    }
};

// 16-byte vectors. Every kernel written over a width uses these members;
// Vec256 offers the same ones under the same names (lookups and shifts work
// within each 16-byte lane there too).
struct Vec128 : UnitOps<Vec128> {
    using Reg = __m128i;
    using PairMask = uint32_t;  // the byte masks of two vectors side by side
    static constexpr int kBytes = 16;
    static constexpr bool kHasNarrower = false;  // a narrower width to delegate short strings to
    static constexpr uint32_t kAllBytes = 0xFFFFu;
    static VKP_INLINE Reg LoadU(const void* p) { return _mm_loadu_si128(static_cast<const Reg*>(p)); }
    static VKP_INLINE Reg LoadA(const void* p) { return _mm_load_si128(static_cast<const Reg*>(p)); }
    static VKP_INLINE void StoreU(void* p, Reg v) { _mm_storeu_si128(static_cast<Reg*>(p), v); }
    static VKP_INLINE void StoreA(void* p, Reg v) { _mm_store_si128(static_cast<Reg*>(p), v); }
    // Non-temporal store to an aligned address; StreamFence orders them.
    static VKP_INLINE void StoreStream(void* p, Reg v) { _mm_stream_si128(static_cast<Reg*>(p), v); }
    static VKP_INLINE void StreamFence() { _mm_sfence(); }
    // A 16-byte table in every 16-byte lane.
    static VKP_INLINE Reg Table(const u8* p16) { return _mm_loadu_si128(reinterpret_cast<const Reg*>(p16)); }
    // Stores the first 16-byte lane (such a table).
    static VKP_INLINE void StoreTable(u8* p16, Reg v) { _mm_storeu_si128(reinterpret_cast<Reg*>(p16), v); }
    static VKP_INLINE Reg Zero() { return _mm_setzero_si128(); }
    static VKP_INLINE bool IsZero(Reg v) { return _mm_movemask_epi8(_mm_cmpeq_epi8(v, _mm_setzero_si128())) == 0xFFFF; }
    static VKP_INLINE Reg Or(Reg a, Reg b) { return _mm_or_si128(a, b); }
    static VKP_INLINE Reg And(Reg a, Reg b) { return _mm_and_si128(a, b); }
    static VKP_INLINE Reg Xor(Reg a, Reg b) { return _mm_xor_si128(a, b); }
    // One bit per byte, lowest address in bit 0.
    static VKP_INLINE uint32_t ByteMask(Reg a) { return uint32_t(_mm_movemask_epi8(a)); }

    static VKP_INLINE Reg Splat8(u8 v) { return _mm_set1_epi8(char(v)); }
    static VKP_INLINE Reg Splat16(u16 v) { return _mm_set1_epi16(short(v)); }
    static VKP_INLINE Reg Equal8(Reg a, Reg b) { return _mm_cmpeq_epi8(a, b); }
    static VKP_INLINE Reg Equal16(Reg a, Reg b) { return _mm_cmpeq_epi16(a, b); }
    static VKP_INLINE Reg Greater8(Reg a, Reg b) { return _mm_cmpgt_epi8(a, b); }
    static VKP_INLINE Reg Greater16(Reg a, Reg b) { return _mm_cmpgt_epi16(a, b); }
    static VKP_INLINE Reg Add8(Reg a, Reg b) { return _mm_add_epi8(a, b); }
    static VKP_INLINE Reg Add16(Reg a, Reg b) { return _mm_add_epi16(a, b); }
    // Byte lookup of each byte's low four bits in a 16-entry table (0 where
    // the index byte has its top bit set), within each 16-byte lane.
    static VKP_INLINE Reg Lookup(Reg table, Reg index) { return _mm_shuffle_epi8(table, index); }
    static VKP_INLINE Reg ShiftRight16(Reg v, int n) { return _mm_srli_epi16(v, n); }
    static VKP_INLINE Reg ShiftLeft16(Reg v, int n) { return _mm_slli_epi16(v, n); }
    static VKP_INLINE Reg ShiftLeft32(Reg v, int n) { return _mm_slli_epi32(v, n); }
    // kBytes / 2 bytes from p zero-extended to 16-bit lanes, in order.
    static VKP_INLINE Reg LoadWiden8(const void* p) {
        return _mm_unpacklo_epi8(_mm_loadl_epi64(static_cast<const Reg*>(p)), _mm_setzero_si128());
    }
    // The 16-bit lanes of a, then b (each below 0x100), as bytes in order.
    static VKP_INLINE Reg Narrow16(Reg a, Reg b) { return _mm_packus_epi16(a, b); }
    // 8u units widened to 16u, from the low and the high half of the vector
    // (of each 16-byte lane).
    static VKP_INLINE Reg WidenLow(Reg v) { return _mm_unpacklo_epi8(v, _mm_setzero_si128()); }
    static VKP_INLINE Reg WidenHigh(Reg v) { return _mm_unpackhi_epi8(v, _mm_setzero_si128()); }
    // Signed 16-bit products, adjacent pairs summed into 32-bit lanes.
    static VKP_INLINE Reg MulAddPairs(Reg a, Reg b) { return _mm_madd_epi16(a, b); }
    static VKP_INLINE Reg Add32(Reg a, Reg b) { return _mm_add_epi32(a, b); }
    static VKP_INLINE uint32_t Sum32(Reg v) {
        v = _mm_add_epi32(v, _mm_shuffle_epi32(v, 0x4E));
        v = _mm_add_epi32(v, _mm_shuffle_epi32(v, 0xB1));
        return uint32_t(_mm_cvtsi128_si32(v));
    }
};

// Unit-type view of a width: splat, compare, and which mask bits stand for
// whole units.
template <class V, class T>
struct Units;

template <class V>
struct Units<V, u8> {
    static constexpr int kPerVector = V::kBytes;
    static constexpr uint32_t kLaneBits = V::kAllBytes;  // one mask bit per unit
    static VKP_INLINE typename V::Reg Splat(u8 v) { return V::template Splat<u8>(v); }
    static VKP_INLINE typename V::Reg Equal(typename V::Reg a, typename V::Reg b) { return V::template Equal<u8>(a, b); }
};

template <class V>
struct Units<V, u16> {
    static constexpr int kPerVector = V::kBytes / 2;
    static constexpr uint32_t kLaneBits = V::kAllBytes & 0x55555555u;  // the low mask bit of each unit
    static VKP_INLINE typename V::Reg Splat(u16 v) { return V::template Splat<u16>(v); }
    static VKP_INLINE typename V::Reg Equal(typename V::Reg a, typename V::Reg b) { return V::template Equal<u16>(a, b); }
};

// Byte-equality mask of a compare result, reduced to one bit per unit.
template <class V, class T>
VKP_INLINE uint32_t HitMask(typename V::Reg eq) {
    return V::ByteMask(eq) & Units<V, T>::kLaneBits;
}

VKP_INLINE int LowestBit(uint32_t m) { return __builtin_ctz(m); }
VKP_INLINE int LowestBit(uint64_t m) { return __builtin_ctzll(m); }
VKP_INLINE int HighestBit(uint32_t m) { return 31 - __builtin_clz(m); }

// Writes one code unit at any address (a 16u string may start at an odd one).
template <class T>
VKP_INLINE void StoreUnit(T* p, T v) { __builtin_memcpy(p, &v, sizeof(T)); }

}  // namespace vkp::kernels
