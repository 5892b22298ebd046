#include "logger/WidestText.h"

#include <gtest/gtest.h>

namespace zr::logger {
namespace {

// Counts how often it is asked. A digit is ten wide, anything else three.
class TestMeasure final : public PrintMeasure {
public:
    PrintExtent Extent(std::u16string_view text) override
    {
        ++calls;
        int width = 0;
        for (std::size_t i = 0; i < text.size(); ++i) {
            width += IsDigit(text[i]) ? (text[i] == u'1' ? widthOfOne : 10) : 3;
            if (i > 0 && text[i - 1] == u'7' && text[i] == kerned) {
                width -= 1;
            }
        }
        return {width, 20};
    }

    static bool IsDigit(wchar character) { return character >= u'0' && character <= u'9'; }

    int calls = 0;
    int widthOfOne = 10;
    wchar kerned = 0;  // is drawn closer to a 7
};

int WidestOf(TestMeasure& measure, const std::vector<const wchar*>& texts)
{
    DigitWidths digits(measure);
    WidestText widest(digits);
    for (const wchar* text : texts) {
        widest.Add(text);
    }
    return widest.Width();
}

TEST(WidestTextTest, IsTheWidestOfAll)
{
    TestMeasure measure;
    EXPECT_EQ(WidestOf(measure, {u"1.5", u"-12.25", u"9.75"}), 3 + 20 + 3 + 20);
    EXPECT_EQ(WidestOf(measure, {}), 0);
    EXPECT_EQ(WidestOf(measure, {u""}), 0);
}

TEST(WidestTextTest, IsNeverNarrowerThanWhatItBeganWith)
{
    TestMeasure measure;
    DigitWidths digits(measure);
    WidestText widest(digits, 500);
    widest.Add(u"123");
    EXPECT_EQ(widest.Width(), 500);
}

TEST(WidestTextTest, TextsOfOneShapeAreMeasuredOnce)
{
    TestMeasure measure;
    DigitWidths digits(measure);
    WidestText widest(digits);
    widest.Add(u"0.00");
    const int calls = measure.calls;
    for (wchar digit = u'0'; digit <= u'9'; ++digit) {
        widest.Add(std::u16string{digit, u'.', digit, u'5'});
    }
    EXPECT_EQ(measure.calls, calls);
    widest.Add(u"10.00");
    EXPECT_EQ(measure.calls, calls + 1);
    EXPECT_EQ(widest.Width(), 43);
}

TEST(WidestTextTest, DigitsOfDifferentWidthsAreMeasuredEachTime)
{
    TestMeasure measure;
    measure.widthOfOne = 4;
    EXPECT_EQ(WidestOf(measure, {u"11", u"12", u"22", u"21"}), 20);
    EXPECT_EQ(WidestOf(measure, {u"11.1"}), 15);
}

TEST(WidestTextTest, DigitsThatMoveTogetherAreMeasuredEachTime)
{
    TestMeasure measure;
    measure.kerned = u'7';
    EXPECT_EQ(WidestOf(measure, {u"77", u"78"}), 20);
}

TEST(WidestTextTest, DigitsThatMoveTowardsASeparatorAreMeasuredEachTime)
{
    TestMeasure measure;
    measure.kerned = u'.';
    EXPECT_EQ(WidestOf(measure, {u"7.0", u"8.0"}), 23);
    EXPECT_EQ(WidestOf(measure, {u"7,0", u"8,0"}), 23);
}

TEST(WidestTextTest, ManyShapesAreAllTakenIn)
{
    TestMeasure measure;
    DigitWidths digits(measure);
    WidestText widest(digits);
    std::u16string text;
    for (int length = 0; length < 300; ++length) {
        text += u'x';
        widest.Add(text);
    }
    EXPECT_EQ(widest.Width(), 900);
}

}  // namespace
}  // namespace zr::logger
