#include "platform/ddeml/posix/StringTable.h"

#include <gtest/gtest.h>

namespace zr::ddeml {

TEST(StringTable, SharesAHandleBetweenSpellingsAndKeepsTheFirst)
{
    StringTable table;
    const auto first = table.Hold(u"Alpha", 1);
    EXPECT_EQ(table.Hold(u"ALPHA", 2), first);
    EXPECT_EQ(table.Text(first), u"Alpha");
    EXPECT_TRUE(table.Release(first, 1));
    EXPECT_FALSE(table.Release(first, 1));
    EXPECT_TRUE(table.Release(first, 2));
    EXPECT_EQ(table.Count(), 0U);
    EXPECT_TRUE(table.Text(first).empty());
}

TEST(StringTable, DoesNotGiveTheNumberOfAFreedStringAgain)
{
    StringTable table;
    const auto first = table.Hold(u"a", 1);
    table.Release(first, 1);
    for (int i = 0; i < 100; ++i) {
        const auto next = table.Hold(u"b", 1);
        EXPECT_NE(next, first);
        table.Release(next, 1);
    }
}

TEST(StringTable, RefusesEmptyAndLongTexts)
{
    StringTable table;
    EXPECT_EQ(table.Hold(u"", 1), 0U);
    EXPECT_NE(table.Hold(std::u16string(255, u'x'), 1), 0U);
    EXPECT_EQ(table.Hold(std::u16string(256, u'x'), 1), 0U);
}

TEST(StringTable, FoldsLettersOfTheEuropeanAlphabets)
{
    EXPECT_EQ(FoldCase(u"az\u00E4\u00F7\u00FF\u0161\u03AC\u03B1\u03C2\u0436\u0451"),
              u"AZ\u00C4\u00F7\u0178\u0160\u0386\u0391\u03A3\u0416\u0401");
    EXPECT_EQ(FoldCase(u"\u0131\u0138\u017E\u4E00"), u"\u0131\u0138\u017D\u4E00");
}

}  // namespace zr::ddeml
