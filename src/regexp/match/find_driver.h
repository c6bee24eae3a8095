// The find driver behind vkpsRegExpFind_8u.
#pragma once

#include "regexp/compile/state.h"

namespace vkp::regexp {

// vkpsRegExpFind_8u after its argument checks, with the matcher's recursion
// limited to stack addresses above stackFloor.
Status FindInState(const u8* src, int srcLen, RegExpState* state, RegExpFind* matches, int* numMatches,
                   const char* stackFloor);

}  // namespace vkp::regexp
