#include "logger/LoggerWindow.h"

#include "platform/Registry.h"
#include "siblings/support/ZRKestrixSetup.h"
#include "support/Environment.h"
#include "support/ManualClock.h"
#include "support/TempFolder.h"
#ifdef _WIN32
#include "unit/platform/RegistryRedirection.h"
#endif

#include <gtest/gtest.h>
#include <chrono>
#include <limits>
#include <optional>
#include <vector>

namespace zr::logger {
namespace {

constexpr int kMonday = 2;

ZRDateTime Date(int day, int month, int year, int hour = 0, int minute = 0, int second = 0)
{
    ZRDateTime date;
    date.SetDateTime(year, month, day, hour, minute, second, 0, 0);
    return date;
}

constexpr ZRDateTimeSpan kEveryRecord(0, 0);
constexpr ZRDateTimeSpan kHalfAnHour(1800, 0);
constexpr ZRDateTimeSpan kOneDay(86400, 0);

class LoggerWindowTest : public testing::Test, protected LoggerWindow::Host {
protected:
    LoggerWindowTest()
    {
        setup.registryKey = u"Software\\Kestrix-LoggerWindowTest";
        SetNow(Date(18, 12, 2002, 14, 30));
    }

    // Turns the clock until the local time is that date, whatever the zone of the machine.
    void SetNow(const ZRDateTime& local)
    {
        using std::chrono::seconds;
        const std::chrono::system_clock::time_point zero = std::chrono::sys_days(std::chrono::January / 1 / 2000);
        auto utc = zero + seconds(local.seconds) + std::chrono::microseconds(local.microseconds);
        clock.SetUtc(utc);
        utc += seconds((local - ZRDateTime::LTC()).seconds);
        clock.SetUtc(utc);
        ASSERT_EQ(ZRDateTime::LTC(), local);
    }

    void Show(const ZRDateTime& date, int groupBy, const ZRDateTimeSpan& period = kHalfAnHour)
    {
        window.SetupData(date, groupBy, period, false);
        loads.clear();
    }

    void ExpectWindow(const ZRDateTime& from, const ZRDateTime& to)
    {
        EXPECT_EQ(window.dateFrom, from);
        EXPECT_EQ(window.dateTo, to);
    }

