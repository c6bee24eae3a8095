// Insert and remove runs of code units, copying and in place (8u and 16u).
// Sums of an index and a length are formed in 64 bits: a range that would
// wrap a 32-bit sum is refused with -119 instead of writing out of bounds.
#pragma once

#include "floor/base.h"
#include "kernels/copy.h"

namespace vkp::edit {

VKP_INLINE bool OutOfRange(int start, int len, int total) { return int64_t(start) + len > total; }

// dst receives src with insert[0, insertLen) placed at startIndex. The tail is
// moved before the insert is copied, so dst may equal src. insertLen 0
// writes nothing at all, not even the copy of src.
template <class T>
Status Insert(const T* src, int srcLen, const T* insert, int insertLen, T* dst, int startIndex) {
    if (!src || !insert || !dst) return kErrNull;
    if (srcLen < 0 || insertLen < 0 || startIndex < 0 || startIndex > srcLen || OutOfRange(srcLen, insertLen, INT32_MAX))
        return kErrLength;
    if (insertLen == 0) return kOk;
    if (dst != src) kernels::CopyFwd(src, dst, startIndex);
    kernels::Move(src + startIndex, dst + startIndex + insertLen, srcLen - startIndex);
    kernels::CopyFwd(insert, dst + startIndex, insertLen);
    return kOk;
}

template <class T>
Status InsertInPlace(const T* insert, int insertLen, T* srcDst, int* pSrcDstLen, int startIndex) {
    if (!insert || !srcDst || !pSrcDstLen) return kErrNull;
    const int len = *pSrcDstLen;
    if (insertLen < 0 || len < 0 || startIndex < 0 || startIndex > len || OutOfRange(len, insertLen, INT32_MAX))
        return kErrLength;
    if (insertLen == 0) return kOk;
    kernels::Move(srcDst + startIndex, srcDst + startIndex + insertLen, len - startIndex);
    kernels::CopyFwd(insert, srcDst + startIndex, insertLen);
    *pSrcDstLen = len + insertLen;
    return kOk;
}

// dst receives src without [startIndex, startIndex + len); dst must not
// overlap src. len 0 copies the whole string.
template <class T>
Status Remove(const T* src, int srcLen, T* dst, int startIndex, int len) {
    if (!src || !dst) return kErrNull;
    if (len < 0 || startIndex < 0 || OutOfRange(startIndex, len, srcLen)) return kErrLength;
    kernels::CopyFwd(src, dst, startIndex);
    kernels::CopyFwd(src + startIndex + len, dst + startIndex, srcLen - startIndex - len);
    return kOk;
}

// In place; units behind the new length are left as they were. A negative
// len is refused before the length is read.
template <class T>
Status RemoveInPlace(T* srcDst, int* pSrcDstLen, int startIndex, int len) {
    if (!srcDst || !pSrcDstLen) return kErrNull;
    if (len < 0) return kErrLength;
    const int total = *pSrcDstLen;
    if (total < 0 || startIndex < 0 || OutOfRange(startIndex, len, total)) return kErrLength;
    kernels::Move(srcDst + startIndex + len, srcDst + startIndex, total - startIndex - len);
    *pSrcDstLen = total - len;
    return kOk;
}

}  // namespace vkp::edit
