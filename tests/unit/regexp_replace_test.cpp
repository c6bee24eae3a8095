// vkpsRegExpReplace_8u and its templates: the template rules table-driven;
// replace once and replace all against a model built from vkpsRegExpFind_8u
// and string splicing, on generated patterns, templates and subjects, at
// every destination size (destination flush against an inaccessible page),
// resumed chunk by chunk.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "support/guarded_buffer.h"
#include "support/random_text.h"
#include "support/regexp_search.h"

namespace {

using vkptest::CompiledRegExp;
using vkptest::GuardedBuffer;
using vkptest::Span;
using Matches = std::vector<std::vector<Span>>;

const vkp8u* U(const std::string& s) { return reinterpret_cast<const vkp8u*>(s.c_str()); }

// A parsed template in a block of exactly its documented size.
class Template {
public:
    explicit Template(const std::string& text) : text_(text) {
        int size = -1;
        EXPECT_EQ(vkpsRegExpReplaceGetSize(U(text_), &size), 0);
        EXPECT_EQ(size, int(16 * text_.size() + 16));
        block_ = std::make_unique<GuardedBuffer>(size_t(size));
        std::memset(block_->data(), 0xAB, block_->size());
        status_ = vkpsRegExpReplaceInit(U(text_), state());
    }
    vkpRegExpReplaceState* state() const { return block_->as<vkpRegExpReplaceState>(); }
    vkpStatus status() const { return status_; }

