// A calendar of one month to pick a day from.
#pragma once

#include "platform/ui/CWnd.h"

#include <QCalendarWidget>
#include <string_view>

class CMonthCalCtrl : public QCalendarWidget {
public:
    CMonthCalCtrl(QWidget* parent, unsigned id);

    struct Day {
        int year = 0;
        int month = 0;  // 1 to 12
        int day = 0;    // 1 to 31
    };
    // Names of months and days: those of a language such as "de"; empty: the system's. Sets the first day of the week.
    void SetLanguage(std::string_view language);
    // 1 is Sunday, 7 is Saturday; any other is left alone.
    void SetFirstDayOfWeek(int day);
    // By ISO 8601, beside the weeks. Shown unless set.
    void ShowWeekNumbers(bool show);
    // Inclusive. What lies outside can't be picked.
    void SetRange(Day first, Day last);
    // False, and nothing picked, for a day that isn't in the calendar or lies outside the range.
    bool SetCurSel(Day day);
    // False when none is picked, as in a calendar that lets nothing be selected.
    bool GetCurSel(Day& day) const;
};
