// Patterns whose plain backtracking search takes exponential time, on 100 KB
// subjects: vkpsRegExpFind_8u (which bounds the work) against libpcre2 without
// JIT, which stops at its match limit with an error. The label of each row
// says how the search ended.
#define PCRE2_CODE_UNIT_WIDTH 8
#include <benchmark/benchmark.h>
#include <pcre2.h>

#include <string>
#include <vector>

#include "ratio_table.h"
#include "vkpch.h"

namespace vkpbench {
namespace {

struct Case {
    const char* name;
    const char* pattern;
    const char* unit;  // repeated to 100 KB, then the tail
    const char* tail;
};

const Case kCases[] = {
    {"(a*)*b", "(a*)*b", "a", "!b"},
    {"(a|aa)*c", "(a|aa)*c", "a", "!c"},
    {"(a|a)*b", "(a|a)*b", "a", "!b"},
    {"(\\w+\\s?)*$", "(\\w+\\s?)*$", "a", "!"},
    {"^(([a-z])+.)+[A-Z]([a-z])+$", "^(([a-z])+.)+[A-Z]([a-z])+$", "a", "!"},
    {"((ab|a)*)*c", "((ab|a)*)*c", "ab", "!c"},
};

std::string Subject(const Case& c) {
    std::string s;
    while (s.size() < 100000) s += c.unit;
    return s + c.tail;
}

void Ours(benchmark::State& st, const Case* c) {
    const std::string s = Subject(*c);
    int size = 0, offset = 0;
    vkpsRegExpGetSize(c->pattern, &size);
    std::vector<uint64_t> block((size_t(size) + 7) / 8);
    auto* state = reinterpret_cast<vkpRegExpState*>(block.data());
    if (vkpsRegExpInit(c->pattern, "", state, &offset) != 0) {
        st.SkipWithError("compile failed");
        return;
    }
    std::vector<vkpRegExpFind> records(size_t(state->groupCount));
    vkpStatus status = 0;
    int n = 0;
    for (auto _ : st) {
        n = int(records.size());
        status = vkpsRegExpFind_8u(reinterpret_cast<const vkp8u*>(s.data()), int(s.size()), state, records.data(), &n);
    }
    st.SetBytesProcessed(int64_t(st.iterations()) * int64_t(s.size()));
    st.SetLabel(status < 0    ? "status " + std::to_string(status)
                : n == 0      ? std::string("no match")
                              : "match at " + std::to_string(records[0].pMatch - reinterpret_cast<const vkp8u*>(s.data())));
}

void Pcre2(benchmark::State& st, const Case* c) {
    const std::string s = Subject(*c);
    int err;
    PCRE2_SIZE off;
    pcre2_code* code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(c->pattern), PCRE2_ZERO_TERMINATED, 0, &err, &off,
                                     nullptr);
    if (!code) {
        st.SkipWithError("compile failed");
        return;
    }
    pcre2_match_data* data = pcre2_match_data_create_from_pattern(code, nullptr);
    int rc = 0;
    for (auto _ : st)
        rc = pcre2_match(code, reinterpret_cast<PCRE2_SPTR>(s.data()), s.size(), 0, 0, data, nullptr);
    st.SetBytesProcessed(int64_t(st.iterations()) * int64_t(s.size()));
    st.SetLabel(rc == PCRE2_ERROR_MATCHLIMIT ? std::string("match limit error")
                : rc == PCRE2_ERROR_NOMATCH  ? std::string("no match")
                : rc < 0                     ? "error " + std::to_string(rc)
                                             : "match at " + std::to_string(pcre2_get_ovector_pointer(data)[0]));
    pcre2_match_data_free(data);
    pcre2_code_free(code);
}

void Register() {
    for (const Case& c : kCases) {
        const std::string base = std::string("RegExpCatastrophic/") + c.name + "/";
        benchmark::RegisterBenchmark((base + "vkp").c_str(), Ours, &c)->Iterations(1)->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((base + "pcre2").c_str(), Pcre2, &c)->Iterations(1)->Unit(benchmark::kMillisecond);
        AddRatio(std::string("RegExpFind_8u catastrophic ") + c.name + ", 100 KB / pcre2 (stops at its limit)",
                 base + "vkp", base + "pcre2");
    }
}

const int registered = (Register(), 0);

}  // namespace
}  // namespace vkpbench
