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

template <class T>
void Check(const uint8_t* data, size_t size) {
    if (size < 2) return;
    const size_t split = data[0] % (size - 1) + 1;  // bytes of needle
    std::vector<T> s((size - split - 1) / sizeof(T)), f(split / sizeof(T));
    std::memcpy(f.data(), data + 1, f.size() * sizeof(T));
    std::memcpy(s.data(), data + 1 + split, s.size() * sizeof(T));
    // Exact-size heap copies (a vector may have spare capacity).
    T* hs = static_cast<T*>(std::malloc(s.size() * sizeof(T) + 1));
    T* hf = static_cast<T*>(std::malloc(f.size() * sizeof(T) + 1));
    std::memcpy(hs, s.data(), s.size() * sizeof(T));
    std::memcpy(hf, f.data(), f.size() * sizeof(T));
    const int len = int(s.size()), m = int(f.size());
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
