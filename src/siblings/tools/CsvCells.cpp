#include "siblings/tools/CsvCells.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

namespace zr {

namespace {

constexpr std::int64_t kMicros = 1000000;
constexpr std::int64_t kDay = 86400;
// Local times that records can hold.
constexpr std::int64_t kFirstLocal = 946684800;  // 1 January 2000
constexpr std::int64_t kEndLocal = 5238432000;   // 1 January 2136

constexpr const char* kNoTime = "is no time, as 2006-12-16T17:24:00 is one";
constexpr const char* kSkipped = "doesn't exist: the clock is set forward over it in this time zone";
constexpr const char* kOutside = "lies outside the years 2000 to 2135";

bool IsDigit(char byte)
{
    return byte >= '0' && byte <= '9';
}

// Two digits as a number; -1 for others.
int TwoDigits(const char* text)
{
    return IsDigit(text[0]) && IsDigit(text[1]) ? (text[0] - '0') * 10 + (text[1] - '0') : -1;
}

// Decimals of a second behind a mark, taken off the text; digits beyond the sixth are cut. False when there are none.
bool TakeDecimals(std::string_view& text, std::int64_t& micros)
{
    std::size_t digits = 1;
    std::int64_t unit = kMicros / 10;
    for (; digits < text.size() && IsDigit(text[digits]); ++digits, unit /= 10) {
        micros += (text[digits] - '0') * unit;
    }
    text.remove_prefix(digits);
    return digits > 1;
}

bool BeginsWithMark(std::string_view text)
{
    return !text.empty() && (text.front() == '.' || text.front() == ',');
}

// "hh:mm" with or without seconds and their decimals, taken off the text.
bool TakeTimeOfDay(std::string_view& text, std::int64_t& seconds, std::int64_t& micros)
{
    if (text.size() < 5 || text[2] != ':') {
        return false;
    }
    const int hour = TwoDigits(text.data());
    const int minute = TwoDigits(text.data() + 3);
    int second = 0;
    text.remove_prefix(5);
    if (!text.empty() && text.front() == ':') {
        if (text.size() < 3) {
            return false;
        }
        second = TwoDigits(text.data() + 1);
        text.remove_prefix(3);
        if (BeginsWithMark(text) && !TakeDecimals(text, micros)) {
            return false;
        }
    }
    seconds = (hour * 60 + minute) * 60 + second;
    return hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 60;
}

// "Z", "+01:00", "+0100" or "+01": the whole text.
bool ReadOffset(std::string_view text, std::int64_t& offset)
{
    if (text == "Z" || text == "z") {
        offset = 0;
        return true;
    }
    const bool hasColon = text.size() == 6 && text[3] == ':';
    if ((text.size() != 3 && text.size() != 5 && !hasColon) || (text.front() != '+' && text.front() != '-')) {
        return false;
    }
    const int hours = TwoDigits(text.data() + 1);
    const int minutes = text.size() == 3 ? 0 : TwoDigits(text.data() + (hasColon ? 4 : 3));
    offset = (hours * 60 + minutes) * 60;
    offset = text.front() == '-' ? -offset : offset;
    return hours >= 0 && hours <= 24 && minutes >= 0 && minutes < 60;
}

// Unix seconds with or without decimals.
bool ReadUnix(std::string_view cell, std::int64_t& utc)
{
    std::int64_t seconds = 0;
    std::int64_t micros = 0;
    const char* const end = cell.data() + cell.size();
    const auto [stop, error] = std::from_chars(cell.data(), end, seconds);
    if (error != std::errc() || cell.front() == '-') {
        return false;
    }
    cell.remove_prefix(static_cast<std::size_t>(stop - cell.data()));
    if (BeginsWithMark(cell) && !TakeDecimals(cell, micros)) {
        return false;
    }
    // What is too large says so later, by the years.
    utc = std::min(seconds, kEndLocal * 2) * kMicros + micros;
    return cell.empty();
}

}  // namespace

std::string_view TrimCsvCell(std::string_view cell)
{
    const auto isBlank = [](char byte) { return byte == ' ' || byte == '\t'; };
    while (!cell.empty() && isBlank(cell.front())) {
        cell.remove_prefix(1);
    }
    while (!cell.empty() && isBlank(cell.back())) {
        cell.remove_suffix(1);
    }
    return cell;
}

bool ParseCsvNumber(std::string_view cell, char decimal, double& value)
{
    if (cell.size() > 1 && cell.front() == '+' && cell[1] != '-') {
        cell.remove_prefix(1);
    }
    std::string withPoint;
    if (decimal != '.') {
        if (cell.find('.') != std::string_view::npos) {
            return false;
        }
        if (const std::size_t mark = cell.find(decimal); mark != std::string_view::npos) {
            withPoint = cell;
            withPoint[mark] = '.';
            cell = withPoint;
        }
    }
    double read = 0.0;
    const char* const end = cell.data() + cell.size();
    const auto [stop, error] = std::from_chars(cell.data(), end, read);
    if (error != std::errc() || stop != end || !std::isfinite(read)) {
        return false;
    }
    value = read;
    return true;
}

const char* CsvTimes::Read(std::string_view cell, std::int64_t& utc)
{
    std::int64_t read = 0;
    if (cell.size() >= 10 && cell[4] == '-') {
        if (const char* const problem = ReadCalendar(cell, read); problem != nullptr) {
            return problem;
        }
    } else if (cell.empty() || !ReadUnix(cell, read)) {
        return kNoTime;
    }
    const std::int64_t local = m_zone.ToLocal(read / kMicros);
    if (read < 0 || local < kFirstLocal || local >= kEndLocal) {
        return kOutside;
    }
    utc = read;
    return nullptr;
}

const char* CsvTimes::ReadCalendar(std::string_view cell, std::int64_t& utc)
{
    std::int64_t day = 0;
    std::int64_t ofDay = 0;
    std::int64_t micros = 0;
    if (!ReadDate(cell, day)) {
        return kNoTime;
    }
    std::string_view rest = cell.substr(10);
    const bool hasTime = !rest.empty();
    if (hasTime) {
        const bool hasMark = rest.front() == 'T' || rest.front() == 't' || rest.front() == ' ';
        rest.remove_prefix(1);
        if (!hasMark || !TakeTimeOfDay(rest, ofDay, micros)) {
            return kNoTime;
        }
    }
    const std::int64_t local = day * kDay + ofDay;
    if (local < kFirstLocal - kDay || local >= kEndLocal + kDay) {
        return kOutside;
    }
    std::int64_t seconds = 0;
    if (rest.empty()) {
        if (!ToUtc(local, seconds)) {
            return kSkipped;
        }
    } else {
        std::int64_t offset = 0;
        rest = rest.front() == ' ' ? rest.substr(1) : rest;
        if (!ReadOffset(rest, offset)) {
            return kNoTime;
        }
        seconds = local - offset;
    }
    utc = seconds * kMicros + micros;
    return nullptr;
}

bool CsvTimes::ReadDate(std::string_view cell, std::int64_t& day)
{
    if (std::memcmp(m_dateText.data(), cell.data(), m_dateText.size()) != 0) {
        const int century = TwoDigits(cell.data());
        const int year = TwoDigits(cell.data() + 2);
        const int month = TwoDigits(cell.data() + 5);
        const int dayOfMonth = TwoDigits(cell.data() + 8);
        if (century < 0 || year < 0 || month < 0 || dayOfMonth < 0 || cell[4] != '-' || cell[7] != '-') {
            return false;
        }
        const auto date = std::chrono::year(century * 100 + year) / std::chrono::month(static_cast<unsigned>(month)) /
                          std::chrono::day(static_cast<unsigned>(dayOfMonth));
        if (!date.ok()) {
            return false;
        }
        std::copy_n(cell.data(), m_dateText.size(), m_dateText.data());
        m_date = std::chrono::sys_days(date).time_since_epoch().count();
    }
    day = m_date;
    return true;
}

bool CsvTimes::ToUtc(std::int64_t local, std::int64_t& utc)
{
    if (local >= m_plainBegin && local < m_plainEnd) {
        utc = local - m_plainOffset;
        m_fold = 0;
    } else {
        utc = m_zone.ToUtc(local);
        const TimeZone::Span span = m_zone.SpanAt(utc);
        if (utc + span.offset != local) {
            return false;
        }
        constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();
        const std::int32_t nextOffset = span.end != kLast ? m_zone.SpanAt(span.end).offset : span.offset;
        const std::int32_t overlap = span.offset - nextOffset;
        if (span.end != kLast && local - nextOffset >= span.end) {
            utc += IsSecondPass(local, span.end, overlap) ? overlap : 0;
        } else {
            m_fold = 0;
            // From here on, until the next change may matter.
            m_plainBegin = local;
            m_plainEnd = span.end != kLast ? span.end + std::min(span.offset, nextOffset) : kEndLocal;
            m_plainOffset = span.offset;
        }
    }
    m_lastStep = local - m_lastLocal;
    m_lastLocal = local;
    m_lastUtc = utc;
    m_hasLast = true;
    return true;
}

bool CsvTimes::IsSecondPass(std::int64_t local, std::int64_t fold, std::int64_t length)
{
    if (m_fold != fold) {
        m_fold = fold;
        m_isBackwards = m_hasLast && m_lastUtc >= fold;
        m_isSecondPass = m_isBackwards;
        return m_isSecondPass;
    }
    const std::int64_t step = local - m_lastLocal;
    const bool turns = step == 0 ? std::abs(m_lastStep) >= length : (step < 0) != m_isBackwards;
    if (turns) {
        m_isSecondPass = !m_isBackwards;
    }
    return m_isSecondPass;
}

}  // namespace zr
