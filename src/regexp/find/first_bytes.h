// The bytes a match can begin with: a start position whose byte is not
// among them cannot match, so the search passes over it without running
// the matcher.
#pragma once

#include "floor/base.h"
#include "regexp/compile/program.h"
#include "regexp/match/literal_scan.h"

namespace vkp::regexp {

struct ByteSet {
    u32 bits[8];
    bool Has(u8 b) const { return (bits[b >> 5] >> (b & 31)) & 1; }
    void Add(u8 b) { bits[b >> 5] |= u32(1) << (b & 31); }
    void AddRange(int lo, int hi) {
        for (int b = lo; b <= hi; ++b) Add(static_cast<u8>(b));
    }
    bool HasHigh() const { return (bits[4] | bits[5] | bits[6] | bits[7]) != 0; }  // a byte at or above 0x80
    int Count() const {  // no popcount builtin: it would pull in a runtime helper
        int n = 0;
        for (int b = 0; b < 256; ++b) n += Has(static_cast<u8>(b));
        return n;
    }
};

// Fills *set with every byte that can begin a match of the program under
// the initial options, and returns true, when every top-level alternative
// consumes at least one byte and its first byte can be worked out; returns
// false otherwise (the program may match empty, or starts with something
// this analysis does not follow).
bool FirstBytes(const Instruction* program, int count, u32 options, ByteSet* set);

// The same for the single item at i, and for the sequence [from, to) of
// one alternative (true when it must consume a character before its end),
// under `options`; bytes are added to *set.
bool ItemFirstBytes(const Instruction* program, int i, u32 options, ByteSet* set);
bool SequenceFirstBytes(const Instruction* program, int from, int to, u32 options, ByteSet* set);

// How the search passes over start positions that cannot match.
struct StartFilter {
    enum Mode : u8 { kNone, kByte, kFolded, kFew, kLiteral, kRunBefore, kAscii, kAny, kLiteralSet, kInnerLiteral, kInnerLiteralSet, kRun };
    Mode mode = kNone;
    u8 byte = 0;  // kByte: the byte; kFolded: the lower-case letter
    u8 few[4] = {};  // kFew: two to four ASCII bytes (repeated to fill)
    u8 caseless = 0;  // kLiteral, kRunBefore, kInnerLiteral: a to z compare as A to Z
    int literalLength = 0;
    const u8* literal = nullptr;  // kLiteral: every match begins with these bytes
    // kInnerLiteral: every match holds the literal innerMin to innerMax
    // bytes from its start (inner_literal.h) and begins with a byte of `set`.
    int innerMin = 0;
    int innerMax = 0;
    // kInnerLiteralSet: the same for the literals leading the alternatives
    // of the group at innerGroup (options in effect there: innerOptions),
    // compiled into `literals` with the rest of the analysis.
    int innerGroup = -1;
    u32 innerOptions = 0;
    NibbleSet nibbles{};  // kAscii, kRun: the set for the vector search
    int runLength = 0;    // kRun: every match begins with this many bytes of the set
    // kRunBefore: every match begins with a run of bytes of `run` (ASCII
    // only) that the literal ends; the search goes from one occurrence of
    // the literal back to the start of the run before it.
    ByteSet run{};
    ByteSet set{};
    // kLiteralSet: every match begins with one of these literals (none
    // begins with a byte at or above 0x80); kInnerLiteralSet: see above.
    const kernels::LiteralSet* literals = nullptr;
};

// The filter for a program searched from every position.
StartFilter MakeStartFilter(const Instruction* program, int count, u32 options);

// The first position from pos on (before end) whose byte the filter lets
// through, stepping as the search does (by whole characters under format
// 1); null when there is none.
const u8* NextCandidate(const StartFilter& f, const u8* pos, const u8* end, int format);

}  // namespace vkp::regexp
