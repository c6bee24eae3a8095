// The state of one search and the entry points of the backtracking matcher.
//
// The matcher works in continuation style: a routine that consumes input
// calls MatchHere for the rest of the program and, when that fails, tries
// its next alternative. Results are 0 (matched) and 1 (did not match).
//
// What travels as arguments: the position in the subject, the context, the
// instruction to run and the depth budget. Passing the budget by value gives
// the rule "every return puts the entry value back" for free and lets most
// constructs hand over to the next one without a stack frame of their own.
//
// Conventions every routine keeps:
// - A routine that fails leaves `options`, `end` and `mustEndAt` as it found
//   them, and restores the group table entries it changed.
// - Capture records are not restored on failure: a group that matched on a
//   path that later failed keeps its text until the next start position.
#pragma once

#include "floor/base.h"
#include "regexp/compile/program.h"
#include "regexp/compile/state.h"

namespace vkp::regexp {

// One entry of the group table (the first part of the work area), indexed
// by group id. The driver fills the fixed fields before a search; the
// iteration fields change while matching.
struct GroupEntry {
    const u8* iterStart;            // where the current iteration began
    int opener;                     // index of the opening instruction
    int ket;                        // index of the group's OP_KET
    int count;                      // iterations completed
    int min;                        // repeat bounds; 1, 1 when not repeated
    int max;
    u8 repeated;                    // an OP_*_REPEAT follows the OP_KET
    u8 lazy;                        // ... and it is lazy
    u16 capture;                    // capture number, 0 for other groups
};
static_assert(sizeof(GroupEntry) == 32);
static_assert(kMaxGroupIds * sizeof(GroupEntry) <= kWorkFirstPart);

struct MatchContext {
    const Instruction* end;         // reaching it completes the (sub-)program
    u32 options;                    // option bits in force
    int notEmpty;                   // refuse an overall match of length 0
    int recordCount;                // 1 + capturing groups
    int format;                     // 1: UTF-8 start positions, 0: bytes
    int budget;                     // depth budget of each attempt (the match limit)
    int recordsDirty;               // a capture record was written since the last reset
    const Instruction* program;
    const Instruction* programEnd;  // the top-level end
    const u8* subjectStart;         // for ^, \A, \G, \b and look-behind
    const u8* subjectEnd;           // no instruction consumes past it
    const u8* attemptStart;         // start of the current attempt (record 0)
    const u8* matchEnd;             // where the last completed (sub-)program ended
    const u8* mustEndAt;            // a look-behind body must end here, else null
    RegExpFind* records;            // record 0 is the whole match
    GroupEntry* groups;             // indexed by group id
    const char* stackFloor;         // recursion fails below this stack address
    int stackExhausted;             // set when a branch failed for lack of stack
    struct Memo* memo;              // failures known so far (the bounded rerun), or null
    long long stepsLeft;            // calls of MatchHere before the search stops (memo.h)
    int cutoffs;                    // branches cut short by the depth budget
    int stepState;                  // 0 plain, -1 rerun; 1: the plain search gave up, 2: the rerun its cap
    // From the program's analysis (match_hints.h): a bit per repeat record
    // whose item needs no backtracking (or null), and the repeat of a
    // leading run with where it ended in the current attempt (or null).
    const u8* possessive;
    const Instruction* leadRepeat;
    const u8* leadRunEnd;
    const struct ClassBits* classBits;  // kClassSlots slots, or null
};

VKP_INLINE bool IsRepeat(const Instruction* ip) {
    return ip->op == OP_GREEDY_REPEAT || ip->op == OP_LAZY_REPEAT;
}

// The repeat record that follows ip, or null (none before the end).
VKP_INLINE const Instruction* RepeatAfter(const Instruction* ip, const MatchContext* ctx) {
    return ip + 1 < ctx->programEnd && IsRepeat(ip + 1) ? ip + 1 : nullptr;
}

VKP_INLINE const char* StackPointer() {
    const char* sp;
    asm volatile("mov %%rsp, %0" : "=r"(sp));
    return sp;
}

// The instruction after a group: behind its OP_KET and the OP_KET's repeat.
VKP_INLINE const Instruction* AfterGroup(const Instruction* ket, const MatchContext* ctx) {
    return ket + 1 + (RepeatAfter(ket, ctx) ? 1 : 0);
}

VKP_INLINE GroupEntry* GroupOf(const MatchContext* ctx, int link) {
    return ctx->groups + (link < 0 ? -link : link);
}
VKP_INLINE const Instruction* KetOf(const MatchContext* ctx, int link) {
    return ctx->program + GroupOf(ctx, link)->ket;
}

// Runs the program from ip at pos.
int MatchHere(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget);

// Where the search tries the program (find/match_start.h).
enum AnchorMode : int {
    kAnchorAnywhere = 0,       // every position, the end included
    kAnchorLineStarts = 1,     // the start and every position after a line feed
    kAnchorSubjectStart = 2,   // the start only
};

// Construct routines, reached from MatchHere with ip at the construct.
int RepeatChar(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget);
int RepeatAnyByte(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget);
int RepeatType(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget);
int RepeatCodePoint(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget);
int RepeatProperty(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget);
int RepeatExtended(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget);
int RepeatClass(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget);
int RepeatBackref(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget);
int GroupOpen(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget);
int GroupEnd(const u8* pos, MatchContext* ctx, const Instruction* ket, int budget);
int LookAround(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget);
int Atomic(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget);
int SetFlags(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget);

// Whether the look-around group opened at ip has a body that matches at
// pos (negation not applied). Used by look-around and by conditions.
bool LookTest(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget);

// The next OP_ALT of the group with link value `link`, searching from
// `from` up to the group's OP_KET (nested groups and class members passed
// over), or null.
const Instruction* NextAlternative(const Instruction* from, const Instruction* ket, int link);

// Fails the branch for lack of stack.
int OutOfStack(MatchContext* ctx);

}  // namespace vkp::regexp
