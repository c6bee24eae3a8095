// The subject print of a pattern set's search and the test of a pattern's
// need against it.
#include "regexp/find/subject_print.h"

#include "regexp/find/analysis.h"

namespace vkp::regexp {

namespace {

VKP_INLINE u32 Fold(u8 c) { return u8(c - 'A') < 26 ? u32(c | 0x20) : u32(c); }

VKP_INLINE u32 PairBit(u32 pair, int log) { return (pair * 0x9E3779B1u) >> (32 - log); }

void Build(SubjectPrint* p) {
    int log = 9;
    while (log < 14 && (1 << log) < 16 * p->length) ++log;
    p->pairLog = log;
    __builtin_memset(p->bytes, 0, sizeof p->bytes);
    __builtin_memset(p->pairs, 0, size_t(1) << (log - 3));
    u32 prev = Fold(p->subject[0]);
    p->bytes[prev >> 5] |= 1u << (prev & 31);
    for (int i = 1; i < p->length; ++i) {
        const u32 c = Fold(p->subject[i]);
        const u32 key = PairBit((prev & 0x7F) << 7 | (c & 0x7F), log);
        p->bytes[c >> 5] |= 1u << (c & 31);
        p->pairs[key >> 3] |= u8(1u << (key & 7));
        prev = c;
    }
    p->built = true;
}

}  // namespace

int NeedOfByte(u8 b) { return int(Fold(b)); }

int NeedOfPair(u8 first, u8 second) { return kNeedPairBit | int((Fold(first) & 0x7F) << 7 | (Fold(second) & 0x7F)); }

bool SubjectRulesOut(RegExpState* state, SubjectPrint* print) {
    const Analysis* an = KeptAnalysis(state);
    if (!an) {  // worked out on the pattern's first search
        alignas(Analysis) u8 local[sizeof(Analysis)];
        bool kept;
        an = AnalysisFor(state, reinterpret_cast<Analysis*>(local), &kept);
        if (!kept) {
            ClearAnalysisStamp(state);
            return false;
        }
    }
    const int need = an->need;
    if (need == kNeedNone) return false;
    if (!print->built) Build(print);
    if (need & kNeedPairBit) {
        const u32 key = PairBit(u32(need) & 0x3FFF, print->pairLog);
        return !((print->pairs[key >> 3] >> (key & 7)) & 1);
    }
    return !((print->bytes[need >> 5] >> (need & 31)) & 1);
}

}  // namespace vkp::regexp