    // "'lit'@offset" for a literal run, "$k" for a group, space-separated.
    std::string Describe() const {
        std::string d;
        for (int i = 0; i < state()->itemCount; ++i) {
            const vkpRegExpReplaceItem& it = state()->pItems[i];
            if (!d.empty()) d += ' ';
            if (it.kind == VKP_REPLACE_GROUP) {
                d += '$';
                d += std::to_string(it.value);
                continue;
            }
            d += '\'';
            d.append(reinterpret_cast<const char*>(it.pText), size_t(it.value));
            d += "'@";
            d += std::to_string(it.pText - U(text_));
        }
        return d;
    }

private:
    std::string text_;
    std::unique_ptr<GuardedBuffer> block_;
    vkpStatus status_;
};

TEST(RegExpReplaceTemplate, Rules) {
    struct Case {
        const char* text;
        vkpStatus status;
        const char* items;
    };
    const Case cases[] = {
        {"", 0, ""},
        {"abc", 0, "'abc'@0"},
        {"$&", 0, "$0"},
        {"<$&>", 0, "'<'@0 $0 '>'@3"},
        {"$1$2", 0, "$1 $2"},
        {"$01", 0, "$1"},
        {"x$12y", 0, "'x'@0 $12 'y'@4"},
        {"$99999999999", 0, "$2147483647"},
        // The backslash is dropped and only cuts the text.
        {"a\\b", 0, "'a'@0 'b'@2"},
        {"a\\$1", 0, "'a'@0 $1"},
        {"\\\\", 0, ""},
        {"\\", 0, ""},
        {"a\\\\b\\", 0, "'a'@0 'b'@3"},
        {"$0", VKP_ERR_GROUP_NUMBER, nullptr},
        {"$00", VKP_ERR_GROUP_NUMBER, nullptr},
        {"x$", VKP_ERR_GROUP_NUMBER, nullptr},
        {"$x", VKP_ERR_GROUP_NUMBER, nullptr},
        {"a\\$", VKP_ERR_GROUP_NUMBER, nullptr},
        {"$&$", VKP_ERR_GROUP_NUMBER, nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        Template t(c.text);
        ASSERT_EQ(t.status(), c.status);
        if (c.status == 0) {
            EXPECT_EQ(t.Describe(), c.items);
            EXPECT_EQ(t.state()->pItems, reinterpret_cast<vkpRegExpReplaceItem*>(t.state() + 1));
        } else {
            EXPECT_EQ(t.state()->itemCount, int(0xABABABAB));  // left unset
        }
    }
    int size = 0;
    EXPECT_EQ(vkpsRegExpReplaceGetSize(nullptr, &size), 0);
    EXPECT_EQ(size, 16);
    vkpRegExpReplaceState empty{7, 7, reinterpret_cast<vkpRegExpReplaceItem*>(&size)};
    EXPECT_EQ(vkpsRegExpReplaceInit(nullptr, &empty), 0);
    EXPECT_EQ(empty.itemCount, 0);
    EXPECT_EQ(empty.pItems, nullptr);
}

// The matches the replace search sees, as offsets: the single search's
// records, or for a global search record 0 and every group per match (the
// pattern wrapped in one more group, so that the global search reports the
// whole match as its first group).
struct Model {
    std::string pattern;
    std::string options;
    bool global;

    Matches Find(const std::string& s, int capacity, vkpStatus* status) const {
        CompiledRegExp plain(pattern, options.c_str());
        if (!global) {
            vkptest::SearchResult r = plain.Search(s, capacity);
            *status = r.status;
            return r.records.empty() ? Matches{} : Matches{r.records};
        }
        const int groups = plain.state()->groupCount;
        CompiledRegExp wrapped("(" + pattern + ")", options.c_str());
        vkptest::SearchResult r = wrapped.Search(s, capacity);
        *status = r.status;
        Matches ms;
        for (size_t i = 0; i < r.records.size(); i += size_t(groups))
            ms.emplace_back(r.records.begin() + long(i), r.records.begin() + long(std::min(r.records.size(), i + groups)));
        return ms;
    }
};

struct Call {
    int consumed;
    std::string out;
};

// One call by the rules: a piece is written only when it fits strictly.
Call Splice(const std::string& s, int room, const Matches& ms, const vkpRegExpReplaceState* t) {
    if (ms.empty()) {
        const int n = std::min(int(s.size()), room);
        return {n, s.substr(0, size_t(n))};
    }
    std::string out;
    long done = 0;
    for (const std::vector<Span>& m : ms) {
        const std::string gap = s.substr(size_t(done), size_t(m[0].start - done));
        if (int(gap.size()) >= room - int(out.size())) break;
        out += gap;
        const size_t mark = out.size();
        for (int i = 0; i < t->itemCount; ++i) {
            const vkpRegExpReplaceItem& it = t->pItems[i];
            std::string piece;
            if (it.kind == VKP_REPLACE_LITERAL) piece.assign(reinterpret_cast<const char*>(it.pText), size_t(it.value));
            else if (size_t(it.value) < m.size() && m[size_t(it.value)].start >= 0)
                piece = s.substr(size_t(m[size_t(it.value)].start), size_t(m[size_t(it.value)].length));
            if (out.size() - mark + piece.size() >= size_t(room) - mark) return {int(m[0].start), out.substr(0, mark)};
            out += piece;
        }
        done = m[0].start + m[0].length;
    }
    const std::string tail = s.substr(size_t(done));
    if (int(tail.size()) < room - int(out.size())) return {int(s.size()), out + tail};
    return {int(done), out};
}

struct Piece {
    const char* text;
    bool context;  // looks before the start position: resuming changes its meaning
};

TEST(RegExpReplace, AgainstSplicedFindResults) {
    const Piece pieces[] = {
        {"a", false},     {"b", false},     {"ab", false},      {"[ab]", false},      {"[^b ]", false},
        {"\\d", false},   {".", false},     {"x*", false},      {"a+", false},        {"b?", false},
        {"(a|b)", false}, {"(ab)?", false}, {"(b+)", false},    {"(?:a|bc)*", false}, {"(\\d)(\\d)?", false},
        {"\\s", false},   {"(?=b)", false}, {"a{1,2}", false},  {"(a*)", false},      {"\\w+", false},
        {"$", false},     {"^", true},      {"\\b", true},      {"(?<=a)", true},
    };
    const char* const items[] = {"$&", "$1", "$2", "$3", "<", ">", "zz", "\\", "\\$1", "$01", "-"};
    vkptest::Rng rng(1103);
    int resumed = 0;
    for (int iter = 0; iter < 300; ++iter) {
        Model model;
        bool context = false;
        for (int k = vkptest::RandomInt(rng, 1, 3); k > 0; --k) {
            const Piece& p = pieces[vkptest::RandomInt(rng, 0, int(std::size(pieces)) - 1)];
            model.pattern += p.text;
            context |= p.context;
        }
        model.global = vkptest::RandomInt(rng, 0, 1) == 1;
        model.options = std::string(model.global ? "g" : "") + (vkptest::RandomInt(rng, 0, 3) == 0 ? "i" : "");
        std::string text;
        for (int k = vkptest::RandomInt(rng, 0, 3); k > 0; --k) text += items[vkptest::RandomInt(rng, 0, int(std::size(items)) - 1)];
        const std::vector<char> chars = vkptest::RandomUnits<char>(rng, size_t(vkptest::RandomInt(rng, 1, 20)), 7, 0);
        std::string src;
        for (char c : chars) src += "ab1 x\nB"[int(c)];
        const int capacity = vkptest::RandomInt(rng, 0, 3) == 0 ? vkptest::RandomInt(rng, 1, 6) : 200;
        SCOPED_TRACE("pattern " + model.pattern + " options " + model.options + " template " + text + " subject " + src +
                     " capacity " + std::to_string(capacity));

        CompiledRegExp re(model.pattern, model.options.c_str());
        ASSERT_EQ(re.status(), 0);
        Template t(text);
        if (t.status() != 0) continue;
        vkpStatus fullStatus = 0;
        const Matches fullMatches = model.Find(src, capacity, &fullStatus);
        const std::string full = Splice(src, 1 << 20, fullMatches, t.state()).out;
        // Resuming rebuilds the full result when no match looks before its
        // start, none is empty and the array held them all.
        bool resumable = !context && capacity == 200;
        for (const std::vector<Span>& m : fullMatches) resumable &= m[0].length > 0;

        GuardedBuffer source(src.size(), GuardedBuffer::Guard::After, 1);  // the byte behind is read by \b
        source.fill(src.data(), src.size());
        for (int room = 1; room <= int(full.size()) + 1; ++room) {
            GuardedBuffer dst{size_t(room)};
            std::string rebuilt;
            size_t pos = 0;
            while (pos < src.size()) {
                const std::string rest = src.substr(pos);
                vkpStatus status = 0;
                const Matches ms = model.Find(rest, capacity, &status);
                const Call expect = Splice(rest, room, ms, t.state());
                std::vector<vkpRegExpFind> records(static_cast<size_t>(capacity));
                int srcLen = int(rest.size()), dstLen = room, numMatches = capacity;
                ASSERT_EQ(vkpsRegExpReplace_8u(source.data() + pos, &srcLen, dst.data(), &dstLen, records.data(),
                                               &numMatches, re.state(), t.state()),
                          status);
                size_t recordCount = 0;
                for (const std::vector<Span>& m : ms) recordCount += m.size();
                ASSERT_EQ(numMatches, int(recordCount));
                ASSERT_EQ(srcLen, expect.consumed) << "room " << room << " at " << pos;
                ASSERT_EQ(std::string(reinterpret_cast<char*>(dst.data()), size_t(dstLen)), expect.out) << "room " << room;
                if (srcLen == 0) break;  // this destination is too small for the next piece
                rebuilt += expect.out;
                pos += size_t(srcLen);
                // Once the single replacement is written, the rest is a plain copy.
                if (!model.global && !ms.empty() && srcLen >= ms[0][0].start + ms[0][0].length) {
                    rebuilt += src.substr(pos);
                    pos = src.size();
                }
            }
            if (pos == src.size() && resumable) {
                EXPECT_EQ(rebuilt, full) << "room " << room;
                ++resumed;
            }
        }
    }
    EXPECT_GT(resumed, 1000);
}

}  // namespace
