// The program tried at successive start positions of a subject.
#pragma once

#include "regexp/find/analysis.h"
#include "regexp/match/match_context.h"

namespace vkp::regexp {

// Tries the program at successive start positions of subject[0, length), as
// anchorMode allows, passing over the positions the analysis' start filter
// rules out when every position is allowed; top-level alternatives are
// looked for from the analysis' firstAlternative. On success (0) record 0
// holds the match.
int MatchStart(const u8* subject, int length, MatchContext* ctx, const Analysis& an, int anchorMode);

}  // namespace vkp::regexp
