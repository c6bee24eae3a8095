// Replace every code unit equal to one value by another, a vector at a
// time: compare with the old value and add the difference to the new one
// under the comparison mask.
// The first block is unaligned, the destination then moves to its next
// vector boundary (overlapping the first block) and the last block sits
// flush with the end. Blocks done twice give the same result again, also
// when src equals dst, since replacing is idempotent. Strings shorter than
// one vector go to the narrower width, and below 16 bytes unit by unit.
#pragma once

#include "kernels/simd_units.h"

namespace vkp::kernels {

namespace detail {

// Units equal to the old value get the difference to the new one added
// (modulo the unit width), the others are kept.
template <class V, class T>
VKP_INLINE typename V::Reg Blend(typename V::Reg v, typename V::Reg oldV, typename V::Reg delta) {
    return V::template Add<T>(v, V::And(V::template Equal<T>(v, oldV), delta));
}

}  // namespace detail

template <class V, class T>
void ReplaceUnits(const T* src, T* dst, int len, T oldVal, T newVal) {
    constexpr int B = V::kBytes;
    if (len < B / int(sizeof(T))) {
        if constexpr (V::kHasNarrower) {
            return ReplaceUnits<typename V::Narrower>(src, dst, len, oldVal, newVal);
        } else {
            for (int i = 0; i < len; ++i) {
                const T u = LoadUnit(src + i);
                StoreUnit(dst + i, u == oldVal ? newVal : u);
            }
            return;
        }
    }
    using Reg = typename V::Reg;
    const Reg o = V::template Splat<T>(oldVal), n = V::template Splat<T>(T(newVal - oldVal));
    const char* s = reinterpret_cast<const char*>(src);
    char* d = reinterpret_cast<char*>(dst);
    const size_t bytes = size_t(len) * sizeof(T);
    const Reg last = detail::Blend<V, T>(V::LoadU(s + bytes - B), o, n);
    V::StoreU(d, detail::Blend<V, T>(V::LoadU(s), o, n));
    // A 16u destination at an odd address cannot be aligned to a unit
    // boundary on a vector; it keeps the first block's offset.
    size_t k = (reinterpret_cast<uintptr_t>(d) % sizeof(T)) ? B : B - (reinterpret_cast<uintptr_t>(d) & (B - 1));
    for (; k + 4 * B <= bytes; k += 4 * B) {
        const Reg a = detail::Blend<V, T>(V::LoadU(s + k), o, n), b = detail::Blend<V, T>(V::LoadU(s + k + B), o, n);
        const Reg c = detail::Blend<V, T>(V::LoadU(s + k + 2 * B), o, n), e = detail::Blend<V, T>(V::LoadU(s + k + 3 * B), o, n);
        V::StoreU(d + k, a), V::StoreU(d + k + B, b), V::StoreU(d + k + 2 * B, c), V::StoreU(d + k + 3 * B, e);
    }
    for (; k + B <= bytes; k += B) V::StoreU(d + k, detail::Blend<V, T>(V::LoadU(s + k), o, n));
    V::StoreU(d + bytes - B, last);
}

}  // namespace vkp::kernels
