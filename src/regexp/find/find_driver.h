// The find driver behind vkpsRegExpFind_8u.
#pragma once

#include "regexp/compile/state.h"

namespace vkp::regexp {

struct Memo;

// vkpsRegExpFind_8u after its argument checks, with the matcher's recursion
// limited to stack addresses above stackFloor (null: the calling thread's,
// looked up when the matcher runs). Without memo the search
// gives up after a number of steps (kSearchAgain); with it, the search uses
// that failure table and ends at a larger cap (memo.h). With allRecords a
// global search reports record 0 and every group for each match (replace
// uses it).
Status FindInState(const u8* src, int srcLen, RegExpState* state, RegExpFind* matches, int* numMatches,
                   const char* stackFloor, Memo* memo, bool allRecords = false);

// The search run again with a failure table on this frame's stack (kept out
// of the plain search's frame).
Status FindBounded(const u8* src, int srcLen, RegExpState* state, RegExpFind* matches, int* numMatches,
                   const char* stackFloor, bool allRecords);

// The search of vkpsRegExpFind_8u after its argument checks: first the plain
// search, then, if that runs far beyond subject x program steps, the rerun
// with the failure table (memo.h).
Status FindTimeBounded(const u8* src, int srcLen, RegExpState* state, RegExpFind* matches, int* numMatches,
                       bool allRecords);

}  // namespace vkp::regexp
