// What a window on logged data shows, as a file.
#include "LoggedDataFixture.h"
#include "siblings/tools/ui/CDlgProgress.h"
#ifndef _WIN32
#include "support/SmallDisk.h"
#endif

#include <QPointer>

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
    [[nodiscard]] std::string Told(std::size_t i) const
    {
        return i < m_asked.size() ? QString::fromStdU16String(m_asked[i]).toStdString() : std::string();
    }
    [[nodiscard]] std::string Path(const std::string& name) const { return (m_folder / name).string(); }

    QPointer<LoggedDataWindow> m_window;
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
