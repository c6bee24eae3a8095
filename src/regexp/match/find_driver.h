// The find driver behind vkpsRegExpFind_8u.
#pragma once

#include "regexp/compile/state.h"

namespace vkp::regexp {

// vkpsRegExpFind_8u after its argument checks, with the matcher's recursion
// limited to stack addresses above stackFloor. With allRecords a global
// search reports record 0 and every group for each match (replace uses it).
Status FindInState(const u8* src, int srcLen, RegExpState* state, RegExpFind* matches, int* numMatches,
                   const char* stackFloor, bool allRecords = false);

}  // namespace vkp::regexp
