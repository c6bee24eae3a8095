// Block copy, overlap-safe move and zero fill: the library's own routines for
// bulk work (no calls into the C runtime). The byte kernels
// (kernels/copy_blocks.h) run at the width chosen at attach, with stores
// aligned to the vector size; large copies and fills switch to string
// instructions or non-temporal stores. The typed wrappers below take counts
// in code units; other families (concatenation, insert/remove, trimming,
// regexp replace, pattern sets) call these.
#pragma once

#include "floor/base.h"
#include "kernels/active.h"

namespace vkp::kernels {

// Forward copy of n bytes; the regions must not overlap.
VKP_INLINE void CopyBytes(void* dst, const void* src, size_t n) { active::CopyBlock(dst, src, n); }
// Copy of n bytes that is correct for any overlap of the regions.
VKP_INLINE void MoveBytes(void* dst, const void* src, size_t n) { active::MoveBlock(dst, src, n); }
// Fills n bytes with zero.
VKP_INLINE void ZeroBytes(void* dst, size_t n) { active::ZeroBlock(dst, n); }

// Size in bytes of the largest data cache, 0 when unknown, from the
// processor's identification leaves (read once, on first use).
size_t LargestCacheSize();
// True when the processor reports fast string moves and stores (enhanced
// rep movsb/stosb); from the same first read.
bool HasFastStrings();

// Typed wrappers: a null pointer gives -8, a count below 1 gives -6 and
// copies nothing; otherwise len units are copied (moved, zeroed) and 0 comes
// back. Callers that have checked their arguments may ignore the result.
namespace detail {

template <class W>
VKP_INLINE void CopyEnds(char* d, const char* s, size_t n) {
    W a, b;
    __builtin_memcpy(&a, s, sizeof(W));
    __builtin_memcpy(&b, s + n - sizeof(W), sizeof(W));
    __builtin_memcpy(d, &a, sizeof(W));
    __builtin_memcpy(d + n - sizeof(W), &b, sizeof(W));
}

// 1 to 16 bytes with two overlapping moves, inline: the short pieces of
// splits and joins should not pay for a call.
VKP_INLINE void CopyUpTo16(void* dst, const void* src, size_t n) {
    char* d = static_cast<char*>(dst);
    const char* s = static_cast<const char*>(src);
    if (n >= 8) CopyEnds<uint64_t>(d, s, n);
    else if (n >= 4) CopyEnds<uint32_t>(d, s, n);
    else if (n >= 2) CopyEnds<uint16_t>(d, s, n);
    else *d = *s;
}

}  // namespace detail

template <class T>
VKP_INLINE Status CopyFwd(const T* src, T* dst, int len) {
    if (!src || !dst) return kErrNull;
    if (len < 1) return kErrSize;
    const size_t bytes = size_t(len) * sizeof(T);
    if (bytes <= 16) detail::CopyUpTo16(dst, src, bytes);
    else CopyBytes(dst, src, bytes);
    return kOk;
}

template <class T>
VKP_INLINE Status Move(const T* src, T* dst, int len) {
    if (!src || !dst) return kErrNull;
    if (len < 1) return kErrSize;
    MoveBytes(dst, src, size_t(len) * sizeof(T));
    return kOk;
}

VKP_INLINE Status Zero_8u(u8* dst, int len) {
    if (!dst) return kErrNull;
    if (len < 1) return kErrSize;
    ZeroBytes(dst, size_t(len));
    return kOk;
}

}  // namespace vkp::kernels
