#include "controls/ui/ZRValueControl.h"

#include "controls/ui/ZRBaseViewDlg.h"
#include "support/LiveDevice.h"
#include "WindowPicture.h"

#include <gtest/gtest.h>
#include <limits>
#include <QAccessible>
#include <QTest>
#include <vector>

namespace {

using zr::controls::MakeRgb;
using zr::controls::Rgb;
using zr::test::WindowPicture;

constexpr Rgb kYellow = MakeRgb(255, 255, 0);
constexpr Rgb kRed = MakeRgb(255, 0, 0);
constexpr Rgb kWhite = MakeRgb(255, 255, 255);
constexpr Rgb kBlack = MakeRgb(0, 0, 0);
constexpr unsigned kControlId = 1017;

class CountingControl : public ZRValueControl {
public:
    using ZRValueControl::ZRValueControl;
    int paints = 0;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        ++paints;
        ZRValueControl::paintEvent(event);
    }
};

struct Command {
    unsigned id;
    unsigned code;
    QWidget* from;
};

class View : public ZRBaseViewDlg {
public:
    View() : ZRBaseViewDlg(210) {}
    std::vector<Command> commands;

protected:
    bool OnCommand(unsigned id, unsigned code, QWidget* from) override
    {
        commands.push_back({id, code, from});
        return true;
    }
};

class ZRValueControlTest : public ::testing::Test {
protected:
    ZRValueControlTest() : control(&view, kControlId)
    {
        view.resize(300, 100);
        control.setGeometry(10, 10, 120, 20);
        control.SetupVariable(u"METER.VOLTAGE", 128);
        control.SetupChecks(zr::controls::kCheckHighLimits, 0, 0, 250, 270, 230);
    }

    void Read(double value)
    {
        device.Write(0, value);
        control.Update();
    }
    Rgb Face() const { return zr::controls::ColoursOf(control).face; }
    Rgb Caption() const { return zr::controls::ColoursOf(control).activeCaption; }
    void Show()
    {
        view.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
        zr::test::Settle();
    }

    zr::test::LiveDevice device{u"METER", {zr::test::Variable(u"VOLTAGE")}};
    View view;
    CountingControl control;
};

TEST_F(ZRValueControlTest, PaintsOnlyItsBackgroundWhenTheVariableIsUnlocked)
{
    CountingControl unlocked(&view, 1018);
    unlocked.setGeometry(10, 40, 100, 20);
    unlocked.Update();
    for (const int scale : {1, 2}) {
        const WindowPicture picture(unlocked, scale);
        EXPECT_EQ(picture.CountAll(Face()), 100 * 20 * scale * scale);
    }
}

TEST_F(ZRValueControlTest, PaintsTheNumberOnTheFaceInItsNormalState)
{
    Read(230.0);
    for (const QSize size : {QSize(120, 20), QSize(240, 60)}) {
        control.resize(size);
        for (const int scale : {1, 2}) {
            const WindowPicture picture(control, scale);
            EXPECT_EQ(picture.At(1, 1), Face());
            EXPECT_EQ(picture.At(size.width() - 1, size.height() - 1), Face());
            // Right-aligned: ink in the right half alone.
            EXPECT_GT(picture.Count({size.width() / 2, 0, size.width(), size.height()}, kBlack), 0);
            EXPECT_EQ(picture.Count({0, 0, size.width() / 2, size.height()}, kBlack), 0);
        }
    }
}

TEST_F(ZRValueControlTest, PaintsWarningAndAlarmBehindTheTextAlone)
{
    for (const auto& [value, background, ink] : {std::tuple{260.0, kYellow, kBlack}, std::tuple{280.0, kRed, kWhite}}) {
        Read(value);
        for (const int scale : {1, 2}) {
            const WindowPicture picture(control, scale);
            EXPECT_EQ(picture.At(1, 1), Face());
            EXPECT_EQ(picture.At(119, 4), background);  // above the digits' ink
            EXPECT_GT(picture.CountAll(ink), 0);
            EXPECT_LT(picture.CountAll(background), 60 * 20 * scale * scale);
        }
    }
}

