// vkpch version: the version record of the active processor variant.
#include <cstdio>

#include "commands.h"
#include "io.h"
#include "vkpch.h"

int CmdVersion(const Args& args) {
    if (!args.empty()) return Report("version takes no arguments");
    const vkpLibraryVersion* v = vkpchGetLibVersion();
    std::printf("%s %s (%d.%d.%d.%d, %.4s) built %s\n", v->name, v->version, v->major, v->minor, v->majorBuild,
                v->build, v->cpuTag, v->buildDate);
    return FinishOutput() ? 0 : 2;
}
