#include "logger/TablePrint.h"

#include "logger/RecordCursor.h"
#include "logger/WidestText.h"
#include "siblings/tools/FormatText.h"
#include "siblings/tools/ZRLoadString.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

namespace zr::logger {

namespace {

// Rows between two lines.
constexpr int kBlock = 3;

// In millimetres. Doubles that are multiplied by the pixels of one, held as a float.
constexpr double kMargins = 1.8;       // of a page, top and bottom
constexpr double kBlockGap = 1.5;      // between blocks, for their count
constexpr double kBelowTitles = 0.5;   // to the line below the titles, and its pen
constexpr double kAboveRows = 1.3;     // from that line to the first row
constexpr double kSeparatorPen = 0.3;  // between blocks
constexpr double kAboveSeparator = 0.6;
constexpr double kBelowSeparator = 0.8999999999999999;

int Whole(double value)
{
    constexpr double kLimit = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(value, -kLimit, kLimit));
}

}  // namespace

TablePrint::TablePrint(PrintSource source, const PrintDevice& device, PrintMeasure& measure)
    : m_source(std::move(source))
{
    ZRLoadString(kTextTimeColumn, m_timeTitle);
    MeasureTitles(measure);
    MeasureRows(measure);
    CountPages(device);
}

void TablePrint::MeasureTitles(PrintMeasure& measure)
{
    m_gap = 3 * measure.Extent(u" ").width;
    const PrintExtent time = measure.Extent(m_timeTitle);
    m_lineHeight = time.height;
    m_widths.push_back(time.width);
    for (auto record = m_source.profile->VarsBegin(); record != m_source.profile->VarsEnd(); ++record) {
        m_widths.push_back(measure.Extent((*record)->Title).width);
    }
}

void TablePrint::MeasureRows(PrintMeasure& measure)
{
    DigitWidths digits(measure);
    std::vector<WidestText> widest;
    for (const int width : m_widths) {
        widest.emplace_back(digits, width);
    }
    RecordCursor cursor;
    cursor.Reset(m_source.group);
    ZRBasicString text;
    for (int row = m_source.rows.NextFrom(0, cursor.Count()); row >= 0;
         row = m_source.rows.NextFrom(row + 1, cursor.Count())) {
        const LoggedRecord& record = *cursor.MoveTo(row);
        ++m_rows;
        widest[0].Add(FormatTableViewerTime(text, record.time, m_source.groupBy));
        for (std::size_t i = 0; i < m_source.values.size(); ++i) {
            if (m_source.values[i].Text(record, text)) {
                widest[i + 1].Add(text);
            }
        }
    }
    std::transform(widest.begin(), widest.end(), m_widths.begin(),
                   [](const WidestText& column) { return column.Width(); });
}

void TablePrint::CountPages(const PrintDevice& device)
{
    const int first = m_widths[0] + 4 * m_gap;
    int x = first;
    for (std::size_t i = 1; i < m_widths.size(); ++i) {
        if (x + m_widths[i] > device.horzRes) {
            ++m_pagesAcross;
            x = first;
        }
        x += m_gap + m_widths[i];
    }
    m_pixelsPerMm = device.vertSize > 0 ? static_cast<float>(device.vertRes / device.vertSize) : 0.0F;
    const double usable = device.vertRes - kMargins * static_cast<double>(m_pixelsPerMm);
    const int block = Whole(kBlock * m_lineHeight + kBlockGap * static_cast<double>(m_pixelsPerMm));
    if (block <= 0) {
        return;
    }
    const int rows = Whole(usable / block * 3.0);
    m_lines = rows - rows % kBlock - kBlock;
    if (m_lines < kBlock) {
        // A sheet of less than two blocks holds no rows; nothing could be divided by what it holds.
        m_lines = 0;
        return;
    }
    m_maxPage = Whole(std::ceil(static_cast<double>(m_rows) / m_lines) * m_pagesAcross);
}

int TablePrint::FirstColumn(int band, int areaRight) const
{
    const int start = m_widths[0] + 4 * m_gap;
    int x = start;
    int passed = 0;
    int firstColumn = 0;
    for (std::size_t i = 1; i < m_widths.size(); ++i) {
        if (x + m_widths[i] > areaRight) {
            if (passed >= band) {
                break;
            }
            ++passed;
            firstColumn = static_cast<int>(i) - 1;
            x = start;
        }
        x += m_widths[i] + m_gap;
    }
    return firstColumn;
}

std::vector<std::size_t> TablePrint::LeftOut(int areaRight) const
{
    std::vector<bool> isPrinted(m_widths.size() - 1);
    for (int band = 0; band < m_pagesAcross; ++band) {
        int right = 4 * m_gap + m_widths[0];
        for (auto i = static_cast<std::size_t>(FirstColumn(band, areaRight)); i < isPrinted.size(); ++i) {
            right += m_gap + m_widths[i + 1];
            if (right > areaRight) {
                break;
            }
            isPrinted[i] = true;
        }
    }
    std::vector<std::size_t> leftOut;
    for (std::size_t i = 0; i < isPrinted.size(); ++i) {
        if (!isPrinted[i]) {
            leftOut.push_back(i);
        }
    }
    return leftOut;
}

