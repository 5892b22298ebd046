#include "diagnostics/ui/CDebugDlgBar.h"

#include "DebugBarFixture.h"
#include "diagnostics/ui/SizeLine.h"
#include "platform/ui/SystemColours.h"
#include "siblings/tools/ui/ZRLayout.h"
#include "support/UserText.h"

#include <QHeaderView>
#include <QPushButton>
#include <QScrollBar>
#include <QToolButton>

namespace {

using namespace zr;
using namespace zr::ui;
using namespace zr::test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class CDebugDlgBarTest : public DebugBarFixture {
protected:
    [[nodiscard]] int Metric(int index) const { return GetSystemMetrics(index, bar); }
    [[nodiscard]] QPoint BottomEdge() const { return {200, bar.height() - 2}; }
    [[nodiscard]] static QPoint TopEdge() { return {200, 1}; }
    [[nodiscard]] SizeLine& Line() const { return *dynamic_cast<SizeLine*>(FindLine()); }
    [[nodiscard]] QWidget* FindLine() const
    {
        for (QWidget* const child : frame.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            if (dynamic_cast<SizeLine*>(child) != nullptr) {
                return child;
            }
        }
        return nullptr;
    }
    [[nodiscard]] QRect LineInBar() const { return Line().geometry().translated(-bar.mapTo(&frame, QPoint(0, 0))); }
    // What SaveState tells.
    [[nodiscard]] int Saved(const char16_t* key)
    {
        bar.SaveState(u"test");
        return application.GetProfileIntW(u"test-SCBar-1300", key, -1);
    }
};

TEST_F(CDebugDlgBarTest, IsCreatedAtTheRightWithItsControlsByNumber)
{
    ASSERT_TRUE(bar.Create(&frame, 0x70000 + kDebugBarDialog, kBarId));
    EXPECT_EQ(bar.GetBarStyle(), 0x404104u);
    EXPECT_EQ(bar.GetDlgCtrlID(), kBarId);
    EXPECT_NE(FindControl(bar, 220), nullptr) << "the low 16 bits count";
    EXPECT_NE(bar.GetDlgItem(5600), nullptr);
    EXPECT_EQ(static_cast<QPushButton&>(CloseButton()).text(), QStringLiteral("x"));
}

TEST_F(CDebugDlgBarTest, TakesTheDefaultSizeOfItsDialogWhenItIsCreated)
{
    ASSERT_TRUE(bar.Create(&frame, kDebugBarDialog, kBarId));
    EXPECT_GT(Saved(u"sizeHorzCX"), 0);
    EXPECT_EQ(Saved(u"sizeHorzCX"), Saved(u"sizeFloatCX"));
    EXPECT_EQ(Saved(u"sizeHorzCY"), Saved(u"sizeFloatCY"));
}

TEST_F(CDebugDlgBarTest, ChangesNothingWhenItCannotBeCreated)
{
    QWidget window;
    EXPECT_FALSE(bar.Create(&window, kDebugBarDialog, kBarId));
    EXPECT_EQ(Saved(u"sizeHorzCX"), -1) << "no number, no section";
    EXPECT_EQ(bar.CalcDynamicLayout(-1, LM_MRUWIDTH), QSize(0, 0));
}

TEST_F(CDebugDlgBarTest, HasOneColumnWithTheTitleOfTheLanguage)
{
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    EXPECT_EQ(List().header()->count(), 1);
    EXPECT_EQ(List().model()->headerData(0, Qt::Horizontal).toString(), QStringLiteral("Warnings and events"));
}

TEST_F(CDebugDlgBarTest, SetsNoListStyleSinceTheMaskHoldsNoneOfTheValue)
{
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    EXPECT_EQ(List().GetExtendedStyle(), 0u);
}

TEST_F(CDebugDlgBarTest, ListsTheWarningsInTheirOrderWithTheirIndices)
{
    warnings.AddWarning(1, u"Meter A", u"", u"");
    warnings.AddWarning(257, u"Meter A", u"", u"twice");
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    ASSERT_EQ(List().GetItemCount(), 2);
    EXPECT_EQ(List().GetItemText(0, 0), u"Meter A does not answer");
    EXPECT_EQ(List().GetItemText(1, 0), u"Meter A answers again twice");
    EXPECT_EQ(List().GetItemData(0), 0u);
    EXPECT_EQ(List().GetItemData(1), 1u);
}

TEST_F(CDebugDlgBarTest, ShowsNewWarningsOnlyWhenItIsToldAndLosesTheSelection)
{
    Warn(2);
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    bar.SelectFirstWarning();
    Warn(1);
    EXPECT_EQ(List().GetItemCount(), 2);
    EXPECT_EQ(List().GetItemState(0, LVIS_SELECTED), LVIS_SELECTED);
    bar.UpdateWarningList();
    EXPECT_EQ(List().GetItemCount(), 3);
    EXPECT_EQ(List().GetItemState(0, LVIS_SELECTED), 0u);
    warnings.Invalidate();
    bar.UpdateWarningList();
    EXPECT_EQ(List().GetItemCount(), 0);
}

TEST_F(CDebugDlgBarTest, SelectFirstWarningPostsItsIndex)
{
    Warn(3);
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    bar.SelectFirstWarning();
    EXPECT_THAT(frame.messages, IsEmpty()) << "posted, not sent";
    QApplication::processEvents();
    EXPECT_THAT(frame.messages, ElementsAre(Message{1474, 0, 0}));
}

TEST_F(CDebugDlgBarTest, SelectFirstWarningDoesNothingInAnEmptyList)
{
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    bar.SelectFirstWarning();
    QApplication::processEvents();
    EXPECT_THAT(frame.messages, IsEmpty());
}

TEST_F(CDebugDlgBarTest, SelectFirstWarningDoesNothingBeforeItIsCreated)
{
    Warn(1);
    bar.UpdateWarningList();
    bar.SelectFirstWarning();
    EXPECT_EQ(List().GetItemState(0, LVIS_SELECTED), 0u);
}

TEST_F(CDebugDlgBarTest, PostsTheIndexOfALineThatIsClicked)
{
    Warn(3);
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    QTest::mouseClick(List().viewport(), Qt::LeftButton, {}, List().visualRect(List().model()->index(2, 0)).center());
    QApplication::processEvents();
    EXPECT_THAT(frame.messages, ElementsAre(Message{1474, 0, 2}));
}

TEST_F(CDebugDlgBarTest, PostsTheIndicesOfLinesThatAreChosenByKeys)
{
    Warn(3);
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    List().setFocus();
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Up, Qt::Key_End}) {
        QTest::keyClick(&List(), key);
    }
    QApplication::processEvents();
    EXPECT_THAT(frame.messages,
                ElementsAre(Message{1474, 0, 0}, Message{1474, 0, 1}, Message{1474, 0, 0}, Message{1474, 0, 2}));
}

