#include "devices/simulation/TruthLog.h"

#include <fmt/format.h>
#include <cerrno>
#include <cstring>

namespace zr {
namespace {

// Texts of a device may hold anything.
std::string CsvField(std::string_view text)
{
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
        return std::string(text);
    }
    std::string field = "\"";
    for (const char c : text) {
        field += c == '"' ? "\"\"" : std::string(1, c);
    }
    return field + "\"";
}

}  // namespace

std::string UtcText(std::chrono::system_clock::time_point time)
{
    using namespace std::chrono;
    const auto micros = floor<microseconds>(time);
    const auto day = floor<days>(micros);
    const year_month_day date(day);
    const hh_mm_ss<microseconds> clock(micros - day);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:06}Z", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), clock.hours().count(),
                       clock.minutes().count(), clock.seconds().count(), clock.subseconds().count());
}

bool TruthLog::Open(const std::filesystem::path& path, std::string& error)
{
    m_file.reset(std::fopen(path.string().c_str(), "wb"));
    if (m_file == nullptr) {
        error = path.string() + ": can't be written: " + std::strerror(errno);
        return false;
    }
    std::error_code ignored;  // a device or pipe has no mode to set
    std::filesystem::permissions(path, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write,
                                 ignored);
    std::fputs("time,device,variable,value,raw,fate\n", m_file.get());
    return std::fflush(m_file.get()) == 0;
}

bool TruthLog::Write(std::chrono::system_clock::time_point time, std::span<const ServedValue> values,
                     std::string_view fate)
{
    if (m_file == nullptr || values.empty()) {
        return true;
    }
    const std::string stamp = UtcText(time);
    m_lines.clear();
    for (const ServedValue& served : values) {
        fmt::format_to(std::back_inserter(m_lines), "{},{},{},{},{},{}\n", stamp, served.device, served.variable,
                       CsvField(served.value), served.raw, fate);
    }
    const bool written = std::fwrite(m_lines.data(), 1, m_lines.size(), m_file.get()) == m_lines.size();
    return std::fflush(m_file.get()) == 0 && written;
}

}  // namespace zr
