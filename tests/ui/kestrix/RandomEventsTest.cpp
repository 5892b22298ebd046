#include "DesktopFixture.h"
#include "dialogs/ui/CGoToDateDlg.h"
#include "dialogs/ui/CPasswordDlg.h"
#include "hosts/kestrix/ui/PageSetupDlg.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QTest>
#include <QTimer>
#include <random>

namespace zr::desktop {
namespace {

constexpr int kEvents = 10000;

// Throws events at whatever lies below the window, and takes away what pops up.
class Monkey {
public:
    explicit Monkey(unsigned seed) : m_random(seed) {}

    void Poke(QWidget& window)
    {
        const QPoint place(Below(std::max(window.width(), 1)), Below(std::max(window.height(), 1)));
        QWidget* const target = window.childAt(place) != nullptr ? window.childAt(place) : &window;
        const QPoint local = target->mapFrom(&window, place);
        switch (Below(8)) {
            case 0:
            case 1:
                QTest::mouseClick(target, Qt::LeftButton, Modifiers(), local);
                break;
            case 2:
                QTest::mouseMove(target, local);
                break;
            case 3:
                QTest::mousePress(target, Qt::LeftButton, Modifiers(), local);
                QTest::mouseMove(target, local + QPoint(Below(80) - 40, Below(80) - 40));
                QTest::mouseRelease(target, Qt::LeftButton, Modifiers(), local);
                break;
            case 4: {
                QContextMenuEvent event(QContextMenuEvent::Mouse, local, target->mapToGlobal(local));
                QApplication::sendEvent(target, &event);
                break;
            }
            case 5:
                window.resize(Below(1400), Below(900));
                break;
            default:
                QTest::keyClick(target, Key(), Qt::NoModifier);
                break;
        }
        for (int i = 0; i < 5 && QApplication::activePopupWidget() != nullptr; ++i) {
            QApplication::activePopupWidget()->close();
        }
        QApplication::processEvents();
    }

private:
    int Below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(m_random); }
    Qt::KeyboardModifier Modifiers() { return Below(4) == 0 ? Qt::ShiftModifier : Qt::NoModifier; }
    Qt::Key Key()
    {
        constexpr Qt::Key kKeys[] = {Qt::Key_Tab,  Qt::Key_Up,   Qt::Key_Down,   Qt::Key_Left,   Qt::Key_Right,
                                     Qt::Key_Home, Qt::Key_End,  Qt::Key_Space,  Qt::Key_Return, Qt::Key_Escape,
                                     Qt::Key_F2,   Qt::Key_F6,   Qt::Key_PageUp, Qt::Key_A,      Qt::Key_Delete,
                                     Qt::Key_Plus, Qt::Key_Minus};
        return kKeys[Below(static_cast<int>(std::size(kKeys)))];
    }

    std::mt19937 m_random;
};

class RandomEventsTest : public DesktopFixture, public testing::WithParamInterface<unsigned> {
protected:
    // Every dialog that opens is poked at and closed.
    void SetUp() override
    {
        ui::SetModalHook([](QDialog& dialog) { dialog.done(0); });
    }
    void TearDown() override { ui::SetModalHook(nullptr); }

    // Those of Qt's own, such as the one that asks for a file and the menu of a button, run a loop of their own.
    void CloseModalWindows()
    {
        QObject::connect(&m_closer, &QTimer::timeout, &m_closer, [] {
            for (QWidget* const window : {QApplication::activePopupWidget(), QApplication::activeModalWidget()}) {
                if (window != nullptr) {
                    window->close();
                }
            }
        });
        m_closer.start(5);
    }

private:
    QTimer m_closer;
};

TEST_P(RandomEventsTest, TheMainWindowGoesOnAfterAnyInput)
{
    Start();
    CloseModalWindows();
    Monkey monkey(GetParam());
    std::mt19937 values(GetParam());
    for (int i = 0; i < kEvents; ++i) {
        if (i % 50 == 0) {
            Write(u"METER-1", u"U1", std::uniform_real_distribution<double>(0.0, 4000.0)(values));
            m_frame->UpdateAll();
            m_frame->show();
        }
        monkey.Poke(*m_frame);
    }
    m_frame->UpdateAll();
    EXPECT_TRUE(m_frame->ShowDevice(u"METER-1"));
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomEventsTest, testing::Values(1u, 2u));

TEST_F(RandomEventsTest, TheDialogsNeitherCrashNorFreeze)
{
    Start();
    CloseModalWindows();
    Monkey monkey(7);
    CDialog* const pageSetup = new PageSetupDlg(m_frame.get(), m_settings);
    CDialog* const password = new CPasswordDlg(m_frame.get(), ZRBasicString(u"secret"), 8, false, -1);
    CDialog* const goToDate = new CGoToDateDlg(m_frame.get());
    for (CDialog* const made : {m_frame->NewAboutDialog(), m_frame->NewKeysDialog(), pageSetup, password, goToDate}) {
        const std::unique_ptr<CDialog> dialog(made);
        dialog->Create();
        for (int i = 0; i < kEvents; ++i) {
            if (i % 100 == 0) {
                dialog->show();
            }
            monkey.Poke(*dialog);
        }
    }
}

}  // namespace
}  // namespace zr::desktop
