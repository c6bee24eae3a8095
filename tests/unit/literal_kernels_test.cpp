// The multi-literal search (the leftmost literal, and every literal that
// occurs), the rare-byte substring search and the class-run finder against
// plain loops on seeded random inputs: literal sets of 1 to 5000 literals of
// 1 to 64 bytes (exact and caseless, bytes 0x80 to 0xFF,
// literals that share prefixes, overlap or repeat), every subject length to
// 300 and some large ones, flush against an inaccessible page on either side.
// The kernels run at the width chosen at attach (the suite runs at both).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kernels/active.h"
#include "kernels/literal_set.h"
#include "kernels/rare_byte_search.h"
#include "regexp/match/literal_scan.h"
#include "support/placements.h"
#include "support/random_text.h"

namespace vkptest {
namespace {

using Bytes = std::vector<vkp8u>;
using Guard = GuardedBuffer::Guard;
namespace k = vkp::kernels;

// Letters in both cases, bytes 0x20 away from letters, and high bytes whose
// low seven bits are letters: every way a caseless compare can go wrong.
const vkp8u kAlphabet[] = {'a', 'A', 'b', 'B', 'z', 'Z', '@', '`', '[', '{', 0x80, 0xC1, 0xE1, 0xFF};

vkp8u RandomByte(Rng& rng) { return kAlphabet[RandomInt(rng, 0, int(sizeof kAlphabet) - 1)]; }

Bytes RandomBytes(Rng& rng, int n) {
    Bytes v(static_cast<size_t>(n));
    for (vkp8u& c : v) c = RandomByte(rng);
    return v;
}

vkp8u FoldByte(vkp8u c) { return c >= 'A' && c <= 'Z' ? vkp8u(c | 0x20) : c; }

bool At(const Bytes& s, size_t p, const Bytes& f, bool folded) {
    if (p + f.size() > s.size()) return false;
    for (size_t i = 0; i < f.size(); ++i)
        if (folded ? FoldByte(s[p + i]) != FoldByte(f[i]) : s[p + i] != f[i]) return false;
    return true;
}

// Leftmost position, then lowest index.
std::pair<int, int> RefFind(const Bytes& s, const std::vector<Bytes>& lits, bool folded) {
    for (size_t p = 0; p < s.size(); ++p)
        for (size_t i = 0; i < lits.size(); ++i)
            if (At(s, p, lits[i], folded)) return {int(p), int(i)};
    return {-1, -1};
}

// Literals of lo to hi bytes; about half reuse an earlier one: its prefix
// extended, a piece of it, or the whole of it (a repeat).
std::vector<Bytes> RandomLiterals(Rng& rng, int count, int lo, int hi) {
    std::vector<Bytes> lits;
    for (int i = 0; i < count; ++i) {
        const int n = RandomInt(rng, lo, hi);
        Bytes f = RandomBytes(rng, n);
        if (i > 0 && RandomInt(rng, 0, 1)) {
            const Bytes& o = lits[size_t(RandomInt(rng, 0, i - 1))];
            const int from = RandomInt(rng, 0, 2) == 0 ? RandomInt(rng, 0, int(o.size()) - 1) : 0;
            const int take = std::min(n, int(o.size()) - from);
            std::copy(o.begin() + from, o.begin() + from + take, f.begin());
        }
        lits.push_back(f);
    }
    return lits;
}

// A subject with up to three literals planted (case flipped at random).
Bytes Subject(Rng& rng, int len, const std::vector<Bytes>& lits) {
    Bytes s = RandomBytes(rng, len);
    for (int h = RandomInt(rng, 0, 3); h > 0; --h) {
        const Bytes& f = lits[size_t(RandomInt(rng, 0, int(lits.size()) - 1))];
        if (int(f.size()) > len) continue;
        const int p = RandomInt(rng, 0, len - int(f.size()));
        for (size_t i = 0; i < f.size(); ++i) {
            const vkp8u c = f[i];
            s[size_t(p) + i] = (c | 0x20) >= 'a' && (c | 0x20) <= 'z' && RandomInt(rng, 0, 1) ? vkp8u(c ^ 0x20) : c;
        }
    }
    return s;
}

struct Compiled {
    std::vector<uint64_t> mem;
    const k::LiteralSet* set = nullptr;
};

Compiled Compile(const std::vector<Bytes>& lits, bool folded) {
    std::vector<const vkp8u*> ptrs;
    std::vector<int> lens;
    size_t total = 0;
    for (const Bytes& f : lits) ptrs.push_back(f.data()), lens.push_back(int(f.size())), total += f.size();
    Compiled c;
    const size_t bytes = k::LiteralSetBytes(int(lits.size()), total);
    c.mem.resize(bytes / 8 + 1);
    // One byte short of the bound is refused; the bound itself suffices.
    EXPECT_FALSE(k::BuildLiteralSet(ptrs.data(), lens.data(), int(lits.size()), folded, c.mem.data(), bytes - 1));
    if (k::BuildLiteralSet(ptrs.data(), lens.data(), int(lits.size()), folded, c.mem.data(), bytes))
        c.set = reinterpret_cast<const k::LiteralSet*>(c.mem.data());
    return c;
}

std::vector<int> LargeSetLengths() {
    std::vector<int> lens;
    for (int n = 0; n <= 70; ++n) lens.push_back(n);
    for (int n : {127, 128, 129, 300, 1000, 4096 + 7}) lens.push_back(n);
    return lens;
}

TEST(LiteralKernels, SetsAgainstPlainLoop) {
    struct Case {
        int count, lo, hi;
        bool folded;
    };
    const Case cases[] = {{1, 1, 1, false},  {1, 5, 9, true},    {2, 1, 3, false},   {3, 2, 2, true},
                          {8, 3, 6, false},  {8, 1, 64, true},   {9, 2, 5, false},   {17, 3, 3, true},
                          {32, 4, 12, false}, {32, 1, 4, true},  {33, 3, 8, false},  {33, 1, 64, true},
                          {300, 4, 10, true}, {300, 1, 6, false}, {1000, 2, 64, false}, {5000, 3, 12, true}};
    Rng rng(20261125);
    for (const Case& c : cases) {
        const std::vector<Bytes> lits = RandomLiterals(rng, c.count, c.lo, c.hi);
        const Compiled comp = Compile(lits, c.folded);
        ASSERT_NE(comp.set, nullptr) << c.count;
        const bool large = c.count > 100;
        for (Guard g : {Guard::After, Guard::Before}) {
            for (int len : large ? LargeSetLengths() : Lengths()) {
                if (len > 4096 + 7) continue;
                GuardedBuffer buf(size_t(len), g);
                const Bytes s = Subject(rng, len, lits);
                const vkp8u* p = buf.fill(s.data(), s.size());
                int which = -2;
                const int pos = k::active::FindLiterals(p, len, comp.set, &which);
                const std::pair<int, int> want = RefFind(s, lits, c.folded);
                ASSERT_EQ(pos, want.first) << "count " << c.count << " len " << len;
                if (pos >= 0) {
                    ASSERT_EQ(which, want.second) << "count " << c.count << " len " << len;
                }
                // Which literals occur anywhere, in one pass.
                Bytes seen((lits.size() + 7) / 8), wantSeen(seen.size());
                int occurring = 0;
                for (size_t i = 0; i < lits.size(); ++i)
                    for (size_t q = 0; q < s.size(); ++q)
                        if (At(s, q, lits[i], c.folded)) {
                            wantSeen[i / 8] |= vkp8u(1u << (i % 8)), ++occurring;
                            break;
                        }
                ASSERT_EQ(k::active::MarkLiterals(p, len, comp.set, seen.data()), occurring) << c.count << " " << len;
                ASSERT_EQ(seen, wantSeen) << "count " << c.count << " len " << len;
            }
        }
    }
}

TEST(LiteralKernels, BuildRefusesBadSets) {
    const vkp8u a[] = {'a', 'b'};
    const vkp8u* lits[] = {a, a};
    const int good[] = {2, 1}, empty[] = {2, 0};
    uint64_t mem[64];
    EXPECT_TRUE(k::BuildLiteralSet(lits, good, 2, false, mem, sizeof mem));
    EXPECT_FALSE(k::BuildLiteralSet(lits, empty, 2, false, mem, sizeof mem));
    EXPECT_FALSE(k::BuildLiteralSet(lits, good, 0, false, mem, sizeof mem));
    EXPECT_FALSE(k::BuildLiteralSet(lits, good, 2, false, reinterpret_cast<char*>(mem) + 4, sizeof mem - 8));
    EXPECT_EQ(k::LiteralSetBytes(0, 0), 0u);
}

// Every needle length to 40 at the offsets chosen for it and at random ones
// (any two offsets must give the same result), and the driver's literal
// search, which picks one of the filters for a caseless needle. The rarest
// byte leads the probes: in "testing" the 'g', and the second is none of the
// most common letters.
TEST(LiteralKernels, RareByteSearchAgainstPlainLoop) {
    const std::string w = "testing";
    const vkp::u32 probes = k::RareProbeOffsets(reinterpret_cast<const vkp8u*>(w.data()), int(w.size()), true);
    EXPECT_EQ(w[probes & 0xFFFF], 'g');
    EXPECT_NE(w[probes >> 16], 't');
    EXPECT_NE(w[probes >> 16], 'e');
    Rng rng(7);
    for (bool folded : {false, true}) {
        for (Guard g : {Guard::After, Guard::Before}) {
            for (int len : Lengths()) {
                const int m = RandomInt(rng, 1, 40);
                const std::vector<Bytes> needle = {RandomBytes(rng, m)};
                const Bytes s = Subject(rng, len, needle);
                GuardedBuffer buf(size_t(len), g);
                const vkp8u* p = buf.fill(s.data(), s.size());
                const vkp8u* f = needle[0].data();
                const vkp::u32 chosen = k::RareProbeOffsets(f, m, folded);
                const vkp::u32 random = vkp::u32(RandomInt(rng, 0, m - 1)) | vkp::u32(RandomInt(rng, 0, m - 1)) << 16;
                const int want = RefFind(s, needle, folded).first;
                for (vkp::u32 at : {chosen, random}) {
                    ASSERT_LT(int(at & 0xFFFF), m);
                    ASSERT_LT(int(at >> 16), m);
                    const int got = folded ? k::active::FindSubFoldedRareFwd(p, len, f, m, at)
                                           : k::active::FindSubRareFwd(p, len, f, m, at);
                    ASSERT_EQ(got, m > len ? -1 : want) << "len " << len << " m " << m << " folded " << folded;
                }
                ASSERT_EQ(vkp::regexp::FindLiteral(p, len, f, m, folded), m > len ? -1 : want) << len << " " << m;
            }
        }
    }
}

// Runs of n members for n on both sides of 1, 16 and 32, on subjects made
// of runs of members and non-members of random lengths.
TEST(LiteralKernels, MemberRunsAgainstPlainLoop) {
    Rng rng(11);
    for (Guard g : {Guard::After, Guard::Before}) {
        for (int len : Lengths()) {
            vkp8u low[16] = {};
            std::vector<vkp8u> members, others;
            for (int c = 0; c < 256; ++c) {
                const bool in = c < 128 && RandomInt(rng, 0, 2) == 0;
                if (in) low[c & 15] |= vkp8u(1u << (c >> 4));
                (in ? members : others).push_back(vkp8u(c));
            }
            Bytes s;
            for (bool in = RandomInt(rng, 0, 1); int(s.size()) < len; in = !in) {
                const std::vector<vkp8u>& from = in ? members : others;
                for (int r = RandomInt(rng, 1, RandomInt(rng, 0, 3) ? 12 : 70); r > 0 && int(s.size()) < len; --r)
                    s.push_back(from[size_t(RandomInt(rng, 0, int(from.size()) - 1))]);
            }
            GuardedBuffer buf(size_t(len), g);
            const vkp8u* p = buf.fill(s.data(), s.size());
            for (int n : {1, 2, 3, 7, 15, 16, 17, 31, 32, 33, 40, 64, 65}) {
                int want = -1;
                for (int i = 0, run = 0; i < len && want < 0; ++i) {
                    run = (s[size_t(i)] < 128 && (low[s[size_t(i)] & 15] >> (s[size_t(i)] >> 4) & 1)) ? run + 1 : 0;
                    if (run >= n) want = i - n + 1;
                }
                ASSERT_EQ(k::active::FindMemberRun(p, len, low, n), want) << "len " << len << " n " << n;
            }
        }
    }
}

}  // namespace
}  // namespace vkptest
