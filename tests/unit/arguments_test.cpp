// Argument checks of the search, comparison, case, hash, editing and UTF
// functions at both widths: the first failed check decides (null pointers,
// then counts, then lengths), and an error writes nothing. Beside them, the
// documented results at the edges (empty strings, magnitudes, seeds).
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

#include "support/edit_api.h"
#include "support/search_api.h"

namespace vkptest {
namespace {

constexpr int kUntouched = 12345;
int* const kNoIndex = nullptr;
constexpr vkpStatus kNull = VKP_ERR_NULL, kLength = VKP_ERR_LENGTH, kSize = VKP_ERR_SIZE, kOk = VKP_OK;

// What a call may touch: an index or hash (`out`), a destination, a count.
template <class T>
struct Scratch {
    T s[4] = {'a', 'b', 'c', 0}, set[2] = {'c', 'x'}, d[8];
    int out = kUntouched, n = 4, negN = -1, zero = 0, lens[2] = {2, 1}, neg[2] = {-1, 1}, cap[2] = {8, 8};
    const T* list[2] = {s, nullptr};
    T* slots[2] = {d, nullptr};
    Scratch() { std::fill(std::begin(d), std::end(d), T(0x5A)); }
    vkp32u* hash() { return reinterpret_cast<vkp32u*>(&out); }
    bool Untouched() const {
        return out == kUntouched && n == 4 && zero == 0 && std::all_of(std::begin(d), std::end(d), [](T u) { return u == T(0x5A); });
    }
};

template <class T>
struct Row {
    vkpStatus want;
    int out;  // what *out holds after the call (kUntouched: nothing written)
    std::function<vkpStatus(Scratch<T>&)> call;
};

// One unit through a conversion; the result goes to out.
template <class T, class F>
vkpStatus One(F f, T c, Scratch<T>& x) {
    T d = 0;
    const vkpStatus st = f(&c, &d, 1);
    x.out = d;
    return st;
}

// A two-unit comparison.
template <class T, class F>
vkpStatus Two(F f, T a0, T a1, T b0, T b1, Scratch<T>& x) {
    const T a[] = {a0, a1}, b[] = {b0, b1};
    return f(a, b, 2, &x.out);
}

template <class T>
std::vector<Row<T>> Rows() {
    using A = SearchApi<T>;
    using E = EditApi<T>;
    using X = Scratch<T>;
    std::vector<Row<T>> r = {
        // Search: null pointers before lengths; empty and longer needles find nothing.
        {kNull, kUntouched, [](X& x) { return A::Find(nullptr, 3, x.s, 1, &x.out); }},
        {kNull, kUntouched, [](X& x) { return A::Find(x.s, 3, nullptr, 1, &x.out); }},
        {kNull, kUntouched, [](X& x) { return A::Find(x.s, -1, x.s, 1, kNoIndex); }},
        {kLength, kUntouched, [](X& x) { return A::Find(x.s, -1, x.s, 1, &x.out); }},
        {kLength, kUntouched, [](X& x) { return A::Find(x.s, 3, x.s, -1, &x.out); }},
        {kOk, -1, [](X& x) { return A::Find(x.s, 3, x.s, 0, &x.out); }},
        {kOk, -1, [](X& x) { return A::Find(x.s, 0, x.s, 0, &x.out); }},
        {kOk, -1, [](X& x) { return A::Find(x.s, 2, x.s, 3, &x.out); }},
        {kNull, kUntouched, [](X& x) { return A::FindRev(nullptr, 3, x.s, 1, &x.out); }},
        {kLength, kUntouched, [](X& x) { return A::FindRev(x.s, -5, x.s, 1, &x.out); }},
        {kNull, kUntouched, [](X& x) { return A::FindC(nullptr, 3, T('a'), &x.out); }},
        {kNull, kUntouched, [](X& x) { return A::FindC(x.s, -1, T('a'), kNoIndex); }},
        {kLength, kUntouched, [](X& x) { return A::FindRevC(x.s, -1, T('a'), &x.out); }},
        {kNull, kUntouched, [](X& x) { return A::FindZ(nullptr, x.s, &x.out); }},
        {kNull, kUntouched, [](X& x) { return A::FindZ(x.s, nullptr, &x.out); }},
        {kNull, kUntouched, [](X& x) { return A::FindZ(x.s, x.s, kNoIndex); }},
        {kOk, -1, [](X& x) { return A::FindZ(x.s, x.s + 3, &x.out); }},
        {kNull, kUntouched, [](X& x) { return A::FindCZ(nullptr, T(0), &x.out); }},
        {kOk, 3, [](X& x) { return A::FindCZ(x.s, T(0), &x.out); }},  // zero: the length
        {kNull, kUntouched, [](X& x) { return A::FindCZ(x.s, T(0), kNoIndex); }},
        {kNull, kUntouched, [](X& x) { return A::FindCZ(x.s, T('b'), kNoIndex); }},
        {kNull, kUntouched, [](X& x) { return A::FindCAny(nullptr, 3, x.set, 2, &x.out); }},
        {kNull, kUntouched, [](X& x) { return A::FindCAny(x.s, 3, nullptr, 2, &x.out); }},
        {kNull, kUntouched, [](X& x) { return A::FindCAny(x.s, -1, x.set, 2, kNoIndex); }},
        {kLength, kUntouched, [](X& x) { return A::FindRevCAny(x.s, -1, x.set, 2, &x.out); }},
        {kLength, kUntouched, [](X& x) { return A::FindRevCAny(x.s, 3, x.set, -1, &x.out); }},
        {kOk, -1, [](X& x) { return A::FindCAny(x.s, 3, x.set, 0, &x.out); }},
        // Comparison: the difference of the first differing units, folded.
        {kNull, kUntouched, [](X& x) { return A::Compare(nullptr, x.s, 3, &x.out); }},
        {kNull, kUntouched, [](X& x) { return A::Equal(x.s, nullptr, 3, &x.out); }},
        {kNull, kUntouched, [](X& x) { return A::CompareIgnoreCaseLatin(x.s, x.s, -1, kNoIndex); }},
        {kLength, kUntouched, [](X& x) { return A::CompareIgnoreCaseLatin(x.s, x.s, -1, &x.out); }},
        {kLength, kUntouched, [](X& x) { return A::Equal(x.s, x.s, -1, &x.out); }},
        {kOk, 1, [](X& x) { return A::Equal(x.s, x.s + 1, 0, &x.out); }},
        {kOk, 0, [](X& x) { return A::Compare(x.s, x.s + 1, 0, &x.out); }},
        {kOk, 0, [](X& x) { return A::CompareIgnoreCaseLatin(x.s, x.s + 1, 0, &x.out); }},
        {kOk, 0, [](X& x) { return Two<T>(A::CompareIgnoreCaseLatin, 'a', 'Z', 'A', 'z', x); }},
        {kOk, -32, [](X& x) { return Two<T>(A::CompareIgnoreCaseLatin, 0xC0, 0, 0xE0, 0, x); }},
        {kOk, -6, [](X& x) { return Two<T>(A::CompareIgnoreCaseLatin, 91, 0, 65, 0, x); }},
        {kOk, 0, [](X& x) { return Two<T>(A::Equal, 1, 2, 1, 3, x); }},
        // Case: ASCII letters only in the Latin forms.
        {kNull, kUntouched, [](X& x) { return A::LowercaseLatin(nullptr, x.d, 1); }},
        {kNull, kUntouched, [](X& x) { return A::UppercaseLatin(x.s, nullptr, -1); }},
        {kNull, kUntouched, [](X&) { return A::LowercaseLatinI(nullptr, -1); }},
        {kLength, kUntouched, [](X& x) { return A::UppercaseLatinI(x.d, -1); }},
        {kLength, kUntouched, [](X& x) { return A::LowercaseLatin(x.s, x.d, -1); }},
        {kOk, 0xC0, [](X& x) { return One<T>(A::LowercaseLatin, 0xC0, x); }},
        {kOk, 0xE0, [](X& x) { return One<T>(A::UppercaseLatin, 0xE0, x); }},
        // Hashes: seeds and a worked value.
        {kNull, kUntouched, [](X& x) { return A::Hash(nullptr, 2, x.hash()); }},
        {kNull, kUntouched, [](X& x) { return A::HashMSCS(x.s, -1, nullptr); }},
        {kLength, kUntouched, [](X& x) { return A::HashSJ2(x.s, -1, x.hash()); }},
        {kOk, 0, [](X& x) { return A::Hash(x.s, 0, x.hash()); }},
        {kOk, 0, [](X& x) { return A::HashSJ2(x.s, 0, x.hash()); }},
        {kOk, 5381, [](X& x) { return A::HashMSCS(x.s, 0, x.hash()); }},
        {kOk, 5381, [](X& x) { return A::HashMSCS(x.s + 3, 1, x.hash()); }},  // a zero unit first
        {kOk, 0xA0, [](X& x) { return A::Hash(x.s, 2, x.hash()); }},
        {kOk, 3105, [](X& x) { return A::HashSJ2(x.s, 2, x.hash()); }},
        {kOk, 5860902, [](X& x) { return A::HashMSCS(x.s, 2, x.hash()); }},
        // Editing.
        {kNull, kUntouched, [](X& x) { return E::Concat(x.s, 1, nullptr, 1, x.d); }},
        {kLength, kUntouched, [](X& x) { return E::Concat(x.s, 1, x.s, -1, x.d); }},
        {kNull, kUntouched, [](X& x) { return E::ConcatList(x.list, nullptr, 1, x.d); }},
        {kSize, kUntouched, [](X& x) { return E::ConcatList(x.list, x.lens, 0, x.d); }},
        {kLength, kUntouched, [](X& x) { return E::ConcatList(x.list, x.neg, 1, x.d); }},
        {kSize, kUntouched, [](X& x) { return E::Join(x.list, x.lens, -3, T(';'), x.d); }},
        {kNull, kUntouched, [](X& x) { return E::Split(x.s, 4, T(','), x.slots, nullptr, &x.n); }},
        {kLength, kUntouched, [](X& x) { return E::Split(x.s, -1, T(','), x.slots, x.cap, &x.zero); }},
        {kSize, kUntouched, [](X& x) { return E::Split(x.s, 4, T(','), x.slots, x.cap, &x.zero); }},
        {kNull, kUntouched, [](X& x) { return E::Insert(x.s, 4, nullptr, 1, x.d, 0); }},
        {kLength, kUntouched, [](X& x) { return E::Insert(x.s, 4, x.s, 1, x.d, 5); }},
        {kLength, kUntouched, [](X& x) { return E::Insert(x.s, 4, x.s, 0x7FFFFFFE, x.d, 0); }},  // the sum overflows
        {kLength, kUntouched, [](X& x) { return E::InsertI(x.s, 1, x.d, &x.negN, 0); }},
        {kNull, kUntouched, [](X& x) { return E::InsertI(x.s, 1, x.d, nullptr, 0); }},
        {kLength, kUntouched, [](X& x) { return E::Remove(x.s, 4, x.d, 2, 3); }},
        {kLength, kUntouched, [](X& x) { return E::Remove(x.s, 4, x.d, 0x7FFFFFF0, 0x7FFFFFF0); }},  // the sum wraps
        {kLength, kUntouched, [](X& x) { return E::Remove(x.s, -1, x.d, 0, 0); }},
        {kLength, kUntouched, [](X& x) { return E::RemoveI(x.d, &x.negN, 0, 0); }},
        // Remove_I refuses a negative length before reading the string's length.
        {kLength, kUntouched, [](X& x) { return E::RemoveI(x.d, reinterpret_cast<int*>(uintptr_t(8)), 0, -1); }},
        {kNull, kUntouched, [](X& x) { return E::ReplaceC(nullptr, x.d, 1, T(1), T(2)); }},
        {kLength, kUntouched, [](X& x) { return E::ReplaceC(x.s, x.d, -1, T(1), T(2)); }},
        {kNull, kUntouched, [](X& x) { return E::TrimC(x.s, 4, T('a'), x.d, nullptr); }},
        {kLength, kUntouched, [](X& x) { return E::TrimC(x.s, -4, T('a'), x.d, &x.n); }},
        {kLength, kUntouched, [](X& x) { return E::TrimCI(x.d, &x.negN, T('a')); }},
        {kNull, kUntouched, [](X& x) { return E::TrimAny(x.s, 4, nullptr, 1, x.d, &x.n); }},
        {kLength, kUntouched, [](X& x) { return E::TrimEnd(x.s, 4, x.s, -1, x.d, &x.n); }},
    };
    if constexpr (sizeof(T) == 2) {
        r.push_back({kNull, kUntouched, [](X& x) { return vkpsCompareIgnoreCase_16u(x.s, x.s, -1, kNoIndex); }});
        r.push_back({kOk, 0, [](X& x) { return Two<T>(vkpsCompareIgnoreCase_16u, 0x130, 1, 0x69, 1, x); }});
        r.push_back({kOk, 200, [](X& x) { return Two<T>(vkpsCompareIgnoreCase_16u, 'x', 0x131, 'X', 0x49, x); }});
        r.push_back({kOk, 65534, [](X& x) { return Two<T>(A::Compare, 0xFFFF, 0, 0x0001, 0, x); }});
        r.push_back({kNull, kUntouched, [](X& x) { return vkpsUppercase_16u(x.s, nullptr, -1); }});
        r.push_back({kLength, kUntouched, [](X& x) { return vkpsLowercase_16u_I(x.d, -1); }});
    } else {
        r.push_back({kOk, -254, [](X& x) { return Two<T>(A::Compare, 7, 0x01, 7, 0xFF, x); }});
        // UTF conversion: null pointers before anything is read or counted.
        r.push_back({kNull, kUntouched, [](X& x) {
                         return vkpsConvertUTF_8u16u(x.s, &x.zero, nullptr, &x.n, 0);
                     }});
        r.push_back({kNull, kUntouched, [](X& x) {
                         const vkp16u unit = 'a';
                         return vkpsConvertUTF_16u8u(&unit, nullptr, x.d, &x.n, 0);
                     }});
    }
    return r;
}

template <class T>
class Arguments : public ::testing::Test {};
using UnitTypes = ::testing::Types<vkp8u, vkp16u>;
TYPED_TEST_SUITE(Arguments, UnitTypes);

TYPED_TEST(Arguments, CheckOrderAndEdgeResults) {
    const auto rows = Rows<TypeParam>();
    for (size_t k = 0; k < rows.size(); ++k) {
        Scratch<TypeParam> x;
        EXPECT_EQ(rows[k].call(x), rows[k].want) << "row " << k;
        EXPECT_EQ(x.out, rows[k].out) << "row " << k;
        if (rows[k].want < 0) { EXPECT_TRUE(x.Untouched()) << "row " << k; }
    }
}

}  // namespace
}  // namespace vkptest
