// Regexp search over 4 MiB of UTF-8 text (English words with e-mail
// addresses, URIs, IPv4 addresses, dates and Greek phrases mixed in), and
// over 8 MB of real text (the package change logs of this system, when it
// has that many; corpus.h): vkpsRegExpFind_8u against libpcre2 without JIT,
// libpcre2 with JIT and RE2.
//
// Whole text: every engine counts all matches the same way: search the rest
// of the text, count the match, continue at its end (one byte further on
// after an empty match), the rest of the text being a new subject each time.
// A second form of ours counts with one global search (option g), the way
// the library offers to find every match.
//
// Per line: one search per line of the same text (without its line feed),
// the way a line filter or an application that checks one field at a time
// calls a regex library; the count is the number of lines that match.
//
// Each count is checked against libpcre2's (its JIT's where the interpreter
// is not timed); a benchmark whose count differs reports an error instead of
// a rate. Engines and counts are made when a benchmark of their pattern and
// text first runs.
#define PCRE2_CODE_UNIT_WIDTH 8
#include <benchmark/benchmark.h>
#include <pcre2.h>
#include <re2/re2.h>

#include <cstdint>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "corpus.h"
#include "ratio_table.h"
#include "vkpch.h"

namespace vkpbench {
namespace {

struct FindCase {
    const char* name;
    const char* options;  // "" or "i"
    const char* pattern;
    bool literalLed;
};

const FindCase kCases[] = {
    {"literal word", "", "lighthouse", true},
    {"word, ignoring case", "i", "keeper", true},
    {"alternation of words", "", "keeper|lamp|harbour|trawler", true},
    {"URI", "", R"(https?://[\w.-]+(?:/[\w./?=&%-]*)?)", true},
    {"e-mail address", "", R"([\w.+-]+@[\w-]+\.[\w.-]+)", false},
    {"IPv4 address", "", R"(\b(?:\d{1,3}\.){3}\d{1,3}\b)", false},
    {"date", "", R"(\d{4}-\d{2}-\d{2})", false},
    {"\\w+ing\\b", "", R"(\w+ing\b)", false},
    {"\\p{Greek}+", "", R"(\p{Greek}+)", false},
    // Patterns a user would write for the log lines, quotations and names
    // the text holds, added without looking at how the engine runs them.
    {"log line", "", R"((?m)^\[(\d{4}-\d\d-\d\d) (\d\d:\d\d:\d\d)\] (\w+): (.*)$)", false},
    {"quoted string", "", R"("[^"]*")", true},
    {"name", "", R"([A-Z][a-z]+ [A-Z][a-z]+)", false},
    // Searches users run over logs and change logs: literals behind a class
    // or inside one, long runs, caseless words and alternations of words.
    {"hex number", "", R"(\b0x[0-9a-fA-F]+\b)", false},
    {"clock time", "", R"(\b\d{1,2}:\d{2}(?::\d{2})?\b)", false},
    {"word in parentheses", "", R"(\(\w+\))", true},
    {"word of twelve letters or more", "", R"(\b\w{12,}\b)", false},
    {"caseless literal", "", "(?i)testing", true},
    {"caseless log levels", "", "(?i)(?:error|warning|fatal)", true},
    {"four words", "", "(?:water|people|number|engine)", true},
    {"300 common words", "", nullptr, true},  // CommonWordsAlternation()
    // Six more written for such text without looking at how the engine
    // runs them.
    {"version number", "", R"(\b\d+\.\d+(?:\.\d+)*\b)", false},
    {"changelog header", "", R"((?m)^[a-z0-9][a-z0-9.+-]* \([^)]+\) [a-z-]+; urgency=\w+)", false},
    {"hex hash", "", R"(\b[0-9a-f]{7,40}\b)", false},
    {"path", "", R"((?:/[\w.-]+){2,})", false},
    {"quoted word", "", R"('[\w.-]+')", true},
    {"acronym", "", R"(\b[A-Z]{2,}\b)", false},
};

// A text and its lines (without their line feeds).
struct Line {
    size_t at, length;
};
struct Corpus {
    std::string text;
    std::vector<Line> lines;
    explicit Corpus(std::string t) : text(std::move(t)) {
        for (size_t at = 0; at <= text.size() && !text.empty();) {
            size_t nl = text.find('\n', at);
            if (nl == std::string::npos) nl = text.size();
            lines.push_back({at, nl - at});
            at = nl + 1;
        }
    }
};

const Corpus& Mixed() {
    static const Corpus c(MixedText(4 << 20));  // corpus.h
    return c;
}

const Corpus& Changelogs() {
    static const Corpus c(ChangelogText(8000000));  // empty where the system has less
    return c;
}

// The 300 commonest words of at least four letters of the change logs (of
// the mixed text, which holds fewer, where there are none) as one group.
const std::string& CommonWordsAlternation() {
    static const std::string re = [] {
        const std::string& text = Changelogs().text.empty() ? Mixed().text : Changelogs().text;
        std::string alt = "(?:";
        for (const std::string& w : CommonWords(text, 300, 4)) alt += (alt.size() > 3 ? "|" : "") + w;
        return alt + ")";
    }();
    return re;
}

// A counting engine: how many matches the pattern has in the text, and
// whether one subject holds a match.
class Engine {
public:
    virtual ~Engine() = default;
    virtual bool ok() const = 0;
    virtual int64_t Count(const std::string& text) = 0;
    virtual int Matches(const char* subject, size_t length) = 0;  // 1, 0, or -1 on error
    int64_t CountLines(const Corpus& corpus) {
        int64_t count = 0;
        for (const Line& l : corpus.lines) {
            const int m = Matches(corpus.text.data() + l.at, l.length);
            if (m < 0) return -1;
            count += m;
        }
        return count;
    }
};

class Ours : public Engine {
public:
    Ours(const char* pattern, const char* options, bool global, int64_t expected) : global_(global) {
        const std::string letters = std::string(options) + (global ? "g" : "");
        int size = 0;
        vkpsRegExpGetSize(pattern, &size);
        block_.resize((size_t(size) + 7) / 8);
        int offset = 0;
        ok_ = vkpsRegExpInit(pattern, letters.c_str(), state(), &offset) == 0;
        // A global search reports record 0 alone for patterns without
        // groups, else the records of groups 1 to the last for each match.
        const int groups = ok_ ? state()->groupCount : 1;
        perMatch_ = groups > 1 ? groups - 1 : 1;
        records_.resize(global ? (size_t(expected) + 16) * size_t(perMatch_) : 1);
    }
    bool ok() const override { return ok_; }

    int64_t Count(const std::string& text) override {
        const auto* t = reinterpret_cast<const vkp8u*>(text.data());
        const int len = int(text.size());
        if (global_) {
            int n = int(records_.size());
            return vkpsRegExpFind_8u(t, len, state(), records_.data(), &n) >= 0 ? n / perMatch_ : -1;
        }
        int64_t count = 0;
        for (int pos = 0; pos <= len;) {
            int n = 1;
            const int st = vkpsRegExpFind_8u(t + pos, len - pos, state(), records_.data(), &n);
            if (st < 0) return -1;
            if (n == 0) break;
            ++count;
            const int end = int(records_[0].pMatch - t) + records_[0].matchLen;
            pos = records_[0].matchLen > 0 ? end : end + 1;
        }
        return count;
    }

    int Matches(const char* subject, size_t length) override {
        int n = 1;  // record 0 only: a pattern with groups reports a warning, which is a match
        const int st = vkpsRegExpFind_8u(reinterpret_cast<const vkp8u*>(subject), int(length), state(),
                                         records_.data(), &n);
        return st < 0 ? -1 : n > 0;
    }

private:
    vkpRegExpState* state() { return reinterpret_cast<vkpRegExpState*>(block_.data()); }
    bool global_, ok_;
    int perMatch_ = 1;
    std::vector<uint64_t> block_;
    std::vector<vkpRegExpFind> records_;
};

class Pcre2 : public Engine {
public:
    Pcre2(const char* pattern, const char* letters, bool jit) : jit_(jit) {
        int err;
        PCRE2_SIZE off;
        const uint32_t options = PCRE2_UTF | (letters[0] == 'i' ? PCRE2_CASELESS : 0);
        code_ = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern), PCRE2_ZERO_TERMINATED, options, &err, &off,
                              nullptr);
        if (code_ && jit && pcre2_jit_compile(code_, PCRE2_JIT_COMPLETE) != 0) {
            pcre2_code_free(code_);
            code_ = nullptr;
        }
        if (code_) data_ = pcre2_match_data_create_from_pattern(code_, nullptr);
    }
    ~Pcre2() override {
        pcre2_match_data_free(data_);
        pcre2_code_free(code_);
    }
    bool ok() const override { return code_ != nullptr; }

