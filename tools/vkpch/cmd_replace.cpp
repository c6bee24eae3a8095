// vkpch replace: each line of the input (or, with --multiline, the whole
// input) is one subject, replaced by vkpch::Regex::replace in one search, so
// look-behinds, anchors and \b see the line's true start and end whatever
// its length. Lines are read in blocks; a last line without a line feed
// stays without one.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>

#include "commands.h"
#include "io.h"
#include "options.h"
#include "vkpch.hpp"

namespace {

enum Id { kGlobal, kIgnoreCase, kMultiline, kDotAll, kExtended, kInPlace, kHelp };

const std::vector<OptionSpec> kSpecs = {
    {'g', "global", OptionSpec::kNone, kGlobal},       {'i', "ignore-case", OptionSpec::kNone, kIgnoreCase},
    {'m', "multiline", OptionSpec::kNone, kMultiline}, {'s', "dotall", OptionSpec::kNone, kDotAll},
    {'x', "extended", OptionSpec::kNone, kExtended},   {0, "in-place", OptionSpec::kOptional, kInPlace},
    {0, "help", OptionSpec::kNone, kHelp},
};

// Where the result goes: standard output or a file.
class Sink {
public:
    explicit Sink(std::FILE* file = nullptr) : file_(file) {}
    void Write(const char* p, size_t n) {
        if (!file_) return Output::Stdout().Write(p, n);
        if (!failed_ && n && std::fwrite(p, 1, n, file_) != n) failed_ = errno ? errno : EIO;
    }
    int failed() const { return file_ ? failed_ : Output::Stdout().error(); }

private:
    std::FILE* file_;
    int failed_ = 0;
};

struct Outcome {
    bool replaced = false, error = false;
};

// Replaces in one subject and writes the result (the subject as it is when
// the search fails).
void Subject(const vkpch::Regex& re, const vkpch::Template& tmpl, std::string_view text, const std::string& where,
             Sink& sink, Outcome* o) {
    vkpStatus st = 0;
    const std::string out = re.replace(text, tmpl, &st);
    if (st < 0) {
        Report(where + ": " + vkpch::statusText(st) + "; left as it is");
        sink.Write(text.data(), text.size());
        o->error = true;
        return;
    }
    o->replaced |= st == 1;
    sink.Write(out.data(), out.size());
}

Outcome Run(const vkpch::Regex& re, const vkpch::Template& tmpl, bool whole, const std::string& path,
            const std::string& name, Sink& sink) {
    Outcome o;
    LineReader in;
    std::string error;
    if (!in.Open(path, &error)) {
        Report(error);
        o.error = true;
        return o;
    }
    std::string all;
    long long lineNo = 0;
    while (in.Next()) {
        if (whole) {
            all.append(in.data(), in.size());
            continue;
        }
        const char* p = in.data();
        const char* end = p + in.size();
        while (p < end) {
            const char* e = static_cast<const char*>(std::memchr(p, '\n', size_t(end - p)));
            if (!e) e = end;  // the last line, without a line feed
            Subject(re, tmpl, std::string_view(p, size_t(e - p)), name + ":" + std::to_string(++lineNo), sink, &o);
            if (e < end) sink.Write("\n", 1);
            p = e + 1;
        }
        if (in.interactive() && !sink.failed()) Output::Stdout().Flush();
        if (sink.failed()) break;
    }
    if (whole) Subject(re, tmpl, all, name, sink, &o);
    if (in.error()) o.error = Report(name + ": " + ErrorText(in.error()));
    return o;
}

// Replaces in `path` itself: the result goes to a temporary file beside it,
// which replaces the file only when all of it was written.
Outcome InPlace(const vkpch::Regex& re, const vkpch::Template& tmpl, bool whole, const std::string& path,
                const std::string* suffix) {
    namespace fs = std::filesystem;
    std::error_code ec;
    Outcome o;
    if (path == "-" || !fs::is_regular_file(path, ec)) {
        o.error = Report(path + ": " + (path == "-" ? std::string("cannot edit standard input in place")
                                                  : ErrorText(fs::exists(path, ec) ? EISDIR : ENOENT)));
        return o;
    }
    std::string temp;
    std::FILE* f = nullptr;
    for (int k = 0; !f && k < 100; ++k) {
        temp = path + ".vkpch-" + std::to_string(k);
        if (!fs::exists(temp, ec)) f = std::fopen(temp.c_str(), "wbx");
    }
    if (!f) {
        o.error = Report(path + ": cannot create a temporary file beside it: " + ErrorText(errno));
        return o;
    }
    Sink sink(f);
    o = Run(re, tmpl, whole, path, path, sink);
    const int written = sink.failed() ? sink.failed() : (std::fclose(f) != 0 ? (errno ? errno : EIO) : 0);
    if (sink.failed()) std::fclose(f);
    if (o.error || written) {
        if (written) Report(temp + ": write error: " + ErrorText(written) + "; " + path + " left as it was");
        fs::remove(temp, ec);
        o.error = true;
        return o;
    }
    fs::permissions(temp, fs::status(path, ec).permissions(), ec);
    if (suffix) fs::copy_file(path, path + *suffix, fs::copy_options::overwrite_existing, ec);
    if (!ec) fs::rename(temp, path, ec);
    if (ec) {
        Report(path + ": " + ec.message() + "; left as it was");
        fs::remove(temp, ec);
        o.error = true;
    }
    return o;
}

}  // namespace

int CmdReplace(const Args& args) {
    std::vector<ParsedOption> options;
    std::vector<std::string> operands;
    std::string error, letters;
    if (!ParseArgs(args, kSpecs, &options, &operands, &error)) return Report("replace: " + error);
    bool inPlace = false, whole = false;
    std::string suffix;
    for (const ParsedOption& o : options) {
        switch (o.id) {
            case kGlobal: letters += 'g'; break;
            case kIgnoreCase: letters += 'i'; break;
            case kMultiline: letters += 'm', whole = true; break;
            case kDotAll: letters += 's'; break;
            case kExtended: letters += 'x'; break;
            case kInPlace: inPlace = true, suffix = o.value; break;
            case kHelp: return Report("replace: --help stands alone");
        }
    }
    if (operands.size() < 2) return Report("replace: missing PATTERN or TEMPLATE (try 'vkpch replace --help')");
    const vkpch::Regex re(operands[0], letters);
    if (!re.ok()) {
        std::fprintf(stderr, "vkpch: replace: bad pattern at offset %d: %s\n  %s\n  %*s^\n", re.errorOffset(),
                     vkpch::statusText(re.status()), operands[0].c_str(), re.errorOffset(), "");
        return 2;
    }
    const vkpch::Template tmpl(operands[1]);
    if (!tmpl.ok()) {
        const int at = int(tmpl.errorOffset());
        std::fprintf(stderr, "vkpch: replace: bad template at offset %d: %s\n  %s\n  %*s^\n", at,
                     vkpch::statusText(tmpl.status()), operands[1].c_str(), at, "");
        return 2;
    }
    std::vector<std::string> files(operands.begin() + 2, operands.end());
    if (files.empty()) files.push_back("-");
    bool replaced = false, failed = false;
    Sink out;
    for (const std::string& file : files) {
        const Outcome o = inPlace ? InPlace(re, tmpl, whole, file, suffix.empty() ? nullptr : &suffix)
                                  : Run(re, tmpl, whole, file, file == "-" ? "(standard input)" : file, out);
        replaced |= o.replaced;
        failed |= o.error;
        if (Output::Stdout().failed()) break;
    }
    if (!FinishOutput()) return 2;
    return failed ? 2 : replaced ? 0 : 1;
}
