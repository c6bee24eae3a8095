// Compiling a literal set into caller memory, and the table form's scan.
#include "kernels/literal_set.h"

namespace vkp::kernels {

namespace {

constexpr size_t Align8(size_t n) { return (n + 7) & ~size_t(7); }

// Chain heads of the table form: a power of two, at least twice the count.
u32 HeadCount(int count) {
    u32 n = 16;
    while (n < 2 * u32(count)) n *= 2;
    return n;
}

VKP_INLINE u8 FoldByte(u8 c) { return u8(c - 'A') < 26 ? u8(c | 0x20) : c; }

using literal_detail::FoldWord;

// A table record: length, index and next record, then the bytes.
constexpr u32 kRecordHead = 12;

// A literal's key: its first four bytes, or all of a shorter one; k is the
// key length. Its filter bit: the key itself for one and two bytes, else a
// hash; the bit of its first three bytes in the prefix filter, another hash;
// its chain, a third.
VKP_INLINE u32 KeyOf(u32 x, int k) { return k == 4 ? x : x & ((1u << (8 * k)) - 1); }
VKP_INLINE u32 FilterBit(u32 key, int k, int log) {
    if (k == 1 || (k == 2 && log == 16)) return key;
    return (key * (k == 2 ? 0x165667B1u : k == 3 ? 0xC2B2AE35u : 0x27D4EB2Fu)) >> (32 - log);
}
VKP_INLINE u32 PrefixBit(u32 x, int log) { return ((x & 0xFFFFFF) * 0x9E3779B1u) >> (32 - log); }

// Filter bits of the table form: about sixteen a literal.
int FilterLog(int count) {
    int log = LiteralSet::kMinFilterLog;
    while (log < LiteralSet::kMaxFilterLog && (1 << log) < 16 * count) ++log;
    return log;
}
VKP_INLINE u32 ChainOf(u32 key, int k, u32 mask) { return ((key + u32(k) * 0x7F4A7C15u) * 0x85EBCA6Bu >> 7) & mask; }

VKP_INLINE u32 TestBit(const u8* bits, u32 i) { return (bits[i >> 3] >> (i & 7)) & 1u; }

// Order of two entries by their first `prefix` (folded) bytes.
bool PrefixBefore(const LiteralSet* set, const LiteralEntry& a, const LiteralEntry& b, int prefix) {
    for (int k = 0; k < prefix; ++k) {
        const u8 x = set->At(a.offset)[k], y = set->At(b.offset)[k];
        if (x != y) return x < y;
    }
    return a.index < b.index;
}

// The bucket form: entries sorted by prefix and cut into eight runs of
// neighbours (literals sharing leading bytes share a bucket, which keeps its
// nibble sets small), each run then put in index order.
void BuildBuckets(LiteralSet* set, LiteralEntry* e, int count) {
    const int prefix = set->minLen < 3 ? int(set->minLen) : 3;
    set->prefix = u8(prefix);
    for (int i = 1; i < count; ++i)
        for (int j = i; j > 0 && PrefixBefore(set, e[j], e[j - 1], prefix); --j) {
            const LiteralEntry t = e[j];
            e[j] = e[j - 1], e[j - 1] = t;
        }
    const int per = (count + LiteralSet::kBuckets - 1) / LiteralSet::kBuckets;
    for (int b = 0; b <= LiteralSet::kBuckets; ++b) set->bucketFirst[b] = u16(b * per < count ? b * per : count);
    for (int b = 0; b < LiteralSet::kBuckets; ++b) {
        LiteralEntry* first = e + set->bucketFirst[b];
        const int n = set->bucketFirst[b + 1] - set->bucketFirst[b];
        for (int i = 1; i < n; ++i)
            for (int j = i; j > 0 && first[j].index < first[j - 1].index; --j) {
                const LiteralEntry t = first[j];
                first[j] = first[j - 1], first[j - 1] = t;
            }
        for (int i = 0; i < n; ++i) {
            const u8* f = set->At(first[i].offset);
            for (int k = 0; k < prefix; ++k) {
                const u8 c = f[k], bit = u8(1u << b);
                set->lo[k][c & 15] |= bit;
                set->hi[k][c >> 4] |= bit;
                if (set->folded && u8(c - 'a') < 26) set->hi[k][(c ^ 0x20) >> 4] |= bit;
            }
        }
    }
}

VKP_INLINE u32 Load32(const u8* p) {
    u32 v;
    __builtin_memcpy(&v, p, 4);
    return v;
}
VKP_INLINE void Store32(u8* p, u32 v) { __builtin_memcpy(p, &v, 4); }

// The table form: one record a literal, its length, index and next record
// on its key's chain followed by its bytes, packed, so that the walk of a
// chain finds a literal's bytes beside its record; every literal on the
// chain of its key, chains in index order, and its key's bit in the filter
// of its kind. Records take no more room than the entries and bytes of the
// bucket form.
void BuildTable(LiteralSet* set, const u8* const* lits, const int* lens, int count, u8* mem) {
    const u32 heads = HeadCount(count);
    size_t at = set->entriesOff;
    for (int i = 0; i < count; ++i) {
        u8* r = mem + at;
        Store32(r, u32(lens[i]));
        Store32(r + 4, u32(i));
        for (int k = 0; k < lens[i]; ++k) r[kRecordHead + k] = set->folded ? FoldByte(lits[i][k]) : lits[i][k];
        at += kRecordHead + size_t(lens[i]);
    }
    const size_t recordsEnd = at;
    at = Align8(at);
    set->table = 1;
    set->headsOff = u32(at);
    set->headMask = heads - 1;
    set->filtersOff = u32(at + 4 * size_t(heads));
    u32* head = reinterpret_cast<u32*>(mem + set->headsOff);
    u8* filters = mem + set->filtersOff;
    for (u32 h = 0; h < heads; ++h) head[h] = LiteralSet::kNoEntry;
    set->filterLog = u8(FilterLog(count));
    const int log = set->filterLog;
    for (u32 i = 0; i < LiteralSet::FilterBytes(log); ++i) filters[i] = 0;
    u32 r = u32(recordsEnd);
    for (int i = count - 1; i >= 0; --i) {
        r -= kRecordHead + u32(lens[i]);
        const u8* f = mem + r + kRecordHead;
        const int k = lens[i] < 4 ? lens[i] : 4;
        u32 x = 0;
        for (int j = 0; j < k; ++j) x |= u32(f[j]) << (8 * j);
        const u32 h = ChainOf(x, k, set->headMask), bit = FilterBit(x, k, log);
        Store32(mem + r + 8, head[h]);
        head[h] = r;
        set->keyKinds |= u8(1u << (k - 1));
        filters[set->FilterOffset(k) + (bit >> 3)] |= u8(1u << (bit & 7));
        if (k >= 3) {
            const u32 pre = PrefixBit(x, log);
            filters[set->FilterOffset(5) + (pre >> 3)] |= u8(1u << (pre & 7));
        }
    }
}

}  // namespace

size_t LiteralSetBytes(int count, size_t totalBytes) {
    if (count < 1 || count > kMaxLiterals) return 0;
    size_t n = Align8(sizeof(LiteralSet)) + sizeof(LiteralEntry) * size_t(count) + Align8(totalBytes);
    if (count > kMaxBucketLiterals)
        n += 4 * size_t(HeadCount(count)) + LiteralSet::FilterBytes(FilterLog(count));
    return n;
}

bool BuildLiteralSet(const u8* const* lits, const int* lens, int count, bool folded, void* mem, size_t memBytes) {
    if (!lits || !lens || !mem || (reinterpret_cast<uintptr_t>(mem) & 7) || count < 1 || count > kMaxLiterals)
        return false;
    size_t total = 0;
    u32 minLen = ~0u;
    for (int i = 0; i < count; ++i) {
        if (lens[i] < 1 || !lits[i]) return false;
        total += size_t(lens[i]);
        if (u32(lens[i]) < minLen) minLen = u32(lens[i]);
    }
    const size_t need = LiteralSetBytes(count, total);
    if (need > memBytes || need > 0xFFFFFFFFu) return false;
    u8* base = static_cast<u8*>(mem);
    LiteralSet* set = static_cast<LiteralSet*>(mem);
    for (size_t i = 0; i < sizeof(LiteralSet); ++i) base[i] = 0;
    set->count = u32(count);
    set->minLen = minLen;
    set->folded = folded;
    set->entriesOff = u32(Align8(sizeof(LiteralSet)));
    if (count > kMaxBucketLiterals) {
        BuildTable(set, lits, lens, count, base);
    } else {
        LiteralEntry* e = reinterpret_cast<LiteralEntry*>(base + set->entriesOff);
        size_t at = set->entriesOff + sizeof(LiteralEntry) * size_t(count);
        for (int i = 0; i < count; ++i) {
            e[i] = {u32(at), u32(lens[i]), u32(i), 0};
            for (int k = 0; k < lens[i]; ++k) base[at + size_t(k)] = folded ? FoldByte(lits[i][k]) : lits[i][k];
            at += size_t(lens[i]);
        }
        BuildBuckets(set, e, count);
    }
    set->bytes = u32(need);
    return true;
}

namespace {

// The table form's scan: every position up to the last a literal fits at
// whose first bytes pass a filter, in order, handed to visit(p, x) (x: the
// four bytes there, folded in a caseless set) until it returns true; that
// p, or -1. kShort: the set holds literals of one or two bytes, which have
// filters of their own.
template <bool kShort, class Visit>
int ScanTable(const u8* s, int len, const LiteralSet* set, Visit& visit) {
    const u8* f1 = set->At(set->filtersOff);
    const u8* f2 = f1 + set->FilterOffset(2);
    const u8* fp = f1 + set->FilterOffset(5);
    const int log = set->filterLog;
    const bool folded = set->folded;
    const int lastPos = len - int(set->minLen);
    auto passes = [&](u32 x) {
        u32 pass = TestBit(fp, PrefixBit(x, log));
        if constexpr (kShort) pass |= TestBit(f2, FilterBit(x & 0xFFFF, 2, log)) | TestBit(f1, x & 0xFF);
        return pass;
    };
    int p = 0;
    // Four positions from one eight-byte load, their filter tests combined
    // without branches.
    for (; p + 8 <= len && p + 3 <= lastPos; p += 4) {
        uint64_t w;
        __builtin_memcpy(&w, s + p, 8);
        if (folded) w = FoldWord(w);
        u32 any = passes(u32(w)) | passes(u32(w >> 8)) << 1 | passes(u32(w >> 16)) << 2 | passes(u32(w >> 24)) << 3;
        for (; VKP_UNLIKELY(any); any &= any - 1) {
            const int j = __builtin_ctz(any);
            if (visit(p + j, u32(w >> (8 * j)))) return p + j;
        }
    }
    for (; p <= lastPos; ++p) {
        u32 x = 0;
        if (len - p >= 4) __builtin_memcpy(&x, s + p, 4);
        else  // the bytes past the end read as zero: a literal that fits ends before them
            for (int k = 0; k < len - p; ++k) x |= u32(s[p + k]) << (8 * k);
        if (folded) x = FoldWord(x);
        if (passes(x) && visit(p, x)) return p;
    }
    return -1;
}

// Calls fn(entry) for the literals on the chains of the keys of the four
// bytes x that pass their key filters, each chain in index order, until it
// returns true.
template <class Fn>
VKP_INLINE void ForChains(const LiteralSet* set, u32 x, Fn fn) {
    const u32* head = reinterpret_cast<const u32*>(set->At(set->headsOff));
    const u8* filters = set->At(set->filtersOff);
    for (int k = 4; k >= 1; --k) {
        if (!((set->keyKinds >> (k - 1)) & 1) ||
            !TestBit(filters + set->FilterOffset(k), FilterBit(KeyOf(x, k), k, set->filterLog)))
            continue;
        for (u32 r = head[ChainOf(KeyOf(x, k), k, set->headMask)]; r != LiteralSet::kNoEntry;) {
            const u8* rec = set->At(r);
            if (fn(LiteralEntry{r + kRecordHead, Load32(rec), Load32(rec + 4), 0})) break;
            r = Load32(rec + 8);
        }
    }
}

template <class Visit>
int ScanTable(const u8* s, int len, const LiteralSet* set, Visit& visit) {
    return (set->keyKinds & 3) ? ScanTable<true>(s, len, set, visit) : ScanTable<false>(s, len, set, visit);
}

}  // namespace

int FindLiteralsTable(const u8* s, int len, const LiteralSet* set, int* which) {
    // The lowest index of the literals standing at p (each chain is in
    // index order: its walk stops at the first found, or past the best).
    auto first = [&](int p, u32 x) {
        u32 best = LiteralSet::kNoEntry;
        ForChains(set, x, [&](const LiteralEntry& e) {
            if (e.index >= best) return true;
            if (!literal_detail::EntryAt(s, len, p, set, e)) return false;
            best = e.index;
            return true;
        });
        if (best == LiteralSet::kNoEntry) return false;
        *which = int(best);
        return true;
    };
    return ScanTable(s, len, set, first);
}

int MarkLiteralsTable(const u8* s, int len, const LiteralSet* set, u8* seen) {
    int n = 0;
    auto mark = [&](int p, u32 x) {
        ForChains(set, x, [&](const LiteralEntry& e) {
            const u32 i = e.index;
            if (!((seen[i >> 3] >> (i & 7)) & 1) && literal_detail::EntryAt(s, len, p, set, e))
                seen[i >> 3] |= u8(1u << (i & 7)), ++n;
            return false;
        });
        return false;
    };
    ScanTable(s, len, set, mark);
    return n;
}

}  // namespace vkp::kernels
