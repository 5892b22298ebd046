#include "platform/ui/CDialog.h"

#include "platform/ui/AfxMessageBox.h"
#include "platform/ui/CButton.h"
#include "platform/ui/CEdit.h"

#include <gtest/gtest.h>
#include <memory>
#include <QTest>

namespace {

constexpr unsigned kEditId = 5068;

class Question : public CDialog {
public:
    Question() : CDialog(200, nullptr), edit(this, kEditId), ok(this, zr::ui::IDOK), cancel(this, zr::ui::IDCANCEL) {}

    void OnInitDialog() override
    {
        ++initialised;
        if (isFocusedByItself) {
            cancel.setFocus();
        }
    }
    void OnOK() override
    {
        if (edit.GetWindowText() == u"right") {
            CDialog::OnOK();
        }
    }

    CEdit edit;
    CButton ok;
    CButton cancel;
    int initialised = 0;
    bool isFocusedByItself = false;
};

class CDialogTest : public ::testing::Test {
protected:
    ~CDialogTest() override
    {
        zr::ui::SetModalHook(nullptr);
        zr::ui::SetMessageBoxHook(nullptr);
    }
};

TEST_F(CDialogTest, FindsItsControlsByNumber)
{
    Question dialog;
    EXPECT_EQ(dialog.GetDlgItem(kEditId), &dialog.edit);
    EXPECT_EQ(dialog.GetDlgItem(4711), nullptr);
}

TEST_F(CDialogTest, IsInitialisedOnceBeforeItShows)
{
    Question dialog;
    zr::ui::SetModalHook([&](QDialog&) { QTest::mouseClick(&dialog.cancel, Qt::LeftButton); });
    EXPECT_EQ(dialog.DoModal(), static_cast<int>(zr::ui::IDCANCEL));
    EXPECT_EQ(dialog.DoModal(), static_cast<int>(zr::ui::IDCANCEL));
    EXPECT_EQ(dialog.initialised, 1);
}

TEST_F(CDialogTest, FocusesItsFirstControlUnlessItHasSetTheFocusItself)
{
    for (const bool isFocusedByItself : {false, true}) {
        Question dialog;
        dialog.isFocusedByItself = isFocusedByItself;
        zr::ui::SetModalHook([&](QDialog& shown) {
            const QWidget* const expected = isFocusedByItself ? static_cast<QWidget*>(&dialog.cancel) : &dialog.edit;
            EXPECT_TRUE(QTest::qWaitForWindowActive(&shown));
            EXPECT_EQ(shown.focusWidget(), expected);
            QTest::keyClick(&shown, Qt::Key_Escape);
        });
        dialog.DoModal();
    }
}

TEST_F(CDialogTest, StaysOpenUntilOnOkLetsItGo)
{
    Question dialog;
    zr::ui::SetModalHook([&](QDialog& shown) {
        QTest::mouseClick(&dialog.ok, Qt::LeftButton);
        EXPECT_TRUE(shown.isVisible());
        QTest::keyClicks(&dialog.edit, QStringLiteral("right"));
        QTest::keyClick(&dialog.edit, Qt::Key_Return);
    });
    EXPECT_EQ(dialog.DoModal(), static_cast<int>(zr::ui::IDOK));
}

TEST_F(CDialogTest, EndsWithCancelOnEscape)
{
    Question dialog;
    zr::ui::SetModalHook([&](QDialog& shown) { QTest::keyClick(&shown, Qt::Key_Escape); });
    EXPECT_EQ(dialog.DoModal(), static_cast<int>(zr::ui::IDCANCEL));
}

TEST_F(CDialogTest, GivesTheKeysBackToTheWindowThatHadThem)
{
    QWidget window;
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    Question dialog;
    zr::ui::SetModalHook([&](QDialog&) {
        EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
        QTest::mouseClick(&dialog.cancel, Qt::LeftButton);
    });
    dialog.DoModal();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
}

TEST_F(CDialogTest, OutlivesTheWindowThatHadTheKeys)
{
    auto window = std::make_unique<QWidget>();
    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    Question dialog;
    zr::ui::SetModalHook([&](QDialog&) {
        window.reset();
        QTest::mouseClick(&dialog.cancel, Qt::LeftButton);
    });
    EXPECT_EQ(dialog.DoModal(), static_cast<int>(zr::ui::IDCANCEL));
}

TEST_F(CDialogTest, AnswersAMessageBoxByItsHook)
{
    zr::ui::SetMessageBoxHook([](const std::u16string& text, unsigned style) {
        EXPECT_EQ(text, u"Go on?");
        EXPECT_EQ(style, zr::ui::MB_YESNO | zr::ui::MB_ICONQUESTION);
        return zr::ui::IDYES;
    });
    EXPECT_EQ(AfxMessageBox(u"Go on?", zr::ui::MB_YESNO | zr::ui::MB_ICONQUESTION), zr::ui::IDYES);
}

}  // namespace
