// Registration of one timed call with its byte count, and benchmark names of
// the form family/implementation/size[/needle:m].
#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <type_traits>

#include "kernels/kernel_table.h"
#include "vkpcore.h"

namespace vkpbench {

// One timed call of fn; a function without a result has its stores kept by
// a clobber.
template <class Fn>
VKP_INLINE void TimedCall(const Fn& fn) {
    if constexpr (std::is_void_v<decltype(fn())>) {
        fn();
        benchmark::ClobberMemory();
    } else {
        benchmark::DoNotOptimize(fn());
    }
}

// The internals linked into this program start with the 16-byte kernels;
// each benchmark sets the width the library chose when it was loaded, so
// that calls of the internals (the copy kernels) run what the exports run,
// whatever benchmarks ran before.
template <class Fn>
void Register(const std::string& name, int64_t bytes, Fn fn) {
    benchmark::RegisterBenchmark(name.c_str(), [fn, bytes](benchmark::State& st) {
        vkp::SelectKernels(vkpGetEnabledCpuFeatures());
        for (auto _ : st) TimedCall(fn);
        st.SetBytesProcessed(int64_t(st.iterations()) * bytes);
    })->MinTime(0.05);
}

// The same function with the 16-byte kernels, beside the exported one (which
// runs the kernels chosen when the library was loaded: 32-byte ones on an
// AVX2 processor): the library's internals linked into this program, their
// table set to the baseline width for the loop and back to the loaded choice
// after it.
template <class Fn>
void RegisterBaseline(const std::string& name, int64_t bytes, Fn fn) {
    benchmark::RegisterBenchmark(name.c_str(), [fn, bytes](benchmark::State& st) {
        vkp::SelectKernels(vkpGetEnabledCpuFeatures() & ~VKP_CPU_AVX2);
        for (auto _ : st) TimedCall(fn);
        st.SetBytesProcessed(int64_t(st.iterations()) * bytes);
    })->MinTime(0.05);
}

inline std::string Name(const char* family, const char* impl, int size, int needle = 0) {
    std::string n = std::string(family) + "/" + impl + "/" + std::to_string(size);
    if (needle) n += "/needle:" + std::to_string(needle);
    return n;
}

}  // namespace vkpbench
