// Finding the literals that lead every match, and compiling them into the
// pattern's block.
#include "regexp/find/lead_literals.h"

#include "regexp/find/analysis.h"

namespace vkp::regexp {

namespace {

constexpr uintptr_t Align8(uintptr_t n) { return (n + 7) & ~uintptr_t(7); }

// Calls f(literal) for the literal at the start of each alternative of
// lead, in order; stops and returns false when f does.
template <class F>
bool EachLead(const Instruction* prog, const LeadLiterals& lead, F f) {
    for (int begin = lead.from, i = lead.from;; i = NextItem(prog, i)) {
        if (i >= lead.to || (prog[i].op == OP_ALT && prog[i].a == lead.link)) {
            if (begin >= (i < lead.to ? i : lead.to) || !f(LiteralOf(prog[begin]), begin, i)) return false;
            if (i >= lead.to) return true;
            begin = i + 1;
        }
    }
}

// The alternatives of [from, to) (bars with a == link), each begun by a
// literal that no repeat follows, or (exact) that is nothing else; options
// of each alternative from its bar.
bool LiteralsLead(const Instruction* prog, int from, int to, int link, u32 options, bool exact, LeadLiterals* out) {
    *out = {from, to, link};
    bool highCaseless = false;
    const bool ok = EachLead(prog, *out, [&](Literal lit, int begin, int end) {
        if (lit.length == 0 || (exact && end != begin + 1)) return false;
        if (begin + 1 < end && vkp::IsRepeat(prog[begin + 1].op)) return false;
        const u32 o = begin > from ? static_cast<u32>(prog[begin - 1].b) : options;
        const bool folded = ((o | static_cast<u32>(prog[begin].c)) & kOptIgnoreCase) != 0;
        out->caseless |= folded;
        out->highLed |= lit.bytes[0] >= 0x80;
        for (int j = 0; j < lit.length; ++j) highCaseless |= folded && lit.bytes[j] >= 0x80;
        ++out->count;
        return true;
    });
    return ok && out->count >= 2 && out->count <= kMaxLeadLiterals && !highCaseless;
}

}  // namespace

bool FindLeadLiterals(const Instruction* prog, int count, u32 options, bool literalsOnly, LeadLiterals* out) {
    if (literalsOnly) {
        // The literal search compares as the pattern's options say, whatever
        // the bars carry. A single literal keeps its own search, which
        // measures faster than a set of one, caseless too.
        const bool group = prog[0].op == OP_GROUP;  // the whole program (see analysis.cpp)
        const int from = group ? 1 : 0, to = group ? count - 1 : count;
        if (to - from < 3 || !LiteralsLead(prog, from, to, group ? prog[0].a : 0, options, true, out)) return false;
        out->caseless = (options & kOptIgnoreCase) != 0;
        return true;
    }
    for (int i = 0; i < count; ++i)
        if (prog[i].op == OP_ALT && prog[i].a == 0) return LiteralsLead(prog, 0, count, 0, options, false, out);
    // Anchors, look-arounds and option settings before the group take no
    // bytes; a repeat behind it that takes it at least once leaves its first
    // iteration leading the match.
    int g = 0;
    for (; g < count && (prog[g].op == OP_ANCHOR || prog[g].op == OP_SETFLAGS || IsLookaround(prog[g].op));
         g = NextItem(prog, g))
        if (prog[g].op == OP_SETFLAGS) options = static_cast<u32>(prog[g].a);
    if (count - g < 3) return false;
    const u32 op = prog[g].op;
    if (op != OP_GROUP && op != OP_CAPTURE && op != OP_ATOMIC && op != OP_FLAGGROUP) return false;
    const int ket = g + prog[g].b + 1;
    if (ket >= count || prog[ket].op != OP_KET) return false;
    if (ket + 1 < count && vkp::IsRepeat(prog[ket + 1].op) && prog[ket + 1].a < 1) return false;
    return GroupLiterals(prog, g, options, out);
}

bool GroupLiterals(const Instruction* prog, int g, u32 options, LeadLiterals* out) {
    const u32 inner = prog[g].op == OP_FLAGGROUP ? static_cast<u32>(prog[g].c) : options;
    return LiteralsLead(prog, g + 1, g + prog[g].b + 1, prog[g].a, inner, false, out);
}

const kernels::LiteralSet* PlaceLeadLiterals(RegExpState* state, int highestGroup, const LeadLiterals& lead) {
    const Instruction* prog = ProgramOf(state);
    const int n = lead.count;
    // The room behind the program and its literal bytes, up to the block's end.
    uintptr_t tail = reinterpret_cast<uintptr_t>(prog + state->instructionCount);
    uintptr_t tailEnd = reinterpret_cast<uintptr_t>(state) + BlockBytesOf(state);
    for (int i = 0; i < state->instructionCount; ++i)
        if (prog[i].op == OP_STRING) {
            const uintptr_t end = reinterpret_cast<uintptr_t>(prog[i].d) + static_cast<uintptr_t>(prog[i].b);
            if (end > tail && end <= tailEnd) tail = end;
        }
    tail = Align8(tail);
    // The list of literals while the set is built: in the records area,
    // which nothing reads before the search writes its records, or else at
    // the end of that room.
    const size_t listBytes = static_cast<size_t>(n) * (sizeof(u8*) + sizeof(int));
    u8* list = reinterpret_cast<u8*>(RecordsOf(state));
    if (listBytes > static_cast<size_t>(kWorkSecondPart)) {
        if (tail + listBytes > tailEnd) return nullptr;
        tailEnd = (tailEnd - listBytes) & ~uintptr_t(7);
        list = reinterpret_cast<u8*>(tailEnd);
    }
    auto* lits = reinterpret_cast<const u8**>(list);
    int* lens = reinterpret_cast<int*>(lits + n);
    size_t total = 0;
    int k = 0;
    EachLead(prog, lead, [&](Literal lit, int, int) {
        lits[k] = lit.bytes;
        lens[k++] = lit.length;
        total += static_cast<size_t>(lit.length);
        return true;
    });
    const size_t need = kernels::LiteralSetBytes(n, total);
    // The work area between the group table and the analysis, else the tail.
    const uintptr_t groupsEnd = Align8(reinterpret_cast<uintptr_t>(state->workArea) +
                                       static_cast<uintptr_t>(highestGroup + 1) * sizeof(GroupEntry));
    const uintptr_t analysisAt = reinterpret_cast<uintptr_t>(state->workArea + kAnalysisOffset);
    uintptr_t room = groupsEnd, roomEnd = analysisAt;
    if (groupsEnd + need > analysisAt) room = tail, roomEnd = tailEnd;
    if (room + need > roomEnd) return nullptr;
    void* mem = reinterpret_cast<void*>(room);
    if (!kernels::BuildLiteralSet(lits, lens, n, lead.caseless, mem, roomEnd - room)) return nullptr;
    return static_cast<const kernels::LiteralSet*>(mem);
}

}  // namespace vkp::regexp
