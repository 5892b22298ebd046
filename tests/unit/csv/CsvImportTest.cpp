#include "siblings/driversupport/store/CsvImport.h"

#include "siblings/driversupport/store/MemoryLoggerStore.h"
#include "siblings/tools/Progress.h"
#include "unit/csv/StoredSamples.h"
#include "unit/csv/TextSource.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <random>

namespace zr {
namespace {

using test::Stored;
using test::TextSource;
using test::TimedValues;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::int64_t kMicros = 1000000;
constexpr std::int64_t kStart = 1041379200 * kMicros;  // 1 January 2003, UTC
constexpr std::int64_t kMinute = 60 * kMicros;

class CsvImportTest : public testing::Test {
protected:
    CsvImportTest()
    {
        options.dataSet = u"mains";
        options.mappings.push_back(Map("p=M.P"));
    }

    static CsvMapping Map(const std::string& text)
    {
        CsvMapping mapping;
        std::string error;
        EXPECT_TRUE(CsvMapping::Parse(text, mapping, error)) << error;
        return mapping;
    }

    CsvImport::Result Import(const std::string& text, Progress* progress = nullptr)
    {
        TextSource source(text);
        return Import(source, progress);
    }
    CsvImport::Result Import(CsvSource& source, Progress* progress = nullptr)
    {
        CsvImport import(options, store);
        const CsvImport::Result result = import.Run(source, progress);
        figures = import.Figures();
        faults = import.Faults();
        error = import.Error();
        return result;
    }
    void ExpectDone(const std::string& text) { EXPECT_EQ(Import(text), CsvImport::Result::Done) << error; }
    void ExpectFailed(const std::string& text, const std::string& reason)
    {
        EXPECT_EQ(Import(text), CsvImport::Result::Failed);
        EXPECT_THAT(error, HasSubstr(reason));
    }
    LoggerDataSet TheSet()
    {
        std::vector<LoggerDataSet> sets;
        store.OpenReader()->DataSets(sets);
        EXPECT_EQ(sets.size(), 1u);
        return sets.empty() ? LoggerDataSet() : sets.front();
    }
    TimedValues P() { return Stored(store, u"M.P"); }
    // Values of minutes from the start on.
    static TimedValues Minutes(const std::vector<double>& values)
    {
        TimedValues all;
        for (const double value : values) {
            all.emplace_back(kStart + static_cast<std::int64_t>(all.size()) * kMinute, value);
        }
        return all;
    }

    CsvImportOptions options;
    MemoryLoggerStore store;
    CsvImportFigures figures;
    std::vector<std::string> faults;
    std::string error;
};

class ToldProgress final : public Progress {
public:
    void SetText(const wchar* text) override { texts.emplace_back(text); }
    void SetPos(int percent) override { positions.push_back(percent); }
    [[nodiscard]] bool IsCancelled() const override { return isCancelled; }

