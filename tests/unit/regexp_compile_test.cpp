// The compiler, shown through its program listing: every construct, the
// header words, every error with its offset, the limits on groups, and the
// block bound (nothing written past vkpsRegExpGetSize bytes).
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "support/guarded_buffer.h"
#include "support/random_text.h"
#include "support/regexp_search.h"
#include "regexp/compile/listing.h"
#include "vkpch.h"

namespace {

using vkptest::GuardedBuffer;
using vkptest::Repeat;

struct Compiled {
    vkpStatus status = 0;
    int offset = -1;
    std::string listing;  // instructions joined by "; "
    vkpRegExpState header{};
};

std::string Listing(const vkpRegExpState* st) {
    std::string all;
    for (int i = 0; i < st->instructionCount; ++i) {
        char buf[256];
        vkp::regexp::FormatInstruction(st, i, buf, sizeof buf);
        all += (i ? "; " : "") + std::string(buf);
    }
    return all;
}

// Compiles into a block of exactly the documented size, flush against an
// inaccessible page, after filling it with `fill`.
Compiled CompileInto(const std::string& pattern, const char* options, unsigned char fill, size_t extra = 0) {
    int size = 0;
    EXPECT_EQ(vkpsRegExpGetSize(pattern.c_str(), &size), 0);
    GuardedBuffer block(size_t(size) + extra);
    std::memset(block.data(), fill, block.size());
    auto* st = block.as<vkpRegExpState>();
    Compiled c;
    c.status = vkpsRegExpInit(pattern.c_str(), options, st, &c.offset);
    std::memcpy(&c.header, st, 32);
    if (c.status == 0) c.listing = Listing(st);
    return c;
}

// Both fills must give the same result: the listing shows only operands the
// compiler wrote.
Compiled CompileChecked(const std::string& pattern, const char* options) {
    Compiled zero = CompileInto(pattern, options, 0x00);
    Compiled ones = CompileInto(pattern, options, 0xFF);
    EXPECT_EQ(zero.status, ones.status) << pattern;
    EXPECT_EQ(zero.offset, ones.offset) << pattern;
    EXPECT_EQ(zero.listing, ones.listing) << pattern;
    return zero;
}

// The pattern kinds the compiler records.
constexpr int kGen = vkp::kKindGeneral, kLead = vkp::kKindLeadingLiteral, kAlt = vkp::kKindLiteralAlternation;

struct ProgramRow {
    const char* pattern;
    const char* options;
    const char* listing;
    int groupCount;
    int lastLiteral;
    int kind;
};

const ProgramRow kPrograms[] = {
    {R"(abc)", "", R"(STRING "abc" opts=-)", 1, 0, kLead},
    {R"(a+b)", "", R"(CHAR 'a' opts=-; GREEDY 1..inf; CHAR 'b' opts=-)", 1, 2, kLead},
    {R"(ab*)", "", R"(CHAR 'a' opts=-; CHAR 'b' opts=-; GREEDY 0..inf)", 1, -1, kLead},
    {R"(a|b|c)", "", R"(CHAR 'a' opts=-; ALT link=0 opts=-; CHAR 'b'; ALT link=0 opts=-; CHAR 'c')", 1, -2, kAlt},
    {R"(ab|cd)", "i", R"(STRING "ab" opts=i; ALT link=0 opts=i; STRING "cd")", 1, -2, kAlt},
    {R"(a|b+)", "", R"(CHAR 'a' opts=-; ALT link=0 opts=-; CHAR 'b'; GREEDY 1..inf)", 1, -1, kGen},
    {R"(a|b+c+)", "", R"(CHAR 'a' opts=-; ALT link=0 opts=-; CHAR 'b'; GREEDY 1..inf; CHAR 'c' opts=-; GREEDY 1..inf)", 1, 4, kGen},
    {R"(.*abc)", "", R"(ANCHOR implicit; TYPE .; GREEDY 0..inf; STRING "abc" opts=-)", 1, 3, kGen},
    {R"(.+)", "", R"(ANCHOR implicit; TYPE .; GREEDY 1..inf)", 1, -1, kGen},
    {R"(.*?x)", "", R"(TYPE .; LAZY 0..inf; CHAR 'x' opts=-)", 1, 2, kGen},
    {R"((?:.+)b)", "", R"(ANCHOR implicit; GROUP link=1 body=2; TYPE .; GREEDY 1..inf; KET link=1 opts=- single-repeat; CHAR 'b' opts=-)", 1, 5, kGen},
    {R"((a)(b))", "", R"(CAPTURE link=1 body=1 capture=1; CHAR 'a'; KET link=1 opts=-; CAPTURE link=2 body=1 capture=2; CHAR 'b'; KET link=2 opts=-)", 3, -1, kGen},
    {R"(abc(d))", "", R"(STRING "abc" opts=-; CAPTURE link=1 body=1 capture=1; CHAR 'd'; KET link=1 opts=-)", 2, -1, kLead},
    {R"((?:ab))", "", R"(STRING "ab" opts=-)", 1, -1, kLead},
    {R"((?:ab)+)", "", R"(GROUP link=1 body=1; STRING "ab"; KET link=1 opts=-; GREEDY 1..inf)", 1, -1, kGen},
    {R"((?:a)+)", "", R"(CHAR 'a' opts=-; GREEDY 1..inf)", 1, -1, kLead},
    {R"((?:a*b))", "", R"(CHAR 'a' opts=-; GREEDY 0..inf; CHAR 'b' opts=-)", 1, -1, kGen},
    {R"((?:a|b))", "", R"(GROUP link=1 body=3; CHAR 'a'; ALT link=1 opts=-; CHAR 'b'; KET link=1 opts=-)", 1, -1, kGen},
    {R"((?:))", "", R"(GROUP link=1 body=0; KET link=1 opts=-)", 1, -1, kGen},
    {R"(((a)|b))", "", R"(CAPTURE link=1 body=5 capture=1; CAPTURE link=2 body=1 capture=2; CHAR 'a'; KET link=2 opts=-; ALT link=1 opts=-; CHAR 'b'; KET link=1 opts=-)", 3, -1, kGen},
    {R"(x(?=ab)y)", "", R"(CHAR 'x' opts=-; LOOKAHEAD link=-1 body=1; STRING "ab"; KET link=-1 opts=-; CHAR 'y' opts=-)", 1, 4, kLead},
    {R"((?!a))", "", R"(NLOOKAHEAD link=-1 body=1; CHAR 'a'; KET link=-1 opts=-)", 1, -1, kGen},
    {R"((?<=ab|cd)x)", "", R"(LOOKBEHIND link=-1 body=3 length=2; STRING "ab"; ALT link=-1 opts=-; STRING "cd"; KET link=-1 opts=-; CHAR 'x' opts=-)", 1, 5, kGen},
    {R"((?<!a{3}))", "", R"(NLOOKBEHIND link=-1 body=2 length=3; CHAR 'a'; GREEDY 3..3; KET link=-1 opts=-)", 1, -1, kGen},
    {R"((?<=(ab)c(?=d)\b))", "", R"(LOOKBEHIND link=-1 body=8 length=3; CAPTURE link=2 body=1 capture=1; STRING "ab"; KET link=2 opts=-; CHAR 'c'; LOOKAHEAD link=-3 body=1; CHAR 'd'; KET link=-3 opts=-; ANCHOR \b; KET link=-1 opts=-)", 2, -1, kGen},
    {R"((?>a+)+)", "", R"(ATOMIC link=-1 body=2; CHAR 'a'; GREEDY 1..inf; KET link=-1 opts=-; GREEDY 1..inf)", 1, -1, kGen},
    {R"((?i:a)b)", "", R"(FLAGGROUP link=1 body=1 opts=i; CHAR 'a'; KET link=1 opts=-; CHAR 'b' opts=-)", 1, 3, kGen},
    {R"((?i)a(?-i)b)", "", R"(SETFLAGS opts=i; CHAR 'a' opts=i; SETFLAGS opts=-; CHAR 'b' opts=-)", 1, 3, kGen},
    {R"((?i-s))", "s", R"(SETFLAGS opts=-)", 1, -1, kGen},
    {R"((?x)a b)", "", R"(CHAR 'a' opts=x; CHAR 'b' opts=x)", 1, 1, kLead},
    {R"((?ii)a)", "", R"(SETFLAGS opts=-; CHAR 'a' opts=-)", 1, 1, kGen},
    {R"((?(1)a|b)(c))", "", R"(COND link=1 body=4; BACKREF 1; CHAR 'a'; ALT link=1 opts=-; CHAR 'b'; KET link=1 opts=-; CAPTURE link=2 body=1 capture=1; CHAR 'c'; KET link=2 opts=-)", 2, -1, kGen},
    {R"((?(?=a)ab|c))", "", R"(COND link=1 body=6; LOOKAHEAD link=-2 body=1; CHAR 'a'; KET link=-2 opts=-; STRING "ab"; ALT link=1 opts=-; CHAR 'c'; KET link=1 opts=-)", 1, -1, kGen},
    {R"((?(?<!x)a))", "", R"(COND link=1 body=4; NLOOKBEHIND link=-2 body=1 length=1; CHAR 'x'; KET link=-2 opts=-; CHAR 'a'; KET link=1 opts=-)", 1, -1, kGen},
    {R"([[:alpha:]])", "", R"(CLASS members=2; RANGE 'a'-'z'; RANGE 'A'-'Z')", 1, -1, kGen},
    {R"([[:^digit:][:word:]])", "", R"(CLASS members=2; RANGE '0'-'9' not; TYPE \w)", 1, -1, kGen},
    {R"([[:punct:][:blank:]])", "", R"(CLASS members=6; RANGE ' '-'/'; RANGE ':'-'@'; RANGE '['-'`'; RANGE '{'-0xFF; CHAR ' '; CHAR 0x09)", 1, -1, kGen},
    {R"([[:space:][.ascii.][=cntrl=]])", "", R"(CLASS members=4; RANGE 0x09-0x0D; CHAR ' '; RANGE 0x00-0x7F; RANGE 0x00-0x1F)", 1, -1, kGen},
    {R"([[:alnum:][:xdigit:][:graph:][:print:][:lower:][:upper:]])", "", R"(CLASS members=10; RANGE 'a'-'z'; RANGE 'A'-'Z'; RANGE '0'-'9'; RANGE 'a'-'f'; RANGE 'A'-'F'; RANGE '0'-'9'; RANGE '!'-0xFF; RANGE ' '-0xFF; RANGE 'a'-'z'; RANGE 'A'-'Z')", 1, -1, kGen},
    {R"([[:a])", "", R"(CLASS members=3; CHAR '['; CHAR ':'; CHAR 'a')", 1, -1, kGen},
    {R"([]a-])", "", R"(CLASS members=3; CHAR ']'; CHAR 'a'; CHAR '-')", 1, -1, kGen},
    {R"([^-a])", "", R"(CLASS negated members=2; CHAR '-'; CHAR 'a')", 1, -1, kGen},
    {R"([a-c-e])", "", R"(CLASS members=3; RANGE 'a'-'c'; CHAR '-'; CHAR 'e')", 1, -1, kGen},
    {R"([\d-z])", "", R"(CLASS members=3; TYPE \d; CHAR '-'; CHAR 'z')", 1, -1, kGen},
    {R"([é-ü€\x{100}-\x{10FFFF}])", "", R"(CLASS members=3; RANGE 0xE9-0xFC; CODEPOINT U+20AC; RANGE 0x100-0x10FFFF)", 1, -1, kGen},
    {R"([\n\x41\101\cA\b\]\Q^-\E])", "", R"(CLASS members=8; CHAR 0x0A; CHAR 'A'; CHAR 'A'; CHAR 0x01; CHAR 0x08; CHAR ']'; CHAR '^'; CHAR '-')", 1, -1, kGen},
    {R"([\p{Lu}\P{Greek}\p{^InBasicLatin}])", "", R"(CLASS members=3; CATEGORY Lu; SCRIPT not Greek ranges=51; BLOCK not U+0000..U+007F)", 1, -1, kGen},
    {R"(\x{41}\x41)", "", R"(CODEPOINT U+0041; CHAR 'A' opts=-)", 1, -1, kGen},
    {R"(\x4)", "", R"(CHAR 0x04 opts=-)", 1, -1, kLead},
    {R"(\n\t\e\a\f\r\v\cA\ca\0\012)", "", R"(CHAR 0x0A opts=-; CHAR 0x09 opts=-; CHAR 0x1B opts=-; CHAR 0x07 opts=-; CHAR 0x0C opts=-; CHAR 0x0D opts=-; CHAR 0x0B opts=-; CHAR 0x01 opts=-; CHAR 0x01 opts=-; CHAR 0x00 opts=-; CHAR 0x0A opts=-)", 1, -1, kLead},
    {R"((a)\1\11\101)", "", R"(CAPTURE link=1 body=1 capture=1; CHAR 'a'; KET link=1 opts=-; BACKREF 1; CHAR 0x09 opts=-; CHAR 'A' opts=-)", 2, -1, kGen},
    {R"(\10)", "", R"(CHAR 0x08 opts=-)", 1, -1, kLead},
    {R"(\x41+)", "", R"(CHAR 'A' opts=-; GREEDY 1..inf)", 1, -1, kLead},
    {R"(\.+)", "", R"(CHAR '.' opts=-; GREEDY 1..inf)", 1, 0, kLead},
    {R"(a\Q.*\E+)", "", R"(STRING "a." opts=-; CHAR '*' opts=-; GREEDY 1..inf)", 1, 1, kLead},
    {R"(a\Eb)", "", R"(STRING "ab" opts=-)", 1, 0, kLead},
    {R"(\d\D\s\S\w\W)", "", R"(TYPE \d; TYPE \D; TYPE \s; TYPE \S; TYPE \w; TYPE \W)", 1, -1, kGen},
    {R"(^\b\B\A\Z\z\G$)", "", R"(ANCHOR ^; ANCHOR \b; ANCHOR \B; ANCHOR \A; ANCHOR \Z; ANCHOR \z; ANCHOR \G; ANCHOR $)", 1, -1, kGen},
    {R"(\C\X)", "", R"(ANYBYTE; EXTENDED)", 1, -1, kGen},
    {R"(\pL\PN\p{L}\p{L&}\p{Lu}\p{Co}\p{Any})", "", R"(CATEGORY L; CATEGORY not N; CATEGORY L; CATEGORY L&; CATEGORY Lu; CATEGORY Co; BLOCK U+0000..U+10FFFF)", 1, -1, kGen},
    {R"(\p{Coptic}\p{Common}\P{Latin})", "", R"(SCRIPT Coptic ranges=6; SCRIPT Common ranges=530; SCRIPT not Latin ranges=42)", 1, -1, kGen},
    {R"(\p{InLatin}\p{InCJKUnifiedIdeographs}\p{Inherited})", "", R"(BLOCK U+0080..U+00FF; BLOCK U+3400..U+4DBF; SCRIPT Inherited ranges=22)", 1, -1, kGen},
    {R"(a{,3})", "", R"(CHAR 'a' opts=-; GREEDY 0..3)", 1, -1, kGen},
    {R"(a{x})", "", R"(STRING "a{x}" opts=-)", 1, 0, kLead},
    {R"(a{2})", "", R"(CHAR 'a' opts=-; GREEDY 2..2)", 1, 0, kLead},
    {R"(a{2,}?)", "", R"(CHAR 'a' opts=-; LAZY 2..inf)", 1, 0, kLead},
    {R"(a{})", "", R"(STRING "a{}" opts=-)", 1, 0, kLead},
    {R"(a{,})", "", R"(CHAR 'a' opts=-; GREEDY 0..inf)", 1, -1, kGen},
    {R"(a{1,2)", "", R"(STRING "a{1,2" opts=-)", 1, 0, kLead},
    {R"(a*(?#c)+)", "", R"(CHAR 'a' opts=-; GREEDY 1..inf)", 1, -1, kLead},
    {R"(a{65535})", "", R"(CHAR 'a' opts=-; GREEDY 65535..65535)", 1, 0, kLead},
    {R"(é+)", "", R"(CHAR 0xC3 opts=-; CHAR 0xA9 opts=-; GREEDY 1..inf)", 1, 1, kLead},
    {R"(ab)", "gimsx", R"(STRING "ab" opts=imsxg)", 1, 0, kLead},
    {"a(?x) b #c\nd", "", R"(CHAR 'a' opts=-; CHAR 'b' opts=x; CHAR 'd' opts=x)", 1, 2, kLead},
    {"", "", "", 1, -1, kGen},
};

TEST(RegExpCompile, Programs) {
    for (const ProgramRow& row : kPrograms) {
        SCOPED_TRACE(row.pattern);
        const Compiled c = CompileChecked(row.pattern, row.options);
        ASSERT_EQ(c.status, 0) << "offset " << c.offset;
        EXPECT_EQ(c.listing, row.listing);
        EXPECT_EQ(c.header.magic, VKP_REGEXP_MAGIC);
        EXPECT_EQ(c.header.groupCount, row.groupCount);
        EXPECT_EQ(c.header.lastLiteralIndex, row.lastLiteral);
        EXPECT_EQ(c.header.patternKind, row.kind);
        EXPECT_EQ(c.header.matchLimit, 10000);
        EXPECT_EQ(c.header.format, vkp::kFormatUtf8);
    }
}

// Per status: pattern, offset of the error, options.
struct ErrorRow {
    const char* pattern;
    int offset;
    const char* options = "";
};

const struct {
    vkpStatus status;
    std::vector<ErrorRow> rows;
} kErrors[] = {
    {VKP_ERR_OPTION, {{"a", 0, "I"}, {"a", 0, "ix "}}},
    {VKP_ERR_QUANTIFIER, {{"**", 0}, {"a**", 2}, {"a+*", 2}, {"a?+", 2}, {"a{2}*", 4}, {"|*", 1}, {"(*)", 1},
        {"(?i)*", 4}, {"(?x)*", 4}, {"(?=*)", 3}, {"a{3,2}", 4}, {"a{70000}", 2}, {"a{1,70000}", 4},
        {"a{70000,}", 2}, {"a{99999999999999,}", 2}}},
    {VKP_ERR_PARENTHESIS, {{"(", 1}, {")", 0}, {"a)", 1}, {"(?z)", 2}, {"(?<x)", 3}, {"(?P<n>a)", 2},
        {"(?#abc", 0}, {"(a(?#b)", 7}, {"(?(1)a|b|c)", 10}, {"(?(1)*a)", 7}, {"(?(x)a)", 3}, {"(?(1234)a)", 6},
        {"(?<=a+)", 6}, {"(?<=ab|c)", 8}, {"(?<=a\\1)(a)", 7}, {"(?<=a{1,2})", 10}, {"(?<=a*?)", 7}}},
    {VKP_ERR_GROUP_NUMBER, {{"(?(0)a)", 5}, {"(?()a)", 4}, {"\\2(a)", 1}, {"\\1", 1}, {"(a)\\8", 4}}},
    {VKP_ERR_CLASS, {{"[b-a]", 1}, {"[x\\x{100}-a]", 2}, {"[[:foo:]]", 1}, {"[a[::]]", 2}, {"[abc", 0}}},
    {VKP_ERR_PROPERTY, {{"[\\x{ZZ}]", 4}, {"\\p{Klingon}", 3}, {"\\pX", 2}, {"\\p", 2}, {"\\p{Lu", 5},
        {"\\P{^Lu}", 3}, {"\\p{Lux}", 5}, {"\\p{Cox}", 3}, {"\\x{41", 5}, {"\\x{123456789}", 11}, {"\\p{l}", 3},
        {"\\p{latin}", 3}, {"\\p{inBasicLatin}", 3}, {"\\p{InBasicLatinX}", 3}}},
};

TEST(RegExpCompile, Errors) {
    for (const auto& group : kErrors)
        for (const ErrorRow& row : group.rows) {
            SCOPED_TRACE(row.pattern);
            const Compiled c = CompileChecked(row.pattern, row.options);
            EXPECT_EQ(c.status, group.status);
            EXPECT_EQ(c.offset, row.offset);
        }
}

// What a failed compile leaves: nothing before the pre-scan has passed; the
// first header words after it.
TEST(RegExpCompile, HeaderOnFailure) {
    const Compiled option = CompileInto("a", "q", 0xFF);
    EXPECT_EQ(option.header.magic, 0xFFFFFFFFu);
    const Compiled prescan = CompileInto("(a", "", 0xFF);
    EXPECT_EQ(prescan.header.magic, 0xFFFFFFFFu);
    const Compiled main = CompileInto("(a)(b)[z-a]", "i", 0xFF);
    ASSERT_EQ(main.status, VKP_ERR_CLASS);
    EXPECT_EQ(main.header.magic, VKP_REGEXP_MAGIC);
    EXPECT_EQ(main.header.options, VKP_REGEXP_IGNORECASE);
    EXPECT_EQ(main.header.groupCount, 3);
    EXPECT_EQ(main.header.format, vkp::kFormatUtf8);
    EXPECT_EQ(main.header.instructionCount, -1);
    EXPECT_EQ(main.header.matchLimit, -1);
}

// Group ids run to 999 (a dissolved group gives its id back); at most 1000
// capturing groups pass the pre-scan, and at most 999 groups may be open.
TEST(RegExpCompile, GroupLimits) {
    const struct {
        std::string pattern;
        vkpStatus status;
        int offset;
    } rows[] = {
        {Repeat("(a)", 999), 0, -1},
        {Repeat("(a)", 1000), VKP_ERR_PARENTHESIS, 2997},
        {Repeat("(?:a)+", 2000), 0, -1},  // dissolved: ids given back
        {Repeat("(?:ab)+", 999), 0, -1},
        {Repeat("(?:ab)+", 1000), VKP_ERR_PARENTHESIS, 6993},
        {Repeat("(?i)", 999) + "a", 0, -1},
        {Repeat("(?i)", 1000), VKP_ERR_PARENTHESIS, 3996},
        {Repeat("(", 999) + Repeat(")", 999), 0, -1},
        {Repeat("(", 1000) + Repeat(")", 1000), VKP_ERR_PARENTHESIS, 999},
        {Repeat("(?:", 999) + Repeat(")", 999), 0, -1},
        {Repeat("()", 1001), VKP_ERR_PARENTHESIS, 2000},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.pattern.substr(0, 12) + "... " + std::to_string(row.pattern.size()));
        const Compiled c = CompileInto(row.pattern, "", 0);
        EXPECT_EQ(c.status, row.status);
        if (row.status) {
            EXPECT_EQ(c.offset, row.offset);
        }
    }
}

// Patterns assembled from the syntax's pieces: the compile stays within
// its block (a guard page follows it), gives the same program as in a
// roomier block, and keeps the documented bounds.
TEST(RegExpCompile, RandomPatternsStayInTheirBlock) {
    static const char* const kPieces[] = {
        "a", "b", "ab", "\\", "\\Q", "\\E", ".", "*", "+", "?", "{2}", "{1,3}", "{,2}", "{", "}", "|",
        "(", ")", "(?:", "(?=", "(?!", "(?<=", "(?<!", "(?>", "(?i)", "(?x)", "(?-i:", "(?(1)", "(?(?=",
        "[", "]", "[^", "-", "[:alpha:]", "[:^digit:]", "\\d", "\\w", "\\b", "\\1", "\\12", "\\x{263A}",
        "\\x41", "\\p{Lu}", "\\p{Greek}", "\\P{InBasicLatin}", "\\X", "\\C", "^", "$", "#", " ", "\n",
        "\xC3\xA9", "\xE2\x82\xAC", "\xFF", "(?#c)", "\\c", "\\0", "{70000}"};
    vkptest::Rng rng(20261121);
    const int n = int(sizeof kPieces / sizeof kPieces[0]);
    for (int iter = 0; iter < 3000; ++iter) {
        std::string pattern;
        const int pieces = vkptest::RandomInt(rng, 0, 24);
        for (int k = 0; k < pieces; ++k) pattern += kPieces[vkptest::RandomInt(rng, 0, n - 1)];
        const char* options = (iter & 3) == 0 ? "x" : (iter & 3) == 1 ? "i" : "";
        const Compiled exact = CompileInto(pattern, options, 0x5A);
        const Compiled roomy = CompileInto(pattern, options, 0x5A, 4096);
        ASSERT_EQ(exact.status, roomy.status) << pattern;
        ASSERT_EQ(exact.listing, roomy.listing) << pattern;
        if (exact.status) {
            EXPECT_GE(exact.offset, 0) << pattern;
            EXPECT_LE(exact.offset, int(pattern.size())) << pattern;
        } else {
            EXPECT_LE(exact.header.instructionCount, int(pattern.size()) + 1) << pattern;
            EXPECT_GE(exact.header.lastLiteralIndex, -2) << pattern;
            EXPECT_LT(exact.header.lastLiteralIndex, std::max(exact.header.instructionCount, 1)) << pattern;
        }
    }
}

TEST(RegExpObject, SizeSettersAndInitAlloc) {
    int size = 0;
    EXPECT_EQ(vkpsRegExpGetSize("", &size), 0);
    EXPECT_EQ(size, 48056);
    EXPECT_EQ(vkpsRegExpGetSize("\xC3\xA9x", &size), 0);  // bytes, not characters
    EXPECT_EQ(size, 3 * 24 + 48056);

    std::vector<unsigned char> block(48056 + 24 * 32);
    auto* st = reinterpret_cast<vkpRegExpState*>(block.data());
    int offset = 123;
    ASSERT_EQ(vkpsRegExpInit("ab(cd|e\\.f)ghi+", nullptr, st, &offset), 0);
    EXPECT_EQ(offset, 123);  // untouched on success
    // The literal bytes lie behind the last instruction, in program order.
    const auto* prog = reinterpret_cast<const vkpRegExpInstruction*>(block.data() + VKP_REGEXP_HEAD_SIZE);
    const auto* literals = reinterpret_cast<const unsigned char*>(prog + st->instructionCount);
    std::string seen;
    for (int i = 0; i < st->instructionCount; ++i) {
        if (prog[i].op != vkp::OP_STRING) continue;
        EXPECT_EQ(static_cast<const unsigned char*>(prog[i].d), literals + seen.size());
        seen.append(static_cast<const char*>(prog[i].d), size_t(prog[i].b));
    }
    EXPECT_EQ(seen, "abcde.fgh");
    EXPECT_EQ(vkpsRegExpSetMatchLimit(0, st), 0);
    EXPECT_EQ(st->matchLimit, 0);
    EXPECT_EQ(vkpsRegExpSetFormat(0, st), 0);
    EXPECT_EQ(st->format, vkp::kFormatBytes);
    ASSERT_EQ(vkpsRegExpInit("ab(cd|e\\.f)ghi+", "g", st, &offset), 0);  // a new compile resets both
    EXPECT_EQ(st->matchLimit, 10000);
    EXPECT_EQ(st->format, vkp::kFormatUtf8);

    vkpRegExpState* alloc = nullptr;
    ASSERT_EQ(vkpsRegExpInitAlloc("(a|b)+c", "i", &alloc, &offset), 0);
    ASSERT_NE(alloc, nullptr);
    EXPECT_EQ(Listing(alloc), "CAPTURE link=1 body=3 capture=1; CHAR 'a'; ALT link=1 opts=i; CHAR 'b'; KET link=1 opts=i; "
                              "GREEDY 1..inf; CHAR 'c' opts=i");
    vkpsRegExpFree(alloc);
    EXPECT_EQ(vkpsRegExpInitAlloc("a{2,1}", "", &alloc, &offset), VKP_ERR_QUANTIFIER);
    EXPECT_EQ(alloc, nullptr);
    EXPECT_EQ(offset, 4);
}

}  // namespace
