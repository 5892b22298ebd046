#include "siblings/tools/ZRDateTime.h"

#include <gtest/gtest.h>
#include <cmath>
#include <limits>
#include <tuple>

namespace {

using Status = COleDateTime::Status;

std::tuple<int, int, int, int, int, int> Parts(const COleDateTime& date)
{
    return {date.GetYear(), date.GetMonth(), date.GetDay(), date.GetHour(), date.GetMinute(), date.GetSecond()};
}

TEST(COleDateTime, IsNullAtFirst)
{
    EXPECT_EQ(COleDateTime().GetStatus(), Status::Null);
    EXPECT_EQ(COleDateTime().GetYear(), -1);
    EXPECT_EQ(COleDateTime().GetDayOfWeek(), -1);
}

TEST(COleDateTime, CountsDaysFromTheEndOf1899)
{
    EXPECT_EQ(COleDateTime(1899, 12, 30, 0, 0, 0).Date(), 0.0);
    EXPECT_EQ(COleDateTime(1900, 1, 1, 0, 0, 0).Date(), 2.0);
    EXPECT_EQ(COleDateTime(2000, 1, 1, 6, 0, 0).Date(), 36526.25);
    EXPECT_EQ(Parts(COleDateTime(36526.25)), std::tuple(2000, 1, 1, 6, 0, 0));
}

TEST(COleDateTime, CountsTheFractionForwardBelowZero)
{
    EXPECT_EQ(COleDateTime(1899, 12, 29, 6, 0, 0).Date(), -1.25);
    EXPECT_EQ(Parts(COleDateTime(-1.25)), std::tuple(1899, 12, 29, 6, 0, 0));
    EXPECT_EQ(Parts(COleDateTime(-0.5)), std::tuple(1899, 12, 30, 12, 0, 0));
}

TEST(COleDateTime, RoundsToTheNearestSecond)
{
    constexpr double kSecond = 1.0 / 86400.0;
    EXPECT_EQ(Parts(COleDateTime(10.0 + 1.4 * kSecond)), std::tuple(1900, 1, 9, 0, 0, 1));
    EXPECT_EQ(Parts(COleDateTime(10.0 + 1.6 * kSecond)), std::tuple(1900, 1, 9, 0, 0, 2));
    EXPECT_EQ(Parts(COleDateTime(11.0 - 0.2 * kSecond)), std::tuple(1900, 1, 10, 0, 0, 0));
    EXPECT_EQ(Parts(COleDateTime(-1.0 - (1.0 - 0.2 * kSecond))), std::tuple(1899, 12, 30, 0, 0, 0));
}

TEST(COleDateTime, IsValidFromYear100To9999)
{
    EXPECT_EQ(COleDateTime(100, 1, 1, 0, 0, 0).Date(), -657434.0);
    EXPECT_EQ(COleDateTime(99, 12, 31, 0, 0, 0).GetStatus(), Status::Invalid);
    EXPECT_EQ(COleDateTime(10000, 1, 1, 0, 0, 0).GetStatus(), Status::Invalid);
    EXPECT_EQ(COleDateTime(-657435.0).GetStatus(), Status::Invalid);
    EXPECT_EQ(Parts(COleDateTime(-657434.75)), std::tuple(100, 1, 1, 18, 0, 0));
    EXPECT_EQ(COleDateTime(2958466.0).GetStatus(), Status::Invalid);
    EXPECT_EQ(Parts(COleDateTime(std::nextafter(2958466.0, 0.0))), std::tuple(9999, 12, 31, 23, 59, 59));
}

TEST(COleDateTime, IsInvalidForWhatIsNoDate)
{
    EXPECT_EQ(COleDateTime(std::numeric_limits<double>::quiet_NaN()).GetStatus(), Status::Invalid);
    EXPECT_EQ(COleDateTime(std::numeric_limits<double>::infinity()).GetStatus(), Status::Invalid);
    EXPECT_EQ(COleDateTime(-1e300).GetStatus(), Status::Invalid);
    EXPECT_EQ(COleDateTime(2003, 2, 29, 0, 0, 0).GetStatus(), Status::Invalid);
    EXPECT_EQ(COleDateTime(2003, 2, 28, 24, 0, 0).GetStatus(), Status::Invalid);
    EXPECT_EQ(COleDateTime(2003, 258, 1, 0, 0, 0).GetStatus(), Status::Invalid);
    EXPECT_EQ(COleDateTime(2003, 2, -1, 0, 0, 0).GetYear(), -1);
}

TEST(COleDateTime, TellsTheDayOfTheWeekFromSunday)
{
    EXPECT_EQ(COleDateTime(1899, 12, 30, 0, 0, 0).GetDayOfWeek(), 7);
    EXPECT_EQ(COleDateTime(2002, 12, 30, 12, 0, 0).GetDayOfWeek(), 2);
    EXPECT_EQ(COleDateTime(100, 1, 1, 0, 0, 0).GetDayOfWeek(), 6);
}

TEST(COleDateTime, GivesEverySecondOfADayBack)
{
    int failures = 0;
    for (const int year : {1850, 2031}) {
        for (int second = 0; second < 86400; ++second) {
            const COleDateTime date(year, 5, 17, second / 3600, second / 60 % 60, second % 60);
            const COleDateTime again(date.Date());
            failures += Parts(again) == std::tuple(year, 5, 17, second / 3600, second / 60 % 60, second % 60) ? 0 : 1;
        }
    }
    EXPECT_EQ(failures, 0);
}

}  // namespace
