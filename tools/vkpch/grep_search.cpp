#include "grep_search.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <deque>

#include "io.h"

namespace {

// Opcodes of the compiled program that decide whether a search over many
// lines stands for searches of each line alone.
enum : vkp32u {
    kChar = 0x10000000u, kString, kBackref, kClass, kType, kAnchor, kAlt, kRange, kLazy, kGreedy,
    kLookbehind, kNLookbehind, kLookahead, kNLookahead, kFlagGroup, kCond, kCapture, kGroup, kAtomic, kKet,
    kSetFlags, kAnyByte, kCodepoint, kCategory, kBlock, kScript, kExtended
};

bool TypeTakesLineFeed(int type, bool dotAll) {
    return type == '.' ? dotAll : type == 'D' || type == 's' || type == 'W';
}

// Whether an instruction (a class member too) may match a line feed. Unsure
// cases (properties, \C, \X) count as may.
bool MayTakeLineFeed(const vkpRegExpInstruction& ins, bool dotAll) {
    switch (ins.op) {
        case kChar: return ins.a == '\n';
        case kString: return std::memchr(ins.d, '\n', size_t(std::max(ins.b, 0))) != nullptr;
        case kType: return TypeTakesLineFeed(ins.a, dotAll);
        case kRange: return ins.a <= '\n' && '\n' <= ins.b;
        case kCategory: case kBlock: case kScript: case kAnyByte: case kExtended: return true;
        default: return false;
    }
}

struct Reach {
    bool acrossLines, exact;
};

// A search of a run of lines (each ending with a line feed, searched with
// the multi-line option) finds every line that matches alone when nothing
// in the pattern tells a line feed from the end of a subject: ^ and $ are
// line anchors, \b and \B see a non-word byte either way, and an item that
// cannot take a line feed fails on it as at the subject's end. Items that
// can take one only add ways to match, which a check of the line alone
// removes, unless something commits to its first way (atomic groups,
// look-arounds, conditions, back-references).
Reach Classify(const vkpRegExpState* st) {
    const auto* program =
        reinterpret_cast<const vkpRegExpInstruction*>(reinterpret_cast<const unsigned char*>(st) + VKP_REGEXP_HEAD_SIZE);
    bool dotAll = st->options & VKP_REGEXP_DOTALL, flags = false;
    for (int i = 0; i < st->instructionCount; ++i) {
        if (program[i].op == kSetFlags) dotAll |= program[i].a & VKP_REGEXP_DOTALL, flags = true;
        if (program[i].op == kFlagGroup) dotAll |= program[i].c & VKP_REGEXP_DOTALL, flags = true;
    }
    bool lineFeed = false, commits = false, anchors = false;
    for (int i = 0; i < st->instructionCount; ++i) {
        const vkpRegExpInstruction& ins = program[i];
        switch (ins.op) {
            case kClass:
                lineFeed |= ins.a == -1;
                for (int k = 1; k <= ins.b && i + k < st->instructionCount; ++k)
                    lineFeed |= MayTakeLineFeed(program[i + k], dotAll);
                i += std::max(ins.b, 0);
                break;
            case kAnchor:
                if (ins.a == '^' || ins.a == '$') anchors |= flags || !(st->options & VKP_REGEXP_MULTILINE);
                else anchors |= ins.a != 'b' && ins.a != 'B' && ins.a != 128;
                break;
            case kAtomic: case kLookahead: case kNLookahead: case kLookbehind: case kNLookbehind: case kCond:
            case kBackref:
                commits = true;
                break;
            default: lineFeed |= MayTakeLineFeed(ins, dotAll);
        }
    }
    const bool across = !anchors && (!lineFeed || !commits);
    return {across, across && !lineFeed};
}

// Backslash before every ASCII byte that could be syntax.
std::string Escape(const std::string& text) {
    std::string out;
    for (unsigned char c : text) {
        if (c < 0x80 && !std::isalnum(c) && c != '_' && c != ' ') out += '\\';
        out += char(c);
    }
    return out;
}

const char* const kMatchColor = "\33[01;31m\33[K";
const char* const kNameColor = "\33[35m\33[K";
const char* const kSepColor = "\33[36m\33[K";
const char* const kNumberColor = "\33[32m\33[K";
const char* const kEndColor = "\33[m\33[K";

}  // namespace

