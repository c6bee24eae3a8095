// The 32-byte (AVX2) kernels. This folder alone is compiled with -mavx2; its
// functions run only when attach found AVX2 in the feature mask.
#include "kernels/avx2/vec256.h"

#define VKP_KERNEL_NS w32
#define VKP_KERNEL_VECTOR Vec256
#include "kernels/width_instances.inc"
