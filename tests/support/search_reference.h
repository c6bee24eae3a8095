// Reference definitions of the search results: plain loops over every
// candidate position.
#pragma once

#include <vector>

namespace vkptest {

template <class T>
bool SameAt(const std::vector<T>& s, int i, const std::vector<T>& f) {
    for (size_t k = 0; k < f.size(); ++k)
        if (s[i + k] != f[k]) return false;
    return true;
}

template <class T>
int RefFind(const std::vector<T>& s, const std::vector<T>& f) {
    const int len = int(s.size()), m = int(f.size());
    if (m == 0 || m > len) return -1;
    for (int i = 0; i <= len - m; ++i)
        if (SameAt(s, i, f)) return i;
    return -1;
}

template <class T>
int RefFindRev(const std::vector<T>& s, const std::vector<T>& f) {
    const int len = int(s.size()), m = int(f.size());
    if (m == 0 || m > len) return -1;
    for (int i = len - m; i >= 0; --i)
        if (SameAt(s, i, f)) return i;
    return -1;
}

template <class T>
int RefFindC(const std::vector<T>& s, T v) {
    for (size_t i = 0; i < s.size(); ++i)
        if (s[i] == v) return int(i);
    return -1;
}

template <class T>
int RefFindRevC(const std::vector<T>& s, T v) {
    for (size_t i = s.size(); i-- > 0;)
        if (s[i] == v) return int(i);
    return -1;
}

}  // namespace vkptest
