// The 16-byte (SSE2) kernels: the baseline, and the table's initial content.
#include "kernels/simd_units.h"

#define VKP_KERNEL_NS w16
#define VKP_KERNEL_VECTOR Vec128
#include "kernels/width_instances.inc"
