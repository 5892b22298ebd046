#include "siblings/driversupport/recorder/Recorder.h"

#include "siblings/driversupport/store/LoggerNodes.h"
#include "support/LiveDevice.h"
#include "unit/recorder/RecorderFixture.h"

#include <condition_variable>
#include <memory>
#include <mutex>

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using zr::test::LiveDevice;
using zr::test::Samples;
using zr::test::Variable;
using Kind = zr::RecorderNotice::Kind;

// The real threads, on a clock that the test turns.
class Recorder : public testing::Test {
protected:
    ~Recorder() override
    {
        m_clock.ReleaseAll();
        m_recorder.reset();
    }

    void Make(std::vector<zr::LoggerDataSet> sets, std::size_t count = 1)
    {
        std::vector<std::unique_ptr<zr::LoggerStore>> nodes;
        m_stores.clear();
        for (std::size_t i = 0; i < count; ++i) {
            auto store = std::make_unique<zr::MemoryLoggerStore>();
            m_stores.push_back(store.get());
            nodes.push_back(std::move(store));
        }
        zr::RecorderOptions options;
        options.spoolFolder = m_folder / "spool";
        options.acknowledged = [this](const zr::RecorderAcknowledgement& acknowledgement) {
            const std::lock_guard lock(m_guard);
            (acknowledgement.isSpooled ? m_spooled : m_recorded) += acknowledgement.samples;
            m_changed.notify_all();
        };
        m_recorder = std::make_unique<zr::Recorder>(std::move(sets), std::move(nodes), options);
    }

    void Start()
    {
        std::string error;
        ASSERT_TRUE(m_recorder->Start(error)) << error;
        ASSERT_TRUE(m_clock.WaitForSleepers(1));
    }
    // One second, as soon as the sampling thread waits for it.
    void Second()
    {
        for (int i = 0; i < 10; ++i) {
            ASSERT_TRUE(m_clock.WaitForSleepers(1));
            m_clock.Advance(milliseconds(100));
        }
        ASSERT_TRUE(m_clock.WaitForSleepers(1));
    }
    // False when there are not so many acknowledged samples within ten seconds.
    bool WaitFor(const std::uint64_t& count, std::uint64_t samples)
    {
        std::unique_lock lock(m_guard);
        return m_changed.wait_for(lock, seconds(10), [&] { return count >= samples; });
    }
    void Stop()
    {
        m_clock.ReleaseAll();
        m_recorder->Stop();
    }

    zr::test::ManualClock m_clock;
    zr::test::TempFolder m_folder;
    std::mutex m_guard;
    std::condition_variable m_changed;
    std::uint64_t m_recorded = 0;
    std::uint64_t m_spooled = 0;
    std::vector<zr::MemoryLoggerStore*> m_stores;
    std::unique_ptr<zr::Recorder> m_recorder;
};

TEST_F(Recorder, RecordsOnItsOwnThreads)
{
    LiveDevice device(u"M", {Variable(u"A"), Variable(u"B")});
    device.Write(0, 230.0);
    device.Write(1, 50.0);
    Make({{u"mains", 1, 0, {u"M.A", u"M.B"}}});
    m_recorder->Bind();
    Start();
    EXPECT_TRUE(m_recorder->IsStarted());
    Second();
    Second();
    EXPECT_TRUE(WaitFor(m_recorded, 4));
    EXPECT_EQ(zr::test::SamplesOf(*m_stores[0], u"M.A"), (Samples{{1, 230.0}, {2, 230.0}}));
    EXPECT_EQ(m_recorder->Figures().nodes[0].state, zr::RecorderNodeState::Recording);
    Stop();
    EXPECT_EQ(m_recorder->Figures().nodes[0].state, zr::RecorderNodeState::Stopped);
    EXPECT_EQ(m_recorder->Figures().total.recorded, 4u);
    m_recorder->Stop();
}

