// One reading of the blocks of a variable: what is packed and what waits, merged.
#pragma once

#include "siblings/driversupport/store/DayDigest.h"
#include "siblings/driversupport/store/LoggerStore.h"
#include "siblings/driversupport/store/SqliteConnection.h"
#include "siblings/driversupport/store/UnpackedSamples.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace zr {

// The statements and the memory that readings share, one at a time.
struct SqliteBlockSource {
    explicit SqliteBlockSource(SqliteConnection& connection);

    SqliteStatement readBlocks;   // series, first and last hour
    SqliteStatement readBlock;    // series, hour
    SqliteStatement readDigests;  // series, first and last day
    std::vector<std::int64_t> times;
    std::vector<double> values;
};

class SqliteBlockReading {
public:
    enum class Result { Done, Ended, Failed };

    SqliteBlockReading(SqliteConnection& connection, SqliteBlockSource& source, std::int64_t series, std::int64_t from,
                       std::int64_t to, LoggerBlockVisitor& visitor);
    ~SqliteBlockReading();
    SqliteBlockReading(const SqliteBlockReading&) = delete;
    SqliteBlockReading& operator=(const SqliteBlockReading&) = delete;

    // Waiting may be null. Done as well when something was damaged on the way: what lies beyond is shown.
    Result Run(LoggerNeed need, const UnpackedSamples::Series* waiting);
    // The first hour that was found damaged.
    [[nodiscard]] std::optional<std::int64_t> DamagedHour() const { return m_damagedHour; }

private:
    class Stored;
    friend class Stored;

    void TakeWaiting(const UnpackedSamples::Series& waiting);
    // Row by row; what is asked of a row later is at hand. A damaged page is passed over.
    bool ReadRows(std::int64_t firstHour, std::int64_t lastHour);
    // Moves the first hour behind what was shown.
    SqliteStep ReadRun(std::int64_t& firstHour, std::int64_t lastHour);
    // Day by day; a row is only read when its samples are asked for.
    bool ReadDays();
    bool ReadDay(const DayDigest& digest);
    const StoredSummary* FindSummary(std::int64_t hour);
    // Of an hour with a block. False ends the reading, with the result set.
    bool Show(std::int64_t hour, const LoggerSummary* summary, SqliteStatement* row);
    bool ShowWaitingBefore(std::int64_t hour);
    bool ShowMerged(std::int64_t hour, bool hasBlock);
    bool Give(LoggerBlock& block);
    bool Unpack(std::int64_t hour, SqliteStatement* row);
    bool Ended(Result result);
    // True when it is damage that makes a step fail, which is then noted.
    bool IsDamaged(std::int64_t hour);

    SqliteConnection& m_connection;
    SqliteBlockSource& m_source;
    const std::int64_t m_series;
    const std::int64_t m_from;
    const std::int64_t m_to;  // Exclusive.
    const std::int64_t m_firstHour;
    const std::int64_t m_lastHour;
    LoggerBlockVisitor& m_visitor;
    std::vector<LoggerSample> m_waiting;  // of the range's hours, in order of time
    std::size_t m_nextWaiting = 0;
    DayDigest m_digest;
    std::int64_t m_digestDay = 0;
    bool m_hasDigest = false;
    bool m_hasMoreDigests = true;
    Result m_result = Result::Done;
    std::optional<std::int64_t> m_damagedHour;
};

}  // namespace zr
