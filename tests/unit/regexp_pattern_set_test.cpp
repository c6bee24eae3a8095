// Pattern sets: random add/delete/modify sequences against a model of the
// slots, blocks of exactly the documented size against an inaccessible page,
// and each search record against a search with that pattern alone.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "support/guarded_buffer.h"
#include "support/random_text.h"
#include "support/regexp_search.h"

namespace {

using vkptest::GuardedBuffer;

struct Slot {
    const vkpRegExpState* pattern = nullptr;
    int id = 0;
};

TEST(RegExpPatternSet, AgainstSlotModelAndSinglePatternSearches) {
    // Patterns with and without bytes or pairs their search needs (which
    // the set examines once per subject), compiled into a few blocks that
    // are recompiled in place, given other options, formats and match
    // limits between searches.
    const char* const patterns[] = {"a+", "(b)(c)?", "\\d+", "x|yz", "q", "^a", "(?<=b)a*", "ab", "(?i)Yz",
                                    "bc\\w*", "\\w+q", "(?:a|aa){3,}b", "\x80" "a", "(a)(b)", "abq1", "yzab",
                                    "(?i)bYzAq", "a\x80" "b", "x\\d\\w*yzq", "qa\\b", "[ab]yz1", "\\w{1,2}yq", "[abc]{2}1"};
    const char* const options[] = {"", "g", "i"};
    int blockSize = 0;
    for (const char* p : patterns) {
        int size = 0;
        ASSERT_EQ(vkpsRegExpGetSize(p, &size), 0);
        blockSize = std::max(blockSize, size);
    }
    std::vector<std::vector<long long>> blocks(7, std::vector<long long>(size_t(blockSize) / 8 + 1));
    auto block = [&](size_t k) { return reinterpret_cast<vkpRegExpState*>(blocks[k].data()); };
    const char* seed = std::getenv("VKPCH_SET_SEED");  // another seed, another run
    vkptest::Rng rng(seed ? unsigned(std::atol(seed)) : 5407u);
    auto recompile = [&](size_t k) {
        int offset = 0;
        ASSERT_EQ(vkpsRegExpInit(patterns[vkptest::RandomInt(rng, 0, int(std::size(patterns)) - 1)],
                                 options[vkptest::RandomInt(rng, 0, 2)], block(k), &offset),
                  0);
        if (vkptest::RandomInt(rng, 0, 3) == 0) { ASSERT_EQ(vkpsRegExpSetMatchLimit(vkptest::RandomInt(rng, 1, 40), block(k)), 0); }
        if (vkptest::RandomInt(rng, 0, 3) == 0) { ASSERT_EQ(vkpsRegExpSetFormat(0, block(k)), 0); }
    };
    for (size_t k = 0; k < blocks.size(); ++k) recompile(k);
    std::vector<unsigned char> blank(VKP_REGEXP_HEAD_SIZE, 0);  // not a compiled pattern: status -189
    auto pick = [&](vkptest::Rng& r) -> const vkpRegExpState* {
        const int k = vkptest::RandomInt(r, 0, int(blocks.size()));
        return k == int(blocks.size()) ? reinterpret_cast<const vkpRegExpState*>(blank.data()) : block(size_t(k));
    };
    for (int capacity : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 40}) {  // 40: the set examines the subject once
        int size = 0;
        ASSERT_EQ(vkpsRegExpMultiGetSize(capacity, &size), 0);
        ASSERT_EQ(size, 12 * capacity + 24);
        // Flush against the page behind it; with an odd capacity the block
        // would not be 8-byte aligned there, so the page lies in front.
        GuardedBuffer memory(size_t(size), capacity % 2 ? GuardedBuffer::Guard::Before : GuardedBuffer::Guard::After);
        std::memset(memory.data(), 0xCD, memory.size());
        auto* set = memory.as<vkpRegExpMultiState>();
        ASSERT_EQ(vkpsRegExpMultiInit(set, capacity), 0);
        ASSERT_EQ(set->capacity, capacity);
        ASSERT_EQ(reinterpret_cast<unsigned char*>(set->pIds + capacity), memory.data() + size);
        std::vector<Slot> model(static_cast<size_t>(capacity));
        for (int op = 0; op < 400; ++op) {
            const int id = vkptest::RandomInt(rng, -2, 5);  // duplicates and 0 on purpose
            const vkpRegExpState* p = pick(rng);
            vkpStatus expect = 0, got = 0;
            auto lowest = [&](auto pred) {
                for (size_t i = 0; i < model.size(); ++i)
                    if (pred(model[i])) return int(i);
                return -1;
            };
            switch (vkptest::RandomInt(rng, 0, 2)) {
                case 0: {
                    const int i = lowest([](const Slot& s) { return s.pattern == nullptr; });
                    expect = id == 0 ? VKP_ERR_ZERO_ID : i < 0 ? VKP_ERR_SET_FULL : 0;
                    if (expect == 0) model[size_t(i)] = {p, id};
                    got = vkpsRegExpMultiAdd(p, id, set);
                    break;
                }
                case 1: {
                    const int i = lowest([&](const Slot& s) { return s.id == id; });
                    expect = id == 0 ? VKP_ERR_ZERO_ID : i < 0 ? VKP_ERR_NO_SUCH_ID : 0;
                    if (expect == 0) model[size_t(i)] = {};
                    got = vkpsRegExpMultiDelete(id, set);
                    break;
                }
                default: {
                    const int i = lowest([&](const Slot& s) { return s.id == id; });
                    expect = id == 0 ? VKP_ERR_ZERO_ID : i < 0 ? VKP_ERR_NO_SUCH_ID : 0;
                    if (expect == 0) model[size_t(i)].pattern = p;
                    got = vkpsRegExpMultiModify(p, id, set);
                }
            }
            ASSERT_EQ(got, expect) << "op " << op;
            for (int i = 0; i < capacity; ++i) {
                ASSERT_EQ(set->pPatterns[i], model[size_t(i)].pattern) << "slot " << i;
                ASSERT_EQ(set->pIds[i], model[size_t(i)].id) << "slot " << i;
            }
            if (op % 8) continue;
            // Blocks recompiled in place since the last search: the set must
            // not go by what it kept of the old pattern.
            for (int n = vkptest::RandomInt(rng, 0, 2); n > 0; --n) recompile(size_t(vkptest::RandomInt(rng, 0, 6)));
            // Search: a record per used slot as that pattern's own search;
            // records of free slots stay as they were.
            const char* const pieces[] = {"a", "aa", "b", "c", "1", "x", "yz", "Y", "q", " ", "\x80", "B", "abq", "Yza", "aaaaaaaaaaaa"};
            std::string subject = "x";
            for (int n = vkptest::RandomInt(rng, 0, 30); n > 0; --n) subject += pieces[vkptest::RandomInt(rng, 0, int(std::size(pieces)) - 1)];
            if (op % 16 == 0) subject = std::string(300, ' ') + subject;  // past the driver's short-subject tests
            std::vector<vkpRegExpFind> records(static_cast<size_t>(capacity) * 8);
            std::vector<vkpRegExpMultiFind> results(static_cast<size_t>(capacity));
            for (int i = 0; i < capacity; ++i)
                results[size_t(i)] = {-7, -7, 1 + i % 5, -7, records.data() + 8 * i};
            ASSERT_EQ(vkpsRegExpMultiFind_8u(reinterpret_cast<const vkp8u*>(subject.c_str()), int(subject.size()),
                                             results.data(), set),
                      0);
            for (int i = 0; i < capacity; ++i) {
                const vkpRegExpMultiFind& r = results[size_t(i)];
                const Slot& s = model[size_t(i)];
                if (!s.pattern) {
                    EXPECT_EQ(r.isValid, -7);
                    EXPECT_EQ(r.numMatches, 1 + i % 5);
                    continue;
                }
                std::vector<vkpRegExpFind> alone(8);
                int n = 1 + i % 5;
                const vkpStatus st = vkpsRegExpFind_8u(reinterpret_cast<const vkp8u*>(subject.c_str()), int(subject.size()),
                                                       const_cast<vkpRegExpState*>(s.pattern), alone.data(), &n);
                EXPECT_EQ(r.isValid, 1);
                EXPECT_EQ(r.patternId, s.id);
                EXPECT_EQ(r.status, st);
                EXPECT_EQ(r.numMatches, n);
                for (int k = 0; k < n && st >= 0; ++k) {
                    EXPECT_EQ(r.pMatches[k].pMatch, alone[size_t(k)].pMatch);
                    EXPECT_EQ(r.pMatches[k].matchLen, alone[size_t(k)].matchLen);
                }
            }
        }
    }
}

}  // namespace
