// Memory for a lot of data, got and given back fast.
#pragma once

#include <cstddef>

namespace zr {

// Bytes of no particular content, aligned for any plain type. From kLarge on they come straight from the system, in
// its large pages where it has some, and go back to it at once: a load of logged data would otherwise spend more time
// on faults of small pages than on reading. Throws std::bad_alloc as operator new does. Any thread.
class LargeMemory {
public:
    static constexpr std::size_t kLarge = std::size_t{2} * 1024 * 1024;

    explicit LargeMemory(std::size_t bytes);
    LargeMemory(LargeMemory&& other) noexcept;
    LargeMemory& operator=(LargeMemory&& other) noexcept;
    ~LargeMemory();

    // Null once moved from.
    [[nodiscard]] std::byte* Data() const { return m_data; }
    [[nodiscard]] std::size_t Size() const { return m_size; }

private:
    std::size_t m_size;
    std::byte* m_data;
};

}  // namespace zr
