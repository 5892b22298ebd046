#include "siblings/tools/Numbers.h"

#include <gtest/gtest.h>
#include <string>

namespace {

TEST(IsValidId, AcceptsLettersDigitsBlanksHyphensAndUnderscores)
{
    for (const wchar* text : {u"A", u"z9", u"Meter 1", u"com-1_b", u"0", u"L\u00EDnea", u"\u0391\u03B2", u"\u0416"}) {
        EXPECT_TRUE(IsValidId(text, true));
    }
}

TEST(IsValidId, RefusesWhatReferencesAndPathsUse)
{
    for (const wchar character : u".@#?/\\") {
        const std::u16string text = {u'A', character, u'B'};
        EXPECT_FALSE(IsValidId(ZRBasicString(text), true)) << static_cast<int>(character);
    }
}

TEST(IsValidId, RefusesOtherSigns)
{
    for (const wchar* text :
         {u"a,b", u"a:b", u"a\tb", u"a\nb", u"a%s", u"a\u00D7b", u"a\u00A0b", u"<a>", u"\xD83D\xDE00"}) {
        EXPECT_FALSE(IsValidId(text, true));
    }
}

TEST(IsValidId, RefusesAnEmptyTextAndOneOfMoreThan64Characters)
{
    EXPECT_FALSE(IsValidId(u"", true));
    EXPECT_TRUE(IsValidId(ZRBasicString(std::u16string(64, u'a')), true));
    EXPECT_FALSE(IsValidId(ZRBasicString(std::u16string(65, u'a')), true));
}

TEST(IsValidId, TakesBlanksOnlyWhereTheyAreAllowed)
{
    EXPECT_TRUE(IsValidId(u"Meter 1", true));
    EXPECT_FALSE(IsValidId(u"Meter 1", false));
    EXPECT_TRUE(IsValidId(u"Meter-1", false));
}

}  // namespace
