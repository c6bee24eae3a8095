// The argument checks of every regexp entry point; vkpsRegExpFind_8u as a
// driver: result codes, global search and its empty-match rule, UTF-8 start
// positions, the shortcuts and what the driver keeps between searches, and
// reads that stay within the subject.
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "support/guarded_buffer.h"
#include "support/random_text.h"
#include "support/regexp_search.h"

namespace {

using vkptest::CompiledRegExp;
using vkptest::Span;
using Spans = std::vector<Span>;

// The outputs the calls below may write; a marker fills them before each call.
struct Outputs {
    vkpRegExpFind records[4];
    vkpRegExpMultiFind results[2];
    vkp8u dst[16];
    int count, zero, srcLen, dstLen, size, offset;
};

// Every regexp entry point's argument checks in the order they are made
// (each row passes the checks before the one it breaks): the status, and
// nothing written, neither to the outputs nor to the pattern or set block.
TEST(RegExpArguments, ChecksInOrderWriteNothing) {
    CompiledRegExp re("(a)(b)?");
    vkpRegExpState* st = re.state();
    std::vector<unsigned char> blank(VKP_REGEXP_HEAD_SIZE, 0);  // not a compiled pattern
    auto* none = reinterpret_cast<vkpRegExpState*>(blank.data());
    std::vector<long long> templateBlock(16);
    auto* rs = reinterpret_cast<vkpRegExpReplaceState*>(templateBlock.data());
    const vkp8u s[] = "xaby";
    ASSERT_EQ(vkpsRegExpReplaceInit(s, rs), 0);
    vkpRegExpMultiState* set = nullptr;
    ASSERT_EQ(vkpsRegExpMultiInitAlloc(&set, 2), 0);
    vkpRegExpMultiState empty{};  // capacity 0, as a block the caller zeroed
    Outputs o;
    using Call = std::function<vkpStatus()>;
    std::vector<std::pair<vkpStatus, Call>> rows = {
        {VKP_ERR_NULL, [&] { return vkpsRegExpGetSize(nullptr, &o.size); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpGetSize("a", nullptr); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpInit(nullptr, "", none, &o.offset); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpInit("a", "", nullptr, &o.offset); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpInit("a", "", none, nullptr); }},
        {VKP_ERR_NULL, [&] { vkpRegExpState* p = st; return vkpsRegExpInitAlloc(nullptr, "", &p, &o.offset); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpInitAlloc("a", "", nullptr, &o.offset); }},
        {VKP_ERR_LENGTH, [&] { return vkpsRegExpSetMatchLimit(-1, st); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpSetMatchLimit(5, nullptr); }},
        {VKP_ERR_FORMAT, [&] { return vkpsRegExpSetFormat(2, st); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpSetFormat(1, nullptr); }},
        // Find: pointers, the length before the record count, then the block.
        {VKP_ERR_NULL, [&] { return vkpsRegExpFind_8u(nullptr, 4, st, o.records, &o.count); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpFind_8u(s, 4, nullptr, o.records, &o.count); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpFind_8u(s, 4, st, nullptr, &o.count); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpFind_8u(s, 4, st, o.records, nullptr); }},
        {VKP_ERR_LENGTH, [&] { return vkpsRegExpFind_8u(s, -1, st, o.records, &o.zero); }},
        {VKP_ERR_SIZE, [&] { return vkpsRegExpFind_8u(s, 4, st, o.records, &o.zero); }},
        {VKP_ERR_NOT_COMPILED, [&] { return vkpsRegExpFind_8u(s, 4, none, o.records, &o.count); }},
        // Replace and its template.
        {VKP_ERR_NULL, [&] { return vkpsRegExpReplaceGetSize(s, nullptr); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpReplaceInit(s, nullptr); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpReplace_8u(nullptr, &o.srcLen, o.dst, &o.dstLen, o.records, &o.count, st, rs); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpReplace_8u(s, nullptr, o.dst, &o.dstLen, o.records, &o.count, st, rs); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpReplace_8u(s, &o.srcLen, nullptr, &o.dstLen, o.records, &o.count, st, rs); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpReplace_8u(s, &o.srcLen, o.dst, nullptr, o.records, &o.count, st, rs); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpReplace_8u(s, &o.srcLen, o.dst, &o.dstLen, nullptr, &o.count, st, rs); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpReplace_8u(s, &o.srcLen, o.dst, &o.dstLen, o.records, nullptr, st, rs); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpReplace_8u(s, &o.srcLen, o.dst, &o.dstLen, o.records, &o.count, nullptr, rs); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpReplace_8u(s, &o.srcLen, o.dst, &o.dstLen, o.records, &o.count, st, nullptr); }},
        {VKP_ERR_SIZE, [&] { return vkpsRegExpReplace_8u(s, &o.zero, o.dst, &o.dstLen, o.records, &o.count, st, rs); }},
        {VKP_ERR_SIZE, [&] { return vkpsRegExpReplace_8u(s, &o.srcLen, o.dst, &o.zero, o.records, &o.count, st, rs); }},
        {VKP_ERR_SIZE, [&] { return vkpsRegExpReplace_8u(s, &o.srcLen, o.dst, &o.dstLen, o.records, &o.zero, st, rs); }},
        {VKP_ERR_NOT_COMPILED, [&] { return vkpsRegExpReplace_8u(s, &o.srcLen, o.dst, &o.dstLen, o.records, &o.count, none, rs); }},
        // Pattern sets.
        {VKP_ERR_NULL, [&] { return vkpsRegExpMultiGetSize(1, nullptr); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpMultiInit(nullptr, 1); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpMultiInitAlloc(nullptr, 1); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpMultiAdd(nullptr, 1, set); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpMultiAdd(st, 1, nullptr); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpMultiModify(nullptr, 1, set); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpMultiModify(st, 1, nullptr); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpMultiDelete(1, nullptr); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpMultiFind_8u(nullptr, 4, o.results, set); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpMultiFind_8u(s, 4, nullptr, set); }},
        {VKP_ERR_NULL, [&] { return vkpsRegExpMultiFind_8u(s, 4, o.results, nullptr); }},
        {VKP_ERR_SIZE, [&] { return vkpsRegExpMultiFind_8u(s, 0, o.results, set); }},  // an empty subject too
        {VKP_ERR_SET_FULL, [&] { return vkpsRegExpMultiAdd(st, 1, &empty); }},
        {VKP_ERR_NO_SUCH_ID, [&] { return vkpsRegExpMultiDelete(1, &empty); }},
        {VKP_ERR_NO_SUCH_ID, [&] { return vkpsRegExpMultiModify(st, 1, &empty); }},
        {VKP_ERR_ZERO_ID, [&] { return vkpsRegExpMultiAdd(st, 0, set); }},
    };
    // Capacities below 1 or whose block size overflows; the failed
    // allocation leaves a null pointer behind.
    for (int bad : {0, -1, INT_MIN, (INT_MAX - 24) / 12 + 1}) {
        rows.push_back({VKP_ERR_SIZE, [&, bad] { return vkpsRegExpMultiGetSize(bad, &o.size); }});
        rows.push_back({VKP_ERR_SIZE, [&, bad] { return vkpsRegExpMultiInit(set, bad); }});
        rows.push_back({VKP_ERR_SIZE, [&, bad] {
            vkpRegExpMultiState* p = set;
            const vkpStatus r = vkpsRegExpMultiInitAlloc(&p, bad);
            return p ? 1 : r;
        }});
    }
    for (size_t i = 0; i < rows.size(); ++i) {
        std::memset(&o, 0x55, sizeof o);
        o.count = 4, o.zero = 0, o.srcLen = 4, o.dstLen = 16;
        unsigned char before[sizeof(Outputs)];
        std::memcpy(before, &o, sizeof o);
        const std::string header(reinterpret_cast<const char*>(st), 32), slots(reinterpret_cast<const char*>(set), 48);
        EXPECT_EQ(rows[i].second(), rows[i].first) << "row " << i;
        EXPECT_EQ(std::memcmp(before, &o, sizeof o), 0) << "row " << i;
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(st), 32), header) << "row " << i;
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(set), 48), slots) << "row " << i;
    }
    EXPECT_EQ(vkpsRegExpMultiGetSize((INT_MAX - 24) / 12, &o.size), 0);
    vkpsRegExpMultiFree(set);
}

