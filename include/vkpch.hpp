// vkpch.hpp: C++17 wrappers over the regular-expression functions of vkpch.h.
// Header only; needs no exceptions (errors are statuses). A Regex owns its
// compiled block (vkpsRegExpInitAlloc / vkpsRegExpFree); results are
// std::string_views into the caller's subject, which must outlive them.
//
//     vkpch::Regex date("(\\d{4})-(\\d\\d)-(\\d\\d)", "g");
//     if (auto m = date.find(text)) use(m->str(), m->group(1));
//     std::string swapped = date.replace(text, "$3/$2/$1");
//
// The const search methods of one Regex may run on many threads at once:
// every search writes the compiled block's work area, so each runs on a
// whole copy of the block taken from the Regex's few idle copies (or made
// afresh when all are in use) and put back afterwards.
#ifndef VKPCH_HPP
#define VKPCH_HPP

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "vkpch.h"

namespace vkpch {

// One line of text for every status the library returns.
inline const char* statusText(vkpStatus status) {
    switch (status) {
        case VKP_OK: return "success";
        case VKP_WARN_FEW_RECORDS: return "match found, but the record array is shorter than the group count";
        case VKP_WARN_SLOTS_FULL: return "all output slots are used and source text remains";
        case VKP_WARN_PIECE_CUT: return "a piece longer than its slot was cut";
        case VKP_ERR_NO_SUCH_ID: return "no pattern has that identifier";
        case VKP_ERR_ZERO_ID: return "pattern identifier 0 is not allowed";
        case VKP_ERR_SIZE: return "a count or size is below 1";
        case VKP_ERR_FORMAT: return "the subject format must be 0 (bytes) or 1 (UTF-8)";
        case VKP_ERR_NULL: return "null pointer argument, or out of memory";
        case VKP_ERR_SET_FULL: return "the pattern set is full";
        case VKP_ERR_LENGTH: return "negative or too large length, or a range outside the string";
        case VKP_ERR_PROPERTY: return "unknown \\p or \\P property name, or \\x{ without }";
        case VKP_ERR_CLASS: return "malformed character class";
        case VKP_ERR_GROUP_NUMBER: return "reference to a group that does not exist";
        case VKP_ERR_PARENTHESIS: return "unmatched parenthesis or malformed group";
        case VKP_ERR_QUANTIFIER: return "quantifier with nothing to repeat or with bad bounds";
        case VKP_ERR_MATCH_LIMIT: return "the match budget ran out before a match was found";
        case VKP_ERR_NOT_COMPILED: return "not a compiled pattern";
        case VKP_ERR_OPTION: return "unknown option letter (known: i m s x g)";
        default: return "unknown status";
    }
}

namespace detail {

constexpr vkp32u kOpAnchor = 0x10000005u;
constexpr vkp32u kOpClass = 0x10000003u;

inline const vkpRegExpInstruction* Program(const vkpRegExpState* s) {
    return reinterpret_cast<const vkpRegExpInstruction*>(reinterpret_cast<const unsigned char*>(s) +
                                                         VKP_REGEXP_HEAD_SIZE);
}

// Whether a search may read the byte behind the subject: \b and \B do.
inline bool ReadsBehindSubject(const vkpRegExpState* s) {
    const vkpRegExpInstruction* p = Program(s);
    for (int i = 0; i < s->instructionCount; ++i) {
        if (p[i].op == kOpAnchor && (p[i].a == 'b' || p[i].a == 'B')) return true;
        if (p[i].op == kOpClass) i += std::max(p[i].b, 0);
    }
    return false;
}

// A compiled block of `bytes` bytes: the whole block, as the search may use
// the room behind the program.
inline vkpRegExpState* CopyBlock(const vkpRegExpState* source, std::size_t bytes) {
    auto* block = reinterpret_cast<vkpRegExpState*>(new std::uint64_t[(bytes + 7) / 8]);
    std::memcpy(block, source, bytes);
    return block;
}
inline void FreeBlock(vkpRegExpState* block) { delete[] reinterpret_cast<std::uint64_t*>(block); }

// Idle copies of one compiled block. A search takes one (a fresh copy when
// none is idle) and gives it back; a copy keeps what the searches worked
// out from the program, so it is made once, not per search. Lock-free: a
// slot's exchange hands its copy to one taker only.
class BlockPool {
public:
    BlockPool() = default;
    BlockPool(const BlockPool&) = delete;
    BlockPool& operator=(const BlockPool&) = delete;
    ~BlockPool() { Clear(); }

