// Lexical rules shared by the pre-scan and the main pass, so that both
// agree on where comments, classes and option settings end.
#pragma once

#include "floor/base.h"
#include "regexp/compile/program.h"

namespace vkp::regexp {

// The bit of an option letter (s m i x g), or 0.
VKP_INLINE u32 OptionBit(char c) {
    switch (c) {
        case 's': return kOptDotAll;
        case 'm': return kOptMultiline;
        case 'i': return kOptIgnoreCase;
        case 'x': return kOptExtended;
        case 'g': return kOptGlobal;
        default: return 0;
    }
}

// White space that extended mode drops (the vertical tab is not among it).
VKP_INLINE bool IsExtendedSpace(u8 c) {
    return c == 9 || c == 10 || c == 12 || c == 13 || c == 32;
}

VKP_INLINE bool IsDigit(u8 c) { return c >= '0' && c <= '9'; }

// An option setting after "(?": letters i m s x toggle their bit in one
// mask, '-' switches the whole mask to clearing. Parsing stops at the first
// other byte, whose offset is `end`.
struct OptionSetting {
    u32 mask = 0;
    bool clearing = false;
    bool onlyExtended = true;  // no letter but x (or none at all)
    int end = 0;

    u32 Apply(u32 old) const { return clearing ? (old & ~mask) : (old | mask); }
};
OptionSetting ParseOptionSetting(const char* p, int pos, int len);

// For a POSIX name opened by '[' at `pos` inside a class (the delimiter
// ':' '.' or '=' follows it): the offset just past the closing "<delim>]",
// or -1 when the name is not closed before the next ']'.
int PosixNameEnd(const char* p, int pos, int len);

// Offset of the end of the line that a '#' comment at `pos` runs to (the
// line feed itself, or len).
int CommentEnd(const char* p, int pos, int len);

}  // namespace vkp::regexp
