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

// The record of the variant chosen at attach, and the two records sharing
// their texts.
TEST(Frame, VersionRecordsFollowTheVariant) {
    const vkpLibraryVersion* v = vkpchGetLibVersion();
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v, vkpchGetLibVersion());
    EXPECT_EQ(v->major, 8);
    EXPECT_EQ(v->minor, 2);
    EXPECT_EQ(v->majorBuild, 3);
    EXPECT_EQ(v->build, 48108);
    EXPECT_STREQ(v->version, "8.2.3 (r48108)");
    EXPECT_STREQ(v->buildDate, "Jul 23 2015");
    const vkpLibraryVersion* u8 = vkp::entry::GetLibVersionU8();
    const vkpLibraryVersion* n8 = vkp::entry::GetLibVersionN8();
    const vkpLibraryVersion* want = ExpectedVariant() == 1 ? n8 : u8;  // the internals' copy of the records
    EXPECT_STREQ(v->name, want->name);
    EXPECT_EQ(std::memcmp(v->cpuTag, want->cpuTag, 4), 0);
    EXPECT_EQ(std::memcmp(u8->cpuTag, "u8\0", 4), 0);
    EXPECT_EQ(std::memcmp(n8->cpuTag, "n8\0", 4), 0);
    EXPECT_STREQ(u8->name, "vkpCH SSSE3 (u8)");
    EXPECT_STREQ(n8->name, "vkpCH Atom (n8)");
    EXPECT_EQ(u8->version, n8->version);
    EXPECT_EQ(u8->buildDate, n8->buildDate);
}

// The internals linked into this program attach from the same mask as the
// library (support/attach_internals.cpp) and take the width CTest expects.
TEST(Frame, KernelWidthFollowsMask) {
    const char* w = std::getenv("VKPCH_EXPECT_WIDTH");
    EXPECT_EQ(vkp::g_kernelWidth, w ? std::atoi(w) : vkp::KernelWidthFromFeatures(vkpGetEnabledCpuFeatures()));
}

TEST(Frame, RecordLayoutIsNatural) {
    EXPECT_EQ(offsetof(vkpLibraryVersion, cpuTag), 16u);
    EXPECT_EQ(offsetof(vkpLibraryVersion, name), 24u);
    EXPECT_EQ(offsetof(vkpLibraryVersion, version), 32u);
    EXPECT_EQ(offsetof(vkpLibraryVersion, buildDate), 40u);
    EXPECT_EQ(sizeof(vkpLibraryVersion), 48u);
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
