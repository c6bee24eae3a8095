// Subcommands of the vkpch tool. Each returns the process exit status:
// 0 success (something found), 1 nothing found, 2 error.
#pragma once

#include <string>
#include <vector>

using Args = std::vector<std::string>;

int CmdVersion(const Args& args);
int CmdFind(const Args& args);
int CmdGrep(const Args& args);
int CmdCompile(const Args& args);
int CmdConvert(const Args& args);
int CmdReplace(const Args& args);
