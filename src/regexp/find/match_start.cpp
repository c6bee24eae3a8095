// MatchStart: the program at successive start positions and, at each, the
// top-level alternatives in turn.
//
// Records: the capture records are reset at each start position, and not
// between the top-level alternatives tried at one position, so a group set
// by an alternative that failed keeps its text when a later one matches.
#include "regexp/find/match_start.h"
#include "floor/utf8.h"
#include "regexp/match/literal_scan.h"

namespace vkp::regexp {

int MatchStart(const u8* subject, int length, MatchContext* ctx, const Analysis& an, int anchorMode) {
    const u8* pos = subject;
    const u8* const end = subject + length;
    ctx->subjectEnd = end;
    const u32 options = ctx->options;
    const Instruction* const altFloor = ctx->program + an.firstAlternative;
    ctx->recordsDirty = 1;
    const StartFilter* filter =
        anchorMode == kAnchorAnywhere && an.filter.mode != StartFilter::kNone ? &an.filter : nullptr;
    const StartProbe* probe = filter && an.probe.count ? &an.probe : nullptr;
    for (;;) {
        if (filter && !(pos = NextCandidate(*filter, pos, end, ctx->format))) break;
        if (probe) {
            if (const u8* next = ProbeRejects(*probe, pos, end)) {
                pos = next;
                continue;
            }
        }
        if (ctx->recordsDirty) {
            for (int k = 1; k < ctx->recordCount; ++k) ctx->records[k] = {nullptr, -1};
            ctx->recordsDirty = 0;
        }
        ctx->options = options;
        ctx->leadRunEnd = nullptr;
        for (const Instruction* alt = ctx->program;;) {
            ctx->attemptStart = pos;
            if (MatchHere(pos, ctx, alt, ctx->budget) == 0) {
                ctx->records[0] = {pos, static_cast<int>(ctx->matchEnd - pos)};
                return 0;
            }
            const Instruction* bar = NextAlternative(alt > altFloor ? alt : altFloor, ctx->programEnd, 0);
            if (!bar) break;
            ctx->options = static_cast<u32>(bar->b);
            alt = bar + 1;
        }
        if (anchorMode == kAnchorSubjectStart || pos >= end) break;
        // A leading run that ended at leadRunEnd failed: so do the starts
        // inside it (see analysis.cpp).
        if (ctx->leadRunEnd > pos) {
            pos = ctx->leadRunEnd;
            continue;
        }
        if (anchorMode == kAnchorLineStarts) {
            // The next line start, or the next one whose byte can begin a match.
            const int len = static_cast<int>(end - pos);
            const int i = FindLiteral(pos, len, an.lineLead, an.lineLed ? 2 : 1, false);
            if (i < 0) break;
            pos += i + 1;
            continue;
        }
        pos += ctx->format == kFormatUtf8 ? CharLength(pos, end) : 1;
    }
    ctx->options = options;
    return 1;
}

}  // namespace vkp::regexp
