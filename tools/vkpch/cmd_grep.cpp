// vkpch grep: GNU grep's options over the library's Perl-style patterns.
// Inputs are searched one after another, streaming, or (for several files)
// by workers with compiled patterns of their own, whose outputs are written
// in the order of the files.
#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

#if defined(_WIN32)
#include <io.h>
#define VKPCH_ISATTY _isatty
#else
#include <unistd.h>
#define VKPCH_ISATTY isatty
#endif

#include "commands.h"
#include "grep_search.h"
#include "help.h"
#include "io.h"
#include "options.h"
#include "walk.h"

namespace {

enum Id {
    kRegexp, kFile, kIgnoreCase, kNoIgnoreCase, kWord, kLine, kFixed, kPerl, kRefused, kMultiline, kDotAll,
    kExtended, kInvert, kCount, kListMatching, kListMissing, kOnly, kQuiet, kNoMessages, kMaxCount, kLineNumber,
    kWithName, kNoName, kAfter, kBefore, kContext, kColor, kText, kNullData, kRecursive, kDereference, kInclude,
    kExclude, kExcludeDir, kJobs, kVersion, kHelp
};

const std::vector<OptionSpec> kSpecs = {
    {'e', "regexp", OptionSpec::kRequired, kRegexp}, {'f', "file", OptionSpec::kRequired, kFile},
    {'i', "ignore-case", OptionSpec::kNone, kIgnoreCase}, {'y', nullptr, OptionSpec::kNone, kIgnoreCase},
    {0, "no-ignore-case", OptionSpec::kNone, kNoIgnoreCase}, {'w', "word-regexp", OptionSpec::kNone, kWord},
    {'x', "line-regexp", OptionSpec::kNone, kLine}, {'F', "fixed-strings", OptionSpec::kNone, kFixed},
    {'P', "perl-regexp", OptionSpec::kNone, kPerl}, {'E', "extended-regexp", OptionSpec::kNone, kRefused},
    {'G', "basic-regexp", OptionSpec::kNone, kRefused}, {0, "multiline", OptionSpec::kNone, kMultiline},
    {0, "dotall", OptionSpec::kNone, kDotAll}, {0, "extended", OptionSpec::kNone, kExtended},
    {'v', "invert-match", OptionSpec::kNone, kInvert}, {'c', "count", OptionSpec::kNone, kCount},
    {'l', "files-with-matches", OptionSpec::kNone, kListMatching},
    {'L', "files-without-match", OptionSpec::kNone, kListMissing},
    {'o', "only-matching", OptionSpec::kNone, kOnly}, {'q', "quiet", OptionSpec::kNone, kQuiet},
    {0, "silent", OptionSpec::kNone, kQuiet}, {'s', "no-messages", OptionSpec::kNone, kNoMessages},
    {'m', "max-count", OptionSpec::kRequired, kMaxCount}, {'n', "line-number", OptionSpec::kNone, kLineNumber},
    {'H', "with-filename", OptionSpec::kNone, kWithName}, {'h', "no-filename", OptionSpec::kNone, kNoName},
    {'A', "after-context", OptionSpec::kRequired, kAfter}, {'B', "before-context", OptionSpec::kRequired, kBefore},
    {'C', "context", OptionSpec::kRequired, kContext}, {0, "color", OptionSpec::kOptional, kColor},
    {0, "colour", OptionSpec::kOptional, kColor}, {'a', "text", OptionSpec::kNone, kText},
    {'z', "null-data", OptionSpec::kNone, kNullData}, {'r', "recursive", OptionSpec::kNone, kRecursive},
    {'R', "dereference-recursive", OptionSpec::kNone, kDereference},
    {0, "include", OptionSpec::kRequired, kInclude}, {0, "exclude", OptionSpec::kRequired, kExclude},
    {0, "exclude-dir", OptionSpec::kRequired, kExcludeDir}, {'j', "jobs", OptionSpec::kRequired, kJobs},
    {'V', "version", OptionSpec::kNone, kVersion}, {0, "help", OptionSpec::kNone, kHelp},
};

int Usage(const std::string& message) {
    Report("grep: " + message);
    std::fputs("Usage: vkpch grep [OPTION...] PATTERNS [FILE...]\nTry 'vkpch grep --help' for more information.\n",
               stderr);
    return 2;
}

// Appends the lines of text as patterns (a last empty line after a final
// line feed is no pattern).
void AddPatterns(const std::string& text, bool fromFile, std::vector<std::string>* out) {
    size_t start = 0;
    for (;;) {
        const size_t nl = text.find('\n', start);
        if (nl == std::string::npos) {
            if (start < text.size() || !fromFile) out->push_back(text.substr(start));
            return;
        }
        out->push_back(text.substr(start, nl - start));
        start = nl + 1;
    }
}

bool ReadPatternFile(const std::string& path, std::vector<std::string>* out, std::string* error) {
    LineReader in;
    if (!in.Open(path, error)) return false;
    std::string text;
    while (in.Next()) text.append(in.data(), in.size());
    if (in.error()) {
        *error = path + ": " + ErrorText(in.error());
        return false;
    }
    AddPatterns(text, true, out);
    return true;
}

struct Job {
    std::string path, name, error;
};

// Searches the jobs on `workers` threads; outputs are written in job order.
int RunParallel(const GrepSettings& s, const std::vector<Job>& jobs, bool withName, unsigned workers, bool* stop,
                bool* errors, bool* selected, const std::function<void(const std::string&, bool, bool)>& emit) {
    struct Slot {
        std::string out;
        GrepResult result;
    };
    // Workers take runs of kRun files; the main thread writes whole runs in
    // order, at most `window` runs ahead of what it has written.
    constexpr size_t kRun = 32;
    const size_t runs = (jobs.size() + kRun - 1) / kRun;
    std::vector<Slot> slots(jobs.size());
    std::vector<char> done(runs, 0);
    std::mutex mutex;
    std::condition_variable ready, room;
    std::atomic<size_t> next{0};
    size_t written = 0;  // runs
    const size_t window = size_t(workers) * 4;
    std::atomic<bool> failed{false}, quit{false};
    auto work = [&] {
        GrepPatterns patterns;
        if (!patterns.Compile(s)) {
            failed = quit = true;
        }
        for (;;) {
            const size_t run = next.fetch_add(1);
            if (run >= runs) return;
            {
                std::unique_lock<std::mutex> lock(mutex);
                room.wait(lock, [&] { return run < written + window || quit; });
            }
            for (size_t k = run * kRun; k < std::min(jobs.size(), (run + 1) * kRun) && !quit; ++k) {
                Slot& slot = slots[k];
                if (!jobs[k].error.empty()) {
                    slot.result.error = true;
                    if (!s.noMessages) slot.result.messages = "vkpch: " + jobs[k].error + "\n";
                } else {
                    slot.result = GrepInput(s, patterns, jobs[k].path, jobs[k].name, withName, &slot.out, false, false);
                }
            }
            std::lock_guard<std::mutex> lock(mutex);
            done[run] = 1;
            ready.notify_one();
        }
    };
    std::vector<std::thread> threads;
    for (unsigned w = 0; w < workers; ++w) threads.emplace_back(work);
    for (; written < runs; ) {
        {
            std::unique_lock<std::mutex> lock(mutex);
            ready.wait(lock, [&] { return done[written] != 0; });
        }
        for (size_t k = written * kRun; k < std::min(jobs.size(), (written + 1) * kRun) && !quit; ++k) {
            Slot slot = std::move(slots[k]);
            emit(slot.out, slot.result.lines, slot.result.printed);
            if (!slot.result.messages.empty()) {
                Output::Stdout().Flush();
                std::fputs(slot.result.messages.c_str(), stderr);
            }
            *errors |= slot.result.error;
            *selected |= slot.result.selected;
            if (slot.result.stop || Output::Stdout().failed()) *stop = true, quit = true;
        }
        std::lock_guard<std::mutex> lock(mutex);
        ++written;
        room.notify_all();
    }
    for (std::thread& t : threads) t.join();
    return failed ? 2 : 0;
}

}  // namespace

