#include "siblings/tools/ZRLocaleInformation.h"

#include "platform/SystemLocale.h"
#include "siblings/tools/LanguageLocale.h"
#include "siblings/tools/Utf.h"

#include <algorithm>
#include <atomic>
#include <deque>
#include <string_view>

namespace {

template <typename S, typename Convert>
ZRLocaleInformation<S> RecordFrom(const zr::SystemLocale& system, Convert convert)
{
    ZRLocaleInformation<S> record;
    record.decimalSeparator = convert(system.decimalSeparator);
    record.thousandsSeparator = convert(system.thousandsSeparator);
    record.digitGroups = system.digitGroups;
    record.timeSeparator = convert(system.timeSeparator);
    record.dateSeparator = convert(system.dateSeparator);
    std::transform(system.monthNames.begin(), system.monthNames.end(), record.monthNames.begin(), convert);
    std::transform(system.dayNames.begin(), system.dayNames.end(), record.dayNames.begin(), convert);
    record.shortDateOrder = system.shortDateOrder;
    record.longDateOrder = system.longDateOrder;
    record.firstDayOfWeek = system.firstDayOfWeek;
    record.weekNumbering = system.weekNumbering;
    for (const S& name : record.dayNames) {
        record.longestDayName = std::max(record.longestDayName, static_cast<int>(name.Length()));
    }
    return record;
}

struct Records {
    Records(std::string_view name, const zr::SystemLocale& conventions)
        : language(name), wide(zr::WideLocaleInformation(conventions)), narrow(zr::NarrowLocaleInformation(conventions))
    {
    }

    const std::string_view language;
    const ZRLocaleInformation<ZRBasicString> wide;
    const ZRLocaleInformation<ZRBasicString8> narrow;
};

const Records& SystemRecords()
{
    static const Records records("", zr::ReadSystemLocale());
    return records;
}

// In the order of LanguageLocales().
const std::deque<Records>& LanguageRecords()
{
    static const std::deque<Records> records = [] {
        std::deque<Records> made;
        for (const zr::LanguageLocale& locale : zr::LanguageLocales()) {
            made.emplace_back(locale.language, locale.conventions);
        }
        return made;
    }();
    return records;
}

// Null: those of the system. Swapped whole, so that nobody reads half of one and half of another.
constinit std::atomic<const Records*> g_inForce = nullptr;

const Records& InForce()
{
    const Records* const records = g_inForce.load(std::memory_order_acquire);
    return records != nullptr ? *records : SystemRecords();
}

}  // namespace

namespace zr {

ZRLocaleInformation<ZRBasicString> WideLocaleInformation(const SystemLocale& system)
{
    return RecordFrom<ZRBasicString>(system, [](const std::string& text) { return Utf8ToUtf16(text); });
}

ZRLocaleInformation<ZRBasicString8> NarrowLocaleInformation(const SystemLocale& system)
{
    return RecordFrom<ZRBasicString8>(system, [](const std::string& text) { return ZRBasicString8(text); });
}

std::string_view LocaleInformationLanguage()
{
    return InForce().language;
}

bool SetLocaleInformation(std::string_view language)
{
    if (language.empty()) {
        g_inForce.store(nullptr, std::memory_order_release);
        return true;
    }
    const auto locales = LanguageLocales();
    const auto found = std::find_if(locales.begin(), locales.end(),
                                    [language](const LanguageLocale& locale) { return locale.language == language; });
    if (found == locales.end()) {
        return false;
    }
    g_inForce.store(&LanguageRecords()[static_cast<std::size_t>(found - locales.begin())], std::memory_order_release);
    return true;
}

}  // namespace zr

const ZRLocaleInformation<ZRBasicString>& LocaleInformationWide()
{
    return InForce().wide;
}

const ZRLocaleInformation<ZRBasicString>& SystemLocaleInformationWide()
{
    return SystemRecords().wide;
}

const ZRLocaleInformation<ZRBasicString8>& LocaleInformation()
{
    return InForce().narrow;
}
