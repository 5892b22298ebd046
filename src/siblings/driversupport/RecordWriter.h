// Samples of several variables, written as records.
#pragma once

#include "siblings/driversupport/RecordArena.h"
#include "siblings/tools/TimeZone.h"

#include <cstdint>
#include <span>
#include <vector>

namespace zr {

// Of one variable, in order of time; as many times as values.
struct SampleColumn {
    std::vector<std::int64_t> times;  // UTC, microseconds since 1970
    std::vector<double> values;
};

// Appends to an arena, stretch of time by stretch of time.
class RecordWriter {
public:
    // Both must outlive this.
    RecordWriter(RecordArena& arena, const TimeZone& zone) : m_arena(arena), m_zone(zone) {}

    // One record for every time at which any of the columns has a sample. All later than what was appended before.
    void Append(std::span<const SampleColumn> columns);
    // The local times of records whose `times` are written.
    void WriteTimes(const RecordChunk& chunk);

private:
    // All times of all columns, each once.
    std::span<const std::int64_t> TimesOf(std::span<const SampleColumn> columns);

    RecordArena& m_arena;
    const TimeZone& m_zone;
    TimeZone::Span m_span{0, 0, 0};  // of the last time written
    std::vector<std::int64_t> m_times;
    std::vector<std::int64_t> m_both;
};

}  // namespace zr
