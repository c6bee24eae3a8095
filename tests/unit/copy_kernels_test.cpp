// The copy, move and zero kernels: every length 0 to 300 and larger ones at
// every start alignment of source and destination, each flush against an
// inaccessible page; moves at every overlap distance in both directions;
// copies and fills large enough for the streaming stores.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "kernels/copy.h"
#include "support/guarded_dest.h"
#include "support/placements.h"
#include "support/random_text.h"

namespace vkptest {
namespace {

using Guard = GuardedBuffer::Guard;
using vkp::kernels::CopyBytes;
using vkp::kernels::MoveBytes;
using vkp::kernels::ZeroBytes;

TEST(CopyKernels, CopyAndZeroAtEveryAlignment) {
    Rng rng(201);
    for (const int len : EditLengths()) {
        const size_t n = size_t(len);
        const std::vector<vkp8u> data = RandomUnits<vkp8u>(rng, n, 256, 0);
        for (size_t align = 0; align < 32; ++align) {
            const Guard g = align % 2 ? Guard::Before : Guard::After;
            GuardedBuffer src(n, g, align);
            src.fill(data.data(), n);
            GuardedDest<vkp8u> dst(n, g == Guard::After ? Guard::Before : Guard::After, (align * 7) % 32);
            CopyBytes(dst.data(), src.data(), n);
            ASSERT_EQ(dst.head(n), data) << n << " " << align;
            ASSERT_TRUE(dst.UnwrittenFrom(n));
            ZeroBytes(dst.data(), n);
            ASSERT_EQ(dst.head(n), std::vector<vkp8u>(n, 0)) << n << " " << align;
            ASSERT_TRUE(dst.UnwrittenFrom(n));
        }
    }
}

// A block moved within a buffer by every distance up (source below the
// destination) and down, from two source alignments, against a copy made
// through a separate buffer.
TEST(CopyKernels, MoveAtEveryOverlap) {
    Rng rng(202);
    for (size_t n : {size_t(1), size_t(15), size_t(16), size_t(31), size_t(32), size_t(33), size_t(63), size_t(64),
                     size_t(65), size_t(127), size_t(128), size_t(129), size_t(200), size_t(256), size_t(257), size_t(300),
                     size_t(1000), size_t(2049), size_t(4099)}) {
        const size_t span = 3 * n + 64;
        const std::vector<vkp8u> init = RandomUnits<vkp8u>(rng, span, 256, 0);
        for (size_t from : {n + 32, n + 39}) {
            for (long dist = -long(n) - 24; dist <= long(n) + 24; ++dist) {
                const size_t to = size_t(long(from) + dist);
                std::vector<vkp8u> buf = init, want = init;
                std::copy(init.begin() + long(from), init.begin() + long(from + n), want.begin() + long(to));
                MoveBytes(buf.data() + to, buf.data() + from, n);
                ASSERT_EQ(buf, want) << "n " << n << " from " << from << " distance " << dist;
            }
        }
    }
}

// Sizes above half the largest cache take the streaming path.
TEST(CopyKernels, LargeCopiesAndFills) {
    const size_t cache = vkp::kernels::LargestCacheSize();
    EXPECT_TRUE(cache == 0 || cache >= 512 * 1024) << cache;
    RecordProperty("largest_cache", std::to_string(cache));
    for (size_t n : {size_t(1) << 20, (size_t(1) << 20) + 4093, cache / 2 + 4099, cache + 4099}) {
        if (n < (size_t(1) << 20)) continue;
        std::vector<vkp8u> src(n + 32), dst(n + 32, 0xEE);
        Rng rng{unsigned(n)};
        for (auto& b : src) b = vkp8u(rng());
        CopyBytes(dst.data() + 3, src.data() + 5, n);
        ASSERT_EQ(std::memcmp(dst.data() + 3, src.data() + 5, n), 0) << n;
        ASSERT_EQ(dst[2], 0xEE);
        ASSERT_EQ(dst[n + 3], 0xEE);
        ZeroBytes(dst.data() + 1, n);
        ASSERT_EQ(dst[0], 0xEE);
        ASSERT_EQ(dst[n + 1], src[n + 3]);  // the copy, not the fill
        for (size_t i = 1; i <= n; i += 4093) ASSERT_EQ(dst[i], 0) << i;
        ASSERT_EQ(std::count(dst.begin() + 1, dst.begin() + 1 + n, vkp8u(0)), std::ptrdiff_t(n));
    }
}

TEST(CopyKernels, WrappersCheckTheirArguments) {
    vkp16u a[4] = {1, 2, 3, 4}, b[4] = {};
    EXPECT_EQ(vkp::kernels::CopyFwd<vkp16u>(nullptr, b, 4), VKP_ERR_NULL);
    EXPECT_EQ(vkp::kernels::Move<vkp16u>(a, nullptr, 4), VKP_ERR_NULL);
    EXPECT_EQ(vkp::kernels::CopyFwd<vkp16u>(a, b, 0), VKP_ERR_SIZE);
    EXPECT_EQ(vkp::kernels::Move<vkp16u>(a, b, -1), VKP_ERR_SIZE);
    EXPECT_EQ(vkp::kernels::Zero_8u(nullptr, 1), VKP_ERR_NULL);
    EXPECT_EQ(vkp::kernels::Zero_8u(reinterpret_cast<vkp8u*>(a), 0), VKP_ERR_SIZE);
    EXPECT_EQ(b[0], 0);
    EXPECT_EQ(a[0], 1);
    EXPECT_EQ(vkp::kernels::CopyFwd<vkp16u>(a, b, 3), 0);
    EXPECT_EQ(vkp::kernels::Move<vkp16u>(a, a + 1, 3), 0);
    EXPECT_EQ(vkp::kernels::Zero_8u(reinterpret_cast<vkp8u*>(a), 2), 0);
    EXPECT_EQ(std::vector<vkp16u>(a, a + 4), (std::vector<vkp16u>{0, 1, 2, 3}));
    EXPECT_EQ(std::vector<vkp16u>(b, b + 4), (std::vector<vkp16u>{1, 2, 3, 0}));
}

}  // namespace
}  // namespace vkptest
