#include "siblings/tools/Numbers.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace {

using Locale = ZRLocaleInformation<ZRBasicString>;

Locale Record(const wchar* decimalMark, const wchar* groupMark, std::array<std::uint8_t, 4> groups = {3, 0, 0, 0})
{
    Locale locale;
    locale.decimalSeparator = decimalMark;
    locale.thousandsSeparator = groupMark;
    locale.digitGroups = groups;
    return locale;
}

const Locale& Plain()
{
    static const Locale locale = Record(u".", u"", {});
    return locale;
}

const Locale& German()
{
    static const Locale locale = Record(u",", u".");
    return locale;
}

const Locale& French()
{
    static const Locale locale = Record(u",", u"\u202F");
    return locale;
}

const Locale& Indian()
{
    static const Locale locale = Record(u".", u",", {3, 2, 0, 0});
    return locale;
}

ZRBasicString Format(double value, int decimals, const Locale& locale = Plain())
{
    ZRBasicString text = u"old";
    const int length = FormatNumber(text, value, decimals, locale);
    EXPECT_EQ(length, static_cast<int>(text.Length()));
    return text;
}

ZRBasicString Unformat(const wchar* text, const Locale& locale)
{
    ZRBasicString out = u"old";
    return UnformatNumber(out, text, locale);
}

TEST(FormatNumber, WritesTheDecimalsAskedFor)
{
    EXPECT_EQ(Format(12.5, 0), u"12");
    EXPECT_EQ(Format(12.5, 1), u"12.5");
    EXPECT_EQ(Format(12.5, 3), u"12.500");
    EXPECT_EQ(Format(-0.25, 2), u"-0.25");
    EXPECT_EQ(Format(0.0, 2), u"0.00");
}

TEST(FormatNumber, HoldsTheDecimalsToItsLimits)
{
    EXPECT_EQ(Format(1.5, -3), u"2");
    EXPECT_EQ(Format(0.5, 1000000).Length(), 2u + kMaxDecimals);
}

TEST(FormatNumber, RoundsTiesToTheEvenDigit)
{
    EXPECT_EQ(Format(0.5, 0), u"0");
    EXPECT_EQ(Format(1.5, 0), u"2");
    EXPECT_EQ(Format(2.5, 0), u"2");
    EXPECT_EQ(Format(0.125, 2), u"0.12");
    EXPECT_EQ(Format(0.375, 2), u"0.38");
    EXPECT_EQ(Format(1.005, 2), u"1.00");  // the double lies below 1.005
    EXPECT_EQ(Format(9.996, 2), u"10.00");
}

TEST(FormatNumber, WritesNoSignBeforeZero)
{
    EXPECT_EQ(Format(-0.0, 1), u"0.0");
    EXPECT_EQ(Format(-0.04, 1), u"0.0");
    EXPECT_EQ(Format(-0.06, 1), u"-0.1");
    EXPECT_EQ(Format(-0.4, 0), u"0");
}

TEST(FormatNumber, WritesWhatIsNoNumberInWords)
{
    EXPECT_EQ(Format(std::numeric_limits<double>::quiet_NaN(), 2, German()), u"NaN");
    EXPECT_EQ(Format(-std::numeric_limits<double>::quiet_NaN(), 2), u"NaN");
    EXPECT_EQ(Format(std::numeric_limits<double>::infinity(), 2), u"Inf");
    EXPECT_EQ(Format(-std::numeric_limits<double>::infinity(), 2, German()), u"-Inf");
}

TEST(FormatNumber, WritesTheLargestNumbersInFull)
{
    const ZRBasicString text = Format(1e308, 20);
    EXPECT_EQ(text.Length(), 309u + 1u + 20u);
    EXPECT_TRUE(text.Text().starts_with(u"1000000000000000"));
    const ZRBasicString grouped = Format(-std::numeric_limits<double>::max(), kMaxDecimals, German());
    EXPECT_EQ(grouped.Length(), 1u + 309u + 102u + 1u + kMaxDecimals);
    EXPECT_EQ(Format(std::numeric_limits<double>::denorm_min(), 3), u"0.000");
}

TEST(FormatNumber, GroupsTheDigitsBeforeTheDecimalMark)
{
    EXPECT_EQ(Format(999.0, 1, German()), u"999,0");
    EXPECT_EQ(Format(1000.0, 0, German()), u"1.000");
    EXPECT_EQ(Format(-123456.789, 3, German()), u"-123.456,789");
    EXPECT_EQ(Format(1234567.0, 4, German()), u"1.234.567,0000");
    EXPECT_EQ(Format(1234567.5, 1, French()), u"1\u202F234\u202F567,5");
    EXPECT_EQ(Format(999.96, 1, German()), u"1.000,0");
}

TEST(FormatNumber, RepeatsTheLastGroupSize)
{
    EXPECT_EQ(Format(123456789.0, 0, Indian()), u"12,34,56,789");
}

