#include "siblings/driversupport/store/SqliteLoggerReader.h"

#include "platform/FileReplace.h"
#include "platform/Unicode.h"
#include "siblings/driversupport/store/SqliteBlockReading.h"
#include "siblings/driversupport/store/SqliteStoreCheck.h"
#include "siblings/tools/Progress.h"

#include <algorithm>

namespace zr {

struct SqliteLoggerReader::Session {
    explicit Session(std::unique_ptr<SqliteStoreFile> openFile)
        : file(std::move(openFile)),
          connection(file->Connection()),
          source(connection),
          unpacked(connection),
          readIdentity(connection.Prepare("SELECT identity FROM store")),
          findSeries(connection.Prepare("SELECT series, class FROM series WHERE variable = ?")),
          readBefore(connection.Prepare("SELECT codec, checksum, payload, hour FROM block "
                                        "WHERE series = ? AND hour <= ? ORDER BY hour DESC")),
          readFrom(connection.Prepare("SELECT codec, checksum, payload, hour FROM block "
                                      "WHERE series = ? AND hour >= ? ORDER BY hour"))
    {
    }

    // Looks at what waits as the transaction sees it.
    bool Refresh()
    {
        const bool isRead = readIdentity.Step() == SqliteStep::Row;
        const std::int64_t now = isRead ? readIdentity.Integer(0) : 0;
        readIdentity.Reset();
        if (now != identity) {
            unpacked.Clear();
            identity = now;
        }
        return isRead && unpacked.Refresh();
    }

    std::unique_ptr<SqliteStoreFile> file;
    SqliteConnection& connection;
    SqliteBlockSource source;
    UnpackedSamples unpacked;
    SqliteStatement readIdentity;
    SqliteStatement findSeries;
    SqliteStatement readBefore;
    SqliteStatement readFrom;
    std::int64_t identity = 0;
};

namespace {

// Looks at samples in turn for the one next to a time.
class NextSample {
public:
    NextSample(std::int64_t time, bool isBefore) : m_time(time), m_isBefore(isBefore) {}

