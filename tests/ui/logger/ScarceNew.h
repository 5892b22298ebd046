// The program's own operator new, which has no large blocks when it is told so.
#pragma once

#include <cstddef>

namespace zr::test {

// Bytes of the largest block that there is memory for. One thread only.
extern std::size_t largestThereIs;

}  // namespace zr::test
