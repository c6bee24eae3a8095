// The listed kernels called through the table chosen at attach, overloaded
// by unit type: kernels::active::FindUnitFwd(s, len, v) runs the 16-byte or
// the 32-byte kernel for s's unit type.
#pragma once

#include "kernels/kernel_table.h"

namespace vkp::kernels::active {

#define VKP_KERNEL(F, K, R, P, A) \
    VKP_INLINE R K P { return g_kernels.F A; }
#include "kernels/kernel_list.inc"
#undef VKP_KERNEL

}  // namespace vkp::kernels::active
