#include "logger/GraphLayout.h"

#include "unit/logger/LoggedFixture.h"

#include <limits>
#include <random>

namespace zr::logger {
namespace {

using Numbers = std::vector<int>;

class GraphLayoutTest : public LoggedFixture {
protected:
    // A record for each zone and unit.
    void Fill(const std::vector<std::pair<int, int>>& zonesAndUnits)
    {
        profile.DeleteAll();
        int index = 0;
        for (const auto& [zone, unit] : zonesAndUnits) {
            ZRGraphProfile::CVariableProfile record;
            record.Zone = zone;
            record.MeasureUnits = unit;
            record.Index = index++;
            profile.AddVariable(record);
        }
    }
    void FillZones(const Numbers& zones)
    {
        std::vector<std::pair<int, int>> records;
        for (const int zone : zones) {
            records.emplace_back(zone, 1);
        }
        Fill(records);
    }
    void FillNames(const std::vector<const wchar*>& names)
    {
        for (const wchar* name : names) {
            ZRGraphProfile::CVariableProfile record;
            record.Name = name;
            record.Title = u"old";
            profile.AddVariable(record);
        }
    }

    Numbers Each(int ZRGraphProfile::CVariableProfile::*field) const
    {
        Numbers values;
        for (auto at = profile.VarsBegin(); at != profile.VarsEnd(); ++at) {
            values.push_back((*at)->*field);
        }
        return values;
    }
    Numbers Zones() const { return Each(&ZRGraphProfile::CVariableProfile::Zone); }
    Numbers Indices() const { return Each(&ZRGraphProfile::CVariableProfile::Index); }
    std::vector<std::string> Titles()
    {
        std::vector<std::string> titles;
        for (unsigned i = 0; i < profile.NVars(); ++i) {
            titles.push_back(Narrow(profile[i].Title));
        }
        return titles;
    }

    // As the records are brought into order for a graph.
    Numbers Ordered(const Numbers& zones)
    {
        FillZones(zones);
        CutZones(profile);
        SortByZone(profile);
        RenumberZones(profile);
        return Zones();
    }

