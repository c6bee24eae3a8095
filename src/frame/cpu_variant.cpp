#include "frame/cpu_variant.h"

#include "vkpcore.h"

namespace vkp {

int g_cpuVariant = 0;

void Attach() { g_cpuVariant = VariantFromFeatures(vkpGetEnabledCpuFeatures()); }

static_assert(VariantFromFeatures(0x10) == 0 && VariantFromFeatures(0x20) == 0);
static_assert(VariantFromFeatures(0x30) == 1 && VariantFromFeatures(~0x20ull) == 0);

}  // namespace vkp
