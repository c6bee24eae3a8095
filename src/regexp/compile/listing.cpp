#include "regexp/compile/listing.h"

#include <stdarg.h>
#include <stdio.h>

#include "regexp/compile/compiler_pass.h"
#include "regexp/compile/pattern_syntax.h"
#include "regexp/compile/unicode_names.h"

namespace vkp::regexp {
namespace {

// Appends to a caller buffer, counting what would not fit.
class Text {
public:
    Text(char* buf, int size) : buf_(buf), size_(size) {
        if (size_ > 0) buf_[0] = 0;
    }
    void Put(const char* fmt, ...) __attribute__((format(printf, 2, 3))) {
        va_list args;
        va_start(args, fmt);
        const int room = len_ < size_ ? size_ - len_ : 0;
        const int n = vsnprintf(room ? buf_ + len_ : nullptr, static_cast<size_t>(room), fmt, args);
        va_end(args);
        if (n > 0) len_ += n;
    }
    int Length() const { return len_; }

private:
    char* buf_;
    int size_;
    int len_ = 0;
};

// Where an instruction stands: inside a class, at the top level, after a
// top-level bar. This decides which operands the compiler wrote.
struct Place {
    int depth = 0;
    bool afterTopBar = false;
    int classEnd = -1;  // members of the class run up to here
};

Place Advance(const Instruction* prog, int i, Place place) {
    const u32 op = prog[i].op;
    if (i < place.classEnd) return place;
    if (op == OP_CLASS) place.classEnd = i + 1 + prog[i].b;
    else if (IsOpener(op)) ++place.depth;
    else if (op == OP_KET) --place.depth;
    else if (op == OP_ALT && place.depth == 0) place.afterTopBar = true;
    return place;
}

void PutChar(Text& t, int c) {
    if (c >= 0x20 && c < 0x7F && c != '\'' && c != '\\') t.Put("'%c'", c);
    else t.Put("0x%02X", static_cast<unsigned>(c));
}

void PutOptions(Text& t, int bits) {
    t.Put(" opts=");
    if (bits == 0) t.Put("-");
    static constexpr char kLetters[] = "imsxg";
    for (const char* l = kLetters; *l; ++l)
        if (static_cast<u32>(bits) & OptionBit(*l)) t.Put("%c", *l);
}

const char* Name(u32 op) {
    static constexpr const char* kNames[] = {
        "CHAR", "STRING", "BACKREF", "CLASS", "TYPE", "ANCHOR", "ALT", "RANGE", "LAZY", "GREEDY",
        "LOOKBEHIND", "NLOOKBEHIND", "LOOKAHEAD", "NLOOKAHEAD", "FLAGGROUP", "COND", "CAPTURE",
        "GROUP", "ATOMIC", "KET", "SETFLAGS", "ANYBYTE", "CODEPOINT", "CATEGORY", "BLOCK",
        "SCRIPT", "EXTENDED"};
    const u32 k = op - OP_CHAR;
    return k < sizeof(kNames) / sizeof(kNames[0]) ? kNames[k] : nullptr;
}

void Format(const RegExpState* state, int index, const Place& place, Text& t) {
    const Instruction& ins = ProgramOf(state)[index];
    const bool member = index < place.classEnd;
    const char* name = Name(ins.op);
    if (!name) {
        t.Put("?? 0x%08X", ins.op);
        return;
    }
    t.Put("%s", name);
    const bool literalOptions = !member && ((place.depth == 0 && !place.afterTopBar) || index == state->lastLiteralIndex);
    const char* negation = member && ins.c == -1 ? " not" : "";
    switch (ins.op) {
        case OP_CHAR:
            t.Put(" ");
            PutChar(t, ins.a);
            if (literalOptions) PutOptions(t, ins.c);
            t.Put("%s", negation);
            break;
        case OP_STRING: {
            t.Put(" \"");
            const u8* s = static_cast<const u8*>(ins.d);
            for (int i = 0; i < ins.b; ++i) {
                if (s[i] >= 0x20 && s[i] < 0x7F && s[i] != '"' && s[i] != '\\') t.Put("%c", s[i]);
                else t.Put("\\x%02X", s[i]);
            }
            t.Put("\"");
            if (literalOptions) PutOptions(t, ins.c);
            break;
        }
        case OP_BACKREF: t.Put(" %d", ins.a); break;
        case OP_CLASS: t.Put("%s members=%d", ins.a == -1 ? " negated" : "", ins.b); break;
        case OP_TYPE:
            if (ins.a == '.') t.Put(" .");
            else t.Put(" \\%c", ins.a);
            break;
        case OP_ANCHOR:
            if (ins.a == kImplicitAnchor) t.Put(" implicit");
            else if (ins.a == '^' || ins.a == '$') t.Put(" %c", ins.a);
            else t.Put(" \\%c", ins.a);
            break;
        case OP_ALT:
            t.Put(" link=%d", ins.a);
            PutOptions(t, ins.b);
            break;
        case OP_RANGE:
            t.Put(" ");
            PutChar(t, ins.a);
            t.Put("-");
            PutChar(t, ins.b);
            t.Put("%s", negation);
            break;
        case OP_LAZY_REPEAT:
        case OP_GREEDY_REPEAT:
            t.Put(" %d..", ins.a);
            if (ins.b == kRepeatUnlimited) t.Put("inf");
            else t.Put("%d", ins.b);
            break;
        case OP_LOOKBEHIND:
        case OP_NLOOKBEHIND: t.Put(" link=%d body=%d length=%d", ins.a, ins.b, ins.c); break;
        case OP_LOOKAHEAD:
        case OP_NLOOKAHEAD:
        case OP_COND:
        case OP_GROUP:
        case OP_ATOMIC: t.Put(" link=%d body=%d", ins.a, ins.b); break;
        case OP_FLAGGROUP:
            t.Put(" link=%d body=%d", ins.a, ins.b);
            PutOptions(t, ins.c);
            break;
        case OP_CAPTURE: t.Put(" link=%d body=%d capture=%d", ins.a, ins.b, ins.c); break;
        case OP_KET:
            t.Put(" link=%d", ins.a);
            PutOptions(t, ins.b);
            if (ins.c) t.Put(" single-repeat");
            break;
        case OP_SETFLAGS: PutOptions(t, ins.a); break;
        case OP_CODEPOINT:
            t.Put(" U+%04X", static_cast<unsigned>(ins.a));
            t.Put("%s", negation);
            break;
        case OP_CATEGORY: {
            const char* category = CategoryName(static_cast<u32>(ins.a));
            t.Put("%s %s", ins.b == -1 ? " not" : "", category ? category : "?");
            break;
        }
        case OP_BLOCK:
            t.Put("%s U+%04X..U+%04X", ins.c == -1 ? " not" : "", static_cast<unsigned>(ins.a), static_cast<unsigned>(ins.b));
            break;
        case OP_SCRIPT: {
            const char* script = "?";
            // By content: the block may come from another copy of the tables.
            const auto* ranges = static_cast<const CodeRange*>(ins.d);
            for (const ScriptRecord& s : kScripts)
                if (s.rangeCount == ins.c &&
                    __builtin_memcmp(kScriptRanges + s.firstRange, ranges, sizeof(CodeRange) * static_cast<size_t>(ins.c)) == 0)
                    script = s.name;
            t.Put("%s %s ranges=%d", ins.b == -1 ? " not" : "", script, ins.c);
            break;
        }
        default: break;  // ANYBYTE, EXTENDED: no operands
    }
}

}  // namespace

int FormatInstruction(const RegExpState* state, int index, char* buf, int size) {
    const Instruction* prog = ProgramOf(state);
    Place place;
    for (int i = 0; i < index; ++i) place = Advance(prog, i, place);
    Text t(buf, size);
    Format(state, index, place, t);
    return t.Length();
}

int ListProgram(const RegExpState* state, char* buf, int size) {
    const Instruction* prog = ProgramOf(state);
    Text t(buf, size);
    Place place;
    for (int i = 0; i < state->instructionCount; ++i) {
        const u32 op = prog[i].op;
        const int indent = place.depth - (op == OP_KET ? 1 : 0) + (i < place.classEnd ? 1 : 0);
        t.Put("%4d  %*s", i, 2 * (indent > 0 ? indent : 0), "");
        Format(state, i, place, t);
        t.Put("\n");
        place = Advance(prog, i, place);
    }
    return t.Length();
}

int FormatHeader(const RegExpState* state, char* buf, int size) {
    Text t(buf, size);
    t.Put("magic=0x%08X", state->magic);
    PutOptions(t, static_cast<int>(state->options));
    t.Put(" instructions=%d groups=%d lastLiteral=%d matchLimit=%d format=%d kind=%d",
          state->instructionCount, state->groupCount, state->lastLiteralIndex, state->matchLimit, state->format,
          state->patternKind);
    return t.Length();
}

}  // namespace vkp::regexp
