// Events as they come, in any order: nothing crashes, and what must always hold does.
#include "DebugBarFixture.h"

#include <QContextMenuEvent>
#include <QWheelEvent>
#include <random>

namespace {

using namespace zr;
using namespace zr::ui;
using namespace zr::test;

constexpr int kEvents = 10000;
constexpr unsigned kSeed = 20261121;

class DebugBarRandomEventsTest : public DebugBarFixture {
protected:
    int Number(int below) { return static_cast<int>(m_random() % static_cast<unsigned>(below)); }
    QPoint Point() { return {Number(frame.width() + 40) - 20, Number(frame.height() + 40) - 20}; }
    // Whoever is at a point of the frame or of the floating bar.
    QWidget& Someone()
    {
        QWidget& window = bar.IsFloating() && Number(2) == 0 ? static_cast<QWidget&>(bar) : frame;
        QWidget* const child = window.childAt(Number(window.width()), Number(window.height()));
        return child != nullptr ? *child : window;
    }

    void Mouse()
    {
        constexpr QEvent::Type kTypes[] = {QEvent::MouseMove, QEvent::MouseMove, QEvent::MouseButtonPress,
                                           QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick};
        constexpr Qt::MouseButton kButtons[] = {Qt::LeftButton, Qt::LeftButton, Qt::RightButton, Qt::MiddleButton};
        QWidget* const grabber = QWidget::mouseGrabber();
        QWidget& target = grabber != nullptr && Number(4) != 0 ? *grabber : Someone();
        const QEvent::Type type = kTypes[Number(5)];
        const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : kButtons[Number(4)];
        const Qt::MouseButtons held = Number(2) == 0 ? Qt::LeftButton : Qt::NoButton;
        const QPoint point(Number(target.width() + 10) - 5, Number(target.height() + 10) - 5);
        QMouseEvent event(type, point, target.mapToGlobal(point), button, held, Qt::NoModifier);
        QApplication::sendEvent(&target, &event);
    }
    void EdgeDrag()
    {
        const QPoint edge(Number(bar.width()), Number(2) == 0 ? Number(8) : bar.height() - Number(8));
        Press(edge);
        for (int i = Number(4); i > 0; --i) {
            Move(edge + QPoint(Number(21) - 10, Number(401) - 200));
        }
        if (Number(8) != 0) {
            Release(edge + QPoint(0, Number(401) - 200));
        }
    }
    void Key()
    {
        constexpr Qt::Key kKeys[] = {Qt::Key_Up,    Qt::Key_Down, Qt::Key_Home,   Qt::Key_End, Qt::Key_PageUp,
                                     Qt::Key_Space, Qt::Key_Tab,  Qt::Key_Escape, Qt::Key_A,   Qt::Key_Return};
        QKeyEvent press(QEvent::KeyPress, kKeys[Number(10)], Qt::NoModifier);
        QApplication::sendEvent(&Someone(), &press);
    }
    void Wheel()
    {
        QWidget& target = Someone();
        const QPoint centre = target.rect().center();
        QWheelEvent event(centre, target.mapToGlobal(centre), {}, QPoint(0, Number(481) - 240), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&target, &event);
    }
    void Place()
    {
        constexpr unsigned kSides[] = {AFX_IDW_DOCKBAR_TOP, AFX_IDW_DOCKBAR_BOTTOM, AFX_IDW_DOCKBAR_LEFT,
                                       AFX_IDW_DOCKBAR_RIGHT};
        switch (Number(6)) {
            case 0:
                frame.FloatControlBar(&bar, Point());
                break;
            case 1:
                frame.ShowControlBar(&bar, Number(2) == 0);
                break;
            default:
                frame.DockControlBar(&bar, kSides[Number(4)]);
                break;
        }
    }
    void Size()
    {
        QWidget& window = bar.IsFloating() && Number(2) == 0 ? static_cast<QWidget&>(bar) : frame;
        window.resize(Number(1200), Number(900));
    }
    void Content()
    {
        if (Number(5) == 0) {
            warnings.Invalidate();
        }
        Warn(Number(30));
        bar.UpdateWarningList();
        if (Number(2) == 0) {
            bar.SelectFirstWarning();
        }
        if (Number(2) == 0) {
            bar.Layout();
        }
    }
    void State()
    {
        if (Number(2) == 0) {
            bar.SaveState(u"random");
            return;
        }
        application.WriteProfileInt(u"random-SCBar-1300", u"sizeHorzCY", static_cast<int>(m_random()));
        application.WriteProfileInt(u"random-SCBar-1300", u"sizeFloatCX", static_cast<int>(m_random()));
        bar.LoadState(u"random");
    }
    void Lose()
    {
        QEvent event(Number(2) == 0 ? QEvent::WindowDeactivate : QEvent::UngrabMouse);
        QApplication::sendEvent(&bar, &event);
    }
    void Any()
    {
        const int kind = Number(100);
        if (kind < 45) {
            Mouse();
        } else if (kind < 60) {
            EdgeDrag();
        } else if (kind < 70) {
            Key();
        } else if (kind < 75) {
            Wheel();
        } else if (kind < 82) {
            Place();
        } else if (kind < 90) {
            Size();
        } else if (kind < 95) {
            Content();
        } else if (kind < 96) {
            State();
        } else {
            Lose();
        }
    }

    std::mt19937 m_random{kSeed};
};

TEST_F(DebugBarRandomEventsTest, SurvivesTenThousandEventsAndStaysInItsFrame)
{
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    for (int i = 0; i < kEvents; ++i) {
        Any();
        if (i % 16 == 0) {
            QApplication::processEvents();
        }
        if (!bar.IsVisible() && Number(10) == 0) {
            frame.ShowControlBar(&bar, true);
        }
    }
    Lose();
    frame.resize(800, 600);
    frame.DockControlBar(&bar, AFX_IDW_DOCKBAR_BOTTOM);
    QApplication::processEvents();
    frame.messages.clear();
    // Still a bar: in its frame, no higher than half of it, and its edge can be dragged.
    EXPECT_TRUE(frame.rect().contains(bar.geometry()));
    const int client = frame.GetClientRect().height();
    EXPECT_LE(bar.height(), client - client / 2);
    Press(QPoint(100, 1));
    Release(QPoint(100, 600));
    EXPECT_THAT(frame.messages, ::testing::ElementsAre(Message{1476, 0, 0}, Message{1476, 1, 0}));
    EXPECT_LT(bar.height(), 60);
}

}  // namespace