    // A copy of source (`bytes` bytes) for one search, global or not.
    vkpRegExpState* Take(const vkpRegExpState* source, std::size_t bytes, bool global) {
        vkpRegExpState* block = nullptr;
        for (auto& slot : idle_)
            if ((block = slot.exchange(nullptr, std::memory_order_acquire))) break;
        if (block)  // the setters may have changed the header words since
            std::memcpy(block, source, offsetof(vkpRegExpState, workArea));
        else
            block = CopyBlock(source, bytes);
        block->options = global ? block->options | VKP_REGEXP_GLOBAL : block->options & ~VKP_REGEXP_GLOBAL;
        return block;
    }
    void Give(vkpRegExpState* block) {
        for (auto& slot : idle_) {
            vkpRegExpState* empty = nullptr;
            if (slot.compare_exchange_strong(empty, block, std::memory_order_release)) return;
        }
        FreeBlock(block);
    }
    // Frees the idle copies; no search may run meanwhile.
    void Clear() {
        for (auto& slot : idle_) FreeBlock(slot.exchange(nullptr));
    }

private:
    std::atomic<vkpRegExpState*> idle_[8] = {};
};

// One search's copy, given back when the search ends.
class Lease {
public:
    Lease(BlockPool& pool, const vkpRegExpState* source, std::size_t bytes, bool global)
        : pool_(pool), block_(pool.Take(source, bytes, global)) {}
    Lease(const Lease&) = delete;
    Lease& operator=(const Lease&) = delete;
    ~Lease() { pool_.Give(block_); }
    vkpRegExpState* get() const { return block_; }

private:
    BlockPool& pool_;
    vkpRegExpState* block_;
};

inline const vkp8u* Bytes(const char* p) {
    static const char empty[2] = {0, 0};
    return reinterpret_cast<const vkp8u*>(p ? p : empty);
}

}  // namespace detail

// A position in the subject: offset and length in bytes.
struct Span {
    std::size_t offset, length;
    bool operator==(const Span& o) const { return offset == o.offset && length == o.length; }
};

// One match: its position in the subject and its groups (group 0 is the
// whole match; an empty optional for a group that did not take part).
class Match {
public:
    // records point into `searched`, which stands for `subject` (the same
    // bytes, possibly a copy).
    Match(std::string_view subject, const char* searched, const vkpRegExpFind* records, int count) {
        for (int k = 0; k < count; ++k) {
            if (records[k].pMatch && records[k].matchLen >= 0)
                spans_.emplace_back(Span{std::size_t(reinterpret_cast<const char*>(records[k].pMatch) - searched),
                                         std::size_t(records[k].matchLen)});
            else
                spans_.emplace_back(std::nullopt);
        }
        subject_ = subject;
    }
    std::string_view str() const { return group(0).value_or(std::string_view()); }
    std::size_t position() const { return span(0) ? span(0)->offset : 0; }
    std::size_t length() const { return span(0) ? span(0)->length : 0; }
    std::size_t size() const { return spans_.size(); }  // groups reported, the whole match included
    std::optional<Span> span(std::size_t k) const { return k < spans_.size() ? spans_[k] : std::nullopt; }
    std::optional<std::string_view> group(std::size_t k) const {
        const std::optional<Span> s = span(k);
        if (!s) return std::nullopt;
        return subject_.substr(s->offset, s->length);
    }

private:
    std::string_view subject_;
    std::vector<std::optional<Span>> spans_;
};

// A parsed replacement template ("$&", "$1"...; see vkpsRegExpReplaceInit).
// It points into its own copy of the text.
class Template {
public:
    Template(std::string_view text) : text_(text) { Parse(); }  // NOLINT(google-explicit-constructor)
    Template(const char* text) : Template(std::string_view(text ? text : "")) {}  // NOLINT
    Template(const std::string& text) : Template(std::string_view(text)) {}        // NOLINT
    Template(const Template& o) : text_(o.text_) { Parse(); }
    Template(Template&& o) noexcept : Template(static_cast<const Template&>(o)) {}
    Template& operator=(const Template& o) {
        if (this != &o) {
            text_ = o.text_;
            Parse();
        }
        return *this;
    }
    Template& operator=(Template&& o) noexcept { return *this = static_cast<const Template&>(o); }

