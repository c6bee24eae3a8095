// The exported search, set search, comparison, case and hash functions by
// code-unit type, so that one typed test serves 8u and 16u.
#pragma once

#include "vkpch.h"

namespace vkptest {

template <class T>
struct SearchApi;

template <>
struct SearchApi<vkp8u> {
    static constexpr auto Find = vkpsFind_8u;
    static constexpr auto FindRev = vkpsFindRev_8u;
    static constexpr auto FindC = vkpsFindC_8u;
    static constexpr auto FindRevC = vkpsFindRevC_8u;
    static constexpr auto FindZ = vkpsFind_Z_8u;
    static constexpr auto FindCZ = vkpsFindC_Z_8u;
    static constexpr auto FindCAny = vkpsFindCAny_8u;
    static constexpr auto FindRevCAny = vkpsFindRevCAny_8u;
    static constexpr auto Compare = vkpsCompare_8u;
    static constexpr auto CompareIgnoreCaseLatin = vkpsCompareIgnoreCaseLatin_8u;
    static constexpr auto Equal = vkpsEqual_8u;
    static constexpr auto LowercaseLatin = vkpsLowercaseLatin_8u;
    static constexpr auto LowercaseLatinI = vkpsLowercaseLatin_8u_I;
    static constexpr auto UppercaseLatin = vkpsUppercaseLatin_8u;
    static constexpr auto UppercaseLatinI = vkpsUppercaseLatin_8u_I;
    static constexpr auto Hash = vkpsHash_8u32u;
    static constexpr auto HashSJ2 = vkpsHashSJ2_8u32u;
    static constexpr auto HashMSCS = vkpsHashMSCS_8u32u;
};

template <>
struct SearchApi<vkp16u> {
    static constexpr auto Find = vkpsFind_16u;
    static constexpr auto FindRev = vkpsFindRev_16u;
    static constexpr auto FindC = vkpsFindC_16u;
    static constexpr auto FindRevC = vkpsFindRevC_16u;
    static constexpr auto FindZ = vkpsFind_Z_16u;
    static constexpr auto FindCZ = vkpsFindC_Z_16u;
    static constexpr auto FindCAny = vkpsFindCAny_16u;
    static constexpr auto FindRevCAny = vkpsFindRevCAny_16u;
    static constexpr auto Compare = vkpsCompare_16u;
    static constexpr auto CompareIgnoreCaseLatin = vkpsCompareIgnoreCaseLatin_16u;
    static constexpr auto Equal = vkpsEqual_16u;
    static constexpr auto LowercaseLatin = vkpsLowercaseLatin_16u;
    static constexpr auto LowercaseLatinI = vkpsLowercaseLatin_16u_I;
    static constexpr auto UppercaseLatin = vkpsUppercaseLatin_16u;
    static constexpr auto UppercaseLatinI = vkpsUppercaseLatin_16u_I;
    static constexpr auto Hash = vkpsHash_16u32u;
    static constexpr auto HashSJ2 = vkpsHashSJ2_16u32u;
    static constexpr auto HashMSCS = vkpsHashMSCS_16u32u;
};

}  // namespace vkptest
