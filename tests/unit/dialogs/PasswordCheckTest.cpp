#include "dialogs/PasswordCheck.h"

#include <gtest/gtest.h>

namespace {

using zr::dialogs::PasswordCheck;

constexpr int kStandardPrompt = -1;
constexpr int kRepeat = 2;

struct Row {
    int type;
    bool promptIsForNew;
    int promptId;
    unsigned title;
    unsigned prompt;
    unsigned message;
};

class PasswordCheckTexts : public ::testing::TestWithParam<Row> {};

TEST_P(PasswordCheckTexts, AreThoseOfTheType)
{
    const Row& row = GetParam();
    PasswordCheck check(1234, row.promptIsForNew, row.promptId);
    check.SetType(row.type);
    EXPECT_EQ(check.Title(), row.title);
    EXPECT_EQ(check.Prompt(), row.prompt);
    if (row.type != PasswordCheck::kCollect) {
        EXPECT_EQ(check.Message(), row.message);
    }
}

INSTANTIATE_TEST_SUITE_P(PasswordCheck, PasswordCheckTexts,
                         ::testing::Values(Row{0, false, -1, 291, 332, 333}, Row{0, true, -1, 291, 914, 333},
                                           Row{1, false, -1, 291, 332, 0}, Row{1, true, -1, 291, 914, 0},
                                           // The prompt flag has no effect on the others.
                                           Row{2, false, -1, 582, 583, 584}, Row{2, true, -1, 582, 583, 584},
                                           Row{77, true, -1, 582, 583, 584}, Row{-1, false, -1, 582, 583, 584},
                                           // A number of a prompt replaces the standard one in all types, and 0 is one.
                                           Row{0, true, 0, 291, 0, 333}, Row{1, true, 0, 291, 0, 0},
                                           Row{2, true, 0, 582, 0, 584}, Row{0, false, 3000, 291, 3000, 333},
                                           Row{2, false, 3000, 582, 3000, 584},
                                           // Any number below 0 stands for the standard one.
                                           Row{0, false, -32768, 291, 332, 333}));

TEST(PasswordCheck, AsksAtFirst)
{
    EXPECT_EQ(PasswordCheck(0, false, kStandardPrompt).Title(), 291u);
    EXPECT_FALSE(PasswordCheck(7, false, kStandardPrompt).Accepts(u"8"));
}

TEST(PasswordCheck, ComparesANumber)
{
    const PasswordCheck check(1234, false, kStandardPrompt);
    EXPECT_TRUE(check.Accepts(u"1234"));
    EXPECT_TRUE(check.Accepts(u" +01234"));
    EXPECT_FALSE(check.Accepts(u"1235"));
    EXPECT_FALSE(check.Accepts(u"-1234"));
    EXPECT_FALSE(check.Accepts(u""));
    EXPECT_TRUE(check.IsInt(1234));
    EXPECT_FALSE(check.IsInt(-1234));
}

TEST(PasswordCheck, ReadsATextThatIsNoNumberAsZero)
{
    const PasswordCheck zero(0, false, kStandardPrompt);
    EXPECT_TRUE(zero.Accepts(u"secret"));
    EXPECT_TRUE(zero.Accepts(u""));
    EXPECT_FALSE(zero.Accepts(u"1"));
    EXPECT_FALSE(PasswordCheck(1, false, kStandardPrompt).Accepts(u"secret"));
}

TEST(PasswordCheck, ComparesANumberByTheLeadingDigitsOfTheEntry)
{
    const PasswordCheck check(12, false, kStandardPrompt);
    EXPECT_TRUE(check.Accepts(u"12abc"));
    EXPECT_TRUE(check.Accepts(u"12.9"));
    EXPECT_FALSE(check.Accepts(u"a12"));
}

TEST(PasswordCheck, ComparesNegativeNumbersAndTheLimitsOfInt)
{
    EXPECT_TRUE(PasswordCheck(-5, false, kStandardPrompt).Accepts(u"-5"));
    EXPECT_TRUE(PasswordCheck(2147483647, false, kStandardPrompt).Accepts(u"2147483647"));
    EXPECT_TRUE(PasswordCheck(-2147483647 - 1, false, kStandardPrompt).Accepts(u"-2147483648"));
}

TEST(PasswordCheck, ComparesATextByEachCharacterAndItsCase)
{
    const PasswordCheck check(u"Secr\u00E9t", false, kStandardPrompt);
    EXPECT_TRUE(check.Accepts(u"Secr\u00E9t"));
    EXPECT_FALSE(check.Accepts(u"secr\u00E9t"));
    EXPECT_FALSE(check.Accepts(u"Secr\u00E9t "));
    EXPECT_FALSE(check.Accepts(u"Secr\u00E9"));
    EXPECT_TRUE(check.IsString(u"Secr\u00E9t"));
    EXPECT_FALSE(check.IsString(u""));
}

TEST(PasswordCheck, ComparesDigitsAsTextInTextMode)
{
    const PasswordCheck check(u"0123", false, kStandardPrompt);
    EXPECT_TRUE(check.Accepts(u"0123"));
    EXPECT_FALSE(check.Accepts(u"123"));
}

TEST(PasswordCheck, AcceptsAnEmptyEntryForAnEmptyText)
{
    const PasswordCheck check(u"", false, kStandardPrompt);
    EXPECT_TRUE(check.Accepts(u""));
    EXPECT_FALSE(check.Accepts(u"x"));
}

TEST(PasswordCheck, AcceptsEveryEntryWhenItCollectsANewPassword)
{
    PasswordCheck check(u"old", true, kStandardPrompt);
    check.SetType(PasswordCheck::kCollect);
    EXPECT_TRUE(check.Accepts(u""));
    EXPECT_TRUE(check.Accepts(u"old"));
    EXPECT_TRUE(check.Accepts(u"anything"));
}

TEST(PasswordCheck, ComparesInEveryOtherTypeAsWell)
{
    for (const int type : {kRepeat, 3, -1}) {
        PasswordCheck check(u"again", false, kStandardPrompt);
        check.SetType(type);
        EXPECT_TRUE(check.Accepts(u"again"));
        EXPECT_FALSE(check.Accepts(u""));
    }
}

// The number of the one mode is 0 and the text of the other empty.
TEST(PasswordCheck, HoldsNothingOfTheOtherMode)
{
    EXPECT_TRUE(PasswordCheck(1234, false, kStandardPrompt).IsString(u""));
    EXPECT_TRUE(PasswordCheck(u"1234", false, kStandardPrompt).IsInt(0));
}

}  // namespace
