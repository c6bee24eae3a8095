// Character-set search against the reference loop on seeded random data:
// every length up to 300 and a few large ones, set sizes on both sides of
// every strategy switch (with repeated members and members of 0x80 / 0x8000
// and above), inputs flush against an inaccessible page, 16u at odd addresses.
#include <gtest/gtest.h>

#include <vector>

#include "support/placements.h"
#include "support/random_text.h"
#include "support/search_api.h"
#include "support/text_reference.h"

namespace vkptest {
namespace {

template <class T>
class SetSearch : public ::testing::Test {};
using UnitTypes = ::testing::Types<vkp8u, vkp16u>;
TYPED_TEST_SUITE(SetSearch, UnitTypes);

// Units around the sign boundary: members from 128 values, the other units
// from 256 (so that some are never members).
template <class T>
T Pick(Rng& rng, int spread) {
    const unsigned middle = sizeof(T) == 1 ? 0x80 : 0x8000;
    return T(middle - spread / 2 + unsigned(RandomInt(rng, 0, spread - 1)));
}

TYPED_TEST(SetSearch, MatchesReference) {
    using T = TypeParam;
    using Api = SearchApi<T>;
    Rng rng(20261123);
    ForEachPlacedLength<T>([&](const Placement& pl, int len) {
        GuardedBuffer srcBuf(len * sizeof(T), pl.guard, pl.slack);
        for (int n : {0, 1, 2, 3, 8, 9, 10, 16, 17, 40, 300}) {
            std::vector<T> set(n);
            for (T& m : set) m = Pick<T>(rng, 128);
            // About two members per string, none in some strings.
            const int hits = RandomInt(rng, 0, 3);
            std::vector<T> s(len);
            for (T& u : s) {
                do u = Pick<T>(rng, 256);
                while (IsMember(u, set));
            }
            for (int h = 0; h < hits && len && n; ++h) s[RandomInt(rng, 0, len - 1)] = set[RandomInt(rng, 0, n - 1)];
            GuardedBuffer setBuf(n * sizeof(T), pl.guard, pl.slack);
            const T* src = srcBuf.fill(s.data(), s.size());
            const T* pset = setBuf.fill(set.data(), set.size());
            int fwd = -2, rev = -2;
            ASSERT_EQ(Api::FindCAny(src, len, pset, n, &fwd), VKP_OK);
            ASSERT_EQ(Api::FindRevCAny(src, len, pset, n, &rev), VKP_OK);
            ASSERT_EQ(fwd, RefFindAny(s, set, false)) << "len " << len << " set " << n;
            ASSERT_EQ(rev, RefFindAny(s, set, true)) << "len " << len << " set " << n;
        }
    });
}

}  // namespace
}  // namespace vkptest
