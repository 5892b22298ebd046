#include "hosts/kestrix/DeviceWatch.h"

#include "siblings/driversupport/MeasureUnits.h"
#include "siblings/driversupport/ZRDriverVariable.h"
#include "WatchedDevice.h"

#include <gtest/gtest.h>
#include <cmath>
#include <limits>

namespace zr::desktop {
namespace {
using namespace test;

constexpr int kVolt = static_cast<int>(MeasureUnit::Volt);
constexpr int kPowerFactorUnit = static_cast<int>(MeasureUnit::PowerFactor);
constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

double ValueOf(const ZRBasicString& name)
{
    ZRDriverVariable variable;
    variable.Setup(name);
    tagSVariableValue value;
    if (!variable.Lock() || !variable.IsValid()) {
        return kNoNumber;
    }
    variable.Value(value);
    return value.number;
}

TEST(HistoryMarkTest, HoldsTheLowestAndTheHighestReading)
{
    HistoryMark mark;
    EXPECT_FALSE(mark.any);
    for (const double value : {5.0, 7.0, -2.0, 3.0}) {
        mark.Take(value, false);
    }
    EXPECT_TRUE(mark.any);
    EXPECT_EQ(mark.low, -2.0);
    EXPECT_EQ(mark.high, 7.0);
}

TEST(HistoryMarkTest, TakesNothingThatIsNoNumber)
{
    HistoryMark mark;
    mark.Take(kNoNumber, false);
    mark.Take(std::numeric_limits<double>::infinity(), false);
    EXPECT_FALSE(mark.any);
}

TEST(HistoryMarkTest, ComparesAPowerFactorOnItsFoldedScale)
{
    HistoryMark mark;
    mark.Take(0.95, true);
    mark.Take(-0.97, true);  // 1.03
    EXPECT_EQ(mark.low, 0.95);
    EXPECT_EQ(mark.high, -0.97);
}

TEST(LimitStateTest, WarnsAndAlarmsBeyondEachSide)
{
    const VariableLimits limits{230.0, true, 207.0, 195.0, true, 253.0, 264.0};
    struct Row {
        double value;
        LimitState state;
    };
    for (const Row& row :
         {Row{230.0, LimitState::Normal}, Row{207.0, LimitState::Normal}, Row{206.0, LimitState::Warning},
          Row{194.0, LimitState::Alarm}, Row{254.0, LimitState::Warning}, Row{265.0, LimitState::Alarm}}) {
        EXPECT_EQ(StateOf(limits, false, row.value), row.state) << row.value;
    }
}

TEST(LimitStateTest, LooksAtNoSideThatHasNoLimit)
{
    VariableLimits limits{230.0, false, 0.0, 0.0, true, 253.0, 264.0};
    EXPECT_EQ(StateOf(limits, false, -1e9), LimitState::Normal);
    limits = {230.0, true, 207.0, 195.0, false, 0.0, 0.0};
    EXPECT_EQ(StateOf(limits, false, 1e9), LimitState::Normal);
}

TEST(LimitStateTest, FoldsAPowerFactor)
{
    const VariableLimits limits{1.0, true, 0.9, 0.8, true, -0.9, -0.8};
    EXPECT_EQ(StateOf(limits, true, -0.95), LimitState::Normal);
    EXPECT_EQ(StateOf(limits, true, -0.85), LimitState::Warning);
    EXPECT_EQ(StateOf(limits, true, -0.5), LimitState::Alarm);
    EXPECT_EQ(StateOf(limits, true, 0.5), LimitState::Alarm);
}

TEST(DeviceWatchTest, MarksAreLiveVariablesThemselves)
{
    WatchedDevice device(u"M1", {Number(u"U1", kVolt), Number(u"U2", kVolt)});
    DeviceWatch watch(device);
    EXPECT_TRUE(std::isnan(ValueOf(DeviceWatch::HighName(u"M1", u"U2"))));
    for (const double value : {230.0, 235.0, 228.0}) {
        device.Write(1, value);
        watch.Update(true);
    }
    EXPECT_EQ(watch.Mark(1).high, 235.0);
    EXPECT_EQ(ValueOf(DeviceWatch::HighName(u"M1", u"U2")), 235.0);
    EXPECT_EQ(ValueOf(DeviceWatch::LowName(u"M1", u"U2")), 228.0);
    EXPECT_FALSE(watch.Mark(0).any);
}

TEST(DeviceWatchTest, AForgottenMarkBeginsWithTheNextReading)
{
    WatchedDevice device(u"M1", {Number(u"U1", kVolt)});
    DeviceWatch watch(device);
    device.Write(0, 230.0);
    watch.Update(true);
    watch.Forget(0);
    EXPECT_TRUE(std::isnan(ValueOf(DeviceWatch::HighName(u"M1", u"U1"))));
    device.Write(0, 220.0);
    watch.Update(true);
    EXPECT_EQ(ValueOf(DeviceWatch::HighName(u"M1", u"U1")), 220.0);
}

TEST(DeviceWatchTest, AnAlarmLimitThatIsPassedMakesTheDeviceAlarm)
{
    WatchedDevice device(u"M1", {Limited(Number(u"U1", kVolt), 230.0, 207.0, 195.0, 253.0, 264.0)});
    DeviceWatch watch(device);
    device.Write(0, 255.0);
    watch.Update(true);
    EXPECT_EQ(watch.State(), DeviceState::OnLine);  // a warning is none
    device.Write(0, 270.0);
    watch.Update(true);
    EXPECT_EQ(watch.State(), DeviceState::Alarm);
    device.Write(0, 230.0);
    watch.Update(true);
    EXPECT_EQ(watch.State(), DeviceState::OnLine);
}

TEST(DeviceWatchTest, ADeviceIsUnaskedUntilItAnswersOrFallsSilent)
{
    WatchedDevice device(u"M1", {Number(u"PF", kPowerFactorUnit)});
    device.SetOnline(false);
    DeviceWatch watch(device);
    watch.Update(true);
    EXPECT_EQ(watch.State(), DeviceState::NotAsked);
    watch.FellSilent();
    watch.Update(true);
    EXPECT_EQ(watch.State(), DeviceState::Silent);
    device.SetOnline(true);
    watch.Update(true);
    EXPECT_EQ(watch.State(), DeviceState::OnLine);
    device.SetOnline(false);
    watch.Update(true);
    EXPECT_EQ(watch.State(), DeviceState::Silent);
}

TEST(DeviceWatchTest, ADeviceOfAnotherProgramIsNotPolled)
{
    WatchedDevice device(u"M1", {Number(u"U1", kVolt)});
    DeviceWatch watch(device);
    watch.Update(false);
    EXPECT_EQ(watch.State(), DeviceState::NotPolled);
}

}  // namespace
}  // namespace zr::desktop
