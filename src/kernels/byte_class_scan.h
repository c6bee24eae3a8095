// Byte scans of the regular-expression matcher over a vector width V: the
// first (or last) byte of s[0, len) that passes a test made for one vector
// at a time: a letter in either case, one of four bytes, a member or a
// non-member of an ASCII set given as nibble tables.
//
// Whole vectors from the scan's starting end, then one vector flush with the
// other end (its bytes already tested held no hit, so a hit in it is new).
// Strings shorter than one vector go to the narrower width, and below 16
// bytes byte by byte. Nothing outside [s, s + len) is read.
#pragma once

#include "kernels/simd_units.h"

namespace vkp::kernels {

namespace scan_detail {

// (c | 0x20) == lower: a lower-case letter's occurrences in either case.
template <class V>
struct Folded {
    using Reg = typename V::Reg;
    Reg fold, want;
    u8 lower;
    explicit Folded(u8 l) : fold(V::Splat8(0x20)), want(V::Splat8(l)), lower(l) {}
    VKP_INLINE uint32_t Hits(Reg x) const { return V::ByteMask(V::Equal8(V::Or(x, fold), want)); }
    VKP_INLINE bool Unit(u8 c) const { return (c | 0x20) == lower; }
};

// One of four bytes.
template <class V>
struct AnyOf4 {
    using Reg = typename V::Reg;
    Reg b0, b1, b2, b3;
    const u8* bytes;
    explicit AnyOf4(const u8* b)
        : b0(V::Splat8(b[0])), b1(V::Splat8(b[1])), b2(V::Splat8(b[2])), b3(V::Splat8(b[3])), bytes(b) {}
    VKP_INLINE uint32_t Hits(Reg x) const {
        return V::ByteMask(V::Or(V::Or(V::Equal8(x, b0), V::Equal8(x, b1)), V::Or(V::Equal8(x, b2), V::Equal8(x, b3))));
    }
    VKP_INLINE bool Unit(u8 c) const { return c == bytes[0] || c == bytes[1] || c == bytes[2] || c == bytes[3]; }
};

// A member (kMember) or a non-member of the ASCII set whose byte c is in it
// when low[c & 15] has bit c >> 4 set: the low nibble picks a mask of high
// nibbles from the table, the high nibble picks its own bit (none for bytes
// at or above 128, which are never members).
template <class V, bool kMember>
struct Nibbles {
    using Reg = typename V::Reg;
    static constexpr u8 kBitOf[16] = {1, 2, 4, 8, 16, 32, 64, 128, 0, 0, 0, 0, 0, 0, 0, 0};
    Reg table, bitOf, low4;
    const u8* low;
    explicit Nibbles(const u8* l) : table(V::Table(l)), bitOf(V::Table(kBitOf)), low4(V::Splat8(0x0F)), low(l) {}
    VKP_INLINE uint32_t Hits(Reg x) const {
        const Reg lo = V::Lookup(table, V::And(x, low4));
        const Reg hi = V::Lookup(bitOf, V::And(V::ShiftRight16(x, 4), low4));
        const uint32_t misses = V::ByteMask(V::Equal8(V::And(lo, hi), V::Zero()));
        return kMember ? misses ^ V::kAllBytes : misses;
    }
    VKP_INLINE bool Unit(u8 c) const { return (c < 128 && ((low[c & 15] >> (c >> 4)) & 1)) == kMember; }
};

template <template <class> class Test, class V, class Arg>
int ScanFwd(const u8* s, int len, Arg arg) {
    constexpr int B = V::kBytes;
    if (len < B) {
        if constexpr (V::kHasNarrower) {
            return ScanFwd<Test, typename V::Narrower>(s, len, arg);
        } else {
            const Test<V> t(arg);
            for (int i = 0; i < len; ++i)
                if (t.Unit(s[i])) return i;
            return -1;
        }
    }
    const Test<V> t(arg);
    int i = 0;
    for (; i + B <= len; i += B)
        if (const uint32_t m = t.Hits(V::LoadU(s + i))) return i + LowestBit(m);
    if (i == len) return -1;
    const uint32_t m = t.Hits(V::LoadU(s + len - B));
    return m ? len - B + LowestBit(m) : -1;
}

template <template <class> class Test, class V, class Arg>
int ScanRev(const u8* s, int len, Arg arg) {
    constexpr int B = V::kBytes;
    if (len < B) {
        if constexpr (V::kHasNarrower) {
            return ScanRev<Test, typename V::Narrower>(s, len, arg);
        } else {
            const Test<V> t(arg);
            for (int i = len - 1; i >= 0; --i)
                if (t.Unit(s[i])) return i;
            return -1;
        }
    }
    const Test<V> t(arg);
    int i = len;
    for (; i >= B; i -= B)
        if (const uint32_t m = t.Hits(V::LoadU(s + i - B))) return i - B + HighestBit(m);
    if (i == 0) return -1;
    const uint32_t m = t.Hits(V::LoadU(s));
    return m ? HighestBit(m) : -1;
}

template <class V>
using Members = Nibbles<V, true>;
template <class V>
using NonMembers = Nibbles<V, false>;

}  // namespace scan_detail

// The forms in the width list (kernels/kernel_list.inc). Each returns the
// index of the first (last, for the Rev form) byte found, or -1.

// A lower-case letter `lower` in either case (or, for other bytes b,
// those with b | 0x20 == lower).
template <class V>
int FindFoldedFwd(const u8* s, int len, u8 lower) {
    return scan_detail::ScanFwd<scan_detail::Folded, V>(s, len, lower);
}

template <class V>
int FindFoldedRev(const u8* s, int len, u8 lower) {
    return scan_detail::ScanRev<scan_detail::Folded, V>(s, len, lower);
}

// Any of the four bytes at `bytes`.
template <class V>
int FindAnyOf4(const u8* s, int len, const u8* bytes) {
    return scan_detail::ScanFwd<scan_detail::AnyOf4, V>(s, len, bytes);
}

// A member, or (FindNonMember) a non-member, of the ASCII set given by its
// 16-byte nibble table `low`.
template <class V>
int FindMember(const u8* s, int len, const u8* low) {
    return scan_detail::ScanFwd<scan_detail::Members, V>(s, len, low);
}

template <class V>
int FindNonMember(const u8* s, int len, const u8* low) {
    return scan_detail::ScanFwd<scan_detail::NonMembers, V>(s, len, low);
}

}  // namespace vkp::kernels
