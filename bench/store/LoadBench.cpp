#include "LoadBench.h"

#include "BenchLine.h"
#include "MedianMs.h"
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

constexpr std::size_t kRounds = 9;
constexpr std::size_t kPeerRounds = 3;
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

double PeerMs(RecordArena (*load)(const std::filesystem::path&), const std::filesystem::path& file,
              const DemoYear& year)
{
    const double median = MedianMs(
        kPeerRounds, [&] { Require(load(file).Size() == DemoYear::kRecords, "a peer's records are missing"); });
    const RecordArena arena = load(file);
    CheckRecords(arena.At(0), arena.At(arena.Size()), year);
    return median;
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
    {
        SqliteLoggerStore filling(file);
        Fill(filling, year);
    }
    PrintLine("store.bytes_per_sample", static_cast<double>(std::filesystem::file_size(file)) / kValues, "B");
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
    PrintMemory();
    Loader loader;
    const double loading = MedianMs(kRounds, [&] { loader.Load(kRecorded, DemoYear::kRecords); });
    const double daily = MedianMs(kRounds, [&] { loader.Load(kDay, 365); });
    loader.Free();
    const double rowASample = PeerMs(&RowASample::Load, folder / "sample.db", year);
    const double rowARecord = PeerMs(&RowARecord::Load, folder / "record.db", year);
    PrintLine("store.load_year_ms", loading, "ms");
    PrintLine("store.load_year_row_sample_ms", rowASample, "ms");
    PrintLine("store.load_year_row_record_ms", rowARecord, "ms");
    PrintLine("store.load_year_ratio_row_sample", rowASample / loading, "x");
    PrintLine("store.load_year_ratio_row_record", rowARecord / loading, "x");
    PrintLine("store.year_daily_ms", daily, "ms");
    SetLoggerStore(nullptr);
}

}  // namespace zr::bench
