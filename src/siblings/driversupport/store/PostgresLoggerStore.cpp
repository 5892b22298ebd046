#include "siblings/driversupport/store/PostgresLoggerStore.h"

#include "siblings/driversupport/store/PostgresReader.h"
#include "siblings/driversupport/store/PostgresSchema.h"
#include "siblings/tools/Utf.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace zr {

namespace {

constexpr int kTries = 5;
constexpr std::size_t kResolvedAtOnce = 500;
// Statements that enter so many samples each; a batch is cut into these.
constexpr std::array<std::size_t, 4> kInsertSizes = {512, 64, 8, 1};

std::string InsertText(std::size_t rows)
{
    std::string text = "insert into sample (series, time, value) values ";
    for (std::size_t i = 0; i < rows; ++i) {
        text += (i > 0 ? ", ($" : "($") + std::to_string(3 * i + 1) + ", $" + std::to_string(3 * i + 2) + ", $" +
                std::to_string(3 * i + 3) + ")";
    }
    return text + " on conflict (series, time) do update set value = excluded.value";
}

const char* InsertSql(std::size_t size)
{
    static const std::array<std::string, kInsertSizes.size()> kTexts = {
        InsertText(kInsertSizes[0]), InsertText(kInsertSizes[1]), InsertText(kInsertSizes[2]),
        InsertText(kInsertSizes[3])};
    return kTexts[size].c_str();
}

bool HasNul(const std::string& text)
{
    return text.find('\0') != std::string::npos;
}

}  // namespace

PostgresLoggerStore::PostgresLoggerStore(std::string connection, const PostgresLimits& limits)
    : m_text(std::move(connection)),
      m_limits(limits),
      m_connection(m_text, PostgresRole::Writer, limits),
      m_upkeep(m_connection)
{
}

PostgresLoggerStore::~PostgresLoggerStore() = default;

std::unique_ptr<LoggerReader> PostgresLoggerStore::OpenReader()
{
    return std::make_unique<PostgresReader>(m_text, m_limits);
}

bool PostgresLoggerStore::Connect()
{
    if (m_connection.IsOpen()) {
        return m_connection.Open();
    }
    // Again at once where another program was in the way, as when both make the tables.
    for (int i = 0; i < kTries && m_connection.Open(); ++i) {
        bool isSame = false;
        if (PreparePostgresSchema(m_connection, true) == PostgresSchemaState::Present && ReadIdentity(isSame)) {
            // The server may have lost what was not committed when it was lost.
            ForgetIds();
            m_upkeep.Restart();
            m_connection.Succeeded();
            return true;
        }
    }
    return false;
}

void PostgresLoggerStore::ForgetIds()
{
    for (Series& series : m_series) {
        series.id = 0;
    }
}

// Whether the ids that are known are still those of this store: it may have been emptied or replaced.
bool PostgresLoggerStore::ReadIdentity(bool& isSame)
{
    const PostgresStatement read{"select (select value from meta where name = 'store'), (select min(id) from series)",
                                 {}};
    PostgresConnection::Results results;
    if (!m_connection.Run({&read, 1}, results)) {
        return false;
    }
    const std::int64_t store = results[0].Integer(0, 0);
    const std::int64_t first = results[0].Integer(0, 1);
    isSame = store == m_store && (m_firstSeries == 0 || first == m_firstSeries);
    m_store = store;
    m_firstSeries = first;
    return true;
}

// Does it again while other transactions are in the way.
template <typename Try>
bool PostgresLoggerStore::Repeat(Try attempt)
{
    for (int i = 0; i < kTries; ++i) {
        if (!Connect()) {
            return false;
        }
        const Outcome outcome = attempt();
        if (outcome != Outcome::Again) {
            return outcome == Outcome::Done;
        }
    }
    return false;
}

int PostgresLoggerStore::OpenSeries(const ZRBasicString& variable, std::int32_t infoCode)
{
    const std::string name = Utf16ToUtf8(variable);
    if (HasNul(name)) {
        m_connection.SetError("a variable's name holds a zero character");
        return -1;
    }
    const auto [entry, isNew] = m_numbers.try_emplace(name, static_cast<int>(m_series.size()));
    const int number = entry->second;
    if (!isNew) {
        m_connection.ClearError();
        return number;
    }
    m_series.push_back({name, infoCode, 0});
    if (!Repeat([&] { return Resolve({number}) ? Outcome::Done : Failure(); })) {
        m_series.pop_back();
        m_numbers.erase(name);
        return -1;
    }
    return number;
}

