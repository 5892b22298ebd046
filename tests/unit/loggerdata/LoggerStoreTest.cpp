// What every store of logged samples does. The test programs that hold this file say which stores theirs are, in
// StoreKinds.
#include "siblings/driversupport/store/LoggerStore.h"

#include "unit/loggerdata/StoreKinds.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <bit>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace zr {
namespace {

constexpr std::int64_t kSecond = 1000000;
constexpr std::int64_t kHour = 3600 * kSecond;
constexpr std::int64_t kStart = 1040000000 * kSecond / kHour * kHour;

using test::BlockCollector;
using test::StoreKind;
using test::StoreKinds;

class LoggerStoreTest : public testing::TestWithParam<StoreKind> {
protected:
    LoggerStoreTest() : store(GetParam().make()) {}

    void Append(const std::vector<LoggerAppend>& batch) { EXPECT_TRUE(store->Append(batch)) << store->Error(); }

    // Until there is nothing left to do.
    void Maintain(std::int64_t now)
    {
        LoggerStore::Upkeep upkeep = LoggerStore::Upkeep::More;
        while (upkeep == LoggerStore::Upkeep::More) {
            upkeep = store->Maintain(now);
        }
        EXPECT_EQ(upkeep, LoggerStore::Upkeep::Done) << store->Error();
    }

    BlockCollector Read(const wchar* variable, std::int64_t from = 0,
                        std::int64_t to = std::numeric_limits<std::int64_t>::max())
    {
        BlockCollector collector;
        const auto reader = store->OpenReader();
        EXPECT_TRUE(reader != nullptr && reader->ReadBlocks(variable, from, to, LoggerNeed::Samples, collector));
        return collector;
    }

