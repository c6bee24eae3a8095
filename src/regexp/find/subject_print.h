// What a pattern set examines once per search: the bytes a subject holds
// and the pairs of adjacent bytes, ASCII letters folded to lower case and
// pairs kept on seven bits a byte (a superset: bytes at or above 0x80 share
// their pairs with ASCII ones), in tables indexed by the byte or pair. Each pattern keeps in its analysis up to kMaxNeeds bytes or pairs
// its search needs before it starts the matcher or finds a literal; a
// subject without one of them gives that pattern's no-match result, and
// the pattern is not searched.
//
// A set reads these needs from the pattern's first cache line: group id 0's
// entry of the group table, which the table never uses, keeps a copy beside
// the header words it was made for.
#pragma once

#include "regexp/compile/state.h"

namespace vkp::regexp {

constexpr int kMaxNeeds = 4;
constexpr int kByteKey = 1 << 14;  // pair keys lie below, byte keys from here
constexpr int kPairBytes = kByteKey / 8;

// A bit per pair, then a byte per byte value (1 when the subject holds it).
struct SubjectPrint {
    alignas(32) u8 bits[kPairBytes + 256];
};

// The key of a need, and where the print holds it.
int NeedOfByte(u8 b);
int NeedOfPair(u8 first, u8 second);
VKP_INLINE int NeedAt(int key) { return key < kByteKey ? key >> 3 : kPairBytes + (key - kByteKey); }
VKP_INLINE u8 NeedMask(int key) { return key < kByteKey ? u8(1u << (key & 7)) : u8(1); }

// Adds to needs[0, *count) the pairs of a literal the search needs, the
// rarest first, up to kMaxNeeds; or a byte.
constexpr int kMaxLiteralPairs = 64;  // pairs looked at, from the literal's start
void AddLiteralNeeds(const u8* lit, int n, bool caseless, u16* needs, u8* count);
void AddByteNeed(u8 b, u16* needs, u8* count);

// Examines the subject (len >= 1).
void BuildPrint(const u8* s, int len, SubjectPrint* print);

// Group id 0's entry: valid while its stamp is set and the header words
// match (the compiler clears the stamp, see ClearAnalysisStamp). The words
// follow the stamp as they follow the magic word in the header, so that
// the test compares them in two loads.
struct SetEntry {
    u32 stamp;  // kSetEntryStamp plus the header's pattern kind
    u32 options;
    int count;
    int groupCount;
    int lastLiteralIndex;
    u16 at[kMaxNeeds];   // byte of the print and bit in it of each need;
    u8 mask[kMaxNeeds];  // unused ones repeat the first, mask[0] 0 for none
};
static_assert(sizeof(SetEntry) == kSetEntryBytes);
static_assert(offsetof(RegExpState, workArea) == 32 && offsetof(RegExpState, lastLiteralIndex) == 16);

constexpr u32 kSetEntryStamp = 0x5E7E4D01;

VKP_INLINE const SetEntry* KeptSetEntry(const RegExpState* s) {
    auto* e = reinterpret_cast<const SetEntry*>(s->workArea);
    uint64_t h[2], k[2];
    __builtin_memcpy(h, &s->options, 16);
    __builtin_memcpy(k, &e->options, 16);
    return ((h[0] ^ k[0]) | (h[1] ^ k[1])) == 0 && e->stamp == kSetEntryStamp + u32(s->patternKind) ? e : nullptr;
}

// The entry for the pattern compiled at `state`, made now from its
// analysis when none is kept.
const SetEntry* SetEntryFor(RegExpState* state);

// True when the search of the pattern on the printed subject ends without
// a match and without starting the matcher, as its needs show: its result
// is then status 0 and no record.
// The rarest need first: most subjects lack it, and the others are then
// not looked at.
VKP_INLINE bool PrintRulesOut(const SetEntry& e, const SubjectPrint& p) {
    if (!(p.bits[e.at[0]] & e.mask[0])) return true;
    bool all = true;
    for (int k = 1; k < kMaxNeeds; ++k) all &= (p.bits[e.at[k]] & e.mask[k]) != 0;
    return !all;
}

}  // namespace vkp::regexp
