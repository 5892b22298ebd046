// The one place that knows the library for packed bytes. Of the container only what the library for workbooks writes is
// understood: APPNOTE.TXT 6.3.3, without archive comments and 64-bit sizes.
#include "hosts/kestrix/XlsxCheck.h"

#include <zlib.h>
#include <algorithm>
#include <array>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace zr::desktop {
namespace {

constexpr std::string_view kSheet = "xl/worksheets/sheet1.xml";
constexpr std::string_view kRowEnd = "</row>";
constexpr std::string_view kSheetEnd = "</worksheet>";
constexpr std::size_t kEndRecord = 22;  // bytes, as of the next two without the names behind
constexpr std::size_t kEntry = 46;
constexpr std::size_t kLocalHeader = 30;
constexpr std::size_t kMostEntries = 1 << 20;  // bytes of all entries

std::uint32_t NumberAt(std::string_view bytes, std::size_t place, std::size_t size)
{
    std::uint32_t number = 0;
    for (std::size_t i = size; i > 0; --i) {
        number = number << 8 | static_cast<unsigned char>(bytes[place + i - 1]);
    }
    return number;
}

// Empty where the file ends before.
std::string Read(std::ifstream& file, std::uint64_t place, std::size_t length)
{
    std::string bytes(length, '\0');
    file.clear();
    file.seekg(static_cast<std::streamoff>(place));
    return file.read(bytes.data(), static_cast<std::streamsize>(length)) ? bytes : std::string();
}

struct Packed {
    std::uint64_t place = 0;
    std::uint64_t size = 0;  // 0: not found
};

Packed FindSheet(std::ifstream& file, std::uint64_t fileSize)
{
    const std::string end = fileSize > kEndRecord ? Read(file, fileSize - kEndRecord, kEndRecord) : std::string();
    if (!end.starts_with("PK\x05\x06")) {
        return {};
    }
    const std::string entries =
        Read(file, NumberAt(end, 16, 4), std::min<std::size_t>(NumberAt(end, 12, 4), kMostEntries));
    for (std::size_t at = 0; at + kEntry <= entries.size();) {
        const std::size_t name = NumberAt(entries, at + 28, 2);
        if (std::string_view(entries).substr(at + kEntry, name) == kSheet) {
            const std::uint64_t header = NumberAt(entries, at + 42, 4);
            const std::string local = Read(file, header, kLocalHeader);
            return local.empty() ? Packed()
                                 : Packed{header + kLocalHeader + NumberAt(local, 26, 2) + NumberAt(local, 28, 2),
                                          NumberAt(entries, at + 20, 4)};
        }
        at += kEntry + name + NumberAt(entries, at + 30, 2) + NumberAt(entries, at + 32, 2);
    }
    return {};
}

// Counts the rows of a text that comes in pieces.
class RowCount {
public:
    void Add(std::string_view piece)
    {
        m_text.append(piece);
        std::size_t at = m_text.find(kRowEnd);
        std::size_t behind = 0;
        for (; at != std::string::npos; at = m_text.find(kRowEnd, behind)) {
            ++m_rows;
            behind = at + kRowEnd.size();
        }
        // An end may be cut in two.
        m_text.erase(0, std::max(behind, m_text.size() - std::min(m_text.size(), kSheetEnd.size() - 1)));
        m_tail.append(piece.substr(piece.size() - std::min(piece.size(), kSheetEnd.size())));
        m_tail.erase(0, m_tail.size() - std::min(m_tail.size(), kSheetEnd.size()));
    }
    [[nodiscard]] std::int64_t Rows() const { return m_rows; }
    [[nodiscard]] bool IsAtItsEnd() const { return m_tail == kSheetEnd; }

private:
    std::string m_text;
    std::string m_tail;
    std::int64_t m_rows = 0;
};

bool Unpack(std::ifstream& file, Packed packed, RowCount& count)
{
    z_stream stream{};
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) {
        return false;
    }
    std::vector<char> in(65536);
    std::vector<char> out(262144);
    file.clear();
    file.seekg(static_cast<std::streamoff>(packed.place));
    int status = Z_OK;
    while (status == Z_OK && packed.size > 0) {
        const auto length = static_cast<std::streamsize>(std::min<std::uint64_t>(packed.size, in.size()));
        if (!file.read(in.data(), length)) {
            break;
        }
        packed.size -= static_cast<std::uint64_t>(length);
        stream.next_in = reinterpret_cast<Bytef*>(in.data());
        stream.avail_in = static_cast<uInt>(length);
        do {
            stream.next_out = reinterpret_cast<Bytef*>(out.data());
            stream.avail_out = static_cast<uInt>(out.size());
            status = inflate(&stream, Z_NO_FLUSH);
            count.Add({out.data(), out.size() - stream.avail_out});
        } while (status == Z_OK && stream.avail_out == 0);
    }
    inflateEnd(&stream);
    return status == Z_STREAM_END;
}

}  // namespace

bool HoldsRows(const std::filesystem::path& workbook, std::int64_t rows)
{
    std::error_code failed;
    const std::uint64_t size = std::filesystem::file_size(workbook, failed);
    std::ifstream file(workbook, std::ios::binary);
    if (failed || !file) {
        return false;
    }
    const Packed sheet = FindSheet(file, size);
    RowCount count;
    return sheet.size > 0 && Unpack(file, sheet, count) && count.Rows() == rows && count.IsAtItsEnd();
}

}  // namespace zr::desktop
