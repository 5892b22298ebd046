#include "dialogs/ui/CGoToDateDlg.h"

#include "dialogs/DialogsIds.h"
#include "dialogs/PickedDate.h"
#include "siblings/support/ui/DialogTexts.h"
#include "siblings/tools/ZRLocaleInformation.h"

#include <memory>
#include <utility>

namespace {

using zr::dialogs::CalendarDay;

constexpr CMonthCalCtrl::Day ToControl(CalendarDay day)
{
    return {day.year, day.month, day.day};
}

// As the user's language has it.
void SetConventions(CMonthCalCtrl& calendar)
{
    constexpr int kIso8601 = 1;
    calendar.SetLanguage(zr::LocaleInformationLanguage());
    calendar.SetFirstDayOfWeek(localeInformationWide->firstDayOfWeek);
    // The control knows no other numbers of weeks.
    calendar.ShowWeekNumbers(localeInformationWide->weekNumbering == kIso8601);
}

}  // namespace

CGoToDateDlg::CGoToDateDlg(QWidget* parent)
    : CDialog(zr::dialogs::kGoToDateDialog, parent),
      m_calendar(this, zr::dialogs::kGoToDateCalendar),
      m_ok(this, zr::ui::IDOK),
      m_cancel(this, zr::ui::IDCANCEL),
      m_layout(*this)
{
    setWindowFlag(Qt::FramelessWindowHint);
    // The return key picks, as everywhere.
    connect(&m_calendar, &QCalendarWidget::activated, this, [this] { OnOK(); });
    auto buttons = std::make_unique<ZRHoritzontalLayout>(*this);
    buttons->AddControl(m_ok, ZRLayout::Size::Percent(50));
    buttons->AddControl(m_cancel, ZRLayout::Size::Percent(50));
    m_layout.AddControl(m_calendar, ZRLayout::Size::Percent(100));
    m_layout.AddLayout(std::move(buttons), ZRLayout::Size::Natural());
}

void CGoToDateDlg::SetDate(double date)
{
    m_date = zr::dialogs::DateFromOle(date);
}

void CGoToDateDlg::SetLeftBottomPosition(int left, int bottom)
{
    m_left = left;
    m_bottom = bottom;
}

void CGoToDateDlg::OnInitDialog()
{
    zr::ui::SetSuiteIcon(*this);
    zr::ui::SetTitle(*this, zr::dialogs::kTextGoToDate);
    zr::ui::SetOkAndCancel(m_ok, m_cancel);
    SetConventions(m_calendar);
    setMinimumSize(m_layout.NeededSize());
    resize(minimumSize());
    move(m_left, m_bottom - height());
    m_calendar.SetRange(ToControl(zr::dialogs::kFirstDay), ToControl(zr::dialogs::kLastDay));
    // Without a date, or with one outside the range, the calendar stays on its own: today.
    if (const auto day = zr::dialogs::DayOf(m_date)) {
        m_calendar.SetCurSel(ToControl(*day));
    }
    Layout();
}

void CGoToDateDlg::OnOK()
{
    CMonthCalCtrl::Day day;
    const bool isPicked = m_calendar.GetCurSel(day);
    m_date = zr::dialogs::DateOf(isPicked ? std::optional(CalendarDay{day.year, day.month, day.day}) : std::nullopt);
    CDialog::OnOK();
}

void CGoToDateDlg::resizeEvent(QResizeEvent* event)
{
    CDialog::resizeEvent(event);
    Layout();
}

void CGoToDateDlg::Layout()
{
    m_layout.Fill(rect());
}
