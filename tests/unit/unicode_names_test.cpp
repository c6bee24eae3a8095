// Lookup of category, block and script names after \p{.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "regexp/compile/unicode_names.h"

namespace vkp {
namespace {

// The rest of a pattern: everything after "\p{" up to its end.
struct Rest {
    const char* text;
    size_t size() const { return std::strlen(text); }
};

TEST(UnicodeNames, CategoryNames) {
    struct Case { const char* rest; u32 bits; int length; };
    const Case cases[] = {
        {"L}", 128, 1},    {"C}", 8192, 1},   {"Ll}", 129, 2},   {"Lu}", 130, 2},
        {"L&}", 135, 2},   {"Me}", 260, 2},   {"Zp}", 516, 2},   {"So}", 1032, 2},
        {"No}", 2052, 2},  {"Po}", 4160, 2},  {"Co}", 8196, 2},  {"Cn}", 8208, 2},
        // A two-letter name does not need the brace to be recognised ...
        {"Lux", 130, 2},   {"Lu", 130, 2},
        // ... except Co, which would otherwise swallow "Coptic".
        {"Coptic}", 0, 0}, {"Co", 0, 0},
        // A single letter needs its brace; unknown letters are no category.
        {"L", 0, 0},       {"Lx}", 0, 0},     {"X}", 0, 0},      {"", 0, 0},
        {"Latin}", 0, 0},  {"Any}", 0, 0},    {"l}", 0, 0},
    };
    for (const Case& c : cases) {
        int length = 0;
        EXPECT_EQ(FindCategory(c.rest, Rest{c.rest}.size(), &length), c.bits) << c.rest;
        if (c.bits) {
            EXPECT_EQ(length, c.length) << c.rest;
        }
    }
    // The brace past the end of the pattern does not count.
    int length = 0;
    EXPECT_EQ(FindCategory("L}", 1, &length), 0u);
    EXPECT_EQ(FindCategory("Co}", 2, &length), 0u);
}

TEST(UnicodeNames, MajorLetters) {
    const char* letters = "LMZSNPC";
    for (int i = 0; letters[i]; ++i) EXPECT_EQ(MajorCategory(letters[i]), 128u << i);
    for (char ch : std::string("lAIX&{}0")) EXPECT_EQ(MajorCategory(ch), 0u) << ch;
}

TEST(UnicodeNames, BlocksByPrefix) {
    struct Case { const char* rest; const char* block; int length; };
    const Case cases[] = {
        {"InBasicLatin}", "InBasicLatin", 12},
        {"InBasic}", "InBasicLatin", 7},
        {"InLatin}", "InLatin1Supplement", 7},
        {"InLatinExtended}", "InLatinExtendedA", 15},
        {"InGreek}", "InGreekandCoptic", 7},
        {"InCyrillic}", "InCyrillic", 10},
        {"InCyrillicS}", "InCyrillicSupplement", 11},
        {"I}", "InBasicLatin", 1},
        {"InSupplementaryPrivateUseAreaB}", "InSupplementaryPrivateUseAreaB", 30},
        {"InBasicLatin", "InBasicLatin", 12},  // no brace: measured to the end
        {"InBasicLatinX}", nullptr, 13},
        {"Inherited}", nullptr, 9},
        {"inBasicLatin}", nullptr, 12},
        {"InSupplementaryPrivateUseAreaBAndThenSomeMore}", nullptr, 45},
    };
    for (const Case& c : cases) {
        int length = -1;
        int i = FindBlock(c.rest, Rest{c.rest}.size(), &length);
        EXPECT_EQ(length, c.length) << c.rest;
        if (!c.block) {
            EXPECT_EQ(i, -1) << c.rest;
            continue;
        }
        ASSERT_GE(i, 0) << c.rest;
        EXPECT_STREQ(kBlocks[i].name, c.block) << c.rest;
    }
    // Every block finds itself, or the first block its name is a prefix of.
    for (int b = 0; b < kBlockCount; ++b) {
        std::string rest = std::string(kBlocks[b].name) + "}";
        int length = 0, i = FindBlock(rest.c_str(), rest.size(), &length);
        ASSERT_GE(i, 0);
        EXPECT_LE(i, b);
        EXPECT_EQ(std::strncmp(kBlocks[i].name, kBlocks[b].name, length), 0);
    }
}

TEST(UnicodeNames, ScriptsWithTheirBrace) {
    for (int s = 0; s < kScriptCount; ++s) {
        std::string rest = std::string(kScripts[s].name) + "}";
        int length = 0;
        EXPECT_EQ(FindScript(rest.c_str(), rest.size(), &length), s) << rest;
        EXPECT_EQ(length, int(std::strlen(kScripts[s].name)));
        // Without the brace, or with the brace beyond the end, no match.
        EXPECT_EQ(FindScript(rest.c_str(), rest.size() - 1, &length), -1) << rest;
        std::string longer = std::string(kScripts[s].name) + "x}";
        EXPECT_EQ(FindScript(longer.c_str(), longer.size(), &length), -1) << longer;
    }
    // "Han}" is Han although Hangul comes first and begins with "Han".
    int length = 0;
    EXPECT_STREQ(kScripts[FindScript("Han}", 4, &length)].name, "Han");
    EXPECT_EQ(FindScript("Klingon}", 8, &length), -1);
    EXPECT_EQ(FindScript("latin}", 6, &length), -1);
    EXPECT_EQ(FindScript("", 0, &length), -1);
}

TEST(UnicodeNames, EncodeProperty) {
    struct Case {
        const char* rest;
        bool negated;
        u32 op;
        int a, b, c;
        const char* script;  // OP_SCRIPT: its name
        int length;
    };
    const Case cases[] = {
        {"Lu}", false, OP_CATEGORY, 130, 0, 0, nullptr, 2},
        {"L&}", true, OP_CATEGORY, 135, -1, 0, nullptr, 2},
        {"N}", false, OP_CATEGORY, 2048, 0, 0, nullptr, 1},
        {"Any}", false, OP_BLOCK, 0, 0x10FFFF, 0, nullptr, 3},
        {"Any}", true, OP_BLOCK, 0, 0x10FFFF, -1, nullptr, 3},
        {"InBasicLatin}", false, OP_BLOCK, 0, 0x7F, 0, nullptr, 12},
        {"InBasic}", true, OP_BLOCK, 0, 0x7F, -1, nullptr, 7},
        {"InLatin}", false, OP_BLOCK, 0x80, 0xFF, 0, nullptr, 7},
        {"Common}", false, OP_SCRIPT, 1, 0, 530, "Common", 6},
        {"Latin}", true, OP_SCRIPT, 1, -1, 42, "Latin", 5},
        {"Coptic}", false, OP_SCRIPT, 1, 0, -1, "Coptic", 6},
        {"Inherited}", false, OP_SCRIPT, 1, 0, -1, "Inherited", 9},
        {"Cyrillic}", false, OP_SCRIPT, 1, 0, 18, "Cyrillic", 8},
    };
    for (const Case& t : cases) {
        Instruction ins{};
        int length = 0;
        ASSERT_TRUE(EncodeProperty(t.rest, Rest{t.rest}.size(), t.negated, &ins, &length))
            << t.rest;
        EXPECT_EQ(ins.op, t.op) << t.rest;
        EXPECT_EQ(ins.a, t.a) << t.rest;
        EXPECT_EQ(ins.b, t.b) << t.rest;
        EXPECT_EQ(length, t.length) << t.rest;
        if (t.op == OP_BLOCK) {
            EXPECT_EQ(ins.c, t.c) << t.rest;
        }
        if (t.op != OP_SCRIPT) continue;
        int s = 0;
        while (s < kScriptCount && std::strcmp(kScripts[s].name, t.script) != 0) ++s;
        ASSERT_LT(s, kScriptCount);
        EXPECT_EQ(ins.c, kScripts[s].rangeCount) << t.rest;
        if (t.c >= 0) {
            EXPECT_EQ(ins.c, t.c) << t.rest;
        }
        EXPECT_EQ(ins.d, kScriptRanges + kScripts[s].firstRange) << t.rest;
    }
    for (const char* bad : {"Klingon}", "Anything}", "Any", "IsLatin}", "}", "", "Latin"}) {
        Instruction ins{};
        int length = 0;
        EXPECT_FALSE(EncodeProperty(bad, std::strlen(bad), false, &ins, &length)) << bad;
    }
}

}  // namespace
}  // namespace vkp
