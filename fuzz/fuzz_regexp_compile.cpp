// Pattern compiler on arbitrary patterns and option strings. Input: the
// option letters, a zero byte, then the pattern (up to the next zero byte);
// without a zero byte the whole input is the pattern and the options are
// null. The pattern and options sit in heap copies of their exact size, the
// block is exactly vkpsRegExpGetSize bytes long and ends where an
// inaccessible page begins, so any access outside them faults or is reported.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "floor/entries.h"
#include "support/guarded_buffer.h"

namespace {

char* CString(const uint8_t* p, size_t n) {
    char* s = static_cast<char*>(std::malloc(n + 1));
    std::memcpy(s, p, n);
    s[n] = 0;
    return s;
}

// What a successful compile must leave: a program that fits in the block and
// string operands that point at literal bytes inside it, behind the program.
void CheckProgram(const vkpRegExpState* st, size_t blockSize) {
    const auto* base = reinterpret_cast<const unsigned char*>(st);
    if (st->magic != VKP_REGEXP_MAGIC || st->instructionCount < 0 || st->groupCount < 1 || st->matchLimit != 10000 ||
        st->format != 1 || st->patternKind < 0 || st->patternKind > 2 || st->lastLiteralIndex < -2 ||
        st->lastLiteralIndex >= st->instructionCount)
        std::abort();
    const size_t programEnd = VKP_REGEXP_HEAD_SIZE + size_t(st->instructionCount) * sizeof(vkpRegExpInstruction);
    if (programEnd > blockSize) std::abort();
    const auto* prog = reinterpret_cast<const vkpRegExpInstruction*>(base + VKP_REGEXP_HEAD_SIZE);
    for (int i = 0; i < st->instructionCount; ++i) {
        if (prog[i].op < 0x10000000u || prog[i].op > 0x1000001au) std::abort();
        if (prog[i].op != 0x10000001u) continue;  // string: b bytes at d
        const auto* d = static_cast<const unsigned char*>(prog[i].d);
        if (prog[i].b < 2 || d < base + programEnd || d + prog[i].b > base + blockSize) std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto* zero = static_cast<const uint8_t*>(std::memchr(data, 0, size));
    char* options = zero ? CString(data, size_t(zero - data)) : nullptr;
    const uint8_t* p = zero ? zero + 1 : data;
    const size_t rest = size_t(data + size - p);
    const auto* end = static_cast<const uint8_t*>(std::memchr(p, 0, rest));
    char* pattern = CString(p, end ? size_t(end - p) : rest);
    const int patternLen = int(std::strlen(pattern));

    int blockSize = 0;
    if (vkp::entry::vkpsRegExpGetSize(pattern, &blockSize) != 0 || blockSize != patternLen * 24 + 48056) std::abort();
    vkptest::GuardedBuffer block{size_t(blockSize)};
    auto* state = block.as<vkpRegExpState>();
    int offset = -12345;
    const int st = vkp::entry::vkpsRegExpInit(pattern, options, state, &offset);
    if (st == 0) {
        if (offset != -12345) std::abort();  // left alone on success
        CheckProgram(state, size_t(blockSize));
    } else if (st < -190 || st > -183 || offset < 0 || offset > patternLen) {
        std::abort();
    }
    std::free(pattern);
    std::free(options);
    return 0;
}
