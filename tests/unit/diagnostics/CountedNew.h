// The program's own operator new, which remembers the largest block.
#pragma once

#include <cstddef>

namespace zr::test {

// Bytes of the largest block asked for since it was last set to 0. One thread only.
extern std::size_t largestBlock;

}  // namespace zr::test
