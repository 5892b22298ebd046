#include "RecordBench.h"

#include "BenchLine.h"
#include "Median.h"
#include "siblings/driversupport/recorder/RecordLane.h"
#include "siblings/driversupport/store/SqliteLoggerStore.h"
#include "support/ManualClock.h"

#include <chrono>
#include <ctime>
#include <memory>
#include <vector>

namespace zr::bench {

namespace {

constexpr std::size_t kVariables = 20000;
constexpr int kSeconds = 120;
// Half of the hour is there already: what is packed joins blocks of a size in the middle.
constexpr int kSecondsBefore = 1800;
constexpr std::int64_t kFirstSecond = DemoYear::kFirstSecond + kSecondsBefore;

ZRBasicString NameOf(std::size_t variable)
{
    ZRBasicString name(u"PLANT.V");
    for (std::size_t digit = 10000; digit > 0; digit /= 10) {
        name += static_cast<wchar>(u'0' + variable / digit % 10);
    }
    return name;
}

LoggerDataSet AllVariables()
{
    LoggerDataSet set;
    set.name = u"all";
    set.period = 1;
    for (std::size_t v = 0; v < kVariables; ++v) {
        set.variables.push_back(NameOf(v));
    }
    return set;
}

// Of the whole process, all threads.
double CpuSeconds()
{
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

// Each variable follows one of the demo's, from a place of its own.
double ValueOf(const DemoYear& year, std::size_t variable, int second)
{
    const std::vector<double>& values = year.values[variable % DemoYear::kVariables];
    return values[(variable * 97 + static_cast<std::size_t>(second)) % values.size()];
}

void FillHalfAnHour(LoggerStore& store, const DemoYear& year)
{
    std::vector<LoggerAppend> batch;
    for (std::size_t v = 0; v < kVariables; ++v) {
        const int series = store.OpenSeries(NameOf(v), 1);
        for (int second = 0; second < kSecondsBefore - 1; ++second) {
            batch.push_back({series, (DemoYear::kFirstSecond + second) * DemoYear::kMicros, ValueOf(year, v, second)});
        }
        if (v % 500 == 499) {
            Require(store.Append(batch), "the store takes no samples");
            batch.clear();
        }
    }
}

// All of it is there, and most of it packed.
void CheckRecorded(LoggerStore& store)
{
    constexpr std::size_t kSamples = kVariables * (kSecondsBefore + kSeconds);
    const std::unique_ptr<LoggerReader> reader = store.OpenReader();
    LoggerCheck check;
    Require(reader != nullptr && reader->Check(check, nullptr) && check.findings.empty(), "the store is damaged");
    Require(check.packed + check.unpacked == kSamples, "samples are missing");
    Require(check.unpacked < kSamples / 50, "samples are not packed");
}

}  // namespace

void RunRecordBench(const DemoYear& year, const std::filesystem::path& folder)
{
    test::ManualClock clock{std::chrono::system_clock::time_point(std::chrono::seconds(kFirstSecond))};
    const std::vector<LoggerDataSet> sets = {AllVariables()};
    SqliteLoggerStore store(folder / "record.zrlog");
    FillHalfAnHour(store, year);
    RecorderBooks books(sets, 1);
    std::size_t acknowledged = 0;
    RecordLaneOptions options;
    options.spoolFolder = folder / "spool";
    options.spoolBytes = std::uint64_t{1} << 30;
    options.clock = &clock;
    options.acknowledged = [&](const RecorderAcknowledgement& told) {
        acknowledged += told.isSpooled ? 0 : told.samples;
    };
    RecordLane lane(sets, 1, store, books, options);
    std::vector<int> numbers;
    for (const ZRBasicString& name : sets.front().variables) {
        numbers.push_back(lane.Variable(name));
    }
    Median waits;
    double cpu = 0.0;
    // One second more, in which the variables are entered, doesn't count.
    for (int second = -1; second < kSeconds; ++second) {
        RecordBatch batch;
        batch.time = (kFirstSecond + second) * DemoYear::kMicros;
        for (std::size_t v = 0; v < kVariables; ++v) {
            batch.values.push_back({numbers[v], ValueOf(year, v, second + 1)});
        }
        std::vector<RecordBatch> batches;
        batches.push_back(std::move(batch));
        cpu = second == 0 ? CpuSeconds() : cpu;
        const std::size_t wanted = acknowledged + kVariables;
        waits.Add([&] {
            Require(lane.Push(std::move(batches)), "the recorder takes no samples");
            for (int step = 0; acknowledged < wanted; ++step) {
                Require(step < 1000, "samples are not acknowledged");
                lane.Step();
            }
        });
        while (lane.Step().count() == 0) {
        }
        clock.Advance(std::chrono::seconds(1));
    }
    cpu = CpuSeconds() - cpu;
    PrintLine("store.record_20k_cpu_pct", 100.0 * cpu / kSeconds, "%");
    PrintLine("store.record_20k_acknowledged_ms", waits.Ms(), "ms");
    lane.Finish();
    CheckRecorded(store);
}

}  // namespace zr::bench