void ReportPatternError(const std::string& pattern, vkpStatus status, int offset) {
    Output::Stdout().Flush();
    std::fprintf(stderr, "vkpch: bad pattern at offset %d: %s\n  %s\n  %*s^\n", offset, vkpch::statusText(status),
                 pattern.c_str(), offset, "");
}

bool GrepPatterns::Compile(const GrepSettings& s) {
    options_ = s.options;
    if (!s.nullData && options_.find('m') == std::string::npos) options_ += 'm';  // no line holds a line feed
    for (const std::string& p : s.patterns)
        if (p.find('\0') != std::string::npos) {
            Report("a pattern holds a zero byte");
            return false;
        }
    settings_ = &s;
    // Joined plain patterns select the lines; each pattern alone is compiled
    // only when the matches themselves are wanted (-o, colour), or to report
    // the error of a join that does not compile.
    if (JoinPlainPatterns(s)) return true;
    joined_.clear();
    return CompileEach();
}

bool GrepPatterns::CompileEach() {
    const GrepSettings& s = *settings_;
    for (const std::string& p : s.patterns) {
        std::string body = s.fixed ? Escape(p) : p;
        {
            const vkpch::Regex alone(body, options_);  // errors point into the pattern as written
            if (!alone.ok()) {
                ReportPatternError(body, alone.status(), alone.errorOffset());
                return false;
            }
        }
        if (body.find("\\Q") != std::string::npos) body += "\\E";
        if (options_.find('x') != std::string::npos) body += '\n';  // ends a trailing comment
        if (s.line) body = "^(?:" + body + ")$";
        else if (s.word) body = "(?<!\\w)(?:" + body + ")(?!\\w)";
        if (!AddEntry(body, s.nullData, true, &entries_)) return false;
    }
    return true;
}

bool GrepPatterns::AddEntry(const std::string& body, bool nullData, bool report, std::vector<Entry>* to) {
    vkpch::Regex re(body, options_);
    if (!re.ok()) {
        if (report) ReportPatternError(body, re.status(), re.errorOffset());
        return false;
    }
    const Reach reach = nullData ? Reach{false, false} : Classify(re.state());
    to->push_back({std::move(re), reach.acrossLines, reach.exact});
    return true;
}

// Many patterns of plain text (letters, digits, '_', spaces outside the x
// option, bytes of multi-byte characters) are searched as alternations:
// one pass over the text for each, rather than one for each pattern. With
// -w the alternation is wrapped once: a line holds a word of the join where
// it holds one of a pattern alone, as the search backtracks into the
// alternation when the bound after it fails. (-x is left to the patterns
// alone: each is a literal search, where the join would try every
// alternative at every line start.) False when the patterns are not of
// that kind or a join does not compile.
bool GrepPatterns::JoinPlainPatterns(const GrepSettings& s) {
    constexpr size_t kJoinedPatterns = 10000;
    const bool extended = options_.find('x') != std::string::npos;
    if (s.patterns.size() < 2 || s.line) return false;
    // Patterns that begin and end with a word byte are bounded by \b, which
    // the search looks through for the literals behind it.
    const auto isWord = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; };
    bool wordEnds = true;
    for (const std::string& p : s.patterns) {
        if (p.empty() || Escape(p) != p || (extended && p.find(' ') != std::string::npos)) return false;
        wordEnds &= isWord(p.front()) && isWord(p.back());
    }
    for (size_t first = 0; first < s.patterns.size(); first += kJoinedPatterns) {
        std::string body;
        for (size_t k = first; k < s.patterns.size() && k < first + kJoinedPatterns; ++k)
            body += (k > first ? "|" : "") + s.patterns[k];
        if (s.word) body = wordEnds ? "\\b(?:" + body + ")\\b" : "(?<!\\w)(?:" + body + ")(?!\\w)";
        if (!AddEntry(body, s.nullData, false, &joined_)) return false;
    }
    return true;
}

