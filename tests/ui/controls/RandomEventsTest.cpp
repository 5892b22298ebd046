// Ten thousand seeded events on each control, in any order: none may crash or hang it.
#include "BarWindowFixture.h"
#include "controls/ui/ZRBarValueControl.h"
#include "controls/ui/ZRValueControl.h"
#include "controls/ui/ZRVerticalBarValueControl.h"

#include <limits>
#include <random>

namespace {

constexpr int kEvents = 10'000;

class RandomEventsTest : public ::testing::Test {
protected:
    int Below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(random); }
    bool Coin() { return Below(2) == 0; }
    double Number()
    {
        constexpr double kOdd[] = {std::numeric_limits<double>::quiet_NaN(),
                                   std::numeric_limits<double>::infinity(),
                                   -std::numeric_limits<double>::infinity(),
                                   std::numeric_limits<double>::max(),
                                   std::numeric_limits<double>::denorm_min(),
                                   4294967295.0,
                                   0.0,
                                   -1.0};
        return Below(4) == 0 ? kOdd[Below(8)] : std::uniform_real_distribution<double>(-300.0, 300.0)(random);
    }
    void MouseEvent(QWidget& control)
    {
        const QPoint point(Below(control.width() + 20) - 10, Below(control.height() + 20) - 10);
        const auto modifiers = Coin() ? Qt::ShiftModifier : Qt::NoModifier;
        const auto button = Below(4) == 0 ? Qt::RightButton : Qt::LeftButton;
        switch (Below(4)) {
            case 0:
                zr::test::Hover(control, point);
                break;
            case 1:
                QTest::mousePress(&control, button, modifiers, point);
                break;
            case 2:
                QTest::mouseRelease(&control, button, modifiers, point);
                break;
            default:
                QTest::mouseClick(&control, button, modifiers, point);
        }
    }
    void WindowEvent(QWidget& control)
    {
        switch (Below(5)) {
            case 0:
                control.resize(Below(500), Below(400));
                break;
            case 1:
                control.resize(Below(4), Below(4));
                break;
            case 2:
                control.setEnabled(Below(4) != 0);
                break;
            case 3:
                control.setPalette(Coin() ? QPalette(Qt::darkGray) : QPalette(Qt::lightGray));
                break;
            default:
                zr::test::WindowPicture(control, 1 + Below(2));
        }
    }
    void Key(QWidget& control)
    {
        constexpr Qt::Key kKeys[] = {Qt::Key_Space, Qt::Key_Left, Qt::Key_Right, Qt::Key_Up,
                                     Qt::Key_Down,  Qt::Key_Tab,  Qt::Key_A,     Qt::Key_Escape};
        QTest::keyClick(&control, kKeys[Below(8)], Coin() ? Qt::ShiftModifier : Qt::NoModifier);
    }
    void WriteValue()
    {
        const auto index = static_cast<std::size_t>(Below(3));
        if (Below(5) == 0) {
            device.Invalidate(index);
        } else {
            device.Write(index, Number());
        }
    }
    const wchar* Name()
    {
        constexpr const wchar* kNames[] = {u"METER.NOW", u"METER.HIGH", u"METER.LOW", u"METER.NOSUCH", u""};
        return kNames[Below(5)];
    }

    // One event of those that every control takes.
    template <typename Control>
    void CommonEvent(Control& control)
    {
        switch (Below(8)) {
            case 0:
                MouseEvent(control);
                break;
            case 1:
                WindowEvent(control);
                break;
            case 2:
                Key(control);
                break;
            case 3:
                control.SetupChecks(Below(64), Number(), Number(), Number(), Number(), Number());
                break;
            case 4:
                zr::test::Settle();
                break;
            default:
                WriteValue();
                control.Update();
        }
    }
    template <typename Bar>
    void BarEvent(Bar& bar)
    {
        switch (Below(8)) {
            case 0:
                bar.SetEnableSelection(Coin(), Coin(), Coin());
                break;
            case 1:
                bar.Select(Below(5) - 1, Coin());
                break;
            case 2:
                bar.SetupVariable(Below(5) - 1, Name());
                break;
            case 3:
                bar.SetLabel(Coin() ? u"Voltage between phases" : u"");
                break;
            default:
                CommonEvent(bar);
        }
    }

    std::mt19937 random{20240613};
    zr::test::LiveDevice device{
        u"METER", {zr::test::Variable(u"NOW"), zr::test::Variable(u"HIGH"), zr::test::Variable(u"LOW", 2, 0, 300)}};
    QWidget parent;
};

TEST_F(RandomEventsTest, DoNotCrashANumericControl)
{
    ZRValueControl control(&parent);
    parent.show();
    for (int i = 0; i < kEvents; ++i) {
        switch (Below(12)) {
            case 0:
                control.SetDigital(Coin());
                break;
            case 1:
                control.SetEnableSelection(Coin());
                break;
            case 2:
                control.SetupVariable(Name(), 1 << Below(9));
                break;
            default:
                CommonEvent(control);
        }
        ASSERT_TRUE(control.Reading().SelectionEnabled() || control.focusPolicy() == Qt::NoFocus);
    }
}

TEST_F(RandomEventsTest, DoNotCrashAHorizontalBar)
{
    ZRBarValueControl bar(&parent);
    parent.show();
    for (int i = 0; i < kEvents; ++i) {
        if (Below(12) == 0) {
            bar.SetupBar(Below(60), Below(300));
        } else {
            BarEvent(bar);
        }
        ASSERT_GE(bar.IdealHeight(), 0);
    }
}

TEST_F(RandomEventsTest, DoNotCrashAVerticalBar)
{
    ZRVerticalBarValueControl bar(&parent);
    parent.show();
    for (int i = 0; i < kEvents; ++i) {
        switch (Below(16)) {
            case 0:
                bar.SetupBar(Below(16), Below(60), Below(300));
                break;
            case 1:
                bar.SetInstValue(Number());
                break;
            case 2:
                bar.SetupLimits(u"V", Number(), Number(), Number(), Number(), Below(5), Below(5), Below(5), Below(5));
                break;
            case 3:
                bar.SetLabelInfo(Coin() ? u"yesterday" : u"");
                break;
            default:
                BarEvent(bar);
        }
        ASSERT_GE(bar.IdealHeight(), 0);
    }
}

}  // namespace
