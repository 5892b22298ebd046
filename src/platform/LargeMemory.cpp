#include "platform/LargeMemory.h"

#include "platform/SystemPages.h"

#include <new>
#include <utility>

namespace zr {

namespace {

std::byte* Take(std::size_t bytes)
{
    void* const memory = bytes < LargeMemory::kLarge ? ::operator new(bytes) : TakePages(bytes);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return static_cast<std::byte*>(memory);
}

}  // namespace

LargeMemory::LargeMemory(std::size_t bytes) : m_size(bytes), m_data(Take(bytes)) {}

LargeMemory::LargeMemory(LargeMemory&& other) noexcept
    : m_size(std::exchange(other.m_size, 0)), m_data(std::exchange(other.m_data, nullptr))
{
}

LargeMemory& LargeMemory::operator=(LargeMemory&& other) noexcept
{
    std::swap(m_size, other.m_size);
    std::swap(m_data, other.m_data);
    return *this;
}

LargeMemory::~LargeMemory()
{
    if (m_size < kLarge) {
        ::operator delete(m_data);
    } else {
        GivePagesBack(m_data, m_size);
    }
}

}  // namespace zr
