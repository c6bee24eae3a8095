// Names after \p{ and \P{: general categories, blocks and scripts, with the
// constant tables behind them (Unicode 5.1).
#pragma once

#include <stddef.h>

#include "frame/base.h"
#include "regexp/compile/program.h"

namespace vkp {

// Category bits: one major-class bit plus at most one minor bit. A value
// with no minor bit stands for the whole major class.
enum CategoryBits : u32 {
    kCatL = 0x80, kCatLl = 0x81, kCatLu = 0x82, kCatLt = 0x84, kCatLm = 0x88,
    kCatLo = 0x90, kCatLCased = 0x87,  // L&: Ll, Lu and Lt
    kCatM = 0x100, kCatMn = 0x101, kCatMc = 0x102, kCatMe = 0x104,
    kCatZ = 0x200, kCatZs = 0x201, kCatZl = 0x202, kCatZp = 0x204,
    kCatS = 0x400, kCatSm = 0x401, kCatSc = 0x402, kCatSk = 0x404, kCatSo = 0x408,
    kCatN = 0x800, kCatNd = 0x801, kCatNl = 0x802, kCatNo = 0x804,
    kCatP = 0x1000, kCatPd = 0x1001, kCatPs = 0x1002, kCatPe = 0x1004,
    kCatPi = 0x1008, kCatPf = 0x1010, kCatPc = 0x1020, kCatPo = 0x1040,
    kCatC = 0x2000, kCatCc = 0x2001, kCatCf = 0x2002, kCatCo = 0x2004,
    kCatCs = 0x2008, kCatCn = 0x2010,  // Cn: unassigned, never stored
};
constexpr u32 kCatMajorMask = ~u32(0x7F);

// An inclusive range of code points.
struct CodeRange {
    u32 first;
    u32 last;
};

// Blocks, in code point order; names as written in patterns ("In" + the
// block name without spaces, hyphens and underscores).
constexpr int kBlockCount = 171;
constexpr int kBlockNameSize = 40;
struct BlockRecord {
    char name[kBlockNameSize];
    u32 first;
    u32 last;
};
extern const BlockRecord kBlocks[kBlockCount];

// Scripts, in lookup order; each owns rangeCount ascending, disjoint ranges
// of kScriptRanges starting at firstRange.
constexpr int kScriptCount = 77;
constexpr int kScriptRangeCount = 1344;
constexpr int kScriptNameSize = 24;
struct ScriptRecord {
    char name[kScriptNameSize];
    int firstRange;
    int rangeCount;
};
extern const CodeRange kScriptRanges[kScriptRangeCount];
extern const ScriptRecord kScripts[kScriptCount];

// The lookups below read a name that starts at `name` and may run to the
// end of the pattern, `avail` bytes further on; none reads beyond that.

// Category bits for a category name, or 0 when the name is none. Accepted:
// a major letter (C L M N P S Z) followed by '}', "L&", or a two-letter
// category ("Co" only when followed by '}', so that "Coptic" stays a
// script). *length receives the bytes of the name (1 or 2), not the '}'.
u32 FindCategory(const char* name, size_t avail, int* length);

// The name of a category value ("Lu", "L&", "L"), or null.
const char* CategoryName(u32 bits);

// Category bits for a major letter used without braces (\pL), or 0.
u32 MajorCategory(char letter);

// The first block whose name begins with the bytes from `name` up to the
// next '}' (or the end), or -1. A prefix selects the first block it begins:
// "InLatin" gives InLatin1Supplement. *length receives the measured bytes.
int FindBlock(const char* name, size_t avail, int* length);

// The first script whose name, followed by '}', equals the pattern there,
// or -1. *length receives the name's bytes, not the '}'.
int FindScript(const char* name, size_t avail, int* length);

// Resolves a property name in the documented order: category, "Any}",
// a block (names beginning with 'I'), then a script. On success writes the
// OP_CATEGORY, OP_BLOCK or OP_SCRIPT record (negated as asked) to *out,
// stores the bytes used in *length and returns true; the caller checks and
// skips the closing '}'. Returns false for an unknown name.
bool EncodeProperty(const char* name, size_t avail, bool negated,
                    Instruction* out, int* length);

}  // namespace vkp
