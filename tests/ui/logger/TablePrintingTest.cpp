// Tables of logged data as they come out of a printer.
#include "ui/logger/ExplorerFixture.h"

#include <gmock/gmock.h>
#include <QFileInfo>
#include <QPrinter>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QProcess>
#include <QTimer>

namespace zr::logger {
namespace {

class TablePrintingTest : public ExplorerFixture {
protected:
    using Printed = ZRPrintPreviewDialog::Printed;

    QString File() const { return QString::fromStdString((folder / "table.pdf").string()); }
    // The words of a page, one-based, line by line as they stand on it.
    QStringList LinesOf(int page) const
    {
        QProcess reader;
        const QString number = QString::number(page);
        reader.start("pdftotext", {"-layout", "-f", number, "-l", number, File(), "-"});
        EXPECT_TRUE(reader.waitForFinished()) << "pdftotext is needed";
        QStringList lines;
        for (const QString& line : QString::fromUtf8(reader.readAllStandardOutput()).split('\n')) {
            if (!line.trimmed().isEmpty()) {
                lines << line.simplified().remove('\f');
            }
        }
        return lines;
    }
    int PageCount() const
    {
        QProcess reader;
        reader.start("pdfinfo", {File()});
        EXPECT_TRUE(reader.waitForFinished()) << "pdfinfo is needed";
        for (const QString& line : QString::fromUtf8(reader.readAllStandardOutput()).split('\n')) {
            if (line.startsWith("Pages:")) {
                return line.mid(6).trimmed().toInt();
            }
        }
        return 0;
    }
};

TEST_F(TablePrintingTest, PrintsWhatTheTableShows)
{
    RecordVoltages(kDay, {2301, 2302});
    Record(u"M.PF", kDay, 0.5);
    OpenWeek();
    ASSERT_EQ(window.PrintToFile(File()), Printed::Done);
    EXPECT_EQ(PageCount(), 1);
    EXPECT_EQ(
        LinesOf(1).join('\n').toStdString(),
        QStringList({"Week 1: 30 December 2002 to 5 January 2003", "Date and time M Voltage M Energy M Power factor",
                     "Monday 30 00:00:00 230.1 0.500", "Monday 30 00:01:00 230.2", "1/1"})
            .join('\n')
            .toStdString());
}

TEST_F(TablePrintingTest, NumbersItsPagesAndGoesOnWhereTheLastOneEnded)
{
    std::vector<double> values;
    for (int i = 0; i < 200; ++i) {
        values.push_back(1000 + i);
    }
    RecordVoltages(kDay, values);
    OpenWeek();
    ASSERT_EQ(window.PrintToFile(File()), Printed::Done);
    const int pages = PageCount();
    ASSERT_GT(pages, 1);
    int next = 1000;
    for (int page = 1; page <= pages; ++page) {
        const QStringList lines = LinesOf(page);
        // The reader takes the blanks for gaps of the font.
        EXPECT_EQ(QString(lines.last()).remove(' '), QString("%1/%2").arg(page).arg(pages));
        // Caption, titles, rows, footer.
        const qsizetype rows = lines.size() - 3;
        EXPECT_TRUE(page == pages || rows % 3 == 0) << rows;
        for (qsizetype row = 0; row < rows; ++row, ++next) {
            EXPECT_TRUE(lines.at(2 + row).endsWith(QString::number(next / 10.0, 'f', 1)))
                << lines.at(2 + row).toStdString();
        }
    }
    EXPECT_EQ(next, 1200);
}

TEST_F(TablePrintingTest, PrintsTheSelectedRowsAlone)
{
    RecordVoltages(kDay, {2301, 2302, 2303});
    OpenWeek();
    List().selectRow(1);
    ASSERT_EQ(window.PrintToFile(File()), Printed::Done);
    const QStringList lines = LinesOf(1);
    ASSERT_EQ(lines.size(), 4);
    EXPECT_TRUE(lines.at(2).endsWith("230.2"));
}

TEST_F(TablePrintingTest, CutsAWideTableIntoBands)
{
    std::vector<VariableDescription> variables;
    std::vector<ZRBasicString> names;
    std::vector<std::u16string> kept;
    for (int i = 0; i < 12; ++i) {
        kept.push_back(u"V" + std::u16string(1, static_cast<char16_t>(u'a' + i)));
    }
    for (const std::u16string& name : kept) {
        variables.push_back(Described(name.c_str(), (u"A rather long description " + name).c_str(), 1, 0, 0, 0));
        names.push_back(u"W." + ZRBasicString(name));
    }
    test::LiveDevice wide(u"W", variables);
    for (std::size_t i = 0; i < kept.size(); ++i) {
        Record((u"W." + kept[i]).c_str(), kDay, 100.0 + static_cast<double>(i));
    }
    Open(names);
    window.SetupData(Date(6, 1, 2003), kGroupByWeek, kEveryRecord, false);
    ASSERT_EQ(window.PrintToFile(File()), Printed::Done);
    const int pages = PageCount();
    ASSERT_GT(pages, 1);
    QStringList values;
    for (int page = 1; page <= pages; ++page) {
        const QStringList lines = LinesOf(page);
        ASSERT_EQ(lines.size(), 4);
        QStringList words = lines.at(2).split(' ');
        // The time stands on each band.
        EXPECT_EQ(words.mid(0, 3), QStringList({"Monday", "30", "00:00:00"}));
        values << words.mid(3);
    }
    EXPECT_EQ(values.size(), 12);
    EXPECT_EQ(values.last(), "111");
}

TEST_F(TablePrintingTest, TellsThatThereIsNothingToPrint)
{
    Open();
    EXPECT_EQ(window.PrintToFile(File()), Printed::NothingToPrint);
}

TEST_F(TablePrintingTest, TellsOfAFileThatCannotBeWritten)
{
    RecordVoltages(kDay, {2301});
    OpenWeek();
    EXPECT_EQ(window.PrintToFile(QString::fromStdString((folder / "no" / "such" / "folder.pdf").string())),
              Printed::DeviceFailed);
    // The window is as it was.
    EXPECT_EQ(Cell(0, 1), "230.1");
    EXPECT_EQ(window.PrintToFile(File()), Printed::Done);
}

TEST_F(TablePrintingTest, ShowsAPreviewOfItsPages)
{
    RecordVoltages(kDay, std::vector<double>(200, 2300));
    OpenWeek();
    ASSERT_EQ(window.PrintToFile(File()), Printed::Done);
    int pages = 0;
    QString title;
    QTimer::singleShot(0, &window, [&] {
        auto* const preview = dynamic_cast<QPrintPreviewDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(preview, nullptr);
        pages = preview->findChild<QPrintPreviewWidget*>()->pageCount();
        title = preview->windowTitle();
        EXPECT_TRUE(test::KeepPicture(preview->grab().toImage(), "table-preview.png"));
        preview->close();
    });
    ui::SendCommand(&window, ui::ID_FILE_PRINT_PREVIEW, 0, nullptr);
    EXPECT_EQ(pages, PageCount());
    EXPECT_EQ(title, "Print preview");
}

TEST_F(TablePrintingTest, PrintsNothingWhenTheDialogIsCancelled)
{
    RecordVoltages(kDay, {2301});
    OpenWeek();
    ExpectNothingPrintedWhenCancelled();
}

}  // namespace
}  // namespace zr::logger
