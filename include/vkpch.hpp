// vkpch.hpp: C++17 wrappers over the regular-expression functions of vkpch.h.
// Header only; needs no exceptions (errors are statuses). A Regex owns its
// compiled block (vkpsRegExpInitAlloc / vkpsRegExpFree); results are
// std::string_views into the caller's subject, which must outlive them.
//
//     vkpch::Regex date("(\\d{4})-(\\d\\d)-(\\d\\d)", "g");
//     if (auto m = date.find(text)) use(m->str(), m->group(1));
//     std::string swapped = date.replace(text, vkpch::Template("$3/$2/$1"));
#ifndef VKPCH_HPP
#define VKPCH_HPP

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "vkpch.h"

namespace vkpch {

// One match: its position in the subject and its groups (group 0 is the
// whole match; an empty optional for a group that did not take part).
class Match {
public:
    Match(std::string_view subject, const vkpRegExpFind* records, int count) : position_(0) {
        for (int k = 0; k < count; ++k) {
            if (records[k].pMatch && records[k].matchLen >= 0)
                groups_.emplace_back(std::string_view(reinterpret_cast<const char*>(records[k].pMatch),
                                                      std::size_t(records[k].matchLen)));
            else
                groups_.emplace_back(std::nullopt);
        }
        if (count > 0 && records[0].pMatch)
            position_ = std::size_t(reinterpret_cast<const char*>(records[0].pMatch) - subject.data());
    }
    std::string_view str() const { return groups_.empty() || !groups_[0] ? std::string_view() : *groups_[0]; }
    std::size_t position() const { return position_; }
    std::size_t size() const { return groups_.size(); }  // groups reported, the whole match included
    std::optional<std::string_view> group(std::size_t k) const { return k < groups_.size() ? groups_[k] : std::nullopt; }

private:
    std::size_t position_;
    std::vector<std::optional<std::string_view>> groups_;
};

// A parsed replacement template ("$&", "$1"...; see vkpsRegExpReplaceInit).
// It points into its own copy of the text.
class Template {
public:
    explicit Template(std::string_view text) : text_(text) {
        int size = 0;
        vkpsRegExpReplaceGetSize(Bytes(), &size);
        block_.resize((std::size_t(size) + 7) / 8);
        status_ = vkpsRegExpReplaceInit(Bytes(), state());
    }
    Template(const Template&) = delete;
    Template& operator=(const Template&) = delete;

    bool ok() const { return status_ == 0; }
    vkpStatus status() const { return status_; }
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
    vkpRegExpReplaceState* state() const { return reinterpret_cast<vkpRegExpReplaceState*>(block_.data()); }

private:
    const vkp8u* Bytes() const { return reinterpret_cast<const vkp8u*>(text_.c_str()); }
    std::string text_;
    mutable std::vector<std::uint64_t> block_;
    vkpStatus status_ = 0;
};

// A compiled pattern. Movable, not copyable; one Regex serves one thread at
// a time (a search uses the block's work area).
class Regex {
public:
    Regex() = default;
    explicit Regex(const char* pattern, const char* options = "") : pattern_(pattern), options_(options ? options : "") {
        status_ = vkpsRegExpInitAlloc(pattern, options_.c_str(), &state_, &errorOffset_);
    }
    Regex(Regex&& o) noexcept { *this = std::move(o); }
    Regex& operator=(Regex&& o) noexcept {
        if (this != &o) {
            Release();
            state_ = std::exchange(o.state_, nullptr);
            all_ = std::exchange(o.all_, nullptr);
            status_ = o.status_;
            errorOffset_ = o.errorOffset_;
            pattern_ = std::move(o.pattern_);
            options_ = std::move(o.options_);
            buffer_ = std::move(o.buffer_);
            records_ = std::move(o.records_);
        }
        return *this;
    }
    Regex(const Regex&) = delete;
    Regex& operator=(const Regex&) = delete;
    ~Regex() { Release(); }

    bool ok() const { return state_ != nullptr; }
    vkpStatus status() const { return status_; }    // the compile status
    int errorOffset() const { return errorOffset_; }  // where a compile error lies
    vkpRegExpState* state() const { return state_; }
    int groupCount() const { return state_ ? state_->groupCount : 0; }  // 1 + capturing groups
    bool global() const { return state_ && (state_->options & VKP_REGEXP_GLOBAL); }

    // The first match with all its groups. *status (when given) receives the
    // search's status (-188 when the budget ran out).
    std::optional<Match> find(std::string_view subject, vkpStatus* status = nullptr) const {
        if (!state_) return Failed(status, VKP_ERR_NOT_COMPILED);
        std::vector<vkpRegExpFind>& records = records_;
        records.resize(std::size_t(groupCount()));
        int count = int(records.size());
        const vkpStatus st = vkpsRegExpFind_8u(Bytes(subject), int(subject.size()), Single(), records.data(), &count);
        if (status) *status = st;
        if (st < 0 || count == 0) return std::nullopt;
        return Match(subject, records.data(), count);
    }