    bool ok() const { return status_ == 0; }
    vkpStatus status() const { return status_; }
    const std::string& text() const { return text_; }
    // Offset of the "$" of the first bad reference (the text's length when
    // there is none).
    std::size_t errorOffset() const {
        for (std::size_t i = 0; i < text_.size(); ++i) {
            if (text_[i] != '$') continue;
            std::size_t k = i + 1;
            bool nonZero = false;
            for (; k < text_.size() && text_[k] >= '0' && text_[k] <= '9'; ++k) nonZero |= text_[k] != '0';
            if (k == i + 1 && k < text_.size() && text_[k] == '&') continue;
            if (!nonZero) return i;
            i = k - 1;
        }
        return text_.size();
    }
    // The parsed items. Replacing only reads them.
    vkpRegExpReplaceState* state() const {
        return reinterpret_cast<vkpRegExpReplaceState*>(const_cast<std::uint64_t*>(block_.data()));
    }

private:
    void Parse() {
        const auto* bytes = reinterpret_cast<const vkp8u*>(text_.c_str());
        int size = 0;
        vkpsRegExpReplaceGetSize(bytes, &size);
        block_.assign((std::size_t(size) + 7) / 8, 0);
        status_ = vkpsRegExpReplaceInit(bytes, state());
    }
    std::string text_;
    std::vector<std::uint64_t> block_;
    vkpStatus status_ = 0;
};

class Regex;

// The matches of one global search, turned into Match objects as they are
// iterated. The search runs once, when the range is made, over the whole
// subject (a search resumed inside the subject would see a false start there).
class MatchRange {
public:
    class iterator {
    public:
        using value_type = Match;
        using difference_type = std::ptrdiff_t;
        using reference = Match;
        using pointer = void;
        using iterator_category = std::input_iterator_tag;
        iterator(const MatchRange* r, std::size_t at) : r_(r), at_(at) {}
        Match operator*() const { return r_->At(at_); }
        iterator& operator++() {
            at_ += r_->per_;
            return *this;
        }
        iterator operator++(int) {
            iterator t = *this;
            ++*this;
            return t;
        }
        bool operator==(const iterator& o) const { return at_ == o.at_; }
        bool operator!=(const iterator& o) const { return at_ != o.at_; }

    private:
        const MatchRange* r_;
        std::size_t at_;
    };

