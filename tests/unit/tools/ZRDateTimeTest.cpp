#include "siblings/tools/ZRDateTime.h"

#include "support/ManualClock.h"
#if !defined(_WIN32)
#include "support/Environment.h"
#endif

#include <gtest/gtest.h>
#include <chrono>
#include <tuple>

namespace {

#if !defined(_WIN32)
using zr::test::Environment;
#endif
using zr::test::ManualClock;
using namespace std::chrono_literals;

constexpr std::uint32_t kDay = 86400;
constexpr std::uint32_t kLastSecond = 0xFFFFFFFEu;  // 7 February 2136 06:28:14

ZRDateTime At(int year, int month, int day, int hour = 0, int minute = 0, int second = 0)
{
    ZRDateTime date;
    date.SetDateTime(year, month, day, hour, minute, second, 0, 0);
    return date;
}

std::tuple<int, int, int> YearMonthDay(const ZRDateTime& date)
{
    int day = 0;
    int month = 0;
    int year = 0;
    ZRDateTime::DateTime2DMY(date.seconds, day, month, year, true);
    return {year + 1999, month, day};
}

std::chrono::system_clock::time_point UnixTime(std::chrono::microseconds sinceEpoch)
{
    return std::chrono::system_clock::time_point(sinceEpoch);
}

TEST(ZRDateTime, IsNoDateAtFirst)
{
    EXPECT_FALSE(ZRDateTime().IsValid());
    EXPECT_EQ(ZRDateTime().seconds, ZRDateTime::kNoDate);
}

TEST(ZRDateTime, CountsFromTheYear2000)
{
    EXPECT_EQ(At(2000, 1, 1), ZRDateTime(0, 0));
    EXPECT_EQ(At(2000, 1, 2), ZRDateTime(kDay, 0));
    EXPECT_EQ(At(2000, 1, 1, 23, 59, 59), ZRDateTime(kDay - 1, 0));
    EXPECT_EQ(At(2001, 1, 1), ZRDateTime(366 * kDay, 0));
}

TEST(ZRDateTime, GivesYearOne2000InDayMonthYear)
{
    int day = 0;
    int month = 0;
    int year = 0;
    ZRDateTime::DateTime2DMY(0, day, month, year, true);
    EXPECT_EQ(std::tuple(year, month, day), std::tuple(1, 1, 1));
    ZRDateTime::DateTime2DMY(At(2002, 12, 30).seconds, day, month, year, true);
    EXPECT_EQ(std::tuple(year, month, day), std::tuple(3, 12, 30));
}

TEST(ZRDateTime, LeavesTheYearAloneWhenItIsNotAskedFor)
{
    int day = 0;
    int month = 0;
    int year = 77;
    ZRDateTime::DateTime2DMY(At(2002, 12, 30).seconds, day, month, year, false);
    EXPECT_EQ(std::tuple(year, month, day), std::tuple(77, 12, 30));
}

TEST(ZRDateTime, KnowsLeapYears)
{
    EXPECT_TRUE(At(2000, 2, 29).IsValid());
    EXPECT_TRUE(At(2004, 2, 29).IsValid());
    EXPECT_FALSE(At(2003, 2, 29).IsValid());
    EXPECT_FALSE(At(2100, 2, 29).IsValid());
    EXPECT_EQ(YearMonthDay(ZRDateTime(At(2100, 2, 28).seconds + kDay, 0)), std::tuple(2100, 3, 1));
    EXPECT_EQ(YearMonthDay(ZRDateTime(At(2004, 2, 28).seconds + kDay, 0)), std::tuple(2004, 2, 29));
}

TEST(ZRDateTime, GivesEveryDayOfItsRangeBack)
{
    int failures = 0;
    for (std::uint32_t day = 0; day < kLastSecond / kDay; ++day) {
        const ZRDateTime date(day * kDay + 3723, 0);
        const auto [year, month, number] = YearMonthDay(date);
        failures += At(year, month, number, 1, 2, 3) == date && date.Year() == year ? 0 : 1;
    }
    EXPECT_EQ(failures, 0);
}

TEST(ZRDateTime, IsNoDateWhenAPartIsOutOfRange)
{
    EXPECT_FALSE(At(1999, 12, 31, 23, 59, 59).IsValid());
    EXPECT_FALSE(At(2137, 1, 1).IsValid());
    EXPECT_FALSE(At(2002, 0, 1).IsValid());
    EXPECT_FALSE(At(2002, 13, 1).IsValid());
    EXPECT_FALSE(At(2002, 4, 31).IsValid());
    EXPECT_FALSE(At(2002, 4, 0).IsValid());
    EXPECT_FALSE(At(2002, -1, -1).IsValid());
    EXPECT_FALSE(At(2002, 4, 1, 24).IsValid());
    EXPECT_FALSE(At(2002, 4, 1, 0, 60).IsValid());
    EXPECT_FALSE(At(2002, 4, 1, 0, 0, -1).IsValid());
    // These come back into the range if only their low bits are looked at.
    EXPECT_FALSE(At(2002 + 65536, 4, 1).IsValid());
    EXPECT_FALSE(At(2002, 4 + 256, 1).IsValid());
    EXPECT_FALSE(At(2002, 4, 1 + 256).IsValid());
    ZRDateTime date;
    date.SetDateTime(2002, 1, 1, 0, 0, 0, 1000, 0);
    EXPECT_FALSE(date.IsValid());
    date.SetDateTime(2002, 1, 1, 0, 0, 0, 0, -1);
    EXPECT_FALSE(date.IsValid());
}

TEST(ZRDateTime, EndsInFebruary2136)
{
    EXPECT_EQ(At(2136, 2, 7, 6, 28, 14), ZRDateTime(kLastSecond, 0));
    EXPECT_FALSE(At(2136, 2, 7, 6, 28, 15).IsValid());
    EXPECT_EQ(ZRDateTime(kLastSecond, 0).Year(), 2136);
}

TEST(ZRDateTime, HoldsMillisecondsAndMicroseconds)
{
    ZRDateTime date;
    date.SetDateTime(2000, 1, 1, 0, 0, 1, 347, 9);
    EXPECT_EQ(date, ZRDateTime(1, 347009));
}

TEST(ZRDateTime, TellsTheDayOfTheWeekFromSunday)
{
    EXPECT_EQ(At(2000, 1, 1).DayOfWeek(), 7);
    EXPECT_EQ(At(2000, 1, 2).DayOfWeek(), 1);
    EXPECT_EQ(At(2002, 12, 30).DayOfWeek(), 2);
}

TEST(ZRDateTime, TellsTheDayOfTheYear)
{
    EXPECT_EQ(At(2002, 1, 1).DayOfYear(), 1);
    EXPECT_EQ(At(2002, 12, 31).DayOfYear(), 365);
    EXPECT_EQ(At(2004, 12, 31).DayOfYear(), 366);
}

TEST(ZRDateTime, NumbersWeeksByTheirThursday)
{
    EXPECT_EQ(At(2002, 12, 29).WeekOfYearISO8601(), 52);  // Sunday
    EXPECT_EQ(At(2002, 12, 30).WeekOfYearISO8601(), 1);   // Monday of a week of 2003
    EXPECT_EQ(At(2005, 1, 1).WeekOfYearISO8601(), 53);
    EXPECT_EQ(At(2005, 1, 3).WeekOfYearISO8601(), 1);
    EXPECT_EQ(At(2000, 1, 1).WeekOfYearISO8601(), 52);
    EXPECT_EQ(At(2020, 12, 31).WeekOfYearISO8601(), 53);
}

TEST(ZRDateTime, CarriesMicrosecondsInSums)
{
    EXPECT_EQ(ZRDateTime(10, 600000) + ZRDateTimeSpan(1, 500000), ZRDateTime(12, 100000));
    EXPECT_EQ(ZRDateTime(10, 999999) + ZRDateTimeSpan(0, 1), ZRDateTime(11, 0));
    EXPECT_EQ(ZRDateTime(10, 100000) - ZRDateTimeSpan(1, 500000), ZRDateTime(8, 600000));
    EXPECT_EQ(ZRDateTime(10, 0) - ZRDateTimeSpan(0, 1), ZRDateTime(9, 999999));
}

TEST(ZRDateTime, GoesBackByASpanBelowZero)
{
    EXPECT_EQ(ZRDateTime(10, 0) + ZRDateTimeSpan(-1, 500000), ZRDateTime(9, 500000));
    EXPECT_EQ(ZRDateTime(10, 0) - ZRDateTimeSpan(-1, 500000), ZRDateTime(10, 500000));
}

TEST(ZRDateTime, IsNoDateBeyondItsRange)
{
    EXPECT_FALSE((ZRDateTime(0, 0) - ZRDateTimeSpan(0, 1)).IsValid());
    EXPECT_FALSE((ZRDateTime(5, 0) + ZRDateTimeSpan(-6, 0)).IsValid());
    EXPECT_EQ(ZRDateTime(kLastSecond, 0) + ZRDateTimeSpan(0, 999999), ZRDateTime(kLastSecond, 999999));
    EXPECT_FALSE((ZRDateTime(kLastSecond, 999999) + ZRDateTimeSpan(0, 1)).IsValid());
    EXPECT_EQ((ZRDateTime(kLastSecond, 5) + ZRDateTimeSpan(1, 0)), ZRDateTime());
}

TEST(ZRDateTime, StaysNoDateInSums)
{
    EXPECT_EQ(ZRDateTime() + ZRDateTimeSpan(5, 0), ZRDateTime());
    EXPECT_EQ(ZRDateTime() - ZRDateTimeSpan(5, 0), ZRDateTime());
    EXPECT_EQ(ZRDateTime() - ZRDateTime(5, 0), ZRDateTimeSpan());
}

TEST(ZRDateTime, BorrowsMicrosecondsInDifferences)
{
    EXPECT_EQ(ZRDateTime(10, 200000) - ZRDateTime(8, 100000), ZRDateTimeSpan(2, 100000));
    EXPECT_EQ(ZRDateTime(10, 100000) - ZRDateTime(8, 200000), ZRDateTimeSpan(1, 900000));
    EXPECT_EQ(ZRDateTime(8, 0) - ZRDateTime(8, 500000), ZRDateTimeSpan(-1, 500000));
}

TEST(ZRDateTime, HoldsDifferencesAtTheLimitsOfASpan)
{
    EXPECT_EQ(ZRDateTime(kLastSecond, 0) - ZRDateTime(0, 0), ZRDateTimeSpan(INT32_MAX, 999999));
    EXPECT_EQ(ZRDateTime(0, 0) - ZRDateTime(kLastSecond, 0), ZRDateTimeSpan(INT32_MIN, 0));
}

TEST(ZRDateTime, IsOrderedBySecondsThenMicroseconds)
{
    EXPECT_LT(ZRDateTime(1, 999999), ZRDateTime(2, 0));
    EXPECT_LT(ZRDateTime(1, 1), ZRDateTime(1, 2));
}

TEST(ZRDateTime, ReadsUtcFromTheClockInForce)
{
    const ManualClock clock(UnixTime(946684805s + 42us));
    EXPECT_EQ(ZRDateTime::UTC(), ZRDateTime(5, 42));
}

TEST(ZRDateTime, HasNoPresentBefore2000)
{
    const ManualClock clock(UnixTime(946684800s - 1us));
    EXPECT_FALSE(ZRDateTime::UTC().IsValid());
}

#if !defined(_WIN32)
TEST(ZRDateTime, ReadsLocalTimeFromTheClockInForce)
{
    const Environment zone("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    tzset();
    {
        const ManualClock winter(UnixTime(1041289087s + 250ms));  // 30 December 2002 22:58:07 UTC
        EXPECT_EQ(ZRDateTime::LTC(), ZRDateTime(At(2002, 12, 30, 23, 58, 7).seconds, 250000));
    }
    const ManualClock summer(UnixTime(1025474400s));  // 30 June 2002 22:00:00 UTC
    EXPECT_EQ(ZRDateTime::LTC(), At(2002, 7, 1));
}
#endif

TEST(ZRDateTime, GoesToAnOleDateAndBack)
{
    for (const ZRDateTime& date :
         {At(2000, 1, 1), At(2002, 12, 30, 23, 58, 7), At(2133, 12, 31, 23, 59, 59), ZRDateTime(kLastSecond, 0)}) {
        EXPECT_EQ(ZRDateTime(date.ToOleDateTime()), date);
    }
    EXPECT_EQ(ZRDateTime(ZRDateTime(7, 999999).ToOleDateTime()), ZRDateTime(7, 0));
    EXPECT_EQ(At(2000, 1, 1, 12).ToOleDateTime().Date(), 36526.5);
}

TEST(ZRDateTime, IsNoDateForAnOleDateThatIsNoneOrOutOfRange)
{
    EXPECT_EQ(ZRDateTime().ToOleDateTime().GetStatus(), COleDateTime::Status::Null);
    EXPECT_FALSE(ZRDateTime(COleDateTime()).IsValid());
    EXPECT_FALSE(ZRDateTime(COleDateTime(2002, 13, 1, 0, 0, 0)).IsValid());
    EXPECT_FALSE(ZRDateTime(COleDateTime(1999, 12, 31, 0, 0, 0)).IsValid());
    EXPECT_FALSE(ZRDateTime(COleDateTime(2137, 1, 1, 0, 0, 0)).IsValid());
}

}  // namespace
