// vkpch replace [-i] [-m] [-s] [-x] [-g] PATTERN TEMPLATE [FILE...]: every line
// with the first match (-g: every match) replaced by the template ("$&" the
// match, "$1"... its groups), through vkpsRegExpReplace_8u and its resume
// protocol: a fixed output buffer is flushed after each call and the call
// resumes where the last one stopped.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "commands.h"
#include "compiled_pattern.h"
#include "input.h"

namespace {

constexpr const char* kUsage = "usage: vkpch replace [-i] [-m] [-s] [-x] [-g] PATTERN TEMPLATE [FILE...]";
constexpr size_t kOutputBuffer = 64 * 1024;

// Offset of the "$" of the first bad reference in a template ("$" before
// anything but "&" or digits, or a group number 0).
int BadReferenceOffset(const std::string& t) {
    for (size_t i = 0; i < t.size(); ++i) {
        if (t[i] != '$') continue;
        size_t k = i + 1;
        bool nonZero = false;
        for (; k < t.size() && t[k] >= '0' && t[k] <= '9'; ++k) nonZero |= t[k] != '0';
        if (k < t.size() && k == i + 1 && t[k] == '&') continue;
        if (!nonZero) return int(i);
        i = k - 1;
    }
    return int(t.size());
}

class Replacer {
public:
    Replacer(CompiledPattern& re, vkpRegExpReplaceState* tmpl, bool global)
        : re_(re), tmpl_(tmpl), global_(global), out_(kOutputBuffer) {}

    bool failed = false;

    // Writes one line (without its line feed) with the replacement; true
    // when a match was replaced.
    bool Line(const unsigned char* line, int len, const std::string& name, int64_t lineNo) {
        if (len == 0) return EmptyLine(line);
        const int groups = re_.GroupCount();
        bool replaced = false;
        int pos = 0;
        while (pos < len) {
            int srcLen = len - pos, dstLen = 0, count = 0;
            // A global replace takes every match the record array holds: it
            // grows until a call leaves it not full (at most two matches a
            // position, an empty one and a longer one).
            const size_t most = size_t(groups) * (2 * size_t(srcLen) + 2);
            size_t room = global_ ? std::min(most, size_t(groups) * 256) : size_t(groups);
            int st;
            for (;;) {
                records_.resize(room);
                srcLen = len - pos;
                dstLen = int(std::min(out_.size(), size_t(INT32_MAX)));
                count = int(room);
                st = vkpsRegExpReplace_8u(line + pos, &srcLen, out_.data(), &dstLen, records_.data(), &count,
                                          re_.State(), tmpl_);
                if (st < 0) break;
                if (global_ && size_t(count) == room && room < most) {
                    room = std::min(most, room * 4);
                    continue;
                }
                // No progress: the next piece does not fit; a bigger buffer.
                if (srcLen == 0) {
                    out_.resize(out_.size() * 2);
                    continue;
                }
                break;
            }
            if (st < 0) {
                std::fprintf(stderr, "vkpch: replace: %s:%lld: the match budget ran out before a match was found\n",
                             name.c_str(), static_cast<long long>(lineNo));
                failed = true;
                std::fwrite(line + pos, 1, size_t(len - pos), stdout);
                break;
            }
            std::fwrite(out_.data(), 1, size_t(dstLen), stdout);
            replaced |= count > 0;
            const int matchEnd = count > 0 ? int(records_[0].pMatch - (line + pos)) + records_[0].matchLen : 0;
            pos += srcLen;
            // Once the one replacement is written the rest is copied as it is.
            if (!global_ && count > 0 && srcLen >= matchEnd) {
                std::fwrite(line + pos, 1, size_t(len - pos), stdout);
                break;
            }
        }
        std::putchar('\n');
        return replaced;
    }

private:
    // The replace call takes no empty source: an empty line that matches
    // becomes the template's literal text (its groups are all empty).
    bool EmptyLine(const unsigned char* line) {
        records_.resize(size_t(re_.GroupCount()));
        int count = int(records_.size());
        const int st = vkpsRegExpFind_8u(line, 0, re_.State(), records_.data(), &count);
        const bool match = st >= 0 && count > 0;
        for (int i = 0; match && i < tmpl_->itemCount; ++i)
            if (tmpl_->pItems[i].kind == VKP_REPLACE_LITERAL)
                std::fwrite(tmpl_->pItems[i].pText, 1, size_t(tmpl_->pItems[i].value), stdout);
        std::putchar('\n');
        return match;
    }

    CompiledPattern& re_;
    vkpRegExpReplaceState* tmpl_;
    bool global_;
    std::vector<unsigned char> out_;
    std::vector<vkpRegExpFind> records_;
};

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

    CompiledPattern re;
    int errOffset = 0;
    int st = re.Compile(pattern, options, &errOffset);
    if (st != 0) {
        PrintTextError("replace", "pattern", pattern, st, errOffset);
        return 2;
    }
    int size = 0;
    const auto* textBytes = reinterpret_cast<const vkp8u*>(text.c_str());
    vkpsRegExpReplaceGetSize(textBytes, &size);
    std::vector<uint64_t> block((size_t(size) + 7) / 8);
    auto* tmpl = reinterpret_cast<vkpRegExpReplaceState*>(block.data());
    st = vkpsRegExpReplaceInit(textBytes, tmpl);
    if (st != 0) {
        PrintTextError("replace", "template", text, st, BadReferenceOffset(text));
        return 2;
    }

    Replacer replacer(re, tmpl, options.find('g') != std::string::npos);
    bool replaced = false;
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
            replaced |= replacer.Line(data.data() + start, int(end - start), name, lineNo);
            start = end + 1;
        }
    }
    if (replacer.failed) return 2;
    return replaced ? 0 : 1;
}
