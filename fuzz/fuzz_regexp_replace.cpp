// Replace on arbitrary pattern, template and subject. Input: a control byte,
// the option letters, a zero byte, the pattern, a zero byte, the template, a
// zero byte, then the subject (the rest, at least one byte). The template's
// text and parsed state and the destination each end flush against an
// inaccessible page; the subject one byte before one (the byte the
// word-boundary anchors may read).
//
// Control byte: bit 0 replace all (option g); bits 1-5 the destination size
// (0 = room for any result); bits 6-7 the record array (room for every
// match, one record, one match, two records). Each input runs once with the
// destination, then resumed with it until the source is used up or a piece
// does not fit; written and consumed lengths stay within bounds, and with
// room for the whole result one call consumes the whole source.
#include <climits>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "floor/entries.h"
#include "search_timer.h"
#include "support/guarded_buffer.h"

namespace {

using vkptest::GuardedBuffer;

struct Input {
    std::string options, pattern, text;
    const uint8_t* subject;
    int len;
};

bool Split(const uint8_t* data, size_t size, Input* in) {
    const uint8_t* p = data + 1;
    const uint8_t* end = data + size;
    std::string* parts[] = {&in->options, &in->pattern, &in->text};
    for (std::string* part : parts) {
        const auto* z = static_cast<const uint8_t*>(std::memchr(p, 0, size_t(end - p)));
        if (!z) return false;
        part->assign(reinterpret_cast<const char*>(p), size_t(z - p));
        p = z + 1;
    }
    in->subject = p;
    in->len = int(end - p);
    return in->len > 0 && in->options.size() <= 16 && in->options.find('g') == std::string::npos;
}

// One call; false when the search was abandoned or failed.
bool Call(const uint8_t* src, int* srcLen, GuardedBuffer& dst, int* dstLen, std::vector<vkpRegExpFind>& rec,
          int capacity, vkpRegExpState* state, vkpRegExpReplaceState* tmpl) {
    const int srcIn = *srcLen, dstIn = *dstLen;
    int count = capacity;
    if (sigsetjmp(SearchTimer::jump, 1)) {
        SearchTimer::Abandoned();
        return false;
    }
    SearchTimer::Start();
    const vkpStatus st = vkp::entry::vkpsRegExpReplace_8u(src, srcLen, dst.data() + dst.size() - dstIn, dstLen,
                                                          rec.data(), &count, state, tmpl);
    SearchTimer::Stop();
    if (st < 0) {
        if (st != VKP_ERR_MATCH_LIMIT || *srcLen != srcIn || *dstLen != dstIn) std::abort();
        return false;
    }
    if ((st != 0 && st != 12) || count < 0 || count > capacity) std::abort();
    if (*srcLen < 0 || *srcLen > srcIn || *dstLen < 0 || *dstLen > dstIn) std::abort();
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool ready = (SearchTimer::Setup("fuzz_regexp_replace"), true);
    (void)ready;
    Input in;
    if (size < 1 || !Split(data, size, &in)) return 0;
    const uint8_t control = data[0];

    int blockSize = 0;
    vkp::entry::vkpsRegExpGetSize(in.pattern.c_str(), &blockSize);
    GuardedBuffer block{size_t(blockSize)};
    auto* state = block.as<vkpRegExpState>();
    int offset = 0;
    const std::string letters = in.options + (control & 1 ? "g" : "");
    if (vkp::entry::vkpsRegExpInit(in.pattern.c_str(), letters.c_str(), state, &offset) != 0) return 0;

    GuardedBuffer text{in.text.size() + 1};
    std::memcpy(text.data(), in.text.c_str(), in.text.size() + 1);
    int tmplSize = 0;
    vkp::entry::vkpsRegExpReplaceGetSize(text.data(), &tmplSize);
    if (tmplSize != int(16 * in.text.size() + 16)) std::abort();
    GuardedBuffer tmplBlock{size_t(tmplSize)};
    auto* tmpl = tmplBlock.as<vkpRegExpReplaceState>();
    if (vkp::entry::vkpsRegExpReplaceInit(text.data(), tmpl) != 0) return 0;

    GuardedBuffer subject{size_t(in.len) + 1};
    std::memcpy(subject.data(), in.subject, size_t(in.len));
    subject.data()[in.len] = ' ';

    const int groups = state->groupCount;
    const int capacities[] = {groups * (2 * in.len + 2), 1, groups, 2};
    const int capacity = capacities[control >> 6];
    std::vector<vkpRegExpFind> rec(static_cast<size_t>(capacity));
    // Room for any result: at most 2 * len + 2 matches, each expanding to
    // items of at most the subject or the template text, plus the subject.
    const long long most =
        (2LL * in.len + 2) * (tmpl->itemCount + 1) * (long long)(in.len + in.text.size() + 1) + in.len + 1;
    const int room = (control >> 1) & 31 ? (control >> 1) & 31 : int(most < (1 << 24) ? most : 1 << 24);
    GuardedBuffer dst{size_t(room)};

    for (int pos = 0, calls = 0; pos < in.len && calls < 64; ++calls) {
        int srcLen = in.len - pos, dstLen = room;
        if (!Call(subject.data() + pos, &srcLen, dst, &dstLen, rec, capacity, state, tmpl)) break;
        if (room == most && calls == 0 && srcLen != in.len) std::abort();  // one call does it all
        if (srcLen == 0) break;  // the next piece does not fit
        pos += srcLen;
    }
    return 0;
}
