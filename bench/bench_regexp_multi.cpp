// "Which patterns match this line" over the lines of 4 MiB of mixed text
// (corpus.h), for sets of 10 and 50 patterns: vkpsRegExpMultiFind_8u against
// RE2::Set, Hyperscan (one block-mode database, a pattern reported once per
// line) and a loop of pcre2_match (without and with JIT) over the patterns.
// Every engine's count of (line, pattern) pairs is checked against the
// pcre2 loop's; the rate is in lines, and "s/line" is the time per line.
//
// Over the first 2 MB of the package change logs (corpus.h), sets of 20
// mixed patterns, 300 and 3000 words of that text, each asked once per line
// and once per block of whole lines of at most 4 KiB (one line when it is
// longer), "s/line" or "s/block" the time per call. A pattern matches a unit
// when it matches anywhere in it, for every engine; the 20 patterns are
// checked against the pcre2 loop, the words against a plain search of each
// unit for every word. These are made when a benchmark of theirs first runs.
#define PCRE2_CODE_UNIT_WIDTH 8
#include <benchmark/benchmark.h>
#include <hs/hs.h>
#include <pcre2.h>
#include <re2/re2.h>
#include <re2/set.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <unordered_map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "corpus.h"
#include "ratio_table.h"
#include "vkpch.h"

namespace vkpbench {
namespace {

// Words of the text and tokens of the mix, interleaved so that the first ten
// hold both kinds.
const char* const kPatterns[] = {
    "keeper", R"(\d{4}-\d{2}-\d{2})", "lamp", R"([\w.+-]+@[\w-]+\.[\w.-]+)", "harbour", R"(https?://[\w.-]+)",
    "trawler", R"(\b(?:\d{1,3}\.){3}\d{1,3}\b)", "(?i)the gulls", R"(\w+ing\b)",
    "lighthouse", "storm", "winter", "Margaret", "Gannet", "weather", "tide", "boats", "drawer", "lonely",
    "capitals", "glass", "pilings", "bell", "fog", "spring", R"(\b[A-Z][a-z]+ [A-Z][a-z]+\b)", R"(\bkept\b)",
    R"(oil|damp)", "[Ww]hen", R"(\bno\w*)", "ship(?:s|ping)?", R"(\w+ed\b)", R"(\b\w{10,}\b)", "[aeiou]{3}",
    R"(\.org\b)", R"(\.co\.uk)", R"(\bJune\b)", R"(\d+\.\d+)", R"(html\?id=\d+)", "[0-9]{3}", R"(\bsoft\b)",
    R"(damp\.)", R"(\bexact\b)", R"(\b[a-z]+ly\b)", "o{2}", "ss", "[xyz]", R"(\b[A-Z]{2,}\b)", "(?i)NOBODY",
};
static_assert(sizeof kPatterns / sizeof kPatterns[0] == 50);

// A set a user would register for change logs: words, tokens led by a
// literal, classes and repeats.
const char* const kMixed20[] = {
    "urgency=high", R"(\bCVE-\d{4}-\d{4,}\b)", "security", R"(Closes: #\d+)", R"(\b\d+\.\d+(?:\.\d+)?-\d+\b)",
    "(?i)fix(?:es|ed)?", R"(<[\w.+-]+@[\w.-]+>)", "upstream", R"(\b[A-Z]{3,}\b)", R"(\bv?\d+\.\d+\b)",
    "debian/(?:control|rules|patches)", R"(\b\w+\.(?:c|h|py|sh)\b)", "(?i)typo", R"(\[ [A-Z][a-z]+ [A-Z][a-z]+ \])",
    R"(\b[0-9a-f]{8,}\b)", "(?:New|new) upstream (?:release|version)", R"(\(LP: #\d+\))", R"([Uu]pdated? )",
    R"(\b\w{15,}\b)", "lintian",
};
static_assert(sizeof kMixed20 / sizeof kMixed20[0] == 20);

using Patterns = std::vector<std::string>;
using Units = std::vector<std::string_view>;

// The nonempty lines of the text, without their line feeds.
Units SplitLines(const std::string& text) {
    Units v;
    for (size_t start = 0; start < text.size();) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        if (end > start) v.emplace_back(text.data() + start, end - start);
        start = end + 1;
    }
    return v;
}

const Units& Lines() {
    static const std::string text = MixedText(4 << 20);
    static const Units lines = SplitLines(text);
    return lines;
}

const std::string& Changelogs() {
    static const std::string text = ChangelogText(2000000);  // empty where the system has less
    return text;
}

// Whole lines with their line feeds, as many as fit in 4 KiB (a longer line
// alone).
Units SplitBlocks(const std::string& text) {
    Units v;
    for (size_t start = 0; start < text.size();) {
        size_t end = start;
        for (;;) {
            size_t next = text.find('\n', end);
            next = next == std::string::npos ? text.size() : next + 1;
            if (end > start && next - start > 4096) break;
            end = next;
            if (end == text.size()) break;
        }
        v.emplace_back(text.data() + start, end - start);
        start = end;
    }
    return v;
}

class Matcher {
public:
    virtual ~Matcher() = default;
    virtual bool ok() const = 0;
    // The number of its patterns that match the line.
    virtual int Count(std::string_view line) = 0;
};

class Ours : public Matcher {
public:
    explicit Ours(const Patterns& p) : blocks_(p.size()), records_(p.size()), results_(p.size()) {
        const int n = int(p.size());
        vkpsRegExpMultiInitAlloc(&set_, n);
        for (int k = 0; k < n && set_; ++k) {
            int size = 0, offset = 0;
            vkpsRegExpGetSize(p[size_t(k)].c_str(), &size);
            blocks_[size_t(k)].resize((size_t(size) + 7) / 8);
            auto* state = reinterpret_cast<vkpRegExpState*>(blocks_[size_t(k)].data());
            ok_ &= vkpsRegExpInit(p[size_t(k)].c_str(), "", state, &offset) == 0 &&
                   vkpsRegExpMultiAdd(state, k + 1, set_) == 0;
        }
    }
    ~Ours() override { vkpsRegExpMultiFree(set_); }
    bool ok() const override { return set_ && ok_; }

