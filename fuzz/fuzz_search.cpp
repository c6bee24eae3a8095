// Substring and character search on arbitrary inputs, compared with the
// reference definitions. The inputs sit in buffers of exactly their size, so
// ASan reports any read outside them.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "search/find.h"
#include "support/search_reference.h"

namespace {

// A heap copy of exactly n units (one byte for an empty string, never read).
template <class T>
T* ExactCopy(const uint8_t* src, size_t n) {
    T* p = static_cast<T*>(std::malloc(n ? n * sizeof(T) : 1));
    if (n) std::memcpy(p, src, n * sizeof(T));
    return p;
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
    std::free(hs);
    std::free(hf);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Check<vkp8u>(data, size);
    Check<vkp16u>(data, size);
    return 0;
}
