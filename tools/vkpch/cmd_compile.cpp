// vkpch compile [-o OPTIONS] PATTERN: compiles PATTERN and prints the header
// words and the program, read from the compiled block as its public format
// lays it out, or what is wrong with the pattern and a caret under it.
#include <cstdio>
#include <string>

#include "commands.h"
#include "io.h"
#include "vkpch.hpp"

// GCC 12 warns about its own string concatenation here (a known false positive).
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wrestrict"
#endif

namespace {

const char* const kNames[] = {"CHAR", "STRING", "BACKREF", "CLASS", "TYPE", "ANCHOR", "ALT", "RANGE", "LAZY",
                              "GREEDY", "LOOKBEHIND", "NLOOKBEHIND", "LOOKAHEAD", "NLOOKAHEAD", "FLAGGROUP", "COND",
                              "CAPTURE", "GROUP", "ATOMIC", "KET", "SETFLAGS", "ANYBYTE", "CODEPOINT", "CATEGORY",
                              "BLOCK", "SCRIPT", "EXTENDED"};
enum : vkp32u { kChar = 0x10000000u, kOpenFirst = 0x1000000au, kOpenLast = 0x10000012u, kKet = 0x10000013u };

std::string Options(unsigned bits) {
    std::string s = " opts=";
    if (!bits) s += '-';
    for (int k = 0; k < 5; ++k)
        if (bits & (1u << (k == 0 ? 2 : k == 1 ? 1 : k == 2 ? 0 : k))) s += "imsxg"[k];
    return s;
}

std::string Char(int c) {
    char buf[16];
    if (c >= 0x20 && c < 0x7F && c != '\'' && c != '\\') std::snprintf(buf, sizeof buf, "'%c'", c);
    else std::snprintf(buf, sizeof buf, "0x%02X", unsigned(c));
    return buf;
}

std::string Format(const vkpRegExpState* st, const vkpRegExpInstruction& ins, bool member, bool literalOptions) {
    const unsigned k = ins.op - kChar;
    if (k >= sizeof(kNames) / sizeof(kNames[0])) {
        char buf[32];
        std::snprintf(buf, sizeof buf, "?? 0x%08X", ins.op);
        return buf;
    }
    std::string s = kNames[k];
    const std::string negation = member && ins.c == -1 ? " not" : "";
    auto num = [](int v) { return std::to_string(v); };
    switch (k) {
        case 0:
            s += ' ';
            s += Char(ins.a);
            if (literalOptions) s += Options(unsigned(ins.c));
            s += negation;
            break;
        case 1: {
            s += " \"";
            const auto* b = static_cast<const unsigned char*>(ins.d);
            for (int i = 0; i < ins.b; ++i) {
                char buf[8];
                if (b[i] >= 0x20 && b[i] < 0x7F && b[i] != '"' && b[i] != '\\') s += char(b[i]);
                else std::snprintf(buf, sizeof buf, "\\x%02X", b[i]), s += buf;
            }
            s += "\"" + (literalOptions ? Options(unsigned(ins.c)) : "");
            break;
        }
        case 2: s += " " + num(ins.a); break;
        case 3: s += std::string(ins.a == -1 ? " negated" : "") + " members=" + num(ins.b); break;
        case 4:
            s += ins.a == '.' ? " " : " \\";
            s.push_back(char(ins.a));
            break;
        case 5:
            s += ins.a == 128 ? " implicit" : ins.a == '^' || ins.a == '$' ? " " : " \\";
            if (ins.a != 128) s.push_back(char(ins.a));
            break;
        case 6: s += " link=" + num(ins.a) + Options(unsigned(ins.b)); break;
        case 7:
            s += ' ';
            s += Char(ins.a);
            s += '-';
            s += Char(ins.b);
            s += negation;
            break;
        case 8: case 9: s += " " + num(ins.a) + ".." + (ins.b == 0x3FFFFFFF ? std::string("inf") : num(ins.b)); break;
        case 10: case 11: s += " link=" + num(ins.a) + " body=" + num(ins.b) + " length=" + num(ins.c); break;
        case 12: case 13: case 15: case 17: case 18: s += " link=" + num(ins.a) + " body=" + num(ins.b); break;
        case 14: s += " link=" + num(ins.a) + " body=" + num(ins.b) + Options(unsigned(ins.c)); break;
        case 16: s += " link=" + num(ins.a) + " body=" + num(ins.b) + " capture=" + num(ins.c); break;
        case 19: s += " link=" + num(ins.a) + Options(unsigned(ins.b)) + (ins.c ? " single-repeat" : ""); break;
        case 20: s += Options(unsigned(ins.a)); break;
        case 22: {
            char buf[16];
            std::snprintf(buf, sizeof buf, " U+%04X", unsigned(ins.a));
            s += buf + negation;
            break;
        }
        case 23: s += std::string(ins.b == -1 ? " not" : "") + " category=" + num(ins.a); break;
        case 24: {
            char buf[40];
            std::snprintf(buf, sizeof buf, " U+%04X..U+%04X", unsigned(ins.a), unsigned(ins.b));
            s += std::string(ins.c == -1 ? " not" : "") + buf;
            break;
        }
        case 25: s += std::string(ins.b == -1 ? " not" : "") + " ranges=" + num(ins.c); break;
        default: break;
    }
    (void)st;
    return s;
}

}  // namespace

