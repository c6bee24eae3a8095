// Property tests over mixed-script UTF-8 text (Latin, Greek, Cyrillic, CJK,
// Hangul, emoji): the library's PropertyTest against ICU's general
// category lookup.
#include <benchmark/benchmark.h>
#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <random>
#include <string>

#include "ratio_table.h"
#include "regexp/match/unicode_properties.h"

namespace vkpbench {
namespace {

// Words of each script; the text is a seeded shuffle of them.
const char* const kWords[] = {
    "The", "quick", "brown", "fox", "jumps", "over", "lazy", "dogs", "Zürich", "façade",
    "Καλημέρα", "κόσμε", "Ελλάδα", "φιλοσοφία",
    "Привет", "мир", "Москва", "съешь", "ещё",
    "漢字", "東京都", "中文字符", "日本語",
    "한국어", "안녕하세요", "서울특별시",
    "😀", "🚀", "🌍🎉", "👍",
    "1234", "—", "«", "»", "!", "?",
};

std::string MixedText(size_t bytes) {
    std::mt19937 rng(42);
    std::uniform_int_distribution<size_t> pick(0, sizeof(kWords) / sizeof(kWords[0]) - 1);
    std::string text;
    while (text.size() < bytes) {
        text += kWords[pick(rng)];
        text += ' ';
    }
    return text;
}

int CountCodePoints(const std::string& s) {
    int n = 0;
    for (unsigned char ch : s) n += (ch & 0xC0) != 0x80;
    return n;
}

// Both sides decode with ICU's macro, so that only the category test differs.
template <class IsLetter>
int CountLetters(const std::string& text, IsLetter isLetter) {
    const auto* s = reinterpret_cast<const uint8_t*>(text.data());
    int32_t i = 0, n = int32_t(text.size());
    int hits = 0;
    while (i < n) {
        UChar32 c;
        U8_NEXT_UNSAFE(s, i, c);
        hits += isLetter(c);
    }
    return hits;
}

int CountLettersVkp(const std::string& text) {
    vkp::Instruction letter{};
    letter.op = vkp::OP_CATEGORY;
    letter.a = int(vkp::kCatL);
    return CountLetters(text, [&letter](UChar32 c) { return vkp::PropertyTest(c, letter, false) > 0; });
}

int CountLettersIcu(const std::string& text) {
    return CountLetters(text, [](UChar32 c) { return (U_GET_GC_MASK(c) & U_GC_L_MASK) != 0; });
}

void RegisterPropertyTest() {
    for (size_t bytes : {size_t(4096), size_t(1) << 20}) {
        static std::string texts[2];
        std::string& text = texts[bytes > 4096];
        text = MixedText(bytes);
        const int codePoints = CountCodePoints(text);
        const std::string size = std::to_string(bytes);
        const std::string ours = "PropertyTest_L/vkp/" + size;
        const std::string peer = "PropertyTest_L/icu_u_charType/" + size;
        auto run = [&text, codePoints](benchmark::State& st, int (*count)(const std::string&)) {
            for (auto _ : st) benchmark::DoNotOptimize(count(text));
            st.SetItemsProcessed(int64_t(st.iterations()) * codePoints);
        };
        benchmark::RegisterBenchmark(ours.c_str(), run, CountLettersVkp)->MinTime(0.05);
        benchmark::RegisterBenchmark(peer.c_str(), run, CountLettersIcu)->MinTime(0.05);
        AddRatio("PropertyTest L / ICU gc (M cp/s), " + size, ours, peer);
    }
}

const int registered = (RegisterPropertyTest(), 0);

}  // namespace
}  // namespace vkpbench
