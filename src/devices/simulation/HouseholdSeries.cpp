#include "devices/simulation/HouseholdSeries.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <fstream>
#include <iterator>

namespace zr {
namespace {

constexpr std::string_view kHeader = "time,active_kW,reactive_kvar,voltage_V,current_A,sub1_Wh,sub2_Wh,sub3_Wh";
constexpr std::size_t kFields = 8;
constexpr double kMinutesPerHour = 60.0;
constexpr std::size_t kMaxBytes = 128u * 1024 * 1024;

// Largest value taken of each field after the time, in the unit of its column: far beyond any house.
constexpr std::array<double, kFields - 1> kLargest = {1e3, 1e3, 1e3, 1e4, 1e5, 1e5, 1e5};

std::optional<int> Digits(std::string_view text)
{
    int value = 0;
    for (const char digit : text) {
        if (digit < '0' || digit > '9') {
            return std::nullopt;
        }
        value = value * 10 + (digit - '0');
    }
    return value;
}

bool SplitFields(std::string_view line, std::array<std::string_view, kFields>& fields)
{
    std::size_t count = 0;
    for (;;) {
        const std::size_t comma = line.find(',');
        if (count == kFields) {
            return false;
        }
        fields[count++] = line.substr(0, comma);
        if (comma == std::string_view::npos) {
            return count == kFields;
        }
        line.remove_prefix(comma + 1);
    }
}

std::optional<double> ParseField(std::string_view text, double largest)
{
    double value = 0.0;
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), value);
    // NaN fails the comparison, too.
    const bool good = code == std::errc() && end == text.data() + text.size() && value >= 0.0 && value <= largest;
    return good ? std::optional(value) : std::nullopt;
}

double Between(double from, double to, double fraction)
{
    return from + (to - from) * fraction;
}

// What a power that runs straight between two values makes in so many minutes, in power hours.
double Work(double from, double to, double minutes)
{
    return (from + to) / 2.0 * minutes / kMinutesPerHour;
}

// Cuts the first line off a text and returns it without its end.
std::string_view TakeLine(std::string_view& text)
{
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    return line;
}

}  // namespace

std::optional<std::int64_t> ParseMinute(std::string_view text)
{
    if (text.size() != 16 || text[4] != '-' || text[7] != '-' || text[10] != 'T' || text[13] != ':') {
        return std::nullopt;
    }
    const auto year = Digits(text.substr(0, 4));
    const auto month = Digits(text.substr(5, 2));
    const auto day = Digits(text.substr(8, 2));
    const auto hour = Digits(text.substr(11, 2));
    const auto minute = Digits(text.substr(14, 2));
    if (!year || !month || !day || !hour || !minute || *hour > 23 || *minute > 59) {
        return std::nullopt;
    }
    const std::chrono::year_month_day date{std::chrono::year(*year), std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day))};
    if (!date.ok()) {
        return std::nullopt;
    }
    const std::int64_t days = std::chrono::sys_days(date).time_since_epoch().count();
    return days * 1440 + *hour * 60 + *minute;
}

bool HouseholdSeries::Load(const std::filesystem::path& path, std::string& error)
{
    m_rows.clear();
    std::error_code code;
    const auto size = std::filesystem::file_size(path, code);
    if (code || size > kMaxBytes) {
        error = path.string() + ": " + (code ? "can't be read: " + code.message() : "is larger than 128 MiB");
        return false;
    }
    std::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file) {
        error = path.string() + ": can't be read";
        return false;
    }
    return LoadText(text, path.string(), error);
}

bool HouseholdSeries::LoadText(std::string_view text, const std::string& name, std::string& error)
{
    m_rows.clear();
    std::size_t line = 1;
    std::string reason;
    if (TakeLine(text) != kHeader) {
        reason = "the first line isn't \"" + std::string(kHeader) + "\"";
    }
    while (reason.empty() && !text.empty()) {
        ++line;
        AddRow(TakeLine(text), reason);
    }
    if (reason.empty() && m_rows.size() < 2) {
        reason = "fewer than two rows";
    }
    if (reason.empty() && !m_rows.back().measured) {
        reason = "the last row has no values";
    }
    if (!reason.empty()) {
        error = name + ":" + std::to_string(line) + ": " + reason;
        m_rows.clear();
        return false;
    }
    BridgeGaps();
    SumUp();
    return true;
}

