// Rows of the table are never freed, so that each test runs in a process of its own.
#include "comm/ZRDriverServices.h"

#include "siblings/driversupport/ZRDeviceDriver.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdlib>

namespace {

constexpr CRuntimeClass kMeterClass{"Meter"};
constexpr CRuntimeClass kOutputClass{"Output"};
constexpr CRuntimeClass kUnknownClass{"Unknown"};

// A driver of any class; the class is all that the services look at.
class ClassedDriver : public ZRDeviceDriver {
public:
    explicit ClassedDriver(const CRuntimeClass& driverClass) : m_class(driverClass) {}
    const CRuntimeClass* GetRuntimeClass() const override { return &m_class; }

private:
    const CRuntimeClass& m_class;
};

struct Call {
    int dialog = 0;
    CWnd* parent = nullptr;
    ZRDeviceDriver* driver = nullptr;
    std::list<ZRBasicString>* vars = nullptr;
    int flags = 0;
    int maximum = 0;
};
Call lastCall;

// The dialogs of a class, told apart by a number: options is Number, the selections are Number + 1 and Number + 2.
template <int Number>
bool Options(CWnd* parent, ZRDeviceDriver* driver)
{
    lastCall = {Number, parent, driver, nullptr, 0, 0};
    return true;
}
template <int Number>
bool Select(CWnd* parent, ZRDeviceDriver* driver, std::list<ZRBasicString>& vars, int flags, int maximum)
{
    lastCall = {Number, parent, driver, &vars, flags, maximum};
    return Number % 2 == 1;
}
template <int Number>
bool AddDialogs(const CRuntimeClass& driverClass)
{
    return ZRDriverServices::Add(&driverClass, &Options<Number>, &Select<Number + 1>, &Select<Number + 2>);
}

// The dialog that a driver of that class gets.
int OptionsDialogOf(const CRuntimeClass& driverClass)
{
    ClassedDriver driver(driverClass);
    lastCall = {};
    ZRDriverServices::ShowOptionsDlg(nullptr, &driver);
    return lastCall.dialog;
}

// Ends the process of its own of a test: 0 if it held.
[[noreturn]] void EndProcess()
{
    std::_Exit(::testing::Test::HasFailure() ? 1 : 0);
}

class ZRDriverServicesTest : public ::testing::Test {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

#define EXPECT_HOLDS_IN_OWN_PROCESS(scenario) \
    EXPECT_EXIT(                              \
        {                                     \
            scenario();                       \
            EndProcess();                     \
        },                                    \
        ::testing::ExitedWithCode(0), "")

TEST_F(ZRDriverServicesTest, ANewRowIsFree)
{
    const ZRDriverServices row;
    EXPECT_EQ(row.RuntimeClass(), nullptr);
}

TEST_F(ZRDriverServicesTest, SetupStoresTheClassAndACopyTakesIt)
{
    ZRDriverServices row;
    row.Setup(&kMeterClass, &Options<1>, &Select<2>, &Select<3>);
    EXPECT_EQ(row.RuntimeClass(), &kMeterClass);
    ZRDriverServices other;
    other = row;
    EXPECT_EQ(other.RuntimeClass(), &kMeterClass);
}

void TheThirtyThirdAddIsRefused()
{
    std::array<CRuntimeClass, 32> classes{};
    EXPECT_TRUE(AddDialogs<100>(classes[0]));
    for (std::size_t i = 1; i < classes.size(); ++i) {
        EXPECT_TRUE(AddDialogs<200>(classes[i])) << i;
    }
    EXPECT_FALSE(AddDialogs<300>(kMeterClass));
    // The table is as before: the class that was refused gets the first row, the last one its own.
    EXPECT_EQ(OptionsDialogOf(kMeterClass), 100);
    EXPECT_EQ(OptionsDialogOf(classes[31]), 200);
}
TEST_F(ZRDriverServicesTest, RefusesTheThirtyThirdClassAndLeavesTheTableAsItIs)
{
    EXPECT_HOLDS_IN_OWN_PROCESS(TheThirtyThirdAddIsRefused);
}

void AnUnknownClassGetsTheFirstRow()
{
    AddDialogs<100>(kMeterClass);
    AddDialogs<200>(kOutputClass);
    EXPECT_EQ(OptionsDialogOf(kOutputClass), 200);
    EXPECT_EQ(OptionsDialogOf(kUnknownClass), 100);
}
TEST_F(ZRDriverServicesTest, GivesADriverOfAnUnregisteredClassTheDialogsOfTheFirstRow)
{
    EXPECT_HOLDS_IN_OWN_PROCESS(AnUnknownClassGetsTheFirstRow);
}

void TheFirstOfTwoRowsServes()
{
    EXPECT_TRUE(AddDialogs<100>(kMeterClass));
    EXPECT_TRUE(AddDialogs<200>(kOutputClass));
    EXPECT_TRUE(AddDialogs<300>(kOutputClass));
    EXPECT_EQ(OptionsDialogOf(kOutputClass), 200);
}
TEST_F(ZRDriverServicesTest, ServesTheFirstOfTwoRegistrationsOfOneClass)
{
    EXPECT_HOLDS_IN_OWN_PROCESS(TheFirstOfTwoRowsServes);
}

void ArgumentsAndResultsPassUnchanged()
{
    AddDialogs<100>(kMeterClass);
    ClassedDriver driver(kMeterClass);
    int window = 0;
    auto* const parent = reinterpret_cast<CWnd*>(&window);
    std::list<ZRBasicString> vars{u"METER.P"};

    EXPECT_TRUE(ZRDriverServices::ShowOptionsDlg(parent, &driver));
    EXPECT_EQ(lastCall.dialog, 100);
    EXPECT_EQ(lastCall.parent, parent);
    EXPECT_EQ(lastCall.driver, &driver);

    EXPECT_TRUE(ZRDriverServices::SelectVarDlg(parent, &driver, vars, 5, 7));
    EXPECT_EQ(lastCall.dialog, 101);
    EXPECT_EQ(lastCall.parent, parent);
    EXPECT_EQ(lastCall.driver, &driver);
    EXPECT_EQ(lastCall.vars, &vars);
    EXPECT_EQ(lastCall.flags, 5);
    EXPECT_EQ(lastCall.maximum, 7);

    EXPECT_FALSE(ZRDriverServices::SelectOutputVarDlg(parent, &driver, vars, 6, 0));
    EXPECT_EQ(lastCall.dialog, 102);
    EXPECT_EQ(lastCall.vars, &vars);
    EXPECT_EQ(lastCall.flags, 6);
    EXPECT_EQ(lastCall.maximum, 0);
}
TEST_F(ZRDriverServicesTest, PassesTheArgumentsAndTheResultUnchanged)
{
    EXPECT_HOLDS_IN_OWN_PROCESS(ArgumentsAndResultsPassUnchanged);
}

// A class of its own that is also a ClassedDriver of the base class' kind.
constexpr CRuntimeClass kDerivedClass{"DerivedMeter"};
class DerivedMeter : public ClassedDriver {
public:
    DerivedMeter() : ClassedDriver(kOutputClass) {}
    const CRuntimeClass* GetRuntimeClass() const override { return &kDerivedClass; }
};

void ADerivedClassMissesTheRowOfItsBase()
{
    AddDialogs<100>(kMeterClass);
    AddDialogs<200>(kOutputClass);
    DerivedMeter driver;
    ZRDriverServices::ShowOptionsDlg(nullptr, &driver);
    EXPECT_EQ(lastCall.dialog, 100);
}
TEST_F(ZRDriverServicesTest, DoesNotMatchADerivedClassToTheRowOfItsBase)
{
    EXPECT_HOLDS_IN_OWN_PROCESS(ADerivedClassMissesTheRowOfItsBase);
}

void CallWhileTheTableIsEmpty()
{
    ClassedDriver driver(kMeterClass);
    ZRDriverServices::ShowOptionsDlg(nullptr, &driver);
}
TEST_F(ZRDriverServicesTest, FailsAtTheCallWhileTheTableIsEmpty)
{
    EXPECT_DEATH(CallWhileTheTableIsEmpty(), "");
}

}  // namespace