    std::vector<ZRBasicString> texts;
    std::vector<int> positions;
    bool isCancelled = false;
};

TEST_F(CsvImportTest, EntersTheMappedColumns)
{
    options.mappings.push_back(Map("u=M.U"));
    ExpectDone("time,u,x,p\n2003-01-01T00:00,230,7,1.5\n2003-01-01T00:01,231,7,2.5\n");
    EXPECT_EQ(P(), Minutes({1.5, 2.5}));
    EXPECT_EQ(Stored(store, u"M.U"), Minutes({230, 231}));
    EXPECT_EQ(figures.rows, 2u);
    EXPECT_EQ(figures.values, 4u);
    EXPECT_EQ(figures.first, kStart);
    EXPECT_EQ(figures.last, kStart + kMinute);
    EXPECT_TRUE(faults.empty());
}

TEST_F(CsvImportTest, ScalesByFactorsAndDivisors)
{
    options.mappings = {Map("p=M.P*1000/60")};
    ExpectDone("time,p\n2003-01-01T00:00,4.216\n");
    EXPECT_EQ(P(), Minutes({4.216 * 1000 / 60}));
}

TEST_F(CsvImportTest, OneColumnMayServeSeveralVariables)
{
    options.mappings = {Map("p=M.P"), Map("p=M.Q*2")};
    ExpectDone("time,p\n2003-01-01T00:00,4\n");
    EXPECT_EQ(P(), Minutes({4}));
    EXPECT_EQ(Stored(store, u"M.Q"), Minutes({8}));
}

TEST_F(CsvImportTest, EntersTheDataSetWithTheUsualStep)
{
    ExpectDone("time,p\n2003-01-01T00:00,1\n2003-01-01T00:15,2\n2003-01-01T00:30,3\n2003-01-01T02:00,3\n");
    EXPECT_EQ(TheSet(), (LoggerDataSet{u"mains", 900, 0, {u"M.P"}}));
    EXPECT_EQ(figures.period, 900);
}

TEST_F(CsvImportTest, ADataSetThatIsThereKeepsWhatItSays)
{
    store.OpenSeries(u"M.U", 1);
    ASSERT_TRUE(store.SetDataSet({u"mains", 30, 7, {u"M.U"}}));
    ExpectDone("time,p\n2003-01-01T00:00,1\n");
    EXPECT_EQ(TheSet(), (LoggerDataSet{u"mains", 30, 7, {u"M.U", u"M.P"}}));
}

TEST_F(CsvImportTest, KeepsTheClassOfAVariable)
{
    options.mappings = {Map("p=M.P:counter")};
    ExpectDone("time,p\n2003-01-01T00:00,1\n");
    EXPECT_EQ(store.OpenReader()->InfoCode(u"M.P"), 8);
    options.mappings = {Map("p=M.P")};
    ExpectDone("time,p\n2003-01-01T00:01,1\n");
    EXPECT_EQ(store.OpenReader()->InfoCode(u"M.P"), 8);
    options.mappings = {Map("p=M.P:state")};
    ExpectFailed("time,p\n2003-01-01T00:02,1\n", "M.P is in the store already, with another class");
}

TEST_F(CsvImportTest, LocalTimesAreThoseOfTheZone)
{
    options.zone = TimeZone(7200, {});
    ExpectDone("time,p\n2003-01-01T02:00,1\n2003-01-01T00:01Z,2\n");
    EXPECT_EQ(P(), Minutes({1, 2}));
}

TEST_F(CsvImportTest, BothClockChangesOfAYearKeepEveryRow)
{
    // 31 March 2002 and 27 October 2002, at 01:00 UTC.
    options.zone = TimeZone(3600, {{1017536400, 7200}, {1035680400, 3600}});
    ExpectDone(
        "time,p\n2002-03-31T01:30,1\n2002-03-31T03:00,2\n2002-10-27T02:30,3\n2002-10-27T02:00,4\n2002-10-27T02:30,5\n");
    EXPECT_EQ(P(), (TimedValues{{(1017536400 - 1800) * kMicros, 1},
                                {1017536400 * kMicros, 2},
                                {(1035680400 - 1800) * kMicros, 3},
                                {1035680400 * kMicros, 4},
                                {(1035680400 + 1800) * kMicros, 5}}));
    EXPECT_EQ(figures.unordered, 0u);
}

TEST_F(CsvImportTest, ATimeOfTheSkippedHourIsToldAndLeftOut)
{
    options.zone = TimeZone(3600, {{1017536400, 7200}});
    ExpectDone("time,p\n2002-03-31T02:30,1\n2002-03-31T03:00,2\n");
    EXPECT_EQ(P(), (TimedValues{{1017536400 * kMicros, 2}}));
    EXPECT_THAT(faults,
                ElementsAre("t.csv:2: time: \"2002-03-31T02:30\" doesn't exist: the clock is set forward over it "
                            "in this time zone"));
    EXPECT_EQ(figures.badRows, 1u);
}

TEST_F(CsvImportTest, MissingCellsAndRowsAreNoValues)
{
    options.missing = {"?", "NaN"};
    ExpectDone(
        "time,p\n2003-01-01T00:00,1\n2003-01-01T00:01,\n2003-01-01T00:02, \n2003-01-01T00:03,?\n"
        "2003-01-01T00:04,NaN\n2003-01-01T00:09,2\n");
    EXPECT_EQ(P(), (TimedValues{{kStart, 1}, {kStart + 9 * kMinute, 2}}));
    EXPECT_EQ(figures.missing, 4u);
    EXPECT_TRUE(faults.empty());
}

TEST_F(CsvImportTest, OfDoubledRowsTheLastCountsAndTheyAreCounted)
{
    options.mappings.push_back(Map("u=M.U"));
    ExpectDone("time,p,u\n2003-01-01T00:00,1,5\n2003-01-01T00:00,2,\n2003-01-01T00:00,3,\n2003-01-01T00:01,4,6\n");
    EXPECT_EQ(P(), Minutes({3, 4}));
    EXPECT_EQ(Stored(store, u"M.U"), Minutes({5, 6}));
    EXPECT_EQ(figures.doubled, 2u);
    EXPECT_EQ(figures.values, 4u);
}

TEST_F(CsvImportTest, RowsInAnyOrderAreEnteredAndCounted)
{
    ExpectDone("time,p\n2003-01-01T00:02,3\n2003-01-01T00:00,1\n2003-01-01T00:01,2\n2003-01-01T00:00,9\n");
    EXPECT_EQ(P(), Minutes({9, 2, 3}));
    EXPECT_EQ(figures.unordered, 2u);
    EXPECT_EQ(figures.first, kStart);
    EXPECT_EQ(figures.last, kStart + 2 * kMinute);
}

TEST_F(CsvImportTest, OtherSeparatorsDecimalMarksAndQuotes)
{
    ExpectDone("\xEF\xBB\xBF\"time\";\"p\";\"a;b\"\r\n2003-01-01 00:00:00;\"1,5\";x\r\n2003-01-01 00:01:00;2,5;x\r\n");
    EXPECT_EQ(P(), Minutes({1.5, 2.5}));
    ExpectDone("time\tp\n2003-01-01T00:02\t3,5\n");
    EXPECT_EQ(P(), Minutes({1.5, 2.5, 3.5}));
}

TEST_F(CsvImportTest, TheFormatCanBeGiven)
{
    options.format = {';', ','};
    ExpectDone("time;p\n2003-01-01T00:00;1\n");
    options.format = {';', '.'};
    ExpectDone("time;p\n2003-01-01T00:01;1,5\n");
    EXPECT_THAT(faults, ElementsAre("t.csv:2: p: \"1,5\" is no number"));
}

TEST_F(CsvImportTest, CellsThatAreNoNumberAreToldWithTheirLineAndLeftOut)
{
    ExpectDone("time,p\n2003-01-01T00:00,1\n2003-01-01T00:01,abc\n2003-01-01T00:02,1e999\n2003-01-01T00:03,2\n");
    EXPECT_EQ(P(), (TimedValues{{kStart, 1}, {kStart + 3 * kMinute, 2}}));
    EXPECT_THAT(faults, ElementsAre("t.csv:3: p: \"abc\" is no number", "t.csv:4: p: \"1e999\" is no number"));
    EXPECT_EQ(figures.badCells, 2u);
}

TEST_F(CsvImportTest, OnlyTheFirstTenFaultsAreToldAndAllAreCounted)
{
    std::string text = "time,p\n";
    for (int i = 10; i < 35; ++i) {
        text += "2003-01-01T00:" + std::to_string(i) + ",x\n";
    }
    ExpectDone(text);
    EXPECT_EQ(faults.size(), 10u);
    EXPECT_EQ(figures.badCells, 25u);
}

TEST_F(CsvImportTest, AMessageShowsNothingThatATerminalWouldActOn)
{
    ExpectDone("time,p\n2003-01-01T00:00,\x1B[31m\xFF" + std::string(100, 'x') + "\n");
    EXPECT_THAT(faults, ElementsAre("t.csv:2: p: \"?[31m?" + std::string(34, 'x') + "...\" is no number"));
}

TEST_F(CsvImportTest, StrictEndsAtTheFirstFault)
{
    options.isStrict = true;
    ExpectFailed("time,p\n2003-01-01T00:00,1\n2003-01-01T00:01,x\n2003-01-01T00:02,2\n",
                 "t.csv:3: p: \"x\" is no number");
    EXPECT_TRUE(P().empty());
}

TEST_F(CsvImportTest, RowsWithAnotherNumberOfCellsAreToldAndLeftOut)
{
    ExpectDone(
        "time,x,p\n2003-01-01T00:00,7\n2003-01-01T00:01,7,1,9\n2003-01-01T00:02,7,2\n2003-01-01T00:03,7,3,,\n,,\n"
        "2003-01-01T0");
    EXPECT_EQ(P(), (TimedValues{{kStart + 2 * kMinute, 2}, {kStart + 3 * kMinute, 3}}));
    EXPECT_THAT(faults,
                ElementsAre("t.csv:2: 2 cells where the header has 3", "t.csv:3: 4 cells where the header has 3",
                            "t.csv:7: 1 cells where the header has 3"));
    EXPECT_EQ(figures.badRows, 3u);
}

TEST_F(CsvImportTest, AnEmptyFileIsRefused)
{
    ExpectFailed("", "t.csv: is empty");
    ExpectFailed("\n\n", "t.csv: is empty");
}

TEST_F(CsvImportTest, AHeaderAloneGivesNothing)
{
    ExpectDone("time,p\n");
    EXPECT_EQ(figures.rows, 0u);
    std::vector<LoggerDataSet> sets;
    EXPECT_TRUE(store.OpenReader()->DataSets(sets));
    EXPECT_TRUE(sets.empty());
}

TEST_F(CsvImportTest, AColumnThatIsNotThereIsToldWithThoseThatAre)
{
    options.mappings = {Map("power=M.P")};
    ExpectFailed("\ntime,p,\"a b\"\n2003-01-01T00:00,1,2\n",
                 "t.csv:2: there is no column \"power\"; there are \"time\", \"p\", \"a b\"");
}

TEST_F(CsvImportTest, TheTimesAreInTheColumnTimeElseInTheFirst)
{
    ExpectDone("p,time\n1,2003-01-01T00:00\n");
    ExpectDone("when,p\n2003-01-01T00:01,2\n");
    options.timeColumn = "at";
    ExpectDone("time,p,at\nx,3,2003-01-01T00:02\n");
    EXPECT_EQ(P(), Minutes({1, 2, 3}));
    ExpectFailed("time,p\n2003-01-01T00:01,2\n", "there is no column \"at\"");
}

TEST_F(CsvImportTest, AFileWithoutTimesIsTold)
{
    ExpectDone("x,p\n5,1\nabc,2\n");
    EXPECT_EQ(figures.badRows, 2u);
    EXPECT_THAT(faults, ElementsAre("t.csv:2: x: \"5\" lies outside the years 2000 to 2135",
                                    "t.csv:3: x: \"abc\" is no time, as 2006-12-16T17:24:00 is one"));
    ExpectFailed("p,x\n1,2\n", "the column \"p\" holds the times");
}

TEST_F(CsvImportTest, AVariableIsMappedOnce)
{
    options.mappings.push_back(Map("u=M.P"));
    ExpectFailed("time,p,u\n2003-01-01T00:00,1,2\n", "M.P is mapped more than once");
}

TEST_F(CsvImportTest, DamageEndsTheImportAndWhatWasReadBeforeStays)
{
    ExpectFailed(std::string("time,p\n2003-01-01T00:00,1\n2003-01-01T00:01,\0\n", 46), "t.csv:3: a NUL byte");
    EXPECT_EQ(P(), Minutes({1}));
    EXPECT_EQ(TheSet().variables.size(), 1u);
    std::string binary;
    std::mt19937 random(1);
    for (int i = 0; i < 100000; ++i) {
        binary += static_cast<char>(random() % 256);
    }
    EXPECT_EQ(Import(binary), CsvImport::Result::Failed);
}

TEST_F(CsvImportTest, MovesAllRowsByWholePeriods)
{
    options.end = kStart + 1000 * kMinute + 59 * kMicros;
    ExpectDone("time,p\n2003-01-01T00:00:30,1\n2003-01-01T00:01:30,2\n2003-01-01T00:03:30,3\n");
    EXPECT_EQ(figures.last, kStart + 1000 * kMinute + 30 * kMicros);
    EXPECT_EQ(P(), (TimedValues{{figures.last - 3 * kMinute, 1}, {figures.last - 2 * kMinute, 2}, {figures.last, 3}}));
    options.end = kStart - 1000 * kMinute;
    ExpectDone("time,p\n2003-01-01T00:00:30,1\n");
    EXPECT_EQ(figures.last, kStart - 1001 * kMinute + 30 * kMicros);
}

TEST_F(CsvImportTest, AnEndNeedsAFileThatCanBeReadTwice)
{
    options.end = kStart;
    TextSource source("time,p\n2003-01-01T00:00,1\n");
    source.isRewindable = false;
    EXPECT_EQ(Import(source), CsvImport::Result::Failed);
    EXPECT_THAT(error, HasSubstr("can't be read twice"));
}

TEST_F(CsvImportTest, AnEndThatWouldBeginBeforeTheYearsOfRecordsIsRefused)
{
    options.end = 946684800 * kMicros;
    ExpectFailed("time,p\n2003-01-01T00:00,1\n2003-01-01T00:01,1\n", "before the year 2000");
}

TEST_F(CsvImportTest, SumsUpWhatCameOnTop)
{
    options.mappings = {Map("p=M.P*2:counter:sum=100")};
    ExpectDone("time,p\n2003-01-01T00:00,1\n2003-01-01T00:01,2\n2003-01-01T00:02,\n2003-01-01T00:03,4\n");
    EXPECT_EQ(P(), (TimedValues{{kStart, 102}, {kStart + kMinute, 106}, {kStart + 3 * kMinute, 114}}));
}

TEST_F(CsvImportTest, ASumWithoutAStartGoesOnFromWhatIsStored)
{
    options.mappings = {Map("p=M.P:counter:sum")};
    ExpectDone("time,p\n2003-01-01T00:00,1\n2003-01-01T00:01,2\n");
    ExpectDone("time,p\n2003-01-01T00:02,4\n");
    EXPECT_EQ(P(), Minutes({1, 3, 7}));
}

TEST_F(CsvImportTest, ARowThatIsNotLaterAddsToNoSum)
{
    options.mappings = {Map("p=M.P:counter:sum=0")};
    ExpectDone("time,p\n2003-01-01T00:01,1\n2003-01-01T00:00,5\n2003-01-01T00:01,5\n2003-01-01T00:02,2\n");
    EXPECT_EQ(P(), (TimedValues{{kStart + kMinute, 1}, {kStart + 2 * kMinute, 3}}));
    EXPECT_EQ(figures.badCells, 2u);
}

TEST_F(CsvImportTest, AStoreThatFailsIsTold)
{
    store.SetAvailable(false);
    EXPECT_EQ(Import("time,p\n2003-01-01T00:00,1\n"), CsvImport::Result::Failed);
    EXPECT_NE(error, "");
}

std::string LongText(int rows)
{
    std::string text = "time,p\n";
    for (int i = 0; i < rows; ++i) {
        text += std::to_string(1041379200 + i) + "," + std::to_string(i) + ".5\n";
    }
    return text;
}

TEST_F(CsvImportTest, TellsItsProgress)
{
    ToldProgress progress;
    EXPECT_EQ(Import(LongText(20000), &progress), CsvImport::Result::Done);
    EXPECT_THAT(progress.texts, ElementsAre(ZRBasicString(u"Importing")));
    EXPECT_GE(progress.positions.size(), 10u);
    EXPECT_TRUE(std::is_sorted(progress.positions.begin(), progress.positions.end()));
    EXPECT_EQ(progress.positions.back(), 100);
}

TEST_F(CsvImportTest, CanBeCancelled)
{
    ToldProgress progress;
    progress.isCancelled = true;
    EXPECT_EQ(Import(LongText(20000), &progress), CsvImport::Result::Cancelled);
    EXPECT_LT(figures.rows, 20000u);
    options.end = kStart;
    EXPECT_EQ(Import(LongText(20000), &progress), CsvImport::Result::Cancelled);
    EXPECT_EQ(figures.rows, 0u);
}

// More than one batch, shuffled within stretches, with doubles: what the store holds is what a map would.
TEST_F(CsvImportTest, BatchesLoseNothing)
{
    std::mt19937 random(5);
    std::vector<std::pair<std::int64_t, int>> rows;
    for (int i = 0; i < 250000; ++i) {
        rows.emplace_back(1041379200 + i + static_cast<int>(random() % 100), i);
    }
    std::string text = "time,p\n";
    std::map<std::int64_t, double> expected;
    for (const auto& [time, value] : rows) {
        text += std::to_string(time) + "," + std::to_string(value) + "\n";
        expected[time * kMicros] = value;
    }
    ExpectDone(text);
    EXPECT_EQ(P(), TimedValues(expected.begin(), expected.end()));
    EXPECT_EQ(figures.rows, rows.size());
}

}  // namespace
}  // namespace zr
