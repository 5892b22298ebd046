#include "dialogs/PickedDate.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

using zr::dialogs::CalendarDay;
using zr::dialogs::DateFromOle;
using zr::dialogs::DateOf;
using zr::dialogs::DayOf;

ZRDateTime Date(int year, int month, int day, int hour = 0, int minute = 0, int second = 0)
{
    ZRDateTime date;
    date.SetDateTime(year, month, day, hour, minute, second, 0, 0);
    return date;
}

TEST(PickedDate, RangesFromTheYear2000To2133)
{
    EXPECT_EQ(zr::dialogs::kFirstDay, (CalendarDay{2000, 1, 1}));
    EXPECT_EQ(zr::dialogs::kLastDay, (CalendarDay{2133, 12, 31}));
    EXPECT_TRUE(DateOf(zr::dialogs::kFirstDay).IsValid());
    EXPECT_TRUE(DateOf(zr::dialogs::kLastDay).IsValid());
}

TEST(PickedDate, ReadsTheFormOfOleDates)
{
    EXPECT_EQ(DateFromOle(36526.0), Date(2000, 1, 1));
    EXPECT_EQ(DateFromOle(45292.75), Date(2024, 1, 1, 18));
}

TEST(PickedDate, IsNoDateOutsideWhatADateHolds)
{
    EXPECT_FALSE(DateFromOle(36525.0).IsValid());  // 1999
    EXPECT_FALSE(DateFromOle(0.0).IsValid());      // 1899
    EXPECT_FALSE(DateFromOle(-1e300).IsValid());
    EXPECT_FALSE(DateFromOle(1e300).IsValid());
    EXPECT_FALSE(DateFromOle(std::numeric_limits<double>::infinity()).IsValid());
    EXPECT_FALSE(DateFromOle(std::numeric_limits<double>::quiet_NaN()).IsValid());
}

TEST(PickedDate, HasTheDayOfADateWhateverItsTime)
{
    EXPECT_EQ(DayOf(Date(2024, 2, 29, 23, 59, 59)), (CalendarDay{2024, 2, 29}));
    EXPECT_EQ(DayOf(Date(2024, 2, 29)), (CalendarDay{2024, 2, 29}));
    EXPECT_EQ(DayOf(ZRDateTime()), std::nullopt);
}

TEST(PickedDate, IsMidnightOfTheDay)
{
    EXPECT_EQ(DateOf(CalendarDay{2024, 2, 29}), Date(2024, 2, 29));
    EXPECT_EQ(DateOf(CalendarDay{2024, 2, 29}).microseconds, 0u);
    EXPECT_FALSE(DateOf(std::nullopt).IsValid());
}

}  // namespace
