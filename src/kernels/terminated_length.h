// Length of a zero-terminated string in code units. Reads unit by unit: no
// load may reach past the terminator, not even within an aligned block.
#pragma once

#include "frame/base.h"

namespace vkp::kernels {

// The count of units before the first zero unit, or -1 when it exceeds the
// largest int length.
template <class T>
int TerminatedLength(const T* s) {
    size_t n = 0;
    while (LoadUnit(s + n) != 0) {
        if (VKP_UNLIKELY(++n > size_t(INT32_MAX))) return -1;
    }
    return int(n);
}

}  // namespace vkp::kernels
