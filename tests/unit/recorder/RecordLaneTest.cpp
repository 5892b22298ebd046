#include "siblings/driversupport/recorder/RecordLane.h"

#include "unit/recorder/RecorderFixture.h"

#include <memory>
#include <string>

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using zr::RecordBatch;
using zr::RecorderNodeState;
using zr::RecorderNotice;
using zr::UnrecordedReason;
using zr::test::kMidnight;
using zr::test::kSecond;
using zr::test::Samples;
using Kind = zr::RecorderNotice::Kind;

// Keeps what it is given, and finds something.
class FindingStore final : public zr::LoggerStore {
public:
    int OpenSeries(const ZRBasicString& variable, std::int32_t infoCode) override
    {
        return memory.OpenSeries(variable, infoCode);
    }
    bool Append(std::span<const zr::LoggerAppend> batch) override { return memory.Append(batch); }
    bool SetDataSet(const zr::LoggerDataSet& set) override { return memory.SetDataSet(set); }
    Upkeep Maintain(std::int64_t now) override
    {
        lastUpkeep = now;
        ++upkeeps;
        return result;
    }
    std::vector<std::string> TakeFindings() override { return std::exchange(findings, {}); }
    std::unique_ptr<zr::LoggerReader> OpenReader() override { return memory.OpenReader(); }
    [[nodiscard]] std::string Error() const override { return error; }

    zr::MemoryLoggerStore memory;
    Upkeep result = Upkeep::Done;
    std::int64_t lastUpkeep = 0;
    int upkeeps = 0;
    std::vector<std::string> findings;
    std::string error;
};

// A lane without its thread: the test makes the steps.
class RecordLane : public testing::Test {
protected:
    RecordLane()
    {
        m_sets.push_back({u"mains", 1, 30, {u"M.A", u"M.B"}});
        m_sets.push_back({u"energy", 60, 0, {u"M.E"}});
        m_books = std::make_unique<zr::RecorderBooks>(m_sets, 1);
        Restart();
    }

    // As another process would begin.
    void Restart(std::uint64_t spoolBytes = 1u << 30)
    {
        m_lane.reset();
        m_books = std::make_unique<zr::RecorderBooks>(m_sets, 1);
        m_lane = std::make_unique<zr::RecordLane>(
            m_sets, 1, CurrentStore(), *m_books,
            zr::RecordLaneOptions{0, m_folder / "spool", spoolBytes, &m_clock,
                                  [this](const zr::RecorderAcknowledgement& acknowledgement) {
                                      (acknowledgement.isSpooled ? m_spooledTimes : m_recordedTimes)
                                          .push_back((acknowledgement.time - kMidnight) / kSecond);
                                  }});
        m_lane->SetInfoCodes({1, 1, 8});
    }
    [[nodiscard]] zr::LoggerStore& CurrentStore()
    {
        return m_isFinding ? static_cast<zr::LoggerStore&>(m_finding) : m_store;
    }

    static RecordBatch Mains(std::int64_t time, double value = 1.0)
    {
        return {kMidnight + time * kSecond, 0, false, {{0, value}, {1, value + 0.5}}};
    }
    bool Push(const RecordBatch& batch)
    {
        std::vector<RecordBatch> batches = {batch};
        return m_lane->Push(std::move(batches));
    }
    void Record(std::int64_t time, double value = 1.0)
    {
        EXPECT_TRUE(Push(Mains(time, value)));
        m_lane->Step();
    }
    // Steps until there is nothing to be done at once.
    void Settle()
    {
        while (m_lane->Step() == milliseconds(0)) {
        }
    }
    [[nodiscard]] zr::RecorderFigures Figures() const { return m_books->Figures(); }
    [[nodiscard]] zr::RecorderNodeFigures Node() const { return Figures().nodes[0]; }
    [[nodiscard]] std::uint64_t Unrecorded(UnrecordedReason reason) const { return Figures().total.Unrecorded(reason); }
    [[nodiscard]] Samples Stored(const wchar* variable) { return zr::test::SamplesOf(CurrentStore(), variable); }
    [[nodiscard]] std::vector<RecorderNotice> Notices(Kind kind)
    {
        std::vector<RecorderNotice> notices = m_books->TakeNotices();
        std::erase_if(notices, [kind](const RecorderNotice& notice) { return notice.kind != kind; });
        return notices;
    }

