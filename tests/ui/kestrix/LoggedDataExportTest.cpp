// What a window on logged data shows, as a file.
#include "LoggedDataFixture.h"
#include "siblings/tools/ui/CDlgProgress.h"
#ifndef _WIN32
#include "support/SmallDisk.h"
#endif

#include <QFileDialog>
#include <QLineEdit>
#include <QPointer>
#include <QTimer>

namespace zr::desktop {
namespace {

constexpr std::array kNames = {"table.csv", "table.xlsx", "table.pdf"};

class LoggedDataExportTest : public LoggedDataFixture {
protected:
    LoggedDataWindow& Open()
    {
        StartWithData();
        LoggedDataWindow* const window = OpenFor(u"METER-1");
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
        ShowAll(*window);
        EXPECT_EQ(List(*window).GetItemCount(), kRecords);
        m_window = window;
        return *window;
    }
    // By its key, where the user types a name and chooses a kind of file.
    void ExportAs(const std::string& name, const QString& kind)
    {
        m_window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_window));
        QTimer look;
        QObject::connect(&look, &QTimer::timeout, m_window, [&] {
            if (auto* const dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget())) {
                look.stop();
                auto* const edit = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
                ASSERT_NE(edit, nullptr);
                m_offered = dialog->selectedFiles().value(0).toStdString();
                const QStringList kinds = dialog->nameFilters().filter(kind);
                ASSERT_EQ(kinds.size(), 1);
                dialog->selectNameFilter(kinds[0]);
                edit->setText(QString::fromStdString(Path(name)));
                QMetaObject::invokeMethod(dialog, "accept");
            }
        });
        look.start(1);
        QTest::keyClick(&List(*m_window), Qt::Key_E, Qt::ControlModifier);
    }
    [[nodiscard]] std::string Told(std::size_t i) const
    {
        return i < m_asked.size() ? QString::fromStdU16String(m_asked[i]).toStdString() : std::string();
    }
    [[nodiscard]] std::string Path(const std::string& name) const { return (m_folder / name).string(); }

    QPointer<LoggedDataWindow> m_window;
    std::string m_offered;
};

TEST_F(LoggedDataExportTest, TheExtensionTellsTheKindInCapitalLettersToo)
{
    LoggedDataWindow& window = Open();
    EXPECT_TRUE(window.ExportTo(m_folder / "T.CSV"));
    EXPECT_TRUE(window.ExportTo(m_folder / "T.XLSX"));
    EXPECT_TRUE(window.ExportTo(m_folder / "T.Pdf"));
    EXPECT_EQ(m_folder.Read("T.CSV").substr(0, 14), "Date and time,");
    EXPECT_EQ(m_folder.Read("T.XLSX").substr(0, 4), "PK\x03\x04");
    EXPECT_EQ(m_folder.Read("T.Pdf").substr(0, 5), "%PDF-");
    EXPECT_EQ(window.Status().toStdString(), "Exported to " + Path("T.Pdf"));
    EXPECT_TRUE(m_asked.empty());
}

TEST_F(LoggedDataExportTest, NamesTheFileAndTheFolderThatIsNotThere)
{
    LoggedDataWindow& window = Open();
    for (const char* const name : kNames) {
        m_asked.clear();
        EXPECT_FALSE(window.ExportTo(m_folder / "none" / name));
        ASSERT_EQ(m_asked.size(), 1U) << name;
        EXPECT_EQ(Told(0), Path("none") + "/" + name + " was not written: there is no folder " + Path("none"));
    }
}

TEST_F(LoggedDataExportTest, RefusesAKindOfFileThatItDoesNotKnow)
{
    LoggedDataWindow& window = Open();
    EXPECT_FALSE(window.ExportTo(m_folder / "table.txt"));
    EXPECT_EQ(Told(0), Path("table.txt") + " was not written: its name has to end in .csv, .xlsx or .pdf");
    EXPECT_FALSE(std::filesystem::exists(m_folder / "table.txt"));
}

