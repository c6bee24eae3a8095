// The matcher through vkpsRegExpFind_8u: each construct on a few subjects
// (pattern, options, subject, expected records), the documented quirks,
// and the depth budget.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/regexp_search.h"

namespace {

using vkptest::CompiledRegExp;
using vkptest::Span;

struct Case {
    const char* pattern;
    const char* options;
    std::string subject;
    std::vector<Span> records;  // empty: no match
};

constexpr Span kUnset{-1, -1};

TEST(RegExpMatch, Constructs) {
    const std::vector<Case> cases = {
        // Literals and types
        {"abc", "", "xabcx", {{1, 3}}},
        {"ABC", "i", "xabc", {{1, 3}}},
        {"a@", "i", "A`", {}},  // only letters differ in case
        {"a.c", "", "a\nc", {}},
        {"a.c", "s", "a\nc", {{0, 3}}},
        {"\\d+", "", "ab123c", {{2, 3}}},
        {"\\s", "", "\v \t", {{1, 1}}},  // byte 11 is not white space
        {"\\S+", "", " \v\x0b ", {{1, 2}}},
        {"\\w+", "", "\xc3\xa9_ab1", {{2, 4}}},
        {".", "", "\xc3\xa9", {{0, 2}}},        // one character
        {"\\D\\W", "", "\xe2\x82\xac\xc3\xa9", {{0, 5}}},
        {"\\C", "", "\xc3\xa9", {{0, 1}}},      // one byte
        {"\xc3\xa9+", "", "\xc3\xa9\xa9\xa9", {{0, 4}}},  // the repeat takes the last byte
        {"a..b", "", "a\xe2\x82" "b", {{0, 4}}},  // a cut sequence is bytes
        // Classes
        {"[a-c]+", "", "xxbcaz", {{2, 3}}},
        {"[^a-c]", "", "abcd", {{3, 1}}},
        {"[\xc3\xa9-\xc3\xaa]+", "", "a\xc3\xa9\xc3\xaa" "b", {{1, 4}}},
        {"[^x]", "", "\xe2\x82\xac", {{0, 3}}},
        {"[[:alpha:]]+", "", "12ab34", {{2, 2}}},
        {"[[:^alpha:]]+", "", "ab12cd", {{2, 2}}},  // not a letter
        {"[[:^digit:]x]+", "", "12x3", {{2, 1}}},
        {"[[:punct:]]", "", "a b", {{1, 1}}},      // the space is punct here
        {"[\\d_]+", "", "a1_2b", {{1, 3}}},
        {"[a-z]+", "i", "12ABc", {{2, 3}}},
        {"[\\x{3C3}]", "i", "\xce\xa3", {{0, 2}}},
        {"[\\p{Greek}]+", "", "a\xce\xb1\xce\xb2" "b", {{1, 4}}},
        {"[\\P{L}]", "", "ab1", {{2, 1}}},
        {"[b-d]{2,}?", "", "abcd", {{1, 2}}},
        // Unicode items
        {"\\p{Lu}+", "", "ab\xc3\x89" "Cd", {{2, 3}}},
        {"\\P{Lu}", "", "A\xc3\xa9", {{1, 2}}},
        {"\\p{Han}", "", "a\xe4\xb8\x80", {{1, 3}}},
        {"\\x{3A3}", "i", "\xcf\x83", {{0, 2}}},
        {"\\x{41}+", "", "AAb", {{0, 2}}},
        {"\\x{20AC}{2}", "", "\xe2\x82\xac\xe2\x82\xac", {{0, 6}}},
        {"\\X", "", "e\xcc\x81x", {{0, 3}}},
        {"\\X+?x", "", "e\xcc\x81x", {{0, 4}}},
        {"\\X", "", "\xcc\x81", {}},  // a mark cannot start a cluster
        // Anchors
        {"^b", "", "ab", {}},
        {"^b", "m", "a\nb", {{2, 1}}},
        {"^", "m", "x\n", {{0, 0}}},
        {"a$", "", "a\n", {{0, 1}}},
        {"a$", "", "a\nb", {}},
        {"a$", "m", "a\nb", {{0, 1}}},
        {"\\bfoo\\b", "", "afoo foo.", {{5, 3}}},
        {"\\Bo", "", "o xo", {{3, 1}}},
        {"\\Aa", "", "ba", {}},
        {"a\\z", "", "a\n", {}},
        {"a\\Z", "", "a\n", {{0, 1}}},
        {"x^*y", "", "xy", {{0, 2}}},  // an anchor a repeat makes optional
        {".*b", "", "aa\nab", {{3, 2}}},
        // Repeats and groups
        {"a{2,3}", "", "aaaa", {{0, 3}}},
        {"a{2,3}?", "", "aaaa", {{0, 2}}},
        {"a*?b", "", "aaab", {{0, 4}}},
        {"x*", "", "ab", {{0, 0}}},
        {"a{,2}b", "", "aaab", {{1, 3}}},
        {"(ab)+", "", "ababx", {{0, 4}, {2, 2}}},
        {"(ab)+?", "", "abab", {{0, 2}, {0, 2}}},
        {"(a|ab)(c|bcd)(d*)", "", "abcd", {{0, 4}, {0, 1}, {1, 3}, {4, 0}}},
        {"(a+)+b", "", "aaab", {{0, 4}, {0, 3}}},
        {"(a?)*b", "", "aab", {{0, 3}, {2, 0}}},
        {"(a){2}", "", "aaa", {{0, 2}, {1, 1}}},
        {"(?:(a)|b)+", "", "ab", {{0, 2}, {0, 1}}},
        {"(?:a|b)*?c", "", "abc", {{0, 3}}},
        {"(a)?ab", "", "ab", {{0, 2}, kUnset}},  // backtracking out of a group unsets it
        {"(a)b|ac", "", "ac", {{0, 2}, kUnset}},
        {"((a)|b)*", "", "ab", {{0, 2}, {1, 1}, {0, 1}}},
        {"(?:(a)(b)?)+", "", "aba", {{0, 3}, {2, 1}, {1, 1}}},
        {"(a*)*", "", "b", {{0, 0}, {0, 0}}},
        {"(a){0}b", "", "ab", {{1, 1}, kUnset}},
        {"(?:ab){2,}?c", "", "abababc", {{0, 7}}},
        // Back-references
        {"(a)\\1", "", "xaa", {{1, 2}, {1, 1}}},
        {"(a|b)\\1+", "", "abbb", {{1, 3}, {1, 1}}},
        {"(a)|b\\1", "", "b", {}},            // a group that did not take part
        {"(x?)\\1", "", "", {}},               // never at the very end
        {"(x?)\\1a", "", "a", {{0, 1}, {0, 0}}},
        {"(?i)(a)\\1", "", "aA", {{0, 2}, {0, 1}}},
        {"(a+)b\\1", "", "aabaa", {{0, 5}, {0, 2}}},
        {"(a)\\1*?b", "", "aaab", {{0, 4}, {0, 1}}},
        {"(a)(?:x|\\1)*", "", "aaxa", {{0, 4}, {0, 1}}},
        // Option changes
        {"(?i)ab", "", "AB", {{0, 2}}},
        {"a(?i)b", "", "aB", {{0, 2}}},
        {"a(?i)b", "", "AB", {}},
        {"(?i:a)b", "", "AbAB", {{0, 2}}},
        {"(?:(?i)a|b)", "", "B", {{0, 1}}},  // a setting reaches the next alternative
        {"(?i:a)B", "", "aB", {{0, 2}}},
        {"(?s:.)", "", "\n", {{0, 1}}},
        {"(?m)^b", "", "a\nb", {{2, 1}}},
        {"(?-i)a", "i", "A", {}},
        {"(?x) a b # c", "", "ab", {{0, 2}}},
        // Look-around
        {"a(?=b)", "", "acab", {{2, 1}}},
        {"a(?!b)", "", "abac", {{2, 1}}},
        {"(?<=a)b", "", "cbab", {{3, 1}}},
        {"(?<!a)b", "", "abcb", {{3, 1}}},
        {"(?<=ab|cd)x", "", "abycdx", {{5, 1}}},
        {"(?<=^a)b", "", "ab", {{1, 1}}},
        {"(?<=\\b)a", "", " a", {{1, 1}}},
        {"(?=(a+))a", "", "aaa", {{0, 1}, {0, 3}}},  // captures in the body stay
        {"(?!(a)b)a", "", "aab", {{0, 1}, kUnset}},
        {"(?=a)?b", "", "b", {{0, 1}}},
        {"a(?=c|b)", "", "ab", {{0, 1}}},
        // Atomic groups
        {"(?>a+)b", "", "aaab", {{0, 4}}},
        {"(?>a+)a", "", "aaa", {}},
        {"(?>a|ab)c", "", "abc", {}},
        {"(?>ab|a)*c", "", "ababc", {{0, 5}}},
        {"(?>a)*?b", "", "aab", {{0, 3}}},
        {"(?>a|b){2}b", "", "abb", {{0, 3}}},
        {"(?>(a)+)", "", "aa", {{0, 2}, {1, 1}}},
        // Conditionals
        {"(a)?(?(1)b|c)", "", "ab", {{0, 2}, {0, 1}}},
        {"(a)?(?(1)b|c)", "", "c", {{0, 1}, kUnset}},
        {"(a)?(?(1)b)c", "", "c", {{0, 1}, kUnset}},
        {"(?(?=a)ab|cd)", "", "cd", {{0, 2}}},
        {"(?(?!a)cd|ab)", "", "ab", {{0, 2}}},
        {"(?:(a)|b(?(1)x|y))+", "", "abx", {{0, 3}, {0, 1}}},
        {"(?:(a)|b(?(1)x|y))+", "", "by", {{0, 2}, kUnset}},
        // Alternatives: top-level alternatives are tried in order at one position before the next; an
        // alternation of literals reports the earliest alternative among those found at the leftmost index.
        {"cat|dog|do", "", "hotdog", {{3, 3}}},
        {"do|dog", "", "hotdog", {{3, 2}}},
        {"x|y", "", "ayx", {{1, 1}}},
        {"a|ab", "", "ab", {{0, 1}}},
        {"b|ab", "", "ab", {{0, 2}}},
        {"a|", "", "b", {{0, 0}}},
        {"^a|b", "", "cb", {{1, 1}}},
        {"x+|(y)", "", "y", {{0, 1}, {0, 1}}},
        {"AB|CD", "i", "xcd", {{1, 2}}},
        // The last literal bounds the subject: a match can end no later than the last occurrence of a literal that
        // only repeat records follow; a lookahead cannot look past it either.
        {"a.*b", "", "axbxxbx", {{0, 6}}},
        {"a+", "", "baaab", {{1, 3}}},
        {"x\\w*Y", "i", "xaybyc", {{0, 5}}},
        {"(?=abc)ab", "", "xabc", {}},
    };
    for (const Case& c : cases) {
        CompiledRegExp re(c.pattern, c.options);
        ASSERT_EQ(re.status(), 0) << c.pattern;
        const vkptest::SearchResult r = re.Search(c.subject);
        EXPECT_EQ(r.status, 0) << c.pattern << " on " << c.subject;
        EXPECT_EQ(r.records, c.records) << c.pattern << " (" << c.options << ") on \"" << c.subject << "\"";
    }
}

// Each matched item nests one level and reaching the end one more: with
// the default limit 10000, 9999 items can match and 10000 cannot.
TEST(RegExpMatch, DepthBudget) {
    const std::string subject(10000, 'a');
    CompiledRegExp fits(std::string(9999, '.'));
    EXPECT_EQ(fits.Search(subject).records, (std::vector<Span>{{0, 9999}}));
    CompiledRegExp over(std::string(10000, '.'));
    const vkptest::SearchResult r = over.Search(subject);
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(r.records.empty());
    // The limit is per branch: the search goes on with other branches.
    CompiledRegExp branch("(?:" + std::string(30, '.') + "b|a)");
    ASSERT_EQ(vkpsRegExpSetMatchLimit(20, branch.state()), 0);
    EXPECT_EQ(branch.Search(std::string(30, 'a') + "b").records, (std::vector<Span>{{0, 1}}));
    ASSERT_EQ(vkpsRegExpSetMatchLimit(0, branch.state()), 0);
    EXPECT_TRUE(branch.Search("a").records.empty());
}

}  // namespace
