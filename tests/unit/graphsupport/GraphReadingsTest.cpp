#include "siblings/graphsupport/GraphReadings.h"

#include "unit/graphsupport/GraphFixture.h"

namespace zr::graph {
namespace {

class GraphReadingsTest : public GraphFixture {
protected:
    [[nodiscard]] std::string Value(double minute, std::size_t curve = 0)
    {
        return Utf16ToUtf8(model.ReadingsAt(At(minute)).at(curve).value);
    }
    static std::int64_t At(double minute)
    {
        return kBegin + static_cast<std::int64_t>(minute * static_cast<double>(kMinuteLong));
    }
};

TEST_F(GraphReadingsTest, ValuesAreThoseOfTheNearestSample)
{
    Record(kVoltage, {2300, 2310, 2320});
    Show({Curve(kVoltage)});
    EXPECT_EQ(Value(1.0), "231.0 V");
    EXPECT_EQ(Value(1.4), "231.0 V");
    EXPECT_EQ(Value(1.6), "232.0 V");
}

TEST_F(GraphReadingsTest, AGapHasNoValue)
{
    Record(kVoltage, {2300, 2310, 2320, kNothing, kNothing, kNothing, kNothing, kNothing, 2330, 2331});
    Record(kCurrent, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
    Show({Curve(kVoltage), Curve(kCurrent)});
    EXPECT_EQ(Value(5.0), "-");
    EXPECT_EQ(Value(5.0, 1), "6.0 A");
    EXPECT_EQ(Value(700.0), "-");
}

TEST_F(GraphReadingsTest, AStateHoldsUntilTheNext)
{
    Record(kState, {0, 1, 0});
    Show({Curve(kState)});
    EXPECT_EQ(Value(1.9), "1.0");
}

TEST_F(GraphReadingsTest, AColumnOfSeveralSamplesHasItsRange)
{
    ShowVoltage();
    SetSize(200, 200);
    const CurveReading reading = model.ReadingsAt(kBegin).at(0);
    EXPECT_EQ(Utf16ToUtf8(reading.range).substr(0, 7), "230.0 V");
    EXPECT_NE(Utf16ToUtf8(reading.range).find("\u2026"), std::string::npos);
    // Zoomed in there is one in a column at most.
    model.ZoomTo({kBegin, kBegin + 20 * kMinuteLong});
    EXPECT_TRUE(model.ReadingsAt(kBegin).at(0).range.IsEmpty());
}

TEST_F(GraphReadingsTest, BetweenTheMarkersThereAreFigures)
{
    Record(kVoltage, {2300, 2310, 2380, 2340, 2320});
    Show({Curve(kVoltage)});
    EXPECT_TRUE(model.MarkerReadings().empty());
    EXPECT_TRUE(model.MarkerSpan().IsEmpty());
    model.SetMarker(0, At(4));
    EXPECT_TRUE(model.MarkerReadings().empty());
    model.SetMarker(1, At(1));
    const MarkerReading reading = model.MarkerReadings().at(0);
    EXPECT_EQ(Utf16ToUtf8(reading.title), "Voltage");
    EXPECT_EQ(Utf16ToUtf8(reading.atFirst), "231.0 V");
    EXPECT_EQ(Utf16ToUtf8(reading.atSecond), "232.0 V");
    EXPECT_EQ(Utf16ToUtf8(reading.difference), "1.0 V");
    EXPECT_EQ(Utf16ToUtf8(reading.minimum), "231.0 V");
    EXPECT_EQ(Utf16ToUtf8(reading.mean), "234.3 V");
    EXPECT_EQ(Utf16ToUtf8(reading.maximum), "238.0 V");
    EXPECT_TRUE(reading.sum.IsEmpty());
    EXPECT_EQ(Utf16ToUtf8(model.MarkerSpan()), "00:03:00");
}

TEST_F(GraphReadingsTest, BarsHaveASum)
{
    std::vector<double> counts;
    for (int i = 0; i <= 60; ++i) {
        counts.push_back(100000.0 + i * 100.0);
    }
    Record(kEnergy, counts);
    Show({Curve(kEnergy)}, 300);
    model.SetMarker(0, At(10));
    model.SetMarker(1, At(30));
    // Four periods of five minutes of 0.5 kWh each.
    EXPECT_EQ(Utf16ToUtf8(model.MarkerReadings().at(0).sum), "2.0 kWh");
}

TEST_F(GraphReadingsTest, TheMeanOfPowerFactorsIsTakenAlongTheirScale)
{
    Record(kFactor, {0.9, -0.9, 0.9, -0.5});
    Show({Curve(kFactor)});
    model.SetMarker(0, At(0));
    model.SetMarker(1, At(4));
    const MarkerReading reading = model.MarkerReadings().at(0);
    EXPECT_EQ(Utf16ToUtf8(reading.minimum), "0.9 PF");
    // 0.9, 1.1, 0.9 and 1.5 on the folded scale: 1.1, which is -0.9.
    EXPECT_EQ(Utf16ToUtf8(reading.mean), "-0.9 PF");
    EXPECT_EQ(Utf16ToUtf8(reading.maximum), "-0.5 PF");
}

TEST_F(GraphReadingsTest, MarkersInAGapHaveNoFigures)
{
    Record(kVoltage, {2300, 2310});
    Show({Curve(kVoltage)});
    model.SetMarker(0, At(300));
    model.SetMarker(1, At(400));
    const MarkerReading reading = model.MarkerReadings().at(0);
    for (const ZRBasicString* text : {&reading.atFirst, &reading.atSecond, &reading.difference, &reading.minimum,
                                      &reading.mean, &reading.maximum}) {
        EXPECT_EQ(Utf16ToUtf8(*text), "-");
    }
}

TEST_F(GraphReadingsTest, WithoutDataNothingIsRead)
{
    ShowVoltage();
    model.SetMarker(0, At(10));
    model.SetMarker(1, At(20));
    model.Update(std::vector{Curve(kVoltage)}, kFrom, kTo, info, nullptr);
    EXPECT_EQ(Value(10.0), "-");
    EXPECT_EQ(Utf16ToUtf8(model.MarkerReadings().at(0).mean), "-");
}

}  // namespace
}  // namespace zr::graph
