#include "platform/ui/CReBar.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QWidget>

namespace {

constexpr unsigned kButtons = 8;

class CReBarTest : public testing::Test {
protected:
    CReBarTest()
    {
        auto* const tools = new CToolBar(&parent, 2, u"tools");
        for (unsigned id = 1; id <= kButtons; ++id) {
            tools->AddButton(id, QIcon(), u"A button");
        }
        strip.AddBar(*tools);
        needed = tools->sizeHint().width();
        bar = tools;
    }
    unsigned Visible() const
    {
        unsigned visible = 0;
        for (const unsigned id : bar->Buttons()) {
            visible += strip.GetBandRect().contains(bar->GetButtonRect(id)) ? 1U : 0U;
        }
        return visible;
    }

    QWidget parent;
    CReBar strip{&parent, 1};
    CToolBar* bar = nullptr;
    int needed = 0;
};

TEST_F(CReBarTest, ShowsAllButtonsWhereThereIsRoom)
{
    strip.resize(needed, 40);
    parent.resize(needed, 40);
    parent.show();
    QApplication::processEvents();
    EXPECT_EQ(Visible(), kButtons);
}

TEST_F(CReBarTest, ShowsAsManyButtonsAsFitAtItsFirstPicture)
{
    strip.resize(needed - 1, 40);
    parent.resize(needed, 40);
    parent.show();
    QApplication::processEvents();
    EXPECT_GE(Visible(), kButtons - 2);
    EXPECT_LT(Visible(), kButtons);
}

}  // namespace
