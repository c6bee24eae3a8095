// Finding the literals that lead every match, and compiling them into the
// pattern's block.
#include "regexp/find/lead_literals.h"

#include "regexp/find/analysis.h"

namespace vkp::regexp {

namespace {

constexpr uintptr_t Align8(uintptr_t n) { return (n + 7) & ~uintptr_t(7); }

// Literals at first, first + 2, ... up to last with bars linked by `link`
// between them; options of each alternative from its bar.
bool LiteralsBetweenBars(const Instruction* prog, int first, int last, int link, u32 options, LeadLiterals* out) {
    if (last < first || (last - first) % 2 != 0) return false;
    bool caseless = false, high = false, highCaseless = false;
    for (int k = first; k <= last; ++k) {
        const Instruction& ins = prog[k];
        if ((k - first) % 2 == 1) {
            if (ins.op != OP_ALT || ins.a != link) return false;
            options = static_cast<u32>(ins.b);
            continue;
        }
        const Literal lit = LiteralOf(ins);
        if (lit.length == 0) return false;
        const bool folded = (options & kOptIgnoreCase) != 0;
        caseless |= folded;
        high |= lit.bytes[0] >= 0x80;
        for (int j = 0; j < lit.length; ++j) highCaseless |= folded && lit.bytes[j] >= 0x80;
    }
    if ((last - first) / 2 + 1 > kMaxLeadLiterals || highCaseless) return false;
    *out = {first, last, caseless, high};
    return true;
}

}  // namespace

bool FindLeadLiterals(const Instruction* prog, int count, u32 options, bool literalsOnly, LeadLiterals* out) {
    if (literalsOnly) {
        // The literal search compares as the pattern's options say, whatever
        // the bars carry. A single literal keeps its own search, which
        // measures faster than a set of one, caseless too.
        if (count < 3 || !LiteralsBetweenBars(prog, 0, count - 1, 0, options, out)) return false;
        out->caseless = (options & kOptIgnoreCase) != 0;
        return true;
    }
    // Anchors and option settings before the group take no bytes; a repeat behind it that
    // takes it at least once leaves its first iteration leading the match.
    int g = 0;
    for (; g < count && (prog[g].op == OP_ANCHOR || prog[g].op == OP_SETFLAGS); ++g)
        if (prog[g].op == OP_SETFLAGS) options = static_cast<u32>(prog[g].a);
    if (count - g < 3) return false;
    const u32 op = prog[g].op;
    if (op != OP_GROUP && op != OP_CAPTURE && op != OP_ATOMIC && op != OP_FLAGGROUP) return false;
    const int ket = g + prog[g].b + 1;
    if (ket >= count || prog[ket].op != OP_KET) return false;
    if (ket + 1 < count && vkp::IsRepeat(prog[ket + 1].op) && prog[ket + 1].a < 1) return false;
    for (int i = 0; i < count; ++i)
        if (prog[i].op == OP_ALT && prog[i].a == 0) return false;
    const u32 inner = op == OP_FLAGGROUP ? static_cast<u32>(prog[g].c) : options;
    return LiteralsBetweenBars(prog, g + 1, ket - 1, prog[g].a, inner, out) && out->last > out->first;
}

const kernels::LiteralSet* PlaceLeadLiterals(RegExpState* state, int highestGroup, const LeadLiterals& lead) {
    const Instruction* prog = ProgramOf(state);
    const int n = (lead.last - lead.first) / 2 + 1;
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
    for (int k = 0; k < n; ++k) {
        const Literal lit = LiteralOf(prog[lead.first + 2 * k]);
        lits[k] = lit.bytes;
        lens[k] = lit.length;
        total += static_cast<size_t>(lit.length);
    }
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
