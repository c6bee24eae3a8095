// The message for a bad pattern or template: status, offset and a caret.
#pragma once

#include <cstdio>
#include <string>

// "vkpch: COMMAND: WHAT error STATUS at offset N", the text and a caret.
inline void PrintTextError(const char* command, const char* what, const std::string& text, int status, int offset) {
    std::fprintf(stderr, "vkpch: %s: %s error %d at offset %d\n  %s\n  %*s^\n", command, what, status, offset,
                 text.c_str(), offset, "");
}
