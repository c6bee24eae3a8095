// UTF-8 <-> UTF-16 conversion against ICU (u_strFromUTF8Lenient,
// u_strToUTF8) and glibc iconv, on 64 KiB of English, Greek, Cyrillic and
// Chinese text (words of the script with ASCII spaces and punctuation).
#include <benchmark/benchmark.h>
#include <iconv.h>
#include <unicode/ustring.h>

#include <random>
#include <string>
#include <vector>

#include "corpus.h"
#include "ratio_table.h"
#include "vkpch.h"

namespace vkpbench {
namespace {

struct Script {
    const char* name;
    std::vector<const char*> words;
};

const Script kScripts[] = {
    {"Greek", {"Καλημέρα", "κόσμε", "Ελλάδα", "φιλοσοφία", "και", "το", "της", "θάλασσα", "φάρος", "ημέρα"}},
    {"Cyrillic", {"Привет", "мир", "Москва", "съешь", "ещё", "этих", "мягких", "французских", "булок", "маяк"}},
    {"CJK", {"漢字", "東京都", "中文字符", "日本語", "灯台", "の", "海", "船が通る", "記録", "守"}},
};

std::string ScriptText(const Script& s, size_t bytes) {
    std::mt19937 rng(11);
    std::string t;
    while (t.size() < bytes) {
        t += s.words[rng() % s.words.size()];
        t += rng() % 9 == 0 ? ", " : " ";
    }
    while (t.size() > bytes || (t.size() && (static_cast<unsigned char>(t.back()) & 0xC0) == 0x80)) t.pop_back();
    if (t.size() && static_cast<unsigned char>(t.back()) >= 0xC0) t.pop_back();
    return t;
}

template <class Fn>
void Register(const std::string& name, int64_t bytes, Fn fn) {
    benchmark::RegisterBenchmark(name.c_str(), [fn, bytes](benchmark::State& st) {
        for (auto _ : st) benchmark::DoNotOptimize(fn());
        st.SetBytesProcessed(int64_t(st.iterations()) * bytes);
    })->MinTime(0.05);
}

void RegisterText(const std::string& label, const std::string& utf8) {
    static std::vector<std::vector<UChar>> keep16;
    static std::vector<std::vector<char>> keep8;
    static std::vector<std::string> keepText;
    keepText.push_back(utf8);
    const std::string& text = keepText.back();
    const int n = int(text.size());
    keep16.emplace_back(size_t(n) + 16);
    UChar* out16 = keep16.back().data();
    int32_t units = 0;
    UErrorCode err = U_ZERO_ERROR;
    u_strFromUTF8Lenient(out16, n + 16, &units, text.data(), n, &err);
    keep16.emplace_back(out16, out16 + units);
    const UChar* in16 = keep16.back().data();
    keep8.emplace_back(size_t(n) + 16);
    char* out8 = keep8.back().data();
    const auto* src8 = reinterpret_cast<const vkp8u*>(text.data());

    const std::string a = "UTF8to16/" + label;
    Register(a + "/vkp", n, [=] {
        int sl = n, dl = n + 16;
        vkpsConvertUTF_8u16u(src8, &sl, reinterpret_cast<vkp16u*>(out16), &dl, 0);
        return dl;
    });
    Register(a + "/icu", n, [=] {
        int32_t len;
        UErrorCode e = U_ZERO_ERROR;
        u_strFromUTF8Lenient(out16, n + 16, &len, text.data(), n, &e);
        return len;
    });
    Register(a + "/iconv", n, [=] {
        static iconv_t cd = iconv_open("UTF-16LE", "UTF-8");
        char* in = const_cast<char*>(text.data());
        char* out = reinterpret_cast<char*>(out16);
        size_t inLeft = size_t(n), outLeft = size_t(n + 16) * 2;
        iconv(cd, nullptr, nullptr, nullptr, nullptr);
        return iconv(cd, &in, &inLeft, &out, &outLeft);
    });
    const std::string b = "UTF16to8/" + label;
    Register(b + "/vkp", n, [=] {
        int sl = units, dl = n + 16;
        vkpsConvertUTF_16u8u(reinterpret_cast<const vkp16u*>(in16), &sl, reinterpret_cast<vkp8u*>(out8), &dl, 0);
        return dl;
    });
    Register(b + "/icu", n, [=] {
        int32_t len;
        UErrorCode e = U_ZERO_ERROR;
        u_strToUTF8(out8, n + 16, &len, in16, units, &e);
        return len;
    });
    Register(b + "/iconv", n, [=] {
        static iconv_t cd = iconv_open("UTF-8", "UTF-16LE");
        char* in = reinterpret_cast<char*>(const_cast<UChar*>(in16));
        char* out = out8;
        size_t inLeft = size_t(units) * 2, outLeft = size_t(n + 16);
        iconv(cd, nullptr, nullptr, nullptr, nullptr);
        return iconv(cd, &in, &inLeft, &out, &outLeft);
    });
    for (const char* peer : {"icu", "iconv"}) {
        AddRatio("ConvertUTF_8u16u / " + std::string(peer) + " " + label, a + "/vkp", a + "/" + peer);
        AddRatio("ConvertUTF_16u8u / " + std::string(peer) + " " + label, b + "/vkp", b + "/" + peer);
    }
}

const int registered = [] {
    RegisterText("English", EnglishText(65536));
    for (const Script& s : kScripts) RegisterText(s.name, ScriptText(s, 65536));
    return 0;
}();

}  // namespace
}  // namespace vkpbench
