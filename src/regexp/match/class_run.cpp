#include "regexp/match/class_run.h"

#include <tmmintrin.h>

namespace vkp::regexp {

namespace {

// A bit for each byte of the 16 at p that is not an ASCII member: the low
// nibble picks the members' high nibbles from the table, the high nibble
// its own bit (none for bytes at or above 128).
VKP_INLINE unsigned Misses(const u8* p, __m128i table) {
    const __m128i bitOf = _mm_setr_epi8(1, 2, 4, 8, 16, 32, 64, -128, 0, 0, 0, 0, 0, 0, 0, 0);
    const __m128i low4 = _mm_set1_epi8(0x0F);
    const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i lo = _mm_shuffle_epi8(table, _mm_and_si128(x, low4));
    const __m128i hi = _mm_shuffle_epi8(bitOf, _mm_and_si128(_mm_srli_epi16(x, 4), low4));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_and_si128(lo, hi), _mm_setzero_si128())));
}

constexpr ClassBits TypeBits(u8 mask, bool negated) {
    ClassBits k{};
    for (int c = 0; c < 128; ++c)
        if (((KindOf(c) & mask) != 0) != negated) {
            k.bits[c >> 5] |= u32(1) << (c & 31);
            k.nibbles[c & 15] |= static_cast<u8>(1u << (c >> 4));
        }
    return k;
}

// By mask (no kind, digit, space, word, line feed) and negation.
constexpr ClassBits kTypeBits[5][2] = {
    {TypeBits(0, false), TypeBits(0, true)},
    {TypeBits(kKindDigit, false), TypeBits(kKindDigit, true)},
    {TypeBits(kKindSpace, false), TypeBits(kKindSpace, true)},
    {TypeBits(kKindWord, false), TypeBits(kKindWord, true)},
    {TypeBits(kKindNewline, false), TypeBits(kKindNewline, true)},
};

}  // namespace

const ClassBits& TypeMembers(TypeTest t) {
    const int row = t.mask == kKindDigit ? 1 : t.mask == kKindSpace ? 2 : t.mask == kKindWord ? 3 : t.mask == kKindNewline ? 4 : 0;
    return kTypeBits[row][t.negated];
}

long AsciiMemberRun(const u8* p, long n, const ClassBits& k) {
    if (n < 16) {
        long i = 0;
        while (i < n && p[i] < 0x80 && ((k.bits[p[i] >> 5] >> (p[i] & 31)) & 1)) ++i;
        return i;
    }
    const __m128i table = _mm_loadu_si128(reinterpret_cast<const __m128i*>(k.nibbles));
    long i = 0;
    for (; i + 16 <= n; i += 16)
        if (const unsigned miss = Misses(p + i, table)) return i + __builtin_ctz(miss);
    if (i == n) return n;
    // The last block, flush with the end: the bytes before i in it are members.
    const unsigned miss = Misses(p + n - 16, table);
    return miss ? n - 16 + __builtin_ctz(miss) : n;
}

}  // namespace vkp::regexp
