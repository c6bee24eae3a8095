// Many literals searched in one pass: the leftmost position in a subject
// where any literal of a set starts, and which literal.
//
// A set is compiled once (BuildLiteralSet) into caller memory of at most
// LiteralSetBytes(count, total bytes) bytes; the search reads it and writes
// nothing. Two forms, chosen by the number of literals:
// - up to kMaxBucketLiterals: eight buckets of literals, each position
//   filtered on the first one to three bytes (as many as the shortest literal
//   has) by nibble-table lookups, a vector of positions at a time; a position
//   that passes is verified against the literals of the buckets it passed for.
// - more: a table of the literals keyed on their first four bytes (fewer
//   for shorter literals), behind bit filters on the first three bytes
//   (hashed; exact for shorter literals) and on the keys; four positions
//   from one load.
// Caseless sets (folded) take a to z and A to Z as equal; other bytes,
// 0x80 to 0xFF included, compare exactly. Nothing outside [s, s + len) is read.
//
// Result: the leftmost start position; among the literals that start there,
// the one given first (lowest index), which is what a backtracking matcher
// gives for an alternation of the literals in that order. A caller that wants
// the longest at a position passes the literals longest first.
//
// How the matcher is meant to call it:
// - An alternation of literals (anywhere a literal-only alternation decides
//   where a match can start: top level, or the pattern's first item) compiles
//   its alternatives, in order, into the pattern's work area at compile time;
//   the find driver calls active::FindLiterals(s + from, len - from, set, &k)
//   and starts the matcher at the position found (or stops at -1). When the
//   whole pattern is the alternation, the position and literal k are the match.
// - A caseless single literal uses FindSubRareFwd (kernels/rare_byte_search.h)
//   with the offsets chosen once by RareProbeOffsets; a literal behind a
//   leading class run or at a bounded distance into the match is searched the
//   same way and the matcher started at the positions that can reach it.
// - A pattern set keeps each pattern's required literals (a pattern that
//   needs one of several lists them all); the set compiles all of them into
//   one literal set kept with the set, with a table from literal index to
//   pattern. Each find call clears a bitmap of count bits on the stack, calls
//   active::MarkLiterals once over the subject, and runs only the patterns
//   with a literal marked (and those that require none); the others get
//   their no-match record without being started.
// - Runs of a class of at least N bytes: FindMemberRun (kernels/class_runs.h).
#pragma once

#include "floor/base.h"

namespace vkp::kernels {

// One literal of a compiled set: its bytes (folded to lower case in a
// caseless set) at `offset` from the set's start, its length and its index
// in the order given. The bucket form keeps an array of them; the table form
// keeps packed records (length, index, next record of the key's chain, then
// the bytes) and makes an entry of the record it walks to.
struct LiteralEntry {
    u32 offset, len, index, pad;
};

// The compiled form, at the start of the caller's memory (8-byte aligned).
struct LiteralSet {
    static constexpr int kBuckets = 8;
    u32 bytes;          // size of the whole compiled form
    u32 count, minLen;  // literals, and the shortest one's length
    u32 entriesOff;     // bucket form: LiteralEntry[count], by bucket; table form: the records
    u8 table;           // 1: the keyed table form, 0: the bucket form
    u8 folded;          // caseless
    u8 prefix;          // bucket form: bytes filtered, 1 to 3
    u8 keyKinds;        // table form: bit k - 1 for the key lengths k (1 to 4) held
    u8 filterLog;       // table form: the filters below hold 2^filterLog bits
    // Bucket form: byte c at prefix position k passes for bucket b when bit b
    // is set in lo[k][c & 15] and in hi[k][c >> 4].
    u8 lo[3][16], hi[3][16];
    u16 bucketFirst[kBuckets + 1];  // bucket b holds entries [bucketFirst[b], bucketFirst[b + 1])
    // Table form: chain heads (offset of the first record, kNoEntry if none)
    // and the three bit filters, at these offsets.
    u32 headsOff, headMask, filtersOff;

    static constexpr u32 kNoEntry = 0xFFFFFFFFu;
    // Bit filters of the table form, one per key length k at FilterOffset(k):
    // the byte of one-byte literals (256 bits), the two bytes of two-byte
    // ones (exact at 2^16 bits, else hashed), hashes of the three bytes of
    // three-byte ones and of the first four of longer ones. And at
    // FilterOffset(5), a hash of the first three bytes of every literal of
    // three or more: one test a position for most sets, the key filter then
    // tested before a chain is walked. The hashed filters have 2^filterLog
    // bits, from 2^12 to 2^16 as the count grows: a small set stays small.
    static constexpr int kMinFilterLog = 12, kMaxFilterLog = 16;
    static constexpr u32 FilterBytes(int log) { return 32 + 4 * (u32(1) << log) / 8; }
    u32 FilterOffset(int k) const { return k == 1 ? 0 : 32 + u32(k - 2) * ((u32(1) << filterLog) / 8); }

