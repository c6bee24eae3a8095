// Substring and character search against the reference definitions, on
// seeded random data, every length up to 300 and a few large ones, with each
// input flush against an inaccessible page (before or after it) and, for 16u,
// at odd addresses. CTest runs it with the 16-byte and the 32-byte kernels.
#include <gtest/gtest.h>

#include <vector>

#include "support/guarded_buffer.h"
#include "support/placements.h"
#include "support/random_text.h"
#include "support/search_api.h"
#include "support/search_reference.h"

namespace vkptest {
namespace {

// Alphabets: (size, first unit). Small ones make many partial matches; the
// high 16-bit bases catch sign and byte-order slips.
template <class T>
std::vector<std::pair<unsigned, unsigned>> Alphabets() {
    if (sizeof(T) == 1) return {{2, 'a'}, {4, 'a'}, {26, 'a'}, {3, 0xFD}};
    return {{2, 'a'}, {4, 0x6161}, {26, 'a'}, {3, 0xFFFD}};
}

template <class T>
class Search : public ::testing::Test {};
using UnitTypes = ::testing::Types<vkp8u, vkp16u>;
TYPED_TEST_SUITE(Search, UnitTypes);

TYPED_TEST(Search, SubstringMatchesReference) {
    using T = TypeParam;
    using Api = SearchApi<T>;
    Rng rng(20261121);
    ForEachPlacedLength<T>([&](const Placement& pl, int len) {
        GuardedBuffer srcBuf(len * sizeof(T), pl.guard, pl.slack);
        for (auto [alphabet, base] : Alphabets<T>()) {
            const std::vector<T> s = RandomUnits<T>(rng, len, alphabet, base);
            const T* src = srcBuf.fill(s.data(), s.size());
            for (int m : {0, 1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 33, len - 1, len, len + 1}) {
                if (m < 0) continue;
                std::vector<T> f;
                if (m <= len && len > 0 && rng() % 2) {
                    const int at = RandomInt(rng, 0, len - m);
                    f.assign(s.begin() + at, s.begin() + at + m);
                } else {
                    f = RandomUnits<T>(rng, m, alphabet, base);
                }
                GuardedBuffer findBuf(m * sizeof(T), pl.guard, pl.slack);
                const T* pf = findBuf.fill(f.data(), f.size());
                int fwd = -2, rev = -2;
                ASSERT_EQ(Api::Find(src, len, pf, m, &fwd), VKP_OK);
                ASSERT_EQ(Api::FindRev(src, len, pf, m, &rev), VKP_OK);
                ASSERT_EQ(fwd, RefFind(s, f)) << "len " << len << " m " << m << " alphabet " << alphabet;
                ASSERT_EQ(rev, RefFindRev(s, f)) << "len " << len << " m " << m << " alphabet " << alphabet;
            }
        }
    });
}

// A single occurrence at every position, and a second one behind it, so that
// each block and lane of the kernels reports its hit.
TYPED_TEST(Search, SubstringAtEveryPosition) {
    using T = TypeParam;
    using Api = SearchApi<T>;
    Rng rng(7);
    for (const Placement& pl : Placements<T>()) {
        for (int len : {40, 143, 144, 200, 300}) {
            GuardedBuffer srcBuf(len * sizeof(T), pl.guard, pl.slack);
            for (int m : {2, 3, 4, 6, 19}) {
                const std::vector<T> f = RandomUnits<T>(rng, m, 2, 'x');
                for (int at = 0; at + m <= len; ++at) {
                    std::vector<T> s = RandomUnits<T>(rng, len, 3, 'a');
                    std::copy(f.begin(), f.end(), s.begin() + at);
                    const int second = RandomInt(rng, at, len - m);
                    std::copy(f.begin(), f.end(), s.begin() + second);
                    const T* src = srcBuf.fill(s.data(), s.size());
                    int fwd = -2, rev = -2;
                    ASSERT_EQ(Api::Find(src, len, f.data(), m, &fwd), VKP_OK);
                    ASSERT_EQ(Api::FindRev(src, len, f.data(), m, &rev), VKP_OK);
                    ASSERT_EQ(fwd, RefFind(s, f)) << "len " << len << " m " << m << " at " << at;
                    ASSERT_EQ(rev, RefFindRev(s, f)) << "len " << len << " m " << m << " at " << at;
                }
            }
        }
    }
}

TYPED_TEST(Search, CharacterMatchesReference) {
    using T = TypeParam;
    using Api = SearchApi<T>;
    Rng rng(99);
    ForEachPlacedLength<T>([&](const Placement& pl, int len) {
        GuardedBuffer srcBuf(len * sizeof(T), pl.guard, pl.slack);
        for (auto [alphabet, base] : Alphabets<T>()) {
            const std::vector<T> s = RandomUnits<T>(rng, len, alphabet + 2, base);
            const T* src = srcBuf.fill(s.data(), s.size());
            for (unsigned k = 0; k < alphabet + 3; ++k) {  // the last value never occurs
                const T v = T(base + k);
                int fwd = -2, rev = -2;
                ASSERT_EQ(Api::FindC(src, len, v, &fwd), VKP_OK);
                ASSERT_EQ(Api::FindRevC(src, len, v, &rev), VKP_OK);
                ASSERT_EQ(fwd, RefFindC(s, v)) << "len " << len << " value " << unsigned(v);
                ASSERT_EQ(rev, RefFindRevC(s, v)) << "len " << len << " value " << unsigned(v);
            }
        }
    });
}

// Exactly two occurrences, at every pair of positions in the first and last
// blocks and around the wide steps of both kernel widths.
TYPED_TEST(Search, CharacterAtEveryPosition) {
    using T = TypeParam;
    using Api = SearchApi<T>;
    const T v = T(0x8A8A & ((1u << (8 * sizeof(T))) - 1));
    for (const Placement& pl : Placements<T>()) {
        for (int len : {8, 15, 16, 17, 31, 33, 64, 100, 129, 257, 300, 520}) {
            GuardedBuffer srcBuf(len * sizeof(T), pl.guard, pl.slack);
            for (int a = 0; a < len; ++a) {
                for (int b = a; b < len; b += (b < a + 40 ? 1 : 17)) {
                    std::vector<T> s(len, T(v ^ 1));
                    s[a] = s[b] = v;
                    const T* src = srcBuf.fill(s.data(), s.size());
                    int fwd = -2, rev = -2;
                    ASSERT_EQ(Api::FindC(src, len, v, &fwd), VKP_OK);
                    ASSERT_EQ(Api::FindRevC(src, len, v, &rev), VKP_OK);
                    ASSERT_EQ(fwd, a) << "len " << len;
                    ASSERT_EQ(rev, b) << "len " << len;
                }
            }
        }
    }
}

TYPED_TEST(Search, TerminatedFormsMatchReference) {
    using T = TypeParam;
    using Api = SearchApi<T>;
    Rng rng(5);
    for (const Placement& pl : Placements<T>()) {
        for (int len = 0; len <= 200; ++len) {
            std::vector<T> s = RandomUnits<T>(rng, len, 3, 'a');
            std::vector<T> z = s;
            z.push_back(0);
            GuardedBuffer srcBuf(z.size() * sizeof(T), pl.guard, pl.slack);
            const T* src = srcBuf.fill(z.data(), z.size());
            for (int m : {0, 1, 2, 3, 5, 9, 17}) {
                std::vector<T> f = RandomUnits<T>(rng, m, 3, 'a');
                std::vector<T> fz = f;
                fz.push_back(0);
                GuardedBuffer findBuf(fz.size() * sizeof(T), pl.guard, pl.slack);
                int idx = -2;
                ASSERT_EQ(Api::FindZ(src, findBuf.fill(fz.data(), fz.size()), &idx), VKP_OK);
                ASSERT_EQ(idx, RefFind(s, f)) << "len " << len << " m " << m;
            }
            for (unsigned k = 0; k < 4; ++k) {
                int idx = -2;
                ASSERT_EQ(Api::FindCZ(src, T('a' + k), &idx), VKP_OK);
                ASSERT_EQ(idx, RefFindC(s, T('a' + k)));
            }
            int idx = -2;
            ASSERT_EQ(Api::FindCZ(src, T(0), &idx), VKP_OK);
            ASSERT_EQ(idx, len);
        }
    }
}

TYPED_TEST(Search, OverlappingOccurrences) {
    using T = TypeParam;
    using Api = SearchApi<T>;
    const std::vector<T> s(4, T('a')), f(2, T('a'));
    int fwd = -2, rev = -2;
    ASSERT_EQ(Api::Find(s.data(), 4, f.data(), 2, &fwd), VKP_OK);
    ASSERT_EQ(Api::FindRev(s.data(), 4, f.data(), 2, &rev), VKP_OK);
    EXPECT_EQ(fwd, 0);
    EXPECT_EQ(rev, 2);
}

}  // namespace
}  // namespace vkptest
