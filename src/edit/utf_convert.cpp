// The converters: ASCII runs go 16 units a block; two- and three-byte
// characters that are well formed take a short direct path; everything else
// goes through the per-character rules. The output is identical to the rules
// applied one character at a time.
#include "edit/utf_convert.h"

#include "edit/utf_rules.h"
#include "kernels/utf_blocks.h"

namespace vkp::edit {
namespace {

template <bool kSwap>
VKP_INLINE void PutUnit(u16* d, u32 u) {
    u16 x = kSwap ? Swap16(u16(u)) : u16(u);
    __builtin_memcpy(d, &x, 2);
}

template <bool kSwap>
VKP_INLINE u32 GetUnit(const u16* s) {
    const u16 x = LoadUnit(s);
    return kSwap ? Swap16(x) : x;
}

template <bool kSwap>
void Utf8To16Run(const u8* s, u32 n, u16* d, u32 room, u32& consumed, u32& written) {
    u32 i = 0, w = 0;
    while (i < n && w < room) {
        if (n - i >= 16 && room - w >= 16) {
            const int ascii = kernels::WidenAscii<kSwap>(s + i, d + w);
            i += ascii, w += ascii;
            if (ascii == 16) continue;
            // Well-formed two- and three-byte characters until the next ASCII byte.
            while (n - i >= 3 && w < room) {
                const u32 b0 = s[i], b1 = s[i + 1];
                if ((b0 & 0xE0) == 0xC0 && b0 >= 0xC2 && (b1 & 0xC0) == 0x80) {
                    PutUnit<kSwap>(d + w++, ((b0 & 0x1F) << 6) | (b1 & 0x3F));
                    i += 2;
                    continue;
                }
                const u32 b2 = s[i + 2];
                if ((b0 & 0xF0) == 0xE0 && (b1 & 0xC0) == 0x80 && (b2 & 0xC0) == 0x80 && (b0 > 0xE0 || b1 >= 0xA0)) {
                    PutUnit<kSwap>(d + w++, ((b0 & 0x0F) << 12) | ((b1 & 0x3F) << 6) | (b2 & 0x3F));
                    i += 3;
                    continue;
                }
                break;
            }
            if (i >= n || w >= room || s[i] < 0x80) continue;
        }
        const Decoded c = DecodeUtf8(s + i, n - i);
        if (c.length == 0) break;
        if (c.value <= 0xFFFF) {
            PutUnit<kSwap>(d + w++, c.value);
        } else {
            if (room - w < 2) break;
            const u32 v = c.value - 0x10000;
            PutUnit<kSwap>(d + w, 0xD800 | ((v >> 10) & 0x3FF));
            PutUnit<kSwap>(d + w + 1, 0xDC00 | (v & 0x3FF));
            w += 2;
        }
        i += c.length;
    }
    consumed = i, written = w;
}

template <bool kSwap>
void Utf16To8Run(const u16* s, u32 n, u8* d, u32 room, u32& consumed, u32& written) {
    u32 i = 0, w = 0;
    while (i < n && w < room) {
        if (n - i >= 16 && room - w >= 16) {
            const int ascii = kernels::NarrowAscii<kSwap>(s + i, d + w);
            i += ascii, w += ascii;
            if (ascii == 16) continue;
            // Two- and three-byte characters that are not surrogates.
            while (i < n) {
                const u32 u = GetUnit<kSwap>(s + i);
                if (u < 0x80 || (u >= 0xD800 && u <= 0xDFFF)) break;
                if (u < 0x800) {
                    if (room - w < 2) break;
                    d[w] = u8(0xC0 | (u >> 6)), d[w + 1] = u8(0x80 | (u & 0x3F));
                    w += 2;
                } else {
                    if (room - w < 3) break;
                    d[w] = u8(0xE0 | (u >> 12)), d[w + 1] = u8(0x80 | ((u >> 6) & 0x3F)), d[w + 2] = u8(0x80 | (u & 0x3F));
                    w += 3;
                }
                ++i;
            }
            if (i >= n || w >= room) break;
        }
        u32 u = GetUnit<kSwap>(s + i), used = 1;
        if (u >= 0xD800 && u <= 0xDBFF && n - i >= 2) {
            const u32 next = GetUnit<kSwap>(s + i + 1);
            if (next >= 0xDC00 && next <= 0xDFFF) u = 0x10000 + ((u - 0xD800) << 10) + (next - 0xDC00), used = 2;
        }
        u8 seq[4];
        const u32 len = EncodeUtf8(u, seq);
        if (room - w < len) break;
        for (u32 k = 0; k < len; ++k) d[w + k] = seq[k];
        w += len, i += used;
    }
    consumed = i, written = w;
}

}  // namespace

Status Utf8To16(const u8* src, int* pSrcLen, u16* dst, int* pDstLen, int bigEndian) {
    if (!src || !pSrcLen || !dst || !pDstLen) return kErrNull;
    u32 consumed = 0, written = 0;
    if (*pSrcLen != 0) {
        if (bigEndian) Utf8To16Run<true>(src, u32(*pSrcLen), dst, u32(*pDstLen), consumed, written);
        else Utf8To16Run<false>(src, u32(*pSrcLen), dst, u32(*pDstLen), consumed, written);
    }
    *pSrcLen = int(consumed), *pDstLen = int(written);
    return kOk;
}

Status Utf16To8(const u16* src, int* pSrcLen, u8* dst, int* pDstLen, int bigEndian) {
    if (!src || !pSrcLen || !dst || !pDstLen) return kErrNull;
    u32 consumed = 0, written = 0;
    if (*pSrcLen != 0) {
        if (bigEndian) Utf16To8Run<true>(src, u32(*pSrcLen), dst, u32(*pDstLen), consumed, written);
        else Utf16To8Run<false>(src, u32(*pSrcLen), dst, u32(*pDstLen), consumed, written);
    }
    *pSrcLen = int(consumed), *pDstLen = int(written);
    return kOk;
}

}  // namespace vkp::edit
