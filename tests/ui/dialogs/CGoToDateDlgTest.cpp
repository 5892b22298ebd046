#include "dialogs/ui/CGoToDateDlg.h"

#include "dialogs/DialogsIds.h"
#include "ui/support/SuiteTest.h"

#include <functional>
#include <QTableView>
#include <QTest>

namespace {

constexpr int kOk = static_cast<int>(zr::ui::IDOK);
constexpr int kCancel = static_cast<int>(zr::ui::IDCANCEL);
constexpr double k29February2024AtSix = 45351.25;

ZRDateTime Date(int year, int month, int day, int hour = 0)
{
    ZRDateTime date;
    date.SetDateTime(year, month, day, hour, 0, 0, 0, 0);
    return date;
}

class CGoToDateDlgTest : public zr::test::SuiteTest {
protected:
    static int Run(CGoToDateDlg& dialog, const std::function<void()>& user)
    {
        zr::ui::SetModalHook([&](QDialog& shown) {
            user();
            if (shown.isVisible()) {
                Click(dialog, zr::ui::IDCANCEL);
            }
        });
        return dialog.DoModal();
    }
    static void Click(CGoToDateDlg& dialog, unsigned id) { QTest::mouseClick(dialog.GetDlgItem(id), Qt::LeftButton); }
    static int ClickOk(CGoToDateDlg& dialog)
    {
        return Run(dialog, [&] { Click(dialog, zr::ui::IDOK); });
    }
    static CMonthCalCtrl& Calendar(CGoToDateDlg& dialog)
    {
        return dialog.DlgItem<CMonthCalCtrl>(zr::dialogs::kGoToDateCalendar);
    }
    // The table of days inside the calendar; it takes mouse and keys.
    static QTableView& Days(CGoToDateDlg& dialog) { return *Calendar(dialog).findChild<QTableView*>(); }
    // The cell of the shown month that says so.
    static QPoint CellOf(CGoToDateDlg& dialog, int day)
    {
        QTableView& days = Days(dialog);
        const int first = Calendar(dialog).verticalHeaderFormat() == QCalendarWidget::NoVerticalHeader ? 0 : 1;
        bool isThisMonth = false;
        for (int row = 1; row < days.model()->rowCount(); ++row) {
            for (int column = first; column < days.model()->columnCount(); ++column) {
                const QModelIndex index = days.model()->index(row, column);
                isThisMonth = isThisMonth || index.data().toInt() == 1;
                if (isThisMonth && index.data().toInt() == day) {
                    return days.visualRect(index).center();
                }
            }
        }
        return {};
    }
    static void ClickDay(CGoToDateDlg& dialog, int day)
    {
        QTest::mouseClick(Days(dialog).viewport(), Qt::LeftButton, Qt::NoModifier, CellOf(dialog, day));
    }
};

TEST_F(CGoToDateDlgTest, ShowsItsTextsAndPicturesByNumber)
{
    CGoToDateDlg dialog(nullptr);
    dialog.Create();
    EXPECT_EQ(dialog.objectName(), "203");
    EXPECT_EQ(dialog.windowTitle(), "Go to date");
    EXPECT_FALSE(dialog.windowIcon().isNull());
    const auto& ok = dialog.DlgItem<CImageButton>(zr::ui::IDOK);
    const auto& cancel = dialog.DlgItem<CImageButton>(zr::ui::IDCANCEL);
    EXPECT_EQ(ok.text(), "OK");
    EXPECT_EQ(cancel.text(), "Cancel");
    EXPECT_EQ(ok.icon().pixmap(24).toImage(), zr::ui::Image(66).pixmap(24).toImage());
    EXPECT_EQ(cancel.icon().pixmap(24).toImage(), zr::ui::Image(65).pixmap(24).toImage());
}

TEST_F(CGoToDateDlgTest, HasNoFrame)
{
    CGoToDateDlg dialog(nullptr);
    EXPECT_TRUE(dialog.windowFlags().testFlag(Qt::FramelessWindowHint));
    EXPECT_TRUE(dialog.isWindow());
}

TEST_F(CGoToDateDlgTest, StandsWithItsLowerLeftCornerAtThePosition)
{
    CGoToDateDlg dialog(nullptr);
    dialog.SetLeftBottomPosition(120, 500);
    Run(dialog, [&] {
        EXPECT_EQ(dialog.geometry().left(), 120);
        EXPECT_EQ(dialog.geometry().top() + dialog.geometry().height(), 500);
    });
}

TEST_F(CGoToDateDlgTest, StandsAtMinusOneWithoutAPosition)
{
    CGoToDateDlg dialog(nullptr);
    Run(dialog, [&] {
        EXPECT_EQ(dialog.geometry().left(), -1);
        EXPECT_EQ(dialog.geometry().top() + dialog.geometry().height(), -1);
    });
}

TEST_F(CGoToDateDlgTest, GivesTheCalendarAllHeightAndEachButtonHalfTheWidth)
{
    CGoToDateDlg dialog(nullptr);
    const auto check = [&] {
        const QRect calendar = Calendar(dialog).geometry();
        const QRect ok = dialog.GetDlgItem(zr::ui::IDOK)->geometry();
        const QRect cancel = dialog.GetDlgItem(zr::ui::IDCANCEL)->geometry();
        EXPECT_EQ(calendar.topLeft(), QPoint(0, 0));
        EXPECT_EQ(calendar.width(), dialog.width());
        EXPECT_EQ(calendar.bottom() + 1, ok.top());
        EXPECT_EQ(ok.bottom() + 1, dialog.height());
        EXPECT_EQ(ok.left(), 0);
        EXPECT_EQ(ok.right() + 1, cancel.left());
        EXPECT_EQ(cancel.right() + 1, dialog.width());
        EXPECT_LE(std::abs(ok.width() - cancel.width()), 1);
        EXPECT_EQ(ok.height(), cancel.height());
    };
    Run(dialog, [&] {
        check();
        dialog.resize(dialog.size() + QSize(101, 57));
        check();
    });
}

TEST_F(CGoToDateDlgTest, SelectsTheDateThatItIsGiven)
{
    CGoToDateDlg dialog(nullptr);
    dialog.SetDate(k29February2024AtSix);
    EXPECT_EQ(dialog.GetDate(), Date(2024, 2, 29, 6));
    dialog.Create();
    EXPECT_EQ(Calendar(dialog).selectedDate(), QDate(2024, 2, 29));
}

TEST_F(CGoToDateDlgTest, LosesTheTimeOfDayOnOk)
{
    CGoToDateDlg dialog(nullptr);
    dialog.SetDate(k29February2024AtSix);
    EXPECT_EQ(ClickOk(dialog), kOk);
    EXPECT_EQ(dialog.GetDate(), Date(2024, 2, 29));
}

TEST_F(CGoToDateDlgTest, LeavesTheDateAsItWasOnCancel)
{
    CGoToDateDlg dialog(nullptr);
    dialog.SetDate(k29February2024AtSix);
    EXPECT_EQ(Run(dialog,
                  [&] {
                      ClickDay(dialog, 5);
                      Click(dialog, zr::ui::IDCANCEL);
                  }),
              kCancel);
    EXPECT_EQ(dialog.GetDate(), Date(2024, 2, 29, 6));
}

TEST_F(CGoToDateDlgTest, HasNoDateAtFirst)
{
    CGoToDateDlg dialog(nullptr);
    EXPECT_FALSE(dialog.GetDate().IsValid());
    EXPECT_EQ(Run(dialog, [&] { Click(dialog, zr::ui::IDCANCEL); }), kCancel);
    EXPECT_FALSE(dialog.GetDate().IsValid());
}

TEST_F(CGoToDateDlgTest, HasNoDateForOneThatDoesNotExist)
{
    CGoToDateDlg dialog(nullptr);
    dialog.SetDate(1e300);
    EXPECT_FALSE(dialog.GetDate().IsValid());
    EXPECT_EQ(ClickOk(dialog), kOk);
    EXPECT_TRUE(dialog.GetDate().IsValid());  // the calendar stood on today
}

TEST_F(CGoToDateDlgTest, TakesTheDayThatIsClicked)
{
    CGoToDateDlg dialog(nullptr);
    dialog.SetDate(k29February2024AtSix);
    EXPECT_EQ(Run(dialog,
                  [&] {
                      ClickDay(dialog, 14);
                      EXPECT_TRUE(dialog.isVisible());
                      Click(dialog, zr::ui::IDOK);
                  }),
              kOk);
    EXPECT_EQ(dialog.GetDate(), Date(2024, 2, 14));
}

TEST_F(CGoToDateDlgTest, TakesTheDayThatTheKeysGoTo)
{
    CGoToDateDlg dialog(nullptr);
    dialog.SetDate(k29February2024AtSix);
    EXPECT_EQ(Run(dialog,
                  [&] {
                      ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
                      EXPECT_TRUE(Days(dialog).hasFocus());
                      QTest::keyClick(&Days(dialog), Qt::Key_Left);
                      QTest::keyClick(&Days(dialog), Qt::Key_Up);
                      QTest::keyClick(&Days(dialog), Qt::Key_PageDown);
                      QTest::keyClick(&Days(dialog), Qt::Key_Return);
                  }),
              kOk);
    EXPECT_EQ(dialog.GetDate(), Date(2024, 3, 21));
}

TEST_F(CGoToDateDlgTest, EndsWithCancelOnEscapeInTheCalendar)
{
    CGoToDateDlg dialog(nullptr);
    dialog.SetDate(k29February2024AtSix);
    EXPECT_EQ(Run(dialog, [&] { QTest::keyClick(&Days(dialog), Qt::Key_Escape); }), kCancel);
    EXPECT_EQ(dialog.GetDate(), Date(2024, 2, 29, 6));
}

TEST_F(CGoToDateDlgTest, HasNoDateWhenNoDayIsPicked)
{
    CGoToDateDlg dialog(nullptr);
    dialog.SetDate(k29February2024AtSix);
    EXPECT_EQ(Run(dialog,
                  [&] {
                      Calendar(dialog).setSelectionMode(QCalendarWidget::NoSelection);
                      Click(dialog, zr::ui::IDOK);
                  }),
              kOk);
    EXPECT_FALSE(dialog.GetDate().IsValid());
}

TEST_F(CGoToDateDlgTest, PicksNothingBefore2000)
{
    CGoToDateDlg dialog(nullptr);
    dialog.SetDate(36526.5);
    EXPECT_EQ(Run(dialog,
                  [&] {
                      QTest::keyClick(&Days(dialog), Qt::Key_Left);
                      QTest::keyClick(&Days(dialog), Qt::Key_Up);
                      QTest::keyClick(&Days(dialog), Qt::Key_PageUp);
                      QTest::keyClick(&Days(dialog), Qt::Key_Return);
                  }),
              kOk);
    EXPECT_EQ(dialog.GetDate(), Date(2000, 1, 1));
    EXPECT_FALSE(Calendar(dialog).SetCurSel({1999, 12, 31}));
}

TEST_F(CGoToDateDlgTest, PicksNothingAfter2133)
{
    constexpr double kLastDay2133 = 85468.0;
    CGoToDateDlg dialog(nullptr);
    dialog.SetDate(kLastDay2133);
    EXPECT_EQ(dialog.GetDate(), Date(2133, 12, 31));
    EXPECT_EQ(Run(dialog,
                  [&] {
                      QTest::keyClick(&Days(dialog), Qt::Key_Right);
                      QTest::keyClick(&Days(dialog), Qt::Key_Down);
                      QTest::keyClick(&Days(dialog), Qt::Key_PageDown);
                      QTest::keyClick(&Days(dialog), Qt::Key_Return);
                  }),
              kOk);
    EXPECT_EQ(dialog.GetDate(), Date(2133, 12, 31));
    EXPECT_FALSE(Calendar(dialog).SetCurSel({2134, 1, 1}));
}

TEST_F(CGoToDateDlgTest, StaysInItsRangeForADateBehindIt)
{
    constexpr double k1March2135 = 85893.0;
    CGoToDateDlg dialog(nullptr);
    dialog.SetDate(k1March2135);
    EXPECT_EQ(dialog.GetDate(), Date(2135, 3, 1));
    EXPECT_EQ(ClickOk(dialog), kOk);
    EXPECT_TRUE(dialog.GetDate().IsValid());
    EXPECT_LT(dialog.GetDate(), Date(2134, 1, 1));
}

TEST_F(CGoToDateDlgTest, IsACalendarOfTheUsersLanguage)
{
    const struct {
        const char* language;
        QString month;
        QString firstDay;
    } rows[] = {{"en", "February", "Mon"}, {"de", "Februar", "Mo"}, {"es", "febrero", "lun"}};
    for (const auto& row : rows) {
        UseLanguage(row.language);
        CGoToDateDlg dialog(nullptr);
        dialog.SetDate(k29February2024AtSix);
        dialog.SetLeftBottomPosition(0, 400);
        Run(dialog, [&] {
            EXPECT_EQ(Calendar(dialog).firstDayOfWeek(), Qt::Monday);
            EXPECT_EQ(Calendar(dialog).verticalHeaderFormat(), QCalendarWidget::ISOWeekNumbers);
            EXPECT_EQ(Calendar(dialog).locale().standaloneMonthName(2), row.month);
            const QString head = Days(dialog).model()->index(0, 1).data().toString();
            EXPECT_TRUE(head.startsWith(row.firstDay)) << head.toStdString();
            for (const unsigned id : {zr::ui::IDOK, zr::ui::IDCANCEL}) {
                EXPECT_GE(dialog.GetDlgItem(id)->width(), dialog.GetDlgItem(id)->minimumSizeHint().width());
            }
            SavePicture(dialog, std::string("gotodate-") + row.language);
        });
    }
}

TEST_F(CGoToDateDlgTest, IsADarkCalendarOnADarkDesktop)
{
    UseDarkColours();
    CGoToDateDlg dialog(nullptr);
    dialog.SetDate(k29February2024AtSix);
    Run(dialog, [&] {
        const QImage days = Days(dialog).grab().toImage();
        EXPECT_LT(days.pixelColor(2, 2).lightness(), 64);
        EXPECT_LT(days.pixelColor(days.width() - 3, days.height() - 3).lightness(), 64);
        SavePicture(dialog, "gotodate-dark");
    });
}

}  // namespace
