#include "siblings/driversupport/recorder/Sampler.h"

#include "siblings/driversupport/recorder/RecordLane.h"
#include "siblings/driversupport/store/LoggerNodes.h"
#include "support/LiveDevice.h"
#include "unit/recorder/RecorderFixture.h"

#include <limits>
#include <memory>

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using zr::RecorderNotice;
using zr::UnrecordedReason;
using zr::test::LiveDevice;
using zr::test::Samples;
using zr::test::Variable;
using Kind = zr::RecorderNotice::Kind;

// A sampler and its lanes without their threads: the test turns the clock and makes the steps.
class Sampler : public testing::Test {
protected:
    Sampler() : m_device(MakeDevice()) {}

    static std::unique_ptr<LiveDevice> MakeDevice()
    {
        return std::make_unique<LiveDevice>(
            u"M", std::vector<zr::VariableDescription>{Variable(u"A"), Variable(u"B"), Variable(u"C")});
    }

    void Begin(std::vector<zr::LoggerDataSet> sets, std::size_t nodes = 1)
    {
        m_sets = std::move(sets);
        m_books = std::make_unique<zr::RecorderBooks>(m_sets, nodes);
        std::vector<zr::RecordLane*> lanes;
        for (std::size_t i = 0; i < nodes; ++i) {
            m_stores.push_back(std::make_unique<zr::MemoryLoggerStore>());
            m_lanes.push_back(std::make_unique<zr::RecordLane>(
                m_sets, nodes, *m_stores[i], *m_books,
                zr::RecordLaneOptions{i, m_folder / std::to_string(i), 1u << 20, &m_clock, {}}));
            lanes.push_back(m_lanes.back().get());
        }
        m_sampler = std::make_unique<zr::Sampler>(m_sets, lanes, *m_books, m_clock);
        m_sampler->Bind();
        m_sampler->Begin();
    }

    void Step()
    {
        m_sampler->Step();
        for (const auto& lane : m_lanes) {
            lane->Step();
        }
    }
    // In tenths of a second, as the thread does.
    void Pass(seconds duration)
    {
        for (milliseconds passed(0); passed < duration; passed += milliseconds(100)) {
            m_clock.Advance(milliseconds(100));
            Step();
        }
    }
    // The thread was held up, or slept for long.
    void Jump(milliseconds duration)
    {
        m_clock.Advance(duration);
        Step();
    }

    [[nodiscard]] Samples Stored(const wchar* variable, std::size_t node = 0)
    {
        return zr::test::SamplesOf(*m_stores[node], variable);
    }
    [[nodiscard]] zr::RecorderCounts Total() const { return m_books->Figures().total; }
    [[nodiscard]] zr::RecorderCounts OfSet(std::size_t set) const { return m_books->Figures().dataSets[set].counts; }
    [[nodiscard]] std::size_t CountNotices(Kind kind) { return zr::test::CountKind(m_books->TakeNotices(), kind); }

    zr::test::ManualClock m_clock;
    zr::test::TempFolder m_folder;
    std::unique_ptr<LiveDevice> m_device;
    std::vector<zr::LoggerDataSet> m_sets;
    std::unique_ptr<zr::RecorderBooks> m_books;
    std::vector<std::unique_ptr<zr::MemoryLoggerStore>> m_stores;
    std::vector<std::unique_ptr<zr::RecordLane>> m_lanes;
    std::unique_ptr<zr::Sampler> m_sampler;
};

TEST_F(Sampler, ReadsTheValuesOfTheMomentWhenTheyAreDue)
{
    Begin({{u"mains", 2, 0, {u"M.A", u"M.B"}}});
    m_device->Write(0, 230.0);
    m_device->Write(1, -1.5);
    Pass(seconds(3));
    m_device->Write(0, 231.0);
    Pass(seconds(3));
    EXPECT_EQ(Stored(u"M.A"), (Samples{{2, 230.0}, {4, 231.0}, {6, 231.0}}));
    EXPECT_EQ(Stored(u"M.B"), (Samples{{2, -1.5}, {4, -1.5}, {6, -1.5}}));
    EXPECT_EQ(Total().recorded, 6u);
    EXPECT_EQ(Total().Unrecorded(), 0u);
    EXPECT_TRUE(m_books->TakeNotices().empty());
}

TEST_F(Sampler, EveryDataSetHasItsPeriodAndASharedSampleIsKeptOnce)
{
    Begin({{u"fast", 1, 0, {u"M.A"}}, {u"slow", 3, 0, {u"M.A", u"M.B"}}});
    m_device->Write(0, 1.0);
    m_device->Write(1, 2.0);
    Pass(seconds(6));
    EXPECT_EQ(Stored(u"M.A").size(), 6u);
    EXPECT_EQ(Stored(u"M.B"), (Samples{{3, 2.0}, {6, 2.0}}));
    EXPECT_EQ(OfSet(0).recorded, 6u);
    EXPECT_EQ(OfSet(1).recorded, 4u);
}

