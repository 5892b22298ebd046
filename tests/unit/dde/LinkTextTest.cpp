#include "dde/LinkText.h"

#include <gtest/gtest.h>

namespace zr::dde {

TEST(LinkText, QuotesTheTopicAlwaysAndTheOthersAtNeed)
{
    EXPECT_EQ(LinkReference(u"KESTRIX", u"METER-1", u"U1"), u"=KESTRIX|'METER-1'!U1");
    EXPECT_EQ(LinkReference(u"HALL 2", u"Meter 1", u"V.1_A"), u"='HALL 2'|'Meter 1'!V.1_A");
    EXPECT_EQ(LinkReference(u"KESTRIX", u"M", u"cos \u03C6"), u"=KESTRIX|'M'!'cos \u03C6'");
}

TEST(LinkText, DoublesAMarkWithinAName)
{
    EXPECT_EQ(LinkReference(u"KESTRIX", u"Smith's", u"U'1"), u"=KESTRIX|'Smith''s'!'U''1'");
    EXPECT_EQ(LinkFunction(u"KESTRIX", u"6\" pipe", u"U1"), u"=DDE(\"KESTRIX\";\"6\"\" pipe\";\"U1\")");
}

TEST(LinkText, TheFunctionQuotesEveryName)
{
    EXPECT_EQ(LinkFunction(u"KESTRIX", u"METER-1", u"U1"), u"=DDE(\"KESTRIX\";\"METER-1\";\"U1\")");
}

}  // namespace zr::dde
