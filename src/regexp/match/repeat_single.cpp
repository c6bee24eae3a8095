// Repeats of a single item: literal bytes, \C, character types, code
// points, properties, \X, classes and back-references, greedy and lazy.
//
// Greedy: take as many items as allowed, then try the continuation at each
// count from the highest down to the minimum. Lazy: try the continuation at
// the minimum and take one more item after each failure. Both skip counts
// at which the continuation cannot start: when it begins with a literal
// byte that the subject does not have there. The forward scans run inline
// in each routine; the backtracking loops, which hold the stack frame while
// the continuation runs, are shared and keep few values alive.
#include <string.h>

#include "regexp/match/items.h"

namespace vkp::regexp {

namespace {

// The byte that a continuation at `next` must begin with, or -1 when it
// is not known.
VKP_INLINE int RequiredByte(const Instruction* next, const MatchContext* ctx) {
    if (next >= ctx->end) return -1;
    if (next->op == OP_STRING) return static_cast<const u8*>(next->d)[0];
    if (next->op == OP_CHAR) {
        const Instruction* r = RepeatAfter(next, ctx);
        return r && r->a == 0 ? -1 : static_cast<u8>(next->a);
    }
    return -1;
}

VKP_INLINE bool MayStart(const u8* p, int req, const MatchContext* ctx) {
    return req < 0 || (p < ctx->subjectEnd && LiteralEq(*p, static_cast<u8>(req), ctx->options));
}

// Continuations at p, p - step, ... down to lowest.
__attribute__((noinline)) int BacktrackFixed(const u8* p, const u8* lowest, long step, MatchContext* ctx,
                                             const Instruction* next, int budget) {
    const int req = RequiredByte(next, ctx);
    for (;; p -= step) {
        if (MayStart(p, req, ctx) && MatchHere(p, ctx, next, budget) == 0) return 0;
        if (p <= lowest) return 1;
    }
}

// Continuations at p and at each earlier character boundary down to lowest,
// for items of one character each.
__attribute__((noinline)) int BacktrackChars(const u8* p, const u8* lowest, MatchContext* ctx,
                                             const Instruction* next, int budget) {
    const int req = RequiredByte(next, ctx);
    for (;;) {
        if (MayStart(p, req, ctx) && MatchHere(p, ctx, next, budget) == 0) return 0;
        if (p <= lowest) return 1;
        p = StepBack(lowest, p);
    }
}

// Greedy repeat of items of one byte each.
template <class Test>
VKP_INLINE int GreedyBytes(const u8* pos, MatchContext* ctx, const Instruction* rep, int budget, Test test) {
    const long rem = ctx->subjectEnd - pos;
    if (rem < rep->a) return 1;
    const u8* const stop = pos + (rep->b < rem ? rep->b : rem);
    const u8* p = pos;
    while (p < stop && test(*p)) ++p;
    const u8* const lowest = pos + rep->a;
    if (p < lowest) return 1;
    return BacktrackFixed(p, lowest, 1, ctx, rep + 1, budget);
}

// Greedy repeat of items of one character each; len(p) gives the bytes of
// an item at p, 0 when there is none.
template <class Len>
VKP_INLINE int GreedyChars(const u8* pos, MatchContext* ctx, const Instruction* rep, int budget, Len len) {
    const u8* const end = ctx->subjectEnd;
    if (end - pos < rep->a) return 1;
    const u8* p = pos;
    int count = 0;
    for (; count < rep->a; ++count) {
        if (p >= end) return 1;
        const int n = len(p);
        if (n == 0) return 1;
        p += n;
    }
    const u8* const lowest = p;
    for (; count < rep->b && p < end; ++count) {
        const int n = len(p);
        if (n == 0) break;
        p += n;
    }
    return BacktrackChars(p, lowest, ctx, rep + 1, budget);
}

// Lazy repeat; len(p) as above (items of any width of at least one byte).
template <class Len>
VKP_INLINE int LazyItems(const u8* pos, MatchContext* ctx, const Instruction* rep, int budget, Len len) {
    const u8* const end = ctx->subjectEnd;
    if (end - pos < rep->a) return 1;
    const u8* p = pos;
    for (int i = 0; i < rep->a; ++i) {
        if (p >= end) return 1;
        const int n = len(p);
        if (n == 0) return 1;
        p += n;
    }
    const Instruction* const next = rep + 1;
    const int req = RequiredByte(next, ctx);
    for (int more = rep->b - rep->a;; --more) {
        if (MayStart(p, req, ctx) && MatchHere(p, ctx, next, budget) == 0) return 0;
        if (more <= 0 || p >= ctx->subjectEnd) return 1;
        const int n = len(p);
        if (n == 0) return 1;
        p += n;
    }
}

}  // namespace

int RepeatChar(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    const Instruction* rep = ip + 1;
    const u8 c = static_cast<u8>(ip->a);
    if (rep->op == OP_LAZY_REPEAT)
        return LazyItems(pos, ctx, rep, budget, [c, ctx](const u8* p) { return LiteralEq(*p, c, ctx->options) ? 1 : 0; });
    if (!(ctx->options & kOptIgnoreCase) || !IsAsciiLetter(c))
        return GreedyBytes(pos, ctx, rep, budget, [c](u8 s) { return s == c; });
    const u8 folded = c | 0x20;
    return GreedyBytes(pos, ctx, rep, budget, [folded](u8 s) { return (s | 0x20) == folded; });
}

int RepeatAnyByte(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    const Instruction* rep = ip + 1;
    if (rep->op == OP_LAZY_REPEAT) return LazyItems(pos, ctx, rep, budget, [](const u8*) { return 1; });
    return GreedyBytes(pos, ctx, rep, budget, [](u8) { return true; });
}

int RepeatType(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    const Instruction* rep = ip + 1;
    const TypeTest t = TypeFor(ip->a, ctx->options);
    const u8* const end = ctx->subjectEnd;
    if (rep->op == OP_LAZY_REPEAT)
        return LazyItems(pos, ctx, rep, budget, [t, end](const u8* p) { return TypeLength(p, end, t); });
    // \d, \s and \w take single bytes only.
    if (!t.negated) return GreedyBytes(pos, ctx, rep, budget, t);
    if (t.mask == kKindNewline && rep->b == kRepeatUnlimited && end - pos >= rep->a) {
        // Unlimited ".": after the minimum, everything up to the next line
        // feed, whole characters all the way.
        const u8* p = pos;
        for (int i = 0; i < rep->a; ++i) {
            if (p >= end || *p == '\n') return 1;
            p += *p < 0x80 ? 1 : CharLength(p, end);
        }
        const u8* const lowest = p;
        const u8* nl = static_cast<const u8*>(memchr(p, '\n', end - p));
        return BacktrackChars(nl ? nl : end, lowest, ctx, rep + 1, budget);
    }
    return GreedyChars(pos, ctx, rep, budget, [t, end](const u8* p) { return TypeLength(p, end, t); });
}

int RepeatClass(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    const Instruction* rep = ip + ip->b + 1;
    const u8* const end = ctx->subjectEnd;
    const u32 options = ctx->options;
    auto len = [ip, end, options](const u8* p) { return ClassLength(p, end, ip, options); };
    if (rep->op == OP_LAZY_REPEAT) return LazyItems(pos, ctx, rep, budget, len);
    return GreedyChars(pos, ctx, rep, budget, len);
}

int RepeatProperty(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    const Instruction* rep = ip + 1;
    const u8* const end = ctx->subjectEnd;
    const u32 options = ctx->options;
    auto len = [ip, end, options](const u8* p) { return PropertyLength(p, end, ip, options); };
    if (rep->op == OP_LAZY_REPEAT) return LazyItems(pos, ctx, rep, budget, len);
    return GreedyChars(pos, ctx, rep, budget, len);
}

// Every item takes the encoded length of the pattern's code point.
int RepeatCodePoint(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    const Instruction* rep = ip + 1;
    const u8* const end = ctx->subjectEnd;
    const u32 options = ctx->options;
    auto len = [ip, end, options](const u8* p) { return CodePointLength(p, end, ip, options); };
    if (rep->op == OP_LAZY_REPEAT) return LazyItems(pos, ctx, rep, budget, len);
    if (end - pos < rep->a) return 1;
    const long w = EncodedLength(ip->a);
    const u8* p = pos;
    int count = 0;
    for (; count < rep->b && p < end && len(p) != 0; ++count) p += w;
    if (count < rep->a) return 1;
    return BacktrackFixed(p, pos + rep->a * w, w, ctx, rep + 1, budget);
}

// A grapheme cluster has no fixed width and cannot be found from its end, so
// the greedy form finds the start of each shorter run again from pos.
int RepeatExtended(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    const Instruction* rep = ip + 1;
    const u8* const end = ctx->subjectEnd;
    auto len = [end](const u8* p) { return ExtendedLength(p, end); };
    if (rep->op == OP_LAZY_REPEAT) return LazyItems(pos, ctx, rep, budget, len);
    if (end - pos < rep->a) return 1;
    int count = 0;
    for (const u8* p = pos; count < rep->b && p < end; ++count) {
        const int n = len(p);
        if (n == 0) break;
        p += n;
    }
    for (; count >= rep->a; --count) {
        const u8* p = pos;
        for (int i = 0; i < count; ++i) p += len(p);
        if (MatchHere(p, ctx, rep + 1, budget) == 0) return 0;
    }
    return 1;
}

// Items are copies of the group's text. An empty text repeats without
// consuming: the continuation runs once, except at the very end of the
// subject when at least one copy is required (a back-reference never
// matches there).
int RepeatBackref(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    const Instruction* rep = ip + 1;
    const u8* const end = ctx->subjectEnd;
    if (pos >= end && rep->a > 0) return 1;
    const int n = ip->a;
    auto len = [n, ctx](const u8* p) { return BackrefLength(p, ctx, n); };
    const int w = pos < end ? len(pos) : -1;
    if (w <= 0) {
        if (w < 0 && rep->a > 0) return 1;
        if (w == 0 || rep->a == 0) return MatchHere(pos, ctx, rep + 1, budget);
    }
    if (rep->op == OP_LAZY_REPEAT)
        return LazyItems(pos, ctx, rep, budget, [len](const u8* p) { int k = len(p); return k > 0 ? k : 0; });
    const u8* p = pos;
    int count = 0;
    for (; count < rep->b && p < end && len(p) == w; ++count) p += w;
    if (count < rep->a) return 1;
    return BacktrackFixed(p, pos + static_cast<long>(rep->a) * w, w, ctx, rep + 1, budget);
}

}  // namespace vkp::regexp
