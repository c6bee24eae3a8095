// Concurrent searches against a single-threaded run: every result a thread
// gets must equal the one a single thread got before. Built with
// ThreadSanitizer by the tsan preset, which reports any state the threads
// share unsynchronised.
#include <cstdio>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "vkpch.hpp"

namespace {

// The header: a find, the whole-match lengths of the lazy range and a replace.
struct Result {
    std::size_t first = std::string::npos, count = 0;
    std::string replaced;
    bool operator==(const Result&) const = default;
};

Result Run(const vkpch::Regex& re, std::string_view subject) {
    Result r;
    if (auto m = re.find(subject)) r.first = m->position();
    for (const vkpch::Match& m : re.matches(subject)) r.count += m.length() + 1;
    r.replaced = re.replace(subject, "<$&>");
    return r;
}

// Threads share const vkpch::Regex objects and call find, findAll and
// replace on them at once.
int SharedHeaderObjects() {
    const char* const patterns[] = {"\\bkeeper\\b", "(\\w+)ing\\b", "(?<=\\s)l\\w+", "\\d{2,}", "a|e|i", "^\\w+"};
    std::vector<vkpch::Regex> regexps;
    for (const char* p : patterns) regexps.emplace_back(p, "g");
    std::mt19937 rng(11);
    const char* const words[] = {"keeper", "lamp", "ringing", "42", "harbour", "sing", "a", "1999"};
    std::vector<std::string> subjects;
    for (int s = 0; s < 40; ++s) {
        std::string text;
        for (int w = int(rng() % 30); w >= 0; --w) text += std::string(words[rng() % 8]) + (rng() % 3 ? " " : "");
        subjects.push_back(text);
    }
    std::vector<Result> expected;
    for (const vkpch::Regex& re : regexps)
        for (const std::string& s : subjects) expected.push_back(Run(re, std::string_view(s)));
    int failures = 0;
    std::vector<int> bad(8, 0);
    // Waves of threads: some end while others search, as a thread's exit
    // must not disturb the searches of the others.
    for (int wave = 0; wave < 12; ++wave) {
        std::vector<std::thread> threads;
        for (int t = 0; t < 8; ++t)
            threads.emplace_back([&, t] {
                for (int round = 0; round <= t; ++round)
                    for (std::size_t k = 0; k < expected.size(); ++k) {
                        const std::size_t i = (k * 7 + std::size_t(t) * 13 + std::size_t(round)) % expected.size();
                        bad[std::size_t(t)] += !(Run(regexps[i / subjects.size()], subjects[i % subjects.size()]) == expected[i]);
                    }
            });
        for (std::thread& th : threads) th.join();
    }
    for (int b : bad) failures += b;
    if (failures) std::fprintf(stderr, "%d results differ from the single-threaded run\n", failures);
    return failures ? 1 : 0;
}

// The C functions.
struct Pattern {
    const char* text;
    const char* options;
};

// Ordinary patterns, single and global, and patterns whose plain search
// runs away and is finished by the bounded rerun.
const Pattern kPatterns[] = {
    {"lighthouse", ""},
    {"keeper|lamp|harbour", "g"},
    {R"(https?://[\w.-]+(?:/[\w./?=&%-]*)?)", "g"},
    {R"([\w.+-]+@[\w-]+\.[\w.-]+)", "g"},
    {R"(\b(?:\d{1,3}\.){3}\d{1,3}\b)", "g"},
    {R"((\d{4})-(\d{2})-(\d{2}))", "g"},
    {R"(\w+ing\b)", "gi"},
    {R"((?<=\s)(\w)\w*\1\b)", "g"},
    {R"((a|aa)*c)", ""},
    {R"((\w+\s?)*$)", ""},
    {R"((x+x+)+y)", ""},
};

std::vector<std::string> Subjects() {
    static const char* const kWords[] = {"the", "keeper", "lamp", "harbour", "sang", "walking", "x@example.org",
                                         "http://a.example/b?c=1", "10.0.0.255", "2019-06-30", "anna", "level"};
    std::mt19937 rng(12);
    std::vector<std::string> subjects;
    for (int k = 0; k < 4; ++k) {
        std::string s;
        while (s.size() < 8000) {
            s += kWords[rng() % 12];
            s += rng() % 9 ? ' ' : '\n';
        }
        subjects.push_back(s);
    }
    subjects.push_back(std::string(3000, 'a') + "!c");
    subjects.push_back(std::string(3000, 'x') + "!y");
    subjects.push_back(std::string(2000, 'w') + "!");
    return subjects;
}

// Every search of every pattern over every subject, as one list of numbers:
// status, record count and each record's offset and length.
std::vector<long> SearchAll(const std::vector<std::string>& subjects) {
    std::vector<long> out;
    std::vector<vkpRegExpFind> records(4096);
    for (const Pattern& p : kPatterns) {
        int size = 0, offset = 0;
        vkpsRegExpGetSize(p.text, &size);
        std::vector<long long> block(size_t(size) / 8 + 1);
        auto* state = reinterpret_cast<vkpRegExpState*>(block.data());
        if (vkpsRegExpInit(p.text, p.options, state, &offset) != 0) return {-1};
        for (const std::string& s : subjects) {
            int n = int(records.size());
            const auto* t = reinterpret_cast<const vkp8u*>(s.data());
            const vkpStatus st = vkpsRegExpFind_8u(t, int(s.size()), state, records.data(), &n);
            out.push_back(st);
            out.push_back(n);
            for (int i = 0; st >= 0 && i < n; ++i) {
                out.push_back(records[i].pMatch ? long(records[i].pMatch - t) : -1L);
                out.push_back(records[i].matchLen);
            }
        }
    }
    return out;
}

// Many threads at once, each with compiled patterns of its own, search
// shared subjects.
int OwnBlocks() {
    const std::vector<std::string> subjects = Subjects();
    const std::vector<long> expected = SearchAll(subjects);
    if (expected.size() < 100) {
        std::fprintf(stderr, "single-threaded run failed\n");
        return 1;
    }
    constexpr int kThreads = 6;
    constexpr int kRounds = 2;
    std::vector<int> failures(kThreads, 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            for (int r = 0; r < kRounds; ++r)
                if (SearchAll(subjects) != expected) ++failures[t];
        });
    for (std::thread& th : threads) th.join();
    int total = 0;
    for (int t = 0; t < kThreads; ++t) {
        if (failures[t]) std::fprintf(stderr, "thread %d: %d rounds differ from the single-threaded run\n", t, failures[t]);
        total += failures[t];
    }
    std::printf("%d threads x %d rounds x %zu patterns x %zu subjects: %s\n", kThreads, kRounds,
                sizeof kPatterns / sizeof kPatterns[0], subjects.size(), total ? "MISMATCH" : "identical");
    return total ? 1 : 0;
}

}  // namespace

int main() { return SharedHeaderObjects() | OwnBlocks(); }