    int64_t Count(const std::string& text) override {
        const auto* t = reinterpret_cast<PCRE2_SPTR>(text.data());
        const size_t len = text.size();
        int64_t count = 0;
        for (size_t pos = 0; pos <= len;) {
            // The text is valid UTF-8 by construction: no check per call.
            const int rc = jit_ ? pcre2_jit_match(code_, t + pos, len - pos, 0, 0, data_, nullptr)
                                : pcre2_match(code_, t + pos, len - pos, 0, PCRE2_NO_UTF_CHECK, data_, nullptr);
            if (rc == PCRE2_ERROR_NOMATCH) break;
            if (rc < 0) return -1;
            const PCRE2_SIZE* ov = pcre2_get_ovector_pointer(data_);
            ++count;
            pos += ov[1] > ov[0] ? ov[1] : ov[1] + 1;
        }
        return count;
    }

    int Matches(const char* subject, size_t length) override {
        const auto* t = reinterpret_cast<PCRE2_SPTR>(subject);
        const int rc = jit_ ? pcre2_jit_match(code_, t, length, 0, 0, data_, nullptr)
                            : pcre2_match(code_, t, length, 0, PCRE2_NO_UTF_CHECK, data_, nullptr);
        return rc == PCRE2_ERROR_NOMATCH ? 0 : rc < 0 ? -1 : 1;
    }

private:
    bool jit_;
    pcre2_code* code_ = nullptr;
    pcre2_match_data* data_ = nullptr;
};

class Re2 : public Engine {
public:
    Re2(const char* pattern, const char* letters) : re_(pattern, Options(letters)) {}
    bool ok() const override { return re_.ok(); }