// Result codes and records of single and global searches. Format 1 (the
// default) moves start positions by whole UTF-8 characters, format 0 by
// bytes; a bad sequence advances by one byte.
TEST(RegExpFind, Searches) {
    const std::string e = "\xc3\xa9";  // the second byte alone is 0xA9
    const struct {
        const char* pattern;
        const char* options;
        std::string subject;
        int capacity;
        vkpStatus status;
        Spans records;
        int format = 1;
    } cases[] = {
        // Single: the count becomes the number of groups, or the warning.
        {"(a)(b)?(c)", "", "xac", 1, VKP_WARN_FEW_RECORDS, {{1, 2}}},
        {"(a)(b)?(c)", "", "xac", 8, 0, {{1, 2}, {1, 1}, {-1, -1}, {2, 1}}},
        {"(a)(b)?(c)", "", "xyz", 8, 0, {}},
        {"x*", "", "", 4, 0, {{0, 0}}},
        // Global: an empty match at the very end ends the search.
        {"x*", "g", "ab", 8, 0, {{0, 0}, {1, 0}, {2, 0}}},
        {"a*", "g", "baa", 8, 0, {{0, 0}, {1, 2}, {3, 0}}},
        {"\\w+", "g", "ab cd  e", 8, 0, {{0, 2}, {3, 2}, {7, 1}}},
        {"\\w+", "g", "ab cd  e", 2, 0, {{0, 2}, {3, 2}}},
        // With groups, records 1 to the last per match.
        {"(\\w)(\\d)?", "g", "a1b", 8, 0, {{0, 1}, {1, 1}, {2, 1}, {-1, -1}}},
        {"(\\w)(\\d)?", "g", "a1b", 3, 0, {{0, 1}, {1, 1}, {2, 1}}},
        {"(\\w)(\\d)?", "g", "a1b", 1, VKP_WARN_FEW_RECORDS, {{0, 1}}},
        {"^a", "g", "aa", 8, 0, {{0, 1}}},
        {"^a", "g", "a\na", 8, 0, {{0, 1}}},
        {"^.", "gm", "ab\ncd\n", 8, 0, {{0, 1}, {3, 1}}},
        {"cat|dog|do", "g", "dog do cat", 8, 0, {{0, 3}, {4, 2}, {7, 3}}},
        // After an empty match a one-character match is tried in place.
        {"(?=a)|a", "g", "ab", 8, 0, {{0, 0}, {0, 1}}},
        {"(?=a)|a", "g", "ba", 8, 0, {{1, 0}, {1, 1}}},
        {"q", "g", "abc", 8, 0, {}},
        // Start positions by the format.
        {"[\xa9]", "", e, 8, 0, {}},
        {"[\xa9]", "", e, 8, 0, {{1, 1}}, 0},
        {"x*", "g", e + "\xe2\x82\xac", 8, 0, {{0, 0}, {2, 0}, {5, 0}}},
        {"x*", "g", e, 8, 0, {{0, 0}, {1, 0}, {2, 0}}, 0},
        {"b", "", "\xe2\x82" "b", 8, 0, {{2, 1}}},
    };
    for (const auto& c : cases) {
        CompiledRegExp re(c.pattern, c.options);
        ASSERT_EQ(vkpsRegExpSetFormat(c.format, re.state()), 0);
        const vkptest::SearchResult r = re.Search(c.subject, c.capacity);
        EXPECT_EQ(r.status, c.status) << c.pattern;
        EXPECT_EQ(r.records, c.records) << c.pattern << " on " << c.subject << " format " << c.format;
    }
}

