#include "siblings/tools/ui/ZRLayout.h"

#include <gtest/gtest.h>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QWidget>

namespace {

using Size = ZRLayout::Size;

// A window of plain controls that take any size.
class ZRLayoutTest : public ::testing::Test {
protected:
    QWidget& Control()
    {
        auto* const control = new QWidget(&window);
        control->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        return *control;
    }
    int Pixels(int units) const { return ZRLayout::ToPixels(units, window); }

    QWidget window;
};

TEST_F(ZRLayoutTest, GivesPercentagesOfTheWholeWidthWhereNothingIsFixed)
{
    QWidget& left = Control();
    QWidget& middle = Control();
    QWidget& right = Control();
    ZRHoritzontalLayout row(window);
    row.AddControl(left, Size::Percent(33));
    row.AddControl(middle, Size::Percent(34));
    row.AddControl(right, Size::Percent(33));
    row.Fill(QRect(10, 20, 1000, 50));
    EXPECT_EQ(left.geometry(), QRect(10, 20, 330, 50));
    EXPECT_EQ(middle.geometry(), QRect(340, 20, 340, 50));
    EXPECT_EQ(right.geometry(), QRect(680, 20, 330, 50));
}

TEST_F(ZRLayoutTest, LeavesNoPixelOutWhenPercentagesDoNotDivideTheRoom)
{
    QWidget& left = Control();
    QWidget& right = Control();
    ZRHoritzontalLayout row(window);
    row.AddControl(left, Size::Percent(50));
    row.AddControl(right, Size::Percent(50));
    row.Fill(QRect(0, 0, 101, 10));
    EXPECT_EQ(left.width() + right.width(), 101);
    EXPECT_EQ(right.geometry().right(), 100);
    EXPECT_NEAR(left.width(), 50, 1);
}

TEST_F(ZRLayoutTest, TakesPercentagesOfWhatFixedSizesLeave)
{
    QWidget& fixed = Control();
    QWidget& half = Control();
    QWidget& rest = Control();
    ZRHoritzontalLayout row(window);
    row.AddControl(fixed, Size::Fixed(40));
    row.AddControl(half, Size::Percent(50));
    row.AddControl(rest, Size::Percent(50));
    row.Fill(QRect(0, 0, Pixels(40) + 200, 10));
    EXPECT_EQ(fixed.geometry(), QRect(0, 0, Pixels(40), 10));
    EXPECT_EQ(half.width(), 100);
    EXPECT_EQ(rest.width(), 100);
}

TEST_F(ZRLayoutTest, LeavesTheRestAtTheEndWhenPercentagesSumUpToLess)
{
    QWidget& only = Control();
    ZRHoritzontalLayout row(window);
    row.AddGap(Size::Percent(10));
    row.AddControl(only, Size::Percent(40));
    row.Fill(QRect(0, 0, 200, 10));
    EXPECT_EQ(only.geometry(), QRect(20, 0, 80, 10));
}

TEST_F(ZRLayoutTest, TakesPercentagesInProportionWhenTheySumUpToMore)
{
    QWidget& left = Control();
    QWidget& right = Control();
    ZRHoritzontalLayout row(window);
    row.AddControl(left, Size::Percent(100));
    row.AddControl(right, Size::Percent(100));
    row.Fill(QRect(0, 0, 300, 10));
    EXPECT_EQ(left.width(), 150);
    EXPECT_EQ(right.width(), 150);
}

TEST_F(ZRLayoutTest, StacksFixedControlsFromTheTopWhereNothingIsInPercent)
{
    QWidget& first = Control();
    QWidget& second = Control();
    ZRVerticalLayout stack(window);
    stack.AddControl(first, Size::Fixed(14));
    stack.AddControl(second, Size::Fixed(28));
    stack.Fill(QRect(0, 0, 60, 400));
    EXPECT_EQ(first.geometry(), QRect(0, 0, 60, Pixels(14)));
    EXPECT_EQ(second.geometry(), QRect(0, Pixels(14), 60, Pixels(28)));
}

TEST_F(ZRLayoutTest, SeparatesByGapsAndByNothingElse)
{
    QWidget& first = Control();
    QWidget& second = Control();
    QWidget& third = Control();
    ZRVerticalLayout stack(window);
    stack.AddControl(first, Size::Fixed(10));
    stack.AddControl(second, Size::Fixed(10));
    stack.AddGap();
    stack.AddControl(third, Size::Percent(100));
    stack.AddGap(Size::Fixed(10));
    stack.Fill(QRect(0, 0, 60, 400));
    EXPECT_EQ(second.y(), Pixels(10));
    EXPECT_EQ(third.y(), 2 * Pixels(10) + Pixels(ZRLayout::kGap));
    EXPECT_EQ(third.geometry().bottom(), 399 - Pixels(10));
}

TEST_F(ZRLayoutTest, FillsTheRoomOfANestedLayoutByThatLayout)
{
    QWidget& list = Control();
    QWidget& ok = Control();
    QWidget& cancel = Control();
    auto buttons = std::make_unique<ZRHoritzontalLayout>(window);
    buttons->AddControl(ok, Size::Percent(50));
    buttons->AddControl(cancel, Size::Percent(50));
    ZRVerticalLayout stack(window);
    stack.AddControl(list, Size::Percent(100));
    stack.AddLayout(std::move(buttons), Size::Fixed(14));
    stack.Fill(QRect(5, 5, 200, 300));
    const int top = 305 - Pixels(14);
    EXPECT_EQ(list.geometry(), QRect(5, 5, 200, 300 - Pixels(14)));
    EXPECT_EQ(ok.geometry(), QRect(5, top, 100, Pixels(14)));
    EXPECT_EQ(cancel.geometry(), QRect(105, top, 100, Pixels(14)));
}

TEST_F(ZRLayoutTest, NestsRowsInStacksInRows)
{
    QWidget& button = Control();
    QWidget& list = Control();
    auto inner = std::make_unique<ZRHoritzontalLayout>(window);
    inner->AddGap(Size::Percent(25));
    inner->AddControl(button, Size::Percent(75));
    auto stack = std::make_unique<ZRVerticalLayout>(window);
    stack->AddGap(Size::Percent(50));
    stack->AddLayout(std::move(inner), Size::Percent(50));
    ZRHoritzontalLayout row(window);
    row.AddLayout(std::move(stack), Size::Percent(40));
    row.AddControl(list, Size::Percent(60));
    row.Fill(QRect(0, 0, 1000, 100));
    EXPECT_EQ(button.geometry(), QRect(100, 50, 300, 50));
    EXPECT_EQ(list.geometry(), QRect(400, 0, 600, 100));
}

TEST_F(ZRLayoutTest, GivesTheRoomOfAHiddenControlToTheOthers)
{
    QWidget& hidden = Control();
    QWidget& shown = Control();
    ZRVerticalLayout stack(window);
    stack.AddControl(hidden, Size::Fixed(20));
    stack.AddControl(shown, Size::Percent(100));
    hidden.hide();
    stack.Fill(QRect(0, 0, 100, 100));
    EXPECT_EQ(shown.geometry(), QRect(0, 0, 100, 100));
    hidden.show();
    stack.Fill(QRect(0, 0, 100, 100));
    EXPECT_EQ(shown.y(), Pixels(20));
}

TEST_F(ZRLayoutTest, OutlivesAControl)
{
    QWidget& gone = Control();
    QWidget& stays = Control();
    ZRHoritzontalLayout row(window);
    row.AddControl(gone, Size::Percent(50));
    row.AddControl(stays, Size::Percent(50));
    delete &gone;
    row.Fill(QRect(0, 0, 100, 10));
    EXPECT_EQ(stays.geometry(), QRect(0, 0, 50, 10));
}

TEST_F(ZRLayoutTest, PutsAControlThatCannotGrowInTheMiddleOfARow)
{
    auto* const edit = new QLineEdit(&window);
    ZRHoritzontalLayout row(window);
    row.AddControl(*edit, Size::Percent(100));
    row.Fill(QRect(0, 0, 300, 101));
    EXPECT_EQ(edit->width(), 300);
    EXPECT_EQ(edit->height(), edit->sizeHint().height());
    EXPECT_NEAR(edit->geometry().center().y(), 50, 1);
}

TEST_F(ZRLayoutTest, GrowsWithTheFontOfTheWindow)
{
    QFont font = window.font();
    font.setPixelSize(12);
    window.setFont(font);
    const int before = Pixels(80);
    font.setPixelSize(24);
    window.setFont(font);
    EXPECT_NEAR(Pixels(80), 2 * before, 10);
    EXPECT_EQ(Pixels(8), window.fontMetrics().height());
}

TEST_F(ZRLayoutTest, AStandardControlHoldsALineOfText)
{
    QLineEdit edit(&window);
    EXPECT_NEAR(Pixels(ZRLayout::kControlSize), edit.sizeHint().height(), 4);
}

TEST_F(ZRLayoutTest, AsksForWhatItsControlsNeed)
{
    QWidget& label = Control();
    label.setMinimumSize(120, 18);
    auto row = std::make_unique<ZRHoritzontalLayout>(window);
    row->AddControl(Control(), Size::Fixed(40));
    row->AddControl(Control(), Size::Fixed(50));
    ZRVerticalLayout stack(window);
    stack.AddControl(label, Size::Natural());
    stack.AddGap(Size::Fixed(7));
    stack.AddLayout(std::move(row), Size::Fixed(14));
    EXPECT_EQ(stack.NeededSize(), QSize(std::max(120, Pixels(40) + Pixels(50)), 18 + Pixels(7) + Pixels(14)));
}

TEST_F(ZRLayoutTest, SurvivesARectangleThatIsTooSmall)
{
    QWidget& left = Control();
    QWidget& right = Control();
    ZRHoritzontalLayout row(window);
    row.AddControl(left, Size::Fixed(100));
    row.AddGap();
    row.AddControl(right, Size::Percent(100));
    for (const QRect& rectangle : {QRect(0, 0, 0, 0), QRect(0, 0, 1, 1), QRect(0, 0, -5, -5)}) {
        row.Fill(rectangle);
        EXPECT_LE(left.width(), Pixels(100));
        EXPECT_GE(left.width(), 0);
    }
}

TEST_F(ZRLayoutTest, ControlBoxButtonsPutsTheButtonsBelowTheControlInItsBox)
{
    auto* const box = new QGroupBox(QStringLiteral("Variables"), &window);
    QWidget& list = Control();
    auto* const add = new QPushButton(QStringLiteral("Add..."), &window);
    auto* const remove = new QPushButton(QStringLiteral("Remove"), &window);
    ZRControlBoxButtonsLayout layout(window, list, *box, {add, remove});
    layout.Fill(QRect(0, 0, 400, 300));
    EXPECT_EQ(box->geometry(), QRect(0, 0, 400, 300));
    const QRect inside = box->geometry();
    EXPECT_TRUE(inside.contains(list.geometry()));
    EXPECT_TRUE(inside.contains(add->geometry()));
    EXPECT_TRUE(inside.contains(remove->geometry()));
    EXPECT_GT(list.y(), box->fontMetrics().height() / 2) << "below the title";
    EXPECT_GT(add->y(), list.geometry().bottom());
    EXPECT_EQ(add->y(), remove->y());
    EXPECT_NEAR(add->width(), remove->width(), 1);
    EXPECT_GT(remove->x(), add->geometry().right());
    EXPECT_EQ(list.geometry().left(), add->geometry().left());
    EXPECT_EQ(list.geometry().right(), remove->geometry().right());
}

}  // namespace
