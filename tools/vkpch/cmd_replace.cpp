// vkpch replace [-i] [-m] [-s] [-x] [-g] PATTERN TEMPLATE [FILE...]: every line
// with the first match (-g: every match) replaced by the template ("$&" the
// match, "$1"... its groups), through vkpsRegExpReplace_8u and its resume
// protocol (vkpch::Regex::replaceTo): a 64 KiB output buffer is flushed after
// each call and the next call resumes where the last one stopped.
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "commands.h"
#include "input.h"
#include "text_error.h"
#include "vkpch.hpp"

namespace {

constexpr const char* kUsage = "usage: vkpch replace [-i] [-m] [-s] [-x] [-g] PATTERN TEMPLATE [FILE...]";

}  // namespace

int CmdReplace(const Args& args) {
    std::string options;
    size_t i = 0;
    for (; i < args.size() && args[i].size() > 1 && args[i][0] == '-'; ++i) {
        if (args[i] == "--") {
            ++i;
            break;
        }
        for (size_t k = 1; k < args[i].size(); ++k) {
            const char f = args[i][k];
            if (f == 'i' || f == 'm' || f == 's' || f == 'x' || f == 'g') options += f;
            else return Fail("replace: unknown option '-" + std::string(1, f) + "' (" + kUsage + ")");
        }
    }
    if (i + 2 > args.size()) return Fail(std::string("replace: missing PATTERN or TEMPLATE (") + kUsage + ")");
    const std::string pattern = args[i], text = args[i + 1];
    Args files(args.begin() + long(i) + 2, args.end());
    if (files.empty()) files.push_back("-");

    const vkpch::Regex re(pattern.c_str(), options.c_str());
    if (!re.ok()) {
        PrintTextError("replace", "pattern", pattern, re.status(), re.errorOffset());
        return 2;
    }
    const vkpch::Template tmpl(text);
    if (!tmpl.ok()) {
        PrintTextError("replace", "template", text, tmpl.status(), int(tmpl.errorOffset()));
        return 2;
    }

    bool replaced = false, failed = false;
    auto write = [](const char* p, size_t n) { std::fwrite(p, 1, n, stdout); };
    std::vector<unsigned char> data;
    for (const std::string& file : files) {
        std::string error;
        if (!ReadInput(file, data, error)) return Fail(error);
        if (!data.empty() && data.back() != '\n') data.push_back('\n');  // also the byte behind the last subject
        const std::string name = file == "-" ? "(standard input)" : file;
        int64_t lineNo = 0;
        for (size_t start = 0; start < data.size();) {
            size_t end = start;
            while (data[end] != '\n') ++end;
            ++lineNo;
            if (end - start > size_t(INT32_MAX)) return Fail("replace: " + name + ": line longer than 2 GiB");
            const std::string_view line(reinterpret_cast<const char*>(data.data()) + start, end - start);
            const vkpStatus st = re.replaceTo(line, tmpl, write);
            if (st < 0) {
                std::fprintf(stderr, "vkpch: replace: %s:%lld: the match budget ran out before a match was found\n",
                             name.c_str(), static_cast<long long>(lineNo));
                std::fwrite(line.data(), 1, line.size(), stdout);  // the line as it is
                failed = true;
            }
            replaced |= st == 1;
            std::putchar('\n');
            start = end + 1;
        }
    }
    if (failed) return 2;
    return replaced ? 0 : 1;
}
