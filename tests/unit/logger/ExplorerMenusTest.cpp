#include "logger/ExplorerMenus.h"

#include "logger/LoggerPeriod.h"
#include "logger/SuiteKey.h"
#include "unit/logger/LoggedFixture.h"

namespace zr::logger {
namespace {

class ExplorerMenusTest : public LoggedFixture {
protected:
    static std::vector<std::string> Texts(const ExplorerMenu& menu)
    {
        std::vector<std::string> texts;
        for (const ExplorerMenuEntry& entry : menu) {
            texts.push_back((entry.isChecked ? "*" : "") + Narrow(entry.text));
        }
        return texts;
    }

    // Buttons of 100 each, side by side.
    static std::vector<ShownButton> Buttons()
    {
        std::vector<ShownButton> buttons;
        for (const ExplorerButton& button : kExplorerButtons) {
            const int left = 100 * static_cast<int>(buttons.size());
            ZRBasicString text;
            ZRLoadString(button.text, text);
            buttons.push_back({button.command, text, button.isDropDown, true, {left, left + 100}});
        }
        return buttons;
    }

    static bool SubMenu(unsigned command, ExplorerMenu& menu)
    {
        menu = command == kCommandGroupBy ? GroupByMenu(kGroupByWeek) : PeriodMenu(ZRDateTimeSpan(3600, 0));
        return true;
    }

    using Strings = std::vector<std::string>;
};

TEST_F(ExplorerMenusTest, TheToolbarHasFiveButtonsTheLastTwoWithADropDown)
{
    EXPECT_EQ(kExplorerButtons[0].command, 31858U);
    EXPECT_EQ(kExplorerButtons[1].command, 31859U);
    EXPECT_EQ(kExplorerButtons[2].command, 31849U);
    EXPECT_EQ(kExplorerButtons[3].command, 31851U);
    EXPECT_EQ(kExplorerButtons[4].command, 31852U);
    Strings texts;
    for (const ExplorerButton& button : kExplorerButtons) {
        ZRBasicString text;
        texts.push_back(Narrow(ZRLoadString(button.text, text)));
        EXPECT_EQ(button.isDropDown, texts.size() > 3);
    }
    EXPECT_EQ(texts, (Strings{"Previous", "Next", "Go to...", "Group by", "Period"}));
}

TEST_F(ExplorerMenusTest, UnitsAreListedWithTheOneInForceMarked)
{
    EXPECT_EQ(Texts(GroupByMenu(kGroupByQuarter)), (Strings{"Day", "Week", "Month", "*Quarter", "Year"}));
    EXPECT_EQ(Texts(GroupByMenu(0)), (Strings{"Day", "Week", "Month", "Quarter", "Year"}));
    EXPECT_EQ(GroupByMenu(0)[0].command, 31895U);
}

TEST_F(ExplorerMenusTest, PeriodsAreListedWithTheOneInForceMarked)
{
    EXPECT_EQ(Texts(PeriodMenu(ZRDateTimeSpan(900, 0))),
              (Strings{"Automatic", "As recorded", "5 minutes", "10 minutes", "*15 minutes", "20 minutes", "30 minutes",
                       "1 hour", "24 hours", "1 month (31 days)"}));
    EXPECT_EQ(PeriodMenu({})[9].command, 31829U);
}

TEST_F(ExplorerMenusTest, AnAutomaticOrUnlistedPeriodMarksTheAutomaticEntry)
{
    EXPECT_TRUE(PeriodMenu(AutomaticPeriod())[0].isChecked);
    EXPECT_TRUE(PeriodMenu(ZRDateTimeSpan(7, 0))[0].isChecked);
}

TEST_F(ExplorerMenusTest, TheChevronOffersFromTheFirstButtonThatIsNotWhollyVisible)
{
    const ExplorerMenu menu = ChevronMenu(Buttons(), {0, 250}, SubMenu);
    EXPECT_EQ(Texts(menu), (Strings{"Go to...", "Group by", "Period"}));
    EXPECT_TRUE(menu[0].subMenu.empty());
    EXPECT_EQ(Texts(menu[1].subMenu), (Strings{"Day", "*Week", "Month", "Quarter", "Year"}));
    EXPECT_TRUE(menu[2].subMenu[7].isChecked);
}

TEST_F(ExplorerMenusTest, TheChevronOffersNothingWhenAllIsVisible)
{
    EXPECT_TRUE(ChevronMenu(Buttons(), {0, 500}, SubMenu).empty());
    EXPECT_EQ(ChevronMenu(Buttons(), {0, 499}, SubMenu).size(), 1U);
}

TEST_F(ExplorerMenusTest, TheChevronGreysAButtonThatIsOff)
{
    std::vector<ShownButton> buttons = Buttons();
    buttons[1].isEnabled = false;
    const ExplorerMenu menu = ChevronMenu(buttons, {0, 0}, SubMenu);
    EXPECT_EQ(menu.size(), 5U);
    EXPECT_TRUE(menu[0].isEnabled);
    EXPECT_FALSE(menu[1].isEnabled);
}

TEST_F(ExplorerMenusTest, TheChevronLeavesOutADropDownWithoutAMenu)
{
    const ExplorerMenu menu = ChevronMenu(Buttons(), {0, 0}, [](unsigned command, ExplorerMenu& subMenu) {
        return command == kCommandPeriod && SubMenu(command, subMenu);
    });
    EXPECT_EQ(Texts(menu), (Strings{"Previous", "Next", "Go to...", "Period"}));
}

TEST_F(ExplorerMenusTest, TheLastChoiceIsReadBack)
{
    SuiteKey key;
    key.WriteText(kLastGroupValue, u"3MONTH");
    key.WriteText(kLastPeriodValue, u"1440");
    EXPECT_EQ(ReadLastChoice().groupBy, kGroupByQuarter);
    EXPECT_EQ(ReadLastChoice().samplePeriod, ZRDateTimeSpan(86400, 0));
    key.WriteText(kLastPeriodValue, u"AUTO");
    EXPECT_TRUE(IsAutomatic(ReadLastChoice().samplePeriod));
}

TEST_F(ExplorerMenusTest, WithoutALastChoiceItIsTheWeekAtHalfAnHour)
{
    EXPECT_EQ(ReadLastChoice().groupBy, kGroupByWeek);
    EXPECT_EQ(ReadLastChoice().samplePeriod, ZRDateTimeSpan(1800, 0));
    SuiteKey key;
    key.WriteText(kLastGroupValue, u"CENTURY");
    key.WriteNumber(kLastPeriodValue, 5);
    EXPECT_EQ(ReadLastChoice().groupBy, kGroupByWeek);
    EXPECT_EQ(ReadLastChoice().samplePeriod, ZRDateTimeSpan(1800, 0));
}

TEST_F(ExplorerMenusTest, ALastChoiceThatDoesNotGoTogetherIsAutomatic)
{
    SuiteKey key;
    key.WriteText(kLastGroupValue, u"DAY");
    key.WriteText(kLastPeriodValue, u"1440");
    EXPECT_EQ(ReadLastChoice().groupBy, kGroupByDay);
    EXPECT_TRUE(IsAutomatic(ReadLastChoice().samplePeriod));
}

}  // namespace
}  // namespace zr::logger
