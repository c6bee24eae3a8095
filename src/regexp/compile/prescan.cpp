#include "regexp/compile/prescan.h"

#include "regexp/compile/compiler.h"
#include "regexp/compile/pattern_syntax.h"

namespace vkp::regexp {

int QuoteEnd(const char* p, int pos, int len) {
    for (int i = pos; i + 1 < len; ++i)
        if (p[i] == '\\' && p[i + 1] == 'E') return i;
    return -1;
}

int SkipClass(const char* p, int pos, int len) {
    int i = pos + 1;
    if (i < len && p[i] == '^') ++i;
    if (i < len && p[i] == ']') ++i;  // a leading ']' is a member
    while (i < len) {
        const char c = p[i];
        if (c == ']') return i + 1;
        if (c == '\\') {
            if (i + 1 < len && p[i + 1] == 'Q') {
                const int e = QuoteEnd(p, i + 2, len);
                i = e < 0 ? len : e + 2;
            } else {
                i += (i + 1 < len && p[i + 1] == 'c') ? 3 : 2;
            }
            continue;
        }
        if (c == '[' && i + 1 < len && (p[i + 1] == ':' || p[i + 1] == '.' || p[i + 1] == '=')) {
            const int e = PosixNameEnd(p, i, len);
            if (e > 0) {
                i = e;
                continue;
            }
        }
        ++i;
    }
    return len;
}

Status PreScan(const char* p, int len, u32 options, int* captureCount, int* errOffset) {
    u32 saved[kMaxGroupIds];
    int depth = 0;
    int captures = 0;
    auto fail = [errOffset](int at) {
        *errOffset = at;
        return kErrParenthesis;
    };
    int i = 0;
    while (i < len) {
        const char c = p[i];
        if (c == '\\') {
            if (i + 1 < len && p[i + 1] == 'Q') {
                const int e = QuoteEnd(p, i + 2, len);
                if (e < 0) break;  // the quoted run takes the rest of the pattern
                i = e + 2;
            } else {
                i += (i + 1 < len && p[i + 1] == 'c') ? 3 : 2;
            }
        } else if (c == '[') {
            i = SkipClass(p, i, len);
        } else if (c == '#' && (options & kOptExtended)) {
            i = CommentEnd(p, i, len);
        } else if (c == ')') {
            if (depth == 0) return fail(i);
            options = saved[--depth];
            ++i;
        } else if (c != '(') {
            ++i;
        } else if (i + 1 < len && p[i + 1] == '?') {
            if (i + 2 < len && p[i + 2] == '#') {
                int e = i + 3;
                while (e < len && p[e] != ')') ++e;
                if (e == len) return fail(i);
                i = e + 1;
                continue;
            }
            if (depth == kMaxGroupIds - 1) return fail(i);
            saved[depth++] = options;
            if (i + 2 < len && p[i + 2] == '(') {  // a conditional: its condition closes one
                if (depth == kMaxGroupIds - 1) return fail(i);
                saved[depth++] = options;
                i += 3;
                continue;
            }
            const OptionSetting s = ParseOptionSetting(p, i + 2, len);
            if (s.end < len && (p[s.end] == ')' || p[s.end] == ':')) {
                if (p[s.end] == ')') --depth;  // a setting without a body lasts to the group's end
                options = s.Apply(options);
                i = s.end + 1;
            } else {
                i += 2;
            }
        } else {
            if (++captures > kMaxGroupIds) return fail(i);
            if (depth == kMaxGroupIds - 1) return fail(i);
            saved[depth++] = options;
            ++i;
        }
    }
    if (depth > 0) return fail(len);
    *captureCount = captures;
    return kOk;
}

}  // namespace vkp::regexp