TEST_F(CDebugDlgBarTest, PostsNothingWhenASelectionGoes)
{
    Warn(2);
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    bar.SelectFirstWarning();
    QApplication::processEvents();
    frame.messages.clear();
    List().SetItemState(0, 0, LVIS_SELECTED);
    bar.UpdateWarningList();
    QApplication::processEvents();
    EXPECT_THAT(frame.messages, IsEmpty());
}

TEST_F(CDebugDlgBarTest, ShowsALongMessageWholeAsAToolTipAndNeverAsMarkup)
{
    const ZRBasicString name(u"<b>" + std::u16string(900, u'm') + u"</b>");
    warnings.AddWarning(1, name, u"", u"");
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    const QString tip = List().model()->index(0, 0).data(Qt::ToolTipRole).toString();
    EXPECT_TRUE(tip.contains(QStringLiteral("&lt;b&gt;mmm")));
    EXPECT_TRUE(tip.contains(QStringLiteral("does not answer")));
    EXPECT_FALSE(List().horizontalScrollBar()->isVisible());
}

TEST_F(CDebugDlgBarTest, SendsItsClosingToTheParentWhenTheButtonIsClicked)
{
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    QTest::mouseClick(&CloseButton(), Qt::LeftButton);
    EXPECT_THAT(frame.commands, ElementsAre(1475u));
    EXPECT_TRUE(bar.IsVisible()) << "hiding it is the frame's";
}

TEST_F(CDebugDlgBarTest, SendsItsClosingByTheFloatingCaptionAndNotWhenItIsHidden)
{
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    frame.ShowControlBar(&bar, false);
    EXPECT_THAT(frame.commands, IsEmpty());
    Float();
    EXPECT_THAT(frame.commands, IsEmpty());
    QTest::mouseClick(bar.titleBarWidget()->findChild<QToolButton*>(), Qt::LeftButton);
    EXPECT_THAT(frame.commands, ElementsAre(1475u));
}

