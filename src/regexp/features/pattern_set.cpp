// Pattern sets: up to a fixed number of compiled patterns under caller-chosen
// non-zero identifiers, searched one after another on one subject. The block
// is {capacity, slot array pointer, identifier array pointer}, then the
// capacity pattern pointers, then the capacity identifiers.
#include <limits.h>

#include "floor/entries.h"
#include "kernels/copy.h"
#include "regexp/compile/state.h"
#include "regexp/find/subject_print.h"
#include "vkpcore.h"

namespace vkp::entry {
namespace {

using MultiState = vkpRegExpMultiState;
static_assert(sizeof(MultiState) == 24 && sizeof(vkpRegExpMultiFind) == 24);

constexpr Status kErrSetFull = VKP_ERR_SET_FULL;
constexpr Status kErrNoSuchId = VKP_ERR_NO_SUCH_ID;
constexpr Status kErrZeroId = VKP_ERR_ZERO_ID;
constexpr int kPrefetchAhead = 16;

// Block bytes for a capacity, or -1 when below 1 or beyond an int.
long long SetBlockSize(int maxPatterns) {
    if (maxPatterns < 1) return -1;
    const long long size = 12LL * maxPatterns + 24;
    return size > INT_MAX ? -1 : size;
}

// The lowest slot whose identifier is id, or -1. Sets are small and these
// lookups run only when the set is changed, so a plain scan serves.
int FindId(const MultiState* s, int id) {
    for (int i = 0; i < s->capacity; ++i)
        if (s->pIds[i] == id) return i;
    return -1;
}

// The lowest free slot, or -1.
int FindFree(const MultiState* s) {
    for (int i = 0; i < s->capacity; ++i)
        if (!s->pPatterns[i]) return i;
    return -1;
}

}  // namespace

Status vkpsRegExpMultiGetSize(int maxPatterns, int* pSize) {
    if (!pSize) return kErrNull;
    const long long size = SetBlockSize(maxPatterns);
    if (size < 0) return kErrSize;
    *pSize = static_cast<int>(size);
    return kOk;
}

Status vkpsRegExpMultiInit(MultiState* pState, int maxPatterns) {
    if (!pState) return kErrNull;
    if (SetBlockSize(maxPatterns) < 0) return kErrSize;
    pState->pPatterns = reinterpret_cast<const RegExpState**>(pState + 1);
    pState->pIds = reinterpret_cast<int*>(pState->pPatterns + maxPatterns);
    kernels::Zero_8u(reinterpret_cast<u8*>(pState + 1), 12 * maxPatterns);
    pState->capacity = maxPatterns;
    return kOk;
}

Status vkpsRegExpMultiInitAlloc(MultiState** ppState, int maxPatterns) {
    if (!ppState) return kErrNull;
    *ppState = nullptr;
    const long long size = SetBlockSize(maxPatterns);
    if (size < 0) return kErrSize;
    auto* state = static_cast<MultiState*>(vkpMalloc(static_cast<int>(size)));
    if (!state) return kErrNull;  // the same code as a null argument
    entry::vkpsRegExpMultiInit(state, maxPatterns);
    *ppState = state;
    return kOk;
}

void vkpsRegExpMultiFree(MultiState* pState) { vkpFree(pState); }

Status vkpsRegExpMultiAdd(const RegExpState* pPattern, int patternId, MultiState* pState) {
    if (!pPattern || !pState) return kErrNull;
    if (patternId == 0) return kErrZeroId;
    if (pState->capacity < 1) return kErrSetFull;
    const int i = FindFree(pState);
    if (i < 0) return kErrSetFull;
    pState->pPatterns[i] = pPattern;
    pState->pIds[i] = patternId;
    return kOk;
}

Status vkpsRegExpMultiDelete(int patternId, MultiState* pState) {
    if (!pState) return kErrNull;
    if (patternId == 0) return kErrZeroId;
    if (pState->capacity < 1) return kErrNoSuchId;
    const int i = FindId(pState, patternId);
    if (i < 0) return kErrNoSuchId;
    pState->pPatterns[i] = nullptr;
    pState->pIds[i] = 0;
    return kOk;
}

Status vkpsRegExpMultiModify(const RegExpState* pPattern, int patternId, MultiState* pState) {
    if (!pPattern || !pState) return kErrNull;
    if (patternId == 0) return kErrZeroId;
    if (pState->capacity < 1) return kErrNoSuchId;
    const int i = FindId(pState, patternId);
    if (i < 0) return kErrNoSuchId;
    pState->pPatterns[i] = pPattern;
    return kOk;
}

Status vkpsRegExpMultiFind_8u(const u8* pSrc, int srcLen, vkpRegExpMultiFind* pResults, const MultiState* pState) {
    if (!pSrc || !pResults || !pState) return kErrNull;
    if (srcLen < 1) return kErrSize;
    // The subject's bytes and byte pairs, examined once for all patterns,
    // on the first pattern that has needs.
    regexp::SubjectPrint print;
    bool printed = false;
    const RegExpState* const* slots = pState->pPatterns;
    const int capacity = pState->capacity;
    auto searchSlot = [&](int i) __attribute__((always_inline)) {
        const RegExpState* pattern = slots[i];
        if (!pattern) return;
        vkpRegExpMultiFind& r = pResults[i];
        // The set keeps the patterns as const; a search writes only their
        // work areas. A pattern whose needs the subject lacks gets the
        // result its search would give, once its arguments pass.
        auto* p = const_cast<RegExpState*>(pattern);
        if (r.pMatches && r.numMatches >= 1 && p->magic == kRegExpMagic) {
            const regexp::SetEntry* e = regexp::KeptSetEntry(p);
            if (!e) e = regexp::SetEntryFor(p);
            if (e->mask[0]) {
                if (!printed) regexp::BuildPrint(pSrc, srcLen, &print);
                printed = true;
                if (regexp::PrintRulesOut(*e, print)) {
                    r = {1, pState->pIds[i], 0, kOk, r.pMatches};
                    return;
                }
            }
        }
        r.status = entry::vkpsRegExpFind_8u(pSrc, srcLen, p, r.pMatches, &r.numMatches);
        r.patternId = pState->pIds[i];
        r.isValid = 1;
    };
    int i = 0;
    for (; i < capacity - kPrefetchAhead; ++i) {
        // The lines the test reads of a pattern some slots ahead (header and
        // entry; prefetching a null slot does no harm): the patterns' blocks
        // lie apart, each test would otherwise wait for its own.
        const uintptr_t ahead = reinterpret_cast<uintptr_t>(slots[i + kPrefetchAhead]);
        __builtin_prefetch(reinterpret_cast<const void*>(ahead));
        __builtin_prefetch(reinterpret_cast<const void*>(ahead + 32 + kSetEntryBytes - 1));
        searchSlot(i);
    }
    for (; i < capacity; ++i) searchSlot(i);
    return kOk;
}

}  // namespace vkp::entry
