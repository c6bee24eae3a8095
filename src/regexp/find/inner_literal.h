// A literal that every match holds a bounded number of bytes from its
// start: the `0x` of `\b0x[0-9a-f]+`, the `:` of `\d{1,2}:\d\d`, the `.` of
// `(?:\d{1,3}\.){3}`. The search finds the literal and starts the matcher
// only where a match could reach it: a start more than `maxBefore` bytes
// before an occurrence, or fewer than `minBefore`, cannot match there.
#pragma once

#include "regexp/compile/program.h"
#include "regexp/find/lead_literals.h"

namespace vkp::regexp {

struct InnerLiteral {
    const u8* bytes = nullptr;
    int length = 0;
    bool caseless = false;
    int minBefore = 0;  // bytes a match holds before the literal, at least
    int maxBefore = 0;  // ... and at most
    int group = -1;     // or the group, at that distance, whose alternatives literals lead
    u32 groupOptions = 0;  // ... and the options in effect at it
};

// The widest distance kept: beyond it each occurrence leaves too many
// starts to try for the search to pay.
constexpr int kInnerReach = 24;

// Finds the first literal (or group of alternatives led by literals) of the
// program's single alternative that every match holds at a distance of at most kInnerReach bytes from its start
// (under either subject format: a character outside ASCII may take up to
// four bytes). False when there is none, or the program has a top-level bar.
bool FindInnerLiteral(const Instruction* program, int count, u32 options, InnerLiteral* out);

// The fewest and most bytes the item at i (without a repeat behind it) can
// take under `options`; false when unbounded or not worked out.
bool ItemByteWidth(const Instruction* program, int i, u32 options, int* min, int* max);

}  // namespace vkp::regexp
