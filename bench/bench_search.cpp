// Substring and character search against glibc (8u) and ICU (16u). Every
// search scans its whole input: the value or needle does not occur.
#include <benchmark/benchmark.h>
#include <unicode/ustring.h>

#include <cstring>
#include <string>
#include <vector>

#include "bench_register.h"
#include "corpus.h"
#include "floor/entries.h"
#include "kernels/kernel_table.h"
#include "ratio_table.h"
#include "vkpch.h"
#include "vkpcore.h"

namespace vkpbench {
namespace {

const vkp16u* U(const UChar* p) { return reinterpret_cast<const vkp16u*>(p); }

const std::vector<int> kSizes = {16, 64, 256, 1024, 4096, 65536, 1 << 20};

const std::string& Text() {
    static const std::string text = EnglishText(1 << 20);
    return text;
}

const std::vector<UChar>& Text16() {
    static const std::vector<UChar> t(Text().begin(), Text().end());
    return t;
}

void RegisterCharSearch() {
    const auto* t = reinterpret_cast<const vkp8u*>(Text().data());
    const UChar* t16 = Text16().data();
    for (int n : kSizes) {
        Register(Name("FindC_8u", "vkp", n), n, [=] { int i; vkpsFindC_8u(t, n, '#', &i); return i; });
        Register(Name("FindC_8u", "memchr", n), n, [=] { return memchr(t, '#', n); });
        Register(Name("FindRevC_8u", "vkp", n), n, [=] { int i; vkpsFindRevC_8u(t, n, '#', &i); return i; });
        Register(Name("FindRevC_8u", "memrchr", n), n, [=] { return memrchr(t, '#', n); });
        Register(Name("FindC_16u", "vkp", n), 2 * n, [=] { int i; vkpsFindC_16u(U(t16), n, u'#', &i); return i; });
        Register(Name("FindC_16u", "icu_u_memchr", n), 2 * n, [=] { return u_memchr(t16, u'#', n); });
        Register(Name("FindRevC_16u", "vkp", n), 2 * n, [=] { int i; vkpsFindRevC_16u(U(t16), n, u'#', &i); return i; });
        Register(Name("FindRevC_16u", "icu_u_memrchr", n), 2 * n, [=] { return u_memrchr(t16, u'#', n); });
        AddRatio(Name("FindC_8u / memchr", "", n), Name("FindC_8u", "vkp", n), Name("FindC_8u", "memchr", n));
        AddRatio(Name("FindRevC_8u / memrchr", "", n), Name("FindRevC_8u", "vkp", n), Name("FindRevC_8u", "memrchr", n));
        AddRatio(Name("FindRevC_8u / FindC_8u", "", n), Name("FindRevC_8u", "vkp", n), Name("FindC_8u", "vkp", n));
        RegisterBaseline(Name("FindC_8u", "vkp_16", n), n, [=] { int i; vkp::entry::vkpsFindC_8u(t, n, '#', &i); return i; });
        RegisterBaseline(Name("FindRevC_8u", "vkp_16", n), n, [=] { int i; vkp::entry::vkpsFindRevC_8u(t, n, '#', &i); return i; });
        AddRatio(Name("FindC_8u 16-byte / memchr", "", n), Name("FindC_8u", "vkp_16", n), Name("FindC_8u", "memchr", n));
        AddRatio(Name("FindRevC_8u 16-byte / memrchr", "", n), Name("FindRevC_8u", "vkp_16", n),
                 Name("FindRevC_8u", "memrchr", n));
        AddRatio(Name("FindC_16u / u_memchr", "", n), Name("FindC_16u", "vkp", n), Name("FindC_16u", "icu_u_memchr", n));
        AddRatio(Name("FindRevC_16u / u_memrchr", "", n), Name("FindRevC_16u", "vkp", n),
                 Name("FindRevC_16u", "icu_u_memrchr", n));
    }
}

void RegisterSubstringSearch() {
    const auto* t = reinterpret_cast<const vkp8u*>(Text().data());
    const UChar* t16 = Text16().data();
    static std::vector<std::string> keep;
    static std::vector<std::vector<UChar>> keep16;
    keep.reserve(64);
    keep16.reserve(64);
    for (int n : {64, 1024, 65536, 1 << 20}) {
        for (int m : {4, 8, 12, 16, 20, 24}) {
            keep.push_back(AbsentNeedle(Text().substr(0, n), m, unsigned(n + m)));
            const auto* f = reinterpret_cast<const vkp8u*>(keep.back().data());
            keep16.emplace_back(keep.back().begin(), keep.back().end());
            const UChar* f16 = keep16.back().data();
            Register(Name("Find_8u", "vkp", n, m), n, [=] { int i; vkpsFind_8u(t, n, f, m, &i); return i; });
            Register(Name("Find_8u", "memmem", n, m), n, [=] { return memmem(t, n, f, m); });
            Register(Name("FindRev_8u", "vkp", n, m), n, [=] { int i; vkpsFindRev_8u(t, n, f, m, &i); return i; });
            Register(Name("Find_16u", "vkp", n, m), 2 * n, [=] { int i; vkpsFind_16u(U(t16), n, U(f16), m, &i); return i; });
            Register(Name("Find_16u", "icu_u_strFindFirst", n, m), 2 * n,
                     [=] { return u_strFindFirst(t16, n, f16, m); });
            Register(Name("FindRev_16u", "vkp", n, m), 2 * n, [=] { int i; vkpsFindRev_16u(U(t16), n, U(f16), m, &i); return i; });
            Register(Name("FindRev_16u", "icu_u_strFindLast", n, m), 2 * n,
                     [=] { return u_strFindLast(t16, n, f16, m); });
            AddRatio(Name("Find_8u / memmem", "", n, m), Name("Find_8u", "vkp", n, m), Name("Find_8u", "memmem", n, m));
            RegisterBaseline(Name("Find_8u", "vkp_16", n, m), n, [=] { int i; vkp::entry::vkpsFind_8u(t, n, f, m, &i); return i; });
            AddRatio(Name("Find_8u 16-byte / memmem", "", n, m), Name("Find_8u", "vkp_16", n, m),
                     Name("Find_8u", "memmem", n, m));
            AddRatio(Name("FindRev_8u / Find_8u", "", n, m), Name("FindRev_8u", "vkp", n, m), Name("Find_8u", "vkp", n, m));
            AddRatio(Name("Find_16u / u_strFindFirst", "", n, m), Name("Find_16u", "vkp", n, m),
                     Name("Find_16u", "icu_u_strFindFirst", n, m));
            AddRatio(Name("FindRev_16u / u_strFindLast", "", n, m), Name("FindRev_16u", "vkp", n, m),
                     Name("FindRev_16u", "icu_u_strFindLast", n, m));
        }
    }
}

// Zero-terminated forms against strstr, strchr and strlen-bound scans.
void RegisterTerminated() {
    static std::vector<std::string> keep;
    keep.reserve(8);
    for (int n : {64, 4096, 65536}) {
        keep.push_back(Text().substr(0, n));
        const char* s = keep.back().c_str();
        keep.push_back(AbsentNeedle(keep.back(), 8, unsigned(n)));
        const char* f = keep.back().c_str();
        const auto* us = reinterpret_cast<const vkp8u*>(s);
        const auto* uf = reinterpret_cast<const vkp8u*>(f);
        Register(Name("Find_Z_8u", "vkp", n, 8), n, [=] { int i; vkpsFind_Z_8u(us, uf, &i); return i; });
        Register(Name("Find_Z_8u", "strstr", n, 8), n, [=] { return strstr(s, f); });
        Register(Name("FindC_Z_8u", "vkp", n), n, [=] { int i; vkpsFindC_Z_8u(us, '#', &i); return i; });
        Register(Name("FindC_Z_8u", "strchr", n), n, [=] { return strchr(s, '#'); });
        Register(Name("FindC_Z_8u/zero", "vkp", n), n, [=] { int i; vkpsFindC_Z_8u(us, 0, &i); return i; });
        Register(Name("FindC_Z_8u/zero", "strlen", n), n, [=] { return strlen(s); });
        AddRatio(Name("Find_Z_8u / strstr", "", n, 8), Name("Find_Z_8u", "vkp", n, 8), Name("Find_Z_8u", "strstr", n, 8));
        AddRatio(Name("FindC_Z_8u / strchr", "", n), Name("FindC_Z_8u", "vkp", n), Name("FindC_Z_8u", "strchr", n));
        AddRatio(Name("FindC_Z_8u(0) / strlen", "", n), Name("FindC_Z_8u/zero", "vkp", n),
                 Name("FindC_Z_8u/zero", "strlen", n));
    }
}

const int registered = (RegisterCharSearch(), RegisterSubstringSearch(), RegisterTerminated(), 0);

}  // namespace
}  // namespace vkpbench
