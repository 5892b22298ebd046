#include "siblings/driversupport/store/SqliteLoggerStore.h"

#include "platform/FileReplace.h"
#include "platform/Unicode.h"
#include "siblings/driversupport/store/SqliteLoggerReader.h"
#include "siblings/driversupport/store/SqliteSession.h"
#include "siblings/driversupport/store/SqliteUpkeep.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zr {

namespace {

// From here on a batch is looked through for hours that go into blocks at once.
constexpr std::size_t kManySamples = 64;
// So many samples of an hour are worth a block of their own.
constexpr std::size_t kGroup = 16;
// A block is written anew for a group of samples unless it has so many times more already.
constexpr std::int64_t kBlockToGroup = 4;

}  // namespace

SqliteLoggerStore::SqliteLoggerStore(std::filesystem::path file, Options options)
    : m_path(std::move(file)), m_options(std::move(options)), m_upkeep(std::make_unique<SqliteUpkeep>())
{
}

SqliteLoggerStore::~SqliteLoggerStore() = default;

int SqliteLoggerStore::OpenSeries(const ZRBasicString& variable, std::int32_t infoCode)
{
    if (!Ready()) {
        return -1;
    }
    const auto [entry, isNew] = m_names.try_emplace(variable, static_cast<int>(m_handles.size()));
    if (isNew) {
        m_handles.push_back({variable, infoCode, 0});
    }
    Handle& handle = m_handles[static_cast<std::size_t>(entry->second)];
    if (!CheckIdentity() || !LookUp(handle) || (handle.series == 0 && !AddSeries(handle))) {
        Fail();
        return -1;
    }
    return entry->second;
}

// Not worth a wait for the disk: the first batch brings it there as well.
bool SqliteLoggerStore::AddSeries(Handle& handle)
{
    if (!m_session->file->SetWaiting(false)) {
        return false;
    }
    SqliteTransaction transaction(m_session->connection, SqliteTransaction::Kind::Write);
    const bool isEntered = transaction.IsOpen() && EnterSeries(handle) && transaction.Commit();
    return m_session->file->SetWaiting(true) && isEntered;
}

bool SqliteLoggerStore::Append(std::span<const LoggerAppend> batch)
{
    m_error.clear();
    const bool areKnown = std::all_of(batch.begin(), batch.end(), [&](const LoggerAppend& sample) {
        return sample.series >= 0 && static_cast<std::size_t>(sample.series) < m_handles.size();
    });
    if (!areKnown) {
        return Fail("no series has the number of a sample");
    }
    if (batch.empty()) {
        return true;
    }
    if (!Ready()) {
        return false;
    }
    SqliteTransaction transaction(m_session->connection, SqliteTransaction::Kind::Write);
    if (!transaction.IsOpen() || !CheckIdentity() || !EnterSeriesOf(batch) || !Enter(batch) ||
        !m_session->blocks.FlushDigests() || !transaction.Commit()) {
        return Fail();
    }
    // Nothing is acknowledged that went into a file which nobody will find.
    return m_session->file->IsCurrent() || Fail("was removed or replaced while samples were written to it");
}

// Opens the file unless it is open and the path still names it.
bool SqliteLoggerStore::Ready()
{
    m_error.clear();
    if (m_session != nullptr && !m_isBroken && m_session->file->IsCurrent()) {
        m_session->connection.ClearFault();
        return true;
    }
    if (m_session != nullptr) {
        if (!m_session->file->IsCurrent()) {
            // A file that was moved away may come back: what the log has of it goes with it, since the log can't.
            m_session->connection.Run("PRAGMA wal_checkpoint(TRUNCATE)");
        }
        m_session->file->RemoveRemains();
        m_findings = TakeFindings();
        m_session.reset();
    }
    std::unique_ptr<SqliteStoreFile> file =
        SqliteStoreFile::Open(m_path, m_options, SqliteStoreFile::Use::Write, m_error);
    if (file == nullptr) {
        return false;
    }
    m_session = std::make_unique<SqliteSession>(std::move(file));
    m_isBroken = false;
    m_upkeep->Restart();
    return (m_session->connection.Fault() == SqliteFault::None && CheckIdentity()) || Fail();
}

// Numbers of series hold for the store that they were looked up in.
bool SqliteLoggerStore::CheckIdentity()
{
    const bool isRead = m_session->readIdentity.Step() == SqliteStep::Row;
    const std::int64_t identity = isRead ? m_session->readIdentity.Integer(0) : 0;
    m_session->readIdentity.Reset();
    if (isRead && identity != m_session->identity) {
        std::for_each(m_handles.begin(), m_handles.end(), [](Handle& handle) { handle.series = 0; });
        m_session->unpacked.Clear();
        m_session->identity = identity;
    }
    return isRead;
}

