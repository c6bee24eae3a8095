// Threads share const vkpch::Regex objects and call find, findAll and
// replace on them at once; every result must equal the one a single thread
// got before. Built with ThreadSanitizer by the tsan preset, which reports
// any state the threads share unsynchronised.
#include <cstdio>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "vkpch.hpp"

namespace {

struct Result {
    std::size_t first = std::string::npos, count = 0;
    std::string replaced;
    bool operator==(const Result& o) const { return first == o.first && count == o.count && replaced == o.replaced; }
};

Result Run(const vkpch::Regex& re, std::string_view subject) {
    Result r;
    if (auto m = re.find(subject)) r.first = m->position();
    for (const vkpch::Match& m : re.matches(subject)) r.count += m.length() + 1;
    r.replaced = re.replace(subject, "<$&>");
    return r;
}

}  // namespace

int main() {
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
    std::vector<std::thread> threads;
    std::vector<int> bad(8, 0);
    for (int t = 0; t < 8; ++t)
        threads.emplace_back([&, t] {
            for (int round = 0; round < 20; ++round)
                for (std::size_t k = 0; k < expected.size(); ++k) {
                    const std::size_t i = (k * 7 + std::size_t(t) * 13 + std::size_t(round)) % expected.size();
                    bad[std::size_t(t)] += !(Run(regexps[i / subjects.size()], subjects[i % subjects.size()]) == expected[i]);
                }
        });
    for (std::thread& th : threads) th.join();
    for (int b : bad) failures += b;
    if (failures) std::fprintf(stderr, "%d results differ from the single-threaded run\n", failures);
    return failures ? 1 : 0;
}
