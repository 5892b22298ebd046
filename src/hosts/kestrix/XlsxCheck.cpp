// The one place that knows the library for packed bytes. Of the container only what the library for workbooks writes is
// understood: APPNOTE.TXT 6.3.3, packed parts in the order of their entries, without comments and 64-bit sizes.
#include "hosts/kestrix/XlsxCheck.h"

#include <zlib.h>
#include <algorithm>
#include <fstream>
#include <optional>
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
constexpr std::uint32_t kDeflated = 8;
constexpr std::size_t kPackedPiece = 1 << 16;  // bytes
constexpr std::size_t kTextPiece = 1 << 18;

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

// Empty where there are none.
std::string ReadEntries(std::ifstream& file, std::uint64_t fileSize)
{
    const std::string end = fileSize >= kEndRecord ? Read(file, fileSize - kEndRecord, kEndRecord) : std::string();
    if (!end.starts_with("PK\x05\x06") || NumberAt(end, 12, 4) > kMostEntries) {
        return {};
    }
    return Read(file, NumberAt(end, 16, 4), NumberAt(end, 12, 4));
}

struct Part {
    std::string_view name;
    std::uint64_t place = 0;  // of its packed bytes
    std::uint64_t size = 0;   // packed
    std::uint32_t crc = 0;    // of its text
};

// Takes the first entry off the rest. Nothing where it is none, or its part isn't in the file or not packed.
std::optional<Part> TakePart(std::ifstream& file, std::string_view& entries)
{
    if (entries.size() < kEntry || !entries.starts_with("PK\x01\x02") || NumberAt(entries, 10, 2) != kDeflated) {
        return {};
    }
    const std::uint64_t header = NumberAt(entries, 42, 4);
    const std::string local = Read(file, header, kLocalHeader);
    const std::size_t name = NumberAt(entries, 28, 2);
    const std::size_t length = kEntry + name + NumberAt(entries, 30, 2) + NumberAt(entries, 32, 2);
    if (!local.starts_with("PK\x03\x04") || entries.size() < length) {
        return {};
    }
    const Part part = {entries.substr(kEntry, name),
                       header + kLocalHeader + NumberAt(local, 26, 2) + NumberAt(local, 28, 2),
                       NumberAt(entries, 20, 4), NumberAt(entries, 16, 4)};
    entries.remove_prefix(length);
    return part;
}

// What of a text that comes in pieces has to be known at its end.
class PartText {
public:
    void Add(std::string_view piece)
    {
        m_crc = static_cast<std::uint32_t>(
            crc32(m_crc, reinterpret_cast<const Bytef*>(piece.data()), static_cast<uInt>(piece.size())));
        m_text.append(piece);
        std::size_t behind = 0;
        for (std::size_t at = m_text.find(kRowEnd); at != std::string::npos; at = m_text.find(kRowEnd, behind)) {
            ++m_rows;
            behind = at + kRowEnd.size();
        }
        // An end may be cut in two.
        m_text.erase(0, std::max(behind, m_text.size() - std::min(m_text.size(), kRowEnd.size() - 1)));
        m_tail.append(piece.substr(piece.size() - std::min(piece.size(), kSheetEnd.size())));
        m_tail.erase(0, m_tail.size() - std::min(m_tail.size(), kSheetEnd.size()));
    }
    [[nodiscard]] std::uint32_t Crc() const { return m_crc; }
    [[nodiscard]] std::int64_t Rows() const { return m_rows; }
    [[nodiscard]] bool EndsWith(std::string_view end) const { return m_tail.ends_with(end); }

private:
    std::uint32_t m_crc = 0;
    std::string m_text;
    std::string m_tail;
    std::int64_t m_rows = 0;
};

class Unpacker {
public:
    Unpacker() : m_isReady(inflateInit2(&m_stream, -MAX_WBITS) == Z_OK) {}
    Unpacker(const Unpacker&) = delete;
    Unpacker& operator=(const Unpacker&) = delete;
    ~Unpacker() { inflateEnd(&m_stream); }

    // False where the bytes are no packed ones, or don't end where the packed ones do.
    bool Unpack(std::ifstream& file, const Part& part, PartText& text)
    {
        file.clear();
        file.seekg(static_cast<std::streamoff>(part.place));
        int status = m_isReady ? Z_OK : Z_MEM_ERROR;
        std::uint64_t rest = part.size;
        while (status == Z_OK && rest > 0) {
            const std::size_t length = std::min<std::uint64_t>(rest, m_in.size());
            if (!file.read(m_in.data(), static_cast<std::streamsize>(length))) {
                return false;
            }
            rest -= length;
            status = UnpackPiece(length, text);
        }
        return status == Z_STREAM_END && rest == 0 && m_stream.avail_in == 0;
    }

private:
    int UnpackPiece(std::size_t length, PartText& text)
    {
        m_stream.next_in = reinterpret_cast<Bytef*>(m_in.data());
        m_stream.avail_in = static_cast<uInt>(length);
        int status = Z_OK;
        do {
            m_stream.next_out = reinterpret_cast<Bytef*>(m_out.data());
            m_stream.avail_out = static_cast<uInt>(m_out.size());
            status = inflate(&m_stream, Z_NO_FLUSH);
            text.Add({m_out.data(), m_out.size() - m_stream.avail_out});
        } while (status == Z_OK && m_stream.avail_out == 0);
        // The text before may have filled its room to the last byte: then nothing was left to do.
        return status == Z_BUF_ERROR && m_stream.avail_in == 0 ? Z_OK : status;
    }

    z_stream m_stream{};
    std::vector<char> m_in = std::vector<char>(kPackedPiece);
    std::vector<char> m_out = std::vector<char>(kTextPiece);
    bool m_isReady;
};

// Whether the text of a part is there to its end.
bool ReadText(std::ifstream& file, const Part& part, PartText& text)
{
    return Unpacker().Unpack(file, part, text) && text.Crc() == part.crc &&
           (text.EndsWith(">") || text.EndsWith(">\n"));
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
    const std::string directory = ReadEntries(file, size);
    std::uint64_t behind = 0;  // parts that share their bytes would take the time of many files
    int sheets = 0;
    for (std::string_view entries = directory; !entries.empty();) {
        const std::optional<Part> part = TakePart(file, entries);
        PartText text;
        if (!part || part->place < behind || !ReadText(file, *part, text)) {
            return false;
        }
        behind = part->place + part->size;
        if (part->name == kSheet) {
            ++sheets;
            if (text.Rows() != rows || !text.EndsWith(kSheetEnd)) {
                return false;
            }
        }
    }
    return sheets == 1;
}

}  // namespace zr::desktop
