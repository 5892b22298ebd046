#include "siblings/driversupport/ZRDriverVariable.h"

#include "TestDevice.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace zr::test {

namespace {

class Meter final : public ZRDeviceDriver {
public:
    Meter()
    {
        std::vector<VariableDescription> variables(2);
        variables[0].name = u"E";
        variables[0].splittable = true;
        variables[1].name = u"U";
        variables[1].valueTexts = {u"off", u"on"};
        variables[1].values = {0, 1};
        SetVariables(std::make_shared<VariableTable>(variables));
        SetName(u"M");
    }
};

TEST(ZRDriverVariableTest, UnlockOnAVariableNeverLockedDoesNothing)
{
    ZRDriverVariable variable;
    variable.Unlock();
    EXPECT_FALSE(variable.IsLocked());
    tagSVariableValue value;
    variable.Value(value);
    EXPECT_EQ(value.type, tagSVariableValue::kNone);
    EXPECT_FALSE(variable.IsValid());
}

TEST(ZRDriverVariableTest, LocksAPlainReferenceAndReadsTheLatestValue)
{
    Meter meter;
    ZRDriverVariable variable;
    variable.Setup(u"M.E");
    ASSERT_TRUE(variable.Lock(false));
    EXPECT_EQ(variable.driver, &meter);
    EXPECT_FALSE(variable.IsValid());
    meter.Store()->At(0).WriteNumber(12.5);
    tagSVariableValue value;
    variable.Value(value);
    EXPECT_TRUE(variable.IsValid());
    EXPECT_EQ(value.number, 12.5);
}

TEST(ZRDriverVariableTest, LockFailsWithoutDeviceOrVariable)
{
    const Meter meter;
    ZRDriverVariable variable;
    for (const char16_t* reference : {u"", u"M", u"M.X", u"N.E", u"m.E", u"."}) {
        variable.Setup(reference);
        EXPECT_FALSE(variable.Lock());
        EXPECT_EQ(variable.driver, nullptr);
    }
}

TEST(ZRDriverVariableTest, AFullReferenceIsForVariablesThatCanBeSplit)
{
    Meter meter;
    meter.Store()->At(0).WriteNumber(3.0);
    ZRDriverVariable variable;
    variable.Setup(u"T.MVDF@Peak#M.E");
    ASSERT_TRUE(variable.Lock());
    tagSVariableValue value;
    variable.Value(value);
    EXPECT_EQ(value.number, 3.0);
    variable.Setup(u"T.MVDF@Peak#M.U");
    EXPECT_FALSE(variable.Lock());
}

TEST(ZRDriverVariableTest, StaysSafeToReadWhenItsDeviceGoes)
{
    auto meter = std::make_unique<Meter>();
    ZRDriverVariable variable;
    variable.Setup(u"M.E");
    ASSERT_TRUE(variable.Lock());
    meter->Store()->At(0).WriteNumber(3.0);
    meter.reset();
    ZRDeviceDriver::tagSVariableInfo info;
    EXPECT_FALSE(variable.IsValid());
    EXPECT_TRUE(variable.Info(info));
    EXPECT_EQ(ZRBasicString(info.name), u"E");
    variable.Unlock();
    EXPECT_FALSE(variable.Lock());
}

TEST(ZRDriverVariableTest, ValueInfoNamesTheValuesAndTheLimits)
{
    const Meter meter;
    ZRDriverVariable variable;
    variable.Setup(u"M.U");
    ASSERT_TRUE(variable.Lock());
    ZRDeviceDriver::tagSVariableValueInfo info;
    ASSERT_TRUE(variable.ValueInfo(info));
    EXPECT_EQ(info.values, (std::vector<int>{0, 1}));
    EXPECT_EQ(info.minimum, std::numeric_limits<double>::lowest());
    EXPECT_EQ(info.maximum, std::numeric_limits<double>::max());
}

TEST(ZRDriverVariableTest, ACopyOfALockedVariableIsLocked)
{
    const Meter meter;
    ZRDriverVariable variable;
    variable.Setup(u"M.E");
    ASSERT_TRUE(variable.Lock());
    const ZRDriverVariable copy = variable;
    variable.Unlock();
    EXPECT_TRUE(copy.IsLocked());
}

TEST(VariableStoreTest, AReaderNeverSeesHalfAValue)
{
    LiveValue value;
    value.WriteWords(0, 0);
    std::atomic<bool> stop{false};
    std::thread writer([&] {
        for (std::int32_t i = 0; !stop; i = (i + 1) % 1000000) {
            value.WriteWords(i, -i);
            value.WriteNumber(static_cast<double>(i));
            value.WriteText(u"a text that is longer than fits in place");
        }
    });
    for (int i = 0; i < 200000; ++i) {
        tagSVariableValue read;
        value.Read(read);
        if (read.type == tagSVariableValue::kWords) {
            ASSERT_EQ(read.first, -read.second);
        } else if (read.type == tagSVariableValue::kText) {
            ASSERT_EQ(read.text.Length(), 40u);
        }
    }
    stop = true;
    writer.join();
}

TEST(VariableStoreTest, ReadWritesOnlyTypeAndThePayloadOfThatType)
{
    LiveValue value;
    tagSVariableValue out;
    out.number = 7.0;
    value.Read(out);
    EXPECT_EQ(out.type, tagSVariableValue::kNone);
    value.WriteBoolean(true);
    value.Read(out);
    EXPECT_EQ(out.boolean, 1);
    EXPECT_EQ(out.number, 7.0);
    value.Invalidate();
    EXPECT_FALSE(value.IsValid());
    value.Read(out);
    EXPECT_EQ(out.type, tagSVariableValue::kBoolean);
}

TEST(VariableStoreTest, OfTwoVariablesOfOneNameTheFirstIsFound)
{
    std::vector<VariableDescription> variables(2);
    variables[0].name = variables[1].name = u"X";
    const VariableTable table(variables);
    EXPECT_EQ(table.Find(u"X"), std::optional<std::size_t>(0));
    EXPECT_EQ(table.Find(u"x"), std::nullopt);
}

}  // namespace

}  // namespace zr::test
