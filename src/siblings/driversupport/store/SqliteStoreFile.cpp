#include "siblings/driversupport/store/SqliteStoreFile.h"

#include "platform/FileReplace.h"
#include "siblings/driversupport/store/SqliteSchema.h"

#include <chrono>
#include <thread>

namespace zr {

namespace {

std::filesystem::path Beside(const std::filesystem::path& path, const char* suffix)
{
    std::filesystem::path beside = path;
    beside += suffix;
    return beside;
}

bool MakeFile(const std::filesystem::path& path, std::string& why)
{
    if (IdentityOfFile(path).has_value()) {
        return true;
    }
    const std::filesystem::path folder = path.parent_path();
    return (folder.empty() || MakePrivateFolder(folder, why)) && MakePrivateFile(path, why);
}

// Two programs that make a file at once both hold it for reading while they ask to turn it over: there SQLite says busy
// at once, without the usual wait.
bool TurnOnLog(SqliteConnection& connection)
{
    constexpr int kTries = 500;
    constexpr std::chrono::milliseconds kPause(20);
    for (int tries = 0; !connection.Run("PRAGMA journal_mode = WAL"); ++tries) {
        if (connection.Fault() != SqliteFault::Busy || tries == kTries) {
            return false;
        }
        std::this_thread::sleep_for(kPause);
        connection.ClearFault();
    }
    return true;
}

// The system gives what it makes beside a file the modes that the file has then. When it could not be written, they
// can't either, and they stay so when it can.
void ShareModes(const std::filesystem::path& path)
{
    std::error_code error;
    const std::filesystem::perms modes = std::filesystem::status(path, error).permissions();
    for (const char* const suffix : {"-wal", "-shm"}) {
        const std::filesystem::path beside = Beside(path, suffix);
        if (!error && std::filesystem::is_regular_file(std::filesystem::symlink_status(beside, error)) &&
            std::filesystem::status(beside, error).permissions() != modes) {
            std::filesystem::permissions(beside, modes, error);
        }
        error.clear();
    }
}

}  // namespace

std::unique_ptr<SqliteStoreFile> SqliteStoreFile::Open(const std::filesystem::path& path,
                                                       const SqliteStoreOptions& options, Use use, std::string& error)
{
    std::string why;
    for (int tries = 0; tries < 3; ++tries) {
        std::unique_ptr<SqliteStoreFile> file(new SqliteStoreFile);
        file->m_path = path;
        if (!MakeFile(path, why)) {
            break;
        }
        file->m_file = IdentityOfFile(path);
        if (!file->Connect(options, use, why)) {
            break;
        }
        // It may have been replaced meanwhile.
        if (file->IsCurrent()) {
            return file;
        }
        why = "is replaced all the time";
    }
    error = TextOfPath(path) + ": " + why;
    return nullptr;
}

bool SqliteStoreFile::Connect(const SqliteStoreOptions& options, Use use, std::string& why)
{
    why.clear();
    const bool isOpen = use == Use::Write ? ConnectToWrite(options, why) : ConnectToRead(options, why);
    if (!isOpen || !m_connection.ReadInteger("SELECT identity FROM store", m_identity)) {
        why = why.empty() ? m_connection.Reason() : why;
        return false;
    }
    NoteIdentities();
    return true;
}

bool SqliteStoreFile::ConnectToWrite(const SqliteStoreOptions& options, std::string& why)
{
    m_isFull = options.synchronous == SqliteStoreOptions::Synchronous::Full;
    std::int64_t pages = 0;
    ShareModes(m_path);
    return m_connection.Open(m_path, SqliteConnection::Access::ReadWrite, options.vfs) &&
           m_connection.ReadInteger("PRAGMA page_count", pages) &&
           // Both are for a new file; in one that is in use the second would be a write.
           (pages != 0 || m_connection.Run("PRAGMA page_size = 4096; PRAGMA auto_vacuum = INCREMENTAL")) &&
           TurnOnLog(m_connection) && m_connection.Run("PRAGMA journal_size_limit = 16777216") && SetWaiting(true) &&
           PrepareSqliteSchema(m_connection, why);
}

// As a writer where that is possible, since a reader beside writers keeps marks in the index file. A medium that can't
// be written has no writers either.
bool SqliteStoreFile::ConnectToRead(const SqliteStoreOptions& options, std::string& why)
{
    if (ConnectToWrite(options, why)) {
        return true;
    }
    if (!why.empty() ||
        (m_connection.Fault() != SqliteFault::ReadOnly && m_connection.Fault() != SqliteFault::CannotOpen)) {
        return false;
    }
    m_connection.Close();
    if (m_connection.Open(m_path, SqliteConnection::Access::ReadOnly, options.vfs) &&
        PrepareSqliteSchema(m_connection, why)) {
        return true;
    }
    std::error_code ignored;
    const std::filesystem::path log = Beside(m_path, "-wal");
    if (std::filesystem::exists(log, ignored) && std::filesystem::file_size(log, ignored) != 0) {
        return false;
    }
    m_connection.Close();
    m_isFrozen = true;
    return m_connection.Open(m_path, SqliteConnection::Access::Frozen, options.vfs) &&
           PrepareSqliteSchema(m_connection, why);
}

void SqliteStoreFile::NoteIdentities()
{
    m_log = IdentityOfFile(Beside(m_path, "-wal"));
    m_index = IdentityOfFile(Beside(m_path, "-shm"));
}

bool SqliteStoreFile::IsCurrent() const
{
    return m_file.has_value() && IdentityOfFile(m_path) == m_file &&
           (m_isFrozen || IdentityOfFile(Beside(m_path, "-wal")) == m_log);
}

void SqliteStoreFile::RemoveRemains() const
{
    if (IdentityOfFile(m_path) == m_file) {
        return;
    }
    std::error_code ignored;
    for (const auto& [suffix, identity] : {std::pair("-wal", m_log), std::pair("-shm", m_index)}) {
        if (identity.has_value() && IdentityOfFile(Beside(m_path, suffix)) == identity) {
            std::filesystem::remove(Beside(m_path, suffix), ignored);
        }
    }
}

std::string SqliteStoreFile::Name() const
{
    return TextOfPath(m_path);
}

bool SqliteStoreFile::SetWaiting(bool isWaiting)
{
    return m_connection.Run(isWaiting && m_isFull ? "PRAGMA synchronous = FULL" : "PRAGMA synchronous = NORMAL");
}

std::string SqliteStoreFile::Error() const
{
    return Name() + ": " + m_connection.Reason();
}

}  // namespace zr
