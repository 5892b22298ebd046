#include "siblings/driversupport/store/PostgresUpkeep.h"

#include "siblings/driversupport/store/BlockCodec.h"
#include "siblings/driversupport/store/PostgresBlocks.h"

#include <algorithm>

namespace zr {

namespace {

using Upkeep = LoggerStore::Upkeep;

constexpr std::chrono::milliseconds kSlice{50};
constexpr std::chrono::milliseconds kLongPass{20};  // for one transaction of a slice
constexpr std::size_t kSeriesAtOnce = 16;
constexpr int kMostHoursAtOnce = 96;
constexpr int kFoundAtOnce = 500;
constexpr int kRetainedAtOnce = 10;
constexpr int kCheckedAtOnce = 16;
constexpr std::size_t kMostTold = 1000;
constexpr std::int64_t kMostDays = 1000000;
constexpr std::int64_t kDayHours = 24;

constexpr const char* kLock = "select value from meta where name = 'pack' for update";

PostgresStatement Statement(const char* sql)
{
    return {sql, {}};
}

PostgresStatement Statement(const char* sql, std::int64_t first)
{
    PostgresStatement statement{sql, {}};
    statement.values.Integer(first);
    return statement;
}

PostgresStatement Statement(const char* sql, std::int64_t first, std::int64_t second)
{
    PostgresStatement statement = Statement(sql, first);
    statement.values.Integer(second);
    return statement;
}

PostgresStatement Statement(const char* sql, std::int64_t first, std::int64_t second, std::int64_t third)
{
    PostgresStatement statement = Statement(sql, first, second);
    statement.values.Integer(third);
    return statement;
}

}  // namespace

void PostgresUpkeep::Restart()
{
    m_hour.reset();
    m_waiting.clear();
}

void PostgresUpkeep::OnAppended(std::int64_t firstTime)
{
    if (m_hour && HourOf(firstTime) < *m_hour) {
        m_isPacked = false;
        m_hasLate = true;
    }
}

void PostgresUpkeep::OnDataSetChanged()
{
    m_isRetained = false;
    m_lastRetained = 0;
}

Upkeep PostgresUpkeep::Slice(std::int64_t now)
{
    const std::int64_t hour = HourOf(now);
    if (m_hour != hour) {
        m_hour = hour;
        m_isPacked = m_isRetained = m_hasFoundAll = false;
        m_lastFound = m_lastRetained = 0;
        m_waiting.clear();
    }
    const auto end = std::chrono::steady_clock::now() + kSlice;
    bool isDone = false;
    while (!isDone && std::chrono::steady_clock::now() < end) {
        isDone = m_isPacked && m_isRetained;
        const bool isGood = !m_isPacked ? Pack() : !m_isRetained ? Retain() : Check();
        if (!isGood && !m_connection.IsConflict()) {
            return Upkeep::Failed;
        }
    }
    return isDone ? Upkeep::Done : Upkeep::More;
}

bool PostgresUpkeep::FindWaiting()
{
    m_hasLate = m_hasLate && m_lastFound > 0;
    PostgresConnection::Results results;
    const PostgresStatement find = Statement(
        "select s.id, s.variable, (select min(p.time) from sample p where p.series = s.id) from series s"
        " where s.id > $1 order by s.id limit $2",
        m_lastFound, kFoundAtOnce);
    if (!m_connection.Run({&find, 1}, results)) {
        return false;
    }
    const int rows = results[0].Rows();
    for (int row = 0; row < rows; ++row) {
        m_lastFound = results[0].Integer(row, 0);
        const std::int64_t first = HourOf(results[0].Integer(row, 2));
        if (!results[0].IsNull(row, 2) && first < *m_hour) {
            m_waiting.push_back({m_lastFound, std::string(results[0].Text(row, 1)), first});
        }
    }
    m_hasFoundAll = rows < kFoundAtOnce;
    return true;
}

// Either what waits is packed one step further, or it is found that nothing does.
bool PostgresUpkeep::Pack()
{
    if (m_waiting.empty() && m_hasFoundAll) {
        m_isPacked = !m_hasLate;
        m_hasFoundAll = false;
        m_lastFound = 0;
        return true;
    }
    if (m_waiting.empty()) {
        return FindWaiting();
    }
    const auto begin = std::chrono::steady_clock::now();
    Pass pass;
    pass.waiting.assign(m_waiting.begin(),
                        m_waiting.begin() + static_cast<std::ptrdiff_t>(std::min(m_waiting.size(), kSeriesAtOnce)));
    if (!ReadBlocks(pass) || !TakeSamples(pass) || !WriteBlocks(pass)) {
        return false;
    }
    const auto taken = std::chrono::steady_clock::now() - begin;
    if (taken > kLongPass) {
        m_hoursAtOnce = std::max(m_hoursAtOnce / 2, 1);
    } else if (taken < kLongPass / 4) {
        m_hoursAtOnce = std::min(m_hoursAtOnce * 2, kMostHoursAtOnce);
    }
    return true;
}

std::int64_t PostgresUpkeep::LastHour(const Waiting& waiting) const
{
    return std::min(waiting.firstHour + m_hoursAtOnce - 1, *m_hour - 1);
}

bool PostgresUpkeep::ReadBlocks(Pass& pass)
{
    std::vector<PostgresStatement> statements = {Statement("begin"), Statement(kLock)};
    for (const Waiting& waiting : pass.waiting) {
        statements.push_back(Statement(
            "select series, hour, samples, first_time, last_time, minimum, maximum, total, first_value, last_value,"
            " flags, codec, checksum, payload from block where series = $1 and hour >= $2 and hour <= $3",
            waiting.series, waiting.firstHour, LastHour(waiting)));
    }
    if (!m_connection.Run(statements, pass.blocks)) {
        return false;
    }
    pass.blocks.erase(pass.blocks.begin(), pass.blocks.begin() + 2);
    for (std::size_t i = 0; i < pass.waiting.size(); ++i) {
        for (int row = 0; row < pass.blocks[i].Rows(); ++row) {
            const PostgresBlock block = ReadPostgresBlock(pass.blocks[i], row);
            if (const std::string fault = FaultOf(block, m_times, m_values); !fault.empty()) {
                pass.damaged.emplace(block.series, block.hour);
                Tell(block.series, block.hour,
                     PostgresBlockName(pass.waiting[i].variable, block.hour) + " " + fault +
                         "; samples that belong there wait beside it");
            }
        }
    }
    return true;
}

bool PostgresUpkeep::TakeSamples(Pass& pass)
{
    std::vector<PostgresStatement> statements;
    std::vector<std::int64_t> series;
    for (const Waiting& waiting : pass.waiting) {
        const std::int64_t last = LastHour(waiting);
        std::int64_t first = waiting.firstHour;
        for (std::int64_t hour = first; hour <= last + 1; ++hour) {
            if (hour <= last && !pass.damaged.contains({waiting.series, hour})) {
                continue;
            }
            if (first < hour) {
                series.push_back(waiting.series);
                statements.push_back(
                    Statement("delete from sample where series = $1 and time >= $2 and time <= $3"
                              " returning time, value",
                              waiting.series, FirstTimeOf(first), LastTimeOf(hour - 1)));
            }
            first = hour + 1;
        }
    }
    PostgresConnection::Results results;
    if (!m_connection.Run(statements, results)) {
        return false;
    }
    for (std::size_t i = 0; i < results.size(); ++i) {
        for (int row = 0; row < results[i].Rows(); ++row) {
            const std::int64_t time = results[i].Integer(row, 0);
            pass.samples[{series[i], HourOf(time)}].push_back({time, results[i].Double(row, 1)});
        }
    }
    return true;
}

bool PostgresUpkeep::WriteBlocks(Pass& pass)
{
    std::vector<PostgresStatement> statements = Merge(pass);
    const std::size_t blocks = statements.size();
    for (const Waiting& waiting : pass.waiting) {
        statements.push_back(Statement("select min(time) from sample where series = $1 and time > $2", waiting.series,
                                       LastTimeOf(LastHour(waiting))));
    }
    statements.push_back(Statement("commit"));
    PostgresConnection::Results results;
    if (!m_connection.Run(statements, results)) {
        return false;
    }
    std::vector<Waiting> further;
    for (std::size_t i = 0; i < pass.waiting.size(); ++i) {
        const PostgresResult& next = results[blocks + i];
        const std::int64_t first = HourOf(next.Integer(0, 0));
        if (!next.IsNull(0, 0) && first < *m_hour) {
            further.push_back({pass.waiting[i].series, pass.waiting[i].variable, first});
        }
    }
    m_waiting.erase(m_waiting.begin(), m_waiting.begin() + static_cast<std::ptrdiff_t>(pass.waiting.size()));
    m_waiting.insert(m_waiting.begin(), further.begin(), further.end());
    return true;
}

std::vector<PostgresStatement> PostgresUpkeep::Merge(Pass& pass)
{
    std::map<std::pair<std::int64_t, std::int64_t>, PostgresBlock> blocks;
    for (const PostgresResult& result : pass.blocks) {
        for (int row = 0; row < result.Rows(); ++row) {
            const PostgresBlock block = ReadPostgresBlock(result, row);
            blocks[{block.series, block.hour}] = block;
        }
    }
    std::vector<PostgresStatement> statements;
    for (auto& [place, samples] : pass.samples) {
        m_times.clear();
        m_values.clear();
        // It could be unpacked when it was looked at.
        if (const auto block = blocks.find(place); block != blocks.end()) {
            UnpackPostgresBlock(block->second, m_times, m_values);
        }
        std::sort(samples.begin(), samples.end(),
                  [](const LoggerSample& left, const LoggerSample& right) { return left.time < right.time; });
        MergeSamples(samples, m_times, m_values);
        if (m_times.size() > kMaxBlockSamples) {
            Tell(place.first, place.second,
                 "series " + std::to_string(place.first) + ": samples of an hour beyond " +
                     std::to_string(kMaxBlockSamples) + " were dropped");
            m_times.resize(kMaxBlockSamples);
            m_values.resize(kMaxBlockSamples);
        }
        statements.push_back(WritePostgresBlock(place.first, place.second, m_times, m_values));
    }
    return statements;
}

// A clock that is set years ahead may not empty the store: what retention goes by follows a day at a time, and so once
// an hour. Of a store that was never kept up the samples themselves tell what time it is, to a day.
bool PostgresUpkeep::MoveReference()
{
    const std::vector<PostgresStatement> lock = {Statement("begin"), Statement(kLock),
                                                 Statement("select value from meta where name = 'reference'")};
    PostgresConnection::Results results;
    if (!m_connection.Run(lock, results)) {
        return false;
    }
    std::int64_t before = *m_hour;
    if (results[2].Rows() == 1) {
        before = results[2].Integer(0, 0);
    } else if (!FindNewest(before)) {
        return false;
    }
    m_reference = std::min(*m_hour, before + kDayHours);
    const std::vector<PostgresStatement> write = {Statement("insert into meta (name, value) values ('reference', $1)"
                                                            " on conflict (name) do update set value = excluded.value",
                                                            m_reference),
                                                  Statement("commit")};
    return m_connection.Run(write);
}

// Leaves the hour as it is when there are no samples.
bool PostgresUpkeep::FindNewest(std::int64_t& hour)
{
    const PostgresStatement find = Statement(
        "select max(f.hour), max(f.time) from (select (select max(b.hour) from block b where b.series = s.id) as hour,"
        " (select max(p.time) from sample p where p.series = s.id) as time from series s) f");
    PostgresConnection::Results results;
    if (!m_connection.Run({&find, 1}, results)) {
        return false;
    }
    const bool hasBlock = !results[0].IsNull(0, 0);
    const bool hasSample = !results[0].IsNull(0, 1);
    const std::int64_t block = results[0].Integer(0, 0);
    const std::int64_t sample = HourOf(results[0].Integer(0, 1));
    if (hasBlock || hasSample) {
        hour = !hasSample ? block : !hasBlock ? sample : std::max(block, sample);
    }
    return true;
}

bool PostgresUpkeep::Retain()
{
    if (m_referenceMoved != m_hour) {
        if (!MoveReference()) {
            return false;
        }
        m_referenceMoved = m_hour;
    }
    PostgresConnection::Results kept;
    const PostgresStatement find = Statement(
        "select d.series, max(s.retention) from data_set_series d join data_set s on s.name = d.data_set"
        " where d.series > $1 group by d.series having min(s.retention) > 0 order by d.series limit $2",
        m_lastRetained, kRetainedAtOnce);
    if (!m_connection.Run({&find, 1}, kept)) {
        return false;
    }
    const int rows = kept[0].Rows();
    if (rows > 0 && !Drop(kept[0])) {
        return false;
    }
    m_isRetained = rows < kRetainedAtOnce;
    m_lastRetained = m_isRetained ? 0 : kept[0].Integer(rows - 1, 0);
    return true;
}

bool PostgresUpkeep::Drop(const PostgresResult& kept)
{
    std::vector<PostgresStatement> statements = {Statement("begin"), Statement(kLock)};
    for (int row = 0; row < kept.Rows(); ++row) {
        const std::int64_t series = kept.Integer(row, 0);
        const std::int64_t first = m_reference - std::min(kept.Integer(row, 1), kMostDays) * kDayHours;
        statements.push_back(Statement("delete from block where series = $1 and hour < $2", series, first));
        statements.push_back(
            Statement("delete from sample where series = $1 and time < $2", series, FirstTimeOf(first)));
    }
    statements.push_back(Statement("commit"));
    return m_connection.Run(statements);
}

bool PostgresUpkeep::Check()
{
    PostgresConnection::Results results;
    const PostgresStatement find = Statement(
        "select b.series, b.hour, b.samples, b.first_time, b.last_time, b.minimum, b.maximum, b.total, b.first_value,"
        " b.last_value, b.flags, b.codec, b.checksum, b.payload, s.variable from block b join series s on s.id = "
        "b.series"
        " where (b.series, b.hour) > ($1, $2) order by b.series, b.hour limit $3",
        m_lastChecked.first, m_lastChecked.second, kCheckedAtOnce);
    if (!m_connection.Run({&find, 1}, results)) {
        return false;
    }
    const int rows = results[0].Rows();
    for (int row = 0; row < rows; ++row) {
        const PostgresBlock block = ReadPostgresBlock(results[0], row);
        m_lastChecked = {block.series, block.hour};
        if (const std::string fault = FaultOf(block, m_times, m_values); !fault.empty()) {
            Tell(block.series, block.hour,
                 PostgresBlockName(std::string(results[0].Text(row, 14)), block.hour) + " " + fault);
        }
    }
    if (rows < kCheckedAtOnce) {
        m_lastChecked = {0, 0};
    }
    return true;
}

void PostgresUpkeep::Tell(std::int64_t series, std::int64_t hour, const std::string& finding)
{
    if (m_told.size() < kMostTold && m_told.emplace(series, hour).second) {
        m_findings.push_back(m_connection.Name() + ": " + finding);
    }
}

}  // namespace zr
