// Tests of one subject item against one instruction: literals, character
// types, classes, properties, \X, back-references and anchors. Each length
// test returns the bytes the item takes at p, or 0 when it does not match
// (or, for back-references, -1). None reads at or past `end`, except the
// word-boundary anchors, which read the byte at the position.
#pragma once

#include "regexp/match/match_context.h"
#include "floor/utf8.h"

namespace vkp::regexp {

// Byte classes of the character types: bit 1 digit, 2 white space (9, 10,
// 12, 13, 32; not 11), 4 word character, 8 line feed.
enum : u8 { kKindDigit = 1, kKindSpace = 2, kKindWord = 4, kKindNewline = 8 };
extern const u8 kByteKinds[256];

// The kinds of byte c, as kByteKinds holds them.
constexpr u8 KindOf(int c) {
    u8 k = 0;
    if (c >= '0' && c <= '9') k |= kKindDigit | kKindWord;
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_') k |= kKindWord;
    if (c == 9 || c == 10 || c == 12 || c == 13 || c == 32) k |= kKindSpace;
    if (c == 10) k |= kKindNewline;
    return k;
}

VKP_INLINE bool IsWordByte(u8 c) { return (kByteKinds[c] & kKindWord) != 0; }

// A literal byte against a subject byte: equal, or under ignore-case an
// ASCII letter that differs in bit 0x20 only.
VKP_INLINE bool LiteralEq(u8 subject, u8 pattern, u32 options) {
    if (subject == pattern) return true;
    return (options & kOptIgnoreCase) && (subject ^ pattern) == 0x20 && IsAsciiLetter(subject);
}

// A character type as a byte-kind mask and a negation: the test applies to
// the lead byte, and bytes from 0x80 have no kind, so \D, \S, \W and . take
// every multi-byte character while \d, \s and \w take none. An unknown type
// matches nothing.
struct TypeTest {
    u8 mask;
    bool negated;
    VKP_INLINE bool operator()(u8 c) const { return ((kByteKinds[c] & mask) != 0) != negated; }
};
VKP_INLINE TypeTest TypeFor(int type, u32 options) {
    switch (type) {
        case '.': return {options & kOptDotAll ? u8(0) : u8(kKindNewline), true};
        case 'd': return {kKindDigit, false};
        case 'D': return {kKindDigit, true};
        case 's': return {kKindSpace, false};
        case 'S': return {kKindSpace, true};
        case 'w': return {kKindWord, false};
        case 'W': return {kKindWord, true};
        default: return {0, false};
    }
}

// Bytes of the character at p when it passes the type test, else 0.
VKP_INLINE int TypeLength(const u8* p, const u8* end, TypeTest t) {
    const u8 c = *p;
    if (!t(c)) return 0;
    return c < 0x80 ? 1 : CharLength(p, end);
}

// Whether code point cp belongs to the class at cls (negation applied).
bool ClassContains(const Instruction* cls, int cp, u32 options);

// Bytes of the character at p when the class takes it, else 0.
int ClassLength(const u8* p, const u8* end, const Instruction* cls, u32 options);

// OP_CODEPOINT: the encoded length of the pattern's code point when the
// character at p equals it (folded under ignore-case) and that many bytes
// remain, else 0.
int CodePointLength(const u8* p, const u8* end, const Instruction* ins, u32 options);

// OP_CATEGORY, OP_BLOCK, OP_SCRIPT: bytes of the character at p when it
// has the property, else 0.
int PropertyLength(const u8* p, const u8* end, const Instruction* ins, u32 options);

// \X: a character that is not a combining mark and every mark behind it.
int ExtendedLength(const u8* p, const u8* end);

// The recorded text of group n compared at p: its length when it matches
// (possibly 0), -1 when it does not or the group has not taken part.
int BackrefLength(const u8* p, const MatchContext* ctx, int n);

// Anchor a at pos.
bool AnchorHolds(const u8* pos, const MatchContext* ctx, int a);

}  // namespace vkp::regexp
