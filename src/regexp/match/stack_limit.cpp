// Stack bounds of the calling thread.
#include "regexp/match/stack_limit.h"

#include "regexp/match/match_context.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <pthread.h>
#endif

namespace vkp::regexp {

#ifdef _WIN32

const char* ThreadStackFloor() {
    ULONG_PTR low = 0, high = 0;
    GetCurrentThreadStackLimits(&low, &high);
    return reinterpret_cast<const char*>(low) + kStackSafetyMargin;
}

#else

namespace {

// Plain data with no constructor: no guard or wrapper on access. The
// initial-exec model keeps the library free of the dynamic TLS resolver.
struct StackBounds {
    const char* low;
    const char* high;
};
__thread StackBounds tStack __attribute__((tls_model("initial-exec")));

__attribute__((noinline, cold)) StackBounds LookUpStack(const char* sp) {
    StackBounds b = {nullptr, nullptr};
    pthread_attr_t attr;
    if (pthread_getattr_np(pthread_self(), &attr) == 0) {
        void* addr = nullptr;
        size_t size = 0;
        if (pthread_attr_getstack(&attr, &addr, &size) == 0) {
            b.low = static_cast<const char*>(addr);
            b.high = b.low + size;
        }
        pthread_attr_destroy(&attr);
    }
    // A stack the system does not describe (or a thread running on a stack
    // of its own making): assume a small one below the current position.
    if (!(b.low < sp && sp <= b.high)) {
        b.high = sp;
        b.low = sp - 256 * 1024;
    }
    return b;
}

}  // namespace

const char* ThreadStackFloor() {
    const char* sp = StackPointer();
    if (!(tStack.low < sp && sp <= tStack.high)) tStack = LookUpStack(sp);
    return tStack.low + kStackSafetyMargin;
}

#endif

}  // namespace vkp::regexp
