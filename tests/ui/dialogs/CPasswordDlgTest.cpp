#include "dialogs/ui/CPasswordDlg.h"

#include "dialogs/DialogsIds.h"
#include "ui/support/SuiteTest.h"

#include <algorithm>
#include <functional>
#include <QTest>
#include <vector>

namespace {

constexpr int kOk = static_cast<int>(zr::ui::IDOK);
constexpr int kCancel = static_cast<int>(zr::ui::IDCANCEL);
constexpr int kStandardPrompt = -1;
constexpr int kMost = 20;

class CPasswordDlgTest : public zr::test::SuiteTest {
protected:
    CPasswordDlgTest()
    {
        zr::ui::SetMessageBoxHook([this](const std::u16string& text, unsigned style) {
            messages.push_back(text);
            EXPECT_EQ(style, zr::ui::MB_OK);
            return kOk;
        });
    }

    // Opens it, does what is given, and cancels it if that left it open.
    static int Run(CPasswordDlg& dialog, const std::function<void()>& user)
    {
        zr::ui::SetModalHook([&](QDialog& shown) {
            user();
            if (shown.isVisible()) {
                Click(dialog, zr::ui::IDCANCEL);
            }
        });
        return dialog.DoModal();
    }
    static void Click(CPasswordDlg& dialog, unsigned id) { QTest::mouseClick(dialog.GetDlgItem(id), Qt::LeftButton); }
    static CEdit& Edit(CPasswordDlg& dialog) { return dialog.DlgItem<CEdit>(zr::dialogs::kPasswordEdit); }
    static void Type(CPasswordDlg& dialog, const char* text)
    {
        QTest::keyClicks(&Edit(dialog), QString::fromUtf8(text));
    }
    static int Enter(CPasswordDlg& dialog, const char* text)
    {
        return Run(dialog, [&] {
            Type(dialog, text);
            Click(dialog, zr::ui::IDOK);
        });
    }
    static QString Prompt(CPasswordDlg& dialog) { return dialog.DlgItem<CStatic>(zr::dialogs::kPasswordPrompt).text(); }

    std::vector<std::u16string> messages;
};

TEST_F(CPasswordDlgTest, ShowsItsTextsAndPicturesByNumber)
{
    CPasswordDlg dialog(nullptr, 1234, kMost, false, kStandardPrompt);
    dialog.Create();
    EXPECT_EQ(dialog.objectName(), "200");
    EXPECT_EQ(dialog.windowTitle(), "Password");
    EXPECT_EQ(Prompt(dialog), "Enter the password:");
    EXPECT_FALSE(dialog.windowIcon().isNull());
    const auto& ok = dialog.DlgItem<CImageButton>(zr::ui::IDOK);
    const auto& cancel = dialog.DlgItem<CImageButton>(zr::ui::IDCANCEL);
    EXPECT_EQ(ok.text(), "OK");
    EXPECT_EQ(cancel.text(), "Cancel");
    EXPECT_EQ(ok.icon().pixmap(24).toImage(), zr::ui::Image(66).pixmap(24).toImage());
    EXPECT_EQ(cancel.icon().pixmap(24).toImage(), zr::ui::Image(65).pixmap(24).toImage());
}

TEST_F(CPasswordDlgTest, AsksForANewPasswordByItsFlag)
{
    CPasswordDlg dialog(nullptr, 1234, kMost, true, kStandardPrompt);
    dialog.Create();
    EXPECT_EQ(Prompt(dialog), "Enter the new password:");
}

TEST_F(CPasswordDlgTest, AsksToRepeatWhateverTheFlagSays)
{
    for (const bool flag : {false, true}) {
        CPasswordDlg dialog(nullptr, u"x", kMost, flag, kStandardPrompt);
        dialog.SetPasswordType(2);
        dialog.Create();
        EXPECT_EQ(dialog.windowTitle(), "Confirm password");
        EXPECT_EQ(Prompt(dialog), "Enter the password again:");
    }
}

TEST_F(CPasswordDlgTest, AsksWithTheTextOfTheGivenNumberInEveryType)
{
    for (const int type : {0, 1, 2}) {
        CPasswordDlg dialog(nullptr, 1234, kMost, true, 363);
        dialog.SetPasswordType(type);
        dialog.Create();
        EXPECT_EQ(Prompt(dialog), "Enter a name.");
    }
}

// Number 0 stands in no language file of ours, so it shows as such; what counts is that the standard prompt is gone.
TEST_F(CPasswordDlgTest, TakesAPromptNumberOfZeroForANumber)
{
    CPasswordDlg dialog(nullptr, 1234, kMost, false, 0);
    dialog.Create();
    EXPECT_EQ(Prompt(dialog), "#0");
}

TEST_F(CPasswordDlgTest, HidesItsCharacters)
{
    CPasswordDlg dialog(nullptr, u"secret", kMost, false, kStandardPrompt);
    Run(dialog, [&] {
        Type(dialog, "secret");
        EXPECT_EQ(Edit(dialog).echoMode(), QLineEdit::Password);
        EXPECT_FALSE(Edit(dialog).displayText().contains('s'));
        EXPECT_EQ(Edit(dialog).GetWindowText(), u"secret");
    });
}

TEST_F(CPasswordDlgTest, TakesTheInputAtOnce)
{
    CPasswordDlg dialog(nullptr, u"secret", kMost, false, kStandardPrompt);
    EXPECT_EQ(Run(dialog,
                  [&] {
                      ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
                      EXPECT_TRUE(Edit(dialog).hasFocus());
                      QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("secret"));
                      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
                  }),
              kOk);
}

