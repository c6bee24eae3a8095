// The exported functions of the compiled pattern object.
#include <limits.h>

#include "floor/entries.h"
#include "regexp/compile/compiler.h"
#include "vkpcore.h"

namespace vkp::entry {
namespace {

// Block size for a pattern, or -1 when it does not fit in an int.
long long PatternBlockSize(const char* src) {
    const long long size = BlockSize(static_cast<long long>(__builtin_strlen(src)));
    return size > INT_MAX ? -1 : size;
}

}  // namespace

Status vkpsRegExpGetSize(const char* pSrc, int* pSize) {
    if (!pSrc || !pSize) return kErrNull;
    const long long size = PatternBlockSize(pSrc);
    if (size < 0) return kErrLength;
    *pSize = static_cast<int>(size);
    return kOk;
}

Status vkpsRegExpInit(const char* pSrc, const char* pOptions, RegExpState* pState, int* pErrOffset) {
    if (!pSrc || !pState || !pErrOffset) return kErrNull;
    if (PatternBlockSize(pSrc) < 0) return kErrLength;
    return regexp::Compile(pSrc, pOptions, pState, pErrOffset);
}

Status vkpsRegExpInitAlloc(const char* pSrc, const char* pOptions, RegExpState** ppState, int* pErrOffset) {
    if (!ppState || !pSrc) return kErrNull;
    const long long size = PatternBlockSize(pSrc);
    if (size < 0) return kErrLength;
    auto* state = static_cast<RegExpState*>(vkpMalloc(static_cast<int>(size)));
    *ppState = state;
    if (!state) return kErrNull;  // the same code as a null argument
    const Status s = entry::vkpsRegExpInit(pSrc, pOptions, state, pErrOffset);
    if (s != kOk) {
        vkpFree(state);
        *ppState = nullptr;
    }
    return s;
}

void vkpsRegExpFree(RegExpState* pState) { vkpFree(pState); }

Status vkpsRegExpSetMatchLimit(int value, RegExpState* pState) {
    if (!pState) return kErrNull;
    if (value < 0) return kErrLength;
    pState->matchLimit = value;
    return kOk;
}

Status vkpsRegExpSetFormat(int format, RegExpState* pState) {
    if (!pState) return kErrNull;
    if (format != kFormatBytes && format != kFormatUtf8) return VKP_ERR_FORMAT;
    pState->format = format;
    return kOk;
}

}  // namespace vkp::entry
