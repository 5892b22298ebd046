#include "siblings/tools/ZRLocaleInformation.h"

#include "platform/SystemLocale.h"
#include "siblings/tools/Utf.h"

#include <algorithm>

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

}  // namespace zr

const ZRLocaleInformation<ZRBasicString>& LocaleInformationWide()
{
    static const auto record = zr::WideLocaleInformation(zr::ReadSystemLocale());
    return record;
}

const ZRLocaleInformation<ZRBasicString8>& LocaleInformation()
{
    static const auto record = zr::NarrowLocaleInformation(zr::ReadSystemLocale());
    return record;
}
