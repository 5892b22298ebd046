#include "siblings/driversupport/store/PostgresConnection.h"

#include "platform/Clock.h"
#include "platform/SocketWait.h"

#include <libpq-fe.h>
#include <algorithm>
#include <charconv>
#include <memory>

namespace zr {

namespace {

constexpr std::chrono::milliseconds kFirstPause{250};
constexpr std::chrono::milliseconds kLongestPause{5000};
// What the server may take for a statement before it gives up by itself: less than we wait, so that a statement that we
// have given up isn't still under way when it is sent again.
constexpr const char* kStatementTimeOut = "set statement_timeout = 4000";

// An address (postgresql://...) that libpq would cut at another place than was meant, so that a piece of the password
// ends up as host or port, and so in messages.
bool IsAmbiguousAddress(const std::string& text)
{
    if (!text.starts_with("postgresql://") && !text.starts_with("postgres://")) {
        return false;
    }
    const std::size_t begin = text.find("//") + 2;
    const std::size_t at = text.find('@', begin);
    if (at == std::string::npos) {
        return false;
    }
    return text.find('@', at + 1) != std::string::npos || text.find_first_of("/?#", begin) < at;
}

// One line out of libpq's several.
std::string OneLine(const std::string& message)
{
    std::string line;
    for (const char c : message) {
        const bool isBlank = c == '\n' || c == '\t' || c == '\r' || c == ' ';
        if (!isBlank) {
            line += c;
        } else if (!line.empty() && line.back() != ' ') {
            line += ' ';
        }
    }
    while (!line.empty() && line.back() == ' ') {
        line.pop_back();
    }
    return line;
}

void IgnoreNotice(void*, const char*) {}

}  // namespace

PostgresConnection::PostgresConnection(const std::string& text, PostgresRole role, const PostgresLimits& limits)
    : m_role(role), m_limits(limits)
{
    ReadText(text);
    MakeName();
}

PostgresConnection::~PostgresConnection()
{
    Close();
}

void PostgresConnection::ReadText(const std::string& text)
{
    // What libpq says of a text that it can't read quotes pieces of it, the password among them.
    constexpr const char* kUnreadable = "the connection text can't be read: name=value pairs or postgresql://...";
    if (IsAmbiguousAddress(text)) {
        m_textError = "the connection address is ambiguous: write @ / ? and # of a password as %40 %2F %3F and %23";
        return;
    }
    if (text.find('\0') != std::string::npos) {
        m_textError = kUnreadable;
        return;
    }
    char* error = nullptr;
    const std::unique_ptr<PQconninfoOption, decltype(&::PQconninfoFree)> parsed(::PQconninfoParse(text.c_str(), &error),
                                                                                &::PQconninfoFree);
    ::PQfreemem(error);
    if (parsed == nullptr) {
        m_textError = kUnreadable;
        return;
    }
    for (const PQconninfoOption* option = parsed.get(); option->keyword != nullptr; ++option) {
        if (option->val != nullptr && *option->val != '\0') {
            m_options.emplace_back(option->keyword, option->val);
        }
    }
}

std::string PostgresConnection::Option(const char* keyword) const
{
    const auto option =
        std::find_if(m_options.begin(), m_options.end(), [&](const auto& entry) { return entry.first == keyword; });
    return option != m_options.end() ? option->second : std::string();
}

void PostgresConnection::MakeName()
{
    if (!m_textError.empty()) {
        m_name = "PostgreSQL";
        return;
    }
    std::unordered_map<std::string, std::string> values;
    const std::unique_ptr<PQconninfoOption, decltype(&::PQconninfoFree)> defaults(::PQconndefaults(),
                                                                                  &::PQconninfoFree);
    for (const PQconninfoOption* option = defaults.get(); option != nullptr && option->keyword != nullptr; ++option) {
        values[option->keyword] = option->val != nullptr ? option->val : "";
    }
    for (const auto& [keyword, value] : m_options) {
        values[keyword] = value;
    }
    std::string host = values["host"].empty() ? values["hostaddr"] : values["host"];
    if (host.empty()) {
        host = values["service"].empty() ? "localhost" : "service " + values["service"];
    }
    const std::string database = values["dbname"].empty() ? values["user"] : values["dbname"];
    m_name = host + ":" + values["port"] + "/" + database;
}

// A password that the server or libpq quotes, against expectation.
std::string PostgresConnection::Cleaned(std::string message) const
{
    for (const char* const keyword : {"password", "sslpassword"}) {
        const std::string secret = Option(keyword);
        for (std::size_t at = message.find(secret); secret.size() > 3 && at != std::string::npos;
             at = message.find(secret, at + 3)) {
            message.replace(at, secret.size(), "***");
        }
    }
    return OneLine(message);
}

void PostgresConnection::SetError(const std::string& error)
{
    m_error = m_name + ": " + Cleaned(error);
}

void PostgresConnection::Close()
{
    // Doesn't wait: the connection doesn't block.
    ::PQfinish(m_connection);
    m_connection = nullptr;
    m_prepared = {};
}

void PostgresConnection::Fail(const std::string& error)
{
    Close();
    if (!error.empty()) {
        SetError(error);
        m_failure = m_error;
        m_pause = std::clamp(2 * m_pause, kFirstPause, kLongestPause);
        m_nextTry = CurrentClock().Steady() + m_pause;
    }
}

bool PostgresConnection::Open()
{
    m_isConflict = false;
    if (IsOpen()) {
        m_error.clear();
        return true;
    }
    if (!m_textError.empty()) {
        SetError(m_textError);
        return false;
    }
    if (m_pause.count() > 0 && CurrentClock().Steady() < m_nextTry) {
        m_error = m_failure;
        return false;
    }
    m_error.clear();
    std::string error;
    if (!Connect(error)) {
        Fail(!error.empty() ? error : ::PQerrorMessage(m_connection));
        return false;
    }
    return true;
}

void PostgresConnection::Succeeded()
{
    m_pause = {};
}

bool PostgresConnection::Connect(std::string& error)
{
    Options options = m_options;
    const auto addDefault = [&](const char* keyword, const char* value) {
        if (Option(keyword).empty()) {
            options.emplace_back(keyword, value);
        }
    };
    addDefault("fallback_application_name", "kestrix");
    // Of a server that has gone without a word, in seconds but for the last.
    addDefault("keepalives_idle", "5");
    addDefault("keepalives_interval", "2");
    addDefault("keepalives_count", "3");
    addDefault("tcp_user_timeout", "5000");
    options.emplace_back("client_encoding", "UTF8");  // the last of a name counts
    std::vector<const char*> keywords;
    std::vector<const char*> values;
    for (const auto& [keyword, value] : options) {
        keywords.push_back(keyword.c_str());
        values.push_back(value.c_str());
    }
    keywords.push_back(nullptr);
    values.push_back(nullptr);
    m_connection = ::PQconnectStartParams(keywords.data(), values.data(), 0);
    ::PQsetNoticeProcessor(m_connection, IgnoreNotice, nullptr);
    return FinishConnecting(error) && ::PQsetnonblocking(m_connection, 1) == 0 &&
           ::PQenterPipelineMode(m_connection) == 1 && PrepareSession(error);
}

bool PostgresConnection::FinishConnecting(std::string& error)
{
    int seconds = 0;
    const std::string given = Option("connect_timeout");
    std::from_chars(given.data(), given.data() + given.size(), seconds);
    const std::chrono::milliseconds limit =
        seconds > 0 ? std::chrono::milliseconds(std::chrono::seconds(std::min(seconds, 60))) : m_limits.connect;
    const auto deadline = std::chrono::steady_clock::now() + limit;
    if (::PQstatus(m_connection) == CONNECTION_BAD) {
        return false;
    }
    for (PostgresPollingStatusType status = PGRES_POLLING_WRITING; status != PGRES_POLLING_OK;
         status = ::PQconnectPoll(m_connection)) {
        if (status == PGRES_POLLING_FAILED) {
            return false;
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0 || !WaitForSocket(::PQsocket(m_connection), status == PGRES_POLLING_WRITING, left)) {
            error = "the server doesn't answer";
            return false;
        }
    }
    return true;
}

// True as well for an engine that speaks the protocol and doesn't know the setting: it has no need for it.
bool PostgresConnection::Set(const char* sql, std::string& error)
{
    constexpr const char* kUnknown[] = {"42704", "0A000", "42601", "22023"};
    const PostgresStatement statement{sql, {}};
    Results results;
    PostgresPipeline pipeline(m_connection, m_limits, m_prepared);
    if (pipeline.Run({&statement, 1}, results)) {
        return true;
    }
    error = pipeline.Error();
    const bool isUnknown = std::find(std::begin(kUnknown), std::end(kUnknown), pipeline.State()) != std::end(kUnknown);
    return pipeline.IsWhole() && isUnknown;
}

bool PostgresConnection::PrepareSession(std::string& error)
{
    // A commit is an acknowledgement: on the disk, whatever the server's settings say.
    return Set("set synchronous_commit = on", error) && Set(kStatementTimeOut, error) &&
           (m_role == PostgresRole::Reader || Set("set idle_in_transaction_session_timeout = 20000", error)) &&
           // All that we ask is found by a primary key. A plan that was made while a table was empty has to be good
           // when it is full.
           Set("set enable_seqscan = off", error) && Set("set enable_bitmapscan = off", error) &&
           Set("set session characteristics as transaction isolation level read committed", error);
}

bool PostgresConnection::Run(std::span<const PostgresStatement> statements)
{
    Results results;
    return Run(statements, results);
}

bool PostgresConnection::Run(std::span<const PostgresStatement> statements, Results& results)
{
    m_isConflict = false;
    if (!IsOpen()) {
        SetError("not connected");
        return false;
    }
    PostgresPipeline pipeline(m_connection, m_limits, m_prepared);
    if (pipeline.Run(statements, results)) {
        m_error.clear();
        return true;
    }
    SetError(pipeline.Error());
    std::string ignored;
    // Transactions that were in each other's way: the server chose this one to be rolled back.
    if (pipeline.IsWhole() && pipeline.State().starts_with("40") && Set("rollback", ignored)) {
        m_isConflict = true;
    } else {
        Close();
    }
    return false;
}

}  // namespace zr
