#include "logger/TableTexts.h"

#include "logger/FormatDateTime.h"
#include "siblings/driversupport/VariableReference.h"
#include "siblings/driversupport/ZRDeviceDriver.h"
#include "siblings/tools/FormatText.h"
#include "siblings/tools/Numbers.h"
#include "siblings/tools/ZRLoadString.h"
#include "siblings/tools/ZRLocaleInformation.h"

#include <algorithm>
#include <cmath>

namespace zr::logger {

namespace {

// The control and the caption keep their texts in room for so many, the terminating zero included.
constexpr std::size_t kTextRoom = 256;

ZRBasicString Loaded(unsigned number)
{
    ZRBasicString text;
    return ZRLoadString(number, text);
}

ZRBasicString Formatted(const ZRDateTime& date, unsigned flags)
{
    ZRBasicString text;
    return FormatDateTime(text, date, localeInformationWide, flags);
}

ZRBasicString WholeCaption(const ZRDateTime& from, const ZRDateTime& lastDay, int groupBy)
{
    switch (groupBy) {
        case kGroupByDay:
            return Formatted(from, kCaptionOfDay);
        case kGroupByWeek:
            return FormatText(Loaded(kTextCaptionOfWeek),
                              {WeekNumber(from, localeInformation->weekNumbering), Formatted(from, kCaptionOfWeek),
                               Formatted(lastDay, kCaptionOfWeek)});
        case kGroupByMonth:
            return Formatted(from, kCaptionOfMonth);
        case kGroupByQuarter:
            return FormatText(Loaded(kTextCaptionOfQuarter),
                              {Formatted(from, kCaptionOfMonth), Formatted(lastDay, kCaptionOfMonth)});
        case kGroupByYear:
            return FormatText(u"%s %d", {Loaded(kTextYear), from.Year()});
        default:
            return {};
    }
}

// The position of the first variable that fits; -1 without one.
template <typename Fits>
int PositionOf(const ZRLoggerInfo& info, const Fits& fits)
{
    int position = 0;
    for (ZRDriverVariable* variable : info.variables) {
        if (fits(*variable)) {
            return position;
        }
        ++position;
    }
    return -1;
}

int PositionOf(const ZRTableProfile::CVariableProfile& record, const ZRLoggerInfo& info, MatchBy match)
{
    if (match == MatchBy::Name) {
        return PositionOf(info, [&](const ZRDriverVariable& variable) { return variable.fullName == record.Name; });
    }
    ZRBasicString title;
    return PositionOf(info, [&](ZRDriverVariable& variable) {
        return GetTitleVariable(variable, title, kTitleAmongDevices) == record.Title;
    });
}

}  // namespace

int WeekNumber(const ZRDateTime& date, int weekNumbering)
{
    switch (weekNumbering) {
        case 1:
            return date.WeekOfYearISO8601();
        case 2:
            return (date.DayOfYear() - 1) / 7 + 1;
        default:
            return 1;
    }
}

ZRBasicString TableCaption(const ZRDateTime& from, const ZRDateTime& to, int groupBy)
{
    if (!from.IsValid() || !to.IsValid()) {
        return {};
    }
    constexpr ZRDateTimeSpan kOneDay(86400, 0);
    return ColumnText(WholeCaption(from, to - kOneDay, groupBy));
}

unsigned RowTimeFlags(int groupBy)
{
    switch (groupBy) {
        case kGroupByDay:
            return kRowOfDay;
        case kGroupByWeek:
            return kRowOfWeek;
        default:
            return kRow;
    }
}

ZRBasicString& FormatTableViewerTime(ZRBasicString& out, const ZRDateTime& time, int groupBy)
{
    return FormatDateTime(out, time, localeInformationWide, RowTimeFlags(groupBy));
}

ZRBasicString HeaderText(const ZRBasicString& title, int measureUnits, int unitsExponent)
{
    ZRBasicString unit;
    ZRDeviceDriver::MeasureUnitsText(unit, measureUnits, unitsExponent);
    return title + u" (" + unit + u")";
}

ZRBasicString HeaderText(const ZRTableProfile::CVariableProfile& variable)
{
    return HeaderText(variable.Title, variable.MeasureUnits, variable.UnitsExponent);
}

ZRBasicString ColumnText(const ZRBasicString& text)
{
    const std::u16string_view shown = text.Text().substr(0, kTextRoom - 1);
    return shown.substr(0, shown.find(u'\0'));
}

bool ValueColumn::Text(const LoggedRecord& record, ZRBasicString& out) const
{
    double value = 0.0;
    if (!Read(record, value)) {
        out.Clear();
        return false;
    }
    FormatNumber(out, value, decimals, true);
    return true;
}

std::vector<ValueColumn> FindValueColumns(const ZRTableProfile& profile, const ZRLoggerInfo& info, MatchBy match)
{
    std::vector<ValueColumn> columns;
    for (auto record = profile.VarsBegin(); record != profile.VarsEnd(); ++record) {
        const ZRTableProfile::CVariableProfile& variable = **record;
        // As doubles, since settings may hold any number.
        const double exponent = static_cast<double>(variable.ValueExponent) - variable.UnitsExponent;
        columns.push_back({PositionOf(variable, info, match), std::pow(10.0, exponent),
                           variable.MeasureUnits == kPowerFactorUnit, variable.Decimals});
    }
    return columns;
}

}  // namespace zr::logger
