// PropertyTest and caseless folding: documented edge cases, and equality
// with a linear-scan model of the character table over the whole code range.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <random>
#include <vector>

#include "regexp/match/unicode_properties.h"

namespace vkp {
namespace {

// ---- Reference model: the tables read the slow, documented way. ----

// Index reached by scanning the character table from the start.
int LinearIndex(int c) {
    if (c <= 0) return 0;
    int i = 0;
    while (i < kCharRecordCount && c > kCharRecords[i].codePoint) ++i;
    return i;
}

// What a lookup of c found: kCharRecordCount for "beyond the table",
// -1 for "no record", else the record's index.
int RecordAt(int c, int index) {
    if (index == kCharRecordCount) return kCharRecordCount;
    return kCharRecords[index].codePoint == c ? index : -1;
}

bool InRange(const CharRange& r, int c) {
    return c >= 0 && r.first <= u32(c) && u32(c) <= r.last;
}

int RefCategory(int c, int found, u32 a, bool negated) {
    for (const CharRange& r : kCharRanges) {
        if (!InRange(r, c)) continue;
        if (!negated && (r.bits & a) == a) return 1;
        if (negated && (a & ~r.bits) != 0) return 1;
    }
    if (found == kCharRecordCount) return -1;
    if (found < 0) return a == 0x2010 ? 1 : -1;
    const u32 e = kCharRecords[found].bits;
    const u32 major = 0xFF80;
    if (!negated) {
        if ((e & major) != (a & major)) return -1;
        return ((a & 0x7F) == 0 || (a & e & 0x7F) != 0) ? 1 : -1;
    }
    if ((e & major) != (a & major)) return 1;
    if ((a & 0x7F) == 0) return -1;
    return (a & e & 0x7F) != 0 ? -1 : 1;
}

int RefFold(int c, int found) {
    for (const CharRange& r : kCharRanges)
        if (InRange(r, c)) return c;
    if (found >= 0 && found < kCharRecordCount && kCharRecords[found].lower != 0)
        return int(kCharRecords[found].lower);
    return c;
}

// Every category operand a pattern can produce, and a few it cannot.
const u32 kOperands[] = {
    0x80, 0x81, 0x82, 0x84, 0x88, 0x90, 0x87, 0x100, 0x101, 0x102, 0x104,
    0x200, 0x201, 0x202, 0x204, 0x400, 0x401, 0x402, 0x404, 0x408,
    0x800, 0x801, 0x802, 0x804, 0x1000, 0x1001, 0x1002, 0x1004, 0x1008,
    0x1010, 0x1020, 0x1040, 0x2000, 0x2001, 0x2002, 0x2004, 0x2008, 0x2010,
    0, 0x2018, 0x82 | 0x100,
};

Instruction Category(u32 a, bool negated) {
    Instruction ins{};
    ins.op = OP_CATEGORY;
    ins.a = int(a);
    ins.b = negated ? -1 : 0;
    return ins;
}

Instruction CodePoint(int a) {
    Instruction ins{};
    ins.op = OP_CODEPOINT;
    ins.a = a;
    return ins;
}

// Compares the fast lookup with the model at c, given c's linear index.
void ExpectSameAsLinear(int c, int index) {
    const int found = RecordAt(c, index);
    const CharClass& k = CharClassOf(c);
    if (found == kCharRecordCount) {
        ASSERT_EQ(k.kind, kCharBeyond) << std::hex << c;
    } else if (found < 0) {
        ASSERT_EQ(k.kind, kCharUnassigned) << std::hex << c;
    } else {
        const CharRecord& r = kCharRecords[found];
        ASSERT_EQ(k.kind, kCharAssigned) << std::hex << c;
        ASSERT_EQ(k.bits, r.bits) << std::hex << c;
        ASSERT_EQ(r.upper ? u32(c + k.upperDelta) : 0u, r.upper) << std::hex << c;
        ASSERT_EQ(k.upperDelta == 0, r.upper == 0) << std::hex << c;
        ASSERT_EQ(k.lowerDelta == 0, r.lower == 0) << std::hex << c;
    }
    ASSERT_EQ(FoldCaseless(c), RefFold(c, found)) << std::hex << c;
    for (u32 a : kOperands) {
        for (bool negated : {false, true}) {
            ASSERT_EQ(PropertyTest(c, Category(a, negated), false), RefCategory(c, found, a, negated))
                << std::hex << "c=" << c << " a=" << a << " negated=" << negated;
        }
    }
}

TEST(UnicodeProperty, WholeCodeRangeEqualsLinearScan) {
    // The scan index only grows with c, so one pass may carry it forward;
    // the samples below check that against a scan from the start.
    int index = 0;
    for (int c = 0; c <= 0x10FFFF; ++c) {
        while (index < kCharRecordCount && c > kCharRecords[index].codePoint) ++index;
        ExpectSameAsLinear(c, index);
        if (testing::Test::HasFatalFailure()) return;
    }
    std::mt19937 rng(20240501);
    std::uniform_int_distribution<int> any(0, 0x10FFFF);
    for (int i = 0; i < 2000; ++i) {
        int c = any(rng);
        ExpectSameAsLinear(c, LinearIndex(c));
    }
    for (int c : {-1, -2, -0x10000, INT_MIN, 0x110000, 0x110001, 0x7FFFFFFF, 0x1000000,
                  kLastCharCodePoint, kLastCharCodePoint + 1}) {
        ExpectSameAsLinear(c, LinearIndex(c));
    }
}

TEST(UnicodeProperty, ScriptsEqualLinearScanEverywhere) {
    std::vector<char> in(0x110000);
    for (const ScriptRecord& s : kScripts) {
        const CodeRange* ranges = kScriptRanges + s.firstRange;
        std::fill(in.begin(), in.end(), 0);
        for (int k = 0; k < s.rangeCount; ++k)
            for (u32 c = ranges[k].first; c <= ranges[k].last; ++c) in[c] = 1;
        Instruction ins{};
        ins.op = OP_SCRIPT;
        ins.a = 1;
        ins.c = s.rangeCount;
        ins.d = ranges;
        for (int negated = 0; negated < 2; ++negated) {
            ins.b = -negated;
            const int hit = negated ? -1 : 1;
            for (int c = 0; c <= 0x10FFFF; ++c)
                ASSERT_EQ(PropertyTest(c, ins, false), in[c] ? hit : -hit)
                    << s.name << std::hex << " c=" << c;
            for (int c : {-1, INT_MIN, 0x110000, INT_MAX}) ASSERT_EQ(PropertyTest(c, ins, false), -hit);
        }
    }
}

TEST(UnicodeProperty, CategoryEdgeCases) {
    struct Case { int c; u32 a; bool negated; int expected; };
    const Case cases[] = {
        {0x41, 0x82, false, 1},      // \p{Lu} A
        {0x61, 0x82, false, -1},     // \p{Lu} a
        {0x41, 0x80, false, 1},      // \p{L}
        {0x61, 0x80, false, 1},
        {0x61, 0x87, false, 1},      // \p{L&}
        {0x61, 0x82, true, 1},       // \P{Lu} a
        {0x41, 0x82, true, -1},
        {0x41, 0x80, true, -1},      // \P{L}
        {0x30, 0x80, true, 1},
        {0x4E00, 0x90, false, 1},    // CJK through the range table
        {0x9FC3, 0x80, false, 1},
        {0x9FC4, 0x90, false, -1},   // just past the range: unassigned
        {0x9FC4, 0x2010, false, 1},
        {0x4E00, 0x90, true, -1},    // \P{Lo}: range does not decide, no record
        {0x4E00, 0x87, true, 1},     // \P{L&}: range decides
        {0x4E00, 0x82, false, -1},
        {0xAC00, 0x90, false, 1},    // Hangul
        {0x378, 0x2010, false, 1},   // unassigned: \p{Cn} yes
        {0x378, 0x82, false, -1},    // \p{Lu} no
        {0x378, 0x82, true, -1},     // \P{Lu} no either
        {0x378, 0x2010, true, 1},    // negation not applied to unassigned
        {0x378, 0x2000, false, -1},  // \p{C} does not cover unassigned
        {0xD800, 0x2008, false, 1},  // surrogates are Cs ...
        {0xD800, 0x2010, false, 1},  // ... and, with no record, also Cn
        {0xE000, 0x2004, false, 1},  // private use
        {0xE000, 0x2000, false, 1},
        {0x10FFFD, 0x2004, false, 1},
        {0xF0000, 0x2010, false, -1},  // beyond the table, range does not decide
        {0xE01EF, 0x101, false, 1},    // last record, Mn
        {0xE01F0, 0x2010, false, -1},  // beyond the table
        {0xE01F0, 0x82, true, -1},
        {-1, 0x2010, false, 1},        // negative: treated as unassigned
        {0x110000, 0x2010, false, -1},
    };
    for (const Case& t : cases)
        EXPECT_EQ(PropertyTest(t.c, Category(t.a, t.negated), false), t.expected)
            << std::hex << "c=" << t.c << " a=" << t.a << " negated=" << t.negated;
}

TEST(UnicodeProperty, BlockTests) {
    struct Case { int first, last, negated, c, expected; };
    const Case cases[] = {
        {0, 0x7F, 0, 0x7F, 1},   {0, 0x7F, 0, 0x80, -1},  {0, 0x7F, -1, 0x7F, -1},
        {0, 0x7F, -1, 0x80, 1},  {0, 0x7F, 0, -1, -1},    {0, 0x10FFFF, 0, 0x110000, -1},
    };
    for (const Case& t : cases) {
        Instruction ins{};
        ins.op = OP_BLOCK;
        ins.a = t.first;
        ins.b = t.last;
        ins.c = t.negated;
        EXPECT_EQ(PropertyTest(t.c, ins, false), t.expected) << std::hex << t.c;
    }
}

TEST(UnicodeProperty, ScriptWithoutRanges) {
    Instruction ins{};
    ins.op = OP_SCRIPT;
    ins.a = 1;
    ins.c = 0;
    ins.d = kScriptRanges;
    EXPECT_EQ(PropertyTest(0x41, ins, false), -1);
    ins.b = -1;
    EXPECT_EQ(PropertyTest(0x41, ins, false), 1);
}

TEST(UnicodeProperty, CodePoints) {
    struct Case { int a, c; bool caseless; bool equal; };
    const Case cases[] = {
        {0x3A3, 0x3C3, true, true},   {0x3A3, 0x3C3, false, false},
        {0x3C3, 0x3A3, true, true},   {0x1E9E, 0xDF, true, true},
        {0xDF, 0x1E9E, true, true},   {0x41, 0x61, true, true},
        {0x2126, 0x3C9, true, true},  {0x3A9, 0x2126, true, true},
        {0x3C2, 0x3C3, true, false},  // final sigma has no lower partner
        {0x4E00, 0x4E00, true, true}, {0x4E00, 0x4E01, true, false},
        {0x10A0, 0x2D00, true, true}, {0x10D0, 0x10A0, true, false},
        {0x130, 0x69, true, true},    {0x131, 0x49, true, false},
        {0x110000, 0x110000, true, true}, {0xE01F0, 0xE01F1, true, false},
        {-1, -1, true, true},         {0x100, 0x101, false, false},
    };
    for (const Case& t : cases) {
        int r = PropertyTest(t.c, CodePoint(t.a), t.caseless);
        EXPECT_EQ(r == 0, t.equal) << std::hex << t.a << " " << t.c;
    }
}

TEST(UnicodeProperty, CaselessAgreesWithFoldingEverywhere) {
    std::mt19937 rng(7);
    std::uniform_int_distribution<int> any(0, 0x10FFFF);
    for (int i = 0; i < 4000; ++i) {
        int a = i % 4 ? any(rng) & 0xFFFF : any(rng);
        int c = (i & 1) ? any(rng) & 0xFFFF : RefFold(a, RecordAt(a, LinearIndex(a)));
        EXPECT_EQ(PropertyTest(c, CodePoint(a), true) == 0,
                  RefFold(a, RecordAt(a, LinearIndex(a))) == RefFold(c, RecordAt(c, LinearIndex(c))));
        if (HasFailure()) return;
    }
}

TEST(UnicodeProperty, OtherOpcodesFail) {
    for (u32 op : {u32(OP_CHAR), u32(OP_CLASS), u32(OP_RANGE), u32(OP_EXTENDED), 0u, 0x1000001bu}) {
        Instruction ins{};
        ins.op = op;
        ins.a = 0x41;
        EXPECT_EQ(PropertyTest(0x41, ins, true), -1) << std::hex << op;
    }
}

}  // namespace
}  // namespace vkp
