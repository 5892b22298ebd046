#include "hosts/kestrix/XlsxCheck.h"

#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <zlib.h>
#include <random>

namespace zr::desktop {
namespace {

constexpr std::size_t kEndRecord = 22;  // bytes
constexpr std::size_t kPiece = 65536;   // packed bytes that are read at once
constexpr std::size_t kText = 262144;   // and the room for their text

std::string Number(std::size_t number, int size)
{
    std::string bytes;
    for (int i = 0; i < size; ++i) {
        bytes += static_cast<char>(number >> (8 * i) & 0xFF);
    }
    return bytes;
}

// As a stream without a head. Not ended: more may follow at the next whole byte.
std::string Pack(std::string text, bool isEnded = true)
{
    z_stream stream{};
    EXPECT_EQ(deflateInit2(&stream, 9, Z_DEFLATED, -MAX_WBITS, 9, Z_DEFAULT_STRATEGY), Z_OK);
    std::string packed(text.size() + 1000, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(text.data());
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    EXPECT_EQ(deflate(&stream, isEnded ? Z_FINISH : Z_SYNC_FLUSH), isEnded ? Z_STREAM_END : Z_OK);
    packed.resize(packed.size() - stream.avail_out);
    deflateEnd(&stream);
    return packed;
}

std::size_t Crc(const std::string& text)
{
    return crc32(0, reinterpret_cast<const Bytef*>(text.data()), static_cast<uInt>(text.size()));
}

std::string Sheet(int rows, const std::string& row = "<row/>")
{
    std::string text = "<worksheet><sheetData>";
    for (int i = 0; i < rows; ++i) {
        text += row;
    }
    return text + "</sheetData></worksheet>";
}

const std::string kRow = "<row><c/></row>";

// A workbook with the fields that are looked at; the tests spoil them.
class Workbook {
public:
    void Add(const std::string& name, const std::string& text) { AddPacked(name, Pack(text), Crc(text), text.size()); }
    void AddPacked(const std::string& name, const std::string& packed, std::size_t crc, std::size_t size)
    {
        const std::string fields = Number(crc, 4) + Number(packed.size(), 4) + Number(size, 4) + Number(name.size(), 2);
        const std::size_t header = m_parts.size();
        m_parts += "PK\x03\x04" + Number(20, 2) + Number(0, 2) + Number(8, 2) + Number(0, 4) + fields + Number(0, 2) +
                   name + packed;
        m_entries += "PK\x01\x02" + Number(20, 2) + Number(20, 2) + Number(0, 2) + Number(8, 2) + Number(0, 4) +
                     fields + Number(0, 2) + Number(0, 2) + Number(0, 8) + Number(header, 4) + name;
        ++m_count;
    }
    [[nodiscard]] std::string Bytes() const
    {
        return m_parts + m_entries + "PK\x05\x06" + Number(0, 4) + Number(m_count, 2) + Number(m_count, 2) +
               Number(m_entries.size(), 4) + Number(m_parts.size(), 4) + Number(0, 2);
    }
    // Where the first entry begins.
    [[nodiscard]] std::size_t Entries() const { return m_parts.size(); }

private:
    std::string m_parts;
    std::string m_entries;
    std::size_t m_count = 0;
};

class XlsxCheckTest : public ::testing::Test {
protected:
    static constexpr const char* kSheet = "xl/worksheets/sheet1.xml";

    static Workbook Rows(int rows)
    {
        Workbook book;
        book.Add("[Content_Types].xml", "<Types></Types>");
        book.Add(kSheet, Sheet(rows, kRow));
        return book;
    }
    [[nodiscard]] bool Holds(const std::string& bytes, std::int64_t rows) const
    {
        return HoldsRows(folder.Write("book.xlsx", bytes), rows);
    }
    // Three rows with the sheet as its first part, and that number in the place of another of its entry.
    [[nodiscard]] bool HoldsWithEntry(std::size_t field, const std::string& number) const
    {
        Workbook book;
        book.Add(kSheet, Sheet(3, kRow));
        return Holds(book.Bytes().replace(book.Entries() + field, number.size(), number), 3);
    }

    test::TempFolder folder;
};

TEST_F(XlsxCheckTest, CountsTheRowsOfTheSheet)
{
    const std::string bytes = Rows(3).Bytes();
    EXPECT_FALSE(Holds(bytes, 2));
    EXPECT_TRUE(Holds(bytes, 3));
    EXPECT_FALSE(Holds(bytes, 4));
    EXPECT_FALSE(Holds(bytes, -1));
    EXPECT_TRUE(Holds(Rows(0).Bytes(), 0));
}

TEST_F(XlsxCheckTest, CountsRowsWhoseEndIsCutBetweenPieces)
{
    // The length of a row has no divisor in common with that of a piece, so that cuts fall everywhere.
    constexpr int kRows = 200000;
    const std::string row = "<row><c>1</c></row>";
    ASSERT_EQ(row.size() % 2, 1U);
    ASSERT_GT(row.size() * kRows, 10 * kText);
    Workbook book;
    book.Add(kSheet, Sheet(kRows, row));
    EXPECT_TRUE(Holds(book.Bytes(), kRows));
    EXPECT_FALSE(Holds(book.Bytes(), kRows - 1));
}

TEST_F(XlsxCheckTest, TakesATextThatFillsItsRoomToTheLastByte)
{
    // One packed piece becomes just the text that there is room for; blocks of nothing, five bytes each, fill it up.
    std::string text;
    std::string packed;
    for (std::size_t noise = 1000; packed.empty() || (kPiece - packed.size()) % 5 != 0; ++noise) {
        std::mt19937 random(1);
        text = "<worksheet>";
        for (std::size_t i = 0; i < noise; ++i) {
            text += static_cast<char>('a' + random() % 16);
        }
        text += std::string(kText - text.size(), ' ');
        packed = Pack(text, false);
        ASSERT_LT(packed.size(), kPiece);
    }
    while (packed.size() < kPiece) {
        packed += std::string("\x00\x00\x00\xFF\xFF", 5);
    }
    const std::string rest = kRow + "</worksheet>";
    Workbook book;
    book.AddPacked(kSheet, packed + Pack(rest), Crc(text + rest), kText + rest.size());
    EXPECT_TRUE(Holds(book.Bytes(), 1));
}

TEST_F(XlsxCheckTest, RefusesAFileCutAnywhere)
{
    const std::string bytes = Rows(3).Bytes();
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        EXPECT_FALSE(Holds(bytes.substr(0, length), 3)) << length;
    }
}

TEST_F(XlsxCheckTest, RefusesASheetCutShort)
{
    const std::string whole = Sheet(3, kRow);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        Workbook book;
        book.Add(kSheet, whole.substr(0, length));
        EXPECT_FALSE(Holds(book.Bytes(), 3)) << length;
    }
}

TEST_F(XlsxCheckTest, RefusesAWorkbookOneOfWhoseOtherPartsIsCutShort)
{
    for (const char* const text : {"", "<styleSheet><font"}) {
        Workbook book = Rows(3);
        book.Add("xl/styles.xml", text);
        EXPECT_FALSE(Holds(book.Bytes(), 3)) << text;
    }
}

TEST_F(XlsxCheckTest, TakesAPartThatEndsWithALine)
{
    Workbook book = Rows(3);
    book.Add("xl/theme/theme1.xml", "<a:theme></a:theme>\n");
    EXPECT_TRUE(Holds(book.Bytes(), 3));
}

TEST_F(XlsxCheckTest, RefusesAWorkbookWithoutASheet)
{
    Workbook book;
    EXPECT_FALSE(Holds(book.Bytes(), 0));
    book.Add("xl/styles.xml", "<styleSheet/>");
    EXPECT_FALSE(Holds(book.Bytes(), 0));
}

TEST_F(XlsxCheckTest, RefusesAPlaceWithoutAFile)
{
    EXPECT_FALSE(HoldsRows(folder / "none.xlsx", 0));
    EXPECT_FALSE(HoldsRows(folder.Path(), 0));
}

TEST_F(XlsxCheckTest, RefusesGarbage)
{
    std::mt19937 random(1);
    std::string bytes(5000, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random() & 0xFF);
    }
    EXPECT_FALSE(Holds(bytes, 3));
    // With a good end, which leads into it.
    const std::string end = "PK\x05\x06" + Number(0, 4) + Number(1, 2) + Number(1, 2) + Number(1000, 4);
    EXPECT_FALSE(Holds(bytes + end + Number(0, 4) + Number(0, 2), 3));
    // With a good directory as well, which leads into packed bytes that are none.
    Workbook book;
    book.AddPacked(kSheet, bytes, Crc(bytes), bytes.size());
    EXPECT_FALSE(Holds(book.Bytes(), 3));
}

