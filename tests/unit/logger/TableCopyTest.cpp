#include "logger/TableCopy.h"

#include "unit/logger/LoggedFixture.h"

#include <limits>

namespace zr::logger {
namespace {

constexpr std::size_t kHeaderLength = 199;

class TableCopyTest : public LoggedFixture {
protected:
    TableCopyTest() { values = {{0, 0.1, false, 1}, {1, 0.001, false, 2}}; }

    // A record a minute, with both values in every other.
    void RecordRows(int rows)
    {
        for (int i = 0; i < rows; ++i) {
            const ZRDateTime time(kDay.seconds + static_cast<std::uint32_t>(i) * 60, 0);
            Record(u"M.U", time, 2300 + i);
            Record(u"M.E", time, i % 2 == 0 ? i * 1000.0 : std::nan(""));
        }
    }

    // So many records a second apart, of M.U alone.
    void RecordSeconds(int rows)
    {
        const int series = store.OpenSeries(u"M.U", 1);
        std::vector<LoggerAppend> batch;
        for (int i = 0; i < rows; ++i) {
            batch.push_back({series, (946684800 + std::int64_t{kDay.seconds} + i) * 1000000, i % 10000 + 10000.0});
        }
        ASSERT_TRUE(store.Append(batch));
        values.resize(1);
        titles = {u"Time", u"U"};
    }

    TableCopy Copy(std::vector<RowRange> selected = {}, const CopyRoom::Grant& limit = {})
    {
        const auto& group = Load(values.size() == 1 ? Info({u"M.U"}) : Info({u"M.U", u"M.E"}), kDay, Date(30, 1, 2003));
        return TableCopy({titles, values, &group, kGroupByDay, RowSelection(std::move(selected))}, limit);
    }

    // The number that follows a word of the header.
    static std::size_t Field(std::string_view html, const std::string& name)
    {
        return std::stoul(std::string(html.substr(html.find(name + ":") + name.size() + 1, 8)));
    }

    // As the given template has it, with numbers for so many characters of rows.
    static std::string Page(const std::string& rows)
    {
        const auto number = [](std::size_t value) {
            const std::string digits = std::to_string(value);
            return std::string(8 - digits.size(), '0') + digits;
        };
        return "Version:0.9\r\nStartHTML:00000097\r\nEndHTML:" + number(247 + rows.size()) +
               "\r\nStartFragment:00000111\r\nEndFragment:" + number(211 + rows.size()) +
               "\r\n<html><body>\r\n<!--StartFragment -->\r\n"
               "<table width=\"100%\" border=\"0\" cellspacing=\"0\" cellpadding=\"0\">\r\n" +
               rows + "\r\n</table>\r\n<!--EndFragment-->\r\n</body>\r\n</html>";
    }

