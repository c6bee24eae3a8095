// vkpsRegExpFind_8u: argument checks, literal narrowing and shortcuts, then
// the matcher, once or for every match (global option).
#include "regexp/match/find_driver.h"

#include "floor/entries.h"
#include "regexp/match/analysis.h"
#include "regexp/match/literal_scan.h"
#include "regexp/match/match_context.h"
#include "regexp/match/memo.h"
#include "regexp/match/stack_limit.h"
#include "floor/utf8.h"

namespace vkp::regexp {

namespace {

void Append(const RegExpFind* records, int first, int count, RegExpFind* out, int cap, int* written) {
    for (int k = first; k < first + count && *written < cap; ++k) out[(*written)++] = records[k];
}

constexpr int kShortSubject = 256;

// A byte every match holds, searched for from pos on: *at caches where it
// was last found.
bool RequiredByteAhead(const Analysis& a, const u8* pos, const u8* end, const u8** at) {
    if (a.requiredByte < 0 || *at >= pos) return true;
    const int len = static_cast<int>(end - pos);
    const int i = a.requiredCaseless ? FindFolded(pos, len, static_cast<u8>(a.requiredByte))
                                     : FindLiteral(pos, len, reinterpret_cast<const u8*>(&a.requiredByte), 1, false);
    if (i < 0) return false;
    *at = pos + i;
    return true;
}

// Whether the byte or literal the start filter searches for (kByte,
// kLiteral, kRunBefore) occurs in s[0, len).
bool FilterTargetAhead(const StartFilter& f, const u8* s, int len) {
    if (f.mode == StartFilter::kByte) return FindLiteral(s, len, &f.byte, 1, false) >= 0;
    return FindLiteral(s, len, f.literal, f.literalLength, f.caseless != 0) >= 0;
}

// The leftmost occurrence in s[0, len) of any of the literals at 0, 2, 4,
// ... below count (the alternatives of an alternation of literals, or a
// program that is one literal), the earliest literal among those found at
// the same index: its index and, in *length, its length; -1 when none
// occurs.
int LeftmostLiteral(const Instruction* program, int count, const u8* s, int len, bool caseless, int* length) {
    int best = -1;
    for (int k = 0; k < count; k += 2) {
        const Literal lit = LiteralOf(program[k]);
        // Only an occurrence that starts before the best one counts.
        int limit = len;
        if (best >= 0 && best - 1 + lit.length < limit) limit = best - 1 + lit.length;
        const int i = FindLiteral(s, limit, lit.bytes, lit.length, caseless);
        if (i >= 0 && (best < 0 || i < best)) {
            best = i;
            *length = lit.length;
        }
    }
    return best;
}

// A program of literals alone (analysis.h): their occurrences, leftmost
// first and not overlapping, are its matches, found by the literal search
// alone. Under format 1 a literal that begins with a continuation byte is
// left to the matcher, which starts only at character boundaries; any
// other first byte always starts one.
bool LiteralsOnly(const RegExpState* state, const Analysis& an) {
    return an.literalsOnly && (state->format == kFormatBytes || !an.literalContinuationLed);
}

Status SearchLiterals(const u8* src, int srcLen, RegExpState* state, RegExpFind* matches, int* numMatches) {
    const Instruction* program = ProgramOf(state);
    const bool caseless = (state->options & kOptIgnoreCase) != 0;
    const int cap = (state->options & kOptGlobal) ? *numMatches : 1;
    RegExpFind* records = RecordsOf(state);
    int written = 0;
    for (int pos = 0; written < cap;) {
        int length = 0;
        const int i = LeftmostLiteral(program, state->instructionCount, src + pos, srcLen - pos, caseless, &length);
        if (i < 0) break;
        records[0] = {src + pos + i, length};
        matches[written++] = records[0];
        pos += i + length;
    }
    *numMatches = written;
    return kOk;
}

Status Search(const u8* src, int srcLen, RegExpState* state, const Analysis& an, RegExpFind* matches,
              int* numMatches, const char* stackFloor, Memo* memo, bool allRecords) {
    if (LiteralsOnly(state, an)) return SearchLiterals(src, srcLen, state, matches, numMatches);
    const Instruction* program = ProgramOf(state);
    const int count = state->instructionCount;
    const u32 options = state->options;
    const int groups = state->groupCount;
    int effLen = srcLen;

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
    if (state->patternKind == kKindLiteralAlternation && !(options & kOptGlobal) && an.literalsOnly) {
        int length = 0;
        const int best = LeftmostLiteral(program, count, src, effLen, (options & kOptIgnoreCase) != 0, &length);
        if (best < 0) {
            *numMatches = 0;
            return kOk;
        }
        matches[0] = {src + best, length};
        *numMatches = 1;
        return kOk;
    }

    // 3. A leading literal: start at its first occurrence, also when a lazy
    // repeat makes it optional (kind 1 says so); when the literal does not
    // occur the full search runs, unless every match begins with it.
    const u8* start = src;
    if (state->patternKind == kKindLeadingLiteral && count > 0) {
        const Literal lit = LiteralOf(program[0]);
        if (lit.length > 0) {
            const bool caseless = (program[0].c & kOptIgnoreCase) != 0;
            const int i = FindLiteral(src, effLen, lit.bytes, lit.length, caseless);
            if (i > 0) {
                start = src + i;
                effLen -= i;
            } else if (i < 0 && an.leadLiteral && (caseless || !(options & kOptIgnoreCase))) {
                *numMatches = 0;
                return kOk;
            }
        }
    }

    // 4. A byte every match holds. When the start filter searches for it,
    // what the filter searches for (a literal every match holds, which
    // begins with that byte) is tested instead, on a short subject only:
    // one scan of a line is cheaper than setting up the matcher for a line
    // without it.
    const u8* required = nullptr;
    if (an.requiredByFilter ? effLen <= kShortSubject && !FilterTargetAhead(an.filter, start, effLen)
                            : !RequiredByteAhead(an, start, start + effLen, &required)) {
        *numMatches = 0;
        return kOk;
    }

    // 5. The context.
    const int anchorMode = an.anchorMode;
    const int firstAlternative = an.firstAlternative;
    MatchContext ctx;
    ctx.startFilter = an.filter.mode == StartFilter::kNone ? nullptr : &an.filter;
    ctx.possessive = an.anyPossessive ? an.possessive : nullptr;
    ctx.leadRepeat = an.leadRepeat >= 0 ? program + an.leadRepeat : nullptr;
    ctx.leadRunEnd = nullptr;
    ctx.classBits = an.anyClass ? an.classes : nullptr;
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
    ctx.groups = reinterpret_cast<GroupEntry*>(state->workArea);
    ctx.stackFloor = stackFloor ? stackFloor : ThreadStackFloor();
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
    const int firstRecord = groups > 1 && !allRecords ? 1 : 0;
    const int perMatch = groups > 1 && !allRecords ? groups - 1 : groups;
    const int cap = *numMatches;
    int written = 0;
    const u8* pos = start;
    const u8* const end = start + effLen;
    while (written < cap) {
        if (!an.requiredByFilter && !RequiredByteAhead(an, pos, end, &required)) break;
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
        const int step = ctx.format == kFormatUtf8 ? CharLength(matchStart, end) : 1;
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

}  // namespace

Status FindInState(const u8* src, int srcLen, RegExpState* state, RegExpFind* matches, int* numMatches,
                   const char* stackFloor, Memo* memo, bool allRecords) {
    // Room for an analysis that cannot be kept, written only then.
    alignas(Analysis) u8 local[sizeof(Analysis)];
    bool kept;
    const Analysis* an = AnalysisFor(state, reinterpret_cast<Analysis*>(local), &kept);
    const Status s = Search(src, srcLen, state, *an, matches, numMatches, stackFloor, memo, allRecords);
    if (!kept) ClearAnalysisStamp(state);
    return s;
}

__attribute__((noinline)) Status FindBounded(const u8* src, int srcLen, RegExpState* state, RegExpFind* matches,
                                             int* numMatches, const char* stackFloor, bool allRecords) {
    Memo memo;
    return FindInState(src, srcLen, state, matches, numMatches, stackFloor, &memo, allRecords);
}

Status FindTimeBounded(const u8* src, int srcLen, RegExpState* state, RegExpFind* matches, int* numMatches,
                       bool allRecords) {
    // The stack floor is looked up only when the matcher runs: literal
    // programs and searches settled by the prefilters do without it.
    const Status st = FindInState(src, srcLen, state, matches, numMatches, nullptr, nullptr, allRecords);
    if (st != kSearchAgain) return st;
    return FindBounded(src, srcLen, state, matches, numMatches, ThreadStackFloor(), allRecords);
}

}  // namespace vkp::regexp

namespace vkp::entry {

Status vkpsRegExpFind_8u(const u8* pSrc, int srcLen, RegExpState* pState, RegExpFind* pMatches, int* pNumMatches) {
    if (!pSrc || !pState || !pMatches || !pNumMatches) return kErrNull;
    if (srcLen < 0) return kErrLength;
    if (*pNumMatches < 1) return kErrSize;
    if (pState->magic != kRegExpMagic) return VKP_ERR_NOT_COMPILED;
    return regexp::FindTimeBounded(pSrc, srcLen, pState, pMatches, pNumMatches, false);
}

}  // namespace vkp::entry
