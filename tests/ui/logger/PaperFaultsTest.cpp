// Printing where there is no printer, no room on the sheet, and no room on the disk.
#include "support/SmallDisk.h"
#include "ui/logger/ExplorerFixture.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QTimer>

namespace zr::logger {
namespace {

class PaperFaultsTest : public ExplorerFixture {
protected:
    using Printed = ZRPrintPreviewDialog::Printed;

    std::filesystem::path File() const { return folder / "table.pdf"; }
    static QString ToQt(const std::filesystem::path& path) { return QString::fromStdString(path.string()); }

    // Prints by the command; what the user does in the dialog.
    void PrintBy(const std::function<void(QPrintDialog&)>& use)
    {
        QTimer look;
        QObject::connect(&look, &QTimer::timeout, &window, [&] {
            if (auto* const dialog = qobject_cast<QPrintDialog*>(QApplication::activeModalWidget())) {
                look.stop();
                use(*dialog);
            }
        });
        look.start(1);
        ui::SendCommand(&window, ui::ID_FILE_PRINT, 0, nullptr);
    }
    // Many pages.
    void OpenALongTable()
    {
        const int series = store.OpenSeries(u"M.U", 1);
        std::vector<LoggerAppend> batch;
        for (int i = 0; i < 20000; ++i) {
            batch.push_back({series, (946684800 + std::int64_t{kDay.seconds} + i) * 1000000, 2300.0 + i});
        }
        ASSERT_TRUE(store.Append(batch));
        OpenWeek();
    }
    void ExpectTheTableIsThere()
    {
        EXPECT_GT(List().GetItemCount(), 0);
        EXPECT_EQ(Cell(0, 1), "230.0");
    }
};

TEST_F(PaperFaultsTest, OffersAFileWhereThereIsNoPrinter)
{
    // Nor is there one here that the machine knows.
    const test::Environment noPrinters("CUPS_SERVER", (folder / "none").string());
    ASSERT_TRUE(QPrinterInfo::availablePrinterNames().isEmpty());
    RecordVoltages(kDay, {2300});
    OpenWeek();
    PrintBy([&](QPrintDialog& dialog) {
        auto* const name = dialog.findChild<QLineEdit*>("filename");
        ASSERT_NE(name, nullptr);
        EXPECT_TRUE(name->isVisible() && name->isEnabled());
        name->setText(ToQt(File()));
        dialog.accept();
    });
    EXPECT_TRUE(messages.empty());
    EXPECT_EQ(folder.Read("table.pdf").substr(0, 5), "%PDF-");
    ExpectTheTableIsThere();
}

TEST_F(PaperFaultsTest, TellsOfASheetSmallerThanARow)
{
    RecordVoltages(kDay, {2300});
    OpenWeek();
    PrintBy([&](QPrintDialog& dialog) {
        dialog.printer()->setOutputFileName(ToQt(File()));
        ASSERT_TRUE(dialog.printer()->setPageSize(QPageSize(QSizeF(20, 4), QPageSize::Millimeter)));
        dialog.done(QDialog::Accepted);
    });
    EXPECT_EQ(messages, std::vector<std::string>{
                            "There is nothing to print: the table has no rows, or the sheet is too small for them."});
    EXPECT_FALSE(std::filesystem::exists(File()));
    ExpectTheTableIsThere();
}

TEST_F(PaperFaultsTest, TellsOfAColumnThatNoSheetHasRoomFor)
{
    const std::u16string name(10000, u'w');
    test::LiveDevice odd(u"N", {Described(u"X", name.c_str(), 1, 0, 0, 0)});
    Record(u"N.X", kDay, 1);
    RecordVoltages(kDay, {2300});
    Open({u"M.U", u"N.X"});
    window.SetupData(Date(6, 1, 2003), kGroupByWeek, kEveryRecord, false);
    EXPECT_EQ(window.PrintToFile(ToQt(File())), Printed::Done);
    EXPECT_TRUE(messages.empty());
    QApplication::processEvents();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0], "Not printed, because the sheet is too narrow for it: N " + std::string(58, 'w') +
                               ".... A wider sheet or another order of the columns may hold it.");
}

