// The three hashes against their loops on seeded random data (zero units
// included, every unit value): every length up to 300 and a few large ones,
// inputs flush against an inaccessible page, 16u at odd addresses.
#include <gtest/gtest.h>

#include <vector>

#include "support/placements.h"
#include "support/random_text.h"
#include "support/search_api.h"
#include "support/text_reference.h"

namespace vkptest {
namespace {

template <class T>
class Hash : public ::testing::Test {};
using UnitTypes = ::testing::Types<vkp8u, vkp16u>;
TYPED_TEST_SUITE(Hash, UnitTypes);

TYPED_TEST(Hash, MatchesReference) {
    using T = TypeParam;
    using Api = SearchApi<T>;
    Rng rng(31);
    ForEachPlacedLength<T>([&](const Placement& pl, int len) {
        GuardedBuffer srcBuf(len * sizeof(T), pl.guard, pl.slack);
        // Any unit value; mostly non-zero, so that the seeded hash runs on.
        std::vector<T> s = RandomUnits<T>(rng, len, (1u << (8 * sizeof(T))) - 1, 1);
        for (int z = RandomInt(rng, 0, 2); z > 0 && len; --z) s[RandomInt(rng, 0, len - 1)] = 0;
        const T* src = srcBuf.fill(s.data(), s.size());
        vkp32u shift = 1, mulAdd = 1, mulXor = 1;
        ASSERT_EQ(Api::Hash(src, len, &shift), VKP_OK);
        ASSERT_EQ(Api::HashSJ2(src, len, &mulAdd), VKP_OK);
        ASSERT_EQ(Api::HashMSCS(src, len, &mulXor), VKP_OK);
        ASSERT_EQ(shift, RefHashShiftXor(s)) << "len " << len;
        ASSERT_EQ(mulAdd, RefHashMulAdd(s)) << "len " << len;
        ASSERT_EQ(mulXor, RefHashMulXor(s)) << "len " << len;
    });
}

}  // namespace
}  // namespace vkptest