TEST_F(CDebugDlgBarTest, AFloatingBarShowsNoCloseButton)
{
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    EXPECT_TRUE(CloseButton().isVisible());
    EXPECT_TRUE(CloseButton().isEnabled());
    Float();
    EXPECT_FALSE(CloseButton().isVisible());
    EXPECT_FALSE(CloseButton().isEnabled());
    frame.DockControlBar(&bar, AFX_IDW_DOCKBAR_TOP);
    EXPECT_TRUE(CloseButton().isVisible());
    EXPECT_TRUE(CloseButton().isEnabled());
}

TEST_F(CDebugDlgBarTest, LayoutOfADockedBarIsGapButtonGapListGapBesideTheGripper)
{
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    const int gap = ZRLayout::ToPixels(ZRLayout::kGap, bar);
    const int cell = ZRLayout::ToPixels(14 * 2 / 3 - 1, bar);
    const int gripper = Metric(SM_CXMENUSIZE) / 2;
    const QRect close = CloseButton().geometry().translated(CloseButton().mapTo(&bar, QPoint()) - CloseButton().pos());
    const QRect list = List().geometry().translated(List().mapTo(&bar, QPoint()) - List().pos());
    EXPECT_EQ(close, QRect(gripper + gap, 0, cell, cell));
    EXPECT_EQ(list, QRect(gripper + 2 * gap + cell, 0, bar.width() - gripper - 3 * gap - cell, bar.height()));
}

TEST_F(CDebugDlgBarTest, LayoutOfAFloatingBarIsGapListGapFromTopToBottom)
{
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    Float();
    const int gap = ZRLayout::ToPixels(ZRLayout::kGap, bar);
    const QSize client = bar.GetClientRect().size();
    EXPECT_EQ(List().geometry(), QRect(0, gap, client.width(), client.height() - 2 * gap));
}

TEST_F(CDebugDlgBarTest, AListLongerThanAPageNarrowsTheColumnAtTheNextLayout)
{
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    const int room = List().GetClientRect().width();
    EXPECT_EQ(List().GetColumnWidth(0), room - 2);
    Warn(List().GetCountPerPage() + 30);
    bar.UpdateWarningList();
    EXPECT_EQ(List().GetColumnWidth(0), room - 2);
    bar.Layout();
    EXPECT_EQ(List().GetColumnWidth(0), room - 2 - Metric(SM_CXVSCROLL));
    warnings.Invalidate();
    bar.UpdateWarningList();
    bar.Layout();
    EXPECT_EQ(List().GetColumnWidth(0), room - 2);
}

TEST_F(CDebugDlgBarTest, AColumnFitsBesideTheScrollBar)
{
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    Warn(200);
    bar.UpdateWarningList();
    bar.Layout();
    QApplication::processEvents();
    EXPECT_TRUE(List().verticalScrollBar()->isVisible());
    EXPECT_LE(List().GetColumnWidth(0), List().viewport()->width());
}

TEST_F(CDebugDlgBarTest, CalcDynamicLayoutTakesTheClientSizeOfTheDockedBar)
{
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    EXPECT_EQ(bar.CalcDynamicLayout(-1, LM_HORZ | LM_HORZDOCK), bar.GetClientRect().size());
    EXPECT_EQ(Saved(u"sizeHorzCX"), bar.width());
    EXPECT_EQ(bar.CalcDynamicLayout(-1, LM_HORZ | LM_HORZDOCK | LM_STRETCH), QSize(32767, bar.height()));
}

TEST_F(CDebugDlgBarTest, SizingTheFloatingBarSizesTheDockedOneAsWell)
{
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    const int height = bar.height();
    Float();
    EXPECT_EQ(Saved(u"sizeFloatCY"), height) << "floating alone changes nothing";
    bar.resize(bar.width() + 50, bar.height() + 40);
    QApplication::processEvents();
    EXPECT_EQ(Saved(u"sizeFloatCY"), height + 40);
    EXPECT_EQ(Saved(u"sizeHorzCY"), height + 40);
    frame.DockControlBar(&bar, AFX_IDW_DOCKBAR_TOP);
    QApplication::processEvents();
    EXPECT_EQ(bar.height(), height + 40);
}

