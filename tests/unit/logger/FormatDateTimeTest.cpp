#include "logger/FormatDateTime.h"

#include <gtest/gtest.h>

namespace {

using namespace zr::logger;
using Locale = ZRLocaleInformation<ZRBasicString>;

// Day, month, year in both orders, with - and :.
Locale Record()
{
    Locale locale;
    locale.timeSeparator = u":";
    locale.dateSeparator = u"-";
    locale.monthNames = {u"January", u"February", u"March",     u"April",   u"May",      u"June",
                         u"July",    u"August",   u"September", u"October", u"November", u"December"};
    locale.dayNames = {u"Sunday", u"Monday", u"Tuesday", u"Wednesday", u"Thursday", u"Friday", u"Saturday"};
    locale.shortDateOrder = 1;
    locale.longDateOrder = 1;
    locale.longestDayName = 9;
    return locale;
}

ZRDateTime Date(int year, int month, int day, int hour = 0, int minute = 0, int second = 0, unsigned micros = 0)
{
    ZRDateTime date;
    date.SetDateTime(year, month, day, hour, minute, second, 0, 0);
    date.microseconds = micros;
    return date;
}

ZRBasicString Format(const ZRDateTime& date, unsigned flags, const Locale& locale = Record())
{
    ZRBasicString out = u"old";
    EXPECT_EQ(&FormatDateTime(out, date, locale, flags), &out);
    return out;
}

const ZRDateTime kMonday = Date(2002, 12, 30, 23, 58, 7);

TEST(FormatDateTime, FlagsOfNothingGiveAnEmptyText)
{
    EXPECT_EQ(Format(kMonday, 0), u"");
    EXPECT_EQ(Format(kMonday, kPad), u"");
}

TEST(FormatDateTime, TheCombinationsInUseHaveTheirNumbers)
{
    EXPECT_EQ(kRowOfDay, 897u);
    EXPECT_EQ(kRowOfWeek, 993u);
    EXPECT_EQ(kRow, 941u);
    EXPECT_EQ(kLegend, 940u);
    EXPECT_EQ(kCaptionOfDay, 116u);
    EXPECT_EQ(kCaptionOfWeek, 52u);
    EXPECT_EQ(kCaptionOfMonth, 20u);
}

TEST(FormatDateTime, TheCombinationsInUseGiveTheirTexts)
{
    Locale locale = Record();
    EXPECT_EQ(Format(kMonday, 897, locale), u"23:58:07");
    EXPECT_EQ(Format(kMonday, 941, locale), u"30-12-2002 23:58:07");
    EXPECT_EQ(Format(kMonday, 940, locale), u"30-12-2002 23:58:07");
    EXPECT_EQ(Format(kMonday, 116, locale), u"Monday 30 December 2002");
    EXPECT_EQ(Format(kMonday, 52, locale), u"30 December 2002");
    EXPECT_EQ(Format(kMonday, 20, locale), u"December 2002");
    locale.longestDayName = 6;  // as long as the name
    EXPECT_EQ(Format(kMonday, 993, locale), u"Monday 30 23:58:07");
}

TEST(FormatDateTime, PaddingTellsRowsFromTheLegend)
{
    const ZRDateTime date = Date(2005, 3, 5, 7, 4, 9);
    EXPECT_EQ(Format(date, kRow), u"05-03-2005 07:04:09");
    EXPECT_EQ(Format(date, kLegend), u"5-3-2005 7:04:09");
}

TEST(FormatDateTime, TwoDigitsWinOverFour)
{
    EXPECT_EQ(Format(kMonday, 0x0006 | kPad), u"02");
    EXPECT_EQ(Format(kMonday, kYearFourDigits), u"2002");
}

TEST(FormatDateTime, TheNameOfTheMonthWinsOverItsNumber)
{
    EXPECT_EQ(Format(kMonday, 0x0018), u"December");
    EXPECT_EQ(Format(kMonday, kMonthNumber), u"12");
}

TEST(FormatDateTime, ADayOfOneDigitIsPaddedOnRequest)
{
    const ZRDateTime fifth = Date(2002, 12, 5);
    EXPECT_EQ(Format(fifth, 0x0020), u"5");
    EXPECT_EQ(Format(fifth, 0x0021), u"05");
}

TEST(FormatDateTime, AMonthOfOneDigitIsPaddedOnRequest)
{
    EXPECT_EQ(Format(Date(2002, 3, 5), kMonthNumber), u"3");
    EXPECT_EQ(Format(Date(2002, 3, 5), kMonthNumber | kPad), u"03");
    EXPECT_EQ(Format(Date(2002, 10, 5), kMonthNumber), u"10");
}

TEST(FormatDateTime, AYearOfOneDigitIsPaddedOnRequest)
{
    EXPECT_EQ(Format(Date(2005, 1, 1), 0x0002), u"5");
    EXPECT_EQ(Format(Date(2005, 1, 1), 0x0003), u"05");
    EXPECT_EQ(Format(Date(2100, 1, 1), 0x0002), u"0");
    EXPECT_EQ(Format(Date(2099, 1, 1), 0x0002), u"99");
}

TEST(FormatDateTime, HoursOfOneDigitKeepTheMinutesAtTwo)
{
    const ZRDateTime seven = Date(2002, 12, 30, 7);
    EXPECT_EQ(Format(seven, 0x0080), u"7");
    EXPECT_EQ(Format(seven, 0x0180), u"7:00");
    EXPECT_EQ(Format(seven, 0x0181), u"07:00");
}

TEST(FormatDateTime, SecondsAloneHaveTwoDigitsAndNoBlankBefore)
{
    EXPECT_EQ(Format(kMonday, 0x0200), u"07");
    EXPECT_EQ(Format(kMonday, kMinutes), u"58");
}

TEST(FormatDateTime, MinutesWithoutHoursFollowTheDateAfterABlank)
{
    EXPECT_EQ(Format(kMonday, kDateInNumbers | kMinutes), u"30-12-2002 58");
    EXPECT_EQ(Format(kMonday, kDateInNumbers | kMinutes | kSeconds), u"30-12-2002 58:07");
    EXPECT_EQ(Format(kMonday, kHours | kSeconds), u"23 07");
    EXPECT_EQ(Format(kMonday, kDay | kSeconds), u"30 07");
}

TEST(FormatDateTime, ANameOfADayIsPaddedToTheLongest)
{
    EXPECT_EQ(Format(kMonday, kDayName | kPad), u"   Monday");
    EXPECT_EQ(Format(kMonday, kDayName), u"Monday");
    EXPECT_EQ(Format(Date(2003, 1, 1), kDayName | kPad), u"Wednesday");
    EXPECT_EQ(Format(Date(2003, 1, 1), kDayName | kDay | kPad), u"Wednesday 01");
    Locale locale = Record();
    locale.longestDayName = 3;  // shorter than the name
    EXPECT_EQ(Format(kMonday, kDayName | kPad, locale), u"Monday");
}

TEST(FormatDateTime, NamesOfDaysStartWithThatOfDayOne)
{
    EXPECT_EQ(Format(Date(2002, 12, 29), kDayName), u"Sunday");
    EXPECT_EQ(Format(Date(2003, 1, 4), kDayName), u"Saturday");
}

TEST(FormatDateTime, TheShortOrderPlacesTheNumbers)
{
    Locale locale = Record();
    locale.shortDateOrder = 2;
    EXPECT_EQ(Format(kMonday, 0x2C, locale), u"2002-12-30");
    locale.shortDateOrder = 0;
    EXPECT_EQ(Format(kMonday, 0x2C, locale), u"12-30-2002");
    EXPECT_EQ(Format(kMonday, kYearFourDigits | kDay, locale), u"30-2002");
}

TEST(FormatDateTime, TheLongOrderPlacesTheNames)
{
    Locale locale = Record();
    locale.shortDateOrder = 2;
    locale.longDateOrder = 0;
    EXPECT_EQ(Format(kMonday, kCaptionOfWeek, locale), u"December 30 2002");
    EXPECT_EQ(Format(kMonday, kCaptionOfDay, locale), u"December Monday 30 2002");
    locale.longDateOrder = 2;
    EXPECT_EQ(Format(kMonday, kCaptionOfWeek, locale), u"2002 December 30");
    // The name of a day is a name too.
    EXPECT_EQ(Format(kMonday, kDateInNumbers | kDayName, locale), u"2002 12 Monday 30");
}

TEST(FormatDateTime, WithANameTheDatePartsAreJoinedByBlanks)
{
    Locale locale = Record();
    locale.dateSeparator = u"/";
    EXPECT_EQ(Format(kMonday, kCaptionOfWeek, locale), u"30 December 2002");
    EXPECT_EQ(Format(kMonday, kDay | kDayName | kMonthNumber, locale), u"Monday 30 12");
}

TEST(FormatDateTime, SeparatorsAndNamesMayHaveAnyLength)
{
    Locale locale = Record();
    locale.dateSeparator = u" / ";
    locale.timeSeparator = u"";
    EXPECT_EQ(Format(kMonday, kRow, locale), u"30 / 12 / 2002 235807");
    locale.monthNames[11] = ZRBasicString(std::u16string(200, u'x'));
    EXPECT_EQ(Format(kMonday, kCaptionOfWeek, locale), u"30 " + locale.monthNames[11] + u" 2002");
}

TEST(FormatDateTime, MillisecondsLeaveOutTheTens)
{
    EXPECT_EQ(Format(Date(2002, 12, 30, 0, 0, 5, 347000), kSeconds | kMilliseconds), u"05.037");
    EXPECT_EQ(Format(Date(2002, 12, 30, 0, 0, 5, 347999), kMilliseconds), u"037");
    EXPECT_EQ(Format(Date(2002, 12, 30, 0, 0, 5, 990), kMilliseconds), u"000");
}

TEST(FormatDateTime, MicrosecondsFollowMillisecondsAfterABlank)
{
    EXPECT_EQ(Format(Date(2002, 12, 30, 23, 58, 7, 999999), 0x0E00), u"07.099 999999");
}

TEST(FormatDateTime, AFractionFollowsSecondsAfterAPointAndAllElseAfterABlank)
{
    const ZRDateTime date = Date(2002, 12, 30, 23, 58, 7, 12345);
    EXPECT_EQ(Format(date, kSeconds | kMicroseconds), u"07.012345");
    EXPECT_EQ(Format(date, kMicroseconds), u"012345");
    EXPECT_EQ(Format(date, kMinutes | kMicroseconds), u"58 012345");
    EXPECT_EQ(Format(date, kMinutes | kMilliseconds), u"58 002");
    EXPECT_EQ(Format(date, kDay | kMilliseconds), u"30 002");
}

TEST(FormatDateTime, TheFixedFormHasFourteenDigitsAndKnowsNoOtherBit)
{
    EXPECT_EQ(Format(kMonday, 0x1000), u"30122002235807");
    EXPECT_EQ(Format(kMonday, 0x1FFF), u"30122002235807");
    Locale locale = Record();
    locale.shortDateOrder = 0;
    EXPECT_EQ(Format(Date(2005, 3, 5, 7, 4, 9), 0x1000, locale), u"05032005070409");
}

TEST(FormatDateTime, TheWholeRangeOfDatesIsWritten)
{
    EXPECT_EQ(Format(ZRDateTime(0, 0), kRow), u"01-01-2000 00:00:00");
    EXPECT_EQ(Format(ZRDateTime(ZRDateTime::kNoDate - 1, 0), kRow), u"07-02-2136 06:28:14");
    EXPECT_EQ(Format(Date(2004, 2, 29), kRow), u"29-02-2004 00:00:00");
}

}  // namespace
