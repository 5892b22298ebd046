#include "siblings/tools/Numbers.h"

#include "siblings/tools/ScaledDigits.h"
#include "siblings/tools/TextRoom.h"

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

// Whether a group mark may stand where so many digits of a whole number, at least one, are left.
bool IsGroupEnd(const Locale& locale, std::size_t left)
{
    std::size_t size = 0;
    for (const std::uint8_t next : locale.digitGroups) {
        if (next == 0) {
            break;
        }
        size = next;
        if (left <= size) {
            return left == size;
        }
        left -= size;
    }
    return size != 0 && left % size == 0;
}

// Whether a group mark stands before a digit of a whole number.
bool HasMarkBefore(const Locale& locale, std::size_t digit, std::size_t digits)
{
    return digit > 0 && !locale.thousandsSeparator.IsEmpty() && IsGroupEnd(locale, digits - digit);
}

// The digits of a number without sign, at least one before the decimal mark.
struct DecimalDigits {
    std::string_view whole;
    std::string_view fraction;
};

// The largest double has 309 digits before the point.
using DigitRoom = std::array<char, 309 + 1 + kMaxDecimals>;

// The common case: the number fits into one word of decimal units.
DecimalDigits ShortDigits(DigitRoom& room, std::uint64_t units, std::size_t places)
{
    char* first = room.data() + kMaxDecimals;
    const char* end = std::to_chars(first, room.data() + room.size(), units).ptr;
    while (end - first <= static_cast<std::ptrdiff_t>(places)) {
        *--first = '0';
    }
    const std::string_view all(first, static_cast<std::size_t>(end - first));
    return {all.substr(0, all.size() - places), all.substr(all.size() - places)};
}

DecimalDigits LongDigits(DigitRoom& room, double magnitude, int places)
{
    const char* end =
        std::to_chars(room.data(), room.data() + room.size(), magnitude, std::chars_format::fixed, places).ptr;
    const std::string_view all(room.data(), static_cast<std::size_t>(end - room.data()));
    const std::size_t point = std::min(all.find('.'), all.size());
    return {all.substr(0, point), all.substr(std::min(point + 1, all.size()))};
}

DecimalDigits DigitsOf(DigitRoom& room, double value, int places)
{
    std::uint64_t units = 0;
    if (places <= zr::kMaxScaledPlaces && zr::ScaledDigits(value, places, units)) {
        return ShortDigits(room, units, static_cast<std::size_t>(places));
    }
    return LongDigits(room, std::fabs(value), places);
}

bool IsZero(std::string_view digits)
{
    return digits.find_first_not_of('0') == std::string_view::npos;
}

// Writes a text so that it ends at a place, and returns where it starts.
wchar* PutBefore(wchar* end, std::u16string_view text)
{
    for (std::size_t i = text.size(); i > 0; --i) {
        *--end = text[i - 1];
    }
    return end;
}

wchar* PutBefore(wchar* end, std::string_view ascii)
{
    for (std::size_t i = ascii.size(); i > 0; --i) {
        *--end = static_cast<wchar>(ascii[i - 1]);
    }
    return end;
}

wchar* PutGroupedBefore(wchar* end, std::string_view digits, const Locale& locale)
{
    if (locale.thousandsSeparator.IsEmpty() || locale.digitGroups[0] == 0) {
        return PutBefore(end, digits);
    }
    std::size_t group = 0;
    std::size_t size = locale.digitGroups[0];
    while (digits.size() > size) {
        end = PutBefore(end, digits.substr(digits.size() - size));
        end = PutBefore(end, locale.thousandsSeparator.Text());
        digits.remove_suffix(size);
        ++group;
        if (group < locale.digitGroups.size() && locale.digitGroups[group] != 0) {
            size = locale.digitGroups[group];
        } else {
            group = locale.digitGroups.size();  // the last repeats
        }
    }
    return PutBefore(end, digits);
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
    std::vector<std::size_t> expected;
    for (std::size_t i = 0; i < part.digits; ++i) {
        if (HasMarkBefore(locale, i, part.digits)) {
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
    DigitRoom digitRoom;  // only what was written is read
    const DecimalDigits digits = DigitsOf(digitRoom, value, std::clamp(decimals, 0, kMaxDecimals));
    const std::size_t bound = 1 + digits.whole.size() * (1 + locale.thousandsSeparator.Length()) +
                              locale.decimalSeparator.Length() + digits.fraction.size();
    zr::TextRoom room(bound);
    wchar* const end = room.First() + bound;
    wchar* first = end;
    if (!digits.fraction.empty()) {
        first = PutBefore(first, digits.fraction);
        first = PutBefore(first, locale.decimalSeparator.Text());
    }
    first = PutGroupedBefore(first, digits.whole, locale);
    if (std::signbit(value) && !(IsZero(digits.whole) && IsZero(digits.fraction))) {
        *--first = u'-';
    }
    out += std::u16string_view(first, static_cast<std::size_t>(end - first));
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
