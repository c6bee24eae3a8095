// The seven comparison and equality exports: the arguments checked, then one
// jump to the kernel of the loaded width (the folded 16u compare excepted).
#include "floor/entries.h"
#include "kernels/active.h"
#include "kernels/compare.h"

namespace vkp::entry {
namespace {

template <class T>
Status Check(const T* a, const T* b, int len, int* pResult) {
    if (!a || !b || !pResult) return kErrNull;
    if (len < 0) return kErrLength;
    return kOk;
}

}  // namespace

#define VKP_COMPARE(Name, T, Kernel)                                              \
    Status Name(const T* a, const T* b, int len, int* pResult) {                  \
        if (const Status st = Check(a, b, len, pResult); st != kOk) return st;    \
        return kernels::active::Kernel(a, b, len, pResult);                       \
    }
VKP_COMPARE(vkpsCompare_8u, u8, CompareInto)
VKP_COMPARE(vkpsCompare_16u, u16, CompareInto)
VKP_COMPARE(vkpsCompareIgnoreCaseLatin_8u, u8, CompareLatinInto)
VKP_COMPARE(vkpsCompareIgnoreCaseLatin_16u, u16, CompareLatinInto)
VKP_COMPARE(vkpsEqual_8u, u8, EqualInto)
VKP_COMPARE(vkpsEqual_16u, u16, EqualInto)
#undef VKP_COMPARE

Status vkpsCompareIgnoreCase_16u(const u16* a, const u16* b, int len, int* pResult) {
    if (const Status st = Check(a, b, len, pResult); st != kOk) return st;
    const int at = kernels::active::FirstMismatchFolded(a, b, len);
    *pResult = at == len ? 0 : int(kernels::CaseMapped<true>(LoadUnit(a + at))) - int(kernels::CaseMapped<true>(LoadUnit(b + at)));
    return kOk;
}

}  // namespace vkp::entry
