#include "siblings/tools/ZRDateTime.h"

#include <chrono>
#include <cmath>
#include <cstdint>

namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr int kSecondsPerDay = 86400;
constexpr sys_days kDayZero = std::chrono::December / 30 / 1899;
constexpr double kFirst = -657434.0;  // 1 January 100
constexpr double kEnd = 2958466.0;    // 1 January 10000

struct DayAndTime {
    sys_days day;
    int secondOfDay;
};

DayAndTime Split(double date)
{
    const double wholeDay = std::trunc(date);
    auto day = static_cast<int>(wholeDay);
    // The fraction counts forward on both sides of day 0: -1.25 is 06:00 on 29 December 1899.
    auto second = static_cast<int>(std::lround(std::fabs(date - wholeDay) * kSecondsPerDay));
    if (second == kSecondsPerDay) {
        second = 0;
        ++day;
    }
    // The last half second of the range has no day to round up to.
    if (day >= static_cast<int>(kEnd)) {
        --day;
        second = kSecondsPerDay - 1;
    }
    return {kDayZero + std::chrono::days(day), second};
}

bool IsWithin(int value, int first, int last)
{
    return value >= first && value <= last;
}

}  // namespace

COleDateTime::COleDateTime(double date) : m_date(date), m_status(Status::Invalid)
{
    // A fraction counts forward, so that the first day reaches down to nearly one less. Written so that NaN fails.
    if (date > kFirst - 1.0 && date < kEnd) {
        m_status = Status::Valid;
    }
}

COleDateTime::COleDateTime(int year, int month, int day, int hour, int minute, int second) : m_status(Status::Invalid)
{
    const bool isTime = IsWithin(hour, 0, 23) && IsWithin(minute, 0, 59) && IsWithin(second, 0, 59);
    if (!IsWithin(year, 100, 9999) || !IsWithin(month, 1, 12) || !IsWithin(day, 1, 31) || !isTime) {
        return;
    }
    const year_month_day calendar{std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                  std::chrono::day(static_cast<unsigned>(day))};
    if (!calendar.ok()) {
        return;
    }
    const auto days = static_cast<double>((sys_days(calendar) - kDayZero).count());
    const double fraction = ((hour * 60 + minute) * 60 + second) / double{kSecondsPerDay};
    m_date = days < 0.0 ? days - fraction : days + fraction;
    m_status = Status::Valid;
}

int COleDateTime::GetYear() const
{
    return m_status == Status::Valid ? static_cast<int>(year_month_day(Split(m_date).day).year()) : -1;
}

int COleDateTime::GetMonth() const
{
    if (m_status != Status::Valid) {
        return -1;
    }
    return static_cast<int>(static_cast<unsigned>(year_month_day(Split(m_date).day).month()));
}

int COleDateTime::GetDay() const
{
    if (m_status != Status::Valid) {
        return -1;
    }
    return static_cast<int>(static_cast<unsigned>(year_month_day(Split(m_date).day).day()));
}

int COleDateTime::GetHour() const
{
    return m_status == Status::Valid ? Split(m_date).secondOfDay / 3600 : -1;
}

int COleDateTime::GetMinute() const
{
    return m_status == Status::Valid ? Split(m_date).secondOfDay / 60 % 60 : -1;
}

int COleDateTime::GetSecond() const
{
    return m_status == Status::Valid ? Split(m_date).secondOfDay % 60 : -1;
}

int COleDateTime::GetDayOfWeek() const
{
    if (m_status != Status::Valid) {
        return -1;
    }
    return static_cast<int>(std::chrono::weekday(Split(m_date).day).c_encoding()) + 1;
}
