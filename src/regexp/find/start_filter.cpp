// The start filter of a program searched from every position: its start
// bytes, or something rarer that every match holds near its start.
#include "regexp/find/start_filter.h"

#include "regexp/find/inner_literal.h"

namespace vkp::regexp {

int FirstAfterAnchors(const Instruction* prog, int count) {
    int i = 0;
    while (i < count && prog[i].op == OP_ANCHOR) ++i;
    return i;
}

namespace {

// A program of one alternative that begins with a repeat of one item whose
// members are all ASCII, followed by a literal that no repeat follows: a
// match from s holds the literal at some p >= s with only members of the
// item in [s, p). So with q the first occurrence of the literal from the
// search position on, every match starts at or after the start of the run
// of members that ends at q (a start before it would need a run reaching
// an occurrence at or after q, across that start). The search goes from
// one occurrence to the next and back over the run before it.
void FilterRunBefore(const Instruction* prog, int count, u32 options, StartFilter* f) {
    const int i = FirstAfterAnchors(prog, count);  // anchors take no bytes
    if (count - i < 3 || !(IsSingleItem(prog[i].op) || prog[i].op == OP_CLASS)) return;
    const int r = NextItem(prog, i);
    const int at = r + 1;
    if (at >= count || !vkp::IsRepeat(prog[r].op)) return;
    const Literal literal = LiteralOf(prog[at]);
    if (literal.length == 0) return;
    if (at + 1 < count && vkp::IsRepeat(prog[at + 1].op)) return;
    const u8* lit = literal.bytes;
    const int n = literal.length;
    const bool caseless = ((options | static_cast<u32>(prog[at].c)) & kOptIgnoreCase) != 0;
    for (int k = 0; k < n; ++k)  // a caseless search folds ASCII letters only
        if (lit[k] >= 128 && (k == 0 || caseless)) return;
    ByteSet run{};
    if (!ItemFirstBytes(prog, i, options, &run)) return;
    if (run.HasHigh()) return;
    f->mode = StartFilter::kRunBefore;
    f->literal = lit;
    f->literalLength = n;
    f->caseless = caseless;
    f->run = run;
}

// A program of one alternative that begins, behind anchors, with at least
// n >= 3 (2 of at most 26 bytes) of one item whose members are ASCII bytes
// (`\b\w{12,}`, `\d{3,}`): its start bytes are the item's, and a match
// begins where a run of n of them does, found a vector at a time.
void FilterRun(const Instruction* prog, int count, StartFilter* f) {
    if (f->mode != StartFilter::kAscii) return;
    const int i = FirstAfterAnchors(prog, count);
    if (i >= count || !(IsSingleItem(prog[i].op) || prog[i].op == OP_CLASS)) return;
    const int r = NextItem(prog, i);
    // Pairs of a narrow class (digits, capitals) are rare enough too.
    if (r >= count || !vkp::IsRepeat(prog[r].op) || prog[r].a < (f->set.Count() <= 26 ? 2 : 3)) return;
    f->mode = StartFilter::kRun;
    f->runLength = prog[r].a;
}

// A literal every match holds near its start, searched for instead of the
// bytes a match begins with when those are frequent: a set of several
// bytes (digits, word bytes), or one byte where the literal is longer.
void FilterInnerLiteral(const Instruction* prog, int count, u32 options, StartFilter* f) {
    const bool bytesOnly = f->mode == StartFilter::kByte || f->mode == StartFilter::kFolded ||
                           f->mode == StartFilter::kFew || f->mode == StartFilter::kAscii || f->mode == StartFilter::kAny;
    InnerLiteral inner;
    if (!bytesOnly || !FindInnerLiteral(prog, count, options, &inner)) return;
    if (inner.group >= 0) {  // a leading group is the lead literals' (analysis.cpp)
        if (inner.maxBefore == 0) return;
        f->mode = StartFilter::kInnerLiteralSet;
        f->literals = nullptr;
        f->innerGroup = inner.group;
        f->innerOptions = inner.groupOptions;
        f->innerMin = inner.minBefore;
        f->innerMax = inner.maxBefore;
        return;
    }
    if (inner.length < 2 && f->set.Count() < 3) return;
    f->mode = StartFilter::kInnerLiteral;
    f->literal = inner.bytes;
    f->literalLength = inner.length;
    f->caseless = inner.caseless;
    f->innerMin = inner.minBefore;
    f->innerMax = inner.maxBefore;
}

}  // namespace

StartFilter ChooseStartFilter(const Instruction* program, int count, u32 options, bool oneAlternative,
                              bool leadLiteral) {
    StartFilter f = MakeStartFilter(program, count, options);
    // A program of one alternative that begins with a literal of two bytes
    // or more, which no repeat follows: every match begins with it, so the
    // search goes from one occurrence to the next.
    if (f.mode != StartFilter::kNone && leadLiteral && program[0].op == OP_STRING && program[0].b >= 2) {
        f.mode = StartFilter::kLiteral;
        f.literal = static_cast<const u8*>(program[0].d);
        f.literalLength = program[0].b;
        f.caseless = ((options | static_cast<u32>(program[0].c)) & kOptIgnoreCase) != 0;
    }
    // What is rarer than the start bytes: a literal at a bounded distance
    // before the walk back over an unbounded run (which finds more starts
    // to try), a run of class members last.
    FilterInnerLiteral(program, count, options, &f);
    if (oneAlternative && f.mode != StartFilter::kInnerLiteral) FilterRunBefore(program, count, options, &f);
    if (oneAlternative) FilterRun(program, count, &f);
    return f;
}

}  // namespace vkp::regexp
