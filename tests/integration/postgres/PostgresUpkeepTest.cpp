// Packing, retention and checks of a store in PostgreSQL.
#include "integration/postgres/PostgresFixture.h"

#include <gtest/gtest.h>
#include <atomic>
#include <thread>

namespace zr::test {
namespace {

class PostgresUpkeepTest : public testing::Test {
protected:
    void Append(const std::vector<LoggerAppend>& batch) { EXPECT_TRUE(store.Append(batch)) << store.Error(); }

    std::string text = FreshDatabase(1);
    PostgresLoggerStore store{text};
    Sql sql{text};
};

TEST_F(PostgresUpkeepTest, PacksHoursThatAreOverOnly)
{
    const int series = store.OpenSeries(u"M.U", 1);
    Append({{series, kStart, 1.0}, {series, kStart + kHour - 1, 2.0}, {series, kStart + kHour, 3.0}});
    Maintain(store, kStart + kHour - 1);
    EXPECT_EQ(sql.Integer("select count(*) from block"), 0);
    Maintain(store, kStart + kHour);
    EXPECT_EQ(sql.Integer("select count(*) from block"), 1);
    EXPECT_EQ(sql.Integer("select count(*) from sample"), 1);
    ExpectHolds(store, u"M.U", {{kStart, 1.0}, {kStart + kHour - 1, 2.0}, {kStart + kHour, 3.0}});
}

TEST_F(PostgresUpkeepTest, PacksSamplesThatComeLate)
{
    const int series = store.OpenSeries(u"M.U", 1);
    Append({{series, kStart, 1.0}, {series, kStart + 2 * kSecond, 3.0}});
    Maintain(store, kStart + 5 * kHour);
    Append({{series, kStart + kSecond, 2.0}, {series, kStart, 7.0}});
    const Expected expected = {{kStart, 7.0}, {kStart + kSecond, 2.0}, {kStart + 2 * kSecond, 3.0}};
    ExpectHolds(store, u"M.U", expected);
    Maintain(store, kStart + 5 * kHour);
    EXPECT_EQ(sql.Integer("select count(*) from sample"), 0);
    EXPECT_EQ(sql.Integer("select count(*) from block"), 1);
    ExpectHolds(store, u"M.U", expected);
}

TEST_F(PostgresUpkeepTest, TwoProgramsThatPackAtOnceLoseNothingAndDoubleNothing)
{
    PostgresLoggerStore other(text);
    std::vector<Expected> expected(2);
    std::atomic<int> writing = 2;
    const auto work = [&](PostgresLoggerStore& one, std::size_t which) {
        const int own = one.OpenSeries(which == 0 ? u"M.A" : u"M.B", 1);
        const int shared = one.OpenSeries(u"M.C", 1);
        for (int round = 0; round < 120; ++round) {
            std::vector<LoggerAppend> batch;
            for (int i = 0; i < 40; ++i) {
                const std::int64_t time = kStart + (round * 40 + i) * 10 * kSecond;
                batch.push_back({own, time, round + 0.5});
                expected[which][time] = round + 0.5;
                // Both enter the shared one, each its own half of every hour.
                batch.push_back({shared, time + static_cast<std::int64_t>(which), round * 0.25});
            }
            EXPECT_TRUE(one.Append(batch)) << one.Error();
            EXPECT_NE(one.Maintain(batch.back().time + kHour), LoggerStore::Upkeep::Failed) << one.Error();
        }
        --writing;
        while (writing > 0) {
            EXPECT_NE(one.Maintain(kStart + 100 * kHour), LoggerStore::Upkeep::Failed) << one.Error();
        }
    };
    std::thread thread([&] { work(other, 1); });
    work(store, 0);
    thread.join();
    Maintain(store, kStart + 100 * kHour);
    EXPECT_EQ(sql.Integer("select count(*) from sample"), 0);
    ExpectHolds(store, u"M.A", expected[0]);
    ExpectHolds(store, u"M.B", expected[1]);
    EXPECT_EQ(Read(store, u"M.C").times.size(), expected[0].size() + expected[1].size());
}

TEST_F(PostgresUpkeepTest, AReadingSeesOneMomentWhateverIsPackedMeanwhile)
{
    const int series = store.OpenSeries(u"M.U", 1);
    std::vector<LoggerAppend> batch;
    for (int i = 0; i < 20000; ++i) {
        batch.push_back({series, kStart + i * 60 * kSecond, i * 0.5});
    }
    Append(batch);

    // Packs all of it while the reader stands at the first block.
    class Packer final : public LoggerBlockVisitor {
    public:
        explicit Packer(LoggerStore& packed) : store(packed) {}
        bool OnBlock(LoggerBlock& block) override
        {
            if (count == 0) {
                Maintain(store, kStart + 400 * kHour);
            }
            count += block.summary.count;
            return true;
        }
        LoggerStore& store;
        std::size_t count = 0;
    };
    Packer packer(store);
    ASSERT_TRUE(store.OpenReader()->ReadBlocks(u"M.U", 0, kEver, LoggerNeed::Samples, packer));
    EXPECT_EQ(packer.count, batch.size());
    EXPECT_EQ(sql.Integer("select count(*) from sample"), 0);
}

TEST_F(PostgresUpkeepTest, ADamagedBlockIsFoundAndNothingElseSuffers)
{
    const int series = store.OpenSeries(u"M.U", 1);
    Append({{series, kStart, 1.0}, {series, kStart + kHour, 2.0}, {series, kStart + 2 * kHour, 3.0}});
    Maintain(store, kStart + 5 * kHour);
    sql.Run({"update block set payload = payload || '\\x00' where hour = " + std::to_string(kStart / kHour + 1)});
    const std::string place = "block of M.U at 2002-12-16 01:00 UTC is damaged";
    {
        LoggerCheck check;
        ASSERT_TRUE(store.OpenReader()->Check(check, nullptr));
        ASSERT_EQ(check.findings.size(), 1u);
        EXPECT_TRUE(Contains(check.findings[0], place)) << check.findings[0];
        EXPECT_EQ(check.blocks, 3u);
    }
    // Samples that belong there wait beside it; all others are packed.
    Append({{series, kStart + 1, 1.5}, {series, kStart + kHour + 1, 2.5}, {series, kStart + 2 * kHour + 1, 3.5}});
    Maintain(store, kStart + 5 * kHour);
    const std::vector<std::string> findings = store.TakeFindings();
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_TRUE(Contains(findings[0], place)) << findings[0];
    EXPECT_EQ(sql.Integer("select count(*) from sample"), 1);
    Maintain(store, kStart + 6 * kHour);
    EXPECT_TRUE(store.TakeFindings().empty());
    EXPECT_EQ(Read(store, u"M.U", 0, kStart + kHour).values, (std::vector<double>{1.0, 1.5}));
    EXPECT_EQ(Read(store, u"M.U", kStart + 2 * kHour).values, (std::vector<double>{3.0, 3.5}));

    class Unpacker final : public LoggerBlockVisitor {
    public:
        bool OnBlock(LoggerBlock& block) override
        {
            std::span<const std::int64_t> times;
            std::span<const double> values;
            results.push_back(block.Samples(times, values));
            return true;
        }
        std::vector<bool> results;
    };
    Unpacker unpacker;
    ASSERT_TRUE(store.OpenReader()->ReadBlocks(u"M.U", 0, kEver, LoggerNeed::Samples, unpacker));
    EXPECT_EQ(unpacker.results, (std::vector<bool>{true, false, true}));
}

TEST_F(PostgresUpkeepTest, SumsThatTellSomethingElseAreFound)
{
    const int series = store.OpenSeries(u"M.U", 1);
    Append({{series, kStart, 1.0}, {series, kStart + 1, 2.0}});
    Maintain(store, kStart + kHour);
    sql.Run({"update block set total = total + 1"});
    LoggerCheck check;
    ASSERT_TRUE(store.OpenReader()->Check(check, nullptr));
    ASSERT_EQ(check.findings.size(), 1u);
    EXPECT_TRUE(Contains(check.findings[0], "tells other sums than it holds"));
    Maintain(store, kStart + 2 * kHour);
    EXPECT_EQ(store.TakeFindings().size(), 1u);
}

TEST_F(PostgresUpkeepTest, SamplesOfNoVariableAreFound)
{
    const int series = store.OpenSeries(u"M.U", 1);
    Append({{series, kStart, 1.0}});
    sql.Run({"insert into sample values (77, 5, 1.0)", "insert into sample values (77, 6, 1.0)"});
    LoggerCheck check;
    ASSERT_TRUE(store.OpenReader()->Check(check, nullptr));
    EXPECT_EQ(check.unpacked, 3u);
    ASSERT_EQ(check.findings.size(), 1u);
    EXPECT_TRUE(Contains(check.findings[0], "2 samples belong to no variable"));
}

TEST_F(PostgresUpkeepTest, AClockSetAheadDoesNotEmptyTheStore)
{
    const int series = store.OpenSeries(u"M.U", 1);
    ASSERT_TRUE(store.SetDataSet({u"mains", 1, 5, {u"M.U"}}));
    const Expected expected = {{kStart, 1.0}, {kStart + kDay, 2.0}};
    Append({{series, kStart, 1.0}, {series, kStart + kDay, 2.0}});
    Maintain(store, kStart + kDay);
    // Years ahead: what retention goes by follows a day at a time, an hour apart.
    Maintain(store, kStart + 4000 * kDay);
    Maintain(store, kStart + 4000 * kDay + kHour);
    ASSERT_TRUE(store.SetDataSet({u"mains", 1, 5, {u"M.U"}}));
    Maintain(store, kStart + 4000 * kDay + kHour);
    ExpectHolds(store, u"M.U", expected);
    // Set right again, it goes on as if nothing had been.
    Maintain(store, kStart + 2 * kDay);
    ExpectHolds(store, u"M.U", expected);
    for (int day = 3; day <= 6; ++day) {
        Maintain(store, kStart + day * kDay);
    }
    ExpectHolds(store, u"M.U", {{kStart + kDay, 2.0}});
}

TEST_F(PostgresUpkeepTest, WhatIsOldIsDroppedBeforeItIsPackedToo)
{
    const int series = store.OpenSeries(u"M.U", 1);
    ASSERT_TRUE(store.SetDataSet({u"mains", 1, 1, {u"M.U"}}));
    Maintain(store, kStart + 10 * kDay);
    Append({{series, kStart, 1.0}, {series, kStart + 10 * kDay, 2.0}});
    Maintain(store, kStart + 10 * kDay + kHour);
    ExpectHolds(store, u"M.U", {{kStart + 10 * kDay, 2.0}});
}

}  // namespace
}  // namespace zr::test