// A transaction of the caller may still be open: it is rolled back after this, and the file is opened anew at the next
// call.
bool SqliteLoggerStore::Fail()
{
    m_error = m_session->file->Error();
    m_session->blocks.Forget();
    // Numbers that were entered are gone with the transaction.
    m_session->identity = 0;
    const SqliteFault fault = m_session->connection.Fault();
    m_isBroken = fault != SqliteFault::Busy && fault != SqliteFault::Full;
    return false;
}

bool SqliteLoggerStore::Fail(const std::string& why)
{
    m_error = TextOfPath(m_path) + ": " + why;
    return false;
}

// Leaves a series of 0 for one that isn't entered.
bool SqliteLoggerStore::LookUp(Handle& handle)
{
    if (handle.series != 0) {
        return true;
    }
    const std::string name = Utf8From16(handle.variable.Text());
    SqliteStatement& find = m_session->findSeries;
    find.Bind(1, std::string_view(name));
    const SqliteStep step = find.Step();
    handle.series = step == SqliteStep::Row ? find.Integer(0) : 0;
    find.Reset();
    return step != SqliteStep::Failed;
}

bool SqliteLoggerStore::EnterSeries(Handle& handle)
{
    if (!LookUp(handle)) {
        return false;
    }
    if (handle.series != 0) {
        return true;
    }
    const std::string name = Utf8From16(handle.variable.Text());
    SqliteStatement& add = m_session->addSeries;
    add.Bind(1, std::string_view(name));
    add.Bind(2, std::int64_t{handle.infoCode});
    return add.Run() && LookUp(handle);
}

bool SqliteLoggerStore::EnterSeriesOf(std::span<const LoggerAppend> batch)
{
    return std::all_of(batch.begin(), batch.end(), [&](const LoggerAppend& sample) {
        Handle& handle = m_handles[static_cast<std::size_t>(sample.series)];
        return handle.series != 0 || EnterSeries(handle);
    });
}

bool SqliteLoggerStore::Enter(std::span<const LoggerAppend> batch)
{
    if (batch.size() >= kManySamples) {
        return EnterGroups(batch);
    }
    return std::all_of(batch.begin(), batch.end(), [&](const LoggerAppend& sample) {
        return EnterSample(m_handles[static_cast<std::size_t>(sample.series)].series, {sample.time, sample.value});
    });
}

// By series, in order of entry within each, then by hour.
bool SqliteLoggerStore::EnterGroups(std::span<const LoggerAppend> batch)
{
    std::vector<std::size_t> ends(m_handles.size() + 1);
    for (const LoggerAppend& sample : batch) {
        ++ends[static_cast<std::size_t>(sample.series) + 1];
    }
    for (std::size_t i = 1; i < ends.size(); ++i) {
        ends[i] += ends[i - 1];
    }
    std::vector<LoggerSample> sorted(batch.size());
    for (const LoggerAppend& sample : batch) {
        sorted[ends[static_cast<std::size_t>(sample.series)]++] = {sample.time, sample.value};
    }
    if (!m_session->unpacked.Refresh()) {
        return false;
    }
    std::size_t begin = 0;
    for (std::size_t i = 0; i < m_handles.size(); ++i) {
        if (!EnterSeriesGroups(m_handles[i].series, std::span(sorted).subspan(begin, ends[i] - begin))) {
            return false;
        }
        begin = ends[i];
    }
    return true;
}

bool SqliteLoggerStore::EnterSeriesGroups(std::int64_t series, std::span<const LoggerSample> samples)
{
    if (samples.size() < kGroup) {
        return EnterSamples(series, samples);
    }
    const std::vector<LoggerSample> ordered = Ordered(samples);
    for (auto first = ordered.begin(); first != ordered.end();) {
        const std::int64_t hour = HourOf(first->time);
        const auto last =
            std::find_if(first, ordered.end(), [&](const LoggerSample& sample) { return HourOf(sample.time) != hour; });
        if (!EnterGroup(series, hour, {first, last})) {
            return false;
        }
        first = last;
    }
    return true;
}

