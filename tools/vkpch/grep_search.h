// The search behind vkpch grep: compiled patterns, and the search of one
// input that writes its selected lines (or counts, names) to an output.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "vkpch.hpp"

struct GrepSettings {
    std::vector<std::string> patterns;
    std::string options;  // library option letters: i m s x
    bool fixed = false, word = false, line = false, invert = false;
    bool count = false, listMatching = false, listMissing = false, quiet = false, noMessages = false;
    bool lineNumbers = false, onlyMatching = false, text = false, nullData = false, color = false;
    int withName = -1;           // -1: when several files are searched
    long long maxCount = -1;     // -1: no limit
    long long after = -1, before = -1;  // -1: not asked for (0 still separates groups)
};

// What one input gave.
struct GrepResult {
    bool selected = false;  // a line was selected
    bool error = false;     // reported on standard error
    bool stop = false;      // -q found a line: nothing more to search
    bool lines = false;     // lines were output (with -o perhaps no text)
    bool printed = false;   // lines or a binary file's match: output between context groups
    std::string messages;   // for standard error, one "vkpch: ..." line each
};

// The patterns compiled for one worker. Each pattern is wrapped as -F, -w
// and -x ask; a line matches when any pattern does.
class GrepPatterns {
public:
    // False after reporting a pattern error on standard error.
    // `s` must outlive the patterns.
    bool Compile(const GrepSettings& s);

    // Whether the line [p, p + n) matches; *limit set when a search ran out
    // of its budget (the line then counts as not matching).
    bool LineMatches(const char* p, size_t n, bool* limit);
    // The start of the first line at or after p, in [p, end), that matches
    // (end + 1 when none); lines end with '\n', end is the last one's and
    // end[1] is readable.
    const char* NextMatchingLine(const char* p, const char* end, bool* limit);
    // The non-empty matches of every pattern in the line, leftmost first,
    // overlaps dropped (for -o and colour).
    std::vector<std::pair<size_t, size_t>> Matches(const char* p, size_t n);

private:
    struct Entry {
        vkpch::Regex re;
        bool acrossLines;  // a search over many lines finds each line's matches
        bool exact;        // and only them: no match needs checking on its line alone
    };
    // Compiles body into a new entry of *to; false (after reporting the
    // error when `report`) when it does not compile.
    bool AddEntry(const std::string& body, bool nullData, bool report, std::vector<Entry>* to);
    bool JoinPlainPatterns(const GrepSettings& s);
    // Each pattern alone, wrapped as -F, -w and -x ask, into entries_.
    bool CompileEach();
    const GrepSettings* settings_ = nullptr;
    std::string options_;
    // Each pattern alone: what is searched when there is no join, and for
    // the matches themselves (compiled on first use when there is one).
    std::vector<Entry> entries_;
    // Plain-text patterns joined into alternations of up to ten thousand
    // each, which the library searches for all at once: what line selection
    // searches when there are any (an alternation matches where one of its
    // patterns does).
    std::vector<Entry> joined_;
    std::vector<vkpRegExpFind> records_;
};

// Searches one input ("-" for standard input) shown as `name`, appending
// what it prints to *out. Streaming, *out goes to standard output after
// each block (flushed before a read that may wait); else it holds the
// input's whole output. `separate`: output came before, so with context a
// "--" goes before this input's first line.
GrepResult GrepInput(const GrepSettings& s, GrepPatterns& patterns, const std::string& path, const std::string& name,
                     bool withName, std::string* out, bool streaming, bool separate);

// Writes the text of a pattern error: what is wrong, the pattern and a caret
// under the offset.
void ReportPatternError(const std::string& pattern, vkpStatus status, int offset);
