// The bytes of both forms, there and back.
#include "dde/ValueEncoding.h"

#include "siblings/tools/ZRLocaleInformation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace zr::dde {
namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

Bytes Table(double number)
{
    const auto bytes = EncodeXlTable(number);
    return {bytes.begin(), bytes.end()};
}

TEST(ValueEncodingTest, TheTableFormIsATableOfOneNumber)
{
    EXPECT_EQ(Table(12.5), (Bytes{0x10, 0x00, 0x04, 0x00, 0x01, 0x00, 0x01, 0x00, 0x01, 0x00,
                                  0x08, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x29, 0x40}));
    EXPECT_EQ(Table(-0.1), (Bytes{0x10, 0x00, 0x04, 0x00, 0x01, 0x00, 0x01, 0x00, 0x01, 0x00,
                                  0x08, 0x00, 0x9A, 0x99, 0x99, 0x99, 0x99, 0x99, 0xB9, 0xBF}));
}

TEST(ValueEncodingTest, NaNAndInfinityTravelUnchangedInTheTableForm)
{
    const Bytes infinite = Table(kInfinity);
    EXPECT_EQ(Bytes(infinite.begin() + 12, infinite.end()), (Bytes{0, 0, 0, 0, 0, 0, 0xF0, 0x7F}));
    EXPECT_EQ(DecodeXlTable(EncodeXlTable(-kInfinity)), -kInfinity);
    EXPECT_TRUE(std::isnan(DecodeXlTable(EncodeXlTable(kNaN)).value()));
}

TEST(ValueEncodingTest, TheTextFormHasAsManyBytesAsTheTextHasCharacters)
{
    // "12.5" with its line end: 6 characters, so the first 6 of 12 bytes.
    EXPECT_EQ(EncodeText(12.5, 0, false), (Bytes{0x31, 0x00, 0x32, 0x00, 0x2E, 0x00}));
    // An odd number of characters ends within one.
    EXPECT_EQ(EncodeText(7.0, 0, false), (Bytes{0x37, 0x00, 0x0D}));
    EXPECT_EQ(EncodeText(-40.0, 0, false), (Bytes{0x2D, 0x00, 0x34, 0x00, 0x30}));
}

TEST(ValueEncodingTest, PlainTextHasSixSignificantDigitsWhateverTheDecimals)
{
    struct Row {
        double number;
        const char16_t* text;
    };
    for (const Row& row : {Row{230.123456, u"230.123\r\n"}, Row{0.0, u"0\r\n"}, Row{-0.0, u"-0\r\n"},
                           Row{100000.0, u"100000\r\n"}, Row{1000000.0, u"1e+06\r\n"},
                           Row{1234567.0, u"1.23457e+06\r\n"}, Row{0.0001, u"0.0001\r\n"}, Row{0.00001, u"1e-05\r\n"},
                           Row{kInfinity, u"inf\r\n"}, Row{-kInfinity, u"-inf\r\n"}, Row{kNaN, u"nan\r\n"}}) {
        EXPECT_EQ(NumberText(row.number, 2, false), ZRBasicString(row.text)) << row.number;
        EXPECT_EQ(NumberText(row.number, 9, false), ZRBasicString(row.text)) << row.number;
    }
}

TEST(ValueEncodingTest, LocalTextHasTheDecimalsOfTheVariable)
{
    EXPECT_EQ(NumberText(5.0, 0, true), ZRBasicString(u"5\r\n"));
    EXPECT_EQ(NumberText(5.25, 0, true).Length(), 3u);
    EXPECT_EQ(NumberText(5.25, 4, true).Length(), 8u);  // the decimal mark is the user's
    EXPECT_EQ(EncodeText(5.25, 4, true).size(), 8u);
}

TEST(ValueEncodingTest, LocalTextIsTheSystemsWhateverTheLanguageOfTheWindows)
{
    const ZRBasicString before = NumberText(1234.5, 1, true);
    for (const char* language : {"en", "de", "es"}) {
        ASSERT_TRUE(SetLocaleInformation(language));
        EXPECT_EQ(NumberText(1234.5, 1, true), before) << language;
    }
    SetLocaleInformation("");
}

TEST(ValueEncodingTest, DecodingATableRefusesWhatIsNone)
{
    const Bytes good = Table(12.5);
    EXPECT_EQ(DecodeXlTable(good), 12.5);
    for (std::size_t length = 0; length < good.size(); ++length) {
        EXPECT_FALSE(DecodeXlTable(std::span(good).first(length))) << length;
    }
    for (const std::size_t offset : {0u, 1u, 2u, 4u, 6u, 8u, 10u}) {
        Bytes broken = good;
        broken[offset] = 0;
        broken[offset + 1] = 0;
        EXPECT_FALSE(DecodeXlTable(broken)) << offset;
    }
}

TEST(ValueEncodingTest, DecodingTellsHowMuchOfTheTextIsThere)
{
    const DecodedText cut = DecodeText(EncodeText(12.5, 0, false));
    EXPECT_EQ(cut.text, u"12.");
    EXPECT_EQ(cut.characters, 4u);
    EXPECT_FALSE(cut.IsComplete());
    const DecodedText odd = DecodeText(EncodeText(-40.0, 0, false));
    EXPECT_EQ(odd.text, u"-4");
    EXPECT_EQ(odd.characters, 3u);
    for (const double shortNumber : {7.0, 42.0, -1.0}) {
        const DecodedText whole = DecodeText(EncodeText(shortNumber, 0, false));
        EXPECT_TRUE(whole.IsComplete()) << shortNumber;
        EXPECT_EQ(whole.text + u"\r\n", NumberText(shortNumber, 0, false).Text());
    }
}

TEST(ValueEncodingTest, DecodingTakesTextOfEightBitsAsItIs)
{
    const Bytes bytes = {'2', '3', '0', '.', '1', '\r', '\n', 0};
    const DecodedText decoded = DecodeText(bytes);
    EXPECT_EQ(decoded.text, u"230.1");
    EXPECT_TRUE(decoded.IsComplete());
    EXPECT_EQ(DecodeText(Bytes{}).text, u"");
    EXPECT_EQ(DecodeText(Bytes{'5'}).text, u"5");
    EXPECT_EQ(DecodeText(Bytes{0, 0}).text, u"");
}

}  // namespace
}  // namespace zr::dde
