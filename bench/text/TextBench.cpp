// The texts of a table of logged data, a time and a number a row, beside other ways to write them.
#include "BenchLine.h"
#include "logger/FormatDateTime.h"
#include "siblings/tools/Numbers.h"

#include <fmt/compile.h>
#include <fmt/format.h>
#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int kRounds = 31;
constexpr std::size_t kRows = 20000;
constexpr std::uint32_t kFirstSecond = 94694400;  // 1 January 2003
constexpr std::time_t kEpochSeconds = 946684800;  // 1 January 2000, of the time of the standard library

struct Row {
    ZRDateTime time;
    double value = 0.0;
};

// A minute apart, with values as a meter gives them: voltages, powers, and a counter's reading.
std::vector<Row> MakeRows()
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    std::vector<Row> rows(kRows);
    for (std::size_t i = 0; i < kRows; ++i) {
        rows[i].time = ZRDateTime(kFirstSecond + static_cast<std::uint32_t>(i) * 60, 0);
        const double scale = i % 3 == 0 ? 250.0 : (i % 3 == 1 ? 9000.0 : 1234567.0);
        rows[i].value = std::round(unit(random) * scale * 10.0) / 10.0;
    }
    return rows;
}

ZRLocaleInformation<ZRBasicString> MakeLocale()
{
    ZRLocaleInformation<ZRBasicString> locale;
    locale.decimalSeparator = u",";
    locale.thousandsSeparator = u".";
    locale.digitGroups = {3, 0, 0, 0};
    locale.timeSeparator = u":";
    locale.dateSeparator = u".";
    locale.shortDateOrder = 1;
    return locale;
}

// Median time of a row, in nanoseconds. Work takes a row and returns the characters written.
template <typename Work>
double PairNs(const std::vector<Row>& rows, const Work& work, std::size_t& characters)
{
    std::vector<double> times;
    for (int round = 0; round < kRounds; ++round) {
        std::size_t written = 0;
        const auto start = std::chrono::steady_clock::now();
        for (const Row& row : rows) {
            written += work(row);
        }
        const auto end = std::chrono::steady_clock::now();
        characters = written;
        times.push_back(std::chrono::duration<double, std::nano>(end - start).count() / static_cast<double>(kRows));
    }
    std::nth_element(times.begin(), times.begin() + kRounds / 2, times.end());
    return times[kRounds / 2];
}

// A point for every peer, and no groups: they do less.
std::size_t WriteStandard(const Row& row, std::array<char, 64>& room)
{
    const std::time_t seconds = kEpochSeconds + row.time.seconds;
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    const std::size_t length = std::strftime(room.data(), room.size(), "%d.%m.%Y %H:%M:%S", &parts);
    return length +
           static_cast<std::size_t>(std::snprintf(room.data() + length, room.size() - length, "%.*f", 2, row.value));
}

std::size_t WriteFmt(const Row& row, std::array<char, 64>& room)
{
    const std::time_t seconds = kEpochSeconds + row.time.seconds;
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    char* end = fmt::format_to(room.data(), FMT_COMPILE("{:02}.{:02}.{:04} {:02}:{:02}:{:02}"), parts.tm_mday,
                               parts.tm_mon + 1, parts.tm_year + 1900, parts.tm_hour, parts.tm_min, parts.tm_sec);
    end = fmt::format_to(end, FMT_COMPILE("{:.2f}"), row.value);
    return static_cast<std::size_t>(end - room.data());
}

// Keeps the text of the day it wrote last, and rounds by multiplication: fast, and wrong where a tie isn't one.
class DayCachedWriter {
public:
    std::size_t Write(const Row& row)
    {
        const std::uint32_t day = row.time.seconds / 86400;
        if (day != m_day) {
            m_day = day;
            std::array<char, 64> whole{};
            WriteStandard(row, whole);
            std::memcpy(m_room.data(), whole.data(), 11);
        }
        const std::uint32_t second = row.time.seconds % 86400;
        Two(11, second / 3600);
        m_room[13] = ':';
        Two(14, second / 60 % 60);
        m_room[16] = ':';
        Two(17, second % 60);
        auto units = static_cast<std::uint64_t>(row.value * 100.0 + 0.5);
        std::size_t at = 40;
        Two(at - 2, static_cast<std::uint32_t>(units % 100));
        m_room[at - 3] = '.';
        at -= 4;
        for (units /= 100; units >= 10; units /= 10) {
            m_room[at--] = static_cast<char>('0' + units % 10);
        }
        m_room[at] = static_cast<char>('0' + units);
        return 19 + 40 - at;
    }

private:
    void Two(std::size_t at, std::uint32_t value)
    {
        m_room[at] = static_cast<char>('0' + value / 10);
        m_room[at + 1] = static_cast<char>('0' + value % 10);
    }

    std::uint32_t m_day = 0;
    std::array<char, 64> m_room{};
};

}  // namespace

int main()
{
    const std::vector<Row> rows = MakeRows();
    const auto locale = MakeLocale();
    ZRBasicString date;
    ZRBasicString number;
    std::size_t characters = 0;
    const double dates = PairNs(
        rows, [&](const Row& row) { return FormatDateTime(date, row.time, locale, zr::logger::kRow).Length(); },
        characters);
    const double ours = PairNs(
        rows,
        [&](const Row& row) {
            FormatDateTime(date, row.time, locale, zr::logger::kRow);
            return date.Length() + static_cast<std::size_t>(FormatNumber(number, row.value, 2, locale));
        },
        characters);
    if (characters < kRows * 23) {
        std::fprintf(stderr, "bench_text: texts are missing\n");
        return 1;
    }
    std::array<char, 64> room{};
    const double standard = PairNs(
        rows, [&](const Row& row) { return WriteStandard(row, room); }, characters);
    const double format = PairNs(
        rows, [&](const Row& row) { return WriteFmt(row, room); }, characters);
    DayCachedWriter writer;
    const double cached = PairNs(
        rows, [&](const Row& row) { return writer.Write(row); }, characters);
    zr::bench::PrintLine("text.pair_ns", ours, "ns");
    zr::bench::PrintLine("text.date_ns", dates, "ns");
    zr::bench::PrintLine("text.strftime_snprintf_ns", standard, "ns");
    zr::bench::PrintLine("text.fmt_compiled_ns", format, "ns");
    zr::bench::PrintLine("text.day_cached_ns", cached, "ns");
    zr::bench::PrintLine("text.strftime_ratio", standard / ours, "x");
    return 0;
}
