// The subject print of a pattern set's search, the needs of a pattern and
// the copy of them a set reads.
#include "regexp/find/subject_print.h"

#include "kernels/rare_byte_search.h"
#include "regexp/find/analysis.h"

namespace vkp::regexp {

namespace {

static_assert(sizeof(GroupEntry) == kSetEntryBytes);  // the entry is group id 0's

// ASCII letters in lower case, other bytes as they are.
struct FoldTable {
    u8 to[256] = {};
    constexpr FoldTable() {
        for (int c = 0; c < 256; ++c) to[c] = u8(c - 'A') < 26 ? u8(c | 0x20) : u8(c);
    }
};
constexpr FoldTable kFold{};

VKP_INLINE u32 Fold(u8 c) { return kFold.to[c]; }

VKP_INLINE u32 PairKey(u32 first, u32 second) { return (first & 0x7F) << 7 | (second & 0x7F); }

// Adds a need unless it is there already; false when there is no room.
bool AddNeed(u16 need, u16* needs, u8* count) {
    for (int k = 0; k < *count; ++k)
        if (needs[k] == need) return true;
    if (*count == kMaxNeeds) return false;
    needs[(*count)++] = need;
    return true;
}

}  // namespace

int NeedOfByte(u8 b) { return int(kByteKey | Fold(b)); }

int NeedOfPair(u8 first, u8 second) { return int(PairKey(Fold(first), Fold(second))); }

void BuildPrint(const u8* s, int len, SubjectPrint* p) {
    __builtin_memset(p->bits, 0, sizeof p->bits);
    u8* bytes = p->bits + kPairBytes;
    u32 prev = Fold(s[0]);
    bytes[prev] = 1;
    for (int i = 1; i < len; ++i) {
        const u32 c = Fold(s[i]);
        const u32 key = PairKey(prev, c);
        bytes[c] = 1;
        p->bits[key >> 3] |= u8(1u << (key & 7));
        prev = c;
    }
}

void AddLiteralNeeds(const u8* lit, int n, bool caseless, u16* needs, u8* count) {
    // The rarest pairs first, as English text goes; a caseless search
    // folds ASCII letters only, so pairs with other bytes are left out.
    bool taken[kMaxLiteralPairs] = {};
    const int pairs = n - 1 < kMaxLiteralPairs ? n - 1 : kMaxLiteralPairs;
    while (*count < kMaxNeeds) {
        int best = -1, bestScore = 0;
        for (int k = 0; k < pairs; ++k) {
            if (taken[k] || (caseless && (lit[k] >= 0x80 || lit[k + 1] >= 0x80))) continue;
            const int score = kernels::rare_detail::ScoreOf(lit[k], true) + kernels::rare_detail::ScoreOf(lit[k + 1], true);
            if (best < 0 || score < bestScore) best = k, bestScore = score;
        }
        if (best < 0) return;
        taken[best] = true;
        AddNeed(u16(NeedOfPair(lit[best], lit[best + 1])), needs, count);
    }
}

void AddByteNeed(u8 b, u16* needs, u8* count) { AddNeed(u16(NeedOfByte(b)), needs, count); }

const SetEntry* SetEntryFor(RegExpState* state) {
    if (const SetEntry* e = KeptSetEntry(state)) return e;
    const Analysis* an = KeptAnalysis(state);
    alignas(Analysis) u8 local[sizeof(Analysis)];
    if (!an) {  // worked out on the pattern's first search
        bool kept;
        an = AnalysisFor(state, reinterpret_cast<Analysis*>(local), &kept);
        if (!kept) ClearAnalysisStamp(state);
    }
    SetEntry e{};
    e.stamp = kSetEntryStamp + u32(state->patternKind);
    e.options = state->options;
    e.count = state->instructionCount;
    e.groupCount = state->groupCount;
    e.lastLiteralIndex = state->lastLiteralIndex;
    for (int k = 0; k < kMaxNeeds && an->needCount; ++k) {
        const int key = an->needs[k < an->needCount ? k : 0];
        e.at[k] = u16(NeedAt(key));
        e.mask[k] = NeedMask(key);
    }
    auto* kept = reinterpret_cast<SetEntry*>(state->workArea);
    *kept = e;
    return kept;
}

}  // namespace vkp::regexp
