// A table of logged data as texts for the clipboard.
#pragma once

#include "logger/ClipboardText.h"
#include "logger/RowSelection.h"
#include "logger/TableTexts.h"
#include "siblings/driversupport/ZRLoggerData.h"
#include "siblings/tools/ZRBasicString.h"

#include <string>
#include <string_view>
#include <vector>

namespace zr::logger {

// The name under which the first text is registered with the clipboard.
inline constexpr const char* kHtmlFormatName = "HTML Format";

// Messages where there is too little memory: for all rows, and for anything.
inline constexpr unsigned kTextNotAllCopied = 32347;
inline constexpr unsigned kTextNothingCopied = 32348;

// What is copied. None of it is owned; all must outlive the copying alone.
struct TableCopySource {
    const std::vector<ZRBasicString>& titles;  // of all columns in the order of the list, the time first
    const std::vector<ValueColumn>& values;    // one less than there are titles
    const ZRLoggerData::CRecordGroup* group = nullptr;
    int groupBy = 0;
    RowSelection rows;
};

// The texts of one copying; puts them on no clipboard itself. They go there in this order: HtmlFormat, PlainText.
// Holds what the two need and no more; the texts for other desktops are made from them when they are asked for.
class TableCopy {
public:
    // Reads the records and writes both texts, every cell formatted once. Without memory, which limit tells of as well
    // (see CopyRoom), the rows of a text end where they are. UI thread.
    explicit TableCopy(const TableCopySource& source, const CopyRoom::Grant& limit = {});

    // Whether all rows are in both texts.
    [[nodiscard]] bool IsWhole() const { return m_isWhole; }
    // There was no memory for anything.
    [[nodiscard]] bool IsEmpty() const { return HtmlFormat().empty() && PlainText().empty(); }

    // UTF-8: a header with positions, then a page with the table between two comments. The bytes handed over are these
    // and the zero behind them. Empty without memory.
    //
    // Meant: positions count UTF-16 units of the text, not bytes of its UTF-8, and are short where the text isn't
    // ASCII; the titles stand in it as they are, unescaped. A position has 8 digits, and more where it needs more.
    [[nodiscard]] std::string_view HtmlFormat() const;
    // UTF-16, columns by tabs, lines by CR LF; the line of titles ends in a tab, a cell without a value is a blank. A
    // zero stands behind. Empty without memory.
    [[nodiscard]] std::u16string_view PlainText() const;

    // For desktops that know media types, both UTF-8: text/html, a page of its own with all texts escaped and the
    // titles marked as text, so that none is a formula, and text/plain, the plain text.
    [[nodiscard]] std::string TextHtml() const;
    [[nodiscard]] std::string TextPlain() const;

private:
    // Puts header and tail around the rows.
    void WrapHtml(std::size_t characters);

    TextBlock<char> m_html;
    std::size_t m_htmlFirst = 0;  // where the header begins
    std::size_t m_rowsFirst = 0;  // behind the titles
    std::size_t m_rowsLast = 0;
    TextBlock<wchar> m_plain;
    std::vector<ZRBasicString> m_titles;
    TextBlock<char> m_escapedRows;  // only where the user's formats hold what has to be escaped
    bool m_needsEscape = false;
    bool m_isWhole = false;
};

// A text as it stands within an element of HTML: & < > and quotes escaped, UTF-8.
std::string EscapedHtml(std::u16string_view text);

}  // namespace zr::logger
