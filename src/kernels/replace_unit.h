// Replace every code unit equal to one value by another, 16 bytes at a
// time: compare with the old value and add the difference to the new one
// under the comparison mask.
// The first block is unaligned, the destination then moves to its next
// 16-byte boundary (overlapping the first block) and the last block sits
// flush with the end. Blocks done twice give the same result again, also
// when src equals dst, since replacing is idempotent.
#pragma once

#include "kernels/simd_units.h"

namespace vkp::kernels {

namespace detail {

// Units equal to the old value get the difference to the new one added
// (modulo the unit width), the others are kept.
template <class T>
VKP_INLINE __m128i Blend(__m128i v, __m128i oldV, __m128i delta) {
    const __m128i eq = Units<Vec128, T>::Equal(v, oldV);
    if constexpr (sizeof(T) == 1) return _mm_add_epi8(v, _mm_and_si128(eq, delta));
    else return _mm_add_epi16(v, _mm_and_si128(eq, delta));
}

}  // namespace detail

template <class T>
void ReplaceUnits(const T* src, T* dst, int len, T oldVal, T newVal) {
    if (len < Units<Vec128, T>::kPerVector) {
        for (int i = 0; i < len; ++i) {
            const T u = LoadUnit(src + i);
            const T r = u == oldVal ? newVal : u;
            __builtin_memcpy(dst + i, &r, sizeof(T));
        }
        return;
    }
    const __m128i o = Units<Vec128, T>::Splat(oldVal), n = Units<Vec128, T>::Splat(T(newVal - oldVal));
    const char* s = reinterpret_cast<const char*>(src);
    char* d = reinterpret_cast<char*>(dst);
    const size_t bytes = size_t(len) * sizeof(T);
    const __m128i last = detail::Blend<T>(Vec128::LoadU(s + bytes - 16), o, n);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d), detail::Blend<T>(Vec128::LoadU(s), o, n));
    // A 16u destination at an odd address cannot be aligned to a unit
    // boundary on 16 bytes; it keeps the first block's offset.
    size_t k = (reinterpret_cast<uintptr_t>(d) % sizeof(T)) ? 16 : 16 - (reinterpret_cast<uintptr_t>(d) & 15);
    for (; k + 64 <= bytes; k += 64) {
        const __m128i a = detail::Blend<T>(Vec128::LoadU(s + k), o, n), b = detail::Blend<T>(Vec128::LoadU(s + k + 16), o, n);
        const __m128i c = detail::Blend<T>(Vec128::LoadU(s + k + 32), o, n), e = detail::Blend<T>(Vec128::LoadU(s + k + 48), o, n);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + k), a);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + k + 16), b);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + k + 32), c);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + k + 48), e);
    }
    for (; k + 16 <= bytes; k += 16) _mm_storeu_si128(reinterpret_cast<__m128i*>(d + k), detail::Blend<T>(Vec128::LoadU(s + k), o, n));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d + bytes - 16), last);
}

}  // namespace vkp::kernels