bool SqliteLoggerStore::EnterGroup(std::int64_t series, std::int64_t hour, std::span<const LoggerSample> samples)
{
    const UnpackedSamples::Series* const waiting = m_session->unpacked.Find(series);
    const bool isWaiting = waiting != nullptr && hour >= waiting->firstHour && hour <= waiting->lastHour;
    std::int64_t count = 0;
    if (samples.size() < kGroup || isWaiting) {
        // What waits counts more than a block, so that what comes after it has to wait behind it.
        return EnterSamples(series, samples);
    }
    if (!m_session->blocks.CountOf(series, hour, count)) {
        return false;
    }
    if (count > kBlockToGroup * static_cast<std::int64_t>(samples.size())) {
        return EnterSamples(series, samples);
    }
    m_upkeep->LookForOldBlocks();
    return m_session->blocks.Merge(series, hour, samples);
}

bool SqliteLoggerStore::EnterSamples(std::int64_t series, std::span<const LoggerSample> samples)
{
    return std::all_of(samples.begin(), samples.end(),
                       [&](const LoggerSample& sample) { return EnterSample(series, sample); });
}

bool SqliteLoggerStore::EnterSample(std::int64_t series, const LoggerSample& sample)
{
    std::array<std::uint8_t, 8> bits = {};
    SqliteStatement& add = m_session->addSample;
    add.Bind(1, series);
    add.Bind(2, sample.time);
    BindSampleValue(add, 3, sample.value, bits);
    return add.Run();
}

bool SqliteLoggerStore::SetDataSet(const LoggerDataSet& set)
{
    if (!Ready()) {
        return false;
    }
    SqliteTransaction transaction(m_session->connection, SqliteTransaction::Kind::Write);
    std::vector<std::int64_t> series;
    if (!transaction.IsOpen() || !CheckIdentity()) {
        return Fail();
    }
    for (const ZRBasicString& variable : set.variables) {
        Handle handle{variable, 0, 0};
        if (!LookUp(handle)) {
            return Fail();
        }
        if (handle.series == 0) {
            return Fail("has no series for the variable " + Utf8From16(variable.Text()) + " of the data set " +
                        Utf8From16(set.name.Text()));
        }
        series.push_back(handle.series);
    }
    m_upkeep->LookForOldBlocks();
    return (WriteDataSet(set, series) && transaction.Commit()) || Fail();
}

bool SqliteLoggerStore::WriteDataSet(const LoggerDataSet& set, const std::vector<std::int64_t>& series)
{
    SqliteConnection& connection = m_session->connection;
    SqliteStatement write = connection.Prepare(
        "INSERT INTO data_set (name, period, retention) VALUES (?1, ?2, ?3) "
        "ON CONFLICT (name) DO UPDATE SET period = ?2, retention = ?3");
    SqliteStatement clear = connection.Prepare(
        "DELETE FROM data_set_variable WHERE data_set = (SELECT data_set FROM data_set WHERE name = ?)");
    SqliteStatement add = connection.Prepare(
        "INSERT INTO data_set_variable VALUES ((SELECT data_set FROM data_set WHERE name = ?), ?, ?)");
    const std::string name = Utf8From16(set.name.Text());
    write.Bind(1, std::string_view(name));
    write.Bind(2, std::int64_t{set.period});
    write.Bind(3, std::int64_t{set.retention});
    clear.Bind(1, std::string_view(name));
    if (!write.Run() || !clear.Run()) {
        return false;
    }
    add.Bind(1, std::string_view(name));
    for (std::size_t i = 0; i < series.size(); ++i) {
        add.Bind(2, static_cast<std::int64_t>(i));
        add.Bind(3, series[i]);
        if (!add.Run()) {
            return false;
        }
    }
    return true;
}

LoggerStore::Upkeep SqliteLoggerStore::Maintain(std::int64_t now)
{
    if (!Ready()) {
        return Upkeep::Failed;
    }
    const Upkeep upkeep = m_upkeep->Run(*m_session, now);
    if (upkeep == Upkeep::Failed) {
        Fail();
    }
    return upkeep;
}

std::vector<std::string> SqliteLoggerStore::TakeFindings()
{
    std::vector<std::string> findings = std::exchange(m_findings, {});
    for (std::string& finding : m_upkeep->TakeFindings()) {
        findings.push_back(std::move(finding));
    }
    if (m_session != nullptr) {
        for (std::string& finding : m_session->blocks.TakeFindings()) {
            findings.push_back(TextOfPath(m_path) + ": " + finding);
        }
    }
    return findings;
}

std::unique_ptr<LoggerReader> SqliteLoggerStore::OpenReader()
{
    return std::make_unique<SqliteLoggerReader>(m_path, m_options);
}

}  // namespace zr
