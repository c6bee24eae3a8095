// Processor feature mask from CPUID, with an environment override for tests.
#include "vkpcore.h"

#include <cpuid.h>
#include <stdint.h>
#include <stdlib.h>

namespace {

// Extended state enabled by the operating system (XGETBV 0), or 0 without OSXSAVE.
uint64_t EnabledXState(bool osxsave) {
    if (!osxsave) return 0;
    uint32_t lo, hi;
    __asm__ volatile("xgetbv" : "=a"(lo), "=d"(hi) : "c"(0));
    return (uint64_t(hi) << 32) | lo;
}

unsigned long long DetectFeatures() {
    unsigned a, b, c, d;
    if (!__get_cpuid(0, &a, &b, &c, &d)) return 0;
    const unsigned maxLeaf = a;
    unsigned long long m = 0;
    __cpuid(1, a, b, c, d);
    if (d & (1u << 25)) m |= VKP_CPU_SSE;
    if (d & (1u << 26)) m |= VKP_CPU_SSE2;
    if (c & (1u << 0))  m |= VKP_CPU_SSE3;
    if (c & (1u << 9))  m |= VKP_CPU_SSSE3;
    if (c & (1u << 19)) m |= VKP_CPU_SSE41;
    if (c & (1u << 20)) m |= VKP_CPU_SSE42;
    if (c & (1u << 22)) m |= VKP_CPU_MOVBE;
    if (c & (1u << 23)) m |= VKP_CPU_POPCNT;
    // The AVX family counts only when the operating system saves the YMM
    // (and, for AVX-512, the ZMM) registers: OSXSAVE, then XGETBV.
    const uint64_t xs = EnabledXState((c & (1u << 27)) != 0);
    const bool avx = (xs & 0x6) == 0x6 && (c & (1u << 28));
    const bool zmm = avx && (xs & 0xE0) == 0xE0;
    if (avx) m |= VKP_CPU_AVX;
    if (maxLeaf >= 7) {
        __cpuid_count(7, 0, a, b, c, d);
        if (b & (1u << 3)) m |= VKP_CPU_BMI1;
        if (b & (1u << 8)) m |= VKP_CPU_BMI2;
        if (avx && (b & (1u << 5))) m |= VKP_CPU_AVX2;
        if (zmm && (b & (1u << 16))) m |= VKP_CPU_AVX512F;
        if (zmm && (b & (1u << 30))) m |= VKP_CPU_AVX512BW;
    }
    return m;
}

}  // namespace

extern "C" unsigned long long vkpGetEnabledCpuFeatures(void) {
    if (const char* forced = getenv("VKPCORE_CPU_FEATURES")) {
        char* end = nullptr;
        const unsigned long long v = strtoull(forced, &end, 0);
        if (end != forced && *end == '\0') return v;
    }
    return DetectFeatures();
}
