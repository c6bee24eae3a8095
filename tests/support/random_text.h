// Seeded random strings over small alphabets, so that searches hit often and
// at every kind of position.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

namespace vkptest {

using Rng = std::mt19937;

// n units drawn uniformly from base .. base + alphabet - 1.
template <class T>
std::vector<T> RandomUnits(Rng& rng, size_t n, unsigned alphabet, unsigned base = 'a') {
    std::uniform_int_distribution<unsigned> pick(0, alphabet - 1);
    std::vector<T> v(n);
    for (T& u : v) u = T(base + pick(rng));
    return v;
}

inline int RandomInt(Rng& rng, int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); }

}  // namespace vkptest
