// Per-code-point Unicode 5.1 data for the matcher: general category and
// case partners, and the property tests behind OP_CATEGORY, OP_BLOCK,
// OP_SCRIPT and caseless OP_CODEPOINT.
#pragma once

#include "frame/base.h"
#include "regexp/compile/program.h"
#include "regexp/compile/unicode_names.h"

namespace vkp {

// Large uniform ranges that the character table leaves out.
constexpr int kCharRangeCount = 10;
struct CharRange {
    u32 first;
    u32 last;
    u32 bits;
};
extern const CharRange kCharRanges[kCharRangeCount];

// One record per assigned code point outside kCharRanges, by ascending
// code point. A partner of 0 means none. Code points without a record are
// unassigned; those above kLastCharCodePoint lie beyond the table, which
// the category test treats differently from a gap inside it.
constexpr int kCharRecordCount = 19316;
constexpr int kLastCharCodePoint = 0xE01EF;
struct CharRecord {
    int codePoint;
    u32 bits;
    u32 upper;
    u32 lower;
};
extern const CharRecord kCharRecords[kCharRecordCount];

// The constant-time form of the two tables above: every code point maps,
// through a two-stage table, to a class of code points that all lookups
// treat alike.
enum CharKind : u8 {
    kCharUnassigned = 0,  // no record (also every negative value)
    kCharAssigned = 1,    // a record with `bits` and the partner deltas
    kCharBeyond = 2,      // above kLastCharCodePoint
};
struct CharClass {
    int upperDelta;  // upper partner - code point, 0 for none
    int lowerDelta;  // lower partner - code point, 0 for none
    u16 rangeBits;   // bits of the kCharRanges row holding it, else 0
    u16 bits;        // record bits (kCharAssigned only)
    u8 kind;         // a CharKind
};
constexpr int kCharStageShift = 7;
constexpr int kCharStage1Size = 0x110000 >> kCharStageShift;
constexpr int kCharClassUnassigned = 0;  // class of negative values
constexpr int kCharClassBeyond = 1;      // class of values above 0x10FFFF
extern const CharClass kCharClasses[];
extern const u8 kCharStage1[kCharStage1Size];
extern const u8 kCharStage2[];

VKP_INLINE const CharClass& CharClassOf(int c) {
    if (VKP_UNLIKELY(static_cast<u32>(c) > 0x10FFFF))
        return kCharClasses[c < 0 ? kCharClassUnassigned : kCharClassBeyond];
    const u32 u = static_cast<u32>(c);
    const u32 block = kCharStage1[u >> kCharStageShift];
    return kCharClasses[kCharStage2[(block << kCharStageShift) |
                                    (u & ((1u << kCharStageShift) - 1))]];
}

// The code point a caseless comparison uses for c: its lower-case partner
// when its record has one, else c itself.
VKP_INLINE int FoldCaseless(int c) { return c + CharClassOf(c).lowerDelta; }

// Tests code point c against an OP_CATEGORY, OP_BLOCK or OP_SCRIPT record:
// 1 when c satisfies it (negation applied), -1 when not. For OP_CODEPOINT
// returns 0 when c equals the record's code point (both folded first when
// `caseless`), else 1. Any other opcode gives -1.
int PropertyTest(int c, const Instruction& ins, bool caseless);

}  // namespace vkp
