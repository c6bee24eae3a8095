// Repeats of a single item: literal bytes, \C, character types, code
// points, properties, \X, classes and back-references, greedy and lazy.
//
// Greedy: take as many items as allowed, then try the continuation at each
// count from the highest down to the minimum. Lazy: try the continuation at
// the minimum and take one more item after each failure. Both skip counts
// at which the continuation cannot start: when it begins with a literal
// byte that the subject does not have there. Each routine is one function
// of four arguments with everything inlined: MatchHere reaches it by a
// jump, and it holds one small stack frame while its continuation runs
// (on Windows, a fifth argument or a second frame would cost a call frame
// and the 32-byte argument home area per level).
#include <string.h>

#include "regexp/match/match_hints.h"
#include "regexp/match/class_run.h"
#include "regexp/match/items.h"
#include "regexp/match/memo.h"

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
VKP_INLINE int BacktrackFixed(const u8* p, const u8* lowest, long step, MatchContext* ctx,
                                             const Instruction* next, int budget) {
    LimitBacktrack(p, &lowest, ctx, next);
    if (VKP_UNLIKELY(ctx->memo != nullptr)) return BacktrackMemo(p, lowest, step, ctx, next, budget);
    const int req = RequiredByte(next, ctx);
    for (;; p -= step) {
        if (MayStart(p, req, ctx) && MatchHere(p, ctx, next, budget) == 0) return 0;
        if (p <= lowest) return 1;
    }
}

// Continuations at p and at each earlier character boundary down to lowest,
// for items of one character each.
VKP_INLINE int BacktrackChars(const u8* p, const u8* lowest, MatchContext* ctx,
                                             const Instruction* next, int budget) {
    LimitBacktrack(p, &lowest, ctx, next);
    if (VKP_UNLIKELY(ctx->memo != nullptr)) return BacktrackMemo(p, lowest, 0, ctx, next, budget);
    const int req = RequiredByte(next, ctx);
    for (;;) {
        if (MayStart(p, req, ctx) && MatchHere(p, ctx, next, budget) == 0) return 0;
        if (p <= lowest) return 1;
        p = StepBack(lowest, p);
    }
}

// The tests of single-byte items.
struct ExactByte {
    u8 c;
    ExactByte(const Instruction* ip, const MatchContext*) : c(static_cast<u8>(ip->a)) {}
    bool operator()(u8 s) const { return s == c; }
};
struct CaselessByte {
    u8 folded;
    CaselessByte(const Instruction* ip, const MatchContext*) : folded(static_cast<u8>(ip->a) | 0x20) {}
    bool operator()(u8 s) const { return (s | 0x20) == folded; }
};
struct AnyByte {
    AnyByte(const Instruction*, const MatchContext*) {}
    bool operator()(u8) const { return true; }
};
struct TypeByte {
    TypeTest t;
    TypeByte(const Instruction* ip, const MatchContext* ctx) : t(TypeFor(ip->a, ctx->options)) {}
    bool operator()(u8 s) const { return t(s); }
};

// The end of the run of bytes from p (below stop) that pass the test.
template <class Test>
VKP_INLINE const u8* SkipRun(const Test& test, const u8* p, const u8* stop) {
    while (p < stop && test(*p)) ++p;
    return p;
}
template <>
VKP_INLINE const u8* SkipRun<TypeByte>(const TypeByte& test, const u8* p, const u8* stop) {
    p += AsciiMemberRun(p, stop - p, TypeMembers(test.t));
    while (p < stop && test(*p)) ++p;  // bytes from 0x80, which a negated type takes
    return p;
}

// Greedy repeat of items of one byte each; Test is built from the item.
template <class Test>
__attribute__((noinline)) int GreedyBytes(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    const Instruction* rep = ip + 1;
    const long rem = ctx->subjectEnd - pos;
    if (rem < rep->a) return 1;
    const u8* const stop = pos + (rep->b < rem ? rep->b : rem);
    const u8* p = pos;
    const Test test(ip, ctx);
    // A bounded search knows the ends of runs it has taken already.
    if (VKP_UNLIKELY(ctx->memo != nullptr)) p = KnownRunEnd(ctx, ip, pos, stop);
    const u8* const scanned = p;
    p = SkipRun(test, p, stop);
    if (VKP_UNLIKELY(p - scanned >= 64 || ctx->memo != nullptr)) NoteRun(ctx, ip, pos, scanned, p, stop);
    const u8* const lowest = pos + rep->a;
    if (p < lowest) return 1;
    return BacktrackFixed(p, lowest, 1, ctx, rep + 1, budget);
}

