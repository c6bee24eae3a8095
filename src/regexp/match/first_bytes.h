// The bytes a match can begin with: a start position whose byte is not
// among them cannot match, so the search passes over it without running
// the matcher.
#pragma once

#include "frame/base.h"
#include "regexp/compile/program.h"

namespace vkp::regexp {

struct ByteSet {
    u32 bits[8];
    bool Has(u8 b) const { return (bits[b >> 5] >> (b & 31)) & 1; }
    void Add(u8 b) { bits[b >> 5] |= u32(1) << (b & 31); }
    void AddRange(int lo, int hi) {
        for (int b = lo; b <= hi; ++b) Add(static_cast<u8>(b));
    }
    int Count() const {
        int n = 0;
        for (u32 w : bits) n += __builtin_popcount(w);
        return n;
    }
};

// Fills *set with every byte that can begin a match of the program under
// the initial options, and returns true, when every top-level alternative
// consumes at least one byte and its first byte can be worked out; returns
// false otherwise (the program may match empty, or starts with something
// this analysis does not follow).
bool FirstBytes(const Instruction* program, int count, u32 options, ByteSet* set);

}  // namespace vkp::regexp
