#include "frame/cpu_variant.h"

#include "kernels/kernel_table.h"
#include "vkpcore.h"

namespace vkp {

int g_cpuVariant = 0;

void Attach() {
    const unsigned long long mask = vkpGetEnabledCpuFeatures();
    g_cpuVariant = VariantFromFeatures(mask);
    SelectKernels(mask);
}

static_assert(VariantFromFeatures(0x10) == 0 && VariantFromFeatures(0x20) == 0);
static_assert(VariantFromFeatures(0x30) == 1 && VariantFromFeatures(~0x20ull) == 0);

}  // namespace vkp
