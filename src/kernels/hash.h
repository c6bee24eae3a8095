// The three 32-bit string hashes (unsigned arithmetic, wrapping).
#pragma once

#include "kernels/vec16.h"

namespace vkp::kernels {

// h = (h << 1) ^ c over the string. A unit 32 or more places before the end
// is shifted out entirely, so only the last 32 units are read, each shifted
// by its distance from the end (independent terms instead of a chain).
template <class T>
u32 HashShiftXor(const T* s, int len) {
    const int n = len < 32 ? len : 32;
    u32 h = 0;
    for (int k = 0; k < n; ++k) h ^= u32(LoadUnit(s + (len - 1 - k))) << k;
    return h;
}

// h = h * 33 ^ c, seeded with 5381, ending at the first zero unit.
template <class T>
u32 HashMulXor(const T* s, int len) {
    u32 h = 5381;
    for (int i = 0; i < len; ++i) {
        const u32 c = LoadUnit(s + i);
        if (c == 0) break;
        h = ((h << 5) + h) ^ c;
    }
    return h;
}

// h = h * 31 + c. The value is the polynomial sum of c[i] * 31^(len-1-i), so
// a step of kStep units adds the dot product of those units with the powers
// 31^(kStep-1) .. 31^0 to h * 31^kStep. The dot product runs on signed 16-bit
// multiplies: each power w (mod 2^32) is split into 16-bit halves with
// w = lo + 65536 * hi (lo taken signed, hi absorbing its borrow), so that
// c * w = c * lo + 65536 * c * hi modulo 2^32. A 16u unit of 0x8000 or more
// is read signed, c - 65536; the missing 65536 * lo is added to the high
// half's sum.
namespace detail {

constexpr int kHashStep = 16;

struct PowerHalves {
    alignas(16) int16_t lo[kHashStep];
    alignas(16) int16_t hi[kHashStep];
    u32 stepPower;  // 31^kHashStep
};

constexpr PowerHalves MakePowerHalves() {
    PowerHalves p{};
    u32 w = 1;
    for (int k = kHashStep - 1; k >= 0; --k) {
        const int16_t lo = int16_t(w & 0xFFFF);
        p.lo[k] = lo;
        p.hi[k] = int16_t(((w - u32(int32_t(lo))) >> 16) & 0xFFFF);
        w *= 31;
    }
    p.stepPower = w;
    return p;
}

inline constexpr PowerHalves kPowers = MakePowerHalves();

// The dot product of eight units (16-bit lanes) with eight powers.
template <class T, class V>
VKP_INLINE typename V::Reg DotPowers(typename V::Reg c, int at) {
    const auto lo = V::Load(kPowers.lo + at), hi = V::Load(kPowers.hi + at);
    auto high = V::MulAddPairs(c, hi);
    if constexpr (sizeof(T) == 2) high = V::Add32(high, V::MulAddPairs(V::ShiftRight16(c, 15), lo));
    return V::Add32(V::MulAddPairs(c, lo), V::ShiftLeft32(high, 16));
}

// The dot product of kStep units from s with 31^(kStep-1) .. 31^0.
template <class T, class V>
VKP_INLINE u32 StepSum(const T* s) {
    static_assert(V::kBytes == 16, "the power table is laid out for 16-byte vectors");
    typename V::Reg c0, c1;
    if constexpr (sizeof(T) == 1) {
        const auto x = V::Load(s);
        c0 = V::WidenLow(x), c1 = V::WidenHigh(x);
    } else {
        c0 = V::Load(s), c1 = V::Load(s + 8);
    }
    return V::Sum32(V::Add32(DotPowers<T, V>(c0, 0), DotPowers<T, V>(c1, 8)));
}

}  // namespace detail

template <class T, class V = Vec16>
u32 HashMulAdd(const T* s, int len) {
    using namespace detail;
    constexpr u32 k1 = kPowers.stepPower, k2 = k1 * k1;
    u32 h = 0;
    int i = 0;
    for (; i + 2 * kHashStep <= len; i += 2 * kHashStep)
        h = h * k2 + StepSum<T, V>(s + i) * k1 + StepSum<T, V>(s + i + kHashStep);
    for (; i + kHashStep <= len; i += kHashStep) h = h * k1 + StepSum<T, V>(s + i);
    for (; i < len; ++i) h = h * 31 + LoadUnit(s + i);
    return h;
}

}  // namespace vkp::kernels
