#include "logger/TableSettings.h"

#include "support/XmlTree.h"
#include "unit/logger/SettingsFixture.h"

namespace zr::logger {
namespace {

// A table's place in the settings.
struct Arrangement {
    const wchar* name;
    const wchar* index;
    const wchar* width;
};

class TableSettingsTest : public SettingsFixture {
protected:
    // The profile as the viewer fills it before the settings are merged.
    void Log(const std::vector<ZRBasicString>& names)
    {
        profile.DeleteAll();
        ForEachLogged(
            names, [&](const ZRDriverVariable& variable, const ZRDeviceDriver::tagSVariableInfo& told, int position) {
                profile.AddVariable(variable.fullName, u"Title", position, told.measureUnits, told.valueExponent,
                                    told.unitsDecimals, 100, told.unitsExponent);
            });
    }

    void Arrange(const std::vector<Arrangement>& setups)
    {
        XmlNode* const table = document.root->NewChild(u"Table");
        for (const Arrangement& arrangement : setups) {
            XmlNode* const node = table->NewChild(u"VarSetup");
            node->SetValue(u"Var", arrangement.name);
            if (arrangement.index != nullptr) {
                node->SetValue(u"Index", arrangement.index);
            }
            if (arrangement.width != nullptr) {
                node->SetValue(u"Width", arrangement.width);
            }
        }
    }

    int Get() { return TableSettings(profile, info, document.root).GetLastConfiguration(); }
    int Set() { return TableSettings(profile, info, document.root).SetLastConfiguration(); }

    // "name:index:width" of each record.
    std::vector<std::string> Records()
    {
        std::vector<std::string> records;
        for (unsigned i = 0; i < profile.NVars(); ++i) {
            records.push_back(Narrow(profile[i].Name) + ":" + std::to_string(profile[i].Index) + ":" +
                              std::to_string(profile[i].Width));
        }
        return records;
    }

    // The same of the tree.
    std::vector<std::string> Entries() const
    {
        std::vector<std::string> entries;
        for (const XmlNode* child : document.root->Node(u"Table")->children) {
            entries.push_back(Narrow(child->Value(u"Var", u"-")) + ":" + Narrow(child->Value(u"Index", u"-")) + ":" +
                              Narrow(child->Value(u"Width", u"-")));
        }
        return entries;
    }

