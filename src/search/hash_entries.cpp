// The six hashing exports.
#include "floor/entries.h"
#include "kernels/hash.h"

namespace vkp::entry {
namespace {

template <class T, class Hash>
Status HashWith(const T* s, int len, u32* pHash, Hash hash) {
    if (!s || !pHash) return kErrNull;
    if (len < 0) return kErrLength;
    *pHash = hash(s, len);
    return kOk;
}

}  // namespace

Status vkpsHash_8u32u(const u8* s, int len, u32* pHash) { return HashWith(s, len, pHash, kernels::HashShiftXor<u8>); }
Status vkpsHash_16u32u(const u16* s, int len, u32* pHash) { return HashWith(s, len, pHash, kernels::HashShiftXor<u16>); }
Status vkpsHashSJ2_8u32u(const u8* s, int len, u32* pHash) { return HashWith(s, len, pHash, kernels::HashMulAdd<u8>); }
Status vkpsHashSJ2_16u32u(const u16* s, int len, u32* pHash) { return HashWith(s, len, pHash, kernels::HashMulAdd<u16>); }
Status vkpsHashMSCS_8u32u(const u8* s, int len, u32* pHash) { return HashWith(s, len, pHash, kernels::HashMulXor<u8>); }
Status vkpsHashMSCS_16u32u(const u16* s, int len, u32* pHash) { return HashWith(s, len, pHash, kernels::HashMulXor<u16>); }

}  // namespace vkp::entry
