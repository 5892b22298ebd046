#include "siblings/tools/Utf.h"

#include <gtest/gtest.h>
#include <string>

namespace {

TEST(Utf, ConvertsBothWaysWhatIsWellFormed)
{
    const std::string utf8 = "aZ \xC3\xA9 \xE2\x82\xAC \xF0\x9F\x94\x8C";
    const ZRBasicString utf16 = u"aZ \u00E9 \u20AC \U0001F50C";
    EXPECT_EQ(Utf8ToUtf16(utf8), utf16);
    EXPECT_EQ(Utf16ToUtf8(utf16), utf8);
    EXPECT_EQ(Utf8ToUtf16(""), u"");
    EXPECT_EQ(Utf16ToUtf8(u""), "");
}

TEST(Utf, KeepsNulWithinAText)
{
    EXPECT_EQ(Utf8ToUtf16(std::string_view("a\0b", 3)).Length(), 3U);
    EXPECT_EQ(Utf16ToUtf8(std::u16string_view(u"a\0b", 3)).size(), 3U);
}

TEST(Utf, ReplacesEachMaximalSubpartOfABrokenSequence)
{
    struct Row {
        const char* utf8;
        const wchar* expected;
    };
    const Row rows[] = {
        {"\x80", u"\uFFFD"},
        {"\xC0\xAF", u"\uFFFD\uFFFD"},                      // overlong
        {"\xE0\x9F\x80", u"\uFFFD\uFFFD\uFFFD"},            // overlong
        {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},            // surrogate
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // above U+10FFFF
        {"\xF5x", u"\uFFFDx"},
        {"\xE1\x80\xE2\xF0\x91\x92\xF1\xBF"
         "A",
         u"\uFFFD\uFFFD\uFFFD\uFFFDA"},  // the standard's own example
        {"\xE2\x82", u"\uFFFD"},         // cut at the end
        {"\xF0\x9F\x94", u"\uFFFD"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Utf8ToUtf16(row.utf8), row.expected) << Utf16ToUtf8(row.expected);
    }
}

TEST(Utf, ReplacesUnpairedSurrogates)
{
    const wchar high[] = {0xD83D, u'x', 0};
    const wchar low[] = {u'x', 0xDD0C, 0};
    const wchar last[] = {u'x', 0xD83D, 0};
    EXPECT_EQ(Utf16ToUtf8(high), "\xEF\xBF\xBDx");
    EXPECT_EQ(Utf16ToUtf8(low), "x\xEF\xBF\xBD");
    EXPECT_EQ(Utf16ToUtf8(last), "x\xEF\xBF\xBD");
}

TEST(Utf, TellsWhereUtf8IsBroken)
{
    std::size_t offset = 99;
    EXPECT_TRUE(IsValidUtf8("plain \xC3\xA9", &offset));
    EXPECT_EQ(offset, 99U);
    EXPECT_FALSE(IsValidUtf8("ab\xC3\xA9\xFFz", &offset));
    EXPECT_EQ(offset, 4U);
    EXPECT_FALSE(IsValidUtf8("ab\xE2\x82", &offset));
    EXPECT_EQ(offset, 2U);
    EXPECT_FALSE(IsValidUtf8("\xED\xBF\xBF"));
}

TEST(Utf, CountsAndDecodesUnits)
{
    const std::string utf8 = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x94\x8C";
    ASSERT_EQ(Utf16Length(utf8), 5U);
    wchar units[5];
    EXPECT_EQ(DecodeValidUtf8(utf8, units), units + 5);
    EXPECT_EQ(ZRBasicString(units, 5), u"a\u00E9\u20AC\U0001F50C");
}

TEST(Utf, DecodesLongTextsWhereverTheyLeaveAscii)
{
    for (std::size_t before = 0; before < 40; ++before) {
        for (std::size_t after = 0; after < 20; ++after) {
            const std::string utf8 = std::string(before, 'a') + "\xC3\xA9" + std::string(after, 'b');
            std::u16string units(Utf16Length(utf8), u'?');
            ASSERT_EQ(DecodeValidUtf8(utf8, units.data()), units.data() + units.size());
            ASSERT_EQ(units, std::u16string(before, u'a') + u"\u00E9" + std::u16string(after, u'b'));
        }
    }
}

TEST(Utf, EveryScalarSurvivesTheWayThereAndBack)
{
    for (char32_t scalar = 0; scalar <= 0x10FFFF; scalar += scalar < 0x3000 ? 1 : 61) {
        if (scalar >= 0xD800 && scalar <= 0xDFFF) {
            continue;
        }
        std::u16string text;
        if (scalar < 0x10000) {
            text = {static_cast<wchar>(scalar)};
        } else {
            text = {static_cast<wchar>(0xD7C0 + (scalar >> 10)), static_cast<wchar>(0xDC00 + (scalar & 0x3FF))};
        }
        const std::string utf8 = Utf16ToUtf8(text);
        ASSERT_TRUE(IsValidUtf8(utf8)) << std::hex << static_cast<unsigned>(scalar);
        ASSERT_EQ(Utf8ToUtf16(utf8).Text(), text) << std::hex << static_cast<unsigned>(scalar);
    }
}

}  // namespace