// The driver's shortcuts (literal narrowing, start filters, the required
// byte, repeats that need no backtracking, the skip over a failed leading
// run, the class cache) agree with the general search on random subjects,
// single and global: each pattern beside an equivalent one that hides its
// items in groups with an alternative that never matches, (?:x|(?!)), which
// the compiler keeps as groups and none of them sees through.
TEST(RegExpFind, ShortcutsAgreeWithTheMatcher) {
    const char* seed = std::getenv("VKPCH_FIND_SEED");  // another seed, for a sweep by hand
    vkptest::Rng rng(seed ? std::strtoul(seed, nullptr, 10) : 7);
    std::vector<std::pair<std::string, std::string>> pairs = {
        {"ab|ba|b", "(?:ab|ba|b|(?!))"},           // alternation of literals
        {"aab|ab", "(?:aab|ab|(?!))"},
        {"\\b(?:ab|ba|b)n", "\\b(?:ab|ba|b|(?!))n"},  // ... leading a longer pattern
        {"(?:ab|ba|b){2,}?n", "(?:ab|ba|b|(?!)){2,}?n"},
        {"(?:ab|ba|b)?n", "(?:ab|ba|b|(?!))?n"},
        {"(?i)\\b(?:ab|Ba)", "(?i)\\b(?:ab|Ba|(?!))"},
        {"(ab|A@|g)\\w?", "(ab|A@|g|(?!))\\w?"},
        {"ab\\w|1?_|b_", "(?:ab|(?!))\\w|(?:1|(?!))?_|(?:b_|(?!))"},  // alternatives led by literals
        {"\\b(?:a1|b\\w+|@)n", "\\b(?:(?:a1|(?!))|(?:b|(?!))\\w+|(?:@|(?!)))n"},
        {"abc(a)", "(?:abc|(?!))(a)"},             // leading literal and a group
        {"ba+", "(?:b|(?!))a+"},
        {"a\\w*b", "a\\w*(?:b|(?!))"},             // the last literal
        {"[\\w.+-]+@\\w+", "(?:[\\w.+-]|(?!))+(?:@|(?!))\\w+"},  // possessive run, required byte
        {"\\w+:", "(?:\\w|(?!))+(?::|(?!))"},
        {"\\b[ab_]+\\.c", "\\b(?:[ab_]|(?!))+(?:\\.|(?!))c"},  // ... behind anchors
        {"\\B[ab1]+\\s", "\\B(?:[ab1]|(?!))+\\s"},
        {"\\d+-\\d*", "(?:\\d|(?!))+(?:-|(?!))\\d*"},
        {"\\w+ing\\b", "(?:\\w|(?!))+(?:ing|(?!))\\b"},   // leading runs that backtrack
        {"[ab]+b", "(?:[ab]|(?!))+(?:b|(?!))"},
        {"a+Ab", "(?:a|(?!))+(?:Ab|(?!))"},
        {"\\w+1_?", "(?:\\w|(?!))+(?:1|(?!))_?"},
        {"[ab]{1,3}?ab", "(?:[ab]|(?!)){1,3}?(?:ab|(?!))"},  // a run before a literal, lazy and bounded
        {"\\w{2,}1b", "(?:\\w|(?!)){2,}(?:1b|(?!))"},
        {"[ab_]*c", "(?:[ab_]|(?!))*(?:c|(?!))"},
        {".*@", "(?:.|(?!))*(?:@|(?!))"},
        {"[^@:]+:[a-c]+?i", "(?:[^@:]|(?!))+(?::|(?!))(?:[a-c]|(?!))+?(?:i|(?!))"},  // class cache, lazy
        {"(?:ab|c|i)n", "(?:ab|c|i|(?!))(?:n|(?!))"},   // a few start bytes
        {"ing|n(?=g)", "(?:ing|n(?=g))"},
        {"[^@]{2,19}@", "(?:[^@]|(?!)){2,19}@"},     // runs of class members, bounded
        {"[^\\n:]*[:\\n]", "(?:[^\\n:]|(?!))*[:\\n]"},
        {"\\S{2,30}\\s", "(?:\\S|(?!)){2,30}\\s"},  // runs of a type
        {"\\D+@", "(?:\\D|(?!))+@"},
        {"\\w{1,3}\\.a", "\\w{1,3}(?:\\.a|(?!))"},        // a literal near the start
        {"[1a_]{2}-[ab]", "[1a_]{2}(?:-|(?!))[ab]"},
        {"\\s(?:ab|ba|1)\\s", "\\s(?:ab|ba|1|(?!))\\s"},  // literals leading a group near the start
        {"[ab]{1,2}(?:ab|B\\w|:)", "[ab]{1,2}(?:ab|B\\w|:|(?!))"},
        {"\\w(?i:ab|b@)", "\\w(?i:ab|b@|(?!))"},
        {"(?:\\w\\d?){2}:\\w", "(?:\\w\\d?){2}(?::|(?!))\\w"},
        {"\\b(?:[ab]{1,2}-){2}", "\\b(?:[ab]{1,2}(?:-|(?!))){2}"},
        {"\\b.{0,2}@b", "\\b.{0,2}(?:@b|(?!))"},  // ... behind characters of several bytes
        {"\\w[^\\n]{1,2}Ab", "\\w[^\\n]{1,2}(?:Ab|(?!))"},
        {"(?=\\w)\\w?(a|b)?-", "(?=\\w)\\w?(a|b)?(?:-|(?!))"},
        {"\\x{80}?\\w:", "\\x{80}?\\w(?::|(?!))"},
        {"\\b\\w{3,}\\b", "\\b(?:\\w|(?!)){3,}\\b"},  // runs of at least three
        {"[ab1_]{3,5}?n", "(?:[ab1_]|(?!)){3,5}?n"},
        {"[ab]{2}\\b", "(?:[ab]|(?!)){2}\\b"},
        {"(?m)^a\\w", "(?m)(?:^|(?!))(?:a|(?!))\\w"},  // line starts (led by one byte)
        {"(?m)^\\n", "(?m)^(?:\\n|(?!))"},
        {"aB", "aB(?:)"},                         // a program that is one literal
        {"\x80" "a", "\x80" "a(?:)"},          // ... led by a continuation byte
        {"b", "b(?:)"},
        {"@", "@(?:)"},                           // ... not letters: exact also when caseless
        {"a@b", "a@b(?:)"},
        {"(?i)Ab", "(?i)Ab(?:)"},                  // ... behind an option setting
        {"@\\w+:", "(?:@|(?!))\\w+:"},               // leading items checked before the matcher
        {"_a\\w+?\\.", "(?:_|(?!))a\\w+?\\."},
        {"(-[\\w.]+){2,}", "((?:-|(?!))[\\w.]+){2,}"},
        {"[ab1]{1,2}\\.\\b[ab]{2}:", "(?:[ab1]|(?!)){1,2}\\.\\b[ab]{2}:"},
        {"[ab1]{1,2}[-:]\\w", "(?:[ab1]|(?!)){1,2}[-:]\\w"},
        {"[ab1]+[-:]\\w", "(?:[ab1]|(?!))+[-:]\\w"},
    };
    // Subjects are runs of these pieces; "\xc2\x80" is one UTF-8 character.
    const char* const kPieces[] = {"a", "a", "b", "b", "ab", "_", "1", "@", ":", "-", ".", "i", "n", "g",
                                   "c", "A", "B", " ", "\n", "`", "\xc2\x80" "a", "\x80"};
    // Alternations of 3 to 1500 random literals, alone and leading a pattern.
    // (Not led by a continuation byte: the literal search alone finds one
    // inside a character, where the matcher never starts.)
    const char* const kLetters[] = {"a", "b", "ab", "_", "1", "@", "i", "n", "g\x80", "A", "B", "\xc2\x80"};
    for (int n : {3, 12, 40, 1500}) {  // 1500: the list of literals goes behind the program
        std::string lits;
        for (int k = 0; k < n; ++k) {
            lits += k ? "|" : "";
            for (int m = vkptest::RandomInt(rng, n > 40 ? 3 : 1, n > 40 ? 6 : 3); m > 0; --m) lits += kLetters[vkptest::RandomInt(rng, 0, 11)];
        }
        pairs.push_back({n == 12 || n == 1500 ? "(?:" + lits + ")" : lits, "(?:" + lits + "|(?!))"});  // in a group, or not
        pairs.push_back({"\\B(?:" + lits + "){1,2}[gn]", "\\B(?:" + lits + "|(?!)){1,2}[gn]"});
        pairs.push_back({"(?<!\\w)(?=.)(?:" + lits + ")(?!\\w)", "(?<!\\w)(?=.)(?:" + lits + "|(?!))(?!\\w)"});  // behind look-arounds
    }
    for (const char* options : {"", "i", "g", "ig"}) {
        for (const auto& [fast, plain] : pairs) {
          for (int format : {1, 0}) {  // UTF-8 (the default), bytes
            CompiledRegExp a(fast.c_str(), options), b(plain.c_str(), options);
            ASSERT_EQ(a.status(), 0) << fast;
            ASSERT_EQ(b.status(), 0) << plain;
            vkpsRegExpSetFormat(format, a.state());
            vkpsRegExpSetFormat(format, b.state());
            for (int i = 0; i < 200; ++i) {
                // Mostly short subjects, some across several 32-byte blocks;
                // the shortcuts' subject flush against an inaccessible page.
                std::string s;
                for (int n = vkptest::RandomInt(rng, 0, i % 4 ? 20 : 70); n > 0; --n)
                    s += kPieces[vkptest::RandomInt(rng, 0, int(std::size(kPieces)) - 1)];
                const auto guard = i % 2 ? vkptest::GuardedBuffer::Guard::After : vkptest::GuardedBuffer::Guard::Before;
                const auto ra = a.SearchGuarded(s, 64, guard), rb = b.Search(s, 64);
                ASSERT_EQ(ra.status, rb.status) << fast << " on " << s;
                ASSERT_EQ(ra.records, rb.records) << fast << " (" << options << ", format " << format << ") on " << s;
            }
          }
        }
    }
}

