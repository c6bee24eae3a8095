#include "corpus.h"

#include <cstdio>
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

}  // namespace vkpbench
