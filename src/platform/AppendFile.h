// A file that only grows, and whose bytes are on the disk once it says so.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace zr {

// One thread at a time. Every operation blocks on the disk.
class AppendFile {
public:
    AppendFile();
    ~AppendFile();
    AppendFile(AppendFile&& other) noexcept;
    AppendFile& operator=(AppendFile&& other) noexcept;

    // Makes a new file, mode 0600, and flushes the folder, so that a power cut doesn't lose its name. False when it is
    // there already or can't be made; reason then says why. What was open before is closed.
    bool Create(const std::filesystem::path& path, std::string& reason);
    // Writes at the end and flushes: true when all of it is on the disk. False with the file closed otherwise, cut back
    // to its old size where the system can still do that; the reader has to tell what was written in part.
    bool Append(std::string_view bytes, std::string& reason);
    void Close();

    [[nodiscard]] bool IsOpen() const { return m_holding != nullptr; }
    // In bytes; 0 when it isn't open.
    [[nodiscard]] std::uint64_t Size() const { return m_size; }

private:
    struct Holding;

    std::unique_ptr<Holding> m_holding;
    std::uint64_t m_size = 0;
};

}  // namespace zr
