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

// Units for case and comparison tests: printable ASCII with probability
// asciiShare, else any unit value (16u: most of them from the range where
// the case mappings lie, some from the top of the range).
template <class T>
std::vector<T> MixedUnits(Rng& rng, size_t n, double asciiShare) {
    std::uniform_real_distribution<double> coin(0.0, 1.0);
    std::vector<T> v(n);
    for (T& u : v) {
        const double r = coin(rng);
        if (r < asciiShare) u = T(RandomInt(rng, 0x20, 0x7F));
        else if (sizeof(T) == 1 || r < asciiShare + (1 - asciiShare) / 4) u = T(RandomInt(rng, 0, (1 << (8 * sizeof(T))) - 1));
        else if (r < asciiShare + (1 - asciiShare) / 2) u = T(RandomInt(rng, 0x1E00, 0x24FF));
        else u = T(RandomInt(rng, 0x80, 0x5FF));
    }
    return v;
}

}  // namespace vkptest
