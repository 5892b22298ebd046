// Numbers without a locale.
#include "siblings/tools/Numbers.h"

#include "siblings/tools/Utf.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace {

bool IsDigit(wchar character)
{
    return character >= u'0' && character <= u'9';
}

bool IsWhiteSpace(wchar character)
{
    return character == u' ' || (character >= u'\t' && character <= u'\r');
}

// ASCII of UTF-16 text; what isn't ASCII becomes "?", which no number holds.
std::string Narrow(std::u16string_view text)
{
    std::string out(text.size(), '?');
    std::transform(text.begin(), text.end(), out.begin(),
                   [](wchar character) { return character < 0x80 ? static_cast<char>(character) : '?'; });
    return out;
}

// Whether a decimal number that from_chars found out of range is too large; otherwise it is too small.
bool IsTooLarge(std::string_view number)
{
    const std::size_t exponentAt = std::min(number.find_first_of("eE"), number.size());
    int exponent = 0;
    if (exponentAt < number.size()) {
        exponent = TextToInt(Utf8ToUtf16(number.substr(exponentAt + 1)));
    }
    const std::string_view mantissa = number.substr(0, exponentAt);
    const std::size_t first = mantissa.find_first_of("123456789");
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    const auto places = static_cast<double>(point) - static_cast<double>(first);
    return exponent + places > 0.0;
}

std::uint8_t HexDigit(wchar character)
{
    if (IsDigit(character)) {
        return static_cast<std::uint8_t>(character - u'0');
    }
    const auto lower = static_cast<wchar>(character | 0x20);
    return lower >= u'a' && lower <= u'f' ? static_cast<std::uint8_t>(lower - u'a' + 10) : std::uint8_t{0};
}

}  // namespace

int TextToInt(std::u16string_view text)
{
    while (!text.empty() && IsWhiteSpace(text.front())) {
        text.remove_prefix(1);
    }
    const bool isNegative = !text.empty() && text.front() == u'-';
    if (isNegative || (!text.empty() && text.front() == u'+')) {
        text.remove_prefix(1);
    }
    constexpr std::int64_t kLimit = std::int64_t{std::numeric_limits<int>::max()} + 1;
    std::int64_t value = 0;
    for (; !text.empty() && IsDigit(text.front()); text.remove_prefix(1)) {
        value = std::min(value * 10 + (text.front() - u'0'), kLimit);
    }
    return static_cast<int>(isNegative ? -value : std::min(value, kLimit - 1));
}

double TextToDouble(std::u16string_view text)
{
    while (!text.empty() && IsWhiteSpace(text.front())) {
        text.remove_prefix(1);
    }
    const bool isNegative = !text.empty() && text.front() == u'-';
    if (isNegative || (!text.empty() && text.front() == u'+')) {
        text.remove_prefix(1);
    }
    // from_chars also reads the words for infinity and no number; here they are letters like any other.
    if (text.empty() || !(IsDigit(text.front()) || text.front() == u'.')) {
        return 0.0;
    }
    const std::string number = Narrow(text);
    double value = 0.0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (error == std::errc::result_out_of_range) {
        const std::string_view read(number.data(), static_cast<std::size_t>(end - number.data()));
        value = IsTooLarge(read) ? std::numeric_limits<double>::infinity() : 0.0;
    }
    return isNegative ? -value : value;
}

bool ParseInteger(std::u16string_view text, std::int64_t& value)
{
    const std::string number = Narrow(text);
    const char* last = number.data() + number.size();
    std::int64_t read = 0;
    const auto [end, error] = std::from_chars(number.data(), last, read);
    if (error != std::errc() || end != last) {
        return false;
    }
    value = read;
    return true;
}

bool ParseDouble(std::u16string_view text, double& value)
{
    const std::string number = Narrow(text);
    const char* last = number.data() + number.size();
    double read = 0.0;
    const auto [end, error] = std::from_chars(number.data(), last, read);
    if (error != std::errc() || end != last || !std::isfinite(read)) {
        return false;
    }
    value = read;
    return true;
}

ZRBasicString DoubleToText(double value)
{
    std::array<char, 32> buffer{};
    const char* end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    return Utf8ToUtf16({buffer.data(), static_cast<std::size_t>(end - buffer.data())});
}

std::uint8_t HtoB(const wchar* text)
{
    if (text == nullptr || text[0] == u'\0') {
        return 0;
    }
    return static_cast<std::uint8_t>(HexDigit(text[0]) * 16 + HexDigit(text[1]));
}

std::uint32_t HtoL(const wchar* text, std::size_t length)
{
    std::uint32_t value = 0;
    for (std::size_t i = 0; text != nullptr && i < length && text[i] != u'\0'; ++i) {
        value = value * 16 + HexDigit(text[i]);
    }
    return value;
}
