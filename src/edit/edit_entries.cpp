// The editing and conversion exports.
#include "edit/concat.h"
#include "edit/insert_remove.h"
#include "edit/replace.h"
#include "edit/trim.h"
#include "edit/utf_convert.h"
#include "floor/entries.h"

namespace vkp::entry {

Status vkpsConcat_8u(const u8* a, int la, const u8* b, int lb, u8* d) { return edit::Concat(a, la, b, lb, d); }
Status vkpsConcat_16u(const u16* a, int la, const u16* b, int lb, u16* d) { return edit::Concat(a, la, b, lb, d); }
Status vkpsConcat_8u_D2L(const u8* const s[], const int l[], int n, u8* d) { return edit::Join<u8, false>(s, l, n, 0, d); }
Status vkpsConcat_16u_D2L(const u16* const s[], const int l[], int n, u16* d) { return edit::Join<u16, false>(s, l, n, 0, d); }
Status vkpsConcatC_8u_D2L(const u8* const s[], const int l[], int n, u8 c, u8* d) { return edit::Join<u8, true>(s, l, n, c, d); }
Status vkpsConcatC_16u_D2L(const u16* const s[], const int l[], int n, u16 c, u16* d) { return edit::Join<u16, true>(s, l, n, c, d); }
Status vkpsSplitC_8u_D2L(const u8* s, int len, u8 c, u8* d[], int dl[], int* n) { return edit::Split(s, len, c, d, dl, n); }
Status vkpsSplitC_16u_D2L(const u16* s, int len, u16 c, u16* d[], int dl[], int* n) { return edit::Split(s, len, c, d, dl, n); }

Status vkpsInsert_8u(const u8* s, int sl, const u8* ins, int il, u8* d, int at) { return edit::Insert(s, sl, ins, il, d, at); }
Status vkpsInsert_16u(const u16* s, int sl, const u16* ins, int il, u16* d, int at) { return edit::Insert(s, sl, ins, il, d, at); }
Status vkpsInsert_8u_I(const u8* ins, int il, u8* sd, int* pl, int at) { return edit::InsertInPlace(ins, il, sd, pl, at); }
Status vkpsInsert_16u_I(const u16* ins, int il, u16* sd, int* pl, int at) { return edit::InsertInPlace(ins, il, sd, pl, at); }
Status vkpsRemove_8u(const u8* s, int sl, u8* d, int at, int len) { return edit::Remove(s, sl, d, at, len); }
Status vkpsRemove_16u(const u16* s, int sl, u16* d, int at, int len) { return edit::Remove(s, sl, d, at, len); }
Status vkpsRemove_8u_I(u8* sd, int* pl, int at, int len) { return edit::RemoveInPlace(sd, pl, at, len); }
Status vkpsRemove_16u_I(u16* sd, int* pl, int at, int len) { return edit::RemoveInPlace(sd, pl, at, len); }

Status vkpsReplaceC_8u(const u8* s, u8* d, int len, u8 o, u8 n) { return edit::ReplaceC(s, d, len, o, n); }
Status vkpsReplaceC_16u(const u16* s, u16* d, int len, u16 o, u16 n) { return edit::ReplaceC(s, d, len, o, n); }

Status vkpsTrimC_8u(const u8* s, int sl, u8 c, u8* d, int* pdl) { return edit::TrimUnit<u8, true>(s, sl, c, d, pdl); }
Status vkpsTrimC_16u(const u16* s, int sl, u16 c, u16* d, int* pdl) { return edit::TrimUnit<u16, false>(s, sl, c, d, pdl); }
Status vkpsTrimC_8u_I(u8* sd, int* pl, u8 c) { return edit::TrimUnitInPlace(sd, pl, c); }
Status vkpsTrimC_16u_I(u16* sd, int* pl, u16 c) { return edit::TrimUnitInPlace(sd, pl, c); }
Status vkpsTrimCAny_8u(const u8* s, int sl, const u8* t, int tl, u8* d, int* pdl) { return edit::TrimSet<u8, true, true>(s, sl, t, tl, d, pdl); }
Status vkpsTrimCAny_16u(const u16* s, int sl, const u16* t, int tl, u16* d, int* pdl) { return edit::TrimSet<u16, true, true>(s, sl, t, tl, d, pdl); }
Status vkpsTrimStartCAny_8u(const u8* s, int sl, const u8* t, int tl, u8* d, int* pdl) { return edit::TrimSet<u8, true, false>(s, sl, t, tl, d, pdl); }
Status vkpsTrimStartCAny_16u(const u16* s, int sl, const u16* t, int tl, u16* d, int* pdl) { return edit::TrimSet<u16, true, false>(s, sl, t, tl, d, pdl); }
Status vkpsTrimEndCAny_8u(const u8* s, int sl, const u8* t, int tl, u8* d, int* pdl) { return edit::TrimSet<u8, false, true>(s, sl, t, tl, d, pdl); }
Status vkpsTrimEndCAny_16u(const u16* s, int sl, const u16* t, int tl, u16* d, int* pdl) { return edit::TrimSet<u16, false, true>(s, sl, t, tl, d, pdl); }

Status vkpsConvertUTF_8u16u(const u8* s, int* psl, u16* d, int* pdl, int be) { return edit::Utf8To16(s, psl, d, pdl, be); }
Status vkpsConvertUTF_16u8u(const u16* s, int* psl, u8* d, int* pdl, int be) { return edit::Utf16To8(s, psl, d, pdl, be); }

}  // namespace vkp::entry
