#include "logger/LoggerGraph.h"

#include "siblings/graphsupport/GraphColours.h"
#include "unit/logger/LoggedFixture.h"
#include "unit/logger/MemoryCurveList.h"

#include <numeric>
#include <random>

namespace zr::logger {
namespace {

using Numbers = std::vector<int>;
using Curve = ZRGraphProfile::CVariableProfile;

class LoggerGraphTest : public LoggedFixture {
protected:
    LoggerGraphTest() { document.Create(u"main"); }

    void Show(const std::vector<ZRBasicString>& names = {u"M.U", u"M.E", u"M.PF"})
    {
        graph.Setup(Info(names), document.root);
    }

    // The curves as they stand, of these zones and units.
    void Arrange(const std::vector<std::pair<int, int>>& zonesAndUnits)
    {
        graph.Profile().DeleteAll();
        int index = 0;
        for (const auto& [zone, unit] : zonesAndUnits) {
            Curve record;
            record.Zone = zone;
            record.MeasureUnits = unit;
            record.Index = index++;
            graph.Profile().AddVariable(record);
        }
    }

    Numbers Zones() const { return list.Each(&graph::CurveInfo::zone); }
    Numbers Indices() const { return list.Each(&graph::CurveInfo::index); }
    Numbers ProfileZones()
    {
        Numbers zones;
        for (unsigned i = 0; i < graph.Profile().NVars(); ++i) {
            zones.push_back(graph.Profile()[i].Zone);
        }
        return zones;
    }
    Numbers Sizes() const { return {graph.AxisSizes().begin(), graph.AxisSizes().begin() + graph.AxisRunCount()}; }
    std::vector<std::string> Names(ZRGraphProfile& profile)
    {
        std::vector<std::string> names;
        for (unsigned i = 0; i < profile.NVars(); ++i) {
            names.push_back(Narrow(profile[i].Name));
        }
        return names;
    }
    using Texts = std::vector<std::string>;

