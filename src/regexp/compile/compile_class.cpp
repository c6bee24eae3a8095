// Character classes: OP_CLASS followed by its member records.
#include "regexp/compile/compiler_pass.h"
#include "regexp/compile/pattern_syntax.h"
#include "floor/utf8.h"

namespace vkp::regexp {
namespace {

struct PosixName {
    const char* name;
    u8 count;
    u8 ranges[4][2];  // lo == hi and a single member: OP_CHAR
};

// Byte ranges as documented: cntrl stops at 31, graph and print run to
// 255, punct includes the space and everything from 123 up.
constexpr PosixName kPosixNames[] = {
    {"alnum", 3, {{'a', 'z'}, {'A', 'Z'}, {'0', '9'}}},
    {"alpha", 2, {{'a', 'z'}, {'A', 'Z'}}},
    {"ascii", 1, {{0, 127}}},
    {"blank", 2, {{' ', ' '}, {'\t', '\t'}}},
    {"cntrl", 1, {{0, 31}}},
    {"digit", 1, {{'0', '9'}}},
    {"graph", 1, {{33, 255}}},
    {"lower", 1, {{'a', 'z'}}},
    {"print", 1, {{32, 255}}},
    {"punct", 4, {{32, 47}, {58, 64}, {91, 96}, {123, 255}}},
    {"space", 2, {{9, 13}, {' ', ' '}}},
    {"upper", 1, {{'A', 'Z'}}},
    {"word", 0, {}},  // OP_TYPE w, or W when negated
    {"xdigit", 3, {{'a', 'f'}, {'A', 'F'}, {'0', '9'}}},
};

}  // namespace

// Reads the member at `at` (a byte, a UTF-8 character or an escape).
Status CompilerPass::ReadClassAtom(int at, ClassAtom* atom) {
    const char* p = p_;
    const int len = len_;
    const u8 c = static_cast<u8>(p[at]);
    atom->kind = AtomKind::kChar;
    atom->codePoint = false;
    if (c != '\\') {
        // Decoded as subjects are, so a member and the character it names agree.
        int n = 1;
        const u8* b = reinterpret_cast<const u8*>(p);
        atom->value = DecodeChar(b + at, b + len, &n);
        atom->codePoint = atom->value >= 256;
        atom->next = at + n;
        return kOk;
    }
    if (at + 1 >= len) {
        atom->kind = AtomKind::kNone;
        atom->next = len;
        return kOk;
    }
    const char e = p[at + 1];
    atom->next = at + 2;
    switch (e) {
        case 'd': case 'D': case 's': case 'S': case 'w': case 'W':
            atom->kind = AtomKind::kOther;
            atom->record.op = OP_TYPE;
            atom->record.a = e;
            return kOk;
        case 'p': case 'P':
            atom->kind = AtomKind::kOther;
            return Property(at + 1, &atom->record, &atom->next);
        case 'Q': case 'E':
            atom->kind = AtomKind::kNone;
            return kOk;
        case 'x':
            return Hex(at + 1, &atom->value, &atom->codePoint, &atom->next);
        case 'b': atom->value = 8; return kOk;
        case 'c':
            if (at + 2 < len) {
                atom->value = ControlLetter(p[at + 2]);
                atom->next = at + 3;
            } else {
                atom->value = 'c';
            }
            return kOk;
        default:
            if (e >= '0' && e <= '7') {
                atom->next = ReadOctal(p, at + 1, len, 3, &atom->value);
            } else {
                const int control = ControlEscape(e);
                atom->value = control >= 0 ? control : static_cast<u8>(e);
            }
            return kOk;
    }
}

Status CompilerPass::Posix(int at, int end) {
    int name = at + 2;
    const bool negated = p_[name] == '^';
    if (negated) ++name;
    const int nameLen = end - 2 - name;
    for (const PosixName& entry : kPosixNames) {
        int n = 0;
        while (entry.name[n] && n < nameLen && entry.name[n] == p_[name + n]) ++n;
        if (entry.name[n] != 0 || n != nameLen) continue;
        if (entry.count == 0) {
            Instruction* t = Emit(OP_TYPE);
            t->a = negated ? 'W' : 'w';
        }
        for (int k = 0; k < entry.count; ++k) {
            const u8 lo = entry.ranges[k][0], hi = entry.ranges[k][1];
            Instruction* m = Emit(lo == hi ? OP_CHAR : OP_RANGE);
            m->a = lo;
            if (lo != hi) m->b = hi;
            m->c = negated ? -1 : 0;
        }
        return kOk;
    }
    return Fail(kErrClass, at);
}

Status CompilerPass::Class() {
    FlushRun();
    const int at = pos_;
    const int cls = count_;
    Emit(OP_CLASS)->a = 0;
    int i = at + 1;
    if (i < len_ && p_[i] == '^') {
        prog_[cls].a = -1;
        ++i;
    }
    auto emitChar = [this](int value, bool codePoint) {
        const int index = count_;
        Instruction* m = Emit(codePoint || value >= 256 ? OP_CODEPOINT : OP_CHAR);
        m->a = value;
        m->c = 0;
        return index;
    };
    bool first = true;
    bool quoting = false;
    int lastChar = -1;  // a member that a following '-' turns into a range
    int lastCharAt = 0;
    for (;;) {
        if (i >= len_) return Fail(kErrClass, at);
        const u8 c = static_cast<u8>(p_[i]);
        const bool escape = c == '\\' && i + 1 < len_;
        if (quoting) {
            if (escape && p_[i + 1] == 'E') {
                quoting = false;
                i += 2;
            } else {
                lastChar = emitChar(c, false);
                lastCharAt = i++;
            }
            continue;
        }
        if (c == ']' && !first) {
            ++i;
            break;
        }
        first = false;
        if (escape && (p_[i + 1] == 'Q' || p_[i + 1] == 'E')) {
            quoting = p_[i + 1] == 'Q';
            i += 2;
            continue;
        }
        if (c == '-' && lastChar >= 0 && i + 1 < len_ && p_[i + 1] != ']') {
            ClassAtom hi;
            if (Status s = ReadClassAtom(i + 1, &hi)) return s;
            if (hi.kind == AtomKind::kChar) {
                if (hi.value < prog_[lastChar].a) return Fail(kErrClass, lastCharAt);
                prog_[lastChar].op = OP_RANGE;
                prog_[lastChar].b = hi.value;
                lastChar = -1;
                i = hi.next;
                continue;
            }
            // '-' before a non-character member stands for itself
        }
        if (c == '[' && i + 1 < len_ && (p_[i + 1] == ':' || p_[i + 1] == '.' || p_[i + 1] == '=')) {
            const int end = PosixNameEnd(p_, i, len_);
            if (end > 0) {
                if (Status s = Posix(i, end)) return s;
                lastChar = -1;
                i = end;
                continue;
            }
        }
        ClassAtom atom;
        if (Status s = ReadClassAtom(i, &atom)) return s;
        if (atom.kind == AtomKind::kChar) {
            lastChar = emitChar(atom.value, atom.codePoint);
            lastCharAt = i;
        } else if (atom.kind == AtomKind::kOther) {
            *Emit(atom.record.op) = atom.record;
            lastChar = -1;
        }
        i = atom.next;
    }
    prog_[cls].b = count_ - cls - 1;
    item_ = cls;
    itemFromRun_ = false;
    pos_ = i;
    return kOk;
}

}  // namespace vkp::regexp
