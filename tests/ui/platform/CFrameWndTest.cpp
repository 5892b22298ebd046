#include "platform/ui/CFrameWnd.h"

#include "platform/ui/CButton.h"
#include "platform/ui/CDialogBar.h"
#include "platform/ui/CMenu.h"
#include "platform/ui/CToolBar.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <QAction>
#include <QMenuBar>
#include <QTest>
#include <QToolButton>

namespace {

using namespace zr::ui;
using ::testing::ElementsAre;

constexpr unsigned kBarId = 500;
constexpr unsigned kDialogId = 220;
constexpr unsigned kButtonId = 5601;

class Bar : public CDialogBar {
public:
    Bar() : button(new CButton(&Client(), kButtonId)) { m_sizeDefault = QSize(200, 80); }

    void OnInitDialog() override { ++initialised; }
    bool OnCommand(unsigned id, unsigned, QWidget*) override
    {
        commands.push_back(id);
        return true;
    }
    void OnWindowPosChanged(unsigned flags) override { positions.push_back(flags); }
    QSize CalcDynamicLayout(int length, unsigned mode) override
    {
        if (length >= 0) {
            lengths.push_back({length, mode});
        }
        return CDialogBar::CalcDynamicLayout(length, mode);
    }

    CButton* button;
    int initialised = 0;
    std::vector<unsigned> commands;
    std::vector<unsigned> positions;
    std::vector<std::pair<int, unsigned>> lengths;
};

class Frame : public CFrameWnd {
public:
    Frame()
    {
        setCentralWidget(new QWidget);
        resize(800, 600);
    }
    bool OnCommand(unsigned id, unsigned, QWidget*) override
    {
        commands.push_back(id);
        return true;
    }
    std::vector<unsigned> commands;
};

class CFrameWndTest : public ::testing::Test {
protected:
    CFrameWndTest()
    {
        frame.menuBar()->addMenu(new CMenu(&frame, u"&File"));
        created = bar.Create(&frame, kDialogId, CBRS_GRIPPER | CBRS_ALIGN_RIGHT | CBRS_SIZE_DYNAMIC, kBarId);
        frame.show();
        QApplication::processEvents();
    }
    static unsigned Side(const CDialogBar& of) { return of.GetBarStyle() & CBRS_ALIGN_ANY; }
    void Dock(unsigned side)
    {
        frame.DockControlBar(&bar, side);
        QApplication::processEvents();
    }

