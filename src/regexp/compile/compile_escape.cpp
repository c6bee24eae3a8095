// Escapes outside classes, and the hexadecimal and property forms that
// classes share.
#include "regexp/compile/compiler_pass.h"
#include "regexp/compile/pattern_syntax.h"
#include "regexp/compile/prescan.h"
#include "regexp/compile/unicode_names.h"

namespace vkp::regexp {
namespace {

int HexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

// Control characters of the single-letter escapes, or -1.
int ControlEscape(char e) {
    switch (e) {
        case 'a': return 7;
        case 'e': return 27;
        case 'f': return 12;
        case 'n': return 10;
        case 'r': return 13;
        case 't': return 9;
        case 'v': return 11;
        default: return -1;
    }
}

// \c + letter: the letter (upper-cased) XOR 64.
int ControlLetter(char c) {
    const u8 u = (c >= 'a' && c <= 'z') ? static_cast<u8>(c - 32) : static_cast<u8>(c);
    return u ^ 64;
}

// Up to `maxDigits` octal digits from `at`; returns the offset behind them.
int ReadOctal(const char* p, int at, int len, int maxDigits, int* value) {
    int v = 0;
    int i = at;
    while (i < len && i - at < maxDigits && p[i] >= '0' && p[i] <= '7') v = v * 8 + (p[i++] - '0');
    *value = v;
    return i;
}

// `at` is the offset of the 'x' of \x: two hex digits at most, or a braced
// code point of up to eight.
Status CompilerPass::Hex(int at, int* value, bool* codePoint, int* next) {
    int i = at + 1;
    u32 v = 0;
    if (i < len_ && p_[i] == '{') {
        ++i;
        for (int n = 0; n < 8 && i < len_ && HexValue(p_[i]) >= 0; ++n) v = v * 16 + HexValue(p_[i++]);
        if (i >= len_ || p_[i] != '}') return Fail(kErrProperty, i);
        *codePoint = true;
        *next = i + 1;
    } else {
        for (int n = 0; n < 2 && i < len_ && HexValue(p_[i]) >= 0; ++n) v = v * 16 + HexValue(p_[i++]);
        *codePoint = false;
        *next = i;
    }
    *value = static_cast<int>(v);
    return kOk;
}

// `at` is the offset of 'p' or 'P'. Writes the property record to *out.
Status CompilerPass::Property(int at, Instruction* out, int* next) {
    bool negated = p_[at] == 'P';
    int i = at + 1;
    if (i >= len_) return Fail(kErrProperty, i);
    if (p_[i] != '{') {
        const u32 bits = MajorCategory(p_[i]);
        if (bits == 0) return Fail(kErrProperty, i);
        out->op = OP_CATEGORY;
        out->a = static_cast<int>(bits);
        out->b = negated ? -1 : 0;
        *next = i + 1;
        return kOk;
    }
    ++i;
    if (i < len_ && p_[i] == '^') {
        if (negated) return Fail(kErrProperty, i);
        negated = true;
        ++i;
    }
    int length = 0;
    if (!EncodeProperty(p_ + i, static_cast<size_t>(len_ - i), negated, out, &length))
        return Fail(kErrProperty, i);
    i += length;
    if (i >= len_ || p_[i] != '}') return Fail(kErrProperty, i);
    *next = i + 1;
    return kOk;
}

// \ + digits: a back-reference when the number names an existing group,
// else octal.
Status CompilerPass::Digits() {
    const int at = pos_ + 1;
    if (p_[at] == '0') {
        int value = 0;
        const int next = ReadOctal(p_, at + 1, len_, 2, &value);
        EmitEscapedChar(value, next);
        return kOk;
    }
    int n = 0;
    int number = 0;
    while (n < 3 && at + n < len_ && IsDigit(static_cast<u8>(p_[at + n]))) number = number * 10 + (p_[at + n++] - '0');
    if (n == 1 || number < groupCount_) {
        if (number >= groupCount_) return Fail(kErrGroupNumber, at);
        Instruction* ins = EmitItem(OP_BACKREF);
        ins->a = number;
        ins->b = 0;
        pos_ = at + n;
        return kOk;
    }
    int value = 0;
    const int next = ReadOctal(p_, at, len_, 3, &value);
    if (next == at) {  // 8 or 9 first: the digit itself
        AddLiteral(static_cast<u8>(p_[at]));
        pos_ = at + 1;
    } else {
        EmitEscapedChar(value, next);
    }
    return kOk;
}

Status CompilerPass::Escape() {
    if (pos_ + 1 >= len_) {  // a trailing backslash stands for itself
        AddLiteral('\\');
        ++pos_;
        return kOk;
    }
    const char e = p_[pos_ + 1];
    switch (e) {
        case 'A': case 'B': case 'G': case 'Z': case 'b': case 'z':
            EmitItem(OP_ANCHOR)->a = e;
            pos_ += 2;
            return kOk;
        case 'd': case 'D': case 's': case 'S': case 'w': case 'W':
            EmitItem(OP_TYPE)->a = e;
            pos_ += 2;
            return kOk;
        case 'C': EmitItem(OP_ANYBYTE); pos_ += 2; return kOk;
        case 'X': EmitItem(OP_EXTENDED); pos_ += 2; return kOk;
        case 'E': pos_ += 2; return kOk;  // a lone \E is ignored
        case 'Q': {
            const int end = QuoteEnd(p_, pos_ + 2, len_);
            const int stop = end < 0 ? len_ : end;
            for (int i = pos_ + 2; i < stop; ++i) AddLiteral(static_cast<u8>(p_[i]));
            pos_ = end < 0 ? len_ : end + 2;
            return kOk;
        }
        case 'p': case 'P': {
            Instruction prop{};
            int next = 0;
            if (Status s = Property(pos_ + 1, &prop, &next)) return s;
            *EmitItem(prop.op) = prop;
            pos_ = next;
            return kOk;
        }
        case 'c':
            if (pos_ + 2 >= len_) break;
            EmitEscapedChar(ControlLetter(p_[pos_ + 2]), pos_ + 3);
            return kOk;
        case 'x': {
            int value = 0, next = 0;
            bool codePoint = false;
            if (Status s = Hex(pos_ + 1, &value, &codePoint, &next)) return s;
            if (codePoint) {
                EmitItem(OP_CODEPOINT)->a = value;
                pos_ = next;
            } else {
                EmitEscapedChar(value, next);
            }
            return kOk;
        }
        default:
            if (IsDigit(static_cast<u8>(e))) return Digits();
            if (ControlEscape(e) >= 0) {
                EmitEscapedChar(ControlEscape(e), pos_ + 2);
                return kOk;
            }
            break;
    }
    AddLiteral(static_cast<u8>(e));  // an escaped metacharacter joins the run
    pos_ += 2;
    return kOk;
}

}  // namespace vkp::regexp
