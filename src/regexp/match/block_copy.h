// Block copy and zero fill for replace and pattern sets: 16-byte moves, then
// the tail by its bits, so no library call is generated. One place to switch
// to the shared copy kernels.
#pragma once

#include <emmintrin.h>

#include "frame/base.h"

namespace vkp::regexp {

// Copies n bytes forward; the regions do not overlap. n may be 0.
VKP_INLINE void CopyForward(const u8* src, u8* dst, int n) {
    for (; n >= 16; n -= 16, src += 16, dst += 16)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(dst), _mm_loadu_si128(reinterpret_cast<const __m128i*>(src)));
    if (n & 8) {
        __builtin_memcpy(dst, src, 8);
        src += 8, dst += 8;
    }
    if (n & 4) {
        __builtin_memcpy(dst, src, 4);
        src += 4, dst += 4;
    }
    if (n & 2) {
        __builtin_memcpy(dst, src, 2);
        src += 2, dst += 2;
    }
    if (n & 1) *dst = *src;
}

// Writes n zero bytes.
VKP_INLINE void ZeroFill(u8* dst, int n) {
    const __m128i zero = _mm_setzero_si128();
    for (; n >= 16; n -= 16, dst += 16) _mm_storeu_si128(reinterpret_cast<__m128i*>(dst), zero);
    const unsigned long long z = 0;
    if (n & 8) {
        __builtin_memcpy(dst, &z, 8);
        dst += 8;
    }
    if (n & 4) {
        __builtin_memcpy(dst, &z, 4);
        dst += 4;
    }
    if (n & 2) {
        __builtin_memcpy(dst, &z, 2);
        dst += 2;
    }
    if (n & 1) *dst = 0;
}

}  // namespace vkp::regexp
