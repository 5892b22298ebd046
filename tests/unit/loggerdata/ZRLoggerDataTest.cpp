#include "siblings/driversupport/ZRLoggerData.h"

#include "LoggerDataFixture.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

namespace zr {
namespace {

static_assert(std::has_virtual_destructor_v<ZRLoggerData>);

using namespace test;

class CountingProgress final : public Progress {
public:
    void SetText(const wchar*) override {}
    void SetPos(int percent) override { positions.push_back(percent); }
    [[nodiscard]] bool IsCancelled() const override { return positions.size() >= cancelAfter; }

    std::vector<int> positions;
    std::size_t cancelAfter = std::numeric_limits<std::size_t>::max();
};

class ZRLoggerDataTest : public LoggerDataFixture {};

TEST_F(ZRLoggerDataTest, SetupKeepsTheListAsItWasGiven)
{
    const Meter meter;
    SetVariables({u"M.E", u"M.GONE", u"M.U"});
    ASSERT_EQ(data.loggerInfo.variables.size(), 3u);
    EXPECT_EQ(data.loggerInfo.variables.front()->fullName, u"M.E");
    EXPECT_FALSE(data.loggerInfo.variables.front()->IsLocked());
}

TEST_F(ZRLoggerDataTest, PeriodZeroGivesEveryRecordAsItStands)
{
    SetVariables({u"M.U", u"M.I"});
    Record(u"M.U", VariableClass::Instantaneous, Date(1, 12, 2002, 8), 230.0);
    Record(u"M.U", VariableClass::Instantaneous, Date(1, 12, 2002, 9), 231.0);
    Record(u"M.I", VariableClass::Instantaneous, Date(1, 12, 2002, 9), 5.0);
    Record(u"M.I", VariableClass::Instantaneous, Date(1, 12, 2002, 10), 6.0);
    const auto& group = Select(Date(1, 12, 2002), Date(2, 12, 2002), kRecorded);
    EXPECT_EQ(TimesOf(group), (std::vector{Date(1, 12, 2002, 8), Date(1, 12, 2002, 9), Date(1, 12, 2002, 10)}));
    EXPECT_EQ(ValuesOf(group, 0), (std::vector{230.0, 231.0, -1.0}));
    EXPECT_EQ(ValuesOf(group, 1), (std::vector{-1.0, 5.0, 6.0}));
}

TEST_F(ZRLoggerDataTest, TheRangeIncludesItsBeginAndNotItsEnd)
{
    SetVariables({u"M.U"});
    for (const int day : {1, 2, 3}) {
        Record(u"M.U", VariableClass::Instantaneous, Date(day, 12, 2002), day);
    }
    EXPECT_EQ(ValuesOf(Select(Date(1, 12, 2002), Date(3, 12, 2002), kRecorded), 0), (std::vector{1.0, 2.0}));
}

TEST_F(ZRLoggerDataTest, AGroupHasTheTimeAtWhichItsPeriodBegins)
{
    SetVariables({u"M.U"});
    RecordMinutes(u"M.U", VariableClass::Instantaneous, Date(1, 12, 2002), 60);
    const auto& group = Select(Date(1, 12, 2002), Date(2, 12, 2002), kQuarter);
    EXPECT_EQ(TimesOf(group), (std::vector{Date(1, 12, 2002), Date(1, 12, 2002, 0, 15), Date(1, 12, 2002, 0, 30),
                                           Date(1, 12, 2002, 0, 45)}));
    EXPECT_EQ(ValuesOf(group, 0), (std::vector{7.0, 22.0, 37.0, 52.0}));
}

TEST_F(ZRLoggerDataTest, PeriodsWithoutAnyValueHaveNoRecord)
{
    SetVariables({u"M.U", u"M.I"});
    Record(u"M.U", VariableClass::Instantaneous, Date(1, 12, 2002, 8), 230.0);
    Record(u"M.I", VariableClass::Instantaneous, Date(1, 12, 2002, 11), 5.0);
    const auto& group = Select(Date(1, 12, 2002), Date(2, 12, 2002), kHour);
    EXPECT_EQ(TimesOf(group), (std::vector{Date(1, 12, 2002, 8), Date(1, 12, 2002, 11)}));
    EXPECT_EQ(ValuesOf(group, 0), (std::vector{230.0, -1.0}));
}

TEST_F(ZRLoggerDataTest, TheClassOfTheDeviceDecides)
{
    const Meter meter;
    SetVariables({u"M.E", u"M.U"});
    RecordMinutes(u"M.E", VariableClass::Instantaneous, Date(1, 12, 2002), 121);
    RecordMinutes(u"M.U", VariableClass::Counter, Date(1, 12, 2002), 121);
    const auto& group = Select(Date(1, 12, 2002), Date(1, 12, 2002, 2), kHour);
    EXPECT_EQ(ValuesOf(group, 0), (std::vector{60.0, 60.0}));
    EXPECT_EQ(ValuesOf(group, 1), (std::vector{29.5, 89.5}));
}

TEST_F(ZRLoggerDataTest, WithoutTheDeviceTheClassOfTheStoreDecides)
{
    SetVariables({u"M.E"});
    RecordMinutes(u"M.E", VariableClass::Counter, Date(1, 12, 2002), 121);
    EXPECT_EQ(ValuesOf(Select(Date(1, 12, 2002), Date(1, 12, 2002, 2), kHour), 0), (std::vector{60.0, 60.0}));
}

TEST_F(ZRLoggerDataTest, ACounterIsReadBeyondBothEndsOfTheRange)
{
    SetVariables({u"M.E"});
    RecordMinutes(u"M.E", VariableClass::Counter, Date(1, 12, 2002, 0, 0), 24 * 60 + 1);
    const auto& group = Select(Date(1, 12, 2002, 10, 30), Date(1, 12, 2002, 12, 30), kHour);
    EXPECT_EQ(ValuesOf(group, 0), (std::vector{30.0, 60.0, 30.0}));
}

TEST_F(ZRLoggerDataTest, CoarsePeriodsAgreeWithFineOnes)
{
    SetVariables({u"M.E", u"M.U", u"M.MAX"});
    RecordMinutes(u"M.E", VariableClass::Counter, Date(1, 11, 2002), 60 * 24 * 40);
    RecordMinutes(u"M.U", VariableClass::Instantaneous, Date(1, 11, 2002), 60 * 24 * 40);
    RecordMinutes(u"M.MAX", VariableClass::Maximum, Date(1, 11, 2002), 60 * 24 * 40);
    const auto days = Select(Date(1, 11, 2002), Date(1, 12, 2002), kDay).count;
    EXPECT_EQ(days, 30);
    const auto& month = data.RecordGroup(kMonth, nullptr);
    EXPECT_EQ(ValuesOf(month, 0), std::vector{60.0 * 24 * 30});
    EXPECT_EQ(ValuesOf(month, 1), std::vector{(60.0 * 24 * 30 - 1) / 2});
    EXPECT_EQ(ValuesOf(month, 2), std::vector{60.0 * 24 * 30 - 1});
    double consumption = 0.0;
    for (const double value : ValuesOf(data.RecordGroup(kQuarter, nullptr), 0)) {
        consumption += value;
    }
    EXPECT_DOUBLE_EQ(consumption, 60.0 * 24 * 30);
}

TEST_F(ZRLoggerDataTest, TheHourThatOccursTwiceShowsTwice)
{
    SetPlantZone(Paris());
    SetVariables({u"M.U"});
    RecordMinutes(u"M.U", VariableClass::Instantaneous, Date(26, 10, 2002, 22), 25 * 60);
    const auto& hours = Select(Date(27, 10, 2002), Date(28, 10, 2002), kHour);
    const std::vector<ZRDateTime> times = TimesOf(hours);
    ASSERT_EQ(times.size(), 25u);
    EXPECT_EQ(times[2], Date(27, 10, 2002, 2));
    EXPECT_EQ(times[3], Date(27, 10, 2002, 2));
    EXPECT_EQ(times[4], Date(27, 10, 2002, 3));
    EXPECT_EQ(ValuesOf(hours, 0)[2], 149.5);
    EXPECT_EQ(ValuesOf(hours, 0)[3], 209.5);
    EXPECT_EQ(data.RecordGroup(kRecorded, nullptr).count, 25 * 60);
    EXPECT_EQ(data.RecordGroup(kDay, nullptr).count, 1);
}

TEST_F(ZRLoggerDataTest, ASkippedHourShowsNoRecord)
{
    SetPlantZone(Paris());
    SetVariables({u"M.U"});
    RecordMinutes(u"M.U", VariableClass::Instantaneous, Date(30, 3, 2002, 23), 23 * 60);
    const std::vector<ZRDateTime> times = TimesOf(Select(Date(31, 3, 2002), Date(1, 4, 2002), kHour));
    ASSERT_EQ(times.size(), 23u);
    EXPECT_EQ(times[1], Date(31, 3, 2002, 1));
    EXPECT_EQ(times[2], Date(31, 3, 2002, 3));
}

TEST_F(ZRLoggerDataTest, TheSamePeriodTwiceGivesTheSameGroupWithItsSelection)
{
    SetVariables({u"M.U"});
    RecordMinutes(u"M.U", VariableClass::Instantaneous, Date(1, 12, 2002), 60);
    auto& group = Select(Date(1, 12, 2002), Date(2, 12, 2002), kQuarter);
    group.SelectData(Date(1, 12, 2002, 0, 15), Date(1, 12, 2002, 0, 45), true);
    auto& same = data.RecordGroup(kQuarter, nullptr);
    EXPECT_EQ(&same, &group);
    EXPECT_EQ(same.count, 2);
    EXPECT_NE(&data.RecordGroup(kHour, nullptr), &group);
    EXPECT_EQ(group.count, 2);
}

TEST_F(ZRLoggerDataTest, ASelectionIsWalkedBothWays)
{
    SetVariables({u"M.U"});
    RecordMinutes(u"M.U", VariableClass::Instantaneous, Date(1, 12, 2002), 60);
    auto& group = Select(Date(1, 12, 2002), Date(2, 12, 2002), kRecorded);
    group.SelectData(Date(1, 12, 2002, 0, 10), Date(1, 12, 2002, 0, 13), true);
    std::vector<double> backwards;
    for (auto record = group.last; record != group.first;) {
        --record;
        backwards.push_back((*record)->values[0].value);
    }
    EXPECT_EQ(backwards, (std::vector{12.0, 11.0, 10.0}));
    group.SelectData(Date(1, 12, 2002, 0, 10), Date(1, 12, 2002, 0, 13), false);
    EXPECT_EQ(group.count, 4);  // with the end
    group.SelectData(ZRDateTime(), Date(1, 12, 2002), true);
    ExpectEmpty(group);
    group.SelectData(Date(5, 12, 2002), Date(6, 12, 2002), true);
    ExpectEmpty(group);
    group.SelectData(Date(1, 12, 2002), Date(2, 12, 2002), true);
    EXPECT_EQ(group.count, 60);
}

TEST_F(ZRLoggerDataTest, AVariableThatCantBeDescribedStillTakesUpAColumn)
{
    const Meter meter;
    SetVariables({u"M.GONE", u"M.U"});
    Record(u"M.U", VariableClass::Instantaneous, Date(1, 12, 2002, 8), 230.0);
    for (const ZRDateTimeSpan& period : {kRecorded, kHour}) {
        const auto& group = Select(Date(1, 12, 2002), Date(2, 12, 2002), period);
        EXPECT_EQ(ValuesOf(group, 0), std::vector{-1.0});
        EXPECT_EQ(ValuesOf(group, 1), std::vector{230.0});
    }
}

TEST_F(ZRLoggerDataTest, AListWithoutVariablesGivesNoRecords)
{
    SetVariables({});
    ExpectEmpty(Select(Date(1, 12, 2002), Date(2, 12, 2002), kRecorded));
    ExpectEmpty(Select(Date(1, 12, 2002), Date(2, 12, 2002), kHour));
}

TEST_F(ZRLoggerDataTest, WithoutAStoreGroupsAreEmpty)
{
    SetLoggerStore(nullptr);
    SetVariables({u"M.U"});
    EXPECT_FALSE(data.SelectData(Date(1, 12, 2002), Date(2, 12, 2002), nullptr));
    ExpectEmpty(data.RecordGroup(kHour, nullptr));
    ExpectEmpty(data.RecordGroup(kRecorded, nullptr));
}

TEST_F(ZRLoggerDataTest, BeforeAnySelectionGroupsAreEmpty)
{
    SetVariables({u"M.U"});
    auto& group = data.RecordGroup(kHour, nullptr);
    group.SelectData(Date(1, 12, 2002), Date(2, 12, 2002), true);
    ExpectEmpty(group);
}

TEST_F(ZRLoggerDataTest, AStoreThatFailsShowsAsAnEmptyGroup)
{
    SetVariables({u"M.U"});
    Record(u"M.U", VariableClass::Instantaneous, Date(1, 12, 2002, 8), 230.0);
    store.SetAvailable(false);
    EXPECT_FALSE(data.SelectData(Date(1, 12, 2002), Date(2, 12, 2002), nullptr));
    ExpectEmpty(data.RecordGroup(kHour, nullptr));
    store.SetAvailable(true);
    ASSERT_TRUE(data.SelectData(Date(1, 12, 2002), Date(2, 12, 2002), nullptr));
    store.SetAvailable(false);
    ExpectEmpty(data.RecordGroup(kHour, nullptr));
    ExpectEmpty(data.RecordGroup(kRecorded, nullptr));
    store.SetAvailable(true);
    EXPECT_EQ(Select(Date(1, 12, 2002), Date(2, 12, 2002), kHour).count, 1);
}

TEST_F(ZRLoggerDataTest, AnEmptyOrMissingRangeSelectsNothing)
{
    SetVariables({u"M.U"});
    EXPECT_FALSE(data.SelectData(Date(2, 12, 2002), Date(1, 12, 2002), nullptr));
    EXPECT_FALSE(data.SelectData(Date(1, 12, 2002), Date(1, 12, 2002), nullptr));
    EXPECT_FALSE(data.SelectData(ZRDateTime(), Date(1, 12, 2002), nullptr));
    ExpectEmpty(data.RecordGroup(kHour, nullptr));
}

TEST_F(ZRLoggerDataTest, ANewSelectionDropsTheOldGroups)
{
    SetVariables({u"M.U"});
    Record(u"M.U", VariableClass::Instantaneous, Date(1, 12, 2002, 8), 230.0);
    EXPECT_EQ(Select(Date(1, 12, 2002), Date(2, 12, 2002), kHour).count, 1);
    EXPECT_EQ(Select(Date(2, 12, 2002), Date(3, 12, 2002), kHour).count, 0);
}

TEST_F(ZRLoggerDataTest, ANumberThatIsNoneIsNoValue)
{
    SetVariables({u"M.U"});
    Record(u"M.U", VariableClass::Instantaneous, Date(1, 12, 2002, 8), std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(ValuesOf(Select(Date(1, 12, 2002), Date(2, 12, 2002), kRecorded), 0), std::vector{-1.0});
    EXPECT_EQ(data.RecordGroup(kHour, nullptr).count, 0);
}

TEST_F(ZRLoggerDataTest, TheProgressRunsToTheEndAndCanStopTheWork)
{
    SetVariables({u"M.U", u"M.I"});
    RecordMinutes(u"M.U", VariableClass::Instantaneous, Date(1, 12, 2002), 24 * 60);
    RecordMinutes(u"M.I", VariableClass::Instantaneous, Date(1, 12, 2002), 24 * 60);
    ASSERT_TRUE(data.SelectData(Date(1, 12, 2002), Date(2, 12, 2002), nullptr));
    CountingProgress progress;
    EXPECT_EQ(data.RecordGroup(kHour, &progress).count, 24);
    EXPECT_TRUE(std::is_sorted(progress.positions.begin(), progress.positions.end()));
    EXPECT_EQ(progress.positions.back(), 99);
    CountingProgress stopped;
    stopped.cancelAfter = 3;
    ExpectEmpty(data.RecordGroup(kRecorded, &stopped));
    EXPECT_EQ(stopped.positions.size(), 3u);
    // What was stopped isn't begun again by who asks for the group.
    ExpectEmpty(data.RecordGroup(kRecorded, nullptr));
}

// Counted in hours at first, then in seconds, then in hours again after months without any.
TEST_F(ZRLoggerDataTest, LongRangesOfAnyDensityAreReadWhole)
{
    SetVariables({u"M.U", u"M.I"});
    std::vector<std::int64_t> times;
    const auto add = [&](const ZRDateTime& utc, std::int64_t step, std::int64_t count) {
        for (std::int64_t i = 0; i < count; ++i) {
            times.push_back(Micros(utc) + i * step * kMicros);
        }
    };
    add(Date(1, 12, 2002), 3600, 90 * 24);
    add(Date(1, 3, 2003), 1, 8 * 86400);
    add(Date(1, 11, 2003), 3600, 20 * 24);
    const int series = store.OpenSeries(u"M.U", 1);
    const int other = store.OpenSeries(u"M.I", 1);
    std::vector<LoggerAppend> batch;
    for (std::size_t i = 0; i < times.size(); ++i) {
        batch.push_back({series, times[i], static_cast<double>(i)});
    }
    batch.push_back({other, times.front() + 1, 1.0});
    batch.push_back({other, times.back(), 2.0});
    ASSERT_TRUE(store.Append(batch));
    const auto& group = Select(Date(1, 12, 2002), Date(1, 12, 2003), kRecorded);
    ASSERT_EQ(static_cast<std::size_t>(group.count), times.size() + 1);
    std::size_t sample = 0;
    std::size_t others = 0;
    for (auto record = group.first; record != group.last; ++record) {
        const LoggedValue* const values = (*record)->values;
        others += values[1].valid;
        if (values[0].valid != 0) {
            ASSERT_EQ(Micros((*record)->time), times[sample]);
            ASSERT_EQ(values[0].value, static_cast<double>(sample));
            ++sample;
        }
    }
    EXPECT_EQ(sample, times.size());
    EXPECT_EQ(others, 2u);
}

TEST_F(ZRLoggerDataTest, ALoadThatIsStoppedHalfwayShowsAsAnEmptyGroup)
{
    SetVariables({u"M.U", u"M.I"});
    RecordMinutes(u"M.U", VariableClass::Instantaneous, Date(1, 12, 2002), 30 * 24 * 60);
    RecordMinutes(u"M.I", VariableClass::Instantaneous, Date(1, 12, 2002), 30 * 24 * 60);
    ASSERT_TRUE(data.SelectData(Date(1, 12, 2002), Date(31, 12, 2002), nullptr));
    CountingProgress progress;
    progress.cancelAfter = 50;
    ExpectEmpty(data.RecordGroup(kRecorded, &progress));
    EXPECT_TRUE(std::is_sorted(progress.positions.begin(), progress.positions.end()));
    ASSERT_EQ(progress.positions.size(), 50u);
    EXPECT_LT(progress.positions.back(), 100);
}

TEST_F(ZRLoggerDataTest, TheProgressOfALongLoadRunsToTheEnd)
{
    SetVariables({u"M.U", u"M.I"});
    RecordMinutes(u"M.U", VariableClass::Instantaneous, Date(1, 12, 2002), 30 * 24 * 60);
    RecordMinutes(u"M.I", VariableClass::Instantaneous, Date(1, 12, 2002), 30 * 24 * 60);
    ASSERT_TRUE(data.SelectData(Date(1, 12, 2002), Date(31, 12, 2002), nullptr));
    CountingProgress progress;
    EXPECT_EQ(data.RecordGroup(kRecorded, &progress).count, 30 * 24 * 60);
    EXPECT_TRUE(std::is_sorted(progress.positions.begin(), progress.positions.end()));
    EXPECT_GE(progress.positions.size(), 50u);
    EXPECT_EQ(progress.positions.back(), 99);
}

// A store one of whose blocks is damaged.
class DamagedStore final : public LoggerStore {
public:
    int OpenSeries(const ZRBasicString& variable, std::int32_t infoCode) override
    {
        return store.OpenSeries(variable, infoCode);
    }
    bool Append(std::span<const LoggerAppend> batch) override { return store.Append(batch); }
    bool SetDataSet(const LoggerDataSet& set) override { return store.SetDataSet(set); }
    Upkeep Maintain(std::int64_t now) override { return store.Maintain(now); }
    std::vector<std::string> TakeFindings() override { return {}; }
    std::unique_ptr<LoggerReader> OpenReader() override
    {
        return std::make_unique<Reader>(store.OpenReader(), damaged);
    }
    [[nodiscard]] std::string Error() const override { return store.Error(); }

    MemoryLoggerStore store;
    std::int64_t damaged = 0;  // within the block

private:
    class Block final : public LoggerBlock {
    public:
        Block(LoggerBlock& block, bool isDamaged, std::string& error)
            : m_block(block), m_isDamaged(isDamaged), m_error(error)
        {
            summary = block.summary;
        }
        bool Samples(std::span<const std::int64_t>& times, std::span<const double>& values) override
        {
            m_error = m_isDamaged ? "a block is damaged" : m_error;
            return !m_isDamaged && m_block.Samples(times, values);
        }

    private:
        LoggerBlock& m_block;
        bool m_isDamaged;
        std::string& m_error;
    };

    class Reader final : public LoggerReader, LoggerBlockVisitor {
    public:
        Reader(std::unique_ptr<LoggerReader> reader, std::int64_t damaged)
            : m_reader(std::move(reader)), m_damaged(damaged)
        {
        }
        bool ReadBlocks(const ZRBasicString& variable, std::int64_t from, std::int64_t to, LoggerNeed need,
                        LoggerBlockVisitor& visitor) override
        {
            m_visitor = &visitor;
            m_error.clear();
            return m_reader->ReadBlocks(variable, from, to, need, *this);
        }
        bool LastBefore(const ZRBasicString& variable, std::int64_t time, LoggerSample& sample) override
        {
            return m_reader->LastBefore(variable, time, sample);
        }
        bool FirstFrom(const ZRBasicString& variable, std::int64_t time, LoggerSample& sample) override
        {
            return m_reader->FirstFrom(variable, time, sample);
        }
        std::int32_t InfoCode(const ZRBasicString& variable) override { return m_reader->InfoCode(variable); }
        bool DataSets(std::vector<LoggerDataSet>& sets) override { return m_reader->DataSets(sets); }
        bool Check(LoggerCheck& check, Progress* progress) override { return m_reader->Check(check, progress); }
        [[nodiscard]] std::string Error() const override { return m_error; }

    private:
        bool OnBlock(LoggerBlock& block) override
        {
            Block passed(block, block.summary.firstTime <= m_damaged && m_damaged <= block.summary.lastTime, m_error);
            return m_visitor->OnBlock(passed);
        }

        std::unique_ptr<LoggerReader> m_reader;
        std::int64_t m_damaged;
        std::string m_error;
        LoggerBlockVisitor* m_visitor = nullptr;
    };
};

TEST_F(ZRLoggerDataTest, ADamagedBlockIsLeftOutWhereItHasToBeUnpacked)
{
    DamagedStore damaged;
    const int series = damaged.OpenSeries(u"M.U", 1);
    std::vector<LoggerAppend> batch;
    for (int i = 0; i < 30 * 24 * 60; ++i) {
        batch.push_back({series, Micros(Date(1, 12, 2002)) + i * 60 * kMicros, 1.0});
    }
    ASSERT_TRUE(damaged.Append(batch));
    damaged.damaged = Micros(Date(20, 12, 2002, 8, 30));
    SetLoggerStore(&damaged);
    SetVariables({u"M.U"});
    ASSERT_TRUE(data.SelectData(Date(1, 12, 2002), Date(31, 12, 2002), nullptr));
    EXPECT_EQ(data.RecordGroup(kRecorded, nullptr).count, 30 * 24 * 60 - 60);
    EXPECT_EQ(data.RecordGroup(kQuarter, nullptr).count, 30 * 24 * 4 - 4);
    EXPECT_EQ(data.RecordGroup(kDay, nullptr).count, 30);
    ASSERT_TRUE(data.SelectData(Date(1, 12, 2002), Date(20, 12, 2002), nullptr));
    EXPECT_EQ(data.RecordGroup(kRecorded, nullptr).count, 19 * 24 * 60);
}

TEST_F(ZRLoggerDataTest, DamageIsToldWhateverIsReadAfterIt)
{
    DamagedStore damaged;
    for (const wchar* const variable : {u"M.U", u"M.V"}) {
        const LoggerAppend sample = {damaged.OpenSeries(variable, 1),
                                     Micros(Date(variable[2] == u'U' ? 20 : 22, 12, 2002, 8)), 1.0};
        ASSERT_TRUE(damaged.Append({&sample, 1}));
    }
    damaged.damaged = Micros(Date(20, 12, 2002, 8));
    SetLoggerStore(&damaged);
    SetVariables({u"M.U", u"M.V"});
    ASSERT_TRUE(data.SelectData(Date(1, 12, 2002), Date(31, 12, 2002), nullptr));
    EXPECT_EQ(data.RecordGroup(kRecorded, nullptr).count, 1);
    EXPECT_EQ(data.Damage(), std::vector<std::string>{"a block is damaged"});
    EXPECT_EQ(data.Failure(), "");
    EXPECT_EQ(data.RecordGroup(kDay, nullptr).count, 2);
    EXPECT_EQ(data.Damage(), std::vector<std::string>());
}

TEST_F(ZRLoggerDataTest, AGroupTellsThePeriodThatItWasBuiltAt)
{
    SetVariables({u"M.U", u"M.I"});
    RecordMinutes(u"M.U", VariableClass::Instantaneous, Date(1, 12, 2002), 3);
    const auto& group = Select(Date(1, 12, 2002), Date(2, 12, 2002), kQuarter);
    EXPECT_EQ(group.Period(), kQuarter);
    EXPECT_EQ(group.ValuesOfRecord(), 2u);
    EXPECT_EQ(Select(Date(1, 12, 2002), Date(2, 12, 2002), kRecorded).Period(), kRecorded);
}

TEST_F(ZRLoggerDataTest, APeriodEndsAtTheNextCutBeItBeyondTheRange)
{
    SetVariables({u"M.U"});
    struct Row {
        ZRDateTimeSpan period;
        ZRDateTime begin;
        ZRDateTime end;
    };
    for (const Row& row :
         {Row{kQuarter, Date(1, 12, 2002, 8), Date(1, 12, 2002, 8, 15)},
          Row{kQuarter, Date(1, 12, 2002, 8, 7), Date(1, 12, 2002, 8, 15)},
          Row{kHour, Date(31, 12, 2002, 23), Date(1, 1, 2003)},
          Row{ZRDateTimeSpan(7 * 3600, 0), Date(1, 12, 2002, 21), Date(2, 12, 2002)},
          Row{kDay, Date(5, 12, 2002), Date(6, 12, 2002)}, Row{kMonth, Date(1, 12, 2002), Date(1, 1, 2003)},
          Row{kMonth, Date(1, 2, 2003), Date(1, 3, 2003)}, Row{kRecorded, Date(5, 12, 2002), Date(5, 12, 2002)}}) {
        const auto& group = Select(Date(1, 12, 2002), Date(2, 12, 2002), row.period);
        EXPECT_EQ(group.EndOfPeriod(Micros(row.begin)), Micros(row.end)) << row.period.seconds;
    }
}

TEST_F(ZRLoggerDataTest, APeriodEndsWithTheClockOfThePlant)
{
    SetPlantZone(Paris());
    SetVariables({u"M.U"});
    const auto endAfter = [this](const ZRDateTimeSpan& period, const ZRDateTime& utc) {
        const auto& group = Select(Date(1, 10, 2002), Date(2, 10, 2002), period);
        return (group.EndOfPeriod(Micros(utc)) - Micros(utc)) / (3600 * kMicros);
    };
    // 27 October 2002 has 25 hours, from 22:00 UTC on the day before; the hour that occurs twice is cut twice.
    EXPECT_EQ(endAfter(kDay, Date(26, 10, 2002, 22)), 25);
    EXPECT_EQ(endAfter(kHour, Date(27, 10, 2002, 0)), 1);
    EXPECT_EQ(endAfter(kHour, Date(27, 10, 2002, 1)), 1);
    EXPECT_EQ(endAfter(ZRDateTimeSpan(3 * 3600, 0), Date(26, 10, 2002, 22)), 4);
    EXPECT_EQ(endAfter(kMonth, Date(30, 9, 2002, 22)), 31 * 24 + 1);
}

}  // namespace
}  // namespace zr
