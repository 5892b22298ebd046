// What is particular to the store in a file: the file itself, its versions, packing, several programs, retention.
#include "siblings/driversupport/store/SqliteLoggerStore.h"

#include "platform/Clock.h"
#include "siblings/driversupport/store/LoggerStoreAddress.h"
#include "siblings/driversupport/store/SqliteSchema.h"
#include "support/ManualClock.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <algorithm>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace zr {
namespace {

using testing::HasSubstr;

constexpr std::int64_t kSecond = 1000000;
constexpr std::int64_t kHour = 3600 * kSecond;
constexpr std::int64_t kDay = 24 * kHour;
constexpr std::int64_t kStart = 1040000000 * kSecond / kDay * kDay;
constexpr std::int64_t kEnd = std::numeric_limits<std::int64_t>::max();

// Runs statements on a file as any other program would; gives the rows' values, separated by '|'.
std::vector<std::string> Sql(const std::filesystem::path& file, const std::string& sql)
{
    sqlite3* handle = nullptr;
    std::vector<std::string> rows;
    EXPECT_EQ(sqlite3_open(file.string().c_str(), &handle), SQLITE_OK);
    sqlite3_busy_timeout(handle, 10000);
    const auto take = [](void* into, int count, char** values, char**) {
        std::string row;
        for (int i = 0; i < count; ++i) {
            row += (i > 0 ? "|" : "") + std::string(values[i] != nullptr ? values[i] : "NULL");
        }
        static_cast<std::vector<std::string>*>(into)->push_back(row);
        return 0;
    };
    EXPECT_EQ(sqlite3_exec(handle, sql.c_str(), take, &rows, nullptr), SQLITE_OK) << sqlite3_errmsg(handle) << sql;
    sqlite3_close(handle);
    return rows;
}

class Samples final : public LoggerBlockVisitor {
public:
    bool OnBlock(LoggerBlock& block) override
    {
        std::span<const std::int64_t> times;
        std::span<const double> values;
        EXPECT_TRUE(block.Samples(times, values));
        EXPECT_EQ(block.summary.count, times.size());
        const LoggerSummary plain = Summarise(times, values);
        EXPECT_EQ(block.summary.firstTime, plain.firstTime);
        EXPECT_EQ(block.summary.lastTime, plain.lastTime);
        EXPECT_EQ(block.summary.minimum, plain.minimum);
        EXPECT_EQ(block.summary.maximum, plain.maximum);
        EXPECT_EQ(block.summary.first, plain.first);
        EXPECT_EQ(block.summary.last, plain.last);
        EXPECT_EQ(block.summary.isRising, plain.isRising);
        EXPECT_NEAR(block.summary.sum, plain.sum, 1e-6);
        for (std::size_t i = 0; i < times.size(); ++i) {
            EXPECT_TRUE(all.empty() || all.rbegin()->first < times[i]);
            all[times[i]] = values[i];
        }
        return true;
    }

    std::map<std::int64_t, double> all;
};

class SqliteLoggerStoreTest : public testing::Test {
protected:
    SqliteLoggerStoreTest() : store(std::make_unique<SqliteLoggerStore>(file)) {}

    void Reopen() { store = std::make_unique<SqliteLoggerStore>(file); }

    void Append(const std::vector<LoggerAppend>& batch) { ASSERT_TRUE(store->Append(batch)) << store->Error(); }

    static void Maintain(LoggerStore& which, std::int64_t now)
    {
        LoggerStore::Upkeep upkeep = LoggerStore::Upkeep::More;
        while (upkeep == LoggerStore::Upkeep::More) {
            upkeep = which.Maintain(now);
        }
        ASSERT_EQ(upkeep, LoggerStore::Upkeep::Done) << which.Error();
    }

    std::map<std::int64_t, double> Read(const wchar* variable, LoggerNeed need = LoggerNeed::Samples)
    {
        Samples samples;
        const auto reader = store->OpenReader();
        EXPECT_TRUE(reader != nullptr && reader->ReadBlocks(variable, -kEnd, kEnd, need, samples));
        return samples.all;
    }

    std::vector<std::string> Findings()
    {
        LoggerCheck check;
        EXPECT_TRUE(store->OpenReader()->Check(check, nullptr));
        return check.findings;
    }

