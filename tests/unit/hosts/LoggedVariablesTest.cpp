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

}  // namespace
}  // namespace zr::desktop