int CmdCompile(const Args& args) {
    std::string options;
    const std::string* pattern = nullptr;
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "-o" && i + 1 < args.size()) options = args[++i];
        else if (!pattern) pattern = &args[i];
        else return Report("usage: vkpch compile [-o OPTIONS] PATTERN");
    }
    if (!pattern) return Report("usage: vkpch compile [-o OPTIONS] PATTERN");
    const vkpch::Regex re(*pattern, options);
    if (!re.ok()) {
        if (re.status() == VKP_ERR_OPTION)
            return Report("bad option string '" + options + "': " + vkpch::statusText(re.status()));
        std::fprintf(stderr, "vkpch: bad pattern at offset %d: %s\n  %s\n  %*s^\n", re.errorOffset(),
                     vkpch::statusText(re.status()), pattern->c_str(), re.errorOffset(), "");
        return 2;
    }
    const vkpRegExpState* st = re.state();
    std::printf("magic=0x%08X%s instructions=%d groups=%d lastLiteral=%d matchLimit=%d format=%d kind=%d\n", st->magic,
                Options(st->options).c_str(), st->instructionCount, st->groupCount, st->lastLiteralIndex,
                st->matchLimit, st->format, st->patternKind);
    const auto* program =
        reinterpret_cast<const vkpRegExpInstruction*>(reinterpret_cast<const unsigned char*>(st) + VKP_REGEXP_HEAD_SIZE);
    int depth = 0, classEnd = -1;
    bool afterTopBar = false;
    for (int i = 0; i < st->instructionCount; ++i) {
        const vkpRegExpInstruction& ins = program[i];
        const bool member = i < classEnd;
        const int indent = depth - (ins.op == kKet ? 1 : 0) + (member ? 1 : 0);
        const bool literalOptions = !member && ((depth == 0 && !afterTopBar) || i == st->lastLiteralIndex);
        std::printf("%4d  %*s%s\n", i, 2 * (indent > 0 ? indent : 0), "", Format(st, ins, member, literalOptions).c_str());
        if (member) continue;
        if (ins.op == kChar + 3) classEnd = i + 1 + ins.b;
        else if (ins.op >= kOpenFirst && ins.op <= kOpenLast) ++depth;
        else if (ins.op == kKet) --depth;
        else if (ins.op == kChar + 6 && depth == 0) afterTopBar = true;
    }
    return FinishOutput() ? 0 : 2;
}
