// Internal basics shared by every family: code-unit types, status codes and
// small helpers. Library code uses no exceptions, RTTI, heap or static
// constructors.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "vkpch.h"

namespace vkp {

using u8 = vkp8u;
using u16 = vkp16u;
using u32 = vkp32u;
using Status = vkpStatus;

constexpr Status kOk = VKP_OK;
constexpr Status kErrNull = VKP_ERR_NULL;
constexpr Status kErrSize = VKP_ERR_SIZE;
constexpr Status kErrLength = VKP_ERR_LENGTH;

#define VKP_INLINE inline __attribute__((always_inline))
#define VKP_LIKELY(x) __builtin_expect(!!(x), 1)
#define VKP_UNLIKELY(x) __builtin_expect(!!(x), 0)

// Reads one code unit at any address; a 16u string may start at an odd one.
template <class T>
VKP_INLINE T LoadUnit(const T* p) {
    T v;
    __builtin_memcpy(&v, p, sizeof(T));
    return v;
}

// An ASCII letter, either case, as a unit of type T (a wider unit with
// other high bits is none).
template <class T>
VKP_INLINE bool IsAsciiLetter(T c) {
    return static_cast<T>((c | 0x20) - 'a') < 26;
}

}  // namespace vkp