    iterator begin() const { return iterator(this, 0); }
    iterator end() const { return iterator(this, records_.size() / per_ * per_); }
    bool empty() const { return records_.size() < per_; }
    std::size_t size() const { return records_.size() / per_; }
    vkpStatus status() const { return status_; }

private:
    friend class Regex;
    MatchRange() = default;
    Match At(std::size_t k) const {
        return Match(subject_, base_, &records_[k], int(per_));
    }
    std::string_view subject_;
    const char* base_ = nullptr;  // where the searched bytes were: records_ are relative to it
    std::vector<vkpRegExpFind> records_;
    std::size_t per_ = 1;
    vkpStatus status_ = 0;
};

// A compiled pattern. Movable, not copyable. Its const methods may be
// called from many threads at once.
class Regex {
public:
    Regex() = default;
    explicit Regex(std::string_view pattern, std::string_view options = {})
        : pattern_(pattern), options_(options) {
        if (pattern_.find('\0') != std::string::npos) {  // the compiler reads up to the first zero
            status_ = VKP_ERR_LENGTH;
            errorOffset_ = int(pattern_.find('\0'));
            return;
        }
        status_ = vkpsRegExpInitAlloc(pattern_.c_str(), options_.c_str(), &state_, &errorOffset_);
        int bytes = 0;
        vkpsRegExpGetSize(pattern_.c_str(), &bytes);
        blockBytes_ = std::size_t(bytes);
        if (state_) readsBehind_ = detail::ReadsBehindSubject(state_);
    }
    explicit Regex(const char* pattern, const char* options = "")
        : Regex(std::string_view(pattern ? pattern : ""), std::string_view(options ? options : "")) {}
    explicit Regex(const std::string& pattern, const std::string& options = {})
        : Regex(std::string_view(pattern), std::string_view(options)) {}
    Regex(Regex&& o) noexcept { *this = std::move(o); }
    Regex& operator=(Regex&& o) noexcept {
        if (this != &o) {
            Release();
            o.pool_.Clear();
            state_ = std::exchange(o.state_, nullptr);
            blockBytes_ = o.blockBytes_;
            status_ = std::exchange(o.status_, VKP_ERR_NOT_COMPILED);
            errorOffset_ = o.errorOffset_;
            readsBehind_ = o.readsBehind_;
            pattern_ = std::move(o.pattern_);
            options_ = std::move(o.options_);
        }
        return *this;
    }
    Regex(const Regex&) = delete;
    Regex& operator=(const Regex&) = delete;
    ~Regex() { Release(); }

    bool ok() const { return state_ != nullptr; }
    vkpStatus status() const { return status_; }    // the compile status
    int errorOffset() const { return errorOffset_; }  // where a compile error lies
    const std::string& pattern() const { return pattern_; }
    // The compiled block, for the C functions. Searching it directly is not
    // thread-safe; change it with the setters below only.
    vkpRegExpState* state() const { return state_; }
    int groupCount() const { return state_ ? state_->groupCount : 0; }  // 1 + capturing groups
    bool global() const { return state_ && (state_->options & VKP_REGEXP_GLOBAL); }
    // Not thread-safe: no search may run meanwhile.
    vkpStatus setMatchLimit(int limit) { return state_ ? vkpsRegExpSetMatchLimit(limit, state_) : VKP_ERR_NOT_COMPILED; }
    vkpStatus setFormat(int format) { return state_ ? vkpsRegExpSetFormat(format, state_) : VKP_ERR_NOT_COMPILED; }

    // The first match with all its groups. *status (when given) receives the
    // search's status (-188 when the budget ran out).
    std::optional<Match> find(std::string_view subject, vkpStatus* status = nullptr) const {
        return FindIn(subject, !readsBehind_, status);
    }
    // A std::string and a C string have a readable zero behind them.
    std::optional<Match> find(const std::string& subject, vkpStatus* status = nullptr) const {
        return FindIn(subject, true, status);
    }
    std::optional<Match> find(const char* subject, vkpStatus* status = nullptr) const {
        return FindIn(subject ? std::string_view(subject) : std::string_view(), true, status);
    }

