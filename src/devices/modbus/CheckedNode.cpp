#include "devices/modbus/CheckedNode.h"

#include "siblings/tools/Numbers.h"
#include "siblings/tools/Utf.h"

#include <fmt/format.h>

#include <algorithm>

namespace zr::modbus {
namespace {

constexpr std::size_t kShownBytes = 60;

}  // namespace

void CheckedNode::Fail(std::string_view name, const std::string& reason)
{
    if (m_error.empty())
        m_error = fmt::format("{}: {}", name, reason);
}

bool CheckedNode::Has(std::string_view name) const
{
    return m_node.HasValue(Utf8ToUtf16(name).CStr());
}

std::optional<std::string> CheckedNode::Take(std::string_view name, bool optional)
{
    const ZRBasicString wideName = Utf8ToUtf16(name);
    if (m_node.HasValue(wideName.CStr()))
        return Utf16ToUtf8(m_node.Value(wideName.CStr(), u""));
    if (!optional)
        Fail(name, "missing");
    return std::nullopt;
}

ZRBasicString CheckedNode::Text(std::string_view name, std::size_t maximum, std::optional<ZRBasicString> fallback)
{
    const auto text = Take(name, fallback.has_value());
    if (!text)
        return fallback.value_or(ZRBasicString());
    const ZRBasicString wide = Utf8ToUtf16(*text);
    if (wide.Length() <= maximum)
        return wide;
    Fail(name, fmt::format("{} characters, at most {} are allowed", wide.Length(), maximum));
    return {};
}

ZRBasicString CheckedNode::Id(std::string_view name)
{
    const auto text = Take(name, false);
    if (!text)
        return {};
    const ZRBasicString wide = Utf8ToUtf16(*text);
    if (IsValidId(wide, true))
        return wide;
    Fail(name, fmt::format("\"{}\" is not a name: 1 to 64 letters, digits, blanks, \"-\" and \"_\"", Shown(*text)));
    return {};
}

int CheckedNode::Integer(std::string_view name, int minimum, int maximum, std::optional<int> fallback)
{
    const auto text = Take(name, fallback.has_value());
    if (!text)
        return fallback.value_or(minimum);
    std::int64_t number = 0;
    if (ParseInteger(Utf8ToUtf16(*text), number) && number >= minimum && number <= maximum) {
        return static_cast<int>(number);
    }
    Fail(name, fmt::format("\"{}\" is not a whole number from {} to {}", Shown(*text), minimum, maximum));
    return minimum;
}

double CheckedNode::Number(std::string_view name, double minimum, double maximum, std::optional<double> fallback)
{
    const auto text = Take(name, fallback.has_value());
    if (!text)
        return fallback.value_or(minimum);
    double number = 0.0;
    if (ParseDouble(Utf8ToUtf16(*text), number) && number >= minimum && number <= maximum)
        return number;
    Fail(name, fmt::format("\"{}\" is not a number from {:.17g} to {:.17g}", Shown(*text), minimum, maximum));
    return minimum;
}

bool CheckedNode::Flag(std::string_view name, bool fallback)
{
    return OneOf<bool>(name, {{"no", false}, {"yes", true}}, fallback);
}

void CheckedNode::AllowOnly(std::initializer_list<std::string_view> names)
{
    for (const ZRBasicString& wideName : m_node.ValueNames()) {
        const std::string name = Utf16ToUtf8(wideName);
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            Fail(Shown(name), fmt::format("no value of this name is known in \"{}\"", Shown(Utf16ToUtf8(m_node.tag))));
        }
    }
}

void CheckedNode::Forbid(std::string_view name, const std::string& reason)
{
    if (Has(name))
        Fail(name, reason);
}

std::string CheckedNode::Shown(std::string_view text)
{
    std::string shown;
    for (const char character : text) {
        const bool control = static_cast<unsigned char>(character) < 0x20 || character == 0x7F;
        shown.push_back(control ? ' ' : character);
    }
    if (shown.size() <= kShownBytes)
        return shown;
    std::size_t end = kShownBytes;
    while (end > 0 && (static_cast<unsigned char>(shown[end]) & 0xC0u) == 0x80u)
        --end;  // not inside a character
    return shown.substr(0, end) + "...";
}

}  // namespace zr::modbus
