// The blocks of a variable in order of time, out of those that are packed and the samples that wait beside them.
#pragma once

#include "siblings/driversupport/store/LoggerStore.h"
#include "siblings/driversupport/store/PostgresBlocks.h"
#include "siblings/driversupport/store/PostgresConnection.h"

#include <cstdint>
#include <vector>

namespace zr {

// Within a transaction. Reads a part of the range at a time.
class PostgresBlockStream {
public:
    // Hours are inclusive. `connection` is not owned and must outlive this.
    PostgresBlockStream(PostgresConnection& connection, std::int64_t series, std::int64_t firstHour,
                        std::int64_t lastHour, LoggerNeed need);

    // Moves to the first or next block. False at the end, or when the connection has failed (HasFailed).
    bool Next();
    [[nodiscard]] bool HasFailed() const { return m_hasFailed; }

    // Of the block.
    [[nodiscard]] const LoggerSummary& Summary() const { return m_block.summary; }
    bool Samples(std::span<const std::int64_t>& times, std::span<const double>& values);

private:
    bool FetchBlocks();
    bool FetchSamples();
    bool FetchPayload();
    bool TakeWaiting();
    void Overlay();

    PostgresConnection& m_connection;
    std::int64_t m_series;
    std::int64_t m_lastHour;
    LoggerNeed m_need;
    bool m_hasFailed = false;

    PostgresResult m_blocks;  // a part of the table block
    int m_blockRow = 0;
    int m_blockRows = 0;
    bool m_hasAllBlocks = false;
    std::int64_t m_nextHour;  // of the next part

    PostgresResult m_samples;  // a part of the table sample
    int m_sampleRow = 0;
    int m_sampleRows = 0;
    bool m_hasAllSamples = false;
    std::int64_t m_nextTime;  // of the next part

    PostgresBlock m_block;      // the one that it stands at
    bool m_isUnpacked = false;  // into m_times and m_values
    bool m_isDamaged = false;
    PostgresResult m_payload;
    std::vector<std::int64_t> m_times;
    std::vector<double> m_values;
    std::vector<LoggerSample> m_waiting;  // samples of the hour that aren't packed
};

}  // namespace zr
