// 32-byte vectors (AVX2), the wide counterpart of Vec128. Included only by
// sources compiled with -mavx2; the kernels they instantiate run only when
// the feature mask reported AVX2 at attach.
#pragma once

#include <immintrin.h>

#include "kernels/simd_units.h"

namespace vkp::kernels {

// The 16-byte width as the AVX2 sources compile it: a type of its own, so that
// its template instances, compiled for AVX2, never stand in for the
// baseline's instances of Vec128 at link time.
struct Vec128InAvx2 : Vec128 {};

struct Vec256 : UnitOps<Vec256> {
    using Reg = __m256i;
    using PairMask = uint64_t;
    static constexpr int kBytes = 32;
    static constexpr bool kHasNarrower = true;
    using Narrower = Vec128InAvx2;  // strings shorter than one 32-byte vector
    static constexpr uint32_t kAllBytes = 0xFFFFFFFFu;
    static VKP_INLINE Reg LoadU(const void* p) { return _mm256_loadu_si256(static_cast<const Reg*>(p)); }
    static VKP_INLINE Reg LoadA(const void* p) { return _mm256_load_si256(static_cast<const Reg*>(p)); }
    static VKP_INLINE void StoreU(void* p, Reg v) { _mm256_storeu_si256(static_cast<Reg*>(p), v); }
    static VKP_INLINE void StoreA(void* p, Reg v) { _mm256_store_si256(static_cast<Reg*>(p), v); }
    // As two 16-byte halves: the Windows build admits no aligned 32-byte
    // moves, and streaming is bound by memory, not by the store width.
    static VKP_INLINE void StoreStream(void* p, Reg v) {
        _mm_stream_si128(static_cast<__m128i*>(p), _mm256_castsi256_si128(v));
        _mm_stream_si128(static_cast<__m128i*>(p) + 1, _mm256_extracti128_si256(v, 1));
    }
    static VKP_INLINE void StreamFence() { _mm_sfence(); }
    static VKP_INLINE Reg Table(const u8* p16) {
        return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p16)));
    }
    static VKP_INLINE void StoreTable(u8* p16, Reg v) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p16), _mm256_castsi256_si128(v));
    }
    static VKP_INLINE Reg Zero() { return _mm256_setzero_si256(); }
    static VKP_INLINE bool IsZero(Reg v) { return _mm256_testz_si256(v, v); }
    static VKP_INLINE Reg Or(Reg a, Reg b) { return _mm256_or_si256(a, b); }
    static VKP_INLINE Reg And(Reg a, Reg b) { return _mm256_and_si256(a, b); }
    static VKP_INLINE Reg Xor(Reg a, Reg b) { return _mm256_xor_si256(a, b); }
    static VKP_INLINE uint32_t ByteMask(Reg a) { return uint32_t(_mm256_movemask_epi8(a)); }

    static VKP_INLINE Reg Splat8(u8 v) { return _mm256_set1_epi8(char(v)); }
    static VKP_INLINE Reg Splat16(u16 v) { return _mm256_set1_epi16(short(v)); }
    static VKP_INLINE Reg Equal8(Reg a, Reg b) { return _mm256_cmpeq_epi8(a, b); }
    static VKP_INLINE Reg Equal16(Reg a, Reg b) { return _mm256_cmpeq_epi16(a, b); }
    static VKP_INLINE Reg Greater8(Reg a, Reg b) { return _mm256_cmpgt_epi8(a, b); }
    static VKP_INLINE Reg Greater16(Reg a, Reg b) { return _mm256_cmpgt_epi16(a, b); }
    static VKP_INLINE Reg Add8(Reg a, Reg b) { return _mm256_add_epi8(a, b); }
    static VKP_INLINE Reg Add16(Reg a, Reg b) { return _mm256_add_epi16(a, b); }
    static VKP_INLINE Reg Lookup(Reg table, Reg index) { return _mm256_shuffle_epi8(table, index); }
    static VKP_INLINE Reg ShiftRight16(Reg v, int n) { return _mm256_srli_epi16(v, n); }
    static VKP_INLINE Reg ShiftLeft16(Reg v, int n) { return _mm256_slli_epi16(v, n); }
    static VKP_INLINE Reg LoadWiden8(const void* p) { return _mm256_cvtepu8_epi16(_mm_loadu_si128(static_cast<const __m128i*>(p))); }
    // The pack works within 16-byte lanes; the quarter swap puts them in order.
    static VKP_INLINE Reg Narrow16(Reg a, Reg b) { return _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), 0xD8); }
    static VKP_INLINE Reg ShiftLeft32(Reg v, int n) { return _mm256_slli_epi32(v, n); }
    // The hash's widening and summing members are left out: its power table
    // is laid out for 16-byte vectors.
};

}  // namespace vkp::kernels
