#include "siblings/graphsupport/GraphCurves.h"

#include "unit/graphsupport/GraphFixture.h"

namespace zr::graph {
namespace {

class GraphCurvesTest : public GraphFixture {
protected:
    [[nodiscard]] GraphCurves Make(const std::vector<CurveInfo>& given, bool hasPeriod = false) const
    {
        return MakeGraphCurves(given, info, hasPeriod);
    }
    [[nodiscard]] std::string Text(int index, double value) const
    {
        return Utf16ToUtf8(ValueText(Make({Curve(index)}).curves[0], value));
    }
};

TEST_F(GraphCurvesTest, KnowsUnitTitleAndFactorOfItsVariable)
{
    const GraphCurve curve = Make({Curve(kEnergy)}).curves.at(0);
    EXPECT_EQ(Utf16ToUtf8(curve.title), "Energy");
    EXPECT_EQ(Utf16ToUtf8(curve.unit), "kWh");
    EXPECT_EQ(curve.column.column, kEnergy);
    EXPECT_DOUBLE_EQ(curve.column.factor, 0.001);
    EXPECT_EQ(curve.decimals, 1);
    EXPECT_DOUBLE_EQ(Make({Curve(kVoltage)}).curves[0].column.factor, 0.1);
}

TEST_F(GraphCurvesTest, CountersAreBarsAtAPeriodAndReadingsAsRecorded)
{
    EXPECT_EQ(Make({Curve(kEnergy)}, true).curves[0].column.shape, CurveShape::Bars);
    EXPECT_EQ(Make({Curve(kEnergy)}, false).curves[0].column.shape, CurveShape::Line);
}

TEST_F(GraphCurvesTest, StatesAreStepsAndOthersLines)
{
    EXPECT_EQ(Make({Curve(kState)}).curves[0].column.shape, CurveShape::Steps);
    EXPECT_EQ(Make({Curve(kVoltage)}, true).curves[0].column.shape, CurveShape::Line);
}

TEST_F(GraphCurvesTest, AnIndexOutOfTheListIsLeftOut)
{
    const GraphCurves curves = Make({Curve(-1), Curve(kVoltage), Curve(kVariables), Curve(1000000)});
    ASSERT_EQ(curves.curves.size(), 1u);
    EXPECT_EQ(curves.curves[0].column.column, kVoltage);
}

TEST_F(GraphCurvesTest, AVariableThatNobodyKnowsHasItsNameAndItsStoredValues)
{
    const GraphCurve curve = Make({Curve(kForeign)}).curves.at(0);
    EXPECT_EQ(Utf16ToUtf8(curve.title), "X.Y");
    EXPECT_TRUE(curve.unit.IsEmpty());
    EXPECT_DOUBLE_EQ(curve.column.factor, 1.0);
    EXPECT_EQ(curve.column.shape, CurveShape::Line);
}

TEST_F(GraphCurvesTest, TitlesNameTheDeviceWhereThereAreSeveral)
{
    EXPECT_EQ(Utf16ToUtf8(Make({Curve(kVoltage), Curve(kCurrent)}).curves[0].title), "Voltage");
    EXPECT_EQ(Utf16ToUtf8(Make({Curve(kVoltage), Curve(kForeign)}).curves[0].title), "M Voltage");
}

TEST_F(GraphCurvesTest, NeighboursOfOneZoneAndUnitAreARun)
{
    const GraphCurves curves =
        Make({Curve(kVoltage), Curve(kVoltage), Curve(kCurrent), Curve(kVoltage, 1), Curve(kVoltage)});
    ASSERT_EQ(curves.runs.size(), 4u);
    EXPECT_EQ(curves.runs[0].curves, 2);
    EXPECT_EQ(curves.runs[1].firstCurve, 2);
    EXPECT_EQ(curves.runs[2].zone, 1);
    EXPECT_EQ(curves.runs[3].zone, 0);
    EXPECT_EQ(curves.curves[4].run, 3);
    EXPECT_EQ(Utf16ToUtf8(curves.runs[1].unit), "A");
}

TEST_F(GraphCurvesTest, CurvesOfOneUnitInDifferentSizesAreDifferentRuns)
{
    test::LiveDevice other(u"N", {Described(u"U", u"Voltage", 1, 0, 3, VariableClass::Instantaneous)});
    info.Unlock();
    info.AddVariable(u"N.U");
    info.Lock();
    const GraphCurves curves = Make({Curve(kVoltage), Curve(kVariables)});
    ASSERT_EQ(curves.runs.size(), 2u);
    EXPECT_EQ(Utf16ToUtf8(curves.runs[0].unit), "V");
    EXPECT_EQ(Utf16ToUtf8(curves.runs[1].unit), "kV");
}

TEST_F(GraphCurvesTest, ZonesAreNumberedWithoutGaps)
{
    const GraphCurves curves = Make({Curve(kVoltage, 2), Curve(kCurrent, 5), Curve(kState, 99), Curve(kEnergy, -3)});
    EXPECT_EQ(curves.zones, 3);
    EXPECT_EQ(curves.curves[0].zone, 1);
    EXPECT_EQ(curves.curves[1].zone, 2);
    EXPECT_EQ(curves.curves[2].zone, 2);
    EXPECT_EQ(curves.curves[3].zone, 0);
    EXPECT_EQ(Make({}).zones, 0);
}

TEST_F(GraphCurvesTest, ARunHasTheFirstLimitsOfItsCurves)
{
    CurveInfo first = Curve(kVoltage);
    CurveInfo second = Curve(kVoltage);
    second.minimum = 200.0;
    second.maximum = 260.0;
    first.maximum = 250.0;
    const CurveRun run = Make({first, second}).runs.at(0);
    EXPECT_DOUBLE_EQ(run.minimum, 200.0);
    EXPECT_DOUBLE_EQ(run.maximum, 250.0);
    EXPECT_DOUBLE_EQ(Make({Curve(kVoltage)}).runs[0].minimum, kNoLimit);
    first.minimum = kNothing;
    EXPECT_DOUBLE_EQ(Make({first, second}).runs[0].minimum, 200.0) << "what is no number is no limit";
}

TEST_F(GraphCurvesTest, ValuesHaveTheirDecimalsAndUnit)
{
    EXPECT_EQ(Text(kVoltage, 231.44), "231.4 V");
    EXPECT_EQ(Text(kForeign, 3.0), "3");
    SetLocaleInformation("de");
    EXPECT_EQ(Text(kVoltage, 1231.44), "1.231,4 V");
}

TEST_F(GraphCurvesTest, PowerFactorsAreWrittenUnfolded)
{
    EXPECT_EQ(Text(kFactor, 0.8), "0.8 PF");
    EXPECT_EQ(Text(kFactor, 1.2), "-0.8 PF");
    EXPECT_EQ(Text(kFactor, 1.0), "1.0 PF");
}

TEST_F(GraphCurvesTest, APowerFactorNearMinusOneReadsOne)
{
    EXPECT_EQ(Text(kFactor, 1.004), "1.0 PF");
    EXPECT_EQ(Text(kFactor, 1.006), "-1.0 PF");
}

TEST_F(GraphCurvesTest, HugeValuesHaveAnExponent)
{
    EXPECT_EQ(Text(kVoltage, 1e300), "1.0000E+300 V");
    EXPECT_EQ(Text(kVoltage, -1.5e20), "-1.5000E+20 V");
}

}  // namespace
}  // namespace zr::graph