    // A batch of one variable, a sample a minute.
    std::vector<LoggerAppend> Minutes(int series, std::int64_t from, int count) const
    {
        std::vector<LoggerAppend> batch;
        for (int i = 0; i < count; ++i) {
            batch.push_back({series, from + i * 60 * kSecond, 230.0 + i % 7 * 0.1});
        }
        return batch;
    }

    test::TempFolder folder;
    std::filesystem::path file = folder / "data.zrlog";
    std::unique_ptr<SqliteLoggerStore> store;
};

TEST_F(SqliteLoggerStoreTest, MakesAFileThatOnlyItsOwnerMayRead)
{
    const std::filesystem::path deep = folder.Path() / "a" / "b" / "data.zrlog";
    SqliteLoggerStore inFolder(deep);
    ASSERT_EQ(inFolder.OpenSeries(u"M.U", 1), 0) << inFolder.Error();
#ifndef _WIN32
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(deep.parent_path()).permissions(), perms::owner_all);
    EXPECT_EQ(std::filesystem::status(deep.parent_path().parent_path()).permissions(), perms::owner_all);
    for (const char* const suffix : {"", "-wal", "-shm"}) {
        EXPECT_EQ(std::filesystem::status(deep.string() + suffix).permissions(), perms::owner_read | perms::owner_write)
            << suffix;
    }
#endif
}

TEST_F(SqliteLoggerStoreTest, WritesAheadAndWaitsForTheDisk)
{
    store->OpenSeries(u"M.U", 1);
    EXPECT_EQ(Sql(file, "PRAGMA journal_mode; PRAGMA application_id; PRAGMA user_version"),
              (std::vector<std::string>{"wal", std::to_string(kSqliteApplication), "2"}));
    EXPECT_EQ(SqliteStoreOptions().synchronous, SqliteStoreOptions::Synchronous::Full);
}

// The example of docs/formats/logger-store.md.
TEST_F(SqliteLoggerStoreTest, KeepsTheExampleAsTheFormatTells)
{
    const std::int64_t hour = 1734372000 * kSecond;  // 2024-12-16 18:00 UTC
    const int series = store->OpenSeries(u"Meter 1.U1", 1);
    Append({{series, hour, 230.1}, {series, hour + 60 * kSecond, 230.3}, {series, hour + 120 * kSecond, 230.2}});
    EXPECT_EQ(Sql(file, "SELECT entry, series, time, value FROM sample"),
              (std::vector<std::string>{"1|1|1734372000000000|230.1", "2|1|1734372060000000|230.3",
                                        "3|1|1734372120000000|230.2"}));
    Maintain(*store, hour + 2 * kHour);
    EXPECT_EQ(Sql(file, "SELECT count(*) FROM sample; SELECT generation FROM store"),
              (std::vector<std::string>{"0", "1"}));
    EXPECT_EQ(Sql(file,
                  "SELECT * FROM series; SELECT series, hour, count, codec, decimals, minimum, maximum, sum, "
                  "first, last, checksum, hex(payload) FROM block; "
                  "SELECT series, day, hex(summaries) FROM digest"),
              (std::vector<std::string>{
                  "1|Meter 1.U1|1",
                  "1|481770|3|3|1|2301|2303|6906|2301|2302|1058129105|0103000078000001FA230401",
                  "1|20073|C436E9970000042C060000F001FA230000040206",
              }));
}

TEST_F(SqliteLoggerStoreTest, BringsAStoreOfVersion1UpToDate)
{
    std::vector<std::map<std::int64_t, double>> before;
    const int series = store->OpenSeries(u"M.U", 1);
    const int other = store->OpenSeries(u"M.E", 8);
    Append(Minutes(series, kStart, 3000));
    Append(Minutes(other, kStart + kHour, 200));
    Append({{series, kStart + 5, 1.5}, {other, kStart + 80 * kHour, 2.5}});
    before = {Read(u"M.U"), Read(u"M.E")};
    store.reset();
    // As the program before wrote it: without days of summaries, data sets and the reference of retention.
    Sql(file,
        "DROP TABLE digest; DROP TABLE data_set; DROP TABLE data_set_variable; DROP TABLE reference; "
        "PRAGMA user_version = 1");
    Reopen();
    EXPECT_EQ(Read(u"M.U"), before[0]);
    EXPECT_EQ(Read(u"M.E", LoggerNeed::Summaries), before[1]);
    EXPECT_EQ(Findings(), std::vector<std::string>());
    EXPECT_EQ(Sql(file, "PRAGMA user_version"), std::vector<std::string>{"2"});
    EXPECT_TRUE(store->SetDataSet({u"mains", 60, 0, {u"M.U"}}));
}

