// The processor variant, chosen once when the library is attached.
#pragma once

namespace vkp {

// 0: the SSSE3 path ("u8"); 1: the Atom path ("n8").
extern int g_cpuVariant;

// Variant 1 needs both SSSE3 (bit 0x10) and MOVBE (bit 0x20); other bits of
// the feature mask have no influence.
constexpr int VariantFromFeatures(unsigned long long mask) {
    return (mask & 0x30) == 0x30 ? 1 : 0;
}

// Reads the core library's feature mask, sets g_cpuVariant and chooses the
// kernel width (frame/kernel_width.h).
void Attach();

}  // namespace vkp
