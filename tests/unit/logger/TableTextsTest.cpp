#include "logger/TableTexts.h"

#include "unit/logger/LoggedFixture.h"

#include <array>
#include <limits>

namespace zr::logger {
namespace {

class TableTextsTest : public LoggedFixture {
protected:
    static std::string Caption(const ZRDateTime& from, const ZRDateTime& to, int groupBy)
    {
        return Narrow(TableCaption(from, to, groupBy));
    }

    static std::string Cell(const ValueColumn& column, double value, bool valid = true)
    {
        std::array<LoggedValue, 1> values = {{{static_cast<std::uint8_t>(valid ? 1 : 0), value}}};
        LoggedRecord record;
        record.values = values.data();
        ZRBasicString text = u"of the cell before";
        const bool hasValue = column.Text(record, text);
        EXPECT_EQ(hasValue, !text.IsEmpty());
        return Narrow(text);
    }

    static std::string Time(const ZRDateTime& time, int groupBy)
    {
        ZRBasicString text;
        return Narrow(FormatTableViewerTime(text, time, groupBy));
    }
};

TEST_F(TableTextsTest, CaptionOfADayIsItsDate)
{
    EXPECT_EQ(Caption(Date(30, 12, 2002), Date(31, 12, 2002), kGroupByDay), "Monday 30 December 2002");
}

TEST_F(TableTextsTest, CaptionOfAWeekHasItsNumberAndItsDays)
{
    EXPECT_EQ(Caption(Date(30, 12, 2002), Date(6, 1, 2003), kGroupByWeek),
              "Week 1: 30 December 2002 to 5 January 2003");
    EXPECT_EQ(Caption(Date(23, 12, 2002), Date(30, 12, 2002), kGroupByWeek),
              "Week 52: 23 December 2002 to 29 December 2002");
}

TEST_F(TableTextsTest, AWeekIsNumberedAsTheLocaleTells)
{
    constexpr int kIso8601 = 1;
    constexpr int kPlain = 2;
    EXPECT_EQ(WeekNumber(Date(30, 12, 2002), kIso8601), 1);
    EXPECT_EQ(WeekNumber(Date(30, 12, 2002), kPlain), 52);
    EXPECT_EQ(WeekNumber(Date(31, 12, 2002), kPlain), 53);
    EXPECT_EQ(WeekNumber(Date(7, 1, 2002), kPlain), 1);
    EXPECT_EQ(WeekNumber(Date(8, 1, 2002), kPlain), 2);
    EXPECT_EQ(WeekNumber(Date(18, 12, 2002), 0), 1);
    EXPECT_EQ(WeekNumber(Date(18, 12, 2002), 3), 1);
}

TEST_F(TableTextsTest, CaptionOfAMonthIsItsName)
{
    EXPECT_EQ(Caption(Date(1, 12, 2002), Date(1, 1, 2003), kGroupByMonth), "December 2002");
}

TEST_F(TableTextsTest, CaptionOfAQuarterNamesItsFirstAndItsLastMonth)
{
    EXPECT_EQ(Caption(Date(1, 10, 2002), Date(1, 1, 2003), kGroupByQuarter), "October 2002 to December 2002");
}

TEST_F(TableTextsTest, CaptionOfAYearIsItsNumber)
{
    EXPECT_EQ(Caption(Date(1, 1, 2002), Date(1, 1, 2003), kGroupByYear), "Year 2002");
}

TEST_F(TableTextsTest, CaptionIsEmptyWithoutADateOrAUnit)
{
    EXPECT_EQ(Caption(ZRDateTime(), ZRDateTime(), kGroupByDay), "");
    EXPECT_EQ(Caption(Date(1, 1, 2002), ZRDateTime(), kGroupByDay), "");
    EXPECT_EQ(Caption(Date(1, 1, 2002), Date(1, 1, 2003), 0), "");
}

TEST_F(TableTextsTest, CaptionFollowsTheLanguage)
{
    SetLocaleInformation("de");
    ASSERT_TRUE(language.Load(ZR_RESOURCES "/language/de.txt"));
    EXPECT_EQ(Caption(Date(30, 12, 2002), Date(31, 12, 2002), kGroupByDay), "Montag 30 Dezember 2002");
}

TEST_F(TableTextsTest, RowsOfADayShowNoDate)
{
    EXPECT_EQ(Time(Date(30, 12, 2002, 3, 8, 7), kGroupByDay), "03:08:07");
}

TEST_F(TableTextsTest, RowsOfAWeekShowTheDayPadded)
{
    EXPECT_EQ(Time(Date(30, 12, 2002, 23, 58, 7), kGroupByWeek), "   Monday 30 23:58:07");
}

TEST_F(TableTextsTest, RowsOfLongerUnitsShowTheWholeDate)
{
    for (const int unit : {kGroupByMonth, kGroupByQuarter, kGroupByYear, 0}) {
        EXPECT_EQ(Time(Date(5, 2, 2002, 3, 8, 7), unit), "05/02/2002 03:08:07");
    }
}

TEST_F(TableTextsTest, HeaderIsTheTitleWithTheUnitInBrackets)
{
    ZRTableProfile::CVariableProfile variable;
    variable.Title = u"M Energy";
    variable.MeasureUnits = 8;
    variable.UnitsExponent = 3;
    EXPECT_EQ(Narrow(HeaderText(variable)), "M Energy (kWh)");
    variable.MeasureUnits = 0;
    variable.UnitsExponent = 0;
    EXPECT_EQ(Narrow(HeaderText(variable)), "M Energy ()");
}

TEST_F(TableTextsTest, AColumnGivesBack255CharactersUpToTheFirstZero)
{
    EXPECT_EQ(ColumnText(ZRBasicString(std::u16string(10000, u'x'))), ZRBasicString(std::u16string(255, u'x')));
    EXPECT_EQ(ColumnText(ZRBasicString(u"ab\0cd", 5)), ZRBasicString(u"ab"));
}

TEST_F(TableTextsTest, ACellIsScaledToTheDisplayedUnit)
{
    EXPECT_EQ(Cell({0, 0.1, false, 1}, 2301), "230.1");
    EXPECT_EQ(Cell({0, 0.001, false, 2}, 1234567), "1,234.57");
}

TEST_F(TableTextsTest, ACellWithoutAValueIsEmpty)
{
    EXPECT_EQ(Cell({0, 1.0, false, 1}, 5.0, false), "");
    EXPECT_EQ(Cell({-1, 1.0, false, 1}, 5.0), "");
}

TEST_F(TableTextsTest, APowerFactorOfMinusOneShowsAsOne)
{
    const ValueColumn powerFactor = {0, 1.0, true, 3};
    EXPECT_EQ(Cell(powerFactor, -1.0), "1.000");
    EXPECT_EQ(Cell(powerFactor, -0.9951), "1.000");
    EXPECT_EQ(Cell(powerFactor, -0.995), "-0.995");
    EXPECT_EQ(Cell(powerFactor, -0.5), "-0.500");
    EXPECT_EQ(Cell({0, 1.0, false, 3}, -1.0), "-1.000");
}

TEST_F(TableTextsTest, ThePowerFactorIsJudgedInTheDisplayedUnit)
{
    EXPECT_EQ(Cell({0, 0.001, true, 3}, -998), "1.000");
}

TEST_F(TableTextsTest, ScreenFindsAVariableByItsNameAndPaperByItsTitle)
{
    ZRTableProfile profile;
    profile.AddVariable(u"M.E", u"M Energy", 0, 8, 0, 2, 100, 3);
    profile.AddVariable(u"M.U", u"Voltage", 1, 1, -1, 1, 100, 0);  // as it comes back from the settings
    ZRLoggerInfo info = Info({u"M.U", u"M.E", u"M.E"});
    info.Lock();
    const auto byName = FindValueColumns(profile, info, MatchBy::Name);
    const auto byTitle = FindValueColumns(profile, info, MatchBy::Title);
    ASSERT_EQ(byName.size(), 2U);
    EXPECT_EQ(byName[0].position, 1);
    EXPECT_EQ(byName[1].position, 0);
    EXPECT_EQ(byTitle[0].position, 1);
    EXPECT_EQ(byTitle[1].position, -1);
    // The last bit is the system's.
    EXPECT_DOUBLE_EQ(byName[0].factor, 1e-3);
    EXPECT_DOUBLE_EQ(byName[1].factor, 1e-1);
}

TEST_F(TableTextsTest, ABottomlessExponentGivesATextAndNoCrash)
{
    constexpr int kMost = std::numeric_limits<int>::max();
    constexpr int kLeast = std::numeric_limits<int>::min();
    ZRTableProfile profile;
    profile.AddVariable(u"M.U", u"", 0, 1, kMost, kMost, 100, kLeast);
    profile.AddVariable(u"M.U", u"", 1, 1, kLeast, kLeast, 100, kMost);
    const auto columns = FindValueColumns(profile, Info({u"M.U"}), MatchBy::Name);
    EXPECT_EQ(Cell(columns[0], 5.0), "Inf");
    EXPECT_EQ(Cell(columns[1], 5.0), "0");
}

}  // namespace
}  // namespace zr::logger
