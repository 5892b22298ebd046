#include "controls/ui/ZRBarValueControl.h"

#include "BarWindowFixture.h"

#include <limits>
#include <QAccessible>
#include <string>

namespace {

using zr::controls::MakeRgb;
using zr::controls::Rect;
using zr::controls::Rgb;
using zr::test::WindowPicture;
using zr::test::Zone;
using zr::test::ZoneOf;

using CountingBar = zr::test::CountingPaints<ZRBarValueControl>;

class ZRBarValueControlTest : public zr::test::BarWindowFixture<CountingBar> {
protected:
    ZRBarValueControlTest()
    {
        parent.resize(700, 100);
        bar.setGeometry(10, 10, 600, 60);
        bar.SetupBar(20, 90);
        bar.SetLabel(u"U1");
        Lock();
        SetLimits();
    }
    Rgb Face() const { return zr::controls::ColoursOf(bar).face; }
    Rgb Caption() const { return zr::controls::ColoursOf(bar).activeCaption; }
};

TEST_F(ZRBarValueControlTest, PaintsTheZonesOfBothRanges)
{
    Read(230, 240, 220);
    for (const QSize size : {QSize(600, 60), QSize(320, 90)}) {
        bar.resize(size);
        for (const int scale : {1, 2}) {
            const WindowPicture picture(bar, scale);
            const Rect rect = bar.Bar().BarRect();
            ASSERT_GT(rect.Width(), 100);
            const int y = (rect.top + rect.bottom) / 2;
            const auto zoneAt = [&](double part) {
                return ZoneOf(picture.At(rect.left + static_cast<int>(part * rect.Width()), y));
            };
            EXPECT_EQ(zoneAt(0.02), Zone::Red);
            EXPECT_EQ(zoneAt(0.20), Zone::Yellow);
            EXPECT_EQ(zoneAt(0.40), Zone::Green);
            EXPECT_EQ(zoneAt(0.60), Zone::Green);
            EXPECT_EQ(zoneAt(0.80), Zone::Yellow);
            EXPECT_EQ(zoneAt(0.98), Zone::Red);
        }
    }
}

TEST_F(ZRBarValueControlTest, ShadesFromBrightToDark)
{
    Read(230, 240, 220);
    const WindowPicture picture(bar, 1);
    const Rect rect = bar.Bar().BarRect();
    const int x = rect.left + rect.Width() * 2 / 5;
    EXPECT_EQ(picture.At(x, rect.top), MakeRgb(0, 240, 60));
    EXPECT_GT(picture.At(x, rect.top) >> 8, picture.At(x, rect.bottom - 1) >> 8);
}

TEST_F(ZRBarValueControlTest, PaintsABlackTickForEachLockedSlot)
{
    Read(230, 240, 220);
    for (const int scale : {1, 2}) {
        const WindowPicture picture(bar, scale);
        const Rect rect = bar.Bar().BarRect();
        for (const int offset : {0, -1}) {
            EXPECT_EQ(picture.At(bar.Bar().MarkerOf(0) + offset, rect.top + 1), 0u);
            EXPECT_EQ(picture.At(bar.Bar().MarkerOf(1) + offset, rect.bottom - 1), 0u);
            EXPECT_EQ(picture.At(bar.Bar().MarkerOf(2) + offset, rect.bottom - 1), 0u);
        }
        EXPECT_NE(picture.At(bar.Bar().MarkerOf(0) + 1, rect.top + 1), 0u);
        EXPECT_NE(picture.At(bar.Bar().MarkerOf(0) - 2, rect.top + 1), 0u);
    }
}

TEST_F(ZRBarValueControlTest, LeavesOutNumberAndTickOfASlotThatCantBeLocked)
{
    bar.SetupVariable(1, u"METER.NOSUCH");
    Read(230, 240, 220);
    const WindowPicture picture(bar, 1);
    EXPECT_TRUE(bar.Bar().Slots()[1].textRect.IsEmpty());
    EXPECT_FALSE(bar.Bar().Slots()[2].textRect.IsEmpty());
    EXPECT_EQ(bar.VarId(1), 0u);
    EXPECT_EQ(bar.VarId(2), 3u);
    EXPECT_TRUE(bar.IsValid());
    bar.SetupVariable(0, u"");
    EXPECT_FALSE(bar.IsValid());
}

TEST_F(ZRBarValueControlTest, PaintsTheBareBarWhenNothingIsLocked)
{
    ZRBarValueControl bare(&parent);
    bare.SetupBar(10, 90);
    bare.SetupChecks(6, 0, 0, 0, 0, 0);
    bare.setGeometry(0, 0, 600, 60);
    bare.Update();
    const WindowPicture picture(bare, 1);
    EXPECT_EQ(picture.At(1, 1), Face());
    EXPECT_EQ(picture.At(599, 59), Face());
    EXPECT_EQ(ZoneOf(picture.At(200, 30)), Zone::Green);
}

TEST_F(ZRBarValueControlTest, RaisesBarHeightAndFontSizeToTheirLeast)
{
    ZRBarValueControl least;
    ZRBarValueControl less;
    least.SetupBar(10, 90);
    less.SetupBar(5, 60);
    EXPECT_GT(least.IdealHeight(), 10 + 6);
    EXPECT_EQ(less.IdealHeight(), least.IdealHeight());
}

TEST_F(ZRBarValueControlTest, ColoursItsLabelCellByThePresentValue)
{
    const Rect cell{0, 20, 30, 40};
    Read(230, 240, 220);
    EXPECT_EQ(WindowPicture(bar, 1).Count(cell, bar.Bar().Colours().yellow), 0);
    Read(255, 240, 220);
    EXPECT_GT(WindowPicture(bar, 1).Count(cell, bar.Bar().Colours().yellow), 50);
    Read(270, 240, 220);
    EXPECT_GT(WindowPicture(bar, 2).Count(cell, bar.Bar().Colours().red), 200);
    device.Invalidate(1);
    device.Invalidate(2);
    bar.Update();
    EXPECT_GT(WindowPicture(bar, 1).Count(cell, bar.Bar().Colours().red), 50);
    device.Invalidate(0);
    bar.Update();
    EXPECT_EQ(WindowPicture(bar, 1).Count(cell, bar.Bar().Colours().red), 0);
}

TEST_F(ZRBarValueControlTest, SelectsTheNumberThatIsClicked)
{
    Read(230, 240, 220);
    for (int slot = 0; slot < 3; ++slot) {
        Click(slot);
        EXPECT_TRUE(bar.Selected(slot));
        const Rect rect = bar.Bar().Slots()[slot].textRect;
        EXPECT_GT(WindowPicture(bar, 1).Count(rect, Caption()), 20);
    }
    Click(1);
    EXPECT_EQ(Selection(), (std::vector<bool>{true, false, true}));
}

TEST_F(ZRBarValueControlTest, SelectsAllThreeAtAShiftClick)
{
    Read(230, 240, 220);
    Click(1);
    Click(0, Qt::ShiftModifier);
    EXPECT_EQ(Selection(), (std::vector<bool>{true, true, true}));
    Click(2, Qt::ShiftModifier);
    EXPECT_EQ(Selection(), (std::vector<bool>{false, false, false}));
}

TEST_F(ZRBarValueControlTest, SelectsNothingBesideTheNumbersOrWhereItIsDisabled)
{
    Read(230, 240, 220);
    QTest::mouseClick(&bar, Qt::LeftButton, {}, QPoint(300, 30));
    EXPECT_EQ(Selection(), (std::vector<bool>{false, false, false}));
    bar.SetEnableSelection(true, false, true);
    Click(1);
    EXPECT_EQ(Selection(), (std::vector<bool>{false, false, false}));
    Click(0, Qt::ShiftModifier);
    EXPECT_EQ(Selection(), (std::vector<bool>{true, false, true}));
    bar.Select(1, true);
    EXPECT_FALSE(bar.Selected(1));
}

TEST_F(ZRBarValueControlTest, TakesNoOtherButtonAndNoReleaseOutside)
{
    bar.SetupChecks(0, 0, 0, 0, 0, 230);
    Read(1000, 240, 220);  // far right of the window, as is its number
    WindowPicture(bar, 1);
    const Rect present = bar.Bar().Slots()[0].textRect;
    ASSERT_GT(present.left, bar.width());
    QTest::mousePress(&bar, Qt::LeftButton, {}, QPoint(300, 30));
    QTest::mouseRelease(&bar, Qt::LeftButton, {}, QPoint(present.left + 2, present.top + 2));
    const Rect high = bar.Bar().Slots()[1].textRect;
    QTest::mouseClick(&bar, Qt::RightButton, {}, QPoint(high.left + 2, high.top + 2));
    EXPECT_EQ(Selection(), (std::vector<bool>{false, false, false}));
}

TEST_F(ZRBarValueControlTest, ShowsTheHandOverSelectableNumbersAndTheArrowElsewhere)
{
    Read(230, 240, 220);
    bar.SetEnableSelection(true, false, true);
    WindowPicture(bar, 1);
    const auto cursorOver = [&](int slot) {
        const Rect rect = bar.Bar().Slots()[slot].textRect;
        zr::test::Hover(bar, QPoint(rect.left + 2, rect.top + 2));
        return bar.cursor().shape();
    };
    EXPECT_EQ(cursorOver(0), Qt::PointingHandCursor);
    EXPECT_EQ(cursorOver(1), Qt::ArrowCursor);
    EXPECT_EQ(cursorOver(2), Qt::PointingHandCursor);
    zr::test::Hover(bar, QPoint(300, 30));
    EXPECT_EQ(bar.cursor().shape(), Qt::ArrowCursor);
    EXPECT_TRUE(bar.testAttribute(Qt::WA_SetCursor));
    bar.SetEnableSelection(false, false, false);
    cursorOver(0);
    EXPECT_FALSE(bar.testAttribute(Qt::WA_SetCursor));
}

TEST_F(ZRBarValueControlTest, RepaintsOnlyWhenAReadingHasChanged)
{
    Show();
    Read(230, 240, 220);
    zr::test::Settle();
    const int before = bar.paints;
    Read(230, 240, 220);
    device.Invalidate(1);
    bar.Update();
    zr::test::Settle();
    EXPECT_EQ(bar.paints, before);
    Read(231, 240, 220);
    zr::test::Settle();
    EXPECT_EQ(bar.paints, before + 1);
}

TEST_F(ZRBarValueControlTest, KeepsThePictureOfTheZonesWhileOnlyValuesMove)
{
    Read(230, 240, 220);
    WindowPicture(bar, 1);
    const auto version = bar.Bar().PictureVersion();
    Read(233, 241, 219);
    WindowPicture(bar, 1);
    EXPECT_EQ(bar.Bar().PictureVersion(), version);
    bar.SetupChecks(2 | 4 | 8, 15, 15, 15, 15, 230);
    WindowPicture(bar, 1);
    EXPECT_NE(bar.Bar().PictureVersion(), version);
}

TEST_F(ZRBarValueControlTest, LeavesNothingOfAnOldNumber)
{
    CountingBar fresh(&parent);
    fresh.setGeometry(bar.geometry());
    fresh.SetupBar(20, 90);
    fresh.SetLabel(u"U1");
    for (int slot = 0; slot < 3; ++slot) {
        fresh.SetupVariable(slot, slot == 0 ? u"METER.NOW" : slot == 1 ? u"METER.HIGH" : u"METER.LOW");
    }
    fresh.SetupChecks(2 | 4 | 8, 10, 15, 10, 15, 230);
    Show();
    for (const double now : {221.0, 251.5, 203.0, 215.0}) {
        Read(now, 252, 202);
        zr::test::Settle();
    }
    fresh.Update();
    EXPECT_EQ(bar.grab().toImage(), fresh.grab().toImage());
}

TEST_F(ZRBarValueControlTest, PlacesPowerFactorsOneAndMinusOneAtTheCentre)
{
    bar.SetupChecks(32, 0.8, 0.7, -0.8, -0.7, 1);
    Read(1.0, -0.99, 0.9);
    WindowPicture(bar, 1);
    const int one = bar.Bar().MarkerOf(0);
    const Rect rect = bar.Bar().BarRect();
    EXPECT_EQ(one, rect.left + rect.Width() / 2);
    Read(-1.0, -0.99, 0.9);
    const WindowPicture picture(bar, 1);
    EXPECT_EQ(bar.Bar().MarkerOf(0), one);
    const int y = (rect.top + rect.bottom) / 2;
    EXPECT_EQ(ZoneOf(picture.At(rect.left + rect.Width() * 9 / 20, y)), Zone::Green);
    EXPECT_EQ(ZoneOf(picture.At(rect.left + rect.Width() / 10, y)), Zone::Red);
    EXPECT_EQ(ZoneOf(picture.At(rect.left + rect.Width() * 9 / 10, y)), Zone::Red);
}

TEST_F(ZRBarValueControlTest, MovesItsFocusByTheArrowsAndSelectsByTheSpaceBar)
{
    Show();
    Read(230, 240, 220);
    bar.setFocus();
    QTest::keyClick(&bar, Qt::Key_Right);
    QTest::keyClick(&bar, Qt::Key_Space);
    EXPECT_EQ(Selection(), (std::vector<bool>{false, true, false}));
    QTest::keyClick(&bar, Qt::Key_Left);
    QTest::keyClick(&bar, Qt::Key_Left);
    QTest::keyClick(&bar, Qt::Key_Space);
    EXPECT_EQ(Selection(), (std::vector<bool>{false, true, true}));
    QTest::keyClick(&bar, Qt::Key_Space, Qt::ShiftModifier);
    EXPECT_EQ(Selection(), (std::vector<bool>{false, false, false}));
    bar.SetEnableSelection(false, false, false);
    EXPECT_EQ(bar.focusPolicy(), Qt::NoFocus);
}

TEST_F(ZRBarValueControlTest, ShowsTheFocusAroundANumber)
{
    Show();
    Read(230, 240, 220);
    const QImage without = WindowPicture(bar, 1).Image();
    QTest::keyClick(&parent, Qt::Key_Tab);
    bar.setFocus(Qt::TabFocusReason);
    EXPECT_NE(WindowPicture(bar, 1).Image(), without);
}

TEST_F(ZRBarValueControlTest, SpeaksItsVariableAndItsValues)
{
    Read(230, 240, 220);
    device.Invalidate(2);
    bar.Update();
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&bar);
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->text(QAccessible::Name), QStringLiteral("METER.NOW"));
    EXPECT_EQ(spoken->text(QAccessible::Value), QStringLiteral("230.00 V; 240.00 V; -"));
}

