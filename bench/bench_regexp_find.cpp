// Regexp search over 4 MiB of UTF-8 text (English words with e-mail
// addresses, URIs, IPv4 addresses, dates and Greek phrases mixed in):
// vkpsRegExpFind_8u against libpcre2 without JIT, libpcre2 with JIT and RE2.
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
// Each count is checked against libpcre2's; a benchmark whose count
// differs reports an error instead of a rate.
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
};

// English text with a token after about one word in forty.
std::string MixedText(size_t bytes) {
    static const char* const kUsers[] = {"anna", "j.smith", "keeper", "ops+alerts", "m_rossi", "li.wei"};
    static const char* const kHosts[] = {"example.org", "mail.example.com", "lighthouse.net", "harbour-office.co.uk"};
    static const char* const kPaths[] = {"", "/", "/log/2019/june", "/index.html?id=42&tab=ships", "/a/b-c/d.txt"};
    static const char* const kGreek[] = {"Καλημέρα", "κόσμε", "Ελλάδα", "φιλοσοφία", "θάλασσα", "φάρος"};
    std::mt19937 rng(7);
    auto pick = [&rng](auto& list) { return list[rng() % (sizeof list / sizeof list[0])]; };
    std::istringstream words(EnglishText(bytes));
    std::string text, w;
    text.reserve(bytes + 256);
    while (text.size() < bytes && words >> w) {
        text += w;
        text += rng() % 12 == 0 ? '\n' : ' ';
        if (rng() % 40) continue;
        switch (rng() % 7) {
        case 0: text += std::string(pick(kUsers)) + "@" + pick(kHosts); break;
        case 1: text += std::string(rng() % 2 ? "https://" : "http://") + pick(kHosts) + pick(kPaths); break;
        case 2:
            text += std::to_string(rng() % 256) + "." + std::to_string(rng() % 256) + "." + std::to_string(rng() % 256) +
                    "." + std::to_string(rng() % 256);
            break;
        case 3: {
            char date[16];
            std::snprintf(date, sizeof date, "%04u-%02u-%02u", 1900 + unsigned(rng() % 130), 1 + unsigned(rng() % 12),
                          1 + unsigned(rng() % 28));
            text += date;
            break;
        }
        case 4:
            text += pick(kGreek);
            if (rng() % 2) text += std::string(" ") + pick(kGreek);
            break;
        case 5: {
            static const char* const kLevels[] = {"INFO", "WARN", "ERROR", "debug"};
            char head[48];
            std::snprintf(head, sizeof head, "\n[20%02u-%02u-%02u %02u:%02u:%02u] %s: ", unsigned(rng() % 30),
                          1 + unsigned(rng() % 12), 1 + unsigned(rng() % 28), unsigned(rng() % 24),
                          unsigned(rng() % 60), unsigned(rng() % 60), pick(kLevels));
            text += head;
            text += std::string(pick(kUsers)) + " at " + pick(kHosts) + "\n";
            break;
        }
        default: {
            static const char* const kSaid[] = {"Lights out", "the lamp is lit", "Where is Mr Keeper?", "",
                                                "ships ahead, Anna Rossi said"};
            text += std::string("\"") + pick(kSaid) + "\"";
        }
        }
        text += ' ';
    }
    return text;
}

const std::string& Text() {
    static const std::string text = MixedText(4 << 20);
    return text;
}

// The lines of the text, without their line feeds.
struct Line {
    size_t at, length;
};
const std::vector<Line>& Lines() {
    static const std::vector<Line> lines = [] {
        std::vector<Line> v;
        const std::string& t = Text();
        for (size_t at = 0; at <= t.size();) {
            size_t nl = t.find('\n', at);
            if (nl == std::string::npos) nl = t.size();
            v.push_back({at, nl - at});
            at = nl + 1;
        }
        return v;
    }();
    return lines;
}

// A counting engine: how many matches the pattern has in the text, and
// whether one subject holds a match.
class Engine {
public:
    virtual ~Engine() = default;
    virtual int64_t Count(const std::string& text) = 0;
    virtual int Matches(const char* subject, size_t length) = 0;  // 1, 0, or -1 on error
    int64_t CountLines(const std::string& text) {
        int64_t count = 0;
        for (const Line& l : Lines()) {
            const int m = Matches(text.data() + l.at, l.length);
            if (m < 0) return -1;
            count += m;
        }
        return count;
    }
};

