// Quantifiers: repeat records behind the item they repeat.
#include "regexp/compile/compiler_pass.h"
#include "regexp/compile/pattern_syntax.h"

namespace vkp::regexp {
namespace {

constexpr int kMaxBound = 65535;

int SaturatingAdd(int x, int y) {
    const long long sum = static_cast<long long>(x) + y;
    return sum > kRepeatUnlimited ? kRepeatUnlimited : static_cast<int>(sum);
}

// Decimal digits from `at`, saturating at the unlimited value; returns the
// offset behind them.
int ReadBound(const char* p, int at, int len, int* value) {
    int v = 0;
    int i = at;
    while (i < len && IsDigit(static_cast<u8>(p[i]))) {
        const int digit = p[i++] - '0';
        v = v > (kRepeatUnlimited - digit) / 10 ? kRepeatUnlimited : v * 10 + digit;
    }
    *value = v;
    return i;
}

}  // namespace

// '{' at `at`: a quantifier only as {n}, {n,} or {n,m} (n may be absent:
// 0); anything else leaves *isQuantifier false and '{' is a literal.
Status CompilerPass::Braces(int at, bool* isQuantifier) {
    int min = 0, max = 0;
    const int minAt = at + 1;
    int i = ReadBound(p_, minAt, len_, &min);
    const bool hasMin = i > minAt;
    int maxAt = i;
    if (i < len_ && p_[i] == '}' && hasMin) {
        max = min;
        maxAt = minAt;
    } else if (i < len_ && p_[i] == ',') {
        maxAt = i + 1;
        i = ReadBound(p_, maxAt, len_, &max);
        if (i == maxAt) max = kRepeatUnlimited;
        if (i >= len_ || p_[i] != '}') return kOk;
    } else {
        return kOk;
    }
    *isQuantifier = true;
    if (min > kMaxBound) return Fail(kErrQuantifier, minAt);
    if (max != kRepeatUnlimited || i > maxAt) {
        if (max > kMaxBound || max < min) return Fail(kErrQuantifier, maxAt);
    }
    return Quantifier(at, min, max, false, i + 1);
}

// A quantifier from `at` to `end` (its lazy '?' not yet read).
Status CompilerPass::Quantifier(int at, int min, int max, bool lazy, int end) {
    if (end < len_ && p_[end] == '?') {
        lazy = true;
        ++end;
    }
    if (at == quantEnd_) return Fail(kErrQuantifier, at);  // doubled quantifier
    if (runLen_ > 1) {
        // The quantifier takes the run's last byte only.
        --runLen_;
        const u8 last = blockEnd_[-staged_];
        --staged_;
        FlushRun();
        StageByte(last);
        runLen_ = 1;
    }
    FlushRun();
    if (count_ == 0) return Fail(kErrQuantifier, at);
    const u32 before = prog_[count_ - 1].op;
    if (before == OP_ALT || before == OP_SETFLAGS || IsOpener(before)) return Fail(kErrQuantifier, at);
    quantEnd_ = end;
    pos_ = end;
    if (IsRepeat(before)) {  // e.g. across a comment: merged, greedy
        Instruction& r = prog_[count_ - 1];
        r.op = OP_GREEDY_REPEAT;
        r.a = SaturatingAdd(r.a, min);
        r.b = SaturatingAdd(r.b, max);
        return kOk;
    }
    const int target = count_ - 1;
    Instruction* r = Emit(lazy ? OP_LAZY_REPEAT : OP_GREEDY_REPEAT);
    r->a = min;
    r->b = max;
    const u32 op = prog_[target].op;
    if (item_ == target && (op == OP_CHAR || op == OP_CODEPOINT)) {
        if (depth_ == 0 && min >= 1 && itemFromRun_ && lastLiteral_ >= -1) {
            lastLiteral_ = target;
            prog_[target].c = static_cast<int>(options_);
        } else {
            lastLiteral_ = -1;
        }
    }
    return kOk;
}

}  // namespace vkp::regexp
