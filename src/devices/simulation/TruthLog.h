// The record of what the plant has served.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace zr {

// One variable of one reply.
struct ServedValue {
    std::string_view device;
    std::string_view variable;
    std::string value;  // the stored number, or the text
    std::string raw;    // registers as sent, four hexadecimal digits each; of a bit 0 or 1
};

// Writes a CSV file with the columns `time`, `device`, `variable`, `value`, `raw`, `fate`; see docs/plant.md. The lines
// of a reply are with the operating system before the reply leaves. Not thread-safe.
class TruthLog {
public:
    // Replaces the file, readable by its owner alone. False with a reason in error.
    bool Open(const std::filesystem::path& path, std::string& error);
    [[nodiscard]] bool IsOpen() const { return m_file != nullptr; }
    // Does nothing while not open. False if the file can't be written any more.
    bool Write(std::chrono::system_clock::time_point time, std::span<const ServedValue> values, std::string_view fate);

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    std::unique_ptr<std::FILE, Closer> m_file;
    std::string m_lines;
};

// "YYYY-MM-DDThh:mm:ss.uuuuuuZ".
std::string UtcText(std::chrono::system_clock::time_point time);

}  // namespace zr