bool GrepPatterns::LineMatches(const char* p, size_t n, bool* limit) {
    if (n > size_t(INT32_MAX)) {
        *limit = true;
        return false;
    }
    for (Entry& e : joined_.empty() ? entries_ : joined_) {
        records_.resize(size_t(e.re.groupCount()));
        int count = int(records_.size());
        const vkpStatus st = vkpsRegExpFind_8u(reinterpret_cast<const vkp8u*>(p), int(n), e.re.state(),
                                               records_.data(), &count);
        if (st == VKP_ERR_MATCH_LIMIT) *limit = true;
        if (st >= 0 && count > 0) return true;
    }
    return false;
}

const char* GrepPatterns::NextMatchingLine(const char* p, const char* end, bool* limit) {
    const char* best = end + 1;  // no matching line
    for (Entry& e : joined_.empty() ? entries_ : joined_) {
        const char* from = p;
        // The line that holds the first match of a search from `from` to the
        // end of the best line so far; then checked alone when needed.
        const char* stop = best > end ? end : static_cast<const char*>(std::memchr(best, '\n', size_t(end - best) + 1));
        while (from <= stop) {
            const char* line = nullptr;
            // The subject takes in the last line's terminator: ^ does not
            // match after a line feed that ends the subject.
            if (e.acrossLines && size_t(stop - from) < size_t(INT32_MAX)) {
                records_.resize(size_t(e.re.groupCount()));
                int count = int(records_.size());
                const vkpStatus st = vkpsRegExpFind_8u(reinterpret_cast<const vkp8u*>(from), int(stop - from) + 1,
                                                       e.re.state(), records_.data(), &count);
                if (st >= 0 && (count == 0 || reinterpret_cast<const char*>(records_[0].pMatch) > stop)) break;
                if (st >= 0) {
                    const char* m = reinterpret_cast<const char*>(records_[0].pMatch);
                    line = m;
                    while (line > from && line[-1] != '\n') --line;
                    if (e.exact) {
                        best = std::min(best, line);
                        break;
                    }
                }
                // else the budget ran out: line by line from here
            }
            if (!line) line = from;
            const char* lineEnd = static_cast<const char*>(std::memchr(line, '\n', size_t(stop - line) + 1));
            records_.resize(size_t(e.re.groupCount()));
            int count = int(records_.size());
            const vkpStatus st = lineEnd - line > INT32_MAX ? VKP_ERR_MATCH_LIMIT
                                 : vkpsRegExpFind_8u(reinterpret_cast<const vkp8u*>(line), int(lineEnd - line),
                                                     e.re.state(), records_.data(), &count);
            if (st == VKP_ERR_MATCH_LIMIT) *limit = true;
            if (st >= 0 && count > 0) {
                best = std::min(best, line);
                break;
            }
            from = lineEnd + 1;
        }
    }
    return best;
}

std::vector<std::pair<size_t, size_t>> GrepPatterns::Matches(const char* p, size_t n) {
    std::vector<std::pair<size_t, size_t>> all;
    if (entries_.empty() && !CompileEach()) entries_.clear();  // a join compiled, so each pattern does
    for (Entry& e : entries_)
        for (const vkpch::Match& m : e.re.matches(std::string_view(p, n)))
            if (m.length() > 0) all.emplace_back(m.position(), m.length());
    std::sort(all.begin(), all.end(), [](const auto& a, const auto& b) {
        return a.first != b.first ? a.first < b.first : a.second > b.second;
    });
    std::vector<std::pair<size_t, size_t>> kept;
    for (const auto& m : all)
        if (kept.empty() || m.first >= kept.back().first + kept.back().second) kept.push_back(m);
    return kept;
}

namespace {

// The output of one input: prefixes, context, separators, colour.
class Printer {
public:
    Printer(const GrepSettings& s, GrepPatterns& patterns, const std::string& name, bool withName, std::string* out,
            bool separate)
        : s_(s), patterns_(patterns), name_(name), withName_(withName), out_(out), lastPrinted_(separate ? -1 : 0) {}

    long long lineNo = 0, selected = 0;
    bool done = false;          // nothing more to do in this input
    bool binaryMatch = false;   // a binary input had a selected line
    bool binary = false;
    bool limit = false;         // a search ran out of its budget
    bool printedLines() const { return lastPrinted_ > 0; }

