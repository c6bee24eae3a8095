// Many threads at once, each with compiled patterns of its own, search
// shared subjects; every result must equal the one a single thread got
// before. Also built with ThreadSanitizer (preset tsan), which reports any
// state the library shares between threads.
#include <cstdio>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "vkpch.h"

namespace {

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

}  // namespace

int main() {
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
