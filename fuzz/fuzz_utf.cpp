// Both UTF converters on arbitrary input against the per-character rules,
// with the source and the destination each flush against an inaccessible
// page, so any access outside them crashes. The first byte picks the byte
// order and the destination room.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "edit/utf_convert.h"
#include "support/edit_reference.h"
#include "support/guarded_buffer.h"

namespace {

using vkptest::GuardedBuffer;

template <class In, class Out, class Ref, class Fn>
void Check(const uint8_t* data, size_t size, bool swap, size_t room, GuardedBuffer::Guard srcGuard, Ref ref, Fn fn) {
    const size_t n = size / sizeof(In);
    std::vector<In> in(n);
    for (size_t i = 0; i < n; ++i) in[i] = In(sizeof(In) == 1 ? data[i] : data[2 * i] | data[2 * i + 1] << 8);
    GuardedBuffer src(n * sizeof(In), srcGuard);
    src.fill(in.data(), n);
    GuardedBuffer dst(room * sizeof(Out), srcGuard == GuardedBuffer::Guard::After ? GuardedBuffer::Guard::Before
                                                                                 : GuardedBuffer::Guard::After);
    const vkptest::Converted want = ref(in, room, swap);
    int srcLen = int(n), dstLen = int(room);
    if (fn(src.as<In>(), &srcLen, dst.as<Out>(), &dstLen, swap ? 1 : 0) != 0) std::abort();
    if (size_t(srcLen) != want.consumed) std::abort();
    const Out* got = dst.as<Out>();
    if constexpr (sizeof(Out) == 2) {
        if (size_t(dstLen) != want.units.size()) std::abort();
        for (size_t i = 0; i < want.units.size(); ++i)
            if (got[i] != want.units[i]) std::abort();
    } else {
        if (size_t(dstLen) != want.bytes.size()) std::abort();
        for (size_t i = 0; i < want.bytes.size(); ++i)
            if (got[i] != want.bytes[i]) std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    const bool swap = data[0] & 1;
    const auto srcGuard = data[0] & 2 ? GuardedBuffer::Guard::Before : GuardedBuffer::Guard::After;
    const size_t n = size - 1;
    // Room: as much as the output can need, or a cut somewhere inside it.
    const size_t room8 = data[0] & 4 ? n : (n * (data[0] >> 3)) / 31;
    const size_t room16 = data[0] & 4 ? 3 * (n / 2) : (3 * (n / 2) * (data[0] >> 3)) / 31;
    Check<vkp8u, vkp16u>(data + 1, n, swap, room8, srcGuard, vkptest::RefUtf8To16, vkp::edit::Utf8To16);
    Check<vkp16u, vkp8u>(data + 1, n, swap, room16, srcGuard, vkptest::RefUtf16To8, vkp::edit::Utf16To8);
    return 0;
}
