#include "hosts/supervision/RecordingNotices.h"

#include "diagnostics/ZRDebugInfo.h"
#include "EnglishTexts.h"
#include "siblings/tools/Utf.h"

#include <gtest/gtest.h>
#include <string>

namespace zr::supervision {
namespace {

using Kind = RecorderNotice::Kind;

class RecordingNoticesTest : public testing::Test {
protected:
    // As the warning list shows it; an event is marked.
    std::string Shown(const DeviceNotice& notice)
    {
        m_list.AddWarning(static_cast<int>(notice.type), notice.name, notice.info, notice.detail);
        const int last = m_list.Size() - 1;
        return (m_list.IsEvent(last) ? "event: " : "warning: ") + Utf16ToUtf8(m_list.WarningStr(last));
    }

    std::string Shown(const RecorderNotice& notice) { return Shown(NoticeOf(notice, {u"a.zrlog", u"node 2"})); }

    test::EnglishTexts m_texts;
    ZRDebugInfo m_list;
};

TEST_F(RecordingNoticesTest, AStoreThatIsAwayIsNamedWithTheReason)
{
    RecorderNotice notice;
    notice.kind = Kind::StoreAway;
    notice.node = 1;
    notice.text = "no route";
    EXPECT_EQ(Shown(notice),
              "warning: The data store node 2 cannot be reached; samples are kept until it is back (no route)");
}

TEST_F(RecordingNoticesTest, AStoreThatIsBackIsAnEventThatTellsWhatWasSentAgain)
{
    RecorderNotice notice;
    notice.kind = Kind::StoreBack;
    notice.count = 12345;
    EXPECT_EQ(Shown(notice), "event:  The data store a.zrlog is back; samples sent again: 12,345");
}

TEST_F(RecordingNoticesTest, LostSamplesNameTheirDataSetNumberAndReason)
{
    RecorderNotice notice;
    notice.kind = Kind::NotRecorded;
    notice.dataSet = u"mains";
    notice.count = 12;
    notice.reason = UnrecordedReason::Invalid;
    EXPECT_EQ(Shown(notice), "warning: Samples of mains are lost (12 so far: no valid value)");
}

TEST_F(RecordingNoticesTest, EveryReasonHasWordsOfItsOwn)
{
    std::set<std::string> words;
    for (std::size_t i = 0; i < kUnrecordedReasons; ++i) {
        words.insert(Utf16ToUtf8(ReasonText(static_cast<UnrecordedReason>(i))));
    }
    EXPECT_EQ(words.size(), kUnrecordedReasons);
    EXPECT_FALSE(words.contains(""));
}

TEST_F(RecordingNoticesTest, TheSpoolTellsWhatItCannotKeepAndWhenItCanAgain)
{
    RecorderNotice notice;
    notice.kind = Kind::SpoolFailed;
    notice.text = "1 MiB is full";
    EXPECT_EQ(Shown(notice), "warning: Samples for data store a.zrlog cannot be kept on disk (1 MiB is full)");
    notice.kind = Kind::SpoolBack;
    EXPECT_EQ(Shown(notice), "event:  Samples for data store a.zrlog can be kept on disk again");
    notice.kind = Kind::SpoolDamaged;
    notice.count = 3;
    notice.text = "1.spool";
    EXPECT_EQ(Shown(notice), "warning: Samples of a.zrlog are lost (3 that waited on disk cannot be read: 1.spool)");
}

TEST_F(RecordingNoticesTest, ADamagedStoreIsAWarningThatTellsWhatWasFound)
{
    RecorderNotice notice;
    notice.kind = Kind::Finding;
    notice.text = "block 7 of METER.U1 can't be unpacked";
    EXPECT_EQ(Shown(notice), "warning:  The data store a.zrlog is damaged: block 7 of METER.U1 can't be unpacked");
}

TEST_F(RecordingNoticesTest, AClockThatJumpsIsThatOfThisComputer)
{
    RecorderNotice notice;
    notice.kind = Kind::ClockWentBack;
    notice.count = 3600;
    EXPECT_EQ(Shown(notice), "warning: The clock of this computer went back (by 3,600 s)");
    notice.kind = Kind::ClockJumped;
    EXPECT_EQ(Shown(notice), "warning: The clock of this computer jumped forward (by 3,600 s)");
}

TEST_F(RecordingNoticesTest, ADeviceThatIsNotThereIsNamed)
{
    EXPECT_EQ(Shown(NoticeOfMissingDevice(u"mains", u"METER-9")),
              "warning: Samples of mains are lost (there is no device METER-9)");
}

}  // namespace
}  // namespace zr::supervision
