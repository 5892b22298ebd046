#include "SqlitePeers.h"

#include "siblings/driversupport/RecordWriter.h"

#include <sqlite3.h>
#include <string>

namespace zr::bench {

namespace {

// Ends the program on any failure.
class Database {
public:
    Database(const std::filesystem::path& file, int flags)
    {
        Require(sqlite3_open_v2(file.c_str(), &m_handle, flags | SQLITE_OPEN_NOMUTEX, nullptr) == SQLITE_OK,
                "a peer's database can't be opened");
        // Plain reads copy each page: mapped ones serve the peers best.
        Run("PRAGMA mmap_size = 2000000000");
    }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    ~Database() { sqlite3_close(m_handle); }

    void Run(const std::string& sql)
    {
        Require(sqlite3_exec(m_handle, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK, sql.c_str());
    }
    [[nodiscard]] sqlite3* Handle() const { return m_handle; }

private:
    sqlite3* m_handle = nullptr;
};

class Statement {
public:
    Statement(Database& database, const std::string& sql)
    {
        Require(sqlite3_prepare_v2(database.Handle(), sql.c_str(), -1, &m_handle, nullptr) == SQLITE_OK, sql.c_str());
    }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    ~Statement() { sqlite3_finalize(m_handle); }

    void Bind(int parameter, std::int64_t value) { sqlite3_bind_int64(m_handle, parameter, value); }
    void Bind(int parameter, double value) { sqlite3_bind_double(m_handle, parameter, value); }
    // True for a row, false at the end.
    bool Step()
    {
        const int result = sqlite3_step(m_handle);
        Require(result == SQLITE_ROW || result == SQLITE_DONE, "a peer's statement fails");
        return result == SQLITE_ROW;
    }
    void Reset() { sqlite3_reset(m_handle); }
    [[nodiscard]] std::int64_t Integer(int column) const { return sqlite3_column_int64(m_handle, column); }
    [[nodiscard]] double Real(int column) const { return sqlite3_column_double(m_handle, column); }

private:
    sqlite3_stmt* m_handle = nullptr;
};

constexpr int kWrite = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;

void BindYear(Statement& statement, int parameter)
{
    statement.Bind(parameter, DemoYear::kFirstSecond * DemoYear::kMicros);
    statement.Bind(parameter + 1, (DemoYear::kFirstSecond + 365 * std::int64_t{86400}) * DemoYear::kMicros);
}

LoggedValue Logged(double value)
{
    return {1, value};
}

void WriteTimes(RecordArena& arena, const RecordChunk& chunk)
{
    const TimeZone utc;
    RecordWriter(arena, utc).WriteTimes(chunk);
}

}  // namespace

void RowASample::Write(const std::filesystem::path& file, const DemoYear& year)
{
    Database database(file, kWrite);
    database.Run(
        "CREATE TABLE sample(series INTEGER, time INTEGER, value REAL, PRIMARY KEY(series, time)) WITHOUT ROWID; "
        "BEGIN");
    {
        Statement insert(database, "INSERT INTO sample VALUES(?, ?, ?)");
        for (std::size_t v = 0; v < DemoYear::kVariables; ++v) {
            insert.Bind(1, static_cast<std::int64_t>(v));
            for (std::size_t r = 0; r < year.times.size(); ++r) {
                insert.Bind(2, year.times[r]);
                insert.Bind(3, year.values[v][r]);
                insert.Step();
                insert.Reset();
            }
        }
    }
    database.Run("COMMIT");
}

RecordArena RowASample::Load(const std::filesystem::path& file)
{
    Database database(file, SQLITE_OPEN_READONLY);
    Statement select(database,
                     "SELECT time, value FROM sample WHERE series = ? AND time >= ? AND time < ? ORDER BY time");
    BindYear(select, 2);
    // The first variable gives the times, all others have the same.
    std::vector<std::int64_t> times;
    std::vector<double> values;
    select.Bind(1, std::int64_t{0});
    while (select.Step()) {
        times.push_back(select.Integer(0));
        values.push_back(select.Real(1));
    }
    RecordArena arena(DemoYear::kVariables);
    const RecordChunk chunk = arena.Append(times.size());
    for (std::size_t r = 0; r < times.size(); ++r) {
        chunk.times[r] = times[r];
        chunk.values[r * DemoYear::kVariables] = Logged(values[r]);
    }
    for (std::size_t v = 1; v < DemoYear::kVariables; ++v) {
        select.Reset();
        select.Bind(1, static_cast<std::int64_t>(v));
        std::size_t r = 0;
        for (; r < chunk.size && select.Step(); ++r) {
            Require(select.Integer(0) == chunk.times[r], "a peer's times differ");
            chunk.values[r * DemoYear::kVariables + v] = Logged(select.Real(1));
        }
        Require(r == chunk.size, "a peer's samples are missing");
    }
    WriteTimes(arena, chunk);
    return arena;
}

void RowARecord::Write(const std::filesystem::path& file, const DemoYear& year)
{
    Database database(file, kWrite);
    std::string columns;
    std::string places;
    for (std::size_t v = 0; v < DemoYear::kVariables; ++v) {
        columns += ", v" + std::to_string(v) + " REAL";
        places += ", ?";
    }
    database.Run("CREATE TABLE record(time INTEGER PRIMARY KEY" + columns + "); BEGIN");
    {
        Statement insert(database, "INSERT INTO record VALUES(?" + places + ")");
        for (std::size_t r = 0; r < year.times.size(); ++r) {
            insert.Bind(1, year.times[r]);
            for (std::size_t v = 0; v < DemoYear::kVariables; ++v) {
                insert.Bind(static_cast<int>(v) + 2, year.values[v][r]);
            }
            insert.Step();
            insert.Reset();
        }
    }
    database.Run("COMMIT");
}

RecordArena RowARecord::Load(const std::filesystem::path& file)
{
    constexpr std::size_t kChunk = 16384;
    Database database(file, SQLITE_OPEN_READONLY);
    Statement select(database, "SELECT * FROM record WHERE time >= ? AND time < ? ORDER BY time");
    BindYear(select, 1);
    RecordArena arena(DemoYear::kVariables);
    std::vector<std::int64_t> times;
    std::vector<LoggedValue> values;
    const auto append = [&] {
        const RecordChunk chunk = arena.Append(times.size());
        std::copy(times.begin(), times.end(), chunk.times);
        std::copy(values.begin(), values.end(), chunk.values);
        WriteTimes(arena, chunk);
        times.clear();
        values.clear();
    };
    while (select.Step()) {
        times.push_back(select.Integer(0));
        for (std::size_t v = 0; v < DemoYear::kVariables; ++v) {
            values.push_back(Logged(select.Real(static_cast<int>(v) + 1)));
        }
        if (times.size() == kChunk) {
            append();
        }
    }
    append();
    return arena;
}

}  // namespace zr::bench
