// Literal searches of the find driver: forward and backward, exact through
// the search kernels, or ignoring ASCII case.
#pragma once

#include "floor/base.h"

namespace vkp::kernels {
struct LiteralSet;
}

namespace vkp::regexp {

// First (FindLiteral) or last (FindLiteralRev) index at which the n bytes
// of lit occur in s[0, len), or -1. With `caseless`, a to z compare as A to Z.
int FindLiteral(const u8* s, int len, const u8* lit, int n, bool caseless);
int FindLiteralRev(const u8* s, int len, const u8* lit, int n, bool caseless);

// The leftmost index in s[0, len) at which a literal of the compiled set
// begins, or -1; the lowest index among the literals that begin there
// through *which.
int FindLiteralSet(const u8* s, int len, const kernels::LiteralSet* set, int* which);

// First / last index i below len with (s[i] | 0x20) == lower, or -1; for
// a lower-case letter, its occurrences in either case.
int FindFolded(const u8* s, int len, u8 lower);
int FindFoldedRev(const u8* s, int len, u8 lower);

// First index i below len at which s[i] is one of the four bytes, or -1.
int FindAnyOf4(const u8* s, int len, const u8 bytes[4]);

// A set of ASCII bytes as two nibble tables: byte b is in the set when
// low[b & 15] has bit (b >> 4) set, b < 128.
struct NibbleSet {
    u8 low[16];
};

// Puts ASCII byte c into nibble tables of that form.
constexpr void AddNibbleMember(u8* low, int c) { low[c & 15] |= static_cast<u8>(1u << (c >> 4)); }

// First index i below len at which s[i] is in the set, or -1.
int FindInNibbleSet(const u8* s, int len, const NibbleSet& set);

// First index i at which s[i, i + n) are all in the set (within len), or -1.
int FindNibbleRun(const u8* s, int len, const NibbleSet& set, int n);

}  // namespace vkp::regexp
