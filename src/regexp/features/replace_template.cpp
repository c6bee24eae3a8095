// Replacement templates: vkpsRegExpReplaceGetSize and vkpsRegExpReplaceInit.
// "$&" is the whole match, "$" + digits a group above 0; a backslash is
// dropped and only ends the literal text before it.
#include <limits.h>
#include <stddef.h>

#include "floor/entries.h"

namespace vkp::entry {
namespace {

using ReplaceItem = vkpRegExpReplaceItem;
static_assert(sizeof(ReplaceItem) == 16 && sizeof(vkpRegExpReplaceState) == 16);

constexpr u32 kLiteral = VKP_REPLACE_LITERAL;
constexpr u32 kGroup = VKP_REPLACE_GROUP;

bool IsDigit(u8 c) { return c >= '0' && c <= '9'; }

}  // namespace

Status vkpsRegExpReplaceGetSize(const u8* pTemplate, int* pSize) {
    if (!pSize) return kErrNull;
    const long long n = pTemplate ? static_cast<long long>(__builtin_strlen(reinterpret_cast<const char*>(pTemplate))) : 0;
    const long long size = 16 * n + 16;
    if (size > INT_MAX) return kErrLength;
    *pSize = static_cast<int>(size);
    return kOk;
}

Status vkpsRegExpReplaceInit(const u8* pTemplate, vkpRegExpReplaceState* pReplaceState) {
    if (!pReplaceState) return kErrNull;
    if (!pTemplate) {
        pReplaceState->itemCount = 0;
        pReplaceState->pItems = nullptr;
        return kOk;
    }
    ReplaceItem* const items = reinterpret_cast<ReplaceItem*>(pReplaceState + 1);
    pReplaceState->pItems = items;
    int count = 0;
    const u8* run = pTemplate;  // start of the pending literal run
    const u8* p = pTemplate;
    auto closeRun = [&] {
        if (p > run) items[count++] = {kLiteral, static_cast<int>(p - run), run};
    };
    while (*p) {
        if (*p == '\\') {
            closeRun();
            run = ++p;  // the next character starts a run and is examined as usual
            continue;
        }
        if (*p != '$') {
            ++p;
            continue;
        }
        closeRun();
        int group = 0;
        if (p[1] == '&') {
            p += 2;
        } else if (IsDigit(p[1])) {
            long long value = 0;
            for (++p; IsDigit(*p); ++p)
                if (value <= INT_MAX) value = value * 10 + (*p - '0');
            if (value == 0) return VKP_ERR_GROUP_NUMBER;
            // No pattern has that many groups: such a reference writes nothing.
            group = value > INT_MAX ? INT_MAX : static_cast<int>(value);
        } else {
            return VKP_ERR_GROUP_NUMBER;
        }
        items[count++] = {kGroup, group, nullptr};
        run = p;
    }
    closeRun();
    pReplaceState->itemCount = count;
    return kOk;
}

}  // namespace vkp::entry
