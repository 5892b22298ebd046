#include "logger/LoggerWindow.h"

#include "logger/SuiteKey.h"
#include "siblings/tools/ZRLocaleInformation.h"

namespace zr::logger {

void LoggerWindow::Setup()
{
    groupBy = kGroupByWeek;
    dateTo = ZRDateTime::LTC();
    samplePeriod.SetDateTimeSpan(0, 0, 30, 0, 0, 0);
}

void LoggerWindow::SetupData(const ZRDateTime& date, int newGroupBy, const ZRDateTimeSpan& period, bool force)
{
    const bool isSelection = date != dateTo || newGroupBy != groupBy || force;
    if (!isSelection && period == samplePeriod) {
        return;
    }
    samplePeriod = period;
    if (isSelection) {
        dateTo = date;
        groupBy = newGroupBy;
    }
    dateFrom = Adjusted(dateTo, groupBy);
    if (dateFrom == dateTo) {
        // The end of a unit, which isn't part of it.
        dateFrom = Added(dateTo, -groupBy);
    }
    const ZRDateTime now = ZRDateTime::LTC();
    if (dateFrom > now) {
        dateFrom = Added(now, -groupBy);
    }
    dateTo = Added(dateFrom, groupBy);
    m_host.Load(isSelection);
}

void LoggerWindow::SetupDataAtPeriod(const ZRDateTime& date, int newGroupBy, bool force)
{
    if (!IsAutomatic(samplePeriod)) {
        SetupData(date, newGroupBy, samplePeriod, force);
        return;
    }
    SetupData(date, newGroupBy, m_host.GetSamplePeriodIfAutomatic(static_cast<unsigned>(newGroupBy)), force);
    samplePeriod = AutomaticPeriod();
}

void LoggerWindow::MoveTo(const ZRDateTime& date)
{
    // The window ends there. One that would begin before the first date, or end after the last, stays where it is.
    if (Added(date, -groupBy).IsValid()) {
        SetupDataAtPeriod(date, groupBy, false);
    }
}

void LoggerWindow::OnPrevious()
{
    MoveTo(Added(dateTo, -groupBy));
}

void LoggerWindow::OnNext()
{
    ZRDateTime date = Adjusted(dateTo, groupBy);
    if (dateTo > date) {
        date = Added(date, groupBy);
    }
    MoveTo(Added(date, groupBy));
}

void LoggerWindow::OnGoTo()
{
    ZRDateTime chosen;
    if (!m_host.ChooseDate(AdjustToGoTo(dateTo, -groupBy).ToOleDateTime(), chosen) || !chosen.IsValid()) {
        return;
    }
    MoveTo(AdjustToGoTo(Adjusted(chosen, groupBy), groupBy));
}

void LoggerWindow::OnGroupByMenuItem(unsigned id)
{
    const GroupUnit* const unit = FindGroupUnit(id);
    if (unit == nullptr) {
        return;
    }
    SuiteKey key;
    key.WriteText(kLastGroupValue, unit->registryText);
    // An automatic period always fits.
    if (IsAutomatic(samplePeriod) || !BadCombination(id, samplePeriod.seconds)) {
        SetupDataAtPeriod(dateTo, unit->id, false);
    }
}

void LoggerWindow::OnPeriodMenuItem(unsigned id)
{
    const PeriodEntry* const entry = FindPeriod(id);
    if (entry == nullptr) {
        return;
    }
    SuiteKey key;
    key.WriteText(kLastPeriodValue, entry->registryText);
    const ZRDateTimeSpan span = SpanOf(*entry);
    if (IsAutomatic(span)) {
        SetupData(dateTo, groupBy, m_host.GetSamplePeriodIfAutomatic(static_cast<unsigned>(groupBy)), false);
        samplePeriod = AutomaticPeriod();
    } else if (!BadCombination(static_cast<unsigned>(groupBy), span.seconds)) {
        SetupData(dateTo, groupBy, span, false);
    }
}

bool LoggerWindow::UpdateNext() const
{
    return dateTo < ZRDateTime::LTC();
}

bool LoggerWindow::BadCombination(unsigned unit, int seconds)
{
    if (!IsBadCombination(unit, seconds)) {
        return false;
    }
    m_host.ShowMessage(kMessageBadCombination);
    return true;
}

ZRDateTime LoggerWindow::Adjusted(const ZRDateTime& date, int unit) const
{
    return AdjustToGroupBy(date, unit, FirstDayOfWeek());
}

ZRDateTime LoggerWindow::Added(const ZRDateTime& date, int unit) const
{
    return AddGroupByUnit(date, unit, FirstDayOfWeek());
}

int LoggerWindow::FirstDayOfWeek() const
{
    return m_firstDayOfWeek != 0 ? m_firstDayOfWeek : LocaleInformationWide().firstDayOfWeek;
}

}  // namespace zr::logger
