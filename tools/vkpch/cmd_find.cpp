// vkpch find [--rev] NEEDLE [FILE...]: offsets of every occurrence of NEEDLE
// (overlapping ones included), one per line, first to last or, with --rev,
// last to first. With several files each line is prefixed by "FILE:".
#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>

#include "commands.h"
#include "input.h"
#include "io.h"
#include "vkpch.h"

namespace {

// The library takes int lengths: larger inputs are searched in windows that
// overlap by the needle's length less one.
constexpr int64_t kWindow = int64_t(1) << 30;

void Print(const std::string& prefix, int64_t offset) {
    std::printf("%s%lld\n", prefix.c_str(), static_cast<long long>(offset));
}

int64_t FindForward(const std::vector<unsigned char>& data, const std::string& needle, const std::string& prefix) {
    const int64_t size = int64_t(data.size()), n = int64_t(needle.size());
    const auto* f = reinterpret_cast<const vkp8u*>(needle.data());
    int64_t count = 0, pos = 0;
    while (size - pos >= n) {
        const int64_t len = std::min(size - pos, kWindow);
        int idx = -1;
        vkpsFind_8u(data.data() + pos, int(len), f, int(n), &idx);
        if (idx >= 0) {
            Print(prefix, pos + idx);
            ++count;
            pos += idx + 1;
        } else if (pos + len == size) {
            break;
        } else {
            pos += len - n + 1;
        }
    }
    return count;
}

int64_t FindBackward(const std::vector<unsigned char>& data, const std::string& needle, const std::string& prefix) {
    const int64_t n = int64_t(needle.size());
    const auto* f = reinterpret_cast<const vkp8u*>(needle.data());
    int64_t count = 0, end = int64_t(data.size());
    while (end >= n) {
        const int64_t start = std::max<int64_t>(0, end - kWindow);
        int idx = -1;
        vkpsFindRev_8u(data.data() + start, int(end - start), f, int(n), &idx);
        if (idx >= 0) {
            Print(prefix, start + idx);
            ++count;
            end = start + idx + n - 1;  // the next occurrence starts before this one
        } else if (start == 0) {
            break;
        } else {
            end = start + n - 1;
        }
    }
    return count;
}

}  // namespace

int CmdFind(const Args& args) {
    bool reverse = false;
    size_t i = 0;
    for (; i < args.size() && args[i].size() > 1 && args[i][0] == '-'; ++i) {
        if (args[i] == "--rev") reverse = true;
        else if (args[i] == "--") { ++i; break; }
        else return Report("find: unknown option '" + args[i] + "'");
    }
    if (i >= args.size()) return Report("find: missing NEEDLE (usage: vkpch find [--rev] NEEDLE [FILE...])");
    const std::string needle = args[i++];
    if (needle.empty()) return Report("find: the needle is empty");
    Args files(args.begin() + i, args.end());
    if (files.empty()) files.push_back("-");

    int64_t found = 0;
    bool failed = false;
    std::vector<unsigned char> data;
    for (const std::string& file : files) {
        std::string error;
        if (!ReadInput(file, data, error)) {
            failed = Report(error);
            continue;
        }
        const std::string prefix = files.size() > 1 ? file + ":" : "";
        found += reverse ? FindBackward(data, needle, prefix) : FindForward(data, needle, prefix);
    }
    if (std::fflush(stdout) != 0) return Report("write error: " + ErrorText(errno));
    return failed ? 2 : found > 0 ? 0 : 1;
}