    // Every match, each with all its groups, as one global search finds
    // them (also when the pattern was compiled without "g").
    MatchRange matches(std::string_view subject) const { return AllIn(subject, !readsBehind_); }
    MatchRange matches(const std::string& subject) const { return AllIn(subject, true); }
    std::vector<Match> findAll(std::string_view subject, vkpStatus* status = nullptr) const {
        return Collect(matches(subject), status);
    }
    std::vector<Match> findAll(const std::string& subject, vkpStatus* status = nullptr) const {
        return Collect(matches(subject), status);
    }
    std::vector<Match> findAll(const char* subject, vkpStatus* status = nullptr) const {
        return Collect(AllIn(subject ? std::string_view(subject) : std::string_view(), true), status);
    }

    // Writes the subject with the first match (every match, for a pattern
    // compiled with "g") replaced to sink(const char*, size_t). The whole
    // subject is one search: the destination grows until everything fits.
    // Returns the first negative status (-119 for a subject or result
    // beyond 2 GiB), else whether a match was replaced (1) or not (0).
    template <class Sink>
    vkpStatus replaceTo(std::string_view subject, const Template& tmpl, Sink&& sink) const {
        std::string out;
        const vkpStatus st = ReplaceIn(subject, !readsBehind_, tmpl, out);
        if (st >= 0 && !out.empty()) sink(out.data(), out.size());
        return st;
    }
    std::string replace(std::string_view subject, const Template& tmpl, vkpStatus* status = nullptr) const {
        std::string out;
        const vkpStatus st = ReplaceIn(subject, !readsBehind_, tmpl, out);
        if (status) *status = st;
        return out;
    }
    std::string replace(const std::string& subject, const Template& tmpl, vkpStatus* status = nullptr) const {
        std::string out;
        const vkpStatus st = ReplaceIn(subject, true, tmpl, out);
        if (status) *status = st;
        return out;
    }
    std::string replace(const char* subject, const Template& tmpl, vkpStatus* status = nullptr) const {
        std::string out;
        const vkpStatus st = ReplaceIn(subject ? std::string_view(subject) : std::string_view(), true, tmpl, out);
        if (status) *status = st;
        return out;
    }

private:
    // The bytes a search runs over: the subject itself when the byte behind
    // it may be read (or is never read), else a copy with a line feed behind.
    // Never null.
    static const char* Searched(std::string_view subject, bool readable, std::string& copy) {
        if (subject.empty()) return reinterpret_cast<const char*>(detail::Bytes(nullptr));
        if (readable) return subject.data();
        copy.reserve(subject.size() + 1);
        copy.assign(subject.data(), subject.size());
        copy.push_back('\n');
        return copy.data();
    }

    // One single search over bytes (the subject's bytes or their copy) into
    // records (room for every group); *count is set to the records written.
    vkpStatus FindRecords(const char* bytes, std::size_t size, vkpRegExpFind* records, int* count) const {
        *count = groupCount();
        const detail::Lease block(pool_, state_, blockBytes_, false);
        const vkpStatus st = vkpsRegExpFind_8u(detail::Bytes(bytes), int(size), block.get(), records, count);
        if (st < 0) *count = 0;
        return st;
    }

    std::optional<Match> FindIn(std::string_view subject, bool readable, vkpStatus* status) const {
        vkpStatus st = state_ ? 0 : VKP_ERR_NOT_COMPILED;
        if (subject.size() > std::size_t(INT32_MAX)) st = VKP_ERR_LENGTH;
        std::string copy;
        const char* bytes = Searched(subject, readable, copy);
        // The records of a search: on the stack for the common group counts.
        vkpRegExpFind onStack[16];
        std::vector<vkpRegExpFind> onHeap(groupCount() > 16 ? std::size_t(groupCount()) : 0);
        vkpRegExpFind* records = onHeap.empty() ? onStack : onHeap.data();
        int count = 0;
        if (st == 0) st = FindRecords(bytes, subject.size(), records, &count);
        if (status) *status = st;
        if (st < 0 || count == 0) return std::nullopt;
        return Match(subject, bytes, records, count);
    }

    static std::vector<Match> Collect(const MatchRange& range, vkpStatus* status) {
        if (status) *status = range.status();
        return std::vector<Match>(range.begin(), range.end());
    }

