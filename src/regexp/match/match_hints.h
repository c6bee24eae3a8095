// What the matcher reads of the program's analysis (find/analysis.h): the
// repeats that need no backtracking, where a leading run ended, and the
// ASCII members of classes.
#pragma once

#include "regexp/match/items.h"
#include "regexp/match/match_context.h"

namespace vkp::regexp {

// ASCII members of a class under the options it runs with, worked out
// once per program (find/analysis.h), in the slot ClassSlot picks for it.
struct ClassBits {
    const Instruction* cls;  // null: slot unused
    u32 options;
    u32 bits[4];
    u8 nibbles[16];  // by low nibble, a bit for each high nibble 0-7 of a member
};
constexpr int kClassSlots = 16;

// Records are 24 bytes apart: 16 records in a row take 16 slots.
VKP_INLINE int ClassSlot(const Instruction* cls) {
    return static_cast<int>((reinterpret_cast<unsigned long long>(cls) >> 3) & (kClassSlots - 1));
}

// Whether a class takes the ASCII byte c, when the analysis knows: 1 or 0,
// else -1.
// The ASCII members of a class, when the analysis kept them, else null.
VKP_INLINE const ClassBits* CachedClass(const MatchContext* ctx, const Instruction* cls) {
    if (!ctx->classBits) return nullptr;
    const ClassBits& k = ctx->classBits[ClassSlot(cls)];
    return k.cls == cls && k.options == ctx->options ? &k : nullptr;
}

VKP_INLINE int CachedClassTest(const MatchContext* ctx, const Instruction* cls, u8 c) {
    const ClassBits* k = c < 0x80 ? CachedClass(ctx, cls) : nullptr;
    return k ? (k->bits[c >> 5] >> (c & 31)) & 1 : -1;
}

// The length of the character at p (before end) when the class at cls takes
// it, else 0: an ASCII byte answered from the kept members when there are.
VKP_INLINE int ClassStep(const u8* p, const u8* end, const MatchContext* ctx, const Instruction* cls) {
    const int known = CachedClassTest(ctx, cls, *p);
    return known >= 0 ? known : ClassLength(p, end, cls, ctx->options);
}

constexpr int kPossessiveBits = 6144;  // repeat records beyond are not marked

// Called by a greedy repeat (its record just before `next`) that ran to p
// before it tries its continuation there and at shorter runs: notes where a
// leading run ended, and shortens the backtracking when the analysis says
// shorter runs cannot help.
VKP_INLINE void LimitBacktrack(const u8* p, const u8** lowest, MatchContext* ctx, const Instruction* next) {
    if (next - 1 == ctx->leadRepeat) ctx->leadRunEnd = p;
    if (!ctx->possessive) return;
    const long r = next - 1 - ctx->program;
    if (r < 0 || r >= kPossessiveBits || !((ctx->possessive[r >> 3] >> (r & 7)) & 1)) return;
    *lowest = p;
}

}  // namespace vkp::regexp
