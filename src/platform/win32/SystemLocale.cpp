#include "platform/SystemLocale.h"

#include <windows.h>

namespace zr {
namespace {

std::string ToUtf8(const wchar_t* text)
{
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (size <= 1) {
        return {};
    }
    std::string out(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, out.data(), size, nullptr, nullptr);
    out.pop_back();
    return out;
}

// Empty when the system doesn't tell.
std::string Read(const wchar_t* name, LCTYPE type)
{
    wchar_t text[256] = {};
    return GetLocaleInfoEx(name, type, text, 256) > 0 ? ToUtf8(text) : std::string();
}

void Take(std::string& field, const std::string& text)
{
    if (!text.empty()) {
        field = text;
    }
}

// "dd.MM.yyyy", with words in quotes, to "%d.%m.%y".
std::string ToStrftime(const std::string& pattern)
{
    std::string out;
    char last = '\0';
    for (const char character : pattern) {
        const bool isDate = character == 'd' || character == 'M' || character == 'y';
        const bool isTime = character == 'H' || character == 'h' || character == 'm';
        if (!isDate && !isTime) {
            out += character;
        } else if (character != last) {
            out += '%';
            out += character == 'M' ? 'm' : (character == 'm' ? 'M' : (character == 'h' ? 'H' : character));
        }
        last = character;
    }
    return out;
}

// "dddd, d MMMM yyyy" without the name of the day, which has no part in the order.
std::string WithoutDayName(std::string pattern)
{
    const std::size_t at = pattern.find("ddd");
    if (at != std::string::npos) {
        pattern.erase(at, pattern.find_first_not_of('d', at) - at);
    }
    return pattern;
}

// "3;2;0": digits of the groups from the decimal mark on.
void ReadGroups(SystemLocale& out, const std::string& text)
{
    std::size_t group = 0;
    for (const char character : text) {
        if (character >= '1' && character <= '9' && group < out.digitGroups.size()) {
            out.digitGroups[group++] = static_cast<std::uint8_t>(character - '0');
        }
    }
}

SystemLocale ReadNamed(const wchar_t* name)
{
    SystemLocale out;
    Take(out.decimalSeparator, Read(name, LOCALE_SDECIMAL));
    out.thousandsSeparator = Read(name, LOCALE_STHOUSAND);
    ReadGroups(out, Read(name, LOCALE_SGROUPING));
    const std::string shortDate = Read(name, LOCALE_SSHORTDATE);
    if (!shortDate.empty()) {
        const DatePattern pattern = ReadDatePattern(ToStrftime(shortDate));
        out.shortDateOrder = pattern.order;
        Take(out.dateSeparator, pattern.separator);
        out.longDateOrder = ReadDatePattern(ToStrftime(WithoutDayName(Read(name, LOCALE_SLONGDATE)))).order;
    }
    Take(out.timeSeparator, ReadTimeSeparator(ToStrftime(Read(name, LOCALE_STIMEFORMAT))));
    for (std::size_t i = 0; i < out.monthNames.size(); ++i) {
        Take(out.monthNames[i], Read(name, LOCALE_SMONTHNAME1 + static_cast<LCTYPE>(i)));
    }
    // The system counts from Monday.
    for (std::size_t i = 0; i < out.dayNames.size(); ++i) {
        Take(out.dayNames[i], Read(name, LOCALE_SDAYNAME1 + static_cast<LCTYPE>((i + 6) % 7)));
    }
    const std::string firstDay = Read(name, LOCALE_IFIRSTDAYOFWEEK);
    if (!firstDay.empty()) {
        out.firstDayOfWeek = (firstDay[0] - '0' + 1) % 7 + 1;
    }
    const bool isIso = Read(name, LOCALE_IFIRSTWEEKOFYEAR) == "2" && out.firstDayOfWeek == 2;
    out.weekNumbering = isIso ? 1 : 2;
    return out;
}

}  // namespace

SystemLocale ReadSystemLocale()
{
    return ReadNamed(LOCALE_NAME_USER_DEFAULT);
}

SystemLocale ReadSystemLocale(const char* name)
{
    wchar_t wide[LOCALE_NAME_MAX_LENGTH] = {};
    if (MultiByteToWideChar(CP_UTF8, 0, name, -1, wide, LOCALE_NAME_MAX_LENGTH) == 0 || IsValidLocaleName(wide) == 0) {
        return {};
    }
    return ReadNamed(wide);
}

}  // namespace zr
