// Where the differential tests put their strings: flush against an
// inaccessible page after or before them, and 16-bit strings also at odd
// addresses.
#pragma once

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

// Every length 0 to 300, then a few beyond a page and beyond 64 KiB.
inline std::vector<int> EditLengths() {
    std::vector<int> lens;
    for (int n = 0; n <= 300; ++n) lens.push_back(n);
    for (int n : {1000, 4096 + 5, 70000}) lens.push_back(n);
    return lens;
}

}  // namespace vkptest
