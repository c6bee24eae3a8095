// How the search passes over start positions of a program searched from
// every position, chosen once with the rest of the analysis: the bytes a
// match begins with (first_bytes.h), or a literal every match begins with,
// a literal or literal group every match holds a bounded distance from its
// start, a literal behind a leading run, or a run of class members.
#pragma once

#include "regexp/find/first_bytes.h"

namespace vkp::regexp {

// The first record of the program that is not an anchor.
int FirstAfterAnchors(const Instruction* prog, int count);

// The filter for the program; oneAlternative: it has no top-level bar;
// leadLiteral: every match begins with its first record, a literal. A
// kInnerLiteralSet filter still lacks its compiled set (the analysis places
// it in the block).
StartFilter ChooseStartFilter(const Instruction* program, int count, u32 options, bool oneAlternative,
                              bool leadLiteral);

}  // namespace vkp::regexp