TEST_F(SqliteLoggerStoreTest, RefusesANewerVersionByName)
{
    store->OpenSeries(u"M.U", 1);
    store.reset();
    Sql(file, "PRAGMA user_version = 3");
    Reopen();
    EXPECT_EQ(store->OpenSeries(u"M.U", 1), -1);
    EXPECT_THAT(store->Error(), HasSubstr("data.zrlog"));
    EXPECT_THAT(store->Error(), HasSubstr("version 3"));
    EXPECT_THAT(store->Error(), HasSubstr("up to 2"));
    std::vector<LoggerDataSet> sets;
    const auto reader = store->OpenReader();
    EXPECT_FALSE(reader->DataSets(sets));
    EXPECT_THAT(reader->Error(), HasSubstr("version 3"));
    EXPECT_EQ(Sql(file, "PRAGMA user_version"), std::vector<std::string>{"3"});
}

TEST_F(SqliteLoggerStoreTest, RefusesADatabaseOfAnotherProgram)
{
    Sql(file, "CREATE TABLE t (a); INSERT INTO t VALUES (1)");
    EXPECT_EQ(store->OpenSeries(u"M.U", 1), -1);
    EXPECT_THAT(store->Error(), HasSubstr("another program"));
    EXPECT_EQ(Sql(file, "SELECT * FROM t"), std::vector<std::string>{"1"});
}

TEST_F(SqliteLoggerStoreTest, RefusesWhatIsNoDatabase)
{
    folder.Write("data.zrlog", std::string(5000, 'x'));
    EXPECT_EQ(store->OpenSeries(u"M.U", 1), -1);
    EXPECT_THAT(store->Error(), HasSubstr("is no store of logged data"));
    EXPECT_EQ(folder.Read("data.zrlog"), std::string(5000, 'x'));
}

TEST_F(SqliteLoggerStoreTest, RefusesTablesThatAreLaidOutOtherwise)
{
    store->OpenSeries(u"M.U", 1);
    store.reset();
    Sql(file, "DROP TABLE sample; CREATE TABLE sample (entry INTEGER PRIMARY KEY, series, time, value)");
    Reopen();
    EXPECT_EQ(store->OpenSeries(u"M.U", 1), -1);
    EXPECT_THAT(store->Error(), HasSubstr("table sample"));
}

TEST_F(SqliteLoggerStoreTest, AnEmptyFileBecomesAStore)
{
    folder.Write("data.zrlog", "");
    EXPECT_EQ(store->OpenSeries(u"M.U", 1), 0) << store->Error();
}

TEST_F(SqliteLoggerStoreTest, PacksHoursThatAreOverAndNotTheOneThatIsOn)
{
    const int series = store->OpenSeries(u"M.U", 1);
    Append(Minutes(series, kStart, 40));
    Maintain(*store, kStart + kHour);
    EXPECT_EQ(Sql(file, "SELECT count(*) FROM sample; SELECT count(*) FROM block").front(), "40");
    Maintain(*store, kStart + kHour + 301 * kSecond);
    EXPECT_EQ(Sql(file, "SELECT count(*) FROM sample; SELECT sum(count) FROM block"),
              (std::vector<std::string>{"0", "40"}));
}

TEST_F(SqliteLoggerStoreTest, ManySamplesOfAnHourGoIntoABlockAtOnce)
{
    const int series = store->OpenSeries(u"M.U", 1);
    Append(Minutes(series, kStart, 120));
    EXPECT_EQ(Sql(file, "SELECT count(*) FROM sample; SELECT count(*) FROM block"),
              (std::vector<std::string>{"0", "2"}));
}

