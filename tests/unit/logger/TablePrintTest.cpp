#include "logger/TablePrint.h"

#include "unit/logger/LoggedFixture.h"

#include <algorithm>
#include <limits>
#include <set>

namespace zr::logger {
namespace {

// A character is ten wide and twenty high.
class EvenMeasure final : public PrintMeasure {
public:
    PrintExtent Extent(std::u16string_view text) override { return {10 * static_cast<int>(text.size()), 20}; }
};

// A gap is 30, the time column of a day "Date and time" 130, a title of five characters 50. The sheet has 4 pixels a
// millimetre; a block is 3 x 20 + 6 = 66, the sheet of 1000 x 400 holds 15 rows.
class TablePrintTest : public LoggedFixture {
protected:
    void AddColumns(int count, const wchar* title = u"Title")
    {
        for (int i = 0; i < count; ++i) {
            profile.AddVariable(u"M.U", title, i, 1, -1, 1, 100, 0);
            source.values.push_back({0, 0.1, false, 1});
        }
    }

    void RecordRows(int rows)
    {
        const int series = store.OpenSeries(u"M.U", 1);
        std::vector<LoggerAppend> batch;
        for (int i = 0; i < rows; ++i) {
            batch.push_back({series, (946684800 + std::int64_t{kDay.seconds} + i) * 1000000, i * 10.0});
        }
        ASSERT_TRUE(store.Append(batch));
        source.group = &LoadDay(Info({u"M.U"}));
    }

    TablePrint Print()
    {
        source.profile = &profile;
        source.groupBy = kGroupByDay;
        return {source, device, measure};
    }

    PrintRect Area() const { return {0, 0, device.horzRes, device.vertRes}; }

    // The texts of a page, in their order.
    std::vector<std::string> Texts(const PrintedPage& page) const
    {
        std::vector<std::string> texts;
        for (const PrintText& text : page.texts) {
            texts.push_back(Narrow(text.text));
        }
        return texts;
    }

    // The first values of the rows of a page, as row numbers.
    std::vector<int> RowsOf(const PrintedPage& page) const
    {
        std::vector<int> rows;
        for (const PrintText& text : page.texts) {
            const std::string narrow = Narrow(text.text);
            if (narrow.size() == 8 && narrow[2] == ':') {
                rows.push_back(std::stoi(narrow.substr(0, 2)) * 3600 + std::stoi(narrow.substr(3, 2)) * 60 +
                               std::stoi(narrow.substr(6)));
            }
        }
        return rows;
    }

    static std::vector<int> Range(int first, int count)
    {
        std::vector<int> numbers(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            numbers[static_cast<std::size_t>(i)] = first + i;
        }
        return numbers;
    }

    using Strings = std::vector<std::string>;