TEST_F(CDebugDlgBarTest, StateSavedBeforeAResizeIsReadBackOnlyByLoadState)
{
    Show(AFX_IDW_DOCKBAR_TOP);
    const int height = bar.height();
    bar.SaveState(u"main");
    Press(BottomEdge());
    Move(BottomEdge() + QPoint(0, 40));
    Release(BottomEdge() + QPoint(0, 40));
    EXPECT_EQ(bar.height(), height + 40);
    EXPECT_EQ(application.GetProfileIntW(u"main-SCBar-1300", u"sizeHorzCY", -1), height) << "nothing saved by itself";
    frame.DockControlBar(&bar, AFX_IDW_DOCKBAR_BOTTOM);
    frame.DockControlBar(&bar, AFX_IDW_DOCKBAR_TOP);
    EXPECT_EQ(bar.height(), height + 40) << "nothing loaded by itself";
    bar.LoadState(u"main");
    QApplication::processEvents();
    EXPECT_EQ(bar.height(), height);
}

TEST_F(CDebugDlgBarTest, KeepsItsStateByProfileAndControlNumber)
{
    Show(AFX_IDW_DOCKBAR_TOP);
    application.WriteProfileInt(u"main-SCBar-1300", u"sizeHorzCX", 211);
    application.WriteProfileInt(u"main-SCBar-1300", u"sizeHorzCY", 97);
    application.WriteProfileInt(u"main-SCBar-1300", u"sizeFloatCX", 333);
    application.WriteProfileInt(u"main-SCBar-1300", u"sizeFloatCY", 144);
    bar.LoadState(u"other");
    EXPECT_NE(bar.CalcDynamicLayout(-1, LM_MRUWIDTH), QSize(333, 144));
    bar.LoadState(u"main");
    EXPECT_EQ(bar.CalcDynamicLayout(-1, LM_MRUWIDTH), QSize(333, 144));
    EXPECT_EQ(bar.CalcDynamicLayout(-1, LM_VERTDOCK | LM_STRETCH), QSize(211, 32767));
    QApplication::processEvents();
    EXPECT_EQ(bar.height(), 97);
}

TEST_F(CDebugDlgBarTest, KeepsItsSizeWhereTheKeptOneIsMissingOrIsNone)
{
    Show(AFX_IDW_DOCKBAR_TOP);
    const QSize before = bar.CalcDynamicLayout(-1, LM_MRUWIDTH);
    for (const int hostile : {-1, 32768, 2147483647, -2147483647 - 1}) {
        application.WriteProfileInt(u"main-SCBar-1300", u"sizeFloatCX", hostile);
        zr::test::WriteUserText(u"Software\\Kestrix\\main-SCBar-1300", u"sizeFloatCY", u"wide");
        bar.LoadState(u"main");
        EXPECT_EQ(bar.CalcDynamicLayout(-1, LM_MRUWIDTH), before) << hostile;
    }
}

TEST_F(CDebugDlgBarTest, AKeptSizeBeyondTheFrameLeavesTheFrameItsHalf)
{
    Show(AFX_IDW_DOCKBAR_TOP);
    application.WriteProfileInt(u"main-SCBar-1300", u"sizeHorzCY", 32000);
    application.WriteProfileInt(u"main-SCBar-1300", u"sizeFloatCY", 32000);
    bar.LoadState(u"main");
    QApplication::processEvents();
    const int client = frame.GetClientRect().height();
    EXPECT_EQ(bar.height(), client - client / 2);
    // A drag starts from what is seen.
    Press(BottomEdge());
    Release(BottomEdge() - QPoint(0, 50));
    EXPECT_EQ(bar.height(), client - client / 2 - 50);
}

TEST_F(CDebugDlgBarTest, ArmsInTheHotZoneWithTheSizingCursor)
{
    Show(AFX_IDW_DOCKBAR_TOP);
    Move(BottomEdge());
    EXPECT_EQ(bar.cursor().shape(), Qt::SizeVerCursor);
    QWidget* const edge = frame.childAt(At(BottomEdge()));
    EXPECT_EQ(edge->parentWidget(), &bar) << edge->metaObject()->className();
    EXPECT_EQ(edge->cursor().shape(), Qt::SizeVerCursor);
    Move({20, 40});
    EXPECT_EQ(bar.cursor().shape(), Qt::ArrowCursor);
    frame.DockControlBar(&bar, AFX_IDW_DOCKBAR_BOTTOM);
    QApplication::processEvents();
    Move(TopEdge());
    EXPECT_EQ(bar.cursor().shape(), Qt::SizeVerCursor);
    EXPECT_EQ(List().cursor().shape(), Qt::ArrowCursor);
}

