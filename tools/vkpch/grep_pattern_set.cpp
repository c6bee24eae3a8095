// vkpch grep with -e PATTERN (repeatable) or -f FILE (one pattern a line): a
// line matches when any pattern matches, found with one pattern set and
// vkpsRegExpMultiFind_8u per line. -o prints every non-empty match as
// "N:match", N the number of the pattern that found it (patterns count from 1
// in the order given), in the order of the matches in the line.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "command_line.h"
#include "text_error.h"
#include "vkpch.hpp"

namespace {

constexpr const char* kUsage =
    "usage: vkpch grep [-i] [-m] [-s] [-x] [-o] [-c] [-n] -e PATTERN [-e PATTERN...] | -f FILE [FILE...]";

struct Settings {
    std::string options;
    bool onlyMatches = false, count = false, lineNumbers = false;
    std::vector<std::string> patterns;
    bool unreadable = false;  // a -f file could not be read
};

std::string Name(const std::string& file) { return file == "-" ? "(standard input)" : file; }

struct Hit {
    int offset, length, pattern;
};

class SetGrep {
public:
    explicit SetGrep(const Settings& s) : s_(s) {}

    // Compiles every pattern and fills the set.
    bool Prepare() {
        const size_t n = s_.patterns.size();
        vkpsRegExpMultiInitAlloc(&set_, int(n));
        if (!set_) return Fail("grep: out of memory") == 0;
        for (size_t k = 0; k < n; ++k) {
            regexps_.emplace_back(s_.patterns[k].c_str(), s_.options.c_str());
            if (!regexps_[k].ok()) {
                std::fprintf(stderr, "vkpch: grep: pattern %zu:\n", k + 1);
                PrintTextError("grep", "pattern", s_.patterns[k], regexps_[k].status(), regexps_[k].errorOffset());
                return false;
            }
            vkpsRegExpMultiAdd(regexps_[k].state(), int(k) + 1, set_);
        }
        results_.resize(n);
        return true;
    }
    ~SetGrep() {
        if (set_) vkpsRegExpMultiFree(set_);
    }

    bool failed = false;

    // Searches one line; true when a pattern matched it.
    bool Line(const std::string& prefix, const std::string& name, int64_t lineNo, std::string_view text) {
        if (text.size() > size_t(INT32_MAX)) {
            std::fprintf(stderr, "vkpch: grep: %s:%lld: line longer than 2 GiB, skipped\n", name.c_str(),
                         static_cast<long long>(lineNo));
            failed = true;
            return false;
        }
        return SearchLine(reinterpret_cast<const unsigned char*>(text.data()), int(text.size()), prefix, lineNo, name);
    }

private:
    bool Usable(int st, int found, int64_t lineNo, const std::string& name) {
        if (st == VKP_ERR_MATCH_LIMIT) {
            std::fprintf(stderr, "vkpch: grep: %s:%lld: the match budget ran out before a match was found\n",
                         name.c_str(), static_cast<long long>(lineNo));
            failed = true;
        }
        return st >= 0 && found > 0;
    }

    // Which patterns match: the set's search (the set refuses an empty
    // subject, so an empty line is searched pattern by pattern).
    void Search(const unsigned char* line, int len, int64_t lineNo, const std::string& name) {
        const size_t n = s_.patterns.size();
        matched_.assign(n, false);
        records_.resize(n);
        for (size_t k = 0; k < n; ++k) {
            records_[k].resize(size_t(regexps_[k].groupCount()));
            results_[k] = {0, 0, int(records_[k].size()), 0, records_[k].data()};
        }
        if (len > 0) {
            vkpsRegExpMultiFind_8u(line, len, results_.data(), set_);
        } else {
            for (size_t k = 0; k < n; ++k)
                results_[k].status = vkpsRegExpFind_8u(line, 0, regexps_[k].state(), results_[k].pMatches,
                                                       &results_[k].numMatches);
        }
        for (size_t k = 0; k < n; ++k) matched_[k] = Usable(results_[k].status, results_[k].numMatches, lineNo, name);
    }

