#include "controls/ui/ZRVerticalBarValueControl.h"

#include "BarWindowFixture.h"

#include <limits>
#include <string>

namespace {

using zr::controls::MakeRgb;
using zr::controls::Rect;
using zr::controls::Rgb;
using zr::test::WindowPicture;
using zr::test::Zone;
using zr::test::ZoneOf;

constexpr int kEverything = 1 | 2 | 4 | 8;

using CountingBar = zr::test::CountingPaints<ZRVerticalBarValueControl>;

class ZRVerticalBarValueControlTest : public zr::test::BarWindowFixture<CountingBar> {
protected:
    ZRVerticalBarValueControlTest()
    {
        parent.resize(300, 340);
        bar.setGeometry(10, 10, 220, 300);
        bar.SetupBar(kEverything, 200, 90);
        bar.SetLabel(u"Voltage L1");
        bar.SetLabelInfo(u"12:30");
        bar.SetupLimits(u"V", 207, 195.5, 253, 264.5, 0, 1, 0, 1);
        Lock();
        SetLimits();
    }
    Rgb Face() const { return zr::controls::ColoursOf(bar).face; }
    // Ink in the rectangle: pixels that aren't the face.
    int Ink(const Rect& rect, int scale = 1)
    {
        const WindowPicture picture(bar, scale);
        return picture.Area(rect) - picture.Count(rect, Face());
    }
    Rect BelowTheBar() const { return {0, bar.Bar().BarRect().bottom + 3, bar.width(), bar.height()}; }
    Rect AboveTheBar() const { return {0, 0, bar.width(), bar.Bar().BarRect().top - 3}; }
};

TEST_F(ZRVerticalBarValueControlTest, PaintsTheZonesFromBelowToAbove)
{
    Read(230, 240, 220);
    for (const QSize size : {QSize(220, 300), QSize(400, 200)}) {
        bar.resize(size);
        for (const int scale : {1, 2}) {
            const WindowPicture picture(bar, scale);
            const Rect rect = bar.Bar().BarRect();
            ASSERT_EQ(rect.left, static_cast<int>(0.35 * size.width()));
            ASSERT_EQ(rect.right, size.width() - static_cast<int>(0.55 * size.width()));
            const auto zoneAt = [&](double part) {
                return ZoneOf(
                    picture.At((rect.left + rect.right) / 2, rect.top + static_cast<int>(part * rect.Height())));
            };
            EXPECT_EQ(zoneAt(0.02), Zone::Red);
            EXPECT_EQ(zoneAt(0.20), Zone::Yellow);
            EXPECT_EQ(zoneAt(0.40), Zone::Green);
            EXPECT_EQ(zoneAt(0.60), Zone::Green);
            EXPECT_EQ(zoneAt(0.80), Zone::Yellow);
            EXPECT_EQ(zoneAt(0.97), Zone::Red);
        }
    }
}

TEST_F(ZRVerticalBarValueControlTest, ShadesFromLeftToRight)
{
    Read(230, 240, 220);
    const WindowPicture picture(bar, 1);
    const Rect rect = bar.Bar().BarRect();
    const int y = rect.top + rect.Height() * 2 / 5;
    EXPECT_EQ(picture.At(rect.left, y), MakeRgb(0, 240, 60));
    EXPECT_GT(picture.At(rect.left, y) >> 8, picture.At(rect.right - 1, y) >> 8);
}

TEST_F(ZRVerticalBarValueControlTest, PlacesThePresentNumberRightOfTheBarAndTheMarksLeft)
{
    Read(230, 240, 220);
    const WindowPicture picture(bar, 1);
    const Rect rect = bar.Bar().BarRect();
    const auto& numbers = bar.Bar().Slots();
    EXPECT_EQ(numbers[0].textRect.left, rect.right + 2 + 3);
    EXPECT_EQ(numbers[1].textRect.right, rect.left - 2 - 3);
    EXPECT_EQ(numbers[2].textRect.right, rect.left - 2 - 3);
    EXPECT_LT(numbers[1].textRect.top, numbers[2].textRect.top);
    for (int slot = 0; slot < 3; ++slot) {
        EXPECT_GT(picture.Count(numbers[slot].textRect, 0u), 0) << slot;
    }
}

TEST_F(ZRVerticalBarValueControlTest, ShowsUnitsOnlyWhenAsked)
{
    Read(230, 240, 220);
    WindowPicture(bar, 1);
    const int with = bar.Bar().Slots()[1].textRect.Width();
    bar.SetupBar(kEverything & ~4, 200, 90);
    WindowPicture(bar, 1);
    EXPECT_LT(bar.Bar().Slots()[1].textRect.Width(), with);
}

TEST_F(ZRVerticalBarValueControlTest, ShowsItsLabelOnlyWhenAsked)
{
    Read(230, 240, 220);
    WindowPicture(bar, 1);
    EXPECT_GT(Ink(AboveTheBar()), 0);
    const int top = bar.Bar().BarRect().top;
    bar.SetupBar(0, 200, 90);
    WindowPicture(bar, 1);
    EXPECT_LT(bar.Bar().BarRect().top, top);
}

TEST_F(ZRVerticalBarValueControlTest, ShowsTheLowerLabelWhileAValueIsSetFromOutside)
{
    Read(230, 240, 220);
    WindowPicture(bar, 1);
    EXPECT_EQ(Ink(BelowTheBar()), 0);
    bar.SetInstValue(225);
    EXPECT_GT(Ink(BelowTheBar()), 0);
    EXPECT_EQ(bar.Bar().Slots()[0].value, 225);
    bar.Update();
    EXPECT_EQ(Ink(BelowTheBar()), 0);
    EXPECT_EQ(bar.Bar().Slots()[0].value, 230);
}

TEST_F(ZRVerticalBarValueControlTest, RepaintsNothingForTheSameValueFromOutside)
{
    Show();
    Read(230, 240, 220);
    zr::test::Settle();
    const int before = bar.paints;
    bar.SetInstValue(230);
    zr::test::Settle();
    EXPECT_EQ(bar.paints, before);
    // The lower label shows at the next paint that another cause brings about.
    EXPECT_GT(Ink(BelowTheBar()), 0);
    const int afterwards = bar.paints;
    bar.SetInstValue(231);
    zr::test::Settle();
    EXPECT_EQ(bar.paints, afterwards + 1);
}

TEST_F(ZRVerticalBarValueControlTest, GreysItsZonesAndKeepsNumbersAndMarkersWhenDisabledByItsDevice)
{
    Read(230, 240, 220);
    bar.Disable();
    const WindowPicture picture(bar, 1);
    const Rect rect = bar.Bar().BarRect();
    for (const double part : {0.02, 0.20, 0.40, 0.60, 0.80, 0.97}) {
        const int y = rect.top + static_cast<int>(part * rect.Height());
        EXPECT_EQ(ZoneOf(picture.At(rect.left + 3, y)), Zone::Grey);
    }
    EXPECT_GT(picture.Count(bar.Bar().Slots()[0].textRect, 0u), 0);
    EXPECT_EQ(picture.At(rect.left + 1, bar.Bar().MarkerOf(0)), 0u);
}

TEST_F(ZRVerticalBarValueControlTest, ShowsTheBareBarWhileTheWindowIsDisabled)
{
    Read(230, 240, 220);
    bar.setEnabled(false);
    WindowPicture(bar, 1);
    const Rect rect = bar.Bar().BarRect();
    EXPECT_EQ(Ink({0, 0, rect.left - 2, bar.height()}), 0);
    EXPECT_EQ(Ink({rect.right + 2, 0, bar.width(), bar.height()}), 0);
    EXPECT_EQ(ZoneOf(WindowPicture(bar, 1).At(rect.left + 3, rect.top + rect.Height() * 2 / 5)), Zone::Green);
}

TEST_F(ZRVerticalBarValueControlTest, ShowsAnArrowForAValueBelowTheUpperRangeAlone)
{
    bar.SetupChecks(2, 0, 0, 253, 264.5, 230);
    Read(100, 240, 220);
    WindowPicture(bar, 1);
    const Rect rect = bar.Bar().BarRect();
    EXPECT_FALSE(bar.Bar().IsOnScale());
    EXPECT_EQ(bar.Bar().MarkerOf(0), rect.bottom - 10);
    const int y = bar.Bar().MarkerOf(0);
    for (const int scale : {1, 2}) {
        EXPECT_EQ(WindowPicture(bar, scale).At(rect.right + 2 + 6, y + 5), 0u);
    }
}

TEST_F(ZRVerticalBarValueControlTest, TicksEachLimitBesideTheBar)
{
    Read(230, 248, 212);
    const WindowPicture picture(bar, 1);
    const Rect rect = bar.Bar().BarRect();
    int ticks = 0;
    for (int y = rect.top - 2; y < rect.bottom + 2; ++y) {
        ticks += picture.At(rect.left - 4, y) == 0u ? 1 : 0;
    }
    // Four limits and two marks, two rows each.
    EXPECT_EQ(ticks, 12);
    bar.SetupBar(kEverything & ~2, 200, 90);
    const WindowPicture without(bar, 1);
    ticks = 0;
    for (int y = rect.top - 2; y < rect.bottom + 2; ++y) {
        ticks += without.At(rect.left - 4, y) == 0u ? 1 : 0;
    }
    EXPECT_EQ(ticks, 4);
}

TEST_F(ZRVerticalBarValueControlTest, CopiesTheFontItIsGiven)
{
    Read(230, 240, 220);
    WindowPicture(bar, 1);
    const int narrow = bar.Bar().Slots()[0].textRect.Width();
    {
        CFont font;
        font.CreatePointFont(140, u"DejaVu Sans");
        bar.SetFont(&font);
        font.CreatePointFont(60, u"DejaVu Sans");
    }
    WindowPicture(bar, 1);
    EXPECT_GT(bar.Bar().Slots()[0].textRect.Width(), narrow * 5 / 4);
    bar.SetFont(nullptr);
    WindowPicture(bar, 1);
    EXPECT_GT(bar.Bar().Slots()[0].textRect.Width(), narrow * 5 / 4);
}

TEST_F(ZRVerticalBarValueControlTest, SelectsByClicksAsTheHorizontalBarDoes)
{
    Read(230, 240, 220);
    Click(0);
    EXPECT_EQ(Selection(), (std::vector<bool>{true, false, false}));
    Click(2, Qt::ShiftModifier);
    EXPECT_EQ(Selection(), (std::vector<bool>{true, true, true}));
    Click(1, Qt::ShiftModifier);
    EXPECT_EQ(Selection(), (std::vector<bool>{false, false, false}));
}

TEST_F(ZRVerticalBarValueControlTest, TakesNoBecomingValidForAChange)
{
    Show();
    Read(230, 240, 220);
    device.Invalidate(0);
    bar.Update();
    zr::test::Settle();
    const int before = bar.paints;
    Read(230, 240, 220);
    zr::test::Settle();
    EXPECT_EQ(bar.paints, before);
}

TEST_F(ZRVerticalBarValueControlTest, PaintsWhiteTextOnADarkFace)
{
    zr::test::SetDark(parent);
    Read(230, 240, 220);
    bar.SetInstValue(225);
    const WindowPicture picture(bar, 1);
    constexpr Rgb kWhite = MakeRgb(255, 255, 255);
    EXPECT_GT(picture.Count(bar.Bar().Slots()[0].textRect, kWhite), 0);
    EXPECT_GT(picture.Count(BelowTheBar(), kWhite), 0);
}

TEST_F(ZRVerticalBarValueControlTest, PaintsWhatIsNoUsualNumberAndLimitsInAnyOrder)
{
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const int flags : {0, 2, 4, 6, 8, 14, 32, 38}) {
        for (const double limit : {0.0, 230.0, -5.0, kNan, kInfinity}) {
            bar.SetupChecks(flags, limit, 10, 20, limit, 230);
            bar.SetupLimits(u"V", limit, 10, 20, limit, 0, 99, -3, 2);
            for (const double value : {kNan, kInfinity, -kInfinity, 1e308, -1e308, 0.0}) {
                Read(value, -value, value / 2);
                bar.SetInstValue(value);
                const WindowPicture picture(bar, 1);
                EXPECT_EQ(picture.CountAll(MakeRgb(255, 0, 255)), 0);
            }
        }
    }
}

TEST_F(ZRVerticalBarValueControlTest, PaintsVeryLongLabelsAndWindowsWithoutRoom)
{
    const std::u16string longLabel(5000, u'W');
    bar.SetLabel(longLabel.c_str());
    bar.SetLabelInfo(longLabel.c_str());
    bar.SetupLimits(longLabel.c_str(), 207, 195.5, 253, 264.5, 0, 1, 0, 1);
    Read(230, 240, 220);
    for (const QSize size : {QSize(220, 300), QSize(0, 0), QSize(1, 1), QSize(1, 300), QSize(600, 1), QSize(40, 40)}) {
        bar.resize(size);
        for (const int scale : {1, 2}) {
            bar.SetInstValue(size.width());
            const WindowPicture picture(bar, scale);
            EXPECT_EQ(picture.CountAll(MakeRgb(255, 0, 255)) == 0, !size.isEmpty());
        }
    }
}

}  // namespace