TEST_F(CDebugDlgBarTest, ABarDockedLeftOrRightHasNoHotZone)
{
    Show(AFX_IDW_DOCKBAR_LEFT);
    for (const unsigned side : {AFX_IDW_DOCKBAR_LEFT, AFX_IDW_DOCKBAR_RIGHT}) {
        frame.DockControlBar(&bar, side);
        QApplication::processEvents();
        const QSize before = bar.size();
        for (const QPoint& point : {QPoint(3, 1), QPoint(3, bar.height() - 1), QPoint(bar.width() - 1, 50)}) {
            Move(point);
            EXPECT_EQ(bar.cursor().shape(), Qt::ArrowCursor);
            Press(point);
            EXPECT_EQ(FindLine()->isVisible(), false);
            Release(point);
        }
        EXPECT_EQ(bar.size(), before);
    }
    EXPECT_THAT(frame.messages, IsEmpty());
}

TEST_F(CDebugDlgBarTest, AFloatingBarHasNoHotZone)
{
    Show(AFX_IDW_DOCKBAR_TOP);
    Float();
    const QPoint edge(60, bar.GetClientRect().bottom() - 1);
    Move(edge);
    Press(edge);
    EXPECT_FALSE(FindLine()->isVisible());
    Release(edge);
    QApplication::processEvents();
    EXPECT_THAT(frame.messages, IsEmpty());
}

TEST_F(CDebugDlgBarTest, DraggingTheBottomEdgeOfATopBarMakesItTaller)
{
    Show(AFX_IDW_DOCKBAR_TOP);
    const int height = bar.height();
    const QPoint edge = BottomEdge();
    Move(edge);
    Press(edge);
    EXPECT_THAT(frame.messages, ElementsAre(Message{1476, 0, 0}));
    EXPECT_EQ(LineInBar(), QRect(0, edge.y(), bar.width(), Metric(SM_CXEDGE) + 1)) << "downwards from the point";
    Move(edge + QPoint(5, 30));
    EXPECT_TRUE(Line().isVisible());
    EXPECT_EQ(LineInBar().top(), edge.y() + 30);
    EXPECT_EQ(bar.height(), height) << "only the line moves";
    Release(edge + QPoint(5, 33));
    EXPECT_FALSE(Line().isVisible());
    EXPECT_THAT(frame.messages, ElementsAre(Message{1476, 0, 0}, Message{1476, 1, 0}));
    EXPECT_EQ(bar.height(), height + 33);
    EXPECT_EQ(Saved(u"sizeHorzCY"), height + 33);
    EXPECT_EQ(Saved(u"sizeFloatCY"), height + 33);
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
}

TEST_F(CDebugDlgBarTest, DraggingTheTopEdgeOfABottomBarMakesItShorter)
{
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    const int height = bar.height();
    Move(TopEdge());
    Press(TopEdge());
    EXPECT_EQ(LineInBar(), QRect(0, TopEdge().y() - Metric(SM_CXEDGE), bar.width(), Metric(SM_CXEDGE) + 1))
        << "upwards from the point";
    Move(TopEdge() + QPoint(0, 20));
    Release(TopEdge() + QPoint(0, 20));
    EXPECT_EQ(bar.height(), height - 20);
    EXPECT_EQ(bar.geometry().bottom(), frame.height() - 1);
}

TEST_F(CDebugDlgBarTest, TheEdgeIsTakenAlongTheWholeBarTheListIncluded)
{
    Show(AFX_IDW_DOCKBAR_TOP);
    for (const int x : {1, 20, bar.width() / 2, bar.width() - 2}) {
        const int height = bar.height();
        const QPoint edge(x, height - 1);
        Press(edge);
        Release(edge + QPoint(0, 3));
        EXPECT_EQ(bar.height(), height + 3) << x;
    }
}

