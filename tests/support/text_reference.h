// Reference definitions of the search, set search, comparison, case and hash
// results: plain loops, one unit at a time.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "floor/case_map.h"

namespace vkptest {

// The first (or, reversed, the last) position of f in s; -1 for an empty f.
template <class T>
int RefFind(const std::vector<T>& s, const std::vector<T>& f, bool reverse = false) {
    const int len = int(s.size()), m = int(f.size());
    for (int k = 0; m && k <= len - m; ++k) {
        const int i = reverse ? len - m - k : k;
        if (std::equal(f.begin(), f.end(), s.begin() + i)) return i;
    }
    return -1;
}

template <class T>
bool IsMember(T c, const std::vector<T>& set) {
    for (T m : set)
        if (m == c) return true;
    return false;
}

template <class T>
int RefFindAny(const std::vector<T>& s, const std::vector<T>& set, bool reverse) {
    const int n = int(s.size());
    for (int k = 0; k < n; ++k) {
        const int i = reverse ? n - 1 - k : k;
        if (IsMember(s[i], set)) return i;
    }
    return -1;
}

inline unsigned LatinLower(unsigned c) { return c >= 65 && c <= 90 ? c + 32 : c; }
inline unsigned LatinUpper(unsigned c) { return c >= 97 && c <= 122 ? c - 32 : c; }

// The case map's simple mappings (bit 21: lower = c + delta, bit 20: upper =
// c - delta).
inline unsigned TableLower(unsigned c) {
    const vkp::u32 w = vkp::CaseMapWord(vkp::u16(c));
    return w & vkp::kCaseHasLower ? vkp::u16(c + vkp::CaseMapDelta(w)) : c;
}
inline unsigned TableUpper(unsigned c) {
    const vkp::u32 w = vkp::CaseMapWord(vkp::u16(c));
    return w & vkp::kCaseHasUpper ? vkp::u16(c - vkp::CaseMapDelta(w)) : c;
}
inline unsigned SameUnit(unsigned c) { return c; }

// fold(a[i]) - fold(b[i]) at the first i where they differ, else 0.
template <class T>
int RefCompare(const std::vector<T>& a, const std::vector<T>& b, unsigned (*fold)(unsigned)) {
    for (size_t i = 0; i < a.size(); ++i)
        if (fold(a[i]) != fold(b[i])) return int(fold(a[i])) - int(fold(b[i]));
    return 0;
}

template <class T>
uint32_t RefHashShiftXor(const std::vector<T>& s) {
    uint32_t h = 0;
    for (T c : s) h = (h << 1) ^ c;
    return h;
}

template <class T>
uint32_t RefHashMulAdd(const std::vector<T>& s) {
    uint32_t h = 0;
    for (T c : s) h = h * 31 + c;
    return h;
}

template <class T>
uint32_t RefHashMulXor(const std::vector<T>& s) {
    uint32_t h = 5381;
    for (T c : s) {
        if (c == 0) break;
        h = (h * 33) ^ c;
    }
    return h;
}

}  // namespace vkptest
