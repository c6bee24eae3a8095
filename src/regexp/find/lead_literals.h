// The literals that every match begins with one of (an alternation of
// literals that is the whole program, or the group that leads it), compiled
// once per pattern into a literal set kept in free room of the pattern's
// block: the search then finds where a match can start in one pass.
#pragma once

#include "kernels/literal_set.h"
#include "regexp/compile/state.h"

namespace vkp::regexp {

// The alternatives of [from, to), split at bars whose a is `link`: each
// begins with the literal that leads it (and, for a literal search, is
// nothing else).
struct LeadLiterals {
    int from = 0, to = 0, link = 0;
    int count = 0;          // alternatives
    bool caseless = false;  // compared ignoring ASCII case
    bool highLed = false;   // one begins with a byte at or above 0x80
};

// The most literals a set of them takes.
constexpr int kMaxLeadLiterals = 1 << 16;

// The literals of a program that is two or more literals between
// top-level bars (literalsOnly: compared as the options say), or those that
// lead the alternatives of a program of two or more top-level alternatives,
// or of a group taken at least once that begins the program (behind
// anchors and option settings) when it has no top-level bar. False for any
// other program, and for literals that a caseless comparison could match
// outside ASCII.
bool FindLeadLiterals(const Instruction* prog, int count, u32 options, bool literalsOnly, LeadLiterals* out);

// The literals that lead the alternatives of the group opened at g (two or
// more), under `options`.
bool GroupLiterals(const Instruction* prog, int g, u32 options, LeadLiterals* out);

// Compiles them into the room the group table (ids up to highestGroup)
// leaves in the work area before the analysis, or else the room behind the
// program's literal bytes. The set, or null when neither is large enough.
const kernels::LiteralSet* PlaceLeadLiterals(RegExpState* state, int highestGroup, const LeadLiterals& lead);

}  // namespace vkp::regexp
