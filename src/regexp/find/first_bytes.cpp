#include "regexp/find/first_bytes.h"

#include "regexp/match/items.h"
#include "regexp/match/literal_scan.h"
#include "floor/utf8.h"

namespace vkp::regexp {
namespace {


enum Outcome { kConsumes, kMayBeEmpty, kUnknown };

void AddByte(ByteSet* set, u8 b, u32 options) {
    set->Add(b);
    if ((options & kOptIgnoreCase) && IsAsciiLetter(b)) set->Add(b ^ 0x20);
}

// Bytes of the classes \d \s \w; the upper-case forms take the complement
// (which includes every byte of a multi-byte character).
void AddType(ByteSet* set, int type) {
    const u8 kind = (type | 0x20) == 'd' ? kKindDigit : (type | 0x20) == 's' ? kKindSpace
                  : (type | 0x20) == 'w' ? kKindWord : 0;
    ByteSet t{};
    for (int b = 0; b < 128; ++b)
        if (KindOf(b) & kind) t.Add(static_cast<u8>(b));
    const bool complement = type != '.' && (type & 0x20) == 0;
    for (int k = 0; k < 8; ++k) set->bits[k] |= complement ? ~t.bits[k] : t.bits[k];
}

// A character at or above 128 begins with a byte at or above 128 (a lead
// byte, or the byte itself when it is not valid UTF-8).
void AddHigh(ByteSet* set) { set->AddRange(0x80, 0xFF); }

// The bytes the members of the class at `at` begin with, as if it were not
// negated.
Outcome MemberBytes(const Instruction* prog, int at, u32 options, ByteSet* set) {
    for (int m = at + 1; m <= at + prog[at].b; ++m) {
        const Instruction& ins = prog[m];
        switch (ins.op) {
            case OP_CHAR:
            case OP_CODEPOINT:
                if (ins.c != 0 || ((options & kOptIgnoreCase) && ins.a >= 128)) return kUnknown;
                if (ins.a < 128) AddByte(set, static_cast<u8>(ins.a), options);
                else AddHigh(set);
                break;
            case OP_RANGE:
                if (ins.c != 0 || ins.a > ins.b) return kUnknown;
                if ((options & kOptIgnoreCase) && ins.b >= 128) return kUnknown;
                for (int b = ins.a; b <= ins.b && b < 128; ++b) AddByte(set, static_cast<u8>(b), options);
                if (ins.b >= 128) AddHigh(set);
                break;
            case OP_TYPE: AddType(set, ins.a); break;
            default: return kUnknown;  // properties may hold ASCII characters
        }
    }
    return kConsumes;
}

// The bytes a class's characters begin with. The members' ASCII bytes are
// exact, so a negated class begins with any other ASCII byte or with any
// byte at or above 128.
Outcome ClassFirst(const Instruction* prog, int at, u32 options, ByteSet* set) {
    if (prog[at].a == 0) return MemberBytes(prog, at, options, set);
    ByteSet members{};
    if (MemberBytes(prog, at, options, &members) != kConsumes) return kUnknown;
    for (int b = 0; b < 128; ++b)
        if (!members.Has(static_cast<u8>(b))) set->Add(static_cast<u8>(b));
    AddHigh(set);
    return kConsumes;
}

Outcome SequenceFirst(const Instruction* prog, int from, int to, u32* options, ByteSet* set);

// The alternatives of [from, to), split at the bars whose a is `link`.
Outcome AlternativesFirst(const Instruction* prog, int from, int to, int link, u32 options, ByteSet* set) {
    Outcome all = kConsumes;
    int begin = from;
    for (int i = from;; i = NextItem(prog, i)) {
        if (i >= to || (prog[i].op == OP_ALT && prog[i].a == link)) {
            u32 branchOptions = options;
            const Outcome o = SequenceFirst(prog, begin, i < to ? i : to, &branchOptions, set);
            if (o == kUnknown) return kUnknown;
            if (o == kMayBeEmpty) all = kMayBeEmpty;
            if (i >= to) return all;
            options = static_cast<u32>(prog[i].b);
            begin = i + 1;
        }
    }
}

Outcome ItemFirst(const Instruction* prog, int i, u32* options, ByteSet* set) {
    const Instruction& ins = prog[i];
    switch (ins.op) {
        case OP_CHAR: AddByte(set, static_cast<u8>(ins.a), *options); return kConsumes;
        case OP_STRING: AddByte(set, static_cast<const u8*>(ins.d)[0], *options); return kConsumes;
        case OP_TYPE:
            if (ins.a == '.') {
                set->AddRange(0, 9);
                if (*options & kOptDotAll) set->Add(10);
                set->AddRange(11, 255);
            } else {
                AddType(set, ins.a);
            }
            return kConsumes;
        case OP_CODEPOINT:
            if (*options & kOptIgnoreCase) return kUnknown;  // a partner may be ASCII
            if (ins.a < 128) set->Add(static_cast<u8>(ins.a));
            else AddHigh(set);
            return kConsumes;
        case OP_BLOCK:
        case OP_SCRIPT: {
            // Only sets of characters at or above 128, compared as they are.
            if ((*options & kOptIgnoreCase) || (ins.op == OP_BLOCK ? ins.c : ins.b) != 0) return kUnknown;
            const u32 low = ins.op == OP_BLOCK ? static_cast<u32>(ins.a) : static_cast<const u32*>(ins.d)[0];
            if (low < 128) return kUnknown;
            AddHigh(set);
            return kConsumes;
        }
        case OP_CLASS: return ClassFirst(prog, i, *options, set);
        case OP_ANCHOR:
        case OP_LOOKAHEAD:
        case OP_NLOOKAHEAD:
        case OP_LOOKBEHIND:
        case OP_NLOOKBEHIND: return kMayBeEmpty;  // zero-width: the next item decides
        case OP_SETFLAGS:
            *options = static_cast<u32>(ins.a);
            return kMayBeEmpty;
        case OP_CAPTURE:
        case OP_GROUP:
        case OP_ATOMIC:
        case OP_FLAGGROUP: {
            const u32 inner = ins.op == OP_FLAGGROUP ? static_cast<u32>(ins.c) : *options;
            const Outcome o = AlternativesFirst(prog, i + 1, i + 1 + ins.b, ins.a, inner, set);
            *options = static_cast<u32>(prog[i + 1 + ins.b].b);  // as the OP_KET restores them
            return o;
        }
        default: return kUnknown;
    }
}

Outcome SequenceFirst(const Instruction* prog, int from, int to, u32* options, ByteSet* set) {
    for (int i = from; i < to;) {
        const Outcome o = ItemFirst(prog, i, options, set);
        if (o == kUnknown) return kUnknown;
        const int next = NextItem(prog, i);
        const bool optional = next < to && vkp::IsRepeat(prog[next].op) && prog[next].a == 0;
        if (o == kConsumes && !optional) return kConsumes;
        i = next < to && vkp::IsRepeat(prog[next].op) ? next + 1 : next;
    }
    return kMayBeEmpty;
}

}  // namespace

bool ItemFirstBytes(const Instruction* program, int i, u32 options, ByteSet* set) {
    return ItemFirst(program, i, &options, set) == kConsumes;
}

bool SequenceFirstBytes(const Instruction* program, int from, int to, u32 options, ByteSet* set) {
    return SequenceFirst(program, from, to, &options, set) == kConsumes;
}

bool FirstBytes(const Instruction* program, int count, u32 options, ByteSet* set) {
    *set = ByteSet{};
    return count > 0 && AlternativesFirst(program, 0, count, 0, options, set) == kConsumes;
}

StartFilter MakeStartFilter(const Instruction* program, int count, u32 options) {
    StartFilter f;
    if (!FirstBytes(program, count, options, &f.set)) return f;
    bool ascii = true;
    int first = -1;
    for (int b = 0; b < 256; ++b) {
        if (!f.set.Has(static_cast<u8>(b))) continue;
        if (first < 0) first = b;
        if (b >= 128) ascii = false;
    }
    const int n = f.set.Count();
    f.byte = static_cast<u8>(first);
    if (n == 1) f.mode = StartFilter::kByte;
    else if (n == 2 && first >= 'A' && first <= 'Z' && f.set.Has(static_cast<u8>(first | 0x20))) {
        f.mode = StartFilter::kFolded;
        f.byte = static_cast<u8>(first | 0x20);
    } else if (n <= 4 && ascii) {
        f.mode = StartFilter::kFew;
        int k = 0;
        for (int b = first; b < 128; ++b)
            if (f.set.Has(static_cast<u8>(b))) f.few[k++] = static_cast<u8>(b);
        for (; k < 4; ++k) f.few[k] = f.few[k - 1];
    } else if (n < 256) {
        f.mode = ascii ? StartFilter::kAscii : StartFilter::kAny;
        for (int b = 0; b < 128; ++b)
            if (f.set.Has(static_cast<u8>(b))) AddNibbleMember(f.nibbles.low, b);
    }
    return f;
}

namespace {

// The first start from pos on that can reach an occurrence of the inner
// literal (or of any literal of the inner set): a match from s holds it at
// some o in [s + innerMin, s + innerMax], so with o the first occurrence at
// or after pos + innerMin no start before o - innerMax can match, and the
// starts up to o - innerMin are tried before the next occurrence is looked
// for.
const u8* NextInnerCandidate(const StartFilter& f, const u8* pos, const u8* end) {
    for (;;) {
        // Offsets from pos: the literal from innerMin on, starts up to it.
        const long room = end - pos;
        if (room - f.innerMin < (f.literals ? 1 : f.literalLength)) return nullptr;
        const u8* from = pos + f.innerMin;
        const int len = static_cast<int>(room - f.innerMin);
        int which;
        const int i = f.literals ? FindLiteralSet(from, len, f.literals, &which)
                                 : FindLiteral(from, len, f.literal, f.literalLength, f.caseless != 0);
        if (i < 0) return nullptr;
        const long last = i;  // from pos: the occurrence, less innerMin
        long k = last + f.innerMin - f.innerMax;
        if (k < 0) k = 0;
        for (; k <= last; ++k)
            if (f.set.Has(pos[k])) return pos + k;
        pos += last + 1;
    }
}

}  // namespace

// An ASCII byte never lies inside a multi-byte character, so landing on one
// keeps the search on character starts whatever it passed over.
const u8* NextCandidate(const StartFilter& f, const u8* pos, const u8* end, int format) {
    const int len = static_cast<int>(end - pos);
    switch (f.mode) {
        case StartFilter::kByte: {
            if (f.byte >= 128 && format == kFormatUtf8) break;
            const int i = FindLiteral(pos, len, &f.byte, 1, false);
            return i < 0 ? nullptr : pos + i;
        }
        case StartFilter::kFolded: {
            const int i = FindFolded(pos, len, f.byte);
            return i < 0 ? nullptr : pos + i;
        }
        case StartFilter::kLiteral: {
            if (f.literal[0] >= 128 && format == kFormatUtf8) break;  // the byte scan keeps to character starts
            const int i = FindLiteral(pos, len, f.literal, f.literalLength, f.caseless != 0);
            return i < 0 ? nullptr : pos + i;
        }
        case StartFilter::kRunBefore: {
            const int i = FindLiteral(pos, len, f.literal, f.literalLength, f.caseless != 0);
            if (i < 0) return nullptr;
            const u8* q = pos + i;
            while (q > pos && f.run.Has(q[-1])) --q;
            return q;
        }
        case StartFilter::kInnerLiteral:
        case StartFilter::kInnerLiteralSet: {
            // Starts are taken from the set only: under format 1 a byte at
            // or above 0x80 may lie inside a character. A set not compiled
            // (no room in the block) leaves the start bytes.
            if (format == kFormatUtf8 && f.set.HasHigh()) break;
            if (f.mode == StartFilter::kInnerLiteralSet && !f.literals) break;
            return NextInnerCandidate(f, pos, end);
        }
        case StartFilter::kLiteralSet: {
            int which;
            const int i = FindLiteralSet(pos, len, f.literals, &which);
            return i < 0 ? nullptr : pos + i;
        }
        case StartFilter::kFew: {
            const int i = FindAnyOf4(pos, len, f.few);
            return i < 0 ? nullptr : pos + i;
        }
        case StartFilter::kRun: {
            const int i = FindNibbleRun(pos, len, f.nibbles, f.runLength);
            return i < 0 ? nullptr : pos + i;
        }
        case StartFilter::kAscii: {
            const int i = FindInNibbleSet(pos, len, f.nibbles);
            return i < 0 ? nullptr : pos + i;
        }
        default: break;
    }
    for (; pos < end; pos += format == kFormatUtf8 ? CharLength(pos, end) : 1)
        if (f.set.Has(*pos)) return pos;
    return nullptr;
}

}  // namespace vkp::regexp
