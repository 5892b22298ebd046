#include "hosts/kestrix/LoggedVariables.h"

#include <gtest/gtest.h>

namespace zr::desktop {
namespace {

std::vector<ZRBasicString> NamesOf(const ZRLoggerInfo& info)
{
    std::vector<ZRBasicString> names;
    for (const ZRDriverVariable* variable : info.variables) {
        names.push_back(variable->fullName);
    }
    return names;
}

const std::vector<LoggerDataSet> kSets = {{u"fast", 1, 0, {u"B.X", u"A.U"}}, {u"slow", 60, 0, {u"A.E", u"A.U"}}};

TEST(LoggedVariablesTest, GoesByTheDevicesThenByTheDataSetsAndTakesEachOnce)
{
    EXPECT_EQ(NamesOf(LoggedVariables({u"A", u"B"}, kSets)), (std::vector<ZRBasicString>{u"A.U", u"A.E", u"B.X"}));
}

TEST(LoggedVariablesTest, LeavesOutTheVariablesOfOtherDevices)
{
    EXPECT_EQ(NamesOf(LoggedVariables({u"B"}, kSets)), (std::vector<ZRBasicString>{u"B.X"}));
    EXPECT_TRUE(NamesOf(LoggedVariables({u"AB"}, kSets)).empty());
}

TEST(LoggedVariablesTest, HasNoneWithoutAStore)
{
    EXPECT_TRUE(NamesOf(LoggedVariables({u"A"})).empty());
}

TEST(LoggedVariablesTest, WantsWhatATreeOfSettingsDoesNotKnowYet)
{
    const ZRLoggerInfo info = LoggedVariables({u"A"}, kSets);
    XmlDocument tree;
    tree.Create(u"main");
    WantAll(info, *tree.root);
    EXPECT_TRUE(tree.root->children.empty());  // nothing is kept yet, and all will be shown
    XmlNode& vars = *tree.root->NewChild(u"Vars");
    vars.NewChild(u"Var")->SetValue(u"Name", u"GONE.X");
    vars.NewChild(u"Var")->SetValue(u"Name", u"A.E");
    for (int i = 0; i < 2; ++i) {
        WantAll(info, *tree.root);
        std::vector<ZRBasicString> names;
        for (const XmlNode* const child : vars.children) {
            EXPECT_EQ(child->tag, u"Var");
            names.push_back(child->Value(u"Name", u""));
        }
        EXPECT_EQ(names, (std::vector<ZRBasicString>{u"GONE.X", u"A.E", u"A.U"}));
    }
}

}  // namespace
}  // namespace zr::desktop
