#include "siblings/driversupport/store/SqliteUpkeep.h"

#include "platform/Clock.h"
#include "siblings/driversupport/store/SqliteStoreCheck.h"

#include <algorithm>

namespace zr {

namespace {

constexpr std::int64_t kMinuteMicros = 60 * std::int64_t{1000000};
constexpr std::int64_t kDayMicros = kHoursOfDay * kHourMicros;
// A slice of the upkeep.
constexpr std::chrono::milliseconds kSlice(50);
// How long after its end an hour is packed: its last samples may be under way.
constexpr std::int64_t kGrace = 5 * kMinuteMicros;
// Samples that come late are packed together.
constexpr std::int64_t kBetweenPasses = kMinuteMicros;
// So many samples are packed at any rate, for the sake of whoever reads them.
constexpr std::size_t kManyWaiting = 250000;
constexpr std::int64_t kBlocksDroppedAtATime = 500;
constexpr std::int64_t kBlocksCheckedAtATime = 50;
// The clock that retention goes by follows the one of the caller at so many times its pace, but for a step of a day.
constexpr std::int64_t kReferencePace = 24;
// In days; beyond it times have no number.
constexpr std::int64_t kLongestRetention = 10000000;
// Pages of 4 KiB that stay free for what is to come.
constexpr std::int64_t kFreePagesKept = 4096;

}  // namespace

LoggerStore::Upkeep SqliteUpkeep::Run(SqliteSession& session, std::int64_t now)
{
    m_end = CurrentClock().Steady() + kSlice;
    if (!Pack(session, now)) {
        // What the pass did last was rolled back: it may not go on from there.
        m_pass.reset();
        m_lastPass.reset();
        return LoggerStore::Upkeep::Failed;
    }
    if (m_pass.has_value()) {
        return LoggerStore::Upkeep::More;
    }
    if (!Retain(session, now)) {
        return LoggerStore::Upkeep::Failed;
    }
    if (!m_retentions.empty()) {
        return LoggerStore::Upkeep::More;
    }
    return GiveBackPages(session) && CheckSome(session) ? LoggerStore::Upkeep::Done : LoggerStore::Upkeep::Failed;
}

void SqliteUpkeep::Restart()
{
    m_pass.reset();
    m_retentions.clear();
    m_isRetentionDue = true;
    m_checkedSeries = 0;
    m_checkedHour = 0;
}

bool SqliteUpkeep::IsOver() const
{
    return CurrentClock().Steady() >= m_end;
}

bool SqliteUpkeep::IsPackingDue(const UnpackedSamples& unpacked, std::int64_t now) const
{
    if (unpacked.Count() == 0) {
        return false;
    }
    const bool isSoonAgain = m_lastPass.has_value() && now >= *m_lastPass && now - *m_lastPass < kBetweenPasses;
    const bool isHourOver = now >= kGrace && HourOf(now - kGrace) > unpacked.FirstHour();
    return unpacked.Count() >= kManyWaiting || (isHourOver && !isSoonAgain);
}

bool SqliteUpkeep::Pack(SqliteSession& session, std::int64_t now)
{
    {
        const SqliteTransaction snapshot(session.connection, SqliteTransaction::Kind::Read);
        if (!snapshot.IsOpen() || !session.unpacked.Refresh()) {
            return false;
        }
    }
    if (!m_pass.has_value()) {
        if (!IsPackingDue(session.unpacked, now)) {
            return true;
        }
        m_lastPass = now;
        m_pass = Pass{session.unpacked.Generation(), session.unpacked.LastEntry(), {}};
        for (const auto& [series, waiting] : session.unpacked.All()) {
            m_pass->series.push_back(series);
        }
        std::sort(m_pass->series.begin(), m_pass->series.end(), std::greater<>());
    }
    return PackSlice(session);
}

bool SqliteUpkeep::PackSlice(SqliteSession& session)
{
    SqliteTransaction transaction(session.connection, SqliteTransaction::Kind::Write);
    if (!transaction.IsOpen() || !session.unpacked.Refresh()) {
        return false;
    }
    if (session.unpacked.Generation() != m_pass->generation) {
        // Another program has packed.
        m_pass.reset();
        return true;
    }
    do {
        if (m_pass->series.empty()) {
            break;
        }
        if (!PackSeries(session, m_pass->series.back())) {
            return false;
        }
        m_pass->series.pop_back();
    } while (!IsOver());
    const bool isEnd = m_pass->series.empty();
    if ((isEnd && !EndPass(session)) || !session.blocks.FlushDigests() || !transaction.Commit()) {
        return false;
    }
    if (isEnd) {
        m_pass.reset();
        m_isRetentionDue = true;
    }
    return true;
}

bool SqliteUpkeep::PackSeries(SqliteSession& session, std::int64_t series)
{
    const UnpackedSamples::Series* const waiting = session.unpacked.Find(series);
    if (waiting == nullptr) {
        return true;
    }
    const std::vector<LoggerSample> ordered = Ordered(waiting->samples);
    for (auto first = ordered.begin(); first != ordered.end();) {
        const std::int64_t hour = HourOf(first->time);
        const auto last =
            std::find_if(first, ordered.end(), [&](const LoggerSample& sample) { return HourOf(sample.time) != hour; });
        if (!session.blocks.Merge(series, hour, {first, last})) {
            return false;
        }
        first = last;
    }
    return true;
}

bool SqliteUpkeep::EndPass(SqliteSession& session)
{
    // Without a condition the table is emptied at once.
    const bool isAll = session.unpacked.LastEntry() == m_pass->lastEntry;
    SqliteStatement remove =
        session.connection.Prepare(isAll ? "DELETE FROM sample" : "DELETE FROM sample WHERE entry <= ?");
    if (!isAll) {
        remove.Bind(1, m_pass->lastEntry);
    }
    return remove.Run() && session.connection.Run("UPDATE store SET generation = generation + 1");
}

bool SqliteUpkeep::Retain(SqliteSession& session, std::int64_t now)
{
    if (m_retentions.empty()) {
        std::int64_t reference = 0;
        if (!MoveReference(session, now, reference)) {
            return false;
        }
        if (!m_isRetentionDue && HourOf(reference) == m_retainedHour) {
            return true;
        }
        if (!ListRetentions(session, reference)) {
            return false;
        }
        m_isRetentionDue = false;
        m_retainedHour = HourOf(reference);
    }
    while (!m_retentions.empty() && !IsOver()) {
        if (!RemoveOldBlocks(session)) {
            return false;
        }
    }
    return true;
}

bool SqliteUpkeep::ListRetentions(SqliteSession& session, std::int64_t now)
{
    SqliteStatement read = session.connection.Prepare(
        "SELECT v.series, max(d.retention) FROM data_set_variable v JOIN data_set d ON d.data_set = v.data_set "
        "GROUP BY v.series HAVING min(d.retention) > 0");
    SqliteStep step = read.Step();
    for (; step == SqliteStep::Row; step = read.Step()) {
        const std::int64_t days = std::clamp<std::int64_t>(read.Integer(1), 1, kLongestRetention);
        m_retentions.push_back({read.Integer(0), HourOf(now - days * kDayMicros)});
    }
    return step == SqliteStep::Done;
}

// Of the series that is next, as far as one transaction goes.
bool SqliteUpkeep::RemoveOldBlocks(SqliteSession& session)
{
    const Retention& retention = m_retentions.back();
    std::int64_t firstHour = 0;
    std::int64_t removed = 0;
    bool hasBlock = false;
    if (!session.blocks.FirstHour(retention.series, firstHour, hasBlock)) {
        return false;
    }
    if (!hasBlock || firstHour >= retention.firstHour) {
        m_retentions.pop_back();
        return true;
    }
    SqliteTransaction transaction(session.connection, SqliteTransaction::Kind::Write);
    if (!transaction.IsOpen() ||
        !session.blocks.RemoveBefore(retention.series, retention.firstHour, kBlocksDroppedAtATime, removed) ||
        !session.blocks.FlushDigests() || !transaction.Commit()) {
        return false;
    }
    if (removed == 0) {
        // A damaged table may show a row and not drop it: it isn't asked for ever.
        m_retentions.pop_back();
    }
    return true;
}

// A clock that is set years ahead may not empty the store: what retention goes by follows slowly, and waits in the file
// over the end of the program.
bool SqliteUpkeep::MoveReference(SqliteSession& session, std::int64_t now, std::int64_t& reference)
{
    SqliteStatement read = session.connection.Prepare("SELECT time FROM reference");
    const SqliteStep step = read.Step();
    const std::int64_t before = step == SqliteStep::Row ? std::max<std::int64_t>(0, read.Integer(0)) : 0;
    read.Reset();
    if (step == SqliteStep::Failed) {
        return false;
    }
    const TimePoint steady = CurrentClock().Steady();
    const auto run = std::chrono::duration_cast<std::chrono::microseconds>(steady - m_lastReference.value_or(steady));
    if (step == SqliteStep::Done) {
        if (!FirstReference(session, now, reference)) {
            return false;
        }
    } else if (now - before <= kDayMicros) {
        reference = now;
    } else {
        reference = std::min(now, before + kReferencePace * run.count());
    }
    if (step == SqliteStep::Row && std::abs(reference - before) < kMinuteMicros) {
        // Not worth a transaction; the pace goes on from when it was written.
        m_lastReference = m_lastReference.value_or(steady);
        return true;
    }
    m_lastReference = steady;
    SqliteStatement write = session.connection.Prepare("INSERT OR REPLACE INTO reference VALUES (1, ?)");
    write.Bind(1, reference);
    return write.Run();
}

// A store that was never kept up: its own samples tell what time it is, to a day.
bool SqliteUpkeep::FirstReference(SqliteSession& session, std::int64_t now, std::int64_t& reference)
{
    SqliteStatement read = session.connection.Prepare(
        "SELECT max(hour) FROM (SELECT (SELECT max(hour) FROM block b WHERE b.series = s.series) AS hour FROM series "
        "s)");
    const SqliteStep step = read.Step();
    // Hours before 1970 come from nobody's clock.
    const std::int64_t lastHour = step == SqliteStep::Row ? std::max<std::int64_t>(0, read.Integer(0)) : 0;
    const bool isBehind = step == SqliteStep::Row && !read.IsNull(0) && lastHour < HourOf(now);
    reference = isBehind ? std::min(now, StartOfHour(lastHour) + kHourMicros + kDayMicros) : now;
    return step != SqliteStep::Failed;
}

bool SqliteUpkeep::GiveBackPages(SqliteSession& session)
{
    std::int64_t pages = 0;
    return session.connection.ReadInteger("PRAGMA freelist_count", pages) &&
           (pages <= kFreePagesKept || session.connection.Run("PRAGMA incremental_vacuum(256)"));
}

bool SqliteUpkeep::CheckSome(SqliteSession& session)
{
    SqliteBlockChecker checker(session.connection, session.file->Name());
    LoggerCheck check;
    std::int64_t checked = 0;
    if (!checker.Check(m_checkedSeries, m_checkedHour, kBlocksCheckedAtATime, check, checked)) {
        return false;
    }
    if (checked < kBlocksCheckedAtATime) {
        m_checkedSeries = 0;
        m_checkedHour = 0;
    }
    for (std::string& finding : check.findings) {
        if (m_told.insert(finding).second) {
            m_findings.push_back(std::move(finding));
        }
    }
    return true;
}

}  // namespace zr
