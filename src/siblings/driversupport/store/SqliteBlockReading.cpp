#include "siblings/driversupport/store/SqliteBlockReading.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace zr {

namespace {

class MergedBlock final : public LoggerBlock {
public:
    MergedBlock(std::span<const std::int64_t> times, std::span<const double> values) : m_times(times), m_values(values)
    {
        summary = SummariseBlock(times, values).summary;
    }
    bool Samples(std::span<const std::int64_t>& times, std::span<const double>& values) override
    {
        times = m_times;
        values = m_values;
        return true;
    }

private:
    std::span<const std::int64_t> m_times;
    std::span<const double> m_values;
};

}  // namespace

// A block as it stands in the file, unpacked when it is asked to.
class SqliteBlockReading::Stored final : public LoggerBlock {
public:
    Stored(SqliteBlockReading& reading, std::int64_t hour, SqliteStatement* row)
        : m_reading(reading), m_hour(hour), m_row(row)
    {
    }
    bool Samples(std::span<const std::int64_t>& times, std::span<const double>& values) override
    {
        if (!m_isUnpacked && !m_reading.Unpack(m_hour, m_row)) {
            return false;
        }
        m_isUnpacked = true;
        times = m_reading.m_source.times;
        values = m_reading.m_source.values;
        return true;
    }

private:
    SqliteBlockReading& m_reading;
    const std::int64_t m_hour;
    SqliteStatement* const m_row;  // null: to be read by its hour
    bool m_isUnpacked = false;
};

SqliteBlockSource::SqliteBlockSource(SqliteConnection& connection)
    : readBlocks(connection.Prepare("SELECT codec, checksum, payload, hour FROM block "
                                    "WHERE series = ? AND hour >= ? AND hour <= ? ORDER BY hour")),
      readBlock(connection.Prepare("SELECT codec, checksum, payload FROM block WHERE series = ? AND hour = ?")),
      readDigests(connection.Prepare("SELECT day, summaries FROM digest WHERE series = ? AND day >= ? AND day <= ? "
                                     "ORDER BY day"))
{
}

SqliteBlockReading::SqliteBlockReading(SqliteConnection& connection, SqliteBlockSource& source, std::int64_t series,
                                       std::int64_t from, std::int64_t to, LoggerBlockVisitor& visitor)
    : m_connection(connection),
      m_source(source),
      m_series(series),
      m_from(from),
      m_to(to),
      m_firstHour(HourOf(from)),
      m_lastHour(HourOf(to - 1)),
      m_visitor(visitor)
{
    m_source.readDigests.Bind(1, series);
    m_source.readDigests.Bind(2, DayOf(m_firstHour));
    m_source.readDigests.Bind(3, DayOf(m_lastHour));
}

SqliteBlockReading::~SqliteBlockReading()
{
    m_source.readBlocks.Reset();
    m_source.readBlock.Reset();
    m_source.readDigests.Reset();
}

SqliteBlockReading::Result SqliteBlockReading::Run(LoggerNeed need, const UnpackedSamples::Series* waiting)
{
    if (waiting != nullptr) {
        TakeWaiting(*waiting);
    }
    const bool isRead = need == LoggerNeed::Samples ? ReadRows(m_firstHour, m_lastHour) : ReadDays();
    if (isRead) {
        ShowWaitingBefore(std::numeric_limits<std::int64_t>::max());
    }
    return m_result;
}

void SqliteBlockReading::TakeWaiting(const UnpackedSamples::Series& waiting)
{
    if (waiting.firstHour > m_lastHour || waiting.lastHour < m_firstHour) {
        return;
    }
    m_waiting = Ordered(waiting.samples);
    std::erase_if(m_waiting, [this](const LoggerSample& sample) {
        const std::int64_t hour = HourOf(sample.time);
        return hour < m_firstHour || hour > m_lastHour;
    });
}

bool SqliteBlockReading::ReadRows(std::int64_t firstHour, std::int64_t lastHour)
{
    // What a damaged page held is not known: the way across is felt for in steps that double.
    for (std::int64_t step = 1; firstHour <= lastHour; step *= 2) {
        const std::int64_t before = firstHour;
        const SqliteStep end = ReadRun(firstHour, lastHour);
        m_source.readBlocks.Reset();
        if (end == SqliteStep::Done) {
            return true;
        }
        if (end == SqliteStep::Row) {
            return false;
        }
        if (!IsDamaged(firstHour)) {
            return Ended(Result::Failed);
        }
        step = firstHour != before ? 1 : step;
        firstHour += step;
    }
    return true;
}

// Row: the visitor has ended it.
SqliteStep SqliteBlockReading::ReadRun(std::int64_t& firstHour, std::int64_t lastHour)
{
    SqliteStatement& rows = m_source.readBlocks;
    rows.Bind(1, m_series);
    rows.Bind(2, firstHour);
    rows.Bind(3, lastHour);
    SqliteStep step = rows.Step();
    for (; step == SqliteStep::Row; step = rows.Step()) {
        const std::int64_t hour = rows.Integer(3);
        // Rows of a page that lies in a wrong place.
        if (hour < firstHour || hour > lastHour) {
            m_damagedHour = m_damagedHour.value_or(firstHour);
            continue;
        }
        const StoredSummary* const stored = FindSummary(hour);
        if (!Show(hour, stored != nullptr ? &stored->summary : nullptr, &rows)) {
            break;
        }
        firstHour = hour + 1;
    }
    return step;
}

