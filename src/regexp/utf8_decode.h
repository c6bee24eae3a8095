// UTF-8 decoding for patterns and subjects: well-formed sequences only
// (no overlong forms, no surrogates, nothing above U+10FFFF).
#pragma once

#include "frame/base.h"

namespace vkp::regexp {

// Length (2 to 4) of the well-formed multi-byte sequence at p, which has
// `avail` readable bytes, with its code point in *cp; 0 when p does not
// start one (an ASCII byte, a stray or a cut sequence). Reads no more than
// the sequence's own bytes.
VKP_INLINE int DecodeUtf8(const u8* p, long avail, int* cp) {
    const u8 b0 = p[0];
    if (b0 < 0xC2 || b0 > 0xF4) return 0;
    auto cont = [](u8 b) { return (b & 0xC0) == 0x80; };
    if (b0 < 0xE0) {
        if (avail < 2 || !cont(p[1])) return 0;
        *cp = ((b0 & 0x1F) << 6) | (p[1] & 0x3F);
        return 2;
    }
    if (b0 < 0xF0) {
        if (avail < 3) return 0;
        const u8 lo = b0 == 0xE0 ? 0xA0 : 0x80, hi = b0 == 0xED ? 0x9F : 0xBF;
        if (p[1] < lo || p[1] > hi || !cont(p[2])) return 0;
        *cp = ((b0 & 0x0F) << 12) | ((p[1] & 0x3F) << 6) | (p[2] & 0x3F);
        return 3;
    }
    if (avail < 4) return 0;
    const u8 lo = b0 == 0xF0 ? 0x90 : 0x80, hi = b0 == 0xF4 ? 0x8F : 0xBF;
    if (p[1] < lo || p[1] > hi || !cont(p[2]) || !cont(p[3])) return 0;
    *cp = ((b0 & 0x07) << 18) | ((p[1] & 0x3F) << 12) | ((p[2] & 0x3F) << 6) | (p[3] & 0x3F);
    return 4;
}

}  // namespace vkp::regexp