TEST_F(LoggedDataExportTest, NamesAFileThatIsAFolder)
{
    LoggedDataWindow& window = Open();
    for (const char* const name : kNames) {
        std::filesystem::create_directory(m_folder / name);
        m_asked.clear();
        EXPECT_FALSE(window.ExportTo(m_folder / name));
        ASSERT_EQ(m_asked.size(), 1U) << name;
        EXPECT_EQ(Told(0).find(Path(name) + " was not written: "), 0U) << Told(0);
    }
}

TEST_F(LoggedDataExportTest, TellsThatThereAreNoPages)
{
    LoggedDataWindow& window = Open();
    window.OnPrevious();
    ASSERT_EQ(List(window).GetItemCount(), 0);
    EXPECT_FALSE(window.ExportTo(m_folder / "table.pdf"));
    EXPECT_EQ(Told(0), Path("table.pdf") + " was not written: there are no rows, or the sheet is too small for them");
    EXPECT_TRUE(window.ExportTo(m_folder / "table.csv"));
    EXPECT_EQ(m_asked.size(), 1U);
}

#ifndef _WIN32
TEST_F(LoggedDataExportTest, KeepsTheOldFileWhenTheDiskIsFull)
{
    LoggedDataWindow& window = Open();
    for (const char* const name : kNames) {
        m_folder.Write(name, "old");
        m_asked.clear();
        {
            const test::SmallDisk disk(512);
            EXPECT_FALSE(window.ExportTo(m_folder / name)) << name;
        }
        ASSERT_EQ(m_asked.size(), 1U) << name;
        EXPECT_EQ(Told(0).find(Path(name) + " was not written: "), 0U) << Told(0);
        EXPECT_EQ(m_folder.Read(name), "old") << name;
        EXPECT_TRUE(window.ExportTo(m_folder / name)) << name;
    }
}
#endif

TEST_F(LoggedDataExportTest, AsksForAFileByItsKeyAndOffersTheDevicesName)
{
    Open();
    ExportAs("table.csv", "csv");
    EXPECT_TRUE(QString::fromStdString(m_offered).endsWith("/METER-1.csv")) << m_offered;
    EXPECT_EQ(m_folder.Read("table.csv").substr(0, 14), "Date and time,");
    EXPECT_TRUE(m_asked.empty());
}

TEST_F(LoggedDataExportTest, AddsTheExtensionOfTheKindThatWasChosen)
{
    Open();
    ExportAs("table", "xlsx");
    EXPECT_TRUE(std::filesystem::exists(m_folder / "table.xlsx"));
    // What follows a point is no kind of file here.
    ExportAs("north 1.2", "pdf");
    EXPECT_EQ(m_folder.Read("north 1.2.pdf").substr(0, 5), "%PDF-");
    EXPECT_TRUE(m_asked.empty());
}

TEST_F(LoggedDataExportTest, AsksBeforeItReplacesAFileWhoseNameWasNotTypedWhole)
{
    Open();
    m_folder.Write("table.csv", "old");
    m_answer = ui::IDNO;
    ExportAs("table", "csv");
    EXPECT_EQ(Told(0), Path("table.csv") + " is there already. Replace it?");
    EXPECT_EQ(m_folder.Read("table.csv"), "old");
    m_answer = ui::IDYES;
    ExportAs("table", "csv");
    EXPECT_EQ(m_folder.Read("table.csv").substr(0, 14), "Date and time,");
}

// Closes a window as soon as a progress dialog shows.
class ClosingFilter final : public QObject {
public:
    explicit ClosingFilter(QWidget& window) : m_window(window) { qApp->installEventFilter(this); }
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Show && dynamic_cast<CDlgProgress*>(watched) != nullptr) {
            m_window.close();
        }
        return false;
    }

private:
    QWidget& m_window;
};

TEST_F(LoggedDataExportTest, GoesAfterAnExportThatItIsClosedDuring)
{
    LoggedDataWindow& window = Open();
    const ClosingFilter filter(window);
    EXPECT_FALSE(window.ExportTo(m_folder / "table.csv"));
    EXPECT_FALSE(std::filesystem::exists(m_folder / "table.csv"));
    EXPECT_FALSE(m_window.isNull());
    QApplication::processEvents();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(m_window.isNull());
    EXPECT_TRUE(m_asked.empty());
}

}  // namespace
}  // namespace zr::desktop
