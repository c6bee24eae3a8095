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

Instruction Ins(u32 op, int a, int b = 0, int c = 0, const void* d = nullptr) {
    Instruction ins{};
    ins.op = op, ins.a = a, ins.b = b, ins.c = c, ins.d = d;
    return ins;
}
Instruction Category(u32 a, bool negated) { return Ins(OP_CATEGORY, int(a), negated ? -1 : 0); }
Instruction CodePoint(int a) { return Ins(OP_CODEPOINT, a); }

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

// Blocks, a script without ranges, code points and other opcodes: the
// documented answers at the edges (1/-1 hit or miss; code points 0 when equal).
TEST(UnicodeProperty, OtherInstructions) {
    const struct {
        Instruction ins;
        int c;
        bool caseless;
        int want;
    } rows[] = {
        {Ins(OP_BLOCK, 0, 0x7F), 0x7F, false, 1},        {Ins(OP_BLOCK, 0, 0x7F), 0x80, false, -1},
        {Ins(OP_BLOCK, 0, 0x7F, -1), 0x7F, false, -1},   {Ins(OP_BLOCK, 0, 0x7F, -1), 0x80, false, 1},
        {Ins(OP_BLOCK, 0, 0x7F), -1, false, -1},         {Ins(OP_BLOCK, 0, 0x10FFFF), 0x110000, false, -1},
        {Ins(OP_SCRIPT, 1, 0, 0, kScriptRanges), 0x41, false, -1},
        {Ins(OP_SCRIPT, 1, -1, 0, kScriptRanges), 0x41, false, 1},
        {CodePoint(0x3A3), 0x3C3, true, 0},   {CodePoint(0x3A3), 0x3C3, false, 1}, {CodePoint(0x1E9E), 0xDF, true, 0},
        {CodePoint(0xDF), 0x1E9E, true, 0},   {CodePoint(0x2126), 0x3C9, true, 0}, {CodePoint(0x3C2), 0x3C3, true, 1},
        {CodePoint(0x10A0), 0x2D00, true, 0}, {CodePoint(0x10D0), 0x10A0, true, 1}, {CodePoint(0x130), 0x69, true, 0},
        {CodePoint(0x131), 0x49, true, 1},    {CodePoint(0x110000), 0x110000, true, 0}, {CodePoint(-1), -1, true, 0},
        {CodePoint(0x100), 0x101, false, 1},  {Ins(OP_CHAR, 0x41), 0x41, true, -1}, {Ins(OP_CLASS, 0x41), 0x41, true, -1},
        {Ins(OP_RANGE, 0x41), 0x41, true, -1}, {Ins(OP_EXTENDED, 0x41), 0x41, true, -1}, {Ins(0, 0x41), 0x41, true, -1},
        {Ins(0x1000001bu, 0x41), 0x41, true, -1},
    };
    for (const auto& r : rows)
        EXPECT_EQ(PropertyTest(r.c, r.ins, r.caseless), r.want) << std::hex << r.ins.op << " " << r.ins.a << " c=" << r.c;
}

// Code points, caseless and exact, on random pairs and case partners.
TEST(UnicodeProperty, CodePointsAgreeWithFolding) {
    std::mt19937 rng(7);
    std::uniform_int_distribution<int> any(0, 0x10FFFF);
    for (int i = 0; i < 4000; ++i) {
        int a = i % 4 ? any(rng) & 0xFFFF : any(rng);
        int c = (i & 1) ? any(rng) & 0xFFFF : RefFold(a, RecordAt(a, LinearIndex(a)));
        EXPECT_EQ(PropertyTest(c, CodePoint(a), true) == 0,
                  RefFold(a, RecordAt(a, LinearIndex(a))) == RefFold(c, RecordAt(c, LinearIndex(c))));
        EXPECT_EQ(PropertyTest(c, CodePoint(a), false) == 0, a == c) << std::hex << a << " " << c;
        if (HasFailure()) return;
    }
}

}  // namespace
}  // namespace vkp
