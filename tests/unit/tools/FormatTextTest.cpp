#include "siblings/tools/FormatText.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>

namespace {

using zr::FormatText;

TEST(FormatText, FillsIntegers)
{
    EXPECT_EQ(FormatText(u"Axis %d", {3}), u"Axis 3");
    EXPECT_EQ(FormatText(u"%i/%u", {-1, 4294967295u}), u"-1/4294967295");
    EXPECT_EQ(FormatText(u"%d", {std::numeric_limits<std::int64_t>::min()}), u"-9223372036854775808");
    EXPECT_EQ(FormatText(u"%5d|%-5d|%05d|%+d", {42, 42, -42, 42}), u"   42|42   |-0042|+42");
    EXPECT_EQ(FormatText(u"%.3d|%6.3d|%06.3d", {5, 5, 5}), u"005|   005|   005");
}

TEST(FormatText, FillsHexadecimalNumbers)
{
    EXPECT_EQ(FormatText(u"0x%04X", {205}), u"0x00CD");
    EXPECT_EQ(FormatText(u"%06X %x", {0xABCDEFu, 255}), u"ABCDEF ff");
}

TEST(FormatText, FillsDoublesAsTheCLocaleDoes)
{
    EXPECT_EQ(FormatText(u"%g %g", {0.1, 1e20}), u"0.1 1e+20");
    EXPECT_EQ(FormatText(u"%f|%.2f|%8.1f|%-8.1f|%08.1f", {1.5, 2.345, -1.25, 1.0, -1.0}),
              u"1.500000|2.35|    -1.2|1.0     |-00001.0");
    EXPECT_EQ(FormatText(u"%.1f", {-0.5}), u"-0.5");
    EXPECT_EQ(FormatText(u"%.0f", {2.5}), u"2");
    EXPECT_EQ(FormatText(u"%e %E %G", {12345.0, 12345.0, 1e-10}), u"1.234500e+04 1.234500E+04 1E-10");
    EXPECT_EQ(FormatText(u"%f %5g %g", {std::nan(""), HUGE_VAL, -HUGE_VAL}), u"nan   inf -inf");
}

TEST(FormatText, WritesTheLargestDoubleInFull)
{
    EXPECT_EQ(FormatText(u"%.99f", {-std::numeric_limits<double>::max()}).Length(), 1u + 309u + 1u + 99u);
}

TEST(FormatText, FillsTextsAndCharacters)
{
    const ZRBasicString device = u"Meter \u00B5";
    EXPECT_EQ(FormatText(u"%s (%d %s)", {u"Axis 1", 2, device}), u"Axis 1 (2 Meter \u00B5)");
    EXPECT_EQ(FormatText(u"%5s|%-5s|%.2s|%c", {u"ab", u"ab", u"abc", u'x'}), u"   ab|ab   |ab|x");
    EXPECT_EQ(FormatText(u"[%s]", {static_cast<const wchar*>(nullptr)}), u"[]");
}

TEST(FormatText, WritesAPercentSign)
{
    EXPECT_EQ(FormatText(u"100%% %d%%", {5}), u"100% 5%");
}

TEST(FormatText, DoesNotReadPlaceholdersInArguments)
{
    EXPECT_EQ(FormatText(u"%s-SCBar-%d", {u"%d%s", 7}), u"%d%s-SCBar-7");
}

TEST(FormatText, ShowsAPlaceholderWithoutArgument)
{
    EXPECT_EQ(FormatText(u"%d and %d", {1}), u"1 and %d");
    EXPECT_EQ(FormatText(u"%s", {}), u"%s");
}

TEST(FormatText, IgnoresArgumentsLeftOver)
{
    EXPECT_EQ(FormatText(u"one %d", {1, 2, u"three"}), u"one 1");
    EXPECT_EQ(FormatText(u"none", {1}), u"none");
}

TEST(FormatText, ShowsAPlaceholderOfAnotherKindAndPassesItsArgumentOver)
{
    EXPECT_EQ(FormatText(u"%s then %d", {5, 6}), u"%s then 6");
    EXPECT_EQ(FormatText(u"%5d then %s", {u"text", u"more"}), u"%5d then more");
    EXPECT_EQ(FormatText(u"%.2f", {1}), u"%.2f");
    EXPECT_EQ(FormatText(u"%d", {1.0}), u"%d");
    EXPECT_EQ(FormatText(u"%04X", {-1}), u"%04X");
}

TEST(FormatText, ShowsWhatIsNoPlaceholder)
{
    for (const char16_t* text :
         {u"%", u"100 % done", u"%q", u"%-", u"%5", u"%.", u"%n", u"%*d", u"%ls", u"%1$s", u"%5%"}) {
        EXPECT_EQ(FormatText(text, {1, 2}), text);
    }
}

TEST(FormatText, RefusesWidthsWithoutMeasure)
{
    EXPECT_EQ(FormatText(u"%99d", {1}).Length(), 99u);
    EXPECT_EQ(FormatText(u"%100d", {1}), u"%100d");
    EXPECT_EQ(FormatText(u"%.100f", {1.0}), u"%.100f");
    EXPECT_EQ(FormatText(u"%99999999999999999999s", {u"x"}), u"%99999999999999999999s");
    EXPECT_EQ(FormatText(u"%0000000000000000000005d", {1}), u"00001");
}

TEST(FormatText, TakesAnyFormatWithoutHarm)
{
    std::mt19937 random(7);
    constexpr std::u16string_view kPieces = u"%%%%%%dsfgxXciu0123456789.-+*l n\u20AC";
    std::uniform_int_distribution<std::size_t> pick(0, kPieces.size() - 1);
    std::size_t longest = 0;
    for (unsigned round = 0; round < 100000; ++round) {
        std::u16string format(round % 24, u' ');
        for (wchar& character : format) {
            character = kPieces[pick(random)];
        }
        longest = std::max(longest, FormatText(format, {-1, 1e308, u"text", 65}).Length());
    }
    EXPECT_GT(longest, 24u);
    EXPECT_LT(longest, 2000u);
}

}  // namespace
