// Whole pages of memory from the operating system: what LargeMemory stands on.
#pragma once

#include <cstddef>

namespace zr {

// At least so many bytes, in large pages if the system has them; null when there are none.
void* TakePages(std::size_t bytes);
// Gives back what TakePages gave for so many bytes.
void GivePagesBack(void* pages, std::size_t bytes);

}  // namespace zr