    int64_t Count(const std::string& text) override {
        int64_t count = 0;
        for (size_t pos = 0; pos <= text.size();) {
            const re2::StringPiece rest(text.data() + pos, text.size() - pos);
            re2::StringPiece m;
            if (!re_.Match(rest, 0, rest.size(), re2::RE2::UNANCHORED, &m, 1)) break;
            ++count;
            const size_t end = size_t(m.data() - text.data()) + m.size();
            pos = m.size() > 0 ? end : end + 1;
        }
        return count;
    }

    int Matches(const char* subject, size_t length) override {
        const re2::StringPiece piece(subject, length);
        re2::StringPiece m;
        return re_.Match(piece, 0, length, re2::RE2::UNANCHORED, &m, 1) ? 1 : 0;
    }

private:
    static re2::RE2::Options Options(const char* letters) {
        re2::RE2::Options o;
        o.set_case_sensitive(letters[0] != 'i');
        o.set_max_mem(64 << 20);  // room for the 300-word alternation
        o.set_log_errors(false);
        return o;
    }
    re2::RE2 re_;
};

// libpcre2's interpreter takes seconds a megabyte on the 300-word
// alternation: there the JIT gives the counts and the interpreter is not
// timed.
bool InterpreterTimed(const FindCase& c) { return c.pattern != nullptr; }

enum Impl { kOurs, kOursGlobal, kPcre2, kPcre2Jit, kRe2, kImpls };
const char* const kImplNames[kImpls] = {"vkp", "vkp_global", "pcre2", "pcre2_jit", "re2"};

// One pattern over one text: the engines and libpcre2's counts, made when a
// benchmark of theirs first runs.
struct Bench {
    const FindCase* c;
    const Corpus& (*corpus)();
    std::unique_ptr<Engine> engines[kImpls];
    int64_t expected = -1, expectedLines = -1;
    bool built = false;

