// Waiting for a socket that a library owns.
#pragma once

#include <chrono>
#include <cstdint>

namespace zr {

// True when the socket (a descriptor, or the system's handle) can be read, or written if `forWriting`, or has failed;
// false when the time is over before. Blocks up to `limit`.
bool WaitForSocket(std::intptr_t socket, bool forWriting, std::chrono::milliseconds limit);

}  // namespace zr
