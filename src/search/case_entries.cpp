// The twelve case conversion exports.
#include "floor/entries.h"
#include "kernels/active.h"

namespace vkp::entry {
namespace {

template <class T, class Convert>
Status ConvertCase(const T* src, T* dst, int len, Convert convert) {
    if (!src || !dst) return kErrNull;
    if (len < 0) return kErrLength;
    convert(src, dst, len);
    return kOk;
}

template <class T>
Status Latin(const T* src, T* dst, int len, bool lower) {
    return ConvertCase(src, dst, len, [lower](const T* s, T* d, int n) {
        if (lower) kernels::active::LowercaseLatin(s, d, n);
        else kernels::active::UppercaseLatin(s, d, n);
    });
}

template <bool kLower>
Status Full(const u16* src, u16* dst, int len) {
    return ConvertCase(src, dst, len, [](const u16* s, u16* d, int n) {
        if (kLower) kernels::active::LowercaseFull(s, d, n);
        else kernels::active::UppercaseFull(s, d, n);
    });
}

}  // namespace

Status vkpsLowercaseLatin_8u(const u8* s, u8* d, int len) { return Latin(s, d, len, true); }
Status vkpsLowercaseLatin_8u_I(u8* sd, int len) { return Latin<u8>(sd, sd, len, true); }
Status vkpsLowercaseLatin_16u(const u16* s, u16* d, int len) { return Latin(s, d, len, true); }
Status vkpsLowercaseLatin_16u_I(u16* sd, int len) { return Latin<u16>(sd, sd, len, true); }
Status vkpsUppercaseLatin_8u(const u8* s, u8* d, int len) { return Latin(s, d, len, false); }
Status vkpsUppercaseLatin_8u_I(u8* sd, int len) { return Latin<u8>(sd, sd, len, false); }
Status vkpsUppercaseLatin_16u(const u16* s, u16* d, int len) { return Latin(s, d, len, false); }
Status vkpsUppercaseLatin_16u_I(u16* sd, int len) { return Latin<u16>(sd, sd, len, false); }
Status vkpsLowercase_16u(const u16* s, u16* d, int len) { return Full<true>(s, d, len); }
Status vkpsLowercase_16u_I(u16* sd, int len) { return Full<true>(sd, sd, len); }
Status vkpsUppercase_16u(const u16* s, u16* d, int len) { return Full<false>(s, d, len); }
Status vkpsUppercase_16u_I(u16* sd, int len) { return Full<false>(sd, sd, len); }

}  // namespace vkp::entry
