#include "platform/SystemPages.h"

#include <windows.h>

namespace zr {

// Large pages want a privilege here that a desktop hasn't.
void* TakePages(std::size_t bytes)
{
    return VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}

void GivePagesBack(void* pages, std::size_t)
{
    VirtualFree(pages, 0, MEM_RELEASE);
}

}  // namespace zr