// What the driver keeps in the block between searches belongs to the
// pattern compiled there: a recompile, a format change and a program whose
// group table leaves no room for it give the results of a fresh block.
TEST(RegExpFind, KeptAnalysisFollowsTheBlock) {
    std::string many;
    for (int i = 0; i < 960; ++i) many += "(?:a|)";
    const std::string patterns[] = {"x+y", "y+x", many + "b", "x+y", "[xy]+z", many + "y", "y+x"};
    int size = 0;
    ASSERT_EQ(vkpsRegExpGetSize(patterns[2].c_str(), &size), 0);
    std::vector<long long> block(size_t(size) / sizeof(long long) + 1);
    auto* state = reinterpret_cast<vkpRegExpState*>(block.data());
    const std::string subject = "yyxy xxyz ab";
    for (const std::string& p : patterns) {
        int err = 0;
        ASSERT_EQ(vkpsRegExpInit(p.c_str(), "", state, &err), 0);
        CompiledRegExp fresh(p);
        for (int format : {1, 0, 1}) {
            ASSERT_EQ(vkpsRegExpSetFormat(format, state), 0);
            ASSERT_EQ(vkpsRegExpSetFormat(format, fresh.state()), 0);
            for (int pass = 0; pass < 2; ++pass) {
                vkpRegExpFind m[1];
                int n = 1;
                const auto* s = reinterpret_cast<const vkp8u*>(subject.data());
                ASSERT_GE(vkpsRegExpFind_8u(s, int(subject.size()), state, m, &n), 0);
                const auto want = fresh.Search(subject, 1);
                ASSERT_EQ(size_t(n), want.records.size()) << p.size();
                if (n) {
                    EXPECT_EQ((vkptest::Span{long(m[0].pMatch - s), m[0].matchLen}), want.records[0]) << p.size();
                }
            }
        }
    }
}

