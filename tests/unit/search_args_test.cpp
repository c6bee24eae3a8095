// Argument checks and documented results of the search, comparison, case
// and hash functions: the first failed check decides,
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
const vkp8u set8[] = {'c', 'x'};
const vkp16u set16[] = {'c', 'x'};
vkp8u buf8[4];
vkp16u buf16[4];

// One unit through a conversion; the result goes to *p.
template <class T, class F>
vkpStatus One(F f, T c, int* p) {
    T d = 0;
    const vkpStatus st = f(&c, &d, 1);
    *p = d;
    return st;
}

// A two-unit comparison.
template <class T, class F>
vkpStatus Two(F f, T a0, T a1, T b0, T b1, int* p) {
    const T a[] = {a0, a1}, b[] = {b0, b1};
    return f(a, b, 2, p);
}

vkp32u* H(int* p) { return reinterpret_cast<vkp32u*>(p); }

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

        {"FindCAny8 null src", [](int* p) { return vkpsFindCAny_8u(nullptr, 3, set8, 2, p); }, VKP_ERR_NULL, kUntouched},
        {"FindCAny8 null set", [](int* p) { return vkpsFindCAny_8u(s8, 3, nullptr, 2, p); }, VKP_ERR_NULL, kUntouched},
        {"FindCAny16 null before length", [](int*) { return vkpsFindCAny_16u(s16, -1, set16, 2, kNullIndex); }, VKP_ERR_NULL, kUntouched},
        {"FindRevCAny8 negative len", [](int* p) { return vkpsFindRevCAny_8u(s8, -1, set8, 2, p); }, VKP_ERR_LENGTH, kUntouched},
        {"FindRevCAny16 negative lenSet", [](int* p) { return vkpsFindRevCAny_16u(s16, 3, set16, -1, p); }, VKP_ERR_LENGTH, kUntouched},
        {"FindCAny8 empty set", [](int* p) { return vkpsFindCAny_8u(s8, 3, set8, 0, p); }, VKP_OK, -1},
        {"FindRevCAny16 empty source", [](int* p) { return vkpsFindRevCAny_16u(s16, 0, set16, 2, p); }, VKP_OK, -1},
        {"FindCAny16 found", [](int* p) { return vkpsFindCAny_16u(s16, 3, set16, 2, p); }, VKP_OK, 2},
        {"FindRevCAny8 first unit", [](int* p) { return vkpsFindRevCAny_8u(s8, 3, s8, 1, p); }, VKP_OK, 0},

        {"Compare8 null src1", [](int* p) { return vkpsCompare_8u(nullptr, s8, 3, p); }, VKP_ERR_NULL, kUntouched},
        {"Compare16 null src2", [](int* p) { return vkpsCompare_16u(s16, nullptr, 3, p); }, VKP_ERR_NULL, kUntouched},
        {"CompareIgnoreCase16 null before length", [](int*) { return vkpsCompareIgnoreCase_16u(s16, s16, -1, kNullIndex); }, VKP_ERR_NULL, kUntouched},
        {"CompareIgnoreCaseLatin8 negative len", [](int* p) { return vkpsCompareIgnoreCaseLatin_8u(s8, s8, -1, p); }, VKP_ERR_LENGTH, kUntouched},
        {"Equal16 negative len", [](int* p) { return vkpsEqual_16u(s16, s16, -1, p); }, VKP_ERR_LENGTH, kUntouched},
        {"Equal8 empty", [](int* p) { return vkpsEqual_8u(s8, s8 + 1, 0, p); }, VKP_OK, 1},
        {"Compare8 empty", [](int* p) { return vkpsCompare_8u(s8, s8 + 1, 0, p); }, VKP_OK, 0},
        {"CompareIgnoreCaseLatin16 empty", [](int* p) { return vkpsCompareIgnoreCaseLatin_16u(s16, s16 + 1, 0, p); }, VKP_OK, 0},
        {"Compare8 magnitude", [](int* p) { return Two<vkp8u>(vkpsCompare_8u, 7, 0x01, 7, 0xFF, p); }, VKP_OK, -254},
        {"Compare16 magnitude", [](int* p) { return Two<vkp16u>(vkpsCompare_16u, 0xFFFF, 0, 0x0001, 0, p); }, VKP_OK, 65534},
        {"CompareIgnoreCaseLatin8 a A", [](int* p) { return Two<vkp8u>(vkpsCompareIgnoreCaseLatin_8u, 'a', 'Z', 'A', 'z', p); }, VKP_OK, 0},
        {"CompareIgnoreCaseLatin8 C0 E0", [](int* p) { return Two<vkp8u>(vkpsCompareIgnoreCaseLatin_8u, 0xC0, 0, 0xE0, 0, p); }, VKP_OK, -32},
        {"CompareIgnoreCaseLatin8 91 65", [](int* p) { return Two<vkp8u>(vkpsCompareIgnoreCaseLatin_8u, 91, 0, 65, 0, p); }, VKP_OK, -6},
        {"CompareIgnoreCase16 0130 0069", [](int* p) { return Two<vkp16u>(vkpsCompareIgnoreCase_16u, 0x130, 1, 0x69, 1, p); }, VKP_OK, 0},
        {"CompareIgnoreCase16 0131 0049", [](int* p) { return Two<vkp16u>(vkpsCompareIgnoreCase_16u, 'x', 0x131, 'X', 0x49, p); }, VKP_OK, 200},
        {"Equal16 differs", [](int* p) { return Two<vkp16u>(vkpsEqual_16u, 1, 2, 1, 3, p); }, VKP_OK, 0},

        {"Lowercase16 null src", [](int*) { return vkpsLowercase_16u(nullptr, buf16, 1); }, VKP_ERR_NULL, kUntouched},
        {"Uppercase16 null dst", [](int*) { return vkpsUppercase_16u(s16, nullptr, -1); }, VKP_ERR_NULL, kUntouched},
        {"Lowercase16_I null", [](int*) { return vkpsLowercase_16u_I(nullptr, -1); }, VKP_ERR_NULL, kUntouched},
        {"Uppercase16_I negative len", [](int*) { return vkpsUppercase_16u_I(buf16, -1); }, VKP_ERR_LENGTH, kUntouched},
        {"LowercaseLatin8 null dst", [](int*) { return vkpsLowercaseLatin_8u(s8, nullptr, 1); }, VKP_ERR_NULL, kUntouched},
        {"LowercaseLatin8_I negative len", [](int*) { return vkpsLowercaseLatin_8u_I(buf8, -1); }, VKP_ERR_LENGTH, kUntouched},
        {"LowercaseLatin16 negative len", [](int*) { return vkpsLowercaseLatin_16u(s16, buf16, -1); }, VKP_ERR_LENGTH, kUntouched},
        {"LowercaseLatin16_I null", [](int*) { return vkpsLowercaseLatin_16u_I(nullptr, 1); }, VKP_ERR_NULL, kUntouched},
        {"UppercaseLatin8 null src", [](int*) { return vkpsUppercaseLatin_8u(nullptr, buf8, 1); }, VKP_ERR_NULL, kUntouched},
        {"UppercaseLatin8_I null", [](int*) { return vkpsUppercaseLatin_8u_I(nullptr, 1); }, VKP_ERR_NULL, kUntouched},
        {"UppercaseLatin16 null dst", [](int*) { return vkpsUppercaseLatin_16u(s16, nullptr, 1); }, VKP_ERR_NULL, kUntouched},
        {"UppercaseLatin16_I negative len", [](int*) { return vkpsUppercaseLatin_16u_I(buf16, -1); }, VKP_ERR_LENGTH, kUntouched},
        {"LowercaseLatin8 C0 unchanged", [](int* p) { return One<vkp8u>(vkpsLowercaseLatin_8u, 0xC0, p); }, VKP_OK, 0xC0},
        {"UppercaseLatin16 E0 unchanged", [](int* p) { return One<vkp16u>(vkpsUppercaseLatin_16u, 0xE0, p); }, VKP_OK, 0xE0},
        {"Lowercase16 00C0", [](int* p) { return One<vkp16u>(vkpsLowercase_16u, 0xC0, p); }, VKP_OK, 0xE0},
        {"Lowercase16 0130", [](int* p) { return One<vkp16u>(vkpsLowercase_16u, 0x130, p); }, VKP_OK, 0x69},
        {"Lowercase16 01C5", [](int* p) { return One<vkp16u>(vkpsLowercase_16u, 0x1C5, p); }, VKP_OK, 0x1C6},
        {"Lowercase16 10A0", [](int* p) { return One<vkp16u>(vkpsLowercase_16u, 0x10A0, p); }, VKP_OK, 0x10D0},
        {"Lowercase16 2160", [](int* p) { return One<vkp16u>(vkpsLowercase_16u, 0x2160, p); }, VKP_OK, 0x2170},
        {"Lowercase16 FF21", [](int* p) { return One<vkp16u>(vkpsLowercase_16u, 0xFF21, p); }, VKP_OK, 0xFF41},
        {"Lowercase16 1E9E unchanged", [](int* p) { return One<vkp16u>(vkpsLowercase_16u, 0x1E9E, p); }, VKP_OK, 0x1E9E},
        {"Lowercase16 2126 unchanged", [](int* p) { return One<vkp16u>(vkpsLowercase_16u, 0x2126, p); }, VKP_OK, 0x2126},
        {"Lowercase16 212A unchanged", [](int* p) { return One<vkp16u>(vkpsLowercase_16u, 0x212A, p); }, VKP_OK, 0x212A},
        {"Uppercase16 00FF", [](int* p) { return One<vkp16u>(vkpsUppercase_16u, 0xFF, p); }, VKP_OK, 0x178},
        {"Uppercase16 0131", [](int* p) { return One<vkp16u>(vkpsUppercase_16u, 0x131, p); }, VKP_OK, 0x49},
        {"Uppercase16 01C5", [](int* p) { return One<vkp16u>(vkpsUppercase_16u, 0x1C5, p); }, VKP_OK, 0x1C4},
        {"Uppercase16 00DF unchanged", [](int* p) { return One<vkp16u>(vkpsUppercase_16u, 0xDF, p); }, VKP_OK, 0xDF},
        {"Uppercase16 00B5 unchanged", [](int* p) { return One<vkp16u>(vkpsUppercase_16u, 0xB5, p); }, VKP_OK, 0xB5},
        {"Uppercase16 03C2 unchanged", [](int* p) { return One<vkp16u>(vkpsUppercase_16u, 0x3C2, p); }, VKP_OK, 0x3C2},

        {"Hash8 null src", [](int* p) { return vkpsHash_8u32u(nullptr, 2, H(p)); }, VKP_ERR_NULL, kUntouched},
        {"Hash16 null hash before length", [](int*) { return vkpsHash_16u32u(s16, -1, nullptr); }, VKP_ERR_NULL, kUntouched},
        {"HashSJ2_8 negative len", [](int* p) { return vkpsHashSJ2_8u32u(s8, -1, H(p)); }, VKP_ERR_LENGTH, kUntouched},
        {"HashSJ2_16 null src", [](int* p) { return vkpsHashSJ2_16u32u(nullptr, 1, H(p)); }, VKP_ERR_NULL, kUntouched},
        {"HashMSCS8 null hash", [](int*) { return vkpsHashMSCS_8u32u(s8, 1, nullptr); }, VKP_ERR_NULL, kUntouched},
        {"HashMSCS16 negative len", [](int* p) { return vkpsHashMSCS_16u32u(s16, -1, H(p)); }, VKP_ERR_LENGTH, kUntouched},
        {"Hash8 empty", [](int* p) { return vkpsHash_8u32u(s8, 0, H(p)); }, VKP_OK, 0},
        {"HashSJ2_16 empty", [](int* p) { return vkpsHashSJ2_16u32u(s16, 0, H(p)); }, VKP_OK, 0},
        {"HashMSCS8 empty", [](int* p) { return vkpsHashMSCS_8u32u(s8, 0, H(p)); }, VKP_OK, 5381},
        {"HashMSCS16 zero first", [](int* p) { return vkpsHashMSCS_16u32u(s16 + 3, 1, H(p)); }, VKP_OK, 5381},
        {"Hash8 ab", [](int* p) { return vkpsHash_8u32u(s8, 2, H(p)); }, VKP_OK, 0xA0},
        {"Hash16 ab", [](int* p) { return vkpsHash_16u32u(s16, 2, H(p)); }, VKP_OK, 0xA0},
        {"HashSJ2_8 ab", [](int* p) { return vkpsHashSJ2_8u32u(s8, 2, H(p)); }, VKP_OK, 3105},
        {"HashMSCS8 ab", [](int* p) { return vkpsHashMSCS_8u32u(s8, 2, H(p)); }, VKP_OK, 5860902},
        {"HashMSCS16 ab", [](int* p) { return vkpsHashMSCS_16u32u(s16, 2, H(p)); }, VKP_OK, 5860902},
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