class Ours : public Engine {
public:
    Ours(const FindCase& c, bool global, int64_t expected) : global_(global) {
        const std::string letters = std::string(c.options) + (global ? "g" : "");
        int size = 0;
        vkpsRegExpGetSize(c.pattern, &size);
        block_.resize((size_t(size) + 7) / 8);
        int offset = 0;
        ok_ = vkpsRegExpInit(c.pattern, letters.c_str(), state(), &offset) == 0;
        // A global search reports record 0 alone for patterns without
        // groups, else the records of groups 1 to the last for each match.
        const int groups = ok_ ? state()->groupCount : 1;
        perMatch_ = groups > 1 ? groups - 1 : 1;
        records_.resize(global ? (size_t(expected) + 16) * size_t(perMatch_) : 1);
    }
    bool ok() const { return ok_; }

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
    Pcre2(const FindCase& c, bool jit) : jit_(jit) {
        int err;
        PCRE2_SIZE off;
        const uint32_t options = PCRE2_UTF | (c.options[0] == 'i' ? PCRE2_CASELESS : 0);
        code_ = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(c.pattern), PCRE2_ZERO_TERMINATED, options, &err, &off,
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
    bool ok() const { return code_ != nullptr; }

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
    explicit Re2(const FindCase& c) : re_(c.pattern, Options(c)) {}
    bool ok() const { return re_.ok(); }

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
    static re2::RE2::Options Options(const FindCase& c) {
        re2::RE2::Options o;
        o.set_case_sensitive(c.options[0] != 'i');
        o.set_log_errors(false);
        return o;
    }
    re2::RE2 re_;
};

// Whole text (matches counted) or per line (matching lines counted).
void Run(benchmark::State& st, Engine* engine, int64_t expected, bool perLine) {
    const std::string& text = Text();
    int64_t count = 0;
    for (auto _ : st) count = perLine ? engine->CountLines(text) : engine->Count(text);
    st.SetBytesProcessed(int64_t(st.iterations()) * int64_t(text.size()));
    st.counters[perLine ? "lines" : "matches"] = double(count);
    if (perLine) st.counters["calls"] = double(Lines().size());
    if (count != expected)
        st.SkipWithError(("counted " + std::to_string(count) + ", pcre2 counts " + std::to_string(expected)).c_str());
}

void Register() {
    static std::vector<std::unique_ptr<Engine>> engines;
    for (const FindCase& c : kCases) {
        auto reference = std::make_unique<Pcre2>(c, false);
        if (!reference->ok()) continue;
        const int64_t expected = reference->Count(Text());
        const int64_t expectedLines = reference->CountLines(Text());
        auto jit = std::make_unique<Pcre2>(c, true);
        auto re2 = std::make_unique<Re2>(c);
        auto ours = std::make_unique<Ours>(c, false, expected);
        auto oursGlobal = std::make_unique<Ours>(c, true, expected);
        const std::string base = std::string("RegExpFind/") + c.name + "/";
        struct Entry {
            const char* impl;
            Engine* engine;
            bool ok;
        } entries[] = {{"vkp", ours.get(), ours->ok()},       {"vkp_global", oursGlobal.get(), oursGlobal->ok()},
                       {"pcre2", reference.get(), true},      {"pcre2_jit", jit.get(), jit->ok()},
                       {"re2", re2.get(), re2->ok()}};
        for (const Entry& e : entries) {
            if (!e.ok) continue;
            benchmark::RegisterBenchmark((base + e.impl).c_str(), Run, e.engine, expected, false)->MinTime(0.1);
            if (e.engine != oursGlobal.get())
                benchmark::RegisterBenchmark((base + "lines/" + e.impl).c_str(), Run, e.engine, expectedLines, true)
                    ->MinTime(0.1);
        }
        const std::string row = std::string("RegExpFind_8u ") + c.name;
        AddRatio(row + " / pcre2", base + "vkp", base + "pcre2");
        AddRatio(row + " / pcre2 JIT", base + "vkp", base + "pcre2_jit");
        AddRatio(row + " / RE2", base + "vkp", base + "re2");
        AddRatio(row + ", global / pcre2 JIT", base + "vkp_global", base + "pcre2_jit");
        AddRatio(row + ", per line / pcre2", base + "lines/vkp", base + "lines/pcre2");
        AddRatio(row + ", per line / pcre2 JIT", base + "lines/vkp", base + "lines/pcre2_jit");
        AddRatio(row + ", per line / RE2", base + "lines/vkp", base + "lines/re2");
        for (auto* e : {static_cast<Engine*>(reference.release()), static_cast<Engine*>(jit.release()),
                        static_cast<Engine*>(re2.release()), static_cast<Engine*>(ours.release()),
                        static_cast<Engine*>(oursGlobal.release())})
            engines.emplace_back(e);
    }
}

const int registered = (Register(), 0);

}  // namespace
}  // namespace vkpbench