TEST_F(XlsxCheckTest, RefusesASheetWithADamagedByte)
{
    const std::string text = Sheet(3, kRow);
    const std::string packed = Pack(text);
    for (std::size_t i = 0; i < packed.size(); ++i) {
        std::string damaged = packed;
        damaged[i] = static_cast<char>(damaged[i] ^ 0x10);
        Workbook book;
        book.AddPacked(kSheet, damaged, Crc(text), text.size());
        EXPECT_FALSE(Holds(book.Bytes(), 3)) << i;
    }
}

// Whatever byte is another one, nothing is read that isn't there and it comes to an end.
TEST_F(XlsxCheckTest, BringsEveryChangedByteToAnEnd)
{
    const std::string bytes = Rows(3).Bytes();
    int refused = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        for (const char value : {'\x00', '\x7F', '\xFF'}) {
            std::string changed = bytes;
            changed[i] = value;
            refused += Holds(changed, 3) ? 0 : 1;
        }
    }
    EXPECT_GT(refused, 0);
}

TEST_F(XlsxCheckTest, RefusesADirectoryThatIsNotInTheFile)
{
    const std::string bytes = Rows(3).Bytes();
    const std::string most(4, '\xFF');
    const std::size_t end = bytes.size() - kEndRecord;
    EXPECT_FALSE(Holds(std::string(bytes).replace(end + 12, 4, most), 3)) << "size";
    EXPECT_FALSE(Holds(std::string(bytes).replace(end + 12, 4, Number(1 << 20, 4)), 3)) << "size";
    EXPECT_FALSE(Holds(std::string(bytes).replace(end + 16, 4, most), 3)) << "place";
    EXPECT_FALSE(Holds(std::string(bytes).replace(end + 16, 4, Number(bytes.size(), 4)), 3)) << "place";
    // As where 64-bit numbers stand elsewhere.
    EXPECT_FALSE(Holds(std::string(bytes).replace(end + 8, 12, std::string(12, '\xFF')), 3));
}

