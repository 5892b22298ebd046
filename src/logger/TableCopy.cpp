#include "logger/TableCopy.h"

#include "logger/RecordCursor.h"
#include "platform/Unicode.h"
#include "siblings/tools/ZRLocaleInformation.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace zr::logger {

namespace {

using View = std::u16string_view;

// Header and tail of "HTML Format". The comment keeps its blank.
constexpr std::string_view kHeaderTail =
    "<html><body>\r\n"
    "<!--StartFragment -->\r\n"
    "<table width=\"100%\" border=\"0\" cellspacing=\"0\" cellpadding=\"0\">\r\n";
constexpr std::string_view kTail = "</table>\r\n<!--EndFragment-->\r\n</body>\r\n</html>";
constexpr std::string_view kLineEnd = "\r\n";
// Spreadsheets take what begins with "=" for a formula unless a cell says that it is text, each in its own way.
constexpr std::string_view kTextCell = "<TD SDNUM=\"1033;0;@\" STYLE=\"mso-number-format:'\\@'\">";
// From the page's first character to the first comment, and from the tail's to the last one.
constexpr std::size_t kBeforeFragment = 14;
constexpr std::size_t kTailBeforeFragment = 10;
// Room for the header in front of the rows.
constexpr std::size_t kHeaderRoom = 512;

// Rows after which the length of all can be told.
constexpr std::size_t kSampleRows = 1000;

// Units of UTF-16 that are converted at a time.
constexpr std::size_t kPiece = 1024;

// The most bytes of UTF-8 for a unit of UTF-16.
constexpr std::size_t kMaxBytes = 3;

// A text that the compiler knows, without its zero.
template <typename Char, std::size_t Size>
Char* Put(Char* at, const Char (&text)[Size])
{
    std::memcpy(at, text, (Size - 1) * sizeof(Char));
    return at + Size - 1;
}

template <typename Char>
Char* Put(Char* at, std::basic_string_view<Char> text)
{
    return std::copy(text.begin(), text.end(), at);
}

constexpr std::size_t kGroup = 4;  // units of UTF-16 that a word holds

std::uint64_t GroupAt(const wchar* at)
{
    std::uint64_t group = 0;
    std::memcpy(&group, at, sizeof group);
    return group;
}

// The texts of cells are short: they are copied in groups, the last of which overlaps the one before.
wchar* PutCell(wchar* at, View text)
{
    if (text.size() < kGroup) {
        return Put(at, text);
    }
    const std::size_t last = text.size() - kGroup;
    for (std::size_t i = 0; i < last; i += kGroup) {
        std::memcpy(at + i, text.data() + i, kGroup * sizeof(wchar));
    }
    std::memcpy(at + last, text.data() + last, kGroup * sizeof(wchar));
    return at + text.size();
}

// Likewise to UTF-8: groups of ASCII at once, as they nearly all are.
char* PutCell(char* at, View text)
{
    std::size_t i = 0;
    for (; i + kGroup <= text.size(); i += kGroup) {
        const std::uint64_t group = GroupAt(text.data() + i);
        if ((group & 0xFF80FF80FF80FF80U) != 0) {
            break;
        }
        for (std::size_t k = 0; k < kGroup; ++k) {
            at[k] = static_cast<char>(text[i + k]);
        }
        at += kGroup;
    }
    for (; i < text.size(); ++i) {
        if (text[i] >= 0x80) {
            return Put(at, std::string_view(Utf8From16(text.substr(i))));
        }
        *at++ = static_cast<char>(text[i]);
    }
    return at;
}

std::string Position(std::size_t position)
{
    std::array<char, 24> digits{};
    const int length = std::snprintf(digits.data(), digits.size(), "%08zu", position);
    return {digits.data(), static_cast<std::size_t>(length)};
}

// The lines with the positions, for a page of so many characters behind them. Their own digits count in what they tell.
std::string PositionLines(std::size_t pageCharacters)
{
    std::string lines;
    std::size_t length = 0;
    do {
        length = lines.size();
        const std::size_t end = length + pageCharacters;
        lines = "Version:0.9\r\nStartHTML:" + Position(length) + "\r\nEndHTML:" + Position(end) +
                "\r\nStartFragment:" + Position(length + kBeforeFragment) +
                "\r\nEndFragment:" + Position(end - kTail.size() + kTailBeforeFragment) + "\r\n";
    } while (lines.size() != length);
    return lines;
}

bool IsSpecial(wchar character)
{
    return character == u'&' || character == u'<' || character == u'>' || character == u'"';
}

bool HasSpecial(const ZRBasicString& text)
{
    return std::any_of(text.Text().begin(), text.Text().end(), IsSpecial);
}

// Whether a time or a number as the user writes them may hold what has to be escaped.
bool FormatsNeedEscape(const ZRLocaleInformation<ZRBasicString>& locale)
{
    return HasSpecial(locale.decimalSeparator) || HasSpecial(locale.thousandsSeparator) ||
           HasSpecial(locale.timeSeparator) || HasSpecial(locale.dateSeparator) ||
           std::any_of(locale.dayNames.begin(), locale.dayNames.end(), HasSpecial);
}

// One text that is written row by row; a row is there whole or not at all. Closes when there is no more memory.
template <typename Char>
class RowText {
public:
    RowText(TextBlock<Char>& block, const CopyRoom::Grant& limit) : m_block(block), m_room(limit) {}

