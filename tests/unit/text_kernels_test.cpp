// Search, character-set search, comparison, case conversion and hashes at
// both widths against the plain loops of support/text_reference.h, on seeded
// random data: every length up to 300 and a few large ones, each input flush
// against an inaccessible page (before or after it) and, for 16u, at odd
// addresses. CTest runs it with the 16-byte and the 32-byte kernels.
#include <gtest/gtest.h>

#include <vector>

#include "support/placements.h"
#include "support/random_text.h"
#include "support/search_api.h"
#include "support/text_reference.h"

namespace vkptest {
namespace {

template <class T>
class TextKernels : public ::testing::Test {};
using UnitTypes = ::testing::Types<vkp8u, vkp16u>;
TYPED_TEST_SUITE(TextKernels, UnitTypes);

// Alphabets (size, first unit) for substrings: small ones make many partial
// matches; the high 16-bit bases catch sign and byte-order slips. Needles
// are pieces of the subject half of the time, so hits fall anywhere.
TYPED_TEST(TextKernels, SubstringSearch) {
    using T = TypeParam;
    using Api = SearchApi<T>;
    const std::vector<std::pair<unsigned, unsigned>> alphabets =
        sizeof(T) == 1 ? std::vector<std::pair<unsigned, unsigned>>{{2, 'a'}, {4, 'a'}, {26, 'a'}, {3, 0xFD}}
                       : std::vector<std::pair<unsigned, unsigned>>{{2, 'a'}, {4, 0x6161}, {26, 'a'}, {3, 0xFFFD}};
    Rng rng(20261121);
    ForEachPlacedLength<T>([&](const Placement& pl, int len) {
        GuardedBuffer srcBuf(len * sizeof(T), pl.guard, pl.slack);
        for (auto [alphabet, base] : alphabets) {
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
                ASSERT_EQ(rev, RefFind(s, f, true)) << "len " << len << " m " << m << " alphabet " << alphabet;
            }
        }
    });
}

// Exactly two occurrences of a unit, at every pair of positions in the first
// and last blocks and around the wide steps of both kernel widths.
TYPED_TEST(TextKernels, CharacterAtEveryPosition) {
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

TYPED_TEST(TextKernels, TerminatedForms) {
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
                ASSERT_EQ(idx, RefFindAny(s, {T('a' + k)}, false));
            }
            int idx = -2;
            ASSERT_EQ(Api::FindCZ(src, T(0), &idx), VKP_OK);
            ASSERT_EQ(idx, len);
        }
    }
}

// Units around the sign boundary: members from 128 values, the other units
// from 256 (so that some are never members).
template <class T>
T Pick(Rng& rng, int spread) {
    const unsigned middle = sizeof(T) == 1 ? 0x80 : 0x8000;
    return T(middle - spread / 2 + unsigned(RandomInt(rng, 0, spread - 1)));
}

// Set sizes on both sides of every strategy switch, with repeated members;
// a set of one also through the character search.
TYPED_TEST(TextKernels, SetAndCharacterSearch) {
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
            if (n != 1) continue;
            fwd = rev = -2;
            ASSERT_EQ(Api::FindC(src, len, set[0], &fwd), VKP_OK);
            ASSERT_EQ(Api::FindRevC(src, len, set[0], &rev), VKP_OK);
            ASSERT_EQ(fwd, RefFindAny(s, set, false)) << "len " << len << " value " << unsigned(set[0]);
            ASSERT_EQ(rev, RefFindAny(s, set, true)) << "len " << len << " value " << unsigned(set[0]);
        }
    });
}

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

// The second string is the first with some units case-flipped and, mostly,
// one unit changed.
TYPED_TEST(TextKernels, Comparison) {
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

// Out of place and in place; ASCII-only, mostly ASCII and mixed strings.
TYPED_TEST(TextKernels, CaseConversion) {
    using T = TypeParam;
    using Api = SearchApi<T>;
    struct Conversion {
        const char* name;
        vkpStatus (*out)(const T*, T*, int);
        vkpStatus (*inPlace)(T*, int);
        unsigned (*ref)(unsigned);
    };
    std::vector<Conversion> conversions = {{"LowercaseLatin", Api::LowercaseLatin, Api::LowercaseLatinI, LatinLower},
                                           {"UppercaseLatin", Api::UppercaseLatin, Api::UppercaseLatinI, LatinUpper}};
    if constexpr (sizeof(T) == 2) {
        conversions.push_back({"Lowercase", vkpsLowercase_16u, vkpsLowercase_16u_I, TableLower});
        conversions.push_back({"Uppercase", vkpsUppercase_16u, vkpsUppercase_16u_I, TableUpper});
    }
    Rng rng(4);
    ForEachPlacedLength<T>([&](const Placement& pl, int len) {
        GuardedBuffer srcBuf(len * sizeof(T), pl.guard, pl.slack), dstBuf(len * sizeof(T), pl.guard, pl.slack);
        for (double ascii : {1.0, 0.97, 0.3}) {
            const std::vector<T> s = MixedUnits<T>(rng, len, ascii);
            for (const Conversion& c : conversions) {
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
TEST(TextKernels, EveryUnitThroughTheCaseMap) {
    std::vector<vkp16u> all(65536), lower(65536), upper(65536);
    for (unsigned c = 0; c < 65536; ++c) all[c] = vkp16u(c);
    ASSERT_EQ(vkpsLowercase_16u(all.data(), lower.data(), 65536), VKP_OK);
    ASSERT_EQ(vkpsUppercase_16u(all.data(), upper.data(), 65536), VKP_OK);
    for (unsigned c = 0; c < 65536; ++c) {
        ASSERT_EQ(lower[c], TableLower(c)) << std::hex << c;
        ASSERT_EQ(upper[c], TableUpper(c)) << std::hex << c;
    }
}

// Any unit value, zero units included; mostly non-zero, so that the hash
// that stops at a zero unit runs on.
TYPED_TEST(TextKernels, Hashes) {
    using T = TypeParam;
    using Api = SearchApi<T>;
    Rng rng(31);
    ForEachPlacedLength<T>([&](const Placement& pl, int len) {
        GuardedBuffer srcBuf(len * sizeof(T), pl.guard, pl.slack);
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
