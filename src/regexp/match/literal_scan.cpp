// Literal searches of the find driver: the search kernels of the width
// chosen at attach, exact or ignoring ASCII case (forward, filtered on the
// rarest bytes where the first and last are common letters).
#include "regexp/match/literal_scan.h"

#include "kernels/active.h"
#include "kernels/rare_byte_search.h"

namespace vkp::regexp {

int FindFolded(const u8* s, int len, u8 lower) { return kernels::active::FindFoldedFwd(s, len, lower); }

int FindFoldedRev(const u8* s, int len, u8 lower) { return kernels::active::FindFoldedRev(s, len, lower); }

int FindAnyOf4(const u8* s, int len, const u8 bytes[4]) { return kernels::active::FindAnyOf4(s, len, bytes); }

int FindInNibbleSet(const u8* s, int len, const NibbleSet& set) { return kernels::active::FindMember(s, len, set.low); }

int FindNibbleRun(const u8* s, int len, const NibbleSet& set, int n) {
    return kernels::active::FindMemberRun(s, len, set.low, n);
}

int FindLiteralSet(const u8* s, int len, const kernels::LiteralSet* set, int* which) {
    return kernels::active::FindLiterals(s, len, set, which);
}

int FindLiteral(const u8* s, int len, const u8* lit, int n, bool caseless) {
    if (n <= 0 || n > len) return -1;
    if (caseless) {
        if (kernels::RareProbesPay(lit, n))
            return kernels::active::FindSubFoldedRareFwd(s, len, lit, n, kernels::RareProbeOffsets(lit, n, true));
        return kernels::active::FindSubFoldedFwd(s, len, lit, n);
    }
    int i = -1;
    if (n == 1) kernels::active::FindUnitFwdInto(s, len, lit[0], &i);
    else kernels::active::FindSubFwdInto(s, len, lit, n, &i);
    return i;
}

int FindLiteralRev(const u8* s, int len, const u8* lit, int n, bool caseless) {
    if (n <= 0 || n > len) return -1;
    if (caseless) return kernels::active::FindSubFoldedRev(s, len, lit, n);
    int i = -1;
    if (n == 1) kernels::active::FindUnitRevInto(s, len, lit[0], &i);
    else kernels::active::FindSubRevInto(s, len, lit, n, &i);
    return i;
}

}  // namespace vkp::regexp
