// Compiles a pattern into a block of its own and searches with it through
// the public API; records come back as offsets into the subject.
#pragma once

#include <string>
#include <vector>

#include "support/guarded_buffer.h"
#include "vkpch.h"

namespace vkptest {

struct Span {
    long start;  // -1 for a group that did not take part
    int length;
    bool operator==(const Span&) const = default;
};

// n copies of s, for long patterns and subjects.
inline std::string Repeat(const std::string& s, int n) {
    std::string out;
    for (int i = 0; i < n; ++i) out += s;
    return out;
}

struct SearchResult {
    vkpStatus status = 0;
    std::vector<Span> records;
};

class CompiledRegExp {
public:
    explicit CompiledRegExp(const std::string& pattern, const char* options = "") {
        int size = 0;
        vkpsRegExpGetSize(pattern.c_str(), &size);
        block_.resize(size_t(size) / sizeof(long long) + 1);
        status_ = vkpsRegExpInit(pattern.c_str(), options, state(), &errOffset_);
    }
    vkpRegExpState* state() { return reinterpret_cast<vkpRegExpState*>(block_.data()); }
    vkpStatus status() const { return status_; }

    // Searches subject[0, length) (the whole string by default) with room
    // for `capacity` records; the byte behind the subject is readable.
    SearchResult Search(const std::string& subject, int capacity = 16, int length = -1) {
        const auto* s = reinterpret_cast<const vkp8u*>(subject.c_str());
        return SearchAt(s, length < 0 ? int(subject.size()) : length, capacity);
    }

    // The same with the subject and its terminating zero (the byte behind it
    // that a word boundary at the end may read) flush against an inaccessible
    // page behind (or before) them, so that any other read outside crashes.
    SearchResult SearchGuarded(const std::string& subject, int capacity, GuardedBuffer::Guard guard) {
        GuardedBuffer buf(subject.size() + 1, guard);
        return SearchAt(buf.fill(reinterpret_cast<const vkp8u*>(subject.c_str()), subject.size() + 1),
                        int(subject.size()), capacity);
    }

    // `find` is vkpsRegExpFind_8u or a function of the same form.
    template <class Find = decltype(&vkpsRegExpFind_8u)>
    SearchResult SearchAt(const vkp8u* s, int length, int capacity, Find find = &vkpsRegExpFind_8u) {
        std::vector<vkpRegExpFind> found(size_t(capacity > 0 ? capacity : 1));
        int n = capacity;
        SearchResult r;
        r.status = find(s, length, state(), found.data(), &n);
        if (r.status >= 0)
            for (int i = 0; i < n; ++i)
                r.records.push_back({found[i].pMatch ? long(found[i].pMatch - s) : -1L, found[i].matchLen});
        return r;
    }

private:
    std::vector<long long> block_;
    vkpStatus status_ = 0;
    int errOffset_ = -1;
};

}  // namespace vkptest
