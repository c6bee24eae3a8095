// Property tests of one code point against a category, block, script or
// literal code point instruction.
#include "regexp/match/unicode_properties.h"

namespace vkp {

namespace {

// Computed without branches on the class: mixed-script text would make
// them unpredictable.
int CategoryTest(int c, u32 want, bool negated) {
    const CharClass& k = CharClassOf(c);
    // A range row may decide in favour; when it does not, the character
    // table is consulted as for any other code point.
    const u32 range = k.rangeBits;
    const bool rangeHit =
        range != 0 && (negated ? (want & ~range) != 0 : (range & want) == want);
    const u32 have = k.bits;
    const u32 wantMinor = want & ~kCatMajorMask;
    const bool inClass = ((have ^ want) & kCatMajorMask) == 0 &&
                         (wantMinor == 0 || (wantMinor & have) != 0);
    // Unassigned code points match only Cn exactly, whatever the negation;
    // those beyond the table match nothing.
    const bool recordHit = k.kind == kCharAssigned ? inClass != negated
                                                   : k.kind == kCharUnassigned && want == kCatCn;
    return (rangeHit | recordHit) ? 1 : -1;
}

int ScriptTest(int c, const CodeRange* ranges, int count, bool negated) {
    const int miss = negated ? 1 : -1;
    if (count <= 0 || c < 0) return miss;
    const u32 u = static_cast<u32>(c);
    // Ranges ascend without overlap: the last one starting at or below c is
    // the only one that can hold it.
    int lo = 0, hi = count;
    while (lo < hi) {
        int mid = lo + (hi - lo) / 2;
        if (ranges[mid].first <= u) lo = mid + 1;
        else hi = mid;
    }
    return (lo > 0 && u <= ranges[lo - 1].last) ? -miss : miss;
}

}  // namespace

int PropertyTest(int c, const Instruction& ins, bool caseless) {
    switch (ins.op) {
        case OP_CATEGORY:
            return CategoryTest(c, static_cast<u32>(ins.a), ins.b != 0);
        case OP_BLOCK: {
            const bool inside = ins.a <= c && c <= ins.b;
            return inside != (ins.c != 0) ? 1 : -1;
        }
        case OP_SCRIPT:
            return ScriptTest(c, static_cast<const CodeRange*>(ins.d), ins.c,
                              ins.b != 0);
        case OP_CODEPOINT:
            if (caseless) return FoldCaseless(ins.a) == FoldCaseless(c) ? 0 : 1;
            return ins.a == c ? 0 : 1;
        default:
            return -1;
    }
}

}  // namespace vkp
