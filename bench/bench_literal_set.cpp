// The literal kernels on real text (the package change logs of this system,
// 4 MiB; the English mix when there are none): word lists of 4, 32, 300 and
// 3000 words, exact and caseless, searched over the whole text (every
// leftmost match, non-overlapping) and line by line (does the line hold a
// word) against RE2 (the words as one alternation, which picks the same
// match), Hyperscan (a line stops at its first match) and a memmem loop over
// the words; which words each line holds (as a pattern set asks) against
// RE2::Set and Hyperscan. A caseless single word is searched with the
// rare-byte filter against the first/last-byte one and the pcre2 JIT, and
// runs of twelve letters against the pcre2 JIT. Every engine's count is
// checked against ours.
#define PCRE2_CODE_UNIT_WIDTH 8
#include <benchmark/benchmark.h>
#include <hs/hs.h>
#include <pcre2.h>
#include <re2/re2.h>
#include <re2/set.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "bench_register.h"
#include "corpus.h"
#include "kernels/active.h"
#include "kernels/literal_set.h"
#include "kernels/rare_byte_search.h"
#include "ratio_table.h"

namespace vkpbench {
namespace {

namespace k = vkp::kernels;
constexpr size_t kTextBytes = 4 << 20;

const std::string& Text() {
    static const std::string text = [] {
        std::string t;
        if (FILE* p = popen("cat /usr/share/doc/*/changelog.Debian.gz 2>/dev/null | gzip -dc 2>/dev/null", "r")) {
            char buf[65536];
            for (size_t n; t.size() < kTextBytes && (n = fread(buf, 1, sizeof buf, p)) > 0;) t.append(buf, n);
            pclose(p);
        }
        if (t.size() < kTextBytes) t = EnglishText(kTextBytes);
        t.resize(kTextBytes);
        return t;
    }();
    return text;
}

const std::vector<std::string_view>& Lines() {
    static const std::vector<std::string_view> lines = [] {
        std::vector<std::string_view> v;
        const std::string& t = Text();
        for (size_t start = 0; start < t.size();) {
            size_t end = t.find('\n', start);
            if (end == std::string::npos) end = t.size();
            v.emplace_back(t.data() + start, end - start);
            start = end + 1;
        }
        return v;
    }();
    return lines;
}

// n words of the text (letters only, 3 to 16 of them), taken at evenly spaced
// ranks of frequency so that common and rare words both appear.
std::vector<std::string> Words(size_t n) {
    if (n == 4) return {"water", "people", "number", "engine"};
    std::map<std::string, int> count;
    const std::string& t = Text();
    for (size_t i = 0; i < t.size();) {
        size_t j = i;
        while (j < t.size() && ((t[j] | 0x20) >= 'a' && (t[j] | 0x20) <= 'z')) ++j;
        if (j - i >= 3 && j - i <= 16) ++count[t.substr(i, j - i)];
        i = j + 1;
    }
    std::vector<std::pair<int, std::string>> ranked;
    for (auto& [w, c] : count) ranked.emplace_back(-c, w);
    std::sort(ranked.begin(), ranked.end());
    const size_t step = std::max<size_t>(1, std::min<size_t>(ranked.size() / n, 8));
    std::vector<std::string> words;
    for (size_t i = 0; i < ranked.size() && words.size() < n; i += step) words.push_back(ranked[i].second);
    return words;
}

std::string Alternation(const std::vector<std::string>& words, bool caseless) {
    std::string re = caseless ? "(?i)(?:" : "(?:";
    for (size_t i = 0; i < words.size(); ++i) {
        if (i) re += '|';
        re += RE2::QuoteMeta(words[i]);
    }
    return re + ")";
}

struct Ours {
    std::vector<uint64_t> mem;
    const k::LiteralSet* set = nullptr;
    Ours(const std::vector<std::string>& words, bool caseless) {
        std::vector<const vkp8u*> p;
        std::vector<int> n;
        size_t total = 0;
        for (const std::string& w : words)
            p.push_back(reinterpret_cast<const vkp8u*>(w.data())), n.push_back(int(w.size())), total += w.size();
        mem.resize(k::LiteralSetBytes(int(words.size()), total) / 8 + 1);
        if (k::BuildLiteralSet(p.data(), n.data(), int(words.size()), caseless, mem.data(), mem.size() * 8))
            set = reinterpret_cast<const k::LiteralSet*>(mem.data());
    }
    int Find(std::string_view s, int* which) const {
        return k::active::FindLiterals(reinterpret_cast<const vkp8u*>(s.data()), int(s.size()), set, which);
    }
};

struct Hyperscan {
    hs_database_t* db = nullptr;
    hs_scratch_t* scratch = nullptr;
    Hyperscan(const std::vector<std::string>& words, bool caseless) {
        std::vector<const char*> exprs;
        std::vector<std::string> quoted;
        for (const std::string& w : words) quoted.push_back(RE2::QuoteMeta(w));
        for (const std::string& q : quoted) exprs.push_back(q.c_str());
        std::vector<unsigned> flags(words.size(), HS_FLAG_SINGLEMATCH | (caseless ? HS_FLAG_CASELESS : 0u)), ids;
        for (size_t i = 0; i < words.size(); ++i) ids.push_back(unsigned(i));
        hs_compile_error_t* err = nullptr;
        if (hs_compile_multi(exprs.data(), flags.data(), ids.data(), unsigned(words.size()), HS_MODE_BLOCK, nullptr,
                             &db, &err) != HS_SUCCESS) {
            hs_free_compile_error(err);
            db = nullptr;
            return;
        }
        if (hs_alloc_scratch(db, &scratch) != HS_SUCCESS) scratch = nullptr;
    }
    ~Hyperscan() {
        hs_free_scratch(scratch);
        hs_free_database(db);
    }
    // The number of words the line holds (each reported once).
    int Count(std::string_view s) const {
        int n = 0;
        hs_scan(db, s.data(), unsigned(s.size()), 0, scratch,
                [](unsigned, unsigned long long, unsigned long long, unsigned, void* c) {
                    ++*static_cast<int*>(c);
                    return 0;
                },
                &n);
        return n;
    }
    bool ok() const { return db && scratch; }
    bool Any(std::string_view s) const {
        return hs_scan(db, s.data(), unsigned(s.size()), 0, scratch,
                       [](unsigned, unsigned long long, unsigned long long, unsigned, void*) { return 1; },
                       nullptr) == HS_SCAN_TERMINATED;
    }
};

using Counter = std::function<int64_t()>;

// A benchmark's count, checked against ours (both computed on first use, so
// that registering costs nothing); the kernels of the width the features
// allow (`drop` taken out of them).
void Add(const std::string& name, Counter count, Counter ours, unsigned long long drop = 0) {
    benchmark::RegisterBenchmark(name.c_str(), [count, ours, drop](benchmark::State& st) {
        vkp::SelectKernels(vkpGetEnabledCpuFeatures() & ~drop);
        const int64_t expected = ours();
        int64_t total = 0;
        for (auto _ : st) total = count();
        st.SetBytesProcessed(int64_t(st.iterations()) * int64_t(Text().size()));
        st.counters["hits"] = double(total);
        if (total != expected)
            st.SkipWithError(("counted " + std::to_string(total) + ", ours " + std::to_string(expected)).c_str());
    })->MinTime(0.1);
}

// One word list and its engines, built on first use.
struct WordList {
    size_t n;
    bool caseless;
    std::vector<std::string> words;
    std::unique_ptr<Ours> ours;
    std::unique_ptr<re2::RE2> re;
    std::unique_ptr<Hyperscan> hs;
    std::unique_ptr<re2::RE2::Set> reSet;
    std::vector<vkp8u> seen;  // a bit per word
    std::vector<int> hits;
    WordList& Get() {
        if (ours) return *this;
        words = Words(n);
        ours = std::make_unique<Ours>(words, caseless);
        re2::RE2::Options o;
        o.set_max_mem(256 << 20);
        o.set_log_errors(false);
        re = std::make_unique<re2::RE2>(Alternation(words, caseless), o);
        hs = std::make_unique<Hyperscan>(words, caseless);
        o.set_case_sensitive(!caseless);
        reSet = std::make_unique<re2::RE2::Set>(o, re2::RE2::UNANCHORED);
        for (const std::string& w : words) reSet->Add(RE2::QuoteMeta(w), nullptr);
        if (!reSet->Compile()) reSet.reset();
        seen.resize((words.size() + 7) / 8);
        return *this;
    }
};

// A count of fn(list, line) summed over the lines.
template <class Fn>
Counter PerLine(WordList* w, Fn fn) {
    return [w, fn] {
        WordList& l = w->Get();
        int64_t c = 0;
        for (std::string_view line : Lines()) c += int64_t(fn(l, line));
        return c;
    };
}

// Counts computed once per list, for the check.
Counter Once(Counter c) {
    auto v = std::make_shared<int64_t>(-1);
    return [c, v] { return *v >= 0 ? *v : (*v = c()); };
}

void RegisterWordLists() {
    for (size_t n : {size_t(4), size_t(32), size_t(300), size_t(3000)}) {
        for (bool caseless : {false, true}) {
            if (n == 3000 && caseless) continue;
            WordList* w = new WordList{n, caseless, {}, nullptr, nullptr, nullptr};  // lives as long as the program
            const std::string base =
                "LiteralSet/" + std::to_string(n) + (caseless ? " words caseless/" : " words/");
            const std::string row = "LiteralSet " + std::to_string(n) + (caseless ? " words caseless" : " words");
            // Whole text: every leftmost match, the next search after it.
            auto oursWhole = [w] {
                WordList& l = w->Get();
                int64_t c = 0;
                std::string_view t = Text();
                for (size_t from = 0;;) {
                    int which = 0;
                    const int p = l.ours->Find(t.substr(from), &which);
                    if (p < 0) return c;
                    ++c;
                    from += size_t(p) + l.words[size_t(which)].size();
                }
            };
            auto re2Whole = [w] {
                WordList& l = w->Get();
                int64_t c = 0;
                re2::StringPiece t(Text()), m;
                for (size_t from = 0; l.re->Match(t, from, t.size(), re2::RE2::UNANCHORED, &m, 1); ++c)
                    from = size_t(m.data() + m.size() - t.data());
                return c;
            };
            using L = std::string_view;
            const Counter oursLines = PerLine(w, [](WordList& l, L line) {
                int which;
                return l.ours->Find(line, &which) >= 0;
            });
            const Counter re2Lines = PerLine(w, [](WordList& l, L line) {
                return re2::RE2::PartialMatch(re2::StringPiece(line.data(), line.size()), *l.re);
            });
            const Counter hsLines = PerLine(w, [](WordList& l, L line) { return l.hs->ok() && l.hs->Any(line); });
            const Counter memmemLines = PerLine(w, [](WordList& l, L line) {
                for (const std::string& word : l.words)
                    if (memmem(line.data(), line.size(), word.data(), word.size())) return true;
                return false;
            });
            // Which words each line holds, as a pattern set asks: the count
            // of (line, word) pairs.
            const Counter oursMark = PerLine(w, [](WordList& l, L line) {
                std::fill(l.seen.begin(), l.seen.end(), 0);
                return k::active::MarkLiterals(reinterpret_cast<const vkp8u*>(line.data()), int(line.size()),
                                               l.ours->set, l.seen.data());
            });
            const Counter hsMark = PerLine(w, [](WordList& l, L line) { return l.hs->ok() ? l.hs->Count(line) : 0; });
            const Counter re2SetMark = PerLine(w, [](WordList& l, L line) {
                l.hits.clear();
                if (l.reSet) l.reSet->Match(re2::StringPiece(line.data(), line.size()), &l.hits);
                return int(l.hits.size());
            });
            const Counter marked = Once(oursMark);
            Add(base + "each word per line/vkp", oursMark, marked);
            Add(base + "each word per line/re2_set", re2SetMark, marked);
            Add(base + "each word per line/hyperscan", hsMark, marked);
            AddRatio(row + ", each word per line / RE2::Set", base + "each word per line/vkp",
                     base + "each word per line/re2_set");
            AddRatio(row + ", each word per line / Hyperscan", base + "each word per line/vkp",
                     base + "each word per line/hyperscan");
            const Counter whole = Once(oursWhole), lines = Once(oursLines);
            Add(base + "whole/vkp", oursWhole, whole);
            Add(base + "whole/re2", re2Whole, whole);
            if (n <= size_t(k::kMaxBucketLiterals)) Add(base + "whole/vkp_16", oursWhole, whole, VKP_CPU_AVX2);
            Add(base + "lines/vkp", oursLines, lines);
            Add(base + "lines/re2", re2Lines, lines);
            Add(base + "lines/hyperscan", hsLines, lines);
            if (!caseless && n <= 300) Add(base + "lines/memmem_loop", memmemLines, lines);
            AddRatio(row + ", whole text / RE2", base + "whole/vkp", base + "whole/re2");
            AddRatio(row + ", whole text 16-byte / RE2", base + "whole/vkp_16", base + "whole/re2");
            AddRatio(row + ", per line / RE2", base + "lines/vkp", base + "lines/re2");
            AddRatio(row + ", per line / Hyperscan", base + "lines/vkp", base + "lines/hyperscan");
            AddRatio(row + ", per line / memmem loop", base + "lines/vkp", base + "lines/memmem_loop");
        }
    }
}

// Every occurrence of a caseless word over the whole text.
void RegisterCaselessWord(const char* w) {
    const std::string& word = *new std::string(w);  // lives as long as the program
    const auto* f = reinterpret_cast<const vkp8u*>(word.data());
    const int m = int(word.size());
    const vkp::u32 at = k::RareProbeOffsets(f, m, true);
    auto count = [f, m](auto find) {
        int64_t c = 0;
        const auto* t = reinterpret_cast<const vkp8u*>(Text().data());
        const int len = int(Text().size());
        for (int from = 0;;) {
            const int p = find(t + from, len - from);
            if (p < 0) return c;
            ++c;
            from += p + m;
        }
    };
    const Counter rare = [=] { return count([=](const vkp8u* s, int n) { return k::active::FindSubFoldedRareFwd(s, n, f, m, at); }); };
    const Counter firstLast = [=] { return count([=](const vkp8u* s, int n) { return k::active::FindSubFoldedFwd(s, n, f, m); }); };
    int err;
    PCRE2_SIZE off;
    pcre2_code* code = pcre2_compile(f, PCRE2_SIZE(m), PCRE2_CASELESS, &err, &off, nullptr);
    if (!code || pcre2_jit_compile(code, PCRE2_JIT_COMPLETE) != 0) return;
    pcre2_match_data* data = pcre2_match_data_create(1, nullptr);
    const Counter jit = [code, data] {
        int64_t c = 0;
        const auto* t = reinterpret_cast<PCRE2_SPTR>(Text().data());
        for (PCRE2_SIZE from = 0; pcre2_jit_match(code, t, Text().size(), from, 0, data, nullptr) > 0; ++c)
            from = pcre2_get_ovector_pointer(data)[1];
        return c;
    };
    const Counter expected = Once(rare);
    const std::string base = "CaselessWord/" + word + "/";
    Add(base + "vkp_rare_bytes", rare, expected);
    Add(base + "vkp_first_last", firstLast, expected);
    Add(base + "pcre2_jit", jit, expected);
    AddRatio("caseless " + word + ", rare-byte filter / pcre2 JIT", base + "vkp_rare_bytes", base + "pcre2_jit");
    AddRatio("caseless " + word + ", rare-byte / first-last filter", base + "vkp_rare_bytes", base + "vkp_first_last");
}

// Every run of at least 12 letters over the whole text (long words): the
// run finder, then the end of the run, against the pcre2 JIT.
void RegisterLetterRuns() {
    static vkp8u letters[16] = {};
    for (int c = 'A'; c <= 'z'; ++c)
        if (c <= 'Z' || c >= 'a') letters[c & 15] |= vkp8u(1u << (c >> 4));
    const Counter ours = [] {
        int64_t c = 0;
        const auto* t = reinterpret_cast<const vkp8u*>(Text().data());
        const int len = int(Text().size());
        for (int from = 0;; ++c) {
            const int p = k::active::FindMemberRun(t + from, len - from, letters, 12);
            if (p < 0) return c;
            const int end = k::active::FindNonMember(t + from + p, len - from - p, letters);
            if (end < 0) return c + 1;
            from += p + end;
        }
    };
    int err;
    PCRE2_SIZE off;
    pcre2_code* code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>("[A-Za-z]{12,}"), PCRE2_ZERO_TERMINATED, 0, &err,
                                     &off, nullptr);
    if (!code || pcre2_jit_compile(code, PCRE2_JIT_COMPLETE) != 0) return;
    pcre2_match_data* data = pcre2_match_data_create(1, nullptr);
    const Counter jit = [code, data] {
        int64_t c = 0;
        const auto* t = reinterpret_cast<PCRE2_SPTR>(Text().data());
        for (PCRE2_SIZE from = 0; pcre2_jit_match(code, t, Text().size(), from, 0, data, nullptr) > 0; ++c)
            from = pcre2_get_ovector_pointer(data)[1];
        return c;
    };
    const Counter expected = Once(ours);
    Add("LetterRuns/12/vkp", ours, expected);
    Add("LetterRuns/12/vkp_16", ours, expected, VKP_CPU_AVX2);
    Add("LetterRuns/12/pcre2_jit", jit, expected);
    AddRatio("runs of 12 letters / pcre2 JIT", "LetterRuns/12/vkp", "LetterRuns/12/pcre2_jit");
    AddRatio("runs of 12 letters 16-byte / pcre2 JIT", "LetterRuns/12/vkp_16", "LetterRuns/12/pcre2_jit");
}

// The first eight words are the workloads named for the caseless search;
// the last four were picked without measuring them.
int RegisterCaselessWords() {
    for (const char* w : {"testing", "keeper", "error", "warning", "debian", "package", "upstream", "Version", "library",
                          "security", "thanks", "fixes"})
        RegisterCaselessWord(w);
    return 0;
}

const int registered = (RegisterLetterRuns(), RegisterWordLists(), RegisterCaselessWords(), 0);

}  // namespace
}  // namespace vkpbench
