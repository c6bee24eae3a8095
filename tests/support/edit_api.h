// The exported editing functions by code-unit type, so that one typed test
// serves 8u and 16u.
#pragma once

#include "vkpch.h"

namespace vkptest {

template <class T>
struct EditApi;

#define VKPTEST_EDIT_API(T, S)                                   \
    template <>                                                  \
    struct EditApi<T> {                                          \
        static constexpr auto Concat = vkpsConcat_##S;           \
        static constexpr auto ConcatList = vkpsConcat_##S##_D2L; \
        static constexpr auto Join = vkpsConcatC_##S##_D2L;      \
        static constexpr auto Split = vkpsSplitC_##S##_D2L;      \
        static constexpr auto Insert = vkpsInsert_##S;           \
        static constexpr auto InsertI = vkpsInsert_##S##_I;      \
        static constexpr auto Remove = vkpsRemove_##S;           \
        static constexpr auto RemoveI = vkpsRemove_##S##_I;      \
        static constexpr auto ReplaceC = vkpsReplaceC_##S;       \
        static constexpr auto TrimC = vkpsTrimC_##S;             \
        static constexpr auto TrimCI = vkpsTrimC_##S##_I;        \
        static constexpr auto TrimAny = vkpsTrimCAny_##S;        \
        static constexpr auto TrimStart = vkpsTrimStartCAny_##S; \
        static constexpr auto TrimEnd = vkpsTrimEndCAny_##S;     \
    };
VKPTEST_EDIT_API(vkp8u, 8u)
VKPTEST_EDIT_API(vkp16u, 16u)
#undef VKPTEST_EDIT_API

}  // namespace vkptest
