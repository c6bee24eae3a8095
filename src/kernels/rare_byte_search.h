// Substring search filtered on the needle's two rarest bytes rather than its
// first and last: for a caseless search of an English word, "t...g" pairs are
// everywhere, while a 'k' and a 'y' at their distance are seldom.
//
// RareProbeOffsets ranks the needle's bytes by a fixed commonness order (the
// letters of English text by frequency, then digits and punctuation, other
// bytes as rare) and picks two offsets; the search tests, a vector of
// candidate positions at a time, the bytes at those offsets, and verifies the
// whole needle where both agree. A letter of a caseless search is probed as
// (byte | 0x20) == its lower-case form. Nothing outside [s, s + len) is read.
#pragma once

#include "kernels/substring_search.h"

namespace vkp::kernels {

namespace rare_detail {

// Commonness of a byte in text, 0 for the rarest; a letter's upper case
// ranks below its lower case.
struct Commonness {
    u8 score[256] = {};
    constexpr Commonness() {
        const char order[] = " etaoinsrhldcumfpgwybv,.kx\n-'0\"1j2q:z3()/954867=_;ETAOINSRHLDCUMFPGWYBVKXJQZ";
        const int n = int(sizeof order) - 1;
        for (int i = 0; i < n; ++i) score[u8(order[i])] = u8(n + 1 - i);
        for (int c = 0x80; c < 0x100; ++c) score[c] = 1;
    }
};

inline constexpr Commonness kCommonness{};

VKP_INLINE int ScoreOf(u8 c, bool folded) {
    if (folded && u8(c - 'A') < 26) c |= 0x20;
    return kCommonness.score[c];
}

template <class V, bool kFolded>
int FindRare(const u8* s, int len, const u8* f, int m, u32 at) {
    if (m < 1 || m > len) return -1;
    const int a = int(at & 0xFFFF), b = int(at >> 16);
    if (m == 1) {
        if constexpr (kFolded) {
            if (u8((f[0] | 0x20) - 'a') < 26) return FindFoldedFwd<V>(s, len, u8(f[0] | 0x20));
        }
        return FindUnitFwd<V>(s, len, f[0]);
    }
    using detail::EqualMiddle;
    using detail::Probe;
    constexpr int W = V::kBytes;
    const int lastPos = len - m;
    const Probe<u8, kFolded> pa(f[a]), pb(f[b]);
    if (lastPos + 1 < W) {
        if constexpr (V::kHasNarrower) {
            return FindRare<typename V::Narrower, kFolded>(s, len, f, m, at);
        } else {
            for (int i = 0; i <= lastPos; ++i)
                if (pa.Unit(s[i + a]) && pb.Unit(s[i + b]) && EqualMiddle<u8, kFolded>(s + i, f, m)) return i;
            return -1;
        }
    }
    const detail::VectorProbe<V, u8, kFolded> va(pa), vb(pb);
    auto verify = [&](int j, auto mask) {
        for (; mask; mask &= mask - 1) {
            const int k = j + LowestBit(mask);
            if (EqualMiddle<u8, kFolded>(s + k, f, m)) return k;
        }
        return -1;
    };
    auto candidates = [&](int j) { return V::ByteMask(V::And(va.Hits(V::LoadU(s + j + a)), vb.Hits(V::LoadU(s + j + b)))); };
    int i = 0;
    // Two blocks a step, their masks tested together.
    using M = typename V::PairMask;
    for (; i + 2 * W - 1 <= lastPos; i += 2 * W) {
        const M mask = M(candidates(i)) | M(candidates(i + W)) << W;
        if (VKP_UNLIKELY(mask != 0)) {
            const int k = verify(i, mask);
            if (k >= 0) return k;
        }
    }
    for (; i + W - 1 <= lastPos; i += W)
        if (const uint32_t mask = candidates(i)) {
            const int k = verify(i, mask);
            if (k >= 0) return k;
        }
    if (i > lastPos) return -1;
    const int j = lastPos - W + 1;
    return verify(j, candidates(j) & uint32_t(~0ull << (i - j)));
}

}  // namespace rare_detail

// Two offsets into f[0, m) (m >= 1), packed as first | second << 16: the
// rarest byte, and the rarest of another value at least half the needle
// away from it (neighbouring bytes go together, as the "ng" of "-ing" does,
// and would filter little more than one of them), else the rarest elsewhere.
inline u32 RareProbeOffsets(const u8* f, int m, bool folded) {
    auto score = [folded](u8 c) { return rare_detail::ScoreOf(c, folded); };
    auto fold = [folded](u8 c) { return folded && u8(c - 'A') < 26 ? u8(c | 0x20) : c; };
    int a = 0;
    for (int i = 1; i < m; ++i)
        if (score(f[i]) < score(f[a])) a = i;
    const int apart = m / 2 > 1 ? m / 2 : 1;
    int b = -1;
    for (int pass = 0; pass < 2 && b < 0; ++pass)
        for (int i = 0; i < m; ++i) {
            if (i == a || (pass == 0 && (fold(f[i]) == fold(f[a]) || (i > a ? i - a : a - i) < apart))) continue;
            if (b < 0 || score(f[i]) < score(f[b])) b = i;
        }
    if (b < 0) b = a;
    return u32(a) | u32(b) << 16;
}

// Whether a caseless search of f[0, m) filters better on its rarest bytes
// than on its first and last: when both of those are among the commonest
// bytes of text (a space, e t a o i n s r), as in "error" or "thanks",
// their pairs pass everywhere. Otherwise the first/last filter already
// passes seldom and is as fast or faster (its probes are a whole vector
// apart less often, and it verifies two bytes fewer).
inline bool RareProbesPay(const u8* f, int m) {
    const int common = rare_detail::ScoreOf('r', false);
    return m >= 3 && rare_detail::ScoreOf(f[0], true) >= common && rare_detail::ScoreOf(f[m - 1], true) >= common;
}

// The leftmost start of f[0, m) in s[0, len), or -1, filtered on the bytes
// at the two offsets packed in `at` (RareProbeOffsets). The forms in the width
// list: exact, and ignoring the case of a to z.
template <class V>
int FindSubRareFwd(const u8* s, int len, const u8* f, int m, u32 at) {
    return rare_detail::FindRare<V, false>(s, len, f, m, at);
}

template <class V>
int FindSubFoldedRareFwd(const u8* s, int len, const u8* f, int m, u32 at) {
    return rare_detail::FindRare<V, true>(s, len, f, m, at);
}

}  // namespace vkp::kernels