int CmdGrep(const Args& args) {
    std::vector<ParsedOption> options;
    std::vector<std::string> operands;
    std::string error;
    if (!ParseArgs(args, kSpecs, &options, &operands, &error)) return Usage(error);
    GrepSettings s;
    WalkRules rules;
    bool patternsGiven = false, recursive = false, ignoreCase = false;
    std::string colorWhen = "never";
    long long jobs = 0;
    for (const ParsedOption& o : options) {
        long long n = 0;
        switch (o.id) {
            case kRegexp: AddPatterns(o.value, false, &s.patterns), patternsGiven = true; break;
            case kFile:
                if (!ReadPatternFile(o.value, &s.patterns, &error)) return Report(error);
                patternsGiven = true;
                break;
            case kIgnoreCase: ignoreCase = true; break;
            case kNoIgnoreCase: ignoreCase = false; break;
            case kWord: s.word = true; break;
            case kLine: s.line = true; break;
            case kFixed: s.fixed = true; break;
            case kPerl: break;
            case kRefused:
                return Report("grep: -E and -G are not supported: patterns are always Perl-style (as -P)");
            case kMultiline: s.options += 'm'; break;
            case kDotAll: s.options += 's'; break;
            case kExtended: s.options += 'x'; break;
            case kInvert: s.invert = true; break;
            case kCount: s.count = true; break;
            case kListMatching: s.listMatching = true, s.listMissing = false; break;
            case kListMissing: s.listMissing = true, s.listMatching = false; break;
            case kOnly: s.onlyMatching = true; break;
            case kQuiet: s.quiet = true; break;
            case kNoMessages: s.noMessages = true; break;
            case kLineNumber: s.lineNumbers = true; break;
            case kWithName: s.withName = 1; break;
            case kNoName: s.withName = 0; break;
            case kText: s.text = true; break;
            case kNullData: s.nullData = true; break;
            case kRecursive: recursive = true, rules.followLinks = false; break;
            case kDereference: recursive = true, rules.followLinks = true; break;
            case kInclude: rules.files.emplace_back(o.value, true); break;
            case kExclude: rules.files.emplace_back(o.value, false); break;
            case kExcludeDir: rules.excludeDir.push_back(o.value); break;
            case kColor:
                colorWhen = o.hasValue ? o.value : "auto";
                if (colorWhen == "always" || colorWhen == "yes" || colorWhen == "force") colorWhen = "always";
                else if (colorWhen == "never" || colorWhen == "no" || colorWhen == "none") colorWhen = "never";
                else if (colorWhen == "auto" || colorWhen == "tty" || colorWhen == "if-tty") colorWhen = "auto";
                else return Usage("invalid argument '" + o.value + "' for '--color'");
                break;
            case kVersion:
                std::printf("vkpch grep %s\n", vkpchGetLibVersion()->version);
                return FinishOutput() ? 0 : 2;
            case kHelp:
                PrintCommandHelp("grep", stdout);
                return std::fflush(stdout) == 0 ? 0 : 2;
            default:  // options with a number
                if (!ParseCount(o.value, &n)) return Usage("invalid number '" + o.value + "'");
                if (o.id == kMaxCount) s.maxCount = n;
                if (o.id == kAfter || o.id == kContext) s.after = n;
                if (o.id == kBefore || o.id == kContext) s.before = n;
                if (o.id == kJobs) jobs = n;
        }
    }
    if (ignoreCase) s.options += 'i';
    if (!patternsGiven) {
        if (operands.empty()) return Usage("no pattern given");
        AddPatterns(operands.front(), false, &s.patterns);
        operands.erase(operands.begin());
    }
    if (s.maxCount == 0) return 1;
    const char* term = std::getenv("TERM");
    s.color = colorWhen == "always" ||
              (colorWhen == "auto" && VKPCH_ISATTY(1) && !(term && std::strcmp(term, "dumb") == 0));

    // The inputs, directories walked.
    const bool implicit = operands.empty();
    if (implicit) operands.push_back(recursive ? "." : "-");
    std::vector<Job> list;
    for (const std::string& op : operands) {
        std::error_code ec;
        if (recursive && op != "-" && std::filesystem::is_directory(op, ec)) {
            if (!implicit && !DirWanted(rules, op)) continue;
            std::vector<WalkEntry> found;
            Walk(op, rules, &found);
            for (WalkEntry& e : found) {
                std::string name = implicit && e.path.compare(0, 2, "./") == 0 ? e.path.substr(2) : e.path;
                list.push_back({e.path, name, e.error});
            }
        } else if (op == "-" || FileWanted(rules, op)) {
            list.push_back({op, op == "-" ? "(standard input)" : op, ""});
        }
    }
    const bool withName = s.withName >= 0 ? s.withName == 1 : operands.size() > 1 || (recursive && !(list.size() == 1 && list[0].path == operands[0]));

    GrepPatterns patterns;
    if (!patterns.Compile(s)) return 2;
    bool errors = false, selected = false, stop = false, printed = false;
    const bool context = (s.after >= 0 || s.before >= 0) && !s.count && !s.listMatching && !s.listMissing;
    // Parallel outputs get the "--" between inputs here.
    auto emit = [&](const std::string& out, bool lines, bool printedHere) {
        if (context && printed && lines)
            Output::Stdout().Write(s.color ? "\33[36m\33[K--\33[m\33[K\n" : "--\n");
        Output::Stdout().Write(out);
        printed |= printedHere;
    };
    const unsigned cores = std::max(1u, std::thread::hardware_concurrency());
    const unsigned workers = unsigned(std::min<long long>(jobs > 0 ? jobs : cores, (long long)list.size()));
    if (workers > 1 && !s.quiet) {
        if (RunParallel(s, list, withName, workers, &stop, &errors, &selected, emit)) return 2;
    } else {
        for (const Job& job : list) {
            GrepResult r;
            std::string out;
            if (!job.error.empty()) {
                r.error = true;
                if (!s.noMessages) r.messages = "vkpch: " + job.error + "\n";
            } else {
                r = GrepInput(s, patterns, job.path, job.name, withName, &out, true, context && printed);
            }
            printed |= r.printed;
            if (!r.messages.empty()) {
                Output::Stdout().Flush();
                std::fputs(r.messages.c_str(), stderr);
            }
            errors |= r.error;
            selected |= r.selected;
            if (r.stop || Output::Stdout().failed()) break;
        }
    }
    if (!FinishOutput()) return 2;
    if (s.quiet && selected) return 0;
    return errors ? 2 : selected ? 0 : 1;
}