bool HouseholdSeries::AddRow(std::string_view line, std::string& reason)
{
    std::array<std::string_view, kFields> fields;
    if (!SplitFields(line, fields)) {
        reason = "a row needs " + std::to_string(kFields) + " fields";
        return false;
    }
    const auto minute = ParseMinute(fields[0]);
    if (!minute) {
        reason = "the time isn't in the form YYYY-MM-DDThh:mm";
        return false;
    }
    if (m_rows.empty()) {
        m_firstMinute = *minute;
    }
    if (*minute != m_firstMinute + static_cast<std::int64_t>(m_rows.size())) {
        reason = "the time isn't one minute after that of the row before";
        return false;
    }
    if (m_rows.size() == kMaxRows) {
        reason = "more than " + std::to_string(kMaxRows) + " rows";
        return false;
    }
    std::array<double, kFields - 1> values = {};
    std::size_t missing = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::string_view field = fields[i + 1];
        const auto value = field.empty() ? std::optional(0.0) : ParseField(field, kLargest[i]);
        if (!value) {
            reason = "field " + std::to_string(i + 2) + " isn't a number from 0 to " +
                     std::to_string(static_cast<long>(kLargest[i]));
            return false;
        }
        values[i] = *value;
        missing += field.empty() ? 1u : 0u;
    }
    if (missing != 0 && (missing != values.size() || m_rows.empty())) {
        reason = m_rows.empty() ? "the first row has no values" : "a row must have all of its values, or none";
        return false;
    }
    Row row;
    row.measured = missing == 0;
    row.activeW = values[0] * 1000.0;
    row.reactiveVar = values[1] * 1000.0;
    row.voltageV = values[2];
    row.subMeterWh = {values[4], values[5], values[6]};
    m_rows.push_back(row);
    return true;
}

void HouseholdSeries::BridgeGaps()
{
    std::size_t before = 0;
    for (std::size_t after = 1; after < m_rows.size(); ++after) {
        if (!m_rows[after].measured) {
            continue;
        }
        for (std::size_t gap = before + 1; gap < after; ++gap) {
            const double fraction = static_cast<double>(gap - before) / static_cast<double>(after - before);
            m_rows[gap].activeW = Between(m_rows[before].activeW, m_rows[after].activeW, fraction);
            m_rows[gap].reactiveVar = Between(m_rows[before].reactiveVar, m_rows[after].reactiveVar, fraction);
            m_rows[gap].voltageV = Between(m_rows[before].voltageV, m_rows[after].voltageV, fraction);
        }
        before = after;
    }
}

void HouseholdSeries::SumUp()
{
    m_totalActiveWh = 0.0;
    m_totalReactiveVarh = 0.0;
    m_totalSubMeterWh = {};
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        Row& row = m_rows[i];
        row.activeBefore = m_totalActiveWh;
        row.reactiveBefore = m_totalReactiveVarh;
        row.subMeterBefore = m_totalSubMeterWh;
        m_totalActiveWh += Work(row.activeW, Next(i).activeW, 1.0);
        m_totalReactiveVarh += Work(row.reactiveVar, Next(i).reactiveVar, 1.0);
        for (std::size_t meter = 0; meter < 3; ++meter) {
            m_totalSubMeterWh[meter] += row.subMeterWh[meter];
        }
    }
}

HouseholdSeries::Place HouseholdSeries::PlaceOf(double position) const
{
    const double size = static_cast<double>(m_rows.size());
    const double passes = std::floor(position / size);
    const double within = position - passes * size;
    const std::size_t row = std::min(static_cast<std::size_t>(within), m_rows.size() - 1);
    return {passes, row, within - static_cast<double>(row)};
}

HouseholdSample HouseholdSeries::At(double position) const
{
    const Place place = PlaceOf(position);
    const Row& row = m_rows[place.row];
    const Row& next = Next(place.row);
    HouseholdSample sample;
    sample.activeW = Between(row.activeW, next.activeW, place.fraction);
    sample.reactiveVar = Between(row.reactiveVar, next.reactiveVar, place.fraction);
    sample.voltageV = Between(row.voltageV, next.voltageV, place.fraction);
    for (std::size_t meter = 0; meter < 3; ++meter) {
        const double inMinute = row.subMeterWh[meter];
        sample.subMeterW[meter] = inMinute * kMinutesPerHour;
        sample.subMeterWh[meter] =
            place.passes * m_totalSubMeterWh[meter] + row.subMeterBefore[meter] + inMinute * place.fraction;
    }
    return sample;
}

double HouseholdSeries::ActiveWh(double position) const
{
    const Place place = PlaceOf(position);
    const Row& row = m_rows[place.row];
    const double end = Between(row.activeW, Next(place.row).activeW, place.fraction);
    return place.passes * m_totalActiveWh + row.activeBefore + Work(row.activeW, end, place.fraction);
}

double HouseholdSeries::ReactiveVarh(double position) const
{
    const Place place = PlaceOf(position);
    const Row& row = m_rows[place.row];
    const double end = Between(row.reactiveVar, Next(place.row).reactiveVar, place.fraction);
    return place.passes * m_totalReactiveVarh + row.reactiveBefore + Work(row.reactiveVar, end, place.fraction);
}

std::optional<double> HouseholdSeries::Find(std::string_view time) const
{
    const auto minute = ParseMinute(time);
    if (!minute || *minute < m_firstMinute || *minute >= m_firstMinute + static_cast<std::int64_t>(m_rows.size())) {
        return std::nullopt;
    }
    return static_cast<double>(*minute - m_firstMinute);
}

int HouseholdSeries::FirstMinuteOfDay() const
{
    return static_cast<int>(((m_firstMinute % 1440) + 1440) % 1440);
}

double HouseholdSeries::FindTimeOfDay(double secondOfDay) const
{
    const double ahead = secondOfDay / 60.0 - FirstMinuteOfDay();
    return 1440.0 + (ahead < 0.0 ? ahead + 1440.0 : ahead);
}

}  // namespace zr