    // One line [p, e) (e is its terminator) that is selected or not.
    void Line(const char* p, const char* e, bool isSelected) {
        ++lineNo;
        if (isSelected && !maxReached_) return Selected(p, e);
        if (afterLeft_ > 0) {
            --afterLeft_;
            Print(p, e, '-');
            if (maxReached_ && afterLeft_ == 0) done = true;
            return;
        }
        if (maxReached_) {
            done = true;
            return;
        }
        if (s_.before > 0) {
            before_.emplace_back(lineNo, std::string(p, e));
            if (static_cast<long long>(before_.size()) > s_.before) before_.pop_front();
        }
    }
    // Lines [p, end) that are not selected, where nothing is printed: only
    // counted (and kept for context).
    void Skip(const char* p, const char* end) {
        if (afterLeft_ > 0 || s_.before > 0 || maxReached_) {
            while (p < end && !done) {
                const char* e = static_cast<const char*>(std::memchr(p, Eol(), size_t(end - p)));
                Line(p, e, false);
                p = e + 1;
            }
            return;
        }
        if (s_.lineNumbers || s_.after >= 0 || s_.before >= 0) lineNo += std::count(p, end, Eol());
    }

private:
    char Eol() const { return s_.nullData ? '\0' : '\n'; }
    bool Prints() const { return !s_.quiet && !s_.listMatching && !s_.listMissing && !s_.count; }

    void Selected(const char* p, const char* e) {
        ++selected;
        if (s_.quiet || s_.listMatching || s_.listMissing) {
            done = true;
            return;
        }
        if (selected == s_.maxCount) {
            maxReached_ = true;
            if (s_.after <= 0 || s_.count) done = true;
        }
        if (s_.count) return;
        if (binary) {
            binaryMatch = done = true;
            return;
        }
        for (const auto& [number, text] : before_) PrintOwned(number, text);
        before_.clear();
        Print(p, e, ':');
        afterLeft_ = std::max(s_.after, 0LL);
    }

    void PrintOwned(long long number, const std::string& text) {
        const long long keep = lineNo;
        lineNo = number;
        Print(text.data(), text.data() + text.size(), '-');
        lineNo = keep;
    }

    // "--" between groups of lines that are not adjacent.
    void Separate() {
        if ((s_.after >= 0 || s_.before >= 0) && (lastPrinted_ < 0 || (lastPrinted_ > 0 && lastPrinted_ + 1 < lineNo))) {
            Color("--", 2, kSepColor);
            out_->push_back('\n');
        }
        lastPrinted_ = lineNo;
    }

    // A context line or a selected line; with -o its matches, each on a line
    // of its own.
    void Print(const char* p, const char* e, char sep) {
        if (!Prints()) return;
        Separate();
        if (s_.onlyMatching) {
            if ((sep == ':') == s_.invert) return;  // matches of selected lines, or with -v of context lines
            for (const auto& [at, len] : patterns_.Matches(p, size_t(e - p))) {
                Prefix(lineNo, sep);
                Color(p + at, len, kMatchColor);
                out_->push_back(Eol());
            }
            return;
        }
        Prefix(lineNo, sep);
        const bool colorMatches = s_.color && (sep == ':') != s_.invert;
        if (colorMatches) {
            size_t at = 0;
            for (const auto& [start, len] : patterns_.Matches(p, size_t(e - p))) {
                out_->append(p + at, start - at);
                Color(p + start, len, kMatchColor);
                at = start + len;
            }
            out_->append(p + at, e);
        } else {
            out_->append(p, e);
        }
        out_->push_back(Eol());
    }

    void Prefix(long long number, char sep) {
        if (withName_) Color(name_.data(), name_.size(), kNameColor), Color(&sep, 1, kSepColor);
        if (s_.lineNumbers) {
            const std::string n = std::to_string(number);
            Color(n.data(), n.size(), kNumberColor);
            Color(&sep, 1, kSepColor);
        }
    }

    void Color(const char* p, size_t n, const char* color) {
        if (s_.color) out_->append(color);
        out_->append(p, n);
        if (s_.color) out_->append(kEndColor);
    }

