// Test programs that link the library's internals attach them as the library
// attaches itself when loaded: the kernel width (and variant) follow the
// feature mask, VKPCORE_CPU_FEATURES included.
#include "frame/cpu_variant.h"

namespace {

const int attached = (vkp::Attach(), 0);

}  // namespace
