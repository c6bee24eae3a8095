// Trimming: strip units of a set (or one given unit) from the ends of a
// counted string (8u and 16u).
#pragma once

#include "floor/base.h"
#include "kernels/copy.h"
#include "kernels/trim_scan.h"

namespace vkp::edit {

// The kept run goes to the start of dst; dst may be src (the run then moves
// down). A fully trimmed or empty string writes nothing to dst.
template <class T, bool kStart, bool kEnd>
Status TrimSet(const T* src, int srcLen, const T* set, int setLen, T* dst, int* pDstLen) {
    if (!src || !dst || !set || !pDstLen) return kErrNull;
    if (srcLen < 0 || setLen < 0) return kErrLength;
    int b = 0, e = srcLen;
    if (setLen > 0 && srcLen > 0) {
        if (kStart) b = kernels::SkipSetFwd(src, srcLen, set, setLen);
        if (kEnd && b < srcLen) e = b + kernels::SkipSetRev(src + b, srcLen - b, set, setLen);
    }
    const int kept = b < srcLen ? e - b : 0;
    if (kept > 0) {
        if (dst == src) kernels::Move(src + b, dst, kept);
        else kernels::CopyFwd(src + b, dst, kept);
    }
    *pDstLen = kept;
    return kOk;
}

template <class T>
Status TrimUnitInPlace(T* srcDst, int* pLen, T unit) {
    if (!srcDst || !pLen) return kErrNull;
    if (*pLen < 0) return kErrLength;
    return TrimSet<T, true, true>(srcDst, *pLen, &unit, 1, srcDst, pLen);
}

// kHandOver: the same address for src and dst runs the in-place form (the
// 8u member does this, the 16u member does not; the result is the same).
template <class T, bool kHandOver>
Status TrimUnit(const T* src, int srcLen, T unit, T* dst, int* pDstLen) {
    if (!src || !dst || !pDstLen) return kErrNull;
    if (srcLen < 0) return kErrLength;
    if (kHandOver && src == dst) {
        *pDstLen = srcLen;
        return TrimUnitInPlace(dst, pDstLen, unit);
    }
    return TrimSet<T, true, true>(src, srcLen, &unit, 1, dst, pDstLen);
}

}  // namespace vkp::edit
