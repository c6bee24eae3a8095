// Substring and character search with the exported contracts (argument
// checks, then the kernel). Other families call these directly.
#pragma once

#include "floor/base.h"
#include "kernels/active.h"
#include "kernels/terminated_length.h"

namespace vkp::search {

template <class T>
Status Find(const T* src, int len, const T* find, int lenFind, int* pIndex) {
    if (!src || !find || !pIndex) return kErrNull;
    if (len < 0 || lenFind < 0) return kErrLength;
    if (lenFind == 0 || lenFind > len) {
        *pIndex = -1;
        return kOk;
    }
    return kernels::active::FindSubFwdInto(src, len, find, lenFind, pIndex);
}

template <class T>
Status FindRev(const T* src, int len, const T* find, int lenFind, int* pIndex) {
    if (!src || !find || !pIndex) return kErrNull;
    if (len < 0 || lenFind < 0) return kErrLength;
    if (lenFind == 0 || lenFind > len) {
        *pIndex = -1;
        return kOk;
    }
    return kernels::active::FindSubRevInto(src, len, find, lenFind, pIndex);
}

template <class T>
Status FindC(const T* src, int len, T val, int* pIndex) {
    if (!src || !pIndex) return kErrNull;
    if (len < 0) return kErrLength;
    return kernels::active::FindUnitFwdInto(src, len, val, pIndex);
}

template <class T>
Status FindRevC(const T* src, int len, T val, int* pIndex) {
    if (!src || !pIndex) return kErrNull;
    if (len < 0) return kErrLength;
    return kernels::active::FindUnitRevInto(src, len, val, pIndex);
}

// Both lengths are measured first; then the call proceeds as Find, which
// tests pIndex.
template <class T>
Status FindZ(const T* srcZ, const T* findZ, int* pIndex) {
    if (!srcZ || !findZ) return kErrNull;
    const int len = kernels::TerminatedLength(srcZ);
    const int lenFind = kernels::TerminatedLength(findZ);
    if (len < 0 || lenFind < 0) return kErrLength;
    return Find(srcZ, len, findZ, lenFind, pIndex);
}

// A zero valFind reports the terminator's position; otherwise the call
// proceeds as FindC over the measured length (the terminator not searched).
template <class T>
Status FindCZ(const T* srcZ, T val, int* pIndex) {
    if (!srcZ) return kErrNull;
    const int len = kernels::TerminatedLength(srcZ);
    if (len < 0) return kErrLength;
    if (val == 0) {
        if (!pIndex) return kErrNull;
        *pIndex = len;
        return kOk;
    }
    return FindC(srcZ, len, val, pIndex);
}

}  // namespace vkp::search
