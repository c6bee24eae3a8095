// 16-byte blocks of the UTF converters.
//
// UTF-8 to UTF-16: a block of 16 bytes that holds only ASCII and well-formed,
// shortest two- and three-byte characters is decoded at once: every byte
// position computes the value its character would have if it started there,
// and a shuffle from a table keeps the positions where characters start
// (continuation bytes drop out). A character cut by the block's end is left
// for the next block. Any other block (four-byte forms, ill-formed bytes) is
// refused and the caller converts it character by character.
//
// UTF-16 to UTF-8: eight units below 0x800 are encoded in their 16-bit lanes
// and packed by one table shuffle; otherwise four units per 32-bit lane
// group are encoded into their one-, two- or three-byte forms side by side
// and packed the same way. Blocks with a surrogate are refused.
//
// Each routine writes whole vectors: the caller guarantees 16 source bytes
// (8u) or units (16u) and 16 units (8u -> 16u) or 32 bytes (16u -> 8u) of room;
// only the reported counts are output, the rest is overwritten later or lies
// beyond the reported length.
#pragma once

#include <tmmintrin.h>

#include "floor/base.h"

namespace vkp::kernels {

namespace detail {

struct ShuffleTable {
    alignas(16) u8 shuffle[256][16];
    u8 count[256];
};

// For each index m, a shuffle that keeps keep(m, j) leading bytes of each
// kWidth-byte lane j, packed to the front, and how many kUnit-byte units
// that makes.
template <int kLanes, int kWidth, int kUnit, class Keep>
constexpr ShuffleTable MakeTable(Keep keep) {
    ShuffleTable t{};
    for (int m = 0; m < 256; ++m) {
        int k = 0;
        for (int j = 0; j < kLanes; ++j)
            for (int b = 0; b < keep(m, j); ++b) t.shuffle[m][k++] = u8(kWidth * j + b);
        for (int b = k; b < 16; ++b) t.shuffle[m][b] = 0x80;
        t.count[m] = u8(k / kUnit);
    }
    return t;
}

// The 16-bit lanes whose bit is set (decoded characters, in units).
inline constexpr ShuffleTable kKeepUnits = MakeTable<8, 2, 2>([](int m, int j) { return (m >> j) & 1 ? 2 : 0; });
// Each 16-bit lane's low byte, and its high byte when its bit is set.
inline constexpr ShuffleTable kPackPairs = MakeTable<8, 2, 1>([](int m, int j) { return 1 + ((m >> j) & 1); });
// Four 32-bit lanes of 1 + bit j + bit j + 4 bytes each.
inline constexpr ShuffleTable kPackSequences =
    MakeTable<4, 4, 1>([](int m, int j) { return 1 + ((m >> j) & 1) + ((m >> (j + 4)) & 1); });

VKP_INLINE __m128i Set8(int v) { return _mm_set1_epi8(char(v)); }
VKP_INLINE unsigned Mask8(__m128i v) { return unsigned(_mm_movemask_epi8(v)); }
VKP_INLINE __m128i ClassOf(__m128i b, int mask, int value) {
    return _mm_cmpeq_epi8(_mm_and_si128(b, Set8(mask)), Set8(value));
}

template <bool kSwap>
VKP_INLINE __m128i SwapIf(__m128i v) {
    if constexpr (kSwap) return _mm_or_si128(_mm_slli_epi16(v, 8), _mm_srli_epi16(v, 8));
    else return v;
}

VKP_INLINE __m128i Shuffle(__m128i v, const ShuffleTable& t, unsigned idx) {
    return _mm_shuffle_epi8(v, _mm_load_si128(reinterpret_cast<const __m128i*>(t.shuffle[idx])));
}

VKP_INLINE void Store(void* p, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }

// Values at each byte position of one 8-byte half (widened to 16 bits): the
// byte itself, or the value of the two- or three-byte character it leads.
// A three-byte lead has bit 4 clear, so one payload mask serves both.
VKP_INLINE __m128i Values(__m128i b, __m128i n1, __m128i n2, __m128i l2, __m128i l3) {
    const __m128i low6 = _mm_set1_epi16(0x3F);
    const __m128i t = _mm_or_si128(_mm_slli_epi16(_mm_and_si128(b, _mm_set1_epi16(0x1F)), 6), _mm_and_si128(n1, low6));
    const __m128i t3 = _mm_or_si128(_mm_slli_epi16(t, 6), _mm_and_si128(n2, low6));
    const __m128i v = _mm_xor_si128(b, _mm_and_si128(_mm_xor_si128(b, t), l2));
    return _mm_xor_si128(v, _mm_and_si128(_mm_xor_si128(v, t3), l3));
}

// The same for blocks without three-byte characters.
VKP_INLINE __m128i Values2(__m128i b, __m128i n1, __m128i l2) {
    const __m128i t = _mm_or_si128(_mm_slli_epi16(_mm_and_si128(b, _mm_set1_epi16(0x1F)), 6),
                                   _mm_and_si128(n1, _mm_set1_epi16(0x3F)));
    return _mm_xor_si128(b, _mm_and_si128(_mm_xor_si128(b, t), l2));
}

}  // namespace detail

// Decodes the block at s into d; returns the bytes consumed (0: refused)
// and sets `units` to the units written.
template <bool kSwap>
VKP_INLINE int DecodeUtf8Block(const u8* s, u16* d, int& units) {
    using namespace detail;
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s));
    const __m128i z = _mm_setzero_si128();
    const unsigned high = Mask8(b);
    if (high == 0) {  // all ASCII
        Store(d, SwapIf<kSwap>(_mm_unpacklo_epi8(b, z)));
        Store(d + 8, SwapIf<kSwap>(_mm_unpackhi_epi8(b, z)));
        units = 16;
        return 16;
    }
    const __m128i l2 = ClassOf(b, 0xE0, 0xC0), l3 = ClassOf(b, 0xF0, 0xE0);
    const unsigned L2 = Mask8(l2), L3 = Mask8(l3), C = Mask8(ClassOf(b, 0xC0, 0x80));
    if (((~high & 0xFFFF) | C | L2 | L3) != 0xFFFF) return 0;  // four-byte and longer leads
    // A character cut by the block's end waits for the next block. Taken from
    // the last two bytes directly: the next block's address depends on it.
    const u32 b14 = s[14], b15 = s[15];
    const int k = (b14 & 0xF0) == 0xE0 ? 14 : (b15 >= 0xC0 && b15 < 0xF0) ? 15 : 16;
    const unsigned inBlock = (1u << k) - 1;
    // Continuations exactly where the leads expect them, and none expected
    // at the cut character's lead.
    const unsigned expected = (L2 << 1) | (L3 << 1) | (L3 << 2);
    if ((C & inBlock) != (expected & inBlock) || ((expected >> k) & 1)) return 0;
    // Overlong forms: C0 and C1 leads, E0 followed by less than A0.
    const __m128i n1 = _mm_srli_si128(b, 1), n2 = _mm_srli_si128(b, 2);
    const unsigned overlong2 = Mask8(ClassOf(b, 0xFE, 0xC0)) & L2;
    const unsigned overlong3 = Mask8(_mm_cmpeq_epi8(b, Set8(0xE0))) & ~Mask8(ClassOf(n1, 0x20, 0x20)) & L3;
    if ((overlong2 | overlong3) & inBlock) return 0;
    const unsigned keep = (~high | L2 | L3) & inBlock;
    const unsigned kLo = keep & 0xFF, kHi = keep >> 8;
    __m128i lo, hi;
    if (L3 == 0) {  // ASCII and two-byte characters only
        lo = Values2(_mm_unpacklo_epi8(b, z), _mm_unpacklo_epi8(n1, z), _mm_unpacklo_epi8(l2, l2));
        hi = Values2(_mm_unpackhi_epi8(b, z), _mm_unpackhi_epi8(n1, z), _mm_unpackhi_epi8(l2, l2));
    } else {
        lo = Values(_mm_unpacklo_epi8(b, z), _mm_unpacklo_epi8(n1, z), _mm_unpacklo_epi8(n2, z),
                    _mm_unpacklo_epi8(l2, l2), _mm_unpacklo_epi8(l3, l3));
        hi = Values(_mm_unpackhi_epi8(b, z), _mm_unpackhi_epi8(n1, z), _mm_unpackhi_epi8(n2, z),
                    _mm_unpackhi_epi8(l2, l2), _mm_unpackhi_epi8(l3, l3));
    }
    Store(d, SwapIf<kSwap>(Shuffle(lo, kKeepUnits, kLo)));
    Store(d + kKeepUnits.count[kLo], SwapIf<kSwap>(Shuffle(hi, kKeepUnits, kHi)));
    units = kKeepUnits.count[kLo] + kKeepUnits.count[kHi];
    return k;
}

