// Look-ahead, look-behind and atomic groups: bodies run as sub-programs
// that end at the group's OP_KET. Once a body has matched, what follows
// cannot make it try another way (as in Perl).
//
// Rules chosen where the format leaves them open:
// - A look-behind body runs from c bytes before the position and must end
//   exactly at the position (Perl).
// - Captures made inside a look-around body stay set, also for the
//   negative forms.
// - A look-around followed by a repeat that allows zero is skipped, as an
//   anchor is; any other repeat of it tests it once.
// - An atomic group with a repeat: each iteration is atomic, the repetition
//   itself backtracks (greedy gives back iterations, lazy takes more).
// - When what follows an atomic group (or one iteration of a greedy repeat
//   of it) fails, the captures made inside it are put back as they were
//   (Perl), for groups that hold up to kSavedCaptures capturing groups;
//   beyond that they keep the failed attempt's text.
#include "regexp/match/match_context.h"

namespace vkp::regexp {

namespace {

// Runs the body of the group opened at ip from `start` as a sub-program:
// its alternatives in turn until one completes. Returns the end of the
// match or null. The options and sub-program bounds are put back.
const u8* RunBody(const u8* start, const u8* mustEndAt, MatchContext* ctx, const Instruction* ip, int budget) {
    const Instruction* ket = KetOf(ctx, ip->a);
    const Instruction* savedEnd = ctx->end;
    const u8* savedMust = ctx->mustEndAt;
    const u32 savedOptions = ctx->options;
    ctx->end = ket;
    ctx->mustEndAt = mustEndAt;
    const u8* result = nullptr;
    for (const Instruction* s = ip + 1;;) {
        if (MatchHere(start, ctx, s, budget) == 0) {
            result = ctx->matchEnd;
            break;
        }
        const Instruction* bar = NextAlternative(s, ket, ip->a);
        if (!bar) break;
        ctx->options = static_cast<u32>(bar->b);
        s = bar + 1;
    }
    ctx->end = savedEnd;
    ctx->mustEndAt = savedMust;
    ctx->options = savedOptions;
    return result;
}

// Capture numbers inside an atomic body form one run, [first, last];
// saving them lets a failure behind the group undo what the body set.
constexpr int kSavedCaptures = 4;
struct SavedCaptures {
    int first = 0;
    int n = 0;
    RegExpFind records[kSavedCaptures];