    int Count(std::string_view line) override {
        // One record each: the whole match tells whether the pattern matched.
        for (size_t k = 0; k < results_.size(); ++k) results_[k] = {0, 0, 1, 0, &records_[k]};
        vkpsRegExpMultiFind_8u(reinterpret_cast<const vkp8u*>(line.data()), int(line.size()), results_.data(), set_);
        int n = 0;
        for (const vkpRegExpMultiFind& r : results_) n += r.status >= 0 && r.numMatches > 0;
        return n;
    }

private:
    vkpRegExpMultiState* set_ = nullptr;
    bool ok_ = true;
    std::vector<std::vector<uint64_t>> blocks_;
    std::vector<vkpRegExpFind> records_;
    std::vector<vkpRegExpMultiFind> results_;
};

class Re2Set : public Matcher {
public:
    explicit Re2Set(const Patterns& p) : set_(Options(), re2::RE2::UNANCHORED) {
        for (size_t k = 0; k < p.size(); ++k) ok_ &= set_.Add(p[k], nullptr) == int(k);
        ok_ &= set_.Compile();
    }
    bool ok() const override { return ok_; }
    int Count(std::string_view line) override {
        hits_.clear();
        set_.Match(re2::StringPiece(line.data(), line.size()), &hits_);
        return int(hits_.size());
    }

private:
    static re2::RE2::Options Options() {
        re2::RE2::Options o;
        o.set_log_errors(false);
        o.set_max_mem(256 << 20);  // room for thousands of words
        return o;
    }
    re2::RE2::Set set_;
    bool ok_ = true;
    std::vector<int> hits_;
};

class Hyperscan : public Matcher {
public:
    explicit Hyperscan(const Patterns& p) {
        const unsigned n = unsigned(p.size());
        std::vector<unsigned> flags(n, HS_FLAG_SINGLEMATCH), ids;
        std::vector<const char*> exprs;
        for (unsigned k = 0; k < n; ++k) ids.push_back(k), exprs.push_back(p[k].c_str());
        hs_compile_error_t* err = nullptr;
        if (hs_compile_multi(exprs.data(), flags.data(), ids.data(), n, HS_MODE_BLOCK, nullptr, &db_, &err) !=
            HS_SUCCESS) {
            hs_free_compile_error(err);
            return;
        }
        if (hs_alloc_scratch(db_, &scratch_) != HS_SUCCESS) scratch_ = nullptr;
    }
    ~Hyperscan() override {
        hs_free_scratch(scratch_);
        hs_free_database(db_);
    }
    bool ok() const override { return db_ && scratch_; }
    int Count(std::string_view line) override {
        int n = 0;
        hs_scan(db_, line.data(), unsigned(line.size()), 0, scratch_,
                [](unsigned, unsigned long long, unsigned long long, unsigned, void* ctx) {
                    ++*static_cast<int*>(ctx);
                    return 0;
                },
                &n);
        return n;
    }

private:
    hs_database_t* db_ = nullptr;
    hs_scratch_t* scratch_ = nullptr;
};

class Pcre2Loop : public Matcher {
public:
    Pcre2Loop(const Patterns& p, bool jit) : jit_(jit) {
        for (const std::string& pattern : p) {
            int err;
            PCRE2_SIZE off;
            pcre2_code* code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.c_str()), PCRE2_ZERO_TERMINATED, 0,
                                             &err, &off, nullptr);
            ok_ &= code != nullptr && (!jit || pcre2_jit_compile(code, PCRE2_JIT_COMPLETE) == 0);
            codes_.push_back(code);
        }
        data_ = pcre2_match_data_create(1, nullptr);
    }
    ~Pcre2Loop() override {
        for (pcre2_code* c : codes_) pcre2_code_free(c);
        pcre2_match_data_free(data_);
    }
    bool ok() const override { return ok_; }
    int Count(std::string_view line) override {
        int n = 0;
        const auto* s = reinterpret_cast<PCRE2_SPTR>(line.data());
        for (pcre2_code* c : codes_)
            n += (jit_ ? pcre2_jit_match(c, s, line.size(), 0, 0, data_, nullptr)
                       : pcre2_match(c, s, line.size(), 0, 0, data_, nullptr)) >= 0;
        return n;
    }

