// The operating system's attach notification: choose the processor variant
// once, before any export can be called. There is no detach work.
#include "frame/cpu_variant.h"

#if defined(_WIN32)
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) vkp::Attach();
    return TRUE;
}
#else
__attribute__((constructor)) static void AttachOnLoad() { vkp::Attach(); }
#endif
