// Bounded search time: the search with the failure table against the plain
// search on generated patterns (same status, same records), and patterns
// whose plain search takes exponential time on long subjects.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "regexp/find/find_driver.h"
#include "regexp/match/stack_limit.h"
#include "support/random_text.h"
#include "support/regexp_search.h"

namespace {

using vkptest::CompiledRegExp;
using vkptest::Rng;
using vkptest::SearchResult;

// The search that the driver runs once the plain one gives up.
SearchResult SearchBounded(CompiledRegExp& re, const std::string& subject) {
    return re.SearchAt(reinterpret_cast<const vkp8u*>(subject.c_str()), int(subject.size()), 16,
                       [](const vkp8u* s, int len, vkpRegExpState* st, vkpRegExpFind* m, int* n) {
                           return vkp::regexp::FindBounded(s, len, st, m, n, vkp::regexp::ThreadStackFloor(), false);
                       });
}

// Patterns over {a, b} built from items, groups of every kind, alternations
// and repeats, nested a few levels.
std::string Item(Rng& rng, int depth);

std::string Sequence(Rng& rng, int depth) {
    std::string s;
    for (int n = vkptest::RandomInt(rng, 1, 3); n > 0; --n) s += Item(rng, depth);
    return s;
}

std::string Item(Rng& rng, int depth) {
    static const char* const kAtoms[] = {"a", "b", ".", "[ab]", "\\w", "[^a]", "\\W", "^", "$", "\\b", "ab"};
    static const char* const kRepeats[] = {"*", "+", "?", "{1,3}", "{0,2}", "{2}", "*?", "+?", "??", "{1,2}?", ""};
    static const char* const kOpeners[] = {"(", "(?:", "(", "(?:", "(?>", "(?=", "(?!", "(?i:"};
    std::string s;
    if (depth < 3 && vkptest::RandomInt(rng, 0, 2) == 0) {
        const char* open = kOpeners[vkptest::RandomInt(rng, 0, 7)];
        s = open;
        s.append(Sequence(rng, depth + 1));
        for (int alts = vkptest::RandomInt(rng, 0, 2); alts > 0; --alts) s.append("|").append(Sequence(rng, depth + 1));
        s += ")";
        if (open[1] == '=' || open[1] == '!') return s;
    } else {
        s = kAtoms[vkptest::RandomInt(rng, 0, 10)];
        if (s == "^" || s == "$" || s == "\\b") return s;
    }
    return s + kRepeats[vkptest::RandomInt(rng, 0, 10)];
}

TEST(RegExpBounds, FailureTableGivesThePlainResult) {
    const char* seed = getenv("VKPCH_BOUNDS_SEED");
    Rng rng(seed ? unsigned(atoi(seed)) : 1212u);
    const int limits[] = {10000, 2, 5, 12, 40};
    for (int p = 0; p < 1000; ++p) {
        const std::string pattern = Sequence(rng, 0);
        const char* options = p % 3 == 0 ? "g" : "";
        CompiledRegExp re(pattern, options);
        ASSERT_EQ(re.status(), 0) << pattern;
        const int limit = limits[p % 5];
        vkpsRegExpSetMatchLimit(limit, re.state());
        // Every other pattern searches bytes (format 0), from any byte of a
        // two-byte character too.
        vkpsRegExpSetFormat(p % 2, re.state());
        for (int k = 0; k < 12; ++k) {
            const auto units = vkptest::RandomUnits<char>(rng, size_t(vkptest::RandomInt(rng, 0, 20)), 4);
            std::string subject;
            for (char u : units) subject += u == 'd' ? std::string("\xC3\xA9") : std::string(1, u);
            const SearchResult plain = re.Search(subject);
            const SearchResult bounded = SearchBounded(re, subject);
            ASSERT_EQ(bounded.status, plain.status) << pattern << " on " << subject << " limit " << limit;
            ASSERT_EQ(bounded.records, plain.records) << pattern << " on " << subject << " limit " << limit;
        }
    }
}

// Each pattern on n copies of `unit` followed by `tail`, n for 10 KB and
// 100 KB. The plain search backtracks exponentially; this test would not end
// without the bound. Where the match needs no more nesting than the depth
// budget allows, the result is the plain one (`start`, `length`, or no match
// for start -1); where the depth budget cuts the paths short ("deep"), the
// search may instead end at its step cap with the match-limit status.
TEST(RegExpBounds, CatastrophicPatternsFinish) {
    struct Case {
        const char* pattern;
        const char* unit;
        const char* tail;
        int startAfterRun;  // offset of the match behind the run, -1: none
        int length;
        bool deep;
    };
    const Case cases[] = {
        {"(a*)*b", "a", "!b", 1, 1, false},
        {"(a|aa)*c", "a", "!c", 1, 1, true},
        {"(a|a)*b", "a", "!b", 1, 1, true},
        {"(\\w+\\s?)*$", "a", "!", 1, 0, false},
        {"^(([a-z])+.)+[A-Z]([a-z])+$", "a", "!", -1, 0, true},
        {"((ab|a)*)*c", "ab", "!c", 1, 1, true},
    };
    for (const Case& c : cases) {
        CompiledRegExp re(c.pattern);
        ASSERT_EQ(re.status(), 0) << c.pattern;
        for (size_t bytes : {size_t(10000), size_t(100000)}) {
            std::string subject;
            while (subject.size() < bytes) subject += c.unit;
            const long run = long(subject.size());
            subject += c.tail;
            const SearchResult r = re.Search(subject);
            if (c.deep && r.status == VKP_ERR_MATCH_LIMIT) continue;
            ASSERT_EQ(r.status, 0) << c.pattern << " at " << bytes;
            if (c.startAfterRun < 0) {
                EXPECT_TRUE(r.records.empty()) << c.pattern << " at " << bytes;
                continue;
            }
            ASSERT_FALSE(r.records.empty()) << c.pattern << " at " << bytes;
            EXPECT_EQ(r.records[0], (vkptest::Span{run + c.startAfterRun, c.length})) << c.pattern << " at " << bytes;
        }
    }
}

}  // namespace
