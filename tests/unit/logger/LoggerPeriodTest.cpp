#include "logger/LoggerPeriod.h"

#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <vector>

namespace zr::logger {
namespace {

constexpr int kSunday = 1;
constexpr int kMonday = 2;
constexpr int kSaturday = 7;

ZRDateTime Date(int day, int month, int year, int hour = 0, int minute = 0, int second = 0, int micros = 0)
{
    ZRDateTime date;
    date.SetDateTime(year, month, day, hour, minute, second, 0, micros);
    return date;
}

ZRDateTime Adjust(const ZRDateTime& date, int groupBy, int firstDayOfWeek = kMonday)
{
    return AdjustToGroupBy(date, groupBy, firstDayOfWeek);
}

ZRDateTime Add(const ZRDateTime& date, int groupBy)
{
    return AddGroupByUnit(date, groupBy, kMonday);
}

TEST(AdjustToGroupBy, ADayStartsAtMidnight)
{
    EXPECT_EQ(Adjust(Date(18, 12, 2002, 14, 30, 7, 5), kGroupByDay), Date(18, 12, 2002));
    EXPECT_EQ(Adjust(Date(18, 12, 2002), kGroupByDay), Date(18, 12, 2002));
}

TEST(AdjustToGroupBy, AWednesdayByWeekIsTheMondayBefore)
{
    EXPECT_EQ(Adjust(Date(18, 12, 2002, 14, 30), kGroupByWeek), Date(16, 12, 2002));
}

TEST(AdjustToGroupBy, AMondayAtMidnightByWeekIsThatInstant)
{
    EXPECT_EQ(Adjust(Date(16, 12, 2002), kGroupByWeek), Date(16, 12, 2002));
}

TEST(AdjustToGroupBy, AWeekStartsOnTheFirstDayOfTheLocale)
{
    EXPECT_EQ(Adjust(Date(18, 12, 2002, 14, 30), kGroupByWeek, kSunday), Date(15, 12, 2002));
    EXPECT_EQ(Adjust(Date(18, 12, 2002, 14, 30), kGroupByWeek, kSaturday), Date(14, 12, 2002));
    EXPECT_EQ(Adjust(Date(22, 12, 2002), kGroupByWeek), Date(16, 12, 2002));  // a Sunday ends a week
}

TEST(AdjustToGroupBy, MonthQuarterAndYearStartOnTheirFirstDay)
{
    EXPECT_EQ(Adjust(Date(18, 12, 2002, 14, 30), kGroupByMonth), Date(1, 12, 2002));
    EXPECT_EQ(Adjust(Date(18, 12, 2002, 14, 30), kGroupByQuarter), Date(1, 10, 2002));
    EXPECT_EQ(Adjust(Date(31, 3, 2002), kGroupByQuarter), Date(1, 1, 2002));
    EXPECT_EQ(Adjust(Date(1, 4, 2002), kGroupByQuarter), Date(1, 4, 2002));
    EXPECT_EQ(Adjust(Date(18, 12, 2002, 14, 30), kGroupByYear), Date(1, 1, 2002));
}

TEST(AdjustToGroupBy, TheMicrosecondsAreCutToo)
{
    const ZRDateTime date(Date(1, 12, 2002).seconds, 1);
    EXPECT_EQ(Adjust(date, kGroupByMonth), Date(1, 12, 2002));
    EXPECT_EQ(Adjust(date, kGroupByDay), Date(1, 12, 2002));
}

TEST(AdjustToGroupBy, ForNoUnitTheDateStaysWithItsTimeOfDay)
{
    const ZRDateTime date = Date(18, 12, 2002, 14, 30, 7, 5);
    EXPECT_EQ(Adjust(date, 0), date);
    EXPECT_EQ(Adjust(date, -kGroupByDay), date);
    EXPECT_EQ(Adjust(date, 31900), date);
}

TEST(AdjustToGroupBy, WithoutADateThereIsNone)
{
    EXPECT_FALSE(Adjust(ZRDateTime(), kGroupByMonth).IsValid());
    EXPECT_FALSE(Adjust(Date(1, 1, 2000), kGroupByWeek).IsValid());  // that week began in 1999
}

TEST(AddGroupByUnit, FromInsideAUnitItOnlyReachesItsStart)
{
    EXPECT_EQ(Add(Date(15, 12, 2002), kGroupByMonth), Date(1, 12, 2002));
    EXPECT_EQ(Add(Date(15, 12, 2002), -kGroupByMonth), Date(1, 12, 2002));
    EXPECT_EQ(Add(Date(15, 12, 2002, 1), kGroupByDay), Date(15, 12, 2002));
    EXPECT_EQ(Add(Date(2, 1, 2002), kGroupByYear), Date(1, 1, 2002));
}

TEST(AddGroupByUnit, AMonthWrapsAtTheYear)
{
    EXPECT_EQ(Add(Date(1, 12, 2002), kGroupByMonth), Date(1, 1, 2003));
    EXPECT_EQ(Add(Date(1, 1, 2003), -kGroupByMonth), Date(1, 12, 2002));
    EXPECT_EQ(Add(Date(1, 2, 2003), kGroupByMonth), Date(1, 3, 2003));
}

TEST(AddGroupByUnit, AQuarterWrapsAtTheYear)
{
    EXPECT_EQ(Add(Date(1, 10, 2002), kGroupByQuarter), Date(1, 1, 2003));
    EXPECT_EQ(Add(Date(1, 1, 2003), -kGroupByQuarter), Date(1, 10, 2002));
    EXPECT_EQ(Add(Date(1, 4, 2003), kGroupByQuarter), Date(1, 7, 2003));
}

TEST(AddGroupByUnit, DayWeekAndYearMoveByOne)
{
    EXPECT_EQ(Add(Date(28, 2, 2004), kGroupByDay), Date(29, 2, 2004));
    EXPECT_EQ(Add(Date(1, 3, 2004), -kGroupByDay), Date(29, 2, 2004));
    EXPECT_EQ(Add(Date(30, 12, 2002), kGroupByWeek), Date(6, 1, 2003));
    EXPECT_EQ(Add(Date(30, 12, 2002), -kGroupByWeek), Date(23, 12, 2002));
    EXPECT_EQ(Add(Date(1, 1, 2003), kGroupByYear), Date(1, 1, 2004));
    EXPECT_EQ(Add(Date(1, 1, 2003), -kGroupByYear), Date(1, 1, 2002));
}

TEST(AddGroupByUnit, ForNoUnitTheDateStays)
{
    const ZRDateTime date = Date(18, 12, 2002, 14, 30);
    EXPECT_EQ(Add(date, 0), date);
    EXPECT_EQ(Add(date, 5), date);
    EXPECT_EQ(Add(date, std::numeric_limits<int>::min()), date);
}

TEST(AddGroupByUnit, BeyondTheFirstAndTheLastDateThereIsNone)
{
    EXPECT_FALSE(Add(Date(1, 1, 2000), -kGroupByDay).IsValid());
    EXPECT_FALSE(Add(Date(1, 1, 2000), -kGroupByQuarter).IsValid());
    EXPECT_FALSE(Add(Date(1, 1, 2136), kGroupByYear).IsValid());
    EXPECT_FALSE(Add(ZRDateTime(), kGroupByMonth).IsValid());
}

TEST(AdjustToGoTo, ADayKeepsTheTimeOfDay)
{
    EXPECT_EQ(AdjustToGoTo(Date(15, 2, 2002, 14, 30), kGroupByDay), Date(16, 2, 2002, 14, 30));
    EXPECT_EQ(AdjustToGoTo(Date(15, 2, 2002, 14, 30), -kGroupByDay), Date(14, 2, 2002, 14, 30));
    EXPECT_EQ(AdjustToGoTo(Date(15, 2, 2002, 14, 30), kGroupByWeek), Date(22, 2, 2002, 14, 30));
    EXPECT_EQ(AdjustToGoTo(Date(15, 2, 2002, 14, 30), -kGroupByWeek), Date(8, 2, 2002, 14, 30));
}

TEST(AdjustToGoTo, AMonthGivesDayOneOfTheNext)
{
    EXPECT_EQ(AdjustToGoTo(Date(15, 2, 2002, 14, 30), kGroupByMonth), Date(1, 3, 2002));
    EXPECT_EQ(AdjustToGoTo(Date(15, 1, 2002), -kGroupByMonth), Date(1, 12, 2001));
    EXPECT_EQ(AdjustToGoTo(Date(31, 12, 2002), kGroupByMonth), Date(1, 1, 2003));
}

TEST(AdjustToGoTo, AQuarterCountsThreeMonthsFromAnyMonth)
{
    EXPECT_EQ(AdjustToGoTo(Date(15, 2, 2002), -kGroupByQuarter), Date(1, 11, 2001));
    EXPECT_EQ(AdjustToGoTo(Date(15, 11, 2002), kGroupByQuarter), Date(1, 2, 2003));
}

TEST(AdjustToGoTo, AYearGivesNewYearsDay)
{
    EXPECT_EQ(AdjustToGoTo(Date(15, 2, 2002, 14, 30), kGroupByYear), Date(1, 1, 2003));
    EXPECT_EQ(AdjustToGoTo(Date(15, 2, 2002, 14, 30), -kGroupByYear), Date(1, 1, 2001));
}

TEST(AdjustToGoTo, ForNoUnitTheDateStays)
{
    EXPECT_EQ(AdjustToGoTo(Date(15, 2, 2002, 14, 30), 0), Date(15, 2, 2002, 14, 30));
}

TEST(BadCombination, APeriodMustFitSeveralTimesIntoTheUnit)
{
    EXPECT_TRUE(IsBadCombination(kGroupByDay, 86400));
    EXPECT_FALSE(IsBadCombination(kGroupByDay, 86399));
    EXPECT_FALSE(IsBadCombination(kGroupByDay, 3600));
    EXPECT_FALSE(IsBadCombination(kGroupByWeek, 86400));
    EXPECT_TRUE(IsBadCombination(kGroupByWeek, 2678400));
    EXPECT_FALSE(IsBadCombination(kGroupByWeek, 2678399));
    EXPECT_TRUE(IsBadCombination(kGroupByMonth, 2678400));
    EXPECT_FALSE(IsBadCombination(kGroupByMonth, 86400));
    EXPECT_FALSE(IsBadCombination(kGroupByQuarter, 2678400));
    EXPECT_FALSE(IsBadCombination(kGroupByYear, 2678400));
    EXPECT_FALSE(IsBadCombination(0, 2678400));
}

TEST(BadCombination, EveryRecordPassesWithEveryUnit)
{
    for (const GroupUnit& unit : kGroupUnits) {
        EXPECT_FALSE(IsBadCombination(static_cast<unsigned>(unit.id), 0));
    }
}

TEST(LoggerPeriods, EntriesHaveTheirSpans)
{
    const std::vector<int> seconds = {-90061, 0, 300, 600, 900, 1200, 1800, 3600, 86400, 2678400};
    for (unsigned i = 0; i < seconds.size(); ++i) {
        ASSERT_NE(FindPeriod(31820 + i), nullptr);
        EXPECT_EQ(SpanOf(*FindPeriod(31820 + i)), ZRDateTimeSpan(seconds[i], 0));
    }
    EXPECT_EQ(FindPeriod(31819), nullptr);
    EXPECT_EQ(FindPeriod(31830), nullptr);
    EXPECT_TRUE(IsAutomatic(AutomaticPeriod()));
}

TEST(LoggerPeriods, APeriodTicksItsEntryAndAllElseTheAutomaticOne)
{
    for (const PeriodEntry& entry : kPeriods) {
        EXPECT_EQ(PeriodMenuId(SpanOf(entry)), entry.id);
    }
    EXPECT_EQ(PeriodMenuId(ZRDateTimeSpan(-1, 0)), kPeriodAutomatic);
    EXPECT_EQ(PeriodMenuId(ZRDateTimeSpan(301, 0)), kPeriodAutomatic);
    EXPECT_EQ(PeriodMenuId(ZRDateTimeSpan(7200, 0)), kPeriodAutomatic);
}

class Meter final : public ZRDeviceDriver {
public:
    Meter()
    {
        std::vector<VariableDescription> variables(3);
        variables[0].name = u"E1";
        variables[0].variableClass = VariableClass::Counter;
        variables[1].name = u"E2";
        variables[1].variableClass = VariableClass::Counter;
        variables[2].name = u"U";
        SetVariables(std::make_shared<VariableTable>(variables));
        SetName(u"M");
    }
};

class GetSamplePeriodIfAutomaticTest : public testing::Test {
protected:
    static std::vector<int> SecondsFor(const std::vector<const wchar*>& names)
    {
        ZRLoggerInfo info;
        for (const wchar* name : names) {
            info.AddVariable(name);
        }
        std::vector<int> seconds;
        for (const GroupUnit& unit : kGroupUnits) {
            seconds.push_back(GetSamplePeriodIfAutomatic(static_cast<unsigned>(unit.id), info).seconds);
        }
        EXPECT_EQ(GetSamplePeriodIfAutomatic(0, info), ZRDateTimeSpan());
        EXPECT_TRUE(info.variables.empty() || !info.variables.front()->IsLocked());
        return seconds;
    }

    const std::vector<int> kFine = {0, 1800, 3600, 3600, 86400};
    const std::vector<int> kCoarse = {3600, 86400, 86400, 2678400, 2678400};
    Meter meter;
};

TEST_F(GetSamplePeriodIfAutomaticTest, IsFineWhenAVariableIsNoCounter)
{
    EXPECT_EQ(SecondsFor({u"M.U"}), kFine);
    EXPECT_EQ(SecondsFor({u"M.E1", u"M.GONE", u"M.U", u"M.E2"}), kFine);
}

TEST_F(GetSamplePeriodIfAutomaticTest, IsCoarseWhenAllAreCounters)
{
    EXPECT_EQ(SecondsFor({u"M.E1", u"M.E2"}), kCoarse);
}

TEST_F(GetSamplePeriodIfAutomaticTest, AVariableThatCantBeDescribedDoesntCount)
{
    EXPECT_EQ(SecondsFor({u"M.GONE", u"OTHER.U"}), kCoarse);
}

TEST_F(GetSamplePeriodIfAutomaticTest, IsCoarseForAnEmptyList)
{
    EXPECT_EQ(SecondsFor({}), kCoarse);
}

}  // namespace
}  // namespace zr::logger