TEST_F(CDebugDlgBarTest, ADragWithoutAChangeLeavesTheSizes)
{
    Show(AFX_IDW_DOCKBAR_TOP);
    const int height = bar.height();
    Press(BottomEdge());
    Move(BottomEdge() + QPoint(0, 30));
    Release(BottomEdge());
    EXPECT_EQ(bar.height(), height);
    EXPECT_THAT(frame.messages, ElementsAre(Message{1476, 0, 0}, Message{1476, 1, 0}));
}

TEST_F(CDebugDlgBarTest, DraggingPastHalfOfTheFrameStopsTheLineThereAndTheBarEndsAtThatHeight)
{
    const int client = 600 - 23;
    for (const unsigned side : {AFX_IDW_DOCKBAR_TOP, AFX_IDW_DOCKBAR_BOTTOM}) {
        if (frame.isVisible()) {
            frame.DockControlBar(&bar, side);
            QApplication::processEvents();
        } else {
            Show(side);
        }
        const int half = frame.GetClientRect().height() - frame.GetClientRect().height() / 2;
        const bool isTop = side == AFX_IDW_DOCKBAR_TOP;
        const QPoint edge = isTop ? BottomEdge() : TopEdge();
        const int grown = half - bar.height();
        const int far = isTop ? client : -client;
        Press(edge);
        Move(edge + QPoint(0, far));
        EXPECT_EQ(isTop ? LineInBar().top() - edge.y() : edge.y() - LineInBar().bottom(), grown);
        Release(edge + QPoint(0, far));
        EXPECT_EQ(bar.height(), half);
        EXPECT_EQ(Saved(u"sizeHorzCY"), half);
    }
}

TEST_F(CDebugDlgBarTest, DraggingPastTheLeastHeightStopsThere)
{
    Show(AFX_IDW_DOCKBAR_TOP);
    const QPoint edge = BottomEdge();
    Press(edge);
    Move(edge - QPoint(0, 500));
    Release(edge - QPoint(0, 500));
    EXPECT_EQ(bar.height(), Metric(SM_CYMIN));
}

TEST_F(CDebugDlgBarTest, ACaptureThatIsLostEndsTheDragWithoutANoticeAndStaysArmed)
{
    Show(AFX_IDW_DOCKBAR_TOP);
    const int height = bar.height();
    const QPoint edge = BottomEdge();
    Press(edge);
    Move(edge + QPoint(0, 30));
    QEvent lost(QEvent::WindowDeactivate);
    QApplication::sendEvent(&bar, &lost);
    EXPECT_EQ(bar.cursor().shape(), Qt::ArrowCursor);
    EXPECT_FALSE(FindLine()->isVisible());
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
    Release(edge + QPoint(0, 30));
    EXPECT_EQ(bar.height(), height);
    EXPECT_THAT(frame.messages, ElementsAre(Message{1476, 0, 0}));
}

TEST_F(CDebugDlgBarTest, ABarThatIsHiddenWhileItIsDraggedLosesTheCapture)
{
    Show(AFX_IDW_DOCKBAR_TOP);
    Press(BottomEdge());
    frame.ShowControlBar(&bar, false);
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
    EXPECT_FALSE(FindLine()->isVisible());
    frame.ShowControlBar(&bar, true);
    QApplication::processEvents();
    EXPECT_THAT(frame.messages, ElementsAre(Message{1476, 0, 0}));
}

TEST_F(CDebugDlgBarTest, OtherButtonsDragNothing)
{
    Show(AFX_IDW_DOCKBAR_TOP);
    QTest::mousePress(Window(), Qt::RightButton, {}, At(BottomEdge()));
    QTest::mouseRelease(Window(), Qt::RightButton, {}, At(BottomEdge()));
    QApplication::processEvents();
    EXPECT_THAT(frame.messages, IsEmpty());
}

TEST_F(CDebugDlgBarTest, ManyWarningsGoIn)
{
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    Warn(20000);
    bar.UpdateWarningList();
    EXPECT_EQ(List().GetItemCount(), 20000);
    EXPECT_EQ(List().GetItemData(19999), 19999u);
}

TEST_F(CDebugDlgBarTest, StaysWhereItIsScrolledToWhenTheListGrows)
{
    Warn(200);
    Show(AFX_IDW_DOCKBAR_BOTTOM);
    List().verticalScrollBar()->setValue(120);
    Warn(1);
    bar.UpdateWarningList();
    EXPECT_EQ(List().verticalScrollBar()->value(), 120);
}

}  // namespace
