#include "LoadBench.h"

#include "BenchLine.h"
#include "Median.h"
#include "MemoryPeak.h"
#include "siblings/driversupport/store/SqliteLoggerStore.h"
#include "siblings/driversupport/ZRLoggerData.h"
#include "SqlitePeers.h"

#include <chrono>
#include <cmath>
#include <memory>
#include <vector>

namespace zr::bench {

namespace {

constexpr int kRounds = 5;
constexpr int kLoadsARound = 3;
constexpr std::size_t kSecondsOfDay = 86400;
constexpr ZRDateTimeSpan kRecorded(0, 0);
constexpr ZRDateTimeSpan kDay(86400, 0);
constexpr double kValues = static_cast<double>(DemoYear::kRecords * DemoYear::kVariables);
// A node of the list, a record, its time and its values.
constexpr double kRecordBytes =
    static_cast<double>(DemoYear::kRecords * (sizeof(RecordNode) + sizeof(LoggedRecord) + sizeof(std::int64_t))) +
    kValues * static_cast<double>(sizeof(LoggedValue));

void Fill(LoggerStore& store, const DemoYear& year)
{
    std::vector<LoggerAppend> batch;
    for (std::size_t v = 0; v < DemoYear::kVariables; ++v) {
        const int series = store.OpenSeries(DemoYear::NameOf(v), static_cast<std::int32_t>(DemoYear::ClassOf(v)));
        for (std::size_t r = 0; r < year.times.size(); ++r) {
            batch.push_back({series, year.times[r], year.values[v][r]});
        }
        Require(store.Append(batch), "the store takes no samples");
        batch.clear();
    }
    const std::int64_t end = year.times.back() + 2 * 3600 * DemoYear::kMicros;
    while (store.Maintain(end) == LoggerStore::Upkeep::More) {
    }
}

// Bytes a sample of the whole file.
double WriteStore(const std::filesystem::path& file, const DemoYear& year)
{
    {
        SqliteLoggerStore store(file);
        Fill(store, year);
    }
    return static_cast<double>(std::filesystem::file_size(file)) /
           static_cast<double>(year.times.size() * DemoYear::kVariables);
}

void CheckRecords(RecordIterator record, RecordIterator end, const DemoYear& year)
{
    std::size_t r = 0;
    for (; record != end; ++record, ++r) {
        for (std::size_t v = 0; v < DemoYear::kVariables; ++v) {
            const LoggedValue& value = (*record)->values[v];
            Require(value.valid == 1 && value.value == year.values[v][r], "a value came back as another");
        }
    }
    Require(r == year.times.size(), "records are missing");
}

void CheckPeer(const RecordArena& arena, const DemoYear& year)
{
    CheckRecords(arena.At(0), arena.At(arena.Size()), year);
}

class Loader {
public:
    Loader()
    {
        ZRLoggerInfo info;
        for (std::size_t v = 0; v < DemoYear::kVariables; ++v) {
            info.AddVariable(DemoYear::NameOf(v));
        }
        m_data.Setup(info);
    }

    ZRLoggerData::CRecordGroup& Load(const ZRDateTimeSpan& period, int records)
    {
        Require(m_data.SelectData(DemoYear::From(), DemoYear::To(), nullptr), "nothing to select");
        ZRLoggerData::CRecordGroup& group = m_data.RecordGroup(period, nullptr);
        Require(group.count == records, "records are missing");
        return group;
    }
    // Drops what is loaded.
    void Free() { m_data.SelectData(DemoYear::From(), DemoYear::From(), nullptr); }

private:
    ZRLoggerData m_data;
};

void PrintMemory()
{
    ForgetPeak();
    const double before = ResidentBytes("VmRSS:");
    Loader loader;
    loader.Load(kRecorded, DemoYear::kRecords);
    PrintLine("store.load_bytes_per_value", (ResidentBytes("VmHWM:") - before - kRecordBytes) / kValues, "B");
    const auto start = std::chrono::steady_clock::now();
    loader.Free();
    PrintLine("store.free_year_ms", MsSince(start), "ms");
}

}  // namespace

void RunLoadBench(const DemoYear& year, const std::filesystem::path& folder)
{
    const std::filesystem::path file = folder / "year.zrlog";
    PrintLine("store.bytes_per_sample", WriteStore(file, year), "B");
    PrintLine("store.bytes_per_sample_1s", WriteStore(folder / "day.zrlog", MakeDemoYear(kSecondsOfDay, 1)), "B");
    SqliteLoggerStore store(file);
    RowASample::Write(folder / "sample.db", year);
    RowARecord::Write(folder / "record.db", year);
    SetLoggerStore(&store);
    SetPlantZone(TimeZone());
    {
        Loader loader;
        const auto& group = loader.Load(kRecorded, DemoYear::kRecords);
        CheckRecords(group.first, group.last, year);
    }
    CheckPeer(RowASample::Load(folder / "sample.db"), year);
    CheckPeer(RowARecord::Load(folder / "record.db"), year);
    PrintMemory();
    Loader loader;
    // In turn, so that what else the machine does falls on all of them.
    Median loading;
    Median daily;
    Median rowASample;
    Median rowARecord;
    for (int round = 0; round < kRounds; ++round) {
        for (int i = 0; i < kLoadsARound; ++i) {
            loading.Add([&] { loader.Load(kRecorded, DemoYear::kRecords); });
            daily.Add([&] { loader.Load(kDay, 365); });
        }
        loader.Free();
        rowASample.Add([&] { RowASample::Load(folder / "sample.db"); });
        rowARecord.Add([&] { RowARecord::Load(folder / "record.db"); });
    }
    PrintLine("store.load_year_ms", loading.Ms(), "ms");
    PrintLine("store.load_year_row_sample_ms", rowASample.Ms(), "ms");
    PrintLine("store.load_year_row_record_ms", rowARecord.Ms(), "ms");
    PrintLine("store.load_year_ratio_row_sample", rowASample.Ms() / loading.Ms(), "x");
    PrintLine("store.load_year_ratio_row_record", rowARecord.Ms() / loading.Ms(), "x");
    PrintLine("store.year_daily_ms", daily.Ms(), "ms");
    SetLoggerStore(nullptr);
}

}  // namespace zr::bench
