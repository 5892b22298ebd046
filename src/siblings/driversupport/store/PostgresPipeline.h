// Statements on their way to a PostgreSQL server and their results on the way back, values in binary.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

struct pg_conn;
struct pg_result;

namespace zr {

// The values of a statement, $1 first.
class PostgresValues {
public:
    PostgresValues& Integer(std::int64_t value);
    PostgresValues& Double(double value);
    PostgresValues& Text(std::string_view value);  // UTF-8
    PostgresValues& Bytes(std::span<const std::uint8_t> value);

private:
    friend class PostgresPipeline;

    PostgresValues& Add(unsigned type, std::string_view bytes);
    PostgresValues& AddBits(unsigned type, std::uint64_t bits);

    std::vector<unsigned> m_types;
    std::vector<std::pair<std::size_t, int>> m_places;  // offset and length of each in m_bytes
    std::string m_bytes;
};

struct PostgresStatement {
    const char* sql = nullptr;  // must outlive the connection, which prepares it once
    PostgresValues values;
};

// What a statement gave. Rows and columns are zero-based; no range test. A value that is null or of another type than
// is asked for reads as 0 or empty.
class PostgresResult {
public:
    PostgresResult() = default;
    explicit PostgresResult(pg_result* result) : m_result(result) {}  // Owned.

    [[nodiscard]] int Rows() const;
    // How many rows it has entered, changed or deleted.
    [[nodiscard]] std::int64_t Affected() const;
    [[nodiscard]] bool IsNull(int row, int column) const;
    [[nodiscard]] std::int64_t Integer(int row, int column) const;
    [[nodiscard]] double Double(int row, int column) const;
    // Both live as long as the result.
    [[nodiscard]] std::string_view Text(int row, int column) const;
    [[nodiscard]] std::span<const std::uint8_t> Bytes(int row, int column) const;

private:
    struct Clear {
        void operator()(pg_result* result) const;
    };

    std::unique_ptr<pg_result, Clear> m_result;
};

struct PostgresLimits {
    std::chrono::milliseconds connect{3000};  // unless the connection text says connect_timeout
    std::chrono::milliseconds answer{5000};   // without a byte of an answer
    std::chrono::milliseconds whole{60000};   // of one pipeline
};

// The statements that a connection has prepared.
struct PostgresPrepared {
    std::unordered_map<const char*, std::string> names;
    int last = 0;  // numbers aren't used again
};

// One passage of statements to the server and of their results back, on a connection that doesn't block and is in
// pipeline mode. Used once. Blocks up to the limits.
class PostgresPipeline {
public:
    // Not owned; both must outlive this.
    PostgresPipeline(pg_conn* connection, const PostgresLimits& limits, PostgresPrepared& prepared);

    // True when every statement was carried out.
    bool Run(std::span<const PostgresStatement> statements, std::vector<PostgresResult>& results);

    // After a failure: whether the connection is in step, so that it may be used again.
    [[nodiscard]] bool IsWhole() const { return m_isWhole; }
    // After a failure: why, and its SQLSTATE, empty when it isn't the server that tells.
    [[nodiscard]] const std::string& Error() const { return m_error; }
    [[nodiscard]] const std::string& State() const { return m_state; }

private:
    using Time = std::chrono::steady_clock::time_point;
    // What the server answers in turn.
    struct Step {
        const char* sql = nullptr;
        bool isPrepare = false;
    };

    static Time Now() { return std::chrono::steady_clock::now(); }
    void Progressed();
    bool Send(const PostgresStatement& statement);
    bool Receive(const Step& step, std::vector<PostgresResult>& results);
    // Waits for it; null at the end of a statement. False when the connection is lost or slow.
    bool Next(pg_result*& result);
    void TakeError(const pg_result* result);

    pg_conn* m_connection;
    std::chrono::milliseconds m_answerLimit;
    PostgresPrepared& m_prepared;
    Time m_end;
    Time m_deadline;
    std::vector<Step> m_steps;
    std::vector<const char*> m_pointers;
    std::vector<int> m_lengths;
    std::vector<int> m_formats;
    bool m_isGood = true;
    bool m_isWhole = false;
    std::string m_error;
    std::string m_state;
};

}  // namespace zr
