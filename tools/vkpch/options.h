// GNU-style argument parsing for the vkpch commands: short letters that may
// be grouped ("-inr"), long options that may be abbreviated ("--ignore"),
// values attached ("-m2", "--max-count=2") or in the next argument, options
// after operands, and "--" ending them.
#pragma once

#include <string>
#include <vector>

struct OptionSpec {
    char letter;       // 0 when there is no short form
    const char* name;  // long name, null when there is none
    enum Arg { kNone, kRequired, kOptional } arg;
    int id;            // what the caller switches on
};

struct ParsedOption {
    int id;
    std::string value;
    bool hasValue;
};

// Fills options (in order) and operands; false with *error set.
bool ParseArgs(const std::vector<std::string>& args, const std::vector<OptionSpec>& specs,
               std::vector<ParsedOption>* options, std::vector<std::string>* operands, std::string* error);

// A non-negative number from an option's value; false when it is none.
bool ParseCount(const std::string& text, long long* value);
