// Opening and closing groups: openers, link values, OP_KET, dissolving
// plain groups, conditionals and the fixed length of look-behinds.
#include "regexp/compile/compiler_pass.h"
#include "regexp/compile/pattern_syntax.h"

namespace vkp::regexp {

void CompilerPass::OpenGroup(u32 op, int bodyPos) {
    const int index = count_;
    Instruction* g = Emit(op);
    g->a = depth_ + 1;  // open groups are found by their depth
    g->b = lastId_;
    open_[depth_++] = {index, options_};
    item_ = -1;
    pos_ = bodyPos;
}

Status CompilerPass::Open() {
    FlushRun();
    const int at = pos_;
    const char* p = p_;
    auto byte = [this](int i) { return i < len_ ? p_[i] : '\0'; };
    if (byte(at + 1) == '?' && byte(at + 2) == '#') {  // comment, checked closed by the pre-scan
        int e = at + 3;
        while (p[e] != ')') ++e;
        pos_ = e + 1;
        return kOk;
    }
    if (depth_ == kMaxGroupIds - 1) return Fail(kErrParenthesis, at);
    if (lastId_ + 1 >= kMaxGroupIds) return Fail(kErrParenthesis, at);
    ++lastId_;
    if (byte(at + 1) != '?') {
        OpenGroup(OP_CAPTURE, at + 1);
        prog_[count_ - 1].c = ++lastCapture_;
        return kOk;
    }
    switch (byte(at + 2)) {
        case ':': OpenGroup(OP_GROUP, at + 3); return kOk;
        case '=': OpenGroup(OP_LOOKAHEAD, at + 3); return kOk;
        case '!': OpenGroup(OP_NLOOKAHEAD, at + 3); return kOk;
        case '>': OpenGroup(OP_ATOMIC, at + 3); return kOk;
        case '<':
            if (byte(at + 3) == '=') OpenGroup(OP_LOOKBEHIND, at + 4);
            else if (byte(at + 3) == '!') OpenGroup(OP_NLOOKBEHIND, at + 4);
            else return Fail(kErrParenthesis, at + 3);
            return kOk;
        case '(': return OpenCondition(at);
        default: break;
    }
    const OptionSetting setting = ParseOptionSetting(p, at + 2, len_);
    const u32 updated = setting.Apply(options_);
    if (byte(setting.end) == ':') {
        OpenGroup(OP_FLAGGROUP, setting.end + 1);
        prog_[count_ - 1].c = static_cast<int>(updated);
    } else if (byte(setting.end) == ')') {
        // Lasts to the end of the enclosing group; x alone only changes
        // how the rest of the pattern is read.
        if (!setting.onlyExtended) EmitItem(OP_SETFLAGS)->a = static_cast<int>(updated);
        item_ = -1;
        pos_ = setting.end + 1;
    } else {
        return Fail(kErrParenthesis, setting.end);
    }
    options_ = updated;
    return kOk;
}

// "(?(" at `at`: the condition is a group number in parentheses or a
// look-around group, which becomes the first instruction of the body.
Status CompilerPass::OpenCondition(int at) {
    OpenGroup(OP_COND, at + 3);
    int i = at + 3;
    if (i < len_ && p_[i] == '?') {
        const char k = i + 1 < len_ ? p_[i + 1] : '\0';
        const char k2 = i + 2 < len_ ? p_[i + 2] : '\0';
        if (k == '=' || k == '!' || (k == '<' && (k2 == '=' || k2 == '!'))) {
            pos_ = at + 2;  // the condition's '(' is the third byte
            return Open();
        }
        return Fail(kErrParenthesis, i);
    }
    int number = 0;
    int n = 0;
    while (n < 3 && i < len_ && IsDigit(static_cast<u8>(p_[i]))) number = number * 10 + (p_[i++] - '0'), ++n;
    if (i < len_ && p_[i] == ')' && (n == 0 || number == 0)) return Fail(kErrGroupNumber, i + 1);
    if (n == 0 || i >= len_ || p_[i] != ')') return Fail(kErrParenthesis, i);
    Instruction* ref = EmitItem(OP_BACKREF);
    ref->a = number;
    ref->b = 0;
    pos_ = i + 1;
    return kOk;
}

// Would a quantifier follow at `pos`, once comments (and in extended mode
// white space) are passed over?
bool CompilerPass::QuantifierFollows(int pos) const {
    while (pos < len_) {
        const u8 c = static_cast<u8>(p_[pos]);
        if ((options_ & kOptExtended) && IsExtendedSpace(c)) {
            ++pos;
        } else if ((options_ & kOptExtended) && c == '#') {
            pos = CommentEnd(p_, pos, len_);
        } else if (c == '(' && pos + 2 < len_ && p_[pos + 1] == '?' && p_[pos + 2] == '#') {
            while (pos < len_ && p_[pos] != ')') ++pos;
            ++pos;
        } else {
            break;
        }
    }
    if (pos >= len_) return false;
    const char c = p_[pos];
    if (c == '*' || c == '+' || c == '?') return true;
    if (c != '{') return false;
    int i = pos + 1;
    const int digitsAt = i;
    while (i < len_ && IsDigit(static_cast<u8>(p_[i]))) ++i;
    if (i < len_ && p_[i] == '}') return i > digitsAt;
    if (i >= len_ || p_[i] != ',') return false;
    ++i;
    while (i < len_ && IsDigit(static_cast<u8>(p_[i]))) ++i;
    return i < len_ && p_[i] == '}';
}

// A plain group whose body is one item of length 1, or a run of fixed
// length 2 or more that is not repeated, is written without the group.
bool CompilerPass::Dissolvable(int opener, int closePos) const {
    int length = 0;
    for (int i = opener + 1; i < count_; i = NextItem(prog_, i)) {
        const u32 op = prog_[i].op;
        if (IsSingleItem(op) || op == OP_CLASS) length += 1;
        else if (op == OP_STRING) length += prog_[i].b;
        else if (op != OP_GREEDY_REPEAT) return false;
    }
    if (count_ - opener - 1 == 1 && length == 1) return true;
    return length >= 2 && !QuantifierFollows(closePos + 1);
}

void CompilerPass::Dissolve(int opener) {
    const int body = count_ - opener - 1;
    __builtin_memmove(prog_ + opener, prog_ + opener + 1, sizeof(Instruction) * static_cast<size_t>(body));
    --count_;
    --lastId_;
    if (TopLevelPrefix())  // the literals now stand at the top level
        for (int i = opener; i < count_; i = NextItem(prog_, i))
            if (prog_[i].op == OP_CHAR || prog_[i].op == OP_STRING) prog_[i].c = static_cast<int>(options_);
    item_ = opener;
    itemFromRun_ = false;
}

// Fixed length of the items in [from, to), or -1 when it varies. Repeats
// multiply the item before them, nested groups count their own length,
// look-arounds and anchors count 0; all alternatives must agree.
int CompilerPass::MeasureFixed(int from, int to) const {
    int branch = -1;
    int length = 0;
    int width = 0;  // of the item before the current record
    for (int i = from; i < to; i = NextItem(prog_, i)) {
        const Instruction& ins = prog_[i];
        const u32 op = ins.op;
        if (IsSingleItem(op) || op == OP_CLASS || op == OP_ANYBYTE) {
            width = 1;
        } else if (op == OP_STRING) {
            width = ins.b;
        } else if (IsRepeat(op)) {
            length += (ins.a - 1) * width;
            width = 0;
            continue;
        } else if (op == OP_CAPTURE || op == OP_GROUP || op == OP_ATOMIC || op == OP_FLAGGROUP) {
            width = MeasureFixed(i + 1, i + 1 + ins.b);
            if (width < 0) return -1;
        } else if (IsLookaround(op) || op == OP_ANCHOR || op == OP_SETFLAGS) {
            width = 0;
        } else if (op == OP_ALT) {
            if (branch >= 0 && branch != length) return -1;
            branch = length;
            length = width = 0;
            continue;
        } else {
            return -1;
        }
        length += width;
    }
    if (branch >= 0 && branch != length) return -1;
    return length;
}

Status CompilerPass::CheckLookbehind(int opener) {
    for (int i = opener + 1; i < count_; ++i) {
        const Instruction& ins = prog_[i];
        if (ins.op == OP_CLASS) i += ins.b;
        else if (ins.op == OP_BACKREF || (IsRepeat(ins.op) && ins.a != ins.b)) return Fail(kErrParenthesis, pos_);
    }
    const int length = MeasureFixed(opener + 1, count_);
    if (length < 0) return Fail(kErrParenthesis, pos_);
    prog_[opener].c = length;
    return kOk;
}

Status CompilerPass::CheckConditional(int opener) {
    int bars = 0;
    for (int i = opener + 1; i < count_; i = NextItem(prog_, i))
        bars += prog_[i].op == OP_ALT;
    const int afterCondition = opener + 1 < count_ ? NextItem(prog_, opener + 1) : count_;
    if (bars > 1 || (afterCondition < count_ && IsRepeat(prog_[afterCondition].op)))
        return Fail(kErrParenthesis, pos_);
    return kOk;
}

Status CompilerPass::Close() {
    FlushRun();
    if (depth_ == 0) return Fail(kErrParenthesis, pos_);  // the pre-scan rules this out
    const OpenEntry group = open_[--depth_];
    const int opener = group.opener;
    const u32 op = prog_[opener].op;
    const int body = count_ - opener - 1;
    if (op == OP_GROUP && Dissolvable(opener, pos_)) {
        Dissolve(opener);
    } else {
        if (op == OP_COND) {
            if (Status s = CheckConditional(opener)) return s;
        } else if (op == OP_LOOKBEHIND || op == OP_NLOOKBEHIND) {
            if (Status s = CheckLookbehind(opener)) return s;
        }
        const int id = prog_[opener].b;
        const int link = (op == OP_ATOMIC || IsLookaround(op)) ? -id : id;
        for (int i = opener + 1; i < count_; i = NextItem(prog_, i))
            if (prog_[i].op == OP_ALT) prog_[i].a = link;
        prog_[opener].a = link;
        prog_[opener].b = body;
        const bool singleRepeat = (op == OP_CAPTURE || op == OP_GROUP) && body == 2 &&
                                  IsSingleItem(prog_[opener + 1].op) && prog_[opener + 2].op == OP_GREEDY_REPEAT;
        Instruction* ket = Emit(OP_KET);
        ket->a = link;
        ket->b = static_cast<int>(group.savedOptions);
        ket->c = singleRepeat ? 1 : 0;
        item_ = opener;
        itemFromRun_ = false;
    }
    options_ = group.savedOptions;
    ++pos_;
    return kOk;
}

}  // namespace vkp::regexp
