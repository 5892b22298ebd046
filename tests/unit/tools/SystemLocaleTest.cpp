#include "platform/SystemLocale.h"

#include <gtest/gtest.h>
#if !defined(_WIN32)
#include "support/Environment.h"
#endif

namespace {

using zr::ReadDatePattern;
using zr::ReadTimeSeparator;

TEST(DatePattern, TellsTheOrderByTheFirstPart)
{
    EXPECT_EQ(ReadDatePattern("%m/%d/%y").order, 0);
    EXPECT_EQ(ReadDatePattern("%d.%m.%Y").order, 1);
    EXPECT_EQ(ReadDatePattern("%Y-%m-%d").order, 2);
    EXPECT_EQ(ReadDatePattern("%a %d %b %Y %T %Z").order, 1);
    EXPECT_EQ(ReadDatePattern("%a %b %e %H:%M:%S %Y").order, 0);
    EXPECT_EQ(ReadDatePattern("").order, 0);
}

TEST(DatePattern, TellsTheMarkBetweenTheFirstParts)
{
    EXPECT_EQ(ReadDatePattern("%m/%d/%y").separator, "/");
    EXPECT_EQ(ReadDatePattern("%-d. %-m. %Y").separator, ". ");
    EXPECT_EQ(ReadDatePattern("%d-%m-%Y").separator, "-");
    EXPECT_EQ(ReadDatePattern("%Y\xEB\x85\x84 %m").separator, "");
    EXPECT_EQ(ReadDatePattern("%d").separator, "");
}

TEST(DatePattern, WritesShortFormsOut)
{
    EXPECT_EQ(ReadDatePattern("%D").separator, "/");
    EXPECT_EQ(ReadDatePattern("%F").order, 2);
    EXPECT_EQ(ReadTimeSeparator("%T"), ":");
    EXPECT_EQ(ReadTimeSeparator("%r"), ":");
}

TEST(DatePattern, TellsTheMarkBetweenHourAndMinute)
{
    EXPECT_EQ(ReadTimeSeparator("%H.%M.%S"), ".");
    EXPECT_EQ(ReadTimeSeparator("%OH:%OM:%OS"), ":");
    EXPECT_EQ(ReadTimeSeparator("%H h %M"), "");
    EXPECT_EQ(ReadTimeSeparator("%"), "");
}

#if !defined(_WIN32)
void ExpectC(const zr::SystemLocale& locale)
{
    EXPECT_EQ(locale.decimalSeparator, ".");
    EXPECT_EQ(locale.thousandsSeparator, "");
    EXPECT_EQ(locale.digitGroups[0], 0);
    EXPECT_EQ(locale.timeSeparator, ":");
    EXPECT_EQ(locale.dateSeparator, "/");
    EXPECT_EQ(locale.monthNames[0], "January");
    EXPECT_EQ(locale.monthNames[11], "December");
    EXPECT_EQ(locale.dayNames[0], "Sunday");
    EXPECT_EQ(locale.dayNames[6], "Saturday");
    EXPECT_EQ(locale.shortDateOrder, 0);
    EXPECT_EQ(locale.longDateOrder, 0);
    EXPECT_EQ(locale.firstDayOfWeek, 1);
    EXPECT_EQ(locale.weekNumbering, 2);
}

TEST(SystemLocale, ReadsTheCLocaleOfTheSystem)
{
    ExpectC(zr::ReadSystemLocale("C"));
}

TEST(SystemLocale, IsEnglishForAnUnknownName)
{
    ExpectC(zr::ReadSystemLocale("xx_NOWHERE.UTF-8"));
}

TEST(SystemLocale, FollowsTheEnvironmentAndSurvivesAnUnknownNameThere)
{
    const zr::test::Environment all("LC_ALL", "xx_NOWHERE.UTF-8");
    ExpectC(zr::ReadSystemLocale());
    const zr::test::Environment plain("LC_ALL", "C");
    ExpectC(zr::ReadSystemLocale());
}
#endif

}  // namespace
