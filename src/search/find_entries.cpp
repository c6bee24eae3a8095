// The twelve search exports.
#include "floor/entries.h"
#include "search/find.h"

namespace vkp::entry {

Status vkpsFind_8u(const u8* s, int len, const u8* f, int lenFind, int* pIndex) { return search::Find(s, len, f, lenFind, pIndex); }
Status vkpsFind_16u(const u16* s, int len, const u16* f, int lenFind, int* pIndex) { return search::Find(s, len, f, lenFind, pIndex); }
Status vkpsFindRev_8u(const u8* s, int len, const u8* f, int lenFind, int* pIndex) { return search::FindRev(s, len, f, lenFind, pIndex); }
Status vkpsFindRev_16u(const u16* s, int len, const u16* f, int lenFind, int* pIndex) { return search::FindRev(s, len, f, lenFind, pIndex); }
Status vkpsFindC_8u(const u8* s, int len, u8 v, int* pIndex) { return search::FindC(s, len, v, pIndex); }
Status vkpsFindC_16u(const u16* s, int len, u16 v, int* pIndex) { return search::FindC(s, len, v, pIndex); }
Status vkpsFindRevC_8u(const u8* s, int len, u8 v, int* pIndex) { return search::FindRevC(s, len, v, pIndex); }
Status vkpsFindRevC_16u(const u16* s, int len, u16 v, int* pIndex) { return search::FindRevC(s, len, v, pIndex); }
Status vkpsFind_Z_8u(const u8* s, const u8* f, int* pIndex) { return search::FindZ(s, f, pIndex); }
Status vkpsFind_Z_16u(const u16* s, const u16* f, int* pIndex) { return search::FindZ(s, f, pIndex); }
Status vkpsFindC_Z_8u(const u8* s, u8 v, int* pIndex) { return search::FindCZ(s, v, pIndex); }
Status vkpsFindC_Z_16u(const u16* s, u16 v, int* pIndex) { return search::FindCZ(s, v, pIndex); }

}  // namespace vkp::entry
