// Literal searches of the find driver.
#include "regexp/match/literal_scan.h"

#include <tmmintrin.h>

#include "search/find.h"

namespace vkp::regexp {

namespace {

VKP_INLINE u8 Upper(u8 c) { return static_cast<u8>(c - 'a') < 26 ? c - 32 : c; }

bool RestEq(const u8* s, const u8* lit, int n) {
    for (int i = 1; i < n; ++i)
        if (Upper(s[i]) != Upper(lit[i])) return false;
    return true;
}

int FindByte(const u8* s, int len, u8 c) {
    int i = -1;
    search::FindC(s, len, c, &i);
    return i;
}

int FindByteRev(const u8* s, int len, u8 c) {
    int i = -1;
    search::FindRevC(s, len, c, &i);
    return i;
}

}  // namespace

// Caseless candidates for a first byte that is a letter: one pass that
// folds the subject to lower case (OR 0x20 only maps the other case of a
// letter onto it), 16 bytes per step, never beyond len.
int FindFolded(const u8* s, int len, u8 lower) {
    const __m128i want = _mm_set1_epi8(static_cast<char>(lower));
    const __m128i fold = _mm_set1_epi8(0x20);
    int i = 0;
    for (; i + 16 <= len; i += 16) {
        const __m128i x = _mm_or_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i)), fold);
        const int hits = _mm_movemask_epi8(_mm_cmpeq_epi8(x, want));
        if (hits) return i + __builtin_ctz(static_cast<unsigned>(hits));
    }
    for (; i < len; ++i)
        if ((s[i] | 0x20) == lower) return i;
    return -1;
}

int FindFoldedRev(const u8* s, int len, u8 lower) {
    const __m128i want = _mm_set1_epi8(static_cast<char>(lower));
    const __m128i fold = _mm_set1_epi8(0x20);
    int i = len;
    for (; i >= 16; i -= 16) {
        const __m128i x = _mm_or_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i - 16)), fold);
        const int hits = _mm_movemask_epi8(_mm_cmpeq_epi8(x, want));
        if (hits) return i - 16 + 31 - __builtin_clz(static_cast<unsigned>(hits));
    }
    for (--i; i >= 0; --i)
        if ((s[i] | 0x20) == lower) return i;
    return -1;
}

int FindAnyOf4(const u8* s, int len, const u8 bytes[4]) {
    const __m128i b0 = _mm_set1_epi8(static_cast<char>(bytes[0])), b1 = _mm_set1_epi8(static_cast<char>(bytes[1]));
    const __m128i b2 = _mm_set1_epi8(static_cast<char>(bytes[2])), b3 = _mm_set1_epi8(static_cast<char>(bytes[3]));
    int i = 0;
    for (; i + 16 <= len; i += 16) {
        const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
        const __m128i hit = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(x, b0), _mm_cmpeq_epi8(x, b1)),
                                         _mm_or_si128(_mm_cmpeq_epi8(x, b2), _mm_cmpeq_epi8(x, b3)));
        const int hits = _mm_movemask_epi8(hit);
        if (hits) return i + __builtin_ctz(static_cast<unsigned>(hits));
    }
    for (; i < len; ++i)
        if (s[i] == bytes[0] || s[i] == bytes[1] || s[i] == bytes[2] || s[i] == bytes[3]) return i;
    return -1;
}

// Sixteen bytes at a time: the low nibble picks a mask of high nibbles
// from the set's table, the high nibble picks its own bit (none for bytes
// at or above 128); a byte is in the set when the two meet.
int FindInNibbleSet(const u8* s, int len, const NibbleSet& set) {
    const __m128i table = _mm_loadu_si128(reinterpret_cast<const __m128i*>(set.low));
    const __m128i bitOf = _mm_setr_epi8(1, 2, 4, 8, 16, 32, 64, -128, 0, 0, 0, 0, 0, 0, 0, 0);
    const __m128i nibble = _mm_set1_epi8(0x0F);
    int i = 0;
    for (; i + 16 <= len; i += 16) {
        const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
        const __m128i lo = _mm_shuffle_epi8(table, _mm_and_si128(x, nibble));
        const __m128i hi = _mm_shuffle_epi8(bitOf, _mm_and_si128(_mm_srli_epi16(x, 4), nibble));
        const __m128i miss = _mm_cmpeq_epi8(_mm_and_si128(lo, hi), _mm_setzero_si128());
        const int hits = _mm_movemask_epi8(miss) ^ 0xFFFF;
        if (hits) return i + __builtin_ctz(static_cast<unsigned>(hits));
    }
    for (; i < len; ++i)
        if (s[i] < 128 && ((set.low[s[i] & 15] >> (s[i] >> 4)) & 1)) return i;
    return -1;
}

namespace {

bool IsLetter(u8 c) { return static_cast<u8>((c | 0x20) - 'a') < 26; }

}  // namespace

int FindLiteral(const u8* s, int len, const u8* lit, int n, bool caseless) {
    if (n <= 0 || n > len) return -1;
    if (!caseless) {
        int i = -1;
        if (n == 1) search::FindC(s, len, lit[0], &i);
        else search::Find(s, len, lit, n, &i);
        return i;
    }
    const int starts = len - n + 1;  // candidate starts 0 .. starts - 1
    for (int from = 0; from < starts;) {
        const int i = IsLetter(lit[0]) ? FindFolded(s + from, starts - from, lit[0] | 0x20)
                                       : FindByte(s + from, starts - from, lit[0]);
        if (i < 0) return -1;
        if (RestEq(s + from + i, lit, n)) return from + i;
        from += i + 1;
    }
    return -1;
}

int FindLiteralRev(const u8* s, int len, const u8* lit, int n, bool caseless) {
    if (n <= 0 || n > len) return -1;
    if (!caseless) {
        int i = -1;
        if (n == 1) search::FindRevC(s, len, lit[0], &i);
        else search::FindRev(s, len, lit, n, &i);
        return i;
    }
    for (int below = len - n + 1; below > 0;) {
        const int cand = IsLetter(lit[0]) ? FindFoldedRev(s, below, lit[0] | 0x20) : FindByteRev(s, below, lit[0]);
        if (cand < 0) return -1;
        if (RestEq(s + cand, lit, n)) return cand;
        below = cand;
    }
    return -1;
}

}  // namespace vkp::regexp
