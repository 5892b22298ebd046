// A server that goes away, comes back, or stops answering.
#include "integration/postgres/LoopbackListener.h"
#include "integration/postgres/PostgresFixture.h"
#include "integration/postgres/ReplyDropper.h"
#include "siblings/driversupport/store/LoggerNodes.h"

#include <gtest/gtest.h>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace zr::test {
namespace {

// Enters batches of two variables one after the other on a thread of its own, each again until it is acknowledged, and
// keeps the store up between them, as a recorder does.
class Recording {
public:
    explicit Recording(const std::string& text) : m_store(text), m_thread([this] { Run(); }) {}
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;
    ~Recording() { End(); }

    // Until so many more batches are acknowledged.
    void WaitForBatches(std::size_t more)
    {
        std::unique_lock lock(m_mutex);
        const std::size_t end = m_batches + more;
        EXPECT_TRUE(m_changed.wait_for(lock, std::chrono::seconds(60), [&] { return m_batches >= end; })) << m_error;
    }
    void WaitForFailure()
    {
        std::unique_lock lock(m_mutex);
        const std::size_t end = m_failures + 1;
        EXPECT_TRUE(m_changed.wait_for(lock, std::chrono::seconds(60), [&] { return m_failures >= end; }));
    }
    void End()
    {
        m_isEnding = true;
        if (m_thread.joinable()) {
            m_thread.join();
        }
    }

    // All that was acknowledged; after End.
    Expected expected;

private:
    void Run()
    {
        int first = -1;
        int second = -1;
        for (int next = 0; !m_isEnding;) {
            first = first < 0 ? m_store.OpenSeries(u"M.A", 1) : first;
            second = second < 0 ? m_store.OpenSeries(u"M.B", 8) : second;
            std::vector<LoggerAppend> batch;
            for (int i = next; i < next + 30; ++i) {
                batch.push_back({first, kStart + i * 20 * kSecond, i * 0.5});
                batch.push_back({second, kStart + i * 20 * kSecond, i * 0.5});
            }
            const bool isEntered = first >= 0 && second >= 0 && m_store.Append(batch);
            if (isEntered) {
                for (int i = next; i < next + 30; ++i) {
                    expected[kStart + i * 20 * kSecond] = i * 0.5;
                }
                next += 30;
                m_store.Maintain(kStart + next * 20 * kSecond);
            }
            const std::lock_guard lock(m_mutex);
            m_batches += isEntered ? 1 : 0;
            m_failures += isEntered ? 0 : 1;
            m_error = m_store.Error();
            m_changed.notify_all();
        }
    }