    // Every match, each with all its groups, as one global search finds
    // them (also when the pattern was compiled without "g").
    std::vector<Match> findAll(std::string_view subject, vkpStatus* status = nullptr) const {
        std::vector<Match> out;
        if (subject.empty()) {
            if (auto m = find(subject, status)) out.push_back(std::move(*m));
            return out;
        }
        // A global replace with an empty template reports record 0 and every
        // group of each match in its record array.
        vkpRegExpReplaceState none;
        vkpsRegExpReplaceInit(nullptr, &none);
        std::string scratch(subject.size() + 1, '\0');
        int srcLen = 0, dstLen = 0;
        std::vector<vkpRegExpFind>& records = records_;
        const vkpStatus st = ReplaceCall(subject, &srcLen, scratch, &dstLen, records, &none, Global());
        if (status) *status = st;
        const int groups = groupCount();
        for (std::size_t r = 0; st >= 0 && r < records.size(); r += std::size_t(groups))
            out.emplace_back(subject, &records[r], int(std::min(records.size() - r, std::size_t(groups))));
        return out;
    }

    // Writes the subject with the first match (every match, for a pattern
    // compiled with "g") replaced, in pieces, to sink(const char*, size_t):
    // vkpsRegExpReplace_8u's resume protocol over a buffer of bufferSize
    // bytes, which grows only when one piece does not fit. Returns the
    // first negative status, else whether a match was replaced (1) or not (0).
    template <class Sink>
    vkpStatus replaceTo(std::string_view subject, const Template& tmpl, Sink&& sink,
                        std::size_t bufferSize = 64 * 1024) const {
        if (!state_ || !tmpl.ok()) return state_ ? tmpl.status() : VKP_ERR_NOT_COMPILED;
        if (subject.empty()) return ReplaceEmpty(subject, tmpl, sink);
        std::string& buffer = buffer_;
        if (buffer.size() < bufferSize || buffer.empty()) buffer.resize(bufferSize ? bufferSize : 1);
        std::vector<vkpRegExpFind>& records = records_;
        bool replaced = false;
        for (std::size_t pos = 0; pos < subject.size();) {
            const std::string_view rest = subject.substr(pos);
            int srcLen = 0, dstLen = 0;
            const vkpStatus st = ReplaceCall(rest, &srcLen, buffer, &dstLen, records, tmpl.state(), state_);
            if (st < 0) return st;
            sink(buffer.data(), std::size_t(dstLen));
            replaced |= !records.empty();
            pos += std::size_t(srcLen);
            // Once the single replacement is written the rest is a plain copy.
            if (!global() && !records.empty() &&
                std::size_t(srcLen) >= Offset(rest, records[0]) + std::size_t(records[0].matchLen)) {
                sink(subject.data() + pos, subject.size() - pos);
                break;
            }
        }
        return replaced ? 1 : 0;
    }

    std::string replace(std::string_view subject, const Template& tmpl, vkpStatus* status = nullptr) const {
        std::string out;
        const vkpStatus st = replaceTo(subject, tmpl, [&out](const char* p, std::size_t n) { out.append(p, n); });
        if (status) *status = st;
        return out;
    }

private:
    static const vkp8u* Bytes(std::string_view s) {
        static const char empty = 0;
        return reinterpret_cast<const vkp8u*>(s.data() ? s.data() : &empty);
    }
    static std::size_t Offset(std::string_view s, const vkpRegExpFind& r) {
        return std::size_t(reinterpret_cast<const char*>(r.pMatch) - s.data());
    }
    static std::optional<Match> Failed(vkpStatus* status, vkpStatus st) {
        if (status) *status = st;
        return std::nullopt;
    }

    // One replace call into buffer. The record array grows until a call
    // leaves it not full (a global search finds at most two matches a
    // position), and the buffer until the call makes progress.
    vkpStatus ReplaceCall(std::string_view src, int* srcLen, std::string& buffer, int* dstLen,
                          std::vector<vkpRegExpFind>& records, vkpRegExpReplaceState* tmpl,
                          vkpRegExpState* state) const {
        const std::size_t groups = std::size_t(groupCount());
        const bool all = state->options & VKP_REGEXP_GLOBAL;
        const std::size_t most = groups * (2 * src.size() + 2);
        std::size_t room = all ? std::min(most, groups * 64) : groups;
        for (;;) {
            records.resize(room);
            *srcLen = int(src.size());
            *dstLen = int(std::min(buffer.size(), std::size_t(INT32_MAX)));
            int count = int(room);
            const vkpStatus st = vkpsRegExpReplace_8u(Bytes(src), srcLen, reinterpret_cast<vkp8u*>(&buffer[0]), dstLen,
                                                      records.data(), &count, state, tmpl);
            if (st < 0) return st;
            if (all && std::size_t(count) == room && room < most) {
                room = std::min(most, room * 4);
                continue;
            }
            if (*srcLen == 0) {  // the next piece does not fit
                buffer.resize(buffer.size() * 2);
                continue;
            }
            records.resize(std::size_t(count));
            return st;
        }
    }

