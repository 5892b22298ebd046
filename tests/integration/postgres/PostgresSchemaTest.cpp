// Versions of the tables of a store in PostgreSQL.
#include "integration/postgres/PostgresFixture.h"
#include "siblings/driversupport/store/PostgresSchema.h"

#include <gtest/gtest.h>
#include <fstream>
#include <thread>

namespace zr::test {
namespace {

// The statements of a file, each ending with ";" at the end of a line.
std::vector<std::string> StatementsOf(const std::string& name)
{
    std::ifstream file(std::string(ZR_TEST_DATA) + "/" + name);
    EXPECT_TRUE(file.is_open()) << name;
    std::vector<std::string> statements(1);
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("--")) {
            continue;
        }
        statements.back() += line + "\n";
        if (line.ends_with(";")) {
            statements.back().resize(statements.back().size() - 2);
            statements.emplace_back();
        }
    }
    statements.pop_back();
    return statements;
}

std::string OlderStore()
{
    const std::string text = FreshDatabase(1);
    Sql(text).Run(StatementsOf("postgres_store_v1.sql"));
    return text;
}

// What that file holds.
const Expected kOlder = {{kStart, 230.1}, {kStart + 60 * kSecond, 230.3}, {kStart + kHour, 229.9}};

TEST(PostgresSchema, AStoreOfVersion1IsBroughtUpToDate)
{
    const std::string text = OlderStore();
    PostgresLoggerStore store(text);
    const int series = store.OpenSeries(u"Meter 1.U1", 1);
    ASSERT_GE(series, 0) << store.Error();
    EXPECT_EQ(Sql(text).Integer("select value from meta where name = 'version'"), kPostgresSchema);
    ExpectHolds(store, u"Meter 1.U1", kOlder);
    // What came with version 2.
    ASSERT_TRUE(store.SetDataSet({u"mains", 60, 0, {u"Meter 1.U1"}})) << store.Error();
    EXPECT_EQ(Sql(text).Integer("select id from series where variable = 'Meter 1.U1'"), 4);
    EXPECT_GE(store.OpenSeries(u"Meter 1.U2", 1), 0);
    EXPECT_EQ(Sql(text).Integer("select id from series where variable = 'Meter 1.U2'"), 5);
    Maintain(store, kStart + 5 * kHour);
    ExpectHolds(store, u"Meter 1.U1", kOlder);
    LoggerCheck check;
    ASSERT_TRUE(store.OpenReader()->Check(check, nullptr));
    EXPECT_TRUE(check.findings.empty());
    EXPECT_EQ(check.packed, 3u);
}

TEST(PostgresSchema, AReaderBringsItUpToDateAsWell)
{
    PostgresLoggerStore store(OlderStore());
    ExpectHolds(store, u"Meter 1.U1", kOlder);
    std::vector<LoggerDataSet> sets;
    EXPECT_TRUE(store.OpenReader()->DataSets(sets));
}

TEST(PostgresSchema, SeveralProgramsMakeTheTablesAtOnce)
{
    for (const std::string& text : {FreshDatabase(1), OlderStore()}) {
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&text] {
                PostgresLoggerStore store(text);
                EXPECT_GE(store.OpenSeries(u"Meter 1.U1", 1), 0) << store.Error();
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        EXPECT_EQ(Sql(text).Integer("select count(*) from meta where name = 'version'"), 1);
        EXPECT_EQ(Sql(text).Integer("select count(*) from series"), 1);
    }
}

TEST(PostgresSchema, ANewerStoreIsRefusedAndLeftAlone)
{
    const std::string text = OlderStore();
    Sql(text).Run({"update meta set value = 99 where name = 'version'"});
    PostgresLoggerStore store(text);
    EXPECT_EQ(store.OpenSeries(u"Meter 1.U1", 1), -1);
    EXPECT_TRUE(Contains(store.Error(), "the store has version 99")) << store.Error();
    const auto reader = store.OpenReader();
    EXPECT_EQ(reader->InfoCode(u"Meter 1.U1"), 0);
    EXPECT_TRUE(Contains(reader->Error(), "the store has version 99")) << reader->Error();
    EXPECT_EQ(Sql(text).Integer("select value from meta where name = 'version'"), 99);
}

TEST(PostgresSchema, TheTablesOfAnotherProgramAreLeftAlone)
{
    const std::string text = FreshDatabase(1);
    Sql(text).Run({"create table meta (name text, value bigint)", "insert into meta values ('other', 5)"});
    PostgresLoggerStore store(text);
    EXPECT_EQ(store.OpenSeries(u"M.U", 1), -1);
    EXPECT_TRUE(Contains(store.Error(), "isn't that of a store")) << store.Error();
    EXPECT_EQ(Sql(text).Integer("select count(*) from meta"), 1);
}

}  // namespace
}  // namespace zr::test
