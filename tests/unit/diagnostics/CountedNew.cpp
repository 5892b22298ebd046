// Stands alone, since g++ 12 takes replaced operators that it inlines for a mismatch.
#include "CountedNew.h"

#include <algorithm>
#include <cstdlib>
#include <new>

std::size_t zr::test::largestBlock = 0;

void* operator new(std::size_t size)
{
    zr::test::largestBlock = std::max(zr::test::largestBlock, size);
    if (void* const block = std::malloc(size != 0 ? size : 1); block != nullptr) {
        return block;
    }
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}
