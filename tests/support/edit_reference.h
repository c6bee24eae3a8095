// Plain reference definitions of the editing and conversion functions, on
// vectors, for the differential tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vkptest {

template <class T>
using Units = std::vector<T>;

template <class T>
struct SplitResult {
    std::vector<Units<T>> pieces;  // as written to the slots (cut to capacity)
    int status = 0;
};

// Split into slots of the given capacities.
template <class T>
SplitResult<T> RefSplit(const Units<T>& s, T delim, const std::vector<int>& capacity) {
    SplitResult<T> r;
    size_t pos = 0;
    for (size_t slot = 0; slot < capacity.size() && pos < s.size(); ++slot) {
        size_t end = pos;
        while (end < s.size() && s[end] != delim) ++end;
        size_t keep = end - pos;
        if (keep > size_t(capacity[slot])) keep = size_t(capacity[slot]), r.status = 27;
        r.pieces.emplace_back(s.begin() + pos, s.begin() + pos + keep);
        pos = end + 1;
    }
    if (pos < s.size()) r.status = 26;
    return r;
}

// The kept run of a trim: [first, last) of units not in the set.
template <class T>
Units<T> RefTrim(const Units<T>& s, const Units<T>& set, bool start, bool end) {
    auto in = [&](T u) {
        for (T m : set)
            if (m == u) return true;
        return false;
    };
    size_t b = 0, e = s.size();
    if (start)
        while (b < e && in(s[b])) ++b;
    if (end)
        while (e > b && in(s[e - 1])) --e;
    return Units<T>(s.begin() + b, s.begin() + e);
}

struct Converted {
    size_t consumed = 0;
    std::vector<uint16_t> units;  // 16-bit results in machine order before any swap
    std::vector<uint8_t> bytes;
};

inline uint16_t Swapped(uint16_t u, bool swap) { return swap ? uint16_t((u << 8) | (u >> 8)) : u; }

// UTF-8 to UTF-16 by the per-character rules; stops before a character that
// needs more room than is left or is cut off by the end of the source.
inline Converted RefUtf8To16(const std::vector<uint8_t>& s, size_t room, bool swap) {
    Converted r;
    static const uint32_t kMask[7] = {0, 0, 0x1F, 0x0F, 0x07, 0x03, 0x01};
    static const uint32_t kLimit[6] = {0x7F, 0x7FF, 0xFFFF, 0x1FFFFF, 0x3FFFFFF, 0x7FFFFFFF};
    size_t i = 0;
    while (i < s.size() && r.units.size() < room) {
        const uint32_t b = s[i];
        uint32_t v = b;
        size_t len = 1;
        int ones = 0;
        while (ones < 8 && (b & (0x80u >> ones))) ++ones;
        if (ones >= 2 && ones <= 6) {
            uint32_t x = b & kMask[ones];
            bool good = true, cut = false;
            for (int k = 1; k < ones; ++k) {
                if (i + k >= s.size()) {
                    cut = true;
                    break;
                }
                if ((s[i + k] & 0xC0) != 0x80) {
                    good = false;
                    break;
                }
                x = (x << 6) | (s[i + k] & 0x3F);
            }
            if (cut) break;
            int shortest = 1;
            while (x > kLimit[shortest - 1]) ++shortest;
            if (good && shortest == ones) v = x, len = size_t(ones);
        }
        if (v <= 0xFFFF) {
            r.units.push_back(Swapped(uint16_t(v), swap));
        } else {
            if (room - r.units.size() < 2) break;
            r.units.push_back(Swapped(uint16_t(0xD800 | (((v - 0x10000) >> 10) & 0x3FF)), swap));
            r.units.push_back(Swapped(uint16_t(0xDC00 | ((v - 0x10000) & 0x3FF)), swap));
        }
        i += len;
    }
    r.consumed = i;
    return r;
}

inline Converted RefUtf16To8(const std::vector<uint16_t>& s, size_t room, bool swap) {
    Converted r;
    size_t i = 0;
    while (i < s.size() && r.bytes.size() < room) {
        uint32_t u = Swapped(s[i], swap);
        size_t used = 1;
        if (u >= 0xD800 && u < 0xDC00 && i + 1 < s.size()) {
            const uint32_t next = Swapped(s[i + 1], swap);
            if (next >= 0xDC00 && next < 0xE000) u = 0x10000 + ((u - 0xD800) << 10) + (next - 0xDC00), used = 2;
        }
        std::vector<uint8_t> seq;
        if (u < 0x80) seq = {uint8_t(u)};
        else if (u < 0x800) seq = {uint8_t(0xC0 | (u >> 6)), uint8_t(0x80 | (u & 0x3F))};
        else if (u < 0x10000) seq = {uint8_t(0xE0 | (u >> 12)), uint8_t(0x80 | ((u >> 6) & 0x3F)), uint8_t(0x80 | (u & 0x3F))};
        else
            seq = {uint8_t(0xF0 | (u >> 18)), uint8_t(0x80 | ((u >> 12) & 0x3F)), uint8_t(0x80 | ((u >> 6) & 0x3F)),
                   uint8_t(0x80 | (u & 0x3F))};
        if (room - r.bytes.size() < seq.size()) break;
        r.bytes.insert(r.bytes.end(), seq.begin(), seq.end());
        i += used;
    }
    r.consumed = i;
    return r;
}

}  // namespace vkptest
