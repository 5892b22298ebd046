// One process a document: two that supervise the same one would garble the lines of both.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

namespace zr {

// Held from a successful Take() until Release() or destruction, or until the process is dead, however it died. The lock
// of a document belongs to its canonical path and lies in RuntimeFolder(). Not thread-safe.
class ProcessLock {
public:
    enum class Result {
        Taken,
        HeldByOther,  // OtherProcess() and OtherProgram() tell whose
        Failed,       // Reason() tells why
    };

    ProcessLock();
    ~ProcessLock();
    ProcessLock(const ProcessLock&) = delete;
    ProcessLock& operator=(const ProcessLock&) = delete;

    // The program's name is what a second one is told. Does not wait, save for up to 100 ms for the other's name.
    // Taking again gives up what was held before.
    Result Take(const std::filesystem::path& document, const std::string& program);
    // Likewise, by a lock file of the caller's own choice, for what is no document. Its folder is there and private.
    Result TakeAt(const std::filesystem::path& lockFile, const std::string& program);
    void Release();

    // Process number of the holder; 0 when it could not be told.
    [[nodiscard]] int OtherProcess() const { return m_otherProcess; }
    [[nodiscard]] const std::string& OtherProgram() const { return m_otherProgram; }
    [[nodiscard]] const std::string& Reason() const { return m_reason; }

private:
    struct Holding;

    // By the system's means. The text of the holder begins behind its process number.
    Result TakeFile(const std::filesystem::path& file, const std::string& holder);
    void ReadHolder(const std::string& text);

    std::unique_ptr<Holding> m_holding;
    int m_otherProcess = 0;
    std::string m_otherProgram;
    std::string m_reason;
};

// The file that stands for the document's lock, in the given folder: the same for every spelling of its path.
std::filesystem::path LockFileOf(const std::filesystem::path& document, const std::filesystem::path& folder);

}  // namespace zr
