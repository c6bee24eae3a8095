// vkpch: command-line front end of the library.
#include <cstdio>
#include <cstring>

#include "commands.h"

namespace {

constexpr const char* kUsage =
    "usage: vkpch version\n"
    "       vkpch find [--rev] NEEDLE [FILE...]\n"
    "       vkpch grep [-i] [-m] [-s] [-x] [-o] [-c] [-n] PATTERN [FILE...]\n"
    "       vkpch compile [-o OPTIONS] PATTERN\n"
    "       vkpch convert [--from ENC] [--to ENC] [FILE...]   (ENC: utf-8, utf-16le, utf-16be)\n";

}  // namespace

int Fail(const std::string& message) {
    std::fprintf(stderr, "vkpch: %s\n", message.c_str());
    return 2;
}

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    const std::string command = argv[1];
    const Args args(argv + 2, argv + argc);
    if (command == "version") return CmdVersion(args);
    if (command == "find") return CmdFind(args);
    if (command == "compile") return CmdCompile(args);
    if (command == "convert") return CmdConvert(args);
#ifdef VKPCH_HAVE_REGEXP_FIND
    if (command == "grep") return CmdGrep(args);
#endif
    if (command == "--help" || command == "-h" || command == "help") {
        std::fputs(kUsage, stdout);
        return 0;
    }
    return Fail("unknown command '" + command + "' (try 'vkpch help')");
}