    PostgresLoggerStore m_store;
    std::atomic<bool> m_isEnding = false;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::size_t m_batches = 0;  // guarded by m_mutex, as is all below
    std::size_t m_failures = 0;
    std::string m_error;
    std::thread m_thread;  // the last one, since it uses all others
};

void ExpectWhole(const std::string& text, Recording& recording)
{
    recording.End();
    PostgresLoggerStore store(text);
    ExpectHolds(store, u"M.A", recording.expected);
    ExpectHolds(store, u"M.B", recording.expected);
    LoggerCheck check;
    ASSERT_TRUE(store.OpenReader()->Check(check, nullptr));
    EXPECT_TRUE(check.findings.empty());
    EXPECT_EQ(check.packed + check.unpacked, 2 * recording.expected.size());
}

TEST(PostgresFault, WhatWasAcknowledgedOutlivesCrashesOfTheServer)
{
    const std::string text = FreshDatabase(1);
    Recording recording(text);
    for (int i = 0; i < 5; ++i) {
        recording.WaitForBatches(7);
        Control(1, "crash");
        recording.WaitForFailure();
        Control(1, "start");
    }
    recording.WaitForBatches(1);
    ExpectWhole(text, recording);
}

TEST(PostgresFault, ConnectionsLostAtAnyMomentLoseAndDoubleNothing)
{
    const std::string text = FreshDatabase(1);
    Recording recording(text + " application_name=doomed");
    Sql sql(ServerText(1));
    for (int i = 0; i < 60; ++i) {
        recording.WaitForBatches(1);
        sql.Run({"select pg_terminate_backend(pid) from pg_stat_activity where application_name = 'doomed'"});
    }
    recording.WaitForBatches(1);
    ExpectWhole(text, recording);
}

TEST(PostgresFault, AReaderTellsOfALostServerAndWorksAgain)
{
    const std::string text = FreshDatabase(1);
    PostgresLoggerStore store(text);
    const int series = store.OpenSeries(u"M.U", 1);
    const std::vector<LoggerAppend> batch = {{series, kStart, 1.0}, {series, kStart + kHour, 2.0}};
    ASSERT_TRUE(store.Append(batch));
    const auto reader = store.OpenReader();

    // In the middle of a reading.
    class Crasher final : public LoggerBlockVisitor {
    public:
        bool OnBlock(LoggerBlock&) override
        {
            if (++blocks == 1) {
                Control(1, "crash");
            }
            return true;
        }
        int blocks = 0;
    };
    Crasher crasher;
    EXPECT_FALSE(reader->ReadBlocks(u"M.U", 0, kEver, LoggerNeed::Samples, crasher));
    EXPECT_FALSE(reader->Error().empty());
    LoggerSample sample{5, 5.0};
    EXPECT_FALSE(reader->FirstFrom(u"M.U", 0, sample));
    EXPECT_EQ(sample.time, 5);
    EXPECT_TRUE(Contains(reader->Error(), "/postgres: ")) << reader->Error();
    EXPECT_EQ(reader->InfoCode(u"M.U"), 0);
    std::vector<LoggerDataSet> sets;
    EXPECT_FALSE(reader->DataSets(sets));
    LoggerCheck check;
    EXPECT_TRUE(reader->Check(check, nullptr));
    EXPECT_EQ(check.findings.size(), 1u);

    Control(1, "start");
    while (!reader->FirstFrom(u"M.U", 0, sample)) {
        ASSERT_FALSE(reader->Error().empty());
    }
    EXPECT_EQ(sample.time, kStart);
    EXPECT_TRUE(reader->Error().empty());
}

TEST(PostgresFault, ADeadNodeCostsItsOwnVariablesOnlyAndSaysSo)
{
    std::vector<std::unique_ptr<LoggerStore>> stores;
    stores.push_back(std::make_unique<PostgresLoggerStore>(FreshDatabase(1)));
    stores.push_back(std::make_unique<PostgresLoggerStore>(FreshDatabase(2)));
    LoggerNodes nodes(std::move(stores));
    const int first = nodes.OpenSeries(u"M.U", 1);  // on the first node
    const int second = nodes.OpenSeries(u"M.B", 1);
    ASSERT_EQ(NodeOfVariable(u"M.U", 2), 0u);
    ASSERT_EQ(NodeOfVariable(u"M.B", 2), 1u);
    Control(2, "crash");
    const std::vector<LoggerAppend> batch = {{first, kStart, 1.0}, {second, kStart, 2.0}};
    EXPECT_FALSE(nodes.Append(batch));
    const std::string place = FromEnvironment("ZR_POSTGRES_2");
    const std::string host = place.substr(5, place.find(' ') - 5);
    EXPECT_TRUE(Contains(nodes.Error(), host)) << nodes.Error();
    const auto reader = nodes.OpenReader();
    LoggerSample sample;
    EXPECT_TRUE(reader->FirstFrom(u"M.U", 0, sample)) << reader->Error();
    EXPECT_FALSE(reader->FirstFrom(u"M.B", 0, sample));
    EXPECT_TRUE(Contains(reader->Error(), host)) << reader->Error();
    Control(2, "start");
    while (!nodes.Append(batch)) {
        ASSERT_TRUE(Contains(nodes.Error(), host)) << nodes.Error();
    }
    ExpectHolds(nodes, u"M.B", {{kStart, 2.0}});
}

TEST(PostgresFault, AServerThatStopsAnsweringIsNotWaitedForForEver)
{
    const std::string text = FreshDatabase(1);
    PostgresLimits limits;
    limits.answer = limits.connect = std::chrono::milliseconds(500);
    PostgresLoggerStore store(text, limits);
    // A machine that has much to do may be as slow.
    while (store.OpenSeries(u"M.U", 1) < 0) {
        ASSERT_TRUE(Contains(store.Error(), "the server doesn't answer")) << store.Error();
    }
    const int series = store.OpenSeries(u"M.U", 1);
    const auto reader = store.OpenReader();
    while (reader->InfoCode(u"M.U") != 1) {
        ASSERT_TRUE(Contains(reader->Error(), "the server doesn't answer")) << reader->Error();
    }
    Control(1, "freeze");
    // On a connection that stands, and where a new one would have to be made.
    const std::vector<LoggerAppend> batch = {{series, kStart, 1.0}};
    for (int i = 0; i < 2; ++i) {
        EXPECT_FALSE(store.Append(batch));
        EXPECT_TRUE(Contains(store.Error(), "the server doesn't answer")) << store.Error();
        EXPECT_EQ(reader->InfoCode(u"M.U"), 0);
        EXPECT_TRUE(Contains(reader->Error(), "the server doesn't answer")) << reader->Error();
    }
    Control(1, "thaw");
    while (!store.Append(batch)) {
        ASSERT_FALSE(store.Error().empty());
    }
    ExpectHolds(store, u"M.U", {{kStart, 1.0}});
}

TEST(PostgresFault, APortThatNeverAnswersIsNotWaitedForForEver)
{
    const LoopbackListener listener;
    PostgresLimits limits;
    limits.connect = std::chrono::milliseconds(200);
    PostgresLoggerStore store("host=127.0.0.1 dbname=plant user=kestrix gssencmode=disable port=" + listener.Port(),
                              limits);
    EXPECT_EQ(store.OpenSeries(u"M.U", 1), -1);
    EXPECT_EQ(store.Error(), "127.0.0.1:" + listener.Port() + "/plant: the server doesn't answer");
    EXPECT_EQ(store.Maintain(kStart), LoggerStore::Upkeep::Failed);
    BlockCollector collector;
    EXPECT_FALSE(store.OpenReader()->ReadBlocks(u"M.U", 0, kEver, LoggerNeed::Samples, collector));
}

// The batch is in the database, and the program can't know.
TEST(PostgresFault, ABatchInDoubtIsSentAgainAndNotDoubled)
{
    const std::string fresh = FreshDatabase(1);
    PostgresLoggerStore direct(fresh);
    const std::string tcp = ServerTcpText(1);
    const std::size_t port = tcp.find("port=") + 5;
    ReplyDropper between(tcp.substr(port, tcp.find(' ', port) - port));
    PostgresLoggerStore store(
        "host=127.0.0.1 user=kestrix dbname=postgres sslmode=disable gssencmode=disable port=" + between.Port() +
        " password=" + FromEnvironment("ZR_POSTGRES_PASSWORD") + fresh.substr(fresh.find(" options=")));
    const int series = store.OpenSeries(u"M.U", 1);
    ASSERT_GE(series, 0) << store.Error();
    const std::vector<LoggerAppend> batch = {{series, kStart, 1.0}, {series, kStart + 1, 2.0}};
    between.DropNext();
    EXPECT_FALSE(store.Append(batch));
    EXPECT_FALSE(store.Error().empty());
    EXPECT_EQ(between.Dropped(), 1);
    EXPECT_EQ(Sql(fresh).Integer("select count(*) from sample"), 2);
    while (!store.Append(batch)) {
        ASSERT_FALSE(store.Error().empty());
    }
    ExpectHolds(direct, u"M.U", {{kStart, 1.0}, {kStart + 1, 2.0}});

    // The same while it packs, and while it enters a variable.
    between.DropNext();
    EXPECT_EQ(store.Maintain(kStart + kHour), LoggerStore::Upkeep::Failed);
    while (store.Maintain(kStart + kHour) == LoggerStore::Upkeep::Failed) {
        ASSERT_FALSE(store.Error().empty());
    }
    Maintain(store, kStart + kHour);
    ExpectHolds(direct, u"M.U", {{kStart, 1.0}, {kStart + 1, 2.0}});
    between.DropNext();
    EXPECT_EQ(store.OpenSeries(u"M.I", 1), -1);
    EXPECT_EQ(between.Dropped(), 3);
    while (store.OpenSeries(u"M.I", 1) < 0) {
        ASSERT_FALSE(store.Error().empty());
    }
    EXPECT_EQ(Sql(fresh).Integer("select count(*) from series"), 2);
}

// What the database refuses, by a trigger on that table.
void RefuseInserts(Sql& sql, const std::string& table, const std::string& condition)
{
    sql.Run(
        {"create function refuse() returns trigger language plpgsql as"
         " 'begin raise exception $$refused$$; end'",
         "create trigger refuse before insert on " + table + " for each row when (" + condition +
             ") execute function refuse()"});
}

TEST(PostgresFault, ABatchThatFailsInItsMiddleLeavesNothing)
{
    const std::string text = FreshDatabase(1);
    PostgresLoggerStore store(text);
    Sql sql(text);
    const int series = store.OpenSeries(u"M.U", 1);
    RefuseInserts(sql, "sample", "new.value = 700");
    std::vector<LoggerAppend> batch;
    for (int i = 0; i < 1000; ++i) {
        batch.push_back({series, kStart + i, static_cast<double>(i)});
    }
    EXPECT_FALSE(store.Append(batch));
    EXPECT_TRUE(Contains(store.Error(), "/postgres: refused")) << store.Error();
    EXPECT_EQ(sql.Integer("select count(*) from sample"), 0);
    sql.Run({"drop trigger refuse on sample"});
    EXPECT_TRUE(store.Append(batch)) << store.Error();
    EXPECT_EQ(sql.Integer("select count(*) from sample"), 1000);
}

TEST(PostgresFault, PackingThatFailsInItsMiddleLosesNothing)
{
    const std::string text = FreshDatabase(1);
    PostgresLoggerStore store(text);
    Sql sql(text);
    const int series = store.OpenSeries(u"M.U", 1);
    std::vector<LoggerAppend> batch;
    Expected expected;
    for (int i = 0; i < 1000; ++i) {
        batch.push_back({series, kStart + i * 60 * kSecond, static_cast<double>(i)});
        expected[batch.back().time] = batch.back().value;
    }
    ASSERT_TRUE(store.Append(batch)) << store.Error();
    RefuseInserts(sql, "block", "new.hour = " + std::to_string(kStart / kHour + 5));
    LoggerStore::Upkeep upkeep = LoggerStore::Upkeep::More;
    while (upkeep == LoggerStore::Upkeep::More) {
        upkeep = store.Maintain(kStart + 100 * kHour);
    }
    EXPECT_EQ(upkeep, LoggerStore::Upkeep::Failed);
    EXPECT_TRUE(Contains(store.Error(), "/postgres: refused")) << store.Error();
    ExpectHolds(store, u"M.U", expected);
    sql.Run({"drop trigger refuse on block"});
    Maintain(store, kStart + 100 * kHour);
    EXPECT_EQ(sql.Integer("select count(*) from sample"), 0);
    ExpectHolds(store, u"M.U", expected);
}

// The session of a program that was stopped in the middle of a batch keeps its locks until the server gives it up.
TEST(PostgresFault, ASessionLeftInABatchHoldsUpNobodyForLong)
{
    const std::string text = FreshDatabase(1);
    PostgresLoggerStore store(text);
    const int series = store.OpenSeries(u"M.U", 1);
    const std::vector<LoggerAppend> batch = {{series, kStart, 1.0}};
    ASSERT_TRUE(store.Append(batch));
    Sql left(text);
    left.Run({"set idle_in_transaction_session_timeout = 500"});
    left.Run({"begin", "update sample set value = 7.0", "select value from meta where name = 'pack' for update"});
    int failures = 0;
    while (!store.Append(batch) && failures < 20) {
        ++failures;
    }
    EXPECT_LT(failures, 20) << store.Error();
    Maintain(store, kStart + kHour);
    ExpectHolds(store, u"M.U", {{kStart, 1.0}});
}

}  // namespace
}  // namespace zr::test
