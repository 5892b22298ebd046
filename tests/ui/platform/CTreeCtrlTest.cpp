#include "platform/ui/CTreeCtrl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <QPixmap>
#include <QTest>

namespace {

using namespace zr::ui;
using ::testing::ElementsAre;

constexpr unsigned kTreeId = 5197;

class Parent : public CWnd {
public:
    bool OnNotify(const NMHDR& notice) override
    {
        EXPECT_EQ(notice.idFrom, kTreeId);
        EXPECT_EQ(notice.code, TVN_SELCHANGED);
        selected.push_back(reinterpret_cast<const NMTREEVIEW&>(notice).itemNew);
        return true;
    }
    std::vector<HTREEITEM> selected;
};

class CTreeCtrlTest : public ::testing::Test {
protected:
    CTreeCtrlTest() : tree(new CTreeCtrl(&parent, kTreeId))
    {
        group = tree->InsertItem(u"Line 1", QIcon());
        meter = tree->InsertItem(u"Meter A", QIcon(), group);
        other = tree->InsertItem(u"Meter B", QIcon(), group);
        parent.resize(300, 300);
        tree->resize(300, 300);
        parent.show();
    }
    Parent parent;
    CTreeCtrl* tree;
    HTREEITEM group;
    HTREEITEM meter;
    HTREEITEM other;
};

TEST_F(CTreeCtrlTest, KeepsItemsInTheirOrderBelowTheirParents)
{
    ASSERT_EQ(tree->topLevelItemCount(), 1);
    ASSERT_EQ(group->childCount(), 2);
    EXPECT_EQ(group->child(1), other);
    EXPECT_EQ(tree->GetItemText(other), u"Meter B");
    tree->SetItemText(other, u"Meter C");
    EXPECT_EQ(tree->GetItemText(other), u"Meter C");
}

TEST_F(CTreeCtrlTest, KeepsANumberAndAPictureForEachItem)
{
    EXPECT_EQ(tree->GetItemData(meter), 0u);
    tree->SetItemData(meter, 4711);
    EXPECT_EQ(tree->GetItemData(meter), 4711u);
    QPixmap picture(8, 8);
    picture.fill(Qt::red);
    tree->SetItemImage(meter, picture);
    EXPECT_FALSE(meter->icon(0).isNull());
}

TEST_F(CTreeCtrlTest, TellsTheParentOfASelectionByMouseKeysAndCall)
{
    tree->Expand(group);
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, tree->visualItemRect(meter).center());
    QTest::keyClick(tree, Qt::Key_Down);
    tree->SelectItem(group);
    EXPECT_THAT(parent.selected, ElementsAre(meter, other, group));
    EXPECT_EQ(tree->GetSelectedItem(), group);
}

TEST_F(CTreeCtrlTest, OpensTheParentsOfAnItemThatIsSelected)
{
    EXPECT_FALSE(group->isExpanded());
    tree->SelectItem(meter);
    EXPECT_TRUE(group->isExpanded());
}

TEST_F(CTreeCtrlTest, SelectsNothingAfterAllItemsAreDeleted)
{
    tree->SelectItem(meter);
    tree->DeleteAllItems();
    EXPECT_EQ(tree->GetSelectedItem(), nullptr);
    tree->SelectItem(nullptr);
    EXPECT_EQ(tree->topLevelItemCount(), 0);
    EXPECT_EQ(parent.selected.back(), nullptr);
}

}  // namespace
