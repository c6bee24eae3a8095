// The exported search, set search, comparison, case and hash functions by
// code-unit type, so that one typed test serves 8u and 16u.
#pragma once

#include "vkpch.h"

namespace vkptest {

template <class T>
struct SearchApi;

#define VKPTEST_SEARCH_API(T, S)                                                   \
    template <>                                                                    \
    struct SearchApi<T> {                                                          \
        static constexpr auto Find = vkpsFind_##S;                                 \
        static constexpr auto FindRev = vkpsFindRev_##S;                           \
        static constexpr auto FindC = vkpsFindC_##S;                               \
        static constexpr auto FindRevC = vkpsFindRevC_##S;                         \
        static constexpr auto FindZ = vkpsFind_Z_##S;                              \
        static constexpr auto FindCZ = vkpsFindC_Z_##S;                            \
        static constexpr auto FindCAny = vkpsFindCAny_##S;                         \
        static constexpr auto FindRevCAny = vkpsFindRevCAny_##S;                   \
        static constexpr auto Compare = vkpsCompare_##S;                           \
        static constexpr auto CompareIgnoreCaseLatin = vkpsCompareIgnoreCaseLatin_##S; \
        static constexpr auto Equal = vkpsEqual_##S;                               \
        static constexpr auto LowercaseLatin = vkpsLowercaseLatin_##S;             \
        static constexpr auto LowercaseLatinI = vkpsLowercaseLatin_##S##_I;        \
        static constexpr auto UppercaseLatin = vkpsUppercaseLatin_##S;             \
        static constexpr auto UppercaseLatinI = vkpsUppercaseLatin_##S##_I;        \
        static constexpr auto Hash = vkpsHash_##S##32u;                            \
        static constexpr auto HashSJ2 = vkpsHashSJ2_##S##32u;                      \
        static constexpr auto HashMSCS = vkpsHashMSCS_##S##32u;                    \
    };
VKPTEST_SEARCH_API(vkp8u, 8u)
VKPTEST_SEARCH_API(vkp16u, 16u)
#undef VKPTEST_SEARCH_API

}  // namespace vkptest
