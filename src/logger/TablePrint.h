// A table of logged data on paper: what is measured, how it is cut into pages, and what stands on each.
#pragma once

#include "logger/RowSelection.h"
#include "logger/TableTexts.h"
#include "siblings/driversupport/ZRLoggerData.h"
#include "siblings/tools/ZRBasicString.h"

#include <string_view>
#include <vector>

namespace zr::logger {

// What is printed with: Arial of so many tenths of a point.
inline constexpr const wchar* kPrintFont = u"Arial";
inline constexpr int kPrintFontTenths = 100;

// Message: the columns that were not printed.
inline constexpr unsigned kTextLeftOut = 32349;

struct PrintExtent {
    int width = 0;
    int height = 0;
};

// Texts in the print font, as the device measures them: in device units, and the same whether a page is measured,
// previewed or printed. Without kerning, as the device draws them.
class PrintMeasure {
public:
    [[nodiscard]] virtual PrintExtent Extent(std::u16string_view text) = 0;

protected:
    ~PrintMeasure() = default;
};

// The printable area of a sheet.
struct PrintDevice {
    int horzRes = 0;   // width, device units
    int vertRes = 0;   // height, device units
    int vertSize = 0;  // height, millimetres
};

// A rectangle in device units, right and bottom exclusive.
struct PrintRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    friend bool operator==(const PrintRect&, const PrintRect&) = default;
};

enum class PrintAlign { Left, Centre, Right };

struct PrintText {
    PrintRect rect;
    PrintAlign align = PrintAlign::Left;
    ZRBasicString text;  // one line, cut off by nothing
};

// Black and solid, from left to right at one height.
struct PrintLine {
    int left = 0;
    int right = 0;
    int y = 0;
    int penWidth = 0;

    friend bool operator==(const PrintLine&, const PrintLine&) = default;
};

struct PrintedPage {
    std::vector<PrintText> texts;
    std::vector<PrintLine> lines;
    bool continuePrinting = false;  // another page follows
};

// What is printed. None of it is owned; all must outlive the printing.
struct PrintSource {
    const ZRTableProfile* profile = nullptr;
    std::vector<ValueColumn> values;  // one for each record of the profile
    const ZRLoggerData::CRecordGroup* group = nullptr;
    int groupBy = 0;
    RowSelection rows;
};

// Lives from OnBeginPrinting to OnEndPrinting: measures once, then gives any page in any order.
//
// A table too wide for the sheet is cut into bands of columns, the time at the left of each; pages go band by band
// before the next rows come. Between blocks of three rows there is a line. UI thread only.
class TablePrint {
public:
    TablePrint(PrintSource source, const PrintDevice& device, PrintMeasure& measure);

    // The last page, one-based; 0 when there is nothing to print, or the sheet is too small for a block of rows.
    [[nodiscard]] int MaxPage() const { return m_maxPage; }
    // Whether there are rows but no sheet of this size can hold them.
    [[nodiscard]] bool IsSheetTooSmall() const { return m_rows > 0 && m_maxPage == 0; }

    // What stands on a page, one-based, in a drawing area. The caption is the text above the table.
    //
    // Meant: of a selection, the rows before a page are skipped counting those that aren't selected as well, so that
    // what later pages begin with depends on where in the table they stand. Columns are dealt out to bands without the
    // gap before the first of them, while a row ends at the first column that passes the edge; one wider than the
    // sheet ends every row before it.
    [[nodiscard]] PrintedPage Page(int page, const PrintRect& area, const ZRBasicString& caption) const;

    // The columns, zero-based and without the time, that no band has room for in a drawing area.
    [[nodiscard]] std::vector<std::size_t> LeftOut(int areaRight) const;

    // As measured, device units.
    [[nodiscard]] const std::vector<int>& Widths() const { return m_widths; }  // the time, then each record's column
    [[nodiscard]] int LineHeight() const { return m_lineHeight; }
    [[nodiscard]] int Gap() const { return m_gap; }
    [[nodiscard]] int Lines() const { return m_lines; }  // rows on a page, a multiple of 3
    [[nodiscard]] int PagesAcross() const { return m_pagesAcross; }
    [[nodiscard]] int Rows() const { return m_rows; }

private:
    class Sheet;

    void MeasureTitles(PrintMeasure& measure);
    void MeasureRows(PrintMeasure& measure);
    void CountPages(const PrintDevice& device);
    [[nodiscard]] int FirstColumn(int band, int areaRight) const;

    PrintSource m_source;
    ZRBasicString m_timeTitle;
    std::vector<int> m_widths;
    int m_lineHeight = 0;
    int m_gap = 0;
    int m_lines = 0;
    int m_pagesAcross = 1;
    int m_rows = 0;
    int m_maxPage = 0;
    float m_pixelsPerMm = 0.0F;
};

}  // namespace zr::logger
