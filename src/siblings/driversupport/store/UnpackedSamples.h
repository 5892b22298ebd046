// The samples of a store file that are in no block yet, kept in memory and brought up to date by what came since.
#pragma once

#include "siblings/driversupport/store/LoggerStore.h"
#include "siblings/driversupport/store/SqliteConnection.h"

#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

namespace zr {

// In order of time, of those at the same time the last one only. `samples` are in order of entry.
std::vector<LoggerSample> Ordered(std::span<const LoggerSample> samples);

class UnpackedSamples {
public:
    // What waits of one series.
    struct Series {
        std::vector<LoggerSample> samples;  // in order of entry
        std::int64_t firstHour = 0;
        std::int64_t lastHour = 0;
    };

    explicit UnpackedSamples(SqliteConnection& connection);

    // Reads what is new, within the transaction of the caller. False when the store fails.
    bool Refresh();
    // Null when nothing of it waits.
    [[nodiscard]] const Series* Find(std::int64_t series) const;
    [[nodiscard]] const std::unordered_map<std::int64_t, Series>& All() const { return m_series; }
    [[nodiscard]] std::size_t Count() const { return m_count; }
    // Of the last sample entered.
    [[nodiscard]] std::int64_t LastEntry() const { return m_lastEntry; }
    // Changes when samples left; what was read before is then of no use.
    [[nodiscard]] std::int64_t Generation() const { return m_generation; }
    // Of all that waits; no meaning without any.
    [[nodiscard]] std::int64_t FirstHour() const { return m_firstHour; }
    void Clear();

private:
    void Take(std::int64_t series, const LoggerSample& sample);

    SqliteStatement m_readGeneration;
    SqliteStatement m_readSamples;
    std::unordered_map<std::int64_t, Series> m_series;
    std::size_t m_count = 0;
    std::int64_t m_lastEntry = 0;
    std::int64_t m_generation = -1;
    std::int64_t m_firstHour = 0;
};

// A value as the table keeps it: a number, or the bits of what is none.
void BindSampleValue(SqliteStatement& statement, int parameter, double value, std::span<std::uint8_t, 8> bits);

}  // namespace zr