    zr::test::ManualClock m_clock;
    zr::test::TempFolder m_folder;
    zr::MemoryLoggerStore m_store;
    FindingStore m_finding;
    bool m_isFinding = false;
    std::vector<zr::LoggerDataSet> m_sets;
    std::unique_ptr<zr::RecorderBooks> m_books;
    std::vector<std::int64_t> m_recordedTimes;
    std::vector<std::int64_t> m_spooledTimes;
    std::unique_ptr<zr::RecordLane> m_lane;
};

TEST_F(RecordLane, EntersWhatIsPushed)
{
    Record(1, 5.0);
    Record(2, 6.0);
    EXPECT_EQ(Stored(u"M.A"), (Samples{{1, 5.0}, {2, 6.0}}));
    EXPECT_EQ(Stored(u"M.B"), (Samples{{1, 5.5}, {2, 6.5}}));
    EXPECT_EQ(Figures().total.recorded, 4u);
    EXPECT_EQ(Figures().dataSets[0].counts.recorded, 4u);
    EXPECT_EQ(Figures().dataSets[0].lastTime, kMidnight + 2 * kSecond);
    EXPECT_EQ(Node().state, RecorderNodeState::Recording);
    EXPECT_TRUE(m_books->TakeNotices().empty());
}

TEST_F(RecordLane, TellsTheStoreTheClassesAndTheDataSets)
{
    EXPECT_TRUE(Push({kMidnight, 1, false, {{2, 7.0}}}));
    Record(1);
    Settle();
    const auto reader = m_store.OpenReader();
    EXPECT_EQ(reader->InfoCode(u"M.E"), 8);
    EXPECT_EQ(reader->InfoCode(u"M.A"), 1);
    std::vector<zr::LoggerDataSet> sets;
    ASSERT_TRUE(reader->DataSets(sets));
    ASSERT_EQ(sets.size(), 2u);
    EXPECT_EQ(sets[0], m_sets[1]);
    EXPECT_EQ(sets[1], m_sets[0]);
}

TEST_F(RecordLane, ADataSetHoldsAVariableWithoutADeviceThatTheStoreKnows)
{
    m_store.OpenSeries(u"M.B", 4);
    EXPECT_TRUE(Push({kMidnight, 0, false, {{0, 7.0}}}));
    Settle();
    std::vector<zr::LoggerDataSet> sets;
    ASSERT_TRUE(m_store.OpenReader()->DataSets(sets));
    EXPECT_EQ(sets[1].variables, m_sets[0].variables);
    EXPECT_TRUE(sets[0].variables.empty());
    EXPECT_EQ(m_store.OpenReader()->InfoCode(u"M.B"), 4);
}

TEST_F(RecordLane, SpoolsWhileTheStoreIsAwayAndTellsOnce)
{
    m_store.SetAvailable(false);
    Record(1);
    Record(2);
    Record(3);
    EXPECT_EQ(Node().state, RecorderNodeState::Spooling);
    EXPECT_EQ(Node().error, "the store in memory is set away");
    EXPECT_EQ(Figures().total.spooled, 6u);
    EXPECT_EQ(Figures().dataSets[0].counts.spooled, 6u);
    EXPECT_EQ(Figures().total.recorded, 0u);
    EXPECT_GT(Node().spoolBytes, 0u);
    const auto notices = Notices(Kind::StoreAway);
    ASSERT_EQ(notices.size(), 1u);
    EXPECT_EQ(notices[0].text, "the store in memory is set away");
    EXPECT_THAT(m_spooledTimes, testing::ElementsAre(1, 2, 3));
}