private:
    bool jit_, ok_ = true;
    std::vector<pcre2_code*> codes_;
    pcre2_match_data* data_ = nullptr;
};

// The words of a set that a unit holds, the plain way: every substring of a
// word's length looked up among the words.
class WordLookup : public Matcher {
public:
    explicit WordLookup(const Patterns& words) : seen_(words.size(), 0) {
        for (size_t k = 0; k < words.size(); ++k) {
            index_.emplace(words[k], k);
            minLen_ = std::min(minLen_, words[k].size());
            maxLen_ = std::max(maxLen_, words[k].size());
        }
    }
    bool ok() const override { return !index_.empty(); }
    int Count(std::string_view unit) override {
        ++stamp_;
        int n = 0;
        for (size_t at = 0; at < unit.size(); ++at)
            for (size_t len = minLen_; len <= maxLen_ && at + len <= unit.size(); ++len) {
                auto it = index_.find(unit.substr(at, len));
                if (it != index_.end() && seen_[it->second] != stamp_) seen_[it->second] = stamp_, ++n;
            }
        return n;
    }

private:
    std::unordered_map<std::string_view, size_t> index_;
    std::vector<unsigned> seen_;
    unsigned stamp_ = 0;
    size_t minLen_ = SIZE_MAX, maxLen_ = 0;
};

int64_t CountAll(Matcher* m, const Units& units) {
    int64_t total = 0;
    for (std::string_view unit : units) total += m->Count(unit);
    return total;
}

// Times m over the units, the rate in units and "s/<unit>" the time per
// call; a count other than the reference's is an error.
void Time(benchmark::State& st, Matcher* m, const Units& units, int64_t expected, const std::string& unit,
          const char* reference) {
    int64_t total = 0;
    for (auto _ : st) total = CountAll(m, units);
    st.SetItemsProcessed(int64_t(st.iterations()) * int64_t(units.size()));
    st.counters["s/" + unit] = benchmark::Counter(double(units.size()), benchmark::Counter::kIsIterationInvariantRate |
                                                                            benchmark::Counter::kInvert);
    st.counters["hits"] = double(total);
    if (total != expected)
        st.SkipWithError(
            ("counted " + std::to_string(total) + ", " + reference + " " + std::to_string(expected)).c_str());
}

void Run(benchmark::State& st, Matcher* m, int64_t expected) {
    Time(st, m, Lines(), expected, "line", "the pcre2 loop");
}

