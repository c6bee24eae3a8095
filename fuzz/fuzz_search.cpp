// Substring, character and character-set search and comparison on arbitrary
// inputs, compared with the reference definitions. The inputs sit in buffers of exactly their size, so
// ASan reports any read outside them.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "frame/entries.h"
#include "search/find.h"
#include "support/search_reference.h"
#include "support/text_reference.h"

namespace {

// A heap copy of exactly n units (one byte for an empty string, never read).
template <class T>
T* ExactCopy(const uint8_t* src, size_t n) {
    T* p = static_cast<T*>(std::malloc(n ? n * sizeof(T) : 1));
    if (n) std::memcpy(p, src, n * sizeof(T));
    return p;
}

// The needle as a set; the two strings compared over their common length.
template <class T>
void CheckSetAndCompare(const T* hs, const std::vector<T>& s, const T* hf, const std::vector<T>& f) {
    namespace e = vkp::entry;
    const int len = int(s.size()), m = int(f.size()), n = len < m ? len : m;
    const std::vector<T> a(s.begin(), s.begin() + n), b(f.begin(), f.begin() + n);
    int fwd = -2, rev = -2, cmp = -2, eq = -2, latin = -2;
    if constexpr (sizeof(T) == 1) {
        e::vkpsFindCAny_8u(hs, len, hf, m, &fwd), e::vkpsFindRevCAny_8u(hs, len, hf, m, &rev);
        e::vkpsCompare_8u(hs, hf, n, &cmp), e::vkpsEqual_8u(hs, hf, n, &eq), e::vkpsCompareIgnoreCaseLatin_8u(hs, hf, n, &latin);
    } else {
        e::vkpsFindCAny_16u(hs, len, hf, m, &fwd), e::vkpsFindRevCAny_16u(hs, len, hf, m, &rev);
        e::vkpsCompare_16u(hs, hf, n, &cmp), e::vkpsEqual_16u(hs, hf, n, &eq), e::vkpsCompareIgnoreCaseLatin_16u(hs, hf, n, &latin);
    }
    if (fwd != vkptest::RefFindAny(s, f, false) || rev != vkptest::RefFindAny(s, f, true)) std::abort();
    const int ref = vkptest::RefCompare(a, b, vkptest::SameUnit);
    if (cmp != ref || eq != int(ref == 0) || latin != vkptest::RefCompare(a, b, vkptest::LatinLower)) std::abort();
}

template <class T>
void Check(const uint8_t* data, size_t size) {
    if (size < 2) return;
    const size_t split = data[0] % (size - 1) + 1;  // bytes of needle
    const size_t nf = split / sizeof(T), ns = (size - split - 1) / sizeof(T);
    T* hf = ExactCopy<T>(data + 1, nf);
    T* hs = ExactCopy<T>(data + 1 + split, ns);
    const std::vector<T> s(hs, hs + ns), f(hf, hf + nf);
    const int len = int(ns), m = int(nf);
    int idx = -2;
    if (vkp::search::Find(hs, len, hf, m, &idx) != 0 || idx != vkptest::RefFind(s, f)) std::abort();
    if (vkp::search::FindRev(hs, len, hf, m, &idx) != 0 || idx != vkptest::RefFindRev(s, f)) std::abort();
    const T v = m ? f[0] : T(data[0]);
    if (vkp::search::FindC(hs, len, v, &idx) != 0 || idx != vkptest::RefFindC(s, v)) std::abort();
    if (vkp::search::FindRevC(hs, len, v, &idx) != 0 || idx != vkptest::RefFindRevC(s, v)) std::abort();
    CheckSetAndCompare(hs, s, hf, f);
    std::free(hs);
    std::free(hf);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Check<vkp8u>(data, size);
    Check<vkp16u>(data, size);
    return 0;
}