    // A global replace with an empty template reports record 0 and every
    // group of each match in its record array.
    MatchRange AllIn(std::string_view subject, bool readable) const {
        MatchRange r;
        r.subject_ = subject;
        r.per_ = std::size_t(std::max(groupCount(), 1));
        if (!state_ || subject.size() > std::size_t(INT32_MAX)) {
            r.status_ = state_ ? VKP_ERR_LENGTH : VKP_ERR_NOT_COMPILED;
            return r;
        }
        std::string copy;
        const char* bytes = Searched(subject, readable, copy);
        r.base_ = bytes;
        if (subject.empty()) {  // the replace call takes no empty source
            r.records_.resize(std::size_t(groupCount()));
            int count = 0;
            r.status_ = FindRecords(bytes, 0, r.records_.data(), &count);
            r.records_.resize(std::size_t(count));
            return r;
        }
        static const vkpRegExpReplaceState none = [] {
            vkpRegExpReplaceState s{};
            vkpsRegExpReplaceInit(nullptr, &s);
            return s;
        }();
        std::string out;
        r.status_ = ReplaceCall(std::string_view(bytes, subject.size()), out, r.records_,
                                const_cast<vkpRegExpReplaceState*>(&none), true);
        if (r.status_ < 0) r.records_.clear();
        return r;
    }

    vkpStatus ReplaceIn(std::string_view subject, bool readable, const Template& tmpl, std::string& out) const {
        out.clear();
        if (!state_ || !tmpl.ok()) return state_ ? tmpl.status() : VKP_ERR_NOT_COMPILED;
        if (subject.size() > std::size_t(INT32_MAX)) return VKP_ERR_LENGTH;
        if (subject.empty()) return ReplaceEmpty(tmpl, out);
        std::string copy;
        std::vector<vkpRegExpFind> records;
        const char* bytes = Searched(subject, readable, copy);
        return ReplaceCall(std::string_view(bytes, subject.size()), out, records, tmpl.state(), global());
    }

    // One replace call over the whole of src into out. The record array grows
    // until a call leaves it not full (a global search finds at most two
    // matches a position), and the destination until all of src is consumed.
    vkpStatus ReplaceCall(std::string_view src, std::string& out, std::vector<vkpRegExpFind>& records,
                          vkpRegExpReplaceState* tmpl, bool all) const {
        const std::size_t groups = std::size_t(groupCount());
        const std::size_t most = groups * (2 * src.size() + 2);
        std::size_t room = all ? std::min(most, groups * 64) : groups;
        out.resize(std::max<std::size_t>(src.size() + src.size() / 4 + 64, out.capacity()));
        for (;;) {
            records.resize(room);
            int srcLen = int(src.size());
            int dstLen = int(std::min(out.size(), std::size_t(INT32_MAX)));
            int count = int(room);
            const detail::Lease block(pool_, state_, blockBytes_, all);
            const vkpStatus st = vkpsRegExpReplace_8u(detail::Bytes(src.data()), &srcLen,
                                                      reinterpret_cast<vkp8u*>(&out[0]), &dstLen, records.data(),
                                                      &count, block.get(), tmpl);
            if (st < 0) {
                out.clear();
                return st;
            }
            if (all && std::size_t(count) == room && room < most) {
                room = std::min(most, room * 4);
                continue;
            }
            // A piece is written only when it fits strictly within the room
            // left, so the whole result needs one byte more than its size.
            const std::size_t size = ResultSize(src, records.data(), std::size_t(count), tmpl);
            if (std::size_t(srcLen) < src.size() || std::size_t(dstLen) != size) {
                if (size >= std::size_t(INT32_MAX)) {
                    out.clear();
                    return VKP_ERR_LENGTH;
                }
                out.resize(size + 1);
                continue;
            }
            out.resize(std::size_t(dstLen));
            records.resize(std::size_t(count));
            return count > 0 ? 1 : 0;
        }
    }