// Unlimited "." (not across a line feed): after the minimum, everything up
// to the next line feed, whole characters all the way.
__attribute__((noinline)) int GreedyDots(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    const Instruction* rep = ip + 1;
    const u8* const end = ctx->subjectEnd;
    const u8* p = pos;
    for (int i = 0; i < rep->a; ++i) {
        if (p >= end || *p == '\n') return 1;
        p += *p < 0x80 ? 1 : CharLength(p, end);
    }
    const u8* const lowest = p;
    const u8* nl = static_cast<const u8*>(memchr(p, '\n', end - p));
    return BacktrackChars(nl ? nl : end, lowest, ctx, rep + 1, budget);
}

// Greedy repeat of items of one character each.
template <class Item>
__attribute__((noinline)) int GreedyChars(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    const Instruction* rep = Item::Repeat(ip);
    const u8* const end = ctx->subjectEnd;
    if (end - pos < rep->a) return 1;
    const u8* p = pos;
    int count = 0;
    for (; count < rep->a; ++count) {
        if (p >= end) return 1;
        const int n = Item::Length(p, ctx, ip);
        if (n == 0) return 1;
        p += n;
    }
    const u8* const lowest = p;
    while (count < rep->b && p < end) {
        // Runs of one-byte members in one step where the item can tell them.
        const long room = end - p < rep->b - count ? end - p : rep->b - count;
        const long run = Item::Run(p, room, ctx, ip);
        p += run;
        count += static_cast<int>(run);
        if (run == room) break;
        const int n = Item::Length(p, ctx, ip);
        if (n == 0) break;
        p += n;
        ++count;
    }
    return BacktrackChars(p, lowest, ctx, rep + 1, budget);
}

// Lazy repeat of items of any width of one byte or more. A function of its
// own, so that the greedy form's frame does not grow by its values; the
// item's operands are read again from the program at each step.
template <class Item>
__attribute__((noinline)) int LazyItems(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    const Instruction* rep = Item::Repeat(ip);
    if (ctx->subjectEnd - pos < rep->a) return 1;
    const u8* p = pos;
    for (int i = 0; i < rep->a; ++i) {
        if (p >= ctx->subjectEnd) return 1;
        const int n = Item::Length(p, ctx, ip);
        if (n <= 0) return 1;
        p += n;
    }
    const int req = RequiredByte(rep + 1, ctx);
    for (int more = rep->b - rep->a;; --more) {
        if (MayStart(p, req, ctx) && MatchHere(p, ctx, Item::Repeat(ip) + 1, budget) == 0) return 0;
        if (more <= 0 || p >= ctx->subjectEnd) return 1;
        const int n = Item::Length(p, ctx, ip);
        if (n <= 0) return 1;
        p += n;
    }
}

// The items: where their repeat record stands and the bytes one takes at p
// (0 for none).
// Items of one character each: where their repeat record is, the length of
// the item at p (0: no match) and, for the greedy repeats, how many bytes
// from p (at most n) are one-byte matches it can tell at once (NoRun: none).
struct NoRun {
    static long Run(const u8*, long, const MatchContext*, const Instruction*) { return 0; }
};
struct CharItem {
    static const Instruction* Repeat(const Instruction* ip) { return ip + 1; }
    static int Length(const u8* p, const MatchContext* ctx, const Instruction* ip) {
        return LiteralEq(*p, static_cast<u8>(ip->a), ctx->options) ? 1 : 0;
    }
};
struct AnyByteItem {
    static const Instruction* Repeat(const Instruction* ip) { return ip + 1; }
    static int Length(const u8*, const MatchContext*, const Instruction*) { return 1; }
};
struct TypeItem {
    static const Instruction* Repeat(const Instruction* ip) { return ip + 1; }
    static long Run(const u8* p, long n, const MatchContext* ctx, const Instruction* ip) {
        return AsciiMemberRun(p, n, TypeMembers(TypeFor(ip->a, ctx->options)));
    }
    static int Length(const u8* p, const MatchContext* ctx, const Instruction* ip) {
        return TypeLength(p, ctx->subjectEnd, TypeFor(ip->a, ctx->options));
    }
};
struct ClassItem {
    static const Instruction* Repeat(const Instruction* ip) { return ip + ip->b + 1; }
    static long Run(const u8* p, long n, const MatchContext* ctx, const Instruction* ip) {
        const ClassBits* k = CachedClass(ctx, ip);
        return k ? AsciiMemberRun(p, n, *k) : 0;
    }
    static int Length(const u8* p, const MatchContext* ctx, const Instruction* ip) {
        return ClassStep(p, ctx->subjectEnd, ctx, ip);
    }
};
struct PropertyItem : NoRun {
    static const Instruction* Repeat(const Instruction* ip) { return ip + 1; }
    static int Length(const u8* p, const MatchContext* ctx, const Instruction* ip) {
        return PropertyLength(p, ctx->subjectEnd, ip, ctx->options);
    }
};
struct CodePointItem {
    static const Instruction* Repeat(const Instruction* ip) { return ip + 1; }
    static int Length(const u8* p, const MatchContext* ctx, const Instruction* ip) {
        return CodePointLength(p, ctx->subjectEnd, ip, ctx->options);
    }
};
struct ExtendedItem {
    static const Instruction* Repeat(const Instruction* ip) { return ip + 1; }
    static int Length(const u8* p, const MatchContext* ctx, const Instruction*) {
        return ExtendedLength(p, ctx->subjectEnd);
    }
};
struct BackrefItem {
    static const Instruction* Repeat(const Instruction* ip) { return ip + 1; }
    static int Length(const u8* p, const MatchContext* ctx, const Instruction* ip) {
        return BackrefLength(p, ctx, ip->a);
    }
};

}  // namespace

