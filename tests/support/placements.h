// Where test inputs sit: flush against an inaccessible page after or before
// them, and for 16u also one byte off (odd addresses).
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "support/guarded_buffer.h"

namespace vkptest {

struct Placement {
    GuardedBuffer::Guard guard;
    size_t slack;
};

template <class T>
std::vector<Placement> Placements() {
    std::vector<Placement> p = {{GuardedBuffer::Guard::After, 0}, {GuardedBuffer::Guard::Before, 0}};
    if (sizeof(T) == 2) {  // odd addresses
        p.push_back({GuardedBuffer::Guard::After, 1});
        p.push_back({GuardedBuffer::Guard::Before, 1});
    }
    return p;
}

// Every length 0 to 300 (every start alignment against a page end) and a few
// large ones.
inline std::vector<int> Lengths() {
    std::vector<int> lens;
    for (int n = 0; n <= 300; ++n) lens.push_back(n);
    for (int n : {511, 512, 513, 1000, 4096 + 7, 65536 + 3}) lens.push_back(n);
    return lens;
}

// Calls fn(placement, len) for every placement and length (the large
// lengths only at even addresses), until an assertion fails.
template <class T, class Fn>
void ForEachPlacedLength(Fn fn) {
    for (const Placement& pl : Placements<T>()) {
        for (int len : Lengths()) {
            if (len > 4096 && pl.slack) continue;
            fn(pl, len);
            if (::testing::Test::HasFatalFailure()) return;
        }
    }
}

// Every length 0 to 300, then a few beyond a page and beyond 64 KiB.
inline std::vector<int> EditLengths() {
    std::vector<int> lens;
    for (int n = 0; n <= 300; ++n) lens.push_back(n);
    for (int n : {1000, 4096 + 5, 70000}) lens.push_back(n);
    return lens;
}

}  // namespace vkptest
