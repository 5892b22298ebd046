#include "hosts/kestrix/ui/LoggedDataWindow.h"

#include "LoggedDataFixture.h"
#include "logger/SuiteKey.h"
#include "ui/support/KeepPicture.h"

#include <QClipboard>
#include <QHeaderView>
#include <QMimeData>
#include <QPointer>
#include <QToolButton>

namespace zr::desktop {
namespace {

using namespace zr::logger;

using LoggedDataWindowTest = LoggedDataFixture;

TEST_F(LoggedDataWindowTest, OpensOnWhatIsRecordedOfTheSelectedDevice)
{
    StartWithData();
    m_frame->ShowDevice(u"METER-1");
    QTest::keyClick(m_frame.get(), Qt::Key_L, Qt::ControlModifier);
    Settle();
    auto* const window = dynamic_cast<LoggedDataWindow*>(QApplication::activeWindow());
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->windowTitle().toStdString().substr(0, 22), "Logged data of METER-1");
    EXPECT_EQ(List(*window).GetColumnCount(), 3);
    EXPECT_TRUE(test::KeepPicture(window->grab().toImage(), "logged-data.png"));
}

TEST_F(LoggedDataWindowTest, OpensWideEnoughForItsButtonsInEveryLanguage)
{
    StartWithData();
    for (const char* const language : {"en", "de", "es"}) {
        ASSERT_TRUE(m_frame->UseLanguage(language));
        const QPointer<LoggedDataWindow> window = OpenFor(u"METER-1");
        ASSERT_FALSE(window.isNull());
        Settle();
        const auto* const chevron = window->findChild<QToolButton*>(QStringLiteral("chevron"));
        ASSERT_NE(chevron, nullptr);
        EXPECT_FALSE(chevron->isVisible()) << language << ' ' << window->width();
        delete window;
    }
}

TEST_F(LoggedDataWindowTest, OpensSeveralAtOnceAndEachOnce)
{
    StartWithData();
    LoggedDataWindow* const first = OpenFor(u"METER-1");
    LoggedDataWindow* const second = OpenFor(u"METER-2");
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first, second);
    EXPECT_EQ(OpenFor(u"METER-1"), first);
}

TEST_F(LoggedDataWindowTest, ShowsAllDevicesOfAGroup)
{
    StartWithData();
    LoggedDataWindow* const window = m_frame->OpenLoggedData(m_frame->Tree().Tree().Top().front());
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(List(*window).GetColumnCount(), 4);
}

TEST_F(LoggedDataWindowTest, TellsWhereNothingIsRecorded)
{
    StartWithData();
    EXPECT_EQ(OpenFor(u"IO-1"), nullptr);
    ASSERT_EQ(m_asked.size(), 1U);
    EXPECT_EQ(m_asked[0], u"Nothing is recorded of IO-1.");
}

TEST_F(LoggedDataWindowTest, BeginsWithTheUnitAndPeriodChosenLast)
{
    StartWithData();
    SuiteKey key;
    key.WriteText(kLastGroupValue, u"MONTH");
    key.WriteText(kLastPeriodValue, u"60");
    LoggedDataWindow* const window = OpenFor(u"METER-1");
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->Window().groupBy, kGroupByMonth);
    EXPECT_EQ(window->Window().samplePeriod.seconds, 3600);
    EXPECT_TRUE(window->Status().contains("reduced to one record per period: ")) << window->Status().toStdString();
}

TEST_F(LoggedDataWindowTest, GoesBackByTheLeftArrow)
{
    StartWithData();
    LoggedDataWindow* const window = OpenFor(u"METER-1");
    ASSERT_NE(window, nullptr);
    Settle();
    const ZRDateTime present = window->Window().dateFrom;
    QTest::keyClick(&List(*window), Qt::Key_Left);
    EXPECT_LT(window->Window().dateFrom.seconds, present.seconds);
    window->OnNext();
    EXPECT_EQ(window->Window().dateFrom, present);
}

TEST_F(LoggedDataWindowTest, CopiesByItsKey)
{
    StartWithData();
    LoggedDataWindow* const window = OpenFor(u"METER-1");
    ASSERT_NE(window, nullptr);
    Settle();
    QTest::keyClick(&List(*window), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&List(*window), Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(QApplication::clipboard()->mimeData()->hasFormat("text/html"));
}

TEST_F(LoggedDataWindowTest, ExportsWhatIsShown)
{
    StartWithData();
    LoggedDataWindow* const window = OpenFor(u"METER-1");
    ASSERT_NE(window, nullptr);
    window->SetupData(window->Window().dateTo, kGroupByYear, {0, 0}, true);
    ASSERT_GE(List(*window).GetItemCount(), 1);
    for (const char* const name : {"table.csv", "table.xlsx", "table.pdf"}) {
        EXPECT_TRUE(window->ExportTo(m_folder / name)) << name;
        EXPECT_GT(std::filesystem::file_size(m_folder / name), 0U) << name;
    }
    EXPECT_FALSE(window->ExportTo(m_folder / "none" / "table.csv"));
    EXPECT_EQ(m_asked.size(), 1U);
}

TEST_F(LoggedDataWindowTest, KeepsItsColumnsUntilItIsOpenedAgain)
{
    StartWithData();
    LoggedDataWindow* window = OpenFor(u"METER-1");
    ASSERT_NE(window, nullptr);
    List(*window).horizontalHeader()->resizeSection(2, 187);
    window->close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    window = OpenFor(u"METER-1");
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(List(*window).GetColumnWidth(2), 187);
}

TEST_F(LoggedDataWindowTest, ComesBackWithTheNextRegistry)
{
    StartWithData();
    QPointer<LoggedDataWindow> window = OpenFor(u"METER-1");
    ASSERT_NE(window, nullptr);
    m_frame->RegistryGoes();
    EXPECT_TRUE(window.isNull());
    m_frame->RegistryCame();
    int open = 0;
    for (const QWidget* const top : QApplication::topLevelWidgets()) {
        open += dynamic_cast<const LoggedDataWindow*>(top) != nullptr ? 1 : 0;
    }
    EXPECT_EQ(open, 1);
}

}  // namespace
}  // namespace zr::desktop
