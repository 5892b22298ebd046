#include "siblings/driversupport/store/CsvRows.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cstdlib>

namespace zr {

namespace {

constexpr std::int64_t kMicros = 1000000;
constexpr std::int64_t kDay = 86400;

void AppendDigits(std::string& out, std::int64_t value, int digits)
{
    std::array<char, 20> text{};
    for (int i = digits - 1; i >= 0; --i, value /= 10) {
        text[static_cast<std::size_t>(i)] = static_cast<char>('0' + value % 10);
    }
    out.append(text.data(), static_cast<std::size_t>(digits));
}

std::string OffsetText(std::int32_t offset)
{
    std::string text(1, offset < 0 ? '-' : '+');
    const int minutes = std::abs(offset) / 60;
    AppendDigits(text, minutes / 60, 2);
    text += ':';
    AppendDigits(text, minutes % 60, 2);
    return text;
}

}  // namespace

void AppendCsvCell(std::string& out, std::string_view cell, char separator)
{
    constexpr std::string_view kMarks = "\"\r\n";
    if (cell.find_first_of(kMarks) == std::string_view::npos && cell.find(separator) == std::string_view::npos) {
        out += cell;
        return;
    }
    out += '"';
    for (const char byte : cell) {
        out.append(byte == '"' ? 2 : 1, byte);
    }
    out += '"';
}

std::size_t CsvRows::Append(std::string& out, std::int64_t utc, std::span<const LoggedValue> values)
{
    std::size_t count = 0;
    AppendTime(out, utc);
    for (const LoggedValue& value : values) {
        out += m_format.separator;
        if (value.valid != 0) {
            AppendNumber(out, value.value);
            ++count;
        }
    }
    out += '\n';
    return count;
}

void CsvRows::AppendTime(std::string& out, std::int64_t utc)
{
    const std::int64_t seconds = utc / kMicros;
    const std::int64_t micros = utc % kMicros;
    if (seconds < m_span.begin || seconds >= m_span.end) {
        m_span = m_zone.SpanAt(seconds);
        m_offset = OffsetText(m_span.offset);
    }
    const std::int64_t local = seconds + m_span.offset;
    if (local < m_dayBegin || local >= m_dayEnd) {
        SetDay(local);
    }
    const std::int64_t ofDay = local - m_dayBegin;
    out += m_date;
    AppendDigits(out, ofDay / 3600, 2);
    out += ':';
    AppendDigits(out, ofDay / 60 % 60, 2);
    out += ':';
    AppendDigits(out, ofDay % 60, 2);
    if (micros != 0) {
        // A point even where numbers have a comma: ISO 8601 allows both, and a comma may be the separator.
        out += '.';
        AppendDigits(out, micros, 6);
    }
    out += m_offset;
}

void CsvRows::SetDay(std::int64_t local)
{
    const std::chrono::sys_days day =
        std::chrono::floor<std::chrono::days>(std::chrono::sys_seconds(std::chrono::seconds(local)));
    const std::chrono::year_month_day date(day);
    m_dayBegin = day.time_since_epoch().count() * kDay;
    m_dayEnd = m_dayBegin + kDay;
    m_date.clear();
    AppendDigits(m_date, static_cast<int>(date.year()), 4);
    m_date += '-';
    AppendDigits(m_date, static_cast<unsigned>(date.month()), 2);
    m_date += '-';
    AppendDigits(m_date, static_cast<unsigned>(date.day()), 2);
    m_date += 'T';
}

void CsvRows::AppendNumber(std::string& out, double value) const
{
    std::array<char, 32> text{};
    const char* const end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    const std::size_t begin = out.size();
    out.append(text.data(), static_cast<std::size_t>(end - text.data()));
    if (m_format.decimal != '.') {
        if (const std::size_t mark = out.find('.', begin); mark != std::string::npos) {
            out[mark] = m_format.decimal;
        }
    }
}

}  // namespace zr
