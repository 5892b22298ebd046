// Reads a file of separated values record by record, in constant memory.
#pragma once

#include "siblings/tools/FileError.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zr {

class CsvSource;

// How a file is written.
struct CsvFormat {
    char separator = '\0';  // comma, semicolon or tab; 0: to be found out
    char decimal = '\0';    // point or comma; 0: to be found out

    friend bool operator==(const CsvFormat&, const CsvFormat&) = default;
};

// Finds out what the format leaves open from the first records: the separator that gives each of them the same number
// of cells, and the mark that most of their numbers have. Comma and point where nothing tells.
CsvFormat DetectCsvFormat(std::string_view head, CsvFormat format);

// Records end at a line feed, a carriage return before it is dropped; empty lines are none. A cell that begins with a
// quote ends at the next single quote, may hold separators and line ends, and two quotes stand for one (RFC 4180). A
// byte order mark of UTF-8 is skipped. NUL bytes, other encodings and records of more than kMaxRecord bytes are
// refused.
//
// Open, then Next until it is false, then look at Failed(). One thread.
class CsvReader {
public:
    static constexpr std::size_t kMaxRecord = 1u << 20;

    // Not owned; must outlive this.
    explicit CsvReader(CsvSource& source);

    // Begins at the place where the source is, which should be its start. False after a failure.
    bool Open(CsvFormat format);
    // The next record. False at the end, and after a failure.
    bool Next();

    // The cells of the record, until the next call.
    [[nodiscard]] std::span<const std::string_view> Cells() const { return m_cells; }
    // Where the record begins. One-based.
    [[nodiscard]] std::size_t Line() const { return m_line; }
    // Of the source, that lie behind.
    [[nodiscard]] std::uint64_t BytesTaken() const { return m_dropped + m_next; }
    [[nodiscard]] const CsvFormat& Format() const { return m_format; }

    [[nodiscard]] bool Failed() const { return !m_error.reason.empty(); }
    [[nodiscard]] const FileError& Error() const { return m_error; }

private:
    // More bytes behind the ones from m_next on. False when there are none, or no room for them.
    bool Refill();
    bool Fail(std::size_t line, std::string reason);
    bool CheckEncoding();
    // The end of the record that begins at m_next, without its line end. False when there is none.
    bool FindRecord(std::size_t& end, std::size_t& after, bool& hasQuote);
    [[nodiscard]] std::size_t EndOfQuotedRecord(bool& isOpen) const;
    void SplitPlain(std::size_t end);
    void SplitQuoted(std::size_t end);
    // Takes the quotes off in place. Returns where the rest of the record begins.
    char* TakeQuotedCell(char* at, char* end);

    CsvSource& m_source;
    CsvFormat m_format;
    FileError m_error;
    std::vector<char> m_buffer;
    std::size_t m_next = 0;       // where the next record begins
    std::size_t m_filled = 0;     // of the buffer
    std::uint64_t m_dropped = 0;  // bytes of the source before the buffer
    bool m_isAtEnd = false;       // of the source
    std::size_t m_line = 0;
    std::size_t m_nextLine = 1;
    std::vector<std::string_view> m_cells;
};

}  // namespace zr
