// The property tests behind OP_CATEGORY, OP_BLOCK, OP_SCRIPT and caseless
// OP_CODEPOINT.
#pragma once

#include "floor/base.h"
#include "regexp/compile/program.h"
#include "floor/unicode_data.h"

namespace vkp {

// Tests code point c against an OP_CATEGORY, OP_BLOCK or OP_SCRIPT record:
// 1 when c satisfies it (negation applied), -1 when not. For OP_CODEPOINT
// returns 0 when c equals the record's code point (both folded first when
// `caseless`), else 1. Any other opcode gives -1.
int PropertyTest(int c, const Instruction& ins, bool caseless);

}  // namespace vkp
