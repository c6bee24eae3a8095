// Bounded search time: a count of matcher steps and a table of
// continuations that are known to fail.
//
// Every search counts its calls of MatchHere. A search that goes far beyond
// subject length x program length is stopped and run again from the start
// with the failure table in use: the points where backtracking joins paths
// again (the end of an iteration of a repeated group, and each count at
// which a single-item repeat tries its continuation) look up whether that
// continuation, in the same state, has already failed, and record it when
// it fails. A failure is only reused where nothing that decided it can
// differ: the instruction, the position, the options, the state of every
// repeated group around the instruction (iterations done, as far as the
// bounds can tell them apart, and whether the current iteration has
// consumed anything), and the depth budget (a failure without any branch
// cut short by the budget holds for every larger budget; when the program
// has no construct that can turn a failure into a success, for every
// smaller one too). Programs with back-references or conditions read the
// capture records, and captures inside look-around and atomic bodies can
// outlive a failure: such programs use no table. The rerun also counts steps: past a
// cap proportional to the subject, the program and the match limit it
// ends with the match-limit status, as the depth budget does.
//
// Facts are kept as spans of positions per (instruction, state), in a
// table of fixed size on the stack of the rerun; a span that does not fit
// replaces the smallest one in its bucket, which costs time, never a result.
#pragma once

#include "regexp/match/match_context.h"

namespace vkp::regexp {

struct MemoSpan {
    uint64_t sig;         // options and group states
    u32 ip;          // instruction index + 1 (0: empty slot)
    int lo, hi;      // positions (offsets from the subject start), inclusive
    int bmin, bmax;  // budgets for which the failure holds
};

struct Memo {
    static constexpr int kBuckets = 64;
    static constexpr int kWays = 8;
    static constexpr int kMaxGroups = 16;
    bool enabled;     // the program allows the table
    bool monotone;    // a smaller budget cannot turn a failure into a success
    int groupCount;   // repeated groups, ids in groups[]
    u16 groups[kMaxGroups];
    MemoSpan spans[kBuckets * kWays];
    // The last runs that greedy byte repeats took, by instruction: a repeat
    // entered again inside a run ends where the run ends.
    struct Run {
        const Instruction* ip;
        u32 options;
        const u8* from;
        const u8* to;
    } runs[8];
};

// A state to look up or record: valid false when it cannot be keyed.
struct MemoKey {
    uint64_t sig;
    u32 ip;
    int pos;
    int sameFrom;  // every position from here to pos has the same sig
    bool valid;
};

// Step counts: the plain search gives up after SearchSteps and the rerun
// with the table after CapSteps.
long long SearchSteps(int length, int count);
long long CapSteps(int length, int count, int matchLimit);

// Sets up the step count and, for the rerun, the table; the group table
// must be filled.
void BoundsInit(MatchContext* ctx, Memo* memo, int length, int count, int matchLimit);

// The status of a search that reached its step limit: kSearchAgain after
// the plain search (the driver then runs FindBounded), the match-limit status
// after the rerun.
constexpr Status kSearchAgain = 0x7FFF0001;
Status BoundsStatus(const MatchContext* ctx);
VKP_INLINE bool StepLimitHit(const MatchContext* ctx) { return ctx->stepState > 0; }

// Prepares the table for the program (the group table must be filled).
void MemoInit(Memo* memo, const MatchContext* ctx, int count);

// The key of state (ip, pos). Callers that run a state differently (a call
// of MatchHere at ip, or a routine entered at ip) use their own `kind`,
// since the same budget means a different depth to each.
enum : u32 { kMemoAtInstruction = 0, kMemoGroupIteration = 1u << 28 };
MemoKey MemoKeyOf(const MatchContext* ctx, const Instruction* ip, const u8* pos, u32 kind);

// The span holding a failure of key at this budget, or null. A failure
// that holds only up to some budget counts as a cut for the caller's own
// record, as the branch cut short did when it was found.
const MemoSpan* MemoFind(MatchContext* ctx, const MemoKey& key, int budget);

// Records that key failed with this budget; cut: a branch below was cut
// short by the depth budget.
void MemoRecord(Memo* memo, const MemoKey& key, int budget, bool cut);

// Reached when the step count passes its limit: makes every pending call of
// the matcher fail at once, and marks why.
int StepLimitReached(MatchContext* ctx);

// Where the run of the greedy byte repeat at ip that starts at pos and may
// go on to stop ends, when a run taken before holds pos; else pos.
VKP_INLINE const u8* KnownRunEnd(const MatchContext* ctx, const Instruction* ip, const u8* pos, const u8* stop) {
    const Memo::Run& r = ctx->memo->runs[(ip - ctx->program) & 7];
    const bool known = r.ip == ip && r.options == ctx->options && r.from <= pos && pos <= r.to &&
                       stop == ctx->subjectEnd && !ctx->notEmpty;
    return known ? r.to : pos;
}

// After a scan of [scanned, to) by the repeat at ip entered at pos: long
// scans count towards the step limit, and a bounded search remembers the run.
void NoteRun(MatchContext* ctx, const Instruction* ip, const u8* pos, const u8* scanned, const u8* to,
             const u8* stop);

// The continuation `run` of state (ip, pos): skipped when it is known to
// fail, recorded when it fails.
template <class Run>
VKP_INLINE int MemoRun(MatchContext* ctx, const Instruction* ip, const u8* pos, u32 kind, int budget, Run run) {
    const MemoKey key = MemoKeyOf(ctx, ip, pos, kind);
    if (key.valid && MemoFind(ctx, key, budget)) return 1;
    const int cutoffs = ctx->cutoffs;
    if (run() == 0) return 0;
    if (key.valid && !ctx->stackExhausted) MemoRecord(ctx->memo, key, budget, cutoffs != ctx->cutoffs);
    return 1;
}

// The memoising form of the backtracking loop of single-item repeats:
// continuations at p, p - step, ... (step 0: each earlier character
// boundary) down to lowest; spans known to fail are passed over whole.
int BacktrackMemo(const u8* p, const u8* lowest, long step, MatchContext* ctx, const Instruction* next,
                  int budget);

}  // namespace vkp::regexp
