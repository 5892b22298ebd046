#include "siblings/tools/ZRLocaleInformation.h"

#include "platform/SystemLocale.h"

#include <gtest/gtest.h>

namespace {

zr::SystemLocale German()
{
    zr::SystemLocale system;
    system.decimalSeparator = ",";
    system.thousandsSeparator = "\xE2\x80\xAF";
    system.digitGroups = {3, 0, 0, 0};
    system.dateSeparator = ".";
    system.monthNames[2] = "M\xC3\xA4rz";
    system.dayNames = {
        "Sonntag", "Montag", "Dienstag", "Mittwoch", "Donnerstag", "Freitag", "S\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4mstag"};
    system.shortDateOrder = 1;
    system.longDateOrder = 1;
    system.firstDayOfWeek = 2;
    system.weekNumbering = 1;
    return system;
}

TEST(ZRLocaleInformation, TakesWhatTheSystemTells)
{
    const auto record = zr::WideLocaleInformation(German());
    EXPECT_EQ(record.decimalSeparator, u",");
    EXPECT_EQ(record.thousandsSeparator, u"\u202F");
    EXPECT_EQ(record.digitGroups[0], 3);
    EXPECT_EQ(record.timeSeparator, u":");
    EXPECT_EQ(record.dateSeparator, u".");
    EXPECT_EQ(record.monthNames[2], u"M\u00E4rz");
    EXPECT_EQ(record.dayNames[0], u"Sonntag");
    EXPECT_EQ(record.shortDateOrder, 1);
    EXPECT_EQ(record.longDateOrder, 1);
    EXPECT_EQ(record.firstDayOfWeek, 2);
    EXPECT_EQ(record.weekNumbering, 1);
}

TEST(ZRLocaleInformation, MeasuresTheLongestDayNameInItsOwnCharacters)
{
    EXPECT_EQ(zr::WideLocaleInformation(German()).longestDayName, 10);    // Donnerstag
    EXPECT_EQ(zr::NarrowLocaleInformation(German()).longestDayName, 14);  // four letters of two bytes each
    EXPECT_EQ(zr::WideLocaleInformation({}).longestDayName, 9);           // Wednesday
}

TEST(ZRLocaleInformation, HoldsUtf8InTheNarrowRecord)
{
    EXPECT_EQ(zr::NarrowLocaleInformation(German()).monthNames[2], "M\xC3\xA4rz");
}

TEST(ZRLocaleInformation, IsTheSameByNameAndByFunction)
{
    EXPECT_EQ(&localeInformationWide, &LocaleInformationWide());
    EXPECT_EQ(&localeInformation, &LocaleInformation());
    EXPECT_FALSE(localeInformationWide.monthNames[0].IsEmpty());
    EXPECT_EQ(localeInformation.weekNumbering, localeInformationWide.weekNumbering);
}

}  // namespace