TEST_F(SqliteLoggerStoreTest, WhatComesLaterCountsWhetherItIsPackedOrNot)
{
    const int series = store->OpenSeries(u"M.U", 1);
    Append({{series, kStart + 60 * kSecond, 1.0}});
    Append(Minutes(series, kStart, 60));  // many, while one waits
    EXPECT_EQ(Read(u"M.U").at(kStart + 60 * kSecond), 230.1);
    Append({{series, kStart + 60 * kSecond, 5.0}});
    EXPECT_EQ(Read(u"M.U").at(kStart + 60 * kSecond), 5.0);
    Maintain(*store, kStart + kDay);
    EXPECT_EQ(Read(u"M.U").at(kStart + 60 * kSecond), 5.0);
    Append(Minutes(series, kStart, 60));  // straight into the block
    EXPECT_EQ(Read(u"M.U").at(kStart + 60 * kSecond), 230.1);
    EXPECT_EQ(Findings(), std::vector<std::string>());
}

// Whatever is entered, packed, read through or opened again in between.
TEST_F(SqliteLoggerStoreTest, HoldsWhatAMapWouldHold)
{
    constexpr int kVariables = 4;
    const wchar* const names[kVariables] = {u"M.A", u"M.B", u"M.C", u"M.D"};
    std::mt19937_64 random(5);
    std::vector<std::map<std::int64_t, double>> expected(kVariables);
    const auto open = [&] {
        for (int v = 0; v < kVariables; ++v) {
            ASSERT_EQ(store->OpenSeries(names[v], 1), v);
        }
    };
    open();
    std::int64_t now = kStart;
    for (int step = 0; step < 300; ++step) {
        std::vector<LoggerAppend> batch;
        const std::size_t length = random() % 8 == 0 ? random() % 400 : random() % 12;
        const std::int64_t around = now - static_cast<std::int64_t>(random() % 3) * kHour;
        for (std::size_t i = 0; i < length; ++i) {
            const int variable = static_cast<int>(random() % kVariables);
            const std::int64_t pace = variable == 0 ? kSecond : 100 * kSecond;
            const std::int64_t time = around + static_cast<std::int64_t>(random() % 60) * pace + variable;
            const double value =
                variable == 3 ? static_cast<double>(random()) * 1e-7 : static_cast<double>(random() % 5000) / 100.0;
            batch.push_back({variable, time, value});
            expected[static_cast<std::size_t>(variable)][time] = value;
        }
        Append(batch);
        now += static_cast<std::int64_t>(random() % 600) * kSecond;
        if (random() % 10 == 0) {
            Maintain(*store, now);
        }
        if (random() % 40 == 0) {
            Reopen();
            open();
        }
        const auto v = random() % kVariables;
        ASSERT_EQ(Read(names[v], random() % 2 == 0 ? LoggerNeed::Samples : LoggerNeed::Summaries), expected[v]) << step;
    }
    Maintain(*store, now + kDay);
    for (std::size_t v = 0; v < kVariables; ++v) {
        EXPECT_EQ(Read(names[v]), expected[v]);
    }
    EXPECT_EQ(Findings(), std::vector<std::string>());
}

TEST_F(SqliteLoggerStoreTest, KeepsTheEarliestAndTheLatestTimesThereAre)
{
    const std::int64_t earliest = std::numeric_limits<std::int64_t>::min();
    const int series = store->OpenSeries(u"M.U", 1);
    ASSERT_TRUE(store->SetDataSet({u"mains", 60, std::numeric_limits<std::int32_t>::max(), {u"M.U"}}));
    Append({{series, earliest, 1.0}, {series, earliest + 1, 2.0}, {series, -1, 3.0}, {series, kEnd - 1, 4.0}});
    for (int round = 0; round < 2; ++round) {
        Samples samples;
        ASSERT_TRUE(store->OpenReader()->ReadBlocks(u"M.U", earliest, kEnd, LoggerNeed::Samples, samples));
        EXPECT_EQ(samples.all,
                  (std::map<std::int64_t, double>{{earliest, 1.0}, {earliest + 1, 2.0}, {-1, 3.0}, {kEnd - 1, 4.0}}));
        // Without what is so long ago that no retention keeps it.
        ASSERT_EQ(store->Maintain(kStart), LoggerStore::Upkeep::Done);
        if (round == 0) {
            ASSERT_TRUE(store->SetDataSet({u"mains", 60, 0, {u"M.U"}}));
            Append({{series, earliest, 1.0}, {series, earliest + 1, 2.0}});
        }
    }
    EXPECT_EQ(Findings(), std::vector<std::string>());
}

