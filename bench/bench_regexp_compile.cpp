// Pattern compile time: vkpsRegExpInit into a block the caller keeps against
// pcre2_compile (no JIT; the code is freed in the loop, as a caller that
// compiles once per use would). Throughput is pattern bytes compiled per
// second, so the ratio is the ratio of compile times.
#define PCRE2_CODE_UNIT_WIDTH 8
#include <benchmark/benchmark.h>
#include <pcre2.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "ratio_table.h"
#include "vkpch.h"

namespace vkpbench {
namespace {

struct CompileCase {
    const char* name;
    const char* options;  // option letters; only i is used here
    const char* pattern;
};

const CompileCase kCases[] = {
    {"log line", "",
     R"(^(\S+) \S+ \S+ \[([^\]]+)\] "(\w+) ([^"]*?) HTTP/[\d.]+" (\d{3}) (\d+|-))"},
    {"URL", "", R"(https?://(?:[\w-]+\.)+[\w-]+(?::\d+)?(?:/[\w./?%&=+-]*)?)"},
    {"e-mail", "", R"([\w.+-]+@[\w-]+(?:\.[\w-]+)+)"},
    {"identifier", "", R"(\b[A-Za-z_][A-Za-z0-9_]*\b)"},
    {"ISO date-time", "", R"((\d{4})-(\d{2})-(\d{2})[T ](\d{2}):(\d{2}):(\d{2})(?:\.\d+)?)"},
    {"IPv4", "", R"(\b(?:(?:25[0-5]|2[0-4]\d|1?\d?\d)\.){3}(?:25[0-5]|2[0-4]\d|1?\d?\d)\b)"},
    {"word alternation", "", R"(\b(?:error|warning|fatal|critical|notice|debug|info|trace)\b)"},
    {"long word alternation", "i",
     "january|february|march|april|may|june|july|august|september|october|november|december|"
     "monday|tuesday|wednesday|thursday|friday|saturday|sunday"},
    {"header", "i", R"(^content-type:\s*([\w/+.-]+)(?:;\s*charset=([\w-]+))?)"},
    {"Greek run", "", R"(\p{Greek}+(?:\s+\p{Greek}+)*)"},
};

uint32_t Pcre2Options(const char* letters) {
    uint32_t o = 0;
    for (const char* p = letters; *p; ++p) {
        if (*p == 'i') o |= PCRE2_CASELESS;
        if (*p == 'm') o |= PCRE2_MULTILINE;
        if (*p == 's') o |= PCRE2_DOTALL;
        if (*p == 'x') o |= PCRE2_EXTENDED;
    }
    return o;
}

void CompileOurs(benchmark::State& st, const CompileCase* c) {
    int size = 0;
    vkpsRegExpGetSize(c->pattern, &size);
    std::vector<uint64_t> block((size_t(size) + 7) / 8);
    auto* state = reinterpret_cast<vkpRegExpState*>(block.data());
    int offset = 0;
    for (auto _ : st) {
        if (vkpsRegExpInit(c->pattern, c->options, state, &offset) != 0) {
            st.SkipWithError("compile failed");
            return;
        }
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(int64_t(st.iterations()) * int64_t(std::strlen(c->pattern)));
}

void CompilePcre2(benchmark::State& st, const CompileCase* c) {
    const uint32_t options = Pcre2Options(c->options);
    for (auto _ : st) {
        int err;
        PCRE2_SIZE off;
        pcre2_code* code =
            pcre2_compile(reinterpret_cast<PCRE2_SPTR>(c->pattern), PCRE2_ZERO_TERMINATED, options, &err, &off, nullptr);
        if (!code) {
            st.SkipWithError("compile failed");
            return;
        }
        benchmark::DoNotOptimize(code);
        pcre2_code_free(code);
    }
    st.SetBytesProcessed(int64_t(st.iterations()) * int64_t(std::strlen(c->pattern)));
}

void Register() {
    for (const CompileCase& c : kCases) {
        const std::string ours = std::string("RegExpCompile/vkp/") + c.name;
        const std::string peer = std::string("RegExpCompile/pcre2/") + c.name;
        benchmark::RegisterBenchmark(ours.c_str(), CompileOurs, &c)->MinTime(0.05);
        benchmark::RegisterBenchmark(peer.c_str(), CompilePcre2, &c)->MinTime(0.05);
        AddRatio(std::string("RegExpInit / pcre2_compile, ") + c.name, ours, peer);
    }
}

const int registered = (Register(), 0);

}  // namespace
}  // namespace vkpbench
