// A connection to a PostgreSQL server, made again when it is lost, with no wait without a limit.
#pragma once

#include "siblings/driversupport/store/PostgresPipeline.h"

#include <chrono>
#include <span>
#include <string>
#include <utility>
#include <vector>

struct pg_conn;

namespace zr {

// Locks of a writer that has gone without a word are given up by the server after a while.
enum class PostgresRole { Reader, Writer };

// One thread at a time. Blocks up to the limits, and as long as the system takes to resolve the server's name.
class PostgresConnection {
public:
    using Results = std::vector<PostgresResult>;  // one a statement

    // The connection text as libpq takes it: name=value pairs or an address.
    PostgresConnection(const std::string& text, PostgresRole role, const PostgresLimits& limits);
    ~PostgresConnection();

    [[nodiscard]] bool IsOpen() const { return m_connection != nullptr; }
    // Connects if it isn't open. After a failure it fails at once for a while that grows up to 5 s.
    bool Open();
    // The server is of use: pauses start anew after the next failure.
    void Succeeded();
    // As a connection that failed: the next Open() connects anew, after a pause if `error` isn't empty, which becomes
    // what Error() tells, with the server's name before it.
    void Fail(const std::string& error);

    // Runs all of it; without `begin` in it, as one transaction. On failure the connection is closed, so that the next
    // use begins anew; but when the server rolled back for the sake of another transaction (IsConflict), it stays open
    // and the same may be tried again.
    bool Run(std::span<const PostgresStatement> statements, Results& results);
    bool Run(std::span<const PostgresStatement> statements);
    [[nodiscard]] bool IsConflict() const { return m_isConflict; }

    // "host:port/database", for messages.
    [[nodiscard]] const std::string& Name() const { return m_name; }
    // Why the last call failed, with Name() before it and never a password; empty otherwise.
    [[nodiscard]] const std::string& Error() const { return m_error; }
    // Sets what Error() tells, likewise.
    void SetError(const std::string& error);
    void ClearError() { m_error.clear(); }

private:
    using Options = std::vector<std::pair<std::string, std::string>>;

    void ReadText(const std::string& text);
    void MakeName();
    [[nodiscard]] std::string Option(const char* keyword) const;
    bool Connect(std::string& error);
    bool FinishConnecting(std::string& error);
    bool PrepareSession(std::string& error);
    bool Set(const char* sql, std::string& error);
    [[nodiscard]] std::string Cleaned(std::string message) const;
    void Close();

    PostgresRole m_role;
    PostgresLimits m_limits;
    Options m_options;
    std::string m_textError;  // the connection text is of no use
    std::string m_name;
    pg_conn* m_connection = nullptr;  // owned
    PostgresPrepared m_prepared;
    std::string m_error;
    std::string m_failure;  // why it was not connected the last time
    bool m_isConflict = false;
    std::chrono::milliseconds m_pause{0};
    std::chrono::steady_clock::time_point m_nextTry{};  // on the clock in force
};

}  // namespace zr