TEST_F(Sampler, SaysHowLongNothingIsDue)
{
    Begin({{u"mains", 60, 0, {u"M.A"}}});
    EXPECT_EQ(m_sampler->Step(), seconds(60));
    m_clock.Advance(milliseconds(59500));
    EXPECT_EQ(m_sampler->Step(), milliseconds(500));
}

TEST_F(Sampler, AVariableWithoutAValidValueIsCountedAndToldOnceUntilItIsFine)
{
    Begin({{u"mains", 1, 0, {u"M.A", u"M.B"}}});
    m_device->Write(0, 1.0);
    Pass(seconds(3));
    EXPECT_EQ(Total().Unrecorded(UnrecordedReason::Invalid), 3u);
    EXPECT_EQ(OfSet(0).Unrecorded(UnrecordedReason::Invalid), 3u);
    EXPECT_EQ(Stored(u"M.A").size(), 3u);
    const auto notices = m_books->TakeNotices();
    ASSERT_EQ(notices.size(), 1u);
    EXPECT_EQ(notices[0].kind, Kind::NotRecorded);
    EXPECT_EQ(notices[0].reason, UnrecordedReason::Invalid);
    EXPECT_EQ(notices[0].dataSet, ZRBasicString(u"mains"));
    EXPECT_EQ(notices[0].count, 1u);
    m_device->Write(1, 1.0);
    Pass(seconds(2));
    m_device->InvalidateAll();
    Pass(seconds(2));
    EXPECT_EQ(CountNotices(Kind::NotRecorded), 1u);
    EXPECT_EQ(Total().Unrecorded(UnrecordedReason::Invalid), 7u);
}

TEST_F(Sampler, AVariableThatIsNotThereIsMissing)
{
    Begin({{u"mains", 1, 0, {u"M.A", u"M.NONE", u"NOBODY.A", u""}}});
    m_device->Write(0, 1.0);
    Pass(seconds(2));
    EXPECT_EQ(Total().Unrecorded(UnrecordedReason::Missing), 6u);
    EXPECT_EQ(CountNotices(Kind::NotRecorded), 1u);
    EXPECT_EQ(Total().recorded, 2u);
}

TEST_F(Sampler, ATextOrWhatIsNoNumberIsNotRecorded)
{
    Begin({{u"mains", 1, 0, {u"M.A", u"M.B", u"M.C"}}});
    m_device->Store()->At(0).WriteText(u"on");
    m_device->Store()->At(1).WriteNumber(std::numeric_limits<double>::quiet_NaN());
    m_device->Store()->At(2).WriteBoolean(true);
    Pass(seconds(1));
    EXPECT_EQ(Total().Unrecorded(UnrecordedReason::Invalid), 2u);
    EXPECT_EQ(Stored(u"M.C"), (Samples{{1, 1.0}}));
}

TEST_F(Sampler, WhatTheComputerMissedIsLate)
{
    Begin({{u"mains", 1, 0, {u"M.A", u"M.B"}}});
    m_device->Write(0, 1.0);
    m_device->Write(1, 1.0);
    Jump(milliseconds(5300));
    EXPECT_EQ(Total().Unrecorded(UnrecordedReason::Late), 8u);
    EXPECT_EQ(Stored(u"M.A"), (Samples{{5, 1.0}}));
    EXPECT_EQ(CountNotices(Kind::NotRecorded), 1u);
    EXPECT_EQ(CountNotices(Kind::ClockJumped), 0u);
}

TEST_F(Sampler, AClockThatIsSetIsTold)
{
    Begin({{u"mains", 1, 0, {u"M.A"}}});
    m_device->Write(0, 1.0);
    Pass(seconds(2));
    m_clock.SetUtc(m_clock.Utc() + std::chrono::hours(1));
    Pass(seconds(2));
    EXPECT_EQ(Stored(u"M.A"), (Samples{{1, 1.0}, {2, 1.0}, {3603, 1.0}, {3604, 1.0}}));
    m_clock.SetUtc(m_clock.Utc() - std::chrono::hours(1) - seconds(4));
    Pass(seconds(3));
    const auto notices = m_books->TakeNotices();
    ASSERT_EQ(notices.size(), 3u);
    EXPECT_EQ(notices[0].kind, Kind::ClockJumped);
    EXPECT_EQ(notices[0].count, 3600u);
    EXPECT_EQ(notices[1].kind, Kind::ClockWentBack);
    EXPECT_EQ(notices[1].count, 3604u);
    EXPECT_EQ(notices[2].reason, UnrecordedReason::ClockSetBack);
    EXPECT_EQ(Total().Unrecorded(UnrecordedReason::ClockSetBack), 2u);
    EXPECT_EQ(Total().recorded, 5u);
}

