// The editing functions (concatenation, joining, splitting, insert, remove,
// replace, trimming) against reference models on seeded random strings:
// every length 0 to 300 and a few large ones, sources flush against an
// inaccessible page (after, before, and for 16u at an odd address),
// destinations flush against one with canaries on the other side.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

#include "support/edit_api.h"
#include "support/guarded_dest.h"
#include "support/random_text.h"

namespace vkptest {
namespace {

using Guard = GuardedBuffer::Guard;

template <class T>
using Units = std::vector<T>;

template <class T>
struct SplitResult {
    std::vector<Units<T>> pieces;  // as written to the slots (cut to capacity)
    int status = 0;
};

// Split into slots of the given capacities.
template <class T>
SplitResult<T> RefSplit(const Units<T>& s, T delim, const std::vector<int>& capacity) {
    SplitResult<T> r;
    size_t pos = 0;
    for (size_t slot = 0; slot < capacity.size() && pos < s.size(); ++slot) {
        size_t end = pos;
        while (end < s.size() && s[end] != delim) ++end;
        size_t keep = end - pos;
        if (keep > size_t(capacity[slot])) keep = size_t(capacity[slot]), r.status = 27;
        r.pieces.emplace_back(s.begin() + pos, s.begin() + pos + keep);
        pos = end + 1;
    }
    if (pos < s.size()) r.status = 26;
    return r;
}

// The kept run of a trim: [first, last) of units not in the set.
template <class T>
Units<T> RefTrim(const Units<T>& s, const Units<T>& set, bool start, bool end) {
    auto in = [&](T u) { return std::find(set.begin(), set.end(), u) != set.end(); };
    size_t b = 0, e = s.size();
    if (start)
        while (b < e && in(s[b])) ++b;
    if (end)
        while (e > b && in(s[e - 1])) --e;
    return Units<T>(s.begin() + b, s.begin() + e);
}

// A source of the given units in a guarded buffer.
template <class T>
struct Src {
    GuardedBuffer buf;
    T* p;
    Src(const std::vector<T>& v, Placement pl) : buf(v.size() * sizeof(T), pl.guard, pl.slack) {
        p = buf.fill(v.data(), v.size());
    }
};

template <class T>
class Edit : public ::testing::Test {};
using UnitTypes = ::testing::Types<vkp8u, vkp16u>;
TYPED_TEST_SUITE(Edit, UnitTypes);

// Letters with a frequent delimiter or trim unit; 16u adds high units.
template <class T>
std::vector<T> Text(Rng& rng, int n) {
    std::vector<T> v = RandomUnits<T>(rng, size_t(n), 4, sizeof(T) == 1 ? 'a' : 0xFF61);
    for (T& u : v)
        if (RandomInt(rng, 0, 5) == 0) u = T(',');
    return v;
}

TYPED_TEST(Edit, ConcatenationsMatchReference) {
    using T = TypeParam;
    using Api = EditApi<T>;
    Rng rng(101);
    for (Placement pl : Placements<T>()) {
        for (int len : EditLengths()) {
            // Two strings, then a list of up to five, split at random points.
            const std::vector<T> all = Text<T>(rng, len);
            const int cut = RandomInt(rng, 0, len);
            Src<T> a(std::vector<T>(all.begin(), all.begin() + cut), pl), b(std::vector<T>(all.begin() + cut, all.end()), pl);
            GuardedDest<T> d(all.size(), pl.guard, pl.slack);
            ASSERT_EQ(Api::Concat(a.p, cut, b.p, len - cut, d.data()), 0);
            ASSERT_TRUE(d.Holds(all)) << len;

            std::vector<int> cuts = {0, len};
            for (int k = RandomInt(rng, 0, 4); k > 0; --k) cuts.push_back(RandomInt(rng, 0, len));
            std::sort(cuts.begin(), cuts.end());
            Src<T> whole(all, pl);
            std::vector<const T*> ptrs;
            std::vector<int> lens;
            std::vector<T> joined;
            for (size_t k = 0; k + 1 < cuts.size(); ++k) {
                ptrs.push_back(whole.p + cuts[k]);
                lens.push_back(cuts[k + 1] - cuts[k]);
                if (k) joined.push_back(T(';'));
                joined.insert(joined.end(), all.begin() + cuts[k], all.begin() + cuts[k + 1]);
            }
            GuardedDest<T> dl(all.size(), pl.guard, pl.slack), dj(joined.size(), pl.guard, pl.slack);
            ASSERT_EQ(Api::ConcatList(ptrs.data(), lens.data(), int(ptrs.size()), dl.data()), 0);
            ASSERT_TRUE(dl.Holds(all));
            ASSERT_EQ(Api::Join(ptrs.data(), lens.data(), int(ptrs.size()), T(';'), dj.data()), 0);
            ASSERT_TRUE(dj.Holds(joined));
        }
    }
}

TYPED_TEST(Edit, SplitMatchesReference) {
    using T = TypeParam;
    Rng rng(102);
    for (Placement pl : Placements<T>()) {
        for (int len : EditLengths()) {
            const std::vector<T> s = Text<T>(rng, len);
            Src<T> src(s, pl);
            const int slots = RandomInt(rng, 1, 12);
            std::vector<int> capacity(slots);
            for (int& c : capacity) c = RandomInt(rng, 0, 3) == 0 ? RandomInt(rng, 0, 3) : RandomInt(rng, 0, len);
            std::vector<std::unique_ptr<GuardedDest<T>>> dest;
            std::vector<T*> ptrs;
            for (int c : capacity) {
                dest.push_back(std::make_unique<GuardedDest<T>>(size_t(c), pl.guard, pl.slack));
                ptrs.push_back(dest.back()->data());
            }
            std::vector<int> dstLen = capacity;
            int num = slots;
            const auto ref = RefSplit(s, T(','), capacity);
            ASSERT_EQ(EditApi<T>::Split(src.p, len, T(','), ptrs.data(), dstLen.data(), &num), ref.status) << len;
            ASSERT_EQ(size_t(num), ref.pieces.size());
            for (int k = 0; k < slots; ++k) {
                const size_t got = size_t(k) < ref.pieces.size() ? ref.pieces[k].size() : 0;
                if (size_t(k) < ref.pieces.size()) {
                    ASSERT_EQ(dstLen[k], int(got));
                    ASSERT_EQ(dest[k]->head(got), ref.pieces[k]);
                } else {
                    ASSERT_EQ(dstLen[k], capacity[k]);
                }
                ASSERT_TRUE(dest[k]->UnwrittenFrom(got));
            }
        }
    }
}

TYPED_TEST(Edit, InsertRemoveMatchReference) {
    using T = TypeParam;
    using Api = EditApi<T>;
    Rng rng(103);
    for (Placement pl : Placements<T>()) {
        for (int len : EditLengths()) {
            const std::vector<T> s = Text<T>(rng, len), ins = Text<T>(rng, RandomInt(rng, 0, len < 100 ? 40 : 300));
            const int at = RandomInt(rng, 0, len), cut = RandomInt(rng, 0, len - at);
            Src<T> src(s, pl), in(ins, pl);
            std::vector<T> inserted = s, removed = s;
            inserted.insert(inserted.begin() + at, ins.begin(), ins.end());
            removed.erase(removed.begin() + at, removed.begin() + at + cut);
            const int il = int(ins.size());

            GuardedDest<T> d(inserted.size(), pl.guard, pl.slack);
            ASSERT_EQ(Api::Insert(src.p, len, in.p, il, d.data(), at), 0);
            ASSERT_TRUE(d.UnwrittenFrom(il ? inserted.size() : 0)) << "insertLen 0 writes nothing";
            if (il) {
                ASSERT_EQ(d.head(inserted.size()), inserted);
            }

            // In place, and the copying Insert with pDst == pSrc.
            for (int form = 0; form < 2; ++form) {
                GuardedDest<T> b(inserted.size(), pl.guard, pl.slack);
                b.put(s);
                int n = len;
                const int st = form == 0 ? Api::InsertI(in.p, il, b.data(), &n, at)
                                         : Api::Insert(b.data(), len, in.p, il, b.data(), at);
                ASSERT_EQ(st, 0);
                if (form == 1) n = len + il;
                ASSERT_EQ(n, int(inserted.size()));
                ASSERT_TRUE(b.Holds(inserted));
            }

            GuardedDest<T> r(removed.size(), pl.guard, pl.slack);
            ASSERT_EQ(Api::Remove(src.p, len, r.data(), at, cut), 0);
            ASSERT_TRUE(r.Holds(removed));
            GuardedDest<T> ri(s.size(), pl.guard, pl.slack);
            ri.put(s);
            int n = len;
            ASSERT_EQ(Api::RemoveI(ri.data(), &n, at, cut), 0);
            ASSERT_EQ(n, int(removed.size()));
            ASSERT_EQ(ri.head(removed.size()), removed);
            std::vector<T> whole = s;  // the units behind the new length stay as they were
            std::copy(removed.begin(), removed.end(), whole.begin());
            ASSERT_EQ(ri.head(s.size()), whole);
        }
    }
}

TYPED_TEST(Edit, ReplaceMatchesReference) {
    using T = TypeParam;
    Rng rng(104);
    for (Placement pl : Placements<T>()) {
        for (int len : EditLengths()) {
            const std::vector<T> s = Text<T>(rng, len);
            const T oldVal = RandomInt(rng, 0, 1) ? T(',') : s.empty() ? T(0) : s[0], newVal = T(0x7E5E);
            std::vector<T> want = s;
            std::replace(want.begin(), want.end(), oldVal, newVal);
            Src<T> src(s, pl);
            GuardedDest<T> d(s.size(), pl.guard, pl.slack);
            ASSERT_EQ(EditApi<T>::ReplaceC(src.p, d.data(), len, oldVal, newVal), 0);
            ASSERT_EQ(d.head(s.size()), want);
            ASSERT_TRUE(d.UnwrittenFrom(s.size()));
            ASSERT_EQ(EditApi<T>::ReplaceC(src.p, src.p, len, oldVal, newVal), 0);  // in place
            ASSERT_EQ(GuardedDest<T>::Units(src.p, s.size()), want);
        }
    }
}

// Sets of every small size and around the strategy boundaries, with
// duplicates; strings padded at both ends with set members.
TYPED_TEST(Edit, TrimsMatchReference) {
    using T = TypeParam;
    using Api = EditApi<T>;
    using TrimFn = vkpStatus (*)(const T*, int, const T*, int, T*, int*);
    const TrimFn forms[3] = {Api::TrimAny, Api::TrimStart, Api::TrimEnd};
    const bool ends[3][2] = {{true, true}, {true, false}, {false, true}};
    Rng rng(105);
    std::vector<int> setSizes;
    for (int k = 0; k <= 20; ++k) setSizes.push_back(k);
    for (int k : {49, 50, 51, 130, 131, 132, 135, 136, 200}) setSizes.push_back(k);
    for (Placement pl : Placements<T>()) {
        for (int len : EditLengths()) {
            const int setLen = setSizes[size_t(RandomInt(rng, 0, int(setSizes.size()) - 1))];
            std::vector<T> set = RandomUnits<T>(rng, size_t(setLen), 6, sizeof(T) == 1 ? 'a' : 0xFF61);
            // Runs of members at both ends (all of it sometimes) around text.
            std::vector<T> s = RandomUnits<T>(rng, size_t(len), 12, sizeof(T) == 1 ? 'a' : 0xFF61);
            const int head = RandomInt(rng, 0, len), tail = RandomInt(rng, 0, len - head);
            for (int i = 0; i < len && setLen; ++i)
                if (i < head || i >= len - tail || RandomInt(rng, 0, 9) == 0) s[size_t(i)] = set[size_t(RandomInt(rng, 0, setLen - 1))];
            Src<T> src(s, pl), st(set, pl);
            for (int f = 0; f < 3; ++f) {
                const auto want = RefTrim(s, set, ends[f][0], ends[f][1]);
                GuardedDest<T> d(s.size(), pl.guard, pl.slack);
                int n = -1;
                ASSERT_EQ(forms[f](src.p, len, st.p, setLen, d.data(), &n), 0);
                ASSERT_EQ(n, int(want.size())) << "form " << f << " len " << len << " set " << setLen;
                ASSERT_TRUE(d.Holds(want));
            }
            // One unit: copying, copying onto itself (the 8u hand-over), in place.
            const T unit = s.empty() ? T('a') : s[0];
            const auto want = RefTrim(s, std::vector<T>{unit}, true, true);
            GuardedDest<T> d(s.size(), pl.guard, pl.slack);
            int n = -1;
            ASSERT_EQ(Api::TrimC(src.p, len, unit, d.data(), &n), 0);
            ASSERT_EQ(n, int(want.size()));
            ASSERT_TRUE(d.Holds(want));
            for (int inPlace = 0; inPlace < 2; ++inPlace) {
                std::vector<T> b = s;
                b.push_back(T(0));  // never empty: a valid pointer for len 0
                n = len;
                ASSERT_EQ(inPlace ? Api::TrimCI(b.data(), &n, unit) : Api::TrimC(b.data(), len, unit, b.data(), &n), 0);
                ASSERT_EQ(n, int(want.size()));
                ASSERT_TRUE(std::equal(want.begin(), want.end(), b.begin()));
            }
        }
    }
}

// What a failing slot or list element leaves behind.
TYPED_TEST(Edit, FailuresKeepEarlierPieces) {
    using T = TypeParam;
    using Api = EditApi<T>;
    auto str = [](const char* c) { return std::vector<T>(c, c + std::char_traits<char>::length(c)); };
    // A failing slot keeps the pieces before it and leaves the count alone.
    std::vector<T> s = str("ab,cd"), b0(4);
    T* slots[2] = {b0.data(), nullptr};
    int dl[2] = {4, 4}, num = 2;
    EXPECT_EQ(Api::Split(s.data(), 5, T(','), slots, dl, &num), VKP_ERR_NULL);
    EXPECT_EQ(num, 2);
    EXPECT_EQ(dl[0], 2);
    EXPECT_EQ(b0[0], T('a'));

    // Joins keep what they wrote before a failing element.
    std::vector<T> x = str("xy"), out(8, T(0));
    const T* list[3] = {x.data(), x.data(), nullptr};
    const int lens[3] = {2, 2, 1};
    EXPECT_EQ(Api::Join(list, lens, 3, T(';'), out.data()), VKP_ERR_NULL);
    EXPECT_EQ(out, (std::vector<T>{'x', 'y', ';', 'x', 'y', 0, 0, 0}));
}

}  // namespace
}  // namespace vkptest
