#include "regexp/compile/pattern_syntax.h"

namespace vkp::regexp {

OptionSetting ParseOptionSetting(const char* p, int pos, int len) {
    OptionSetting s;
    for (; pos < len; ++pos) {
        const char c = p[pos];
        if (c == '-') {
            s.clearing = true;
        } else if (c == 'i' || c == 'm' || c == 's' || c == 'x') {
            s.mask ^= OptionBit(c);
            if (c != 'x') s.onlyExtended = false;
        } else {
            break;
        }
    }
    s.end = pos;
    return s;
}

int PosixNameEnd(const char* p, int pos, int len) {
    const char delim = p[pos + 1];
    for (int j = pos + 2; j < len; ++j) {
        if (p[j] != ']') continue;
        return (j - 1 > pos + 1 && p[j - 1] == delim) ? j + 1 : -1;
    }
    return -1;
}

int CommentEnd(const char* p, int pos, int len) {
    while (pos < len && p[pos] != '\n') ++pos;
    return pos;
}

}  // namespace vkp::regexp