    const GrepSettings& s_;
    GrepPatterns& patterns_;
    const std::string& name_;
    bool withName_;
    std::string* out_;
    long long afterLeft_ = 0;
    long long lastPrinted_;  // the last line printed; 0 none, -1 none but output came before
    bool maxReached_ = false;
    std::deque<std::pair<long long, std::string>> before_;
};

std::string Colored(const GrepSettings& s, const std::string& text, const char* color) {
    return s.color ? color + text + kEndColor : text;
}

}  // namespace

GrepResult GrepInput(const GrepSettings& s, GrepPatterns& patterns, const std::string& path, const std::string& name,
                     bool withName, std::string* out, bool streaming, bool separate) {
    GrepResult r;
    const char eol = s.nullData ? '\0' : '\n';
    LineReader in(eol);
    std::string error;
    const bool opened = in.Open(path, &error);
    if (!opened) {
        if (!s.noMessages) r.messages += "vkpch: " + error + "\n";
        r.error = true;
        // A directory counts as an input without lines (-c, -L), as GNU grep has it.
        const std::string dir = ErrorText(EISDIR);
        if (error.size() < dir.size() || error.compare(error.size() - dir.size(), dir.size(), dir) != 0) return r;
    }
    Printer printer(s, patterns, name, withName, out, separate);
    const bool wholeLines = !s.invert && s.after <= 0 && s.before <= 0;
    bool first = true;
    while (opened && !printer.done && in.Next()) {
        if (first) printer.binary = !s.text && !s.nullData && std::memchr(in.data(), 0, in.read()) != nullptr;
        first = false;
        // A binary input's zero bytes end lines too (what is counted and
        // matched; its lines are not printed).
        if (printer.binary) std::replace(in.data(), in.data() + in.size(), '\0', '\n');
        const char* p = in.data();
        const char* last = in.data() + in.size() - (in.missingEol() ? 0 : 1);  // the last line's terminator
        while (p <= last && !printer.done) {
            const char* m;
            if (s.nullData) {
                const char* e = static_cast<const char*>(std::memchr(p, eol, size_t(last - p) + 1));
                m = patterns.LineMatches(p, size_t(e - p), &printer.limit) ? p : e + 1;
            } else {
                m = patterns.NextMatchingLine(p, last, &printer.limit);
            }
            // [p, m) holds no matching line.
            if (s.invert) {
                while (p < m && !printer.done) {
                    const char* e = static_cast<const char*>(std::memchr(p, eol, size_t(m - p)));
                    printer.Line(p, e, true);
                    p = e + 1;
                }
            } else if (wholeLines || m > p) {
                printer.Skip(p, m);
            }
            if (m > last || printer.done) break;
            const char* e = static_cast<const char*>(std::memchr(m, eol, size_t(last - m) + 1));
            printer.Line(m, e, !s.invert);
            p = e + 1;
        }
        if (streaming) {
            Output::Stdout().Write(*out);
            out->clear();
            if (in.interactive()) Output::Stdout().Flush();
            if (Output::Stdout().failed()) break;
        }
    }
    if (in.error()) {
        if (!s.noMessages) r.messages += "vkpch: " + name + ": " + ErrorText(in.error()) + "\n";
        r.error = true;
    }
    if (printer.limit) {
        r.messages += "vkpch: " + name + ": " + vkpch::statusText(VKP_ERR_MATCH_LIMIT) +
                      " on a line, taken as not matching\n";
        r.error = true;
    }
    r.selected = printer.selected > 0;
    r.stop = s.quiet && r.selected;
    if (s.count && !s.quiet && !s.listMatching && !s.listMissing) {
        if (withName) *out += Colored(s, name, kNameColor) + Colored(s, ":", kSepColor);
        *out += std::to_string(printer.selected) + "\n";
    }
    if (((s.listMatching && r.selected) || (s.listMissing && !r.selected)) && !s.quiet)
        *out += Colored(s, name, kNameColor) + "\n";
    r.lines = printer.printedLines();
    r.printed = printer.binaryMatch || r.lines;
    if (printer.binaryMatch) r.messages += "vkpch: " + name + ": binary file matches\n";
    if (streaming) Output::Stdout().Write(*out), out->clear();
    return r;
}