TEST_F(ZRValueControlTest, PaintsTheWholeWindowInTheCaptionColourWhenSelected)
{
    Read(280.0);
    control.Select(true);
    for (const QSize size : {QSize(120, 20), QSize(240, 60)}) {
        control.resize(size);
        for (const int scale : {1, 2}) {
            const WindowPicture picture(control, scale);
            EXPECT_EQ(picture.At(0, 0), Caption());
            EXPECT_EQ(picture.At(size.width() - 1, size.height() - 1), Caption());
            EXPECT_GT(picture.CountAll(kRed), 0);
            EXPECT_EQ(picture.CountAll(Face()), 0);
        }
    }
}

TEST_F(ZRValueControlTest, PaintsWhiteTextOnADarkFace)
{
    zr::test::SetDark(view);
    Read(230.0);
    const WindowPicture picture(control, 1);
    EXPECT_EQ(picture.At(1, 1), MakeRgb(45, 45, 48));
    EXPECT_GT(picture.CountAll(kWhite), 0);
    EXPECT_EQ(picture.CountAll(kBlack), 0);
}

TEST_F(ZRValueControlTest, RepaintsOnlyWhenTheValueHasChanged)
{
    Show();
    Read(230.0);
    zr::test::Settle();
    const int before = control.paints;
    Read(230.0);
    zr::test::Settle();
    EXPECT_EQ(control.paints, before);
    Read(231.0);
    zr::test::Settle();
    EXPECT_EQ(control.paints, before + 1);
}

TEST_F(ZRValueControlTest, RepaintsTheFirstReadingEvenIfItIsTheStartingMark)
{
    Show();
    zr::test::Settle();
    const int before = control.paints;
    Read(4294967295.0);
    zr::test::Settle();
    EXPECT_EQ(control.paints, before + 1);
}

TEST_F(ZRValueControlTest, StoresItsFlagsAndLimitsWithoutARepaint)
{
    Show();
    Read(230.0);
    zr::test::Settle();
    const int before = control.paints;
    control.SetDigital(true);
    control.SetEnableSelection(false);
    control.SetupChecks(2, 0, 0, 100, 200, 230);
    zr::test::Settle();
    EXPECT_EQ(control.paints, before);
    EXPECT_EQ(control.Reading().State(), zr::controls::ValueState::Normal);
    control.Select(false);
    zr::test::Settle();
    EXPECT_EQ(control.paints, before + 1);
}

TEST_F(ZRValueControlTest, LeavesAValueThatTurnsInvalidOnTheScreenUntilTheNextPaint)
{
    Show();
    Read(230.0);
    zr::test::Settle();
    const int before = control.paints;
    device.Invalidate(0);
    control.Update();
    zr::test::Settle();
    EXPECT_EQ(control.paints, before);
    EXPECT_EQ(control.Reading().CurrentText(), u"-");
}

TEST_F(ZRValueControlTest, TogglesItsSelectionAtAClickAndSendsItsNumberToTheParent)
{
    QTest::mouseClick(&control, Qt::LeftButton);
    EXPECT_TRUE(control.Selected());
    ASSERT_EQ(view.commands.size(), 1u);
    EXPECT_EQ(view.commands[0].id, kControlId);
    EXPECT_EQ(view.commands[0].code, 0u);
    EXPECT_EQ(view.commands[0].from, &control);
    QTest::mouseClick(&control, Qt::LeftButton);
    EXPECT_FALSE(control.Selected());
    EXPECT_EQ(view.commands.size(), 2u);
}

TEST_F(ZRValueControlTest, TellsTheParentOfAClickThoughSelectionIsDisabled)
{
    control.SetEnableSelection(false);
    QTest::mouseClick(&control, Qt::LeftButton);
    EXPECT_FALSE(control.Selected());
    EXPECT_EQ(view.commands.size(), 1u);
}

TEST_F(ZRValueControlTest, StaysUnselectedBySelectWhenSelectionIsDisabled)
{
    control.SetEnableSelection(false);
    control.Select(true);
    EXPECT_FALSE(control.Selected());
}

TEST_F(ZRValueControlTest, TakesNoOtherButtonAndNoReleaseOutside)
{
    QTest::mouseClick(&control, Qt::RightButton);
    QTest::mousePress(&control, Qt::LeftButton, {}, QPoint(5, 5));
    QTest::mouseRelease(&control, Qt::LeftButton, {}, QPoint(200, 5));
    EXPECT_FALSE(control.Selected());
    EXPECT_TRUE(view.commands.empty());
}

