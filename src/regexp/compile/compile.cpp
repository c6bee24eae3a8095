#include "regexp/compile/compiler.h"

#include "regexp/compile/compiler_pass.h"
#include "regexp/compile/pattern_syntax.h"
#include "regexp/compile/prescan.h"

namespace vkp::regexp {

Status Compile(const char* pattern, const char* options, RegExpState* state, int* errOffset) {
    const int len = static_cast<int>(__builtin_strlen(pattern));
    u32 bits = 0;
    for (const char* o = options; o && *o; ++o) {
        const u32 bit = OptionBit(*o);
        if (bit == 0) {
            *errOffset = 0;  // the offset is 0 whichever letter is wrong
            return kErrOption;
        }
        bits |= bit;
    }
    int captures = 0;
    if (Status s = PreScan(pattern, len, bits, &captures, errOffset)) return s;
    state->magic = kRegExpMagic;
    ClearAnalysisStamp(state);  // a recompile must not find the old pattern's analysis
    StoreBlockBytes(state, static_cast<u32>(BlockSize(len)));
    state->options = bits;
    state->groupCount = captures + 1;
    state->format = kFormatUtf8;
    CompilerPass pass(pattern, len, state, bits, captures + 1);
    return pass.Run(errOffset);
}

}  // namespace vkp::regexp