    XmlDocument document;
    MemoryCurveList list;
    LoggerGraph graph{list};
};

TEST_F(LoggerGraphTest, SetupGivesEachUnitAZoneOfItsOwnAndTheCurvesTheirColours)
{
    Show({u"M.E", u"M.U", u"M.PF"});
    EXPECT_EQ(Names(graph.Profile()), (Texts{"M.U", "M.PF", "M.E"}));
    EXPECT_EQ(Zones(), (Numbers{0, 1, 2}));
    EXPECT_EQ(Indices(), (Numbers{1, 2, 0}));
    EXPECT_EQ(list.curves[0].pen.lopnColor, graph::kPredefinedColors[0]);
    EXPECT_EQ(list.curves[2].pen.lopnColor, graph::kPredefinedColors[0]);
    EXPECT_EQ(graph.VarCount(), 3);
}

TEST_F(LoggerGraphTest, CurvesOfOneUnitShareAZoneInDifferentColours)
{
    test::LiveDevice other(u"N", {Described(u"U", u"Voltage", 1, -1, 0, 1)});
    Show({u"M.U", u"N.U"});
    EXPECT_EQ(Zones(), (Numbers{0, 0}));
    EXPECT_NE(list.curves[0].pen.lopnColor, list.curves[1].pen.lopnColor);
    EXPECT_EQ(Sizes(), Numbers{2});
}

TEST_F(LoggerGraphTest, AVariableThatCanNotBeDescribedIsLeftOutAndKeepsItsPosition)
{
    Show({u"X.GONE", u"M.U"});
    EXPECT_EQ(Names(graph.Profile()), Texts{"M.U"});
    EXPECT_EQ(Indices(), Numbers{1});
    EXPECT_EQ(graph.VarCount(), 1);
}

TEST_F(LoggerGraphTest, WithNoVariablesTheGraphIsClearedAndNothingAdded)
{
    Show({});
    EXPECT_EQ(list.cleared, 1);
    EXPECT_TRUE(list.curves.empty());
    EXPECT_EQ(graph.AxisRunCount(), 0);
    EXPECT_EQ(graph.GetZone(0, {}), 0);
}

TEST_F(LoggerGraphTest, ZonesWithGapsAreNumberedAnew)
{
    Show();
    Arrange({{0, 1}, {2, 1}, {2, 1}, {7, 1}});
    graph.UpdateSetup(false);
    EXPECT_EQ(ProfileZones(), (Numbers{0, 1, 1, 2}));
    EXPECT_EQ(Zones(), (Numbers{0, 1, 1, 2}));
}

TEST_F(LoggerGraphTest, TwoUnitsInOneZoneAreTwoRunsOfOneZone)
{
    Show();
    Arrange({{0, 1}, {0, 8}, {0, 8}, {1, 1}});
    graph.UpdateSetup(false);
    EXPECT_EQ(Sizes(), (Numbers{1, 2, 1}));
    EXPECT_EQ(Zones(), (Numbers{0, 0, 0, 1}));
}

TEST_F(LoggerGraphTest, TheFirstTimeEachRunIsAZone)
{
    Show();
    Arrange({{0, 1}, {0, 8}, {0, 8}});
    graph.UpdateSetup(true);
    EXPECT_EQ(Sizes(), (Numbers{1, 2}));
    EXPECT_EQ(Zones(), (Numbers{0, 1, 1}));
    // The profile keeps its own.
    EXPECT_EQ(ProfileZones(), (Numbers{0, 0, 0}));
}

TEST_F(LoggerGraphTest, TheRoomForRunsGrowsAtEachCall)
{
    Show();
    EXPECT_EQ(graph.AxisSizes().size(), 3U);
    graph.UpdateSetup(false);
    EXPECT_EQ(graph.AxisSizes().size(), 6U);
    graph.UpdateSetup(false);
    EXPECT_EQ(graph.AxisSizes().size(), 9U);
    EXPECT_EQ(Sizes(), (Numbers{1, 1, 1}));
}

TEST_F(LoggerGraphTest, MoreRunsThanZonesDoNoHarm)
{
    Show();
    for (const bool firstTime : {false, true}) {
        std::vector<std::pair<int, int>> records;
        for (int i = 0; i < 12; ++i) {
            records.emplace_back(i, i);
        }
        Arrange(records);
        graph.UpdateSetup(firstTime);
        EXPECT_EQ(ProfileZones(), (Numbers{0, 1, 2, 3, 4, 5, 5, 5, 5, 5, 5, 5}));
        EXPECT_EQ(graph.AxisRunCount(), 12);
        // The first time the seventh unit is the seventh zone, and there are no more to count by.
        EXPECT_EQ(Zones(), firstTime ? (Numbers{0, 1, 2, 3, 4, 5, 6, 6, 6, 6, 6, 6})
                                     : (Numbers{0, 1, 2, 3, 4, 5, 5, 5, 5, 5, 5, 5}));
    }
}

TEST_F(LoggerGraphTest, AnyArrangementKeepsTheZonesInOrderAndAllCurves)
{
    Show();
    std::mt19937 random(3);
    const Numbers edges = {-2147483647 - 1, -7, -1, 0, 1, 2, 5, 6, 7, 2147483647};
    for (int round = 0; round < 300; ++round) {
        std::vector<std::pair<int, int>> records;
        for (auto i = random() % 30; i > 0; --i) {
            records.emplace_back(edges[random() % edges.size()], edges[random() % edges.size()]);
        }
        Arrange(records);
        graph.UpdateSetup(round % 2 == 0);
        const Numbers zones = Zones();
        EXPECT_TRUE(std::is_sorted(zones.begin(), zones.end()));
        EXPECT_EQ(zones.size(), records.size());
        const Numbers sizes = Sizes();
        EXPECT_EQ(std::accumulate(sizes.begin(), sizes.end(), std::size_t{0}), records.size());
    }
}

TEST_F(LoggerGraphTest, ZonesAndColoursAreSetAtEverySetupAndTheSavedOnesLaidOverThem)
{
    Show();
    graph.Profile()[0].LineType = 2;
    graph.Profile()[1].Zone = 0;
    graph.Profile()[1].Color = 0x123456;
    Show();
    // Nothing was kept of the change: the settings are those of the first start.
    EXPECT_EQ(ProfileZones(), (Numbers{0, 1, 2}));
    EXPECT_EQ(graph.Profile()[0].LineType, 0);
    XmlNode* const kept = document.root->NodeV(u"Graph/VarSetup?Var=%s?", ZRBasicString(u"M.PF"));
    ASSERT_NE(kept, nullptr);
    kept->SetValue(u"Zone", u"0");
    kept->SetValue(u"Color", u"123456");
    Show();
    EXPECT_EQ(ProfileZones(), (Numbers{0, 0, 1}));
    EXPECT_EQ(list.curves[1].pen.lopnColor, 0x123456UL);
}

TEST_F(LoggerGraphTest, TheTotalProfileIsThatBeforeTheSettings)
{
    Show();
    document.root->NodeV(u"Graph/VarSetup?Var=%s?", ZRBasicString(u"M.PF"))->SetValue(u"Zone", u"0");
    document.root->Node(u"Vars")->RemoveChild(document.root->Node(u"Vars/Var?Name=M.E?"));
    MemoryCurveList curves;
    LoggerGraph second(curves);
    second.Setup(Info({u"M.U", u"M.E", u"M.PF"}), document.root);
    EXPECT_EQ(Names(second.Profile()), (Texts{"M.U", "M.PF"}));
    EXPECT_EQ(second.VarCount(), 2);
    EXPECT_EQ(curves.curves.size(), 2U);
    EXPECT_EQ(Names(second.TotalProfile()), (Texts{"M.U", "M.PF", "M.E"}));
    EXPECT_EQ(second.TotalProfile()[1].Zone, 1);
}

TEST_F(LoggerGraphTest, EverySetupMakesTheLinesSolidAndThin)
{
    graph.Setup(Info({u"M.U"}), nullptr);
    graph.Profile()[0].LineType = 0x0302;
    graph.Setup(Info({u"M.U"}), nullptr);
    EXPECT_EQ(graph.Profile()[0].LineType, 0);
    EXPECT_EQ(list.curves[0].pen.lopnWidth, 1);
}

TEST_F(LoggerGraphTest, TheFirstTitleIsMadeAnewBeforeTheSettingsAndAfterThem)
{
    test::LiveDevice other(u"N", {Described(u"U", u"Voltage", 1, -1, 0, 1)});
    Show({u"M.E", u"N.U"});
    // By unit the energy comes last; it was the first before.
    EXPECT_EQ(Narrow(graph.TotalProfile()[0].Title), "Voltage");
    EXPECT_EQ(Narrow(graph.TotalProfile()[1].Title), "M Energy");
    EXPECT_EQ(Narrow(graph.Profile()[0].Title), "N Voltage");
    EXPECT_EQ(Narrow(graph.Profile()[1].Title), "M Energy");
}

TEST_F(LoggerGraphTest, OnlyTheFirstSetupCountsZonesAsNew)
{
    Show();
    // Two units into one zone, which the first time would be two.
    document.root->NodeV(u"Graph/VarSetup?Var=%s?", ZRBasicString(u"M.PF"))->SetValue(u"Zone", u"0");
    Show();
    EXPECT_EQ(Zones(), (Numbers{0, 0, 1}));
}

TEST_F(LoggerGraphTest, SettingsWithMoreVariablesThanAreDescribedAreLaidOut)
{
    XmlNode* const vars = document.root->NewChild(u"Vars");
    vars->NewChild(u"Var")->SetValue(u"Name", u"X.GONE");
    vars->NewChild(u"Var")->SetValue(u"Name", u"M.U");
    Show({u"M.U", u"X.GONE"});
    EXPECT_EQ(graph.VarCount(), 2);
    EXPECT_EQ(list.curves.size(), 2U);
}

TEST_F(LoggerGraphTest, GetLoggerInfoGivesTheNamesUnlocked)
{
    Show({u"M.U", u"X.GONE"});
    ZRLoggerInfo out = Info({u"M.PF"});
    graph.GetLoggerInfo(out);
    ASSERT_EQ(out.variables.size(), 2U);
    EXPECT_EQ(Narrow(out.variables.back()->fullName), "X.GONE");
    EXPECT_FALSE(out.variables.front()->IsLocked());
    EXPECT_TRUE(graph.LoggerInfo().variables.front()->IsLocked());
}

TEST_F(LoggerGraphTest, OnConfigTakesWhatTheDialogLeavesAndKeepsIt)
{
    Show();
    EXPECT_TRUE(graph.OnConfig([&](ZRGraphProfile& copy, ZRGraphProfile& total, ZRLoggerInfo& info) {
        EXPECT_EQ(copy.NVars(), 3U);
        EXPECT_EQ(&total, &graph.TotalProfile());
        copy.DeleteVariable(2);
        copy[1].Zone = 0;
        info.Unlock();
        info.AddVariable(u"M.NEW");
        info.Lock();
        return true;
    }));
    EXPECT_EQ(graph.VarCount(), 2);
    EXPECT_EQ(Zones(), (Numbers{0, 0}));
    EXPECT_EQ(graph.LoggerInfo().variables.size(), 4U);
    EXPECT_EQ(document.root->Node(u"Vars")->children.size(), 2U);
    EXPECT_EQ(document.root->Node(u"Graph/VarSetup?Var=M.PF?")->Value(u"Zone", u"-"), ZRBasicString(u"0"));
}

TEST_F(LoggerGraphTest, OnConfigThatIsCancelledLeavesAllAsItWas)
{
    Show();
    const int cleared = list.cleared;
    EXPECT_FALSE(graph.OnConfig([&](ZRGraphProfile& copy, ZRGraphProfile&, ZRLoggerInfo& info) {
        copy.DeleteAll();
        info.Unlock();
        info.AddVariable(u"M.NEW");
        return false;
    }));
    EXPECT_EQ(graph.Profile().NVars(), 3U);
    EXPECT_EQ(graph.LoggerInfo().variables.size(), 3U);
    EXPECT_TRUE(graph.LoggerInfo().variables.front()->IsLocked());
    EXPECT_EQ(list.cleared, cleared);
    EXPECT_EQ(document.root->Node(u"Vars")->children.size(), 3U);
}

TEST_F(LoggerGraphTest, OnDestroyKeepsTheCurves)
{
    Show();
    graph.Profile()[0].LineType = 0x0302;
    graph.OnDestroy();
    EXPECT_EQ(document.root->Node(u"Graph/VarSetup?Var=M.U?")->Value(u"LineType", u"-"), ZRBasicString(u"770"));
    EXPECT_EQ(document.root->Node(u"Graph")->children.size(), 3U);
}

TEST_F(LoggerGraphTest, WithoutATreeTheCurvesAreShown)
{
    graph.Setup(Info({u"M.U", u"M.E"}), nullptr);
    EXPECT_EQ(Zones(), (Numbers{0, 1}));
    graph.OnDestroy();
}

TEST_F(LoggerGraphTest, BlackAndWhiteIsThereBeforeAPrinterIs)
{
    EXPECT_EQ(graph.PrintColor(), 1);
}

TEST_F(LoggerGraphTest, OnAMonochromePrinterThereIsNoQuestion)
{
    int asked = 0;
    graph.OnPreparePrinting(1, [&] { return ++asked > 0; });
    EXPECT_EQ(asked, 0);
    EXPECT_EQ(graph.PrintColor(), 1);
}

TEST_F(LoggerGraphTest, OnAColourPrinterYesGivesBlackAndWhite)
{
    int asked = 0;
    graph.OnPreparePrinting(2, [&] { return ++asked > 0; });
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(graph.PrintColor(), 1);
    graph.OnPreparePrinting(2, [] { return false; });
    EXPECT_EQ(graph.PrintColor(), 2);
}

TEST_F(LoggerGraphTest, TheSheetHasAMarginOfATwentiethInWholeDivisions)
{
    EXPECT_EQ(GraphPrintRect({0, 0, 1000, 2000}), (PrintRect{50, 100, 950, 1900}));
    EXPECT_EQ(GraphPrintRect({0, 0, 1019, 39}), (PrintRect{50, 1, 968, 37}));
    // From the size alone, wherever the sheet begins.
    EXPECT_EQ(GraphPrintRect({300, 400, 1300, 2400}), (PrintRect{50, 100, 950, 1900}));
    EXPECT_EQ(GraphPrintRect({0, 0, 2147483647, 1}), (PrintRect{107374182, 0, 2040109465, 1}));
}

}  // namespace
}  // namespace zr::logger
