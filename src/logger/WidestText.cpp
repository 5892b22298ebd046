#include "logger/WidestText.h"

#include <algorithm>
#include <utility>

namespace zr::logger {

namespace {

constexpr std::u16string_view kDigits = u"0123456789";
// Beyond so many shapes a column is measured text by text: it isn't made of numbers.
constexpr std::size_t kMaxShapes = 64;

bool IsDigit(wchar character)
{
    return character >= u'0' && character <= u'9';
}

bool HasShape(std::u16string_view text, std::u16string_view shape)
{
    return text.size() == shape.size() &&
           std::equal(text.begin(), text.end(), shape.begin(),
                      [](wchar left, wchar right) { return (IsDigit(left) ? u'0' : left) == right; });
}

}  // namespace

bool DigitWidths::IsUniform(std::u16string_view shape)
{
    if (!AreDigitsUniform()) {
        return false;
    }
    return std::all_of(shape.begin(), shape.end(),
                       [&](wchar character) { return IsDigit(character) || IsNeighbourUniform(character); });
}

bool DigitWidths::AreDigitsUniform()
{
    if (m_digits < 0) {
        const int one = Width(u"0");
        const int two = Width(u"00");
        const bool isUniform = std::all_of(kDigits.begin(), kDigits.end(), [&](wchar left) {
            return Width({&left, 1}) == one && std::all_of(kDigits.begin(), kDigits.end(), [&](wchar right) {
                       return Width(std::u16string{left, right}) == two;
                   });
        });
        m_digits = isUniform ? 1 : 0;
    }
    return m_digits == 1;
}

bool DigitWidths::IsNeighbourUniform(wchar character)
{
    if (m_uniform.find(character) != std::u16string::npos) {
        return true;
    }
    if (m_proportional.find(character) != std::u16string::npos) {
        return false;
    }
    const int before = Width(std::u16string{character, u'0'});
    const int behind = Width(std::u16string{u'0', character});
    const bool isUniform = std::all_of(kDigits.begin(), kDigits.end(), [&](wchar digit) {
        return Width(std::u16string{character, digit}) == before && Width(std::u16string{digit, character}) == behind;
    });
    (isUniform ? m_uniform : m_proportional) += character;
    return isUniform;
}

void WidestText::Add(std::u16string_view text)
{
    if (!IsKnown(text)) {
        AddNew(text);
    }
}

bool WidestText::IsKnown(std::u16string_view text)
{
    if (m_last < m_shapes.size() && HasShape(text, m_shapes[m_last])) {
        return true;
    }
    const auto found = std::find_if(m_shapes.begin(), m_shapes.end(),
                                    [&](const std::u16string& shape) { return HasShape(text, shape); });
    if (found == m_shapes.end()) {
        return false;
    }
    m_last = static_cast<std::size_t>(found - m_shapes.begin());
    return true;
}

void WidestText::AddNew(std::u16string_view text)
{
    m_width = std::max(m_width, m_digits.Width(text));
    if (m_shapes.size() < kMaxShapes && m_digits.IsUniform(text)) {
        std::u16string shape(text);
        std::replace_if(shape.begin(), shape.end(), IsDigit, u'0');
        m_shapes.push_back(std::move(shape));
    }
}

}  // namespace zr::logger