bool SqliteBlockReading::IsDamaged(std::int64_t hour)
{
    const bool isDamaged = m_connection.Fault() == SqliteFault::Damaged;
    if (isDamaged && !m_damagedHour.has_value()) {
        m_damagedHour = hour;
    }
    return isDamaged;
}

// From the digest of its day, which is read on the way.
const StoredSummary* SqliteBlockReading::FindSummary(std::int64_t hour)
{
    const std::int64_t day = DayOf(hour);
    while (m_hasMoreDigests && (!m_hasDigest || m_digestDay < day)) {
        m_hasMoreDigests = m_source.readDigests.Step() == SqliteStep::Row;
        if (!m_hasMoreDigests) {
            return nullptr;
        }
        m_digestDay = m_source.readDigests.Integer(0);
        m_hasDigest = true;
        m_digest = DayDigest(m_series, m_digestDay);
        m_digest.Decode(m_source.readDigests.Bytes(1));
    }
    return m_hasDigest && m_digestDay == day ? m_digest.Find(hour) : nullptr;
}

bool SqliteBlockReading::ReadDays()
{
    SqliteStatement& days = m_source.readDigests;
    std::int64_t nextHour = m_firstHour;
    // Where a day can't tell, its blocks do.
    m_hasMoreDigests = false;
    SqliteStep step = days.Step();
    for (; step == SqliteStep::Row; step = days.Step()) {
        DayDigest digest(m_series, days.Integer(0));
        const bool isWhole = digest.Decode(days.Bytes(1));
        nextHour = digest.FirstHour() + kHoursOfDay;
        if (!(isWhole ? ReadDay(digest)
                      : ReadRows(std::max(m_firstHour, digest.FirstHour()), std::min(m_lastHour, nextHour - 1)))) {
            return false;
        }
    }
    if (step == SqliteStep::Failed) {
        return IsDamaged(nextHour) ? ReadRows(std::max(m_firstHour, nextHour), m_lastHour) : Ended(Result::Failed);
    }
    return true;
}

bool SqliteBlockReading::ReadDay(const DayDigest& digest)
{
    for (std::uint32_t left = digest.Hours(); left != 0; left &= left - 1) {
        const std::int64_t hour = digest.FirstHour() + std::countr_zero(left);
        if (hour >= m_firstHour && hour <= m_lastHour && !Show(hour, &digest.Find(hour)->summary, nullptr)) {
            return false;
        }
    }
    return true;
}

bool SqliteBlockReading::Show(std::int64_t hour, const LoggerSummary* summary, SqliteStatement* row)
{
    if (m_nextWaiting < m_waiting.size()) {
        if (!ShowWaitingBefore(hour)) {
            return false;
        }
        if (m_nextWaiting < m_waiting.size() && HourOf(m_waiting[m_nextWaiting].time) == hour) {
            return (Unpack(hour, row) || m_result == Result::Done) && ShowMerged(hour, true);
        }
    }
    Stored block(*this, hour, row);
    if (summary != nullptr) {
        block.summary = *summary;
        return Give(block);
    }
    std::span<const std::int64_t> times;
    std::span<const double> values;
    if (!block.Samples(times, values)) {
        // Nobody can tell what it held.
        return m_result == Result::Done;
    }
    block.summary = SummariseBlock(times, values).summary;
    return Give(block);
}

bool SqliteBlockReading::ShowWaitingBefore(std::int64_t hour)
{
    while (m_nextWaiting < m_waiting.size() && HourOf(m_waiting[m_nextWaiting].time) < hour) {
        if (!ShowMerged(HourOf(m_waiting[m_nextWaiting].time), false)) {
            return false;
        }
    }
    return true;
}

// What waits of the hour, with what its block holds: that stands in the source's memory.
bool SqliteBlockReading::ShowMerged(std::int64_t hour, bool hasBlock)
{
    const auto first = m_waiting.begin() + static_cast<std::ptrdiff_t>(m_nextWaiting);
    const auto last = std::find_if(first, m_waiting.end(),
                                   [hour](const LoggerSample& sample) { return HourOf(sample.time) != hour; });
    m_nextWaiting += static_cast<std::size_t>(last - first);
    if (!hasBlock) {
        m_source.times.clear();
        m_source.values.clear();
    }
    MergeSamples({first, last}, m_source.times, m_source.values);
    MergedBlock block(m_source.times, m_source.values);
    return Give(block);
}

bool SqliteBlockReading::Give(LoggerBlock& block)
{
    if (block.summary.firstTime >= m_to || block.summary.lastTime < m_from) {
        return true;
    }
    return m_visitor.OnBlock(block) || Ended(Result::Ended);
}

// Into the source's memory, which is empty when the block is damaged.
bool SqliteBlockReading::Unpack(std::int64_t hour, SqliteStatement* row)
{
    SqliteStatement& statement = row != nullptr ? *row : m_source.readBlock;
    bool isRead = true;
    if (row == nullptr) {
        statement.Reset();
        statement.Bind(1, m_series);
        statement.Bind(2, hour);
        const SqliteStep step = statement.Step();
        if (step == SqliteStep::Failed && !IsDamaged(hour)) {
            return Ended(Result::Failed);
        }
        isRead = step == SqliteStep::Row;
    }
    const bool isUnpacked = isRead && UnpackBlock(m_series, hour, statement.Integer(0), statement.Integer(1),
                                                  statement.Bytes(2), m_source.times, m_source.values);
    if (!isUnpacked) {
        m_source.times.clear();
        m_source.values.clear();
        m_damagedHour = m_damagedHour.value_or(hour);
    }
    return isUnpacked;
}

bool SqliteBlockReading::Ended(Result result)
{
    m_result = result;
    return false;
}

}  // namespace zr
