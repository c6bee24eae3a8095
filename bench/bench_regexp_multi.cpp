// "Which patterns match this line" over the lines of 4 MiB of mixed text
// (corpus.h), for sets of 10 and 50 patterns: vkpsRegExpMultiFind_8u against
// RE2::Set, Hyperscan (one block-mode database, a pattern reported once per
// line) and a loop of pcre2_match (without and with JIT) over the patterns.
// Every engine's count of (line, pattern) pairs is checked against the
// pcre2 loop's; the rate is in lines, and "s/line" is the time per line.
#define PCRE2_CODE_UNIT_WIDTH 8
#include <benchmark/benchmark.h>
#include <hs/hs.h>
#include <pcre2.h>
#include <re2/re2.h>
#include <re2/set.h>

#include <cstdint>
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

const std::vector<std::string_view>& Lines() {
    static const std::string text = MixedText(4 << 20);
    static const std::vector<std::string_view> lines = [] {
        std::vector<std::string_view> v;
        for (size_t start = 0; start < text.size();) {
            size_t end = text.find('\n', start);
            if (end == std::string::npos) end = text.size();
            if (end > start) v.emplace_back(text.data() + start, end - start);
            start = end + 1;
        }
        return v;
    }();
    return lines;
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
    explicit Ours(int n) : blocks_(size_t(n)), records_(size_t(n)), results_(size_t(n)) {
        vkpsRegExpMultiInitAlloc(&set_, n);
        for (int k = 0; k < n && set_; ++k) {
            int size = 0, offset = 0;
            vkpsRegExpGetSize(kPatterns[k], &size);
            blocks_[size_t(k)].resize((size_t(size) + 7) / 8);
            auto* state = reinterpret_cast<vkpRegExpState*>(blocks_[size_t(k)].data());
            ok_ &= vkpsRegExpInit(kPatterns[k], "", state, &offset) == 0 && vkpsRegExpMultiAdd(state, k + 1, set_) == 0;
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
    explicit Re2Set(int n) : set_(Options(), re2::RE2::UNANCHORED) {
        for (int k = 0; k < n; ++k) ok_ &= set_.Add(kPatterns[k], nullptr) == k;
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
        return o;
    }
    re2::RE2::Set set_;
    bool ok_ = true;
    std::vector<int> hits_;
};

class Hyperscan : public Matcher {
public:
    explicit Hyperscan(int n) {
        std::vector<unsigned> flags(size_t(n), HS_FLAG_SINGLEMATCH), ids;
        for (int k = 0; k < n; ++k) ids.push_back(unsigned(k));
        hs_compile_error_t* err = nullptr;
        if (hs_compile_multi(kPatterns, flags.data(), ids.data(), unsigned(n), HS_MODE_BLOCK, nullptr, &db_, &err) !=
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
    Pcre2Loop(int n, bool jit) : jit_(jit) {
        for (int k = 0; k < n; ++k) {
            int err;
            PCRE2_SIZE off;
            pcre2_code* code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(kPatterns[k]), PCRE2_ZERO_TERMINATED, 0,
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

int64_t CountAll(Matcher* m) {
    int64_t total = 0;
    for (std::string_view line : Lines()) total += m->Count(line);
    return total;
}

void Run(benchmark::State& st, Matcher* m, int64_t expected) {
    int64_t total = 0;
    for (auto _ : st) total = CountAll(m);
    const double lines = double(Lines().size());
    st.SetItemsProcessed(int64_t(st.iterations()) * int64_t(Lines().size()));
    st.counters["s/line"] = benchmark::Counter(lines, benchmark::Counter::kIsIterationInvariantRate |
                                                          benchmark::Counter::kInvert);
    st.counters["hits"] = double(total);
    if (total != expected)
        st.SkipWithError(("counted " + std::to_string(total) + ", the pcre2 loop " + std::to_string(expected)).c_str());
}

void Register() {
    static std::vector<std::unique_ptr<Matcher>> matchers;
    for (int n : {10, 50}) {
        auto reference = std::make_unique<Pcre2Loop>(n, false);
        if (!reference->ok()) continue;
        const int64_t expected = CountAll(reference.get());
        const std::string base = "RegExpMulti/" + std::to_string(n) + " patterns/";
        std::unique_ptr<Matcher> all[] = {std::make_unique<Ours>(n), std::move(reference),
                                          std::make_unique<Pcre2Loop>(n, true), std::make_unique<Re2Set>(n),
                                          std::make_unique<Hyperscan>(n)};
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

const int registered = (Register(), 0);

}  // namespace
}  // namespace vkpbench