    [[nodiscard]] bool IsOpen() const { return m_isOpen; }
    // UTF-16 units of the whole rows.
    [[nodiscard]] std::size_t Characters() const { return m_characters; }
    // Whole ones, without the titles.
    [[nodiscard]] std::size_t Rows() const { return m_rows; }

    // A cell between what stands before and behind it, which is ASCII.
    template <std::size_t Before, std::size_t Behind>
    void Write(const Char (&before)[Before], View text, const Char (&behind)[Behind])
    {
        constexpr std::size_t kAround = Before - 1 + Behind - 1;
        if (!m_isOpen) {
            return;
        }
        if (!m_block.Reserve(kAround + kMaxBytes * text.size())) {
            m_block.Truncate(m_rowFirst);
            m_isOpen = false;
            return;
        }
        m_block.SetEnd(Put(PutCell(Put(m_block.End(), before), text), behind));
        m_rowCharacters += kAround + text.size();
    }

    template <std::size_t Size>
    void EndTitles(const Char (&end)[Size])
    {
        Write(end, View(), kNothing);
        TakeRow();
    }

    template <std::size_t Size>
    void EndRow(const Char (&end)[Size])
    {
        EndTitles(end);
        m_rows += m_isOpen ? 1 : 0;
        m_isOpen = m_isOpen && m_room.AfterRow(m_characters);
    }

    // Room for so many more rows that are like those there are, so that what is there isn't moved any more.
    void Expect(std::size_t rowsSoFar, std::size_t rowsToCome)
    {
        const std::size_t written = m_block.Size() - m_rowsFirst;
        // And a quarter more, since rows may grow longer; what is never touched costs no memory.
        m_block.ReserveExactly(written / rowsSoFar * rowsToCome / 4 * 5);
    }

private:
    void TakeRow()
    {
        if (m_isOpen) {
            m_characters += m_rowCharacters;
            m_rowFirst = m_block.Size();
        }
        m_rowCharacters = 0;
    }

    static constexpr Char kNothing[1] = {};

    TextBlock<Char>& m_block;
    CopyRoom m_room;
    std::size_t m_characters = 0;
    std::size_t m_rowCharacters = 0;  // of the row at hand
    std::size_t m_rows = 0;
    std::size_t m_rowFirst = m_block.Size();
    std::size_t m_rowsFirst = m_block.Size();
    bool m_isOpen = true;
};

using HtmlRows = RowText<char>;
using PlainRows = RowText<wchar>;

void WriteTitles(const std::vector<ZRBasicString>& titles, HtmlRows& html, PlainRows& plain)
{
    html.Write("<TR>", View(), "");
    for (const ZRBasicString& title : titles) {
        html.Write("<TD><B>", title, "</B></TD>");
        plain.Write(u"", title, u"\t");
    }
    html.EndTitles("</TR>\r\n");
    plain.EndTitles(u"\r\n");
}

// text: room for the text of a cell.
void WriteRow(const LoggedRecord& record, const TableCopySource& source, ZRBasicString& text, HtmlRows& html,
              PlainRows& plain)
{
    FormatTableViewerTime(text, record.time, source.groupBy);
    html.Write("<TR><TD>", text, "</TD>");
    plain.Write(u"", text, u"");
    for (const ValueColumn& column : source.values) {
        const bool hasValue = column.Text(record, text);
        html.Write("<TD>", text, "</TD>");
        plain.Write(u"\t", hasValue ? text.Text() : View(u" "), u"");
    }
    html.EndRow("</TR>\r\n");
    plain.EndRow(u"\r\n");
}

void AppendEscapedRow(const LoggedRecord& record, const TableCopySource& source, ZRBasicString& text,
                      TextBlock<char>& block)
{
    std::string row = "<TR><TD>" + EscapedHtml(FormatTableViewerTime(text, record.time, source.groupBy)) + "</TD>";
    for (const ValueColumn& column : source.values) {
        column.Text(record, text);
        row += "<TD>" + EscapedHtml(text) + "</TD>";
    }
    block.Append(row + "</TR>\r\n");
}

}  // namespace

