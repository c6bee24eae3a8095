// Search for the first (last) unit that belongs to a set of units.
//
// The scan is one loop over blocks of V::kBytes, four blocks per step, with a
// membership test that turns a block into a mask of member units; the final
// partial block is taken flush with the end of the string (its units before
// the end were already tested and held no member, so the lowest hit in it is
// still the first). Strings shorter than one block are tested unit by unit.
// Nothing outside [s, s + len) is read.
//
// Membership tests:
// - 8u, any set: two 16-entry tables indexed by a byte's low four bits, one
//   for bytes below 128 and one for the rest; entry bit (byte >> 4) & 7 marks
//   a member. Two or three shuffles and a compare per block, whatever the
//   set size. A set of one member uses the single-unit search.
// - 16u, up to kSplatMembers members: each member broadcast, the block
//   compared against every one.
// - 16u, larger sets: a 65536-bit presence map on the stack, units tested one
//   by one; for short strings, where clearing the map would cost more than
//   it saves, every unit is compared with every member.
#pragma once

#include "kernels/active.h"
#include "kernels/unit_search.h"
#include "kernels/vec16.h"

namespace vkp::kernels {

namespace detail {

// Tests four blocks from p into h; non-zero when any unit is a member.
template <class T, class V, class Test>
VKP_INLINE u32 Test4(const T* p, const Test& t, typename V::Reg* h) {
    constexpr int per = V::kBytes / int(sizeof(T));
    for (int k = 0; k < 4; ++k) h[k] = t.Vector(V::Load(p + k * per));
    return V::ByteMask(V::Or(V::Or(h[0], h[1]), V::Or(h[2], h[3])));
}

}  // namespace detail

// Unit by unit.
template <bool kReverse, class T, class Test>
int ScanUnits(const T* s, int len, const Test& t) {
    if constexpr (kReverse) {
        for (int i = len - 1; i >= 0; --i)
            if (t.Unit(LoadUnit(s + i))) return i;
    } else {
        for (int i = 0; i < len; ++i)
            if (t.Unit(LoadUnit(s + i))) return i;
    }
    return -1;
}

// Index of the first unit of s[0, len) for which the test holds, or -1.
template <class T, class V, class Test>
int ScanFwd(const T* s, int len, const Test& t) {
    constexpr int per = V::kBytes / int(sizeof(T));
    if (len < per) return ScanUnits<false>(s, len, t);
    int i = 0;
    for (typename V::Reg h[4]; i + 4 * per <= len; i += 4 * per) {
        if (detail::Test4<T, V>(s + i, t, h)) {
            for (int k = 0;; ++k)
                if (u32 m = V::ByteMask(h[k])) return i + k * per + LowBit(m) / int(sizeof(T));
        }
    }
    for (; i + per <= len; i += per)
        if (u32 m = V::ByteMask(t.Vector(V::Load(s + i)))) return i + LowBit(m) / int(sizeof(T));
    if (i < len) {
        if (u32 m = V::ByteMask(t.Vector(V::Load(s + len - per)))) return len - per + LowBit(m) / int(sizeof(T));
    }
    return -1;
}

// Index of the last unit of s[0, len) for which the test holds, or -1.
template <class T, class V, class Test>
int ScanRev(const T* s, int len, const Test& t) {
    constexpr int per = V::kBytes / int(sizeof(T));
    if (len < per) return ScanUnits<true>(s, len, t);
    int i = len;
    for (typename V::Reg h[4]; i - 4 * per >= 0; i -= 4 * per) {
        if (detail::Test4<T, V>(s + i - 4 * per, t, h)) {
            for (int k = 3;; --k)
                if (u32 m = V::ByteMask(h[k])) return i - (4 - k) * per + HighBit(m) / int(sizeof(T));
        }
    }
    for (; i - per >= 0; i -= per)
        if (u32 m = V::ByteMask(t.Vector(V::Load(s + i - per)))) return i - per + HighBit(m) / int(sizeof(T));
    if (i > 0) {
        if (u32 m = V::ByteMask(t.Vector(V::Load(s)))) return HighBit(m) / int(sizeof(T));
    }
    return -1;
}

// Any set of bytes as two nibble tables. A shuffle yields zero for an index
// byte with its top bit set, so the table of low members answers 0 for bytes
// of 128 and above, and the table of high members, indexed by the byte with
// its top bit flipped, answers 0 for the others; that second lookup is
// needed only when some member is 128 or above (kHigh).
template <class V>
struct ByteSetTables {
    static constexpr int kRegisterBuild = 16;
    using Reg = typename V::Reg;
    // Entries 0..15: the table of members below 128; 16..31: the others.
    alignas(16) u8 entry[32] = {};
    Reg tLow, tHigh, bits, nibble, top;

    static VKP_INLINE int Entry(u8 c) { return ((c >> 3) & 16) | (c & 15); }
    static VKP_INLINE u8 Bit(u8 c) { return u8(1u << ((c >> 4) & 7)); }

