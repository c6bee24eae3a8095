// A compiled program as text, one instruction per line with its operands:
// what the `vkpch compile` command and the compiler's tests show.
#pragma once

#include "regexp/compile/state.h"

namespace vkp::regexp {

// Writes instruction `index` of a successfully compiled block into buf
// (always terminated when size > 0) and returns the length of the full
// text, as snprintf does. Only operands the compiler writes are shown.
int FormatInstruction(const RegExpState* state, int index, char* buf, int size);

// The whole program, one "index  text" line per instruction, class members
// and group bodies indented. Same return convention.
int ListProgram(const RegExpState* state, char* buf, int size);

// The header words on one line.
int FormatHeader(const RegExpState* state, char* buf, int size);

}  // namespace vkp::regexp