TEST_F(XlsxCheckTest, RefusesAnEntryThatLeadsOutOfTheFile)
{
    const std::string most(4, '\xFF');
    EXPECT_TRUE(HoldsWithEntry(0, "PK")) << "unchanged";
    EXPECT_FALSE(HoldsWithEntry(0, "QK"));
    EXPECT_FALSE(HoldsWithEntry(10, Number(0, 2))) << "not packed";
    EXPECT_FALSE(HoldsWithEntry(16, most)) << "checksum";
    EXPECT_FALSE(HoldsWithEntry(20, most)) << "size";
    EXPECT_FALSE(HoldsWithEntry(20, Number(1, 4))) << "size";
    EXPECT_FALSE(HoldsWithEntry(20, Number(0, 4))) << "size";
    for (const std::size_t length : {28U, 30U, 32U}) {
        EXPECT_FALSE(HoldsWithEntry(length, Number(0xFFFF, 2))) << length;
    }
    EXPECT_FALSE(HoldsWithEntry(42, most)) << "place";
    EXPECT_FALSE(HoldsWithEntry(42, Number(1, 4))) << "place";
}

TEST_F(XlsxCheckTest, RefusesPartsThatShareTheirBytes)
{
    // The second entry leads to the first part.
    Workbook book;
    book.Add(kSheet, Sheet(3, kRow));
    const std::size_t first = book.Entries();
    book.Add(std::string(kSheet).replace(0, 2, "xm"), Sheet(3, kRow));
    const std::size_t entry = (book.Bytes().size() - kEndRecord - book.Entries()) / 2;
    ASSERT_EQ(book.Bytes().substr(book.Entries() + entry + 42, 4), Number(first, 4));
    EXPECT_TRUE(Holds(book.Bytes(), 3));
    EXPECT_FALSE(Holds(book.Bytes().replace(book.Entries() + entry + 42, 4, Number(0, 4)), 3));
}

}  // namespace
}  // namespace zr::desktop