bool PostgresLoggerStore::Resolve(const std::vector<int>& numbers)
{
    std::vector<int> missing;
    std::vector<int> asked;
    std::copy_if(numbers.begin(), numbers.end(), std::back_inserter(asked),
                 [&](int number) { return m_series[static_cast<std::size_t>(number)].id == 0; });
    for (std::size_t begin = 0; begin < asked.size(); begin += kResolvedAtOnce) {
        const std::size_t end = std::min(begin + kResolvedAtOnce, asked.size());
        std::vector<PostgresStatement> statements;
        for (std::size_t i = begin; i < end; ++i) {
            statements.push_back({"select id from series where variable = $1", {}});
            statements.back().values.Text(m_series[static_cast<std::size_t>(asked[i])].variable);
        }
        PostgresConnection::Results results;
        if (!m_connection.Run(statements, results)) {
            return false;
        }
        for (std::size_t i = begin; i < end; ++i) {
            const PostgresResult& found = results[i - begin];
            m_series[static_cast<std::size_t>(asked[i])].id = found.Rows() == 1 ? found.Integer(0, 0) : 0;
            if (found.Rows() != 1) {
                missing.push_back(asked[i]);
            }
        }
    }
    return missing.empty() || Enter(missing);
}

// Enters variables that were not found. Under a lock, so that a variable gets one id whatever others do.
bool PostgresLoggerStore::Enter(const std::vector<int>& numbers)
{
    std::vector<PostgresStatement> statements = {{"begin", {}},
                                                 {"select value from meta where name = 'series' for update", {}}};
    for (const int number : numbers) {
        statements.push_back({"select id from series where variable = $1", {}});
        statements.back().values.Text(m_series[static_cast<std::size_t>(number)].variable);
    }
    PostgresConnection::Results results;
    if (!m_connection.Run(statements, results)) {
        return false;
    }
    std::int64_t last = results[1].Rows() == 1 ? results[1].Integer(0, 0) : 0;
    std::vector<std::int64_t> ids;
    statements.clear();
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const PostgresResult& found = results[i + 2];
        ids.push_back(found.Rows() == 1 ? found.Integer(0, 0) : ++last);
        if (found.Rows() != 1) {
            const Series& series = m_series[static_cast<std::size_t>(numbers[i])];
            statements.push_back({"insert into series (id, variable, info_code) values ($1, $2, $3)", {}});
            statements.back().values.Integer(last).Text(series.variable).Integer(series.infoCode);
        }
    }
    statements.push_back({"update meta set value = $1 where name = 'series'", {}});
    statements.back().values.Integer(last);
    statements.push_back({"commit", {}});
    if (!m_connection.Run(statements)) {
        return false;
    }
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        m_series[static_cast<std::size_t>(numbers[i])].id = ids[i];
    }
    return true;
}

// Begins a transaction if the ids are still good. Nothing that it then writes can go to another store's variables,
// since a table that was read can't be emptied meanwhile.
PostgresLoggerStore::Outcome PostgresLoggerStore::BeginOnSameStore()
{
    bool isSame = false;
    const PostgresStatement begin{"begin", {}};
    if (!m_connection.Run({&begin, 1}) || !ReadIdentity(isSame)) {
        return Failure();
    }
    if (isSame) {
        return Outcome::Done;
    }
    ForgetIds();
    m_connection.Fail({});  // the tables may be others as well
    return Outcome::Again;
}

bool PostgresLoggerStore::Append(std::span<const LoggerAppend> batch)
{
    m_connection.ClearError();
    for (const LoggerAppend& sample : batch) {
        if (sample.series < 0 || static_cast<std::size_t>(sample.series) >= m_series.size()) {
            m_connection.SetError("no series has the number " + std::to_string(sample.series));
            return false;
        }
    }
    if (batch.empty()) {
        return true;
    }
    return Repeat([&] { return TryAppend(batch); });
}