    // The replace call takes no empty source: an empty subject that matches
    // becomes the template's literal text (its groups are all empty).
    template <class Sink>
    vkpStatus ReplaceEmpty(std::string_view subject, const Template& tmpl, Sink& sink) const {
        vkpStatus st = 0;
        if (!find(subject, &st)) return st < 0 ? st : 0;
        const vkpRegExpReplaceState* t = tmpl.state();
        for (int i = 0; i < t->itemCount; ++i)
            if (t->pItems[i].kind == VKP_REPLACE_LITERAL)
                sink(reinterpret_cast<const char*>(t->pItems[i].pText), std::size_t(t->pItems[i].value));
        return 1;
    }

    // The pattern for single searches and the one for global searches: the
    // compiled block itself when its option says so, else a second one
    // compiled on first use with the option added or left out.
    vkpRegExpState* Single() const { return global() ? Other() : state_; }
    vkpRegExpState* Global() const { return global() ? state_ : Other(); }
    vkpRegExpState* Other() const {
        if (!all_) {
            std::string options;
            for (char c : options_)
                if (c != 'g') options += c;
            if (!global()) options += 'g';
            int offset = 0;
            vkpsRegExpInitAlloc(pattern_.c_str(), options.c_str(), &all_, &offset);
            if (all_) {
                vkpsRegExpSetMatchLimit(state_->matchLimit, all_);
                vkpsRegExpSetFormat(state_->format, all_);
            }
        }
        return all_;
    }

    void Release() {
        if (state_) vkpsRegExpFree(state_);
        if (all_) vkpsRegExpFree(all_);
        state_ = all_ = nullptr;
    }

    vkpRegExpState* state_ = nullptr;
    mutable vkpRegExpState* all_ = nullptr;
    mutable std::string buffer_;                  // replace output, kept between calls
    mutable std::vector<vkpRegExpFind> records_;  // search records, kept between calls
    vkpStatus status_ = VKP_ERR_NOT_COMPILED;
    int errorOffset_ = -1;
    std::string pattern_, options_;
};

// A pattern set: each added Regex under a non-zero identifier; one search
// runs every pattern over a subject. The Regex objects must outlive the set
// (it keeps their blocks).
class PatternSet {
public:
    struct Result {
        int id;
        vkpStatus status;           // that pattern's search status
        std::optional<Match> match;  // its first match, all groups
    };

    explicit PatternSet(int capacity) { status_ = vkpsRegExpMultiInitAlloc(&set_, capacity); }
    PatternSet(PatternSet&& o) noexcept : set_(std::exchange(o.set_, nullptr)), status_(o.status_) {}
    PatternSet& operator=(PatternSet&& o) noexcept {
        std::swap(set_, o.set_);
        std::swap(status_, o.status_);
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
    vkpStatus add(const Regex& re, int id) { return vkpsRegExpMultiAdd(re.state(), id, set_); }
    vkpStatus remove(int id) { return vkpsRegExpMultiDelete(id, set_); }
    vkpStatus modify(const Regex& re, int id) { return vkpsRegExpMultiModify(re.state(), id, set_); }

    // One result per pattern in the set, in slot order. (The set refuses an
    // empty subject; that one is searched pattern by pattern.) A pattern
    // compiled with "g" reports its first match's groups as its global
    // search does.
    std::vector<Result> find(std::string_view subject) {
        std::vector<Result> out;
        if (!set_) return out;
        const int n = set_->capacity;
        results_.assign(std::size_t(n), vkpRegExpMultiFind{0, 0, 0, 0, nullptr});
        records_.resize(std::size_t(n));
        for (int i = 0; i < n; ++i) {
            if (!set_->pPatterns[i]) continue;
            records_[std::size_t(i)].resize(std::size_t(set_->pPatterns[i]->groupCount));
            results_[std::size_t(i)].numMatches = int(records_[std::size_t(i)].size());
            results_[std::size_t(i)].pMatches = records_[std::size_t(i)].data();
        }
        static const char empty = 0;
        const auto* bytes = reinterpret_cast<const vkp8u*>(subject.empty() ? &empty : subject.data());
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
            if (r.status >= 0 && r.numMatches > 0) res.match.emplace(subject, r.pMatches, r.numMatches);
            out.push_back(std::move(res));
        }
        return out;
    }

private:
    vkpRegExpMultiState* set_ = nullptr;
    vkpStatus status_ = 0;
    std::vector<vkpRegExpMultiFind> results_;
    std::vector<std::vector<vkpRegExpFind>> records_;
};

}  // namespace vkpch

#endif  // VKPCH_HPP
