// vkpsRegExpFind_8u: argument checks, literal narrowing and shortcuts, then
// the matcher, once or for every match (global option).
#include "regexp/find/find_driver.h"

#include "floor/entries.h"
#include "regexp/find/analysis.h"
#include "regexp/find/match_start.h"
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

Status NoMatch(int* numMatches) {
    *numMatches = 0;
    return kOk;
}

// The literal search alone: the leftmost occurrence of any literal, and in
// a global search the next ones, not overlapping. All literals in one pass
// when the analysis compiled them into a set, else one after another.
Status SearchLiterals(const u8* src, int srcLen, RegExpState* state, const Analysis& an, RegExpFind* matches,
                      int* numMatches) {
    const Instruction* program = ProgramOf(state) + an.literalsFrom;
    const int count = an.literalsCount;
    const bool caseless = an.literalsCaseless != 0;
    const int cap = (state->options & kOptGlobal) ? *numMatches : 1;
    RegExpFind* records = RecordsOf(state);
    int written = 0;
    const Literal one = count == 1 ? LiteralOf(program[0]) : Literal{};
    if (one.length && cap == 1) {  // one literal, one search: the commonest call, kept short
        const int i = FindLiteral(src, srcLen, one.bytes, one.length, caseless);
        if (i < 0) return NoMatch(numMatches);
        records[0] = {src + i, one.length};
        matches[0] = records[0];
        *numMatches = 1;
        return kOk;
    }
    for (int pos = 0; written < cap;) {
        int length = one.length, which = 0;
        const int i = one.length ? FindLiteral(src + pos, srcLen - pos, one.bytes, one.length, caseless)
                      : an.leadSet ? FindLiteralSet(src + pos, srcLen - pos, an.leadSet, &which)
                                   : LeftmostLiteral(program, count, src + pos, srcLen - pos, caseless, &length);
        if (i < 0) break;
        if (an.leadSet && !one.length) length = LiteralOf(program[2 * which]).length;
        records[0] = {src + pos + i, length};
        matches[written++] = records[0];
        pos += i + length;
    }
    *numMatches = written;
    return kOk;
}

// Whether the literal search serves a literals-only program in this search.
// Under format 1 a literal that begins with a continuation byte could be
// found inside a character, where the matcher never starts; a single search
// of an alternation of literals still takes the leftmost occurrence.
bool LiteralSearchServes(const RegExpState* state, const Analysis& an) {
    if (state->format == kFormatBytes || !an.literalContinuationLed) return true;
    return state->patternKind == kKindLiteralAlternation && !(state->options & kOptGlobal);
}

// The part of the subject a search looks at: [start, start + length), with
// anchors still seeing the subject start.
struct Window {
    const u8* start;
    int length;
};

// Nothing of a match can lie beyond the last occurrence of the last literal
// when only repeat records follow it. (Behind a top-level bar the compiler
// reports one only for a repeated literal after another repeat; the cut
// then applies as it does everywhere.)
void CutBehindLastLiteral(const RegExpState* state, Window* w) {
    const int at = state->lastLiteralIndex;
    if (at < 0 || at >= state->instructionCount) return;
    const Instruction& ins = ProgramOf(state)[at];
    const Literal lit = LiteralOf(ins);
    if (lit.length == 0) return;
    const int i = FindLiteralRev(w->start, w->length, lit.bytes, lit.length, (ins.c & kOptIgnoreCase) != 0);
    w->length = i < 0 ? 0 : i + lit.length;
}

// A leading literal: the window starts at its first occurrence, also when a
// lazy repeat makes it optional (kind 1 says so). When it does not occur the
// whole window is searched, unless every match begins with it: false then.
bool StartAtLeadingLiteral(const RegExpState* state, const Analysis& an, Window* w) {
    if (state->patternKind != kKindLeadingLiteral || state->instructionCount == 0) return true;
    const Instruction& first = ProgramOf(state)[0];
    const Literal lit = LiteralOf(first);
    if (lit.length == 0) return true;
    const bool caseless = (first.c & kOptIgnoreCase) != 0;
    const int i = FindLiteral(w->start, w->length, lit.bytes, lit.length, caseless);
    if (i > 0) {
        w->start += i;
        w->length -= i;
    }
    return !(i < 0 && an.leadLiteral && (caseless || !(state->options & kOptIgnoreCase)));
}

// A byte every match holds. When the start filter searches for it, what the
// filter searches for (a literal every match holds, which begins with that
// byte) is tested instead, on a short subject only: one scan of a line is
// cheaper than setting up the matcher for a line without it.
bool RequiredBytePresent(const Analysis& an, const Window& w, const u8** required) {
    if (an.requiredByFilter) return w.length > kShortSubject || FilterTargetAhead(an.filter, w.start, w.length);
    return RequiredByteAhead(an, w.start, w.start + w.length, required);
}

