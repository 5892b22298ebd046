// Grouping ten million logged values, a million records of ten, to 30 minutes, beside plain summing of the same memory.
#include "BenchLine.h"
#include "siblings/driversupport/SampleGrouper.h"
#include "siblings/driversupport/store/MemoryLoggerStore.h"
#include "siblings/driversupport/VariableStore.h"
#include "siblings/driversupport/ZRLoggerData.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr int kRounds = 9;
constexpr int kVariables = 10;
constexpr std::int64_t kRecords = 1000000;
constexpr std::int64_t kMicros = 1000000;
constexpr std::int64_t kFirstSecond = 1041379200;  // 1 January 2003
constexpr std::int64_t kEpoch = 946684800;
constexpr ZRDateTimeSpan kHalfAnHour(1800, 0);

template <typename Work>
double MedianMs(const Work& work)
{
    std::vector<double> times;
    for (int i = 0; i < kRounds; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        const auto end = std::chrono::steady_clock::now();
        times.push_back(std::chrono::duration<double, std::milli>(end - start).count());
    }
    std::nth_element(times.begin(), times.begin() + kRounds / 2, times.end());
    return times[kRounds / 2];
}

ZRBasicString NameOf(int variable)
{
    return ZRBasicString(u"METER.V") + static_cast<wchar>(u'0' + variable);
}

// Eight voltages and powers and two counters, a minute apart.
zr::VariableClass ClassOf(int variable)
{
    return variable < 8 ? zr::VariableClass::Instantaneous : zr::VariableClass::Counter;
}

double ValueOf(int variable, std::int64_t record)
{
    const auto number = static_cast<double>(record);
    return ClassOf(variable) == zr::VariableClass::Counter ? number * 2.5
                                                           : std::round(2300.0 + 50.0 * std::sin(number * 0.01)) / 10.0;
}

struct Column {
    std::vector<std::int64_t> times;
    std::vector<double> values;
};

std::vector<Column> MakeColumns()
{
    std::vector<Column> columns(kVariables);
    for (int v = 0; v < kVariables; ++v) {
        for (std::int64_t r = 0; r < kRecords; ++r) {
            columns[static_cast<std::size_t>(v)].times.push_back((kFirstSecond + r * 60) * kMicros);
            columns[static_cast<std::size_t>(v)].values.push_back(ValueOf(v, r));
        }
    }
    return columns;
}

void Fill(zr::MemoryLoggerStore& store, const std::vector<Column>& columns)
{
    std::vector<zr::LoggerAppend> batch;
    for (int v = 0; v < kVariables; ++v) {
        const int series = store.OpenSeries(NameOf(v), static_cast<std::int32_t>(ClassOf(v)));
        const Column& column = columns[static_cast<std::size_t>(v)];
        for (std::size_t i = 0; i < column.times.size(); ++i) {
            batch.push_back({series, column.times[i], column.values[i]});
        }
        store.Append(batch);
        batch.clear();
    }
}

void Check(bool isRight, const char* what)
{
    if (!isRight) {
        std::fprintf(stderr, "bench_group: %s\n", what);
        std::exit(1);
    }
}

}  // namespace

int main()
{
    const std::vector<Column> columns = MakeColumns();
    std::vector<std::int64_t> cuts;
    for (std::int64_t r = 0; r <= kRecords; r += 30) {
        cuts.push_back((kFirstSecond + r * 60) * kMicros);
    }
    double total = 0.0;
    const double grouping = MedianMs([&] {
        for (int v = 0; v < kVariables; ++v) {
            const Column& column = columns[static_cast<std::size_t>(v)];
            zr::SampleGrouper grouper(static_cast<std::int32_t>(ClassOf(v)), cuts);
            grouper.AddSamples(column.times, column.values, true);
            Check(grouper.IsValid(grouper.Size() - 1), "a group has no value");
            total += grouper.Value(0);
        }
    });
    const double summing = MedianMs([&] {
        for (const Column& column : columns) {
            double sum = 0.0;
            for (const double value : column.values) {
                sum += value;
            }
            total += sum;
        }
    });
    zr::bench::PrintLine("group.10m_ms", grouping, "ms");
    zr::bench::PrintLine("group.plain_sum_ms", summing, "ms");
    zr::bench::PrintLine("group.rate_of_plain_sum", summing / grouping, "x");

    // The same through the whole of ZRLoggerData, out of a store in memory and into records.
    zr::MemoryLoggerStore store;
    Fill(store, columns);
    zr::SetLoggerStore(&store);
    zr::SetPlantZone(zr::TimeZone());
    ZRLoggerInfo info;
    for (int v = 0; v < kVariables; ++v) {
        info.AddVariable(NameOf(v));
    }
    ZRLoggerData data;
    data.Setup(info);
    const ZRDateTime from(static_cast<std::uint32_t>(kFirstSecond - kEpoch), 0);
    const ZRDateTime to = from + ZRDateTimeSpan(static_cast<std::int32_t>(kRecords * 60), 0);
    const auto measure = [&](const ZRDateTimeSpan& period, int records) {
        return MedianMs([&] {
            Check(data.SelectData(from, to, nullptr), "nothing to select");
            Check(data.RecordGroup(period, nullptr).count == records, "records are missing");
        });
    };
    zr::bench::PrintLine("group.load_half_hours_ms", measure(kHalfAnHour, (kRecords + 29) / 30), "ms");
    zr::bench::PrintLine("group.load_days_ms", measure(ZRDateTimeSpan(86400, 0), 695), "ms");
    zr::bench::PrintLine("group.load_recorded_ms", measure(ZRDateTimeSpan(0, 0), kRecords), "ms");
    zr::SetLoggerStore(nullptr);
    return total > 0.0 ? 0 : 1;
}
