#include "LoggedCurves.h"

#include "siblings/driversupport/store/MemoryLoggerStore.h"
#include "siblings/tools/TimeZone.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace zr::bench {

namespace {

constexpr std::int64_t kFirstSecond = 1041379200;  // 1 January 2003 UTC
constexpr std::int64_t kEpoch = 946684800;         // of ZRDateTime
constexpr std::int64_t kPeriod = 60;
constexpr std::int64_t kMicros = 1000000;
constexpr std::int64_t kBatch = 500000;
constexpr double kScale = 0.1;  // of the values that are stored

ZRBasicString VariableOf(int curve)
{
    return ZRBasicString(u"U") + static_cast<wchar>(u'1' + curve);
}

ZRBasicString NameOf(int curve)
{
    return u"METER." + VariableOf(curve);
}

std::vector<VariableDescription> Descriptions()
{
    std::vector<VariableDescription> variables;
    for (int curve = 0; curve < kCurves; ++curve) {
        VariableDescription variable = test::Variable(VariableOf(curve).CStr(), 1, -1);
        variable.description = ZRBasicString(u"Voltage ") + static_cast<wchar>(u'1' + curve);
        variables.push_back(std::move(variable));
    }
    return variables;
}

// The same at every run, and without a pattern: -1 to 1.
double Noise(std::uint64_t seed)
{
    seed = (seed + 0x9e3779b97f4a7c15u) * 0xbf58476d1ce4e5b9u;
    seed = (seed ^ (seed >> 27)) * 0x94d049bb133111ebu;
    return static_cast<double>(seed >> 11) / static_cast<double>(std::uint64_t{1} << 52) - 1.0;
}

}  // namespace

void Require(bool isRight, const char* what)
{
    if (!isRight) {
        std::fprintf(stderr, "bench_graph: %s\n", what);
        std::exit(1);
    }
}

LoggedCurves::LoggedCurves(std::int64_t records) : m_records(records), m_meter(u"METER", Descriptions())
{
    SetPlantZone(TimeZone());
    ZRLoggerInfo info;
    for (int curve = 0; curve < kCurves; ++curve) {
        info.AddVariable(NameOf(curve));
    }
    m_data.Setup(info);
    m_data.loggerInfo.Lock();
}

ZRDateTime LoggedCurves::From() const
{
    return {static_cast<std::uint32_t>(kFirstSecond - kEpoch), 0};
}

ZRDateTime LoggedCurves::To() const
{
    return {static_cast<std::uint32_t>(kFirstSecond - kEpoch + m_records * kPeriod), 0};
}

// A swing of a day and one of a year, and what is measured beside.
double LoggedCurves::StoredValue(int curve, std::int64_t record)
{
    const auto minute = static_cast<double>(record);
    const double daily = std::sin(minute * 6.2831853 / 1440.0 + curve);
    const double yearly = std::sin(minute * 6.2831853 / 525600.0 + 0.5 * curve);
    const auto seed = static_cast<std::uint64_t>(record) * kCurves + static_cast<std::uint64_t>(curve);
    return std::round(2300.0 + 8.0 * curve + 20.0 * daily + 30.0 * yearly + 10.0 * Noise(seed));
}

void LoggedCurves::Fill(LoggerStore& store) const
{
    std::vector<LoggerAppend> batch;
    for (int curve = 0; curve < kCurves; ++curve) {
        const int series = store.OpenSeries(NameOf(curve), 1);
        for (std::int64_t first = 0; first < m_records; first += kBatch) {
            batch.clear();
            for (std::int64_t r = first; r < std::min(first + kBatch, m_records); ++r) {
                batch.push_back({series, (kFirstSecond + r * kPeriod) * kMicros, StoredValue(curve, r)});
            }
            Require(store.Append(batch), "the store takes no samples");
        }
    }
    const std::int64_t end = (kFirstSecond + m_records * kPeriod + 7200) * kMicros;
    while (store.Maintain(end) == LoggerStore::Upkeep::More) {
    }
}

const ZRLoggerData::CRecordGroup& LoggedCurves::Load()
{
    Require(m_data.SelectData(From(), To(), nullptr), "nothing to select");
    const ZRLoggerData::CRecordGroup& group = m_data.RecordGroup(ZRDateTimeSpan(0, 0), nullptr);
    Require(group.count == m_records, "records are missing");
    return group;
}

const ZRLoggerData::CRecordGroup& LoggedCurves::LoadFromMemory()
{
    MemoryLoggerStore store;
    Fill(store);
    SetLoggerStore(&store);
    const ZRLoggerData::CRecordGroup& group = Load();
    SetLoggerStore(nullptr);
    return group;
}

double LoggedCurves::RecordBytes() const
{
    constexpr auto kRecord =
        sizeof(RecordNode) + sizeof(LoggedRecord) + sizeof(std::int64_t) + kCurves * sizeof(LoggedValue);
    return static_cast<double>(m_records) * static_cast<double>(kRecord);
}

std::vector<double> LoggedCurves::Times() const
{
    std::vector<double> times;
    for (std::int64_t r = 0; r < m_records; ++r) {
        times.push_back(static_cast<double>(kFirstSecond + r * kPeriod));
    }
    return times;
}

std::vector<double> LoggedCurves::Values(int curve) const
{
    std::vector<double> values;
    for (std::int64_t r = 0; r < m_records; ++r) {
        values.push_back(StoredValue(curve, r) * kScale);
    }
    return values;
}

}  // namespace zr::bench