    ZRBasicString Stored(const wchar* name) const
    {
        HKEY key = nullptr;
        if (RegOpenKeyExW(HKEY_CURRENT_USER, setup.registryKey.CStr(), 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) {
            return u"(no key)";
        }
        std::uint32_t type = 0;
        std::array<std::uint8_t, 64> bytes{};
        std::uint32_t size = bytes.size();
        const auto result = RegQueryValueExW(key, name, nullptr, &type, bytes.data(), &size);
        RegCloseKey(key);
        if (result != ERROR_SUCCESS || type != REG_SZ) {
            return u"(no text)";
        }
        ZRBasicString text;
        for (std::uint32_t i = 0; i + 1 < size; i += 2) {
            text += static_cast<wchar>(bytes[i] + 256 * bytes[i + 1]);
        }
        return text;  // with its terminating zero
    }

    static ZRBasicString WithZero(ZRBasicString text) { return text += wchar{0}; }

    // The host.
    void Load(bool select) override
    {
        loads.push_back(select);
        periodsLoaded.push_back(window.samplePeriod);
    }
    ZRDateTimeSpan GetSamplePeriodIfAutomatic(unsigned groupBy) override
    {
        asked.push_back(groupBy);
        return automatic;
    }
    void ShowMessage(unsigned text) override { messages.push_back(text); }
    bool ChooseDate(const COleDateTime& date, ZRDateTime& chosen) override
    {
        offered = date;
        chosen = choice.value_or(ZRDateTime());
        return isChosen;
    }

    std::vector<bool> loads;
    std::vector<ZRDateTimeSpan> periodsLoaded;
    std::vector<unsigned> asked;
    std::vector<unsigned> messages;
    ZRDateTimeSpan automatic = kEveryRecord;
    COleDateTime offered;
    std::optional<ZRDateTime> choice;
    bool isChosen = true;

    zr::test::TempFolder folder;
    zr::test::Environment config{"XDG_CONFIG_HOME", folder.Path().string()};
#ifdef _WIN32
    zr::test::RegistryRedirection registry;
#endif
    zr::test::ManualClock clock;
    ZRKestrixSetup setup;
    LoggerWindow window{*this, kMonday};
};

TEST_F(LoggerWindowTest, StartsWithThePresentWeekAtHalfAnHourAndLoadsNothing)
{
    window.Setup();
    EXPECT_EQ(window.groupBy, kGroupByWeek);
    EXPECT_EQ(window.dateTo, ZRDateTime::LTC());
    EXPECT_EQ(window.samplePeriod, kHalfAnHour);
    EXPECT_FALSE(window.dateFrom.IsValid());
    EXPECT_TRUE(loads.empty());
    window.SetupData(window.dateTo, window.groupBy, window.samplePeriod, true);
    ExpectWindow(Date(16, 12, 2002), Date(23, 12, 2002));
    EXPECT_EQ(loads, std::vector{true});
}

TEST_F(LoggerWindowTest, ADateOnABoundaryGivesTheUnitThatEndsThere)
{
    SetNow(Date(1, 6, 2003));
    Show(Date(1, 1, 2003), kGroupByMonth);
    ExpectWindow(Date(1, 12, 2002), Date(1, 1, 2003));
}

TEST_F(LoggerWindowTest, ADateInsideAUnitGivesThatUnit)
{
    SetNow(Date(1, 6, 2003));
    Show(Date(1, 1, 2003, 0, 0, 1), kGroupByMonth);
    ExpectWindow(Date(1, 1, 2003), Date(1, 2, 2003));
}

TEST_F(LoggerWindowTest, AnotherUnitKeepsTheEndOfTheWindowAsTheDate)
{
    SetNow(Date(1, 6, 2003));
    Show(Date(1, 1, 2003), kGroupByMonth);
    window.OnGroupByMenuItem(kGroupByWeek);
    ExpectWindow(Date(30, 12, 2002), Date(6, 1, 2003));
    EXPECT_EQ(window.groupBy, kGroupByWeek);
    EXPECT_EQ(loads, std::vector{true});
}

TEST_F(LoggerWindowTest, ADateInALaterUnitGivesThePresentOne)
{
    Show(Date(15, 3, 2003), kGroupByMonth);
    ExpectWindow(Date(1, 12, 2002), Date(1, 1, 2003));
    Show(Date(15, 3, 2133), kGroupByDay);
    ExpectWindow(Date(18, 12, 2002), Date(19, 12, 2002));
}

TEST_F(LoggerWindowTest, ADateLaterThanNowInThePresentUnitGivesThePresentUnit)
{
    Show(Date(30, 12, 2002, 8), kGroupByMonth);
    ExpectWindow(Date(1, 12, 2002), Date(1, 1, 2003));
}

TEST_F(LoggerWindowTest, ADateInALaterUnitGivesTheUnitBeforeWhenNowIsABoundary)
{
    SetNow(Date(1, 12, 2002));
    Show(Date(15, 3, 2003), kGroupByMonth);
    ExpectWindow(Date(1, 11, 2002), Date(1, 12, 2002));
}

TEST_F(LoggerWindowTest, AUnitThatBeginsExactlyNowIsThePresentOne)
{
    SetNow(Date(1, 12, 2002));
    Show(Date(15, 12, 2002), kGroupByMonth);
    ExpectWindow(Date(1, 12, 2002), Date(1, 1, 2003));
}

TEST_F(LoggerWindowTest, NoDateGivesThePresentUnit)
{
    Show(ZRDateTime(), kGroupByMonth);
    ExpectWindow(Date(1, 12, 2002), Date(1, 1, 2003));
}

TEST_F(LoggerWindowTest, TheSameOnceMoreDoesNothingUnlessForced)
{
    Show(Date(1, 12, 2002), kGroupByMonth);
    window.SetupData(window.dateTo, kGroupByMonth, kHalfAnHour, false);
    EXPECT_TRUE(loads.empty());
    window.SetupData(window.dateTo, kGroupByMonth, kHalfAnHour, true);
    EXPECT_EQ(loads, std::vector{true});
    ExpectWindow(Date(1, 11, 2002), Date(1, 12, 2002));
}

TEST_F(LoggerWindowTest, ANewPeriodAloneOnlyGroupsAnew)
{
    Show(Date(1, 12, 2002), kGroupByMonth);
    window.SetupData(window.dateTo, kGroupByMonth, kOneDay, false);
    EXPECT_EQ(loads, std::vector{false});
    EXPECT_EQ(window.samplePeriod, kOneDay);
    ExpectWindow(Date(1, 11, 2002), Date(1, 12, 2002));
}

TEST_F(LoggerWindowTest, ANewUnitOrDateSelectsAnew)
{
    Show(Date(1, 12, 2002), kGroupByMonth);
    window.SetupData(window.dateTo, kGroupByWeek, kHalfAnHour, false);
    window.SetupData(Date(2, 10, 2002), kGroupByWeek, kHalfAnHour, false);
    EXPECT_EQ(loads, (std::vector{true, true}));
}

TEST_F(LoggerWindowTest, PreviousMovesBackByOneUnit)
{
    Show(Date(15, 2, 2002), kGroupByQuarter);
    ExpectWindow(Date(1, 1, 2002), Date(1, 4, 2002));
    window.OnPrevious();
    ExpectWindow(Date(1, 10, 2001), Date(1, 1, 2002));
    EXPECT_EQ(loads, std::vector{true});
    EXPECT_EQ(window.samplePeriod, kHalfAnHour);
}

TEST_F(LoggerWindowTest, NextMovesForwardByOneUnit)
{
    Show(Date(15, 2, 2002), kGroupByQuarter);
    window.OnNext();
    ExpectWindow(Date(1, 4, 2002), Date(1, 7, 2002));
    Show(Date(15, 2, 2002), kGroupByWeek);
    ExpectWindow(Date(11, 2, 2002), Date(18, 2, 2002));
    window.OnNext();
    ExpectWindow(Date(18, 2, 2002), Date(25, 2, 2002));
}

TEST_F(LoggerWindowTest, NextFromADateInsideAUnitShowsTheUnitAfterIt)
{
    window.groupBy = kGroupByMonth;
    window.dateTo = Date(15, 2, 2002);
    window.samplePeriod = kHalfAnHour;
    window.OnNext();
    // Meant: the start of February, then one on, and the unit that ends there, since the date was no boundary.
    ExpectWindow(Date(1, 3, 2002), Date(1, 4, 2002));
}

TEST_F(LoggerWindowTest, PreviousStopsAtTheFirstDate)
{
    Show(Date(5, 1, 2000), kGroupByMonth);
    ExpectWindow(Date(1, 1, 2000), Date(1, 2, 2000));
    window.OnPrevious();
    ExpectWindow(Date(1, 1, 2000), Date(1, 2, 2000));
    choice = Date(1, 1, 2000);
    Show(Date(5, 1, 2000), kGroupByWeek);
    window.OnGoTo();  // to a week that began before
    ExpectWindow(Date(3, 1, 2000), Date(10, 1, 2000));
    EXPECT_TRUE(loads.empty());
}

TEST_F(LoggerWindowTest, NextIsOffWhileTheWindowHoldsThePresent)
{
    Show(Date(18, 12, 2002, 1), kGroupByWeek);
    EXPECT_FALSE(window.UpdateNext());
    window.OnPrevious();
    EXPECT_TRUE(window.UpdateNext());
}

TEST_F(LoggerWindowTest, NextIsOffWhenTheWindowEndsExactlyNow)
{
    Show(Date(17, 12, 2002, 1), kGroupByDay);
    SetNow(Date(18, 12, 2002));
    EXPECT_EQ(window.dateTo, ZRDateTime::LTC());
    EXPECT_FALSE(window.UpdateNext());
    SetNow(Date(18, 12, 2002, 0, 0, 1));
    EXPECT_TRUE(window.UpdateNext());
}

TEST_F(LoggerWindowTest, GoToOffersOneUnitBeforeTheEnd)
{
    Show(Date(15, 2, 2002), kGroupByMonth);
    isChosen = false;
    window.OnGoTo();
    EXPECT_EQ(ZRDateTime(offered), Date(1, 2, 2002));
}

TEST_F(LoggerWindowTest, GoToBeforeAnyLoadOffersOneUnitBeforeNow)
{
    window.Setup();
    isChosen = false;
    window.OnGoTo();
    EXPECT_EQ(ZRDateTime(offered), Date(11, 12, 2002, 14, 30));
}

TEST_F(LoggerWindowTest, GoToShowsTheUnitThatHoldsTheChosenDate)
{
    Show(Date(15, 2, 2002), kGroupByMonth);
    choice = Date(20, 8, 2001);
    window.OnGoTo();
    ExpectWindow(Date(1, 8, 2001), Date(1, 9, 2001));
    Show(Date(15, 2, 2002), kGroupByWeek);
    choice = Date(18, 2, 2002);  // a Monday
    window.OnGoTo();
    ExpectWindow(Date(18, 2, 2002), Date(25, 2, 2002));
    Show(Date(15, 2, 2002), kGroupByDay);
    choice = Date(31, 12, 2001);
    window.OnGoTo();
    ExpectWindow(Date(31, 12, 2001), Date(1, 1, 2002));
}

TEST_F(LoggerWindowTest, GoToWithoutOkOrWithoutADateDoesNothing)
{
    Show(Date(15, 2, 2002), kGroupByMonth);
    window.OnGoTo();  // OK with no date
    choice = Date(20, 8, 2001);
    isChosen = false;
    window.OnGoTo();
    EXPECT_TRUE(loads.empty());
    EXPECT_TRUE(messages.empty());
    ExpectWindow(Date(1, 2, 2002), Date(1, 3, 2002));
}

TEST_F(LoggerWindowTest, AutomaticShowsARealPeriodAndStaysAutomatic)
{
    Show(Date(15, 2, 2002), kGroupByMonth);
    automatic = kOneDay;
    window.OnPeriodMenuItem(31820);
    EXPECT_EQ(asked, std::vector<unsigned>{kGroupByMonth});
    EXPECT_EQ(periodsLoaded.back(), kOneDay);
    EXPECT_EQ(window.samplePeriod, AutomaticPeriod());
    EXPECT_EQ(loads, std::vector{false});
    window.OnPrevious();
    window.OnNext();
    choice = Date(1, 5, 2001);
    window.OnGoTo();
    EXPECT_EQ(asked.size(), 4u);
    EXPECT_EQ(periodsLoaded.back(), kOneDay);
    EXPECT_EQ(window.samplePeriod, AutomaticPeriod());
}

TEST_F(LoggerWindowTest, AutomaticTakesAnyUnitWithoutAMessage)
{
    Show(Date(15, 2, 2002), kGroupByYear);
    window.samplePeriod = AutomaticPeriod();
    automatic = ZRDateTimeSpan(2678400, 0);
    for (const GroupUnit& unit : kGroupUnits) {
        window.OnGroupByMenuItem(static_cast<unsigned>(unit.id));
        EXPECT_EQ(window.groupBy, unit.id);
        EXPECT_EQ(asked.back(), static_cast<unsigned>(unit.id));
        EXPECT_EQ(window.samplePeriod, AutomaticPeriod());
    }
    EXPECT_TRUE(messages.empty());
}

TEST_F(LoggerWindowTest, AutomaticIsToldByTheSignAlone)
{
    Show(Date(15, 2, 2002), kGroupByMonth);
    window.samplePeriod = ZRDateTimeSpan(-1, 0);
    window.OnPrevious();
    EXPECT_EQ(periodsLoaded.back(), automatic);
    EXPECT_EQ(window.samplePeriod, ZRDateTimeSpan(-90061, 0));
}

TEST_F(LoggerWindowTest, AReloadAtTheAutomaticPeriodIsForced)
{
    Show(Date(15, 2, 2002), kGroupByMonth);
    window.samplePeriod = AutomaticPeriod();
    window.SetupDataAtPeriod(window.dateTo, window.groupBy, true);
    EXPECT_EQ(loads, std::vector{true});
    EXPECT_EQ(window.samplePeriod, AutomaticPeriod());
}

TEST_F(LoggerWindowTest, ARefusedUnitChangesTheRegistryOnly)
{
    Show(Date(18, 2, 2002), kGroupByWeek, kOneDay);
    window.OnGroupByMenuItem(kGroupByDay);
    EXPECT_EQ(messages, std::vector<unsigned>{513});
    EXPECT_EQ(window.groupBy, kGroupByWeek);
    EXPECT_EQ(window.samplePeriod, kOneDay);
    ExpectWindow(Date(11, 2, 2002), Date(18, 2, 2002));
    EXPECT_TRUE(loads.empty());
    EXPECT_EQ(Stored(u"LastLoggerGroup"), WithZero(u"DAY"));
}

TEST_F(LoggerWindowTest, ARefusedPeriodChangesTheRegistryOnly)
{
    Show(Date(18, 2, 2002), kGroupByWeek);
    window.OnPeriodMenuItem(31829);
    EXPECT_EQ(messages, std::vector<unsigned>{513});
    EXPECT_EQ(window.samplePeriod, kHalfAnHour);
    EXPECT_TRUE(loads.empty());
    EXPECT_EQ(Stored(u"LastLoggerPeriod"), WithZero(u"44640"));
}

TEST_F(LoggerWindowTest, EveryUnitAndPeriodHasItsText)
{
    Show(Date(15, 2, 2002), kGroupByYear);
    const std::vector<const wchar*> units = {u"DAY", u"WEEK", u"MONTH", u"3MONTH", u"YEAR"};
    for (unsigned i = 0; i < units.size(); ++i) {
        window.OnGroupByMenuItem(31895 + i);
        EXPECT_EQ(Stored(u"LastLoggerGroup"), WithZero(units[i]));
    }
    const std::vector<const wchar*> periods = {u"AUTO", u"FILE", u"5",  u"10",   u"15",
                                               u"20",   u"30",   u"60", u"1440", u"44640"};
    for (unsigned i = 0; i < periods.size(); ++i) {
        window.OnPeriodMenuItem(31820 + i);
        EXPECT_EQ(Stored(u"LastLoggerPeriod"), WithZero(periods[i]));
    }
    EXPECT_TRUE(messages.empty());
}

TEST_F(LoggerWindowTest, OtherCommandsDoNothing)
{
    Show(Date(15, 2, 2002), kGroupByYear);
    for (const unsigned id : {0u, 31819u, 31830u, 31894u, 31900u, 0xFFFFFFFFu}) {
        window.OnPeriodMenuItem(id);
        window.OnGroupByMenuItem(id);
    }
    EXPECT_TRUE(loads.empty());
    EXPECT_EQ(window.samplePeriod, kHalfAnHour);
    EXPECT_EQ(Stored(u"LastLoggerPeriod"), u"(no key)");
}

TEST_F(LoggerWindowTest, AKeyThatCantBeOpenedIsIgnored)
{
    Show(Date(15, 2, 2002), kGroupByYear);
    setup.registryKey = ZRBasicString(std::u16string(300, u'x'));  // longer than a key's name may be
    HKEY key = nullptr;
    ASSERT_NE(RegCreateKeyExW(HKEY_CURRENT_USER, setup.registryKey.CStr(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                              nullptr),
              ERROR_SUCCESS);
    window.OnPeriodMenuItem(31827);
    EXPECT_EQ(window.samplePeriod, ZRDateTimeSpan(3600, 0));
    window.OnGroupByMenuItem(kGroupByMonth);
    EXPECT_EQ(window.groupBy, kGroupByMonth);
}

}  // namespace
}  // namespace zr::logger
