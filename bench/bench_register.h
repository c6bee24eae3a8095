// Registration of one timed call with its byte count, and benchmark names of
// the form family/implementation/size[/needle:m].
#pragma once

#include <benchmark/benchmark.h>

#include <string>

namespace vkpbench {

template <class Fn>
void Register(const std::string& name, int bytes, Fn fn) {
    benchmark::RegisterBenchmark(name.c_str(), [fn, bytes](benchmark::State& st) {
        for (auto _ : st) benchmark::DoNotOptimize(fn());
        st.SetBytesProcessed(int64_t(st.iterations()) * bytes);
    })->MinTime(0.05);
}

inline std::string Name(const char* family, const char* impl, int size, int needle = 0) {
    std::string n = std::string(family) + "/" + impl + "/" + std::to_string(size);
    if (needle) n += "/needle:" + std::to_string(needle);
    return n;
}

}  // namespace vkpbench
