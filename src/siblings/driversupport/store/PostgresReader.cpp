#include "siblings/driversupport/store/PostgresReader.h"

#include "siblings/driversupport/store/PostgresBlockStream.h"
#include "siblings/driversupport/store/PostgresSchema.h"
#include "siblings/tools/Progress.h"
#include "siblings/tools/Utf.h"

#include <algorithm>
#include <limits>
#include <map>

namespace zr {

namespace {

constexpr const char* kBegin = "begin isolation level repeatable read read only";
// The nearest before a time ($2, or $3 within the hour $2) and from it on, waiting and packed.
constexpr const char* kSampleBefore =
    "select time, value from sample where series = $1 and time < $2 order by time desc limit 1";
constexpr const char* kSampleFrom =
    "select time, value from sample where series = $1 and time >= $2 order by time limit 1";
constexpr const char* kBlockBefore =
    "select series, hour, samples, first_time, last_time, minimum, maximum, total, first_value, last_value, flags,"
    " codec, checksum, payload from block where series = $1 and hour <= $2 and first_time < $3"
    " order by hour desc limit 1";
constexpr const char* kBlockFrom =
    "select series, hour, samples, first_time, last_time, minimum, maximum, total, first_value, last_value, flags,"
    " codec, checksum, payload from block where series = $1 and hour >= $2 and last_time >= $3 order by hour limit 1";

constexpr int kCheckedAtOnce = 256;
constexpr int kSeriesAtOnce = 1000;

class BlockView final : public LoggerBlock {
public:
    explicit BlockView(PostgresBlockStream& stream) : m_stream(stream) { summary = stream.Summary(); }
    bool Samples(std::span<const std::int64_t>& times, std::span<const double>& values) override
    {
        return m_stream.Samples(times, values);
    }

private:
    PostgresBlockStream& m_stream;
};

}  // namespace

PostgresReader::PostgresReader(const std::string& connection, const PostgresLimits& limits)
    : m_connection(connection, PostgresRole::Reader, limits)
{
}

bool PostgresReader::Connect(bool& hasStore)
{
    if (!m_connection.IsOpen()) {
        m_hasStore = false;
    }
    hasStore = m_hasStore;
    if (!m_connection.Open()) {
        return false;
    }
    if (!m_hasStore) {
        const PostgresSchemaState state = PreparePostgresSchema(m_connection, false);
        if (state == PostgresSchemaState::Failed) {
            return false;
        }
        m_connection.Succeeded();
        m_hasStore = state == PostgresSchemaState::Present;
        hasStore = m_hasStore;
    }
    return true;
}

bool PostgresReader::Begin(const ZRBasicString& variable, Series& series)
{
    bool hasStore = false;
    series = {};
    if (!Connect(hasStore)) {
        return false;
    }
    const std::string name = Utf16ToUtf8(variable);
    if (!hasStore || name.find('\0') != std::string::npos) {
        return true;
    }
    std::vector<PostgresStatement> statements = {{kBegin, {}},
                                                 {"select id, info_code from series where variable = $1", {}}};
    statements[1].values.Text(name);
    PostgresConnection::Results results;
    if (!m_connection.Run(statements, results)) {
        return false;
    }
    if (results[1].Rows() == 0) {
        return End();
    }
    series = {results[1].Integer(0, 0), static_cast<std::int32_t>(results[1].Integer(0, 1))};
    return true;
}

bool PostgresReader::End()
{
    const PostgresStatement commit{"commit", {}};
    return m_connection.Run({&commit, 1});
}

bool PostgresReader::ReadBlocks(const ZRBasicString& variable, std::int64_t from, std::int64_t to, LoggerNeed need,
                                LoggerBlockVisitor& visitor)
{
    Series series;
    if (!Begin(variable, series)) {
        return false;
    }
    if (series.id == 0) {
        return true;
    }
    bool isGoing = true;
    if (from < to) {
        PostgresBlockStream stream(m_connection, series.id, HourOf(from), HourOf(to - 1), need);
        while (isGoing && stream.Next()) {
            if (stream.Summary().lastTime >= from && stream.Summary().firstTime < to) {
                BlockView view(stream);
                isGoing = visitor.OnBlock(view);
            }
        }
        if (stream.HasFailed()) {
            return false;
        }
    }
    return End() && isGoing;
}

bool PostgresReader::LastBefore(const ZRBasicString& variable, std::int64_t time, LoggerSample& sample)
{
    return Next(variable, time, Side::Before, sample);
}

bool PostgresReader::FirstFrom(const ZRBasicString& variable, std::int64_t time, LoggerSample& sample)
{
    return Next(variable, time, Side::From, sample);
}

bool PostgresReader::Next(const ZRBasicString& variable, std::int64_t time, Side side, LoggerSample& sample)
{
    Series series;
    if (!Begin(variable, series) || series.id == 0) {
        return false;
    }
    std::vector<PostgresStatement> statements = {{side == Side::Before ? kSampleBefore : kSampleFrom, {}},
                                                 {side == Side::Before ? kBlockBefore : kBlockFrom, {}},
                                                 {"commit", {}}};
    statements[0].values.Integer(series.id).Integer(time);
    statements[1].values.Integer(series.id).Integer(HourOf(time)).Integer(time);
    PostgresConnection::Results results;
    if (!m_connection.Run(statements, results)) {
        return false;
    }
    const bool hasWaiting = results[0].Rows() > 0;
    const bool hasBlock = results[1].Rows() > 0;
    LoggerSample packed;
    if (hasBlock) {
        const PostgresBlock block = ReadPostgresBlock(results[1], 0);
        if (!NextInBlock(block, time, side, packed)) {
            m_connection.SetError(PostgresBlockName(Utf16ToUtf8(variable), block.hour) + " is damaged");
            return false;
        }
        sample = packed;
    }
    if (hasWaiting) {
        const LoggerSample waiting{results[0].Integer(0, 0), results[0].Double(0, 1)};
        // At the same time the one that waits is the later one.
        const bool isNearer = side == Side::Before ? waiting.time >= packed.time : waiting.time <= packed.time;
        sample = !hasBlock || isNearer ? waiting : packed;
    }
    return hasWaiting || hasBlock;
}

bool PostgresReader::NextInBlock(const PostgresBlock& block, std::int64_t time, Side side, LoggerSample& sample)
{
    if (!UnpackPostgresBlock(block, m_times, m_values)) {
        return false;
    }
    auto place = std::lower_bound(m_times.begin(), m_times.end(), time);
    // The block told that it has one.
    if (place == (side == Side::Before ? m_times.begin() : m_times.end())) {
        return false;
    }
    place -= side == Side::Before ? 1 : 0;
    sample = {*place, m_values[static_cast<std::size_t>(place - m_times.begin())]};
    return true;
}

std::int32_t PostgresReader::InfoCode(const ZRBasicString& variable)
{
    Series series;
    return Begin(variable, series) && series.id != 0 && End() ? series.infoCode : 0;
}

bool PostgresReader::DataSets(std::vector<LoggerDataSet>& sets)
{
    sets.clear();
    bool hasStore = false;
    if (!Connect(hasStore) || !hasStore) {
        return m_connection.IsOpen();
    }
    const std::vector<PostgresStatement> statements = {
        {kBegin, {}},
        {"select name, period, retention from data_set", {}},
        {"select d.data_set, s.variable from data_set_series d join series s on s.id = d.series"
         " order by d.data_set, d.position",
         {}},
        {"commit", {}}};
    PostgresConnection::Results results;
    if (!m_connection.Run(statements, results)) {
        return false;
    }
    std::map<ZRBasicString, LoggerDataSet> found;
    for (int row = 0; row < results[1].Rows(); ++row) {
        const ZRBasicString name = Utf8ToUtf16(results[1].Text(row, 0));
        found[name] = {name,
                       static_cast<std::int32_t>(results[1].Integer(row, 1)),
                       static_cast<std::int32_t>(results[1].Integer(row, 2)),
                       {}};
    }
    for (int row = 0; row < results[2].Rows(); ++row) {
        found[Utf8ToUtf16(results[2].Text(row, 0))].variables.push_back(Utf8ToUtf16(results[2].Text(row, 1)));
    }
    for (auto& [name, set] : found) {
        sets.push_back(std::move(set));
    }
    return true;
}

bool PostgresReader::Check(LoggerCheck& check, Progress* progress)
{
    check = {};
    bool isCancelled = false;
    if (!CheckAll(check, progress, isCancelled) && !isCancelled) {
        check.findings.push_back(m_connection.Error());
    }
    return !isCancelled;
}

bool PostgresReader::CheckAll(LoggerCheck& check, Progress* progress, bool& isCancelled)
{
    bool hasStore = false;
    if (!Connect(hasStore) || !hasStore) {
        return m_connection.IsOpen();
    }
    PostgresConnection::Results counts;
    const std::vector<PostgresStatement> begin = {{kBegin, {}}, {"select count(*) from series", {}}};
    if (!m_connection.Run(begin, counts)) {
        return false;
    }
    const std::int64_t all = std::max<std::int64_t>(counts[1].Integer(0, 0), 1);
    std::int64_t last = 0;
    for (int rows = kSeriesAtOnce; rows == kSeriesAtOnce;) {
        PostgresStatement find{"select id, variable from series where id > $1 order by id limit $2", {}};
        find.values.Integer(last).Integer(kSeriesAtOnce);
        PostgresConnection::Results results;
        if (!m_connection.Run({&find, 1}, results)) {
            return false;
        }
        rows = results[0].Rows();
        for (int row = 0; row < rows; ++row) {
            last = results[0].Integer(row, 0);
            isCancelled = progress != nullptr && progress->IsCancelled();
            if (isCancelled || !CheckBlocks(last, std::string(results[0].Text(row, 1)), check)) {
                return isCancelled && End() && false;
            }
            ++check.series;
            if (progress != nullptr) {
                progress->SetPos(static_cast<int>(static_cast<std::int64_t>(check.series) * 100 / all));
            }
        }
    }
    return CountWaiting(check) && End();
}

bool PostgresReader::CheckBlocks(std::int64_t series, const std::string& variable, LoggerCheck& check)
{
    std::int64_t next = HourOf(std::numeric_limits<std::int64_t>::min());
    for (int rows = kCheckedAtOnce; rows == kCheckedAtOnce;) {
        std::vector<PostgresStatement> statements = {
            {"select series, hour, samples, first_time, last_time, minimum, maximum, total, first_value, last_value,"
             " flags, codec, checksum, payload from block where series = $1 and hour >= $2 order by hour limit $3",
             {}}};
        statements[0].values.Integer(series).Integer(next).Integer(kCheckedAtOnce);
        PostgresConnection::Results results;
        if (!m_connection.Run(statements, results)) {
            return false;
        }
        rows = results[0].Rows();
        for (int row = 0; row < rows; ++row) {
            const PostgresBlock block = ReadPostgresBlock(results[0], row);
            const std::string fault = FaultOf(block, m_times, m_values);
            if (!fault.empty()) {
                check.findings.push_back(m_connection.Name() + ": " + PostgresBlockName(variable, block.hour) + " " +
                                         fault);
            }
            ++check.blocks;
            check.packed += block.summary.count;
            next = block.hour + 1;
        }
    }
    return true;
}

// Counts the samples that wait; those of no series are found.
bool PostgresReader::CountWaiting(LoggerCheck& check)
{
    std::int64_t series = std::numeric_limits<std::int64_t>::min();
    for (;;) {
        PostgresStatement find{
            "select p.series, (select count(*) from sample c where c.series = p.series),"
            " (select count(*) from series s where s.id = p.series)"
            " from sample p where p.series > $1 order by p.series limit 1",
            {}};
        find.values.Integer(series);
        PostgresConnection::Results results;
        if (!m_connection.Run({&find, 1}, results)) {
            return false;
        }
        if (results[0].Rows() == 0) {
            return true;
        }
        series = results[0].Integer(0, 0);
        const std::int64_t count = results[0].Integer(0, 1);
        check.unpacked += static_cast<std::size_t>(count);
        if (results[0].Integer(0, 2) == 0) {
            check.findings.push_back(m_connection.Name() + ": " + std::to_string(count) +
                                     " samples belong to no variable (series " + std::to_string(series) + ")");
        }
    }
}

}  // namespace zr
