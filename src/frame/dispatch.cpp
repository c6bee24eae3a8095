// The exported entry points: each jumps through its own two-entry table,
// indexed by the processor variant chosen at attach.
#include "frame/cpu_variant.h"
#include "floor/entries.h"

namespace {

#define VKP_EXPORT_VARIANTS(R, N, P, A, I0, I1) \
    using N##_fn = R(*) P;                      \
    constexpr N##_fn N##_table[2] = {&I0, &I1};
#define VKP_EXPORT(R, N, P, A) VKP_EXPORT_VARIANTS(R, N, P, A, vkp::entry::N, vkp::entry::N)
#include "floor/export_list.inc"
#undef VKP_EXPORT
#undef VKP_EXPORT_VARIANTS

}  // namespace

extern "C" {

#define VKP_EXPORT_VARIANTS(R, N, P, A, I0, I1) \
    VKPCH_API R N P { return N##_table[vkp::g_cpuVariant] A; }
#define VKP_EXPORT(R, N, P, A) VKP_EXPORT_VARIANTS(R, N, P, A, , )
#include "floor/export_list.inc"
#undef VKP_EXPORT
#undef VKP_EXPORT_VARIANTS

}  // extern "C"
