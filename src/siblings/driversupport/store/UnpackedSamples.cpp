#include "siblings/driversupport/store/UnpackedSamples.h"

#include "siblings/driversupport/store/BlockPacking.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace zr {

namespace {

double SampleValueOf(const SqliteStatement& statement, int column)
{
    if (!statement.IsBytes(column)) {
        return statement.Real(column);
    }
    const std::span<const std::uint8_t> bytes = statement.Bytes(column);
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < bytes.size() && i < sizeof bits; ++i) {
        bits |= std::uint64_t{bytes[i]} << (8 * i);
    }
    return bytes.size() == sizeof bits ? std::bit_cast<double>(bits) : std::numeric_limits<double>::quiet_NaN();
}

}  // namespace

std::vector<LoggerSample> Ordered(std::span<const LoggerSample> samples)
{
    const auto isBefore = [](const LoggerSample& left, const LoggerSample& right) { return left.time < right.time; };
    std::vector<LoggerSample> ordered(samples.begin(), samples.end());
    if (!std::is_sorted(ordered.begin(), ordered.end(), isBefore)) {
        std::stable_sort(ordered.begin(), ordered.end(), isBefore);
    }
    std::size_t kept = 0;
    for (const LoggerSample& sample : ordered) {
        kept -= kept > 0 && ordered[kept - 1].time == sample.time ? 1u : 0u;
        ordered[kept++] = sample;
    }
    ordered.resize(kept);
    return ordered;
}

UnpackedSamples::UnpackedSamples(SqliteConnection& connection)
    : m_readGeneration(connection.Prepare("SELECT generation FROM store")),
      m_readSamples(connection.Prepare("SELECT entry, series, time, value FROM sample WHERE entry > ? ORDER BY entry"))
{
}

bool UnpackedSamples::Refresh()
{
    const bool isRead = m_readGeneration.Step() == SqliteStep::Row;
    const std::int64_t generation = isRead ? m_readGeneration.Integer(0) : 0;
    m_readGeneration.Reset();
    if (!isRead) {
        return false;
    }
    if (generation != m_generation) {
        Clear();
        m_generation = generation;
    }
    m_readSamples.Bind(1, m_lastEntry);
    SqliteStep step = m_readSamples.Step();
    for (; step == SqliteStep::Row; step = m_readSamples.Step()) {
        m_lastEntry = m_readSamples.Integer(0);
        Take(m_readSamples.Integer(1), {m_readSamples.Integer(2), SampleValueOf(m_readSamples, 3)});
    }
    m_readSamples.Reset();
    return step == SqliteStep::Done;
}

void UnpackedSamples::Take(std::int64_t series, const LoggerSample& sample)
{
    const std::int64_t hour = HourOf(sample.time);
    const auto [entry, isNew] = m_series.try_emplace(series);
    Series& waiting = entry->second;
    waiting.firstHour = isNew ? hour : std::min(waiting.firstHour, hour);
    waiting.lastHour = isNew ? hour : std::max(waiting.lastHour, hour);
    waiting.samples.push_back(sample);
    m_firstHour = m_count == 0 ? hour : std::min(m_firstHour, hour);
    ++m_count;
}

const UnpackedSamples::Series* UnpackedSamples::Find(std::int64_t series) const
{
    const auto entry = m_series.find(series);
    return entry != m_series.end() ? &entry->second : nullptr;
}

void UnpackedSamples::Clear()
{
    m_series.clear();
    m_count = 0;
    m_lastEntry = 0;
    m_generation = -1;
}

void BindSampleValue(SqliteStatement& statement, int parameter, double value, std::span<std::uint8_t, 8> bits)
{
    if (!std::isnan(value)) {
        statement.Bind(parameter, value);
        return;
    }
    for (std::size_t i = 0; i < bits.size(); ++i) {
        bits[i] = static_cast<std::uint8_t>(std::bit_cast<std::uint64_t>(value) >> (8 * i));
    }
    statement.Bind(parameter, std::span<const std::uint8_t>(bits));
}

}  // namespace zr