PostgresLoggerStore::Outcome PostgresLoggerStore::TryAppend(std::span<const LoggerAppend> batch)
{
    std::vector<int> numbers;
    for (const LoggerAppend& sample : batch) {
        if (m_series[static_cast<std::size_t>(sample.series)].id == 0) {
            numbers.push_back(sample.series);
        }
    }
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    if (!Resolve(numbers)) {
        return Failure();
    }
    if (const Outcome outcome = BeginOnSameStore(); outcome != Outcome::Done) {
        return outcome;
    }
    SortRows(batch);
    if (!m_connection.Run(Inserts())) {
        return Failure();
    }
    m_upkeep.OnAppended(std::min_element(batch.begin(), batch.end(), [](const auto& left, const auto& right) {
                            return left.time < right.time;
                        })->time);
    return Outcome::Done;
}

// In one order whatever the batch's, so that programs that enter the same samples don't wait for each other in a
// circle; of samples at one time the last one of the batch.
void PostgresLoggerStore::SortRows(std::span<const LoggerAppend> batch)
{
    m_rows.clear();
    for (const LoggerAppend& sample : batch) {
        m_rows.push_back({m_series[static_cast<std::size_t>(sample.series)].id, sample.time, sample.value});
    }
    std::stable_sort(m_rows.begin(), m_rows.end(), [](const Row& left, const Row& right) {
        return left.series != right.series ? left.series < right.series : left.time < right.time;
    });
    std::size_t kept = 0;
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        const bool isReplaced =
            i + 1 < m_rows.size() && m_rows[i].series == m_rows[i + 1].series && m_rows[i].time == m_rows[i + 1].time;
        if (!isReplaced) {
            m_rows[kept++] = m_rows[i];
        }
    }
    m_rows.resize(kept);
}

std::vector<PostgresStatement> PostgresLoggerStore::Inserts() const
{
    std::vector<PostgresStatement> statements;
    std::size_t next = 0;
    for (std::size_t size = 0; size < kInsertSizes.size(); ++size) {
        while (m_rows.size() - next >= kInsertSizes[size]) {
            statements.push_back({InsertSql(size), {}});
            PostgresValues& values = statements.back().values;
            for (const std::size_t end = next + kInsertSizes[size]; next < end; ++next) {
                values.Integer(m_rows[next].series).Integer(m_rows[next].time).Double(m_rows[next].value);
            }
        }
    }
    statements.push_back({"commit", {}});
    return statements;
}

bool PostgresLoggerStore::SetDataSet(const LoggerDataSet& set)
{
    if (HasNul(Utf16ToUtf8(set.name))) {
        m_connection.SetError("a data set's name holds a zero character");
        return false;
    }
    if (!Repeat([&] { return TrySetDataSet(set); })) {
        return false;
    }
    m_upkeep.OnDataSetChanged();
    return true;
}

PostgresLoggerStore::Outcome PostgresLoggerStore::TrySetDataSet(const LoggerDataSet& set)
{
    const std::string name = Utf16ToUtf8(set.name);
    std::vector<PostgresStatement> statements = {
        {"begin", {}},
        {"insert into data_set (name, period, retention) values ($1, $2, $3)"
         " on conflict (name) do update set period = excluded.period, retention = excluded.retention",
         {}},
        {"delete from data_set_series where data_set = $1", {}}};
    statements[1].values.Text(name).Integer(set.period).Integer(set.retention);
    statements[2].values.Text(name);
    const std::size_t first = statements.size();
    std::int64_t position = 0;
    for (const ZRBasicString& variable : set.variables) {
        statements.push_back(
            {"insert into data_set_series (data_set, position, series)"
             " select $1, $2, id from series where variable = $3",
             {}});
        statements.back().values.Text(name).Integer(position++).Text(Utf16ToUtf8(variable));
    }
    PostgresConnection::Results results;
    if (!m_connection.Run(statements, results)) {
        return Failure();
    }
    for (std::size_t i = first; i < results.size(); ++i) {
        if (results[i].Affected() != 1) {
            const PostgresStatement rollback{"rollback", {}};
            if (m_connection.Run({&rollback, 1})) {
                m_connection.SetError("the data set " + name + " names " + Utf16ToUtf8(set.variables[i - first]) +
                                      ", which isn't entered yet");
            }
            return Outcome::Failed;
        }
    }
    const PostgresStatement commit{"commit", {}};
    return m_connection.Run({&commit, 1}) ? Outcome::Done : Failure();
}

LoggerStore::Upkeep PostgresLoggerStore::Maintain(std::int64_t now)
{
    return Connect() ? m_upkeep.Slice(now) : Upkeep::Failed;
}

}  // namespace zr