    std::unique_ptr<LoggerStore> store;
};

TEST_P(LoggerStoreTest, GivesBackWhatWasAppendedInOrderOfTime)
{
    const int series = store->OpenSeries(u"M.U", 1);
    ASSERT_GE(series, 0);
    Append({{series, kStart + kHour + 5, 3.0}, {series, kStart, 1.0}});
    Append({{series, kStart + 7, 2.0}});
    const BlockCollector read = Read(u"M.U");
    EXPECT_EQ(read.times, (std::vector<std::int64_t>{kStart, kStart + 7, kStart + kHour + 5}));
    EXPECT_EQ(read.values, (std::vector<double>{1.0, 2.0, 3.0}));
}

TEST_P(LoggerStoreTest, AnUnknownVariableHasNoSamples)
{
    EXPECT_TRUE(Read(u"M.NONE").times.empty());
    LoggerSample sample{5, 5.0};
    EXPECT_FALSE(store->OpenReader()->LastBefore(u"M.NONE", kStart, sample));
    EXPECT_FALSE(store->OpenReader()->FirstFrom(u"M.NONE", 0, sample));
    EXPECT_EQ(sample.time, 5);
    EXPECT_EQ(store->OpenReader()->InfoCode(u"M.NONE"), 0);
}

TEST_P(LoggerStoreTest, ASeriesKeepsItsNumberAndItsClass)
{
    const int first = store->OpenSeries(u"M.E", 8);
    const int second = store->OpenSeries(u"M.U", 1);
    EXPECT_NE(first, second);
    EXPECT_EQ(store->OpenSeries(u"M.E", 1), first);
    EXPECT_EQ(store->OpenReader()->InfoCode(u"M.E"), 8);
}

TEST_P(LoggerStoreTest, ABatchSentAgainMakesNoDoubles)
{
    const int series = store->OpenSeries(u"M.U", 1);
    const std::vector<LoggerAppend> batch = {{series, kStart, 1.0}, {series, kStart + kSecond, 2.0}};
    Append(batch);
    Append(batch);
    EXPECT_EQ(Read(u"M.U").times.size(), 2u);
    Append({{series, kStart, 9.0}});
    EXPECT_EQ(Read(u"M.U").values, (std::vector<double>{9.0, 2.0}));
}

TEST_P(LoggerStoreTest, ABatchWithAnUnknownSeriesIsRefusedWhole)
{
    const int series = store->OpenSeries(u"M.U", 1);
    const std::vector<LoggerAppend> batch = {{series, kStart, 1.0}, {series + 1, kStart, 1.0}};
    EXPECT_FALSE(store->Append(batch));
    EXPECT_FALSE(store->Error().empty());
    EXPECT_TRUE(Read(u"M.U").times.empty());
    EXPECT_TRUE(store->Append({}));
    EXPECT_TRUE(store->Error().empty());
}

TEST_P(LoggerStoreTest, ABlockHoldsOneHour)
{
    const int series = store->OpenSeries(u"M.U", 1);
    Append({{series, kStart, 1.0}, {series, kStart + kHour - 1, 2.0}, {series, kStart + kHour, 3.0}});
    const BlockCollector read = Read(u"M.U");
    ASSERT_EQ(read.summaries.size(), 2u);
    EXPECT_EQ(read.summaries[0].lastTime, kStart + kHour - 1);
    EXPECT_EQ(read.summaries[1].firstTime, kStart + kHour);
}

TEST_P(LoggerStoreTest, OnlyBlocksOfTheRangeAreShown)
{
    const int series = store->OpenSeries(u"M.U", 1);
    std::vector<LoggerAppend> batch;
    for (int i = 0; i < 10; ++i) {
        batch.push_back({series, kStart + i * kHour + 30 * 60 * kSecond, static_cast<double>(i)});
    }
    Append(batch);
    EXPECT_EQ(Read(u"M.U", kStart + 2 * kHour, kStart + 4 * kHour).values, (std::vector<double>{2.0, 3.0}));
    // The end is exclusive, and a block outside by its samples isn't shown even if the hour touches the range.
    EXPECT_TRUE(Read(u"M.U", kStart, kStart + 30 * 60 * kSecond).times.empty());
    EXPECT_EQ(Read(u"M.U", kStart, kStart + 30 * 60 * kSecond + 1).values, std::vector<double>{0.0});
    EXPECT_TRUE(Read(u"M.U", kStart + kHour, kStart).times.empty());
}

TEST_P(LoggerStoreTest, TheVisitorEndsTheReading)
{
    const int series = store->OpenSeries(u"M.U", 1);
    Append({{series, kStart, 1.0}, {series, kStart + kHour, 2.0}});
    BlockCollector collector;
    collector.limit = 1;
    EXPECT_FALSE(store->OpenReader()->ReadBlocks(u"M.U", 0, kStart + 2 * kHour, LoggerNeed::Samples, collector));
    EXPECT_EQ(collector.values, std::vector<double>{1.0});
}

TEST_P(LoggerStoreTest, FindsTheSamplesNextToATime)
{
    const int series = store->OpenSeries(u"M.U", 1);
    Append({{series, kStart + 10, 1.0}, {series, kStart + 20, 2.0}, {series, kStart + 50 * kHour, 3.0}});
    const auto reader = store->OpenReader();
    LoggerSample sample;
    EXPECT_FALSE(reader->LastBefore(u"M.U", kStart + 10, sample));
    ASSERT_TRUE(reader->LastBefore(u"M.U", kStart + 11, sample));
    EXPECT_EQ(sample.value, 1.0);
    ASSERT_TRUE(reader->LastBefore(u"M.U", kStart + 50 * kHour, sample));
    EXPECT_EQ(sample.value, 2.0);
    EXPECT_EQ(sample.time, kStart + 20);
    ASSERT_TRUE(reader->FirstFrom(u"M.U", kStart + 20, sample));
    EXPECT_EQ(sample.value, 2.0);
    ASSERT_TRUE(reader->FirstFrom(u"M.U", kStart + 21, sample));
    EXPECT_EQ(sample.value, 3.0);
    EXPECT_FALSE(reader->FirstFrom(u"M.U", kStart + 50 * kHour + 1, sample));
}

TEST_P(LoggerStoreTest, SummariesTellWhatTheSamplesSay)
{
    const int series = store->OpenSeries(u"M.U", 1);
    Append({{series, kStart + 1, 2.0}, {series, kStart + 2, -1.0}, {series, kStart + 3, 4.5}});
    const LoggerSummary summary = Read(u"M.U").summaries.at(0);
    EXPECT_EQ(summary.firstTime, kStart + 1);
    EXPECT_EQ(summary.lastTime, kStart + 3);
    EXPECT_EQ(summary.minimum, -1.0);
    EXPECT_EQ(summary.maximum, 4.5);
    EXPECT_EQ(summary.sum, 5.5);
    EXPECT_EQ(summary.first, 2.0);
    EXPECT_EQ(summary.last, 4.5);
    EXPECT_FALSE(summary.isRising);
    EXPECT_TRUE(summary.isFinite);
    Append({{series, kStart + 2, 3.0}});
    EXPECT_TRUE(Read(u"M.U").summaries.at(0).isRising);
}

TEST_P(LoggerStoreTest, AnyDoubleComesBackBitForBit)
{
    const int series = store->OpenSeries(u"M.U", 1);
    std::mt19937_64 random(7);
    std::vector<LoggerAppend> batch = {{series, kStart, -0.0},
                                       {series, kStart + 1, std::numeric_limits<double>::infinity()},
                                       {series, kStart + 2, std::numeric_limits<double>::quiet_NaN()},
                                       {series, kStart + 3, std::numeric_limits<double>::denorm_min()}};
    for (int i = 4; i < 3000; ++i) {
        batch.push_back({series, kStart + i * 2 * kSecond + static_cast<std::int64_t>(random() % 1000000),
                         std::bit_cast<double>(random())});
    }
    Append(batch);
    const BlockCollector read = Read(u"M.U");
    ASSERT_EQ(read.values.size(), batch.size());
    EXPECT_FALSE(read.summaries.at(0).isFinite);
    for (std::size_t i = 0; i < batch.size(); ++i) {
        ASSERT_EQ(read.times[i], batch[i].time);
        ASSERT_EQ(std::bit_cast<std::uint64_t>(read.values[i]), std::bit_cast<std::uint64_t>(batch[i].value));
    }
}

TEST_P(LoggerStoreTest, KeepsDataSetsByName)
{
    store->OpenSeries(u"M.U", 1);
    store->OpenSeries(u"M.I", 1);
    const LoggerDataSet mains{u"mains", 60, 30, {u"M.I", u"M.U"}};
    EXPECT_TRUE(store->SetDataSet(mains));
    EXPECT_TRUE(store->SetDataSet({u"bays", 1, 0, {}}));
    std::vector<LoggerDataSet> sets;
    ASSERT_TRUE(store->OpenReader()->DataSets(sets));
    EXPECT_EQ(sets, (std::vector<LoggerDataSet>{{u"bays", 1, 0, {}}, mains}));
    EXPECT_TRUE(store->SetDataSet({u"mains", 10, 5, {u"M.U"}}));
    ASSERT_TRUE(store->OpenReader()->DataSets(sets));
    EXPECT_EQ(sets.at(1), (LoggerDataSet{u"mains", 10, 5, {u"M.U"}}));
    EXPECT_FALSE(store->SetDataSet({u"mains", 10, 5, {u"M.NONE"}}));
    EXPECT_FALSE(store->Error().empty());
}

TEST_P(LoggerStoreTest, UpkeepDropsWhatNoDataSetKeeps)
{
    const int kept = store->OpenSeries(u"M.E", 8);
    const int dropped = store->OpenSeries(u"M.U", 1);
    const int alone = store->OpenSeries(u"M.I", 1);
    ASSERT_TRUE(store->SetDataSet({u"short", 1, 2, {u"M.E", u"M.U"}}));
    ASSERT_TRUE(store->SetDataSet({u"long", 60, 0, {u"M.E"}}));
    for (const int hours : {0, 24, 72}) {
        const std::int64_t time = kStart + hours * kHour;
        Append({{kept, time, 1.0}, {dropped, time, 2.0}, {alone, time, 3.0}});
    }
    Maintain(kStart + 72 * kHour);
    EXPECT_EQ(Read(u"M.E").times.size(), 3u);
    EXPECT_EQ(Read(u"M.U").times, (std::vector<std::int64_t>{kStart + 24 * kHour, kStart + 72 * kHour}));
    EXPECT_EQ(Read(u"M.I").times.size(), 3u);
}

TEST_P(LoggerStoreTest, UpkeepChangesNothingThatIsKept)
{
    const int series = store->OpenSeries(u"M.U", 1);
    std::vector<LoggerAppend> batch;
    for (int i = 0; i < 400; ++i) {
        batch.push_back({series, kStart + i * 60 * kSecond, i * 0.25});
        if (i % 7 == 0) {
            Append(batch);
            batch.clear();
        }
    }
    Append(batch);
    const BlockCollector before = Read(u"M.U");
    Maintain(kStart + 100 * kHour);
    const BlockCollector after = Read(u"M.U");
    EXPECT_EQ(after.times, before.times);
    EXPECT_EQ(after.values, before.values);
    // A sample that comes late takes its place all the same.
    Append({{series, kStart + 30 * kSecond, 77.0}, {series, kStart, 78.0}});
    Maintain(kStart + 100 * kHour);
    const BlockCollector late = Read(u"M.U", kStart, kStart + 60 * kSecond);
    EXPECT_EQ(late.values.at(0), 78.0);
    EXPECT_EQ(late.values.at(1), 77.0);
}

TEST_P(LoggerStoreTest, ACheckCountsAllAndFindsNothingWrong)
{
    const int series = store->OpenSeries(u"M.U", 1);
    store->OpenSeries(u"M.I", 1);
    Append({{series, kStart, 1.0}, {series, kStart + 1, 2.0}, {series, kStart + kHour, 2.0}});
    LoggerCheck check;
    ASSERT_TRUE(store->OpenReader()->Check(check, nullptr));
    EXPECT_EQ(check.series, 2u);
    EXPECT_EQ(check.packed + check.unpacked, 3u);
    EXPECT_TRUE(check.findings.empty());
    Maintain(kStart + 100 * kHour);
    ASSERT_TRUE(store->OpenReader()->Check(check, nullptr));
    EXPECT_EQ(check.blocks, 2u);
    EXPECT_EQ(check.packed, 3u);
    EXPECT_EQ(check.unpacked, 0u);
    EXPECT_TRUE(check.findings.empty());
    EXPECT_TRUE(store->TakeFindings().empty());
}

TEST_P(LoggerStoreTest, ReadersOnOtherThreadsSeeWholeBatchesInOrder)
{
    constexpr std::size_t kBatches = 300;
    constexpr std::size_t kBatch = 20;
    const int series = store->OpenSeries(u"M.U", 1);
    std::thread writer([&] {
        for (std::size_t b = 0; b < kBatches; ++b) {
            std::vector<LoggerAppend> batch;
            for (std::size_t i = b * kBatch; i < (b + 1) * kBatch; ++i) {
                batch.push_back({series, kStart + static_cast<std::int64_t>(i) * kSecond, static_cast<double>(i)});
            }
            EXPECT_TRUE(store->Append(batch));
        }
    });
    std::size_t seen = 0;
    while (seen < kBatches * kBatch && !HasFailure()) {
        const BlockCollector read = Read(u"M.U");
        EXPECT_GE(read.values.size(), seen);
        seen = read.values.size();
        EXPECT_EQ(seen % kBatch, 0u);
        EXPECT_TRUE(std::is_sorted(read.times.begin(), read.times.end()));
        EXPECT_TRUE(seen == 0 || read.values.back() == static_cast<double>(seen - 1));
    }
    writer.join();
}

INSTANTIATE_TEST_SUITE_P(Stores, LoggerStoreTest, testing::ValuesIn(StoreKinds()),
                         [](const auto& kind) { return kind.param.name; });

}  // namespace
}  // namespace zr
