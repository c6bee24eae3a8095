// Names after \p{ and \P{: general categories, blocks and scripts.
#pragma once

#include <stddef.h>

#include "floor/base.h"
#include "floor/unicode_data.h"
#include "regexp/compile/program.h"

namespace vkp {

// The lookups below read a name that starts at `name` and may run to the
// end of the pattern, `avail` bytes further on; none reads beyond that.

// Category bits for a category name, or 0 when the name is none. Accepted:
// a major letter (C L M N P S Z) followed by '}', "L&", or a two-letter
// category ("Co" only when followed by '}', so that "Coptic" stays a
// script). *length receives the bytes of the name (1 or 2), not the '}'.
u32 FindCategory(const char* name, size_t avail, int* length);

// The name of a category value ("Lu", "L&", "L"), or null.
const char* CategoryName(u32 bits);

// Category bits for a major letter used without braces (\pL), or 0.
u32 MajorCategory(char letter);

// The first block whose name begins with the bytes from `name` up to the
// next '}' (or the end), or -1. A prefix selects the first block it begins:
// "InLatin" gives InLatin1Supplement. *length receives the measured bytes.
int FindBlock(const char* name, size_t avail, int* length);

// The first script whose name, followed by '}', equals the pattern there,
// or -1. *length receives the name's bytes, not the '}'.
int FindScript(const char* name, size_t avail, int* length);

// Resolves a property name in the documented order: category, "Any}",
// a block (names beginning with 'I'), then a script. On success writes the
// OP_CATEGORY, OP_BLOCK or OP_SCRIPT record (negated as asked) to *out,
// stores the bytes used in *length and returns true; the caller checks and
// skips the closing '}'. Returns false for an unknown name.
bool EncodeProperty(const char* name, size_t avail, bool negated,
                    Instruction* out, int* length);

}  // namespace vkp
