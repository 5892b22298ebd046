// Fills the placeholders of a text, as printf does but typed: no text from a language file can make it read what isn't
// there.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <variant>

namespace zr {

// What a placeholder is filled with: an integer, a double, or a text, which must outlive the call.
class TextArgument {
public:
    template <std::integral Integer>
    TextArgument(Integer value) : m_value(static_cast<std::int64_t>(value))
    {
    }
    TextArgument(double value) : m_value(value) {}
    TextArgument(const ZRBasicString& value) : m_value(value.Text()) {}
    TextArgument(std::u16string_view value) : m_value(value) {}
    TextArgument(const wchar* value) : m_value(value != nullptr ? std::u16string_view(value) : std::u16string_view()) {}

    using Value = std::variant<std::int64_t, double, std::u16string_view>;
    [[nodiscard]] const Value& Get() const { return m_value; }

private:
    Value m_value;
};

// The largest width and precision of a placeholder.
inline constexpr int kMaxTextWidth = 99;

// Replaces each placeholder of the format with the next argument:
//
//   %d %i %u   an integer in decimals            %s        a text
//   %x %X      an integer of 0 or more in hex    %c        an integer as UTF-16 unit
//   %f %e %g   a double, also %E and %G          %%        a percent sign
//
// with the flags - + 0, a width and a precision (decimals or digits of a double, least digits of an integer, most
// characters of a text) as in printf. A blank is no flag, so that "100 % done" says what it says. Numbers are written
// as in the C locale, whatever the user's.
//
// What is none of these, asks for a width or precision above kMaxTextWidth, or has no argument left shows as it stands.
// A placeholder of another kind than its argument shows as it stands too, and passes that argument over. Arguments left
// over are ignored. Any thread.
ZRBasicString FormatText(std::u16string_view format, std::initializer_list<TextArgument> arguments);

}  // namespace zr