    // The length of src with the matches in records replaced by the template.
    std::size_t ResultSize(std::string_view src, const vkpRegExpFind* records, std::size_t count,
                           const vkpRegExpReplaceState* tmpl) const {
        const std::size_t groups = std::size_t(std::max(groupCount(), 1));
        std::size_t size = src.size();
        for (std::size_t r = 0; r + groups <= count; r += groups) {
            size -= std::size_t(std::max(records[r].matchLen, 0));
            for (int i = 0; i < tmpl->itemCount; ++i) {
                const vkpRegExpReplaceItem& item = tmpl->pItems[i];
                if (item.kind == VKP_REPLACE_LITERAL) size += std::size_t(item.value);
                else if (std::size_t(item.value) < groups && records[r + std::size_t(item.value)].pMatch)
                    size += std::size_t(std::max(records[r + std::size_t(item.value)].matchLen, 0));
            }
        }
        return size;
    }

    // The replace call takes no empty source: an empty subject that matches
    // becomes the template's literal text (its groups are all empty).
    vkpStatus ReplaceEmpty(const Template& tmpl, std::string& out) const {
        vkpStatus st = 0;
        if (!FindIn(std::string_view(), true, &st)) return st < 0 ? st : 0;
        const vkpRegExpReplaceState* t = tmpl.state();
        for (int i = 0; i < t->itemCount; ++i)
            if (t->pItems[i].kind == VKP_REPLACE_LITERAL)
                out.append(reinterpret_cast<const char*>(t->pItems[i].pText), std::size_t(t->pItems[i].value));
        return 1;
    }

    void Release() {
        pool_.Clear();
        if (state_) vkpsRegExpFree(state_);
        state_ = nullptr;
    }

    friend class PatternSet;
    vkpRegExpState* state_ = nullptr;
    std::size_t blockBytes_ = 0;
    mutable detail::BlockPool pool_;
    vkpStatus status_ = VKP_ERR_NOT_COMPILED;
    int errorOffset_ = -1;
    bool readsBehind_ = false;
    std::string pattern_, options_;
};

// A pattern set: each added Regex under a non-zero identifier; one search
// runs every pattern over a subject. The Regex objects must outlive the set.
// The set searches copies of their blocks of its own, so a set serves one
// thread at a time while the Regex objects stay free for other threads.
class PatternSet {
public:
    struct Result {
        int id;
        vkpStatus status;           // that pattern's search status
        std::optional<Match> match;  // its first match, all groups
    };

    explicit PatternSet(int capacity) {
        status_ = vkpsRegExpMultiInitAlloc(&set_, capacity);
        if (set_) blocks_.resize(std::size_t(capacity));
    }
    PatternSet(PatternSet&& o) noexcept
        : set_(std::exchange(o.set_, nullptr)), status_(o.status_), blocks_(std::move(o.blocks_)) {}
    PatternSet& operator=(PatternSet&& o) noexcept {
        std::swap(set_, o.set_);
        std::swap(status_, o.status_);
        std::swap(blocks_, o.blocks_);
        return *this;
    }
    PatternSet(const PatternSet&) = delete;
    PatternSet& operator=(const PatternSet&) = delete;
    ~PatternSet() {
        if (set_) vkpsRegExpMultiFree(set_);
    }

