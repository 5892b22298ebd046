#include "siblings/tools/ZRLocaleInformation.h"

#include "platform/SystemLocale.h"
#include "siblings/tools/LanguageLocale.h"
#include "siblings/tools/Numbers.h"

#include <gtest/gtest.h>
#include <atomic>
#include <filesystem>
#include <set>
#include <string>
#include <thread>

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

class ZRLocaleInformationInForce : public ::testing::Test {
protected:
    ~ZRLocaleInformationInForce() override { zr::SetLocaleInformation(""); }

    static ZRBasicString Number(double value)
    {
        ZRBasicString text;
        FormatNumber(text, value, 1, true);
        return text;
    }
};

TEST_F(ZRLocaleInformationInForce, IsTheSameByNameAndByFunction)
{
    for (const char* language : {"", "de"}) {
        ASSERT_TRUE(zr::SetLocaleInformation(language));
        const ZRLocaleInformation<ZRBasicString>& wide = localeInformationWide;
        const ZRLocaleInformation<ZRBasicString8>& narrow = localeInformation;
        EXPECT_EQ(&wide, &LocaleInformationWide());
        EXPECT_EQ(&narrow, &LocaleInformation());
        EXPECT_FALSE(localeInformationWide->monthNames[0].IsEmpty());
        EXPECT_EQ(localeInformation->weekNumbering, localeInformationWide->weekNumbering);
    }
}

TEST_F(ZRLocaleInformationInForce, IsTheSystemsUntilALanguageIsSet)
{
    const auto system = zr::WideLocaleInformation(zr::ReadSystemLocale());
    EXPECT_EQ(localeInformationWide->monthNames, system.monthNames);
    EXPECT_EQ(localeInformationWide->decimalSeparator, system.decimalSeparator);
}

TEST_F(ZRLocaleInformationInForce, WritesNumbersAsTheLanguageHasThem)
{
    ASSERT_TRUE(zr::SetLocaleInformation("en"));
    EXPECT_EQ(Number(-1234567.5), u"-1,234,567.5");
    ASSERT_TRUE(zr::SetLocaleInformation("de"));
    EXPECT_EQ(Number(-1234567.5), u"-1.234.567,5");
    ASSERT_TRUE(zr::SetLocaleInformation("es"));
    EXPECT_EQ(Number(-1234567.5), u"-1.234.567,5");
}

TEST_F(ZRLocaleInformationInForce, NamesMonthsAndDaysAsTheLanguageHasThem)
{
    ASSERT_TRUE(zr::SetLocaleInformation("de"));
    EXPECT_EQ(localeInformationWide->monthNames[2], u"M\u00E4rz");
    EXPECT_EQ(localeInformation->monthNames[2], "M\xC3\xA4rz");
    EXPECT_EQ(localeInformationWide->dayNames[0], u"Sonntag");
    EXPECT_EQ(localeInformationWide->longestDayName, 10);  // Donnerstag
    EXPECT_EQ(localeInformationWide->dateSeparator, u".");
    ASSERT_TRUE(zr::SetLocaleInformation("es"));
    EXPECT_EQ(localeInformationWide->monthNames[0], u"enero");
    EXPECT_EQ(localeInformationWide->dayNames[3], u"mi\u00E9rcoles");
    EXPECT_EQ(localeInformation->longestDayName, 10);  // one letter of miércoles takes two bytes
    EXPECT_EQ(localeInformationWide->dateSeparator, u"/");
    ASSERT_TRUE(zr::SetLocaleInformation("en"));
    EXPECT_EQ(localeInformationWide->monthNames[11], u"December");
    EXPECT_EQ(localeInformationWide->dayNames[6], u"Saturday");
}

TEST_F(ZRLocaleInformationInForce, PutsTheDayFirstAndStartsTheWeekOnMonday)
{
    for (const char* language : {"en", "de", "es"}) {
        ASSERT_TRUE(zr::SetLocaleInformation(language));
        EXPECT_EQ(localeInformation->shortDateOrder, 1);
        EXPECT_EQ(localeInformation->longDateOrder, 1);
        EXPECT_EQ(localeInformation->firstDayOfWeek, 2);
        EXPECT_EQ(localeInformation->weekNumbering, 1);
        EXPECT_EQ(localeInformation->timeSeparator, ":");
    }
}

TEST_F(ZRLocaleInformationInForce, TellsItsLanguage)
{
    EXPECT_EQ(zr::LocaleInformationLanguage(), "");
    ASSERT_TRUE(zr::SetLocaleInformation("es"));
    EXPECT_EQ(zr::LocaleInformationLanguage(), "es");
}

TEST_F(ZRLocaleInformationInForce, StaysAsItWasForAnUnknownLanguage)
{
    ASSERT_TRUE(zr::SetLocaleInformation("de"));
    EXPECT_FALSE(zr::SetLocaleInformation("fr"));
    EXPECT_FALSE(zr::SetLocaleInformation("DE"));
    EXPECT_EQ(localeInformation->decimalSeparator, ",");
}

TEST_F(ZRLocaleInformationInForce, ReturnsToTheSystems)
{
    const ZRLocaleInformation<ZRBasicString>* const system = &LocaleInformationWide();
    ASSERT_TRUE(zr::SetLocaleInformation("de"));
    EXPECT_NE(&LocaleInformationWide(), system);
    ASSERT_TRUE(zr::SetLocaleInformation(""));
    EXPECT_EQ(&LocaleInformationWide(), system);
}

TEST_F(ZRLocaleInformationInForce, LeavesAReferenceTakenEarlierAsItWas)
{
    ASSERT_TRUE(zr::SetLocaleInformation("de"));
    const ZRLocaleInformation<ZRBasicString>& german = LocaleInformationWide();
    ASSERT_TRUE(zr::SetLocaleInformation("en"));
    EXPECT_EQ(german.decimalSeparator, u",");
    EXPECT_EQ(german.dayNames[1], u"Montag");
}

TEST_F(ZRLocaleInformationInForce, IsWholeForReadersWhileAnotherThreadChangesIt)
{
    ASSERT_TRUE(zr::SetLocaleInformation("en"));
    std::atomic<bool> isOver = false;
    std::atomic<int> started = 0;
    std::atomic<int> torn = 0;
    const auto read = [&] {
        ++started;
        while (!isOver) {
            const ZRLocaleInformation<ZRBasicString>& record = LocaleInformationWide();
            const bool isGerman = record.decimalSeparator == u",";
            torn += isGerman == (record.dayNames[1] == u"Montag") ? 0 : 1;
        }
    };
    std::thread first(read);
    std::thread second(read);
    while (started < 2) {
        std::this_thread::yield();
    }
    for (int i = 0; i < 2000; ++i) {
        zr::SetLocaleInformation(i % 2 == 0 ? "de" : "en");
    }
    isOver = true;
    first.join();
    second.join();
    EXPECT_EQ(torn, 0);
}

// Every language file of the repository has its conventions, and the other way round.
TEST(LanguageLocale, KnowsTheLanguagesThatHaveAFile)
{
    std::set<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(ZR_RESOURCES "/language")) {
        files.insert(entry.path().stem().string());
    }
    std::set<std::string> known;
    for (const zr::LanguageLocale& locale : zr::LanguageLocales()) {
        known.emplace(locale.language);
    }
    EXPECT_EQ(known, files);
}

}  // namespace