    ByteSetTables(const u8* set, int n) {
        static constexpr u8 kBits[16] = {1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128};
        static constexpr u8 kIndex[16] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
        if (n <= kRegisterBuild) {
            // Built in registers: loading tables just written byte by byte
            // would stall longer than a short search takes.
            const Reg index = V::Table(kIndex);
            tLow = tHigh = V::Zero();
            for (int k = 0; k < n; ++k) {
                const u8 c = set[k];
                const Reg hit = V::And(V::template Equal<u8>(index, V::template Splat<u8>(u8(c & 15))), V::template Splat<u8>(Bit(c)));
                if (c & 0x80) tHigh = V::Or(tHigh, hit);
                else tLow = V::Or(tLow, hit);
            }
            V::Store(entry, tLow), V::Store(entry + 16, tHigh);
        } else {
            for (int k = 0; k < n; ++k) entry[Entry(set[k])] |= Bit(set[k]);
            tLow = V::Table(entry), tHigh = V::Table(entry + 16);
        }
        bits = V::Table(kBits);
        nibble = V::template Splat<u8>(0x0F), top = V::template Splat<u8>(0x80);
    }
    bool HasHigh() const { return !V::IsZero(tHigh); }
    VKP_INLINE bool Unit(u8 c) const { return entry[Entry(c)] & Bit(c); }
    template <bool kHigh>
    VKP_INLINE Reg Vector(Reg x) const {
        Reg row = V::Lookup(tLow, x);
        if constexpr (kHigh) row = V::Or(row, V::Lookup(tHigh, V::Xor(x, top)));
        const Reg bit = V::Lookup(bits, V::And(V::ShiftRight16(x, 4), nibble));
        return V::template Equal<u8>(V::And(row, bit), bit);
    }
};

template <class V, bool kHigh>
struct ByteSetTest {
    const ByteSetTables<V>& t;
    VKP_INLINE bool Unit(u8 c) const { return t.Unit(c); }
    VKP_INLINE typename V::Reg Vector(typename V::Reg x) const { return t.template Vector<kHigh>(x); }
};

constexpr int kSplatMembers = 8;

// Members tested one after another.
template <class T>
struct MemberList {
    const T* set;
    int n;
    VKP_INLINE bool Unit(T c) const {
        for (int k = 0; k < n; ++k)
            if (LoadUnit(set + k) == c) return true;
        return false;
    }
};

// A few members, each broadcast.
template <class T, class V>
struct SplatSetTest : MemberList<T> {
    using Reg = typename V::Reg;
    Reg member[kSplatMembers];

    SplatSetTest(const T* s, int count) : MemberList<T>{s, count} {
        for (int k = 0; k < count; ++k) member[k] = V::template Splat<T>(LoadUnit(s + k));
    }
    VKP_INLINE Reg Vector(Reg x) const {
        Reg hit = V::template Equal<T>(x, member[0]);
        for (int k = 1; k < this->n; ++k) hit = V::Or(hit, V::template Equal<T>(x, member[k]));
        return hit;
    }
};

// Any set of 16u units as a presence map.
struct UnitMapTest {
    alignas(16) u32 word[65536 / 32];

    UnitMapTest(const u16* set, int n) {
        for (u32& w : word) w = 0;
        for (int k = 0; k < n; ++k) {
            const u16 c = LoadUnit(set + k);
            word[c >> 5] |= 1u << (c & 31);
        }
    }
    VKP_INLINE bool Unit(u16 c) const { return (word[c >> 5] >> (c & 31)) & 1; }
};

template <bool kReverse, class V, class T, class Test>
VKP_INLINE int Scan(const T* s, int len, const Test& t) {
    if constexpr (kReverse) return ScanRev<T, V>(s, len, t);
    else return ScanFwd<T, V>(s, len, t);
}

// A one-member set is a character search, run by the loaded width's kernel.
template <bool kReverse, class T>
VKP_INLINE int FindOneUnit(const T* s, int len, T v) {
    int i = -1;
    if (kReverse) active::FindUnitRevInto(s, len, v, &i);
    else active::FindUnitFwdInto(s, len, v, &i);
    return i;
}

// Index of the first (kReverse: last) unit of s[0, len) that occurs in
// set[0, n), or -1. len and n are at least 1.
template <bool kReverse, class V = Vec16>
int FindAnyUnit(const u8* s, int len, const u8* set, int n) {
    if (n == 1) return FindOneUnit<kReverse>(s, len, set[0]);
    const ByteSetTables<V> tables(set, n);
    if (tables.HasHigh()) return Scan<kReverse, V>(s, len, ByteSetTest<V, true>{tables});
    return Scan<kReverse, V>(s, len, ByteSetTest<V, false>{tables});
}

template <bool kReverse, class V = Vec16>
int FindAnyUnit(const u16* s, int len, const u16* set, int n) {
    if (n == 1) {
        return FindOneUnit<kReverse>(s, len, u16(LoadUnit(set)));
    }
    if (n <= kSplatMembers) return Scan<kReverse, V>(s, len, SplatSetTest<u16, V>(set, n));
    // Clearing the map costs about as much as a few hundred unit-member
    // comparisons.
    if (int64_t(len) * n <= 256) return ScanUnits<kReverse>(s, len, MemberList<u16>{set, n});
    return ScanUnits<kReverse>(s, len, UnitMapTest(set, n));
}

}  // namespace vkp::kernels
