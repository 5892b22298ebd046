#include "hosts/supervision/RecordingText.h"

#include "EnglishTexts.h"
#include "siblings/tools/Utf.h"

#include <gtest/gtest.h>

namespace zr::supervision {
namespace {

class RecordingTextTest : public testing::Test {
protected:
    RecordingTextTest()
    {
        m_status.isConfigured = true;
        m_status.figures.dataSets.resize(3);
        m_status.figures.dataSets[0].variables = 400;
        m_status.figures.dataSets[2].variables = 25;
        m_status.figures.total.recorded = 12345;
    }

    test::EnglishTexts m_texts;
    RecordingStatus m_status;
};

TEST_F(RecordingTextTest, CountsWhatIsRecordedAndWhatIsNot)
{
    m_status.figures.total.unrecorded[0] = 12;
    EXPECT_EQ(RecordingLine(m_status),
              "Recording: 3 data sets, 425 variables, 12,345 samples recorded, 0 waiting, 12 not recorded "
              "(no valid value 12)");
}

TEST_F(RecordingTextTest, GivesNoReasonsWhenEverythingIsRecorded)
{
    m_status.figures.total.spooled = 7;
    EXPECT_EQ(RecordingLine(m_status),
              "Recording: 3 data sets, 425 variables, 12,345 samples recorded, 7 waiting, 0 not recorded");
}

TEST_F(RecordingTextTest, OneIsNoPlural)
{
    m_status.figures.dataSets.resize(1);
    m_status.figures.dataSets[0].variables = 1;
    m_status.figures.total.recorded = 1;
    EXPECT_EQ(RecordingLine(m_status),
              "Recording: 1 data set, 1 variable, 1 sample recorded, 0 waiting, 0 not recorded");
}

TEST_F(RecordingTextTest, TellsWhyAStoreIsAway)
{
    m_status.figures.nodes.resize(1);
    m_status.figures.nodes[0].state = RecorderNodeState::Spooling;
    m_status.figures.nodes[0].error = "disk full";
    EXPECT_TRUE(RecordingLine(m_status).ends_with("; the store is away: disk full"));
    m_status.figures.nodes.resize(3);
    EXPECT_TRUE(RecordingLine(m_status).ends_with("; 1 of 3 stores are away: disk full"));
}

TEST_F(RecordingTextTest, IsEmptyWithoutARecordingFile)
{
    m_status.isConfigured = false;
    EXPECT_EQ(RecordingLine(m_status), "");
}

TEST_F(RecordingTextTest, NamesEveryReasonThatHasSamples)
{
    RecorderCounts counts;
    EXPECT_TRUE(UnrecordedText(counts).IsEmpty());
    counts.unrecorded[1] = 1;
    counts.unrecorded[4] = 2000;
    EXPECT_EQ(Utf16ToUtf8(UnrecordedText(counts)), "no such variable 1, no room 2,000");
}

}  // namespace
}  // namespace zr::supervision