TEST_F(CPasswordDlgTest, TakesNoMoreCharactersThanItsLimit)
{
    CPasswordDlg dialog(nullptr, u"sec", 3, false, kStandardPrompt);
    EXPECT_EQ(Enter(dialog, "secret"), kOk);
    EXPECT_EQ(dialog.GetPassword(), u"sec");
}

TEST_F(CPasswordDlgTest, TakesAnyNumberOfCharactersWithoutALimit)
{
    CPasswordDlg dialog(nullptr, u"secret", 0, false, kStandardPrompt);
    EXPECT_EQ(Enter(dialog, "secret"), kOk);
}

TEST_F(CPasswordDlgTest, ClosesOnTheRightNumber)
{
    CPasswordDlg dialog(nullptr, 1234, kMost, false, kStandardPrompt);
    EXPECT_EQ(Enter(dialog, "1234"), kOk);
    EXPECT_EQ(dialog.GetPassword(), u"1234");
    EXPECT_TRUE(messages.empty());
}

TEST_F(CPasswordDlgTest, ComparesANumberByTheLeadingDigitsOfTheEntry)
{
    CPasswordDlg dialog(nullptr, 1234, kMost, false, kStandardPrompt);
    EXPECT_EQ(Enter(dialog, "1234xyz"), kOk);
    EXPECT_EQ(dialog.GetPassword(), u"1234xyz");
}

TEST_F(CPasswordDlgTest, ReadsATextThatIsNoNumberAsZero)
{
    CPasswordDlg zero(nullptr, 0, kMost, false, kStandardPrompt);
    EXPECT_EQ(Enter(zero, "secret"), kOk);
    CPasswordDlg one(nullptr, 1, kMost, false, kStandardPrompt);
    EXPECT_EQ(Enter(one, "secret"), kCancel);
}

TEST_F(CPasswordDlgTest, ClosesOnTheRightTextAndItsCaseOnly)
{
    CPasswordDlg right(nullptr, u"Secret", kMost, false, kStandardPrompt);
    EXPECT_EQ(Enter(right, "Secret"), kOk);
    CPasswordDlg wrong(nullptr, u"Secret", kMost, false, kStandardPrompt);
    EXPECT_EQ(Enter(wrong, "secret"), kCancel);
    EXPECT_EQ(messages, std::vector<std::u16string>{u"The password is wrong."});
}

TEST_F(CPasswordDlgTest, AcceptsAnEmptyEntryForAnEmptyText)
{
    CPasswordDlg dialog(nullptr, u"", kMost, false, kStandardPrompt);
    EXPECT_EQ(Enter(dialog, ""), kOk);
}

TEST_F(CPasswordDlgTest, AcceptsAnyEntryWhenItCollectsANewPassword)
{
    for (const char* entry : {"", "anything"}) {
        CPasswordDlg dialog(nullptr, u"old", kMost, true, kStandardPrompt);
        dialog.SetPasswordType(1);
        EXPECT_EQ(Enter(dialog, entry), kOk);
        EXPECT_EQ(dialog.GetPassword(), QString::fromLatin1(entry).toStdU16String());
    }
    EXPECT_TRUE(messages.empty());
}

TEST_F(CPasswordDlgTest, StaysOpenOnAWrongEntryWithItsTextSelected)
{
    CPasswordDlg dialog(nullptr, u"secret", kMost, false, kStandardPrompt);
    EXPECT_EQ(Run(dialog,
                  [&] {
                      ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
                      Type(dialog, "wrong");
                      dialog.GetDlgItem(zr::ui::IDOK)->setFocus();
                      Click(dialog, zr::ui::IDOK);
                      EXPECT_TRUE(dialog.isVisible());
                      EXPECT_TRUE(Edit(dialog).hasFocus());
                      EXPECT_EQ(Edit(dialog).selectionLength(), 5);
                      EXPECT_EQ(Edit(dialog).cursorPosition(), 5);
                      // The selection goes with the first key of the next try.
                      Type(dialog, "secret");
                      Click(dialog, zr::ui::IDOK);
                  }),
              kOk);
    EXPECT_EQ(messages, std::vector<std::u16string>{u"The password is wrong."});
}

