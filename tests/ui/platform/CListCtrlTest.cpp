#include "platform/ui/CListCtrl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <QHeaderView>
#include <QTest>
#include <tuple>

namespace {

using namespace zr::ui;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr unsigned kListId = 5600;
using Change = std::tuple<int, unsigned, unsigned>;

class Parent : public CWnd {
public:
    bool OnNotify(const NMHDR& notice) override
    {
        EXPECT_EQ(notice.idFrom, kListId);
        EXPECT_EQ(notice.code, LVN_ITEMCHANGED);
        const auto& change = reinterpret_cast<const NMLISTVIEW&>(notice);
        changes.emplace_back(change.iItem, change.uNewState, change.uOldState);
        return true;
    }
    std::vector<Change> changes;
};

class CListCtrlTest : public ::testing::Test {
protected:
    CListCtrlTest() : list(new CListCtrl(&parent, kListId))
    {
        list->InsertColumn(0, u"Text");
        parent.resize(300, 200);
        list->resize(300, 200);
        parent.show();
    }
    void Fill(int count)
    {
        for (int i = 0; i < count; ++i) {
            list->InsertItem(i, u"line");
        }
    }
    Parent parent;
    CListCtrl* list;
};

TEST_F(CListCtrlTest, InsertsLinesWhereTheyAreToldAndBehindTheLastOneBeyondIt)
{
    EXPECT_EQ(list->InsertItem(0, u"b"), 0);
    EXPECT_EQ(list->InsertItem(0, u"a"), 0);
    EXPECT_EQ(list->InsertItem(99, u"c"), 2);
    ASSERT_EQ(list->GetItemCount(), 3);
    EXPECT_EQ(list->GetItemText(0, 0), u"a");
    EXPECT_EQ(list->GetItemText(1, 0), u"b");
    EXPECT_EQ(list->GetItemText(2, 0), u"c");
    EXPECT_EQ(list->GetItemText(3, 0), u"");
}

TEST_F(CListCtrlTest, KeepsANumberForEachLine)
{
    Fill(2);
    EXPECT_EQ(list->GetItemData(1), 0u);
    list->SetItemData(1, 4711);
    list->SetItemData(2, 1);
    EXPECT_EQ(list->GetItemData(1), 4711u);
    list->InsertItem(0, u"before");
    EXPECT_EQ(list->GetItemData(2), 4711u) << "it goes with its line";
    EXPECT_EQ(list->GetItemData(-1), 0u);
    EXPECT_EQ(list->GetItemData(3), 0u);
}

TEST_F(CListCtrlTest, TellsTheParentOfASelectionFromOneLineToAnother)
{
    Fill(3);
    list->SetItemState(1, LVIS_SELECTED, LVIS_SELECTED);
    EXPECT_THAT(parent.changes, ElementsAre(Change(1, LVIS_SELECTED, 0)));
    list->SetItemState(1, LVIS_SELECTED, LVIS_SELECTED);
    EXPECT_EQ(parent.changes.size(), 1u) << "nothing has changed";
    list->SetItemState(2, LVIS_SELECTED, LVIS_SELECTED);
    EXPECT_THAT(parent.changes,
                ElementsAre(Change(1, LVIS_SELECTED, 0), Change(1, 0, LVIS_SELECTED), Change(2, LVIS_SELECTED, 0)));
    EXPECT_EQ(list->GetItemState(2, LVIS_SELECTED), LVIS_SELECTED);
    EXPECT_EQ(list->GetItemState(1, LVIS_SELECTED), 0u);
    list->SetItemState(2, 0, LVIS_SELECTED);
    EXPECT_EQ(list->GetItemState(2, LVIS_SELECTED), 0u);
}

TEST_F(CListCtrlTest, LeavesTheSelectionWhereTheMaskOrTheLineIsNotMeant)
{
    Fill(1);
    list->SetItemState(0, LVIS_SELECTED, 0);
    list->SetItemState(1, LVIS_SELECTED, LVIS_SELECTED);
    list->SetItemState(-1, LVIS_SELECTED, LVIS_SELECTED);
    EXPECT_THAT(parent.changes, IsEmpty());
}

TEST_F(CListCtrlTest, TellsNothingWhenAllLinesAreDeleted)
{
    Fill(2);
    list->SetItemState(1, LVIS_SELECTED, LVIS_SELECTED);
    parent.changes.clear();
    list->DeleteAllItems();
    EXPECT_EQ(list->GetItemCount(), 0);
    Fill(2);
    EXPECT_EQ(list->GetItemState(1, LVIS_SELECTED), 0u);
    EXPECT_THAT(parent.changes, IsEmpty());
}

TEST_F(CListCtrlTest, SetsTheStylesOfTheMaskOnly)
{
    EXPECT_EQ(list->SetExtendedStyle(LVS_EX_FULLROWSELECT, LVS_EX_GRIDLINES), 0u);
    EXPECT_EQ(list->GetExtendedStyle(), 0u);
    list->SetExtendedStyle(0, LVS_EX_GRIDLINES);
    EXPECT_EQ(list->GetExtendedStyle(), LVS_EX_GRIDLINES) << "a mask of 0 stands for all";
    EXPECT_EQ(list->SetExtendedStyle(LVS_EX_FULLROWSELECT, LVS_EX_FULLROWSELECT), LVS_EX_GRIDLINES);
    EXPECT_EQ(list->GetExtendedStyle(), LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT);
}

TEST_F(CListCtrlTest, KeepsTheWidthThatItsColumnIsGiven)
{
    list->SetColumnWidth(0, 7);
    EXPECT_EQ(list->GetColumnWidth(0), 7);
    list->SetColumnWidth(0, -3);
    EXPECT_EQ(list->GetColumnWidth(0), 0);
}

TEST_F(CListCtrlTest, CountsTheLinesThatFitOnAPage)
{
    Fill(1);
    const int row = list->visualRect(list->model()->index(0, 0)).height();
    EXPECT_EQ(list->GetCountPerPage(), list->viewport()->height() / row);
}

TEST_F(CListCtrlTest, TakesManyLinesWithoutDrawingBetweenThem)
{
    list->SetRedraw(false);
    Fill(1000);
    list->SetRedraw(true);
    EXPECT_EQ(list->GetItemCount(), 1000);
    EXPECT_TRUE(list->visualRect(list->model()->index(999, 0)).isValid());
}

TEST_F(CListCtrlTest, SelectsTheFirstLineByTheFirstKey)
{
    Fill(3);
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Down);
    EXPECT_THAT(parent.changes, ElementsAre(Change(0, LVIS_SELECTED, 0)));
}

}  // namespace
