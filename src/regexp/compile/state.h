// The compiled pattern block: header words, the search work area, then the
// program and the literal bytes behind it. The layout is caller-visible.
#pragma once

#include <stddef.h>

#include "floor/base.h"
#include "regexp/compile/program.h"

namespace vkp {

using RegExpState = vkpRegExpState;
using RegExpFind = vkpRegExpFind;

constexpr u32 kRegExpMagic = VKP_REGEXP_MAGIC;
constexpr int kHeadSize = VKP_REGEXP_HEAD_SIZE;
constexpr int kDefaultMatchLimit = 10000;

// Block bytes for a pattern of n bytes: the head, one record per pattern
// byte and one more. The compiler writes at most that many records plus the
// literal copies, which fit in the same budget.
constexpr long long BlockSize(long long patternBytes) {
    return patternBytes * static_cast<long long>(sizeof(Instruction)) + kHeadSize + sizeof(Instruction);
}

// Group ids run from 1 to 999; capture numbers too.
constexpr int kMaxGroupIds = 1000;

// The work area holds a table of 32-byte entries indexed by group id
// (first part) and the group result records of one search indexed by
// capture number (second part).
constexpr int kWorkFirstPart = 32000;
constexpr int kWorkSecondPart = 16000;

// The last kAnalysisBytes of the first part keep, between searches, what
// the driver works out from the program alone (regexp/find/analysis.h).
// Its first word is a stamp that the compiler clears; the analysis is kept
// only when the group table ends below it, else it is worked out per
// search and the stamp cleared after it.
constexpr int kAnalysisBytes = 2048;
constexpr int kAnalysisOffset = kWorkFirstPart - kAnalysisBytes;

// Group id 0's entry of the group table (the work area's first 32 bytes),
// which the table never uses, keeps what a pattern set reads of a pattern
// (regexp/find/subject_print.h), behind a stamp of its own.
constexpr int kSetEntryBytes = 32;

// Clears both stamps: the compiler's new program must find neither.
VKP_INLINE void ClearAnalysisStamp(RegExpState* s) {
    __builtin_memset(s->workArea + kAnalysisOffset, 0, 4);
    __builtin_memset(s->workArea, 0, 4);
}

// The first part's last word keeps the block's size, written by the
// compiler, so that the find driver can use the room behind the literal
// bytes. The group table's entry for the highest id covers it: it is read
// only when the group table ends before it.
constexpr int kBlockBytesOffset = kWorkFirstPart - 4;
VKP_INLINE void StoreBlockBytes(RegExpState* s, u32 n) { __builtin_memcpy(s->workArea + kBlockBytesOffset, &n, 4); }
VKP_INLINE u32 BlockBytesOf(const RegExpState* s) {
    u32 n;
    __builtin_memcpy(&n, s->workArea + kBlockBytesOffset, 4);
    return n;
}

VKP_INLINE Instruction* ProgramOf(RegExpState* s) {
    return reinterpret_cast<Instruction*>(reinterpret_cast<u8*>(s) + kHeadSize);
}
VKP_INLINE const Instruction* ProgramOf(const RegExpState* s) {
    return reinterpret_cast<const Instruction*>(reinterpret_cast<const u8*>(s) + kHeadSize);
}
VKP_INLINE RegExpFind* RecordsOf(RegExpState* s) {
    return reinterpret_cast<RegExpFind*>(s->workArea + kWorkFirstPart);
}

static_assert(offsetof(RegExpState, magic) == 0);
static_assert(offsetof(RegExpState, options) == 4);
static_assert(offsetof(RegExpState, instructionCount) == 8);
static_assert(offsetof(RegExpState, groupCount) == 12);
static_assert(offsetof(RegExpState, lastLiteralIndex) == 16);
static_assert(offsetof(RegExpState, matchLimit) == 20);
static_assert(offsetof(RegExpState, format) == 24);
static_assert(offsetof(RegExpState, patternKind) == 28);
static_assert(offsetof(RegExpState, workArea) == 32);
static_assert(sizeof(RegExpState) == kHeadSize);
static_assert(kHeadSize % alignof(Instruction) == 0);
static_assert(kWorkFirstPart + kWorkSecondPart == VKP_REGEXP_WORK_SIZE);
static_assert(sizeof(RegExpFind) == 16 && offsetof(RegExpFind, matchLen) == 8);
static_assert(kMaxGroupIds * sizeof(RegExpFind) <= kWorkSecondPart);
static_assert(BlockSize(0) == 48056);

}  // namespace vkp
