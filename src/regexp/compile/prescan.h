// The checking walk over the pattern that runs before the main pass: it
// balances the parentheses and counts the capturing groups.
#pragma once

#include "floor/base.h"

namespace vkp::regexp {

// Checks pattern p[0, len) under the initial option word; on success
// stores the number of capturing groups and returns 0, else returns -186
// with the offending offset in *errOffset.
Status PreScan(const char* p, int len, u32 options, int* captureCount, int* errOffset);

// Offset just past the ']' that closes the class opened by '[' at `pos`
// (len when the class is not closed). The main pass ends a class at the
// same place.
int SkipClass(const char* p, int pos, int len);

// Offset of the "\E" that ends a \Q run starting at `pos`, or -1.
int QuoteEnd(const char* p, int pos, int len);

}  // namespace vkp::regexp
