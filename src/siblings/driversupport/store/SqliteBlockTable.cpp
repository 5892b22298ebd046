#include "siblings/driversupport/store/SqliteBlockTable.h"

#include "siblings/driversupport/store/BlockCodec.h"
#include "siblings/driversupport/store/SqliteStoreCheck.h"

#include <algorithm>

namespace zr {

namespace {

void BindNumber(SqliteStatement& statement, int parameter, double value, const StoredSummary& stored)
{
    std::int64_t whole = 0;
    if (stored.decimals >= 0 && WholeOf(value, stored.decimals, whole)) {
        statement.Bind(parameter, whole);
    } else if (stored.summary.isFinite) {
        statement.Bind(parameter, value);
    } else {
        statement.BindNull(parameter);
    }
}

}  // namespace

SqliteBlockTable::SqliteBlockTable(SqliteConnection& connection)
    : m_connection(connection),
      m_readBlock(connection.Prepare("SELECT codec, checksum, payload FROM block WHERE series = ? AND hour = ?")),
      m_readCount(connection.Prepare("SELECT count FROM block WHERE series = ? AND hour = ?")),
      m_writeBlock(connection.Prepare("INSERT OR REPLACE INTO block VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)")),
      m_readDigest(connection.Prepare("SELECT summaries FROM digest WHERE series = ? AND day = ?")),
      m_writeDigest(connection.Prepare("INSERT OR REPLACE INTO digest VALUES (?, ?, ?)")),
      m_removeDigest(connection.Prepare("DELETE FROM digest WHERE series = ? AND day = ?")),
      m_findFirst(connection.Prepare("SELECT hour FROM block WHERE series = ? ORDER BY hour LIMIT 1")),
      m_findBefore(
          connection.Prepare("SELECT hour FROM block WHERE series = ? AND hour < ? ORDER BY hour LIMIT 1 OFFSET ?")),
      m_removeBefore(connection.Prepare("DELETE FROM block WHERE series = ? AND hour < ?"))
{
}

bool SqliteBlockTable::Merge(std::int64_t series, std::int64_t hour, std::span<const LoggerSample> samples)
{
    if (!ReadBlock(series, hour)) {
        return false;
    }
    MergeSamples(samples, m_times, m_values);
    if (m_times.size() > kMaxBlockSamples) {
        Tell(series, hour,
             std::to_string(m_times.size() - kMaxBlockSamples) + " samples more than a block holds were dropped");
        m_times.resize(kMaxBlockSamples);
        m_values.resize(kMaxBlockSamples);
    }
    return Write(series, hour, PackBlock(series, hour, m_times, m_values));
}

// Into m_times and m_values, which are empty when there is none.
bool SqliteBlockTable::ReadBlock(std::int64_t series, std::int64_t hour)
{
    m_times.clear();
    m_values.clear();
    m_readBlock.Bind(1, series);
    m_readBlock.Bind(2, hour);
    const SqliteStep step = m_readBlock.Step();
    if (step == SqliteStep::Row && !UnpackBlock(series, hour, m_readBlock.Integer(0), m_readBlock.Integer(1),
                                                m_readBlock.Bytes(2), m_times, m_values)) {
        // What can't be read any more may not stop the recording.
        Tell(series, hour, "its samples were damaged; newer ones took their place");
        m_times.clear();
        m_values.clear();
    }
    m_readBlock.Reset();
    return step != SqliteStep::Failed;
}

void SqliteBlockTable::Tell(std::int64_t series, std::int64_t hour, const std::string& what)
{
    m_findings.push_back(NameOfSeries(m_connection, series) + ", block of " + TextOfHour(hour) + ": " + what);
}

bool SqliteBlockTable::Write(std::int64_t series, std::int64_t hour, const PackedBlock& block)
{
    DayDigest* const digest = DigestOf(series, DayOf(hour));
    if (digest == nullptr) {
        return false;
    }
    digest->Put(hour, block.stored);
    const LoggerSummary& summary = block.stored.summary;
    m_writeBlock.Bind(1, series);
    m_writeBlock.Bind(2, hour);
    m_writeBlock.Bind(3, static_cast<std::int64_t>(summary.count));
    m_writeBlock.Bind(4, block.codec);
    if (block.stored.decimals >= 0) {
        m_writeBlock.Bind(5, std::int64_t{block.stored.decimals});
    } else {
        m_writeBlock.BindNull(5);
    }
    int parameter = 6;
    for (const double value : {summary.minimum, summary.maximum, summary.sum, summary.first, summary.last}) {
        BindNumber(m_writeBlock, parameter++, value, block.stored);
    }
    m_writeBlock.Bind(11, block.check);
    m_writeBlock.Bind(12, std::span<const std::uint8_t>(block.payload));
    return m_writeBlock.Run();
}

bool SqliteBlockTable::RemoveBefore(std::int64_t series, std::int64_t hour, std::int64_t limit, std::int64_t& removed)
{
    m_findBefore.Bind(1, series);
    m_findBefore.Bind(2, hour);
    m_findBefore.Bind(3, limit);
    const SqliteStep step = m_findBefore.Step();
    const std::int64_t end = step == SqliteStep::Row ? m_findBefore.Integer(0) : hour;
    m_findBefore.Reset();
    if (step == SqliteStep::Failed) {
        return false;
    }
    m_removeBefore.Bind(1, series);
    m_removeBefore.Bind(2, end);
    if (!m_removeBefore.Run() || !m_connection.ReadInteger("SELECT changes()", removed)) {
        return false;
    }
    SqliteStatement removeDays = m_connection.Prepare("DELETE FROM digest WHERE series = ? AND day < ?");
    removeDays.Bind(1, series);
    removeDays.Bind(2, DayOf(end));
    DayDigest* const digest = DigestOf(series, DayOf(end));
    if (digest == nullptr || !removeDays.Run()) {
        return false;
    }
    for (std::int64_t gone = digest->FirstHour(); gone < end; ++gone) {
        digest->Remove(gone);
    }
    return true;
}

bool SqliteBlockTable::FirstHour(std::int64_t series, std::int64_t& hour, bool& hasBlock)
{
    m_findFirst.Bind(1, series);
    const SqliteStep step = m_findFirst.Step();
    hasBlock = step == SqliteStep::Row;
    hour = hasBlock ? m_findFirst.Integer(0) : 0;
    m_findFirst.Reset();
    return step != SqliteStep::Failed;
}

bool SqliteBlockTable::CountOf(std::int64_t series, std::int64_t hour, std::int64_t& count)
{
    m_readCount.Bind(1, series);
    m_readCount.Bind(2, hour);
    const SqliteStep step = m_readCount.Step();
    count = step == SqliteStep::Row ? m_readCount.Integer(0) : 0;
    m_readCount.Reset();
    return step != SqliteStep::Failed;
}

DayDigest* SqliteBlockTable::DigestOf(std::int64_t series, std::int64_t day)
{
    const auto [entry, isNew] = m_digests.try_emplace({series, day}, series, day);
    if (!isNew) {
        return &entry->second;
    }
    m_readDigest.Bind(1, series);
    m_readDigest.Bind(2, day);
    const SqliteStep step = m_readDigest.Step();
    const bool isRead = step == SqliteStep::Row && entry->second.Decode(m_readDigest.Bytes(0));
    m_readDigest.Reset();
    if (step == SqliteStep::Failed || (!isRead && !RebuildDigest(series, entry->second))) {
        m_digests.erase(entry);
        return nullptr;
    }
    return &entry->second;
}

// From the blocks of the day, which there mostly are none of yet.
bool SqliteBlockTable::RebuildDigest(std::int64_t series, DayDigest& digest)
{
    SqliteStatement read = m_connection.Prepare(
        "SELECT hour, codec, checksum, payload FROM block WHERE series = ? AND hour >= ? AND hour < ?");
    read.Bind(1, series);
    read.Bind(2, digest.FirstHour());
    read.Bind(3, digest.FirstHour() + kHoursOfDay);
    SqliteStep step = read.Step();
    std::vector<std::int64_t> times;
    std::vector<double> values;
    for (; step == SqliteStep::Row; step = read.Step()) {
        const std::int64_t hour = read.Integer(0);
        // A row of a damaged page may be of another day.
        if (DayOf(hour) == DayOf(digest.FirstHour()) &&
            UnpackBlock(series, hour, read.Integer(1), read.Integer(2), read.Bytes(3), times, values)) {
            digest.Put(hour, SummariseBlock(times, values));
        }
    }
    return step == SqliteStep::Done;
}

bool SqliteBlockTable::MakeDigests()
{
    SqliteStatement read = m_connection.Prepare("SELECT series, hour FROM block ORDER BY series, hour");
    Place place = {-1, 0};
    SqliteStep step = read.Step();
    for (; step == SqliteStep::Row; step = read.Step()) {
        const Place next = {read.Integer(0), DayOf(read.Integer(1))};
        if (next != place && DigestOf(next.first, next.second) == nullptr) {
            return false;
        }
        place = next;
    }
    return step == SqliteStep::Done && FlushDigests();
}

bool SqliteBlockTable::FlushDigests()
{
    for (const auto& [place, digest] : m_digests) {
        SqliteStatement& statement = digest.IsEmpty() ? m_removeDigest : m_writeDigest;
        const std::vector<std::uint8_t> bytes = digest.Encode();
        statement.Bind(1, place.first);
        statement.Bind(2, place.second);
        if (!digest.IsEmpty()) {
            statement.Bind(3, std::span<const std::uint8_t>(bytes));
        }
        if (!statement.Run()) {
            return false;
        }
    }
    m_digests.clear();
    return true;
}

void SqliteBlockTable::Forget()
{
    m_digests.clear();
}

}  // namespace zr
