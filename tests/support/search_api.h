// The exported search functions by code-unit type, so that one typed test
// serves 8u and 16u.
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
};

template <>
struct SearchApi<vkp16u> {
    static constexpr auto Find = vkpsFind_16u;
    static constexpr auto FindRev = vkpsFindRev_16u;
    static constexpr auto FindC = vkpsFindC_16u;
    static constexpr auto FindRevC = vkpsFindRevC_16u;
    static constexpr auto FindZ = vkpsFind_Z_16u;
    static constexpr auto FindCZ = vkpsFindC_Z_16u;
};

}  // namespace vkptest
