// vkpsRegExpReplace_8u: the source with the first match (or every match the
// record array holds, with the global option) replaced by the expanded
// template, written into a destination of limited size. Each piece (the text
// before a match, one template item, the rest of the source) is written only
// when it fits strictly within the room left; the lengths returned say where
// to resume.
#include "floor/entries.h"
#include "kernels/copy.h"
#include "regexp/find/find_driver.h"

namespace vkp::regexp {
namespace {

struct Output {
    u8* dst;
    int room;     // destination size
    int written;  // bytes written so far
};

// The text of one item for a match whose records are recs[0..recCount):
// nothing for a group the search did not report or that did not take part.
struct Piece {
    const u8* text;
    int length;
};
Piece ItemText(const vkpRegExpReplaceItem& item, const RegExpFind* recs, int recCount) {
    if (item.kind != VKP_REPLACE_GROUP) return {item.pText, item.value};
    if (item.value >= recCount || !recs[item.value].pMatch || recs[item.value].matchLen < 0) return {nullptr, 0};
    return {recs[item.value].pMatch, recs[item.value].matchLen};
}

// Expands the template for one match behind what is written; false (nothing
// counted) when an item does not fit.
bool Expand(Output* out, const vkpRegExpReplaceState* tmpl, const RegExpFind* recs, int recCount) {
    const int room = out->room - out->written;
    int w = 0;
    for (int i = 0; i < tmpl->itemCount; ++i) {
        const Piece piece = ItemText(tmpl->pItems[i], recs, recCount);
        if (w + piece.length >= room) return false;
        kernels::CopyFwd(piece.text, out->dst + out->written + w, piece.length);
        w += piece.length;
    }
    out->written += w;
    return true;
}

}  // namespace

static Status Replace(const u8* src, int* srcLen, u8* dst, int* dstLen, RegExpFind* matches, int* numMatches,
               RegExpState* state, const vkpRegExpReplaceState* tmpl) {
    const bool global = (state->options & VKP_REGEXP_GLOBAL) != 0;
    const Status status = FindTimeBounded(src, *srcLen, state, matches, numMatches, global);
    if (status < 0) return status;
    const int records = *numMatches;
    Output out{dst, *dstLen, 0};
    if (records == 0) {
        const int n = *srcLen < *dstLen ? *srcLen : *dstLen;
        kernels::CopyFwd(src, dst, n);
        *srcLen = *dstLen = n;
        return status;
    }
    // A global search gives every group per match, record 0 first; the last
    // match may have fewer when the array filled up.
    const int perMatch = global ? state->groupCount : records;
    int done = 0;  // source offset behind the last replaced match
    for (int first = 0; first < records; first += perMatch) {
        const RegExpFind* recs = matches + first;
        const int recCount = records - first < perMatch ? records - first : perMatch;
        const int start = static_cast<int>(recs[0].pMatch - src);
        const int gap = start - done;
        // The gap does not fit: resume behind the previous match (nor does
        // the tail, which holds the gap).
        if (gap >= out.room - out.written) break;
        kernels::CopyFwd(src + done, dst + out.written, gap);
        out.written += gap;
        // An item does not fit: resume at this match, its gap written.
        if (!Expand(&out, tmpl, recs, recCount)) {
            *srcLen = start;
            *dstLen = out.written;
            return status;
        }
        done = start + recs[0].matchLen;
    }
    const int tail = *srcLen - done;
    if (tail < out.room - out.written) {
        kernels::CopyFwd(src + done, dst + out.written, tail);
        out.written += tail;
        done = *srcLen;
    }
    *srcLen = done;
    *dstLen = out.written;
    return status;
}

}  // namespace vkp::regexp

namespace vkp::entry {

Status vkpsRegExpReplace_8u(const u8* pSrc, int* pSrcLen, u8* pDst, int* pDstLen, RegExpFind* pMatches,
                            int* pNumMatches, RegExpState* pState, vkpRegExpReplaceState* pReplaceState) {
    if (!pSrc || !pSrcLen || !pDst || !pDstLen || !pMatches || !pNumMatches || !pState || !pReplaceState)
        return kErrNull;
    if (*pSrcLen < 1 || *pDstLen < 1 || *pNumMatches < 1) return kErrSize;
    if (pState->magic != kRegExpMagic) return VKP_ERR_NOT_COMPILED;
    return regexp::Replace(pSrc, pSrcLen, pDst, pDstLen, pMatches, pNumMatches, pState, pReplaceState);
}

}  // namespace vkp::entry