int RepeatChar(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    if (ip[1].op == OP_LAZY_REPEAT) return LazyItems<CharItem>(pos, ctx, ip, budget);
    if ((ctx->options & kOptIgnoreCase) && IsAsciiLetter(static_cast<u8>(ip->a)))
        return GreedyBytes<CaselessByte>(pos, ctx, ip, budget);
    return GreedyBytes<ExactByte>(pos, ctx, ip, budget);
}

int RepeatAnyByte(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    if (ip[1].op == OP_LAZY_REPEAT) return LazyItems<AnyByteItem>(pos, ctx, ip, budget);
    return GreedyBytes<AnyByte>(pos, ctx, ip, budget);
}

int RepeatType(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    const Instruction* rep = ip + 1;
    if (rep->op == OP_LAZY_REPEAT) return LazyItems<TypeItem>(pos, ctx, ip, budget);
    const TypeTest t = TypeFor(ip->a, ctx->options);
    // \d, \s and \w take single bytes only.
    if (!t.negated) return GreedyBytes<TypeByte>(pos, ctx, ip, budget);
    if (t.mask == kKindNewline && rep->b == kRepeatUnlimited) return GreedyDots(pos, ctx, ip, budget);
    return GreedyChars<TypeItem>(pos, ctx, ip, budget);
}

int RepeatClass(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    if (ClassItem::Repeat(ip)->op == OP_LAZY_REPEAT) return LazyItems<ClassItem>(pos, ctx, ip, budget);
    return GreedyChars<ClassItem>(pos, ctx, ip, budget);
}

int RepeatProperty(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    if (ip[1].op == OP_LAZY_REPEAT) return LazyItems<PropertyItem>(pos, ctx, ip, budget);
    return GreedyChars<PropertyItem>(pos, ctx, ip, budget);
}

// Every item takes the encoded length of the pattern's code point.
int RepeatCodePoint(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    const Instruction* rep = ip + 1;
    if (rep->op == OP_LAZY_REPEAT) return LazyItems<CodePointItem>(pos, ctx, ip, budget);
    const u8* const end = ctx->subjectEnd;
    if (end - pos < rep->a) return 1;
    const long w = EncodedLength(ip->a);
    const u8* p = pos;
    int count = 0;
    for (; count < rep->b && p < end && CodePointItem::Length(p, ctx, ip) != 0; ++count) p += w;
    if (count < rep->a) return 1;
    return BacktrackFixed(p, pos + rep->a * w, w, ctx, rep + 1, budget);
}

// A grapheme cluster has no fixed width and cannot be found from its end, so
// the greedy form finds the start of each shorter run again from pos.
int RepeatExtended(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    const Instruction* rep = ip + 1;
    if (rep->op == OP_LAZY_REPEAT) return LazyItems<ExtendedItem>(pos, ctx, ip, budget);
    const u8* const end = ctx->subjectEnd;
    if (end - pos < rep->a) return 1;
    int count = 0;
    for (const u8* p = pos; count < rep->b && p < end; ++count) {
        const int n = ExtendedLength(p, end);
        if (n == 0) break;
        p += n;
    }
    for (; count >= rep->a; --count) {
        const u8* p = pos;
        for (int i = 0; i < count; ++i) p += ExtendedLength(p, end);
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
    const int w = pos < end ? BackrefLength(pos, ctx, ip->a) : -1;
    if (w <= 0) {
        if (w < 0 && rep->a > 0) return 1;
        return MatchHere(pos, ctx, rep + 1, budget);
    }
    if (rep->op == OP_LAZY_REPEAT) return LazyItems<BackrefItem>(pos, ctx, ip, budget);
    const u8* p = pos;
    int count = 0;
    for (; count < rep->b && p < end && BackrefLength(p, ctx, ip->a) == w; ++count) p += w;
    if (count < rep->a) return 1;
    return BacktrackFixed(p, pos + static_cast<long>(rep->a) * w, w, ctx, rep + 1, budget);
}

}  // namespace vkp::regexp
