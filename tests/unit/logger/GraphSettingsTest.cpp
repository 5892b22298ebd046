#include "logger/GraphSettings.h"

#include "support/XmlTree.h"
#include "unit/logger/SettingsFixture.h"

#include <cmath>
#include <limits>

namespace zr::logger {
namespace {

using Curve = ZRGraphProfile::CVariableProfile;

class GraphSettingsTest : public SettingsFixture {
protected:
    // The profile as the viewer fills it before the settings are merged.
    void Log(const std::vector<ZRBasicString>& names)
    {
        profile.DeleteAll();
        ForEachLogged(
            names, [&](const ZRDriverVariable& variable, const ZRDeviceDriver::tagSVariableInfo& told, int position) {
                profile.AddVariable(variable.fullName, u"Title", position, 0, 0xA0, told.measureUnits,
                                    told.valueExponent, told.unitsDecimals, told.infoCode, position, Curve::kNoMinimum,
                                    Curve::kNoMaximum, told.unitsExponent);
            });
    }

    // A curve's entry in the settings, with these values.
    XmlNode& Arrange(const wchar* name, const std::vector<std::pair<const wchar*, const wchar*>>& values)
    {
        XmlNode& entry = *GetOrCreate(*document.root, u"Graph").NewChild(u"VarSetup");
        entry.SetValue(u"Var", name);
        for (const auto& [key, text] : values) {
            entry.SetValue(key, text);
        }
        return entry;
    }
    XmlNode& ArrangeZone(const wchar* name, const wchar* zone)
    {
        return Arrange(name, {{u"Color", u"0000A0"}, {u"Zone", zone}, {u"MeasureUnits", u"1"}, {u"Index", u"0"}});
    }

    int Get()
    {
        firstTime = false;
        return GraphSettings(profile, info, document.root).GetLastConfiguration(firstTime);
    }
    int Set() { return GraphSettings(profile, info, document.root).SetLastConfiguration(); }

    // "name:zone" of each record.
    std::vector<std::string> Records()
    {
        std::vector<std::string> records;
        for (unsigned i = 0; i < profile.NVars(); ++i) {
            records.push_back(Narrow(profile[i].Name) + ":" + std::to_string(profile[i].Zone));
        }
        return records;
    }
    // "name=text" of each value of an entry of the tree, in order.
    std::vector<std::string> Entry(std::size_t position) const
    {
        const XmlNode& entry = *document.root->Node(u"Graph")->children.at(position);
        std::vector<std::string> values;
        for (const ZRBasicString& name : entry.ValueNames()) {
            values.push_back(Narrow(name) + "=" + Narrow(entry.Value(name.CStr(), u"")));
        }
        return values;
    }