    EvenMeasure measure;
    PrintDevice device{1000, 400, 100};
    ZRTableProfile profile;
    PrintSource source;
};

TEST_F(TablePrintTest, MeasuresTitlesAndTheWidestText)
{
    AddColumns(2);
    profile[1].Title = u"A";
    RecordRows(2000);
    const TablePrint print = Print();
    EXPECT_EQ(print.Gap(), 30);
    EXPECT_EQ(print.LineHeight(), 20);
    // "Date and time", "Title", "1,999.0".
    EXPECT_EQ(print.Widths(), (std::vector{130, 70, 70}));
    EXPECT_EQ(print.Rows(), 2000);
}

TEST_F(TablePrintTest, ATimeWiderThanItsTitleWidensItsColumn)
{
    RecordRows(1);
    source.profile = &profile;
    source.groupBy = kGroupByMonth;
    const TablePrint print(source, device, measure);
    EXPECT_EQ(print.Widths()[0], 190);
}

TEST_F(TablePrintTest, OnlySelectedRowsAreMeasured)
{
    AddColumns(1);
    RecordRows(2000);
    source.rows = RowSelection({{0, 8}});
    const TablePrint print = Print();
    EXPECT_EQ(print.Widths(), (std::vector{130, 50}));
    EXPECT_EQ(print.Rows(), 9);
}

TEST_F(TablePrintTest, InvalidValuesDoNotWidenAColumn)
{
    AddColumns(1);
    source.values[0].position = -1;
    RecordRows(2000);
    EXPECT_EQ(Print().Widths()[1], 50);
}

TEST_F(TablePrintTest, LinesAreAlwaysAMultipleOfThree)
{
    AddColumns(1);
    RecordRows(1);
    for (int height = 180; height < 5000; height += 7) {
        device.vertRes = height;
        const TablePrint print = Print();
        EXPECT_EQ(print.Lines() % 3, 0);
        EXPECT_GT(print.Lines(), 0) << height;
    }
}

TEST_F(TablePrintTest, LinesLeaveABlockForTheHeadings)
{
    AddColumns(1);
    RecordRows(1);
    // 392.8 / 66 x 3 is 17.85: 17 - 2 - 3.
    EXPECT_EQ(Print().Lines(), 12);
    device = {1000, 1000, 250};
    // 992.8 / 66 x 3 is 45.1.
    EXPECT_EQ(Print().Lines(), 42);
}

TEST_F(TablePrintTest, ASheetLeavesOutItsMarginsAndCountsTheGapsOfItsBlocks)
{
    // 24 pixels a millimetre: margins of 43.2, blocks of 60 + 36. Ten blocks want 1003.2.
    AddColumns(1);
    RecordRows(1);
    device = {1000, 1003, 41};
    EXPECT_EQ(Print().Lines(), 24);
    device = {1000, 1004, 41};
    EXPECT_EQ(Print().Lines(), 27);
}

TEST_F(TablePrintTest, LinesAndRowsStandAtTheirPlacesOnAFinePrinter)
{
    AddColumns(1);
    RecordRows(7);
    device = {1000, 1004, 41};
    const PrintedPage page = Print().Page(1, Area(), u"");
    // The first line at 60 + 12, the rows from 72 + 31.2 on; each separator 14.4 below its block and 21.6 above the
    // next.
    EXPECT_EQ(page.lines, (std::vector<PrintLine>{{90, 360, 72, 12}, {90, 360, 177, 7}, {90, 360, 272, 7}}));
    std::vector<int> tops;
    for (std::size_t i = 3; i + 1 < page.texts.size(); i += 2) {
        tops.push_back(page.texts[i].rect.top);
    }
    EXPECT_EQ(tops, (std::vector{103, 123, 143, 198, 218, 238, 293}));
}

TEST_F(TablePrintTest, AColumnThatEndsAtTheEdgeFits)
{
    AddColumns(2);
    RecordRows(1);
    // The second column ends at 250 + 2 x 80 with the gap before each, and at 380 as it is dealt out.
    device.horzRes = 410;
    EXPECT_EQ(Texts(Print().Page(1, Area(), u"")).size(), 2 * (1U + 2) + 2);
    device.horzRes = 409;
    EXPECT_EQ(Texts(Print().Page(1, Area(), u"")).size(), 2 * (1U + 1) + 2);
    device.horzRes = 380;
    EXPECT_EQ(Print().PagesAcross(), 1);
    device.horzRes = 379;
    EXPECT_EQ(Print().PagesAcross(), 2);
}

TEST_F(TablePrintTest, ABandBeginsWithTheFirstColumnThatNoLongerFits)
{
    AddColumns(3);
    profile[2].Title = u"Third";
    RecordRows(1);
    device.horzRes = 380;
    const TablePrint print = Print();
    ASSERT_EQ(print.PagesAcross(), 2);
    EXPECT_EQ(Texts(print.Page(2, Area(), u"")).at(2), "Third");
}

TEST_F(TablePrintTest, PixelsOfAMillimetreAreWhole)
{
    AddColumns(1);
    RecordRows(1);
    device = {1000, 1000, 201};
    // 4, not 4.97: the block stays 66.
    EXPECT_EQ(Print().Lines(), 42);
}

TEST_F(TablePrintTest, ATableWithNoRowsHasNoPages)
{
    AddColumns(1);
    RecordRows(0);
    const TablePrint print = Print();
    EXPECT_EQ(print.MaxPage(), 0);
    EXPECT_FALSE(print.IsSheetTooSmall());
    EXPECT_TRUE(print.Page(1, Area(), u"").texts.empty());
}

TEST_F(TablePrintTest, ATableWhoseColumnsAllFitIsOnePageAcross)
{
    AddColumns(3);
    RecordRows(13);
    const TablePrint print = Print();
    EXPECT_EQ(print.PagesAcross(), 1);
    EXPECT_EQ(print.MaxPage(), 2);
    EXPECT_EQ(Texts(print.Page(1, Area(), u"Caption")).at(2), "Title");
}

TEST_F(TablePrintTest, APageHoldsCaptionTitlesRowsAndFooterAtTheirPlaces)
{
    AddColumns(2);
    RecordRows(1);
    const PrintedPage page = Print().Page(1, Area(), u"Caption");
    EXPECT_EQ(Texts(page), (Strings{"Caption", "Date and time", "Title", "Title", "00:00:00", "0.0", "0.0", "1 / 1"}));
    EXPECT_EQ(page.texts[0].rect, (PrintRect{120, 0, 880, 20}));
    EXPECT_EQ(page.texts[0].align, PrintAlign::Centre);
    EXPECT_EQ(page.texts[1].rect, (PrintRect{120, 40, 250, 60}));
    EXPECT_EQ(page.texts[1].align, PrintAlign::Left);
    EXPECT_EQ(page.texts[2].rect, (PrintRect{280, 40, 330, 60}));
    EXPECT_EQ(page.texts[2].align, PrintAlign::Right);
    EXPECT_EQ(page.texts[3].rect, (PrintRect{360, 40, 410, 60}));
    // The line at 60 + 2, the first row at 62 + 5.2.
    EXPECT_EQ(page.lines, (std::vector<PrintLine>{{90, 440, 62, 2}}));
    EXPECT_EQ(page.texts[4].rect, (PrintRect{120, 67, 250, 87}));
    EXPECT_EQ(page.texts[4].align, PrintAlign::Right);
    EXPECT_EQ(page.texts[5].rect, (PrintRect{280, 67, 330, 87}));
    EXPECT_EQ(page.texts[7].rect, (PrintRect{30, 360, 970, 380}));
    EXPECT_EQ(page.texts[7].align, PrintAlign::Centre);
    EXPECT_FALSE(page.continuePrinting);
}

TEST_F(TablePrintTest, CaptionAndFooterGoByTheSizeOfTheArea)
{
    AddColumns(1);
    RecordRows(1);
    const PrintedPage page = Print().Page(1, {50, 60, 950, 360}, u"Caption");
    EXPECT_EQ(page.texts.front().rect, (PrintRect{120, 0, 780, 20}));
    EXPECT_EQ(page.texts.back().rect, (PrintRect{30, 260, 870, 280}));
}

TEST_F(TablePrintTest, ACellWithoutAValueIsLeftOut)
{
    AddColumns(2);
    source.values[0].position = -1;
    RecordRows(1);
    EXPECT_EQ(Texts(Print().Page(1, Area(), u"")),
              (Strings{"", "Date and time", "Title", "Title", "00:00:00", "0.0", "1 / 1"}));
}

TEST_F(TablePrintTest, ThereIsALineAfterEveryThirdRowAndNoneAfterTheLast)
{
    AddColumns(1);
    RecordRows(30);
    device = {1000, 800, 200};
    const TablePrint print = Print();
    // 792.8 / 66 x 3 is 36.04.
    ASSERT_EQ(print.Lines(), 33);
    device.vertRes = 770;
    device.vertSize = 192;
    const TablePrint thirty = Print();
    ASSERT_EQ(thirty.Lines(), 30);
    const PrintedPage page = thirty.Page(1, Area(), u"");
    EXPECT_EQ(RowsOf(page).size(), 30U);
    // One below the titles and those after rows 3, 6 to 27.
    ASSERT_EQ(page.lines.size(), 1U + 9);
    // Rows at 67, 87, 107; the line at 127 + 2.4, the next row at 129 + 3.6.
    EXPECT_EQ(page.lines[1], (PrintLine{90, 360, 129, 1}));
    EXPECT_EQ(page.texts[3 + 2 * 3].rect.top, 132);
    EXPECT_EQ(page.lines[2].y, 192 + 2);
}

TEST_F(TablePrintTest, PagesGoBandByBandBeforeTheNextRows)
{
    // First 250, each column 80: nine fit into 1000.
    AddColumns(12);
    RecordRows(20);
    const TablePrint print = Print();
    ASSERT_EQ(print.PagesAcross(), 2);
    ASSERT_EQ(print.Lines(), 12);
    EXPECT_EQ(print.MaxPage(), 4);
    EXPECT_EQ(RowsOf(print.Page(1, Area(), u"")), Range(0, 12));
    EXPECT_EQ(RowsOf(print.Page(2, Area(), u"")), Range(0, 12));
    EXPECT_EQ(RowsOf(print.Page(3, Area(), u"")), Range(12, 8));
    EXPECT_EQ(RowsOf(print.Page(4, Area(), u"")), Range(12, 8));
    EXPECT_TRUE(print.Page(3, Area(), u"").continuePrinting);
    EXPECT_FALSE(print.Page(4, Area(), u"").continuePrinting);
}

TEST_F(TablePrintTest, EveryBandHasTheTimeAndItsOwnColumns)
{
    AddColumns(12);
    for (unsigned i = 0; i < 12; ++i) {
        profile[i].Title = ZRBasicString(std::u16string(4, u't') + static_cast<wchar>(u'a' + i));
    }
    RecordRows(1);
    const TablePrint print = Print();
    EXPECT_EQ(Texts(print.Page(1, Area(), u"")).at(2), "tttta");
    const PrintedPage second = print.Page(2, Area(), u"");
    EXPECT_EQ(Texts(second),
              (Strings{"", "Date and time", "ttttj", "ttttk", "ttttl", "00:00:00", "0.0", "0.0", "0.0", "2 / 2"}));
    EXPECT_EQ(second.texts[2].rect.left, 280);
    // The lines span the whole table on every band.
    EXPECT_EQ(second.lines[0].right, 130 + 60 + 12 * 80 + 90);
}

TEST_F(TablePrintTest, ColumnsAreDealtOutWithoutTheGapBeforeTheFirstAndDrawnWithIt)
{
    // Nine columns end at 250 + 9 x 80 = 970 with the gap before each; dealt out, the tenth would have to begin there.
    AddColumns(9);
    RecordRows(1);
    device.horzRes = 969;
    const TablePrint print = Print();
    EXPECT_EQ(print.PagesAcross(), 1);
    EXPECT_EQ(Texts(print.Page(1, Area(), u"")).size(), 2 * (1U + 8) + 2);
    device.horzRes = 939;
    EXPECT_EQ(Print().PagesAcross(), 2);
}

TEST_F(TablePrintTest, AColumnWiderThanThePageIsNeverPrintedAndEndsTheRowOnEveryBand)
{
    AddColumns(3);
    profile[1].Title = ZRBasicString(std::u16string(200, u'w'));
    RecordRows(1);
    const TablePrint print = Print();
    EXPECT_EQ(print.PagesAcross(), 3);
    EXPECT_EQ(Texts(print.Page(1, Area(), u"")).size(), 2U * 2 + 2);
    EXPECT_EQ(Texts(print.Page(2, Area(), u"")).size(), 2U * 1 + 2);
    EXPECT_EQ(Texts(print.Page(3, Area(), u"")).size(), 2U * 2 + 2);
}

TEST_F(TablePrintTest, TellsWhichColumnsNoBandHasRoomFor)
{
    AddColumns(12);
    for (unsigned i = 0; i < 12; ++i) {
        profile[i].Title = ZRBasicString(std::u16string(i == 7 ? 40 : 5, static_cast<char16_t>(u'a' + i)));
    }
    RecordRows(3);
    const TablePrint print = Print();
    EXPECT_EQ(print.PagesAcross(), 2);
    EXPECT_TRUE(print.LeftOut(1000).empty());
    // What is told is what stands on no page, for any width.
    for (int right = 250; right <= 1250; right += 10) {
        device.horzRes = right;
        const TablePrint narrow = Print();
        std::set<ZRBasicString> printed;
        for (int page = 1; page <= narrow.MaxPage(); ++page) {
            for (const PrintText& text : narrow.Page(page, {0, 0, right, 800}, u"").texts) {
                printed.insert(text.text);
            }
        }
        const std::vector<std::size_t> leftOut = narrow.LeftOut(right);
        for (std::size_t i = 0; i < 12; ++i) {
            const bool isTold = std::find(leftOut.begin(), leftOut.end(), i) != leftOut.end();
            EXPECT_EQ(isTold, printed.count(profile[static_cast<unsigned>(i)].Title) == 0) << right << " " << i;
        }
    }
}

TEST_F(TablePrintTest, APageOfASelectionSkipsUnselectedRowsAsWell)
{
    AddColumns(1);
    RecordRows(100);
    // Every other row: 50 selected rows on five pages of twelve.
    std::vector<RowRange> selected;
    for (int row = 0; row < 100; row += 2) {
        selected.push_back({row, row});
    }
    source.rows = RowSelection(selected);
    const TablePrint print = Print();
    EXPECT_EQ(print.MaxPage(), 5);
    EXPECT_EQ(RowsOf(print.Page(1, Area(), u"")), (std::vector{0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22}));
    EXPECT_EQ(RowsOf(print.Page(2, Area(), u"")), (std::vector{12, 14, 16, 18, 20, 22, 24, 26, 28, 30, 32, 34}));
    EXPECT_EQ(RowsOf(print.Page(5, Area(), u"")).front(), 48);
}

TEST_F(TablePrintTest, PagesComeInAnyOrderAndAsOftenAsAsked)
{
    AddColumns(1);
    RecordRows(100);
    const TablePrint print = Print();
    ASSERT_EQ(print.MaxPage(), 9);
    EXPECT_EQ(RowsOf(print.Page(9, Area(), u"")), Range(96, 4));
    EXPECT_EQ(RowsOf(print.Page(2, Area(), u"")), Range(12, 12));
    EXPECT_EQ(RowsOf(print.Page(9, Area(), u"")), Range(96, 4));
}

TEST_F(TablePrintTest, APageThatIsNotThereIsEmpty)
{
    AddColumns(1);
    RecordRows(10);
    const TablePrint print = Print();
    for (const int page : {0, -1, 2, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        EXPECT_TRUE(print.Page(page, Area(), u"").texts.empty()) << page;
        EXPECT_FALSE(print.Page(page, Area(), u"").continuePrinting);
    }
}

TEST_F(TablePrintTest, ASheetSmallerThanARowHoldsNothing)
{
    AddColumns(1);
    RecordRows(10);
    for (const PrintDevice& small : {PrintDevice{1000, 15, 4}, PrintDevice{0, 0, 0}, PrintDevice{1000, 100, 25},
                                     PrintDevice{-5, -5, -5}, PrintDevice{1000, 10, 1000}}) {
        device = small;
        const TablePrint print = Print();
        EXPECT_EQ(print.MaxPage(), 0);
        EXPECT_TRUE(print.IsSheetTooSmall());
        EXPECT_TRUE(print.Page(1, Area(), u"").texts.empty());
    }
}

TEST_F(TablePrintTest, ASheetOfNoWidthIsAPageAColumnAndPrintsTheTime)
{
    AddColumns(3);
    RecordRows(2);
    device.horzRes = 100;
    const TablePrint print = Print();
    EXPECT_EQ(print.PagesAcross(), 4);
    EXPECT_EQ(Texts(print.Page(1, Area(), u"")), (Strings{"", "Date and time", "00:00:00", "00:00:01", "1 / 4"}));
}

TEST_F(TablePrintTest, TitlesOfTenThousandCharactersDoNoHarm)
{
    const ZRBasicString title(std::u16string(10000, u'w'));
    AddColumns(300, title.CStr());
    RecordRows(1);
    const TablePrint print = Print();
    EXPECT_EQ(print.PagesAcross(), 301);
    EXPECT_EQ(Texts(print.Page(301, Area(), u"")).size(), 4U);
}

}  // namespace
}  // namespace zr::logger