// Subjects that end against an inaccessible page, with one readable byte
// behind them for the word-boundary anchors: no pattern reads further.
TEST(RegExpFind, NoReadBeyondTheSubject) {
    const char* patterns[] = {
        "\\bab\\b", "b\\B", "\\x{20AC}", "\\x{20AC}+", "\\p{L}+", "\\P{Greek}", "\\X+", "[\\x{20AC}b]+",
        "(a)\\1", "(ab)\\1*", ".+", "\\D+", "b$", "b\\Z", "(?<=a)b", "(?=b)", "\\C+", "ab|b", "abb",
    };
    const std::string tails[] = {"ab", "a\xe2\x82", "a\xe2", "\xe2\x82\xac\xe2\x82", "abab", "e\xcc"};
    for (const char* p : patterns) {
        CompiledRegExp re(p);
        ASSERT_EQ(re.status(), 0) << p;
        for (const std::string& t : tails) {
            const std::string tb = t + "b";
            vkptest::GuardedBuffer buf(tb.size(), vkptest::GuardedBuffer::Guard::After);
            const auto got = re.SearchAt(buf.fill(reinterpret_cast<const vkp8u*>(tb.data()), tb.size()), int(t.size()), 4);
            EXPECT_GE(got.status, 0) << p;
            // The same search over an ordinary copy gives the same records.
            EXPECT_EQ(got.records, re.Search(tb, 4, int(t.size())).records) << p << " on " << t;
        }
    }
}

}  // namespace