TEST_F(Recorder, TheRegistryMayComeAndGoWhileItRecords)
{
    Make({{u"mains", 1, 0, {u"M.A"}}});
    Start();
    for (int i = 0; i < 20; ++i) {
        auto device = std::make_unique<LiveDevice>(u"M", std::vector<zr::VariableDescription>{Variable(u"A")});
        device->Write(0, 1.0);
        m_recorder->Bind();
        Second();
        m_recorder->Unbind();
        device.reset();
        Second();
    }
    EXPECT_TRUE(WaitFor(m_recorded, 20));
    Stop();
    const zr::RecorderCounts total = m_recorder->Figures().total;
    EXPECT_EQ(total.recorded, 20u);
    EXPECT_EQ(total.Unrecorded(zr::UnrecordedReason::Missing), 20u);
}

TEST_F(Recorder, WhatWasSampledBeforeTheStopIsInTheSpoolOfTheNextStart)
{
    LiveDevice device(u"M", {Variable(u"A")});
    device.Write(0, 1.0);
    Make({{u"mains", 1, 0, {u"M.A"}}});
    m_stores[0]->SetAvailable(false);
    m_recorder->Bind();
    Start();
    Second();
    EXPECT_TRUE(WaitFor(m_spooled, 1));
    Stop();
    Make({{u"mains", 1, 0, {u"M.A"}}});
    std::string error;
    ASSERT_TRUE(m_recorder->Start(error)) << error;
    EXPECT_TRUE(WaitFor(m_recorded, 1));
    EXPECT_EQ(zr::test::SamplesOf(*m_stores[0], u"M.A"), (Samples{{1, 1.0}}));
}

TEST_F(Recorder, ASecondOneOnTheSameSpoolIsRefused)
{
    Make({{u"mains", 1, 0, {u"M.A"}}});
    Start();
    zr::RecorderOptions options;
    options.spoolFolder = m_folder / "spool";
    std::vector<std::unique_ptr<zr::LoggerStore>> nodes;
    nodes.push_back(std::make_unique<zr::MemoryLoggerStore>());
    zr::Recorder second({}, std::move(nodes), options);
    std::string error;
    EXPECT_FALSE(second.Start(error));
    EXPECT_FALSE(second.IsStarted());
    EXPECT_THAT(error, testing::HasSubstr("in use by process"));
    EXPECT_THAT(error, testing::HasSubstr("1-of-1"));
}

TEST_F(Recorder, ASpoolOfAnotherNumberOfNodesGoesToThoseThatThereAreNow)
{
    std::vector<zr::VariableDescription> variables = {Variable(u"A"), Variable(u"B"), Variable(u"C"),
                                                      Variable(u"D"), Variable(u"E"), Variable(u"F")};
    LiveDevice device(u"M", variables);
    zr::LoggerDataSet set{u"mains", 1, 0, {}};
    for (std::size_t i = 0; i < variables.size(); ++i) {
        device.Write(i, static_cast<double>(i));
        set.variables.push_back(u"M." + variables[i].name);
    }
    Make({set}, 3);
    for (zr::MemoryLoggerStore* const store : m_stores) {
        store->SetAvailable(false);
    }
    m_recorder->Bind();
    Start();
    Second();
    EXPECT_TRUE(WaitFor(m_spooled, 6));
    Stop();
    m_recorder.reset();
    Make({set}, 2);
    std::string error;
    ASSERT_TRUE(m_recorder->Start(error)) << error;
    EXPECT_TRUE(WaitFor(m_recorded, 6));
    for (std::size_t i = 0; i < variables.size(); ++i) {
        const ZRBasicString& name = set.variables[i];
        EXPECT_EQ(zr::test::SamplesOf(*m_stores[zr::NodeOfVariable(name, 2)], name.CStr()),
                  (Samples{{1, static_cast<double>(i)}}));
    }
    EXPECT_FALSE(std::filesystem::exists(m_folder / "spool" / "1-of-3"));
    EXPECT_FALSE(std::filesystem::exists(m_folder / "spool" / "3-of-3"));
    EXPECT_TRUE(std::filesystem::exists(m_folder / "spool" / "1-of-2"));
}

TEST_F(Recorder, NothingToRecordIsNoTrouble)
{
    Make({});
    m_recorder->Bind();
    Start();
    Second();
    Stop();
    EXPECT_EQ(m_recorder->Figures().total.Unrecorded(), 0u);
    EXPECT_TRUE(m_recorder->TakeNotices().empty());
}

}  // namespace