    bool ok() const { return set_ != nullptr; }
    vkpStatus status() const { return status_; }
    // -9 when the set is full, -5 for identifier 0; -2 when no pattern has
    // the identifier (remove, modify). They act on the lowest such slot.
    vkpStatus add(const Regex& re, int id) {
        if (!set_) return VKP_ERR_NULL;
        int slot = 0;
        while (slot < set_->capacity && set_->pPatterns[slot]) ++slot;
        if (slot == set_->capacity || id == 0) return vkpsRegExpMultiAdd(re.state(), id, set_);
        return vkpsRegExpMultiAdd(Copy(re, std::size_t(slot)), id, set_);
    }
    vkpStatus remove(int id) { return set_ ? vkpsRegExpMultiDelete(id, set_) : VKP_ERR_NULL; }
    vkpStatus modify(const Regex& re, int id) {
        if (!set_) return VKP_ERR_NULL;
        int slot = 0;
        while (slot < set_->capacity && !(set_->pPatterns[slot] && set_->pIds[slot] == id)) ++slot;
        if (slot == set_->capacity || id == 0) return vkpsRegExpMultiModify(re.state(), id, set_);
        return vkpsRegExpMultiModify(Copy(re, std::size_t(slot)), id, set_);
    }

    // One result per pattern in the set, in slot order. (The set refuses an
    // empty subject; that one is searched pattern by pattern.) A pattern
    // compiled with "g" reports its first match's groups as its global
    // search does.
    std::vector<Result> find(std::string_view subject) {
        std::vector<Result> out;
        if (!set_ || subject.size() > std::size_t(INT32_MAX)) return out;
        const int n = set_->capacity;
        results_.assign(std::size_t(n), vkpRegExpMultiFind{0, 0, 0, 0, nullptr});
        records_.resize(std::size_t(n));
        bool readsBehind = false;
        for (int i = 0; i < n; ++i) {
            if (!set_->pPatterns[i]) continue;
            readsBehind |= detail::ReadsBehindSubject(set_->pPatterns[i]);
            records_[std::size_t(i)].resize(std::size_t(set_->pPatterns[i]->groupCount));
            results_[std::size_t(i)].numMatches = int(records_[std::size_t(i)].size());
            results_[std::size_t(i)].pMatches = records_[std::size_t(i)].data();
        }
        const char* searched = subject.data();
        if (readsBehind && !subject.empty()) {
            copy_.assign(subject.data(), subject.size());
            copy_.push_back('\n');
            searched = copy_.data();
        }
        const vkp8u* bytes = detail::Bytes(subject.empty() ? nullptr : searched);
        if (!subject.empty()) {
            vkpsRegExpMultiFind_8u(bytes, int(subject.size()), results_.data(), set_);
        } else {
            for (int i = 0; i < n; ++i) {
                if (!set_->pPatterns[i]) continue;
                vkpRegExpMultiFind& r = results_[std::size_t(i)];
                r.status = vkpsRegExpFind_8u(bytes, 0, const_cast<vkpRegExpState*>(set_->pPatterns[i]), r.pMatches,
                                             &r.numMatches);
                r.patternId = set_->pIds[i];
                r.isValid = 1;
            }
        }
        for (const vkpRegExpMultiFind& r : results_) {
            if (!r.isValid) continue;
            Result res{r.patternId, r.status, std::nullopt};
            if (r.status >= 0 && r.numMatches > 0)
                res.match.emplace(subject, reinterpret_cast<const char*>(bytes), r.pMatches, r.numMatches);
            out.push_back(std::move(res));
        }
        return out;
    }

private:
    // The set's own copy of re's block for a slot (its work area is written
    // by the set's searches); null for a pattern that did not compile.
    vkpRegExpState* Copy(const Regex& re, std::size_t slot) {
        const vkpRegExpState* s = re.state();
        if (!s) return nullptr;
        blocks_[slot].resize((re.blockBytes_ + 7) / 8);
        std::memcpy(blocks_[slot].data(), s, re.blockBytes_);
        return reinterpret_cast<vkpRegExpState*>(blocks_[slot].data());
    }

    vkpRegExpMultiState* set_ = nullptr;
    vkpStatus status_ = 0;
    std::vector<std::vector<std::uint64_t>> blocks_;
    std::vector<vkpRegExpMultiFind> results_;
    std::vector<std::vector<vkpRegExpFind>> records_;
    std::string copy_;
};

}  // namespace vkpch

#endif  // VKPCH_HPP
