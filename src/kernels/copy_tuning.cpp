// What the copy kernels ask the processor: the largest cache size and
// whether string moves and stores are fast.
//
// The cache size: first the leaf-2 descriptor bytes (one vendor's encoding), matched against
// a table of second- and third-level cache descriptors ordered from the
// largest size down, so the largest cache present wins. Current processors
// answer leaf 2 with "see leaf 4" (0xFF) or not at all; then the
// deterministic cache parameter leaves are walked instead (leaf 4, or
// 0x8000001D on the other vendor) and the largest data or unified cache
// is taken.
#include <cpuid.h>

#include "kernels/copy.h"

namespace vkp::kernels {
namespace {

// (descriptor, code): size = (code >> 4) << ((code & 15) + 18) bytes.
constexpr u8 Code(unsigned kib) {
    unsigned units = kib / 256, shift = 0;  // 256 KiB = 1 << 18 bytes
    while (units % 2 == 0) units /= 2, ++shift;
    return u8((units << 4) | shift);
}
#define VKP_D(desc, kib) u8(desc), Code(kib)
constexpr u8 kDescriptors[] = {
    VKP_D(0xEC, 24576), VKP_D(0xEB, 18432), VKP_D(0x4D, 16384), VKP_D(0xEA, 12288), VKP_D(0x4C, 12288),
    VKP_D(0xE4, 8192), VKP_D(0xDE, 8192), VKP_D(0x4B, 8192), VKP_D(0x47, 8192),
    VKP_D(0x4E, 6144), VKP_D(0x4A, 6144),
    VKP_D(0xE3, 4096), VKP_D(0xDD, 4096), VKP_D(0xD8, 4096), VKP_D(0x49, 4096), VKP_D(0x29, 4096), VKP_D(0x46, 4096),
    VKP_D(0x48, 3072),
    VKP_D(0xE2, 2048), VKP_D(0xDC, 2048), VKP_D(0xD7, 2048), VKP_D(0xD2, 2048), VKP_D(0x25, 2048), VKP_D(0x7D, 2048),
    VKP_D(0x85, 2048), VKP_D(0x45, 2048),
    VKP_D(0xD6, 1024), VKP_D(0xD1, 1024), VKP_D(0x23, 1024), VKP_D(0x87, 1024), VKP_D(0x7C, 1024), VKP_D(0x78, 1024),
    VKP_D(0x84, 1024), VKP_D(0x44, 1024),
    VKP_D(0xD0, 512), VKP_D(0x22, 512), VKP_D(0x7B, 512), VKP_D(0x80, 512), VKP_D(0x86, 512), VKP_D(0x3E, 512),
    VKP_D(0x7F, 512), VKP_D(0x83, 512), VKP_D(0x43, 512),
    0x00, 0x00,
};
#undef VKP_D
static_assert(Code(24576) == 0x35 && Code(18432) == 0x93 && Code(512) == 0x11 && Code(3072) == 0x32);

bool VendorIs(unsigned b, unsigned c, unsigned d, const char (&name)[13]) {
    unsigned w[3];
    __builtin_memcpy(w, name, 12);
    return b == w[0] && d == w[1] && c == w[2];
}

size_t FromLeaf2() {
    unsigned r[4];
    __cpuid(2, r[0], r[1], r[2], r[3]);
    if ((r[0] & 0xFF) != 1) return 0;
    u8 bytes[16];
    int count = 0;
    for (int k = 0; k < 4; ++k) {
        if (r[k] & 0x80000000u) continue;
        for (int b = (k == 0 ? 1 : 0); b < 4; ++b) bytes[count++] = u8(r[k] >> (8 * b));
    }
    for (const u8* e = kDescriptors; e[0] != 0; e += 2) {
        for (int i = 0; i < count; ++i)
            if (bytes[i] == e[0]) return size_t(e[1] >> 4) << ((e[1] & 15) + 18);
    }
    return 0;
}

// Walks the deterministic cache parameter leaf `leaf` (4 or 0x8000001D).
size_t FromCacheLeaves(unsigned leaf) {
    size_t largest = 0;
    for (unsigned sub = 0; sub < 16; ++sub) {
        unsigned a, b, c, d;
        __cpuid_count(leaf, sub, a, b, c, d);
        const unsigned type = a & 31;  // 0 none, 1 data, 2 instruction, 3 unified
        if (type == 0) break;
        if (type == 2) continue;
        const size_t size = size_t((b >> 22) + 1) * (((b >> 12) & 0x3FF) + 1) * ((b & 0xFFF) + 1) * (size_t(c) + 1);
        if (size > largest) largest = size;
    }
    return largest;
}

size_t ReadLargestCacheSize() {
    unsigned maxLeaf, b, c, d;
    __cpuid(0, maxLeaf, b, c, d);
    if (VendorIs(b, c, d, "GenuineIntel")) {
        if (maxLeaf >= 2)
            if (size_t size = FromLeaf2()) return size;
        return maxLeaf >= 4 ? FromCacheLeaves(4) : 0;
    }
    if (VendorIs(b, c, d, "AuthenticAMD") || VendorIs(b, c, d, "HygonGenuine")) {
        unsigned maxExt, x1, x2, x3;
        __cpuid(0x80000000u, maxExt, x1, x2, x3);
        return maxExt >= 0x8000001Du ? FromCacheLeaves(0x8000001Du) : 0;
    }
    return 0;
}

bool ReadFastStrings() {
    unsigned maxLeaf, b, c, d;
    __cpuid(0, maxLeaf, b, c, d);
    if (maxLeaf < 7) return false;
    __cpuid_count(7, 0, maxLeaf, b, c, d);
    return (b >> 9) & 1;  // enhanced rep movsb / stosb
}

// The answers never change while the process runs, but an identification
// instruction costs microseconds under a hypervisor (about 4 us each on the
// development machine, seven per query), more than a 1 MiB copy takes. They
// are read on first use and kept: bit 63 marks the word as filled, bit 62
// holds the fast-strings flag, the rest the cache size. Racing first calls
// store the same word.
uint64_t g_copyTuning = 0;

uint64_t Tuning() {
    uint64_t t = __atomic_load_n(&g_copyTuning, __ATOMIC_RELAXED);
    if (VKP_LIKELY(t)) return t;
    t = (uint64_t(1) << 63) | (uint64_t(ReadFastStrings()) << 62) | ReadLargestCacheSize();
    __atomic_store_n(&g_copyTuning, t, __ATOMIC_RELAXED);
    return t;
}

}  // namespace

size_t LargestCacheSize() { return size_t(Tuning() & ((uint64_t(1) << 62) - 1)); }

bool HasFastStrings() { return (Tuning() >> 62) & 1; }

}  // namespace vkp::kernels
