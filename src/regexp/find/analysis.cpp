// The per-program analysis of the find driver, worked out once per compiled
// block and kept in its work area.
#include "regexp/find/analysis.h"

#include "regexp/find/lead_literals.h"
#include "regexp/find/start_filter.h"
#include "regexp/find/subject_print.h"
#include "regexp/match/items.h"

namespace vkp::regexp {

namespace {

constexpr int kMaxWalkDepth = 64;  // deeper groups are not looked into (no bit set: always safe)

// The group table: for every group id its opener, OP_KET, repeat and
// capture number. Returns the highest id.
int FillGroupTable(const Instruction* program, int count, GroupEntry* groups) {
    int highest = 0;
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
        if (id > highest) highest = id;
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
    return highest;
}

bool Disjoint(const ByteSet& x, const ByteSet& y) {
    u32 common = 0;
    for (int k = 0; k < 8; ++k) common |= x.bits[k] & y.bits[k];
    return common == 0;
}

// Keeps the ASCII members of the class at i under `options`, when its
// slot is free.
void KeepClass(const Instruction* prog, int i, u32 options, Analysis* a) {
    ClassBits& k = a->classes[ClassSlot(&prog[i])];
    if (k.cls) return;
    k.cls = &prog[i];
    k.options = options;
    for (int c = 0; c < 128; ++c)
        if (ClassContains(&prog[i], c, options)) {
            k.bits[c >> 5] |= u32(1) << (c & 31);
            AddNibbleMember(k.nibbles, c);
        }
    a->anyClass = 1;
}

// Walks the alternatives of [from, to) (bars with a == link): keeps the
// ASCII members of classes, and marks the greedy single-item
// repeats whose continuation within the alternative must begin with a byte
// the item can never begin with: at every shorter run the next character
// is one the item matched, so the continuation cannot start there.
void MarkItems(const Instruction* prog, int from, int to, int link, u32 options, int depth, Analysis* a) {
    for (int i = from; i < to;) {
        const Instruction& ins = prog[i];
        if (ins.op == OP_ALT && ins.a == link) {
            options = static_cast<u32>(ins.b);
            ++i;
            continue;
        }
        if (ins.op == OP_SETFLAGS) options = static_cast<u32>(ins.a);
        const int next = NextItem(prog, i);
        if (next > to) return;  // malformed: nothing more is marked
        if (ins.op == OP_CLASS) KeepClass(prog, i, options, a);
        if (IsOpener(ins.op)) {
            if (depth < kMaxWalkDepth) {
                const u32 inner = ins.op == OP_FLAGGROUP ? static_cast<u32>(ins.c) : options;
                MarkItems(prog, i + 1, next - 1, ins.a, inner, depth + 1, a);
            }
            options = static_cast<u32>(prog[next - 1].b);  // as the OP_KET restores them
        } else if (next < to && prog[next].op == OP_GREEDY_REPEAT && next < kPossessiveBits &&
                   (IsSingleItem(ins.op) || ins.op == OP_CLASS)) {
            int altEnd = next + 1;
            while (altEnd < to && !(prog[altEnd].op == OP_ALT && prog[altEnd].a == link))
                altEnd = NextItem(prog, altEnd);
            ByteSet item{}, follow{};
            if (altEnd <= to && ItemFirstBytes(prog, i, options, &item) &&
                SequenceFirstBytes(prog, next + 1, altEnd, options, &follow) && Disjoint(item, follow)) {
                a->possessive[next >> 3] |= static_cast<u8>(1u << (next & 7));
                a->anyPossessive = 1;
            }
        }
        i = next < to && vkp::IsRepeat(prog[next].op) ? next + 1 : next;
    }
}

// Back-references and conditions read capture records, which a failed
// path inside an attempt may leave set.
bool ReadsCaptures(const Instruction* prog, int count) {
    for (int i = 0; i < count; ++i) {
        if (prog[i].op == OP_BACKREF || prog[i].op == OP_COND) return true;
        if (prog[i].op == OP_CLASS && prog[i].b > 0) i += prog[i].b;
    }
    return false;
}


// A program of literals at 0, 2, 4, ... with a top-level bar between each
// two (one literal when count is 1), one literal behind an option setting,
// or a group of such literals (its bars linked to it) that is the whole
// program.
void MarkLiteralsOnly(const Instruction* prog, int count, u32 options, Analysis* a) {
    int from = 0, to = count, link = 0;
    if (count == 2 && prog[0].op == OP_SETFLAGS && LiteralOf(prog[1]).length > 0) {
        from = 1;
        options = static_cast<u32>(prog[0].a);
    } else if (count >= 3 && prog[0].op == OP_GROUP && prog[0].b == count - 2 && prog[count - 1].op == OP_KET) {
        from = 1;
        to = count - 1;
        link = prog[0].a;
    }
    if ((to - from) % 2 == 0) return;
    for (int k = from; k < to; ++k) {
        const Instruction& ins = prog[k];
        if ((k - from) % 2 == 1) {
            if (ins.op != OP_ALT || ins.a != link) return;
            continue;
        }
        const Literal lit = LiteralOf(ins);
        if (lit.length == 0) return;
        if ((lit.bytes[0] & 0xC0) == 0x80) a->literalContinuationLed = 1;
    }
    a->literalsOnly = 1;
    a->literalsFrom = static_cast<u8>(from);
    a->literalsCount = to - from;
    a->literalsCaseless = (options & kOptIgnoreCase) != 0;
}

// A byte of a literal that every match holds: one of the top-level
// sequence (the program has one alternative) that no repeat makes
// optional, the first after the leading item if there is one.
void FindRequiredByte(const Instruction* prog, int count, u32 options, Analysis* a) {
    a->requiredByte = -1;
    for (int i = 0; i < count;) {
        const Instruction& ins = prog[i];
        if (ins.op == OP_SETFLAGS) options = static_cast<u32>(ins.a);
        const int next = NextItem(prog, i);
        if (next > count) return;  // malformed: the byte found so far, if any, still holds
        const bool repeated = next < count && vkp::IsRepeat(prog[next].op);
        const Literal lit = LiteralOf(ins);
        if (lit.length > 0 && !(repeated && prog[next].a == 0)) {
            const u8 b = lit.bytes[0];
            const bool caseless = ((options | static_cast<u32>(ins.c)) & kOptIgnoreCase) && IsAsciiLetter(b);
            a->requiredByte = caseless ? (b | 0x20) : b;
            a->requiredCaseless = caseless;
            if (i > 0) return;
        }
        if (IsOpener(ins.op)) options = static_cast<u32>(prog[next - 1].b);
        i = repeated ? next + 1 : next;
    }
}

// Compiles the literals every match begins with one of into the block: the
// literal search takes them all in one pass, or the start filter finds
// where a match can begin with them (a group of two or more, none led by a
// byte that could stand inside a character).
void UseLeadLiterals(RegExpState* state, int highest, Analysis* a) {
    LeadLiterals lead;
    if (a->filter.mode == StartFilter::kInnerLiteralSet) {
        if (GroupLiterals(ProgramOf(state), a->filter.innerGroup, a->filter.innerOptions, &lead))
            a->filter.literals = PlaceLeadLiterals(state, highest, lead);
        return;
    }
    const bool literals = a->strategy == Strategy::kLiterals;
    if (!literals && (a->filter.mode == StartFilter::kNone || a->anchorMode != kAnchorAnywhere)) return;
    if (!FindLeadLiterals(ProgramOf(state), state->instructionCount, state->options, literals, &lead)) return;
    if (!literals && lead.highLed) return;
    a->leadSet = PlaceLeadLiterals(state, highest, lead);
    if (a->leadSet && !literals) {
        a->filter.mode = StartFilter::kLiteralSet;
        a->filter.literals = a->leadSet;
    }
}

// What a subject must hold for the search to get past the literal search
// or the prefilters: the pairs of the one literal of a literal program, or
// of the literal the start filter searches for (when its scan never falls
// back to the start bytes), and the required byte. The driver's checks of
// these end a search with no match before the matcher runs (see
// find_driver.cpp), so a set may give that result unsearched.
void SetNeed(const Instruction* prog, int count, Analysis* a) {
    a->needCount = 0;
    const StartFilter& f = a->filter;
    if (a->strategy == Strategy::kLiterals) {
        const int from = a->literalsFrom;
        if (a->literalsCount != 1) return;  // any of the literals will do
        const Literal lit = LiteralOf(prog[from]);
        const bool caseless = a->literalsCaseless || (static_cast<u32>(prog[from].c) & kOptIgnoreCase);
        if (lit.length >= 2 && lit.bytes[0] < 0x80) AddLiteralNeeds(lit.bytes, lit.length, caseless, a->needs, &a->needCount);
        if (a->needCount == 0) AddByteNeed(lit.bytes[0], a->needs, &a->needCount);
        return;
    }
    // An inner literal is searched for under format 1 only when no start
    // byte lies at or above 0x80 (first_bytes.cpp).
    const bool innerSearched = f.mode == StartFilter::kInnerLiteral && !f.set.HasHigh();
    if ((f.mode == StartFilter::kRunBefore || (f.mode == StartFilter::kLiteral && f.literal[0] < 0x80) ||
         innerSearched) && f.literalLength >= 2)
        AddLiteralNeeds(f.literal, f.literalLength, f.caseless != 0, a->needs, &a->needCount);
    if (innerSearched && f.literalLength == 1) AddByteNeed(f.literal[0], a->needs, &a->needCount);
    if (a->requiredByte >= 0) AddByteNeed(static_cast<u8>(a->requiredByte), a->needs, &a->needCount);
}

}  // namespace

int Analyze(const Instruction* program, int count, u32 options, GroupEntry* groups, Analysis* a) {
    *a = Analysis{};
    a->leadRepeat = -1;
    a->requiredByte = -1;
    // The first top-level bar, if any.
    int firstBar = count;
    for (int i = 0; i < count; ++i)
        if (program[i].op == OP_ALT && program[i].a == 0) {
            firstBar = i;
            break;
        }
    // Anchoring. After the first alternative the search for the next one
    // starts at the first top-level bar.
    a->firstAlternative = firstBar;
    // Option settings before the anchor ((?m)^) take no bytes.
    int k = 0;
    u32 anchorOptions = options;
    for (; k < count && program[k].op == OP_SETFLAGS; ++k) anchorOptions = static_cast<u32>(program[k].a);
    if (k < count && program[k].op == OP_ANCHOR && firstBar == count) {
        const int c = program[k].a;
        if (c == 'A' || c == 'G') a->anchorMode = kAnchorSubjectStart;
        else if (c == '^') a->anchorMode = anchorOptions & kOptMultiline ? kAnchorLineStarts : kAnchorSubjectStart;
        else if (c == kImplicitAnchor) a->anchorMode = kAnchorLineStarts;
        // An anchor that a repeat makes optional anchors nothing.
        if (k + 1 < count && IsRepeat(&program[k + 1]) && program[k + 1].a == 0) a->anchorMode = kAnchorAnywhere;
    }
    ByteSet lead;
    a->lineLead[0] = '\n';
    if (a->anchorMode == kAnchorLineStarts && FirstBytes(program, count, options, &lead) && lead.Count() == 1) {
        a->lineLed = 1;
        for (int b = 0; b < 256; ++b)
            if (lead.Has(static_cast<u8>(b))) a->lineLead[1] = static_cast<u8>(b);
    }
    a->leadLiteral = count > 0 && firstBar == count && (program[0].op == OP_CHAR || program[0].op == OP_STRING) &&
                     !(count > 1 && vkp::IsRepeat(program[1].op));
    MarkLiteralsOnly(program, count, options, a);
    // Start positions that cannot begin a match are passed over.
    if (a->anchorMode == kAnchorAnywhere)
        a->filter = ChooseStartFilter(program, count, options, firstBar == count, a->leadLiteral != 0);
    // The probe checks the leading items where the filter lets a start
    // through; behind a run the filter has walked back over, the run and the
    // literal after it are already known.
    if (a->filter.mode != StartFilter::kNone && a->filter.mode != StartFilter::kRunBefore && firstBar == count)
        MakeStartProbe(program, count, options, &a->probe);
    if (firstBar == count) FindRequiredByte(program, count, options, a);
    MarkItems(program, 0, count, 0, options, 0, a);
    // A leading unlimited greedy run of one item: an attempt at s that ran
    // to e and failed has tried the rest of the program at every position
    // from s + min to e, each time in the same state (nothing before the
    // run sets any). From a start inside the run the run ends at e too and
    // the rest would be tried at some of the same positions: the search
    // goes on at e.
    // Anchors before the run take no bytes and set nothing: the same holds.
    const int run = FirstAfterAnchors(program, count);
    if (count - run > 1 && firstBar == count && a->anchorMode == kAnchorAnywhere && !ReadsCaptures(program, count) &&
        (IsSingleItem(program[run].op) || program[run].op == OP_CLASS)) {
        const int r = NextItem(program, run);
        if (r < count && program[r].op == OP_GREEDY_REPEAT && program[r].b == kRepeatUnlimited) a->leadRepeat = r;
    }
    // A required byte that the start filter searches for adds a second scan
    // of what the filter scans; the driver then tests the filter's literal
    // instead, on short subjects only, where that saves setting up the
    // matcher for a line without it.
    const StartFilter& f = a->filter;
    const bool literal = f.mode == StartFilter::kLiteral || f.mode == StartFilter::kRunBefore ||
                         f.mode == StartFilter::kInnerLiteral;
    const int filterByte = f.mode == StartFilter::kByte ? f.byte : literal && !f.caseless ? f.literal[0] : -1;
    a->requiredByFilter = !a->requiredCaseless && a->requiredByte >= 0 && a->requiredByte == filterByte;
    return FillGroupTable(program, count, groups);
}

const Analysis* AnalysisFor(RegExpState* state, Analysis* local, bool* kept) {
    auto* cached = reinterpret_cast<Analysis*>(state->workArea + kAnalysisOffset);
    *kept = true;
    if (KeptAnalysis(state)) return cached;
    auto* groups = reinterpret_cast<GroupEntry*>(state->workArea);
    const int highest = Analyze(ProgramOf(state), state->instructionCount, state->options, groups, local);
    local->options = state->options;
    local->count = state->instructionCount;
    local->groupCount = state->groupCount;
    local->lastLiteralIndex = state->lastLiteralIndex;
    local->patternKind = state->patternKind;
    local->strategy = local->literalsOnly                                 ? Strategy::kLiterals
                      : state->patternKind == kKindLeadingLiteral ? Strategy::kLeadingLiteral
                                                                          : Strategy::kMatcher;
    SetNeed(ProgramOf(state), state->instructionCount, local);
    if ((highest + 1) * static_cast<int>(sizeof(GroupEntry)) > kAnalysisOffset) {
        *kept = false;
        return local;
    }
    UseLeadLiterals(state, highest, local);
    *cached = *local;
    cached->stamp = kAnalysisStamp;
    return cached;
}

}  // namespace vkp::regexp
