#include "regexp/find/inner_literal.h"

namespace vkp::regexp {
namespace {

constexpr int kMaxDepth = 16;
constexpr int kFar = 1 << 20;  // a width beyond any reach, kept from overflowing

struct Width {
    int min;
    int max;
};

int Capped(long long n) { return n > kFar ? kFar : static_cast<int>(n); }

// A class matches one ASCII byte when its members are ASCII bytes, ranges
// and \d \s \w, it is not negated and case is not ignored (a folded partner
// may lie outside ASCII); otherwise one character of up to four bytes.
int ClassMaxWidth(const Instruction* prog, int at, u32 options) {
    if (prog[at].a != 0 || (options & kOptIgnoreCase)) return 4;
    for (int m = at + 1; m <= at + prog[at].b; ++m) {
        const Instruction& ins = prog[m];
        const bool ascii = (ins.op == OP_CHAR && ins.c == 0 && ins.a < 128) ||
                           (ins.op == OP_RANGE && ins.c == 0 && ins.b < 128) ||
                           (ins.op == OP_TYPE && (ins.a == 'd' || ins.a == 's' || ins.a == 'w'));
        if (!ascii) return 4;
    }
    return 1;
}

bool SequenceWidth(const Instruction* prog, int from, int to, u32 options, int depth, Width* w);

// The bytes the item at i can take, without a repeat behind it; false when
// unbounded or not worked out (back-references, conditions, \X).
bool ItemWidth(const Instruction* prog, int i, u32* options, int depth, Width* w) {
    const Instruction& ins = prog[i];
    switch (ins.op) {
        case OP_CHAR:
        case OP_ANYBYTE: *w = {1, 1}; return true;
        case OP_STRING: *w = {ins.b, ins.b}; return ins.b >= 0;
        case OP_TYPE: {
            const bool ascii = ins.a == 'd' || ins.a == 's' || ins.a == 'w';
            *w = {1, ascii ? 1 : 4};
            return true;
        }
        case OP_CLASS: *w = {1, ClassMaxWidth(prog, i, *options)}; return true;
        case OP_CODEPOINT:
        case OP_CATEGORY:
        case OP_BLOCK:
        case OP_SCRIPT: *w = {1, 4}; return true;
        case OP_SETFLAGS: *options = static_cast<u32>(ins.a); *w = {0, 0}; return true;
        case OP_ANCHOR:
        case OP_LOOKAHEAD:
        case OP_NLOOKAHEAD:
        case OP_LOOKBEHIND:
        case OP_NLOOKBEHIND: *w = {0, 0}; return true;
        case OP_CAPTURE:
        case OP_GROUP:
        case OP_ATOMIC:
        case OP_FLAGGROUP: {
            if (depth >= kMaxDepth) return false;
            const int ket = i + 1 + ins.b;
            u32 inner = ins.op == OP_FLAGGROUP ? static_cast<u32>(ins.c) : *options;
            Width all{kFar, 0};
            for (int begin = i + 1, k = i + 1;; k = NextItem(prog, k)) {
                if (k >= ket || (prog[k].op == OP_ALT && prog[k].a == ins.a)) {
                    Width one;
                    if (!SequenceWidth(prog, begin, k < ket ? k : ket, inner, depth + 1, &one)) return false;
                    if (one.min < all.min) all.min = one.min;
                    if (one.max > all.max) all.max = one.max;
                    if (k >= ket) break;
                    inner = static_cast<u32>(prog[k].b);
                    begin = k + 1;
                }
            }
            *options = static_cast<u32>(prog[ket].b);  // as the OP_KET restores them
            *w = all;
            return true;
        }
        default: return false;
    }
}

// The item at i with the repeat behind it, if any; *next is the index after both.
bool RepeatedWidth(const Instruction* prog, int i, int to, u32* options, int depth, Width* w, int* next) {
    const int n = NextItem(prog, i);
    if (n > to || !ItemWidth(prog, i, options, depth, w)) return false;
    *next = n;
    if (n < to && IsRepeat(prog[n].op)) {
        w->min = Capped(static_cast<long long>(w->min) * prog[n].a);
        w->max = prog[n].b >= kRepeatUnlimited ? kFar : Capped(static_cast<long long>(w->max) * prog[n].b);
        *next = n + 1;
    }
    return true;
}

bool SequenceWidth(const Instruction* prog, int from, int to, u32 options, int depth, Width* w) {
    *w = {0, 0};
    for (int i = from; i < to;) {
        Width one;
        if (!RepeatedWidth(prog, i, to, &options, depth, &one, &i)) return false;
        w->min = Capped(static_cast<long long>(w->min) + one.min);
        w->max = Capped(static_cast<long long>(w->max) + one.max);
    }
    return true;
}

// Whether the group opened at i has a single alternative.
bool OneAlternative(const Instruction* prog, int i) {
    const int ket = i + 1 + prog[i].b;
    for (int k = i + 1; k < ket; k = NextItem(prog, k))
        if (prog[k].op == OP_ALT && prog[k].a == prog[i].a) return false;
    return true;
}

// The first literal of [from, to) (one alternative) that every match of it
// holds, `before` being the bytes matched before `from`. Inside a group of
// one alternative that is matched at least once the first iteration is
// looked into.
bool FindIn(const Instruction* prog, int from, int to, u32 options, Width before, int depth, InnerLiteral* out) {
    for (int i = from; i < to;) {
        const Instruction& ins = prog[i];
        const int n = NextItem(prog, i);
        if (n > to) return false;
        const bool repeated = n < to && IsRepeat(prog[n].op);
        const int least = repeated ? prog[n].a : 1;
        const Literal lit = LiteralOf(ins);
        // A repeat takes a string's last byte, so only a repeated single
        // byte still stands whole at the distance found.
        if (lit.length > 0 && (!repeated || (ins.op == OP_CHAR && least >= 1))) {
            if (before.max > kInnerReach) return false;
            out->bytes = lit.bytes;
            out->length = lit.length;
            out->caseless = ((options | static_cast<u32>(ins.c)) & kOptIgnoreCase) != 0;
            out->minBefore = before.min;
            out->maxBefore = before.max;
            return true;
        }
        const bool group = ins.op == OP_GROUP || ins.op == OP_CAPTURE || ins.op == OP_ATOMIC || ins.op == OP_FLAGGROUP;
        if (group && least >= 1 && depth < kMaxDepth) {
            LeadLiterals lead;
            if (OneAlternative(prog, i)) {
                const u32 inner = ins.op == OP_FLAGGROUP ? static_cast<u32>(ins.c) : options;
                if (FindIn(prog, i + 1, n - 1, inner, before, depth + 1, out)) return true;
            } else if (GroupLiterals(prog, i, options, &lead) && !lead.highLed) {
                if (before.max > kInnerReach) return false;
                out->group = i;
                out->groupOptions = options;
                out->minBefore = before.min;
                out->maxBefore = before.max;
                return true;
            }
        }
        Width w;
        if (!RepeatedWidth(prog, i, to, &options, depth, &w, &i)) return false;
        before.min = Capped(static_cast<long long>(before.min) + w.min);
        before.max = Capped(static_cast<long long>(before.max) + w.max);
        if (before.max > kInnerReach) return false;
    }
    return false;
}

}  // namespace

bool FindInnerLiteral(const Instruction* program, int count, u32 options, InnerLiteral* out) {
    for (int i = 0; i < count; ++i)
        if (program[i].op == OP_ALT && program[i].a == 0) return false;
    return FindIn(program, 0, count, options, Width{0, 0}, 0, out);
}

bool ItemByteWidth(const Instruction* program, int i, u32 options, int* min, int* max) {
    Width w;
    if (!ItemWidth(program, i, &options, 0, &w)) return false;
    *min = w.min;
    *max = w.max;
    return true;
}

}  // namespace vkp::regexp
