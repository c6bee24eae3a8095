#include "regexp/match/class_run.h"

#include "kernels/active.h"
#include "regexp/match/literal_scan.h"

namespace vkp::regexp {

namespace {

constexpr ClassBits TypeBits(u8 mask, bool negated) {
    ClassBits k{};
    for (int c = 0; c < 128; ++c)
        if (((KindOf(c) & mask) != 0) != negated) {
            k.bits[c >> 5] |= u32(1) << (c & 31);
            AddNibbleMember(k.nibbles, c);
        }
    return k;
}

// By mask (no kind, digit, space, word, line feed) and negation.
constexpr ClassBits kTypeBits[5][2] = {
    {TypeBits(0, false), TypeBits(0, true)},
    {TypeBits(kKindDigit, false), TypeBits(kKindDigit, true)},
    {TypeBits(kKindSpace, false), TypeBits(kKindSpace, true)},
    {TypeBits(kKindWord, false), TypeBits(kKindWord, true)},
    {TypeBits(kKindNewline, false), TypeBits(kKindNewline, true)},
};

}  // namespace

const ClassBits& TypeMembers(TypeTest t) {
    const int row = t.mask == kKindDigit ? 1 : t.mask == kKindSpace ? 2 : t.mask == kKindWord ? 3 : t.mask == kKindNewline ? 4 : 0;
    return kTypeBits[row][t.negated];
}

long AsciiMemberRun(const u8* p, long n, const ClassBits& k) {
    const int i = kernels::active::FindNonMember(p, static_cast<int>(n), k.nibbles);
    return i < 0 ? n : i;
}

}  // namespace vkp::regexp
