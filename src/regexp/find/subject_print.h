// What a pattern set examines once per search: the bytes a subject holds
// and the pairs of adjacent bytes, ASCII letters folded to lower case and
// pairs kept on seven bits a byte, hashed into a filter of about sixteen
// bits a subject byte (a superset: a pair may share its bit with others,
// bytes at or above 0x80 with ASCII ones). Each pattern keeps in its analysis a
// byte or a pair its search needs before it starts the matcher or finds a
// literal; a subject without it gives that pattern's no-match result, and
// the pattern is not searched.
#pragma once

#include "regexp/compile/state.h"

namespace vkp::regexp {

struct SubjectPrint {
    const u8* subject;
    int length;
    bool built = false;
    int pairLog = 0;  // the pair filter holds 2^pairLog bits
    u32 bytes[8];
    u8 pairs[(1 << 14) / 8];
    SubjectPrint(const u8* s, int len) : subject(s), length(len) {}
};

// A key of what a pattern needs: kNeedNone, or a byte or pair below.
constexpr int kNeedNone = -1;
constexpr int kNeedPairBit = 1 << 16;  // set for a pair: (first << 7 | second) below it

// The need of a byte or of two adjacent bytes, folded.
int NeedOfByte(u8 b);
int NeedOfPair(u8 first, u8 second);

// True when the search of the pattern compiled at `state` on the printed
// subject ends without a match and without starting the matcher, as its
// need shows: its result is then status 0 and no record.
bool SubjectRulesOut(RegExpState* state, SubjectPrint* print);

}  // namespace vkp::regexp
