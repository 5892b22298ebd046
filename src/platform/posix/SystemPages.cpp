#include "platform/SystemPages.h"

#include <sys/mman.h>
#include <cstdint>

namespace zr {

namespace {

constexpr std::size_t kLargePage = std::size_t{2} * 1024 * 1024;

// Up to whole large pages.
std::size_t Rounded(std::size_t bytes)
{
    return (bytes + kLargePage - 1) / kLargePage * kLargePage;
}

}  // namespace

void* TakePages(std::size_t bytes)
{
    const std::size_t size = Rounded(bytes);
    if (size < bytes || size + kLargePage < size) {
        return nullptr;
    }
    // One page more than asked for, of which the ends are given back, so that it begins where a large page does.
    void* const taken = mmap(nullptr, size + kLargePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (taken == MAP_FAILED) {
        return nullptr;
    }
    char* const begin = static_cast<char*>(taken);
    const std::size_t before = (kLargePage - reinterpret_cast<std::uintptr_t>(begin) % kLargePage) % kLargePage;
    if (before > 0) {
        munmap(begin, before);
    }
    munmap(begin + before + size, kLargePage - before);
#ifdef MADV_HUGEPAGE
    // Advice only: without large pages the small ones do.
    madvise(begin + before, size, MADV_HUGEPAGE);
#endif
    return begin + before;
}

void GivePagesBack(void* pages, std::size_t bytes)
{
    munmap(pages, Rounded(bytes));
}

}  // namespace zr
