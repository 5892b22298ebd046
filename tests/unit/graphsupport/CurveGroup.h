// A record group that holds what a test says, out of a real load.
#pragma once

#include "siblings/driversupport/store/MemoryLoggerStore.h"
#include "siblings/driversupport/ZRLoggerData.h"
#include "siblings/tools/TimeZone.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace zr::test {

inline constexpr std::int64_t kSecond = 1000000;
inline constexpr std::int64_t kMinute = 60 * kSecond;
inline constexpr std::int64_t kHourLong = 60 * kMinute;
inline constexpr std::int64_t kDayLong = 24 * kHourLong;
// 1 January 2003 UTC.
inline constexpr std::int64_t kNewYear = 1041379200 * kSecond;
// No value in a record.
inline constexpr double kInvalid = std::numeric_limits<double>::quiet_NaN();

struct Row {
    std::int64_t time = 0;
    std::vector<double> values;
};

// Loads a record at each time, then writes the values over those that were loaded.
class CurveGroup {
public:
    // Times of rows ascend, each once; as many values in each.
    CurveGroup(const std::vector<Row>& rows, std::size_t valuesOfRow, std::int32_t period = 0,
               const TimeZone& zone = TimeZone())
    {
        MemoryLoggerStore store;
        SetPlantZone(zone);
        SetLoggerStore(&store);
        Fill(store, rows);
        ZRLoggerInfo info;
        for (std::size_t v = 0; v < valuesOfRow; ++v) {
            info.AddVariable(NameOf(v));
        }
        m_data.Setup(info);
        const std::int64_t begin = rows.empty() ? kNewYear : rows.front().time;
        const std::int64_t end = rows.empty() ? kNewYear : rows.back().time;
        m_data.SelectData(Local(begin), Local(end + kDayLong), nullptr);
        m_group = &m_data.RecordGroup(ZRDateTimeSpan(period, 0), nullptr);
        SetLoggerStore(nullptr);
        SetPlantZone(TimeZone::System());
        Write(rows);
    }

    [[nodiscard]] ZRLoggerData::CRecordGroup& Group() { return *m_group; }

    // The row of a record, to be changed.
    [[nodiscard]] std::int64_t& TimeOf(std::size_t record)
    {
        const RecordChunk& chunk = ChunkOf(record);
        return chunk.times[record - chunk.first];
    }
    [[nodiscard]] LoggedValue& ValueOf(std::size_t record, std::size_t column)
    {
        const RecordChunk& chunk = ChunkOf(record);
        return chunk.values[(record - chunk.first) * m_group->ValuesOfRecord() + column];
    }

private:
    static ZRBasicString NameOf(std::size_t variable)
    {
        return ZRBasicString(u"M.V") + static_cast<wchar>(u'0' + static_cast<wchar>(variable));
    }

    static ZRDateTime Local(std::int64_t utc)
    {
        constexpr std::int64_t kEpoch = 946684800;
        const std::int64_t seconds = PlantZone().ToLocal(utc / kSecond) - kEpoch;
        return {static_cast<std::uint32_t>(seconds), static_cast<std::uint32_t>(utc % kSecond)};
    }

    static void Fill(MemoryLoggerStore& store, const std::vector<Row>& rows)
    {
        const int series = store.OpenSeries(NameOf(0), 1);
        std::vector<LoggerAppend> batch;
        batch.reserve(rows.size());
        for (const Row& row : rows) {
            batch.push_back({series, row.time, 1.0});
        }
        store.Append(batch);
    }

    void Write(const std::vector<Row>& rows)
    {
        for (std::size_t r = 0; r < rows.size() && r < static_cast<std::size_t>(m_group->count); ++r) {
            for (std::size_t v = 0; v < rows[r].values.size(); ++v) {
                const double value = rows[r].values[v];
                // What isn't valid has a value that would be seen.
                ValueOf(r, v) = value == value ? LoggedValue{1, value} : LoggedValue{0, 1e9};
            }
        }
    }

    [[nodiscard]] const RecordChunk& ChunkOf(std::size_t record) const
    {
        std::size_t i = 0;
        while (record >= m_group->Chunks()[i].first + m_group->Chunks()[i].size) {
            ++i;
        }
        return m_group->Chunks()[i];
    }

    ZRLoggerData m_data;
    ZRLoggerData::CRecordGroup* m_group = nullptr;
};

}  // namespace zr::test
