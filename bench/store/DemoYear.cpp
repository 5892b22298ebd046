#include "DemoYear.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace zr::bench {

namespace {

constexpr std::int64_t kEpoch = 946684800;  // of ZRDateTime, seconds since 1970
constexpr std::size_t kMeasured = 7;        // columns of the file behind the time
constexpr std::array<double, kMeasured> kScales = {1000.0, 1000.0, 100.0, 10.0, 1.0, 1.0, 1.0};  // of their decimals

using Row = std::array<double, kMeasured>;

// False for a minute that wasn't measured.
bool ParseRow(const std::string& line, Row& row)
{
    std::size_t place = 0;
    for (double& value : row) {
        place = line.find(',', place) + 1;
        if (place == 0 || std::from_chars(line.data() + place, line.data() + line.size(), value).ec != std::errc()) {
            return false;
        }
    }
    return true;
}

std::vector<Row> MeasuredRows()
{
    std::ifstream file(ZR_RESOURCES "/demo/household/household_1min.csv");
    std::vector<Row> rows;
    Row row;
    for (std::string line; std::getline(file, line);) {
        if (ParseRow(line, row)) {
            rows.push_back(row);
        }
    }
    return rows;
}

// Between two minutes the values run straight, in the resolution of the meter.
Row RowAt(const std::vector<Row>& rows, std::int64_t second)
{
    const auto minute = static_cast<std::size_t>(second / 60);
    const double fraction = static_cast<double>(second % 60) / 60.0;
    const Row& first = rows[minute % rows.size()];
    const Row& next = rows[(minute + 1) % rows.size()];
    Row row;
    for (std::size_t c = 0; c < kMeasured; ++c) {
        const double value = first[c] + (next[c] - first[c]) * fraction;
        row[c] = fraction == 0.0 ? first[c] : std::round(value * kScales[c]) / kScales[c];
    }
    return row;
}

}  // namespace

ZRBasicString DemoYear::NameOf(std::size_t variable)
{
    return ZRBasicString(u"HOUSE.V") + static_cast<wchar>(u'0' + variable);
}

VariableClass DemoYear::ClassOf(std::size_t variable)
{
    return variable < kMeasured ? VariableClass::Instantaneous : VariableClass::Counter;
}

ZRDateTime DemoYear::From()
{
    return {static_cast<std::uint32_t>(kFirstSecond - kEpoch), 0};
}

ZRDateTime DemoYear::To()
{
    return From() + ZRDateTimeSpan(365 * 86400, 0);
}

DemoYear MakeDemoYear(std::size_t records, std::int64_t period)
{
    const std::vector<Row> rows = MeasuredRows();
    Require(!rows.empty(), "the demo's measured minutes can't be read");
    DemoYear year;
    std::array<double, 3> counted{};  // Wh, varh and the Wh of the sub-meters
    for (std::size_t r = 0; r < records; ++r) {
        const std::int64_t second = static_cast<std::int64_t>(r) * period;
        const Row row = RowAt(rows, second);
        year.times.push_back((DemoYear::kFirstSecond + second) * DemoYear::kMicros);
        for (std::size_t c = 0; c < kMeasured; ++c) {
            year.values[c].push_back(row[c]);
        }
        const double hours = static_cast<double>(period) / 3600.0;
        counted[0] += row[0] * 1000.0 * hours;
        counted[1] += row[1] * 1000.0 * hours;
        counted[2] += (row[4] + row[5] + row[6]) * static_cast<double>(period) / 60.0;
        for (std::size_t c = 0; c < counted.size(); ++c) {
            year.values[kMeasured + c].push_back(std::floor(counted[c]));
        }
    }
    return year;
}

void Require(bool isRight, const char* what)
{
    if (!isRight) {
        std::fprintf(stderr, "bench_store: %s\n", what);
        std::exit(1);
    }
}

}  // namespace zr::bench
