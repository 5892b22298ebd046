#include "logger/GraphVariables.h"

#include "siblings/graphsupport/GraphColours.h"
#include "unit/logger/LoggedFixture.h"

namespace zr::logger {
namespace {

class GraphVariablesTest : public LoggedFixture {
protected:
    static void AddTitle(ZRGraphProfile& profile, const wchar* title)
    {
        ZRGraphProfile::CVariableProfile record;
        record.Title = title;
        profile.AddVariable(record);
    }

    int Add(const std::vector<ZRBasicString>& names)
    {
        return AddVariables(profile, info, names,
                            [](ZRGraphProfile& curves, const ZRBasicString&) { return 0x100UL + curves.NVars(); });
    }

    ZRGraphProfile profile;
    ZRLoggerInfo info;
};

TEST_F(GraphVariablesTest, BuildVarsToAddTakesTheTitlesThatAreNotThereYet)
{
    ZRGraphProfile source;
    ZRGraphProfile toAdd;
    AddTitle(profile, u"A");
    AddTitle(source, u"A");
    AddTitle(source, u"B");
    AddTitle(source, u"C");
    BuildVarsToAdd(profile, source, toAdd);
    ASSERT_EQ(toAdd.NVars(), 2U);
    EXPECT_EQ(Narrow(toAdd[0].Title), "B");
    EXPECT_EQ(Narrow(toAdd[1].Title), "C");
}

TEST_F(GraphVariablesTest, BuildVarsToAddOfNothingAddsNothing)
{
    ZRGraphProfile source;
    BuildVarsToAdd(profile, source, profile);
    EXPECT_EQ(profile.NVars(), 0U);
}

TEST_F(GraphVariablesTest, AVariableThatIsLoggedKeepsItsPosition)
{
    info = Info({u"M.U", u"M.E"});
    info.Lock();
    EXPECT_EQ(Add({u"M.E"}), 1);
    ASSERT_EQ(profile.NVars(), 1U);
    const auto& curve = profile[0];
    EXPECT_EQ(curve.Index, 1);
    EXPECT_EQ(Narrow(curve.Name), "M.E");
    EXPECT_EQ(Narrow(curve.Title), "Energy");
    EXPECT_EQ(curve.Zone, 0);
    EXPECT_EQ(curve.LineType, 0);
    EXPECT_EQ(curve.Color, 0x100UL);
    EXPECT_EQ(curve.MeasureUnits, 8);
    EXPECT_EQ(curve.Decimals, 2);
    EXPECT_EQ(curve.UnitsExponent, 3);
    EXPECT_EQ(curve.Minimum, ZRGraphProfile::CVariableProfile::kNoMinimum);
    EXPECT_EQ(curve.Maximum, ZRGraphProfile::CVariableProfile::kNoMaximum);
    EXPECT_EQ(info.variables.size(), 2U);
}

TEST_F(GraphVariablesTest, ANewVariableIsAddedBehindThoseLoggedAndLocked)
{
    info = Info({u"M.U"});
    info.Lock();
    EXPECT_EQ(Add({u"M.PF", u"M.E", u"M.U"}), 3);
    ASSERT_EQ(profile.NVars(), 3U);
    EXPECT_EQ(profile[0].Index, 0);
    EXPECT_EQ(Narrow(profile[1].Name), "M.PF");
    EXPECT_EQ(profile[1].Index, 1);
    EXPECT_EQ(profile[2].Index, 2);
    EXPECT_EQ(profile[2].Color, 0x102UL);
    ASSERT_EQ(info.variables.size(), 3U);
    EXPECT_TRUE(info.variables.back()->IsLocked());
}

TEST_F(GraphVariablesTest, AVariableThatCanNotBeDescribedIsAddedAllTheSame)
{
    EXPECT_EQ(Add({u"X.GONE"}), 1);
    ASSERT_EQ(profile.NVars(), 1U);
    EXPECT_EQ(Narrow(profile[0].Title), "");
    EXPECT_EQ(info.variables.size(), 1U);
}

TEST_F(GraphVariablesTest, NewCurvesHaveColoursThatTheZoneLacks)
{
    AddVariables(profile, info, {u"M.U", u"M.E", u"M.PF"});
    ASSERT_EQ(profile.NVars(), 3U);
    for (unsigned i = 0; i < 3; ++i) {
        EXPECT_EQ(profile[i].Color, graph::kPredefinedColors[i]);
    }
}

TEST_F(GraphVariablesTest, NoNamesChangeNothing)
{
    EXPECT_EQ(Add({}), 0);
    EXPECT_EQ(profile.NVars(), 0U);
}

}  // namespace
}  // namespace zr::logger
