#include "siblings/tools/Numbers.h"

#include "siblings/tools/Utf.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>
#include <vector>

namespace {

using Locale = ZRLocaleInformation<ZRBasicString>;

bool IsDigit(wchar character)
{
    return character >= u'0' && character <= u'9';
}

// Blanks that a user may type or paste: the plain one, the two that don't break, and the tab.
bool IsBlank(wchar character)
{
    return character == u' ' || character == u'\t' || character == 0xA0 || character == 0x202F;
}

// The C locale's record, for FormatNumber without the user's.
const Locale& PlainLocale()
{
    static const Locale locale = [] {
        Locale plain;
        plain.decimalSeparator = u".";
        return plain;
    }();
    return locale;
}

// The digits of a group by its place, counted from the decimal mark to the left; 0: the rest is one group.
std::size_t GroupSize(const Locale& locale, std::size_t group)
{
    std::size_t size = 0;
    for (std::size_t i = 0; i < locale.digitGroups.size() && i <= group && locale.digitGroups[i] != 0; ++i) {
        size = locale.digitGroups[i];
    }
    return locale.thousandsSeparator.IsEmpty() ? 0 : size;
}

// For each digit of a whole number whether a group mark stands before it.
std::vector<bool> GroupStarts(const Locale& locale, std::size_t digits)
{
    std::vector<bool> starts(digits, false);
    std::size_t left = digits;
    for (std::size_t group = 0;; ++group) {
        const std::size_t size = GroupSize(locale, group);
        if (size == 0 || size >= left) {
            return starts;
        }
        left -= size;
        starts[left] = true;
    }
}

void AppendGrouped(ZRBasicString& out, std::string_view digits, const Locale& locale)
{
    if (GroupSize(locale, 0) == 0) {
        out += Utf8ToUtf16(digits);
        return;
    }
    const std::vector<bool> starts = GroupStarts(locale, digits.size());
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (starts[i]) {
            out += locale.thousandsSeparator;
        }
        out += static_cast<wchar>(digits[i]);
    }
}

bool IsZero(std::string_view digits)
{
    return digits.find_first_not_of("0.") == std::string_view::npos;
}

std::u16string_view Trimmed(std::u16string_view text)
{
    while (!text.empty() && IsBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && IsBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// The length of the group mark that text starts with; 0 without one. Where the user's mark is a blank of any kind,
// every kind is one: nobody types the one that doesn't break.
std::size_t GroupMarkLength(std::u16string_view text, const Locale& locale)
{
    const std::u16string_view mark = locale.thousandsSeparator.Text();
    if (mark.empty() || text.empty()) {
        return 0;
    }
    if (mark.size() == 1 && IsBlank(mark[0])) {
        return IsBlank(text[0]) ? 1 : 0;
    }
    return text.starts_with(mark) ? mark.size() : 0;
}

// What stands before the decimal mark.
struct WholePart {
    std::size_t digits = 0;
    std::vector<std::size_t> marks;  // the number of digits that stand before each group mark
};

// Reads digits and group marks and takes them off the text.
WholePart ReadWholePart(std::u16string_view& text, const Locale& locale)
{
    WholePart part;
    while (!text.empty()) {
        const std::size_t mark = GroupMarkLength(text, locale);
        if (mark == 0 && !IsDigit(text[0])) {
            break;
        }
        if (mark != 0) {
            part.marks.push_back(part.digits);
        } else {
            ++part.digits;
        }
        text.remove_prefix(std::max<std::size_t>(mark, 1));
    }
    return part;
}

bool AreMarksInPlace(const WholePart& part, const Locale& locale)
{
    if (part.marks.empty()) {
        return true;
    }
    const std::vector<bool> starts = GroupStarts(locale, part.digits);
    std::vector<std::size_t> expected;
    for (std::size_t i = 0; i < starts.size(); ++i) {
        if (starts[i]) {
            expected.push_back(i);
        }
    }
    return part.marks == expected;
}

}  // namespace

int FormatNumber(ZRBasicString& out, double value, int decimals, bool local)
{
    return FormatNumber(out, value, decimals, local ? LocaleInformationWide() : PlainLocale());
}

int FormatNumber(ZRBasicString& out, double value, int decimals, const Locale& locale)
{
    out.Clear();
    if (!std::isfinite(value)) {
        out = std::isnan(value) ? u"NaN" : (value > 0.0 ? u"Inf" : u"-Inf");
        return static_cast<int>(out.Length());
    }
    // The largest double has 309 digits before the point.
    std::array<char, 309 + 1 + kMaxDecimals> buffer{};
    const int places = std::clamp(decimals, 0, kMaxDecimals);
    const char* end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::fabs(value), std::chars_format::fixed, places)
            .ptr;
    const std::string_view digits(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
    const std::size_t point = std::min(digits.find('.'), digits.size());
    if (std::signbit(value) && !IsZero(digits)) {
        out += u'-';
    }
    AppendGrouped(out, digits.substr(0, point), locale);
    if (point < digits.size()) {
        out += locale.decimalSeparator;
        out += Utf8ToUtf16(digits.substr(point + 1));
    }
    return static_cast<int>(out.Length());
}

ZRBasicString& UnformatNumber(ZRBasicString& out, const ZRBasicString& text)
{
    return UnformatNumber(out, text, LocaleInformationWide());
}

ZRBasicString& UnformatNumber(ZRBasicString& out, const ZRBasicString& text, const Locale& locale)
{
    ZRBasicString plain;
    const std::u16string_view decimalMark = locale.decimalSeparator.Text();
    std::u16string_view rest = Trimmed(text);
    while (!rest.empty()) {
        const std::size_t groupMark = GroupMarkLength(rest, locale);
        if (groupMark != 0) {
            rest.remove_prefix(groupMark);
        } else if (!decimalMark.empty() && rest.starts_with(decimalMark)) {
            plain += u'.';
            rest.remove_prefix(decimalMark.size());
        } else {
            plain += rest[0];
            rest.remove_prefix(1);
        }
    }
    out = plain;
    return out;
}

bool IsValidNumber(const ZRBasicString& text, int decimals)
{
    return IsValidNumber(text, decimals, LocaleInformationWide());
}

bool IsValidNumber(const ZRBasicString& text, int decimals, const Locale& locale)
{
    std::u16string_view rest = Trimmed(text);
    if (!rest.empty() && (rest[0] == u'-' || rest[0] == u'+')) {
        rest.remove_prefix(1);
    }
    const WholePart whole = ReadWholePart(rest, locale);
    if (!AreMarksInPlace(whole, locale)) {
        return false;
    }
    const std::u16string_view decimalMark = locale.decimalSeparator.Text();
    std::size_t places = 0;
    if (!decimalMark.empty() && rest.starts_with(decimalMark)) {
        rest.remove_prefix(decimalMark.size());
        places = rest.size();
    }
    const bool areDigits = std::all_of(rest.end() - static_cast<std::ptrdiff_t>(places), rest.end(), IsDigit);
    if (rest.size() != places || !areDigits || whole.digits + places == 0) {
        return false;
    }
    if (places > static_cast<std::size_t>(std::max(decimals, 0))) {
        return false;
    }
    ZRBasicString plain;
    return std::isfinite(TextToDouble(UnformatNumber(plain, text, locale)));
}
