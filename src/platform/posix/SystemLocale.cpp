#include "platform/SystemLocale.h"

#include <langinfo.h>
#include <locale.h>
#include <climits>
#include <clocale>
#include <cwchar>
#include <memory>

namespace zr {
namespace {

struct FreeLocale {
    void operator()(locale_t locale) const { freelocale(locale); }
};
using Locale = std::unique_ptr<std::remove_pointer_t<locale_t>, FreeLocale>;

// The calling thread's locale for the life of this object.
class LocaleScope {
public:
    explicit LocaleScope(locale_t locale) : m_old(uselocale(locale)) {}
    ~LocaleScope() { uselocale(m_old); }
    LocaleScope(const LocaleScope&) = delete;
    LocaleScope& operator=(const LocaleScope&) = delete;

private:
    locale_t m_old;
};

void AppendUtf8(std::string& out, char32_t character)
{
    const auto byte = [&out](char32_t value) { out += static_cast<char>(static_cast<unsigned char>(value)); };
    if (character < 0x80) {
        byte(character);
    } else if (character < 0x800) {
        byte(0xC0 | (character >> 6));
        byte(0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        byte(0xE0 | (character >> 12));
        byte(0x80 | ((character >> 6) & 0x3F));
        byte(0x80 | (character & 0x3F));
    } else {
        byte(0xF0 | (character >> 18));
        byte(0x80 | ((character >> 12) & 0x3F));
        byte(0x80 | ((character >> 6) & 0x3F));
        byte(0x80 | (character & 0x3F));
    }
}

// From the character set of the thread's locale. Empty for what isn't text in it.
std::string ToUtf8(std::string_view text)
{
    std::string out;
    std::mbstate_t state{};
    while (!text.empty()) {
        wchar_t character = 0;
        const std::size_t used = std::mbrtowc(&character, text.data(), text.size(), &state);
        if (used == 0 || used > text.size()) {
            return {};
        }
        AppendUtf8(out, static_cast<char32_t>(character));
        text.remove_prefix(used);
    }
    return out;
}

void Take(std::string& field, const std::string& text)
{
    if (!text.empty()) {
        field = text;
    }
}

void ReadNumbers(SystemLocale& out)
{
    const lconv* conventions = std::localeconv();
    Take(out.decimalSeparator, ToUtf8(conventions->decimal_point));
    out.thousandsSeparator = ToUtf8(conventions->thousands_sep);
    for (std::size_t i = 0; i < out.digitGroups.size(); ++i) {
        const char size = conventions->grouping[i];
        if (size <= 0 || size == CHAR_MAX) {
            break;
        }
        out.digitGroups[i] = static_cast<std::uint8_t>(size);
    }
}

void ReadDates(SystemLocale& out, locale_t locale)
{
    const DatePattern shortDate = ReadDatePattern(nl_langinfo_l(D_FMT, locale));
    out.shortDateOrder = shortDate.order;
    Take(out.dateSeparator, shortDate.separator);
    out.longDateOrder = ReadDatePattern(nl_langinfo_l(D_T_FMT, locale)).order;
    Take(out.timeSeparator, ReadTimeSeparator(nl_langinfo_l(T_FMT, locale)));
    for (std::size_t i = 0; i < out.monthNames.size(); ++i) {
        Take(out.monthNames[i], ToUtf8(nl_langinfo_l(MON_1 + static_cast<nl_item>(i), locale)));
    }
    for (std::size_t i = 0; i < out.dayNames.size(); ++i) {
        Take(out.dayNames[i], ToUtf8(nl_langinfo_l(DAY_1 + static_cast<nl_item>(i), locale)));
    }
}

#if defined(__GLIBC__)
void ReadWeeks(SystemLocale& out, locale_t locale)
{
    // The answers of these items are numbers: in the first byte, or for the reference day in the pointer itself.
    const auto referenceDay =
        reinterpret_cast<std::uintptr_t>(nl_langinfo_l(_NL_TIME_WEEK_1STDAY, locale)) & 0xFFFFFFFF;
    const int firstDay = *nl_langinfo_l(_NL_TIME_FIRST_WEEKDAY, locale);
    const int daysInFirstWeek = *nl_langinfo_l(_NL_TIME_WEEK_1STWEEK, locale);
    constexpr std::uintptr_t kReferenceIsMonday = 19971201;
    if (firstDay >= 1 && firstDay <= 7) {
        out.firstDayOfWeek = (firstDay - 1 + (referenceDay == kReferenceIsMonday ? 1 : 0)) % 7 + 1;
    }
    constexpr int kMonday = 2;
    out.weekNumbering = out.firstDayOfWeek == kMonday && daysInFirstWeek == 4 ? 1 : 2;
}
#else
void ReadWeeks(SystemLocale&, locale_t) {}
#endif

}  // namespace

SystemLocale ReadSystemLocale()
{
    return ReadSystemLocale("");
}

SystemLocale ReadSystemLocale(const char* name)
{
    SystemLocale result;
    const Locale locale(newlocale(LC_ALL_MASK, name, nullptr));
    if (locale == nullptr) {
        return result;
    }
    const LocaleScope scope(locale.get());
    ReadNumbers(result);
    ReadDates(result, locale.get());
    ReadWeeks(result, locale.get());
    return result;
}

}  // namespace zr
