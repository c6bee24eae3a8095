/* vkpcore: the core library of the vkp family.
 *
 * It reports the processor features the family's libraries dispatch on and
 * provides their aligned allocator.
 */
#ifndef VKPCORE_H
#define VKPCORE_H

#ifdef __cplusplus
extern "C" {
#endif

#if defined(VKPCORE_BUILDING)
#  if defined(_WIN32)
#    define VKPCORE_API
#  else
#    define VKPCORE_API __attribute__((visibility("default")))
#  endif
#elif defined(_WIN32) && !defined(VKPCORE_STATIC)
#  define VKPCORE_API __declspec(dllimport)
#else
#  define VKPCORE_API
#endif

/* Bits of the processor feature mask. A bit is set when the processor has the
 * feature and, for the AVX family, the operating system saves its registers.
 * vkpch chooses its processor variant from SSSE3 and MOVBE, and its 32-byte
 * kernels (instead of the 16-byte ones) when AVX2 is set. */
#define VKP_CPU_SSE       0x1ull
#define VKP_CPU_SSE2      0x2ull
#define VKP_CPU_SSE3      0x4ull
#define VKP_CPU_POPCNT    0x8ull
#define VKP_CPU_SSSE3     0x10ull
#define VKP_CPU_MOVBE     0x20ull
#define VKP_CPU_SSE41     0x40ull
#define VKP_CPU_SSE42     0x80ull
#define VKP_CPU_AVX       0x100ull
#define VKP_CPU_AVX2      0x200ull
#define VKP_CPU_BMI1      0x400ull
#define VKP_CPU_BMI2      0x800ull
#define VKP_CPU_AVX512F   0x1000ull
#define VKP_CPU_AVX512BW  0x2000ull

/* The processor feature mask, read with CPUID. When the environment variable
 * VKPCORE_CPU_FEATURES holds a number (decimal, or hexadecimal with 0x), that
 * number is returned instead: a way to run the family's libraries on a
 * chosen processor variant for testing. */
VKPCORE_API unsigned long long vkpGetEnabledCpuFeatures(void);

/* Allocates len bytes aligned to 64 bytes; null when len <= 0 or out of
 * memory. Release with vkpFree. */
VKPCORE_API void* vkpMalloc(int len);

/* Releases a block from vkpMalloc; a null pointer is ignored. */
VKPCORE_API void vkpFree(void* ptr);

#ifdef __cplusplus
}
#endif

#endif /* VKPCORE_H */
