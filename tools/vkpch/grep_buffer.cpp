// Whole-buffer search for vkpch grep (grep_buffer.h). A pattern that cannot
// match a line feed cannot match across lines, and a line end looks to it
// like the end of a subject: every item fails on both, \b and \B see a
// non-word byte on both sides, and the implicit anchor holds at line starts
// either way. Its matches in a block of lines are then exactly its matches
// in each line.
#include "grep_buffer.h"

#include <algorithm>
#include <cstring>

#include "regexp/compile/state.h"
#include "regexp/match/items.h"

namespace {

using vkp::Instruction;

constexpr size_t kBlock = 1 << 20;  // bytes searched per call, then cut at a line end

bool MayMatchLineFeed(const Instruction& ins, vkp::u32 options) {
    static const vkp::u8 kLineFeed[2] = {'\n', '\n'};
    switch (ins.op) {
        case vkp::OP_CHAR: return static_cast<vkp::u8>(ins.a) == '\n';
        case vkp::OP_STRING: return ins.b > 0 && std::memchr(ins.d, '\n', size_t(ins.b)) != nullptr;
        case vkp::OP_TYPE: return vkp::regexp::TypeFor(ins.a, options)('\n');
        case vkp::OP_CLASS: return vkp::regexp::ClassContains(&ins, '\n', options);
        case vkp::OP_CATEGORY:
        case vkp::OP_BLOCK:
        case vkp::OP_SCRIPT: return vkp::regexp::PropertyLength(kLineFeed, kLineFeed + 1, &ins, options) > 0;
        case vkp::OP_ANYBYTE:
        case vkp::OP_EXTENDED: return true;
        case vkp::OP_ANCHOR: return ins.a != 'b' && ins.a != 'B' && ins.a != 128;
        case vkp::OP_LOOKBEHIND:
        case vkp::OP_NLOOKBEHIND: return true;
        default: return false;  // code points of 256 and more, groups, repeats, back-references
    }
}

// The line feed that ends the line holding p.
const unsigned char* LineEnd(const unsigned char* p) {
    return static_cast<const unsigned char*>(std::memchr(p, '\n', size_t(-1) >> 1));
}

}  // namespace

bool SearchableAcrossLines(const vkpRegExpState* state) {
    const Instruction* program = vkp::ProgramOf(state);
    const int count = state->instructionCount;
    // '.' takes a line feed wherever (?s) may be in force.
    vkp::u32 options = state->options;
    for (int i = 0; i < count; ++i) {
        if (program[i].op == vkp::OP_SETFLAGS) options |= program[i].a & vkp::regexp::kOptDotAll;
        if (program[i].op == vkp::OP_FLAGGROUP) options |= program[i].c & vkp::regexp::kOptDotAll;
    }
    for (int i = 0; i < count; ++i) {
        if (MayMatchLineFeed(program[i], options)) return false;
        if (program[i].op == vkp::OP_CLASS) i += std::max(program[i].b, 0);
    }
    return true;
}

size_t SearchBuffer(const std::vector<unsigned char>& data, const BufferSearch& search, int64_t* lineNo,
                    int64_t* matching) {
    const unsigned char* const base = data.data();
    const bool global = (search.state->options & vkp::regexp::kOptGlobal) != 0;
    std::vector<vkpRegExpFind> records(global ? 4096 : size_t(search.state->groupCount));
    const unsigned char* counted = base;  // line numbers are counted up to here
    int64_t lines = 0;
    auto numberOf = [&](const unsigned char* p) {
        lines += std::count(counted, p, '\n');
        counted = p;
        return lines + 1;
    };
    size_t blockStart = 0;
    while (blockStart < data.size()) {
        // A block ends at a line feed (not included) and holds at most
        // INT32_MAX bytes; a longer line is left to the line-by-line search.
        const unsigned char* blockEnd = LineEnd(base + std::min(blockStart + kBlock, data.size() - 1));
        if (size_t(blockEnd - base) - blockStart > size_t(INT32_MAX)) break;
        const unsigned char* pos = base + blockStart;
        while (pos <= blockEnd) {
            int n = int(records.size());
            const vkpStatus st = vkpsRegExpFind_8u(pos, int(blockEnd - pos), search.state, records.data(), &n);
            if (st < 0) {  // the budget ran out: left to the line-by-line search from here
                *lineNo = numberOf(pos) - 1;
                return size_t(pos - base);
            }
            if (n == 0) break;
            if (!global) {
                const unsigned char* m = records[0].pMatch;
                const unsigned char* start = m;
                while (start > pos && start[-1] != '\n') --start;
                const unsigned char* end = LineEnd(m);
                search.emit(start, int(end - start), numberOf(start));
                ++*matching;
                pos = end + 1;
                continue;
            }
            // Every match of the block; a full array may have cut the list
            // short, so the search runs again with more room.
            if (n == int(records.size())) {
                records.resize(records.size() * 2);
                continue;
            }
            int64_t lastLine = 0;
            for (int r = 0; r + search.perMatch <= n; r += search.perMatch) {
                const vkpRegExpFind& m = records[size_t(r)];
                if (m.matchLen <= 0) continue;
                const int64_t line = numberOf(m.pMatch);
                search.emit(m.pMatch, m.matchLen, line);
                if (line != lastLine) ++*matching;
                lastLine = line;
            }
            break;
        }
        blockStart = size_t(blockEnd - base) + 1;
    }
    *lineNo = numberOf(base + std::min(blockStart, data.size())) - 1;
    return std::min(blockStart, data.size());
}