    ZRGraphProfile profile;
    bool firstTime = false;
};

TEST_F(GraphSettingsTest, AnEmptyTreeIsFilledAndTellsThatItIsTheFirstTime)
{
    Log({u"M.U", u"M.E"});
    EXPECT_EQ(Get(), 2);
    EXPECT_TRUE(firstTime);
    EXPECT_EQ(Wanted(), (Texts{"M.U", "M.E"}));
    EXPECT_EQ(Entry(1), (Texts{"Var=M.E", "Color=0000A0", "LineType=0", "Zone=1", "MeasureUnits=8", "Index=1"}));
    Get();
    EXPECT_FALSE(firstTime);
}

TEST_F(GraphSettingsTest, ValuesAreWrittenInTheirOrder)
{
    Log({u"M.U"});
    Curve& record = profile[0];
    record.Color = 0x01B2C3;
    record.LineType = 0x0302;
    record.Maximum = 250.5;
    record.Minimum = -0.25;
    Get();
    EXPECT_EQ(Entry(0), (Texts{"Var=M.U", "Color=01B2C3", "LineType=770", "Maximum=250.500000", "Minimum=-0.250000",
                               "Zone=0", "MeasureUnits=1", "Index=0"}));
}

TEST_F(GraphSettingsTest, ACurveComesBackAsItWas)
{
    Log({u"M.U"});
    profile[0].Color = 0xFE0102;
    profile[0].LineType = 0x0901;
    profile[0].Maximum = 1e12;
    profile[0].Minimum = -3.5;
    profile[0].Zone = 4;
    Get();
    Log({u"M.U"});
    Get();
    EXPECT_EQ(profile[0].Color, 0xFE0102UL);
    EXPECT_EQ(profile[0].LineType, 0x0901);
    EXPECT_EQ(profile[0].Maximum, 1e12);
    EXPECT_EQ(profile[0].Minimum, -3.5);
    EXPECT_EQ(profile[0].Zone, 4);
}

TEST_F(GraphSettingsTest, ALimitThatIsAbsentReadsBackAsUnset)
{
    Log({u"M.U"});
    Get();
    EXPECT_FALSE(document.root->Node(u"Graph/VarSetup")->HasValue(u"Maximum"));
    EXPECT_FALSE(document.root->Node(u"Graph/VarSetup")->HasValue(u"Minimum"));
    profile[0].Maximum = 5;
    profile[0].Minimum = 4;
    Get();
    EXPECT_EQ(profile[0].Maximum, Curve::kNoMaximum);
    EXPECT_EQ(profile[0].Minimum, Curve::kNoMinimum);
}

TEST_F(GraphSettingsTest, AColourInLowerCaseReadsTheSame)
{
    Want({u"M.U"});
    Arrange(u"M.U", {{u"Color", u"fe01aB"}});
    Log({u"M.U"});
    Get();
    EXPECT_EQ(profile[0].Color, 0xFE01ABUL);
}

TEST_F(GraphSettingsTest, TheUnitIsThatOfTheSettings)
{
    Want({u"M.U"});
    Arrange(u"M.U", {{u"MeasureUnits", u"3"}});
    Log({u"M.U"});
    Get();
    EXPECT_EQ(profile[0].MeasureUnits, 3);
}

TEST_F(GraphSettingsTest, TheIndexIsTheSavedOneWhereverTheVariableStandsSince)
{
    Want({u"M.U", u"M.E"});
    Arrange(u"M.U", {{u"Index", u"0"}});
    Arrange(u"M.E", {{u"Index", u"1"}});
    Log({u"M.E", u"M.U"});
    Get();
    EXPECT_EQ(Narrow(profile[0].Name), "M.E");
    EXPECT_EQ(profile[0].Index, 1);
    EXPECT_EQ(profile[1].Index, 0);
}

TEST_F(GraphSettingsTest, AVariableThatIsLoggedButNotWantedIsDropped)
{
    Want({u"M.PF", u"M.U"});
    Log({u"M.U", u"M.E", u"M.PF"});
    EXPECT_EQ(Get(), 2);
    EXPECT_EQ(Records(), (Texts{"M.U:0", "M.PF:2"}));
}

TEST_F(GraphSettingsTest, WhatIsStoredForAVariableNoLongerLoggedLandsOnTheLastRecord)
{
    Want({u"M.U", u"M.E", u"M.OLD"});
    ArrangeZone(u"M.U", u"3");
    ArrangeZone(u"M.E", u"1");
    ArrangeZone(u"M.OLD", u"5");
    Log({u"M.U", u"M.E"});
    EXPECT_EQ(Get(), 2);
    EXPECT_EQ(Records(), (Texts{"M.U:3", "M.E:5"}));
}

TEST_F(GraphSettingsTest, AnEntryBeyondTheProfileLandsNowhere)
{
    Want({u"M.U", u"M.OLD"});
    ArrangeZone(u"M.U", u"3");
    ArrangeZone(u"M.OLD", u"5");
    Log({u"M.U", u"X.GONE", u"X.LOST"});
    EXPECT_EQ(Get(), 1);
    EXPECT_EQ(Records(), Texts{"M.U:3"});
}

TEST_F(GraphSettingsTest, ACurveWithoutAnEntryThatTheProfileLacksJoinsTheZoneBeforeIt)
{
    Want({u"M.U", u"M.E"});
    ArrangeZone(u"M.U", u"4");
    Log({u"M.U", u"M.E"});
    profile.DeleteVariable(1);
    EXPECT_EQ(Get(), 2);
    EXPECT_EQ(Records(), (Texts{"M.U:4", "M.E:4"}));
    const Curve& added = profile[1];
    EXPECT_EQ(Narrow(added.Title), "Energy");
    EXPECT_EQ(added.Index, 1);
    EXPECT_EQ(added.MeasureUnits, 8);
    EXPECT_EQ(added.Decimals, 2);
    EXPECT_EQ(added.UnitsExponent, 3);
    ZRDeviceDriver::tagSVariableInfo told;
    ASSERT_TRUE(info.variables.back()->Info(told));
    ASSERT_NE(told.infoCode, 0);
    EXPECT_EQ(added.InfoCode, told.infoCode);
    EXPECT_EQ(added.Color, 0UL);
    EXPECT_EQ(added.LineType, 0);
    EXPECT_EQ(added.Minimum, Curve::kNoMinimum);
    EXPECT_EQ(added.Maximum, Curve::kNoMaximum);
    EXPECT_EQ(Entry(1), Texts{"Var=M.E"});
}

TEST_F(GraphSettingsTest, ACurveAddedToAnEmptyProfileHasTheZoneOfNoRecord)
{
    Want({u"M.E"});
    Log({u"M.E"});
    profile.DeleteAll();
    EXPECT_EQ(Get(), 1);
    EXPECT_EQ(Records(), Texts{"M.E:-1"});
}

TEST_F(GraphSettingsTest, ACurveThatTheProfileLacksComesBackWithItsEntry)
{
    Want({u"M.U", u"M.E"});
    ArrangeZone(u"M.U", u"4");
    ArrangeZone(u"M.E", u"2").SetValue(u"LineType", u"3");
    Log({u"M.U", u"M.E"});
    profile.DeleteVariable(1);
    EXPECT_EQ(Get(), 2);
    EXPECT_EQ(Records(), (Texts{"M.U:4", "M.E:2"}));
    EXPECT_EQ(profile[1].LineType, 3);
}

TEST_F(GraphSettingsTest, OneCurveGetsItsTitleAnewWhetherTheTreeWasEmptyOrNot)
{
    for (int round = 0; round < 2; ++round) {
        Log({u"M.U", u"M.E"});
        Get();
        EXPECT_EQ(Narrow(profile[0].Title), "Voltage");
        EXPECT_EQ(Narrow(profile[1].Title), "Title");
    }
}

TEST_F(GraphSettingsTest, SettingDoesNothingWhereVarsOrGraphIsMissing)
{
    Log({u"M.U"});
    EXPECT_EQ(Set(), 0);
    EXPECT_TRUE(document.root->children.empty());
    Want({u"M.OLD"});
    Set();
    EXPECT_EQ(Wanted(), Texts{"M.OLD"});
    EXPECT_EQ(document.root->Node(u"Graph"), nullptr);
    document.root->RemoveChild(document.root->Node(u"Vars"));
    ArrangeZone(u"M.OLD", u"3");
    Set();
    EXPECT_EQ(document.root->children.size(), 1U);
    EXPECT_EQ(Entry(0).front(), "Var=M.OLD");
}

TEST_F(GraphSettingsTest, SettingTwiceGivesTheSameTree)
{
    Log({u"M.U", u"M.E"});
    Get();
    Set();
    const std::string once = test::DescribeTree(document);
    Set();
    EXPECT_EQ(test::DescribeTree(document), once);
    EXPECT_EQ(Wanted(), (Texts{"M.U", "M.E"}));
}

TEST_F(GraphSettingsTest, SettingLeavesWhatIsNotItsOwn)
{
    Log({u"M.U"});
    Get();
    document.root->NewChild(u"Table")->NewChild(u"VarSetup")->SetValue(u"Var", u"M.E");
    document.root->Node(u"Vars")->NewChild(u"Other");
    Set();
    EXPECT_NE(document.root->Node(u"Table/VarSetup?Var=M.E?"), nullptr);
    EXPECT_NE(document.root->Node(u"Vars/Other"), nullptr);
}

TEST_F(GraphSettingsTest, MissingValuesReadAsZeroAndNoLimits)
{
    Want({u"M.E"});
    Arrange(u"M.E", {});
    Log({u"M.U", u"M.E"});
    Get();
    const Curve& record = profile[0];
    EXPECT_EQ(record.Color, 0UL);
    EXPECT_EQ(record.Zone, 0);
    EXPECT_EQ(record.MeasureUnits, 0);
    EXPECT_EQ(record.Index, 0);
    EXPECT_EQ(record.Maximum, Curve::kNoMaximum);
}

TEST_F(GraphSettingsTest, ValuesThatAreNoneNegativeOrHugeDoNoHarm)
{
    Want({u"M.U", u"M.E"});
    Arrange(u"M.U", {{u"Color", u"red"},
                     {u"LineType", u"-1"},
                     {u"Maximum", u"nothing"},
                     {u"Minimum", u"-1e999"},
                     {u"Zone", u"-99999999999999"},
                     {u"MeasureUnits", u"x"},
                     {u"Index", u"-3"}});
    Arrange(u"M.E", {{u"Color", u"123456789ABC"},
                     {u"LineType", u"99999999999"},
                     {u"Maximum", u" 1e308 V"},
                     {u"Minimum", u"nan"},
                     {u"Zone", u"99999999999"},
                     {u"Index", u"2147483648"}});
    Log({u"M.U", u"M.E"});
    EXPECT_EQ(Get(), 2);
    EXPECT_EQ(profile[0].Color, 0x0EDUL);  // digits that are none count as 0
    EXPECT_EQ(profile[0].LineType, -1);
    EXPECT_EQ(profile[0].Maximum, 0.0);
    EXPECT_EQ(profile[0].Minimum, -std::numeric_limits<double>::infinity());
    EXPECT_EQ(profile[0].Zone, std::numeric_limits<int>::min());
    EXPECT_EQ(profile[0].Index, -3);
    EXPECT_EQ(profile[1].Color, 0x56789ABCUL);
    EXPECT_EQ(profile[1].Maximum, 1e308);
    EXPECT_EQ(profile[1].Minimum, 0.0);
    EXPECT_EQ(profile[1].Index, std::numeric_limits<int>::max());
    // They can be written and read again.
    Set();
    EXPECT_EQ(Get(), 2);
    EXPECT_EQ(profile[1].Maximum, 1e308);
}

TEST_F(GraphSettingsTest, OfDoubledEntriesTheFirstCounts)
{
    Want({u"M.U", u"M.U"});
    ArrangeZone(u"M.U", u"1");
    ArrangeZone(u"M.U", u"2");
    Log({u"M.U"});
    EXPECT_EQ(Get(), 1);
    EXPECT_EQ(Records(), Texts{"M.U:1"});
    Set();
    EXPECT_EQ(Wanted(), Texts{"M.U"});
}

TEST_F(GraphSettingsTest, AnEntryWithoutANameDeletesTheRecordAtTheLastPosition)
{
    Want({u"M.U", u"M.E"});
    document.root->Node(u"Vars")->NewChild(u"Var");
    Log({u"M.U", u"M.E"});
    EXPECT_EQ(Get(), 1);
    EXPECT_EQ(Records(), Texts{"M.U:0"});
}

TEST_F(GraphSettingsTest, ACurveOfAVariableNotLoggedStays)
{
    Want({u"M.U"});
    Log({u"M.U"});
    Curve old;
    old.Name = u"M.OLD";
    profile.AddVariable(old);
    EXPECT_EQ(Get(), 2);
    EXPECT_EQ(Records(), (Texts{"M.U:0", "M.OLD:-1"}));
}

TEST_F(GraphSettingsTest, OnlyEntriesCalledVarAreMerged)
{
    document.root->NewChild(u"Vars")->NewChild(u"Other")->SetValue(u"Name", u"M.U");
    Log({u"M.U", u"M.E"});
    EXPECT_EQ(Get(), 2);
    EXPECT_TRUE(firstTime);
    EXPECT_EQ(Wanted(), (Texts{"M.U", "M.U", "M.E"}));
}

TEST_F(GraphSettingsTest, ANameIsWantedWhateverTheEntryIsCalled)
{
    Want({u"M.U"});
    document.root->Node(u"Vars")->NewChild(u"Other")->SetValue(u"Name", u"M.E");
    Log({u"M.U", u"M.E", u"M.PF"});
    EXPECT_EQ(Get(), 2);
    EXPECT_EQ(Records(), (Texts{"M.U:0", "M.E:1"}));
}

TEST_F(GraphSettingsTest, AWantedVariableWithoutAnyLoggedDoesNoHarm)
{
    Want({u"M.OLD"});
    ArrangeZone(u"M.OLD", u"1");
    Log({});
    EXPECT_EQ(Get(), 0);
    EXPECT_FALSE(firstTime);
}

TEST_F(GraphSettingsTest, WithoutATreeTheProfileStaysAsItIs)
{
    Log({u"M.U", u"M.E"});
    GraphSettings settings(profile, info, nullptr);
    EXPECT_EQ(settings.GetLastConfiguration(firstTime), 2);
    EXPECT_TRUE(firstTime);
    EXPECT_EQ(settings.SetLastConfiguration(), 0);
}

}  // namespace
}  // namespace zr::logger
