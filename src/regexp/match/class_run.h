// Runs of ASCII members of a class or a character type, a vector a step,
// for the greedy repeats.
#pragma once

#include "regexp/match/match_hints.h"
#include "regexp/match/items.h"

namespace vkp::regexp {

// How many bytes from p (at most n) are ASCII members of k.
long AsciiMemberRun(const u8* p, long n, const ClassBits& k);

// The ASCII members of a character type.
const ClassBits& TypeMembers(TypeTest t);

}  // namespace vkp::regexp
