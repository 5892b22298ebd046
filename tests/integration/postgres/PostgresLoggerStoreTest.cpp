// What a store in PostgreSQL does besides what every store does.
#include "integration/postgres/PostgresFixture.h"
#include "siblings/driversupport/store/LoggerStoreAddress.h"
#include "siblings/tools/Progress.h"

#include <gtest/gtest.h>
#include <cmath>
#include <random>
#include <thread>

namespace zr::test {
namespace {

class PostgresLoggerStoreTest : public testing::Test {
protected:
    void Append(const std::vector<LoggerAppend>& batch) { EXPECT_TRUE(store.Append(batch)) << store.Error(); }

    std::string text = FreshDatabase(1);
    PostgresLoggerStore store{text};
};

TEST_F(PostgresLoggerStoreTest, HoldsWhatAMapHoldsWhateverTheOrder)
{
    std::mt19937_64 random(11);
    const auto below = [&random](std::uint64_t limit) { return static_cast<std::int64_t>(random() % limit); };
    const ZRBasicString variables[] = {u"M.A", u"M.B", u"M.C"};
    std::vector<Expected> expected(std::size(variables));
    std::vector<int> numbers;
    for (const ZRBasicString& variable : variables) {
        numbers.push_back(store.OpenSeries(variable, 1));
    }
    for (int step = 0; step < 60; ++step) {
        std::vector<LoggerAppend> batch;
        for (std::int64_t count = below(3) == 0 ? below(1500) : below(20); count >= 0; --count) {
            const auto which = static_cast<std::size_t>(below(3));
            const std::int64_t time = kStart + below(40) * kHour / 8 + below(3) * below(60) * kSecond;
            const double value = below(5) == 0 ? std::bit_cast<double>(random()) : std::round(below(1000)) / 10.0;
            batch.push_back({numbers[which], time, value});
            expected[which][time] = value;
        }
        Append(batch);
        if (below(3) == 0) {
            store.Maintain(kStart + below(7) * kHour);
        }
        if (below(6) == 0) {
            const auto which = static_cast<std::size_t>(below(3));
            ExpectHolds(store, variables[which], expected[which]);
            const std::int64_t time = kStart + below(6 * 3600) * kSecond;
            const auto reader = store.OpenReader();
            LoggerSample sample;
            const auto from = expected[which].lower_bound(time);
            ASSERT_EQ(reader->FirstFrom(variables[which], time, sample), from != expected[which].end());
            ASSERT_TRUE(from == expected[which].end() || sample.time == from->first);
            ASSERT_EQ(reader->LastBefore(variables[which], time, sample), from != expected[which].begin());
            ASSERT_TRUE(from == expected[which].begin() || sample.time == std::prev(from)->first);
        }
    }
    Maintain(store, kStart + 100 * kHour);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        ExpectHolds(store, variables[i], expected[i]);
    }
    LoggerCheck check;
    ASSERT_TRUE(store.OpenReader()->Check(check, nullptr));
    EXPECT_EQ(check.packed, expected[0].size() + expected[1].size() + expected[2].size());
    EXPECT_EQ(check.unpacked, 0u);
    EXPECT_TRUE(check.findings.empty());
}

TEST_F(PostgresLoggerStoreTest, BatchesOfEverySizeAreEnteredWhole)
{
    const int series = store.OpenSeries(u"M.U", 1);
    Expected expected;
    std::int64_t time = kStart;
    for (const int size : {1, 2, 7, 8, 9, 63, 64, 65, 511, 512, 513, 1100}) {
        std::vector<LoggerAppend> batch;
        for (int i = 0; i < size; ++i) {
            time += kSecond;
            batch.push_back({series, time, i * 0.5});
            expected[time] = i * 0.5;
        }
        Append(batch);
    }
    ExpectHolds(store, u"M.U", expected);
}

TEST_F(PostgresLoggerStoreTest, OfOneTimeTwiceInABatchTheLastOneStays)
{
    const int series = store.OpenSeries(u"M.U", 1);
    Append({{series, kStart, 1.0}, {series, kStart + 1, 5.0}, {series, kStart, 2.0}, {series, kStart, 3.0}});
    ExpectHolds(store, u"M.U", {{kStart, 3.0}, {kStart + 1, 5.0}});
}

TEST_F(PostgresLoggerStoreTest, LongRangesAreReadInParts)
{
    const int series = store.OpenSeries(u"M.U", 1);
    Expected expected;
    std::vector<LoggerAppend> batch;
    for (int i = 0; i < 20000; ++i) {
        batch.push_back({series, kStart + i * 600 * kSecond, i * 0.1});
        expected[batch.back().time] = batch.back().value;
    }
    Append(batch);
    ExpectHolds(store, u"M.U", expected);
    Maintain(store, kStart + 4000 * kHour);
    ExpectHolds(store, u"M.U", expected);
}

TEST_F(PostgresLoggerStoreTest, SummariesComeWithoutTheSamplesUnlessTheseAreAskedFor)
{
    const int series = store.OpenSeries(u"M.U", 1);
    Append({{series, kStart, 1.0}, {series, kStart + kSecond, 3.0}, {series, kStart + kHour, 4.0}});
    Maintain(store, kStart + 2 * kHour);
    BlockCollector collector;
    const auto reader = store.OpenReader();
    ASSERT_TRUE(reader->ReadBlocks(u"M.U", 0, kEver, LoggerNeed::Summaries, collector));
    EXPECT_EQ(collector.values, (std::vector<double>{1.0, 3.0, 4.0}));
    EXPECT_EQ(collector.summaries.at(0).sum, 4.0);
}

TEST_F(PostgresLoggerStoreTest, TheFirstAndTheLastTimeThatThereAre)
{
    constexpr std::int64_t kFirst = std::numeric_limits<std::int64_t>::min();
    const int series = store.OpenSeries(u"M.U", 1);
    Append({{series, kFirst, 1.0}, {series, kEver, 2.0}, {series, 0, 3.0}, {series, -1, 4.0}});
    Maintain(store, kEver);
    // The last time there is can't be before the end of a range.
    EXPECT_EQ(Read(store, u"M.U", kFirst).values, (std::vector<double>{1.0, 4.0, 3.0}));
    LoggerSample sample;
    const auto reader = store.OpenReader();
    ASSERT_TRUE(reader->FirstFrom(u"M.U", kEver, sample));
    EXPECT_EQ(sample.value, 2.0);
    ASSERT_TRUE(reader->LastBefore(u"M.U", kFirst + 1, sample));
    EXPECT_EQ(sample.value, 1.0);
    EXPECT_FALSE(reader->LastBefore(u"M.U", kFirst, sample));
}

TEST_F(PostgresLoggerStoreTest, NamesOfAnyLanguageComeBack)
{
    const ZRBasicString name = u"Zähler 電力.Ω'\"\\%";
    const int series = store.OpenSeries(name, 8);
    Append({{series, kStart, 1.0}});
    ExpectHolds(store, name, {{kStart, 1.0}});
    ASSERT_TRUE(store.SetDataSet({u"größe'; drop table series; --", 1, 0, {name}}));
    std::vector<LoggerDataSet> sets;
    ASSERT_TRUE(store.OpenReader()->DataSets(sets));
    EXPECT_EQ(sets.at(0).name, ZRBasicString(u"größe'; drop table series; --"));
    EXPECT_EQ(sets.at(0).variables.at(0), name);
}

TEST_F(PostgresLoggerStoreTest, AZeroCharacterInANameIsRefused)
{
    const ZRBasicString name(u"M\0U", 3);
    EXPECT_EQ(store.OpenSeries(name, 1), -1);
    EXPECT_FALSE(store.Error().empty());
    EXPECT_TRUE(Read(store, name).times.empty());
    EXPECT_FALSE(store.SetDataSet({name, 1, 0, {}}));
}

TEST_F(PostgresLoggerStoreTest, ADataSetKeepsTheOrderOfItsVariables)
{
    store.OpenSeries(u"M.A", 1);
    store.OpenSeries(u"M.B", 1);
    const LoggerDataSet set{u"mains", 60, 30, {u"M.B", u"M.A"}};
    ASSERT_TRUE(store.SetDataSet(set));
    std::vector<LoggerDataSet> sets;
    ASSERT_TRUE(store.OpenReader()->DataSets(sets));
    EXPECT_EQ(sets, std::vector<LoggerDataSet>{set});
    // A set that can't be entered leaves the one before as it was.
    EXPECT_FALSE(store.SetDataSet({u"mains", 1, 1, {u"M.A", u"M.NONE"}}));
    EXPECT_TRUE(Contains(store.Error(), "M.NONE"));
    ASSERT_TRUE(store.OpenReader()->DataSets(sets));
    EXPECT_EQ(sets, std::vector<LoggerDataSet>{set});
}

TEST_F(PostgresLoggerStoreTest, AReaderOutlivesTheStore)
{
    auto own = std::make_unique<PostgresLoggerStore>(text);
    const int series = own->OpenSeries(u"M.U", 1);
    const std::vector<LoggerAppend> batch = {{series, kStart, 1.0}};
    ASSERT_TRUE(own->Append(batch));
    const auto reader = own->OpenReader();
    own.reset();
    LoggerSample sample;
    EXPECT_TRUE(reader->FirstFrom(u"M.U", 0, sample));
}

TEST_F(PostgresLoggerStoreTest, AReaderOfADatabaseWithoutAStoreFindsNothing)
{
    const auto reader = store.OpenReader();
    BlockCollector collector;
    EXPECT_TRUE(reader->ReadBlocks(u"M.U", 0, kEver, LoggerNeed::Samples, collector)) << reader->Error();
    std::vector<LoggerDataSet> sets = {{u"old", 1, 0, {}}};
    EXPECT_TRUE(reader->DataSets(sets));
    EXPECT_TRUE(sets.empty());
    LoggerCheck check;
    EXPECT_TRUE(reader->Check(check, nullptr));
    EXPECT_TRUE(check.findings.empty());
    // It finds what is entered later.
    const int series = store.OpenSeries(u"M.U", 1);
    Append({{series, kStart, 1.0}});
    LoggerSample sample;
    EXPECT_TRUE(reader->FirstFrom(u"M.U", 0, sample)) << reader->Error();
}

TEST_F(PostgresLoggerStoreTest, TwoProgramsGiveAVariableOneSeries)
{
    PostgresLoggerStore other(text);
    std::vector<std::thread> threads;
    for (PostgresLoggerStore* const one : {&store, &other}) {
        threads.emplace_back([one] {
            for (int i = 0; i < 40; ++i) {
                const std::string digits = std::to_string(i);
                const ZRBasicString name = u"M." + std::u16string(digits.begin(), digits.end());
                EXPECT_GE(one->OpenSeries(name, 1), 0) << one->Error();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(Sql(text).Integer("select count(*) from series"), 40);
}

TEST_F(PostgresLoggerStoreTest, TwoProgramsEnterTheSameSamplesAtOnce)
{
    PostgresLoggerStore other(text);
    Expected expected;
    std::vector<std::thread> threads;
    for (int i = 0; i < 400; ++i) {
        expected[kStart + i * kSecond] = i;
    }
    for (PostgresLoggerStore* const one : {&store, &other}) {
        threads.emplace_back([one, &expected, isFirst = one == &store] {
            const int first = one->OpenSeries(isFirst ? u"M.A" : u"M.B", 1);
            const int second = one->OpenSeries(isFirst ? u"M.B" : u"M.A", 1);
            for (int round = 0; round < 20; ++round) {
                std::vector<LoggerAppend> batch;
                for (const auto& [time, value] : expected) {
                    batch.push_back({first, time, value});
                    batch.push_back({second, time, value});
                }
                EXPECT_TRUE(one->Append(batch)) << one->Error();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    ExpectHolds(store, u"M.A", expected);
    ExpectHolds(store, u"M.B", expected);
}

TEST_F(PostgresLoggerStoreTest, ACheckIsCancelled)
{
    class Cancelled final : public Progress {
    public:
        void SetText(const wchar*) override {}
        void SetPos(int) override {}
        [[nodiscard]] bool IsCancelled() const override { return true; }
    };
    const int series = store.OpenSeries(u"M.U", 1);
    Append({{series, kStart, 1.0}});
    Cancelled progress;
    LoggerCheck check;
    const auto reader = store.OpenReader();
    EXPECT_FALSE(reader->Check(check, &progress));
    EXPECT_TRUE(check.findings.empty());
    EXPECT_TRUE(reader->Check(check, nullptr));
    EXPECT_EQ(check.unpacked, 1u);
}

// What becomes of the database behind the store's back, and how.
struct Emptied {
    const char* name;
    std::vector<std::string> statements;
    int failures;  // calls that may fail before one is good
};

class EmptiedPostgresStoreTest : public testing::TestWithParam<Emptied> {};

TEST_P(EmptiedPostgresStoreTest, SeriesKeepTheirNumbers)
{
    const std::string text = FreshDatabase(1);
    PostgresLoggerStore store(text);
    const int first = store.OpenSeries(u"M.A", 1);
    const int second = store.OpenSeries(u"M.B", 8);
    const std::vector<LoggerAppend> batch = {{first, kStart, 1.0}, {second, kStart, 2.0}};
    ASSERT_TRUE(store.Append(batch));
    Sql(text).Run(GetParam().statements);
    {
        // Another program enters its own, in whose place ours may not come.
        PostgresLoggerStore other(text);
        const int series = other.OpenSeries(u"M.C", 1);
        const std::vector<LoggerAppend> others = {{series, kStart, 9.0}};
        ASSERT_TRUE(other.Append(others)) << other.Error();
    }
    int failures = 0;
    while (!store.Append(batch) && failures <= GetParam().failures) {
        ++failures;
    }
    EXPECT_LE(failures, GetParam().failures) << store.Error();
    ExpectHolds(store, u"M.A", {{kStart, 1.0}});
    ExpectHolds(store, u"M.B", {{kStart, 2.0}});
    ExpectHolds(store, u"M.C", {{kStart, 9.0}});
    EXPECT_EQ(store.OpenReader()->InfoCode(u"M.B"), 8);
    EXPECT_EQ(store.OpenSeries(u"M.A", 1), first);
}

INSTANTIATE_TEST_SUITE_P(
    Ways, EmptiedPostgresStoreTest,
    testing::Values(Emptied{"TablesDropped", {"drop table data_set_series, data_set, block, sample, series, meta"}, 1},
                    Emptied{"TablesEmptied", {"truncate data_set_series, data_set, block, sample, series"}, 0},
                    Emptied{"SeriesDeleted", {"delete from sample", "delete from series"}, 0}),
    [](const auto& row) { return row.param.name; });

TEST(LoggerStoreAddress, GivesAStoreForEachServer)
{
    LoggerStoreAddress address;
    address.nodes = {FreshDatabase(1), FreshDatabase(2)};
    std::string error;
    const auto stores = OpenLoggerNodes(address, error);
    EXPECT_TRUE(error.empty());
    ASSERT_EQ(stores.size(), 2u);
    EXPECT_GE(stores[0]->OpenSeries(u"M.U", 1), 0) << stores[0]->Error();
    EXPECT_GE(stores[1]->OpenSeries(u"M.U", 1), 0) << stores[1]->Error();
}

TEST(LoggerStoreAddress, AServerThatIsAwayShowsAtTheFirstCall)
{
    LoggerStoreAddress address;
    address.nodes = {"host=/nowhere port=5433 dbname=plant"};
    std::string error;
    const auto stores = OpenLoggerNodes(address, error);
    EXPECT_TRUE(error.empty());
    ASSERT_EQ(stores.size(), 1u);
    EXPECT_EQ(stores[0]->OpenSeries(u"M.U", 1), -1);
    EXPECT_TRUE(Contains(stores[0]->Error(), "/nowhere:5433/plant: "));
}

}  // namespace
}  // namespace zr::test
