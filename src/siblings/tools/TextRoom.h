// Room to put a short text together, character by character, without growing a string each time.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace zr {

// Room for a bounded number of characters, on the stack where that is enough. Whoever writes keeps to the bound.
class TextRoom {
public:
    explicit TextRoom(std::size_t bound)
    {
        if (bound > m_short.size()) {
            m_long.resize(bound);
            m_first = m_long.data();
        }
    }
    TextRoom(const TextRoom&) = delete;
    TextRoom& operator=(const TextRoom&) = delete;

    [[nodiscard]] wchar* First() { return m_first; }

private:
    std::array<wchar, 128> m_short;  // only what was put is ever read
    std::u16string m_long;
    wchar* m_first = m_short.data();
};

// Writes a text and returns the place behind it.
inline wchar* PutText(wchar* at, std::u16string_view text)
{
    for (const wchar character : text) {
        *at++ = character;
    }
    return at;
}

// Writes the lowest decimal digit of a number and returns the place behind it.
inline wchar* PutDigit(wchar* at, unsigned number)
{
    *at = static_cast<wchar>(u'0' + number % 10);
    return at + 1;
}

}  // namespace zr