void Register() {
    static std::vector<std::unique_ptr<Matcher>> matchers;
    for (int n : {10, 50}) {
        const Patterns patterns(kPatterns, kPatterns + n);
        auto reference = std::make_unique<Pcre2Loop>(patterns, false);
        if (!reference->ok()) continue;
        const int64_t expected = CountAll(reference.get(), Lines());
        const std::string base = "RegExpMulti/" + std::to_string(n) + " patterns/";
        std::unique_ptr<Matcher> all[] = {std::make_unique<Ours>(patterns), std::move(reference),
                                          std::make_unique<Pcre2Loop>(patterns, true),
                                          std::make_unique<Re2Set>(patterns), std::make_unique<Hyperscan>(patterns)};
        const char* const names[] = {"vkp", "pcre2_loop", "pcre2_jit_loop", "re2_set", "hyperscan"};
        for (size_t i = 0; i < std::size(all); ++i) {
            if (!all[i]->ok()) continue;
            benchmark::RegisterBenchmark((base + names[i]).c_str(), Run, all[i].get(), expected)->MinTime(0.2);
            matchers.push_back(std::move(all[i]));
        }
        const std::string row = "RegExpMultiFind_8u, " + std::to_string(n) + " patterns";
        AddRatio(row + " / pcre2 loop", base + "vkp", base + "pcre2_loop");
        AddRatio(row + " / pcre2 JIT loop", base + "vkp", base + "pcre2_jit_loop");
        AddRatio(row + " / RE2::Set", base + "vkp", base + "re2_set");
        AddRatio(row + " / Hyperscan", base + "vkp", base + "hyperscan");
    }
}

// One set over the change logs, per line or per block: its engines and the
// reference count, made on first use.
struct SetBench {
    std::function<Patterns()> patterns;
    bool words;    // checked by the word lookup, without the pcre2 loops
    bool blocks;   // units of 4 KiB, else lines
    bool built = false;
    Units units;
    int64_t expected = -1;
    std::unique_ptr<Matcher> engines[5];  // as kSetEngines

    void Build() {
        if (built) return;
        built = true;
        if (Changelogs().empty()) return;
        units = blocks ? SplitBlocks(Changelogs()) : SplitLines(Changelogs());
        const Patterns p = patterns();
        engines[0] = std::make_unique<Ours>(p);
        engines[1] = std::make_unique<Re2Set>(p);
        engines[2] = std::make_unique<Hyperscan>(p);
        if (!words) {
            engines[3] = std::make_unique<Pcre2Loop>(p, false);
            engines[4] = std::make_unique<Pcre2Loop>(p, true);
        }
        const std::unique_ptr<Matcher> lookup = words ? std::make_unique<WordLookup>(p) : nullptr;
        Matcher* reference = words ? lookup.get() : engines[3].get();
        if (reference->ok()) expected = CountAll(reference, units);
    }
};
const char* const kSetEngines[] = {"vkp", "re2_set", "hyperscan", "pcre2_loop", "pcre2_jit_loop"};

void RunSet(benchmark::State& st, SetBench* b, int engine) {
    b->Build();
    Matcher* m = b->engines[engine].get();
    if (b->expected < 0) return st.SkipWithError("no change logs, or the reference failed");
    if (!m || !m->ok()) return st.SkipWithError("the set does not compile");
    Time(st, m, b->units, b->expected, b->blocks ? "block" : "line", "the reference");
}

void RegisterChangelogSets() {
    const struct {
        const char* name;
        std::function<Patterns()> patterns;
        bool words;
    } sets[] = {
        {"20 mixed", [] { return Patterns(std::begin(kMixed20), std::end(kMixed20)); }, false},
        {"300 words", [] { return CommonWords(Changelogs(), 300, 4); }, true},
        {"3000 words", [] { return CommonWords(Changelogs(), 3000, 4); }, true},
    };
    for (const auto& set : sets) {
        for (bool blocks : {false, true}) {
            auto* b = new SetBench{set.patterns, set.words, blocks};  // lives as long as the program
            const std::string unit = blocks ? "4 KiB blocks" : "lines";
            const std::string base = std::string("RegExpMulti changelogs/") + set.name + "/" + unit + "/";
            for (int e = 0; e < (set.words ? 3 : 5); ++e)
                benchmark::RegisterBenchmark((base + kSetEngines[e]).c_str(), RunSet, b, e)->MinTime(0.2);
            const std::string row = std::string("RegExpMultiFind_8u changelogs, ") + set.name + ", " + unit;
            AddRatio(row + " / RE2::Set", base + "vkp", base + "re2_set");
            AddRatio(row + " / Hyperscan", base + "vkp", base + "hyperscan");
            AddRatio(row + " / pcre2 loop", base + "vkp", base + "pcre2_loop");
            AddRatio(row + " / pcre2 JIT loop", base + "vkp", base + "pcre2_jit_loop");
        }
    }
}

const int registered = (Register(), RegisterChangelogSets(), 0);

}  // namespace
}  // namespace vkpbench
