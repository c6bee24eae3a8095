// A destination of n units flush against an inaccessible page, with canary
// units on its other side: a write one unit too far either crashes or
// changes a canary. Unwritten units keep a fill pattern, so tests can also
// check that a call wrote nothing.
#pragma once

#include <cstring>
#include <vector>

#include "support/guarded_buffer.h"
#include "support/placements.h"

namespace vkptest {

template <class T>
class GuardedDest {
public:
    static constexpr size_t kCanary = 8;
    static constexpr T kFill = T(0xA5A5u);

    GuardedDest(size_t n, GuardedBuffer::Guard guard, size_t slack = 0)
        : n_(n), after_(guard == GuardedBuffer::Guard::After), buf_((n + kCanary) * sizeof(T), guard, slack) {
        const std::vector<T> fill(n + kCanary, kFill);
        buf_.fill(fill.data(), fill.size());
    }

    // The units may sit at an odd address: tests touch them only through
    // head() and put(), byte-wise.
    T* data() const { return buf_.as<T>() + (after_ ? kCanary : 0); }
    std::vector<T> head(size_t k) const { return Units(data(), k); }
    void put(const std::vector<T>& v) const {
        if (!v.empty()) std::memcpy(static_cast<void*>(data()), v.data(), v.size() * sizeof(T));
    }

    // Canaries intact and units [k, n) unwritten.
    bool UnwrittenFrom(size_t k) const {
        const std::vector<T> canary = Units(buf_.as<T>() + (after_ ? 0 : n_), kCanary);
        const std::vector<T> rest = Units(data() + k, n_ - k);
        for (T u : canary)
            if (u != kFill) return false;
        for (T u : rest)
            if (u != kFill) return false;
        return true;
    }

    // The units begin with want, and nothing behind them is written.
    bool Holds(const std::vector<T>& want) const { return head(want.size()) == want && UnwrittenFrom(want.size()); }

    // k units from p, read byte-wise.
    static std::vector<T> Units(const T* p, size_t k) {
        std::vector<T> v(k);
        if (k) std::memcpy(v.data(), static_cast<const void*>(p), k * sizeof(T));
        return v;
    }

private:
    size_t n_;
    bool after_;
    GuardedBuffer buf_;
};

}  // namespace vkptest
