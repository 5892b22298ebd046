#include "support/Office.h"
#include "ui/logger/ExplorerFixture.h"

#include <gmock/gmock.h>
#include <QClipboard>
#include <QMimeData>

namespace zr::logger {
namespace {

using testing::ElementsAre;
using Row = std::vector<std::string>;

// Copies the table of a window and gives the bytes of "text/html" to programs that are not ours.
class PasteTest : public ExplorerFixture {
protected:
    // A week with values, with none, and with thousands.
    void RecordAWeek()
    {
        Record(u"M.U", kDay, 2301);
        Record(u"M.U", Date(31, 12, 2002, 9, 30), 12345678);
        Record(u"M.E", Date(31, 12, 2002, 9, 30), -1500);
        Record(u"M.PF", Date(5, 1, 2003, 23, 59, 59), -1);
    }
    std::filesystem::path Copied()
    {
        window.OnEditCopy();
        const QByteArray html = QApplication::clipboard()->mimeData()->data("text/html");
        return folder.Write("copied.html", {html.data(), static_cast<std::size_t>(html.size())});
    }
    // As the table has it on the screen: titles, then rows.
    test::Cells Shown()
    {
        test::Cells shown(1);
        for (int column = 0; column < List().GetColumnCount(); ++column) {
            shown[0].push_back(Title(column));
        }
        for (int row = 0; row < List().GetItemCount(); ++row) {
            shown.emplace_back();
            for (int column = 0; column < List().GetColumnCount(); ++column) {
                // The blanks before a day are for its place in the column.
                const QString cell = QString::fromStdString(Cell(row, column)).trimmed();
                shown.back().push_back(cell.toStdString());
            }
        }
        return shown;
    }
    test::Cells InASpreadsheet() { return office.Spreadsheet(Copied(), "HTML (StarCalc)"); }
    test::Cells InADocument() { return office.TableOfDocument(Copied(), "HTML (StarWriter)"); }

    test::Office office;
};

TEST_F(PasteTest, AWeekIsATableOfNumbersInASpreadsheet)
{
    RecordAWeek();
    OpenWeek();
    EXPECT_THAT(
        InASpreadsheet(),
        ElementsAre(Row{"Date and time", "M Voltage (V)", "M Energy (kWh)", "M Power factor (PF)"},
                    Row{"Monday 30 00:00:00", "230.1", "", ""}, Row{"Tuesday 31 09:30:00", "1234567.8", "-1.5", ""},
                    Row{"Sunday 05 23:59:59", "", "", "1"}));
}

TEST_F(PasteTest, AWeekIsTheSameTableInADocument)
{
    RecordAWeek();
    OpenWeek();
    const test::Cells shown = Shown();
    ASSERT_EQ(shown.size(), 4U);
    EXPECT_EQ(shown[2], (Row{"Tuesday 31 09:30:00", "1,234,567.8", "-1.50", ""}));
    EXPECT_EQ(InADocument(), shown);
}

TEST_F(PasteTest, ADayAndALongTimeAreTablesToo)
{
    Record(u"M.U", Date(1, 2, 2002, 10, 20, 30), 2301);
    Record(u"M.U", Date(14, 2, 2002, 10, 20, 30), 2302);
    Open({u"M.U"});
    window.SetupData(Date(2, 2, 2002), kGroupByDay, kEveryRecord, false);
    EXPECT_THAT(InASpreadsheet(), ElementsAre(Row{"Date and time", "M Voltage (V)"}, Row{"10:20:30", "230.1"}));
    window.SetupData(Date(1, 3, 2002), kGroupByMonth, kEveryRecord, false);
    EXPECT_THAT(InASpreadsheet(),
                ElementsAre(Row{"Date and time", "M Voltage (V)"}, Row{"01/02/2002 10:20:30", "230.1"},
                            Row{"14/02/2002 10:20:30", "230.2"}));
    EXPECT_EQ(InADocument(), Shown());
}

TEST_F(PasteTest, NamesAreTextWhateverIsInThem)
{
    const std::vector<std::u16string> names = {u"<a & \"b\"> 'c' \u00b0",
                                               u"</TD></TR></table><script>alert(1)</script>",
                                               u"&lt;&#65;",
                                               u"=1+1",
                                               u"-->",
                                               u"\U0001F50C",
                                               std::u16string(10000, u'x')};
    std::vector<VariableDescription> variables;
    std::vector<ZRBasicString> references;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::u16string name = u"V" + std::u16string(1, static_cast<char16_t>(u'a' + i));
        variables.push_back(Described(name.c_str(), names[i].c_str(), 1, 0, 0, 0));
        references.push_back(u"=1+1." + ZRBasicString(name));
    }
    test::LiveDevice odd(u"=1+1", variables);
    for (std::size_t i = 0; i < names.size(); ++i) {
        Record(references[i].CStr(), kDay, static_cast<double>(i));
    }
    Open(references);
    window.SetupData(Date(6, 1, 2003), kGroupByWeek, kEveryRecord, false);
    const test::Cells shown = Shown();
    // The clipboard holds as much of a title as the list tells, which is 255 characters.
    Row titles = shown[0];
    ASSERT_GT(titles[7].size(), 10000U);
    titles[7].resize(255);
    EXPECT_EQ(titles[4], "=1+1 =1+1 (V)");
    const Row values = {"Monday 30 00:00:00", "0", "1", "2", "3", "4", "5", "6"};
    EXPECT_THAT(InASpreadsheet(), ElementsAre(titles, values));
    EXPECT_THAT(InADocument(), ElementsAre(titles, values));
}

}  // namespace
}  // namespace zr::logger
