#include "siblings/tools/CsvReader.h"

#include "siblings/tools/CsvQuoting.h"
#include "siblings/tools/CsvSource.h"

#include <algorithm>
#include <cstring>

namespace zr {

namespace {

constexpr std::size_t kFirstRead = 64 * 1024;

bool StartsWith(std::string_view bytes, std::initializer_list<unsigned char> mark)
{
    return bytes.size() >= mark.size() &&
           std::equal(mark.begin(), mark.end(), bytes.begin(),
                      [](unsigned char expected, char byte) { return expected == static_cast<unsigned char>(byte); });
}

}  // namespace

CsvReader::CsvReader(CsvSource& source) : m_source(source) {}

bool CsvReader::Open(CsvFormat format)
{
    m_error = {m_source.Name(), 0, {}};
    m_next = m_filled = 0;
    m_dropped = 0;
    m_isAtEnd = false;
    m_line = 0;
    m_nextLine = 1;
    m_cells.clear();
    m_buffer.resize(kFirstRead);
    Refill();
    if (Failed() || !CheckEncoding()) {
        return false;
    }
    m_format = DetectCsvFormat({m_buffer.data() + m_next, m_filled - m_next}, format);
    return true;
}

bool CsvReader::CheckEncoding()
{
    const std::string_view head(m_buffer.data(), m_filled);
    if (StartsWith(head, {0xEF, 0xBB, 0xBF})) {
        m_next = 3;
    }
    if (StartsWith(head, {0xFF, 0xFE}) || StartsWith(head, {0xFE, 0xFF})) {
        return Fail(1, "is UTF-16 text; save it as UTF-8");
    }
    if (StartsWith(head, {0x1F, 0x8B})) {
        return Fail(1, "is compressed; unpack it first, or give it through a pipe (zcat FILE | ... -)");
    }
    return true;
}

bool CsvReader::Fail(std::size_t line, std::string reason)
{
    m_error.line = line;
    m_error.reason = std::move(reason);
    m_cells.clear();
    return false;
}

bool CsvReader::Refill()
{
    if (m_isAtEnd) {
        return false;
    }
    std::memmove(m_buffer.data(), m_buffer.data() + m_next, m_filled - m_next);
    m_dropped += m_next;
    m_filled -= m_next;
    m_next = 0;
    if (m_filled == m_buffer.size()) {
        m_buffer.resize(std::min(2 * m_buffer.size(), kMaxRecord + kFirstRead));
    }
    const std::size_t got = m_source.Read(std::span(m_buffer).subspan(m_filled));
    m_filled += got;
    if (got == 0) {
        m_isAtEnd = true;
        if (const std::string reason = m_source.Error(); !reason.empty()) {
            return Fail(0, reason);
        }
    }
    return got != 0;
}

bool CsvReader::Next()
{
    while (!Failed()) {
        std::size_t end = 0;
        std::size_t after = 0;
        bool hasQuote = false;
        if (!FindRecord(end, after, hasQuote)) {
            break;
        }
        const char* const begin = m_buffer.data() + m_next;
        m_line = m_nextLine;
        // Only a quoted cell holds line ends.
        m_nextLine +=
            hasQuote ? static_cast<std::size_t>(std::count(m_buffer.data() + m_next, m_buffer.data() + after, '\n'))
                     : 1;
        if (std::memchr(begin, '\0', end - m_next) != nullptr) {
            return Fail(m_line, "a NUL byte: this is no text");
        }
        if (end > m_next && m_buffer[end - 1] == '\r') {
            --end;
        }
        if (end == m_next) {
            m_next = after;
            continue;
        }
        m_cells.clear();
        hasQuote ? SplitQuoted(end) : SplitPlain(end);
        m_next = after;
        return true;
    }
    m_cells.clear();
    return false;
}

bool CsvReader::FindRecord(std::size_t& end, std::size_t& after, bool& hasQuote)
{
    std::size_t searched = 0;
    bool isOpen = false;
    for (;;) {
        const char* const begin = m_buffer.data() + m_next;
        const std::size_t size = m_filled - m_next;
        const void* const lineEnd = size > searched ? std::memchr(begin + searched, '\n', size - searched) : nullptr;
        end = lineEnd != nullptr ? static_cast<std::size_t>(static_cast<const char*>(lineEnd) - m_buffer.data())
                                 : m_filled;
        hasQuote = size > 0 && std::memchr(begin, '"', end - m_next) != nullptr;
        bool isWhole = lineEnd != nullptr;
        if (hasQuote) {
            end = EndOfQuotedRecord(isOpen);
            isWhole = end < m_filled;
        }
        if (end - m_next > kMaxRecord) {
            return Fail(m_nextLine, isOpen ? "a quote that isn't closed within " + std::to_string(kMaxRecord) + " bytes"
                                           : "a line of more than " + std::to_string(kMaxRecord) + " bytes");
        }
        if (isWhole) {
            after = end + 1;
            return true;
        }
        searched = hasQuote ? 0 : size;
        if (!Refill()) {
            break;
        }
    }
    if (Failed() || m_next == m_filled) {
        return false;
    }
    if (isOpen) {
        return Fail(m_nextLine, "a quote that isn't closed");
    }
    // The last line, without an end.
    end = after = m_filled;
    return true;
}

std::size_t CsvReader::EndOfQuotedRecord(bool& isOpen) const
{
    CsvQuoting state = CsvQuoting::CellStart;
    std::size_t at = m_next;
    for (; at < m_filled; ++at) {
        if (m_buffer[at] == '\n' && state != CsvQuoting::Quoted) {
            break;
        }
        state = NextCsvQuoting(state, m_buffer[at], m_format.separator);
    }
    isOpen = state == CsvQuoting::Quoted;
    return at;
}

void CsvReader::SplitPlain(std::size_t end)
{
    const char* at = m_buffer.data() + m_next;
    const char* const last = m_buffer.data() + end;
    const char separator = m_format.separator;
    for (const char* cell = at;; ++at) {
        if (at == last || *at == separator) {
            m_cells.emplace_back(cell, static_cast<std::size_t>(at - cell));
            if (at == last) {
                return;
            }
            cell = at + 1;
        }
    }
}

void CsvReader::SplitQuoted(std::size_t end)
{
    char* at = m_buffer.data() + m_next;
    char* const last = m_buffer.data() + end;
    for (;;) {
        if (at != last && *at == '"') {
            at = TakeQuotedCell(at, last);
        } else {
            char* const cellEnd = std::find(at, last, m_format.separator);
            m_cells.emplace_back(at, static_cast<std::size_t>(cellEnd - at));
            at = cellEnd;
        }
        if (at == last) {
            return;
        }
        ++at;
    }
}

char* CsvReader::TakeQuotedCell(char* at, char* end)
{
    char* const cell = at;
    char* out = at;
    CsvQuoting state = CsvQuoting::CellStart;
    for (; at != end; ++at) {
        const CsvQuoting next = NextCsvQuoting(state, *at, m_format.separator);
        if (next == CsvQuoting::CellStart) {
            break;
        }
        const bool isMark = *at == '"' && (state == CsvQuoting::CellStart || next == CsvQuoting::QuoteSeen);
        if (!isMark) {
            *out++ = *at;
        }
        state = next;
    }
    m_cells.emplace_back(cell, static_cast<std::size_t>(out - cell));
    return at;
}

}  // namespace zr