TEST_F(ZRValueControlTest, ShowsTheHandOnlyWhereItCanBeSelected)
{
    EXPECT_EQ(control.cursor().shape(), Qt::PointingHandCursor);
    control.SetEnableSelection(false);
    EXPECT_FALSE(control.testAttribute(Qt::WA_SetCursor));
    EXPECT_EQ(control.cursor().shape(), Qt::ArrowCursor);
}

TEST_F(ZRValueControlTest, SelectsByTheSpaceBarAndShowsItsFocus)
{
    Show();
    view.setFocus();
    const QImage without = WindowPicture(control, 1).Image();
    QTest::keyClick(&view, Qt::Key_Tab);
    ASSERT_TRUE(control.hasFocus());
    EXPECT_NE(WindowPicture(control, 1).Image(), without);
    QTest::keyClick(&control, Qt::Key_Space);
    EXPECT_TRUE(control.Selected());
    EXPECT_EQ(view.commands.size(), 1u);
    control.SetEnableSelection(false);
    EXPECT_EQ(control.focusPolicy(), Qt::NoFocus);
}

TEST_F(ZRValueControlTest, MeasuresItsIdealHeightInItsFont)
{
    CFont small;
    CFont large;
    small.CreatePointFont(60, u"DejaVu Sans");
    large.CreatePointFont(240, u"DejaVu Sans");
    EXPECT_EQ(ZRValueControl().IdealHeight(), 10);
    control.SetFont(&small);
    const int low = control.IdealHeight();
    control.SetFont(&large);
    EXPECT_GT(control.IdealHeight(), 3 * low);
    control.SetFont(nullptr);
    EXPECT_LT(control.IdealHeight(), 3 * low);
}

TEST_F(ZRValueControlTest, FollowsTheFontItWasGiven)
{
    CFont font;
    font.CreatePointFont(80, u"DejaVu Sans");
    control.SetFont(&font);
    control.resize(300, 60);
    Read(230.0);
    const int few = WindowPicture(control, 1).CountAll(kBlack);
    font.CreatePointFont(300, u"DejaVu Sans");
    EXPECT_GT(WindowPicture(control, 1).CountAll(kBlack), 3 * few);
}

TEST_F(ZRValueControlTest, MakesDoWithAnotherFontWhenTheFaceIsMissing)
{
    CFont font;
    EXPECT_TRUE(font.CreatePointFont(90, u"No Such Face At All"));
    control.SetFont(&font);
    Read(230.0);
    EXPECT_GT(control.IdealHeight(), 5);
    EXPECT_GT(WindowPicture(control, 1).CountAll(kBlack), 0);
}

TEST_F(ZRValueControlTest, SpeaksItsVariableAndItsValue)
{
    Read(231.5);
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&control);
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->text(QAccessible::Name), QStringLiteral("METER.VOLTAGE"));
    EXPECT_EQ(spoken->text(QAccessible::Value), QStringLiteral("231.50"));
    device.Invalidate(0);
    control.Update();
    EXPECT_EQ(spoken->text(QAccessible::Value), QStringLiteral("-"));
}

TEST_F(ZRValueControlTest, PaintsWhatIsNoUsualNumber)
{
    for (const double value : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::max(), -1e-300}) {
        device.Invalidate(0);
        control.Update();
        Read(value);
        const WindowPicture picture(control, 2);
        EXPECT_EQ(picture.Count({0, 0, 120, 20}, MakeRgb(255, 0, 255)), 0) << value;
    }
}

TEST_F(ZRValueControlTest, PaintsInWindowsWithoutRoom)
{
    Read(280.0);
    for (const QSize size : {QSize(0, 0), QSize(1, 1), QSize(1, 200), QSize(4000, 1)}) {
        control.resize(size);
        for (const int scale : {1, 2}) {
            const WindowPicture picture(control, scale);
            EXPECT_EQ(picture.CountAll(MakeRgb(255, 0, 255)) == 0, !size.isEmpty());
        }
    }
}

TEST_F(ZRValueControlTest, IsFoundByItsNumberInItsView)
{
    EXPECT_EQ(view.GetDlgItem(kControlId), &control);
    EXPECT_EQ(&view.DlgItem<ZRValueControl>(kControlId), &control);
}

}  // namespace
