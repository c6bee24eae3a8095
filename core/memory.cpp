// 64-byte aligned allocation for the family's InitAlloc functions.
#include "vkpcore.h"

#include <stdlib.h>
#if defined(_WIN32)
#include <malloc.h>
#endif

extern "C" void* vkpMalloc(int len) {
    if (len <= 0) return nullptr;
#if defined(_WIN32)
    return _aligned_malloc(size_t(len), 64);
#else
    void* p = nullptr;
    return posix_memalign(&p, 64, size_t(len)) == 0 ? p : nullptr;
#endif
}

extern "C" void vkpFree(void* ptr) {
#if defined(_WIN32)
    _aligned_free(ptr);
#else
    free(ptr);
#endif
}