    void Save(const MatchContext* ctx, const Instruction* ip, const Instruction* ket) {
        for (const Instruction* i = ip + 1; i < ket; ++i) {
            if (i->op != OP_CAPTURE || i->c <= 0 || i->c >= ctx->recordCount) continue;
            if (n == 0) first = i->c;
            if (i->c - first >= kSavedCaptures) break;
            n = i->c - first + 1;
        }
        for (int k = 0; k < n; ++k) records[k] = ctx->records[first + k];
    }
    void Restore(MatchContext* ctx) const {
        for (int k = 0; k < n; ++k) ctx->records[first + k] = records[k];
    }
};

// Each level of atomic repetition counts against the budget and the stack
// like a call of MatchHere.
// With `kCapturing`, an iteration given back also gives back its captures
// (a separate instantiation, so that other groups pay no stack for it).
template <bool kCapturing>
int AtomicGreedy(const u8* pos, MatchContext* ctx, const Instruction* ip, const Instruction* rep, int count,
                 int budget) {
    if (VKP_UNLIKELY(StackPointer() < ctx->stackFloor)) return OutOfStack(ctx);
    if (budget <= 0) {
        ++ctx->cutoffs;
        return 1;
    }
    --budget;
    const Instruction* after = rep + 1;
    if (count < rep->b) {
        SavedCaptures saved;
        if (kCapturing) saved.Save(ctx, ip, KetOf(ctx, ip->a));
        const u8* p = RunBody(pos, nullptr, ctx, ip, budget);
        // An empty iteration can repeat up to any minimum; more add nothing.
        if (p == pos) return MatchHere(pos, ctx, after, budget);
        if (p && AtomicGreedy<kCapturing>(p, ctx, ip, rep, count + 1, budget) == 0) return 0;
        if (kCapturing) saved.Restore(ctx);
    }
    return count >= rep->a ? MatchHere(pos, ctx, after, budget) : 1;
}

// An atomic group without a repeat, whose body holds captures.
__attribute__((noinline)) int AtomicCapturing(const u8* pos, MatchContext* ctx, const Instruction* ip,
                                              const Instruction* ket, int budget) {
    SavedCaptures saved;
    saved.Save(ctx, ip, ket);
    const u8* p = RunBody(pos, nullptr, ctx, ip, budget);
    if (p && MatchHere(p, ctx, ket + 1, budget) == 0) return 0;
    saved.Restore(ctx);
    return 1;
}

bool HoldsCapture(const Instruction* ip, const Instruction* ket) {
    for (const Instruction* i = ip + 1; i < ket; ++i)
        if (i->op == OP_CAPTURE) return true;
    return false;
}

// A lazy repeat of an atomic group takes one more iteration each time the
// continuation fails; when it gives up, the captures its iterations made
// are put back as they were before the first (with `kCapturing`).
template <bool kCapturing>
int AtomicLazy(const u8* pos, MatchContext* ctx, const Instruction* ip, const Instruction* rep,
               const Instruction* ket, int budget) {
    SavedCaptures saved;
    if (kCapturing) saved.Save(ctx, ip, ket);
    const Instruction* after = rep + 1;
    int r = 1;
    for (int count = 0;; ++count) {
        if (count >= rep->a && MatchHere(pos, ctx, after, budget) == 0) return 0;
        if (count >= rep->b) break;
        const u8* p = RunBody(pos, nullptr, ctx, ip, budget);
        if (!p) break;
        if (p == pos) {
            if (count < rep->a) r = MatchHere(pos, ctx, after, budget);
            break;
        }
        pos = p;
    }
    if (r != 0 && kCapturing) saved.Restore(ctx);
    return r;
}

}  // namespace

bool LookTest(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    if (ip->op == OP_LOOKBEHIND || ip->op == OP_NLOOKBEHIND) {
        if (pos - ctx->subjectStart < ip->c) return false;
        return RunBody(pos - ip->c, pos, ctx, ip, budget) != nullptr;
    }
    return RunBody(pos, nullptr, ctx, ip, budget) != nullptr;
}

int LookAround(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    const Instruction* ket = KetOf(ctx, ip->a);
    const Instruction* after = AfterGroup(ket, ctx);
    const Instruction* rep = RepeatAfter(ket, ctx);
    if (rep && rep->a == 0) return MatchHere(pos, ctx, after, budget);
    const bool positive = ip->op == OP_LOOKAHEAD || ip->op == OP_LOOKBEHIND;
    if (LookTest(pos, ctx, ip, budget) != positive) return 1;
    return MatchHere(pos, ctx, after, budget);
}

int Atomic(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    const Instruction* ket = KetOf(ctx, ip->a);
    const Instruction* rep = RepeatAfter(ket, ctx);
    if (!rep) {
        if (ip->b > 1 && HoldsCapture(ip, ket)) return AtomicCapturing(pos, ctx, ip, ket, budget);
        const u8* p = RunBody(pos, nullptr, ctx, ip, budget);
        return p ? MatchHere(p, ctx, ket + 1, budget) : 1;
    }
    if (rep->op == OP_GREEDY_REPEAT)
        return HoldsCapture(ip, ket) ? AtomicGreedy<true>(pos, ctx, ip, rep, 0, budget)
                                     : AtomicGreedy<false>(pos, ctx, ip, rep, 0, budget);
    return HoldsCapture(ip, ket) ? AtomicLazy<true>(pos, ctx, ip, rep, ket, budget)
                                 : AtomicLazy<false>(pos, ctx, ip, rep, ket, budget);
}

}  // namespace vkp::regexp
