// A store file that is open, and whether its path still names it.
#pragma once

#include "platform/FileIdentity.h"
#include "siblings/driversupport/store/SqliteConnection.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace zr {

// How a store file is opened; the defaults are the ones to use.
struct SqliteStoreOptions {
    // Full: what was acknowledged survives a power cut. Normal loses acknowledged samples and is here so that tests and
    // benches can show what it loses and saves.
    enum class Synchronous { Full, Normal };
    Synchronous synchronous = Synchronous::Full;
    std::string vfs;  // the name of the file layer; empty: the system's
};

class SqliteStoreFile {
public:
    enum class Use { Write, Read };

    // Makes the file (mode 0600) and its folder (0700) if they are missing. A file that can't be written is opened for
    // reading if that is the use. Null on failure, with an error that names the file.
    static std::unique_ptr<SqliteStoreFile> Open(const std::filesystem::path& path, const SqliteStoreOptions& options,
                                                 Use use, std::string& error);

    // False when the file, or the log beside it, was removed or replaced since it was opened.
    [[nodiscard]] bool IsCurrent() const;
    // Takes the log and the index away that stand beside the path and belong to this file, which does not stand there
    // any more: they would be taken for those of the next.
    void RemoveRemains() const;

    [[nodiscard]] SqliteConnection& Connection() { return m_connection; }
    [[nodiscard]] std::string Name() const;
    // Commits from here on wait for the disk or don't; the next that waits brings those before it there as well.
    bool SetWaiting(bool isWaiting);
    // What failed last, with the file's name before it.
    [[nodiscard]] std::string Error() const;

private:
    SqliteStoreFile() = default;
    bool Connect(const SqliteStoreOptions& options, Use use, std::string& why);
    bool ConnectToWrite(const SqliteStoreOptions& options, std::string& why);
    bool ConnectToRead(const SqliteStoreOptions& options, std::string& why);
    void NoteIdentities();

    std::filesystem::path m_path;
    SqliteConnection m_connection;
    std::optional<FileIdentity> m_file;
    std::optional<FileIdentity> m_log;
    std::optional<FileIdentity> m_index;
    std::int64_t m_identity = 0;
    bool m_isFrozen = false;
    bool m_isFull = true;
};

}  // namespace zr
