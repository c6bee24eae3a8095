// Stack safety of the matcher: the deepest searches under the default limit
// fit in 1 MiB (Linux) or 2 MiB (Windows) of thread stack, the bytes used per
// level of nesting, and the guard that fails deep branches on small stacks.
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <string>

#include "regexp/compile/state.h"
#include "support/regexp_search.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <pthread.h>
#endif

namespace {

using vkptest::CompiledRegExp;
using vkptest::Repeat;
using vkptest::Span;

#if defined(__SANITIZE_ADDRESS__)
constexpr size_t kFrameScale = 8;  // instrumented frames are several times larger
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr size_t kFrameScale = 8;
#else
constexpr size_t kFrameScale = 1;
#endif
#else
constexpr size_t kFrameScale = 1;
#endif

#ifdef _WIN32
constexpr size_t kDeepStack = 2u << 20;
#else
constexpr size_t kDeepStack = 1u << 20;
#endif

// Runs fn on a new thread with a stack of `bytes`.
void RunOnStack(size_t bytes, const std::function<void()>& fn) {
#ifdef _WIN32
    HANDLE h = CreateThread(
        nullptr, bytes,
        [](LPVOID p) -> DWORD {
            (*static_cast<const std::function<void()>*>(p))();
            return 0;
        },
        const_cast<std::function<void()>*>(&fn), STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    ASSERT_NE(h, nullptr);
    WaitForSingleObject(h, INFINITE);
    CloseHandle(h);
#else
    pthread_attr_t attr;
    pthread_attr_init(&attr);
    ASSERT_EQ(pthread_attr_setstacksize(&attr, bytes), 0);
    pthread_t t;
    ASSERT_EQ(pthread_create(
                  &t, &attr,
                  [](void* p) -> void* {
                      (*static_cast<const std::function<void()>*>(p))();
                      return nullptr;
                  },
                  const_cast<std::function<void()>*>(&fn)),
              0);
    pthread_join(t, nullptr);
    pthread_attr_destroy(&attr);
#endif
}

// Searches that nest as deep as the default budget allows. Each level of
// iteration, repeat or group end takes one or more levels of the budget,
// so the match ends where the budget does; it is at least minLength long.
struct DeepCase {
    const char* name;
    std::string pattern;
    std::string subject;
    int minLength;
};

std::vector<DeepCase> DeepCases() {
    const std::string a(20000, 'a');
    const std::string ab = Repeat("ab", 10000);
    return {
        {"single item repeats", Repeat("a?", 9998), a, 9998},
        {"class repeats", Repeat("[ab]?", 9998), ab, 9998},
        {"type repeats", Repeat("\\w?", 9998), a, 9998},
        {"group iteration", "(?:a|b)*", ab, 4999},
        {"capture iteration", "(a|b)*", ab, 3333},
        {"nested groups", "(?:(?:(a))|b)*", ab, 1999},
        {"alternation in a repeat", "(?:x|y|[ab])*", ab, 4999},
        {"look-ahead in a repeat", "(?:(?=[ab])(?!c)[ab])*", ab, 2499},
        {"look-behind in a repeat", "(?:(?<=a)b|a)*", ab, 3333},
        {"back-references", "(a)(?:\\1)*", a, 4998},
        {"capture chain", Repeat("(a)?", 990), a, 990},
    };
}

// Fills `bytes` of stack below the caller with a marker byte.
__attribute__((noinline)) void PaintStack(size_t bytes) {
    volatile unsigned char* p = static_cast<volatile unsigned char*>(__builtin_alloca(bytes));
    for (size_t i = 0; i < bytes; ++i) p[i] = 0xA5;
}

// Bytes of stack below the caller that fn touches: the stack below is
// painted first, then the lowest byte that no longer holds the marker is
// found. Runs on the calling thread, which must have `bytes` to spare.
__attribute__((noinline)) long StackTouched(size_t bytes, const std::function<void()>& fn) {
    char here;
    PaintStack(bytes);
    fn();
    const unsigned char* low = reinterpret_cast<const unsigned char*>(&here) - bytes + 4096;
    const unsigned char* p = low;
    while (p < reinterpret_cast<const unsigned char*>(&here) && *p == 0xA5) ++p;
    return long(reinterpret_cast<const unsigned char*>(&here) - p);
}

// Each deep search on an ample stack, where the stack it touches is
// measured (less that of a search that nests one level, divided by the
// default budget: the bytes per level at the deepest point), and on the
// thread stack it must fit, with the same result.
TEST(RegExpMatchStack, DeepestSearchesFitTheThreadStack) {
    double worst = 0;
    const char* worstName = "";
    for (const DeepCase& c : DeepCases()) {
        CompiledRegExp re(c.pattern), flat("x");
        ASSERT_EQ(re.status(), 0) << c.name;
        vkptest::SearchResult ample, fit;
        long deep = 0, shallow = 0;
        RunOnStack(16u << 20, [&] {
            deep = StackTouched(8u << 20, [&] { ample = re.Search(c.subject, 1); });
            shallow = StackTouched(8u << 20, [&] { flat.Search("x", 1); });
        });
        RunOnStack(kDeepStack * kFrameScale, [&] { fit = re.Search(c.subject, 1); });
        ASSERT_EQ(ample.records.size(), 1u) << c.name;
        EXPECT_GE(ample.records[0].length, c.minLength) << c.name;
        EXPECT_EQ(fit.status, ample.status) << c.name;
        EXPECT_EQ(fit.records, ample.records) << c.name;
        const double perLevel = double(deep - shallow) / vkp::kDefaultMatchLimit;
        std::printf("  %-26s %8ld bytes, %6.1f per level\n", c.name, deep, perLevel);
        if (perLevel > worst) worst = perLevel, worstName = c.name;
    }
    std::printf("  deepest: %s, %.1f bytes per level\n", worstName, worst);
    EXPECT_LT(worst * vkp::kDefaultMatchLimit, double(kDeepStack * kFrameScale) - 64 * 1024);
}

// Whatever the limit, a search stops short of the end of its stack: the
// branches that would go deeper fail, and with no match found the status
// says the budget ran out.
TEST(RegExpMatchStack, GuardFailsDeepBranchesOnSmallStacks) {
    CompiledRegExp re("^(?:a|b)*c");
    ASSERT_EQ(vkpsRegExpSetMatchLimit(0x7FFFFFFF, re.state()), 0);
    const std::string subject = std::string(200000, 'a') + "c";
    vkptest::SearchResult r;
    RunOnStack(256 * 1024, [&] { r = re.Search(subject, 1); });
    EXPECT_EQ(r.status, VKP_ERR_MATCH_LIMIT);
    // With room enough the same search completes: no match, status 0.
    CompiledRegExp small("^(?:a|b)*c");
    ASSERT_EQ(vkpsRegExpSetMatchLimit(0x7FFFFFFF, small.state()), 0);
    RunOnStack(256 * 1024, [&] { r = small.Search(subject.substr(0, 500), 1); });
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(r.records.empty());
}

}  // namespace
