// Case conversion against the reference mappings on seeded random data, out
// of place and in place: every length up to 300 and a few large ones, source
// and destination flush against an inaccessible page, 16u at odd addresses;
// ASCII-only, mostly ASCII and mixed strings.
#include <gtest/gtest.h>

#include <vector>

#include "support/placements.h"
#include "support/random_text.h"
#include "support/search_api.h"
#include "support/text_reference.h"

namespace vkptest {
namespace {

template <class T>
struct Conversion {
    const char* name;
    vkpStatus (*out)(const T*, T*, int);
    vkpStatus (*inPlace)(T*, int);
    unsigned (*ref)(unsigned);
};

template <class T>
std::vector<Conversion<T>> Conversions() {
    using Api = SearchApi<T>;
    std::vector<Conversion<T>> c = {
        {"LowercaseLatin", Api::LowercaseLatin, Api::LowercaseLatinI, LatinLower},
        {"UppercaseLatin", Api::UppercaseLatin, Api::UppercaseLatinI, LatinUpper},
    };
    if constexpr (sizeof(T) == 2) {
        c.push_back({"Lowercase", vkpsLowercase_16u, vkpsLowercase_16u_I, TableLower});
        c.push_back({"Uppercase", vkpsUppercase_16u, vkpsUppercase_16u_I, TableUpper});
    }
    return c;
}

template <class T>
class CaseConversion : public ::testing::Test {};
using UnitTypes = ::testing::Types<vkp8u, vkp16u>;
TYPED_TEST_SUITE(CaseConversion, UnitTypes);

TYPED_TEST(CaseConversion, MatchesReference) {
    using T = TypeParam;
    Rng rng(4);
    ForEachPlacedLength<T>([&](const Placement& pl, int len) {
        GuardedBuffer srcBuf(len * sizeof(T), pl.guard, pl.slack), dstBuf(len * sizeof(T), pl.guard, pl.slack);
        for (double ascii : {1.0, 0.97, 0.3}) {
            const std::vector<T> s = MixedUnits<T>(rng, len, ascii);
            for (const Conversion<T>& c : Conversions<T>()) {
                std::vector<T> want(s);
                for (T& u : want) u = T(c.ref(u));
                const T* src = srcBuf.fill(s.data(), s.size());
                T* dst = dstBuf.as<T>();
                ASSERT_EQ(c.out(src, dst, len), VKP_OK);
                ASSERT_TRUE(std::equal(want.begin(), want.end(), dst)) << c.name << " len " << len;
                T* both = srcBuf.fill(s.data(), s.size());
                ASSERT_EQ(c.inPlace(both, len), VKP_OK);
                ASSERT_TRUE(std::equal(want.begin(), want.end(), both)) << c.name << " in place, len " << len;
            }
        }
    });
}

// Every 16-bit unit through the full mappings, against the case map.
TEST(CaseConversion, EveryUnitThroughTheCaseMap) {
    std::vector<vkp16u> all(65536), lower(65536), upper(65536);
    for (unsigned c = 0; c < 65536; ++c) all[c] = vkp16u(c);
    ASSERT_EQ(vkpsLowercase_16u(all.data(), lower.data(), 65536), VKP_OK);
    ASSERT_EQ(vkpsUppercase_16u(all.data(), upper.data(), 65536), VKP_OK);
    for (unsigned c = 0; c < 65536; ++c) {
        ASSERT_EQ(lower[c], TableLower(c)) << std::hex << c;
        ASSERT_EQ(upper[c], TableUpper(c)) << std::hex << c;
    }
}

}  // namespace
}  // namespace vkptest
