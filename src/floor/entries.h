// Declarations of the implementations behind the exports, in namespace
// vkp::entry under the exported names. Families define them; internal callers
// may call them directly with the same contract as the export.
#pragma once

#include "floor/base.h"

namespace vkp::entry {

#define VKP_EXPORT(R, N, P, A) R N P;
#define VKP_EXPORT_VARIANTS(R, N, P, A, I0, I1)
#include "floor/export_list.inc"
#undef VKP_EXPORT
#undef VKP_EXPORT_VARIANTS

const vkpLibraryVersion* GetLibVersionU8();
const vkpLibraryVersion* GetLibVersionN8();

}  // namespace vkp::entry
