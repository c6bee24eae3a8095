// UTF-8 <-> UTF-16 conversion against a model of the per-character rules on
// seeded random input of every kind (ill-formed too), every
// length 0 to 300 and a few large ones, with full and short destinations,
// both byte orders, sources flush against an inaccessible page and
// destinations guarded by a page and canaries.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "support/guarded_dest.h"
#include "support/random_text.h"
#include "vkpch.h"

namespace vkptest {
namespace {

using Guard = GuardedBuffer::Guard;

// Appends the UTF-8 form of v in `len` bytes (overlong when longer than
// needed; up to six bytes).
inline void PutUtf8(std::vector<uint8_t>& out, uint32_t v, int len) {
    if (len == 1) return out.push_back(uint8_t(v & 0x7F));
    const uint8_t lead = uint8_t(0xFF00 >> len);
    out.push_back(uint8_t(lead | (v >> (6 * (len - 1)))));
    for (int k = len - 2; k >= 0; --k) out.push_back(uint8_t(0x80 | ((v >> (6 * k)) & 0x3F)));
}

// At least n bytes (then cut to n): ASCII runs, two-, three- and four-byte
// characters, surrogates, five- and six-byte forms, overlong forms, stray
// bytes. With wellFormed, only ASCII and the shortest forms of scalar values.
inline std::vector<uint8_t> RandomUtf8(Rng& rng, size_t n, bool wellFormed = false) {
    std::vector<uint8_t> out;
    while (out.size() < n) {
        switch (RandomInt(rng, 0, wellFormed ? 3 : 9)) {
            case 0:
                // ASCII runs, some across several 32-byte blocks.
                for (int k = RandomInt(rng, 1, RandomInt(rng, 0, 3) ? 24 : 130); k > 0; --k)
                    out.push_back(uint8_t(RandomInt(rng, 0x20, 0x7E)));
                break;
            case 1: PutUtf8(out, uint32_t(RandomInt(rng, 0x80, 0x7FF)), 2); break;
            case 2: {
                uint32_t v = uint32_t(RandomInt(rng, 0x800, 0xFFFF));
                if (wellFormed && v >= 0xD800 && v < 0xE000) v = 0x4E00;
                PutUtf8(out, v, 3);
                break;
            }
            case 3: PutUtf8(out, uint32_t(RandomInt(rng, 0x10000, 0x10FFFF)), 4); break;
            case 4: PutUtf8(out, uint32_t(RandomInt(rng, 0xD800, 0xDFFF)), 3); break;
            case 5: PutUtf8(out, uint32_t(RandomInt(rng, 0x110000, 0x1FFFFF)), 4); break;
            case 6: PutUtf8(out, uint32_t(RandomInt(rng, 0x200000, 0x7FFFFFFF)), RandomInt(rng, 5, 6)); break;
            case 7: PutUtf8(out, uint32_t(RandomInt(rng, 0, 0xFFFF)), RandomInt(rng, 2, 6)); break;  // often overlong
            case 8: out.push_back(uint8_t(RandomInt(rng, 0x80, 0xFF))); break;
            default: {  // a sequence with a byte missing or replaced
                std::vector<uint8_t> seq;
                PutUtf8(seq, uint32_t(RandomInt(rng, 0x80, 0x10FFFF)), RandomInt(rng, 2, 4));
                seq[size_t(RandomInt(rng, 1, int(seq.size()) - 1))] = uint8_t(RandomInt(rng, 0, 1) ? 0x41 : 0xC3);
                if (RandomInt(rng, 0, 1)) seq.pop_back();
                out.insert(out.end(), seq.begin(), seq.end());
            }
        }
    }
    out.resize(n);
    return out;
}

// n units: ASCII runs, two- and three-byte BMP values, surrogate pairs and
// lone surrogates of both kinds.
inline std::vector<uint16_t> RandomUtf16(Rng& rng, size_t n) {
    std::vector<uint16_t> out;
    while (out.size() < n) {
        switch (RandomInt(rng, 0, 5)) {
            case 0:
                for (int k = RandomInt(rng, 1, RandomInt(rng, 0, 3) ? 24 : 130); k > 0; --k)
                    out.push_back(uint16_t(RandomInt(rng, 0x20, 0x7E)));
                break;
            case 1: out.push_back(uint16_t(RandomInt(rng, 0x80, 0x7FF))); break;
            case 2: out.push_back(uint16_t(RandomInt(rng, 0x800, 0xFFFF))); break;
            case 3:
                out.push_back(uint16_t(RandomInt(rng, 0xD800, 0xDBFF)));
                out.push_back(uint16_t(RandomInt(rng, 0xDC00, 0xDFFF)));
                break;
            case 4: out.push_back(uint16_t(RandomInt(rng, 0xD800, 0xDFFF))); break;
            default:
                for (int k = RandomInt(rng, 1, 12); k > 0; --k) out.push_back(uint16_t(RandomInt(rng, 0x391, 0x3C9)));
        }
    }
    out.resize(n);
    return out;
}

struct Converted {
    size_t consumed = 0;
    std::vector<uint16_t> units;  // 16-bit results in machine order before any swap
    std::vector<uint8_t> bytes;
};

inline uint16_t Swapped(uint16_t u, bool swap) { return swap ? uint16_t((u << 8) | (u >> 8)) : u; }

// UTF-8 to UTF-16 by the per-character rules; stops before a character that
// needs more room than is left or is cut off by the end of the source.
inline Converted RefUtf8To16(const std::vector<uint8_t>& s, size_t room, bool swap) {
    Converted r;
    static const uint32_t kMask[7] = {0, 0, 0x1F, 0x0F, 0x07, 0x03, 0x01};
    static const uint32_t kLimit[6] = {0x7F, 0x7FF, 0xFFFF, 0x1FFFFF, 0x3FFFFFF, 0x7FFFFFFF};
    size_t i = 0;
    while (i < s.size() && r.units.size() < room) {
        const uint32_t b = s[i];
        uint32_t v = b;
        size_t len = 1;
        int ones = 0;
        while (ones < 8 && (b & (0x80u >> ones))) ++ones;
        if (ones >= 2 && ones <= 6) {
            uint32_t x = b & kMask[ones];
            bool good = true, cut = false;
            for (int k = 1; k < ones; ++k) {
                if (i + k >= s.size()) {
                    cut = true;
                    break;
                }
                if ((s[i + k] & 0xC0) != 0x80) {
                    good = false;
                    break;
                }
                x = (x << 6) | (s[i + k] & 0x3F);
            }
            if (cut) break;
            int shortest = 1;
            while (x > kLimit[shortest - 1]) ++shortest;
            if (good && shortest == ones) v = x, len = size_t(ones);
        }
        if (v <= 0xFFFF) {
            r.units.push_back(Swapped(uint16_t(v), swap));
        } else {
            if (room - r.units.size() < 2) break;
            r.units.push_back(Swapped(uint16_t(0xD800 | (((v - 0x10000) >> 10) & 0x3FF)), swap));
            r.units.push_back(Swapped(uint16_t(0xDC00 | ((v - 0x10000) & 0x3FF)), swap));
        }
        i += len;
    }
    r.consumed = i;
    return r;
}

inline Converted RefUtf16To8(const std::vector<uint16_t>& s, size_t room, bool swap) {
    Converted r;
    size_t i = 0;
    while (i < s.size() && r.bytes.size() < room) {
        uint32_t u = Swapped(s[i], swap);
        size_t used = 1;
        if (u >= 0xD800 && u < 0xDC00 && i + 1 < s.size()) {
            const uint32_t next = Swapped(s[i + 1], swap);
            if (next >= 0xDC00 && next < 0xE000) u = 0x10000 + ((u - 0xD800) << 10) + (next - 0xDC00), used = 2;
        }
        std::vector<uint8_t> seq;
        if (u < 0x80) seq = {uint8_t(u)};
        else if (u < 0x800) seq = {uint8_t(0xC0 | (u >> 6)), uint8_t(0x80 | (u & 0x3F))};
        else if (u < 0x10000) seq = {uint8_t(0xE0 | (u >> 12)), uint8_t(0x80 | ((u >> 6) & 0x3F)), uint8_t(0x80 | (u & 0x3F))};
        else
            seq = {uint8_t(0xF0 | (u >> 18)), uint8_t(0x80 | ((u >> 12) & 0x3F)), uint8_t(0x80 | ((u >> 6) & 0x3F)),
                   uint8_t(0x80 | (u & 0x3F))};
        if (room - r.bytes.size() < seq.size()) break;
        r.bytes.insert(r.bytes.end(), seq.begin(), seq.end());
        i += used;
    }
    r.consumed = i;
    return r;
}

// Capacities: enough for everything, exactly the output, and a random cut.
std::vector<size_t> Rooms(Rng& rng, size_t full, size_t exact) {
    return {full, exact, size_t(RandomInt(rng, 0, int(exact)))};
}

TEST(Utf, Utf8To16MatchesRules) {
    Rng rng(301);
    for (const int len : EditLengths()) {
        const size_t n = size_t(len);
        const std::vector<uint8_t> s = RandomUtf8(rng, n, n % 3 == 0);
        for (Guard g : {Guard::After, Guard::Before}) {
            GuardedBuffer src(n, g);
            src.fill(s.data(), n);
            for (int be = 0; be < 2; ++be) {
                const size_t exact = RefUtf8To16(s, n + 1, be).units.size();
                for (size_t room : Rooms(rng, n + 1, exact)) {
                    const Converted want = RefUtf8To16(s, room, be);
                    GuardedDest<vkp16u> dst(room, g == Guard::After ? Guard::Before : Guard::After, n % 2);
                    int srcLen = int(n), dstLen = int(room);
                    ASSERT_EQ(vkpsConvertUTF_8u16u(src.as<vkp8u>(), &srcLen, dst.data(), &dstLen, be ? 7 : 0), 0);
                    ASSERT_EQ(size_t(srcLen), want.consumed) << n << " room " << room;
                    ASSERT_EQ(dst.head(size_t(dstLen)), want.units) << n << " room " << room;
                    ASSERT_LE(size_t(dstLen), room);
                    ASSERT_TRUE(dst.UnwrittenFrom(room));
                }
            }
        }
    }
}

TEST(Utf, Utf16To8MatchesRules) {
    Rng rng(302);
    for (const int len : EditLengths()) {
        const size_t n = size_t(len);
        const std::vector<uint16_t> s = RandomUtf16(rng, n);
        for (Placement pl : Placements<vkp16u>()) {
            GuardedBuffer src(n * 2, pl.guard, pl.slack);
            src.fill(s.data(), n);
            for (int be = 0; be < 2; ++be) {
                const size_t exact = RefUtf16To8(s, 3 * n + 1, be).bytes.size();
                for (size_t room : Rooms(rng, 3 * n + 1, exact)) {
                    const Converted want = RefUtf16To8(s, room, be);
                    GuardedDest<vkp8u> dst(room, pl.guard == Guard::After ? Guard::Before : Guard::After);
                    int srcLen = int(n), dstLen = int(room);
                    ASSERT_EQ(vkpsConvertUTF_16u8u(src.as<vkp16u>(), &srcLen, dst.data(), &dstLen, be ? -1 : 0), 0);
                    ASSERT_EQ(size_t(srcLen), want.consumed) << n << " room " << room;
                    ASSERT_EQ(dst.head(size_t(dstLen)), want.bytes) << n << " room " << room;
                    ASSERT_TRUE(dst.UnwrittenFrom(room));
                }
            }
        }
    }
}

// Well-formed text survives UTF-8 -> UTF-16 -> UTF-8 unchanged, in both byte
// orders.
TEST(Utf, RoundTripIsIdentity) {
    Rng rng(303);
    for (size_t n : {size_t(0), size_t(1), size_t(17), size_t(300), size_t(5000), size_t(100000)}) {
        std::vector<uint8_t> s = RandomUtf8(rng, n + 8, true);
        while (!s.empty() && RefUtf8To16(s, s.size() + 1, false).consumed != s.size()) s.pop_back();
        s.reserve(1);
        for (int be = 0; be < 2; ++be) {
            std::vector<vkp16u> mid(s.size() + 1);
            std::vector<vkp8u> back(s.size() + 1);
            int sl = int(s.size()), ml = int(mid.size());
            ASSERT_EQ(vkpsConvertUTF_8u16u(s.data(), &sl, mid.data(), &ml, be), 0);
            ASSERT_EQ(size_t(sl), s.size());
            int bl = int(back.size());
            ASSERT_EQ(vkpsConvertUTF_16u8u(mid.data(), &ml, back.data(), &bl, be), 0);
            ASSERT_EQ(std::vector<uint8_t>(back.begin(), back.begin() + bl), s);
        }
    }
}

}  // namespace
}  // namespace vkptest
