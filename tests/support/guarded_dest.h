// A destination of n units flush against an inaccessible page, with canary
// units on its other side: a write one unit too far either crashes or
// changes a canary. Unwritten units keep a fill pattern, so tests can also
// check that a call wrote nothing.
#pragma once

#include <vector>

#include "support/guarded_buffer.h"

namespace vkptest {

template <class T>
class GuardedDest {
public:
    static constexpr size_t kCanary = 8;
    static constexpr T kFill = T(0xA5A5u);

    GuardedDest(size_t n, GuardedBuffer::Guard guard, size_t slack = 0)
        : n_(n), after_(guard == GuardedBuffer::Guard::After), buf_((n + kCanary) * sizeof(T), guard, slack) {
        T* all = buf_.as<T>();
        for (size_t i = 0; i < n + kCanary; ++i) all[i] = kFill;
    }

    T* data() const { return buf_.as<T>() + (after_ ? kCanary : 0); }
    std::vector<T> head(size_t k) const { return std::vector<T>(data(), data() + k); }

    // Canaries intact and units [k, n) unwritten.
    bool UnwrittenFrom(size_t k) const {
        const T* all = buf_.as<T>();
        const size_t canaryAt = after_ ? 0 : n_;
        for (size_t i = 0; i < kCanary; ++i)
            if (all[canaryAt + i] != kFill) return false;
        for (size_t i = k; i < n_; ++i)
            if (data()[i] != kFill) return false;
        return true;
    }

private:
    size_t n_;
    bool after_;
    GuardedBuffer buf_;
};

// Where a test string sits: flush against a guard page after or before it,
// and (16u) at an odd address.
struct Placement {
    GuardedBuffer::Guard guard;
    size_t slack;
};

template <class T>
std::vector<Placement> EditPlacements() {
    std::vector<Placement> p = {{GuardedBuffer::Guard::After, 0}, {GuardedBuffer::Guard::Before, 0}};
    if (sizeof(T) == 2) p.push_back({GuardedBuffer::Guard::After, 1});
    return p;
}

}  // namespace vkptest
