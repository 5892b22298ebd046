#include "siblings/driversupport/store/PostgresPipeline.h"

#include "platform/SocketWait.h"

#include <libpq-fe.h>
#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>

namespace zr {

namespace {

// The numbers of the server's types, which its protocol fixes.
constexpr unsigned kBytea = 17;
constexpr unsigned kBigint = 20;
constexpr unsigned kText = 25;
constexpr unsigned kDouble = 701;

std::uint64_t BitsOf(std::string_view bytes)
{
    std::uint64_t bits = 0;
    for (const char byte : bytes) {
        bits = bits << 8 | static_cast<unsigned char>(byte);
    }
    return bits;
}

}  // namespace

PostgresValues& PostgresValues::Add(unsigned type, std::string_view bytes)
{
    m_types.push_back(type);
    m_places.emplace_back(m_bytes.size(), static_cast<int>(bytes.size()));
    m_bytes.append(bytes);
    return *this;
}

PostgresValues& PostgresValues::AddBits(unsigned type, std::uint64_t bits)
{
    std::array<char, 8> bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<char>(bits >> (56 - 8 * i));
    }
    return Add(type, {bytes.data(), bytes.size()});
}

PostgresValues& PostgresValues::Integer(std::int64_t value)
{
    return AddBits(kBigint, static_cast<std::uint64_t>(value));
}

PostgresValues& PostgresValues::Double(double value)
{
    return AddBits(kDouble, std::bit_cast<std::uint64_t>(value));
}

PostgresValues& PostgresValues::Text(std::string_view value)
{
    return Add(kText, value);
}

PostgresValues& PostgresValues::Bytes(std::span<const std::uint8_t> value)
{
    const void* const data = value.data();
    return Add(kBytea, {static_cast<const char*>(data), value.size()});
}

void PostgresResult::Clear::operator()(pg_result* result) const
{
    ::PQclear(result);
}

int PostgresResult::Rows() const
{
    return ::PQntuples(m_result.get());
}

std::int64_t PostgresResult::Affected() const
{
    return std::strtoll(::PQcmdTuples(m_result.get()), nullptr, 10);
}

bool PostgresResult::IsNull(int row, int column) const
{
    return ::PQgetisnull(m_result.get(), row, column) != 0;
}

std::int64_t PostgresResult::Integer(int row, int column) const
{
    const std::string_view bytes = Text(row, column);
    const std::uint64_t bits = BitsOf(bytes);
    switch (bytes.size()) {
        case 2:
            return static_cast<std::int16_t>(bits);
        case 4:
            return static_cast<std::int32_t>(bits);
        case 8:
            return static_cast<std::int64_t>(bits);
        default:
            return 0;
    }
}

double PostgresResult::Double(int row, int column) const
{
    const std::string_view bytes = Text(row, column);
    return bytes.size() == 8 ? std::bit_cast<double>(BitsOf(bytes)) : 0.0;
}

std::string_view PostgresResult::Text(int row, int column) const
{
    const char* const value = ::PQgetvalue(m_result.get(), row, column);
    const int length = ::PQgetlength(m_result.get(), row, column);
    return value != nullptr ? std::string_view(value, static_cast<std::size_t>(length)) : std::string_view();
}

std::span<const std::uint8_t> PostgresResult::Bytes(int row, int column) const
{
    const std::string_view bytes = Text(row, column);
    const void* const data = bytes.data();
    return {static_cast<const std::uint8_t*>(data), bytes.size()};
}

PostgresPipeline::PostgresPipeline(pg_conn* connection, const PostgresLimits& limits, PostgresPrepared& prepared)
    : m_connection(connection), m_answerLimit(limits.answer), m_prepared(prepared), m_end(Now() + limits.whole)
{
    Progressed();
}

void PostgresPipeline::Progressed()
{
    m_deadline = std::min(Now() + m_answerLimit, m_end);
}

bool PostgresPipeline::Run(std::span<const PostgresStatement> statements, std::vector<PostgresResult>& results)
{
    results.clear();
    const bool isSent = std::all_of(statements.begin(), statements.end(),
                                    [&](const PostgresStatement& statement) { return Send(statement); });
    if (!isSent || ::PQpipelineSync(m_connection) != 1) {
        m_error = ::PQerrorMessage(m_connection);
        return false;
    }
    for (const Step& step : m_steps) {
        if (!Receive(step, results)) {
            return false;
        }
    }
    pg_result* sync = nullptr;
    if (!Next(sync)) {
        return false;
    }
    const PostgresResult owned(sync);
    m_isWhole = ::PQresultStatus(sync) == PGRES_PIPELINE_SYNC;
    return m_isWhole && m_isGood;
}

bool PostgresPipeline::Send(const PostgresStatement& statement)
{
    const PostgresValues& values = statement.values;
    const int count = static_cast<int>(values.m_types.size());
    auto prepared = m_prepared.names.find(statement.sql);
    if (prepared == m_prepared.names.end()) {
        prepared = m_prepared.names.emplace(statement.sql, "s" + std::to_string(++m_prepared.last)).first;
        m_steps.push_back({statement.sql, true});
        if (::PQsendPrepare(m_connection, prepared->second.c_str(), statement.sql, count, values.m_types.data()) != 1) {
            return false;
        }
    }
    m_pointers.clear();
    m_lengths.clear();
    for (const auto& [offset, length] : values.m_places) {
        m_pointers.push_back(values.m_bytes.data() + offset);
        m_lengths.push_back(length);
    }
    m_formats.assign(m_pointers.size(), 1);
    m_steps.push_back({statement.sql, false});
    return ::PQsendQueryPrepared(m_connection, prepared->second.c_str(), count, m_pointers.data(), m_lengths.data(),
                                 m_formats.data(), 1) == 1;
}

bool PostgresPipeline::Receive(const Step& step, std::vector<PostgresResult>& results)
{
    pg_result* first = nullptr;
    if (!Next(first)) {
        return false;
    }
    PostgresResult owned(first);
    const auto status = ::PQresultStatus(first);
    if (m_isGood && status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) {
        m_isGood = false;
        TakeError(first);
    }
    if (!m_isGood && step.isPrepare) {
        m_prepared.names.erase(step.sql);
    } else if (m_isGood && !step.isPrepare) {
        results.push_back(std::move(owned));
    }
    // A statement ends with nothing, after what it gave.
    while (first != nullptr) {
        if (::PQstatus(m_connection) == CONNECTION_BAD || !Next(first)) {
            return false;
        }
        const PostgresResult further(first);
    }
    return true;
}

void PostgresPipeline::TakeError(const pg_result* result)
{
    const char* const state = ::PQresultErrorField(result, PG_DIAG_SQLSTATE);
    const char* const message = ::PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY);
    m_state = state != nullptr ? state : "";
    m_error = message != nullptr ? message : ::PQresultErrorMessage(result);
}

bool PostgresPipeline::Next(pg_result*& result)
{
    for (;;) {
        const int unsent = ::PQflush(m_connection);
        if (unsent < 0) {
            break;
        }
        if (::PQisBusy(m_connection) == 0) {
            result = ::PQgetResult(m_connection);
            return true;
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_deadline - Now());
        if (left.count() <= 0 || !WaitForSocket(::PQsocket(m_connection), unsent > 0, left)) {
            m_error = "the server doesn't answer";
            m_state.clear();
            return false;
        }
        if (::PQconsumeInput(m_connection) != 1) {
            break;
        }
        Progressed();
    }
    m_error = ::PQerrorMessage(m_connection);
    m_state.clear();
    return false;
}

}  // namespace zr
