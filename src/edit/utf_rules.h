// The per-character rules of the lenient converters.
//
// UTF-8 in: an ill-formed lead (a lone continuation byte, 0xFE, 0xFF), a
// sequence with a byte that is not a continuation, or an overlong form stands
// for the lead byte's own value and consumes one byte. Forms of two to six
// bytes are accepted; surrogate values are passed through as units; values
// above 0xFFFF become a surrogate pair, folded by 10-bit masks above
// 0x10FFFF. UTF-16 in: an unpaired surrogate is encoded as itself in three
// bytes.
#pragma once

#include "floor/base.h"

namespace vkp::edit {

VKP_INLINE u16 Swap16(u16 u) { return u16((u >> 8) | (u << 8)); }

struct Decoded {
    u32 value;
    u32 length;  // bytes consumed; 0: the sequence is cut off by the end
};

// Decodes the character at s[0], with `avail` >= 1 bytes readable.
VKP_INLINE Decoded DecodeUtf8(const u8* s, u32 avail) {
    const u32 b = s[0];
    if (b < 0x80) return {b, 1};
    const int ones = __builtin_clz(~(b << 24));  // leading one bits, 1..8
    if (ones == 1 || ones >= 7) return {b, 1};
    u32 v = b & (0x7Fu >> ones);
    for (int k = 1; k < ones; ++k) {
        if (u32(k) >= avail) return {0, 0};  // every byte present so far continues it
        const u32 c = s[k];
        if ((c & 0xC0) != 0x80) return {b, 1};
        v = (v << 6) | (c & 0x3F);
    }
    const int shortest = v <= 0x7F ? 1 : v <= 0x7FF ? 2 : v <= 0xFFFF ? 3 : v <= 0x1FFFFF ? 4 : v <= 0x3FFFFFF ? 5 : 6;
    if (shortest != ones) return {b, 1};
    return {v, u32(ones)};
}

// Bytes of the UTF-8 form of a value up to 0x1FFFFF (at most 4).
VKP_INLINE u32 EncodeUtf8(u32 v, u8* out) {
    if (v <= 0x7F) {
        out[0] = u8(v);
        return 1;
    }
    if (v <= 0x7FF) {
        out[0] = u8(0xC0 | (v >> 6)), out[1] = u8(0x80 | (v & 0x3F));
        return 2;
    }
    if (v <= 0xFFFF) {
        out[0] = u8(0xE0 | (v >> 12)), out[1] = u8(0x80 | ((v >> 6) & 0x3F)), out[2] = u8(0x80 | (v & 0x3F));
        return 3;
    }
    out[0] = u8(0xF0 | (v >> 18)), out[1] = u8(0x80 | ((v >> 12) & 0x3F));
    out[2] = u8(0x80 | ((v >> 6) & 0x3F)), out[3] = u8(0x80 | (v & 0x3F));
    return 4;
}

}  // namespace vkp::edit
