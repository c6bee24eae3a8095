// Argument checks of the search functions: the first failed check decides,
// null pointers before lengths, and nothing is written on an error.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "vkpch.h"

namespace {

constexpr int kUntouched = 12345;

struct ArgCase {
    std::string name;
    std::function<vkpStatus(int*)> call;  // receives the index pointer to use
    vkpStatus expected;
    int expectedIndex;  // kUntouched where nothing may be written
};

const vkp8u s8[] = {'a', 'b', 'c', 0};
const vkp16u s16[] = {'a', 'b', 'c', 0};
int* const kNullIndex = nullptr;

std::vector<ArgCase> Cases() {
    return {
        {"Find8 null src", [](int* p) { return vkpsFind_8u(nullptr, 3, s8, 1, p); }, VKP_ERR_NULL, kUntouched},
        {"Find8 null needle", [](int* p) { return vkpsFind_8u(s8, 3, nullptr, 1, p); }, VKP_ERR_NULL, kUntouched},
        {"Find8 null before length", [](int*) { return vkpsFind_8u(s8, -1, s8, 1, kNullIndex); }, VKP_ERR_NULL, kUntouched},
        {"Find8 negative len", [](int* p) { return vkpsFind_8u(s8, -1, s8, 1, p); }, VKP_ERR_LENGTH, kUntouched},
        {"Find8 negative lenFind", [](int* p) { return vkpsFind_8u(s8, 3, s8, -1, p); }, VKP_ERR_LENGTH, kUntouched},
        {"Find8 empty needle", [](int* p) { return vkpsFind_8u(s8, 3, s8, 0, p); }, VKP_OK, -1},
        {"Find8 both empty", [](int* p) { return vkpsFind_8u(s8, 0, s8, 0, p); }, VKP_OK, -1},
        {"Find8 needle longer", [](int* p) { return vkpsFind_8u(s8, 2, s8, 3, p); }, VKP_OK, -1},
        {"Find8 equal strings", [](int* p) { return vkpsFind_8u(s8, 3, s8, 3, p); }, VKP_OK, 0},
        {"FindRev16 null src", [](int* p) { return vkpsFindRev_16u(nullptr, 3, s16, 1, p); }, VKP_ERR_NULL, kUntouched},
        {"FindRev16 negative len", [](int* p) { return vkpsFindRev_16u(s16, -5, s16, 1, p); }, VKP_ERR_LENGTH, kUntouched},
        {"FindRev16 empty needle", [](int* p) { return vkpsFindRev_16u(s16, 0, s16, 0, p); }, VKP_OK, -1},
        {"FindRev8 equal strings", [](int* p) { return vkpsFindRev_8u(s8, 3, s8, 3, p); }, VKP_OK, 0},
        {"FindRev8 differs", [](int* p) { return vkpsFindRev_8u(s8, 3, s8 + 1, 3, p); }, VKP_OK, -1},
        {"FindC8 null src", [](int* p) { return vkpsFindC_8u(nullptr, 3, 'a', p); }, VKP_ERR_NULL, kUntouched},
        {"FindC16 null index", [](int*) { return vkpsFindC_16u(s16, -1, 'a', kNullIndex); }, VKP_ERR_NULL, kUntouched},
        {"FindRevC8 negative len", [](int* p) { return vkpsFindRevC_8u(s8, -1, 'a', p); }, VKP_ERR_LENGTH, kUntouched},
        {"FindRevC16 empty", [](int* p) { return vkpsFindRevC_16u(s16, 0, 'a', p); }, VKP_OK, -1},
        {"Find_Z8 null src", [](int* p) { return vkpsFind_Z_8u(nullptr, s8, p); }, VKP_ERR_NULL, kUntouched},
        {"Find_Z16 null needle", [](int* p) { return vkpsFind_Z_16u(s16, nullptr, p); }, VKP_ERR_NULL, kUntouched},
        {"Find_Z8 null index", [](int*) { return vkpsFind_Z_8u(s8, s8, kNullIndex); }, VKP_ERR_NULL, kUntouched},
        {"Find_Z8 empty needle", [](int* p) { return vkpsFind_Z_8u(s8, s8 + 3, p); }, VKP_OK, -1},
        {"Find_Z16 found", [](int* p) { return vkpsFind_Z_16u(s16, s16 + 1, p); }, VKP_OK, 1},
        {"FindC_Z8 null src", [](int* p) { return vkpsFindC_Z_8u(nullptr, 0, p); }, VKP_ERR_NULL, kUntouched},
        {"FindC_Z8 zero gives length", [](int* p) { return vkpsFindC_Z_8u(s8, 0, p); }, VKP_OK, 3},
        {"FindC_Z16 zero gives length", [](int* p) { return vkpsFindC_Z_16u(s16, 0, p); }, VKP_OK, 3},
        {"FindC_Z8 zero, null index", [](int*) { return vkpsFindC_Z_8u(s8, 0, kNullIndex); }, VKP_ERR_NULL, kUntouched},
        {"FindC_Z16 zero, null index", [](int*) { return vkpsFindC_Z_16u(s16, 0, kNullIndex); }, VKP_ERR_NULL, kUntouched},
        {"FindC_Z8 null index", [](int*) { return vkpsFindC_Z_8u(s8, 'b', kNullIndex); }, VKP_ERR_NULL, kUntouched},
        {"FindC_Z8 absent", [](int* p) { return vkpsFindC_Z_8u(s8, 'z', p); }, VKP_OK, -1},
        {"FindC_Z16 found", [](int* p) { return vkpsFindC_Z_16u(s16, 'c', p); }, VKP_OK, 2},
    };
}

TEST(SearchArguments, CheckOrderAndResults) {
    for (const ArgCase& c : Cases()) {
        int index = kUntouched;
        EXPECT_EQ(c.call(&index), c.expected) << c.name;
        EXPECT_EQ(index, c.expectedIndex) << c.name;
    }
}

}  // namespace
