// Literal searches of the find driver.
#include "regexp/match/literal_scan.h"

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

// Caseless: candidates for the first byte in either case come from the
// character kernel; the next candidate of each case is kept, so neither is
// looked for twice over the same bytes.
int FindLiteral(const u8* s, int len, const u8* lit, int n, bool caseless) {
    if (n <= 0 || n > len) return -1;
    if (!caseless) {
        int i = -1;
        if (n == 1) search::FindC(s, len, lit[0], &i);
        else search::Find(s, len, lit, n, &i);
        return i;
    }
    const int starts = len - n + 1;  // candidate starts 0 .. starts - 1
    const u8 up = Upper(lit[0]);
    const u8 low = static_cast<u8>(up - 'A') < 26 ? up | 0x20 : up;
    int nextUp = -2, nextLow = low == up ? -1 : -2;  // -2: not looked for yet
    for (int from = 0; from < starts;) {
        if (nextUp != -1 && nextUp < from) {
            const int i = FindByte(s + from, starts - from, up);
            nextUp = i < 0 ? -1 : from + i;
        }
        if (nextLow != -1 && nextLow < from) {
            const int i = FindByte(s + from, starts - from, low);
            nextLow = i < 0 ? -1 : from + i;
        }
        const int cand = nextUp < 0 ? nextLow : nextLow < 0 ? nextUp : (nextUp < nextLow ? nextUp : nextLow);
        if (cand < 0) return -1;
        if (RestEq(s + cand, lit, n)) return cand;
        from = cand + 1;
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
    const u8 up = Upper(lit[0]);
    const u8 low = static_cast<u8>(up - 'A') < 26 ? up | 0x20 : up;
    // Candidate starts below `below`, looked for from the top; len means
    // not looked for yet.
    int nextUp = len, nextLow = low == up ? -1 : len;
    for (int below = len - n + 1; below > 0;) {
        if (nextUp != -1 && nextUp >= below) nextUp = FindByteRev(s, below, up);
        if (nextLow != -1 && nextLow >= below) nextLow = FindByteRev(s, below, low);
        const int cand = nextUp > nextLow ? nextUp : nextLow;
        if (cand < 0) return -1;
        if (RestEq(s + cand, lit, n)) return cand;
        below = cand;
    }
    return -1;
}

}  // namespace vkp::regexp