TEST_F(ZRBarValueControlTest, TakesABooleanAsZeroOrOneAndATextAsNoNumber)
{
    device.Store()->At(0).WriteBoolean(true);
    device.Store()->At(1).WriteText(u"A-17");
    bar.Update();
    EXPECT_EQ(bar.SpokenText(), QStringLiteral("1.00 V; NaN V; -"));
}

TEST_F(ZRBarValueControlTest, PaintsWhiteNumbersOnADarkFace)
{
    zr::test::SetDark(parent);
    Read(230, 240, 220);
    const WindowPicture picture(bar, 1);
    EXPECT_EQ(picture.At(1, 1), MakeRgb(45, 45, 48));
    EXPECT_GT(picture.Count(bar.Bar().Slots()[0].textRect, MakeRgb(255, 255, 255)), 0);
}

TEST_F(ZRBarValueControlTest, PaintsWhatIsNoUsualNumberAndLimitsInAnyOrder)
{
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const int flags : {0, 2, 4, 6, 8, 14, 32, 38, 40}) {
        for (const double limit : {0.0, 230.0, -5.0, kNan, kInfinity}) {
            bar.SetupChecks(flags, limit, 10, 20, limit, 230);
            for (const double value : {kNan, kInfinity, -kInfinity, 1e308, -1e308, 0.0}) {
                device.InvalidateAll();
                bar.Update();
                Read(value, -value, value / 2);
                const WindowPicture picture(bar, 1);
                EXPECT_EQ(picture.CountAll(MakeRgb(255, 0, 255)), 0);
            }
        }
    }
}

TEST_F(ZRBarValueControlTest, PaintsAnEmptyAndAVeryLongLabel)
{
    Read(230, 240, 220);
    const std::u16string longLabel(5000, u'W');
    for (const wchar* label : {u"", longLabel.c_str(), static_cast<const wchar*>(nullptr)}) {
        bar.SetLabel(label);
        const WindowPicture picture(bar, 1);
        const Rect rect = bar.Bar().BarRect();
        EXPECT_EQ(ZoneOf(picture.At(rect.left + rect.Width() * 2 / 5, rect.top + 5)), Zone::Green);
    }
}

TEST_F(ZRBarValueControlTest, PaintsInWindowsWithoutRoom)
{
    Read(230, 240, 220);
    for (const QSize size : {QSize(0, 0), QSize(1, 1), QSize(1, 300), QSize(600, 1), QSize(40, 40), QSize(90, 30)}) {
        bar.resize(size);
        for (const int scale : {1, 2}) {
            const WindowPicture picture(bar, scale);
            EXPECT_EQ(picture.CountAll(MakeRgb(255, 0, 255)) == 0, !size.isEmpty());
        }
    }
}

}  // namespace
