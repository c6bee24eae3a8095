// Character-set search, comparison, case conversion and hashing against what
// a user would call instead: glibc (8u), ICU (16u), plain loops, XXH32.
// Searches scan their whole input (no member occurs); compared strings are
// equal (ignoring case for the case-insensitive forms), so every unit is read.
#include <strings.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <xxhash.h>

#include <cctype>
#include <cstring>
#include <string>
#include <vector>

#include "bench_register.h"
#include "corpus.h"
#include "floor/entries.h"
#include "ratio_table.h"
#include "vkpch.h"

namespace vkpbench {
namespace {

const vkp16u* U(const UChar* p) { return reinterpret_cast<const vkp16u*>(p); }
vkp16u* U(UChar* p) { return reinterpret_cast<vkp16u*>(p); }
const vkp8u* B(const char* p) { return reinterpret_cast<const vkp8u*>(p); }

constexpr int kMax = 1 << 16;

// English text, a copy of it, and a copy with the case of every letter
// swapped; as 8u and as 16u (with a second 16u text whose letters are moved
// to the Cyrillic block, so that no block is ASCII).
struct Texts {
    std::string a, b, swapped;
    std::vector<UChar> a16, b16, swapped16, cyr, cyrB, cyrSwapped;
    Texts() : a(EnglishText(kMax)), b(a), swapped(a) {
        for (char& c : swapped) c = char(std::isupper(c) ? std::tolower(c) : std::toupper(c));
        a16.assign(a.begin(), a.end()), b16 = a16, swapped16.assign(swapped.begin(), swapped.end());
        for (char c : a) cyr.push_back(std::islower(c) ? UChar(0x430 + c - 'a') : std::isupper(c) ? UChar(0x410 + c - 'A') : UChar(c));
        cyrB = cyr;
        for (UChar c : cyr) cyrSwapped.push_back(UChar(u_islower(c) ? u_toupper(c) : u_tolower(c)));
        a16.push_back(0), b16.push_back(0), swapped16.push_back(0), cyr.push_back(0);
    }
};

const Texts& T() {
    static const Texts t;
    return t;
}

void RegisterCompare() {
    const Texts& t = T();
    for (int n : {64, 256, 1024, 4096, kMax}) {
        const char *a = t.a.data(), *b = t.b.data(), *sw = t.swapped.data();
        RegisterBaseline(Name("Compare_8u", "vkp_16", n), n, [=] { int r; vkp::entry::vkpsCompare_8u(B(a), B(b), n, &r); return r; });
        RegisterBaseline(Name("Equal_8u", "vkp_16", n), n, [=] { int r; vkp::entry::vkpsEqual_8u(B(a), B(b), n, &r); return r; });
        RegisterBaseline(Name("CompareIgnoreCaseLatin_8u", "vkp_16", n), n,
                         [=] { int r; vkp::entry::vkpsCompareIgnoreCaseLatin_8u(B(a), B(sw), n, &r); return r; });
        AddRatio(Name("Compare_8u 16-byte / memcmp", "", n), Name("Compare_8u", "vkp_16", n), Name("Compare_8u", "memcmp", n));
        AddRatio(Name("Equal_8u 16-byte / memcmp", "", n), Name("Equal_8u", "vkp_16", n), Name("Compare_8u", "memcmp", n));
        AddRatio(Name("CompareIgnoreCaseLatin_8u 16-byte / strncasecmp", "", n), Name("CompareIgnoreCaseLatin_8u", "vkp_16", n),
                 Name("CompareIgnoreCaseLatin_8u", "strncasecmp", n));
        Register(Name("Compare_8u", "vkp", n), n, [=] { int r; vkpsCompare_8u(B(a), B(b), n, &r); return r; });
        Register(Name("Equal_8u", "vkp", n), n, [=] { int r; vkpsEqual_8u(B(a), B(b), n, &r); return r; });
        Register(Name("Compare_8u", "memcmp", n), n, [=] { return memcmp(a, b, n); });
        Register(Name("CompareIgnoreCaseLatin_8u", "vkp", n), n,
                 [=] { int r; vkpsCompareIgnoreCaseLatin_8u(B(a), B(sw), n, &r); return r; });
        Register(Name("CompareIgnoreCaseLatin_8u", "strncasecmp", n), n, [=] { return strncasecmp(a, sw, n); });
        AddRatio(Name("Compare_8u / memcmp", "", n), Name("Compare_8u", "vkp", n), Name("Compare_8u", "memcmp", n));
        AddRatio(Name("Equal_8u / memcmp", "", n), Name("Equal_8u", "vkp", n), Name("Compare_8u", "memcmp", n));
        AddRatio(Name("CompareIgnoreCaseLatin_8u / strncasecmp", "", n), Name("CompareIgnoreCaseLatin_8u", "vkp", n),
                 Name("CompareIgnoreCaseLatin_8u", "strncasecmp", n));

        for (bool cyrillic : {false, true}) {
            const UChar* a16 = (cyrillic ? t.cyr : t.a16).data();
            const UChar* b16 = (cyrillic ? t.cyrB : t.b16).data();
            const UChar* s16 = (cyrillic ? t.cyrSwapped : t.swapped16).data();
            const char* fam = cyrillic ? "Compare_16u/cyrillic" : "Compare_16u";
            const char* famCase = cyrillic ? "CompareIgnoreCase_16u/cyrillic" : "CompareIgnoreCase_16u";
            Register(Name(fam, "vkp", n), 2 * n, [=] { int r; vkpsCompare_16u(U(a16), U(b16), n, &r); return r; });
            Register(Name(fam, "icu_u_memcmp", n), 2 * n, [=] { return u_memcmp(a16, b16, n); });
            Register(Name(famCase, "vkp", n), 2 * n,
                     [=] { int r; vkpsCompareIgnoreCase_16u(U(a16), U(s16), n, &r); return r; });
            Register(Name(famCase, "icu_u_memcasecmp", n), 2 * n,
                     [=] { return u_memcasecmp(a16, s16, n, U_FOLD_CASE_DEFAULT); });
            AddRatio(Name(fam, "", n) + " / u_memcmp", Name(fam, "vkp", n), Name(fam, "icu_u_memcmp", n));
            AddRatio(Name(famCase, "", n) + " / u_memcasecmp", Name(famCase, "vkp", n), Name(famCase, "icu_u_memcasecmp", n));
        }
    }
}

// The first k bytes that do not occur in the text: punctuation, then control
// bytes, then bytes of 128 and above.
std::string AbsentSet(const std::string& text, size_t k) {
    std::string order = "#@~|^{}<>[]*+=%$&";
    for (int c = 1; c < 256; ++c)
        if (!std::isprint(c)) order += char(c);
    std::string set;
    for (char c : order)
        if (set.size() < k && text.find(c) == std::string::npos && set.find(c) == std::string::npos) set += c;
    return set;
}

void RegisterSetSearch() {
    const Texts& t = T();
    static std::vector<std::string> keep;
    static std::vector<std::vector<UChar>> keep16;
    keep.reserve(32), keep16.reserve(32);
    for (int k : {3, 8, 16, 64}) {
        keep.push_back(AbsentSet(t.a, k));
        const char* set = keep.back().c_str();
        keep16.emplace_back(keep.back().begin(), keep.back().end());
        keep16.back().push_back(0);
        const UChar* set16 = keep16.back().data();
        for (int n : {64, 4096, kMax}) {
            keep.push_back(t.a.substr(0, n));  // zero-terminated for strcspn
            const char* s = keep.back().c_str();
            keep16.emplace_back(t.a16.begin(), t.a16.begin() + n);
            keep16.back().push_back(0);
            const UChar* s16 = keep16.back().data();
            const std::string fam8 = "FindCAny_8u/set:" + std::to_string(k), fam16 = "FindCAny_16u/set:" + std::to_string(k);
            Register(Name(fam8.c_str(), "vkp", n), n, [=] { int i; vkpsFindCAny_8u(B(s), n, B(set), k, &i); return i; });
            Register(Name(fam8.c_str(), "strcspn", n), n, [=] { return strcspn(s, set); });
            Register(Name(fam8.c_str(), "vkp_rev", n), n, [=] { int i; vkpsFindRevCAny_8u(B(s), n, B(set), k, &i); return i; });
            Register(Name(fam16.c_str(), "vkp", n), 2 * n, [=] { int i; vkpsFindCAny_16u(U(s16), n, U(set16), k, &i); return i; });
            Register(Name(fam16.c_str(), "icu_u_strcspn", n), 2 * n, [=] { return u_strcspn(s16, set16); });
            AddRatio(Name(fam8.c_str(), "", n) + " / strcspn", Name(fam8.c_str(), "vkp", n), Name(fam8.c_str(), "strcspn", n));
            RegisterBaseline(Name(fam8.c_str(), "vkp_16", n), n,
                             [=] { int i; vkp::entry::vkpsFindCAny_8u(B(s), n, B(set), k, &i); return i; });
            AddRatio(Name(fam8.c_str(), "", n) + " 16-byte / strcspn", Name(fam8.c_str(), "vkp_16", n),
                     Name(fam8.c_str(), "strcspn", n));
            AddRatio(Name(fam8.c_str(), "", n) + " Rev / forward", Name(fam8.c_str(), "vkp_rev", n), Name(fam8.c_str(), "vkp", n));
            AddRatio(Name(fam16.c_str(), "", n) + " / u_strcspn", Name(fam16.c_str(), "vkp", n),
                     Name(fam16.c_str(), "icu_u_strcspn", n));
        }
    }
}

void RegisterCase() {
    const Texts& t = T();
    static std::vector<char> out(kMax);
    static std::vector<UChar> out16(kMax);
    char* d = out.data();
    UChar* d16 = out16.data();
    for (int n : {64, 4096, kMax}) {
        const char* s = t.a.data();
        Register(Name("UppercaseLatin_8u", "vkp", n), n, [=] { return vkpsUppercaseLatin_8u(B(s), (vkp8u*)d, n); });
        Register(Name("LowercaseLatin_8u", "vkp", n), n, [=] { return vkpsLowercaseLatin_8u(B(s), (vkp8u*)d, n); });
        Register(Name("UppercaseLatin_8u", "toupper_loop", n), n, [=] {
            for (int i = 0; i < n; ++i) d[i] = char(toupper((unsigned char)s[i]));
            return d[0];
        });
        Register(Name("LowercaseLatin_8u", "tolower_loop", n), n, [=] {
            for (int i = 0; i < n; ++i) d[i] = char(tolower((unsigned char)s[i]));
            return d[0];
        });
        Register(Name("Copy_8u", "memcpy", n), n, [=] { return memcpy(d, s, n); });
        AddRatio(Name("UppercaseLatin_8u / toupper loop", "", n), Name("UppercaseLatin_8u", "vkp", n),
                 Name("UppercaseLatin_8u", "toupper_loop", n));
        AddRatio(Name("LowercaseLatin_8u / tolower loop", "", n), Name("LowercaseLatin_8u", "vkp", n),
                 Name("LowercaseLatin_8u", "tolower_loop", n));
        AddRatio(Name("UppercaseLatin_8u / memcpy", "", n), Name("UppercaseLatin_8u", "vkp", n), Name("Copy_8u", "memcpy", n));
        RegisterBaseline(Name("UppercaseLatin_8u", "vkp_16", n), n,
                         [=] { return vkp::entry::vkpsUppercaseLatin_8u(B(s), (vkp8u*)d, n); });
        AddRatio(Name("UppercaseLatin_8u 16-byte / memcpy", "", n), Name("UppercaseLatin_8u", "vkp_16", n),
                 Name("Copy_8u", "memcpy", n));

        for (bool cyrillic : {false, true}) {
            const UChar* s16 = (cyrillic ? t.cyr : t.a16).data();
            const char* lower = cyrillic ? "Lowercase_16u/cyrillic" : "Lowercase_16u";
            const char* upper = cyrillic ? "Uppercase_16u/cyrillic" : "Uppercase_16u";
            Register(Name(lower, "vkp", n), 2 * n, [=] { return vkpsLowercase_16u(U(s16), U(d16), n); });
            Register(Name(upper, "vkp", n), 2 * n, [=] { return vkpsUppercase_16u(U(s16), U(d16), n); });
            Register(Name(lower, "icu_u_strToLower", n), 2 * n, [=] {
                UErrorCode e = U_ZERO_ERROR;
                return u_strToLower(d16, kMax, s16, n, "", &e);
            });
            Register(Name(upper, "icu_u_strToUpper", n), 2 * n, [=] {
                UErrorCode e = U_ZERO_ERROR;
                return u_strToUpper(d16, kMax, s16, n, "", &e);
            });
            AddRatio(Name(lower, "", n) + " / u_strToLower", Name(lower, "vkp", n), Name(lower, "icu_u_strToLower", n));
            AddRatio(Name(upper, "", n) + " / u_strToUpper", Name(upper, "vkp", n), Name(upper, "icu_u_strToUpper", n));
        }
    }
}

vkp32u SerialMulAdd(const unsigned char* s, int n) {
    vkp32u h = 0;
    for (int i = 0; i < n; ++i) h = h * 31 + s[i];
    return h;
}

void RegisterHash() {
    const char* s = T().a.data();
    const auto* us = reinterpret_cast<const unsigned char*>(s);
    for (int n : {64, 4096, kMax}) {
        Register(Name("HashSJ2_8u32u", "vkp", n), n, [=] { vkp32u h; vkpsHashSJ2_8u32u(B(s), n, &h); return h; });
        Register(Name("HashSJ2_8u32u", "serial_loop", n), n, [=] { return SerialMulAdd(us, n); });
        Register(Name("HashSJ2_8u32u", "xxh32", n), n, [=] { return XXH32(s, n, 0); });
        Register(Name("HashMSCS_8u32u", "vkp", n), n, [=] { vkp32u h; vkpsHashMSCS_8u32u(B(s), n, &h); return h; });
        Register(Name("Hash_8u32u", "vkp", n), n, [=] { vkp32u h; vkpsHash_8u32u(B(s), n, &h); return h; });
        AddRatio(Name("HashSJ2_8u32u / serial loop", "", n), Name("HashSJ2_8u32u", "vkp", n),
                 Name("HashSJ2_8u32u", "serial_loop", n));
        AddRatio(Name("HashSJ2_8u32u / XXH32", "", n), Name("HashSJ2_8u32u", "vkp", n), Name("HashSJ2_8u32u", "xxh32", n));
        AddRatio(Name("HashMSCS_8u32u / HashSJ2 serial loop", "", n), Name("HashMSCS_8u32u", "vkp", n),
                 Name("HashSJ2_8u32u", "serial_loop", n));
    }
}

const int registered = (RegisterCompare(), RegisterSetSearch(), RegisterCase(), RegisterHash(), 0);

}  // namespace
}  // namespace vkpbench
