// The copy kernels and the editing functions against glibc doing the same
// work: memcpy, memmove, memset; memchr + memcpy for split; strspn and a
// reverse loop for trimming; a plain loop (and memcpy as the ceiling) for
// character replacement.
#include <benchmark/benchmark.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "bench_register.h"
#include "corpus.h"
#include "floor/entries.h"
#include "kernels/copy.h"
#include "ratio_table.h"
#include "vkpch.h"

namespace vkpbench {
namespace {

std::string SizeName(size_t n) {
    if (n >= (1 << 20)) return std::to_string(n >> 20) + "MiB";
    if (n >= 1024) return std::to_string(n >> 10) + "KiB";
    return std::to_string(n) + "B";
}

// Pairs one of ours with a peer under "family/impl/size" names.
template <class Ours, class Peer>
void Pair(const std::string& family, const std::string& peer, size_t size, int64_t bytes, Ours ours, Peer theirs) {
    const std::string a = family + "/vkp/" + SizeName(size), b = family + "/" + peer + "/" + SizeName(size);
    Register(a, bytes, ours);
    Register(b, bytes, theirs);
    AddRatio(family + " / " + peer + " " + SizeName(size), a, b);
}

// The 16-byte kernels of one of ours beside a pair, under "family/vkp_16/size".
template <class Ours>
void Baseline(const std::string& family, const std::string& peer, size_t size, int64_t bytes, Ours ours) {
    const std::string a = family + "/vkp_16/" + SizeName(size);
    RegisterBaseline(a, bytes, ours);
    AddRatio(family + " 16-byte / " + peer + " " + SizeName(size), a, family + "/" + peer + "/" + SizeName(size));
}

vkp8u* Buffer(size_t n, unsigned char fill) {
    static std::vector<std::vector<vkp8u>> keep;
    keep.emplace_back(n + 64, fill);
    return keep.back().data() + 16;
}

void RegisterKernels() {
    const size_t sizes[] = {64, 256, 1024, 4096, 16384, 65536, 262144, 1 << 20, size_t(64) << 20};
    for (size_t n : sizes) {
        vkp8u* src = Buffer(n, 'a');
        vkp8u* dst = Buffer(n + 64, 0);
        const auto copy = [=] { vkp::kernels::CopyBytes(dst, src, n); };
        const auto move = [=] { vkp::kernels::MoveBytes(dst + 8, dst, n); };
        const auto zero = [=] { vkp::kernels::ZeroBytes(dst, n); };
        Pair("copy", "memcpy", n, int64_t(n), copy, [=] { memcpy(dst, src, n); benchmark::DoNotOptimize(dst); });
        Pair("move up 8", "memmove", n, int64_t(n), move, [=] { memmove(dst + 8, dst, n); benchmark::DoNotOptimize(dst); });
        Pair("zero", "memset", n, int64_t(n), zero, [=] { memset(dst, 0, n); benchmark::DoNotOptimize(dst); });
        Baseline("copy", "memcpy", n, int64_t(n), copy);
        Baseline("move up 8", "memmove", n, int64_t(n), move);
        Baseline("zero", "memset", n, int64_t(n), zero);
    }
}

void RegisterEditing() {
    for (int n : {1024, 65536}) {
        const int half = n / 2;
        vkp8u* a = Buffer(size_t(n), 'a');
        vkp8u* b = Buffer(size_t(n), 'b');
        vkp8u* d = Buffer(2 * size_t(n) + 64, 0);
        Pair("Concat_8u", "memcpy x2", size_t(n), 2 * int64_t(n), [=] { vkpsConcat_8u(a, n, b, n, d); },
             [=] { memcpy(d, a, n); memcpy(d + n, b, n); benchmark::DoNotOptimize(d); });
        Pair("Insert_8u", "memcpy+memmove", size_t(n), 2 * int64_t(n), [=] { vkpsInsert_8u(a, n, b, n, d, half); },
             [=] {
                 memcpy(d, a, half);
                 memmove(d + half + n, a + half, n - half);
                 memcpy(d + half, b, n);
                 benchmark::DoNotOptimize(d);
             });
        Pair("Remove_8u", "memcpy x2", size_t(n), int64_t(n) - 64, [=] { vkpsRemove_8u(a, n, d, half, 64); },
             [=] { memcpy(d, a, half); memcpy(d + half, a + half + 64, n - half - 64); benchmark::DoNotOptimize(d); });
    }

    // Replace ',' in English text: ours, a plain loop, and memcpy as the ceiling.
    static const std::string text = EnglishText(65536);
    static const std::vector<vkp16u> text16(text.begin(), text.end());
    const int n = int(text.size());
    const auto* t = reinterpret_cast<const vkp8u*>(text.data());
    const vkp16u* t16 = text16.data();
    vkp8u* d = Buffer(65536, 0);
    auto* d16 = reinterpret_cast<vkp16u*>(Buffer(2 * 65536, 0));
    Pair("ReplaceC_8u", "memcpy", 65536, n, [=] { vkpsReplaceC_8u(t, d, n, ' ', '_'); },
         [=] { memcpy(d, t, n); benchmark::DoNotOptimize(d); });
    Baseline("ReplaceC_8u", "memcpy", 65536, n, [=] { vkp::entry::vkpsReplaceC_8u(t, d, n, ' ', '_'); });
    Register("ReplaceC_8u/loop/64KiB", n, [=] {
        for (int i = 0; i < n; ++i) d[i] = t[i] == ' ' ? '_' : t[i];
        benchmark::DoNotOptimize(d);
    });
    AddRatio("ReplaceC_8u / loop 64KiB", "ReplaceC_8u/vkp/64KiB", "ReplaceC_8u/loop/64KiB");
    Pair("ReplaceC_16u", "memcpy", 65536, 2 * n, [=] { vkpsReplaceC_16u(t16, d16, n, u' ', u'_'); },
         [=] { memcpy(d16, t16, 2 * size_t(n)); benchmark::DoNotOptimize(d16); });
    Register("ReplaceC_16u/loop/64KiB", 2 * n, [=] {
        for (int i = 0; i < n; ++i) d16[i] = t16[i] == u' ' ? u'_' : t16[i];
        benchmark::DoNotOptimize(d16);
    });
    AddRatio("ReplaceC_16u / loop 64KiB", "ReplaceC_16u/vkp/64KiB", "ReplaceC_16u/loop/64KiB");
}

// CSV-like lines: fields of 1 to 16 characters, 8 to a line.
void RegisterSplit() {
    static std::string csv;
    std::mt19937 rng(7);
    while (csv.size() < 65536) {
        for (int f = 0; f < 8; ++f) {
            for (int k = int(rng() % 16) + 1; k > 0; --k) csv += char('a' + rng() % 26);
            csv += f < 7 ? ',' : '\n';
        }
    }
    const int n = int(csv.size());
    int fields = 0;
    for (char c : csv) fields += c == ',';
    static std::vector<std::vector<vkp8u>> slotBuf(size_t(fields + 1), std::vector<vkp8u>(64));
    static std::vector<vkp8u*> slots;
    for (auto& s : slotBuf) slots.push_back(s.data());
    static std::vector<int> lens(slots.size());
    const auto* src = reinterpret_cast<const vkp8u*>(csv.data());
    Pair("SplitC_8u_D2L csv", "memchr+memcpy", 65536, n, [=] {
             std::fill(lens.begin(), lens.end(), 64);
             int num = int(slots.size());
             vkpsSplitC_8u_D2L(src, n, ',', slots.data(), lens.data(), &num);
         },
         [=] {
             std::fill(lens.begin(), lens.end(), 64);
             const char* p = csv.data();
             const char* end = p + n;
             for (size_t i = 0; i < slots.size() && p < end; ++i) {
                 const char* q = static_cast<const char*>(memchr(p, ',', size_t(end - p)));
                 const size_t len = size_t((q ? q : end) - p);
                 const size_t keep = len < size_t(lens[i]) ? len : size_t(lens[i]);
                 memcpy(slots[i], p, keep);
                 lens[i] = int(keep);
                 p += len + 1;
             }
             benchmark::DoNotOptimize(lens.data());
         });
}

// Whitespace padding around text: a short pad around a long text and a long
// pad around a short one.
void RegisterTrim() {
    static const char* const kSet = " \t\r\n";
    static std::vector<std::string> keep;
    keep.reserve(4);
    for (auto [pad, body] : {std::pair<int, int>{64, 1024}, std::pair<int, int>{1024, 64}}) {
        std::string s;
        for (int i = 0; i < pad; ++i) s += kSet[i % 4];
        s += EnglishText(size_t(body));
        for (int i = 0; i < pad; ++i) s += kSet[(i + 1) % 4];
        keep.push_back(s);
        const char* str = keep.back().c_str();
        const int n = int(keep.back().size());
        vkp8u* d = Buffer(size_t(n), 0);
        const std::string family = "TrimCAny_8u pad " + std::to_string(pad);
        Pair(family, "strspn+loop", size_t(n), n,
             [=] { int len; vkpsTrimCAny_8u(reinterpret_cast<const vkp8u*>(str), n, reinterpret_cast<const vkp8u*>(kSet), 4, d, &len); benchmark::DoNotOptimize(len); },
             [=] {
                 size_t b = strspn(str, kSet), e = size_t(n);
                 while (e > b && memchr(kSet, str[e - 1], 4)) --e;
                 memcpy(d, str + b, e - b);
                 benchmark::DoNotOptimize(d);
             });
    }
}

const int registered = (RegisterKernels(), RegisterEditing(), RegisterSplit(), RegisterTrim(), 0);

}  // namespace
}  // namespace vkpbench
