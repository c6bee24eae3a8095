// Property names after \p{ and \P{ as the matcher applies them: each name
// finds its own character in a line holding one character of each kind (a
// name mapped to the wrong category, block or script finds another or
// none); block prefixes, the brace rules and every table entry.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "regexp/compile/unicode_names.h"
#include "support/regexp_search.h"

namespace vkp {
namespace {

TEST(UnicodeNames, EachNameFindsItsCharacter) {
    // Offsets: 0 '!' Po; 1 'a' Ll; 2 'A' Lu; 3 U+00A9 So; 5 U+00B2 No; 7 U+0100 Lu
    // (Latin Extended-A); 9 U+0378 Cn (Greek and Coptic); 11 U+20DD Me
    // (Inherited); 14 U+2029 Zp; 17 U+4E00 Han; 20 U+D55C Hangul (Hangul
    // Syllables); 23 U+E000 Co. Only \p{Cn} takes an unassigned code point.
    const std::string line = "!aA\xC2\xA9\xC2\xB2\xC4\x80\xCD\xB8\xE2\x83\x9D\xE2\x80\xA9\xE4\xB8\x80\xED\x95\x9C\xEE\x80\x80";
    const struct { const char* pattern; long at; } rows[] = {
        {"\\p{Po}", 0},  {"\\pP", 0},        {"\\p{Ll}", 1},      {"\\pL", 1},         {"\\p{L&}", 1},
        {"\\p{Lu}", 2},  {"\\p{So}", 3},     {"\\pS", 3},         {"\\p{No}", 5},      {"\\pN", 5},
        {"\\p{Cn}", 9},  {"\\pC", 23},        {"\\p{Me}", 11},     {"\\pM", 11},        {"\\p{Zp}", 14},
        {"\\pZ", 14},    {"\\p{Lo}", 17},    {"\\p{Co}", 23},     {"\\P{Lu}\\p{Lu}", 1},
        // Scripts: Han is not taken for Hangul, which comes first and begins with it.
        {"\\p{Any}", 0}, {"\\p{Common}", 0}, {"\\P{Common}", 1},  {"\\p{Latin}", 1},   {"\\p{Inherited}", 11},
        {"\\p{Han}", 17}, {"\\p{Hangul}", 20}, {"\\p{Greek}", -1},
        // Blocks: a prefix selects the first block it begins, also when it is
        // a whole name (InCJKUnifiedIdeographsExtensionA comes first).
        {"\\p{InBasicLatin}", 0}, {"\\p{I}", 0},   {"\\P{InBasic}", 3}, {"\\p{InLatin}", 3},
        {"\\p{InLatinExtended}", 7}, {"\\p{InGreek}", 9}, {"\\p{InCJKUnifiedIdeographs}", -1},
        {"\\p{InHangul}", -1}, {"\\p{InHangulS}", 20},
    };
    for (const auto& row : rows) {
        vkptest::CompiledRegExp re(row.pattern);
        ASSERT_EQ(re.status(), 0) << row.pattern;
        const vkptest::SearchResult r = re.Search(line, 1);
        ASSERT_EQ(r.status, 0) << row.pattern;
        EXPECT_EQ(r.records.empty() ? -1L : r.records[0].start, row.at) << row.pattern;
    }
}

// Every block finds itself or the first block its name begins; every
// script finds itself with its brace and never without it or when longer.
TEST(UnicodeNames, EveryTableEntry) {
    for (int b = 0; b < kBlockCount; ++b) {
        const std::string rest = std::string(kBlocks[b].name) + "}";
        int length = 0;
        const int i = FindBlock(rest.c_str(), rest.size(), &length);
        ASSERT_GE(i, 0) << rest;
        EXPECT_LE(i, b);
        EXPECT_EQ(length, int(rest.size()) - 1);
        EXPECT_EQ(std::strncmp(kBlocks[i].name, kBlocks[b].name, size_t(length)), 0);
    }
    for (int s = 0; s < kScriptCount; ++s) {
        const std::string rest = std::string(kScripts[s].name) + "}", longer = std::string(kScripts[s].name) + "x}";
        int length = 0;
        EXPECT_EQ(FindScript(rest.c_str(), rest.size(), &length), s) << rest;
        EXPECT_EQ(length, int(rest.size()) - 1);
        EXPECT_EQ(FindScript(rest.c_str(), rest.size() - 1, &length), -1) << rest;
        EXPECT_EQ(FindScript(longer.c_str(), longer.size(), &length), -1) << rest;
    }
}

}  // namespace
}  // namespace vkp
