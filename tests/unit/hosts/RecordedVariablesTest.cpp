#include "hosts/supervision/RecordedVariables.h"

#include "WatchedDevice.h"

#include <gtest/gtest.h>

namespace zr::supervision {
namespace {

VariableDescription SerialNumber()
{
    VariableDescription variable = test::Number(u"SERIAL", 0);
    variable.isText = true;
    return variable;
}

RecordingFile Read(const std::string& sets)
{
    RecordingFile recording;
    std::string error;
    EXPECT_TRUE(recording.LoadText("<Recording>" + sets + "</Recording>", "r.xml", error)) << error;
    return recording;
}

class RecordedVariablesTest : public testing::Test {
protected:
    test::WatchedDevice m_device{u"METER", {test::Number(u"U1", 1), SerialNumber(), test::Number(u"U2", 1)}};
};

TEST_F(RecordedVariablesTest, AWholeDeviceGivesItsVariablesInOrderWithoutTexts)
{
    const RecordedVariables found = LookUpVariables(Read(R"(<DataSet Name="a"><Device Name="METER"/></DataSet>)"));
    ASSERT_EQ(found.dataSets.size(), 1u);
    EXPECT_EQ(found.dataSets[0].variables, (std::vector<ZRBasicString>{u"METER.U1", u"METER.U2"}));
    EXPECT_TRUE(found.missing.empty());
}

TEST_F(RecordedVariablesTest, AVariableNamedBesideItsDeviceIsRecordedOnce)
{
    const RecordedVariables found =
        LookUpVariables(Read(R"(<DataSet Name="a"><Variable Name="METER.U2"/><Device Name="METER"/></DataSet>)"));
    EXPECT_EQ(found.dataSets[0].variables, (std::vector<ZRBasicString>{u"METER.U2", u"METER.U1"}));
}

TEST_F(RecordedVariablesTest, ATextThatIsNamedIsTakenSinceItsSamplesAreCounted)
{
    const RecordedVariables found = LookUpVariables(
        Read(R"(<DataSet Name="a"><Variable Name="METER.SERIAL"/><Variable Name="NONE.U1"/></DataSet>)"));
    EXPECT_EQ(found.dataSets[0].variables, (std::vector<ZRBasicString>{u"METER.SERIAL", u"NONE.U1"}));
}

TEST_F(RecordedVariablesTest, ADeviceThatIsNotThereIsTold)
{
    const RecordedVariables found = LookUpVariables(Read(R"(<DataSet Name="a"><Device Name="METER"/></DataSet>
                                <DataSet Name="b"><Device Name="GONE"/></DataSet>)"));
    ASSERT_EQ(found.dataSets.size(), 2u);
    EXPECT_TRUE(found.dataSets[1].variables.empty());
    ASSERT_EQ(found.missing.size(), 1u);
    EXPECT_EQ(found.missing[0].dataSet, u"b");
    EXPECT_EQ(found.missing[0].device, u"GONE");
}

TEST_F(RecordedVariablesTest, PeriodsAndRetentionsAreThoseOfTheFile)
{
    const RecordedVariables found =
        LookUpVariables(Read(R"(<DataSet Name="a" Period="5" Retention="7"><Device Name="METER"/></DataSet>)"));
    EXPECT_EQ(found.dataSets[0].name, u"a");
    EXPECT_EQ(found.dataSets[0].period, 5);
    EXPECT_EQ(found.dataSets[0].retention, 7);
}

}  // namespace
}  // namespace zr::supervision