void SetUpContext(RegExpState* state, const Analysis& an, const u8* src, const Window& w, const char* stackFloor,
                  Memo* memo, MatchContext* ctx) {
    const Instruction* program = ProgramOf(state);
    const int count = state->instructionCount;
    ctx->possessive = an.anyPossessive ? an.possessive : nullptr;
    ctx->leadRepeat = an.leadRepeat >= 0 ? program + an.leadRepeat : nullptr;
    ctx->leadRunEnd = nullptr;
    ctx->classBits = an.anyClass ? an.classes : nullptr;
    ctx->end = program + count;
    ctx->options = state->options;
    ctx->notEmpty = 0;
    ctx->recordCount = state->groupCount;
    ctx->format = state->format;
    ctx->budget = state->matchLimit;
    ctx->recordsDirty = 1;
    ctx->program = program;
    ctx->programEnd = program + count;
    ctx->subjectStart = src;
    ctx->subjectEnd = w.start + w.length;
    ctx->attemptStart = w.start;
    ctx->matchEnd = w.start;
    ctx->mustEndAt = nullptr;
    ctx->records = RecordsOf(state);
    ctx->groups = reinterpret_cast<GroupEntry*>(state->workArea);
    ctx->stackFloor = stackFloor ? stackFloor : ThreadStackFloor();
    ctx->stackExhausted = 0;
    BoundsInit(ctx, memo, w.length, count, state->matchLimit);
}

// The status of a search that found nothing.
Status NothingFound(const MatchContext& ctx, int* numMatches) {
    if (StepLimitHit(&ctx)) return BoundsStatus(&ctx);
    if (ctx.stackExhausted) return VKP_ERR_MATCH_LIMIT;
    return NoMatch(numMatches);
}

// One match: its records, as many as the array takes.
Status MatchOnce(MatchContext* ctx, const Analysis& an, const Window& w, RegExpFind* matches, int* numMatches) {
    if (MatchStart(w.start, w.length, ctx, an, an.anchorMode) != 0)
        return NothingFound(*ctx, numMatches);
    const int groups = ctx->recordCount;
    const int n = *numMatches < groups ? *numMatches : groups;
    for (int k = 0; k < n; ++k) matches[k] = ctx->records[k];
    *numMatches = n;
    return n < groups ? VKP_WARN_FEW_RECORDS : kOk;
}

// Every match: record 0 per match when there is no group, else the groups
// (allRecords: record 0 and the groups). After an empty match, a non-empty
// match of one character (one byte under format 0) is tried at the same
// place before moving on by that character; an empty match at the very end
// stops the search.
Status MatchAll(MatchContext* ctx, const Analysis& an, const Window& w, const u8* required, bool allRecords,
                RegExpFind* matches, int* numMatches) {
    const int groups = ctx->recordCount;
    const int firstRecord = groups > 1 && !allRecords ? 1 : 0;
    const int perMatch = groups > 1 && !allRecords ? groups - 1 : groups;
    const int cap = *numMatches;
    int written = 0;
    const u8* pos = w.start;
    const u8* const end = w.start + w.length;
    while (written < cap) {
        if (!an.requiredByFilter && !RequiredByteAhead(an, pos, end, &required)) break;
        ctx->notEmpty = 0;
        if (MatchStart(pos, static_cast<int>(end - pos), ctx, an, an.anchorMode) != 0) break;
        Append(ctx->records, firstRecord, perMatch, matches, cap, &written);
        const u8* matchStart = ctx->records[0].pMatch;
        const int matchLen = ctx->records[0].matchLen;
        if (matchLen > 0) {
            pos = matchStart + matchLen;
            continue;
        }
        if (matchStart >= end) break;
        const int step = ctx->format == kFormatUtf8 ? CharLength(matchStart, end) : 1;
        if (written < cap) {
            ctx->notEmpty = 1;
            if (MatchStart(matchStart, step, ctx, an, kAnchorSubjectStart) == 0)
                Append(ctx->records, firstRecord, perMatch, matches, cap, &written);
        }
        pos = matchStart + step;
    }
    if (written == 0) return NothingFound(*ctx, numMatches);
    if (StepLimitHit(ctx)) return BoundsStatus(ctx);
    *numMatches = written;
    return written >= perMatch ? kOk : VKP_WARN_FEW_RECORDS;
}

// The search, by the strategy the analysis chose for the pattern.
Status Search(const u8* src, int srcLen, RegExpState* state, const Analysis& an, RegExpFind* matches,
              int* numMatches, const char* stackFloor, Memo* memo, bool allRecords) {
    if (an.strategy == Strategy::kLiterals && LiteralSearchServes(state, an))
        return SearchLiterals(src, srcLen, state, an, matches, numMatches);
    Window w{src, srcLen};
    CutBehindLastLiteral(state, &w);
    if (an.strategy != Strategy::kMatcher && !StartAtLeadingLiteral(state, an, &w)) return NoMatch(numMatches);
    const u8* required = nullptr;
    if (!RequiredBytePresent(an, w, &required)) return NoMatch(numMatches);
    MatchContext ctx;
    SetUpContext(state, an, src, w, stackFloor, memo, &ctx);
    if (!(state->options & kOptGlobal)) return MatchOnce(&ctx, an, w, matches, numMatches);
    return MatchAll(&ctx, an, w, required, allRecords, matches, numMatches);
}

}  // namespace

Status FindInState(const u8* src, int srcLen, RegExpState* state, RegExpFind* matches, int* numMatches,
                   const char* stackFloor, Memo* memo, bool allRecords) {
    // Room for an analysis that cannot be kept, written only then.
    alignas(Analysis) u8 local[sizeof(Analysis)];
    bool kept = true;
    const Analysis* an = KeptAnalysis(state);
    if (!an) an = AnalysisFor(state, reinterpret_cast<Analysis*>(local), &kept);
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
