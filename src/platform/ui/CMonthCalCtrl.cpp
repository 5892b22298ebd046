#include "platform/ui/CMonthCalCtrl.h"

#include <QLocale>
#include <QTextCharFormat>

namespace {

QDate ToDate(CMonthCalCtrl::Day day)
{
    return QDate(day.year, day.month, day.day);
}

}  // namespace

CMonthCalCtrl::CMonthCalCtrl(QWidget* parent, unsigned id) : QCalendarWidget(parent)
{
    zr::ui::SetControlId(*this, id);
    // Digits would open a small editor over the calendar, which no one expects here.
    setDateEditEnabled(false);
    // Qt's own red is hard to read on dark.
    QTextCharFormat weekend;
    weekend.setForeground(QColor(0xd6, 0x3b, 0x41));
    setWeekdayTextFormat(Qt::Saturday, weekend);
    setWeekdayTextFormat(Qt::Sunday, weekend);
}

void CMonthCalCtrl::SetLanguage(std::string_view language)
{
    // English as the rest of the suite writes it.
    const QString name = language == "en" ? QStringLiteral("en_GB") : QString::fromLatin1(language);
    setLocale(name.isEmpty() ? QLocale::system() : QLocale(name));
}

void CMonthCalCtrl::SetFirstDayOfWeek(int day)
{
    constexpr int kSunday = 1;
    constexpr int kSaturday = 7;
    if (day >= kSunday && day <= kSaturday) {
        setFirstDayOfWeek(day == kSunday ? Qt::Sunday : static_cast<Qt::DayOfWeek>(day - 1));
    }
}

void CMonthCalCtrl::ShowWeekNumbers(bool show)
{
    setVerticalHeaderFormat(show ? QCalendarWidget::ISOWeekNumbers : QCalendarWidget::NoVerticalHeader);
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
    if (!date.isValid() || selectionMode() == QCalendarWidget::NoSelection) {
        return false;
    }
    day = {date.year(), date.month(), date.day()};
    return true;
}
