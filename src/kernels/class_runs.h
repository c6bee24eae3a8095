// The first run of at least n consecutive members of an ASCII byte class
// (given by its nibble table, as in byte_class_scan.h): long words, long
// digit strings. A vector's member mask at a time: the run carried in from
// the vectors before is extended by the mask's low ones, a run inside the
// mask is found by and-ing the mask with itself shifted, and the mask's high
// ones are carried on. The last vector is taken flush with the end, its
// bytes already seen shifted out of the mask. Nothing outside [s, s + len)
// is read.
#pragma once

#include "kernels/byte_class_scan.h"

namespace vkp::kernels {

namespace run_detail {

// Consumes a mask of w (<= 32) positions starting at base; run is the count
// of members ending just before base. The start of the first run of n
// members that reaches into the mask, or -1 (run updated).
VKP_INLINE int Step(uint64_t m, int w, int base, int n, int& run) {
    const uint64_t all = (uint64_t(1) << w) - 1;
    if (m == 0) {
        run = 0;
        return -1;
    }
    const int low = __builtin_ctzll(~m);  // members from base on
    if (run + low >= n) return base - run;
    if (n <= w) {
        uint64_t t = m;  // bit i: members at i .. i + k - 1
        for (int k = 1; k < n;) {
            const int shift = k < n - k ? k : n - k;
            t &= t >> shift;
            k += shift;
        }
        if (t) return base + __builtin_ctzll(t);
    }
    run = m == all ? run + w : w - 1 - (63 - __builtin_clzll(~m & all));
    return -1;
}

template <class V>
int FindRun(const u8* s, int len, const u8* low, int n) {
    constexpr int B = V::kBytes;
    if (n < 1) n = 1;
    if (len < B) {
        if constexpr (V::kHasNarrower) {
            return FindRun<typename V::Narrower>(s, len, low, n);
        } else {
            const scan_detail::Members<V> t(low);
            int run = 0;
            for (int i = 0; i < len; ++i) {
                run = t.Unit(s[i]) ? run + 1 : 0;
                if (run >= n) return i - n + 1;
            }
            return -1;
        }
    }
    const scan_detail::Members<V> t(low);
    int run = 0, i = 0;
    for (; i + B <= len; i += B) {
        const int k = Step(t.Hits(V::LoadU(s + i)), B, i, n, run);
        if (k >= 0) return k;
    }
    if (i == len) return -1;
    const int w = len - i;
    return Step(t.Hits(V::LoadU(s + len - B)) >> (B - w), w, i, n, run);
}

}  // namespace run_detail

// The start of the first run of at least n (>= 1) members of the class whose
// 16-byte nibble table is `low` in s[0, len), or -1. The form in the width
// list.
template <class V>
int FindMemberRun(const u8* s, int len, const u8* low, int n) {
    return run_detail::FindRun<V>(s, len, low, n);
}

}  // namespace vkp::kernels
