// Comparison and equality against the reference loops on seeded random pairs:
// the second string is the first with some units case-flipped and, mostly,
// one unit changed; every length up to 300 and a few large ones, inputs flush
// against an inaccessible page, 16u at odd addresses.
#include <gtest/gtest.h>

#include <vector>

#include "support/placements.h"
#include "support/random_text.h"
#include "support/search_api.h"
#include "support/text_reference.h"

namespace vkptest {
namespace {

template <class T>
class Compare : public ::testing::Test {};
using UnitTypes = ::testing::Types<vkp8u, vkp16u>;
TYPED_TEST_SUITE(Compare, UnitTypes);

template <class T>
std::vector<T> CaseFlipped(Rng& rng, std::vector<T> s, double share) {
    std::uniform_real_distribution<double> coin(0.0, 1.0);
    for (T& u : s) {
        if (coin(rng) >= share) continue;
        const bool lower = coin(rng) < 0.5;
        u = T(sizeof(T) == 1 ? (lower ? LatinLower(u) : LatinUpper(u)) : (lower ? TableLower(u) : TableUpper(u)));
    }
    return s;
}

TYPED_TEST(Compare, MatchesReference) {
    using T = TypeParam;
    using Api = SearchApi<T>;
    Rng rng(1123);
    ForEachPlacedLength<T>([&](const Placement& pl, int len) {
        GuardedBuffer aBuf(len * sizeof(T), pl.guard, pl.slack), bBuf(len * sizeof(T), pl.guard, pl.slack);
        for (double ascii : {1.0, 0.97, 0.3}) {
            const std::vector<T> a = MixedUnits<T>(rng, len, ascii);
            std::vector<T> b = CaseFlipped(rng, a, RandomInt(rng, 0, 2) ? 0.3 : 0.0);
            if (len && RandomInt(rng, 0, 9) < 7) b[RandomInt(rng, 0, len - 1)] = MixedUnits<T>(rng, 1, ascii)[0];
            const T* pa = aBuf.fill(a.data(), a.size());
            const T* pb = bBuf.fill(b.data(), b.size());
            int cmp = -1, latin = -1, eq = -1;
            ASSERT_EQ(Api::Compare(pa, pb, len, &cmp), VKP_OK);
            ASSERT_EQ(Api::CompareIgnoreCaseLatin(pa, pb, len, &latin), VKP_OK);
            ASSERT_EQ(Api::Equal(pa, pb, len, &eq), VKP_OK);
            ASSERT_EQ(cmp, RefCompare(a, b, SameUnit)) << "len " << len;
            ASSERT_EQ(latin, RefCompare(a, b, LatinLower)) << "len " << len;
            ASSERT_EQ(eq, int(a == b)) << "len " << len;
            if constexpr (sizeof(T) == 2) {
                int folded = -1;
                ASSERT_EQ(vkpsCompareIgnoreCase_16u(pa, pb, len, &folded), VKP_OK);
                ASSERT_EQ(folded, RefCompare(a, b, TableLower)) << "len " << len;
            }
        }
    });
}

}  // namespace
}  // namespace vkptest