    ZRGraphProfile profile;
};

TEST_F(GraphLayoutTest, ZonesEndWithoutGaps)
{
    EXPECT_EQ(Ordered({0, 2, 2, 7}), (Numbers{0, 1, 1, 2}));
    EXPECT_EQ(Ordered({7, 2, 0, 2}), (Numbers{0, 1, 1, 2}));
    EXPECT_EQ(Ordered({3, 3, 4}), (Numbers{0, 0, 1}));
    EXPECT_EQ(Ordered({1}), Numbers{0});
    EXPECT_EQ(Ordered({}), Numbers{});
}

TEST_F(GraphLayoutTest, ZonesFromSixUpwardAreOne)
{
    EXPECT_EQ(Ordered({0, 1, 2, 3, 4, 5, 6, 100, std::numeric_limits<int>::max()}),
              (Numbers{0, 1, 2, 3, 4, 5, 5, 5, 5}));
}

TEST_F(GraphLayoutTest, NegativeZonesAreNumberedFromZero)
{
    EXPECT_EQ(Ordered({-1}), Numbers{0});
    EXPECT_EQ(Ordered({std::numeric_limits<int>::min(), -3, 2}), (Numbers{0, 1, 2}));
    // Meant: one that stands at the number expected already is passed, and so joins those before it.
    EXPECT_EQ(Ordered({-5, 0}), (Numbers{0, 0}));
    EXPECT_EQ(Ordered({-5, -3, 1}), (Numbers{0, 1, 1}));
}

TEST_F(GraphLayoutTest, CurvesAreSortedByZoneAndThenByUnit)
{
    Fill({{1, 2}, {0, 8}, {1, 1}, {0, 1}, {0, 8}, {1, 1}});
    SortByZone(profile);
    EXPECT_EQ(Indices(), (Numbers{3, 1, 4, 2, 5, 0}));
}

TEST_F(GraphLayoutTest, SortingByUnitKeepsTheOrderOfEqualsAndLeavesTheRest)
{
    Fill({{0, 8}, {0, 1}, {0, 8}, {0, 1}, {0, 0}});
    SortByUnit(profile, 4);
    EXPECT_EQ(Indices(), (Numbers{1, 3, 0, 2, 4}));
    SortByUnit(profile, 99);
    EXPECT_EQ(Indices(), (Numbers{4, 1, 3, 0, 2}));
    SortByUnit(profile, -1);
    EXPECT_EQ(Indices(), (Numbers{4, 1, 3, 0, 2}));
}

// The order is that of neighbours exchanged until none stands wrong.
TEST_F(GraphLayoutTest, SortsAsExchangingNeighboursDoes)
{
    std::mt19937 random(7);
    for (int round = 0; round < 50; ++round) {
        std::vector<std::pair<int, int>> records;
        for (unsigned i = 0; i < 1 + random() % 20; ++i) {
            records.emplace_back(random() % 4, random() % 4);
        }
        Fill(records);
        ZRGraphProfile bubbled;
        bubbled = profile;
        for (bool isSwapped = true; isSwapped;) {
            isSwapped = false;
            for (unsigned i = 0; i + 1 < bubbled.NVars(); ++i) {
                if (std::pair(bubbled[i].Zone, bubbled[i].MeasureUnits) >
                    std::pair(bubbled[i + 1].Zone, bubbled[i + 1].MeasureUnits)) {
                    isSwapped = bubbled.Swap(static_cast<int>(i), static_cast<int>(i) + 1);
                }
            }
        }
        SortByZone(profile);
        for (unsigned i = 0; i < bubbled.NVars(); ++i) {
            ASSERT_EQ(profile[i].Index, bubbled[i].Index) << "round " << round << ", record " << i;
        }
    }
}

TEST_F(GraphLayoutTest, ARunIsAStretchOfOneZoneAndOneUnit)
{
    Fill({{0, 1}, {0, 1}, {0, 8}, {1, 8}, {1, 9}, {1, 9}, {1, 10}});
    const AxisRuns runs = FindAxisRuns(profile, false);
    EXPECT_EQ(runs.sizes, (Numbers{2, 1, 1, 2, 1}));
    EXPECT_EQ(runs.perZone, (RunsPerZone{2, 3, 0, 0, 0, 0}));
}

TEST_F(GraphLayoutTest, TheFirstTimeAZoneCountsOneRun)
{
    Fill({{0, 1}, {0, 8}, {1, 8}, {1, 9}});
    const AxisRuns runs = FindAxisRuns(profile, true);
    EXPECT_EQ(runs.sizes, (Numbers{1, 1, 1, 1}));
    EXPECT_EQ(runs.perZone, (RunsPerZone{1, 1, 0, 0, 0, 0}));
}

TEST_F(GraphLayoutTest, NoCurvesHaveNoRuns)
{
    EXPECT_TRUE(FindAxisRuns(profile, false).sizes.empty());
}

TEST_F(GraphLayoutTest, MoreZonesThanThereAreDoNoHarm)
{
    std::vector<std::pair<int, int>> records;
    for (int zone = 0; zone < 20; ++zone) {
        records.emplace_back(zone, 1);
    }
    Fill(records);
    const AxisRuns runs = FindAxisRuns(profile, false);
    EXPECT_EQ(runs.sizes, Numbers(20, 1));
    EXPECT_EQ(runs.perZone, (RunsPerZone{1, 1, 1, 1, 1, 1}));
}

TEST_F(GraphLayoutTest, ThePenComesFromTheLineType)
{
    const auto pen = [](int lineType) {
        ZRGraphProfile::CVariableProfile record;
        record.LineType = lineType;
        const graph::LOGPEN drawn = CurveOf(record).pen;
        return std::pair(static_cast<int>(drawn.lopnStyle), drawn.lopnWidth);
    };
    EXPECT_EQ(pen(0x0302), std::pair(2, 3));
    EXPECT_EQ(pen(0x0005), std::pair(0, 1));
    EXPECT_EQ(pen(0x0F00), std::pair(0, 9));
    EXPECT_EQ(pen(0), std::pair(0, 1));
    EXPECT_EQ(pen(0x0104), std::pair(4, 1));
    EXPECT_EQ(pen(0x0901), std::pair(1, 9));
    EXPECT_EQ(pen(-1), std::pair(0, 9));
    EXPECT_EQ(pen(0x7FFF0001), std::pair(1, 1));
}

TEST_F(GraphLayoutTest, PenAndBrushHaveTheColourOfTheCurve)
{
    ZRGraphProfile::CVariableProfile record;
    record.Color = 0xB27200;
    record.Index = 4;
    const graph::CurveInfo curve = CurveOf(record);
    EXPECT_EQ(curve.pen.lopnColor, 0xB27200UL);
    EXPECT_EQ(curve.brush.lbColor, 0xB27200UL);
    EXPECT_EQ(curve.brush.lbStyle, 0U);
    EXPECT_EQ(curve.brush.lbHatch, 0U);
    EXPECT_EQ(curve.index, 4);
}

TEST_F(GraphLayoutTest, LimitsThatAreUnsetGoToTheGraphAsNone)
{
    ZRGraphProfile::CVariableProfile record;
    EXPECT_EQ(CurveOf(record).minimum, 2147483647.0);
    EXPECT_EQ(CurveOf(record).maximum, 2147483647.0);
    record.Minimum = -5.5;
    record.Maximum = 0.0;
    EXPECT_EQ(CurveOf(record).minimum, -5.5);
    EXPECT_EQ(CurveOf(record).maximum, 0.0);
    // Sentinels are compared exactly.
    record.Minimum = ZRGraphProfile::CVariableProfile::kNoMaximum;
    EXPECT_EQ(CurveOf(record).minimum, ZRGraphProfile::CVariableProfile::kNoMaximum);
}

TEST_F(GraphLayoutTest, AnEmptyProfileIsOfOneDevice)
{
    EXPECT_FALSE(MultipleDevices(profile));
}

TEST_F(GraphLayoutTest, DevicesAreToldApartByTheDriverOfTheName)
{
    FillNames({u"M.U", u"M.E", u"F.MVDF@PEAK#M.E"});
    EXPECT_FALSE(MultipleDevices(profile));
    FillNames({u"N.U"});
    EXPECT_TRUE(MultipleDevices(profile));
}

TEST_F(GraphLayoutTest, OnlyTheFirstRecordThatIsLoggedGetsANewTitle)
{
    FillNames({u"M.OLD", u"M.E", u"M.U"});
    ZRLoggerInfo info = Info({u"M.U", u"M.E"});
    info.Lock();
    ChangeNamesVars(profile, info);
    EXPECT_EQ(Titles(), (std::vector<std::string>{"old", "Energy", "old"}));
}

TEST_F(GraphLayoutTest, TheNewTitleNamesTheDeviceWhereThereAreSeveral)
{
    FillNames({u"M.E", u"N.U"});
    ZRLoggerInfo info = Info({u"M.E"});
    info.Lock();
    ChangeNamesVars(profile, info);
    EXPECT_EQ(Titles(), (std::vector<std::string>{"M Energy", "old"}));
}

}  // namespace
}  // namespace zr::logger
