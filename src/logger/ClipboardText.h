// Text on its way to the clipboard: room that grows as it is written, and how far it may grow.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string_view>
#include <utility>

namespace zr::logger {

// Decides after each row whether the text of a pass still has room: the room begins with kStart bytes and is enlarged
// by kStep as soon as more than its size less kMargin *characters* are written.
//
// Meant: the room is counted in bytes and what is written in characters of 16 bits, so that the first enlargement comes
// at 0xFE000 characters. Whoever writes sees to room for each write besides.
class CopyRoom {
public:
    static constexpr std::size_t kStart = 0x100000;
    static constexpr std::size_t kStep = 0x100000;
    static constexpr std::size_t kMargin = 8192;

    // Whether there is memory for a room of so many bytes.
    using Grant = std::function<bool(std::size_t bytes)>;
    explicit CopyRoom(Grant grant) : m_grant(std::move(grant)) {}

    // After a row. False: there is no more room, and the rows of this pass end with it.
    bool AfterRow(std::size_t characters)
    {
        if (characters <= m_capacity - kMargin) {
            return true;
        }
        if (m_grant && !m_grant(m_capacity + kStep)) {
            return false;
        }
        m_capacity += kStep;
        return true;
    }
    // Bytes.
    [[nodiscard]] std::size_t Capacity() const { return m_capacity; }

private:
    Grant m_grant;
    std::size_t m_capacity = kStart;
};

// Characters one after the other in one piece, enlarged in place where the machine can do that. Never throws: without
// memory a reservation fails and what was written stays.
template <typename Char>
class TextBlock {
public:
    TextBlock() = default;
    TextBlock(const TextBlock&) = delete;
    TextBlock& operator=(const TextBlock&) = delete;
    TextBlock(TextBlock&& other) noexcept { *this = std::move(other); }
    TextBlock& operator=(TextBlock&& other) noexcept
    {
        std::swap(m_first, other.m_first);
        std::swap(m_size, other.m_size);
        std::swap(m_room, other.m_room);
        return *this;
    }
    ~TextBlock() { std::free(m_first); }

    // Room for so many more characters. False without memory.
    bool Reserve(std::size_t characters)
    {
        if (m_room - m_size >= characters) {
            return true;
        }
        const std::size_t needed = m_size + characters;
        return Enlarge(needed + needed / 2) || Enlarge(needed);
    }
    // Where the next character goes, and how far it was written; both within what was reserved.
    [[nodiscard]] Char* End() { return m_first + m_size; }
    void SetEnd(const Char* end) { m_size = static_cast<std::size_t>(end - m_first); }
    // Takes off what was written behind.
    void Truncate(std::size_t size) { m_size = size; }

    // False without memory.
    bool Append(std::basic_string_view<Char> text)
    {
        if (!Reserve(text.size())) {
            return false;
        }
        std::memcpy(End(), text.data(), text.size() * sizeof(Char));
        m_size += text.size();
        return true;
    }

    [[nodiscard]] std::size_t Size() const { return m_size; }
    [[nodiscard]] Char* Data() { return m_first; }
    [[nodiscard]] const Char* Data() const { return m_first; }

private:
    bool Enlarge(std::size_t room)
    {
        void* const block = std::realloc(m_first, room * sizeof(Char));
        if (block == nullptr) {
            return false;
        }
        m_first = static_cast<Char*>(block);
        m_room = room;
        return true;
    }

    Char* m_first = nullptr;  // Owned.
    std::size_t m_size = 0;
    std::size_t m_room = 0;
};

}  // namespace zr::logger
