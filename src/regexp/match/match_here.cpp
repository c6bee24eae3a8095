// MatchHere: the core of the matcher. It runs single items (literals, types,
// classes and properties without a repeat, anchors, back-references) in a
// loop, one depth level per item as if each called MatchHere for its
// continuation, and hands every other construct to its routine by a tail
// call, so that only routines that must try something after their
// continuation fails hold a stack frame.
#include <string.h>

#include "regexp/match/match_hints.h"
#include "regexp/match/items.h"
#include "regexp/match/memo.h"

namespace vkp::regexp {

namespace {

// The end of the top-level program or of a top-level alternative.
int TopLevelEnd(const u8* pos, MatchContext* ctx) {
    if (ctx->notEmpty && pos == ctx->attemptStart) return 1;
    ctx->matchEnd = pos;
    return 0;
}

// The end of a look-around or atomic body, or of one of its alternatives.
// A look-behind body must end where the look-behind stands.
int SubprogramEnd(const u8* pos, MatchContext* ctx) {
    if (ctx->mustEndAt && pos != ctx->mustEndAt) return 1;
    ctx->matchEnd = pos;
    return 0;
}

bool StringEq(const u8* p, const u8* lit, int n, u32 options) {
    if (!(options & kOptIgnoreCase)) return memcmp(p, lit, n) == 0;
    for (int i = 0; i < n; ++i)
        if (!LiteralEq(p[i], lit[i], options)) return false;
    return true;
}

}  // namespace

__attribute__((noinline, cold)) int OutOfStack(MatchContext* ctx) {
    ctx->stackExhausted = 1;
    return 1;
}

int MatchHere(const u8* pos, MatchContext* ctx, const Instruction* ip, int budget) {
    if (VKP_UNLIKELY(StackPointer() < ctx->stackFloor)) return OutOfStack(ctx);
    if (VKP_UNLIKELY(--ctx->stepsLeft < 0)) return StepLimitReached(ctx);
    const u8* const end = ctx->subjectEnd;
    for (;;) {
        // Each step is one level of nesting; a branch that would go deeper
        // than the budget fails like a mismatch.
        if (VKP_UNLIKELY(budget <= 0)) {
            ++ctx->cutoffs;
            return 1;
        }
        --budget;
    dispatch:
        if (ip == ctx->end) return ctx->end == ctx->programEnd ? TopLevelEnd(pos, ctx) : SubprogramEnd(pos, ctx);
        switch (ip->op) {
            case OP_CHAR:
                if (RepeatAfter(ip, ctx)) return RepeatChar(pos, ctx, ip, budget);
                if (pos >= end || !LiteralEq(*pos, static_cast<u8>(ip->a), ctx->options)) return 1;
                ++pos;
                ++ip;
                continue;
            case OP_STRING:
                if (end - pos < ip->b || ip->b <= 0) return 1;
                if (!StringEq(pos, static_cast<const u8*>(ip->d), ip->b, ctx->options)) return 1;
                pos += ip->b;
                ++ip;
                continue;
            case OP_TYPE: {
                if (RepeatAfter(ip, ctx)) return RepeatType(pos, ctx, ip, budget);
                if (pos >= end) return 1;
                const int n = TypeLength(pos, end, TypeFor(ip->a, ctx->options));
                if (n == 0) return 1;
                pos += n;
                ++ip;
                continue;
            }
            case OP_CLASS: {
                const Instruction* r = ip + ip->b + 1;
                if (r < ctx->programEnd && IsRepeat(r)) return RepeatClass(pos, ctx, ip, budget);
                if (pos >= end) return 1;
                const int n = ClassStep(pos, end, ctx, ip);
                if (n == 0) return 1;
                pos += n;
                ip = r;
                continue;
            }
            case OP_ANCHOR:
                // A repeat that allows zero makes the anchor optional; any
                // other repeat of an anchor tests it once.
                if (const Instruction* r = RepeatAfter(ip, ctx)) {
                    if (r->a > 0 && !AnchorHolds(pos, ctx, ip->a)) return 1;
                    ip += 2;
                    continue;
                }
                if (!AnchorHolds(pos, ctx, ip->a)) return 1;
                ++ip;
                continue;
            case OP_BACKREF: {
                if (RepeatAfter(ip, ctx)) return RepeatBackref(pos, ctx, ip, budget);
                // Never at the very end, even for an empty group text.
                if (pos >= end) return 1;
                const int n = BackrefLength(pos, ctx, ip->a);
                if (n < 0) return 1;
                pos += n;
                ++ip;
                continue;
            }
            case OP_CODEPOINT: {
                if (RepeatAfter(ip, ctx)) return RepeatCodePoint(pos, ctx, ip, budget);
                if (pos >= end) return 1;
                const int n = CodePointLength(pos, end, ip, ctx->options);
                if (n == 0) return 1;
                pos += n;
                ++ip;
                continue;
            }
            case OP_CATEGORY:
            case OP_BLOCK:
            case OP_SCRIPT: {
                if (RepeatAfter(ip, ctx)) return RepeatProperty(pos, ctx, ip, budget);
                if (pos >= end) return 1;
                const int n = PropertyLength(pos, end, ip, ctx->options);
                if (n == 0) return 1;
                pos += n;
                ++ip;
                continue;
            }
            case OP_EXTENDED: {
                if (RepeatAfter(ip, ctx)) return RepeatExtended(pos, ctx, ip, budget);
                if (pos >= end) return 1;
                const int n = ExtendedLength(pos, end);
                if (n == 0) return 1;
                pos += n;
                ++ip;
                continue;
            }
            case OP_ANYBYTE:
                if (RepeatAfter(ip, ctx)) return RepeatAnyByte(pos, ctx, ip, budget);
                if (pos >= end) return 1;
                ++pos;
                ++ip;
                continue;
            case OP_ALT:
                // A bar inside a group ends this alternative of the group;
                // a bar outside every group (0) ends a top-level
                // alternative; inside a look-around or atomic body (negative
                // link) it ends an alternative of that body.
                if (ip->a > 0) {
                    ip = KetOf(ctx, ip->a);
                    goto dispatch;
                }
                return ip->a == 0 ? TopLevelEnd(pos, ctx) : SubprogramEnd(pos, ctx);
            case OP_KET: {
                const GroupEntry* g = GroupOf(ctx, ip->a);
                if (g->repeated || g->capture || static_cast<u32>(ip->b) != ctx->options)
                    return GroupEnd(pos, ctx, ip, budget);
                ++ip;
                continue;
            }
            case OP_CAPTURE:
            case OP_GROUP:
            case OP_FLAGGROUP:
            case OP_COND:
                return GroupOpen(pos, ctx, ip, budget);
            case OP_LOOKAHEAD:
            case OP_NLOOKAHEAD:
            case OP_LOOKBEHIND:
            case OP_NLOOKBEHIND:
                return LookAround(pos, ctx, ip, budget);
            case OP_ATOMIC:
                return Atomic(pos, ctx, ip, budget);
            case OP_SETFLAGS:
                return SetFlags(pos, ctx, ip, budget);
            default:  // OP_RANGE, a repeat record out of place, or no opcode
                return 1;
        }
    }
}

}  // namespace vkp::regexp
