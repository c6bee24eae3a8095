// The kernel width, chosen once when the library is attached, beside the
// processor variant: a table of pointers to the listed kernels
// (kernels/kernel_list.inc), filled with the 16-byte or the 32-byte ones.
#pragma once

#include "floor/base.h"
#include "vkpcore.h"

namespace vkp {

namespace kernels {
struct LiteralSet;  // kernels/literal_set.h
}

// 32 (the AVX2 kernels) when the feature mask has AVX2, else 16 (SSE2).
// Independent of the processor variant.
constexpr int KernelWidthFromFeatures(unsigned long long mask) { return (mask & VKP_CPU_AVX2) ? 32 : 16; }

struct KernelTable {
#define VKP_KERNEL(F, K, R, P, A) R(*F) P;
#include "kernels/kernel_list.inc"
#undef VKP_KERNEL
};

// The kernels in use. Holds the 16-byte ones until SelectKernels runs (code
// linked without the attach hook, such as the internal tests, starts there).
extern KernelTable g_kernels;
extern int g_kernelWidth;

// Fills g_kernels for the width the feature mask allows.
void SelectKernels(unsigned long long mask);

namespace kernels::w16 {
#define VKP_KERNEL(F, K, R, P, A) R F P;
#include "kernels/kernel_list.inc"
#undef VKP_KERNEL
}  // namespace kernels::w16

namespace kernels::w32 {
#define VKP_KERNEL(F, K, R, P, A) R F P;
#include "kernels/kernel_list.inc"
#undef VKP_KERNEL
}  // namespace kernels::w32

}  // namespace vkp
