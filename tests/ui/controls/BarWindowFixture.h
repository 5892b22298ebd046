// A device with a voltage and its marks, and how the colours of a bar are told apart.
#pragma once

#include "controls/DrawList.h"
#include "support/LiveDevice.h"
#include "WindowPicture.h"

#include <gtest/gtest.h>
#include <QTest>
#include <QWidget>
#include <vector>

namespace zr::test {

enum class Zone { Green, Yellow, Red, Grey, Other };

// The shading changes how bright a zone is, not its hue.
inline Zone ZoneOf(controls::Rgb colour)
{
    const int red = static_cast<int>(colour >> 16 & 0xff);
    const int green = static_cast<int>(colour >> 8 & 0xff);
    const int blue = static_cast<int>(colour & 0xff);
    if (green > 2 * red && green > 2 * blue) {
        return Zone::Green;
    }
    if (red > 2 * green && red > 2 * blue) {
        return Zone::Red;
    }
    if (red > 2 * blue && green > 2 * blue) {
        return Zone::Yellow;
    }
    return red == green && green == blue ? Zone::Grey : Zone::Other;
}

// A bar that counts how often it is painted, and shows what it decides by.
template <typename Window>
class CountingPaints : public Window {
public:
    using Window::Bar;
    using Window::Window;
    int paints = 0;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        ++paints;
        Window::paintEvent(event);
    }
};

// Shows a bar of the variables METER.NOW, METER.HIGH and METER.LOW. Bar has the operations of the bar under test as
// public ones, and counts its paints.
template <typename Bar>
class BarWindowFixture : public ::testing::Test {
protected:
    BarWindowFixture() : bar(&parent) {}

    void Lock()
    {
        bar.SetupVariable(0, u"METER.NOW");
        bar.SetupVariable(1, u"METER.HIGH");
        bar.SetupVariable(2, u"METER.LOW");
    }
    // Limits at 10 and 15 % of 230 V.
    void SetLimits() { bar.SetupChecks(2 | 4 | 8, 10, 15, 10, 15, 230); }
    void Read(double now, double high, double low)
    {
        device.Write(0, now);
        device.Write(1, high);
        device.Write(2, low);
        bar.Update();
    }
    void Show()
    {
        parent.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&parent));
        Settle();
    }
    // Clicks into the middle of a number, as last painted.
    void Click(int slot, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        WindowPicture(bar, 1);
        const controls::Rect rect = bar.Bar().Slots()[slot].textRect;
        ASSERT_FALSE(rect.IsEmpty()) << slot;
        QTest::mouseClick(&bar, Qt::LeftButton, modifiers,
                          QPoint((rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2));
    }
    std::vector<bool> Selection() const { return {bar.Selected(0), bar.Selected(1), bar.Selected(2)}; }

    LiveDevice device{u"METER", {Variable(u"NOW"), Variable(u"HIGH"), Variable(u"LOW"), Variable(u"OTHER")}};
    QWidget parent;
    Bar bar;
};

}  // namespace zr::test
