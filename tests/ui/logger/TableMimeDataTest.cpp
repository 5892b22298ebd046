#include "logger/ui/TableMimeData.h"

#include "ui/logger/ExplorerFixture.h"

#include <QClipboard>
#include <QMimeData>

namespace zr::logger {
namespace {

const char* const kHtmlHead =
    "Version:0.9\r\nStartHTML:00000097\r\nEndHTML:%1\r\nStartFragment:00000111\r\nEndFragment:%2\r\n"
    "<html><body>\r\n<!--StartFragment -->\r\n<table width=\"100%\" border=\"0\" cellspacing=\"0\" cellpadding=\"0\">"
    "\r\n";
const char* const kHtmlTail = "\r\n</table>\r\n<!--EndFragment-->\r\n</body>\r\n</html>";

class TableMimeDataTest : public ExplorerFixture {
protected:
    static const QMimeData& Copied() { return *QApplication::clipboard()->mimeData(); }
    static QByteArray HtmlOf(const QString& rows)
    {
        const auto digits = [](qsizetype number) { return QStringLiteral("%1").arg(number, 8, 10, QLatin1Char('0')); };
        QString text = QLatin1String(kHtmlHead) + rows + QLatin1String(kHtmlTail);
        text.replace("%1", digits(247 + rows.size()));
        text.replace("%2", digits(211 + rows.size()));
        return text.toUtf8() + '\0';
    }
    static QByteArray WideOf(const std::u16string& text)
    {
        return {reinterpret_cast<const char*>(text.c_str()),
                static_cast<qsizetype>((text.size() + 1) * sizeof(char16_t))};
    }
};

TEST_F(TableMimeDataTest, OffersItsFormsInTheirOrder)
{
    RecordVoltages(kDay, {2301});
    OpenWeek();
    window.OnEditCopy();
    EXPECT_EQ(Copied().formats(),
              QStringList({ui::HtmlFormat(), "text/plain;charset=utf-16", "text/html", "text/plain"}));
    for (const QString& format : Copied().formats()) {
        EXPECT_TRUE(Copied().hasFormat(format)) << format.toStdString();
    }
    EXPECT_FALSE(Copied().hasFormat("image/png"));
    EXPECT_TRUE(Copied().data("image/png").isEmpty());
}

TEST_F(TableMimeDataTest, HoldsTheExactBytesOfBothTexts)
{
    RecordVoltages(kDay, {2301, 2302});
    Record(u"M.PF", kDay, 0.5);
    OpenWeek();
    window.OnEditCopy();
    EXPECT_EQ(Copied().data(ui::HtmlFormat()),
              HtmlOf("<TR><TD><B>Date and time</B></TD><TD><B>M Voltage (V)</B></TD><TD><B>M Energy (kWh)</B></TD>"
                     "<TD><B>M Power factor (PF)</B></TD></TR>\r\n"
                     "<TR><TD>   Monday 30 00:00:00</TD><TD>230.1</TD><TD></TD><TD>0.500</TD></TR>\r\n"
                     "<TR><TD>   Monday 30 00:01:00</TD><TD>230.2</TD><TD></TD><TD></TD></TR>\r\n"));
    EXPECT_EQ(Copied().data(ui::kWideTextFormat),
              WideOf(u"Date and time\tM Voltage (V)\tM Energy (kWh)\tM Power factor (PF)\t\r\n"
                     u"   Monday 30 00:00:00\t230.1\t \t0.500\r\n   Monday 30 00:01:00\t230.2\t \t \r\n"));
}

TEST_F(TableMimeDataTest, HoldsTheTitlesAloneForAnEmptyTable)
{
    Open({});
    window.OnEditCopy();
    EXPECT_EQ(Copied().data(ui::HtmlFormat()), HtmlOf("<TR><TD><B>Date and time</B></TD></TR>\r\n"));
    EXPECT_EQ(Copied().data(ui::kWideTextFormat), WideOf(u"Date and time\t\r\n"));
}

TEST_F(TableMimeDataTest, HoldsTheSelectedRowsInTheirOrder)
{
    RecordVoltages(kDay, {2300, 2301, 2302, 2303, 2304, 2305, 2306, 2307, 2308});
    OpenWeek();
    for (const int row : {7, 3}) {
        List().selectionModel()->select(List().model()->index(row, 0),
                                        QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
    window.OnEditCopy();
    const QStringList lines = QString::fromUtf8(Copied().data("text/plain")).split("\r\n");
    ASSERT_EQ(lines.size(), 4);
    EXPECT_TRUE(lines.at(1).contains("230.3"));
    EXPECT_TRUE(lines.at(2).contains("230.7"));
}

TEST_F(TableMimeDataTest, EscapesNamesOnlyForOtherDesktops)
{
    test::LiveDevice odd(u"N", {Described(u"X", u"<a & \"b\">", 1, 0, 0, 0)});
    Record(u"N.X", kDay, 1);
    Open({u"N.X"});
    window.OnEditCopy();
    EXPECT_TRUE(Copied().data(ui::HtmlFormat()).contains("<B>N <a & \"b\"> (V)</B>"));
    EXPECT_TRUE(Copied().data("text/html").contains("N &lt;a &amp; &quot;b&quot;&gt; (V)"));
    EXPECT_TRUE(Copied().text().contains("N <a & \"b\"> (V)"));
    EXPECT_TRUE(Copied().html().contains("&lt;a"));
}

TEST_F(TableMimeDataTest, CopiesByTheExplorersCommand)
{
    RecordVoltages(kDay, {2301});
    OpenWeek();
    QApplication::clipboard()->clear();
    ui::SendCommand(&window, kCommandCopy, 0, nullptr);
    EXPECT_TRUE(Copied().hasFormat(ui::HtmlFormat()));
}

// Another program holds the clipboard open.
TEST_F(TableMimeDataTest, LeavesAClipboardThatCannotBeOpenedAsItIs)
{
    RecordVoltages(kDay, {2301});
    OpenWeek();
    QApplication::clipboard()->setText("of another program");
    int asked = 0;
    ui::SetClipboardHook([&] {
        ++asked;
        return false;
    });
    window.OnEditCopy();
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(QApplication::clipboard()->text(), "of another program");
    // Meant: with no message.
    EXPECT_TRUE(messages.empty());
    EXPECT_EQ(Cell(0, 1), "230.1");
    ui::SetClipboardHook(nullptr);
    window.OnEditCopy();
    EXPECT_TRUE(Copied().text().contains("230.1"));
}

TEST_F(TableMimeDataTest, TellsThatTheMemoryWasEnoughForTheFirstRowsOnly)
{
    const int series = store.OpenSeries(u"M.U", 1);
    std::vector<LoggerAppend> batch;
    for (int i = 0; i < 40000; ++i) {
        batch.push_back({series, (946684800 + std::int64_t{kDay.seconds} + i) * 1000000, 2300.0});
    }
    ASSERT_TRUE(store.Append(batch));
    OpenWeek();
    Viewer().LimitCopy([](std::size_t bytes) { return bytes <= CopyRoom::kStart; });
    window.OnEditCopy();
    EXPECT_EQ(messages, std::vector<std::string>{
                            "There is not enough memory to copy all rows. The clipboard holds the first of them."});
    EXPECT_TRUE(Copied().data(ui::HtmlFormat()).endsWith(QByteArray("</html>\0", 8)));
    EXPECT_LT(Copied().data("text/html").size(), 0x100000);
    EXPECT_EQ(List().GetItemCount(), 40000);
    Viewer().LimitCopy({});
    window.OnEditCopy();
    EXPECT_EQ(messages.size(), 1U);
    EXPECT_EQ(Copied().text().count("\r\n"), 40001);
}

TEST_F(TableMimeDataTest, LeavesTheClipboardWithoutMemoryForAnything)
{
    RecordVoltages(kDay, {2301});
    OpenWeek();
    QApplication::clipboard()->setText("before");
    Viewer().LimitCopy([](std::size_t) { return false; });
    window.OnEditCopy();
    EXPECT_EQ(messages,
              std::vector<std::string>{"There is not enough memory to copy the table. The clipboard is as it was."});
    EXPECT_EQ(QApplication::clipboard()->text(), "before");
}

TEST_F(TableMimeDataTest, OffersOnlyTheFormsThatThereAre)
{
    const std::vector<ZRBasicString> titles = {u"Date and time"};
    const ui::TableMimeData nothing(
        TableCopy({titles, {}, nullptr, kGroupByDay, {}}, [](std::size_t) { return false; }));
    EXPECT_TRUE(nothing.formats().isEmpty());
    EXPECT_FALSE(nothing.hasFormat("text/html"));
    EXPECT_TRUE(nothing.data("text/html").isEmpty());
}

// The texts are all there is: the records may go.
TEST_F(TableMimeDataTest, OutlivesTheWindow)
{
    RecordVoltages(kDay, {2301});
    OpenWeek();
    window.OnEditCopy();
    window.close();
    EXPECT_TRUE(Copied().text().contains("230.1"));
}

}  // namespace
}  // namespace zr::logger