    // Every non-empty match of pattern k in the line.
    void Collect(size_t k, const unsigned char* line, int len, int64_t lineNo, const std::string& name) {
        vkpStatus st = 0;
        const std::vector<vkpch::Match> all =
            regexps_[k].findAll(std::string_view(reinterpret_cast<const char*>(line), size_t(len)), &st);
        Usable(st, 1, lineNo, name);
        for (const vkpch::Match& m : all)
            if (!m.str().empty()) hits_.push_back({int(m.position()), int(m.str().size()), int(k) + 1});
    }

    void Prefix(const std::string& prefix, int64_t lineNo) {
        std::fputs(prefix.c_str(), stdout);
        if (s_.lineNumbers) std::printf("%lld:", static_cast<long long>(lineNo));
    }

    bool SearchLine(const unsigned char* line, int len, const std::string& prefix, int64_t lineNo,
                    const std::string& name) {
        Search(line, len, lineNo, name);
        if (std::find(matched_.begin(), matched_.end(), true) == matched_.end()) return false;
        if (s_.count) return true;
        if (!s_.onlyMatches) {
            Prefix(prefix, lineNo);
            std::fwrite(line, 1, size_t(len), stdout);
            std::putchar('\n');
            return true;
        }
        hits_.clear();
        for (size_t k = 0; k < matched_.size(); ++k)
            if (matched_[k] && len > 0) Collect(k, line, len, lineNo, name);
        std::stable_sort(hits_.begin(), hits_.end(), [](const Hit& a, const Hit& b) { return a.offset < b.offset; });
        for (const Hit& h : hits_) {
            Prefix(prefix, lineNo);
            std::printf("%d:", h.pattern);
            std::fwrite(line + h.offset, 1, size_t(h.length), stdout);
            std::putchar('\n');
        }
        return !hits_.empty();
    }

    const Settings& s_;
    vkpRegExpMultiState* set_ = nullptr;
    std::vector<vkpch::Regex> regexps_;
    std::vector<vkpRegExpMultiFind> results_;
    std::vector<std::vector<vkpRegExpFind>> records_;
    std::vector<bool> matched_;
    std::vector<Hit> hits_;
};

bool ReadPatternFile(const std::string& path, std::vector<std::string>& patterns, std::string& error) {
    return ForEachLine(
        Args{path}, [&patterns](size_t, const std::string&, int64_t, std::string_view line) { patterns.emplace_back(line); },
        &error);
}

}  // namespace

bool GrepUsesPatternList(const Args& args) {
    for (const std::string& a : args) {
        if (a == "--" || a.size() < 2 || a[0] != '-') return false;
        if (a.find_first_of("ef") != std::string::npos) return true;
    }
    return false;
}

int CmdGrepPatternSet(const Args& args) {
    Settings s;
    std::string error;
    const long first = ParseOptions(
        args,
        [](char c) {
            if (c == 'e' || c == 'f') return 1;
            return std::string_view("imsxocn").find(c) != std::string_view::npos ? 0 : -1;
        },
        [&](char c, const std::string& value) {
            if (c == 'e') s.patterns.push_back(value);
            else if (c == 'f' && !ReadPatternFile(value, s.patterns, error)) s.unreadable = true;
            else if (c == 'o') s.onlyMatches = true;
            else if (c == 'c') s.count = true;
            else if (c == 'n') s.lineNumbers = true;
            else if (c != 'f') s.options += c;
        },
        &error);
    if (first < 0) return Fail("grep: " + error + " (" + kUsage + ")");
    if (s.unreadable) return Fail(error);
    if (s.patterns.empty()) return Fail(std::string("grep: no patterns (") + kUsage + ")");
    Args files(args.begin() + first, args.end());
    if (files.empty()) files.push_back("-");

    SetGrep grep(s);
    if (!grep.Prepare()) return 2;
    std::vector<int64_t> matching(files.size(), 0);
    const bool read = ForEachLine(
        files,
        [&](size_t file, const std::string& name, int64_t lineNo, std::string_view line) {
            const std::string prefix = files.size() > 1 ? name + ":" : "";
            matching[file] += grep.Line(prefix, name, lineNo, line);
        },
        &error);
    if (!read) return Fail(error);
    int64_t found = 0;
    for (size_t k = 0; k < files.size(); ++k) {
        if (s.count) std::printf("%s%lld\n", files.size() > 1 ? (Name(files[k]) + ":").c_str() : "",
                                 static_cast<long long>(matching[k]));
        found += matching[k];
    }
    if (grep.failed) return 2;
    return found > 0 ? 0 : 1;
}
