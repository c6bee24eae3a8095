// vkpch.hpp used as an application would: compile, find with groups, all
// matches against the C global search, replace with any buffer size equal to
// one call with a large destination, views that end at a guard page,
// pattern sets, moves and error reports.
#include <gtest/gtest.h>

#include <optional>

#include <string>
#include <utility>
#include <vector>

#include "support/guarded_buffer.h"
#include "support/random_text.h"
#include "vkpch.hpp"

namespace {

TEST(CppHeader, FindGroupsAndErrors) {
    vkpch::Regex re("(\\w+)@(\\w+)(\\.org)?");
    ASSERT_TRUE(re.ok());
    EXPECT_EQ(re.groupCount(), 4);
    const std::string text = "mail ann@example now";
    auto m = re.find(text);
    ASSERT_TRUE(m);
    EXPECT_EQ(m->str(), "ann@example");
    EXPECT_EQ(m->position(), 5u);
    EXPECT_EQ(m->group(2), std::string_view("example"));
    EXPECT_FALSE(m->group(3));  // did not take part
    EXPECT_FALSE(m->group(9));
    EXPECT_FALSE(re.find("no address"));

    vkpch::Regex bad("a{3,2}");
    EXPECT_FALSE(bad.ok());
    EXPECT_EQ(bad.status(), VKP_ERR_QUANTIFIER);
    EXPECT_EQ(bad.errorOffset(), 4);
    vkpch::Template badTemplate("<$&>$0");
    EXPECT_EQ(badTemplate.status(), VKP_ERR_GROUP_NUMBER);
    EXPECT_EQ(badTemplate.errorOffset(), 4u);
    vkpStatus st = 0;
    EXPECT_FALSE(bad.find("a", &st));
    EXPECT_EQ(st, VKP_ERR_NOT_COMPILED);

    // Moves hand the block over; the moved-from object is empty.
    vkpch::Regex moved = std::move(re);
    EXPECT_TRUE(moved.ok());
    EXPECT_FALSE(re.ok());  // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(moved.find(text)->group(1), std::string_view("ann"));

    // Thousands of literals: the search keeps their table in the room
    // behind the program, so the copy a search runs on is the whole block.
    std::string words;
    for (int k = 0; k < 3000; ++k) words += (k ? "|w" : "w") + std::to_string(k * 7919 % 100003) + "q";
    const vkpch::Regex many(words);
    const std::string subject = "w1q w7919q w23757q";
    for (int round = 0; round < 2; ++round) EXPECT_EQ(many.find(subject)->span(0), (vkpch::Span{4, 6}));
}

// A reference for the header's results: the C functions run on a
// std::string (its zero terminator is the byte behind the subject) with
// room for everything.
struct Reference {
    static std::string Replace(const std::string& s, const vkpch::Regex& re, const vkpch::Template& t) {
        if (s.empty()) return re.find(s) ? "<|>" : "";
        std::string out(s.size() * 12 + 16, '\0');
        std::vector<vkpRegExpFind> rec(4 * s.size() + 8);
        int srcLen = int(s.size()), dstLen = int(out.size()), count = int(rec.size());
        vkpsRegExpReplace_8u(reinterpret_cast<const vkp8u*>(s.c_str()), &srcLen, reinterpret_cast<vkp8u*>(&out[0]),
                             &dstLen, rec.data(), &count, re.state(), t.state());
        EXPECT_EQ(srcLen, int(s.size()));
        out.resize(size_t(dstLen));
        return out;
    }
    // Whole matches of the global search of the pattern in one more group.
    static std::vector<vkpch::Span> Matches(const std::string& s, const char* pattern) {
        const vkpch::Regex wrapped("(" + std::string(pattern) + ")", "g");
        std::vector<vkpRegExpFind> rec(4 * s.size() + 8);
        int n = int(rec.size());
        EXPECT_GE(vkpsRegExpFind_8u(reinterpret_cast<const vkp8u*>(s.c_str()), int(s.size()), wrapped.state(),
                                    rec.data(), &n), 0);
        std::vector<vkpch::Span> out;
        for (int k = 0; k < n; k += wrapped.groupCount() - 1)
            out.push_back({size_t(reinterpret_cast<const char*>(rec[size_t(k)].pMatch) - s.c_str()),
                           size_t(rec[size_t(k)].matchLen)});
        return out;
    }
};

TEST(CppHeader, AllMatchesAndReplaceAgainstOneCall) {
    // Patterns that match empty, look behind and test word boundaries: a
    // search resumed inside the subject would differ from one call. Subjects
    // run past 64 KiB.
    const char* const patterns[] = {"a*", "(a)|b", "(\\w)(\\d)?", "\\b", "(?=a)|a", "b(a+)", "(?<=a)b", "\\bab\\b"};
    vkptest::Rng rng(77);
    for (const char* p : patterns) {
        const vkpch::Regex once(p), all(std::string_view(p), "g");
        const vkpch::Template tmpl = "<$1|$&>";
        for (int iter = 0; iter < 24; ++iter) {
            const size_t len = iter < 20 ? size_t(vkptest::RandomInt(rng, 0, 12)) : size_t(70000 + iter);
            std::string s;
            for (char u : vkptest::RandomUnits<char>(rng, len, 4, 0)) s += "ab1 "[int(u)];
            SCOPED_TRACE(std::string(p) + " on '" + s.substr(0, 40) + "'");
            const std::vector<vkpch::Span> want = Reference::Matches(s, p);
            const std::vector<vkpch::Match> got = once.findAll(std::string_view(s));
            ASSERT_EQ(got.size(), want.size());
            size_t k = 0;
            for (const vkpch::Match& m : once.matches(s)) {  // the range gives what the vector holds
                EXPECT_EQ(m.span(0), want[k]);
                EXPECT_EQ(m.str().data(), s.data() + want[k].offset);
                EXPECT_EQ(m.size(), size_t(once.groupCount()));
                EXPECT_EQ(got[k++].span(0), m.span(0));
            }
            for (const vkpch::Regex* re : {&once, &all}) {
                const std::string full = Reference::Replace(s, *re, tmpl);
                EXPECT_EQ(re->replace(std::string_view(s), tmpl), full) << (re == &all ? "global" : "once");
                std::string out;
                re->replaceTo(s, tmpl, [&](const char* q, size_t n) { out.append(q, n); });
                EXPECT_EQ(out, full);
            }
        }
    }
}

TEST(CppHeader, ViewIsNotReadBeyondItsEnd) {
    // The view ends flush against an inaccessible page; the byte behind the
    // view in memory is a word character in the other placement.
    const std::string text = "cats dogs";
    vkptest::GuardedBuffer guarded(text.size());
    const char* flush = reinterpret_cast<const char*>(guarded.fill(text.data(), text.size()));
    for (const char* p : {"\\w+\\b", "s\\B", "\\bdogs\\b", "(?<=o)gs\\b"}) {
        const vkpch::Regex re(p);
        const vkpch::Regex g(p, "g");
        for (size_t len : {size_t(0), size_t(3), size_t(4), text.size()}) {
            // The view's last bytes against the guard page, and its first
            // bytes ("cat" is followed by "s").
            for (const std::string_view v : {std::string_view(flush + text.size() - len, len), std::string_view(text.data(), len)}) {
                SCOPED_TRACE(std::string(p) + " on '" + std::string(v) + "'");
                const std::string own(v);  // a zero behind it
                const std::optional<vkpch::Match> want = re.find(own), got = re.find(v);
                ASSERT_EQ(bool(got), bool(want));
                if (got) {
                    EXPECT_EQ(got->span(0), want->span(0));
                }
                EXPECT_EQ(re.findAll(v).size(), re.findAll(own).size());
                EXPECT_EQ(g.replace(v, "[$&]"), g.replace(own, "[$&]"));
            }
        }
    }
}

TEST(CppHeader, StatusTextsAndTemplateValues) {
    // Each status has its own text, not the default one.
    for (vkpStatus st : {VKP_OK, VKP_WARN_FEW_RECORDS, VKP_WARN_SLOTS_FULL, VKP_WARN_PIECE_CUT, VKP_ERR_NO_SUCH_ID,
                         VKP_ERR_ZERO_ID, VKP_ERR_SIZE, VKP_ERR_FORMAT, VKP_ERR_NULL, VKP_ERR_SET_FULL, VKP_ERR_LENGTH,
                         VKP_ERR_PROPERTY, VKP_ERR_CLASS, VKP_ERR_GROUP_NUMBER, VKP_ERR_PARENTHESIS, VKP_ERR_QUANTIFIER,
                         VKP_ERR_MATCH_LIMIT, VKP_ERR_NOT_COMPILED, VKP_ERR_OPTION})
        EXPECT_STRNE(vkpch::statusText(st), vkpch::statusText(1)) << st;
    EXPECT_STREQ(vkpch::statusText(VKP_ERR_PARENTHESIS), "unmatched parenthesis or malformed group");
    // Templates copy and move with their items pointing into their own text.
    vkpch::Template a = std::string("[$1]");
    vkpch::Template b = a;
    {
        vkpch::Template temp("x$&");
        a = temp;
    }
    vkpch::Template c = std::move(b);
    const vkpch::Regex re("(\\d)");
    EXPECT_EQ(re.replace("a1", a), "ax1");
    EXPECT_EQ(re.replace("a1", c), "a[1]");
    EXPECT_EQ(re.replace(std::string("a1"), "<$&>"), "a<1>");
}

// The set's results as the header hands them over: one per used slot, in
// slot order, each with its match or none; an empty subject (which the C
// search refuses) is searched pattern by pattern.
TEST(CppHeader, PatternSet) {
    const vkpch::Regex word("(\\w+)"), digits("\\d+"), never("q"), empty("^$");
    vkpch::PatternSet set(2);
    ASSERT_TRUE(set.ok());
    EXPECT_EQ(set.add(word, 10), 0);
    EXPECT_EQ(set.add(digits, 20), 0);
    std::vector<vkpch::PatternSet::Result> r = set.find("ab 12");
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(r[0].id, 10);
    EXPECT_EQ(r[0].match->group(1), std::string_view("ab"));
    EXPECT_EQ(r[1].match->str(), "12");
    EXPECT_EQ(set.modify(never, 20), 0);
    EXPECT_EQ(set.remove(10), 0);
    EXPECT_EQ(set.add(empty, 40), 0);
    r = set.find("");
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(r[0].id, 40);
    EXPECT_TRUE(r[0].match);
    EXPECT_EQ(r[1].id, 20);
    EXPECT_FALSE(r[1].match);
    EXPECT_FALSE(vkpch::PatternSet(0).ok());
}

}  // namespace
