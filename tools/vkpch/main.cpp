// vkpch: command-line front end of the library.
#include <cstdio>
#include <cstring>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#endif

#include "commands.h"
#include "help.h"
#include "io.h"

int main(int argc, char** argv) {
#if defined(_WIN32)
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stdin), _O_BINARY);
#endif
    if (argc < 2) {
        PrintOverview(stderr);
        return 2;
    }
    const std::string command = argv[1];
    const Args args(argv + 2, argv + argc);
    if (command == "--help" || command == "-h" || command == "help") {
        if (!args.empty() && args[0] == "--man") PrintManual(stdout);
        else if (args.empty() || !PrintCommandHelp(args[0].c_str(), stdout)) PrintOverview(stdout);
        return std::fflush(stdout) == 0 ? 0 : 2;
    }
    if (command == "--version" || command == "-V") return CmdVersion(args);
    // "vkpch COMMAND --help" for every command but grep, which parses its own.
    if (command != "grep" && args.size() == 1 && args[0] == "--help" && PrintCommandHelp(command.c_str(), stdout))
        return std::fflush(stdout) == 0 ? 0 : 2;
    if (command == "version") return CmdVersion(args);
    if (command == "find") return CmdFind(args);
    if (command == "compile") return CmdCompile(args);
    if (command == "convert") return CmdConvert(args);
    if (command == "grep") return CmdGrep(args);
    if (command == "replace") return CmdReplace(args);
    return Report("unknown command '" + command + "' (try 'vkpch --help')");
}
