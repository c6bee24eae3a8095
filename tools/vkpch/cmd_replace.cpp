// vkpch replace [-i] [-m] [-s] [-x] [-g] PATTERN TEMPLATE [FILE...]: every line
// with the first match (-g: every match) replaced by the template ("$&" the
// match, "$1"... its groups), through vkpsRegExpReplace_8u and its resume
// protocol (vkpch::Regex::replaceTo): a 64 KiB output buffer is flushed after
// each call and the next call resumes where the last one stopped.
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "command_line.h"
#include "text_error.h"
#include "vkpch.hpp"

namespace {

constexpr const char* kUsage = "usage: vkpch replace [-i] [-m] [-s] [-x] [-g] PATTERN TEMPLATE [FILE...]";

}  // namespace

int CmdReplace(const Args& args) {
    std::string options, error;
    const long first = ParseOptions(
        args, [](char c) { return std::string_view("imsxg").find(c) != std::string_view::npos ? 0 : -1; },
        [&options](char c, const std::string&) { options += c; }, &error);
    if (first < 0) return Fail("replace: " + error + " (" + kUsage + ")");
    const size_t i = size_t(first);
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
    const bool read = ForEachLine(
        files,
        [&](size_t, const std::string& name, int64_t lineNo, std::string_view line) {
            vkpStatus st = VKP_ERR_LENGTH;
            if (line.size() <= size_t(INT32_MAX)) st = re.replaceTo(line, tmpl, write);
            if (st < 0) {
                std::fprintf(stderr, "vkpch: replace: %s:%lld: %s\n", name.c_str(), static_cast<long long>(lineNo),
                             st == VKP_ERR_LENGTH ? "line longer than 2 GiB"
                                                  : "the match budget ran out before a match was found");
                std::fwrite(line.data(), 1, line.size(), stdout);  // the line as it is
                failed = true;
            }
            replaced |= st == 1;
            std::putchar('\n');
        },
        &error);
    if (!read) return Fail(error);
    if (failed) return 2;
    return replaced ? 0 : 1;
}
