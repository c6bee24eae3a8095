// vkpch grep [-i] [-m] [-s] [-x] [-o] [-c] [-n] PATTERN [FILE...]: the lines
// of the files (or standard input) that the pattern matches, each line
// searched as a subject of its own with UTF-8 subjects (format 1). -i -m -s -x
// are the pattern's option letters; -o prints every non-empty match instead of
// the line, -c the number of matching lines, -n prefixes line numbers. With
// several files each output line is prefixed by "FILE:".
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "commands.h"
#include "grep_buffer.h"
#include "input.h"
#include "vkpch.h"

namespace {

constexpr const char* kUsage = "usage: vkpch grep [-i] [-m] [-s] [-x] [-o] [-c] [-n] PATTERN [FILE...]";

// A compiled pattern in a block of the size the library asks for; 8-byte
// units keep the pointer operands of the program aligned.
class Compiled {
public:
    // Returns the compile status; on failure *errOffset holds the offset.
    int Compile(const std::string& pattern, const std::string& options, int* errOffset) {
        int size = 0;
        if (vkpsRegExpGetSize(pattern.c_str(), &size) != 0) return -8;
        block_.assign((size_t(size) + 7) / 8, 0);
        return vkpsRegExpInit(pattern.c_str(), options.c_str(), State(), errOffset);
    }
    vkpRegExpState* State() { return reinterpret_cast<vkpRegExpState*>(block_.data()); }
    int GroupCount() { return State()->groupCount; }

private:
    std::vector<uint64_t> block_;
};

struct Settings {
    std::string options;  // option letters for the compiler
    bool onlyMatches = false, count = false, lineNumbers = false;
};

// True when the pattern may hold a numbered reference (\1 to \9 and longer
// numbers, or a (?(N) condition), which an extra outer group would renumber.
// Escape pairs are skipped, so "\\1" is not taken for one; anything unsure
// counts as a reference.
bool MayHoldReference(const std::string& p) {
    for (size_t i = 0; i < p.size(); ++i) {
        if (p[i] == '\\' && i + 1 < p.size()) {
            if (p[i + 1] >= '1' && p[i + 1] <= '9') return true;
            ++i;
        } else if (p.compare(i, 3, "(?(") == 0) {
            return true;
        }
    }
    return false;
}

void PrintBadPattern(const std::string& pattern, int status, int offset) {
    std::fprintf(stderr, "vkpch: grep: pattern error %d at offset %d\n  %s\n  %*s^\n", status, offset,
                 pattern.c_str(), offset, "");
}

class Grep {
public:
    Grep(const Settings& s, Compiled& lines, Compiled* matches, int matchesPerRecordBlock)
        : s_(s), lines_(lines), matches_(matches), perMatch_(matchesPerRecordBlock) {}

    bool failed = false;
    bool wholeBuffer = false;  // search many lines at once (grep_buffer.h)

    // Searches every line of data (which ends with a line feed, the readable
    // byte behind the last subject). Returns the number of matching lines.
    int64_t Run(const std::vector<unsigned char>& data, const std::string& prefix, const std::string& name) {
        int64_t matching = 0, lineNo = 0;
        size_t start = 0;
        if (wholeBuffer) start = SearchWholeBuffer(data, prefix, &lineNo, &matching);
        while (start < data.size()) {
            size_t end = start;
            while (data[end] != '\n') ++end;
            ++lineNo;
            if (end - start > size_t(INT32_MAX)) {
                std::fprintf(stderr, "vkpch: grep: %s:%lld: line longer than 2 GiB, skipped\n", name.c_str(),
                             static_cast<long long>(lineNo));
                failed = true;  // reported as an error in the exit status
            } else if (SearchLine(data.data() + start, int(end - start), prefix, lineNo, name)) {
                ++matching;
            }
            start = end + 1;
        }
        if (s_.count) std::printf("%s%lld\n", prefix.c_str(), static_cast<long long>(matching));
        return matching;
    }

private:
    size_t SearchWholeBuffer(const std::vector<unsigned char>& data, const std::string& prefix, int64_t* lineNo,
                             int64_t* matching) {
        const bool global = s_.onlyMatches && !s_.count;
        BufferSearch search{global ? matches_->State() : lines_.State(), perMatch_,
                            [&](const unsigned char* text, int len, int64_t line) {
                                if (s_.count) return;
                                Prefix(prefix, line);
                                std::fwrite(text, 1, size_t(len), stdout);
                                std::putchar('\n');
                            }};
        return SearchBuffer(data, search, lineNo, matching);
    }

    void Prefix(const std::string& prefix, int64_t lineNo) {
        std::fputs(prefix.c_str(), stdout);
        if (s_.lineNumbers) std::printf("%lld:", static_cast<long long>(lineNo));
    }

