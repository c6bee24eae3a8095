// A compiled pattern in a block the tool owns, and the message for a bad
// pattern or template, for the replace and pattern-set commands.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "vkpch.h"

// 8-byte units keep the pointer operands of the program aligned.
class CompiledPattern {
public:
    // Returns the compile status; on failure *errOffset holds the offset.
    int Compile(const std::string& pattern, const std::string& options, int* errOffset) {
        int size = 0;
        if (vkpsRegExpGetSize(pattern.c_str(), &size) != 0) return VKP_ERR_NULL;
        block_.assign((size_t(size) + 7) / 8, 0);
        return vkpsRegExpInit(pattern.c_str(), options.c_str(), State(), errOffset);
    }
    vkpRegExpState* State() { return reinterpret_cast<vkpRegExpState*>(block_.data()); }
    int GroupCount() { return State()->groupCount; }

private:
    std::vector<uint64_t> block_;
};

// "vkpch: COMMAND: WHAT error STATUS at offset N", the text and a caret.
inline void PrintTextError(const char* command, const char* what, const std::string& text, int status, int offset) {
    std::fprintf(stderr, "vkpch: %s: %s error %d at offset %d\n  %s\n  %*s^\n", command, what, status, offset,
                 text.c_str(), offset, "");
}
