// Replacement of one code unit by another (8u and 16u).
#pragma once

#include "floor/base.h"
#include "kernels/active.h"

namespace vkp::edit {

// dst[i] = newVal where src[i] == oldVal, else src[i]; dst may be src.
template <class T>
Status ReplaceC(const T* src, T* dst, int len, T oldVal, T newVal) {
    if (!src || !dst) return kErrNull;
    if (len < 0) return kErrLength;
    kernels::active::ReplaceUnits(src, dst, len, oldVal, newVal);
    return kOk;
}

}  // namespace vkp::edit
