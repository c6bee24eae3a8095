// The help texts of the vkpch commands; the manual page is made from them.
#pragma once

#include <cstdio>

struct CommandHelp {
    const char* name;
    const char* text;  // usage line first, then the description and options
};

// Every command, in the order the manual lists them.
extern const CommandHelp kCommands[];
extern const int kCommandCount;

// The overview that "vkpch --help" prints.
void PrintOverview(std::FILE* to);
// "vkpch COMMAND --help"; false for an unknown command.
bool PrintCommandHelp(const char* name, std::FILE* to);
// The manual page (roff) made from the same texts.
void PrintManual(std::FILE* to);
