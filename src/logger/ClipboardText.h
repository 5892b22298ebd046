// Text on its way to the clipboard: room that grows as it is written, and how far it may grow.
#pragma once

#include "platform/LargeMemory.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <new>
#include <optional>
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

// Characters one after the other in one piece. Never throws: without memory a reservation fails and what was written
// stays.
template <typename Char>
class TextBlock {
public:
    // Room for so many more characters. False without memory.
    bool Reserve(std::size_t characters)
    {
        if (m_room - m_size >= characters) {
            return true;
        }
        const std::size_t needed = m_size + characters;
        return Enlarge(needed + needed / 2) || Enlarge(needed);
    }
    // Likewise, and no more than that: for whoever knows how many there will be.
    bool ReserveExactly(std::size_t characters)
    {
        return m_room - m_size >= characters || Enlarge(m_size + characters);
    }
    // Where the next character goes, and how far it was written; both within what was reserved.
    [[nodiscard]] Char* End() { return Data() + m_size; }
    void SetEnd(const Char* end) { m_size = static_cast<std::size_t>(end - Data()); }
    // Takes off what was written behind.
    void Truncate(std::size_t size) { m_size = size; }

    // False without memory.
    bool Append(std::basic_string_view<Char> text)
    {
        if (!Reserve(text.size())) {
            return false;
        }
        std::copy(text.begin(), text.end(), End());
        m_size += text.size();
        return true;
    }

    [[nodiscard]] std::size_t Size() const { return m_size; }
    // Null before the first reservation.
    [[nodiscard]] Char* Data() { return m_first; }
    [[nodiscard]] const Char* Data() const { return m_first; }

private:
    bool Enlarge(std::size_t room)
    {
        try {
            LargeMemory memory(room * sizeof(Char));
            auto* const first = reinterpret_cast<Char*>(memory.Data());
            std::copy(m_first, m_first + m_size, first);
            m_memory.emplace(std::move(memory));
            m_first = first;
            m_room = room;
            return true;
        } catch (const std::bad_alloc&) {
            return false;
        }
    }

    std::optional<LargeMemory> m_memory;
    Char* m_first = nullptr;
    std::size_t m_size = 0;
    std::size_t m_room = 0;
};

}  // namespace zr::logger
