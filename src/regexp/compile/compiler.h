// The pattern compiler: pattern text and option letters in, the program of
// a RegExpState out. No heap; all working state lives on the stack.
#pragma once

#include "floor/base.h"
#include "regexp/compile/state.h"

namespace vkp::regexp {

constexpr Status kErrProperty = VKP_ERR_PROPERTY;
constexpr Status kErrClass = VKP_ERR_CLASS;
constexpr Status kErrGroupNumber = VKP_ERR_GROUP_NUMBER;
constexpr Status kErrParenthesis = VKP_ERR_PARENTHESIS;
constexpr Status kErrQuantifier = VKP_ERR_QUANTIFIER;
constexpr Status kErrOption = VKP_ERR_OPTION;

// Compiles `pattern` (zero-terminated) into `state`, which holds at least
// BlockSize(strlen(pattern)) bytes. On an error returns its status and
// stores the byte offset in *errOffset; on success returns 0.
Status Compile(const char* pattern, const char* options, RegExpState* state, int* errOffset);

}  // namespace vkp::regexp