    bool Find(Compiled& c, const unsigned char* line, int len, int* count, int64_t lineNo, const std::string& name) {
        const int st = vkpsRegExpFind_8u(line, len, c.State(), records_.data(), count);
        if (st == -188) {
            std::fprintf(stderr, "vkpch: grep: %s:%lld: the match budget ran out before a match was found\n",
                         name.c_str(), static_cast<long long>(lineNo));
            failed = true;
            return false;
        }
        return (st == 0 || st == 12) && *count > 0;
    }

    bool SearchLine(const unsigned char* line, int len, const std::string& prefix, int64_t lineNo,
                    const std::string& name) {
        if (!s_.onlyMatches || s_.count) {
            records_.resize(size_t(lines_.GroupCount()));
            int count = int(records_.size());
            if (!Find(lines_, line, len, &count, lineNo, name)) return false;
            if (!s_.count) {
                Prefix(prefix, lineNo);
                std::fwrite(line, 1, size_t(len), stdout);
                std::putchar('\n');
            }
            return true;
        }
        // A global search reports at most one empty and one non-empty match per
        // position, 2 * len + 2 in all; the array starts small and grows while
        // the search fills it.
        const size_t most = std::min(size_t(perMatch_) * (2 * size_t(len) + 2), size_t(INT32_MAX));
        int count = 0;
        for (size_t room = std::min(most, size_t(perMatch_) * 64);; room = std::min(most, 2 * room)) {
            records_.resize(room);
            count = int(room);
            if (!Find(*matches_, line, len, &count, lineNo, name)) return false;
            if (size_t(count) < room || room == most) break;
        }
        bool printed = false;
        for (int r = 0; r + perMatch_ <= count; r += perMatch_) {
            const vkpRegExpFind& m = records_[size_t(r)];
            if (m.matchLen <= 0) continue;
            Prefix(prefix, lineNo);
            std::fwrite(m.pMatch, 1, size_t(m.matchLen), stdout);
            std::putchar('\n');
            printed = true;
        }
        return printed;
    }

    const Settings& s_;
    Compiled& lines_;
    Compiled* matches_;
    int perMatch_;
    std::vector<vkpRegExpFind> records_;
};

}  // namespace

int CmdGrep(const Args& args) {
    if (GrepUsesPatternList(args)) return CmdGrepPatternSet(args);
    Settings s;
    size_t i = 0;
    for (; i < args.size() && args[i].size() > 1 && args[i][0] == '-'; ++i) {
        if (args[i] == "--") {
            ++i;
            break;
        }
        for (size_t k = 1; k < args[i].size(); ++k) {
            const char f = args[i][k];
            if (f == 'i' || f == 'm' || f == 's' || f == 'x') s.options += f;
            else if (f == 'o') s.onlyMatches = true;
            else if (f == 'c') s.count = true;
            else if (f == 'n') s.lineNumbers = true;
            else return Fail("grep: unknown option '-" + std::string(1, f) + "' (" + kUsage + ")");
        }
    }
    if (i >= args.size()) return Fail(std::string("grep: missing PATTERN (") + kUsage + ")");
    const std::string pattern = args[i++];
    Args files(args.begin() + i, args.end());
    if (files.empty()) files.push_back("-");

    Compiled lines;
    int errOffset = 0;
    const int st = lines.Compile(pattern, s.options, &errOffset);
    if (st != 0) {
        PrintBadPattern(pattern, st, errOffset);
        return 2;
    }

    // -o runs a global search. Its records are whole matches only for a
    // pattern without capturing groups; otherwise the pattern is put inside
    // one outer group, whose record is then the first of each match's.
    Compiled matches;
    int perMatch = 1;
    if (s.onlyMatches && !s.count) {
        const bool groups = lines.GroupCount() > 1;
        const std::string text = groups ? "(" + pattern + "\\E)" : pattern;  // \E ends an open \Q, else is ignored
        if ((groups && MayHoldReference(pattern)) || matches.Compile(text, s.options + "g", &errOffset) != 0 ||
            matches.GroupCount() != lines.GroupCount() + (groups ? 1 : 0))
            return Fail("grep: -o needs this pattern's groups written as (?:...)");
        perMatch = groups ? matches.GroupCount() - 1 : 1;
    }

    Grep grep(s, lines, &matches, perMatch);
    // VKPCH_GREP_LINES=1 keeps to the line-by-line search (the tests compare both).
    const char* linesOnly = std::getenv("VKPCH_GREP_LINES");
    grep.wholeBuffer = SearchableAcrossLines(lines.State()) && !(linesOnly && *linesOnly == '1');
    int64_t found = 0;
    std::vector<unsigned char> data;
    for (const std::string& file : files) {
        std::string error;
        if (!ReadInput(file, data, error)) return Fail(error);
        if (!data.empty() && data.back() != '\n') data.push_back('\n');
        const std::string name = file == "-" ? "(standard input)" : file;
        found += grep.Run(data, files.size() > 1 ? name + ":" : "", name);
    }
    if (grep.failed) return 2;
    return found > 0 ? 0 : 1;
}
