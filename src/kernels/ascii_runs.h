// Runs of ASCII for the UTF converters: bytes below 0x80 widened to 16-bit
// units, and units below 0x80 narrowed to bytes, a vector of source at a
// time, stopping before the first vector that holds anything else. kSwap
// writes (or reads) the units byte-swapped. Only whole vectors are taken,
// so nothing outside the given counts is read or written.
#pragma once

#include "kernels/simd_units.h"

namespace vkp::kernels {

namespace ascii_detail {

template <class V, bool kSwap>
VKP_INLINE typename V::Reg SwapIf(typename V::Reg v) {
    if constexpr (kSwap) return V::Or(V::ShiftLeft16(v, 8), V::ShiftRight16(v, 8));
    else return v;
}

// How many leading bytes of s, at most n, were widened into d.
template <class V, bool kSwap>
int Widen(const u8* s, u16* d, int n) {
    constexpr int B = V::kBytes;
    int i = 0;
    for (; i + B <= n && V::ByteMask(V::LoadU(s + i)) == 0; i += B) {
        typename V::Reg lo = V::LoadWiden8(s + i), hi = V::LoadWiden8(s + i + B / 2);
        if constexpr (kSwap) lo = V::ShiftLeft16(lo, 8), hi = V::ShiftLeft16(hi, 8);
        V::StoreU(d + i, lo), V::StoreU(d + i + B / 2, hi);
    }
    return i;
}

// How many leading units of s, at most n, were narrowed into d.
template <class V, bool kSwap>
int Narrow(const u16* s, u8* d, int n) {
    constexpr int B = V::kBytes;
    const typename V::Reg high = V::Splat16(0xFF80);
    int i = 0;
    for (; i + B <= n; i += B) {
        const typename V::Reg a = SwapIf<V, kSwap>(V::LoadU(s + i)), b = SwapIf<V, kSwap>(V::LoadU(s + i + B / 2));
        if (!V::IsZero(V::And(V::Or(a, b), high))) break;
        V::StoreU(d + i, V::Narrow16(a, b));
    }
    return i;
}

}  // namespace ascii_detail

// The forms in the width list (kernels/kernel_list.inc), little-endian
// units and byte-swapped ones.
template <class V>
int WidenAscii(const u8* s, u16* d, int n) {
    return ascii_detail::Widen<V, false>(s, d, n);
}

template <class V>
int WidenAsciiSwapped(const u8* s, u16* d, int n) {
    return ascii_detail::Widen<V, true>(s, d, n);
}

template <class V>
int NarrowAscii(const u16* s, u8* d, int n) {
    return ascii_detail::Narrow<V, false>(s, d, n);
}

template <class V>
int NarrowAsciiSwapped(const u16* s, u8* d, int n) {
    return ascii_detail::Narrow<V, true>(s, d, n);
}

}  // namespace vkp::kernels
