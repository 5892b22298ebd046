#include "siblings/driversupport/RecordWriter.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace zr {

namespace {

constexpr std::int64_t kMicros = 1000000;
constexpr std::int64_t kEpoch = 946684800;  // of ZRDateTime, seconds since 1970

LoggedValue Logged(double value)
{
    return {static_cast<std::uint8_t>(std::isfinite(value) ? 1 : 0), value};
}

// Columns that have a sample in each record. Some records at a time, which stay in the cache for all columns.
void WriteFull(const RecordChunk& chunk, std::span<const SampleColumn> columns)
{
    constexpr std::size_t kTile = 64;
    for (std::size_t begin = 0; begin < chunk.size; begin += kTile) {
        const std::size_t end = std::min(begin + kTile, chunk.size);
        for (std::size_t c = 0; c < columns.size(); ++c) {
            const double* const values = columns[c].values.data();
            LoggedValue* place = chunk.values + begin * columns.size() + c;
            for (std::size_t r = begin; r < end; ++r, place += columns.size()) {
                *place = Logged(values[r]);
            }
        }
    }
}

// Columns some of which lack samples.
void WriteSparse(const RecordChunk& chunk, std::span<const SampleColumn> columns)
{
    std::vector<std::size_t> next(columns.size());
    LoggedValue* place = chunk.values;
    for (std::size_t r = 0; r < chunk.size; ++r) {
        for (std::size_t c = 0; c < columns.size(); ++c) {
            const SampleColumn& column = columns[c];
            const bool has = next[c] < column.times.size() && column.times[next[c]] == chunk.times[r];
            *place++ = has ? Logged(column.values[next[c]++]) : LoggedValue{0, 0.0};
        }
    }
}

}  // namespace

void RecordWriter::Append(std::span<const SampleColumn> columns)
{
    const std::span<const std::int64_t> times = TimesOf(columns);
    const RecordChunk chunk = m_arena.Append(times.size());
    std::copy(times.begin(), times.end(), chunk.times);
    const bool areFull = std::all_of(columns.begin(), columns.end(),
                                     [&](const SampleColumn& column) { return column.values.size() == times.size(); });
    if (areFull) {
        WriteFull(chunk, columns);
    } else {
        WriteSparse(chunk, columns);
    }
    WriteTimes(chunk);
}

void RecordWriter::WriteTimes(const RecordChunk& chunk)
{
    for (std::size_t r = 0; r < chunk.size; ++r) {
        const std::int64_t utc = chunk.times[r];
        const std::int64_t seconds = utc / kMicros;
        if (seconds >= m_span.end) {
            m_span = m_zone.SpanAt(seconds);
        }
        chunk.records[r].time = {static_cast<std::uint32_t>(seconds + m_span.offset - kEpoch),
                                 static_cast<std::uint32_t>(utc % kMicros)};
    }
}

std::span<const std::int64_t> RecordWriter::TimesOf(std::span<const SampleColumn> columns)
{
    std::span<const std::int64_t> all;
    for (const SampleColumn& column : columns) {
        // Mostly recorded together.
        if (all.empty()) {
            all = column.times;
        } else if (!std::equal(all.begin(), all.end(), column.times.begin(), column.times.end())) {
            m_both.clear();
            std::set_union(all.begin(), all.end(), column.times.begin(), column.times.end(),
                           std::back_inserter(m_both));
            m_times.swap(m_both);
            all = m_times;
        }
    }
    return all;
}

}  // namespace zr
