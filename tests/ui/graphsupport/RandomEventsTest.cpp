// Ten thousand seeded events on a graph, in any order: none may crash or hang it.
#include "ui/graphsupport/GraphFixture.h"

#include <random>

namespace zr::graph {
namespace {

constexpr int kEvents = 10'000;

class RandomEventsTest : public GraphFixture {
protected:
    int Below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(random); }
    bool Coin() { return Below(2) == 0; }
    QPoint Anywhere() { return {Below(graph->width() + 40) - 20, Below(graph->height() + 40) - 20}; }

    void MouseEvent()
    {
        const auto modifiers = Below(4) == 0 ? Qt::ShiftModifier : Qt::NoModifier;
        const auto button = Below(6) == 0 ? Qt::RightButton : Qt::LeftButton;
        switch (Below(6)) {
            case 0:
                Mouse(QEvent::MouseButtonPress, Anywhere(), button, button, modifiers);
                break;
            case 1:
                Mouse(QEvent::MouseButtonRelease, Anywhere(), button, Qt::NoButton, modifiers);
                break;
            case 2:
                DragTo(Anywhere());
                break;
            case 3:
                Mouse(QEvent::MouseButtonDblClick, Anywhere(), button, button, modifiers);
                break;
            case 4:
                Leave();
                break;
            default:
                Hover(Anywhere());
        }
    }
    void KeyEvent()
    {
        constexpr Qt::Key kKeys[] = {
            Qt::Key_Left, Qt::Key_Right,  Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Plus,      Qt::Key_Minus,
            Qt::Key_Home, Qt::Key_Escape, Qt::Key_M,      Qt::Key_Delete,   Qt::Key_Backspace, Qt::Key_1,
            Qt::Key_2,    Qt::Key_3,      Qt::Key_Z,      Qt::Key_Tab,      Qt::Key_Return,    Qt::Key_0};
        constexpr Qt::KeyboardModifier kModifiers[] = {Qt::NoModifier, Qt::NoModifier, Qt::ShiftModifier,
                                                       Qt::ControlModifier};
        Key(kKeys[Below(static_cast<int>(std::size(kKeys)))], kModifiers[Below(4)]);
    }
    void WindowEvent()
    {
        switch (Below(6)) {
            case 0:
                parent.resize(Below(900), Below(700));
                break;
            case 1:
                graph->resize(Below(4), Below(4));
                break;
            case 2:
                graph->setEnabled(Below(4) != 0);
                break;
            case 3:
                graph->setPalette(QPalette(Coin() ? Qt::darkGray : Qt::lightGray));
                break;
            case 4:
                graph->setVisible(Below(4) != 0);
                break;
            default:
                GraphPicture(*graph, 1 + Below(2));
        }
    }
    void Operation()
    {
        switch (Below(8)) {
            case 0:
                graph->SetMode(Below(5) - 1);
                break;
            case 1:
                graph->mode = Below(3);
                break;
            case 2:
                graph->UndoZoom();
                break;
            case 3:
                graph->UndoLastZoom(false);
                break;
            case 4:
                graph->Regenerate(nullptr, true);
                break;
            case 5:
                if (Below(30) == 0) {
                    graph->CopyToClipboard(Coin());
                }
                break;
            case 6:
                QApplication::processEvents();
                break;
            default:
                EXPECT_GE(graph->RecordsPerColumn(), 0.0);
        }
    }
    // As a load does it: the old records go before the new ones come.
    void Replace()
    {
        graph->invalidData = true;
        if (Coin()) {
            loaded.reset();
        }
        for (int i = 0; i < 5; ++i) {
            Event();
        }
        std::vector<Drawn> curves;
        constexpr const wchar* kNames[] = {u"G.U", u"G.V", u"G.E", u"G.S", u"G.PF", u"G.NONE"};
        for (int i = Below(9); i > 0; --i) {
            curves.push_back({kNames[Below(6)], Below(8), kRed, Below(3) == 0 ? 220.0 : kNoLimit,
                              Below(3) == 0 ? 240.0 : kNoLimit, 1 + Below(9), static_cast<unsigned>(Below(5))});
        }
        Draw(curves, Coin() ? kHour : logger::kEveryRecord);
        graph->invalidData = false;
    }
    void Event()
    {
        switch (Below(6)) {
            case 0:
            case 1:
                MouseEvent();
                break;
            case 2:
                Turn(Anywhere(), QPoint(Below(3) == 0 ? Below(480) - 240 : 0, Below(960) - 480),
                     Below(4) == 0 ? Qt::ShiftModifier : Qt::NoModifier);
                break;
            case 3:
                KeyEvent();
                break;
            case 4:
                WindowEvent();
                break;
            default:
                Operation();
        }
    }

    std::mt19937 random{20021230};
};

TEST_F(RandomEventsTest, DoNotCrashAGraph)
{
    RecordRise();
    RecordDay(u"G.V", [](int minute) { return minute % 7 == 0 ? kMissing : 1e6 * std::sin(minute); });
    RecordDay(u"G.E", [](int minute) { return minute * 2.5; });
    RecordEvery(3600, u"G.S", {0, 1, 2, 1, 0, 5, 5, 1e300, -1e300});
    RecordDay(u"G.PF", [](int minute) { return std::cos(minute / 100.0); });
    Draw({{u"G.U"}, {u"G.E", 1}});
    for (int i = 0; i < kEvents; ++i) {
        if (Below(100) == 0) {
            Replace();
        } else {
            Event();
        }
        ASSERT_TRUE(graph->mode >= 0 && graph->mode <= 2);
    }
}

}  // namespace
}  // namespace zr::graph