TEST_F(SqliteLoggerStoreTest, TwoProgramsWriteAndPackTheSameFile)
{
    SqliteLoggerStore second(file);
    const int series = store->OpenSeries(u"M.U", 1);
    ASSERT_GE(second.OpenSeries(u"M.I", 1), 0) << second.Error();
    const int there = second.OpenSeries(u"M.U", 1);
    std::map<std::int64_t, double> expected;
    for (int i = 0; i < 200; ++i) {
        const LoggerAppend sample = {i % 2 == 0 ? series : there, kStart + i % 150 * 60 * kSecond, i * 0.5};
        ASSERT_TRUE((i % 2 == 0 ? *store : second).Append({&sample, 1}));
        expected[sample.time] = sample.value;
        if (i % 31 == 30) {
            Maintain(i % 2 == 0 ? *store : second, kStart + i * kHour + kDay);
        }
        if (i == 120) {
            // Straight into blocks, where nothing of the hour waits.
            std::vector<LoggerAppend> many = Minutes(there, kStart, 150);
            ASSERT_TRUE(second.Append(many)) << second.Error();
            for (const LoggerAppend& one : many) {
                expected[one.time] = one.value;
            }
        }
    }
    EXPECT_EQ(Read(u"M.U"), expected);
    Maintain(second, kStart + 900 * kHour);
    Maintain(*store, kStart + 901 * kHour);
    EXPECT_EQ(Read(u"M.U"), expected);
    EXPECT_EQ(Findings(), std::vector<std::string>());
}

TEST_F(SqliteLoggerStoreTest, TwoProgramsMayMakeTheFileAtOnce)
{
    for (int round = 0; round < 20; ++round) {
        const std::filesystem::path path = folder / ("both" + std::to_string(round));
        SqliteLoggerStore first(path);
        SqliteLoggerStore second(path);
        std::thread other([&] { EXPECT_GE(second.OpenSeries(u"M.I", 1), 0) << second.Error(); });
        EXPECT_GE(first.OpenSeries(u"M.U", 1), 0) << first.Error();
        other.join();
        LoggerCheck check;
        ASSERT_TRUE(first.OpenReader()->Check(check, nullptr));
        EXPECT_EQ(check.series, 2u);
    }
}

TEST_F(SqliteLoggerStoreTest, AReaderSeesWhatAnotherProgramPacked)
{
    const int series = store->OpenSeries(u"M.U", 1);
    Append({{series, kStart, 1.0}, {series, kStart + kSecond, 2.0}});
    const auto reader = SqliteLoggerStore(file).OpenReader();
    Samples first;
    ASSERT_TRUE(reader->ReadBlocks(u"M.U", 0, kEnd, LoggerNeed::Samples, first));
    EXPECT_EQ(first.all.size(), 2u);
    Maintain(*store, kStart + kDay);
    Append({{series, kStart + 2 * kSecond, 3.0}});
    Samples second;
    ASSERT_TRUE(reader->ReadBlocks(u"M.U", 0, kEnd, LoggerNeed::Samples, second));
    EXPECT_EQ(second.all,
              (std::map<std::int64_t, double>{{kStart, 1.0}, {kStart + kSecond, 2.0}, {kStart + 2 * kSecond, 3.0}}));
}

TEST_F(SqliteLoggerStoreTest, AClockThatIsSetYearsAheadDoesNotEmptyTheStore)
{
    test::ManualClock clock;
    const int series = store->OpenSeries(u"M.U", 1);
    for (int day = 0; day < 40; ++day) {
        Append(Minutes(series, kStart + day * kDay, 20));
    }
    ASSERT_TRUE(store->SetDataSet({u"mains", 60, 30, {u"M.U"}}));
    const std::int64_t now = kStart + 39 * kDay + kHour;
    Maintain(*store, now);
    const auto before = Read(u"M.U");
    EXPECT_EQ(before.begin()->first, kStart + 10 * kDay);
    // Ten years ahead for an hour of running, recorded samples and a start of the program included.
    const std::int64_t wrong = now + 3650 * kDay;
    for (int minute = 0; minute < 60; ++minute) {
        Append({{series, wrong + minute * 60 * kSecond, 1.0}});
        Maintain(*store, wrong + minute * 60 * kSecond);
        clock.Advance(std::chrono::minutes(1));
        if (minute == 30) {
            Reopen();
            ASSERT_EQ(store->OpenSeries(u"M.U", 1), series);
        }
    }
    const auto after = Read(u"M.U");
    EXPECT_LE(after.begin()->first, kStart + 12 * kDay);
    // The right time again: nothing more than that goes.
    Maintain(*store, now + kHour);
    EXPECT_LE(Read(u"M.U").begin()->first, kStart + 12 * kDay);
}

