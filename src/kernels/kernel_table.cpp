#include "kernels/kernel_table.h"

namespace vkp {

KernelTable g_kernels = {
#define VKP_KERNEL(F, K, R, P, A) &kernels::w16::F,
#include "kernels/kernel_list.inc"
#undef VKP_KERNEL
};

int g_kernelWidth = 16;

void SelectKernels(unsigned long long mask) {
    g_kernelWidth = KernelWidthFromFeatures(mask);
    const bool wide = g_kernelWidth == 32;
#define VKP_KERNEL(F, K, R, P, A) g_kernels.F = wide ? &kernels::w32::F : &kernels::w16::F;
#include "kernels/kernel_list.inc"
#undef VKP_KERNEL
}

static_assert(KernelWidthFromFeatures(0x30) == 16 && KernelWidthFromFeatures(~VKP_CPU_AVX2) == 16);
static_assert(KernelWidthFromFeatures(VKP_CPU_AVX2) == 32 && KernelWidthFromFeatures(~0ull) == 32);

}  // namespace vkp