// Narrows 16 units below 0x80 at s to bytes at d; false (nothing counts as
// written) when one of them is not ASCII.
template <bool kSwap>
VKP_INLINE bool NarrowAscii16(const u16* s, u8* d) {
    using namespace detail;
    const __m128i a = SwapIf<kSwap>(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s)));
    const __m128i b = SwapIf<kSwap>(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s + 8)));
    if (_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(_mm_or_si128(a, b), _mm_set1_epi16(short(0xFF80))), _mm_setzero_si128())) != 0xFFFF)
        return false;
    Store(d, _mm_packus_epi16(a, b));
    return true;
}

// Encodes the 8 units at s into d; returns the units consumed (0: refused,
// a surrogate) and sets `bytes` to the bytes written.
template <bool kSwap>
VKP_INLINE int EncodeUtf8Block(const u16* s, u8* d, int& bytes) {
    using namespace detail;
    const __m128i v = SwapIf<kSwap>(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s)));
    const __m128i sur = _mm_cmpeq_epi16(_mm_and_si128(v, _mm_set1_epi16(short(0xF800))), _mm_set1_epi16(short(0xD800)));
    if (Mask8(sur)) return 0;

    if (Mask8(_mm_cmpeq_epi16(_mm_and_si128(v, _mm_set1_epi16(short(0xF800))), _mm_setzero_si128())) == 0xFFFF) {
        // One- and two-byte forms only: each 16-bit lane holds its sequence.
        const __m128i is2 = _mm_cmpgt_epi16(v, _mm_set1_epi16(0x7F));
        const __m128i two = _mm_or_si128(_mm_or_si128(_mm_srli_epi16(v, 6), _mm_set1_epi16(short(0x80C0))),
                                         _mm_slli_epi16(_mm_and_si128(v, _mm_set1_epi16(0x3F)), 8));
        const __m128i r = _mm_or_si128(_mm_andnot_si128(is2, v), _mm_and_si128(is2, two));
        const unsigned idx = Mask8(_mm_packs_epi16(is2, is2)) & 0xFF;
        Store(d, Shuffle(r, kPackPairs, idx));
        bytes = kPackPairs.count[idx];
        return 8;
    }
    int at = 0;
    for (int half = 0; half < 2; ++half) {
        const __m128i x = half ? _mm_unpackhi_epi16(v, _mm_setzero_si128()) : _mm_unpacklo_epi16(v, _mm_setzero_si128());
        const __m128i is2 = _mm_cmpgt_epi32(x, _mm_set1_epi32(0x7F)), is3 = _mm_cmpgt_epi32(x, _mm_set1_epi32(0x7FF));
        const __m128i low6 = _mm_set1_epi32(0x3F);
        const __m128i d2 = _mm_or_si128(_mm_or_si128(_mm_set1_epi32(0x80C0), _mm_srli_epi32(x, 6)),
                                        _mm_slli_epi32(_mm_and_si128(x, low6), 8));
        const __m128i d3 = _mm_or_si128(
            _mm_or_si128(_mm_set1_epi32(0x8080E0), _mm_srli_epi32(x, 12)),
            _mm_or_si128(_mm_slli_epi32(_mm_and_si128(_mm_srli_epi32(x, 6), low6), 8), _mm_slli_epi32(_mm_and_si128(x, low6), 16)));
        __m128i r = _mm_or_si128(_mm_andnot_si128(is2, x), _mm_and_si128(is2, d2));
        r = _mm_or_si128(_mm_andnot_si128(is3, r), _mm_and_si128(is3, d3));
        const unsigned idx = unsigned(_mm_movemask_ps(_mm_castsi128_ps(is2))) |
                             unsigned(_mm_movemask_ps(_mm_castsi128_ps(is3))) << 4;
        Store(d + at, Shuffle(r, kPackSequences, idx));
        at += kPackSequences.count[idx];
    }
    bytes = at;
    return 8;
}

}  // namespace vkp::kernels
