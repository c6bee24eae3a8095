// Groups: the opening side (OP_CAPTURE, OP_GROUP, OP_FLAGGROUP, OP_COND),
// the iteration of repeated groups at their OP_KET, and option settings.
//
// Rules chosen where the format leaves them open (Perl's):
// - A repeated group tries one more iteration before the continuation when
//   greedy, after it when lazy; its alternatives are tried in order within
//   each iteration, and backtracking returns into earlier iterations.
// - An iteration that consumed nothing ends the repetition (once the
//   minimum is reached), so (a?)* and (?:)* cannot loop forever.
// - A capturing group reports the text of its last completed iteration;
//   backtracking out of an iteration puts the previous text back, so a
//   back-reference sees the text of the path being tried.
// - Options set inside a group end with it; each alternative starts with
//   the options in force at its bar.
#include "regexp/match/items.h"
#include "regexp/match/match_context.h"
#include "regexp/match/memo.h"

namespace vkp::regexp {

namespace {

VKP_INLINE bool IsOpener(u32 op) {
    return op == OP_CAPTURE || op == OP_GROUP || op == OP_FLAGGROUP || op == OP_COND || op == OP_ATOMIC ||
           op == OP_LOOKAHEAD || op == OP_NLOOKAHEAD || op == OP_LOOKBEHIND || op == OP_NLOOKBEHIND;
}

// Continues behind the group with the options of its OP_KET.
int ContinueAfter(const u8* pos, MatchContext* ctx, const Instruction* ket, int budget) {
    const u32 options = static_cast<u32>(ket->b);
    if (options == ctx->options) return MatchHere(pos, ctx, AfterGroup(ket, ctx), budget);
    const u32 saved = ctx->options;
    ctx->options = options;
    const int r = MatchHere(pos, ctx, AfterGroup(ket, ctx), budget);
    if (r) ctx->options = saved;
    return r;
}

// Runs from `start` with `options`, putting the current options back when
// that fails.
int RunWithOptions(const u8* pos, MatchContext* ctx, const Instruction* start, u32 options, int budget) {
    if (options == ctx->options) return MatchHere(pos, ctx, start, budget);
    const u32 saved = ctx->options;
    ctx->options = options;
    const int r = MatchHere(pos, ctx, start, budget);
    if (r) ctx->options = saved;
    return r;
}

// A conditional group: the condition (a back-reference number or a
// look-around) picks the first branch or the second, which is empty when
// there is no bar. A group number holds once that group has matched.
int ConditionalBody(const u8* pos, MatchContext* ctx, const Instruction* opener, const Instruction* ket,
                    int budget) {
    const Instruction* cond = opener + 1;
    bool holds;
    const Instruction* yes;
    if (cond->op == OP_BACKREF) {
        const int n = cond->a;
        holds = n >= 0 && n < ctx->recordCount && ctx->records[n].matchLen != -1;
        yes = cond + 1;
    } else if (cond->op >= OP_LOOKBEHIND && cond->op <= OP_NLOOKAHEAD) {
        const bool positive = cond->op == OP_LOOKBEHIND || cond->op == OP_LOOKAHEAD;
        holds = LookTest(pos, ctx, cond, budget) == positive;
        yes = KetOf(ctx, cond->a) + 1;
    } else {
        return 1;
    }
    const u32 options = static_cast<u32>(ket->b);
    if (holds) return RunWithOptions(pos, ctx, yes, options, budget);
    const Instruction* bar = NextAlternative(yes, ket, opener->a);
    return bar ? RunWithOptions(pos, ctx, bar + 1, static_cast<u32>(bar->b), budget)
               : RunWithOptions(pos, ctx, ket, options, budget);
}

// Whether an alternative led by a literal fails at pos at once, as its
// first item would: then it is passed over without entering it (a group of
// many literal alternatives tries each in turn).
VKP_INLINE bool FailsAtOnce(const u8* pos, const MatchContext* ctx, const Instruction* ip, u32 options) {
    if (ip->op == OP_STRING)
        return ip->b <= 0 || ctx->subjectEnd - pos < ip->b || !LiteralEq(*pos, *static_cast<const u8*>(ip->d), options);
    if (ip->op == OP_CHAR && !RepeatAfter(ip, ctx))
        return pos >= ctx->subjectEnd || !LiteralEq(*pos, static_cast<u8>(ip->a), options);
    return false;
}

// One iteration of the group opened at `opener`: its alternatives in turn.
VKP_INLINE int TryBody(const u8* pos, MatchContext* ctx, const Instruction* opener, int budget) {
    const Instruction* ket = KetOf(ctx, opener->a);
    if (opener->op == OP_COND) return ConditionalBody(pos, ctx, opener, ket, budget);
    const u32 saved = ctx->options;
    u32 options = opener->op == OP_FLAGGROUP ? static_cast<u32>(opener->c) : static_cast<u32>(ket->b);
    const Instruction* start = opener + 1;
    for (;;) {
        // An alternative of one item (a literal, say) is followed by its bar.
        const Instruction* bar = start + 1 < ket && start[1].op == OP_ALT && start[1].a == opener->a
                                     ? start + 1
                                     : NextAlternative(start, ket, opener->a);
        if (!FailsAtOnce(pos, ctx, start, options)) {
            ctx->options = options;
            if (!bar && options == saved) return MatchHere(pos, ctx, start, budget);
            if (MatchHere(pos, ctx, start, budget) == 0) return 0;
        }
        if (!bar) break;
        options = static_cast<u32>(bar->b);
        start = bar + 1;
    }
    ctx->options = saved;
    return 1;
}

// Another iteration of the group from pos; when it fails, the entry's
// count and iteration start are put back.
VKP_INLINE int TryIteration(const u8* pos, MatchContext* ctx, GroupEntry* g, const Instruction* opener, int budget) {
    const int count = g->count;
    const u8* const start = g->iterStart;
    g->count = count + 1;
    g->iterStart = pos;
    if (TryBody(pos, ctx, opener, budget) == 0) return 0;
    g->count = count;
    g->iterStart = start;
    return 1;
}

// The end of one iteration of a repeated group: another iteration (before
// the continuation when greedy, after it when lazy) or the continuation.
VKP_INLINE int IterateGroup(const u8* pos, MatchContext* ctx, const Instruction* ket, int budget) {
    GroupEntry* g = GroupOf(ctx, ket->a);
    const Instruction* opener = ctx->program + g->opener;
    const int done = g->count + 1;
    if (done < g->min) return TryIteration(pos, ctx, g, opener, budget);
    const bool more = pos != g->iterStart && done < g->max;
    const bool lazy = g->lazy;
    if (more && !lazy && TryIteration(pos, ctx, g, opener, budget) == 0) return 0;
    if (ContinueAfter(pos, ctx, ket, budget) == 0) return 0;
    if (more && lazy && TryIteration(pos, ctx, g, opener, budget) == 0) return 0;
    return 1;
}

__attribute__((noinline)) int NextIterationMemo(const u8* pos, MatchContext* ctx, const Instruction* ket,
                                                int budget) {
    return MemoRun(ctx, ket, pos, kMemoGroupIteration, budget, [&] { return IterateGroup(pos, ctx, ket, budget); });
}

// Where paths through a repeated group meet again: a bounded search looks up
// and records this state.
__attribute__((noinline)) int NextIteration(const u8* pos, MatchContext* ctx, const Instruction* ket, int budget) {
    if (VKP_UNLIKELY(ctx->memo != nullptr)) return NextIterationMemo(pos, ctx, ket, budget);
    return IterateGroup(pos, ctx, ket, budget);
}

// The end of an iteration of a capturing group: its record takes the
// iteration's text for as long as the rest of the match holds.
__attribute__((noinline)) int CaptureEnd(const u8* pos, MatchContext* ctx, const Instruction* ket, int budget) {
    const GroupEntry* g = GroupOf(ctx, ket->a);
    const u8* const start = g->iterStart;
    RegExpFind* record = ctx->records + g->capture;
    const RegExpFind saved = *record;
    *record = {start, static_cast<int>(pos - start)};
    ctx->recordsDirty = 1;
    const int r = g->repeated ? NextIteration(pos, ctx, ket, budget) : ContinueAfter(pos, ctx, ket, budget);
    if (r) *record = saved;
    return r;
}

}  // namespace

const Instruction* NextAlternative(const Instruction* from, const Instruction* ket, int link) {
    for (const Instruction* i = from; i < ket;) {
        if (i->op == OP_ALT && i->a == link) return i;
        if (IsOpener(i->op)) i += i->b + 2;
        else if (i->op == OP_CLASS) i += i->b + 1;
        else ++i;
    }
    return nullptr;
}

int GroupOpen(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    GroupEntry* g = GroupOf(ctx, ip->a);
    // Nothing reads the table entry of a group that neither captures nor
    // repeats.
    if (!g->repeated && !g->capture) return TryBody(pos, ctx, ip, budget);
    const u8* const savedStart = g->iterStart;
    const int savedCount = g->count;
    g->iterStart = pos;
    g->count = 0;
    if (!g->repeated) {
        if (TryBody(pos, ctx, ip, budget) == 0) return 0;
    } else {
        const Instruction* ket = ctx->program + g->ket;
        const bool optional = g->min == 0;
        if (optional && (g->lazy || g->max == 0) && ContinueAfter(pos, ctx, ket, budget) == 0) return 0;
        if (g->max > 0) {
            if (TryBody(pos, ctx, ip, budget) == 0) return 0;
            g->iterStart = pos;
            g->count = 0;
            if (optional && !g->lazy && ContinueAfter(pos, ctx, ket, budget) == 0) return 0;
        }
    }
    g->iterStart = savedStart;
    g->count = savedCount;
    return 1;
}

int GroupEnd(const u8* pos, MatchContext* ctx, const Instruction* ket, int budget) {
    const GroupEntry* g = GroupOf(ctx, ket->a);
    if (g->capture) return CaptureEnd(pos, ctx, ket, budget);
    if (!g->repeated) return ContinueAfter(pos, ctx, ket, budget);
    return NextIteration(pos, ctx, ket, budget);
}

int SetFlags(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    return RunWithOptions(pos, ctx, ip + 1, static_cast<u32>(ip->a), budget);
}

}  // namespace vkp::regexp
