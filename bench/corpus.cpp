#include "corpus.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
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

namespace vkpbench {
namespace {

// The length of the valid UTF-8 sequence at s[0..n), 0 when it is not one.
size_t Utf8Length(const unsigned char* s, size_t n) {
    const unsigned c = s[0];
    if (c < 0x80) return 1;
    size_t len = c >= 0xC2 && c <= 0xDF ? 2 : c >= 0xE0 && c <= 0xEF ? 3 : c >= 0xF0 && c <= 0xF4 ? 4 : 0;
    if (len == 0 || len > n) return 0;
    for (size_t i = 1; i < len; ++i)
        if ((s[i] & 0xC0) != 0x80) return 0;
    const unsigned c1 = s[1];
    if ((c == 0xE0 && c1 < 0xA0) || (c == 0xED && c1 > 0x9F) || (c == 0xF0 && c1 < 0x90) || (c == 0xF4 && c1 > 0x8F))
        return 0;  // overlong, surrogate or beyond U+10FFFF
    return len;
}

}  // namespace

std::string ChangelogText(size_t bytes) {
    std::string t;
    if (FILE* p = popen("LC_ALL=C; zcat /usr/share/doc/*/changelog.Debian.gz 2>/dev/null", "r")) {
        char buf[65536];
        for (size_t n; t.size() < bytes && (n = fread(buf, 1, sizeof buf, p)) > 0;) t.append(buf, n);
        pclose(p);
    }
    if (t.size() < bytes) return {};
    t.resize(bytes);
    auto* s = reinterpret_cast<unsigned char*>(t.data());
    for (size_t i = 0; i < bytes;) {
        const size_t len = Utf8Length(s + i, bytes - i);
        if (len == 0) s[i++] = '?';
        i += len;
    }
    return t;
}

std::vector<std::string> CommonWords(const std::string& text, size_t n, size_t minLength) {
    std::map<std::string, size_t> count;
    auto letter = [](char c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; };
    for (size_t i = 0; i < text.size();) {
        size_t j = i;
        while (j < text.size() && letter(text[j])) ++j;
        if (j - i >= minLength) ++count[text.substr(i, j - i)];
        i = j + 1;
    }
    std::vector<std::pair<size_t, std::string>> ranked;
    for (auto& [word, c] : count) ranked.emplace_back(c, word);
    std::stable_sort(ranked.begin(), ranked.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
    std::vector<std::string> words;
    for (size_t i = 0; i < ranked.size() && i < n; ++i) words.push_back(ranked[i].second);
    return words;
}

}  // namespace vkpbench