TableCopy::TableCopy(const TableCopySource& source, const CopyRoom::Grant& limit)
    : m_titles(source.titles), m_needsEscape(FormatsNeedEscape(localeInformationWide))
{
    if ((limit && !limit(CopyRoom::kStart)) || !m_html.Reserve(kHeaderRoom)) {
        return;
    }
    m_html.SetEnd(m_html.Data() + kHeaderRoom);
    HtmlRows html(m_html, limit);
    PlainRows plain(m_plain, limit);
    WriteTitles(source.titles, html, plain);
    m_rowsFirst = m_html.Size();
    RecordCursor cursor;
    cursor.Reset(source.group);
    const std::size_t rows = static_cast<std::size_t>(source.rows.CountOf(cursor.Count()));
    std::size_t written = 0;
    ZRBasicString text;
    for (int row = source.rows.NextFrom(0, cursor.Count()); row >= 0 && (html.IsOpen() || plain.IsOpen());
         row = source.rows.NextFrom(row + 1, cursor.Count())) {
        const LoggedRecord& record = *cursor.MoveTo(row);
        if (m_needsEscape && html.IsOpen()) {
            AppendEscapedRow(record, source, text, m_escapedRows);
        }
        WriteRow(record, source, text, html, plain);
        if (++written == kSampleRows) {
            html.Expect(written, rows - written);
            plain.Expect(written, rows - written);
        }
    }
    m_rowsLast = m_html.Size();
    WrapHtml(html.Characters());
    if (m_plain.Reserve(1)) {
        *m_plain.End() = u'\0';
    } else {
        m_plain = {};
    }
    m_isWhole = html.Rows() == rows && plain.Rows() == rows && m_html.Size() > 0 && m_plain.Size() > 0;
}

void TableCopy::WrapHtml(std::size_t characters)
{
    const std::size_t page = kHeaderTail.size() + characters + kLineEnd.size() + kTail.size();
    const std::string header = PositionLines(page).append(kHeaderTail);
    m_htmlFirst = kHeaderRoom - header.size();
    // The zero stands behind the tail's text.
    if (!m_html.Append(kLineEnd) || !m_html.Append({kTail.data(), kTail.size() + 1})) {
        m_html = {};
        return;
    }
    m_html.Truncate(m_html.Size() - 1);
    Put(m_html.Data() + m_htmlFirst, std::string_view(header));
}

std::string_view TableCopy::HtmlFormat() const
{
    return m_html.Size() == 0 ? std::string_view()
                              : std::string_view(m_html.Data() + m_htmlFirst, m_html.Size() - m_htmlFirst);
}

std::u16string_view TableCopy::PlainText() const
{
    return m_plain.Data() == nullptr ? View() : View(m_plain.Data(), m_plain.Size());
}

std::string TableCopy::TextHtml() const
{
    std::string page =
        "<html><head><meta http-equiv=\"content-type\" content=\"text/html; charset=utf-8\"></head><body>\r\n"
        "<table border=\"0\" cellspacing=\"0\" cellpadding=\"0\">\r\n<TR>";
    for (const ZRBasicString& title : m_titles) {
        page += kTextCell;
        page += "<B>" + EscapedHtml(title) + "</B></TD>";
    }
    page += "</TR>\r\n";
    if (m_needsEscape) {
        page.append(m_escapedRows.Data(), m_escapedRows.Size());
    } else if (m_html.Size() != 0) {
        // But for the titles nothing in it has to be escaped.
        page.append(m_html.Data() + m_rowsFirst, m_rowsLast - m_rowsFirst);
    }
    return page += "</table>\r\n</body></html>\r\n";
}

std::string TableCopy::TextPlain() const
{
    std::string out;
    std::array<char, kMaxBytes * kPiece> room;  // only what was written is read
    for (View text = PlainText(); !text.empty();) {
        std::size_t length = std::min(text.size(), kPiece);
        if (length < text.size() && (text[length - 1] & 0xFC00) == 0xD800) {
            // Not between the halves of a pair.
            --length;
        }
        out.append(room.data(), PutCell(room.data(), text.substr(0, length)));
        text.remove_prefix(length);
    }
    return out;
}

std::string EscapedHtml(std::u16string_view text)
{
    std::string escaped;
    for (const char character : Utf8From16(text)) {
        switch (character) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                escaped += character;
        }
    }
    return escaped;
}

}  // namespace zr::logger