// Puts one page together, from its top.
class TablePrint::Sheet {
public:
    Sheet(const TablePrint& print, const PrintRect& area, int band, PrintedPage& page)
        : m_print(print),
          m_area(area),
          m_page(page),
          m_left(4 * print.m_gap),
          m_firstColumn(static_cast<std::size_t>(print.FirstColumn(band, area.right)))
    {
        std::int64_t total = print.m_widths[0] + 2 * print.m_gap;
        for (std::size_t i = 1; i < print.m_widths.size(); ++i) {
            total += print.m_gap + print.m_widths[i];
        }
        // Meant: lines span the whole table, not only this band of it.
        m_lineRight = Whole(static_cast<double>(total + 3 * print.m_gap));
    }

    void AddCaption(const ZRBasicString& caption)
    {
        const int width = m_area.right - m_area.left;
        Add({m_left, 0, width - m_left, m_print.m_lineHeight}, PrintAlign::Centre, caption);
    }

    void AddTitles()
    {
        m_y = 2 * m_print.m_lineHeight;
        Add(TimeRect(), PrintAlign::Left, m_print.m_timeTitle);
        const ZRTableProfile& profile = *m_print.m_source.profile;
        auto record = std::next(profile.VarsBegin(), static_cast<std::ptrdiff_t>(m_firstColumn));
        PrintRect rect = TimeRect();
        for (std::size_t i = m_firstColumn; record != profile.VarsEnd() && NextColumn(rect, i); ++i, ++record) {
            Add(rect, PrintAlign::Right, (*record)->Title);
        }
        m_y = Whole(2 * m_print.m_lineHeight + m_print.m_lineHeight + Pixels(kBelowTitles));
        AddLine(m_y, kBelowTitles);
        m_y = Whole(m_y + Pixels(kAboveRows));
    }

    void AddSeparator()
    {
        const int y = Whole(m_y + Pixels(kAboveSeparator));
        AddLine(y, kSeparatorPen);
        m_y = Whole(y + Pixels(kBelowSeparator));
    }

    void AddRow(const LoggedRecord& record)
    {
        ZRBasicString text;
        const PrintSource& source = m_print.m_source;
        PrintRect rect = TimeRect();
        Add(rect, PrintAlign::Right, FormatTableViewerTime(text, record.time, source.groupBy));
        for (std::size_t i = m_firstColumn; i < source.values.size() && NextColumn(rect, i); ++i) {
            if (source.values[i].Text(record, text)) {
                Add(rect, PrintAlign::Right, text);
            }
        }
        m_y += m_print.m_lineHeight;
    }

    void AddFooter(int page)
    {
        const int width = m_area.right - m_area.left;
        const int height = m_area.bottom - m_area.top;
        const PrintRect rect = {m_print.m_gap, height - 2 * m_print.m_lineHeight, width - m_print.m_gap,
                                height - m_print.m_lineHeight};
        Add(rect, PrintAlign::Centre, FormatText(u"%d / %d", {page, m_print.m_maxPage}));
    }

private:
    [[nodiscard]] double Pixels(double millimetres) const
    {
        return millimetres * static_cast<double>(m_print.m_pixelsPerMm);
    }
    [[nodiscard]] PrintRect TimeRect() const
    {
        return {m_left, m_y, m_left + m_print.m_widths[0], m_y + m_print.m_lineHeight};
    }
    // From the rectangle of a cell to that of the next, of column i. False when it doesn't fit.
    bool NextColumn(PrintRect& rect, std::size_t i) const
    {
        rect.left = rect.right + m_print.m_gap;
        rect.right = rect.left + m_print.m_widths[i + 1];
        return rect.right <= m_area.right;
    }
    void Add(const PrintRect& rect, PrintAlign align, const ZRBasicString& text)
    {
        m_page.texts.push_back({rect, align, text});
    }
    void AddLine(int y, double pen) { m_page.lines.push_back({3 * m_print.m_gap, m_lineRight, y, Whole(Pixels(pen))}); }

    const TablePrint& m_print;
    const PrintRect m_area;
    PrintedPage& m_page;
    const int m_left;
    const std::size_t m_firstColumn;
    int m_lineRight = 0;
    int m_y = 0;
};

PrintedPage TablePrint::Page(int page, const PrintRect& area, const ZRBasicString& caption) const
{
    PrintedPage printed;
    if (page < 1 || page > m_maxPage) {
        return printed;
    }
    Sheet sheet(*this, area, (page - 1) % m_pagesAcross, printed);
    sheet.AddCaption(caption);
    sheet.AddTitles();
    RecordCursor cursor;
    cursor.Reset(m_source.group);
    int row = m_source.rows.NextFrom((page - 1) / m_pagesAcross * m_lines, cursor.Count());
    for (int drawn = 0; row >= 0 && drawn < m_lines; ++drawn) {
        if (drawn > 0 && drawn % kBlock == 0) {
            sheet.AddSeparator();
        }
        sheet.AddRow(*cursor.MoveTo(row));
        row = m_source.rows.NextFrom(row + 1, cursor.Count());
    }
    sheet.AddFooter(page);
    printed.continuePrinting = page != m_maxPage;
    return printed;
}

}  // namespace zr::logger