    std::vector<ZRBasicString> titles = {u"Date and time", u"M Voltage (V)", u"M Energy (kWh)"};
    std::vector<ValueColumn> values;
};

TEST_F(TableCopyTest, AnEmptyTableIsItsTitlesAlone)
{
    const TableCopy copy = Copy();
    EXPECT_EQ(copy.HtmlFormat(), Page("<TR><TD><B>Date and time</B></TD><TD><B>M Voltage (V)</B></TD>"
                                      "<TD><B>M Energy (kWh)</B></TD></TR>\r\n"));
    EXPECT_EQ(copy.PlainText(), u"Date and time\tM Voltage (V)\tM Energy (kWh)\t\r\n");
}

TEST_F(TableCopyTest, HtmlHasThePositionsOfAllItsParts)
{
    RecordRows(3);
    const TableCopy copy = Copy();
    const std::string_view html = copy.HtmlFormat();
    EXPECT_EQ(Field(html, "StartHTML"), 97U);
    EXPECT_EQ(html.substr(97, 6), "<html>");
    EXPECT_EQ(Field(html, "EndHTML"), html.size());
    EXPECT_EQ(Field(html, "StartFragment"), 111U);
    EXPECT_EQ(html.substr(111, 13), "<!--StartFrag");
    EXPECT_EQ(html.substr(Field(html, "EndFragment"), 11), "<!--EndFrag");
    EXPECT_EQ(html.find("<TR>"), kHeaderLength);
}

TEST_F(TableCopyTest, RowsAreWrittenExactly)
{
    RecordRows(2);
    const TableCopy copy = Copy();
    EXPECT_EQ(copy.HtmlFormat(), Page("<TR><TD><B>Date and time</B></TD><TD><B>M Voltage (V)</B></TD>"
                                      "<TD><B>M Energy (kWh)</B></TD></TR>\r\n"
                                      "<TR><TD>00:00:00</TD><TD>230.0</TD><TD>0.00</TD></TR>\r\n"
                                      "<TR><TD>00:01:00</TD><TD>230.1</TD><TD></TD></TR>\r\n"));
    EXPECT_EQ(copy.PlainText(),
              u"Date and time\tM Voltage (V)\tM Energy (kWh)\t\r\n"
              u"00:00:00\t230.0\t0.00\r\n"
              u"00:01:00\t230.1\t \r\n");
}

TEST_F(TableCopyTest, AZeroStandsBehindBothTexts)
{
    RecordRows(1);
    const TableCopy copy = Copy();
    EXPECT_EQ(copy.HtmlFormat().data()[copy.HtmlFormat().size()], '\0');
    EXPECT_EQ(copy.PlainText().data()[copy.PlainText().size()], u'\0');
}

TEST_F(TableCopyTest, OneColumnHoldsTheTimeAlone)
{
    RecordRows(2);
    titles = {u"Date and time"};
    values.clear();
    const TableCopy copy = Copy();
    EXPECT_EQ(copy.HtmlFormat(), Page("<TR><TD><B>Date and time</B></TD></TR>\r\n"
                                      "<TR><TD>00:00:00</TD></TR>\r\n<TR><TD>00:01:00</TD></TR>\r\n"));
    EXPECT_EQ(copy.PlainText(), u"Date and time\t\r\n00:00:00\r\n00:01:00\r\n");
}

TEST_F(TableCopyTest, OnlyTheSelectedRowsComeOutInAscendingOrder)
{
    RecordRows(10);
    const TableCopy copy = Copy({{7, 7}, {3, 3}});
    EXPECT_EQ(copy.PlainText(),
              u"Date and time\tM Voltage (V)\tM Energy (kWh)\t\r\n00:03:00\t230.3\t \r\n00:07:00\t230.7\t \r\n");
    EXPECT_EQ(copy.HtmlFormat(), Page("<TR><TD><B>Date and time</B></TD><TD><B>M Voltage (V)</B></TD>"
                                      "<TD><B>M Energy (kWh)</B></TD></TR>\r\n"
                                      "<TR><TD>00:03:00</TD><TD>230.3</TD><TD></TD></TR>\r\n"
                                      "<TR><TD>00:07:00</TD><TD>230.7</TD><TD></TD></TR>\r\n"));
}

TEST_F(TableCopyTest, PositionsCountCharactersAndNotTheBytesOfOthers)
{
    RecordRows(1);
    titles[1] = u"T (\u00B0C)";
    const TableCopy copy = Copy();
    const std::string_view html = copy.HtmlFormat();
    EXPECT_NE(html.find("<TD><B>T (\xC2\xB0"
                        "C)</B></TD>"),
              std::string_view::npos);
    EXPECT_EQ(Field(html, "EndHTML"), html.size() - 1);
    EXPECT_EQ(Field(html, "EndFragment"), html.find("<!--EndFrag") - 1);
}

TEST_F(TableCopyTest, PositionsCountTheUnitsOfAPair)
{
    titles[1] = u"\U0001F50C";
    const TableCopy copy = Copy();
    // Four bytes, two units.
    EXPECT_EQ(Field(copy.HtmlFormat(), "EndHTML"), copy.HtmlFormat().size() - 2);
}

TEST_F(TableCopyTest, TitlesStandInHtmlFormatAsTheyAreAndEscapedInTextHtml)
{
    RecordRows(1);
    titles[1] = u"<b>\"A\" & B</b>";
    const TableCopy copy = Copy();
    EXPECT_NE(copy.HtmlFormat().find("<TD><B><b>\"A\" & B</b></B></TD>"), std::string_view::npos);
    EXPECT_NE(copy.TextHtml().find("<B>&lt;b&gt;&quot;A&quot; &amp; B&lt;/b&gt;</B></TD>"), std::string::npos);
    EXPECT_EQ(copy.TextHtml().find("<b>"), std::string::npos);
}

TEST_F(TableCopyTest, TextHtmlIsAPageWithTheSameRows)
{
    RecordRows(2);
    EXPECT_EQ(Copy().TextHtml(),
              "<html><head><meta http-equiv=\"content-type\" content=\"text/html; charset=utf-8\"></head><body>\r\n"
              "<table border=\"0\" cellspacing=\"0\" cellpadding=\"0\">\r\n"
              "<TR><TD SDNUM=\"1033;0;@\" STYLE=\"mso-number-format:'\\@'\"><B>Date and time</B></TD>"
              "<TD SDNUM=\"1033;0;@\" STYLE=\"mso-number-format:'\\@'\"><B>M Voltage (V)</B></TD>"
              "<TD SDNUM=\"1033;0;@\" STYLE=\"mso-number-format:'\\@'\"><B>M Energy (kWh)</B></TD></TR>\r\n"
              "<TR><TD>00:00:00</TD><TD>230.0</TD><TD>0.00</TD></TR>\r\n"
              "<TR><TD>00:01:00</TD><TD>230.1</TD><TD></TD></TR>\r\n"
              "</table>\r\n</body></html>\r\n");
}

TEST_F(TableCopyTest, TextPlainIsThePlainTextInUtf8)
{
    titles[1] = u"T (\u00B0C)";
    EXPECT_EQ(Copy().TextPlain(),
              "Date and time\tT (\xC2\xB0"
              "C)\tM Energy (kWh)\t\r\n");
}

TEST_F(TableCopyTest, TextPlainKeepsPairsWhereverTheyStand)
{
    for (const std::size_t before : {0U, 1007U, 1008U, 1009U, 1010U, 2031U, 2033U}) {
        titles[1] = ZRBasicString(std::u16string(before, u'x') + u"\U0001F50C\U0001F50C");
        EXPECT_EQ(Copy().TextPlain(), "Date and time\t" + std::string(before, 'x') +
                                          "\xF0\x9F\x94\x8C\xF0\x9F\x94\x8C\tM Energy (kWh)\t\r\n");
    }
}

TEST_F(TableCopyTest, EscapedHtmlReplacesWhatHtmlReads)
{
    EXPECT_EQ(EscapedHtml(u"a<b>&\"'\u00E9"), "a&lt;b&gt;&amp;&quot;'\xC3\xA9");
    EXPECT_EQ(EscapedHtml(u""), "");
}

TEST_F(TableCopyTest, TheRoomGrowsAtTheGivenNumbersOfCharacters)
{
    std::vector<std::size_t> asked;
    CopyRoom room([&](std::size_t bytes) {
        asked.push_back(bytes);
        return true;
    });
    EXPECT_EQ(room.Capacity(), 0x100000U);
    EXPECT_TRUE(room.AfterRow(0xFE000));
    EXPECT_TRUE(asked.empty());
    EXPECT_TRUE(room.AfterRow(0xFE001));
    EXPECT_EQ(asked, std::vector<std::size_t>{0x200000});
    EXPECT_TRUE(room.AfterRow(0x1FE000));
    EXPECT_TRUE(room.AfterRow(0x1FE001));
    EXPECT_EQ(asked, (std::vector<std::size_t>{0x200000, 0x300000}));
    EXPECT_EQ(room.Capacity(), 0x300000U);
}

TEST_F(TableCopyTest, TextsOfSeveralRoomsAreWhole)
{
    // A row is 44 characters of HTML and 17 of plain text: 100000 rows pass the first room of both.
    constexpr int kRows = 100000;
    RecordSeconds(kRows);
    std::string rows = "<TR><TD><B>Time</B></TD><TD><B>U</B></TD></TR>\r\n";
    std::u16string plain = u"Time\tU\t\r\n";
    ZRBasicString time;
    for (int i = 0; i < kRows; ++i) {
        FormatTableViewerTime(time, ZRDateTime(kDay.seconds + static_cast<std::uint32_t>(i), 0), kGroupByDay);
        const std::string digits = std::to_string(i % 10000 + 10000);
        const std::string value = digits.substr(0, 1) + "," + digits.substr(1, 3) + "." + digits.substr(4);
        rows += "<TR><TD>" + Narrow(time) + "</TD><TD>" + value + "</TD></TR>\r\n";
        plain += std::u16string(time.Text()) + u"\t" + std::u16string(value.begin(), value.end()) + u"\r\n";
    }
    std::vector<std::size_t> asked;
    const TableCopy copy = Copy({}, [&](std::size_t bytes) {
        asked.push_back(bytes);
        return true;
    });
    EXPECT_TRUE(copy.HtmlFormat() == Page(rows));
    EXPECT_TRUE(copy.PlainText() == plain);
    // Both begin with one; HTML passes four more, the plain text one.
    EXPECT_EQ(asked.size(), 6U);
    EXPECT_EQ(asked.front(), CopyRoom::kStart);
    EXPECT_TRUE(copy.IsWhole());
}

TEST_F(TableCopyTest, RowsStopWhereTheMemoryEndsAndWhatIsWrittenStands)
{
    RecordSeconds(100000);
    const TableCopy copy = Copy({}, [](std::size_t bytes) { return bytes <= CopyRoom::kStart; });
    // The row after which more than 0xFE000 characters are written is the last one.
    const std::size_t titleRow = std::string("<TR><TD><B>Time</B></TD><TD><B>U</B></TD></TR>\r\n").size();
    const std::size_t row = std::string("<TR><TD>00:00:00</TD><TD>1,000.0</TD></TR>\r\n").size();
    const std::size_t rows = (0xFE000 - titleRow) / row + 1;
    EXPECT_EQ(copy.HtmlFormat().size(), 247 + titleRow + rows * row);
    EXPECT_EQ(Field(copy.HtmlFormat(), "EndHTML"), copy.HtmlFormat().size());
    EXPECT_TRUE(copy.HtmlFormat().ends_with("</TR>\r\n\r\n</table>\r\n<!--EndFragment-->\r\n</body>\r\n</html>"));
    // The plain text goes further in the same room.
    const std::size_t plainRow = std::string("00:00:00\t1,000.0\r\n").size();
    const std::size_t plainRows = (0xFE000 - 9) / plainRow + 1;
    EXPECT_EQ(copy.PlainText().size(), 9 + plainRows * plainRow);
    EXPECT_TRUE(copy.PlainText().ends_with(u"\r\n"));
    EXPECT_FALSE(copy.IsWhole());
    EXPECT_FALSE(copy.IsEmpty());
}

TEST_F(TableCopyTest, ThereIsNothingWithoutMemoryForTheFirstRoom)
{
    RecordRows(2);
    const TableCopy copy = Copy({}, [](std::size_t) { return false; });
    EXPECT_TRUE(copy.IsEmpty());
    EXPECT_FALSE(copy.IsWhole());
    EXPECT_EQ(copy.TextPlain(), "");
}

TEST_F(TableCopyTest, IsWholeWhereTheMemoryEndsBehindTheLastRow)
{
    // The plain text ends in its first room; the last row of HTML is the one that asks for a second.
    const std::size_t titleRow = std::string("<TR><TD><B>Time</B></TD><TD><B>U</B></TD></TR>\r\n").size();
    const std::size_t row = std::string("<TR><TD>00:00:00</TD><TD>1,000.0</TD></TR>\r\n").size();
    const std::size_t rows = (0xFE000 - titleRow) / row + 1;
    RecordSeconds(static_cast<int>(rows));
    const TableCopy copy = Copy({}, [](std::size_t bytes) { return bytes <= CopyRoom::kStart; });
    EXPECT_EQ(copy.HtmlFormat().size(), 247 + titleRow + rows * row);
    EXPECT_TRUE(copy.IsWhole());
}

TEST_F(TableCopyTest, ARowLongerThanTheMarginFits)
{
    const ZRBasicString longTitle(std::u16string(10000, u'\u20AC'));
    titles.assign(300, longTitle);
    values.assign(299, {0, 0.1, false, 30});
    RecordRows(50);
    const TableCopy copy = Copy();
    const std::string_view html = copy.HtmlFormat();
    EXPECT_EQ(html.size() - Field(html, "EndHTML"), 300U * 10000 * 2);
    EXPECT_TRUE(html.ends_with("</html>"));
    EXPECT_TRUE(copy.PlainText().starts_with(longTitle.Text()));
}

TEST_F(TableCopyTest, ALoneSurrogateIsReplacedInUtf8Only)
{
    titles[1] = ZRBasicString(std::u16string(1, u'\xD800'));
    const TableCopy copy = Copy();
    EXPECT_NE(copy.HtmlFormat().find("<TD><B>\xEF\xBF\xBD</B></TD>"), std::string_view::npos);
    EXPECT_EQ(copy.PlainText()[14], u'\xD800');
}

TEST_F(TableCopyTest, NoGroupGivesTheTitlesAlone)
{
    const TableCopy copy({titles, values, nullptr, kGroupByDay, {}});
    EXPECT_EQ(copy.PlainText(), u"Date and time\tM Voltage (V)\tM Energy (kWh)\t\r\n");
}

TEST_F(TableCopyTest, NumbersThatAreNoneAreWrittenAsWords)
{
    RecordRows(1);
    values[0].factor = std::numeric_limits<double>::infinity();
    EXPECT_EQ(Copy().PlainText(), u"Date and time\tM Voltage (V)\tM Energy (kWh)\t\r\n00:00:00\tInf\t0.00\r\n");
}

}  // namespace
}  // namespace zr::logger
