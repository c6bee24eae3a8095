// vkpsRegExpFind_8u: argument checks, literal narrowing and shortcuts, then
// the matcher, once or for every match (global option).
#include "regexp/match/find_driver.h"

#include "frame/entries.h"
#include "regexp/match/first_bytes.h"
#include "regexp/match/literal_scan.h"
#include "regexp/match/match_context.h"
#include "regexp/match/memo.h"
#include "regexp/match/stack_limit.h"
#include "regexp/match/utf8.h"

namespace vkp::regexp {

namespace {

struct Literal {
    const u8* bytes;
    int length;  // 0: not a literal instruction
};

Literal LiteralOf(const Instruction& ins) {
    if (ins.op == OP_CHAR) return {reinterpret_cast<const u8*>(&ins.a), 1};  // little-endian: a's low byte
    if (ins.op == OP_STRING && ins.b > 0) return {static_cast<const u8*>(ins.d), ins.b};
    return {nullptr, 0};
}

bool IsOpener(u32 op) {
    return op == OP_CAPTURE || op == OP_GROUP || op == OP_FLAGGROUP || op == OP_COND || op == OP_ATOMIC ||
           op == OP_LOOKAHEAD || op == OP_NLOOKAHEAD || op == OP_LOOKBEHIND || op == OP_NLOOKBEHIND;
}

// The group table: for every group id its opener, OP_KET, repeat and
// capture number.
void FillGroupTable(const Instruction* program, int count, GroupEntry* groups) {
    for (int i = 0; i < count; ++i) {
        const Instruction& ins = program[i];
        if (ins.op == OP_CLASS) {
            i += ins.b > 0 ? ins.b : 0;
            continue;
        }
        if (!IsOpener(ins.op)) continue;
        const int id = ins.a < 0 ? -ins.a : ins.a;
        const int ket = i + ins.b + 1;
        if (id <= 0 || id >= kMaxGroupIds || ins.b < 0 || ket >= count) continue;
        GroupEntry& g = groups[id];
        g.iterStart = nullptr;
        g.opener = i;
        g.ket = ket;
        g.count = 0;
        const bool repeated = ket + 1 < count && IsRepeat(&program[ket + 1]);
        g.repeated = repeated;
        g.lazy = repeated && program[ket + 1].op == OP_LAZY_REPEAT;
        g.min = repeated ? program[ket + 1].a : 1;
        g.max = repeated ? program[ket + 1].b : 1;
        g.capture = ins.op == OP_CAPTURE && ins.c > 0 && ins.c < kMaxGroupIds ? static_cast<u16>(ins.c) : 0;
    }
}

void Append(const RegExpFind* records, int first, int count, RegExpFind* out, int cap, int* written) {
    for (int k = first; k < first + count && *written < cap; ++k) out[(*written)++] = records[k];
}

}  // namespace

Status FindInState(const u8* src, int srcLen, RegExpState* state, RegExpFind* matches, int* numMatches,
                   const char* stackFloor, Memo* memo) {
    const Instruction* program = ProgramOf(state);
    const int count = state->instructionCount;
    const u32 options = state->options;
    const int groups = state->groupCount;
    int effLen = srcLen;

    // The first top-level bar, if any.
    int firstBar = count;
    for (int i = 0; i < count; ++i)
        if (program[i].op == OP_ALT && program[i].a == 0) {
            firstBar = i;
            break;
        }

    // 1. Nothing of a match can lie beyond the last occurrence of the last
    // literal when only repeat records follow it. (Behind a top-level bar
    // the compiler reports one only for a repeated literal after another
    // repeat; the cut then applies as it does everywhere.)
    if (state->lastLiteralIndex >= 0 && state->lastLiteralIndex < count) {
        const Instruction& ins = program[state->lastLiteralIndex];
        const Literal lit = LiteralOf(ins);
        if (lit.length > 0) {
            const int i = FindLiteralRev(src, effLen, lit.bytes, lit.length, (ins.c & kOptIgnoreCase) != 0);
            effLen = i < 0 ? 0 : i + lit.length;
        }
    }

    // 2. An alternation of literals: the leftmost occurrence of any, the
    // earliest alternative among those at the same index.
    if (state->patternKind == 2 && !(options & kOptGlobal)) {
        int best = -1, bestLength = 0;
        bool literals = true;
        for (int k = 0; k < count && literals; k += 2) {
            const Literal lit = LiteralOf(program[k]);
            if (lit.length == 0) {
                literals = false;
                break;
            }
            // Only an occurrence that starts before the best one counts.
            int limit = effLen;
            if (best >= 0 && best - 1 + lit.length < limit) limit = best - 1 + lit.length;
            const int i = FindLiteral(src, limit, lit.bytes, lit.length, (options & kOptIgnoreCase) != 0);
            if (i >= 0 && (best < 0 || i < best)) {
                best = i;
                bestLength = lit.length;
            }
        }
        if (literals) {
            if (best < 0) {
                *numMatches = 0;
                return kOk;
            }
            matches[0] = {src + best, bestLength};
            *numMatches = 1;
            return kOk;
        }
    }

    // 3. A leading literal: start at its first occurrence, also when a lazy
    // repeat makes it optional (kind 1 says so); when the literal does not
    // occur the full search runs.
    const u8* start = src;
    if (state->patternKind == 1 && count > 0) {
        const Literal lit = LiteralOf(program[0]);
        if (lit.length > 0) {
            const int i = FindLiteral(src, effLen, lit.bytes, lit.length, (program[0].c & kOptIgnoreCase) != 0);
            if (i > 0) {
                start = src + i;
                effLen -= i;
            }
        }
    }

    // 4. Anchoring.
    int anchorMode = 0;
    int firstAlternative = 0;
    if (count > 0 && program[0].op == OP_ANCHOR) {
        firstAlternative = firstBar;
        if (firstBar == count) {
            const int a = program[0].a;
            if (a == 'A' || a == 'G') anchorMode = 2;
            else if (a == '^') anchorMode = options & kOptMultiline ? 1 : 2;
            else if (a == 128) anchorMode = 1;  // the implicit anchor holds at line starts only
            // An anchor that a repeat makes optional anchors nothing.
            if (count > 1 && IsRepeat(&program[1]) && program[1].a == 0) anchorMode = 0;
        }
    }

    // 5. The context.
    GroupEntry* table = reinterpret_cast<GroupEntry*>(state->workArea);
    FillGroupTable(program, count, table);
    // Start positions whose byte cannot begin a match are passed over.
    StartFilter filter;
    if (anchorMode == 0) filter = MakeStartFilter(program, count, options);

    MatchContext ctx;
    ctx.startFilter = filter.mode == StartFilter::kNone ? nullptr : &filter;
    ctx.end = program + count;
    ctx.options = options;
    ctx.notEmpty = 0;
    ctx.recordCount = groups;
    ctx.format = state->format;
    ctx.budget = state->matchLimit;
    ctx.recordsDirty = 1;
    ctx.program = program;
    ctx.programEnd = program + count;
    ctx.subjectStart = src;
    ctx.subjectEnd = start + effLen;
    ctx.attemptStart = start;
    ctx.matchEnd = start;
    ctx.mustEndAt = nullptr;
    ctx.records = RecordsOf(state);
    ctx.groups = table;
    ctx.stackFloor = stackFloor;
    ctx.stackExhausted = 0;
    BoundsInit(&ctx, memo, effLen, count, state->matchLimit);

    // 6. Single search.
    if (!(options & kOptGlobal)) {
        if (MatchStart(start, effLen, &ctx, anchorMode, firstAlternative) != 0) {
            if (StepLimitHit(&ctx)) return BoundsStatus(&ctx);
            if (ctx.stackExhausted) return VKP_ERR_MATCH_LIMIT;
            *numMatches = 0;
            return kOk;
        }
        const int n = *numMatches < groups ? *numMatches : groups;
        for (int k = 0; k < n; ++k) matches[k] = ctx.records[k];
        *numMatches = n;
        return n < groups ? VKP_WARN_FEW_RECORDS : kOk;
    }

    // 7. Global search: record 0 per match when there is no group, else
    // the groups. After an empty match, a non-empty match of one character
    // (one byte under format 0) is tried at the same place before moving on
    // by that character; an empty match at the very end stops the search.
    const int firstRecord = groups > 1 ? 1 : 0;
    const int perMatch = groups > 1 ? groups - 1 : 1;
    const int cap = *numMatches;
    int written = 0;
    const u8* pos = start;
    const u8* const end = start + effLen;
    while (written < cap) {
        ctx.notEmpty = 0;
        if (MatchStart(pos, static_cast<int>(end - pos), &ctx, anchorMode, firstAlternative) != 0) break;
        Append(ctx.records, firstRecord, perMatch, matches, cap, &written);
        const u8* matchStart = ctx.records[0].pMatch;
        const int matchLen = ctx.records[0].matchLen;
        if (matchLen > 0) {
            pos = matchStart + matchLen;
            continue;
        }
        if (matchStart >= end) break;
        const int step = ctx.format == 1 ? CharLength(matchStart, end) : 1;
        if (written < cap) {
            ctx.notEmpty = 1;
            if (MatchStart(matchStart, step, &ctx, 2, firstAlternative) == 0)
                Append(ctx.records, firstRecord, perMatch, matches, cap, &written);
        }
        pos = matchStart + step;
    }
    if (StepLimitHit(&ctx)) return BoundsStatus(&ctx);
    if (written == 0) {
        if (ctx.stackExhausted) return VKP_ERR_MATCH_LIMIT;
        *numMatches = 0;
        return kOk;
    }
    *numMatches = written;
    return written >= perMatch ? kOk : VKP_WARN_FEW_RECORDS;
}

}  // namespace vkp::regexp

namespace vkp::entry {

Status vkpsRegExpFind_8u(const u8* pSrc, int srcLen, RegExpState* pState, RegExpFind* pMatches, int* pNumMatches) {
    if (!pSrc || !pState || !pMatches || !pNumMatches) return kErrNull;
    if (srcLen < 0) return kErrLength;
    if (*pNumMatches < 1) return kErrSize;
    if (pState->magic != kRegExpMagic) return VKP_ERR_NOT_COMPILED;
    const char* floor = regexp::ThreadStackFloor();
    const Status st = regexp::FindInState(pSrc, srcLen, pState, pMatches, pNumMatches, floor, nullptr);
    if (st != regexp::kSearchAgain) return st;
    return regexp::FindBounded(pSrc, srcLen, pState, pMatches, pNumMatches, floor);
}

}  // namespace vkp::entry