TEST_F(CPasswordDlgTest, CountsNoAttempts)
{
    CPasswordDlg dialog(nullptr, 1234, kMost, false, kStandardPrompt);
    EXPECT_EQ(Run(dialog,
                  [&] {
                      for (int i = 0; i < 50; ++i) {
                          Type(dialog, "1");
                          Click(dialog, zr::ui::IDOK);
                      }
                      Type(dialog, "1234");
                      Click(dialog, zr::ui::IDOK);
                  }),
              kOk);
    EXPECT_EQ(messages.size(), 50u);
}

TEST_F(CPasswordDlgTest, SaysOfARepeatedPasswordThatTheTwoDiffer)
{
    CPasswordDlg dialog(nullptr, u"secret", kMost, false, kStandardPrompt);
    dialog.SetPasswordType(2);
    EXPECT_EQ(Enter(dialog, "sceret"), kCancel);
    EXPECT_EQ(messages, std::vector<std::u16string>{u"The two passwords differ."});
}

TEST_F(CPasswordDlgTest, TellsOfARefusalByCancel)
{
    CPasswordDlg dialog(nullptr, 1234, kMost, false, kStandardPrompt);
    EXPECT_EQ(Run(dialog, [&] { QTest::keyClick(&Edit(dialog), Qt::Key_Escape); }), kCancel);
    EXPECT_TRUE(messages.empty());
}

TEST_F(CPasswordDlgTest, ChecksANumberOrATextOfTheCaller)
{
    CPasswordDlg number(nullptr, 1234, kMost, false, kStandardPrompt);
    EXPECT_TRUE(number.CheckIntPassword(1234));
    EXPECT_FALSE(number.CheckIntPassword(0));
    CPasswordDlg text(nullptr, u"Secret", kMost, false, kStandardPrompt);
    EXPECT_TRUE(text.CheckStringPassword(u"Secret"));
    EXPECT_FALSE(text.CheckStringPassword(u"secret"));
}

TEST_F(CPasswordDlgTest, ShowsEveryTextWholeInEveryLanguage)
{
    for (const char* language : {"en", "de", "es"}) {
        UseLanguage(language);
        for (const int type : {0, 2}) {
            CPasswordDlg dialog(nullptr, 1234, kMost, true, kStandardPrompt);
            dialog.SetPasswordType(type);
            Run(dialog, [&] {
                for (const unsigned id : {zr::ui::IDOK, zr::ui::IDCANCEL, zr::dialogs::kPasswordPrompt}) {
                    const QWidget& control = *dialog.GetDlgItem(id);
                    EXPECT_GE(control.width(), control.minimumSizeHint().width()) << language << id;
                    EXPECT_GE(control.height(), control.minimumSizeHint().height()) << language << id;
                    EXPECT_TRUE(dialog.rect().contains(control.geometry()));
                }
                SavePicture(dialog, std::string("password-") + language + (type == 0 ? "" : "-repeat"));
            });
        }
    }
}

TEST_F(CPasswordDlgTest, GivesALongPromptTheLinesItTakes)
{
    CPasswordDlg brief(nullptr, 1234, kMost, true, kStandardPrompt);
    brief.Create();
    CPasswordDlg wordy(nullptr, 1234, kMost, true, 509);
    wordy.Create();
    const auto& prompt = wordy.DlgItem<CStatic>(zr::dialogs::kPasswordPrompt);
    Run(wordy, [&] {
        EXPECT_GE(prompt.height(), prompt.heightForWidth(prompt.width()));
        EXPECT_GT(wordy.height(), brief.height());
        SavePicture(wordy, "password-wordy");
    });
}

TEST_F(CPasswordDlgTest, IsReadableOnADarkDesktop)
{
    UseDarkColours();
    CPasswordDlg dialog(nullptr, 1234, kMost, false, kStandardPrompt);
    Run(dialog, [&] {
        const QImage picture = dialog.grab().toImage();
        EXPECT_LT(picture.pixelColor(1, 1).lightness(), 64);
        const QImage prompt = dialog.GetDlgItem(zr::dialogs::kPasswordPrompt)->grab().toImage();
        int lightest = 0;
        for (int y = 0; y < prompt.height(); ++y) {
            for (int x = 0; x < prompt.width(); ++x) {
                lightest = std::max(lightest, prompt.pixelColor(x, y).lightness());
            }
        }
        EXPECT_GT(lightest, 192);
        Type(dialog, "secret");
        SavePicture(dialog, "password-dark");
    });
}

}  // namespace
