// Where the bytes of a CSV file come from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <istream>
#include <memory>
#include <span>
#include <string>

namespace zr {

// One thread. Blocks on whatever is behind it.
class CsvSource {
public:
    virtual ~CsvSource() = default;

    // Up to so many bytes into the room; 0 at the end, and after a failure.
    virtual std::size_t Read(std::span<char> room) = 0;
    // Goes back to the first byte. False where it can't be read twice.
    virtual bool Rewind() = 0;
    // How many bytes there are; 0 where that can't be told.
    [[nodiscard]] virtual std::uint64_t Size() const = 0;
    // What the source is called in messages.
    [[nodiscard]] virtual std::string Name() const = 0;
    // Why reading failed; empty when it didn't.
    [[nodiscard]] virtual std::string Error() const = 0;
};

// A file, a pipe with a name, or standard input.
class CsvFileSource final : public CsvSource {
public:
    // "-" is standard input. False when it can't be opened, error then says why and names it.
    bool Open(const std::filesystem::path& path, std::string& error);

    std::size_t Read(std::span<char> room) override;
    bool Rewind() override;
    [[nodiscard]] std::uint64_t Size() const override { return m_size; }
    [[nodiscard]] std::string Name() const override { return m_name; }
    [[nodiscard]] std::string Error() const override { return m_error; }

private:
    std::string m_name;
    std::string m_error;
    std::ifstream m_file;
    std::istream* m_stream = nullptr;  // the file, or standard input
    std::uint64_t m_size = 0;
};

}  // namespace zr
