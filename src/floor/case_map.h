// Simple (one unit to one unit) case mapping of UTF-16 units: a three-array
// lookup from a unit to a 32-bit property word.
#pragma once

#include "floor/base.h"

namespace vkp {

constexpr int kCaseMapIndexSize = 1024;  // one entry per 64 units
constexpr int kCaseMapWordCount = 128;
// Row start (already times 64) in kCaseMapContents for each 64-unit block.
extern const u16 kCaseMapIndex[kCaseMapIndexSize];
// Rows of 64 word numbers.
extern const u8 kCaseMapContents[];
extern const u32 kCaseMapWords[kCaseMapWordCount];

// The same mappings of the units below kCaseDirectUnits (where the Latin,
// Greek, Cyrillic and Armenian letters lie) as flat tables of
// mapping - unit, 0 for none: one load instead of three.
constexpr int kCaseDirectUnits = 0x600;
extern const int16_t kCaseLowerShift[kCaseDirectUnits];
extern const int16_t kCaseUpperShift[kCaseDirectUnits];

constexpr u32 kCaseHasUpper = 1u << 20;  // upper(c) = c - delta
constexpr u32 kCaseHasLower = 1u << 21;  // lower(c) = c + delta

VKP_INLINE u32 CaseMapWord(u16 c) {
    return kCaseMapWords[kCaseMapContents[kCaseMapIndex[c >> 6] | (c & 63)]];
}

// The signed 10-bit delta in bits 22 to 31.
VKP_INLINE int CaseMapDelta(u32 word) { return static_cast<int>(word) >> 22; }

}  // namespace vkp