    Frame frame;
    Bar bar;
    bool created = false;
};

TEST_F(CFrameWndTest, DocksABarAtTheSideOfItsStyle)
{
    EXPECT_TRUE(created);
    EXPECT_EQ(bar.initialised, 1);
    EXPECT_EQ(bar.GetDlgCtrlID(), kBarId);
    EXPECT_EQ(Side(bar), CBRS_ALIGN_RIGHT);
    EXPECT_EQ(bar.GetBarStyle(), CBRS_GRIPPER | CBRS_ALIGN_RIGHT | CBRS_SIZE_DYNAMIC);
    EXPECT_FALSE(bar.IsFloating());
    EXPECT_EQ(bar.geometry().right(), frame.width() - 1);
}

TEST_F(CFrameWndTest, CreatesABarOnceAndOnAFrameOnly)
{
    EXPECT_FALSE(bar.Create(&frame, kDialogId, CBRS_ALIGN_LEFT, 501));
    EXPECT_EQ(bar.GetDlgCtrlID(), kBarId);
    QWidget window;
    Bar other;
    EXPECT_FALSE(other.Create(&window, kDialogId, CBRS_ALIGN_LEFT, 501));
    EXPECT_FALSE(other.Create(nullptr, kDialogId, CBRS_ALIGN_LEFT, 501));
    EXPECT_EQ(other.initialised, 0);
}

TEST_F(CFrameWndTest, DocksAtFourSidesInTheSizeThatTheBarAsksFor)
{
    const struct {
        unsigned dockBar;
        unsigned alignment;
    } sides[] = {
        {AFX_IDW_DOCKBAR_TOP, CBRS_ALIGN_TOP},
        {AFX_IDW_DOCKBAR_LEFT, CBRS_ALIGN_LEFT},
        {AFX_IDW_DOCKBAR_BOTTOM, CBRS_ALIGN_BOTTOM},
        {AFX_IDW_DOCKBAR_RIGHT, CBRS_ALIGN_RIGHT},
    };
    for (const auto& side : sides) {
        Dock(side.dockBar);
        EXPECT_EQ(Side(bar), side.alignment);
        const bool lies = (side.alignment & (CBRS_ALIGN_TOP | CBRS_ALIGN_BOTTOM)) != 0;
        EXPECT_EQ(bar.size(), lies ? QSize(800, 80) : QSize(200, frame.GetClientRect().height())) << side.alignment;
        EXPECT_EQ(bar.GetClientRect(), bar.rect());
    }
}

TEST_F(CFrameWndTest, LeavesNothingBetweenTheMiddleAndABar)
{
    Dock(AFX_IDW_DOCKBAR_BOTTOM);
    EXPECT_EQ(frame.centralWidget()->geometry().bottom() + 1, bar.geometry().top());
    Dock(AFX_IDW_DOCKBAR_LEFT);
    EXPECT_EQ(bar.geometry().right() + 1, frame.centralWidget()->geometry().left());
}

TEST_F(CFrameWndTest, GivesABarHalfOfItselfAtMostAndTheRestBackWhenItGrows)
{
    Dock(AFX_IDW_DOCKBAR_BOTTOM);
    frame.resize(800, 120);
    QApplication::processEvents();
    const int client = frame.GetClientRect().height();
    EXPECT_EQ(bar.height(), client - client / 2);
    frame.resize(800, 600);
    QApplication::processEvents();
    EXPECT_EQ(bar.height(), 80);
}

TEST_F(CFrameWndTest, TellsItsDockState)
{
    CDockState state;
    Dock(AFX_IDW_DOCKBAR_TOP);
    frame.GetDockState(state);
    ASSERT_EQ(state.m_arrBarInfo.size(), 1u);
    EXPECT_EQ(state.m_arrBarInfo[0].m_pBar, &bar);
    EXPECT_EQ(state.m_arrBarInfo[0].m_nBarID, kBarId);
    EXPECT_TRUE(state.m_arrBarInfo[0].m_bVisible);
    EXPECT_FALSE(state.m_arrBarInfo[0].m_bFloating);
    frame.FloatControlBar(&bar, QPoint(50, 50));
    frame.GetDockState(state);
    ASSERT_EQ(state.m_arrBarInfo.size(), 1u);
    EXPECT_TRUE(state.m_arrBarInfo[0].m_bFloating);
}

TEST_F(CFrameWndTest, ForgetsABarThatIsGone)
{
    auto other = std::make_unique<Bar>();
    ASSERT_TRUE(other->Create(&frame, kDialogId, CBRS_ALIGN_LEFT, 501));
    other.reset();
    CDockState state;
    frame.GetDockState(state);
    EXPECT_EQ(state.m_arrBarInfo.size(), 1u);
    frame.RecalcLayout();
}

TEST_F(CFrameWndTest, FloatsABarInItsOwnSizeAndAtNoSide)
{
    frame.FloatControlBar(&bar, QPoint(70, 90));
    QApplication::processEvents();
    EXPECT_TRUE(bar.IsFloating());
    EXPECT_TRUE(bar.IsVisible());
    EXPECT_EQ(Side(bar), 0u);
    EXPECT_EQ(bar.GetClientRect().size(), QSize(200, 80));
    EXPECT_EQ(bar.pos(), QPoint(70, 90));
    Dock(AFX_IDW_DOCKBAR_BOTTOM);
    EXPECT_FALSE(bar.IsFloating());
    EXPECT_EQ(bar.size(), QSize(800, 80));
}

TEST_F(CFrameWndTest, TellsAFloatingBarOfTheSizeThatTheUserGivesIt)
{
    Dock(AFX_IDW_DOCKBAR_TOP);
    frame.FloatControlBar(&bar, QPoint(70, 90));
    QApplication::processEvents();
    EXPECT_TRUE(bar.lengths.empty());
    bar.resize(bar.width() + 30, bar.height() + 40);
    QApplication::processEvents();
    EXPECT_THAT(bar.lengths, ElementsAre(std::pair(230, LM_HORZ), std::pair(120, LM_HORZ | LM_LENGTHY)));
}

TEST_F(CFrameWndTest, HandsTheCommandsOfItsControlsToTheBar)
{
    bar.button->setGeometry(0, 0, 20, 20);
    QTest::mouseClick(bar.button, Qt::LeftButton);
    EXPECT_THAT(bar.commands, ElementsAre(kButtonId));
    EXPECT_EQ(bar.GetDlgItem(kButtonId), bar.button);
    EXPECT_TRUE(frame.commands.empty());
}

TEST_F(CFrameWndTest, TellsABarThatIsHiddenWhetherTheUserClosedIt)
{
    frame.ShowControlBar(&bar, false);
    EXPECT_THAT(bar.positions, ElementsAre(SWP_HIDEWINDOW));
    frame.FloatControlBar(&bar, QPoint(70, 90));
    QApplication::processEvents();
    bar.positions.clear();
    auto* const close = bar.titleBarWidget()->findChild<QToolButton*>();
    ASSERT_TRUE(close->isVisible());
    QTest::mouseClick(close, Qt::LeftButton);
    EXPECT_FALSE(bar.IsVisible());
    EXPECT_THAT(bar.positions, ElementsAre(SWP_HIDEWINDOW | SWP_NOREDRAW));
}

TEST_F(CFrameWndTest, SendsTheCommandsOfItsMenus)
{
    CMenu menu(&frame, u"&View");
    CMenu popup(&frame, u"&Colours");
    menu.AppendMenu(700, u"&Reload\tF5");
    popup.AppendMenu(701, u"&Dark");
    menu.AppendMenu(popup);
    menu.FindItem(700)->trigger();
    menu.CheckMenuItem(701, true);
    menu.FindItem(701)->trigger();
    EXPECT_THAT(frame.commands, ElementsAre(700u, 701u));
    EXPECT_TRUE(menu.FindItem(701)->isChecked()) << "the mark is the frame's to set";
    EXPECT_EQ(menu.FindItem(700)->shortcut(), QKeySequence(Qt::Key_F5));
    EXPECT_EQ(menu.FindItem(702), nullptr);
}

TEST_F(CFrameWndTest, SendsTheCommandOfAMenuByItsKeys)
{
    auto* const menu = new CMenu(&frame, u"&View");
    menu->AppendMenu(700, u"&Reload\tF5");
    frame.menuBar()->addMenu(menu);
    frame.activateWindow();
    QTest::keyClick(&frame, Qt::Key_F5);
    EXPECT_THAT(frame.commands, ElementsAre(700u));
}

TEST_F(CFrameWndTest, SendsTheCommandsOfItsToolBar)
{
    CToolBar tools(frame, 59392, u"Commands");
    tools.AddButton(700, QIcon(), u"Reload");
    tools.AddSeparator();
    tools.AddButton(701, QIcon(), u"Dark");
    tools.CheckButton(701, true);
    QTest::mouseClick(FindControl(tools, 700), Qt::LeftButton);
    QTest::mouseClick(FindControl(tools, 701), Qt::LeftButton);
    EXPECT_THAT(frame.commands, ElementsAre(700u, 701u));
    EXPECT_TRUE(static_cast<QToolButton*>(FindControl(tools, 701))->isChecked()) << "pressed by CheckButton alone";
}

}  // namespace
