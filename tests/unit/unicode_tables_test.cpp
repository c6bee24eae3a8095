// Counts, telling rows and invariants of the Unicode 5.1 tables.
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <vector>

#include "floor/unicode_data.h"
#include "floor/case_map.h"

namespace vkp {
namespace {

// Ranges ascend without overlap.
template <class R>
void ExpectAscending(const R* r, int n, const char* what) {
    for (int k = 0; k < n; ++k) {
        EXPECT_LE(r[k].first, r[k].last) << what << " " << k;
        if (k > 0) {
            EXPECT_GT(r[k].first, r[k - 1].last) << what << " " << k;
        }
    }
}

// One major bit and at most one minor bit, never the unassigned category.
bool WellFormedCategory(u32 bits) {
    u32 major = bits & kCatMajorMask, minor = bits & ~kCatMajorMask;
    return major != 0 && (major & (major - 1)) == 0 && major <= kCatC &&
           (minor & (minor - 1)) == 0 && bits != kCatCn;
}

// The names and ranges themselves are the generator's output (the
// unicode.tables_fresh test regenerates them); here, the invariants the
// lookups rely on.
TEST(UnicodeTables, Invariants) {
    ExpectAscending(kBlocks, kBlockCount, "blocks");
    int total = 0;
    for (int i = 0; i < kScriptCount; ++i) {
        const ScriptRecord& s = kScripts[i];
        EXPECT_EQ(s.firstRange, total) << s.name;
        ASSERT_GT(s.rangeCount, 0) << s.name;
        total += s.rangeCount;
        ExpectAscending(kScriptRanges + s.firstRange, s.rangeCount, s.name);
    }
    EXPECT_EQ(total, kScriptRangeCount);
    EXPECT_EQ(kCharRecords[0].codePoint, 0);
    EXPECT_EQ(kCharRecords[kCharRecordCount - 1].codePoint, kLastCharCodePoint);
    for (int i = 0; i < kCharRecordCount; ++i) {
        const CharRecord& r = kCharRecords[i];
        if (i > 0) {
            ASSERT_GT(r.codePoint, kCharRecords[i - 1].codePoint) << i;
        }
        EXPECT_TRUE(WellFormedCategory(r.bits)) << std::hex << r.codePoint;
        for (const CharRange& g : kCharRanges)
            EXPECT_FALSE(g.first <= u32(r.codePoint) && u32(r.codePoint) <= g.last) << std::hex << r.codePoint;
    }
    u32 rows = 0;
    for (u16 start : kCaseMapIndex) {
        EXPECT_EQ(start % 64, 0);
        rows = std::max<u32>(rows, start / 64u + 1);
    }
    for (u32 i = 0; i < rows * 64; ++i) EXPECT_LT(kCaseMapContents[i], kCaseMapWordCount);
    EXPECT_EQ(kCaseMapWords[0], 0u);
}

// Rows read from the Unicode data by hand: blocks, the first and last
// ranges of two scripts, the whole range table and a few characters.
TEST(UnicodeTables, TellingRows) {
    const struct { int index; const char* name; u32 first, last; } blocks[] = {
        {0, "InBasicLatin", 0, 0x7F},       {1, "InLatin1Supplement", 0x80, 0xFF},
        {8, "InCyrillic", 0x400, 0x4FF},    {9, "InCyrillicSupplement", 0x500, 0x52F},
        {kBlockCount - 1, "InSupplementaryPrivateUseAreaB", 0x100000, 0x10FFFF},
    };
    for (const auto& r : blocks) {
        EXPECT_STREQ(kBlocks[r.index].name, r.name);
        EXPECT_EQ(kBlocks[r.index].first, r.first) << r.name;
        EXPECT_EQ(kBlocks[r.index].last, r.last) << r.name;
    }
    const struct { const char* script; bool atEnd; CodeRange rows[6]; int n; } scripts[] = {
        {"Common", false, {{0, 0x1F}, {0x20, 0x20}, {0x21, 0x23}, {0x24, 0x24}}, 4},
        {"Common", true, {{0xE0020, 0xE007F}}, 1},
        {"Latin", false, {{0x41, 0x5A}, {0x61, 0x7A}, {0xAA, 0xAA}, {0xBA, 0xBA}, {0xC0, 0xD6}, {0xD8, 0xF6}}, 6},
        {"Latin", true, {{0xFF41, 0xFF5A}}, 1},
    };
    for (const auto& c : scripts) {
        const ScriptRecord* s = nullptr;
        for (const ScriptRecord& r : kScripts)
            if (std::strcmp(r.name, c.script) == 0) s = &r;
        ASSERT_NE(s, nullptr) << c.script;
        const CodeRange* r = kScriptRanges + s->firstRange + (c.atEnd ? s->rangeCount - c.n : 0);
        for (int k = 0; k < c.n; ++k) {
            EXPECT_EQ(r[k].first, c.rows[k].first) << c.script << " " << k;
            EXPECT_EQ(r[k].last, c.rows[k].last) << c.script << " " << k;
        }
    }
    const CharRange ranges[kCharRangeCount] = {
        {0x3400, 0x4DB5, 0x90},     {0x4E00, 0x9FC3, 0x90},     {0xAC00, 0xD7A3, 0x90},
        {0xD800, 0xDB7F, 0x2008},   {0xDB80, 0xDBFF, 0x2008},   {0xDC00, 0xDFFF, 0x2008},
        {0xE000, 0xF8FF, 0x2004},   {0x20000, 0x2A6D6, 0x90},   {0xF0000, 0xFFFFD, 0x2004},
        {0x100000, 0x10FFFD, 0x2004},
    };
    for (int i = 0; i < kCharRangeCount; ++i) {
        EXPECT_EQ(kCharRanges[i].first, ranges[i].first) << i;
        EXPECT_EQ(kCharRanges[i].last, ranges[i].last) << i;
        EXPECT_EQ(kCharRanges[i].bits, ranges[i].bits) << i;
    }
    const struct { int cp; u32 bits, upper, lower; } chars[] = {
        {0x41, 0x82, 0, 0x61}, {0x61, 0x81, 0x41, 0}, {0x3A3, kCatLu, 0, 0x3C3},
        {0x1E9E, kCatLu, 0, 0xDF}, {0x2126, kCatLu, 0, 0x3C9}, {0x01C5, kCatLt, 0x1C4, 0x1C6},
        {0x30, kCatNd, 0, 0}, {0xE01EF, kCatMn, 0, 0},
    };
    for (const auto& row : chars) {
        const CharRecord* r = nullptr;
        for (const CharRecord& rec : kCharRecords)
            if (rec.codePoint == row.cp) r = &rec;
        ASSERT_NE(r, nullptr) << std::hex << row.cp;
        EXPECT_EQ(r->bits, row.bits) << std::hex << row.cp;
        EXPECT_EQ(r->upper, row.upper) << std::hex << row.cp;
        EXPECT_EQ(r->lower, row.lower) << std::hex << row.cp;
    }
}

struct CaseMapping { bool hasUpper, hasLower; u32 upper, lower; int delta; };

CaseMapping CaseOf(u16 c) {
    u32 w = CaseMapWord(c);
    int d = CaseMapDelta(w);
    return {(w & kCaseHasUpper) != 0, (w & kCaseHasLower) != 0, u32(c - d), u32(c + d), d};
}

// Every mapping in the case map, read through the lookup at every unit, is
// the character table's simple mapping, except the Georgian capitals, which
// lower to the 0x10D0 letters; and none is lost (the counts of mapped units).
TEST(CaseMap, AgreesWithTheCharacterTable) {
    std::map<u32, const CharRecord*> byCp;
    for (const CharRecord& r : kCharRecords) byCp[u32(r.codePoint)] = &r;
    int lowers = 0, uppers = 0;
    for (u32 c = 0; c < 0x10000; ++c) {
        CaseMapping m = CaseOf(u16(c));
        lowers += m.hasLower, uppers += m.hasUpper;
        if (!m.hasLower && !m.hasUpper) continue;
        auto it = byCp.find(c);
        ASSERT_NE(it, byCp.end()) << std::hex << c;
        if (c >= 0x10A0 && c <= 0x10C5) {
            EXPECT_TRUE(m.hasLower && !m.hasUpper && m.delta == 48) << std::hex << c;
            continue;
        }
        if (m.hasLower) {
            EXPECT_EQ(m.lower, it->second->lower) << std::hex << c;
        }
        if (m.hasUpper) {
            EXPECT_EQ(m.upper, it->second->upper) << std::hex << c;
        }
    }
    EXPECT_EQ(lowers, 704);
    EXPECT_EQ(uppers, 673);
}

TEST(CaseMap, TellingRowsAndEdgeCases) {
    struct Row { u16 c; int upper, lower; };  // -1: no mapping
    const Row rows[] = {
        {0x0041, -1, 0x61},     {0x0061, 0x41, -1},     {0x00C0, -1, 0xE0},
        {0x0130, -1, 0x69},     {0x0069, 0x49, -1},     {0x0131, 0x49, -1},
        {0x0178, -1, 0xFF},     {0x00FF, 0x178, -1},    {0x01C5, 0x1C4, 0x1C6},
        {0x01C8, 0x1C7, 0x1C9}, {0x01CB, 0x1CA, 0x1CC}, {0x01F2, 0x1F1, 0x1F3},
        {0x00DF, -1, -1},       {0x00B5, -1, -1},       {0x03C2, -1, -1},
        {0x024F, -1, -1},       {0x0370, -1, -1},       {0x037B, -1, -1},
        {0x0218, -1, -1},       {0x0233, -1, -1},       {0x023A, -1, -1},
        {0x03F7, -1, -1},       {0x0500, -1, -1},       {0x0386, -1, 0x3AC},
        {0x03A3, -1, 0x3C3},    {0x04F9, 0x4F8, -1},    {0x0531, -1, 0x561},
        {0x10A0, -1, 0x10D0},   {0x10C5, -1, 0x10F5},   {0x10D0, -1, -1},
        {0x10F5, -1, -1},       {0x1E9E, -1, -1},       {0x2126, -1, -1},
        {0x212A, -1, -1},       {0x2160, -1, 0x2170},   {0x217F, 0x216F, -1},
        {0x24B6, -1, 0x24D0},   {0x24E9, 0x24CF, -1},   {0xFF21, -1, 0xFF41},
        {0xFF5A, 0xFF3A, -1},   {0xD800, -1, -1},       {0xFFFF, -1, -1},
    };
    for (const Row& r : rows) {
        CaseMapping m = CaseOf(r.c);
        EXPECT_EQ(m.hasUpper ? int(m.upper) : -1, r.upper) << std::hex << r.c;
        EXPECT_EQ(m.hasLower ? int(m.lower) : -1, r.lower) << std::hex << r.c;
    }
}

}  // namespace
}  // namespace vkp
