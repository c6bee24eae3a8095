// The compiled program: fixed-size 24-byte instruction records and their
// opcodes. The compiler writes them into the pattern block; the matcher and
// the property tests read them. Operands an opcode does not use are left
// unwritten and must not be read.
#pragma once

#include <stddef.h>

#include "floor/base.h"

namespace vkp {

enum Opcode : u32 {
    OP_CHAR = 0x10000000,          // a = byte; c = option bits (literal prefix)
    OP_STRING = 0x10000001,        // b = length; d = bytes; c = option bits
    OP_BACKREF = 0x10000002,       // a = group number; b = 0
    OP_CLASS = 0x10000003,         // a = 0 or -1 (negated); b = member count
    OP_TYPE = 0x10000004,          // a = '.', 'd', 'D', 's', 'S', 'w' or 'W'
    OP_ANCHOR = 0x10000005,        // a = '^', '$', 'A', 'B', 'G', 'Z', 'b', 'z' or 128
    OP_ALT = 0x10000006,           // a = link value; b = option bits
    OP_RANGE = 0x10000007,         // a = low, b = high code point
    OP_LAZY_REPEAT = 0x10000008,   // a = minimum; b = maximum
    OP_GREEDY_REPEAT = 0x10000009, // a = minimum; b = maximum
    OP_LOOKBEHIND = 0x1000000a,    // a = link; b = body count; c = body length
    OP_NLOOKBEHIND = 0x1000000b,   // as OP_LOOKBEHIND
    OP_LOOKAHEAD = 0x1000000c,     // a = link; b = body count
    OP_NLOOKAHEAD = 0x1000000d,    // as OP_LOOKAHEAD
    OP_FLAGGROUP = 0x1000000e,     // a = link; b = body count; c = option bits
    OP_COND = 0x1000000f,          // a = link; b = body count
    OP_CAPTURE = 0x10000010,       // a = link; b = body count; c = capture number
    OP_GROUP = 0x10000011,         // a = link; b = body count
    OP_ATOMIC = 0x10000012,        // a = link (negative); b = body count
    OP_KET = 0x10000013,           // a = link; b = option bits; c = 0 or 1
    OP_SETFLAGS = 0x10000014,      // a = new option bits
    OP_ANYBYTE = 0x10000015,       // no operands
    OP_CODEPOINT = 0x10000016,     // a = code point
    OP_CATEGORY = 0x10000017,      // a = category bits; b = 0 or -1 (negated)
    OP_BLOCK = 0x10000018,         // a = first, b = last; c = 0 or -1 (negated)
    OP_SCRIPT = 0x10000019,        // a = 1; b = 0 or -1; c = range count; d = ranges
    OP_EXTENDED = 0x1000001a,      // no operands
};

// Class members: an OP_CLASS is followed by b member records. Member
// OP_CHAR, OP_CODEPOINT and OP_RANGE records carry c = 0, or c = -1 when
// they come from a negated POSIX name ([:^name:]): the consecutive members
// of one such name form one set, and the class takes every character
// outside that set ([[:^alpha:]] is "not a letter"). Member OP_TYPE,
// OP_CATEGORY, OP_BLOCK and OP_SCRIPT records use their own negation
// operands.
//
// Maximum of a repeat that stands for "unlimited".
constexpr int kRepeatUnlimited = 0x3FFFFFFF;

// The 24-byte record of the public header: op, a, b, c, d.
using Instruction = vkpRegExpInstruction;

// Bits of the option word (the option letters s, m, i, x, g).
constexpr u32 kOptDotAll = VKP_REGEXP_DOTALL;
constexpr u32 kOptMultiline = VKP_REGEXP_MULTILINE;
constexpr u32 kOptIgnoreCase = VKP_REGEXP_IGNORECASE;
constexpr u32 kOptExtended = VKP_REGEXP_EXTENDED;
constexpr u32 kOptGlobal = VKP_REGEXP_GLOBAL;

// The header's patternKind.
enum PatternKind : int {
    kKindGeneral = 0,
    kKindLeadingLiteral = 1,      // begins with a literal that every match begins with
    kKindLiteralAlternation = 2,  // literal | literal | ... and nothing else
};

// The header's subject format.
enum SubjectFormat : int { kFormatBytes = 0, kFormatUtf8 = 1 };

// OP_ANCHOR's a for the anchor the compiler puts before a leading .* or .+:
// a match starts at the subject start or after a line feed.
constexpr int kImplicitAnchor = 128;

// The bytes of an OP_CHAR or OP_STRING instruction; length 0 for others.
struct Literal {
    const u8* bytes;
    int length;
};
inline Literal LiteralOf(const Instruction& ins) {
    if (ins.op == OP_CHAR) return {reinterpret_cast<const u8*>(&ins.a), 1};  // little-endian: a's low byte
    if (ins.op == OP_STRING && ins.b > 0) return {static_cast<const u8*>(ins.d), ins.b};
    return {nullptr, 0};
}

// Readers of the program.
// Is `op` the opener of a group (it is followed by its body and an OP_KET)?
inline bool IsOpener(u32 op) {
    return op >= OP_LOOKBEHIND && op <= OP_ATOMIC;
}
inline bool IsLookaround(u32 op) { return op >= OP_LOOKBEHIND && op <= OP_NLOOKAHEAD; }
inline bool IsRepeat(u32 op) { return op == OP_LAZY_REPEAT || op == OP_GREEDY_REPEAT; }

// Instructions that match one character (or one literal run) of fixed width.
inline bool IsSingleItem(u32 op) {
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
inline int NextItem(const Instruction* prog, int i) {
    const u32 op = prog[i].op;
    if (IsOpener(op)) return i + prog[i].b + 2;
    if (op == OP_CLASS) return i + prog[i].b + 1;
    return i + 1;
}

static_assert(sizeof(void*) == 8, "the program format assumes 64-bit pointers");
static_assert(sizeof(Instruction) == 24);
static_assert(offsetof(Instruction, op) == 0);
static_assert(offsetof(Instruction, a) == 4);
static_assert(offsetof(Instruction, b) == 8);
static_assert(offsetof(Instruction, c) == 12);
static_assert(offsetof(Instruction, d) == 16);

}  // namespace vkp
