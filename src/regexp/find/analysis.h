// What the find driver works out from the program alone: anchoring, the
// bytes a match can begin with, a byte every match holds, the repeats that
// need no backtracking, the ASCII members of classes and the group table.
// Worked out on the first search of a compiled block and kept in its work
// area (see state.h) for the searches that follow. It depends on the
// program and its options only; the match limit and the format are read
// from the header by each search.
#pragma once

#include "regexp/compile/state.h"
#include "regexp/match/match_hints.h"
#include "regexp/find/first_bytes.h"
#include "regexp/find/start_probe.h"
#include "regexp/find/subject_print.h"

namespace vkp::regexp {

// How the find driver searches for a pattern, chosen once with the rest of
// the analysis. Each names the first step the search takes; the later
// steps (the cut behind the last literal, the required byte, the matcher)
// apply wherever the pattern gives them something to work with.
enum class Strategy : u8 {
    kMatcher,         // the matcher from each start the start filter lets through
    kLeadingLiteral,  // the matcher from the first occurrence of the literal every match begins with
    kLiterals,        // one literal, or literals between top-level bars: the literal search alone
};

struct Analysis {
    u32 stamp;             // kAnalysisStamp when the rest is valid
    u32 options;           // the header words it was worked out for
    int count;
    int groupCount;
    int lastLiteralIndex;
    int patternKind;
    // Bytes or pairs of adjacent bytes (subject_print.h) without any of
    // which the search ends with no match before it starts the matcher.
    u16 needs[kMaxNeeds];
    u8 needCount;
    Strategy strategy;
    int anchorMode;        // as MatchStart takes it
    int firstAlternative;  // where MatchStart looks for the next top-level bar
    int requiredByte;      // a byte every match holds, or -1
    u8 requiredCaseless;   // ... in either case: a lower-case letter
    u8 anyPossessive;      // some bit of `possessive` is set
    u8 leadLiteral;        // every match begins with the literal at index 0
    u8 literalsOnly;       // the program is one literal, or literals between top-level bars,
    u8 literalsFrom;       // ... from this record on (1: behind an option setting, (?i)word, or in a group)
    u8 literalsCaseless;   // ... compared ignoring ASCII case
    int literalsCount;     // ... records of literals and bars
    u8 literalContinuationLed;  // ... one of which begins with a UTF-8 continuation byte
    u8 requiredByFilter;   // the start filter searches for the required byte itself
    int leadRepeat;        // repeat record of a leading unlimited greedy run, or -1
    // Anchored at line starts with one byte every match begins with: a line
    // feed and that byte, which the search looks for instead of the line feed.
    u8 lineLed;
    u8 lineLead[2];
    StartFilter filter;    // kNone when anchored or unknown
    StartProbe probe;      // checked where the filter lets a start through (count 0: none)
    // Greedy repeats of one item whose continuation cannot begin with
    // anything the item matches: a shorter run can never help, so the
    // matcher tries the continuation at the longest run only. Indexed by
    // the repeat record.
    u8 possessive[kPossessiveBits / 8];
    ClassBits classes[kClassSlots];  // ASCII members of classes, for the matcher
    u8 anyClass;           // some slot of `classes` is used
    // The literals every match begins with one of, compiled into the block
    // (lead_literals.h), or null.
    const kernels::LiteralSet* leadSet;
};
static_assert(sizeof(Analysis) <= kAnalysisBytes - 4);  // the block's size follows

constexpr u32 kAnalysisStamp = 0x5EA2C4B1;

// The kept analysis when it is valid for the header, else null.
VKP_INLINE const Analysis* KeptAnalysis(const RegExpState* state) {
    auto* a = reinterpret_cast<const Analysis*>(state->workArea + kAnalysisOffset);
    return a->stamp == kAnalysisStamp && a->options == state->options && a->count == state->instructionCount &&
                   a->groupCount == state->groupCount && a->lastLiteralIndex == state->lastLiteralIndex &&
                   a->patternKind == state->patternKind
               ? a
               : nullptr;
}

// The analysis for the block's program: the kept one when it is valid for
// the header, else worked out now (filling the group table) and kept when
// the group table leaves room for it, or left in *local. *kept tells which;
// when false the caller clears the stamp after the search, because the
// group table may have written over it.
const Analysis* AnalysisFor(RegExpState* state, Analysis* local, bool* kept);

// The same, worked out for any program into *a; returns the highest group
// id of the program and fills the group table at `groups`.
int Analyze(const Instruction* program, int count, u32 options, GroupEntry* groups, Analysis* a);

}  // namespace vkp::regexp