TEST_F(RecordLane, ResendsInOrderWhenTheStoreIsBackAndTellsHowMuch)
{
    Record(1);
    m_store.SetAvailable(false);
    Record(2);
    Record(3);
    m_store.SetAvailable(true);
    m_clock.Advance(seconds(10));
    Record(4);
    Settle();
    EXPECT_THAT(m_recordedTimes, testing::ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(Stored(u"M.A").size(), 4u);
    EXPECT_EQ(Figures().total.spooled, 0u);
    EXPECT_EQ(Figures().total.recorded, 8u);
    EXPECT_EQ(Node().state, RecorderNodeState::Recording);
    EXPECT_EQ(Node().error, "");
    EXPECT_EQ(Node().spoolBytes, 0u);
    const auto notices = Notices(Kind::StoreBack);
    ASSERT_EQ(notices.size(), 1u);
    EXPECT_EQ(notices[0].count, 6u);
    Record(5);
    EXPECT_THAT(m_spooledTimes, testing::ElementsAre(2, 3, 4));
}

TEST_F(RecordLane, LooksForTheStoreByItselfWithinTenSeconds)
{
    m_store.SetAvailable(false);
    Record(1);
    m_store.SetAvailable(true);
    milliseconds waited(0);
    while (Node().state != RecorderNodeState::Recording && waited < seconds(60)) {
        const milliseconds rest = m_lane->Step();
        m_clock.Advance(rest);
        waited += rest;
    }
    EXPECT_LT(waited, seconds(10));
    EXPECT_EQ(Stored(u"M.A").size(), 1u);
}

TEST_F(RecordLane, DoesntAskAStoreThatIsAwayAtEveryBatch)
{
    m_store.SetAvailable(false);
    Record(1);
    m_store.SetAvailable(true);
    Record(2);
    EXPECT_EQ(Figures().total.recorded, 0u);
    EXPECT_EQ(Figures().total.spooled, 4u);
}

TEST_F(RecordLane, WhatAnEarlierProgramSpooledIsResentFirst)
{
    m_store.SetAvailable(false);
    Record(1, 5.0);
    Restart();
    m_store.SetAvailable(true);
    Record(2, 6.0);
    Settle();
    EXPECT_EQ(Stored(u"M.A"), (Samples{{1, 5.0}, {2, 6.0}}));
    EXPECT_THAT(m_recordedTimes, testing::ElementsAre(1, 2));
    EXPECT_EQ(Figures().dataSets[0].counts.recorded, 4u);
    EXPECT_EQ(Notices(Kind::StoreBack).size(), 1u);
}

TEST_F(RecordLane, WhatIsSpooledForADataSetThatIsNoMoreIsResentToo)
{
    m_store.SetAvailable(false);
    Record(1, 5.0);
    m_sets = {{u"other", 1, 0, {u"M.X"}}};
    Restart();
    m_lane->Step();
    EXPECT_EQ(Figures().total.spooled, 2u);
    EXPECT_EQ(Figures().dataSets[0].counts.spooled, 0u);
    m_store.SetAvailable(true);
    m_clock.Advance(seconds(5));
    Settle();
    EXPECT_EQ(Stored(u"M.B"), (Samples{{1, 5.5}}));
    EXPECT_EQ(Figures().total.recorded, 2u);
}

TEST_F(RecordLane, AKillBetweenTheResendingAndTheRemovalMakesNoDoubles)
{
    m_store.SetAvailable(false);
    Record(1);
    Record(2);
    std::filesystem::copy(m_folder / "spool", m_folder / "before");
    m_store.SetAvailable(true);
    m_clock.Advance(seconds(5));
    Settle();
    EXPECT_EQ(Stored(u"M.A").size(), 2u);
    // The spool as it was before the removal.
    m_lane.reset();
    std::filesystem::remove_all(m_folder / "spool");
    std::filesystem::rename(m_folder / "before", m_folder / "spool");
    std::filesystem::permissions(m_folder / "spool", std::filesystem::perms(0700));
    Restart();
    Settle();
    EXPECT_EQ(Stored(u"M.A"), (Samples{{1, 1.0}, {2, 1.0}}));
    EXPECT_EQ(Node().spooled, 0u);
    EXPECT_EQ(Unrecorded(UnrecordedReason::ClockSetBack), 0u);
}

TEST_F(RecordLane, AFullSpoolKeepsABitInMemoryAndCountsTheRest)
{
    Restart(300);
    m_store.SetAvailable(false);
    std::int64_t time = 0;
    RecordBatch large{0, 0, false, std::vector<zr::RecordedValue>(100000, {0, 1.0})};
    while (time < 1000 && Push(Mains(++time))) {
        m_lane->Step();
        large.time = kMidnight + (1000 + time) * kSecond;
        if (Node().state == RecorderNodeState::Full && !Push(large)) {
            break;
        }
    }
    EXPECT_EQ(Node().state, RecorderNodeState::Full);
    EXPECT_THAT(Node().error, testing::HasSubstr("set away"));
    EXPECT_LE(Node().spoolBytes, 300u);
    EXPECT_GT(Node().queued, 100000u);
    EXPECT_LT(Node().queued, 1u << 20);
    const auto notices = Notices(Kind::SpoolFailed);
    ASSERT_EQ(notices.size(), 1u);
    EXPECT_THAT(notices[0].text, testing::HasSubstr("full"));
    // All that was taken on is recorded once the store is back.
    const std::uint64_t taken = Figures().total.spooled + Node().queued;
    m_store.SetAvailable(true);
    m_clock.Advance(seconds(5));
    Settle();
    EXPECT_EQ(Figures().total.recorded, taken);
    EXPECT_EQ(Node().queued, 0u);
    EXPECT_EQ(Node().state, RecorderNodeState::Recording);
}

TEST_F(RecordLane, WhereThereIsNoRoomForManyThereMayBeSomeForOne)
{
    Restart(300);
    m_store.SetAvailable(false);
    for (std::int64_t time = 1; time <= 20; ++time) {
        EXPECT_TRUE(Push(Mains(time)));
    }
    m_lane->Step();
    EXPECT_GT(Figures().total.spooled, 0u);
    EXPECT_EQ(Figures().total.spooled + Node().queued, 40u);
    EXPECT_EQ(Node().state, RecorderNodeState::Full);
    EXPECT_EQ(Notices(Kind::SpoolFailed).size(), 1u);
}

TEST_F(RecordLane, NothingIsTakenOnWithoutEnd)
{
    const RecordBatch large{kMidnight, 0, false, std::vector<zr::RecordedValue>(100000, {0, 1.0})};
    int taken = 0;
    while (taken < 100 && Push(large)) {
        ++taken;
    }
    EXPECT_EQ(taken, 10);
    Settle();
    EXPECT_TRUE(Push(large));
}

TEST_F(RecordLane, ASpoolThatCantBeUsedIsToldAndRecordingGoesOn)
{
    m_lane.reset();
    m_folder.Write("spool", "a file where a folder should be");
    Restart();
    Record(1);
    Record(2);
    EXPECT_EQ(Stored(u"M.A").size(), 2u);
    EXPECT_EQ(Node().state, RecorderNodeState::Recording);
    EXPECT_NE(Node().error, "");
    EXPECT_EQ(Notices(Kind::SpoolFailed).size(), 1u);
    m_store.SetAvailable(false);
    Record(3);
    EXPECT_EQ(Node().state, RecorderNodeState::Full);
    EXPECT_EQ(Node().queued, 2u);
    // In memory until either is back.
    std::filesystem::remove(m_folder / "spool");
    Record(4);
    EXPECT_EQ(Node().state, RecorderNodeState::Spooling);
    EXPECT_EQ(Figures().total.spooled, 4u);
    EXPECT_EQ(Notices(Kind::SpoolBack).size(), 1u);
}

TEST_F(RecordLane, FinishLeavesNothingUnaccounted)
{
    EXPECT_TRUE(Push(Mains(1)));
    m_lane->Finish();
    EXPECT_EQ(Stored(u"M.A").size(), 1u);
    EXPECT_EQ(Node().state, RecorderNodeState::Stopped);

    m_store.SetAvailable(false);
    EXPECT_TRUE(Push(Mains(2)));
    m_lane->Finish();
    EXPECT_EQ(Figures().total.spooled, 2u);

    Restart(10);
    EXPECT_TRUE(Push(Mains(3)));
    m_lane->Finish();
    EXPECT_EQ(Unrecorded(UnrecordedReason::NoRoom), 2u);
    EXPECT_EQ(Figures().dataSets[0].counts.Unrecorded(UnrecordedReason::NoRoom), 2u);
    EXPECT_EQ(Notices(Kind::NotRecorded).size(), 1u);
}

TEST_F(RecordLane, AClockThatWasSetBackBeforeTheStartOverwritesNothing)
{
    for (std::int64_t time = 10; time <= 20; ++time) {
        Record(time, 7.0);
    }
    Restart();
    for (std::int64_t time = 5; time <= 25; ++time) {
        Record(time, 9.0);
    }
    Samples expected;
    for (std::int64_t time = 5; time <= 25; ++time) {
        expected.emplace_back(time, time >= 10 && time <= 20 ? 7.0 : 9.0);
    }
    EXPECT_EQ(Stored(u"M.A"), expected);
    EXPECT_EQ(Unrecorded(UnrecordedReason::ClockSetBack), 22u);
    EXPECT_EQ(Figures().total.recorded, 20u);
    EXPECT_EQ(Notices(Kind::NotRecorded).size(), 1u);
}

TEST_F(RecordLane, AClockThatIsSetToBeforeTheStartOverwritesNothing)
{
    Record(10, 7.0);
    Restart();
    Record(100, 9.0);
    Record(10, 9.0);
    Record(11, 9.0);
    EXPECT_EQ(Stored(u"M.A"), (Samples{{10, 7.0}, {11, 9.0}, {100, 9.0}}));
    EXPECT_EQ(Unrecorded(UnrecordedReason::ClockSetBack), 2u);
}

TEST_F(RecordLane, AnEarlierProgramsClockYearsAheadDoesntStopTheRecording)
{
    constexpr std::int64_t kYears = 86400 * 365 * 3;
    Record(15, 7.0);
    Record(kYears, 7.0);
    Restart();
    for (std::int64_t time = 10; time <= 20; ++time) {
        Record(time, 9.0);
    }
    EXPECT_EQ(Figures().total.recorded, 20u);
    EXPECT_EQ(Unrecorded(UnrecordedReason::ClockSetBack), 2u);
    EXPECT_EQ(Stored(u"M.A").size(), 12u);
}

TEST_F(RecordLane, WhatWasSpooledUnderAClockSetBackOverwritesNothingEither)
{
    Record(10, 7.0);
    Restart();
    m_store.SetAvailable(false);
    Record(10, 9.0);
    Record(11, 9.0);
    EXPECT_EQ(Figures().total.spooled, 4u);
    m_store.SetAvailable(true);
    m_clock.Advance(seconds(5));
    Settle();
    EXPECT_EQ(Stored(u"M.A"), (Samples{{10, 7.0}, {11, 9.0}}));
    EXPECT_EQ(Unrecorded(UnrecordedReason::ClockSetBack), 2u);
    EXPECT_EQ(Figures().total.spooled, 0u);
}

TEST_F(RecordLane, DamageOfTheSpoolIsToldAndCounted)
{
    m_store.SetAvailable(false);
    Record(1);
    Record(2);
    Record(3);
    m_lane.reset();
    const std::string name = "spool/" + zr::SpoolFileName(0, 0);
    std::string bytes = m_folder.Read(name);
    bytes[bytes.size() - 70] ^= 1;  // within the second of three records of samples
    m_folder.Write(name, bytes);
    m_store.SetAvailable(true);
    Restart();
    Settle();
    EXPECT_EQ(Stored(u"M.A"), (Samples{{1, 1.0}, {3, 1.0}}));
    EXPECT_EQ(Unrecorded(UnrecordedReason::Damaged), 2u);
    const auto notices = Notices(Kind::SpoolDamaged);
    ASSERT_EQ(notices.size(), 1u);
    EXPECT_EQ(notices[0].count, 2u);
    EXPECT_THAT(notices[0].text, testing::HasSubstr("damaged"));
}

TEST_F(RecordLane, UpkeepIsDoneWhileThereIsNothingToRecordAndItsFindingsAreTold)
{
    m_isFinding = true;
    Restart();
    m_finding.findings = {"block 7 is damaged"};
    m_finding.result = zr::LoggerStore::Upkeep::More;
    EXPECT_EQ(m_lane->Step(), milliseconds(0));
    EXPECT_EQ(m_finding.upkeeps, 1);
    EXPECT_EQ(m_finding.lastUpkeep, kMidnight);
    m_finding.result = zr::LoggerStore::Upkeep::Done;
    EXPECT_GT(m_lane->Step(), milliseconds(0));
    m_lane->Step();
    EXPECT_EQ(m_finding.upkeeps, 2);
    m_clock.Advance(seconds(10));
    m_lane->Step();
    EXPECT_EQ(m_finding.upkeeps, 3);
    const auto notices = Notices(Kind::Finding);
    ASSERT_EQ(notices.size(), 1u);
    EXPECT_EQ(notices[0].text, "block 7 is damaged");
}

TEST_F(RecordLane, UpkeepThatFailsIsToldOnceAndTriedAgain)
{
    m_isFinding = true;
    Restart();
    m_finding.result = zr::LoggerStore::Upkeep::Failed;
    m_finding.error = "no room to pack";
    for (int i = 0; i < 300; ++i) {
        m_lane->Step();
        m_clock.Advance(seconds(1));
    }
    EXPECT_EQ(m_finding.upkeeps, 5);
    EXPECT_EQ(Notices(Kind::Finding).size(), 1u);
    Record(1);
    EXPECT_EQ(Figures().total.recorded, 2u);
}

TEST_F(RecordLane, ItsThreadRecordsWhatIsPushedAndEndsWithNothingLeft)
{
    m_lane->Start();
    for (std::int64_t time = 1; time <= 50; ++time) {
        EXPECT_TRUE(Push(Mains(time)));
    }
    m_lane->Stop();
    EXPECT_EQ(Stored(u"M.A").size(), 50u);
    m_lane->Start();
    EXPECT_TRUE(Push(Mains(51)));
    m_lane->Stop();
    EXPECT_EQ(Stored(u"M.A").size(), 51u);
}

}  // namespace
