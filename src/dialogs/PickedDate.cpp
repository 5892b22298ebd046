#include "dialogs/PickedDate.h"

namespace zr::dialogs {

ZRDateTime DateFromOle(double date)
{
    return ZRDateTime(COleDateTime(date));
}

std::optional<CalendarDay> DayOf(const ZRDateTime& date)
{
    if (!date.IsValid()) {
        return std::nullopt;
    }
    const COleDateTime parts = date.ToOleDateTime();
    return CalendarDay{parts.GetYear(), parts.GetMonth(), parts.GetDay()};
}

ZRDateTime DateOf(const std::optional<CalendarDay>& day)
{
    ZRDateTime date;
    if (day) {
        date.SetDateTime(day->year, day->month, day->day, 0, 0, 0, 0, 0);
    }
    return date;
}

}  // namespace zr::dialogs
