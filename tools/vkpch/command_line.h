// Shared by the replace command and grep's pattern-set mode: the leading
// option letters, and the lines of the input files.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "commands.h"
#include "input.h"

// Walks the leading "-abc" arguments ("--" ends them). kind(c) is 0 for a
// flag, 1 for a letter that takes a value (the rest of its argument, else the
// next argument), -1 for an unknown letter; take(c, value) receives each.
// Returns the index of the first operand, or -1 with *error set.
template <class Kind, class Take>
long ParseOptions(const Args& args, Kind kind, Take take, std::string* error) {
    size_t i = 0;
    for (; i < args.size() && args[i].size() > 1 && args[i][0] == '-'; ++i) {
        if (args[i] == "--") return long(i + 1);
        for (size_t k = 1; k < args[i].size(); ++k) {
            const char c = args[i][k];
            const int what = kind(c);
            if (what < 0) {
                *error = std::string("unknown option '-") + c + "'";
                return -1;
            }
            if (what == 0) {
                take(c, std::string());
                continue;
            }
            std::string value = args[i].substr(k + 1);
            if (value.empty()) {
                if (++i >= args.size()) {
                    *error = std::string("-") + c + " needs a value";
                    return -1;
                }
                value = args[i];
            }
            take(c, value);
            break;
        }
    }
    return long(i);
}

// Calls line(file, name, lineNo, text) for every line of the files, file
// being the index in files ("-" is standard input, named "(standard input)"). A line feed is put behind a last
// line without one: the byte behind every line is readable. Returns false
// with *error set when a file cannot be read.
template <class Line>
bool ForEachLine(const Args& files, Line line, std::string* error) {
    std::vector<unsigned char> data;
    for (size_t f = 0; f < files.size(); ++f) {
        const std::string& file = files[f];
        if (!ReadInput(file, data, *error)) return false;
        if (!data.empty() && data.back() != '\n') data.push_back('\n');
        const std::string name = file == "-" ? "(standard input)" : file;
        int64_t lineNo = 0;
        for (size_t start = 0; start < data.size();) {
            size_t end = start;
            while (data[end] != '\n') ++end;
            line(f, name, ++lineNo, std::string_view(reinterpret_cast<const char*>(data.data()) + start, end - start));
            start = end + 1;
        }
    }
    return true;
}