    void Build() {
        if (built) return;
        built = true;
        const char* pattern = c->pattern ? c->pattern : CommonWordsAlternation().c_str();
        const bool jit = !InterpreterTimed(*c);
        auto reference = std::make_unique<Pcre2>(pattern, c->options, jit);
        if (!reference->ok()) return;
        expected = reference->Count(corpus().text);
        expectedLines = reference->CountLines(corpus());
        engines[jit ? kPcre2Jit : kPcre2] = std::move(reference);
        if (!jit) engines[kPcre2Jit] = std::make_unique<Pcre2>(pattern, c->options, true);
        engines[kRe2] = std::make_unique<Re2>(pattern, c->options);
        engines[kOurs] = std::make_unique<Ours>(pattern, c->options, false, expected);
        engines[kOursGlobal] = std::make_unique<Ours>(pattern, c->options, true, expected);
    }
};

// Whole text (matches counted) or per line (matching lines counted).
void Run(benchmark::State& st, Bench* b, Impl impl, bool perLine) {
    const Corpus& corpus = b->corpus();
    if (corpus.text.empty()) return st.SkipWithError("this system has no such text");
    b->Build();
    Engine* engine = b->engines[impl].get();
    if (!engine || !engine->ok()) return st.SkipWithError("the pattern does not compile");
    const int64_t expected = perLine ? b->expectedLines : b->expected;
    int64_t count = 0;
    for (auto _ : st) count = perLine ? engine->CountLines(corpus) : engine->Count(corpus.text);
    st.SetBytesProcessed(int64_t(st.iterations()) * int64_t(corpus.text.size()));
    st.counters[perLine ? "lines" : "matches"] = double(count);
    if (perLine) st.counters["calls"] = double(corpus.lines.size());
    if (count != expected)
        st.SkipWithError(("counted " + std::to_string(count) + ", pcre2 counts " + std::to_string(expected)).c_str());
}

// Every pattern over the mixed text (benchmarks RegExpFind/...) and over the
// change logs (RegExpFind changelogs/...).
void Register() {
    const struct {
        const char* prefix;
        const char* row;
        const Corpus& (*corpus)();
    } texts[] = {{"RegExpFind/", "RegExpFind_8u ", Mixed},
                 {"RegExpFind changelogs/", "RegExpFind_8u changelogs, ", Changelogs}};
    for (const auto& t : texts) {
        for (const FindCase& c : kCases) {
            Bench* b = new Bench{&c, t.corpus, {}};  // lives as long as the program
            const std::string base = std::string(t.prefix) + c.name + "/";
            for (int impl = 0; impl < kImpls; ++impl) {
                if (impl == kPcre2 && !InterpreterTimed(c)) continue;
                benchmark::RegisterBenchmark((base + kImplNames[impl]).c_str(), Run, b, Impl(impl), false)
                    ->MinTime(0.1);
                if (impl != kOursGlobal)
                    benchmark::RegisterBenchmark((base + "lines/" + kImplNames[impl]).c_str(), Run, b, Impl(impl),
                                                 true)
                        ->MinTime(0.1);
            }
            const std::string row = std::string(t.row) + c.name;
            AddRatio(row + " / pcre2", base + "vkp", base + "pcre2");
            AddRatio(row + " / pcre2 JIT", base + "vkp", base + "pcre2_jit");
            AddRatio(row + " / RE2", base + "vkp", base + "re2");
            AddRatio(row + ", global / pcre2 JIT", base + "vkp_global", base + "pcre2_jit");
            AddRatio(row + ", per line / pcre2", base + "lines/vkp", base + "lines/pcre2");
            AddRatio(row + ", per line / pcre2 JIT", base + "lines/vkp", base + "lines/pcre2_jit");
            AddRatio(row + ", per line / RE2", base + "lines/vkp", base + "lines/re2");
        }
    }
}

const int registered = (Register(), 0);

}  // namespace
}  // namespace vkpbench
