// The main pass of the compiler: one forward walk over the pattern that
// writes instruction records. Private to the compiler's sources.
#pragma once

#include "regexp/compile/compiler.h"
#include "regexp/compile/program.h"
#include "regexp/compile/state.h"

namespace vkp::regexp {

// Is `op` the opener of a group (it is followed by its body and an OP_KET)?
VKP_INLINE bool IsOpener(u32 op) {
    return op >= OP_LOOKBEHIND && op <= OP_ATOMIC && op != OP_KET;
}
VKP_INLINE bool IsLookaround(u32 op) { return op >= OP_LOOKBEHIND && op <= OP_NLOOKAHEAD; }
VKP_INLINE bool IsRepeat(u32 op) { return op == OP_LAZY_REPEAT || op == OP_GREEDY_REPEAT; }

// Instructions that match one character (or one literal run) of fixed width.
VKP_INLINE bool IsSingleItem(u32 op) {
    switch (op) {
        case OP_CHAR: case OP_TYPE: case OP_CODEPOINT: case OP_CATEGORY:
        case OP_BLOCK: case OP_SCRIPT: case OP_EXTENDED:
            return true;
        default:
            return false;
    }
}

// Index of the record behind the item at i: a closed group is passed over
// with its body and OP_KET, a class with its members.
VKP_INLINE int NextItem(const Instruction* prog, int i) {
    const u32 op = prog[i].op;
    if (IsOpener(op)) return i + prog[i].b + 2;
    if (op == OP_CLASS) return i + prog[i].b + 1;
    return i + 1;
}

// Escape helpers shared by the main pass and classes.
int ControlEscape(char e);  // \a \e \f \n \r \t \v, else -1
int ControlLetter(char c);  // \c + letter
int ReadOctal(const char* p, int at, int len, int maxDigits, int* value);

enum class AtomKind { kChar, kOther, kNone };
// One member as read from the pattern, before it is written.
struct ClassAtom {
    AtomKind kind = AtomKind::kNone;
    int value = 0;           // kChar: the character
    bool codePoint = false;  // kChar: written as OP_CODEPOINT (\x{...} or 256 and above)
    Instruction record{};    // kOther: OP_TYPE or a property
    int next = 0;
};

class CompilerPass {
public:
    CompilerPass(const char* pattern, int len, RegExpState* state, u32 options, int groupCount);
    // Runs the main pass and the finishing steps.
    Status Run(int* errOffset);

private:
    struct OpenEntry {
        int opener;
        u32 savedOptions;
    };

    // Output.
    Instruction* Emit(u32 op) {
        Instruction* ins = prog_ + count_++;
        ins->op = op;
        return ins;
    }
    Instruction* EmitItem(u32 op);
    void EmitEscapedChar(int value, int nextPos);
    void StageByte(u8 b) { blockEnd_[-1 - staged_++] = b; }
    void AddLiteral(u8 b) {
        StageByte(b);
        ++runLen_;
    }
    void FlushRun();
    void MarkTopLevelLiteral(int index);
    bool TopLevelPrefix() const { return depth_ == 0 && !topBar_; }
    Status Fail(Status s, int at) {
        errOffset_ = at;
        return s;
    }

    // Constructs (compiler_pass.cpp, compile_escape.cpp, compile_class.cpp,
    // compile_group.cpp, compile_quantifier.cpp).
    Status Escape();
    Status Digits();
    Status Hex(int at, int* value, bool* codePoint, int* next);
    Status Property(int at, Instruction* out, int* next);
    Status Class();
    Status ReadClassAtom(int at, ClassAtom* atom);
    Status Posix(int at, int end);
    Status Open();
    Status OpenCondition(int at);
    void OpenGroup(u32 op, int bodyPos);
    Status Close();
    Status CheckConditional(int opener);
    Status CheckLookbehind(int opener);
    int MeasureFixed(int from, int to) const;
    bool Dissolvable(int opener, int closePos) const;
    void Dissolve(int opener);
    Status Quantifier(int at, int min, int max, bool lazy, int end);
    Status Braces(int at, bool* isQuantifier);
    bool QuantifierFollows(int pos) const;
    void Finish();

    const char* p_;
    int len_;
    int pos_ = 0;
    RegExpState* state_;
    Instruction* prog_;
    u8* blockEnd_;
    int count_ = 0;
    int staged_ = 0;  // literal bytes staged backwards from blockEnd_
    int runLen_ = 0;  // bytes of the pending literal run (the last staged)
    u32 options_;
    int groupCount_;
    int depth_ = 0;
    int lastId_ = 0;
    int lastCapture_ = 0;
    int lastLiteral_ = -1;
    bool topBar_ = false;
    int item_ = -1;            // start of the item a quantifier would repeat
    bool itemFromRun_ = false; // that item is a literal split off a run
    int quantEnd_ = -1;        // offset just past the last quantifier
    int errOffset_ = 0;
    OpenEntry open_[kMaxGroupIds];
};

}  // namespace vkp::regexp
