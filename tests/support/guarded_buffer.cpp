#include "support/guarded_buffer.h"

#include <cstdlib>
#include <cstring>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace vkptest {

size_t PageSize() {
#if defined(_WIN32)
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    return info.dwPageSize;
#else
    return size_t(sysconf(_SC_PAGESIZE));
#endif
}

GuardedBuffer::GuardedBuffer(size_t bytes, Guard guard, size_t slack) : bytes_(bytes) {
    const size_t page = PageSize();
    const size_t dataPages = (bytes + slack + page - 1) / page + 1;
    regionSize_ = (dataPages + 1) * page;
#if defined(_WIN32)
    region_ = static_cast<unsigned char*>(VirtualAlloc(nullptr, regionSize_, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    if (!region_) std::abort();
#else
    void* p = mmap(nullptr, regionSize_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED) std::abort();
    region_ = static_cast<unsigned char*>(p);
#endif
    unsigned char* guardPage = guard == Guard::After ? region_ + dataPages * page : region_;
#if defined(_WIN32)
    DWORD old;
    if (!VirtualProtect(guardPage, page, PAGE_NOACCESS, &old)) std::abort();
#else
    if (mprotect(guardPage, page, PROT_NONE) != 0) std::abort();
#endif
    data_ = guard == Guard::After ? guardPage - slack - bytes : guardPage + page + slack;
}

GuardedBuffer::~GuardedBuffer() {
#if defined(_WIN32)
    VirtualFree(region_, 0, MEM_RELEASE);
#else
    munmap(region_, regionSize_);
#endif
}

void GuardedBuffer::copy(const void* src, size_t n) {
    if (n > bytes_) std::abort();
    if (n) std::memcpy(data_, src, n);
}

}  // namespace vkptest