    const LiteralEntry* Entries() const {
        return reinterpret_cast<const LiteralEntry*>(reinterpret_cast<const u8*>(this) + entriesOff);
    }
    const u8* At(u32 offset) const { return reinterpret_cast<const u8*>(this) + offset; }
};

// Sets of more literals than this take the table form.
constexpr int kMaxBucketLiterals = 32;
// The most literals a set holds.
constexpr int kMaxLiterals = 1 << 20;

// Bytes that the compiled form of `count` literals holding `totalBytes` bytes
// together needs at most (0 when count is out of range).
size_t LiteralSetBytes(int count, size_t totalBytes);

// Compiles lits[0, count) (lengths lens[]) into mem (memBytes bytes, 8-byte
// aligned). False, with nothing usable in mem, when count is out of range, a
// literal is empty, or mem is too small or misaligned.
bool BuildLiteralSet(const u8* const* lits, const int* lens, int count, bool folded, void* mem, size_t memBytes);

// The table form's scans (the same at every width).
int FindLiteralsTable(const u8* s, int len, const LiteralSet* set, int* which);
int MarkLiteralsTable(const u8* s, int len, const LiteralSet* set, u8* seen);

namespace literal_detail {

// Bytes with A to Z turned into a to z, all at once: a byte below 0x80 gets
// its top bit set by adding 0x3F when it is at least 'A', and by adding 0x25
// when it is above 'Z'.
template <class W>
VKP_INLINE W FoldWord(W x) {
    constexpr W ones = W(~W(0)) / 0xFF;  // 0x0101...
    const W t = x & (ones * 0x7F);
    const W upper = (t + ones * 0x3F) & ~(t + ones * 0x25) & ~x & (ones * 0x80);
    return x | (upper >> 2);
}

// True when the sizeof(W) bytes at x equal those at f (folded: f holds
// lower case, x either case).
template <class W>
VKP_INLINE bool EqualWord(const u8* x, const u8* f, bool folded) {
    W a, b;
    __builtin_memcpy(&a, x, sizeof a);
    __builtin_memcpy(&b, f, sizeof b);
    return (folded ? FoldWord(a) : a) == b;
}

// True when the literal e stands at s + p (it must end by s + len): eight
// bytes at a time, the last eight flush with its end.
VKP_INLINE bool EntryAt(const u8* s, int len, int p, const LiteralSet* set, const LiteralEntry& e) {
    const u32 n = e.len;
    if (u32(len - p) < n) return false;
    const u8* x = s + p;
    const u8* f = set->At(e.offset);
    const bool folded = set->folded;
    if (n >= 8) {
        for (u32 i = 0;;) {
            if (!EqualWord<uint64_t>(x + i, f + i, folded)) return false;
            if ((i += 8) >= n) return true;
            if (i + 8 > n) i = n - 8;
        }
    }
    if (n >= 4) return EqualWord<u32>(x, f, folded) && EqualWord<u32>(x + n - 4, f + n - 4, folded);
    for (u32 i = 0; i < n; ++i)
        if ((folded && u8(x[i] - 'A') < 26 ? u8(x[i] | 0x20) : x[i]) != f[i]) return false;
    return true;
}

// The buckets that position p passes for, from the scalar tables.
VKP_INLINE u32 BucketsAt(const u8* s, int p, const LiteralSet* set) {
    u32 b = 0xFF;
    for (int k = 0; k < set->prefix; ++k) {
        const u8 c = s[p + k];
        b &= set->lo[k][c & 15] & set->hi[k][c >> 4];
    }
    return b;
}

// The lowest index of a literal of the buckets `b` that stands at p, or -1.
VKP_INLINE int VerifyBuckets(const u8* s, int len, int p, u32 b, const LiteralSet* set) {
    const LiteralEntry* e = set->Entries();
    u32 best = LiteralSet::kNoEntry;
    while (b) {
        const int k = __builtin_ctz(b);
        b &= b - 1;
        for (u32 i = set->bucketFirst[k]; i < set->bucketFirst[k + 1] && e[i].index < best; ++i)
            if (EntryAt(s, len, p, set, e[i])) {
                best = e[i].index;
                break;
            }
    }
    return best == LiteralSet::kNoEntry ? -1 : int(best);
}

// Marks in `seen` (bit i: literal i) every literal of the buckets `b` that
// stands at p; the count of those newly marked.
VKP_INLINE int MarkBuckets(const u8* s, int len, int p, u32 b, const LiteralSet* set, u8* seen) {
    const LiteralEntry* e = set->Entries();
    int n = 0;
    for (; b; b &= b - 1) {
        const int k = __builtin_ctz(b);
        for (u32 i = set->bucketFirst[k]; i < set->bucketFirst[k + 1]; ++i) {
            const u32 x = e[i].index;
            if (!((seen[x >> 3] >> (x & 7)) & 1) && EntryAt(s, len, p, set, e[i])) seen[x >> 3] |= u8(1u << (x & 7)), ++n;
        }
    }
    return n;
}

// The bucket filter over one vector of positions: a mask of the positions
// i .. i + kBytes - 1 that pass for some bucket (P prefix bytes).
template <class V, int P>
struct BucketFilter {
    using Reg = typename V::Reg;
    Reg lo[P], hi[P], low4;
    explicit BucketFilter(const LiteralSet* set) : low4(V::Splat8(0x0F)) {
        for (int k = 0; k < P; ++k) lo[k] = V::Table(set->lo[k]), hi[k] = V::Table(set->hi[k]);
    }
    VKP_INLINE uint32_t Hits(const u8* p) const {
        Reg acc = Pass(V::LoadU(p), 0);
        if constexpr (P > 1) acc = V::And(acc, Pass(V::LoadU(p + 1), 1));
        if constexpr (P > 2) acc = V::And(acc, Pass(V::LoadU(p + 2), 2));
        return V::ByteMask(V::Equal8(acc, V::Zero())) ^ V::kAllBytes;
    }
    VKP_INLINE Reg Pass(Reg x, int k) const {
        return V::And(V::Lookup(lo[k], V::And(x, low4)), V::Lookup(hi[k], V::And(V::ShiftRight16(x, 4), low4)));
    }
};

// Calls visit(p, buckets) for the candidates `mask` of the block at i in
// order, up to lastPos; the first p for which it returns true, or -1.
template <class Visit>
VKP_INLINE int VisitBlock(const u8* s, int i, uint32_t mask, int lastPos, const LiteralSet* set, Visit& visit) {
    for (; mask; mask &= mask - 1) {
        const int p = i + __builtin_ctz(mask);
        if (p > lastPos) return -1;
        if (visit(p, BucketsAt(s, p, set))) return p;
    }
    return -1;
}

// Every position up to the last a literal fits at whose prefix passes the
// filter of some bucket, in order, handed to visit(p, buckets) until it
// returns true (that p is returned; -1 when it never does).
template <class V, int P, class Visit>
int ScanBuckets(const u8* s, int len, const LiteralSet* set, Visit& visit) {
    constexpr int B = V::kBytes;
    const int lastPos = len - int(set->minLen);
    if (len < B + P - 1) {
        if constexpr (V::kHasNarrower) {
            return ScanBuckets<typename V::Narrower, P>(s, len, set, visit);
        } else {
            for (int p = 0; p <= lastPos; ++p) {
                const u32 b = BucketsAt(s, p, set);
                if (b && visit(p, b)) return p;
            }
            return -1;
        }
    }
    const BucketFilter<V, P> f(set);
    int i = 0;
    for (; i + B + P - 1 <= len; i += B) {
        if (i > lastPos) return -1;
        if (const uint32_t m = f.Hits(s + i)) {
            const int p = VisitBlock(s, i, m, lastPos, set, visit);
            if (p >= 0) return p;
        }
    }
    if (i > lastPos) return -1;
    // The last positions, in one block flush with the end.
    const int j = len - B - (P - 1);
    return VisitBlock(s, j, f.Hits(s + j) & uint32_t(~0ull << (i - j)), lastPos, set, visit);
}

template <class V, class Visit>
int ScanBuckets(const u8* s, int len, const LiteralSet* set, Visit& visit) {
    switch (set->prefix) {
    case 1: return ScanBuckets<V, 1>(s, len, set, visit);
    case 2: return ScanBuckets<V, 2>(s, len, set, visit);
    default: return ScanBuckets<V, 3>(s, len, set, visit);
    }
}

}  // namespace literal_detail

// The leftmost position of a literal of `set` in s[0, len), or -1; the
// literal's index through which when found. The form in the width list.
template <class V>
int FindLiterals(const u8* s, int len, const LiteralSet* set, int* which) {
    if (set->table) return FindLiteralsTable(s, len, set, which);
    auto first = [&](int p, u32 b) {
        const int k = literal_detail::VerifyBuckets(s, len, p, b, set);
        if (k >= 0) *which = k;
        return k >= 0;
    };
    return literal_detail::ScanBuckets<V>(s, len, set, first);
}

// Every literal of `set` that occurs in s[0, len), in one pass: bit i of
// seen (set->count bits, cleared by the caller, or holding the literals
// already known) is set when literal i occurs. The count of literals newly
// marked. The form in the width list: what a pattern set needs to know which
// of its patterns' required literals a subject holds.
template <class V>
int MarkLiterals(const u8* s, int len, const LiteralSet* set, u8* seen) {
    if (set->table) return MarkLiteralsTable(s, len, set, seen);
    int n = 0;
    auto mark = [&](int p, u32 b) {
        n += literal_detail::MarkBuckets(s, len, p, b, set, seen);
        return false;
    };
    literal_detail::ScanBuckets<V>(s, len, set, mark);
    return n;
}

}  // namespace vkp::kernels
