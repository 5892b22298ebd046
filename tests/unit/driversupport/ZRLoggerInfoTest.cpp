#include "siblings/driversupport/ZRLoggerInfo.h"

#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace zr::test {
namespace {

class Meter final : public ZRDeviceDriver {
public:
    Meter()
    {
        std::vector<VariableDescription> variables(2);
        variables[0].name = u"E";
        variables[0].variableClass = VariableClass::Counter;
        variables[1].name = u"U";
        SetVariables(std::make_shared<VariableTable>(variables));
        SetName(u"M");
    }
};

std::vector<ZRBasicString> NamesOf(const ZRLoggerInfo& info)
{
    std::vector<ZRBasicString> names;
    for (const ZRDriverVariable* variable : info.variables) {
        names.push_back(variable->fullName);
    }
    return names;
}

class ZRLoggerInfoTest : public testing::Test {
protected:
    void SetUp() override
    {
        info.AddVariable(u"M.E");
        info.AddVariable(u"M.GONE");
        info.AddVariable(u"M.U");
    }

    Meter meter;
    ZRLoggerInfo info;
    ZRDeviceDriver::tagSVariableInfo told;
};

TEST_F(ZRLoggerInfoTest, KeepsTheOrderOfAddition)
{
    EXPECT_EQ(NamesOf(info), (std::vector<ZRBasicString>{u"M.E", u"M.GONE", u"M.U"}));
}

TEST_F(ZRLoggerInfoTest, LockBindsTheVariablesThatAreThere)
{
    EXPECT_FALSE(info.variables.front()->Info(told));
    info.Lock();
    EXPECT_TRUE(info.variables.front()->Info(told));
    EXPECT_EQ(told.infoCode, 8);
    EXPECT_TRUE(info.variables.back()->Info(told));
    EXPECT_EQ(told.infoCode, 1);
}

TEST_F(ZRLoggerInfoTest, AVariableThatCantBeDescribedKeepsItsPlace)
{
    info.Lock();
    EXPECT_EQ(info.variables.size(), 3u);
    EXPECT_FALSE((*std::next(info.variables.begin()))->Info(told));
}

TEST_F(ZRLoggerInfoTest, UnlockUndoesLockSoThatTheListCanGrow)
{
    info.Lock();
    info.Unlock();
    EXPECT_FALSE(info.variables.front()->IsLocked());
    info.AddVariable(u"M.E");
    info.Lock();
    EXPECT_TRUE(info.variables.back()->IsLocked());
    EXPECT_EQ(info.variables.size(), 4u);
}

TEST_F(ZRLoggerInfoTest, ACopyIsDeepAndLockedLikeTheOriginal)
{
    info.Lock();
    ZRLoggerInfo copy(info);
    info.DeleteAll();
    EXPECT_EQ(NamesOf(copy), (std::vector<ZRBasicString>{u"M.E", u"M.GONE", u"M.U"}));
    EXPECT_TRUE(copy.variables.front()->IsLocked());
    const ZRLoggerInfo unlocked = [] {
        ZRLoggerInfo other;
        other.AddVariable(u"M.U");
        return other;
    }();
    EXPECT_FALSE(unlocked.variables.front()->IsLocked());
}

TEST_F(ZRLoggerInfoTest, AssignmentReplacesTheList)
{
    ZRLoggerInfo other;
    other.AddVariable(u"M.U");
    other = info;
    EXPECT_EQ(NamesOf(other), NamesOf(info));
    EXPECT_NE(other.variables.front(), info.variables.front());
    const ZRLoggerInfo& same = other;
    other = same;
    EXPECT_EQ(NamesOf(other), NamesOf(info));
    other = ZRLoggerInfo();
    EXPECT_TRUE(other.variables.empty());
}

}  // namespace
}  // namespace zr::test
