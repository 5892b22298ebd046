#include "controls/MeasuredText.h"

#include "BarFixture.h"

namespace zr::controls {
namespace {

class MeasuredTextTest : public ::testing::Test {
protected:
    Size Measure(const ZRBasicString& text)
    {
        return texts.Measure(MeasuredTexts::Present, measure, FontRole::Value, text);
    }
    ZRBasicString Fit(const ZRBasicString& text, int room)
    {
        return texts.Fit(MeasuredTexts::Label, measure, FontRole::Value, text, room, size);
    }

    MeasuredTexts texts;
    BarMeasure measure;
    Size size;
};

TEST_F(MeasuredTextTest, MeasuresATextOnceWhileItStays)
{
    EXPECT_EQ(Measure(u"230.1"), (Size{30, 10}));
    EXPECT_EQ(Measure(u"230.1"), (Size{30, 10}));
    EXPECT_EQ(measure.count, 1);
    EXPECT_EQ(Measure(u"230"), (Size{18, 10}));
    EXPECT_EQ(measure.count, 2);
}

TEST_F(MeasuredTextTest, MeasuresAgainWhenAllIsForgotten)
{
    Measure(u"230.1");
    texts.Forget();
    Measure(u"230.1");
    EXPECT_EQ(measure.count, 2);
}

TEST_F(MeasuredTextTest, KeepsATextThatFits)
{
    EXPECT_EQ(Fit(u"Volts", 30), u"Volts");
    EXPECT_EQ(size, (Size{30, 10}));
}

TEST_F(MeasuredTextTest, ShortensATextToItsRoom)
{
    EXPECT_EQ(Fit(u"Voltage", 41), u"Volta\u2026");
    EXPECT_EQ(size, (Size{36, 10}));
    EXPECT_EQ(Fit(u"Voltage", 12), u"V\u2026");
    EXPECT_EQ(Fit(u"Voltage", 6), u"\u2026");
    EXPECT_EQ(Fit(u"Voltage", 5), u"");
    EXPECT_EQ(size.cx, 0);
    EXPECT_EQ(Fit(u"Voltage", -5), u"");
}

TEST_F(MeasuredTextTest, KeepsAShortenedTextWhileTextAndRoomStay)
{
    Fit(u"Voltage", 41);
    const int count = measure.count;
    EXPECT_EQ(Fit(u"Voltage", 41), u"Volta\u2026");
    EXPECT_EQ(measure.count, count);
    EXPECT_EQ(Fit(u"Voltages", 41), u"Volta\u2026");
    EXPECT_GT(measure.count, count);
}

TEST_F(MeasuredTextTest, CutsNoPairOfUnitsInTwo)
{
    EXPECT_EQ(Fit(u"A\U0001F50CBCDE", 18), u"A\u2026");
    EXPECT_EQ(Fit(u"A\U0001F50CBCDE", 24), u"A\U0001F50C\u2026");
}

}  // namespace
}  // namespace zr::controls