TEST(FormatNumber, WritesNoGroupsWithoutMarkOrSize)
{
    EXPECT_EQ(Format(1234567.0, 0, Record(u".", u"")), u"1234567");
    EXPECT_EQ(Format(1234567.0, 0, Record(u".", u",", {})), u"1234567");
}

TEST(FormatNumber, WritesAPointAndNoGroupsWhenItIsNotForTheUser)
{
    ZRBasicString text;
    EXPECT_EQ(FormatNumber(text, -1234567.891, 2, false), 11);
    EXPECT_EQ(text, u"-1234567.89");
}

TEST(FormatNumber, TakesTheUsersRecordWhenItIsForTheUser)
{
    ZRBasicString text;
    FormatNumber(text, -1234567.891, 2, true);
    EXPECT_EQ(text, Format(-1234567.891, 2, localeInformationWide));
}

TEST(UnformatNumber, TakesTheUsersMarksAway)
{
    EXPECT_EQ(Unformat(u"-1.234.567,5", German()), u"-1234567.5");
    EXPECT_EQ(Unformat(u" 12,5\t", German()), u"12.5");
    EXPECT_EQ(Unformat(u"12.5", Plain()), u"12.5");
    EXPECT_EQ(Unformat(u"", German()), u"");
}

TEST(UnformatNumber, TakesEveryBlankForAGroupMarkThatIsABlank)
{
    for (const wchar* text : {u"1 234,5", u"1\u00A0234,5", u"1\u202F234,5"}) {
        EXPECT_EQ(Unformat(text, French()), u"1234.5");
    }
}

TEST(UnformatNumber, MayWriteOverItsArgument)
{
    ZRBasicString text = u"1.234,5";
    EXPECT_EQ(&UnformatNumber(text, text, German()), &text);
    EXPECT_EQ(text, u"1234.5");
}

TEST(UnformatNumber, UndoesFormatNumber)
{
    for (const Locale* locale : {&Plain(), &German(), &French(), &Indian()}) {
        for (const double value : {0.0, -0.5, 1234.125, -98765432.0625, 1e15}) {
            const ZRBasicString text = Format(value, 6, *locale);
            EXPECT_TRUE(IsValidNumber(text, 6, *locale));
            ZRBasicString plain;
            EXPECT_EQ(TextToDouble(UnformatNumber(plain, text, *locale)), value);
        }
    }
}

TEST(IsValidNumber, AcceptsNumbersWithSoManyDecimalsOrFewer)
{
    for (const wchar* text : {u"0", u"-1", u"+1", u"12.5", u"12.50", u".5", u"5.", u" 7 ", u"007"}) {
        EXPECT_TRUE(IsValidNumber(text, 2, Plain())) << ZRBasicString(text).Length();
    }
    EXPECT_FALSE(IsValidNumber(u"12.505", 2, Plain()));
    EXPECT_FALSE(IsValidNumber(u"12.5", 0, Plain()));
    EXPECT_TRUE(IsValidNumber(u"12.", 0, Plain()));
    EXPECT_FALSE(IsValidNumber(u"12.5", -1, Plain()));
}

TEST(IsValidNumber, RefusesWhatIsNoNumber)
{
    for (const wchar* text : {u"", u" ", u"-", u".", u"-.", u"--1", u"1-", u"1e5", u"0x10", u"abc", u"1a", u"1.2.3",
                              u"1,5", u"1 2", u"NaN", u"Inf", u"\u0661"}) {
        EXPECT_FALSE(IsValidNumber(text, 5, Plain())) << ZRBasicString(text).Length();
    }
    EXPECT_FALSE(IsValidNumber(ZRBasicString(u"1\0"
                                             u"2",
                                             3),
                               5, Plain()));
}

TEST(IsValidNumber, WantsGroupMarksAtAllTheirPlacesOrNone)
{
    for (const wchar* text : {u"1.234", u"12.345.678,5", u"12345678,5", u"-1.234"}) {
        EXPECT_TRUE(IsValidNumber(text, 2, German()));
    }
    for (const wchar* text :
         {u"12.5", u"1.2345", u"1234.567", u"1.234567", u".123", u"1..234", u"1.234.", u"1,234.5"}) {
        EXPECT_FALSE(IsValidNumber(text, 2, German()));
    }
    EXPECT_TRUE(IsValidNumber(u"12,34,56,789", 0, Indian()));
    EXPECT_FALSE(IsValidNumber(u"123,456,789", 0, Indian()));
}

TEST(IsValidNumber, RefusesANumberTooLargeForADouble)
{
    EXPECT_TRUE(IsValidNumber(ZRBasicString(std::u16string(308, u'9')), 0, Plain()));
    EXPECT_FALSE(IsValidNumber(ZRBasicString(std::u16string(400, u'9')), 0, Plain()));
}

}  // namespace
