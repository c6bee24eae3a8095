// The step count and the failure table of bounded searches (memo.h).
#include "regexp/match/memo.h"

#include <limits.h>

#include "floor/entries.h"
#include "floor/utf8.h"

namespace vkp::regexp {

namespace {

constexpr int kAnyBudget = INT_MAX;

VKP_INLINE u32 BucketOf(u32 ip, uint64_t sig) {
    const uint64_t h = (sig ^ (static_cast<uint64_t>(ip) << 40) ^ ip) * 0x9E3779B97F4A7C15ull;
    return static_cast<u32>(h >> 58) % Memo::kBuckets;
}

// Two budget ranges of one kind can be joined into one that holds for both
// spans: the failures that hold for every larger budget, or for every
// smaller one; exact budgets only when equal.
bool JoinBudgets(MemoSpan* s, int bmin, int bmax) {
    if (s->bmin == bmin && s->bmax == bmax) return true;
    if (s->bmax == kAnyBudget && bmax == kAnyBudget) {
        if (bmin > s->bmin) s->bmin = bmin;
        return true;
    }
    if (s->bmin == 0 && bmin == 0) {
        if (bmax < s->bmax) s->bmax = bmax;
        return true;
    }
    return false;
}

}  // namespace

// The constants leave room for short subjects on which a heavily
// backtracking search takes millions of steps and still ends.
long long SearchSteps(int length, int count) {
    return 4ll * (length + 1ll) * (count + 1ll) + 1000000;
}

long long CapSteps(int length, int count, int matchLimit) {
    return 4ll * (length + 1ll) * (count + 2ll) + 1000ll * matchLimit + 10000000;
}

void BoundsInit(MatchContext* ctx, Memo* memo, int length, int count, int matchLimit) {
    ctx->memo = nullptr;
    ctx->cutoffs = 0;
    ctx->stepState = memo ? -1 : 0;
    if (!memo) {
        ctx->stepsLeft = SearchSteps(length, count);
        return;
    }
    ctx->stepsLeft = CapSteps(length, count, matchLimit);
    MemoInit(memo, ctx, count);
    if (memo->enabled) ctx->memo = memo;
}

Status BoundsStatus(const MatchContext* ctx) {
    return ctx->stepState == 1 ? kSearchAgain : VKP_ERR_MATCH_LIMIT;
}

__attribute__((noinline, cold)) int StepLimitReached(MatchContext* ctx) {
    if (ctx->stepState <= 0) ctx->stepState = ctx->stepState == 0 ? 1 : 2;
    ctx->stepsLeft = LLONG_MAX;
    // Every frame still pending fails at its next call of the matcher.
    ctx->stackFloor = reinterpret_cast<const char*>(~static_cast<uintptr_t>(0));
    return OutOfStack(ctx);
}

void MemoInit(Memo* memo, const MatchContext* ctx, int count) {
    memo->enabled = true;
    memo->monotone = true;
    memo->groupCount = 0;
    for (MemoSpan& s : memo->spans) s.ip = 0;
    for (Memo::Run& r : memo->runs) r.ip = nullptr;
    const Instruction* program = ctx->program;
    for (int i = 0; i < count; ++i) {
        const u32 op = program[i].op;
        if (op == OP_CLASS) {
            i += program[i].b > 0 ? program[i].b : 0;
            continue;
        }
        if (op == OP_BACKREF) memo->enabled = false;
        // Captures made inside a look-around or atomic body can outlive a
        // failure; skipping that failure would change the records.
        if ((op == OP_ATOMIC || IsLookaround(op)) && program[i].b > 0)
            for (int k = i + 1; k <= i + program[i].b && k < count; ++k)
                if (program[k].op == OP_CAPTURE) memo->enabled = false;
        if (op == OP_ATOMIC || op == OP_NLOOKAHEAD || op == OP_NLOOKBEHIND || op == OP_COND)
            memo->monotone = false;
        if (!vkp::IsOpener(op) || op == OP_ATOMIC || IsLookaround(op)) continue;
        const int ket = i + program[i].b + 1;
        if (program[i].b < 0 || ket + 1 >= count || !vkp::IsRepeat(program[ket + 1].op)) continue;
        const int id = program[i].a < 0 ? -program[i].a : program[i].a;
        if (memo->groupCount == Memo::kMaxGroups || id <= 0 || id >= kMaxGroupIds) {
            memo->enabled = false;
            continue;
        }
        memo->groups[memo->groupCount++] = static_cast<u16>(id);
    }
}

MemoKey MemoKeyOf(const MatchContext* ctx, const Instruction* ip, const u8* pos, u32 kind) {
    MemoKey key = {0, 0, 0, 0, false};
    // A look-behind body must end at a given place, and a non-empty attempt
    // refuses an end at its start: neither is part of the key.
    if (ctx->mustEndAt || ctx->notEmpty) return key;
    const Memo* memo = ctx->memo;
    const int i = static_cast<int>(ip - ctx->program);
    uint64_t sig = ctx->options & 0x1F;
    int shift = 5;
    const u8* sameFrom = ctx->subjectStart;
    for (int k = 0; k < memo->groupCount; ++k) {
        const GroupEntry* g = ctx->groups + memo->groups[k];
        if (!(g->opener < i && i <= g->ket)) continue;
        // Iterations beyond what the bounds can tell apart count as one.
        int done = g->count;
        if (g->max == kRepeatUnlimited) {
            const int same = g->min > 1 ? g->min - 1 : 0;
            if (done > same) done = same;
        }
        if (done < 0 || done >= 128 || shift > 56) return key;
        const uint64_t moved = pos > g->iterStart ? 1 : 0;
        if (moved && g->iterStart + 1 > sameFrom) sameFrom = g->iterStart + 1;
        sig |= ((static_cast<uint64_t>(done) << 1) | moved) << shift;
        shift += 8;
    }
    key.ip = (static_cast<u32>(i) + 1) | kind;
    key.sig = sig;
    key.pos = static_cast<int>(pos - ctx->subjectStart);
    key.sameFrom = static_cast<int>(sameFrom - ctx->subjectStart);
    key.valid = true;
    return key;
}

const MemoSpan* MemoFind(MatchContext* ctx, const MemoKey& key, int budget) {
    const MemoSpan* bucket = ctx->memo->spans + BucketOf(key.ip, key.sig) * Memo::kWays;
    for (int w = 0; w < Memo::kWays; ++w) {
        const MemoSpan& s = bucket[w];
        if (s.ip == key.ip && s.sig == key.sig && s.lo <= key.pos && key.pos <= s.hi && s.bmin <= budget &&
            budget <= s.bmax) {
            if (s.bmax != kAnyBudget) ++ctx->cutoffs;
            return &s;
        }
    }
    return nullptr;
}

void MemoRecord(Memo* memo, const MemoKey& key, int budget, bool cut) {
    // Without a cut the failure holds for every larger budget; in a monotone
    // program it holds for every smaller one.
    const int lo = memo->monotone ? 0 : budget;
    const int bmax = cut ? budget : kAnyBudget;
    MemoSpan* bucket = memo->spans + BucketOf(key.ip, key.sig) * Memo::kWays;
    // Extend a span that ends next to the position, else take a free slot
    // or the narrowest span.
    MemoSpan* victim = nullptr;
    for (int w = 0; w < Memo::kWays; ++w) {
        MemoSpan* s = bucket + w;
        if (s->ip == key.ip && s->sig == key.sig && s->lo - 1 <= key.pos && key.pos <= s->hi + 1 &&
            JoinBudgets(s, lo, bmax)) {
            if (key.pos < s->lo) s->lo = key.pos;
            if (key.pos > s->hi) s->hi = key.pos;
            return;
        }
        if (!victim || s->ip == 0 || (victim->ip != 0 && s->hi - s->lo < victim->hi - victim->lo)) victim = s;
    }
    *victim = {key.sig, key.ip, key.pos, key.pos, lo, bmax};
}

__attribute__((noinline, cold)) void NoteRun(MatchContext* ctx, const Instruction* ip, const u8* pos,
                                             const u8* scanned, const u8* to, const u8* stop) {
    ctx->stepsLeft -= (to - scanned) >> 6;
    if (!ctx->memo || stop != ctx->subjectEnd || ctx->notEmpty) return;
    Memo::Run& r = ctx->memo->runs[(ip - ctx->program) & 7];
    if (r.ip == ip && r.options == ctx->options && r.to == to && r.from <= pos) return;
    r = {ip, ctx->options, pos, to};
}

int BacktrackMemo(const u8* p, const u8* lowest, long step, MatchContext* ctx, const Instruction* next,
                  int budget) {
    const u8* const base = ctx->subjectStart;
    for (;;) {
        const MemoKey key = MemoKeyOf(ctx, next, p, kMemoAtInstruction);
        const MemoSpan* known = key.valid ? MemoFind(ctx, key, budget) : nullptr;
        if (known) {
            // Every position of the span with the same state fails: go on
            // below them (for characters, along the boundaries the plain
            // loop would visit).
            const u8* const to = base + (known->lo > key.sameFrom ? known->lo : key.sameFrom);
            if (step == 1 && to < p) p = to > lowest ? to : lowest;
            if (step == 0)
                for (const u8* q; p > lowest && (q = StepBack(lowest, p)) >= to;) p = q;
        } else {
            const int cutoffs = ctx->cutoffs;
            if (MatchHere(p, ctx, next, budget) == 0) return 0;
            if (key.valid && !ctx->stackExhausted) MemoRecord(ctx->memo, key, budget, cutoffs != ctx->cutoffs);
        }
        if (p <= lowest) return 1;
        p = step ? p - step : StepBack(lowest, p);
    }
}

}  // namespace vkp::regexp
