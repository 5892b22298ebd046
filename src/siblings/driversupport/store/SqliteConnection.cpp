#include "siblings/driversupport/store/SqliteConnection.h"

#include "platform/FileReplace.h"

#include <sqlite3.h>

namespace zr {

namespace {

// Another program packs for some 50 ms at a time, imports for longer.
constexpr int kBusyMillis = 10000;
constexpr int kInterruptSteps = 10000;

SqliteFault FaultOf(int result)
{
    switch (result & 0xFF) {
        case SQLITE_OK:
        case SQLITE_ROW:
        case SQLITE_DONE:
            return SqliteFault::None;
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return SqliteFault::Busy;
        case SQLITE_FULL:
            return SqliteFault::Full;
        case SQLITE_READONLY:
            return SqliteFault::ReadOnly;
        case SQLITE_CORRUPT:
            return SqliteFault::Damaged;
        case SQLITE_NOTADB:
            return SqliteFault::NotADatabase;
        case SQLITE_CANTOPEN:
        case SQLITE_PERM:
            return SqliteFault::CannotOpen;
        case SQLITE_INTERRUPT:
            return SqliteFault::Interrupted;
        default:
            return SqliteFault::Other;
    }
}

const char* TextOf(SqliteFault fault)
{
    switch (fault) {
        case SqliteFault::Busy:
            return "another program keeps it busy";
        case SqliteFault::Full:
            return "the disk is full";
        case SqliteFault::ReadOnly:
            return "can't be written";
        case SqliteFault::Damaged:
            return "is damaged";
        case SqliteFault::NotADatabase:
            return "is no store of logged data, or is damaged at its beginning";
        case SqliteFault::CannotOpen:
            return "can't be opened";
        case SqliteFault::Interrupted:
            return "was cancelled";
        default:
            return "fails";
    }
}

int OnProgress(void* isInterrupted)
{
    return (*static_cast<std::function<bool()>*>(isInterrupted))() ? 1 : 0;
}

// A file name for a URI: everything but what can't be mistaken is escaped.
std::string UriOf(const std::filesystem::path& path)
{
    std::string uri = "file:";
    for (const char character : TextOfPath(path)) {
        const auto byte = static_cast<unsigned char>(character);
        const bool isPlain = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                             (byte >= '0' && byte <= '9') || byte == '/' || byte == '.' || byte == '-' || byte == '_';
        constexpr char kDigits[] = "0123456789ABCDEF";
        if (isPlain) {
            uri += character;
        } else {
            uri += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
        }
    }
    return uri + "?immutable=1";
}

}  // namespace

void SqliteStatement::Finalise::operator()(sqlite3_stmt* statement) const
{
    sqlite3_finalize(statement);
}

void SqliteStatement::Bind(int parameter, std::int64_t value)
{
    sqlite3_bind_int64(m_statement.get(), parameter, value);
}

void SqliteStatement::Bind(int parameter, double value)
{
    sqlite3_bind_double(m_statement.get(), parameter, value);
}

void SqliteStatement::BindNull(int parameter)
{
    sqlite3_bind_null(m_statement.get(), parameter);
}

void SqliteStatement::Bind(int parameter, std::string_view text)
{
    sqlite3_bind_text64(m_statement.get(), parameter, text.data() != nullptr ? text.data() : "", text.size(), nullptr,
                        SQLITE_UTF8);
}

void SqliteStatement::Bind(int parameter, std::span<const std::uint8_t> bytes)
{
    sqlite3_bind_blob64(m_statement.get(), parameter, bytes.data(), bytes.size(), nullptr);
}

SqliteStep SqliteStatement::Step()
{
    if (m_statement == nullptr) {
        return SqliteStep::Failed;
    }
    const int result = sqlite3_step(m_statement.get());
    if (result == SQLITE_ROW) {
        return SqliteStep::Row;
    }
    return m_connection->Note(result) ? SqliteStep::Done : SqliteStep::Failed;
}

void SqliteStatement::Reset()
{
    sqlite3_reset(m_statement.get());
}

bool SqliteStatement::Run()
{
    const bool isDone = Step() != SqliteStep::Failed;
    Reset();
    return isDone;
}

std::int64_t SqliteStatement::Integer(int column) const
{
    return sqlite3_column_int64(m_statement.get(), column);
}

double SqliteStatement::Real(int column) const
{
    return sqlite3_column_double(m_statement.get(), column);
}

std::string_view SqliteStatement::Text(int column) const
{
    const void* const text = sqlite3_column_text(m_statement.get(), column);
    if (text == nullptr) {
        return {};
    }
    return {static_cast<const char*>(text), static_cast<std::size_t>(sqlite3_column_bytes(m_statement.get(), column))};
}

std::span<const std::uint8_t> SqliteStatement::Bytes(int column) const
{
    const void* const bytes = sqlite3_column_blob(m_statement.get(), column);
    if (bytes == nullptr) {
        return {};
    }
    return {static_cast<const std::uint8_t*>(bytes),
            static_cast<std::size_t>(sqlite3_column_bytes(m_statement.get(), column))};
}

bool SqliteStatement::IsInteger(int column) const
{
    return sqlite3_column_type(m_statement.get(), column) == SQLITE_INTEGER;
}

bool SqliteStatement::IsBytes(int column) const
{
    return sqlite3_column_type(m_statement.get(), column) == SQLITE_BLOB;
}

bool SqliteStatement::IsNull(int column) const
{
    return sqlite3_column_type(m_statement.get(), column) == SQLITE_NULL;
}

SqliteConnection::~SqliteConnection()
{
    Close();
}

void SqliteConnection::Close()
{
    sqlite3_close_v2(m_handle);
    m_handle = nullptr;
    ClearFault();
}

bool SqliteConnection::Open(const std::filesystem::path& path, Access access, const std::string& vfs)
{
    int flags = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
    flags |= access == Access::ReadWrite ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY;
    flags |= access == Access::Frozen ? SQLITE_OPEN_URI : 0;
    const std::string name = access == Access::Frozen ? UriOf(path) : TextOfPath(path);
    if (!Note(sqlite3_open_v2(name.c_str(), &m_handle, flags, vfs.empty() ? nullptr : vfs.c_str()))) {
        return false;
    }
    sqlite3_busy_timeout(m_handle, kBusyMillis);
    // The file may come from anywhere: its schema may call nothing, and a page that can't be right is refused.
    sqlite3_db_config(m_handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(m_handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(m_handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    return Run("PRAGMA cell_size_check = ON; PRAGMA mmap_size = 0; PRAGMA temp_store = MEMORY");
}

bool SqliteConnection::Run(const char* sql)
{
    return Note(sqlite3_exec(m_handle, sql, nullptr, nullptr, nullptr));
}

SqliteStatement SqliteConnection::Prepare(std::string_view sql)
{
    SqliteStatement statement;
    sqlite3_stmt* handle = nullptr;
    Note(sqlite3_prepare_v3(m_handle, sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT, &handle,
                            nullptr));
    statement.m_connection = this;
    statement.m_statement.reset(handle);
    return statement;
}

bool SqliteConnection::ReadInteger(const char* sql, std::int64_t& value)
{
    SqliteStatement statement = Prepare(sql);
    const SqliteStep step = statement.Step();
    value = step == SqliteStep::Row ? statement.Integer(0) : 0;
    return step != SqliteStep::Failed;
}

bool SqliteConnection::IsInTransaction() const
{
    return m_handle != nullptr && sqlite3_get_autocommit(m_handle) == 0;
}

void SqliteConnection::SetInterrupt(std::function<bool()> isInterrupted)
{
    m_isInterrupted = std::move(isInterrupted);
    if (m_isInterrupted) {
        sqlite3_progress_handler(m_handle, kInterruptSteps, &OnProgress, &m_isInterrupted);
    } else {
        sqlite3_progress_handler(m_handle, 0, nullptr, nullptr);
    }
}

void SqliteConnection::ClearFault()
{
    m_fault = SqliteFault::None;
    m_reason.clear();
}

bool SqliteConnection::Note(int result)
{
    const SqliteFault fault = FaultOf(result);
    if (fault == SqliteFault::None) {
        return true;
    }
    m_fault = fault;
    m_reason = TextOf(fault);
    m_reason += " (";
    m_reason += m_handle != nullptr ? sqlite3_errmsg(m_handle) : sqlite3_errstr(result);
    m_reason += ")";
    return false;
}

SqliteTransaction::SqliteTransaction(SqliteConnection& connection, Kind kind)
    : m_connection(connection), m_isOpen(connection.Run(kind == Kind::Write ? "BEGIN IMMEDIATE" : "BEGIN"))
{
}

SqliteTransaction::~SqliteTransaction()
{
    if (m_isOpen && m_connection.IsInTransaction()) {
        // What failed before is what counts.
        const SqliteFault fault = m_connection.m_fault;
        std::string reason = m_connection.m_reason;
        m_connection.Run("ROLLBACK");
        m_connection.m_fault = fault;
        m_connection.m_reason = std::move(reason);
    }
}

bool SqliteTransaction::Commit()
{
    const bool isCommitted = m_isOpen && m_connection.Run("COMMIT");
    m_isOpen = m_isOpen && !isCommitted;
    return isCommitted;
}

}  // namespace zr
