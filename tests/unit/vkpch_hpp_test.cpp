// vkpch.hpp used as an application would: compile, find with groups, all
// matches against the C global search, replace with any buffer size equal to
// one call with a large destination, pattern sets, moves and error reports.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

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
}

TEST(CppHeader, AllMatchesAndReplaceAtEveryBufferSize) {
    // Resuming is exact for patterns that never match empty nor look before
    // their start; the others get a buffer that holds the whole result.
    struct Case {
        const char* pattern;
        bool resumable;
    };
    const Case cases[] = {{"a*", false}, {"(a)|b", true}, {"(\\w)(\\d)?", true}, {"\\b", false}, {"(?=a)|a", false},
                          {"b(a+)", true}};
    vkptest::Rng rng(77);
    for (const Case& c : cases) {
        const char* p = c.pattern;
        const vkpch::Regex once(p), all(p, "g");
        const vkpch::Template tmpl("<$1|$&>");
        for (int iter = 0; iter < 20; ++iter) {
            std::string s;
            for (char u : vkptest::RandomUnits<char>(rng, size_t(vkptest::RandomInt(rng, 0, 12)), 4, 0)) s += "ab1 "[int(u)];
            SCOPED_TRACE(std::string(p) + " on '" + s + "'");
            // The whole matches agree with the C global search of the
            // pattern in one more group.
            const std::vector<vkpch::Match> ms = once.findAll(s);
            const vkpch::Regex wrapped(("(" + std::string(p) + ")").c_str(), "g");
            std::vector<vkpRegExpFind> rec(200);
            int n = 200;
            ASSERT_GE(vkpsRegExpFind_8u(reinterpret_cast<const vkp8u*>(s.c_str()), int(s.size()), wrapped.state(),
                                        rec.data(), &n),
                      0);
            const int per = wrapped.groupCount() - 1;
            ASSERT_EQ(ms.size() * size_t(per), size_t(n));
            for (size_t k = 0; k < ms.size(); ++k) {
                EXPECT_EQ(ms[k].size(), size_t(once.groupCount()));
                EXPECT_EQ(ms[k].str().data(), reinterpret_cast<const char*>(rec[k * size_t(per)].pMatch));
                EXPECT_EQ(ms[k].str().size(), size_t(rec[k * size_t(per)].matchLen));
            }
            // The resume protocol over any buffer gives what one call with
            // room for everything gives.
            for (const vkpch::Regex* re : {&once, &all}) {
                std::string full;
                if (!s.empty()) {
                    full.resize(s.size() * 12 + 16);
                    int srcLen = int(s.size()), dstLen = int(full.size()), count = 200;
                    vkpsRegExpReplace_8u(reinterpret_cast<const vkp8u*>(s.c_str()), &srcLen,
                                         reinterpret_cast<vkp8u*>(&full[0]), &dstLen, rec.data(), &count, re->state(),
                                         tmpl.state());
                    ASSERT_EQ(srcLen, int(s.size()));
                    full.resize(size_t(dstLen));
                } else if (re->find(s)) {
                    full = "<|>";
                }
                for (size_t buffer : {size_t(1), size_t(2), size_t(5), size_t(256)}) {
                    if (!c.resumable && buffer < 256) continue;
                    std::string out;
                    re->replaceTo(s, tmpl, [&](const char* q, size_t len) { out.append(q, len); }, buffer);
                    EXPECT_EQ(out, full) << "buffer " << buffer << (re == &all ? " global" : " once");
                }
            }
        }
    }
}

TEST(CppHeader, PatternSet) {
    const vkpch::Regex word("(\\w+)"), digits("\\d+"), never("q");
    vkpch::PatternSet set(2);
    ASSERT_TRUE(set.ok());
    EXPECT_EQ(set.add(word, 10), 0);
    EXPECT_EQ(set.add(digits, 20), 0);
    EXPECT_EQ(set.add(never, 30), VKP_ERR_SET_FULL);
    std::vector<vkpch::PatternSet::Result> r = set.find("ab 12");
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(r[0].id, 10);
    EXPECT_EQ(r[0].match->group(1), std::string_view("ab"));
    EXPECT_EQ(r[1].match->str(), "12");
    EXPECT_EQ(set.modify(never, 20), 0);
    EXPECT_EQ(set.remove(10), 0);
    EXPECT_EQ(set.remove(10), VKP_ERR_NO_SUCH_ID);
    r = set.find("ab 12");
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].id, 20);
    EXPECT_FALSE(r[0].match);
    // An empty subject is searched pattern by pattern.
    const vkpch::Regex empty("^$");
    EXPECT_EQ(set.add(empty, 40), 0);
    r = set.find("");
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(r[0].id, 40);  // the lowest free slot
    EXPECT_TRUE(r[0].match);
    EXPECT_FALSE(vkpch::PatternSet(0).ok());
}

}  // namespace
