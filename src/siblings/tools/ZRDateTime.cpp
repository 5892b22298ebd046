#include "siblings/tools/ZRDateTime.h"

#include "platform/Clock.h"
#include "platform/LocalTime.h"

#include <chrono>
#include <limits>

namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr std::int64_t kSecondsPerDay = 86400;
constexpr std::int64_t kMicrosPerSecond = 1000000;
constexpr sys_days kEpoch = std::chrono::January / 1 / 2000;

sys_days DayOf(std::uint32_t wholeSeconds)
{
    return kEpoch + std::chrono::days(wholeSeconds / kSecondsPerDay);
}

int Unsigned(unsigned value)
{
    return static_cast<int>(value);
}

bool IsWithin(int value, int limit)
{
    return value >= 0 && value < limit;
}

// Not ok() when a part is out of range. Tested by itself, since the types of std::chrono keep the low bits alone.
year_month_day Calendar(int year, int month, int day)
{
    if (year < 1900 || year > 9999 || !IsWithin(month, 13) || !IsWithin(day, 32)) {
        return {};
    }
    return {std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
            std::chrono::day(static_cast<unsigned>(day))};
}

// Division whose remainder is never negative.
std::int64_t FloorDivide(std::int64_t value, std::int64_t divisor)
{
    const std::int64_t quotient = value / divisor;
    return value % divisor < 0 ? quotient - 1 : quotient;
}

// No date outside the range.
ZRDateTime DateFrom(std::int64_t seconds, std::int64_t micros)
{
    const std::int64_t carry = FloorDivide(micros, kMicrosPerSecond);
    const std::int64_t whole = seconds + carry;
    if (whole < 0 || whole >= ZRDateTime::kNoDate) {
        return {};
    }
    return {static_cast<std::uint32_t>(whole), static_cast<std::uint32_t>(micros - carry * kMicrosPerSecond)};
}

// Held at the limits.
ZRDateTimeSpan SpanFrom(std::int64_t seconds, std::int64_t micros)
{
    using Limits = std::numeric_limits<std::int32_t>;
    const std::int64_t carry = FloorDivide(micros, kMicrosPerSecond);
    const std::int64_t whole = seconds + carry;
    if (whole > Limits::max()) {
        return {Limits::max(), kMicrosPerSecond - 1};
    }
    if (whole < Limits::min()) {
        return {Limits::min(), 0};
    }
    return {static_cast<std::int32_t>(whole), static_cast<std::uint32_t>(micros - carry * kMicrosPerSecond)};
}

ZRDateTime DateFromClock(sys_days day, std::int64_t secondsOfDay, std::int64_t micros)
{
    return DateFrom((day - kEpoch).count() * kSecondsPerDay + secondsOfDay, micros);
}

}  // namespace

ZRDateTime::ZRDateTime(const COleDateTime& date)
{
    if (date.GetStatus() != COleDateTime::Status::Valid) {
        return;
    }
    SetDateTime(date.GetYear(), date.GetMonth(), date.GetDay(), date.GetHour(), date.GetMinute(), date.GetSecond(), 0,
                0);
}

ZRDateTime ZRDateTime::LTC()
{
    const auto now = zr::CurrentClock().Utc();
    zr::LocalTime local;
    if (!zr::ToLocalTime(now, local)) {
        return {};
    }
    const year_month_day today = Calendar(local.year, local.month, local.day);
    if (!today.ok()) {
        return {};
    }
    const auto fraction = now - std::chrono::floor<std::chrono::seconds>(now);
    const std::int64_t secondsOfDay = (local.hour * 60 + local.minute) * 60 + local.second;
    return DateFromClock(today, secondsOfDay, std::chrono::floor<std::chrono::microseconds>(fraction).count());
}

ZRDateTime ZRDateTime::UTC()
{
    const auto sinceEpoch = zr::CurrentClock().Utc() - kEpoch;
    return DateFrom(0, std::chrono::floor<std::chrono::microseconds>(sinceEpoch).count());
}

void ZRDateTime::SetDateTime(int year, int month, int day, int hour, int minute, int second, int milliseconds,
                             int micros)
{
    *this = {};
    const year_month_day date = Calendar(year, month, day);
    const bool isTime = IsWithin(hour, 24) && IsWithin(minute, 60) && IsWithin(second, 60);
    if (!date.ok() || !isTime || !IsWithin(milliseconds, 1000) || !IsWithin(micros, 1000)) {
        return;
    }
    *this = DateFromClock(date, (hour * 60 + minute) * 60 + second, milliseconds * 1000 + micros);
}

int ZRDateTime::Year() const
{
    return static_cast<int>(year_month_day(DayOf(seconds)).year());
}

int ZRDateTime::DayOfWeek() const
{
    return Unsigned(std::chrono::weekday(DayOf(seconds)).c_encoding()) + 1;
}

int ZRDateTime::DayOfYear() const
{
    const sys_days day = DayOf(seconds);
    const sys_days newYear = year_month_day(day).year() / std::chrono::January / 1;
    return static_cast<int>((day - newYear).count()) + 1;
}

int ZRDateTime::WeekOfYearISO8601() const
{
    const sys_days day = DayOf(seconds);
    const int weekday = Unsigned(std::chrono::weekday(day).iso_encoding());
    const sys_days thursday = day + std::chrono::days(4 - weekday);
    const sys_days newYear = year_month_day(thursday).year() / std::chrono::January / 1;
    return static_cast<int>((thursday - newYear).count() / 7) + 1;
}

void ZRDateTime::DateTime2DMY(std::uint32_t wholeSeconds, int& day, int& month, int& year, bool withYear)
{
    const year_month_day date(DayOf(wholeSeconds));
    day = Unsigned(static_cast<unsigned>(date.day()));
    month = Unsigned(static_cast<unsigned>(date.month()));
    if (withYear) {
        year = static_cast<int>(date.year()) - 1999;
    }
}

COleDateTime ZRDateTime::ToOleDateTime() const
{
    if (!IsValid()) {
        return {};
    }
    int day = 0;
    int month = 0;
    int year = 0;
    DateTime2DMY(seconds, day, month, year, true);
    const auto ofDay = static_cast<int>(seconds % kSecondsPerDay);
    return {year + 1999, month, day, ofDay / 3600, ofDay / 60 % 60, ofDay % 60};
}

ZRDateTime& ZRDateTime::operator+=(const ZRDateTimeSpan& span)
{
    if (IsValid()) {
        *this = DateFrom(std::int64_t{seconds} + span.seconds, std::int64_t{microseconds} + span.microseconds);
    }
    return *this;
}

ZRDateTime& ZRDateTime::operator-=(const ZRDateTimeSpan& span)
{
    if (IsValid()) {
        *this = DateFrom(std::int64_t{seconds} - span.seconds, std::int64_t{microseconds} - span.microseconds);
    }
    return *this;
}

ZRDateTimeSpan operator-(const ZRDateTime& left, const ZRDateTime& right)
{
    if (!left.IsValid() || !right.IsValid()) {
        return {};
    }
    return SpanFrom(std::int64_t{left.seconds} - right.seconds, std::int64_t{left.microseconds} - right.microseconds);
}

void ZRDateTimeSpan::SetDateTimeSpan(int days, int hours, int minutes, int wholeSeconds, int milliseconds, int micros)
{
    const std::int64_t whole =
        days * kSecondsPerDay + hours * std::int64_t{3600} + minutes * std::int64_t{60} + wholeSeconds;
    *this = SpanFrom(whole, milliseconds * std::int64_t{1000} + micros);
}
