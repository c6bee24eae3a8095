// The converters: blocks of ASCII and well-formed two- and three-byte
// characters go through the vector block routines; everything else (and the
// last units, where a whole block does not fit) through the per-character
// rules. The output is identical to the rules applied one character at a
// time.
#include "edit/utf_convert.h"

#include "edit/utf_rules.h"
#include "kernels/active.h"
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

// After a block of ASCII the text likely goes on in ASCII: the run kernels
// take it whole vectors at a time, up to the source's and the room's end
// (counts above the largest int are taken in parts by the loop).
VKP_INLINE int RunLimit(u32 n, u32 room) {
    const u32 m = n < room ? n : room;
    return int(m < 0x7FFFFFFFu ? m : 0x7FFFFFFFu);
}

template <bool kSwap>
VKP_INLINE u32 WidenAsciiRun(const u8* s, u16* d, u32 n, u32 room) {
    const int limit = RunLimit(n, room);
    return u32(kSwap ? kernels::active::WidenAsciiSwapped(s, d, limit) : kernels::active::WidenAscii(s, d, limit));
}

template <bool kSwap>
VKP_INLINE u32 NarrowAsciiRun(const u16* s, u8* d, u32 n, u32 room) {
    const int limit = RunLimit(n, room);
    return u32(kSwap ? kernels::active::NarrowAsciiSwapped(s, d, limit) : kernels::active::NarrowAscii(s, d, limit));
}

struct FromUtf8 {
    template <bool kSwap>
    static void Run(const u8* s, u32 n, u16* d, u32 room, u32& consumed, u32& written) {
        u32 i = 0, w = 0;
        while (i < n && w < room) {
            if (n - i >= 16 && room - w >= 16) {
                int units;
                if (const int used = kernels::DecodeUtf8Block<kSwap>(s + i, d + w, units)) {
                    i += u32(used), w += u32(units);
                    if (units == 16 && used == 16) {  // all ASCII
                        const u32 k = WidenAsciiRun<kSwap>(s + i, d + w, n - i, room - w);
                        i += k, w += k;
                    }
                    continue;
                }
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
};

struct FromUtf16 {
    template <bool kSwap>
    static void Run(const u16* s, u32 n, u8* d, u32 room, u32& consumed, u32& written) {
        u32 i = 0, w = 0;
        while (i < n && w < room) {
            if (n - i >= 16 && room - w >= 16 && kernels::NarrowAscii16<kSwap>(s + i, d + w)) {
                i += 16, w += 16;
                const u32 k = NarrowAsciiRun<kSwap>(s + i, d + w, n - i, room - w);
                i += k, w += k;
                continue;
            }
            if (n - i >= 8 && room - w >= 32) {
                int bytes;
                if (kernels::EncodeUtf8Block<kSwap>(s + i, d + w, bytes)) {
                    i += 8, w += u32(bytes);
                    continue;
                }
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
};

// The common frame: checks, the empty source, lengths read as unsigned.
template <class Conv, class In, class Out>
Status Convert(const In* src, int* pSrcLen, Out* dst, int* pDstLen, int bigEndian) {
    if (!src || !pSrcLen || !dst || !pDstLen) return kErrNull;
    u32 consumed = 0, written = 0;
    if (*pSrcLen != 0) {
        if (bigEndian) Conv::template Run<true>(src, u32(*pSrcLen), dst, u32(*pDstLen), consumed, written);
        else Conv::template Run<false>(src, u32(*pSrcLen), dst, u32(*pDstLen), consumed, written);
    }
    *pSrcLen = int(consumed), *pDstLen = int(written);
    return kOk;
}

}  // namespace

Status Utf8To16(const u8* src, int* pSrcLen, u16* dst, int* pDstLen, int bigEndian) {
    return Convert<FromUtf8>(src, pSrcLen, dst, pDstLen, bigEndian);
}

Status Utf16To8(const u16* src, int* pSrcLen, u8* dst, int* pDstLen, int bigEndian) {
    return Convert<FromUtf16>(src, pSrcLen, dst, pDstLen, bigEndian);
}

}  // namespace vkp::edit
