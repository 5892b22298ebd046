#include "siblings/tools/ui/CDlgProgress.h"

#include "ui/support/SuiteTest.h"

#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <thread>

namespace {

class CDlgProgressTest : public zr::test::SuiteTest {
protected:
    // Runs the work on a thread of its own under the dialog.
    int Run(const std::function<void(CDlgProgress&)>& work)
    {
        std::thread worker([&] { work(dialog); });
        const int result = dialog.DoModal();
        worker.join();
        return result;
    }

    CDlgProgress dialog{nullptr};
};

TEST_F(CDlgProgressTest, ShowsTitleTextAndBarOfTheWorker)
{
    std::promise<void> seen;
    std::shared_future<void> isSeen = seen.get_future();
    QObject::connect(&dialog.m_bar, &QProgressBar::valueChanged, &dialog, [&](int value) {
        if (value == 37) {
            seen.set_value();
        }
    });
    QString title;
    QString text;
    const int result = Run([&](CDlgProgress& shown) {
        shown.WaitForWindow();
        shown.SetTitle(u"Loading data");
        shown.SetText(u"<b>meter</b>");
        shown.SetPos(37);
        isSeen.wait();
        shown.End(true);
    });
    EXPECT_EQ(result, static_cast<int>(zr::ui::IDOK));
    QTRY_COMPARE(dialog.windowTitle(), "Loading data");
    EXPECT_EQ(dialog.m_text.text(), "<b>meter</b>");
    EXPECT_EQ(dialog.m_bar.maximum(), 100);
}

TEST_F(CDlgProgressTest, MovesByItselfUntilThePositionIsKnown)
{
    EXPECT_EQ(dialog.m_bar.maximum(), 0);
    Run([](CDlgProgress& shown) {
        shown.WaitForWindow();
        shown.End(true);
    });
    EXPECT_EQ(dialog.m_bar.maximum(), 0);
}

TEST_F(CDlgProgressTest, EndsWhenTheWorkerWasFasterThanTheDialog)
{
    for (int i = 0; i < 20; ++i) {
        CDlgProgress fast(nullptr);
        std::thread worker([&] {
            fast.WaitForWindow();
            fast.End(i % 2 == 0);
        });
        EXPECT_EQ(fast.DoModal(), static_cast<int>(i % 2 == 0 ? zr::ui::IDOK : zr::ui::IDCANCEL));
        worker.join();
    }
}

TEST_F(CDlgProgressTest, StaysUntilTheWorkerHasEndedWhenItIsCancelled)
{
    for (const bool byKey : {true, false}) {
        CDlgProgress shown(nullptr);
        std::promise<void> cancelled;
        std::shared_future<void> isCancelled = cancelled.get_future();
        bool wasVisible = false;
        zr::ui::SetModalHook([&](QDialog& open) {
            if (byKey) {
                QTest::keyClick(&open, Qt::Key_Escape);
            } else {
                QTest::mouseClick(shown.GetDlgItem(zr::ui::IDCANCEL), Qt::LeftButton);
            }
            wasVisible = open.isVisible();
            cancelled.set_value();
        });
        bool sawIt = false;
        std::thread worker([&] {
            shown.WaitForWindow();
            isCancelled.wait();
            sawIt = shown.IsCancelled();
            shown.End(false);
        });
        EXPECT_EQ(shown.DoModal(), static_cast<int>(zr::ui::IDCANCEL));
        worker.join();
        EXPECT_TRUE(sawIt);
        EXPECT_TRUE(wasVisible);
    }
}

TEST_F(CDlgProgressTest, HoldsPositionsAtTheEndsOfTheBar)
{
    dialog.m_bar.SetPos(250);
    EXPECT_EQ(dialog.m_bar.value(), 100);
    dialog.m_bar.SetPos(-3);
    EXPECT_EQ(dialog.m_bar.value(), 0);
}

}  // namespace
