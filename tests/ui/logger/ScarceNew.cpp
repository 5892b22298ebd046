// Stands alone, since g++ 12 takes replaced operators that it inlines for a mismatch.
#include "ScarceNew.h"

#include <cstdint>
#include <cstdlib>
#include <new>

std::size_t zr::test::largestThereIs = SIZE_MAX;

void* operator new(std::size_t size)
{
    if (size <= zr::test::largestThereIs) {
        if (void* const block = std::malloc(size != 0 ? size : 1); block != nullptr) {
            return block;
        }
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
