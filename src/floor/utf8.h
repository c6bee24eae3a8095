// UTF-8 as the matcher reads subjects: a valid multi-byte sequence is one
// character; any other byte (a stray continuation byte, a bad or cut-off
// sequence) is a character of its own whose value is the byte.
#pragma once

#include "floor/base.h"

namespace vkp::regexp {

VKP_INLINE bool IsContinuation(u8 c) { return (c & 0xC0) == 0x80; }

// Bytes in the character at p (p < end): 2 to 4 for a valid multi-byte
// sequence that ends at or before `end`, else 1. Overlong forms and values
// above 0x10FFFF are not valid; surrogate values are, as the property
// tables class them (Cs).
VKP_INLINE int CharLength(const u8* p, const u8* end) {
    const u8 c = p[0];
    if (c < 0xC2) return 1;
    const long room = end - p;
    if (c < 0xE0) return room >= 2 && IsContinuation(p[1]) ? 2 : 1;
    if (c < 0xF0) {
        if (room < 3 || !IsContinuation(p[1]) || !IsContinuation(p[2])) return 1;
        return (c == 0xE0 && p[1] < 0xA0) ? 1 : 3;
    }
    if (c < 0xF5) {
        if (room < 4 || !IsContinuation(p[1]) || !IsContinuation(p[2]) || !IsContinuation(p[3])) return 1;
        if (c == 0xF0 && p[1] < 0x90) return 1;
        if (c == 0xF4 && p[1] > 0x8F) return 1;
        return 4;
    }
    return 1;
}

// The character at p (p < end) and its length.
VKP_INLINE int DecodeChar(const u8* p, const u8* end, int* length) {
    const u8 c = p[0];
    if (c < 0x80) {
        *length = 1;
        return c;
    }
    const int n = CharLength(p, end);
    *length = n;
    switch (n) {
        case 2: return ((c & 0x1F) << 6) | (p[1] & 0x3F);
        case 3: return ((c & 0x0F) << 12) | ((p[1] & 0x3F) << 6) | (p[2] & 0x3F);
        case 4: return ((c & 0x07) << 18) | ((p[1] & 0x3F) << 12) | ((p[2] & 0x3F) << 6) | (p[3] & 0x3F);
        default: return c;
    }
}

// Start of the character that ends at q, within a run of characters that
// began at base (base < q). A byte that is not a continuation byte always
// starts a character, so the last such byte before q starts the character
// when its sequence is valid and ends exactly at q; otherwise the byte
// before q stands alone.
VKP_INLINE const u8* StepBack(const u8* base, const u8* q) {
    const u8* j = q - 1;
    while (j > base && q - j < 4 && IsContinuation(*j)) --j;
    if (j < q - 1 && CharLength(j, q) == q - j) return j;
    return q - 1;
}

// Bytes that code point cp takes in UTF-8 (by the limits 127, 2047, 65535).
VKP_INLINE int EncodedLength(int cp) {
    return cp <= 0x7F ? 1 : cp <= 0x7FF ? 2 : cp <= 0xFFFF ? 3 : 4;
}

}  // namespace vkp::regexp
