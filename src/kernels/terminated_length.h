// Length of a zero-terminated string in code units. Reads unit by unit: no
// load may reach past the terminator, not even within an aligned block.
#pragma once

#include "floor/base.h"

namespace vkp::kernels {

// The count of units before the first zero unit, or -1 when it exceeds the
// largest int length.
template <class T>
int TerminatedLength(const T* s) {
    for (size_t n = 0; n <= size_t(INT32_MAX); n += 8) {
        // Eight units per step, each tested before the next is read.
        for (size_t k = 0; k < 8; ++k)
            if (LoadUnit(s + n + k) == 0) return n + k <= size_t(INT32_MAX) ? int(n + k) : -1;
    }
    return -1;
}

}  // namespace vkp::kernels
