#include "corpus.h"

#include <cstring>
#include <fstream>
#include <random>
#include <sstream>
#include <vector>

namespace vkpbench {

std::string EnglishText(size_t bytes) {
    std::ifstream in(VKPCH_SAMPLE_TEXT);
    std::vector<std::string> words;
    for (std::string w; in >> w;) words.push_back(w);
    if (words.empty()) words = {"the", "quick", "brown", "fox"};
    std::mt19937 rng(42);
    std::string text;
    text.reserve(bytes + 64);
    size_t column = 0;
    while (text.size() < bytes) {
        const std::string& w = words[rng() % words.size()];
        text += w;
        column += w.size() + 1;
        text += column > 70 ? '\n' : ' ';
        if (column > 70) column = 0;
    }
    text.resize(bytes);
    return text;
}

std::string AbsentNeedle(const std::string& text, size_t len, unsigned seed) {
    std::mt19937 rng(seed);
    for (;;) {
        std::string n = text.substr(rng() % (text.size() - len), len);
        for (char c : std::string("etaoinshrdlu")) {
            n.back() = c;
            if (!memmem(text.data(), text.size(), n.data(), n.size())) return n;
        }
    }
}

}  // namespace vkpbench