TEST_F(PaperFaultsTest, TellsOfAFolderThatIsNotThere)
{
    RecordVoltages(kDay, {2300});
    OpenWeek();
    PrintBy([&](QPrintDialog& dialog) {
        dialog.printer()->setOutputFileName(ToQt(folder / "no" / "such.pdf"));
        dialog.done(QDialog::Accepted);
    });
    EXPECT_EQ(messages, std::vector<std::string>{"The printer or file cannot be written. Nothing more was printed."});
    ExpectTheTableIsThere();
}

TEST_F(PaperFaultsTest, KeepsTheOldFileWhenTheDiskIsFull)
{
    OpenALongTable();
    folder.Write("table.pdf", "old");
    Printed result = Printed::Done;
    {
        const test::SmallDisk disk(64 * 1024);
        result = window.PrintToFile(ToQt(File()));
    }
    EXPECT_EQ(result, Printed::DeviceFailed);
    EXPECT_EQ(folder.Read("table.pdf"), "old");
    EXPECT_FALSE(std::filesystem::exists(folder / "table.pdf.part"));
    ExpectTheTableIsThere();
    EXPECT_EQ(window.PrintToFile(ToQt(File())), Printed::Done);
    EXPECT_GT(std::filesystem::file_size(File()), 64U * 1024);
}

TEST_F(PaperFaultsTest, KeepsTheOldFileWhenTheUserStopsThePrinting)
{
    OpenALongTable();
    folder.Write("table.pdf", "old");
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &window, [&] {
        if (auto* const dialog = dynamic_cast<CDlgProgress*>(QApplication::activeModalWidget())) {
            look.stop();
            dialog->Cancel();
        }
    });
    look.start(1);
    EXPECT_EQ(window.PrintToFile(ToQt(File())), Printed::Cancelled);
    EXPECT_EQ(folder.Read("table.pdf"), "old");
    EXPECT_FALSE(std::filesystem::exists(folder / "table.pdf.part"));
    ExpectTheTableIsThere();
}

TEST_F(PaperFaultsTest, WritesAFileForItsUserAlone)
{
    RecordVoltages(kDay, {2300});
    OpenWeek();
    ASSERT_EQ(window.PrintToFile(ToQt(File())), Printed::Done);
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(File()).permissions(), perms::owner_read | perms::owner_write);
}

TEST_F(PaperFaultsTest, WritesWhereALinkLeads)
{
    RecordVoltages(kDay, {2300});
    OpenWeek();
    folder.Write("real.pdf", "old");
    std::filesystem::create_symlink(folder / "real.pdf", File());
    ASSERT_EQ(window.PrintToFile(ToQt(File())), Printed::Done);
    EXPECT_TRUE(std::filesystem::is_symlink(File()));
    EXPECT_EQ(folder.Read("real.pdf").substr(0, 5), "%PDF-");
}

TEST_F(PaperFaultsTest, TellsOfAGraphThatTheDiskHasNoRoomFor)
{
    RecordVoltages(kDay, {2300, 2310});
    OpenWeek();
    window.SelectViewer(kGraphViewer);
    folder.Write("table.pdf", "old");
    {
        const test::SmallDisk disk(1024);
        PrintBy([&](QPrintDialog& dialog) {
            dialog.printer()->setOutputFileName(ToQt(File()));
            dialog.done(QDialog::Accepted);
        });
    }
    ASSERT_FALSE(messages.empty());
    EXPECT_EQ(messages.back(), "The printer or file cannot be written. Nothing more was printed.");
    EXPECT_EQ(folder.Read("table.pdf"), "old");
    EXPECT_EQ(window.PrintToFile(ToQt(File())), Printed::Done);
    EXPECT_EQ(folder.Read("table.pdf").substr(0, 5), "%PDF-");
}

// A device isn't replaced by a file.
TEST_F(PaperFaultsTest, LeavesADeviceADevice)
{
    RecordVoltages(kDay, {2300});
    OpenWeek();
    EXPECT_EQ(window.PrintToFile("/dev/null"), Printed::Done);
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
    EXPECT_FALSE(std::filesystem::exists("/dev/null.part"));
}

}  // namespace
}  // namespace zr::logger
