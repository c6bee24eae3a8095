// The processor variant chosen at attach and the version records. CTest runs
// this suite with the core library's feature mask forced and the expected
// variant in VKPCH_EXPECT_VARIANT.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "floor/entries.h"
#include "kernels/kernel_table.h"
#include "vkpch.h"
#include "vkpcore.h"

namespace {

int ExpectedVariant() {
    if (const char* v = std::getenv("VKPCH_EXPECT_VARIANT")) return std::atoi(v);
    // Run by hand: the rule applied to this processor's mask.
    return (vkpGetEnabledCpuFeatures() & 0x30) == 0x30 ? 1 : 0;
}

TEST(Frame, VersionRecordReflectsVariant) {
    const vkpLibraryVersion* v = vkpchGetLibVersion();
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v, vkpchGetLibVersion());
    EXPECT_EQ(v->major, 8);
    EXPECT_EQ(v->minor, 2);
    EXPECT_EQ(v->majorBuild, 3);
    EXPECT_EQ(v->build, 48108);
    EXPECT_STREQ(v->version, "8.2.3 (r48108)");
    EXPECT_STREQ(v->buildDate, "Jul 23 2015");
    const char u8Tag[4] = {'u', '8', 0, 0}, n8Tag[4] = {'n', '8', 0, 0};
    if (ExpectedVariant() == 1) {
        EXPECT_EQ(std::memcmp(v->cpuTag, n8Tag, 4), 0);
        EXPECT_STREQ(v->name, "vkpCH Atom (n8)");
    } else {
        EXPECT_EQ(std::memcmp(v->cpuTag, u8Tag, 4), 0);
        EXPECT_STREQ(v->name, "vkpCH SSSE3 (u8)");
    }
}

// The internals linked into this program attach from the same mask as the
// library (support/attach_internals.cpp): every kernel of the table is the
// expected width's.
TEST(Frame, KernelWidthFollowsMask) {
    const char* w = std::getenv("VKPCH_EXPECT_WIDTH");
    const int expected = w ? std::atoi(w) : vkp::KernelWidthFromFeatures(vkpGetEnabledCpuFeatures());
    EXPECT_EQ(vkp::g_kernelWidth, expected);
    const bool wide = expected == 32;
#define VKP_KERNEL(F, K, R, P, A) EXPECT_EQ(vkp::g_kernels.F, wide ? &vkp::kernels::w32::F : &vkp::kernels::w16::F) << #F;
#include "kernels/kernel_list.inc"
#undef VKP_KERNEL
}

TEST(Frame, RecordLayoutIsNatural) {
    EXPECT_EQ(offsetof(vkpLibraryVersion, cpuTag), 16u);
    EXPECT_EQ(offsetof(vkpLibraryVersion, name), 24u);
    EXPECT_EQ(offsetof(vkpLibraryVersion, version), 32u);
    EXPECT_EQ(offsetof(vkpLibraryVersion, buildDate), 40u);
    EXPECT_EQ(sizeof(vkpLibraryVersion), 48u);
}

TEST(Frame, BothRecordsShareTexts) {
    const vkpLibraryVersion* a = vkp::entry::GetLibVersionU8();
    const vkpLibraryVersion* b = vkp::entry::GetLibVersionN8();
    EXPECT_NE(a, b);
    EXPECT_EQ(a->version, b->version);
    EXPECT_EQ(a->buildDate, b->buildDate);
    EXPECT_STREQ(a->name, "vkpCH SSSE3 (u8)");
    EXPECT_STREQ(b->name, "vkpCH Atom (n8)");
}

TEST(Core, AllocatorAlignsAndRefusesEmpty) {
    for (int n : {1, 63, 64, 4096, 1 << 20}) {
        void* p = vkpMalloc(n);
        ASSERT_NE(p, nullptr) << n;
        EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 64, 0u) << n;
        std::memset(p, 0xA5, size_t(n));
        vkpFree(p);
    }
    EXPECT_EQ(vkpMalloc(0), nullptr);
    EXPECT_EQ(vkpMalloc(-5), nullptr);
    vkpFree(nullptr);
}

}  // namespace
