// The start probe: the leading items of a program that each take one ASCII
// byte, as steps a start position is checked against.
#include "regexp/find/start_probe.h"

#include "regexp/find/first_bytes.h"
#include "regexp/find/inner_literal.h"

namespace vkp::regexp {
namespace {

constexpr int kMaxDepth = 8;

// The leading items as steps of min to max bytes, in order, before they
// are told apart as exact or maximal.
struct Steps {
    ProbeStep step[kProbeSteps];
    int n = 0;
    bool full() const { return n == kProbeSteps; }
};

// The item at i always takes exactly one ASCII byte, one of *set: a byte,
// or a class or type of ASCII members, compared with case.
bool OneAsciiByte(const Instruction* prog, int i, u32 options, ProbeStep* set) {
    const Instruction& ins = prog[i];
    if (ins.op != OP_CHAR && ins.op != OP_TYPE && ins.op != OP_CLASS) return false;
    if ((options | (ins.op == OP_CHAR ? static_cast<u32>(ins.c) : 0)) & kOptIgnoreCase) return false;
    int min, max;
    ByteSet bytes{};
    if (!ItemByteWidth(prog, i, options, &min, &max) || min != 1 || max != 1) return false;
    if (!ItemFirstBytes(prog, i, options, &bytes) || bytes.HasHigh()) return false;
    for (int b = 0; b < 128; ++b)
        if (bytes.Has(static_cast<u8>(b))) set->Add(static_cast<u8>(b));
    return true;
}

// Appends the steps of [from, to) (one alternative); false where it stops
// at something it does not follow, or a step of unknown length (what
// follows it then starts at no known place).
bool Append(const Instruction* prog, int from, int to, u32 options, int depth, Steps* out) {
    for (int i = from; i < to && !out->full();) {
        const Instruction& ins = prog[i];
        const int next = NextItem(prog, i);
        if (next > to) return false;
        const bool repeated = next < to && IsRepeat(prog[next].op);
        const int after = repeated ? next + 1 : next;
        const int least = repeated ? prog[next].a : 1;
        const int most = repeated ? prog[next].b : 1;
        if (ins.op == OP_ANCHOR || IsLookaround(ins.op)) {  // zero-width: checks nothing here
            i = after;
            continue;
        }
        if (ins.op == OP_STRING && !repeated && !((options | static_cast<u32>(ins.c)) & kOptIgnoreCase)) {
            const Literal lit = LiteralOf(ins);
            for (int k = 0; k < lit.length; ++k) {
                if (lit.bytes[k] >= 0x80 || out->full()) return false;
                ProbeStep& s = out->step[out->n++];
                s = ProbeStep{};
                s.Add(lit.bytes[k]);
                s.min = s.max = 1;
            }
            i = after;
            continue;
        }
        if (ins.op == OP_GROUP || ins.op == OP_CAPTURE || ins.op == OP_ATOMIC) {
            // One alternative taken at least once: its first `least`
            // iterations follow one another.
            for (int k = i + 1; k < next - 1; k = NextItem(prog, k))
                if (prog[k].op == OP_ALT && prog[k].a == ins.a) return false;
            if (least < 1 || depth >= kMaxDepth) return false;
            for (int r = 0; r < least && r < kProbeSteps; ++r)
                if (!Append(prog, i + 1, next - 1, options, depth + 1, out)) return false;
            if (most != least) return false;
            i = after;
            continue;
        }
        ProbeStep s{};
        if (least < 1 || !OneAsciiByte(prog, i, options, &s)) return false;
        s.min = static_cast<u16>(least < kProbeWalk ? least : kProbeWalk);
        s.max = most >= kRepeatUnlimited || most >= kProbeUnlimited ? kProbeUnlimited : static_cast<u16>(most);
        out->step[out->n++] = s;
        if (least > kProbeWalk) return false;  // only its first bytes are checked
        i = after;
    }
    return true;
}

bool Disjoint(const ProbeStep& x, const ProbeStep& y) {
    return ((x.half[0] & y.half[0]) | (x.half[1] & y.half[1])) == 0;
}

}  // namespace

void MakeStartProbe(const Instruction* program, int count, u32 options, StartProbe* out) {
    out->count = 0;
    Steps steps;
    Append(program, 0, count, options, 0, &steps);
    // A step of min to max bytes is maximal when the next one's bytes are
    // none of its own; otherwise only its first min bytes are known, and
    // the probe ends with them.
    bool anyMaximal = false;
    int n = 0;
    for (; n < steps.n; ++n) {
        ProbeStep& s = steps.step[n];
        if (s.min == s.max) continue;
        if (n + 1 < steps.n && Disjoint(s, steps.step[n + 1])) {
            s.maximal = 1;
            anyMaximal = true;
            continue;
        }
        s.max = s.min;
        ++n;
        break;
    }
    if (!anyMaximal) return;
    for (int k = 0; k < n; ++k) out->steps[k] = steps.step[k];
    out->count = static_cast<u8>(n);
}

}  // namespace vkp::regexp
