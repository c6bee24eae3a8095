// UTF-8 <-> UTF-16 conversion against the per-character rules (the model in
// support/edit_reference.h) on seeded random input of every kind, every
// length 0 to 300 and a few large ones, with full and short destinations,
// both byte orders, sources flush against an inaccessible page and
// destinations guarded by a page and canaries.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "support/edit_reference.h"
#include "support/guarded_dest.h"
#include "support/utf_samples.h"
#include "vkpch.h"

namespace vkptest {
namespace {

using Guard = GuardedBuffer::Guard;

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
                    ASSERT_EQ(vkpsConvertUTF_16u8u(src.as<vkp16u>(), &srcLen, dst.data(), &dstLen, be), 0);
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

// The rules' worked examples and the stopping cases, as (input, room,
// expected output, expected consumed).
// A worked example: input, room, expected output and units consumed.
template <class In, class Out>
struct Case {
    std::vector<In> in;
    int room;
    std::vector<Out> out;
    int consumed;
};

template <class In, class Out, class Fn>
void CheckCases(const std::vector<Case<In, Out>>& cases, Fn convert) {
    for (const auto& c : cases) {
        std::vector<Out> out(size_t(c.room) + 1, Out(0xEEEE));
        int sl = int(c.in.size()), dl = c.room;
        ASSERT_EQ(convert(c.in.data(), &sl, out.data(), &dl, 0), 0);
        EXPECT_EQ(sl, c.consumed) << int(c.in[0]);
        EXPECT_EQ(std::vector<Out>(out.begin(), out.begin() + dl), c.out) << int(c.in[0]);
    }
}

// The rules' worked examples and the stopping cases.
TEST(Utf, DocumentedCases) {
    CheckCases<vkp8u, vkp16u>(
        {
            {{0xC0, 0x80}, 8, {0xC0, 0x80}, 2},
            {{0xE2, 0x28, 0xA1}, 8, {0xE2, 0x28, 0xA1}, 3},
            {{0xED, 0xA0, 0x80}, 8, {0xD800}, 3},
            {{0xFE, 0xFF, 0x41}, 8, {0xFE, 0xFF, 0x41}, 3},
            {{0xF0, 0x9F, 0x98, 0x80}, 8, {0xD83D, 0xDE00}, 4},
            {{0xF0, 0x9F, 0x98, 0x80}, 1, {}, 0},                                    // pair does not fit
            {{0x41, 0xE2, 0x82}, 8, {0x41}, 1},                                      // cut off by the end
            {{0x41, 0xE2, 0x41}, 8, {0x41, 0xE2, 0x41}, 3},                          // not cut: ill-formed
            {{0xF8, 0x88, 0x80, 0x80, 0x80}, 8, {0xD800 | 0x3C0, 0xDC00}, 5},        // 5 bytes, 0x200000 folded
            {{0xFC, 0x84, 0x80, 0x80, 0x80, 0x80}, 8, {0xD800 | 0x3C0, 0xDC00}, 6},  // 6 bytes, 0x4000000
            {{0xF4, 0x90, 0x80, 0x80}, 8, {0xD800, 0xDC00}, 4},                      // 0x110000 folded
            {{0x41, 0x42}, 0, {}, 0},
        },
        vkpsConvertUTF_8u16u);
    CheckCases<vkp16u, vkp8u>(
        {
            {{0xD800, 0x0041}, 8, {0xED, 0xA0, 0x80, 0x41}, 2},
            {{0xDC00}, 8, {0xED, 0xB0, 0x80}, 1},
            {{0xD83D, 0xDE00}, 8, {0xF0, 0x9F, 0x98, 0x80}, 2},
            {{0xD83D}, 8, {0xED, 0xA0, 0xBD}, 1},
            {{0x20AC}, 2, {}, 0},
            {{0x41, 0x20AC}, 3, {0x41}, 1},
        },
        vkpsConvertUTF_16u8u);
    // Big-endian: 'A' is 00 41 in memory; a swapped pair is read swapped.
    vkp8u a = 0x41, bytes[2];
    int sl = 1, dl = 1;
    vkp16u unit;
    ASSERT_EQ(vkpsConvertUTF_8u16u(&a, &sl, &unit, &dl, 1), 0);
    std::memcpy(bytes, &unit, 2);
    EXPECT_EQ(bytes[0], 0x00);
    EXPECT_EQ(bytes[1], 0x41);
    const vkp16u pairBE[2] = {0x3DD8, 0x00DE};
    vkp8u out[4];
    sl = 2, dl = 4;
    ASSERT_EQ(vkpsConvertUTF_16u8u(pairBE, &sl, out, &dl, -1), 0);
    EXPECT_EQ(std::vector<vkp8u>(out, out + dl), (std::vector<vkp8u>{0xF0, 0x9F, 0x98, 0x80}));
    // Empty source: both counts 0.
    sl = 0, dl = 5;
    EXPECT_EQ(vkpsConvertUTF_8u16u(&a, &sl, &unit, &dl, 0), 0);
    EXPECT_EQ(dl, 0);
}

}  // namespace
}  // namespace vkptest