TEST_F(Sampler, ADeviceThatGoesIsInvalidAndThenMissingAndComesBack)
{
    Begin({{u"mains", 1, 0, {u"M.A"}}});
    m_device->Write(0, 1.0);
    Pass(seconds(1));
    m_sampler->Unbind();
    m_device.reset();
    Pass(seconds(2));
    EXPECT_EQ(Total().Unrecorded(UnrecordedReason::Missing), 2u);
    m_device = MakeDevice();
    m_sampler->Bind();
    Pass(seconds(1));
    EXPECT_EQ(Total().Unrecorded(UnrecordedReason::Invalid), 1u);
    m_device->Write(0, 5.0);
    Pass(seconds(1));
    EXPECT_EQ(Stored(u"M.A"), (Samples{{1, 1.0}, {5, 5.0}}));
}

TEST_F(Sampler, ADeviceThatGoesWhileItIsBoundHarmsNothing)
{
    Begin({{u"mains", 1, 0, {u"M.A"}}});
    m_device->Write(0, 1.0);
    Pass(seconds(1));
    m_device.reset();
    Pass(seconds(1));
    EXPECT_EQ(Total().recorded, 1u);
    EXPECT_EQ(Total().Unrecorded(UnrecordedReason::Invalid), 1u);
}

TEST_F(Sampler, TheStoreLearnsTheClassOfAVariable)
{
    zr::VariableDescription counter = Variable(u"E");
    counter.variableClass = zr::VariableClass::Counter;
    LiveDevice device(u"C", {counter});
    device.Write(0, 1.0);
    Begin({{u"mains", 1, 0, {u"C.E"}}});
    Pass(seconds(1));
    EXPECT_EQ(m_stores[0]->OpenReader()->InfoCode(u"C.E"), 8);
}

TEST_F(Sampler, ANodeThatIsAwayCostsItsOwnVariablesOnly)
{
    std::vector<zr::VariableDescription> variables;
    std::vector<ZRBasicString> names;
    const char16_t* const letters = u"ABCDEFGH";
    for (int i = 0; i < 8; ++i) {
        variables.push_back(Variable(ZRBasicString(letters + i, 1).CStr()));
        names.push_back(u"N." + ZRBasicString(letters + i, 1));
    }
    LiveDevice device(u"N", variables);
    for (std::size_t i = 0; i < 8; ++i) {
        device.Write(i, static_cast<double>(i));
    }
    Begin({{u"mains", 1, 0, names}}, 2);
    m_stores[0]->SetAvailable(false);
    Pass(seconds(3));
    m_stores[0]->SetAvailable(true);
    const auto figures = m_books->Figures();
    EXPECT_EQ(figures.nodes[0].state, zr::RecorderNodeState::Spooling);
    EXPECT_EQ(figures.nodes[1].state, zr::RecorderNodeState::Recording);
    EXPECT_EQ(figures.total.recorded, 3 * figures.nodes[1].variables);
    EXPECT_EQ(figures.total.spooled, 3 * figures.nodes[0].variables);
    EXPECT_EQ(figures.nodes[0].variables + figures.nodes[1].variables, 8u);
    EXPECT_GT(figures.nodes[0].variables, 0u);
    Pass(seconds(5));
    EXPECT_EQ(Total().recorded, 64u);
    EXPECT_EQ(Total().spooled, 0u);
    for (const ZRBasicString& name : names) {
        EXPECT_EQ(Stored(name.CStr(), zr::NodeOfVariable(name, 2)).size(), 8u);
        EXPECT_EQ(Stored(name.CStr(), 1 - zr::NodeOfVariable(name, 2)).size(), 0u);
    }
}

TEST_F(Sampler, WhatNeitherStoreNorSpoolNorMemoryTakesIsCounted)
{
    std::vector<ZRBasicString> names(2000, u"M.A");
    Begin({{u"mains", 1, 0, names}});
    m_device->Write(0, 1.0);
    m_stores[0]->SetAvailable(false);
    for (int i = 0; i < 700; ++i) {
        m_clock.Advance(seconds(1));
        m_sampler->Step();  // the lane is stuck in a store that doesn't answer
    }
    EXPECT_GT(Total().Unrecorded(UnrecordedReason::NoRoom), 100000u);
    EXPECT_EQ(CountNotices(Kind::NotRecorded), 1u);
    m_stores[0]->SetAvailable(true);
    while (m_lanes[0]->Step() == milliseconds(0)) {
    }
    const zr::RecorderCounts total = Total();
    EXPECT_EQ(total.recorded + total.spooled + total.Unrecorded(), 700u * 2000);
}

}  // namespace
