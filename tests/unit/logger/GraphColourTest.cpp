#include "logger/GraphColour.h"

#include "siblings/graphsupport/GraphColours.h"
#include "unit/logger/LoggedFixture.h"

#include <cstdlib>
#include <fstream>

namespace zr::logger {
namespace {

constexpr auto& kColors = graph::kPredefinedColors;

class GraphColourTest : public LoggedFixture {
protected:
    GraphColourTest()
    {
        std::filesystem::create_directory(folder.Path() / "filters");
        setup.SetDataFolder(Utf8ToUtf16((folder.Path() / "filters").string()));
    }

    void WriteFilter(const std::string& color, const char* file = "filters/T.MVDF")
    {
        std::ofstream(folder.Path() / file) << "<filter><hourTypes><hour name=\"PEAK\" color=\"" << color
                                            << "\"/><hour name=\"REST\"/></hourTypes></filter>";
    }

    void Add(int zone, unsigned long color)
    {
        ZRGraphProfile::CVariableProfile record;
        record.Zone = zone;
        record.Color = color;
        profile.AddVariable(record);
    }
    unsigned long Get(const wchar* name, int zone = 0)
    {
        return GetColor(profile, name, zone, static_cast<int>(profile.NVars()));
    }
    // With the colour it gets.
    void AddCurve(int zone) { Add(zone, Get(u"M.U", zone)); }

    static constexpr const wchar* kPeak = u"T.MVDF@PEAK#M.E";

    ZRGraphProfile profile;
};

TEST_F(GraphColourTest, TheFirstCurveHasTheFirstColour)
{
    EXPECT_EQ(Get(u"M.U"), kColors[0]);
}

TEST_F(GraphColourTest, TheFirstColourThatIsFreeInTheZoneIsTaken)
{
    Add(0, kColors[0]);
    Add(1, kColors[1]);
    Add(0, kColors[2]);
    EXPECT_EQ(Get(u"M.U", 0), kColors[1]);
    EXPECT_EQ(Get(u"M.U", 1), kColors[0]);
}

TEST_F(GraphColourTest, OnlyTheRecordsCountedAreUsed)
{
    Add(0, kColors[0]);
    Add(0, kColors[1]);
    EXPECT_EQ(GetColor(profile, u"M.U", 0, 0), kColors[0]);
    EXPECT_EQ(GetColor(profile, u"M.U", 0, 1), kColors[1]);
    EXPECT_EQ(GetColor(profile, u"M.U", 0, 100), kColors[2]);
    EXPECT_EQ(GetColor(profile, u"M.U", 0, -1), kColors[0]);
}

TEST_F(GraphColourTest, TheThirteenthCurveOfAZoneTakesTheFirstColourAgain)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // The counter starts with the process.
    EXPECT_EXIT(
        {
            for (int i = 0; i < 12; ++i) {
                AddCurve(0);
            }
            std::exit(Get(u"M.U") == kColors[0] && Get(u"M.U") == kColors[1] ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(GraphColourTest, TheCounterGoesOnAcrossZonesAndCalls)
{
    for (int i = 0; i < 12; ++i) {
        AddCurve(0);
        AddCurve(3);
    }
    const auto place = [](unsigned long color) {
        return std::distance(kColors.begin(), std::find(kColors.begin(), kColors.end(), color));
    };
    const auto first = place(Get(u"M.U", 0));
    for (int i = 1; i <= 30; ++i) {
        EXPECT_EQ(place(Get(u"M.U", i % 2 * 3)), (first + i) % 12);
    }
}

TEST_F(GraphColourTest, AVariableSplitByAFilterHasTheColourOfItsHourType)
{
    WriteFilter("17A1E6");
    EXPECT_EQ(Get(kPeak), 0x17A1E6UL);
    EXPECT_EQ(Get(u"M.E"), kColors[0]);
}

TEST_F(GraphColourTest, TheColourOfAnHourTypeIsGivenUpWhereTheZoneHasIt)
{
    WriteFilter("17A1E6");
    Add(0, 0x17A1E6);
    EXPECT_EQ(Get(kPeak, 0), kColors[0]);
    EXPECT_EQ(Get(kPeak, 1), 0x17A1E6UL);
}

TEST_F(GraphColourTest, TheColourIsReadAsAHexadecimalNumber)
{
    const std::vector<std::pair<const char*, unsigned long>> rows = {{"ff", 0xFF},
                                                                     {" 0xAbC ", 0xABC},
                                                                     {"+12zz", 0x12},
                                                                     {"12345678", 0x12345678},
                                                                     {"fffffffff", 0x7FFFFFFF},
                                                                     {"-1", 0xFFFFFFFF},
                                                                     {"0xg", 0},
                                                                     {"red", 0},
                                                                     {"", 0},
                                                                     {"0", 0},
                                                                     {"0x", 0},
                                                                     {"-", 0}};
    for (const auto& [text, color] : rows) {
        WriteFilter(text);
        EXPECT_EQ(Get(kPeak), color != 0 ? color : kColors[0]) << text;
    }
}

TEST_F(GraphColourTest, WithoutAColourInTheFilterTheTableIsUsed)
{
    WriteFilter("17A1E6");
    EXPECT_EQ(Get(u"T.MVDF@REST#M.E"), kColors[0]);
    EXPECT_EQ(Get(u"T.MVDF@NONE#M.E"), kColors[0]);
    EXPECT_EQ(Get(u"NONE.MVDF@PEAK#M.E"), kColors[0]);
    EXPECT_EQ(Get(u"T.MVDF@PEAK#"), kColors[0]);
    EXPECT_EQ(Get(u"T.MVDF#M.E"), kColors[0]);
    EXPECT_EQ(Get(u""), kColors[0]);
    std::ofstream(folder.Path() / "filters/T.MVDF") << "<filter>";
    EXPECT_EQ(Get(kPeak), kColors[0]);
}

TEST_F(GraphColourTest, ANameThatLeadsOutOfTheFolderIsNoFilter)
{
    WriteFilter("17A1E6", "OUT.MVDF");
    ASSERT_TRUE(std::filesystem::exists(folder.Path() / "filters/../OUT.MVDF"));
    EXPECT_EQ(Get(u"../OUT.MVDF@PEAK#M.E"), kColors[0]);
    EXPECT_EQ(Get(u"..\\OUT.MVDF@PEAK#M.E"), kColors[0]);
    const ZRBasicString absolute(Utf8ToUtf16((folder.Path() / "OUT.MVDF").string() + "@PEAK#M.E"));
    EXPECT_EQ(GetColor(profile, absolute, 0, 0), kColors[0]);
}

}  // namespace
}  // namespace zr::logger
