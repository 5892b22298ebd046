#include "siblings/driversupport/store/PostgresBlockStream.h"

#include <algorithm>

namespace zr {

namespace {

constexpr int kPayloadsAtOnce = 1024;
constexpr int kSummariesAtOnce = 4096;
constexpr int kSamplesAtOnce = 8192;

}  // namespace

PostgresBlockStream::PostgresBlockStream(PostgresConnection& connection, std::int64_t series, std::int64_t firstHour,
                                         std::int64_t lastHour, LoggerNeed need)
    : m_connection(connection),
      m_series(series),
      m_lastHour(lastHour),
      m_need(need),
      m_nextHour(firstHour),
      m_nextTime(FirstTimeOf(firstHour))
{
}

bool PostgresBlockStream::FetchBlocks()
{
    const int limit = m_need == LoggerNeed::Samples ? kPayloadsAtOnce : kSummariesAtOnce;
    PostgresStatement statement{
        m_need == LoggerNeed::Samples
            ? "select series, hour, samples, first_time, last_time, minimum, maximum, total, first_value, last_value,"
              " flags, codec, checksum, payload from block where series = $1 and hour >= $2 and hour <= $3"
              " order by hour limit $4"
            : "select series, hour, samples, first_time, last_time, minimum, maximum, total, first_value, last_value,"
              " flags, codec, checksum from block where series = $1 and hour >= $2 and hour <= $3"
              " order by hour limit $4",
        {}};
    statement.values.Integer(m_series).Integer(m_nextHour).Integer(m_lastHour).Integer(limit);
    PostgresConnection::Results results;
    if (!m_connection.Run({&statement, 1}, results)) {
        return false;
    }
    m_blocks = std::move(results[0]);
    m_blockRow = 0;
    m_blockRows = m_blocks.Rows();
    m_hasAllBlocks = m_blockRows < limit;
    if (m_blockRows > 0) {
        m_nextHour = m_blocks.Integer(m_blockRows - 1, 1) + 1;
    }
    return true;
}

bool PostgresBlockStream::FetchSamples()
{
    PostgresStatement statement{
        "select time, value from sample where series = $1 and time >= $2 and time <= $3 order by time limit $4", {}};
    statement.values.Integer(m_series).Integer(m_nextTime).Integer(LastTimeOf(m_lastHour)).Integer(kSamplesAtOnce);
    PostgresConnection::Results results;
    if (!m_connection.Run({&statement, 1}, results)) {
        return false;
    }
    m_samples = std::move(results[0]);
    m_sampleRow = 0;
    m_sampleRows = m_samples.Rows();
    m_hasAllSamples = m_sampleRows < kSamplesAtOnce;
    if (m_sampleRows > 0) {
        const std::int64_t last = m_samples.Integer(m_sampleRows - 1, 0);
        m_hasAllSamples = m_hasAllSamples || last == LastTimeOf(m_lastHour);
        m_nextTime = m_hasAllSamples ? last : last + 1;
    }
    return true;
}

// The samples of the first hour that has any waiting.
bool PostgresBlockStream::TakeWaiting()
{
    m_waiting.clear();
    for (;;) {
        if (m_sampleRow == m_sampleRows) {
            if (m_hasAllSamples) {
                return true;
            }
            if (!FetchSamples()) {
                return false;
            }
            continue;
        }
        const std::int64_t time = m_samples.Integer(m_sampleRow, 0);
        if (!m_waiting.empty() && HourOf(time) != HourOf(m_waiting.front().time)) {
            return true;
        }
        m_waiting.push_back({time, m_samples.Double(m_sampleRow, 1)});
        ++m_sampleRow;
    }
}

bool PostgresBlockStream::Next()
{
    m_hasFailed = m_hasFailed || (m_waiting.empty() && !TakeWaiting()) ||
                  (m_blockRow == m_blockRows && !m_hasAllBlocks && !FetchBlocks());
    if (m_hasFailed) {
        return false;
    }
    const bool hasBlock = m_blockRow < m_blockRows;
    if (!hasBlock && m_waiting.empty()) {
        return false;
    }
    m_block = {};
    m_isUnpacked = m_isDamaged = false;
    m_times.clear();
    m_values.clear();
    const std::int64_t blockHour = hasBlock ? m_blocks.Integer(m_blockRow, 1) : 0;
    if (hasBlock && (m_waiting.empty() || blockHour <= HourOf(m_waiting.front().time))) {
        m_block = ReadPostgresBlock(m_blocks, m_blockRow++);
        if (m_waiting.empty() || blockHour < HourOf(m_waiting.front().time)) {
            return true;
        }
    }
    Overlay();
    m_waiting.clear();
    return !m_hasFailed;
}

// Puts the samples that wait over those of the block of their hour, if there is one.
void PostgresBlockStream::Overlay()
{
    if (m_block.summary.count > 0) {
        std::span<const std::int64_t> times;
        std::span<const double> values;
        if (!Samples(times, values)) {
            return;
        }
    }
    MergeSamples(m_waiting, m_times, m_values);
    m_block.summary = SummariseBlock(m_times, m_values).summary;
    m_isUnpacked = true;
}

bool PostgresBlockStream::FetchPayload()
{
    PostgresStatement statement{"select payload from block where series = $1 and hour = $2", {}};
    statement.values.Integer(m_block.series).Integer(m_block.hour);
    PostgresConnection::Results results;
    if (!m_connection.Run({&statement, 1}, results)) {
        m_hasFailed = true;
        return false;
    }
    m_payload = std::move(results[0]);
    m_block.payload = m_payload.Rows() == 1 ? m_payload.Bytes(0, 0) : std::span<const std::uint8_t>();
    return true;
}

bool PostgresBlockStream::Samples(std::span<const std::int64_t>& times, std::span<const double>& values)
{
    if (!m_isUnpacked && !m_isDamaged) {
        if (m_block.payload.empty() && !FetchPayload()) {
            return false;
        }
        m_isUnpacked = UnpackPostgresBlock(m_block, m_times, m_values);
        m_isDamaged = !m_isUnpacked;
    }
    times = m_times;
    values = m_values;
    return m_isUnpacked;
}

}  // namespace zr
