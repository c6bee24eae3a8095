// Compile and search on arbitrary pattern and subject pairs. Input: a control
// byte, the option letters, a zero byte, the pattern, a zero byte, then the
// subject (the rest, zero bytes included). Each pair is searched once and
// globally, with byte and UTF-8 subjects. The subject ends one byte before an
// inaccessible page: that byte is the one the word-boundary anchors may read.
//
// Control byte: bits 0-1 the match limit (the default, a small one taken from
// bits 3-7, 0, or the largest int), bit 2 a word or non-word byte behind the
// subject, bits 3-5 the capacity of the record array (0 = room for every
// record).
//
// A search that uses more than 250 ms of CPU time is abandoned (search_timer.h;
// the state is recompiled for the next input); their number is printed at exit.
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "floor/entries.h"
#include "search_timer.h"
#include "support/guarded_buffer.h"

namespace {

char* CString(const uint8_t* p, size_t n) {
    char* s = static_cast<char*>(std::malloc(n + 1));
    std::memcpy(s, p, n);
    s[n] = 0;
    return s;
}

// Records of a search must lie inside the subject, or be {null, -1}.
void CheckRecords(const vkpRegExpFind* rec, int count, int capacity, const unsigned char* src, int len) {
    if (count < 0 || count > capacity) std::abort();
    for (int i = 0; i < count; ++i) {
        if (!rec[i].pMatch) {
            if (rec[i].matchLen != -1) std::abort();
            continue;
        }
        if (rec[i].pMatch < src || rec[i].matchLen < 0 || rec[i].pMatch + rec[i].matchLen > src + len) std::abort();
    }
}

void Search(const char* pattern, const char* options, bool global, int format, uint8_t control,
            const vkptest::GuardedBuffer& subject) {
    int size = 0;
    vkp::entry::vkpsRegExpGetSize(pattern, &size);
    vkptest::GuardedBuffer block{size_t(size)};
    auto* state = block.as<vkpRegExpState>();
    char letters[64];
    std::snprintf(letters, sizeof letters, "%s%s", options ? options : "", global ? "g" : "");
    int offset = 0;
    if (vkp::entry::vkpsRegExpInit(pattern, letters, state, &offset) != 0) return;
    static const int kLimits[] = {10000, 0, 0, INT_MAX};
    const int limit = (control & 3) == 1 ? int(control >> 3) : kLimits[control & 3];
    if (vkp::entry::vkpsRegExpSetMatchLimit(limit, state) != 0 || vkp::entry::vkpsRegExpSetFormat(format, state) != 0)
        std::abort();

    const int len = int(subject.size()) - 1;
    const int perMatch = state->groupCount;
    const int room = (control >> 3) & 7;
    // A global search reports at most 2 * len + 2 matches.
    const int capacity = room ? room : perMatch * (global ? 2 * len + 2 : 1);
    std::vector<vkpRegExpFind> rec(static_cast<size_t>(capacity));
    int count = capacity;
    if (sigsetjmp(SearchTimer::jump, 1)) return SearchTimer::Abandoned();
    SearchTimer::Start();
    const int st = vkp::entry::vkpsRegExpFind_8u(subject.data(), len, state, rec.data(), &count);
    SearchTimer::Stop();
    if (st != 0 && st != 12 && st != -188) std::abort();
    if (st >= 0) CheckRecords(rec.data(), count, capacity, subject.data(), len);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool ready = (SearchTimer::Setup("fuzz_regexp_find"), true);
    (void)ready;
    if (size < 1) return 0;
    const uint8_t control = data[0];
    const uint8_t* p = data + 1;
    const uint8_t* end = data + size;
    const auto* z1 = static_cast<const uint8_t*>(std::memchr(p, 0, size_t(end - p)));
    if (!z1) return 0;
    const auto* z2 = static_cast<const uint8_t*>(std::memchr(z1 + 1, 0, size_t(end - z1 - 1)));
    if (!z2) return 0;
    char* options = CString(p, size_t(z1 - p));
    char* pattern = CString(z1 + 1, size_t(z2 - z1 - 1));
    const size_t len = size_t(end - z2 - 1);
    if (std::strchr(options, 'g') || std::strlen(options) > 16) {  // g is chosen below
        std::free(options);
        std::free(pattern);
        return 0;
    }

    vkptest::GuardedBuffer subject{len + 1};
    std::memcpy(subject.data(), z2 + 1, len);
    subject.data()[len] = (control & 4) ? 'w' : ' ';
    for (bool global : {false, true})
        for (int format : {0, 1}) Search(pattern, options, global, format, control, subject);
    std::free(pattern);
    std::free(options);
    return 0;
}
