#include "platform/ui/CMonthCalCtrl.h"

namespace {

QDate ToDate(CMonthCalCtrl::Day day)
{
    return QDate(day.year, day.month, day.day);
}

}  // namespace

CMonthCalCtrl::CMonthCalCtrl(QWidget* parent, unsigned id) : QCalendarWidget(parent)
{
    zr::ui::SetControlId(*this, id);
}

void CMonthCalCtrl::SetRange(Day first, Day last)
{
    setDateRange(ToDate(first), ToDate(last));
}

bool CMonthCalCtrl::SetCurSel(Day day)
{
    const QDate date = ToDate(day);
    if (!date.isValid() || date < minimumDate() || date > maximumDate()) {
        return false;
    }
    setSelectedDate(date);
    return true;
}

bool CMonthCalCtrl::GetCurSel(Day& day) const
{
    const QDate date = selectedDate();
    if (!date.isValid()) {
        return false;
    }
    day = {date.year(), date.month(), date.day()};
    return true;
}
