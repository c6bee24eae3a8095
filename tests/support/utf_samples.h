// Seeded random UTF-8 and UTF-16 that mixes well-formed text with every
// kind of ill-formed input the lenient converters map by their rules.
#pragma once

#include <cstdint>
#include <vector>

#include "support/random_text.h"

namespace vkptest {

// Appends the UTF-8 form of v in `len` bytes (overlong when longer than
// needed; up to six bytes).
inline void PutUtf8(std::vector<uint8_t>& out, uint32_t v, int len) {
    if (len == 1) return out.push_back(uint8_t(v & 0x7F));
    const uint8_t lead = uint8_t(0xFF00 >> len);
    out.push_back(uint8_t(lead | (v >> (6 * (len - 1)))));
    for (int k = len - 2; k >= 0; --k) out.push_back(uint8_t(0x80 | ((v >> (6 * k)) & 0x3F)));
}

// At least n bytes (then cut to n): ASCII runs, two-, three- and four-byte
// characters, surrogates, five- and six-byte forms, overlong forms, stray
// bytes. With wellFormed, only ASCII and the shortest forms of scalar values.
inline std::vector<uint8_t> RandomUtf8(Rng& rng, size_t n, bool wellFormed = false) {
    std::vector<uint8_t> out;
    while (out.size() < n) {
        switch (RandomInt(rng, 0, wellFormed ? 3 : 9)) {
            case 0:
                // ASCII runs, some across several 32-byte blocks.
                for (int k = RandomInt(rng, 1, RandomInt(rng, 0, 3) ? 24 : 130); k > 0; --k)
                    out.push_back(uint8_t(RandomInt(rng, 0x20, 0x7E)));
                break;
            case 1: PutUtf8(out, uint32_t(RandomInt(rng, 0x80, 0x7FF)), 2); break;
            case 2: {
                uint32_t v = uint32_t(RandomInt(rng, 0x800, 0xFFFF));
                if (wellFormed && v >= 0xD800 && v < 0xE000) v = 0x4E00;
                PutUtf8(out, v, 3);
                break;
            }
            case 3: PutUtf8(out, uint32_t(RandomInt(rng, 0x10000, 0x10FFFF)), 4); break;
            case 4: PutUtf8(out, uint32_t(RandomInt(rng, 0xD800, 0xDFFF)), 3); break;
            case 5: PutUtf8(out, uint32_t(RandomInt(rng, 0x110000, 0x1FFFFF)), 4); break;
            case 6: PutUtf8(out, uint32_t(RandomInt(rng, 0x200000, 0x7FFFFFFF)), RandomInt(rng, 5, 6)); break;
            case 7: PutUtf8(out, uint32_t(RandomInt(rng, 0, 0xFFFF)), RandomInt(rng, 2, 6)); break;  // often overlong
            case 8: out.push_back(uint8_t(RandomInt(rng, 0x80, 0xFF))); break;
            default: {  // a sequence with a byte missing or replaced
                std::vector<uint8_t> seq;
                PutUtf8(seq, uint32_t(RandomInt(rng, 0x80, 0x10FFFF)), RandomInt(rng, 2, 4));
                seq[size_t(RandomInt(rng, 1, int(seq.size()) - 1))] = uint8_t(RandomInt(rng, 0, 1) ? 0x41 : 0xC3);
                if (RandomInt(rng, 0, 1)) seq.pop_back();
                out.insert(out.end(), seq.begin(), seq.end());
            }
        }
    }
    out.resize(n);
    return out;
}

// n units: ASCII runs, two- and three-byte BMP values, surrogate pairs and
// lone surrogates of both kinds.
inline std::vector<uint16_t> RandomUtf16(Rng& rng, size_t n) {
    std::vector<uint16_t> out;
    while (out.size() < n) {
        switch (RandomInt(rng, 0, 5)) {
            case 0:
                for (int k = RandomInt(rng, 1, RandomInt(rng, 0, 3) ? 24 : 130); k > 0; --k)
                    out.push_back(uint16_t(RandomInt(rng, 0x20, 0x7E)));
                break;
            case 1: out.push_back(uint16_t(RandomInt(rng, 0x80, 0x7FF))); break;
            case 2: out.push_back(uint16_t(RandomInt(rng, 0x800, 0xFFFF))); break;
            case 3:
                out.push_back(uint16_t(RandomInt(rng, 0xD800, 0xDBFF)));
                out.push_back(uint16_t(RandomInt(rng, 0xDC00, 0xDFFF)));
                break;
            case 4: out.push_back(uint16_t(RandomInt(rng, 0xD800, 0xDFFF))); break;
            default:
                for (int k = RandomInt(rng, 1, 12); k > 0; --k) out.push_back(uint16_t(RandomInt(rng, 0x391, 0x3C9)));
        }
    }
    out.resize(n);
    return out;
}

}  // namespace vkptest
