#include "siblings/driversupport/recorder/RecordingFile.h"

#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <string>

namespace zr {
namespace {

RecordingFile Read(const std::string& text)
{
    RecordingFile recording;
    std::string error;
    EXPECT_TRUE(recording.LoadText(text, "r.xml", error)) << error;
    return recording;
}

// What is said against a text; empty when nothing is. The recording stays as it was.
std::string Refusal(const std::string& text)
{
    RecordingFile recording;
    recording.store = "before.zrlog";
    std::string error;
    if (recording.LoadText(text, "r.xml", error)) {
        return {};
    }
    EXPECT_EQ(recording.store, "before.zrlog");
    EXPECT_FALSE(error.empty());
    return error;
}

// A data set's content as a whole document, the set in line 2.
std::string InSet(const std::string& content, const std::string& values = "Name=\"mains\"")
{
    return "<Recording>\n<DataSet " + values + ">\n" + content + "\n</DataSet>\n</Recording>";
}

TEST(RecordingFileTest, ReadsStoreSpoolAndDataSets)
{
    const RecordingFile recording = Read(
        "<Recording><Store File=\"plant.zrlog\"/><Spool Folder=\"kept\" LimitMb=\"20\"/>"
        "<DataSet Name=\"mains\" Period=\"60\" Retention=\"730\"><Variable Name=\"Meter 1.U1\"/>"
        "<Device Name=\"IO-1\"/></DataSet>"
        "<DataSet Name=\"fast io\" Period=\"1\"><Variable Name=\"Meter 1.U1\"/></DataSet></Recording>");
    EXPECT_EQ(recording.store, "plant.zrlog");
    EXPECT_TRUE(recording.nodes.empty());
    EXPECT_EQ(recording.spoolFolder, "kept");
    EXPECT_EQ(recording.spoolLimit, 20);
    const std::vector<RecordingFile::DataSet> expected{
        {u"mains", 60, 730, {{u"Meter 1", u"U1"}, {u"IO-1", u""}}},
        {u"fast io", 1, 0, {{u"Meter 1", u"U1"}}},
    };
    EXPECT_EQ(recording.dataSets, expected);
}

TEST(RecordingFileTest, ReadsNodesInTheirOrder)
{
    const RecordingFile recording = Read(
        "<Recording><Store><Node Connection=\"host=a password=x\"/><Node Connection=\"host=b\"/></Store>"
        "</Recording>");
    EXPECT_TRUE(recording.store.empty());
    EXPECT_EQ(recording.nodes, (std::vector<std::string>{"host=a password=x", "host=b"}));
}

TEST(RecordingFileTest, HasDefaultsForWhatIsLeftOut)
{
    const RecordingFile recording = Read(InSet("<Device Name=\"M\"/>"));
    EXPECT_TRUE(recording.store.empty());
    EXPECT_TRUE(recording.spoolFolder.empty());
    EXPECT_EQ(recording.spoolLimit, 1024);
    ASSERT_EQ(recording.dataSets.size(), 1u);
    EXPECT_EQ(recording.dataSets[0].period, 60);
    EXPECT_EQ(recording.dataSets[0].retention, 0) << "for ever";
}

TEST(RecordingFileTest, ARecordingWithoutDataSetsRecordsNothingAndIsNoError)
{
    EXPECT_TRUE(Read("<Recording/>").dataSets.empty());
}

TEST(RecordingFileTest, TakesTheLimitsOfItsNumbers)
{
    const RecordingFile longest =
        Read(InSet("<Device Name=\"M\"/>", "Name=\"a\" Period=\"2678400\" Retention=\"36525\""));
    EXPECT_EQ(longest.dataSets[0].period, 31 * 86'400);
    EXPECT_EQ(longest.dataSets[0].retention, 36'525);
    EXPECT_EQ(Read(InSet("<Device Name=\"M\"/>", "Name=\"a\" Period=\"1\"")).dataSets[0].period, 1);
}

TEST(RecordingFileTest, AMissingVariableIsNoErrorOfTheFile)
{
    // Its device may come later; what has no device is counted when it is recorded.
    EXPECT_EQ(Refusal(InSet("<Variable Name=\"NO SUCH.THING\"/>")), "");
}

TEST(RecordingFileTest, ADataSetNameMayHaveSixtyFourCharacters)
{
    const std::string name(64, 'a');
    EXPECT_EQ(Refusal(InSet("<Device Name=\"M\"/>", "Name=\"" + name + "\"")), "");
    EXPECT_NE(Refusal(InSet("<Device Name=\"M\"/>", "Name=\"" + name + "a\"")), "");
}

struct BadText {
    const char* title;
    std::string text;
    std::string error;
};

class RecordingFileRefusalTest : public testing::TestWithParam<BadText> {};

TEST_P(RecordingFileRefusalTest, NamesFileLineAndReason)
{
    EXPECT_EQ(Refusal(GetParam().text), GetParam().error);
}

const std::string kMeter = "<Device Name=\"M\"/>";

INSTANTIATE_TEST_SUITE_P(
    RecordingFileTest, RecordingFileRefusalTest,
    testing::Values(
        BadText{"AnotherRoot", "<Plant/>", "r.xml:1: the root must be Recording, not Plant"},
        BadText{"ValueOfTheRoot", "<Recording Store=\"a\"/>", "r.xml:1: unknown value Store of Recording"},
        BadText{"UnknownElement", "<Recording>\n<Dataset/></Recording>",
                "r.xml:2: unknown element Dataset in Recording"},
        BadText{"TwoStores", "<Recording><Store File=\"a\"/>\n<Store File=\"b\"/></Recording>",
                "r.xml:2: a second Store"},
        BadText{"EmptyStore", "<Recording>\n<Store/></Recording>", "r.xml:2: Store needs a File, or a Node element"},
        BadText{"StoreWithFileAndNodes", "<Recording>\n<Store File=\"a\"><Node Connection=\"b\"/></Store></Recording>",
                "r.xml:2: Store has a File or Node elements, not both"},
        BadText{"StoreWithoutAPath", "<Recording>\n<Store File=\"\"/></Recording>",
                "r.xml:2: File of Store must be a path"},
        BadText{"StoreWithAnUnknownValue", "<Recording>\n<Store Path=\"a\"/></Recording>",
                "r.xml:2: unknown value Path of Store"},
        BadText{"UnknownElementInStore", "<Recording><Store>\n<Server/></Store></Recording>",
                "r.xml:2: unknown element Server in Store"},
        BadText{"NodeWithoutAConnection", "<Recording><Store>\n<Node/></Store></Recording>",
                "r.xml:2: Node needs the value Connection and no other"},
        BadText{"NodeWithAnEmptyConnection", "<Recording><Store>\n<Node Connection=\"\"/></Store></Recording>",
                "r.xml:2: Connection of Node must be a connection text of 1 to 4096 bytes in one line"},
        BadText{"NodeWithALongConnection",
                "<Recording><Store>\n<Node Connection=\"" + std::string(4097, 'x') + "\"/></Store></Recording>",
                "r.xml:2: Connection of Node must be a connection text of 1 to 4096 bytes in one line"},
        BadText{"NodeTwice",
                "<Recording><Store><Node Connection=\"host=a\"/>\n<Node Connection=\"host=a\"/></Store></Recording>",
                "r.xml:2: two Node elements with the same Connection"},
        BadText{"TwoSpools", "<Recording><Spool/>\n<Spool/></Recording>", "r.xml:2: a second Spool"},
        BadText{"SpoolWithoutAFolder", "<Recording>\n<Spool Folder=\"\"/></Recording>",
                "r.xml:2: Folder of Spool must be a path"},
        BadText{"SpoolTooSmall", "<Recording>\n<Spool LimitMb=\"0\"/></Recording>",
                "r.xml:2: LimitMb of Spool must be a whole number from 1 to 1048576"},
        BadText{"SetWithoutAName", InSet(kMeter, "Period=\"1\""),
                "r.xml:2: Name of DataSet must be 1 to 64 letters, digits, blanks, \"-\" or \"_\""},
        BadText{"SetNamesTwice",
                "<Recording><DataSet Name=\"a\">" + kMeter + "</DataSet>\n<DataSet Name=\"a\">" + kMeter +
                    "</DataSet></Recording>",
                "r.xml:2: a second DataSet \"a\""},
        BadText{"SetWithoutVariables", InSet(""), "r.xml:2: DataSet \"mains\" names no Variable and no Device"},
        BadText{"SetWithAnUnknownValue", InSet(kMeter, "Name=\"a\" period=\"1\""),
                "r.xml:2: unknown value period of DataSet"},
        BadText{"PeriodZero", InSet(kMeter, "Name=\"a\" Period=\"0\""),
                "r.xml:2: Period of DataSet must be a whole number from 1 to 2678400"},
        BadText{"PeriodTooLong", InSet(kMeter, "Name=\"a\" Period=\"2678401\""),
                "r.xml:2: Period of DataSet must be a whole number from 1 to 2678400"},
        BadText{"PeriodNotWhole", InSet(kMeter, "Name=\"a\" Period=\"0.5\""),
                "r.xml:2: Period of DataSet must be a whole number from 1 to 2678400"},
        BadText{"PeriodEmpty", InSet(kMeter, "Name=\"a\" Period=\"\""),
                "r.xml:2: Period of DataSet must be a whole number from 1 to 2678400"},
        BadText{"RetentionNegative", InSet(kMeter, "Name=\"a\" Retention=\"-1\""),
                "r.xml:2: Retention of DataSet must be a whole number from 0 to 36525"},
        BadText{"RetentionBeyondAnyNumber", InSet(kMeter, "Name=\"a\" Retention=\"99999999999999999999\""),
                "r.xml:2: Retention of DataSet must be a whole number from 0 to 36525"},
        BadText{"UnknownElementInSet", InSet("<Meter Name=\"a\"/>"), "r.xml:3: unknown element Meter in DataSet"},
        BadText{"ElementInVariable", InSet("<Variable Name=\"a.B\">\n<X/></Variable>"),
                "r.xml:4: unknown element X in Variable"},
        BadText{"VariableWithoutADevice", InSet("<Variable Name=\"U1\"/>"),
                "r.xml:3: Name of Variable must be DEVICE.VARIABLE, not \"U1\""},
        BadText{"VariableWithoutAName", InSet("<Variable/>"),
                "r.xml:3: Name of Variable must be DEVICE.VARIABLE, not \"\""},
        BadText{"VariableOfTwoDots", InSet("<Variable Name=\"a.b.c\"/>"),
                "r.xml:3: Name of Variable must be DEVICE.VARIABLE, not \"a.b.c\""},
        BadText{"VariableWithALineEnd", InSet("<Variable Name=\"a.b&#10;c\"/>"),
                "r.xml:3: Name of Variable must be DEVICE.VARIABLE, not \"a.b?c\""},
        BadText{"VariableThatIsLong", InSet("<Variable Name=\"" + std::string(100, 'x') + "\"/>"),
                "r.xml:3: Name of Variable must be DEVICE.VARIABLE, not \"" + std::string(80, 'x') + "...\""},
        BadText{"VariableWithAFilter", InSet("<Variable Name=\"T.MVDF@Peak#a.B\"/>"),
                "r.xml:3: Name of Variable must be DEVICE.VARIABLE without a filter, not \"T.MVDF@Peak#a.B\": what is "
                "recorded is split by hour types when it is read"},
        BadText{"VariableTwice", InSet("<Variable Name=\"a.B\"/>\n<Variable Name=\"a.B\"/>"),
                "r.xml:4: Variable \"a.B\" stands twice in DataSet \"mains\""},
        BadText{"DeviceTwice", InSet("<Device Name=\"a\"/>\n<Device Name=\"a\"/>"),
                "r.xml:4: Device \"a\" stands twice in DataSet \"mains\""},
        BadText{"DeviceWithAnUnfitName", InSet("<Device Name=\"a.B\"/>"),
                "r.xml:3: Name of Device must be 1 to 64 letters, digits, blanks, \"-\" or \"_\", not \"a.B\""}),
    [](const auto& row) { return std::string(row.param.title); });

TEST(RecordingFileTest, NoMessageRepeatsAPassword)
{
    const char* const texts[] = {
        "<Recording><Store><Node Connection=\"host=a password=s3cret\"/><Node Connection=\"host=a "
        "password=s3cret\"/></Store></Recording>",
        "<Recording><Store><Node Connection=\"host=a password=\"s3cret\"\"/></Store></Recording>",
        "<Recording><Store><Node Connection=\"host=a password=\" s3cret=\"1\"/></Store></Recording>",
        "<Recording><Store><Node Connection=\"host=a password=x&s3cret;y\"/></Store></Recording>",
        "<Recording><Store><Node Connection=\"host=a password=s3cret\nport=5\" x=\"\"/></Store></Recording>",
        "<Recording><Store File=\"x\"><Node Connection=\"s3cret\"/></Store></Recording>",
        "<Recording><Store><Node Connection=\"host=a password=s3cret<\"/></Store></Recording>",
    };
    for (const char* const text : texts) {
        const std::string error = Refusal(text);
        EXPECT_EQ(error.find("s3cret"), std::string::npos) << error;
        EXPECT_EQ(error.rfind("r.xml:", 0), 0u) << error;
    }
}

TEST(RecordingFileTest, AFileThatIsNotThereIsNamed)
{
    const test::TempFolder folder;
    RecordingFile recording;
    std::string error;
    EXPECT_FALSE(recording.Load(folder / "none.xml", error));
    EXPECT_NE(error.find("none.xml: "), std::string::npos) << error;
}

TEST(RecordingFileTest, LiesBesideItsDocument)
{
    EXPECT_EQ(RecordingFileOf("folder/plant.xml"), std::filesystem::path("folder/plant.recording.xml"));
    EXPECT_EQ(RecordingFileOf("plant"), std::filesystem::path("plant.recording.xml"));
}

}  // namespace
}  // namespace zr