    // One that is looked at later counts more at the same time.
    void Look(std::int64_t time, double value)
    {
        const bool isOnSide = m_isBefore ? time < m_time : time >= m_time;
        const bool isNearer = !m_found || (m_isBefore ? time >= m_sample.time : time <= m_sample.time);
        if (isOnSide && isNearer) {
            m_found = true;
            m_sample = {time, value};
        }
    }
    [[nodiscard]] bool IsFound() const { return m_found; }
    [[nodiscard]] const LoggerSample& Found() const { return m_sample; }

private:
    const std::int64_t m_time;
    const bool m_isBefore;
    bool m_found = false;
    LoggerSample m_sample;
};

bool ReadDataSets(SqliteConnection& connection, std::vector<LoggerDataSet>& sets)
{
    SqliteStatement read = connection.Prepare(
        "SELECT d.data_set, d.name, d.period, d.retention, s.variable FROM data_set d "
        "LEFT JOIN data_set_variable v ON v.data_set = d.data_set LEFT JOIN series s ON s.series = v.series "
        "ORDER BY d.data_set, v.position");
    std::int64_t last = 0;
    SqliteStep step = read.Step();
    for (; step == SqliteStep::Row; step = read.Step()) {
        if (sets.empty() || read.Integer(0) != last) {
            last = read.Integer(0);
            sets.push_back({Utf16From8(read.Text(1)),
                            static_cast<std::int32_t>(read.Integer(2)),
                            static_cast<std::int32_t>(read.Integer(3)),
                            {}});
        }
        if (!read.IsNull(4)) {
            const std::u16string variable = Utf16From8(read.Text(4));
            sets.back().variables.emplace_back(variable);
        }
    }
    std::sort(sets.begin(), sets.end(),
              [](const LoggerDataSet& left, const LoggerDataSet& right) { return left.name < right.name; });
    return step == SqliteStep::Done;
}

}  // namespace

SqliteLoggerReader::SqliteLoggerReader(std::filesystem::path path, SqliteStoreOptions options)
    : m_path(std::move(path)), m_options(std::move(options))
{
}

SqliteLoggerReader::~SqliteLoggerReader() = default;

bool SqliteLoggerReader::Ready()
{
    m_error.clear();
    if (m_session != nullptr && !m_isBroken && m_session->file->IsCurrent()) {
        m_session->connection.ClearFault();
        return true;
    }
    if (m_session != nullptr) {
        m_session->file->RemoveRemains();
        m_session.reset();
    }
    std::unique_ptr<SqliteStoreFile> file =
        SqliteStoreFile::Open(m_path, m_options, SqliteStoreFile::Use::Read, m_error);
    if (file == nullptr) {
        return false;
    }
    m_isBroken = false;
    m_session = std::make_unique<Session>(std::move(file));
    return m_session->connection.Fault() == SqliteFault::None || Fail();
}

bool SqliteLoggerReader::Fail()
{
    m_error = m_session->file->Error();
    m_isBroken = m_session->connection.Fault() != SqliteFault::Busy;
    return false;
}

bool SqliteLoggerReader::FindSeries(const ZRBasicString& variable, std::int64_t& series, std::int64_t& infoCode)
{
    const std::string name = Utf8From16(variable.Text());
    SqliteStatement& find = m_session->findSeries;
    find.Bind(1, std::string_view(name));
    const SqliteStep step = find.Step();
    series = step == SqliteStep::Row ? find.Integer(0) : 0;
    infoCode = step == SqliteStep::Row ? find.Integer(1) : 0;
    find.Reset();
    return step != SqliteStep::Failed;
}

bool SqliteLoggerReader::ReadBlocks(const ZRBasicString& variable, std::int64_t from, std::int64_t to, LoggerNeed need,
                                    LoggerBlockVisitor& visitor)
{
    if (!Ready()) {
        return false;
    }
    const SqliteTransaction snapshot(m_session->connection, SqliteTransaction::Kind::Read);
    std::int64_t series = 0;
    std::int64_t infoCode = 0;
    if (!snapshot.IsOpen() || !FindSeries(variable, series, infoCode) || !m_session->Refresh()) {
        return Fail();
    }
    if (series == 0 || from >= to) {
        return true;
    }
    using Result = SqliteBlockReading::Result;
    SqliteBlockReading reading(m_session->connection, m_session->source, series, from, to, visitor);
    const Result result = reading.Run(need, m_session->unpacked.Find(series));
    if (result == Result::Failed) {
        return Fail();
    }
    if (reading.DamagedHour().has_value()) {
        m_error = TextOfPath(m_path) + ": " + Utf8From16(variable.Text()) + ", block of " +
                  TextOfHour(*reading.DamagedHour()) + ": its samples are damaged";
    }
    return result == Result::Done;
}

bool SqliteLoggerReader::LastBefore(const ZRBasicString& variable, std::int64_t time, LoggerSample& sample)
{
    return FindNext(variable, time, Side::Before, sample);
}

bool SqliteLoggerReader::FirstFrom(const ZRBasicString& variable, std::int64_t time, LoggerSample& sample)
{
    return FindNext(variable, time, Side::From, sample);
}

bool SqliteLoggerReader::FindNext(const ZRBasicString& variable, std::int64_t time, Side side, LoggerSample& sample)
{
    if (!Ready()) {
        return false;
    }
    const SqliteTransaction snapshot(m_session->connection, SqliteTransaction::Kind::Read);
    std::int64_t series = 0;
    std::int64_t infoCode = 0;
    if (!snapshot.IsOpen() || !FindSeries(variable, series, infoCode) || !m_session->Refresh()) {
        return Fail();
    }
    NextSample next(time, side == Side::Before);
    SqliteStatement& rows = side == Side::Before ? m_session->readBefore : m_session->readFrom;
    rows.Bind(1, series);
    rows.Bind(2, HourOf(time));
    SqliteStep step = rows.Step();
    // A damaged block is passed over.
    for (; step == SqliteStep::Row && !next.IsFound(); step = next.IsFound() ? step : rows.Step()) {
        std::vector<std::int64_t>& times = m_session->source.times;
        std::vector<double>& values = m_session->source.values;
        if (UnpackBlock(series, rows.Integer(3), rows.Integer(0), rows.Integer(1), rows.Bytes(2), times, values)) {
            for (std::size_t i = 0; i < times.size(); ++i) {
                next.Look(times[i], values[i]);
            }
        }
    }
    rows.Reset();
    if (step == SqliteStep::Failed) {
        return Fail();
    }
    if (const UnpackedSamples::Series* const waiting = m_session->unpacked.Find(series); waiting != nullptr) {
        for (const LoggerSample& waits : waiting->samples) {
            next.Look(waits.time, waits.value);
        }
    }
    sample = next.IsFound() ? next.Found() : sample;
    return next.IsFound();
}

std::int32_t SqliteLoggerReader::InfoCode(const ZRBasicString& variable)
{
    std::int64_t series = 0;
    std::int64_t infoCode = 0;
    if (Ready() && !FindSeries(variable, series, infoCode)) {
        Fail();
    }
    return static_cast<std::int32_t>(infoCode);
}

bool SqliteLoggerReader::DataSets(std::vector<LoggerDataSet>& sets)
{
    sets.clear();
    return Ready() && (ReadDataSets(m_session->connection, sets) || Fail());
}

bool SqliteLoggerReader::Check(LoggerCheck& check, Progress* progress)
{
    check = {};
    if (!Ready()) {
        check.findings.push_back(m_error);
        return true;
    }
    SqliteConnection& connection = m_session->connection;
    if (progress != nullptr) {
        connection.SetInterrupt([progress] { return progress->IsCancelled(); });
    }
    bool isComplete = false;
    {
        const SqliteTransaction snapshot(connection, SqliteTransaction::Kind::Read);
        isComplete = CheckSqliteStore(connection, TextOfPath(m_path), check, progress);
    }
    connection.SetInterrupt(nullptr);
    return isComplete;
}

}  // namespace zr
