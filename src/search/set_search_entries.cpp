// The four character-set search exports.
#include "floor/entries.h"
#include "kernels/active.h"
#include "kernels/set_search.h"

namespace vkp::entry {
namespace {

// -1 is written after the checks and before the strings are read.
template <bool kReverse, class T>
Status FindAny(const T* s, int len, const T* set, int lenSet, int* pIndex) {
    if (!s || !set || !pIndex) return kErrNull;
    if (len < 0 || lenSet < 0) return kErrLength;
    *pIndex = -1;
    if (len <= 0 || lenSet <= 0) return kOk;
    if constexpr (sizeof(T) == 1) {
        *pIndex = kReverse ? kernels::active::FindAnyByteRev(s, len, set, lenSet)
                           : kernels::active::FindAnyByteFwd(s, len, set, lenSet);
    } else {
        *pIndex = kernels::FindAnyUnit<kReverse>(s, len, set, lenSet);
    }
    return kOk;
}

}  // namespace

Status vkpsFindCAny_8u(const u8* s, int len, const u8* set, int lenSet, int* pIndex) { return FindAny<false>(s, len, set, lenSet, pIndex); }
Status vkpsFindCAny_16u(const u16* s, int len, const u16* set, int lenSet, int* pIndex) { return FindAny<false>(s, len, set, lenSet, pIndex); }
Status vkpsFindRevCAny_8u(const u8* s, int len, const u8* set, int lenSet, int* pIndex) { return FindAny<true>(s, len, set, lenSet, pIndex); }
Status vkpsFindRevCAny_16u(const u16* s, int len, const u16* set, int lenSet, int* pIndex) { return FindAny<true>(s, len, set, lenSet, pIndex); }

}  // namespace vkp::entry
