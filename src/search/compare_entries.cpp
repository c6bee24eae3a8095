// The seven comparison and equality exports.
#include "frame/entries.h"
#include "kernels/compare.h"

namespace vkp::entry {
namespace {

using kernels::Vec16;

// Checks the arguments, then stores what `result` computes.
template <class T, class Fn>
Status CompareWith(const T* a, const T* b, int len, int* pResult, Fn result) {
    if (!a || !b || !pResult) return kErrNull;
    if (len < 0) return kErrLength;
    *pResult = result();
    return kOk;
}

// The difference of the mapped units at the first position where they differ.
template <class T, class Map>
int Difference(const T* a, const T* b, int len, int at, const Map& map) {
    return at == len ? 0 : int(map.Unit(LoadUnit(a + at))) - int(map.Unit(LoadUnit(b + at)));
}

template <class T>
struct Unmapped {
    VKP_INLINE T Unit(T c) const { return c; }
};

template <class T>
Status Compare(const T* a, const T* b, int len, int* pResult) {
    return CompareWith(a, b, len, pResult, [&] {
        return Difference(a, b, len, kernels::FirstMismatch<T, Vec16>(a, b, len, kernels::SameUnits<T, Vec16>{}), Unmapped<T>{});
    });
}

template <class T>
Status CompareLatin(const T* a, const T* b, int len, int* pResult) {
    return CompareWith(a, b, len, pResult, [&] {
        const int at = kernels::FirstMismatch<T, Vec16>(a, b, len, kernels::SameIgnoringLatinCase<T, Vec16>{});
        return Difference(a, b, len, at, kernels::LatinLower<T, Vec16>());
    });
}

template <class T>
Status Equal(const T* a, const T* b, int len, int* pResult) {
    return CompareWith(a, b, len, pResult, [&] { return int(kernels::FirstMismatch<T, Vec16>(a, b, len, kernels::SameUnits<T, Vec16>{}) == len); });
}

}  // namespace

Status vkpsCompare_8u(const u8* a, const u8* b, int len, int* pResult) { return Compare(a, b, len, pResult); }
Status vkpsCompare_16u(const u16* a, const u16* b, int len, int* pResult) { return Compare(a, b, len, pResult); }
Status vkpsCompareIgnoreCaseLatin_8u(const u8* a, const u8* b, int len, int* pResult) { return CompareLatin(a, b, len, pResult); }
Status vkpsCompareIgnoreCaseLatin_16u(const u16* a, const u16* b, int len, int* pResult) { return CompareLatin(a, b, len, pResult); }
Status vkpsCompareIgnoreCase_16u(const u16* a, const u16* b, int len, int* pResult) {
    return CompareWith(a, b, len, pResult, [&] { return Difference(a, b, len, kernels::FirstMismatchFolded<Vec16>(a, b, len), kernels::CaseTableMap<true>{}); });
}
Status vkpsEqual_8u(const u8* a, const u8* b, int len, int* pResult) { return Equal(a, b, len, pResult); }
Status vkpsEqual_16u(const u16* a, const u16* b, int len, int* pResult) { return Equal(a, b, len, pResult); }

}  // namespace vkp::entry
