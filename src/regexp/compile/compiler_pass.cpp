#include "regexp/compile/compiler_pass.h"

#include "regexp/compile/pattern_syntax.h"

namespace vkp::regexp {

CompilerPass::CompilerPass(const char* pattern, int len, RegExpState* state, u32 options, int groupCount)
    : p_(pattern),
      len_(len),
      state_(state),
      prog_(ProgramOf(state)),
      blockEnd_(reinterpret_cast<u8*>(state) + BlockSize(len)),
      options_(options),
      groupCount_(groupCount) {}

Instruction* CompilerPass::EmitItem(u32 op) {
    FlushRun();
    item_ = count_;
    itemFromRun_ = false;
    return Emit(op);
}

// A top-level literal of the prefix (before any top-level bar) carries the
// option word in c and becomes the last literal so far. Behind a top-level
// bar only a repeated literal can become it (see Quantifier).
void CompilerPass::MarkTopLevelLiteral(int index) {
    if (!TopLevelPrefix()) return;
    prog_[index].c = static_cast<int>(options_);
    lastLiteral_ = index;
}

void CompilerPass::FlushRun() {
    if (runLen_ == 0) return;
    const int index = count_;
    if (runLen_ == 1) {
        --staged_;
        Emit(OP_CHAR)->a = blockEnd_[-1 - staged_];
    } else {
        Emit(OP_STRING)->b = runLen_;  // d is set when the bytes are copied
    }
    runLen_ = 0;
    item_ = index;
    itemFromRun_ = true;
    MarkTopLevelLiteral(index);
}

void CompilerPass::EmitEscapedChar(int value, int nextPos) {
    Instruction* ins = EmitItem(OP_CHAR);
    ins->a = value;
    if (TopLevelPrefix()) ins->c = static_cast<int>(options_);
    pos_ = nextPos;
}

Status CompilerPass::Run(int* errOffset) {
    // A pattern that starts by skipping any text gets the implicit anchor,
    // which lets the matcher try only line starts.
    auto starts = [this](const char* s, int n) {
        for (int i = 0; i < n; ++i)
            if (i >= len_ || p_[i] != s[i]) return false;
        return true;
    };
    if ((len_ >= 2 && (starts(".*", 2) || starts(".+", 2)) && (len_ == 2 || p_[2] != '?')) ||
        starts("(?:.*)", 6) || starts("(?:.+)", 6)) {
        Emit(OP_ANCHOR)->a = kImplicitAnchor;
    }

    Status s = kOk;
    while (s == kOk && pos_ < len_) {
        const u8 c = static_cast<u8>(p_[pos_]);
        if (options_ & kOptExtended) {
            if (IsExtendedSpace(c)) {
                FlushRun();
                ++pos_;
                continue;
            }
            if (c == '#') {
                FlushRun();
                pos_ = CommentEnd(p_, pos_, len_);
                continue;
            }
        }
        switch (c) {
            case '\\': s = Escape(); break;
            case '.': EmitItem(OP_TYPE)->a = '.'; ++pos_; break;
            case '^': case '$': EmitItem(OP_ANCHOR)->a = c; ++pos_; break;
            case '[': s = Class(); break;
            case '(': s = Open(); break;
            case ')': s = Close(); break;
            case '*': s = Quantifier(pos_, 0, kRepeatUnlimited, false, pos_ + 1); break;
            case '+': s = Quantifier(pos_, 1, kRepeatUnlimited, false, pos_ + 1); break;
            case '?': s = Quantifier(pos_, 0, 1, false, pos_ + 1); break;
            case '{': {
                bool isQuantifier = false;
                s = Braces(pos_, &isQuantifier);
                if (s == kOk && !isQuantifier) AddLiteral(c), ++pos_;
                break;
            }
            case '|': {
                Instruction* alt = EmitItem(OP_ALT);
                alt->a = depth_;
                alt->b = static_cast<int>(options_);
                item_ = -1;
                if (depth_ == 0) {
                    lastLiteral_ = -2;
                    topBar_ = true;
                }
                ++pos_;
                break;
            }
            default: AddLiteral(c); ++pos_; break;
        }
    }
    if (s == kOk && depth_ > 0) s = Fail(kErrParenthesis, len_);  // the pre-scan rules this out
    if (s != kOk) {
        *errOffset = errOffset_;
        return s;
    }
    Finish();
    return kOk;
}

void CompilerPass::Finish() {
    FlushRun();
    if (lastLiteral_ >= 0)
        for (int i = lastLiteral_ + 1; i < count_; ++i)
            if (!IsRepeat(prog_[i].op)) lastLiteral_ = -1;

    // The staged literal bytes lie backwards at the block's end; move them
    // behind the last instruction, restore their order, and point every
    // OP_STRING at its run.
    u8* literals = reinterpret_cast<u8*>(prog_ + count_);
    __builtin_memmove(literals, blockEnd_ - staged_, static_cast<size_t>(staged_));
    for (int i = 0, j = staged_ - 1; i < j; ++i, --j) {
        const u8 t = literals[i];
        literals[i] = literals[j];
        literals[j] = t;
    }
    const u8* next = literals;
    bool hasAlt = false;
    for (int i = 0; i < count_; ++i) {
        if (prog_[i].op == OP_STRING) {
            prog_[i].d = next;
            next += prog_[i].b;
        }
        hasAlt |= prog_[i].op == OP_ALT;
    }

    auto isLiteral = [this](int i) { return prog_[i].op == OP_CHAR || prog_[i].op == OP_STRING; };
    int kind = kKindGeneral;
    if (count_ >= 3 && (count_ & 1)) {
        kind = kKindLiteralAlternation;
        for (int i = 0; i < count_; ++i)
            if (!((i & 1) ? prog_[i].op == OP_ALT : isLiteral(i))) kind = kKindGeneral;
    }
    if (kind == kKindGeneral && count_ > 0 && isLiteral(0) && !hasAlt &&
        !(count_ > 1 && prog_[1].op == OP_GREEDY_REPEAT && prog_[1].a == 0))
        kind = kKindLeadingLiteral;

    state_->instructionCount = count_;
    state_->lastLiteralIndex = lastLiteral_;
    state_->matchLimit = kDefaultMatchLimit;
    state_->patternKind = kind;
}

}  // namespace vkp::regexp
