// A calendar of one month to pick a day from.
#pragma once

#include "platform/ui/CWnd.h"

#include <QCalendarWidget>

class CMonthCalCtrl : public QCalendarWidget {
public:
    CMonthCalCtrl(QWidget* parent, unsigned id);

    struct Day {
        int year = 0;
        int month = 0;  // 1 to 12
        int day = 0;    // 1 to 31
    };
    // Inclusive. What lies outside can't be picked.
    void SetRange(Day first, Day last);
    // False, and nothing picked, for a day that isn't in the calendar or lies outside the range.
    bool SetCurSel(Day day);
    // False when none is picked.
    bool GetCurSel(Day& day) const;
};
