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

struct Vec256 {
    using Reg = __m256i;
    using PairMask = uint64_t;
    static constexpr int kBytes = 32;
    static constexpr bool kHasNarrower = true;
    using Narrower = Vec128InAvx2;  // strings shorter than one 32-byte vector
    static constexpr uint32_t kAllBytes = 0xFFFFFFFFu;
    static VKP_INLINE Reg LoadU(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
    static VKP_INLINE Reg LoadA(const void* p) { return _mm256_load_si256(static_cast<const __m256i*>(p)); }
    static VKP_INLINE Reg Splat8(u8 v) { return _mm256_set1_epi8(char(v)); }
    static VKP_INLINE Reg Splat16(u16 v) { return _mm256_set1_epi16(short(v)); }
    static VKP_INLINE Reg Equal8(Reg a, Reg b) { return _mm256_cmpeq_epi8(a, b); }
    static VKP_INLINE Reg Equal16(Reg a, Reg b) { return _mm256_cmpeq_epi16(a, b); }
    static VKP_INLINE Reg Or(Reg a, Reg b) { return _mm256_or_si256(a, b); }
    static VKP_INLINE Reg And(Reg a, Reg b) { return _mm256_and_si256(a, b); }
    static VKP_INLINE uint32_t ByteMask(Reg a) { return uint32_t(_mm256_movemask_epi8(a)); }
};

}  // namespace vkp::kernels
