// Lenient UTF-8 <-> UTF-16 conversion (either byte order on the 16-bit side).
#pragma once

#include "floor/base.h"

namespace vkp::edit {

// *pSrcLen and *pDstLen: the source length and destination capacity in,
// the units consumed and written out; both are taken as unsigned counts.
Status Utf8To16(const u8* src, int* pSrcLen, u16* dst, int* pDstLen, int bigEndian);
Status Utf16To8(const u16* src, int* pSrcLen, u8* dst, int* pDstLen, int bigEndian);

}  // namespace vkp::edit
