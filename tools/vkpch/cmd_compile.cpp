// vkpch compile [-o OPTIONS] PATTERN: compiles PATTERN and prints the header
// words and the program listing, or the error status with a caret under the
// offending byte of the pattern.
#include <cstdio>
#include <vector>

#include "commands.h"
#include "regexp/compile/listing.h"
#include "vkpch.h"

int CmdCompile(const Args& args) {
    std::string options;
    const std::string* pattern = nullptr;
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "-o" && i + 1 < args.size()) options = args[++i];
        else if (!pattern) pattern = &args[i];
        else return Fail("usage: vkpch compile [-o OPTIONS] PATTERN");
    }
    if (!pattern) return Fail("usage: vkpch compile [-o OPTIONS] PATTERN");

    int size = 0;
    if (vkpsRegExpGetSize(pattern->c_str(), &size) != 0) return Fail("pattern too long");
    std::vector<unsigned char> block(size);
    auto* state = reinterpret_cast<vkpRegExpState*>(block.data());
    int offset = 0;
    const vkpStatus status = vkpsRegExpInit(pattern->c_str(), options.c_str(), state, &offset);
    if (status != 0) {
        std::fprintf(stderr, "vkpch: pattern error %d at offset %d\n  %s\n  %*s^\n", status, offset,
                     pattern->c_str(), offset, "");
        return 2;
    }
    std::vector<char> text(256);
    vkp::regexp::FormatHeader(state, text.data(), int(text.size()));
    std::printf("%s\n", text.data());
    const int n = vkp::regexp::ListProgram(state, nullptr, 0);
    text.resize(size_t(n) + 1);
    vkp::regexp::ListProgram(state, text.data(), n + 1);
    std::fputs(text.data(), stdout);
    return 0;
}