    ZRTableProfile profile;
};

TEST_F(TableSettingsTest, AnEmptyTreeIsFilledFromTheVariablesLogged)
{
    Log({u"M.U", u"M.E", u"M.PF"});
    EXPECT_EQ(Get(), 3);
    EXPECT_EQ(Wanted(), (Texts{"M.U", "M.E", "M.PF"}));
    EXPECT_EQ(Entries(), (Texts{"M.U:0:100", "M.E:1:100", "M.PF:2:100"}));
}

TEST_F(TableSettingsTest, AVariableThatIsLoggedButNotWantedIsDropped)
{
    Want({u"M.PF", u"M.U"});
    Log({u"M.U", u"M.E", u"M.PF"});
    EXPECT_EQ(Get(), 2);
    EXPECT_EQ(Records(), (Texts{"M.U:0:100", "M.PF:2:100"}));
}

TEST_F(TableSettingsTest, AVariableKeepsItsPlaceAndWidth)
{
    Want({u"M.U", u"M.E"});
    Arrange({{u"M.U", u"1", u"70"}, {u"M.E", u"0", u"80"}});
    Log({u"M.E", u"M.U"});
    EXPECT_EQ(Get(), 2);
    EXPECT_EQ(Records(), (Texts{"M.E:0:80", "M.U:1:70"}));
}

TEST_F(TableSettingsTest, AWantedVariableThatIsNoLongerLoggedGetsNoRecord)
{
    Want({u"M.U", u"M.OLD"});
    Log({u"M.U"});
    EXPECT_EQ(Get(), 1);
    EXPECT_EQ(Records(), Texts{"M.U:0:100"});
    // It stays in the tree until the settings are written anew.
    EXPECT_EQ(Wanted(), (Texts{"M.U", "M.OLD"}));
    Set();
    EXPECT_EQ(Wanted(), Texts{"M.U"});
}

TEST_F(TableSettingsTest, WhatIsStoredForAVariableNoLongerLoggedLandsOnTheLastRecord)
{
    Want({u"M.U", u"M.E", u"M.OLD"});
    Arrange({{u"M.U", u"0", u"70"}, {u"M.E", u"1", u"80"}, {u"M.OLD", u"9", u"999"}});
    Log({u"M.U", u"M.E"});
    EXPECT_EQ(Get(), 2);
    EXPECT_EQ(Records(), (Texts{"M.U:0:70", "M.E:9:999"}));
}

TEST_F(TableSettingsTest, WhatIsStoredForAVariableNoLongerLoggedIsWrittenOverByLaterEntries)
{
    Want({u"M.OLD", u"M.U", u"M.E"});
    Arrange({{u"M.OLD", u"9", u"999"}, {u"M.U", u"0", u"70"}, {u"M.E", u"1", u"80"}});
    Log({u"M.U", u"M.E"});
    Get();
    EXPECT_EQ(Records(), (Texts{"M.U:0:70", "M.E:1:80"}));
}

TEST_F(TableSettingsTest, AVariableNoLongerLoggedIsAddedWhereTheLastPositionIsOneBehindTheProfile)
{
    // Two logged, one of which can't be described.
    Want({u"M.U", u"M.OLD"});
    Arrange({{u"M.U", u"0", u"70"}, {u"M.OLD", u"9", u"999"}});
    Log({u"M.U", u"X.GONE"});
    ASSERT_EQ(profile.NVars(), 1U);
    EXPECT_EQ(Get(), 2);
    EXPECT_EQ(Records(), (Texts{"M.U:0:70", "M.OLD:9:999"}));
}

TEST_F(TableSettingsTest, AnEntryBeyondTheProfileLandsNowhere)
{
    Want({u"M.U", u"M.OLD"});
    Arrange({{u"M.U", u"0", u"70"}, {u"M.OLD", u"9", u"999"}});
    Log({u"M.U", u"X.GONE", u"X.LOST"});
    EXPECT_EQ(Get(), 1);
    EXPECT_EQ(Records(), Texts{"M.U:0:70"});
}

TEST_F(TableSettingsTest, AWantedVariableWithoutAnArrangementGetsOneWithItsNameAlone)
{
    Want({u"M.U", u"M.E"});
    Arrange({{u"M.U", u"0", u"70"}});
    Log({u"M.U", u"M.E"});
    EXPECT_EQ(Get(), 2);
    EXPECT_EQ(Records(), (Texts{"M.U:0:70", "M.E:1:100"}));
    EXPECT_EQ(Entries(), (Texts{"M.U:0:70", "M.E:-:-"}));
}

TEST_F(TableSettingsTest, AVariableThatTheProfileLacksIsAddedBesideTheLastOne)
{
    Want({u"M.U", u"M.E"});
    Arrange({{u"M.U", u"4", u"70"}});
    Log({u"M.U", u"M.E"});
    profile.DeleteVariable(1);
    EXPECT_EQ(Get(), 2);
    EXPECT_EQ(Records(), (Texts{"M.U:4:70", "M.E:4:100"}));
    EXPECT_EQ(Narrow(profile[1].Title), "Energy");
    EXPECT_EQ(profile[1].MeasureUnits, 8);
    EXPECT_EQ(profile[1].Decimals, 2);
    EXPECT_EQ(profile[1].UnitsExponent, 3);
}

TEST_F(TableSettingsTest, AVariableAddedToAnEmptyProfileHasTheIndexOfNoRecord)
{
    Want({u"M.E"});
    Log({u"M.E"});
    profile.DeleteAll();
    EXPECT_EQ(Get(), 1);
    EXPECT_EQ(Records(), Texts{"M.E:-1:100"});
}

TEST_F(TableSettingsTest, AVariableThatTheProfileLacksComesBackWithItsArrangement)
{
    Want({u"M.U", u"M.E"});
    Arrange({{u"M.U", u"1", u"70"}, {u"M.E", u"0", u"80"}});
    Log({u"M.U", u"M.E"});
    profile.DeleteVariable(1);
    EXPECT_EQ(Get(), 2);
    EXPECT_EQ(Records(), (Texts{"M.U:1:70", "M.E:0:80"}));
    EXPECT_EQ(Narrow(profile[1].Title), "Energy");
}

TEST_F(TableSettingsTest, AnEntryWithoutANameDeletesTheRecordAtTheLastPosition)
{
    document.root->NewChild(u"Vars")->NewChild(u"Var");
    Log({u"M.U", u"M.E"});
    // The other is logged and not wanted.
    EXPECT_EQ(Get(), 0);
    EXPECT_TRUE(Entries().empty());
}

TEST_F(TableSettingsTest, MissingNumbersReadAsZero)
{
    Want({u"M.U"});
    Arrange({{u"M.U", nullptr, nullptr}});
    Log({u"M.U"});
    Get();
    EXPECT_EQ(Records(), Texts{"M.U:0:0"});
}

TEST_F(TableSettingsTest, NumbersThatAreNoneNegativeOrHugeDoNoHarm)
{
    Want({u"M.U", u"M.E", u"M.PF"});
    Arrange({{u"M.U", u"abc", u""}, {u"M.E", u"-7", u"-100"}, {u"M.PF", u"99999999999", u"99999999999999999999"}});
    Log({u"M.U", u"M.E", u"M.PF"});
    Get();
    EXPECT_EQ(Records(), (Texts{"M.U:0:0", "M.E:-7:-100", "M.PF:2147483647:2147483647"}));
}

TEST_F(TableSettingsTest, OfDoubledEntriesTheFirstCounts)
{
    Want({u"M.U", u"M.U"});
    Arrange({{u"M.U", u"1", u"70"}, {u"M.U", u"2", u"90"}});
    Log({u"M.U"});
    EXPECT_EQ(Get(), 1);
    EXPECT_EQ(Records(), Texts{"M.U:1:70"});
    Set();
    EXPECT_EQ(Wanted(), Texts{"M.U"});
    EXPECT_EQ(Entries(), Texts{"M.U:1:70"});
}

TEST_F(TableSettingsTest, AnyChildOfTheWantedKeepsARecordWhateverItsTag)
{
    Want({u"M.U"});
    document.root->Node(u"Vars")->NewChild(u"Other")->SetValue(u"Name", u"M.E");
    Log({u"M.U", u"M.E"});
    EXPECT_EQ(Get(), 2);
}

TEST_F(TableSettingsTest, ARecordWhoseVariableIsNotLoggedIsNotDropped)
{
    Want({u"M.U"});
    Log({u"M.U"});
    profile.AddVariable(u"M.OLD", u"Old", 1, 0, 0, 0, 100, 0);
    EXPECT_EQ(Get(), 2);
}

TEST_F(TableSettingsTest, SettingTwiceGivesTheSameTree)
{
    Log({u"M.U", u"M.E"});
    EXPECT_EQ(Set(), 0);
    const std::string once = test::DescribeTree(document);
    Set();
    EXPECT_EQ(test::DescribeTree(document), once);
    EXPECT_EQ(Entries(), (Texts{"M.U:0:100", "M.E:1:100"}));
}

TEST_F(TableSettingsTest, SettingLeavesWhatIsNotItsOwn)
{
    Want({u"M.U"});
    document.root->NewChild(u"Graph")->NewChild(u"VarSetup")->SetValue(u"Var", u"M.U");
    document.root->Node(u"Vars")->NewChild(u"Other");
    Log({u"M.E"});
    Set();
    EXPECT_NE(document.root->NodeV(u"Graph/VarSetup?Var=%s?", ZRBasicString(u"M.U")), nullptr);
    EXPECT_NE(document.root->Node(u"Vars/Other"), nullptr);
    EXPECT_EQ(document.root->Node(u"Vars/Var")->Value(u"Name", u""), ZRBasicString(u"M.E"));
}

TEST_F(TableSettingsTest, WithoutVariablesBothElementsStayEmpty)
{
    Log({});
    EXPECT_EQ(Get(), 0);
    EXPECT_TRUE(Wanted().empty());
    EXPECT_TRUE(Entries().empty());
}

TEST_F(TableSettingsTest, AWantedVariableWithoutAnyLoggedDoesNoHarm)
{
    Want({u"M.OLD"});
    Arrange({{u"M.OLD", u"1", u"70"}});
    Log({});
    EXPECT_EQ(Get(), 0);
}

TEST_F(TableSettingsTest, NamesHoldWhatTheyWill)
{
    const ZRBasicString hostile = u"FILE.MVDF@a=b/c%s#M.<&\">" + ZRBasicString(std::u16string(10000, u'x'));
    Log({u"M.U"});
    profile[0].Name = hostile;
    Set();
    profile[0].Name = u"M.U";
    info = Info({hostile});
    info.Lock();
    profile.DeleteAll();
    profile.AddVariable(hostile, u"", 5, 0, 0, 0, 5, 0);
    EXPECT_EQ(Get(), 1);
    EXPECT_EQ(profile[0].Name, hostile);
    EXPECT_EQ(profile[0].Index, 0);
    EXPECT_EQ(profile[0].Width, 100);
}

TEST_F(TableSettingsTest, WithoutATreeTheProfileStaysAsItIs)
{
    Log({u"M.U", u"M.E"});
    TableSettings settings(profile, info, nullptr);
    EXPECT_EQ(settings.GetLastConfiguration(), 2);
    EXPECT_EQ(settings.SetLastConfiguration(), 0);
}

TEST_F(TableSettingsTest, AnAppendedColumnStandsBehindAllOthers)
{
    XmlDocument tree;
    tree.Create(u"main");
    AppendColumn(*tree.root, u"M.U");
    EXPECT_TRUE(tree.root->children.empty());
    XmlNode& table = *tree.root->NewChild(u"Table");
    AppendColumn(*tree.root, u"M.U");
    table.children.back()->SetValue(u"Index", u"2147483647");
    AppendColumn(*tree.root, u"M.E");
    AppendColumn(*tree.root, u"M.U");  // it has one
    ASSERT_EQ(table.children.size(), 2U);
    EXPECT_EQ(table.children.back()->tag, u"VarSetup");
    EXPECT_EQ(table.children.back()->Value(u"Var", u""), u"M.E");
    EXPECT_EQ(table.children.back()->Value(u"Index", u""), u"2147483647");
    EXPECT_EQ(table.children.back()->Value(u"Width", u""), u"100");
}

}  // namespace
}  // namespace zr::logger
