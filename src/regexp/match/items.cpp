// Item tests that are too large to inline into the matching loops.
#include "regexp/match/items.h"

#include "regexp/match/unicode_properties.h"

namespace vkp::regexp {

namespace {

struct KindTable {
    u8 v[256];
    constexpr KindTable() : v() {
        for (int c = 0; c < 256; ++c) v[c] = KindOf(c);
    }
};

constexpr KindTable kKinds;

// cp or, under ignore-case, one of its case partners lies in [lo, hi].
bool InRange(int cp, int lo, int hi, bool caseless) {
    if (lo <= cp && cp <= hi) return true;
    if (!caseless) return false;
    const CharClass& k = CharClassOf(cp);
    if (k.lowerDelta != 0 && lo <= cp + k.lowerDelta && cp + k.lowerDelta <= hi) return true;
    if (k.upperDelta != 0 && lo <= cp + k.upperDelta && cp + k.upperDelta <= hi) return true;
    return false;
}

bool IsNegatedMember(const Instruction& m) {
    return (m.op == OP_CHAR || m.op == OP_CODEPOINT || m.op == OP_RANGE) && m.c == -1;
}

// One member that is not a negated POSIX member.
bool MemberHolds(const Instruction& m, int cp, bool caseless) {
    switch (m.op) {
        case OP_CHAR:
        case OP_CODEPOINT:
            return InRange(cp, m.a, m.a, caseless);
        case OP_RANGE:
            return InRange(cp, m.a, m.b, caseless);
        case OP_TYPE: {
            // As for OP_TYPE: the kind of a code point from 0x80 on is none.
            const TypeTest t = TypeFor(m.a, kOptDotAll);
            return t(static_cast<u8>(cp < 0x80 ? cp : 0x80));
        }
        case OP_CATEGORY:
        case OP_BLOCK:
        case OP_SCRIPT:
            return PropertyTest(cp, m, caseless) > 0;
        default:
            return false;
    }
}

}  // namespace

const u8 kByteKinds[256] = {
#define K4(n) kKinds.v[n], kKinds.v[n + 1], kKinds.v[n + 2], kKinds.v[n + 3]
#define K16(n) K4(n), K4(n + 4), K4(n + 8), K4(n + 12)
#define K64(n) K16(n), K16(n + 16), K16(n + 32), K16(n + 48)
    K64(0), K64(64), K64(128), K64(192)
#undef K64
#undef K16
#undef K4
};

// Members are alternatives: the class takes a character that any member
// takes. Members from a negated POSIX name ([:^alpha:] gives two negated
// ranges) take a character that lies outside all of them: consecutive
// negated members are read as one set, so that [[:^alpha:]] means "not a
// letter" as in Perl rather than "not a-z or not A-Z", which would be
// everything. Under ignore-case a character also matches through its case
// partners.
bool ClassContains(const Instruction* cls, int cp, u32 options) {
    const bool caseless = (options & kOptIgnoreCase) != 0;
    const Instruction* m = cls + 1;
    const Instruction* last = m + cls->b;
    bool hit = false;
    while (m < last && !hit) {
        if (IsNegatedMember(*m)) {
            bool inside = false;
            for (; m < last && IsNegatedMember(*m); ++m)
                inside = inside || MemberHolds(*m, cp, caseless);
            hit = !inside;
            continue;
        }
        hit = MemberHolds(*m, cp, caseless);
        ++m;
    }
    return hit != (cls->a == -1);
}

int ClassLength(const u8* p, const u8* end, const Instruction* cls, u32 options) {
    int n;
    const int cp = DecodeChar(p, end, &n);
    return ClassContains(cls, cp, options) ? n : 0;
}

int CodePointLength(const u8* p, const u8* end, const Instruction* ins, u32 options) {
    int n;
    const int cp = DecodeChar(p, end, &n);
    if (PropertyTest(cp, *ins, (options & kOptIgnoreCase) != 0) != 0) return 0;
    const int need = EncodedLength(ins->a);
    return end - p >= need ? need : 0;
}

int PropertyLength(const u8* p, const u8* end, const Instruction* ins, u32 options) {
    int n;
    const int cp = DecodeChar(p, end, &n);
    return PropertyTest(cp, *ins, (options & kOptIgnoreCase) != 0) > 0 ? n : 0;
}

namespace {
bool IsMark(int cp) {
    const CharClass& k = CharClassOf(cp);
    return k.kind == kCharAssigned && (k.bits & ~0x7Fu) == kCatM;
}
}  // namespace

int ExtendedLength(const u8* p, const u8* end) {
    int n;
    if (IsMark(DecodeChar(p, end, &n))) return 0;
    const u8* q = p + n;
    while (q < end) {
        if (!IsMark(DecodeChar(q, end, &n))) break;
        q += n;
    }
    return static_cast<int>(q - p);
}

// A group that has not taken part makes the reference fail, as in Perl.
// Under ignore-case the bytes compare as literals do (ASCII letters only).
int BackrefLength(const u8* p, const MatchContext* ctx, int n) {
    if (n < 0 || n >= ctx->recordCount) return -1;
    const RegExpFind& r = ctx->records[n];
    if (r.matchLen < 0) return -1;
    if (ctx->subjectEnd - p < r.matchLen) return -1;
    const u8* g = r.pMatch;
    for (int i = 0; i < r.matchLen; ++i)
        if (!LiteralEq(p[i], g[i], ctx->options)) return -1;
    return r.matchLen;
}

bool AnchorHolds(const u8* pos, const MatchContext* ctx, int a) {
    const long remaining = ctx->subjectEnd - pos;
    const bool multiline = (ctx->options & kOptMultiline) != 0;
    switch (a) {
        case '^':
            return pos == ctx->subjectStart || (multiline && remaining > 0 && pos[-1] == '\n');
        case '$':
            if (multiline) return remaining == 0 || *pos == '\n';
            return remaining == 0 || (remaining == 1 && *pos == '\n');
        case 'Z':
            return remaining == 0 || (remaining == 1 && *pos == '\n');
        case 'z':
            return remaining == 0;
        case 'A':
        case 'G':
            return pos == ctx->subjectStart;
        case 'b':
        case 'B': {
            // The byte at the position is read even at the end: the caller
            // leaves one readable byte behind the subject.
            const bool before = pos != ctx->subjectStart && IsWordByte(pos[-1]);
            const bool at = IsWordByte(*pos);
            return (before != at) == (a == 'b');
        }
        case 128:
            return pos == ctx->subjectStart || pos[-1] == '\n';
        default:
            return false;
    }
}

}  // namespace vkp::regexp