TEST_F(SqliteLoggerStoreTest, RetentionFollowsAfterALongPause)
{
    test::ManualClock clock;
    const int series = store->OpenSeries(u"M.U", 1);
    for (int day = 0; day < 10; ++day) {
        Append(Minutes(series, kStart + day * kDay, 20));
    }
    ASSERT_TRUE(store->SetDataSet({u"mains", 60, 5, {u"M.U"}}));
    Maintain(*store, kStart + 9 * kDay);
    EXPECT_EQ(Read(u"M.U").begin()->first, kStart + 4 * kDay);
    const std::int64_t later = kStart + 13 * kDay;
    for (int hour = 0; hour < 6; ++hour) {
        Maintain(*store, later + hour * kHour);
        clock.Advance(std::chrono::hours(1));
    }
    EXPECT_EQ(Read(u"M.U").begin()->first, kStart + 9 * kDay);
}

TEST_F(SqliteLoggerStoreTest, ChecksNameTheBlockWhoseNumbersAreWrong)
{
    const int series = store->OpenSeries(u"M.U", 1);
    Append(Minutes(series, kStart, 180));
    Sql(file, "UPDATE block SET maximum = maximum + 1 WHERE hour = " + std::to_string(kStart / kHour));
    Sql(file, "UPDATE block SET payload = x'0102' WHERE hour = " + std::to_string(kStart / kHour + 1));
    Sql(file, "DELETE FROM digest");
    const std::vector<std::string> findings = Findings();
    ASSERT_EQ(findings.size(), 3u);
    EXPECT_THAT(findings[0], HasSubstr("M.U, block of 2002-12-16 00:00 UTC: its numbers"));
    EXPECT_THAT(findings[1], HasSubstr("M.U, block of 2002-12-16 01:00 UTC: its samples are damaged"));
    EXPECT_THAT(findings[2], HasSubstr("the summaries of its day"));
    for (const std::string& finding : findings) {
        EXPECT_THAT(finding, HasSubstr("data.zrlog"));
    }
    // The upkeep finds the same, and says it once.
    Maintain(*store, kStart + kDay);
    EXPECT_EQ(store->TakeFindings(), findings);
    Maintain(*store, kStart + kDay);
    EXPECT_EQ(store->TakeFindings(), std::vector<std::string>());
}

TEST_F(SqliteLoggerStoreTest, ShowsTheBlocksBesideADamagedOne)
{
    const int series = store->OpenSeries(u"M.U", 1);
    Append(Minutes(series, kStart, 180));
    Sql(file, "UPDATE block SET payload = x'0102' WHERE hour = " + std::to_string(kStart / kHour + 1));
    class Visitor final : public LoggerBlockVisitor {
    public:
        bool OnBlock(LoggerBlock& block) override
        {
            std::span<const std::int64_t> times;
            std::span<const double> values;
            are.push_back(block.Samples(times, values));
            return true;
        }
        std::vector<bool> are;
    } visitor;
    const auto reader = store->OpenReader();
    EXPECT_TRUE(reader->ReadBlocks(u"M.U", 0, kEnd, LoggerNeed::Samples, visitor));
    EXPECT_EQ(visitor.are, (std::vector<bool>{true, false, true}));
    EXPECT_THAT(reader->Error(), HasSubstr("M.U, block of 2002-12-16 01:00 UTC"));
}

TEST(LoggerStoreAddress, NamesAFileOrNothing)
{
    const test::TempFolder folder;
    std::string error;
    EXPECT_EQ(OpenLoggerNodes({folder / "a.zrlog", {}}, error).size(), 1u);
    EXPECT_TRUE(error.empty());
    EXPECT_TRUE(OpenLoggerNodes({}, error).empty());
    EXPECT_FALSE(error.empty());
}

}  // namespace
}  // namespace zr
