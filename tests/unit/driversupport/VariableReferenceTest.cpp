#include "siblings/driversupport/VariableReference.h"

#include "TestDevice.h"

#include <gtest/gtest.h>

namespace zr::test {

namespace {

struct Parts {
    ZRBasicString filter;
    ZRBasicString hour;
    ZRBasicString driver;
    ZRBasicString variable;
    bool operator==(const Parts&) const = default;
};

Parts Split(const char16_t* text)
{
    Parts parts;
    SplitFilterDriverVariable(text, parts.filter, parts.hour, parts.driver, parts.variable);
    return parts;
}

TEST(VariableReferenceTest, SplitsEveryForm)
{
    EXPECT_EQ(Split(u"F.MVDF@A#D.V"), (Parts{u"F.MVDF", u"A", u"D", u"V"}));
    EXPECT_EQ(Split(u"D.V"), (Parts{u"", u"", u"D", u"V"}));
    EXPECT_EQ(Split(u"F.MVDF#D"), (Parts{u"F.MVDF", u"", u"", u"D"}));
    EXPECT_EQ(Split(u"D"), (Parts{u"", u"", u"", u"D"}));
    EXPECT_EQ(Split(u""), (Parts{u"", u"", u"", u""}));
}

TEST(VariableReferenceTest, TheDriverIsThatOfTheWholeReference)
{
    EXPECT_EQ(DriverOf(u"F.MVDF@A#D.V"), u"D");
    EXPECT_EQ(DriverOf(u"D.V"), u"D");
    EXPECT_EQ(DriverOf(u"F.MVDF#D"), u"");
    EXPECT_EQ(DriverOf(u"D"), u"");
}

TEST(VariableReferenceTest, APlainReferenceHasNoFilterAndNoDiscriminator)
{
    const Parts parts = Split(u"DEV.VAR");
    EXPECT_TRUE(parts.filter.IsEmpty());
    EXPECT_TRUE(parts.hour.IsEmpty());
}

TEST(VariableReferenceTest, SplitsAPlainReferenceAtItsFirstPoint)
{
    ZRBasicString driver;
    ZRBasicString variable;
    SplitDriverVariable(u"D.V.W", driver, variable);
    EXPECT_EQ(driver, u"D");
    EXPECT_EQ(variable, u"V.W");
    SplitDriverVariable(u"V", driver, variable);
    EXPECT_EQ(driver, u"");
    EXPECT_EQ(variable, u"V");
}

TEST(VariableReferenceTest, TheOutputsMayBeTheInput)
{
    ZRBasicString text = u"F.MVDF@A#D.V";
    ZRBasicString filter;
    ZRBasicString hour;
    ZRBasicString driver;
    SplitFilterDriverVariable(text, filter, hour, driver, text);
    EXPECT_EQ(text, u"V");
    JoinFilterDriverVariable(filter, hour, driver, text, text);
    EXPECT_EQ(text, u"F.MVDF@A#D.V");
}

TEST(VariableReferenceTest, JoinIsTheInverseOfSplit)
{
    for (const char16_t* text : {u"F.MVDF@A#D.V", u"D.V", u"F.MVDF#D", u"D", u"", u"F.MVDF#D.V"}) {
        const Parts parts = Split(text);
        ZRBasicString out;
        JoinFilterDriverVariable(parts.filter, parts.hour, parts.driver, parts.variable, out);
        EXPECT_EQ(out, text);
    }
}

class Described final : public ZRDeviceDriver {
public:
    Described()
    {
        VariableDescription variable;
        variable.name = u"E";
        variable.description = u"Active energy";
        variable.splittable = true;
        SetVariables(std::make_shared<VariableTable>(std::vector{variable}));
        SetName(u"METER");
    }
};

TEST(VariableReferenceTest, TitlesNameTheDeviceOnlyAmongSeveral)
{
    const Described meter;
    ZRDriverVariable variable;
    ZRBasicString out;
    variable.Setup(u"METER.E");
    EXPECT_EQ(GetTitleVariable(variable, out, 5), u"Active energy");
    EXPECT_EQ(GetTitleVariable(variable, out, 7), u"METER Active energy");
    EXPECT_EQ(&GetTitleVariable(variable, out, 7), &out);
    EXPECT_FALSE(variable.IsLocked());
    variable.Setup(u"T.MVDF@Peak#METER.E");
    EXPECT_EQ(GetTitleVariable(variable, out, 5), u"Active energy (Peak)");
    EXPECT_EQ(GetTitleVariable(variable, out, 7), u"METER Active energy (Peak)");
}

TEST(VariableReferenceTest, TheTitleOfAMissingVariableIsItsName)
{
    ZRDriverVariable variable;
    ZRBasicString out;
    variable.Setup(u"NOBODY.E");
    EXPECT_EQ(GetTitleVariable(variable, out, 5), u"NOBODY.E");
}

}  // namespace

}  // namespace zr::test
