// The lowest stack address the matcher may use on the calling thread.
#pragma once

namespace vkp::regexp {

// Room kept free below the deepest matcher frame: one routine frame and the
// leaf calls below it need far less, the rest is for the system.
constexpr unsigned kStackSafetyMargin = 32 * 1024;

// The lowest address of the calling thread's stack plus the safety margin.
// Looked up from the system once per thread on Linux (the lookup reads the
// process map for the main thread) and at each call on Windows (cheap).
const char* ThreadStackFloor();

}  // namespace vkp::regexp
