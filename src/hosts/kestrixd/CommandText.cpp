#include "hosts/kestrixd/CommandText.h"

#include "platform/Clock.h"
#include "siblings/tools/CsvCells.h"

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <charconv>
#include <chrono>
#include <cstdlib>

namespace zr::service {
namespace {

constexpr std::int64_t kMicros = 1000000;

std::int32_t SecondsOfUnit(std::string_view unit)
{
    constexpr std::int32_t kDay = 86400;
    if (unit.size() > 1) {
        return 0;
    }
    switch (unit.empty() ? 's' : unit.front()) {
        case 's':
            return 1;
        case 'm':
            return 60;
        case 'h':
            return 3600;
        case 'd':
            return kDay;
        case 'M':
            return 31 * kDay;
        default:
            return 0;
    }
}

}  // namespace

bool ParsePeriod(std::string_view text, std::int32_t& seconds, std::string& error)
{
    constexpr std::int64_t kLongest = std::int64_t{31} * 86400 * 120;
    std::int32_t number = -1;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), number);
    const std::int64_t unit = SecondsOfUnit(text.substr(static_cast<std::size_t>(end - text.data())));
    if (problem != std::errc() || number < 0 || unit == 0 || number * unit > kLongest) {
        error = fmt::format("--period: '{}' is no length of time, as 900, 15m, 1h, 1d or 1M is one", text);
        return false;
    }
    seconds = static_cast<std::int32_t>(number * unit);
    return true;
}

bool ParseCsvFormat(std::string_view separator, std::string_view decimal, CsvFormat& format, std::string& error)
{
    CsvFormat read = format;
    if (separator == "tab" || separator == "\t" || separator == "\\t") {
        read.separator = '\t';
    } else if (separator == "," || separator == ";") {
        read.separator = separator.front();
    } else if (!separator.empty()) {
        error = fmt::format("--separator: '{}' is none of , ; and tab", separator);
        return false;
    }
    if (decimal == "." || decimal == ",") {
        read.decimal = decimal.front();
    } else if (!decimal.empty()) {
        error = fmt::format("--decimal: '{}' is neither . nor ,", decimal);
        return false;
    }
    format = read;
    return true;
}

bool ParseZone(const std::string& name, TimeZone& zone, std::string& error)
{
    if (name.empty()) {
        zone = PlantZone();
        return true;
    }
    if (!TimeZone::Find(name, zone, error)) {
        error = "--zone: " + error;
        return false;
    }
    return true;
}

bool ParseTime(const char* option, const std::string& text, const TimeZone& zone, std::int64_t& utc, std::string& error)
{
    if (text == "now") {
        utc = std::chrono::duration_cast<std::chrono::microseconds>(CurrentClock().Utc().time_since_epoch()).count();
        return true;
    }
    CsvTimes times(zone);
    if (const char* const problem = times.Read(TrimCsvCell(text), utc); problem != nullptr) {
        error = fmt::format("{}: '{}' {}", option, text, problem);
        return false;
    }
    return true;
}

std::string CountText(std::size_t count)
{
    std::string text = std::to_string(count);
    for (std::size_t at = text.size(); at > 3;) {
        at -= 3;
        text.insert(at, 1, ',');
    }
    return text;
}

std::string CountText(std::size_t count, const char* one, const char* many)
{
    return CountText(count) + " " + (count == 1 ? one : many);
}

std::string TimeText(std::int64_t utc, const TimeZone& zone)
{
    const std::int64_t seconds = utc / kMicros;
    const std::int32_t offset = zone.SpanAt(seconds).offset;
    const std::chrono::sys_seconds local{std::chrono::seconds(seconds + offset)};
    const int minutes = std::abs(offset) / 60;
    return fmt::format("{:%Y-%m-%d %H:%M:%S} {}{:02}:{:02}", local, offset < 0 ? '-' : '+', minutes / 60, minutes % 60);
}

}  // namespace zr::service
