// Concatenation, joining and splitting of counted strings (8u and 16u).
#pragma once

#include "floor/base.h"
#include "kernels/copy.h"
#include "search/find.h"

namespace vkp::edit {

template <class T>
Status Concat(const T* src1, int len1, const T* src2, int len2, T* dst) {
    if (!src1 || !src2 || !dst) return kErrNull;
    if (len1 < 0 || len2 < 0) return kErrLength;
    kernels::CopyFwd(src1, dst, len1);
    kernels::CopyFwd(src2, dst + len1, len2);
    return kOk;
}

// Joins a list of strings, with one delimiter unit between neighbours when
// kDelimited. Each element is checked when it is reached: a failing element
// leaves the ones before it in dst.
template <class T, bool kDelimited>
Status Join(const T* const src[], const int srcLen[], int numSrc, T delim, T* dst) {
    if (!src || !srcLen || !dst) return kErrNull;
    if (numSrc < 1) return kErrSize;
    for (int i = 0; i < numSrc; ++i) {
        if (!src[i]) return kErrNull;
        if (srcLen[i] < 0) return kErrLength;
        if (kDelimited && i > 0) __builtin_memcpy(dst++, &delim, sizeof(T));  // dst may be odd (16u)
        kernels::CopyFwd(src[i], dst, srcLen[i]);
        dst += srcLen[i];
    }
    return kOk;
}

// Cuts src at each delimiter into the caller's slots. A piece longer than
// its slot is cut to the slot (warning 27) but the scan still advances past
// the whole piece; slots running out with text left gives warning 26. A
// delimiter at the very end yields no empty last piece.
template <class T>
Status Split(const T* src, int len, T delim, T* dst[], int dstLen[], int* pNumDst) {
    if (!src || !dst || !dstLen || !pNumDst) return kErrNull;
    if (len < 0) return kErrLength;
    if (*pNumDst < 1) return kErrSize;
    int remaining = len, pos = 0, pieces = 0;
    Status warning = kOk;
    for (int i = 0; i < *pNumDst; ++i) {
        if (remaining < 1) break;
        if (!dst[i]) return kErrNull;
        if (dstLen[i] < 0) return kErrLength;
        int p;
        search::FindC(src + pos, remaining, delim, &p);
        if (p < 0) p = remaining;
        if (p <= dstLen[i]) dstLen[i] = p;
        else warning = VKP_WARN_PIECE_CUT;
        kernels::CopyFwd(src + pos, dst[i], dstLen[i]);
        ++pieces;
        pos += p + 1;  // the full piece, also when it was cut
        remaining -= p + 1;
    }
    *pNumDst = pieces;
    return remaining >= 1 ? Status(VKP_WARN_SLOTS_FULL) : warning;
}

}  // namespace vkp::edit
