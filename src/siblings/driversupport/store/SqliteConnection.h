// A connection to an SQLite database and its statements, as the store needs them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace zr {

// Why a call failed.
enum class SqliteFault { None, Busy, Full, ReadOnly, Damaged, NotADatabase, CannotOpen, Interrupted, Other };

enum class SqliteStep { Row, Done, Failed };

class SqliteConnection;
class SqliteTransaction;

// A prepared statement. Parameters count from 1, columns from 0. What a column gives lives until the next Step or
// Reset.
class SqliteStatement {
public:
    SqliteStatement() = default;

    void Bind(int parameter, std::int64_t value);
    void Bind(int parameter, double value);
    void BindNull(int parameter);
    // Not copied; must outlive the step.
    void Bind(int parameter, std::string_view text);
    void Bind(int parameter, std::span<const std::uint8_t> bytes);

    SqliteStep Step();
    void Reset();
    // Steps once and resets: for statements that give no rows.
    bool Run();

    [[nodiscard]] std::int64_t Integer(int column) const;
    [[nodiscard]] double Real(int column) const;
    [[nodiscard]] std::string_view Text(int column) const;
    [[nodiscard]] std::span<const std::uint8_t> Bytes(int column) const;
    [[nodiscard]] bool IsInteger(int column) const;
    [[nodiscard]] bool IsBytes(int column) const;
    [[nodiscard]] bool IsNull(int column) const;

private:
    friend class SqliteConnection;
    struct Finalise {
        void operator()(sqlite3_stmt* statement) const;
    };

    SqliteConnection* m_connection = nullptr;  // Not owned; must outlive this.
    std::unique_ptr<sqlite3_stmt, Finalise> m_statement;
};

// One thread at a time. Statements must be gone before it.
class SqliteConnection {
public:
    enum class Access {
        ReadWrite,  // of a file that exists
        ReadOnly,
        Frozen,  // of a file that nobody writes: without locks and without the files beside it
    };

    SqliteConnection() = default;
    SqliteConnection(const SqliteConnection&) = delete;
    SqliteConnection& operator=(const SqliteConnection&) = delete;
    ~SqliteConnection();

    // vfs: the name of a registered file layer; empty for the system's.
    bool Open(const std::filesystem::path& path, Access access, const std::string& vfs);
    // Lets go of the file; Open may follow.
    void Close();
    // One or more statements; rows are dropped.
    bool Run(const char* sql);
    // A statement that fails to prepare fails on every step.
    SqliteStatement Prepare(std::string_view sql);
    // The first column of the first row, 0 without one. False on failure.
    bool ReadInteger(const char* sql, std::int64_t& value);
    [[nodiscard]] bool IsInTransaction() const;
    // Asked now and then while a statement runs; true ends it. Null takes it away.
    void SetInterrupt(std::function<bool()> isInterrupted);

    // Of the last call that failed.
    [[nodiscard]] SqliteFault Fault() const { return m_fault; }
    [[nodiscard]] const std::string& Reason() const { return m_reason; }
    void ClearFault();

private:
    friend class SqliteStatement;
    friend class SqliteTransaction;
    // Notes a result code; true when it tells of no failure.
    bool Note(int result);

    sqlite3* m_handle = nullptr;
    std::function<bool()> m_isInterrupted;
    SqliteFault m_fault = SqliteFault::None;
    std::string m_reason;
};

// Rolls back unless it was committed.
class SqliteTransaction {
public:
    enum class Kind { Read, Write };
    SqliteTransaction(SqliteConnection& connection, Kind kind);
    SqliteTransaction(const SqliteTransaction&) = delete;
    SqliteTransaction& operator=(const SqliteTransaction&) = delete;
    ~SqliteTransaction();

    [[nodiscard]] bool IsOpen() const { return m_isOpen; }
    bool Commit();

private:
    SqliteConnection& m_connection;
    bool m_isOpen;
};

}  // namespace zr
