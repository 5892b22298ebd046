#include "siblings/tools/CsvReader.h"

#include "unit/csv/TextSource.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

namespace zr {
namespace {

using test::TextSource;
using testing::ElementsAre;
using Record = std::vector<std::string>;

struct ReadFile {
    std::vector<Record> records;
    std::vector<std::size_t> lines;
    std::string error;
};

ReadFile ReadAll(const std::string& text, std::size_t piece = 65536, CsvFormat format = {',', '.'})
{
    TextSource source(text, piece);
    CsvReader reader(source);
    ReadFile read;
    if (reader.Open(format)) {
        while (reader.Next()) {
            read.records.emplace_back(reader.Cells().begin(), reader.Cells().end());
            read.lines.push_back(reader.Line());
        }
    }
    read.error = reader.Failed() ? reader.Error().Message() : "";
    return read;
}

std::vector<Record> Records(const std::string& text)
{
    const ReadFile read = ReadAll(text);
    EXPECT_EQ(read.error, "");
    return read.records;
}

TEST(CsvReaderTest, GivesTheCellsOfEveryRecord)
{
    EXPECT_THAT(Records("a,b\n1,2\n3,4\n"), ElementsAre(Record{"a", "b"}, Record{"1", "2"}, Record{"3", "4"}));
}

TEST(CsvReaderTest, TakesALastLineWithoutAnEnd)
{
    EXPECT_THAT(Records("a,b\n1,2"), ElementsAre(Record{"a", "b"}, Record{"1", "2"}));
}

TEST(CsvReaderTest, KeepsEmptyCells)
{
    EXPECT_THAT(Records(",b,\n,,\n"), ElementsAre(Record{"", "b", ""}, Record{"", "", ""}));
}

TEST(CsvReaderTest, TakesEveryLineEndAndSkipsEmptyLines)
{
    const ReadFile read = ReadAll("a\r\n\r\n\nb\n\nc\r\n");
    EXPECT_THAT(read.records, ElementsAre(Record{"a"}, Record{"b"}, Record{"c"}));
    EXPECT_THAT(read.lines, ElementsAre(1, 4, 6));
}

TEST(CsvReaderTest, SkipsAByteOrderMark)
{
    EXPECT_THAT(Records("\xEF\xBB\xBFtime,b\n"), ElementsAre(Record{"time", "b"}));
    EXPECT_THAT(Records("\xEF\xBB\xBF\"time\",b\n"), ElementsAre(Record{"time", "b"}));
}

TEST(CsvReaderTest, TakesQuotesOff)
{
    EXPECT_THAT(Records("\"a,b\",\"say \"\"hi\"\"\",\"\",\"\"\"\"\n"),
                ElementsAre(Record{"a,b", "say \"hi\"", "", "\""}));
}

TEST(CsvReaderTest, AQuotedCellHoldsLineEndsAndTheLinesAreCounted)
{
    const ReadFile read = ReadAll("\"a\nb\",c\nd,e\n");
    EXPECT_THAT(read.records, ElementsAre(Record{"a\nb", "c"}, Record{"d", "e"}));
    EXPECT_THAT(read.lines, ElementsAre(1, 3));
}

TEST(CsvReaderTest, AQuoteWithinAnUnquotedCellMeansItself)
{
    EXPECT_THAT(Records("5\"\"x,6\"\n1,2\n"), ElementsAre(Record{"5\"\"x", "6\""}, Record{"1", "2"}));
}

TEST(CsvReaderTest, WhatFollowsAClosingQuoteBelongsToTheCell)
{
    EXPECT_THAT(Records("\"a\"b\"c\",d\n"), ElementsAre(Record{"ab\"c\"", "d"}));
}

TEST(CsvReaderTest, AQuoteThatIsNotClosedIsToldByTheLineItBeginsIn)
{
    EXPECT_EQ(ReadAll("a,b\n1,\"2\n3,4\n").error, "t.csv:2: a quote that isn't closed");
    const std::string text = "a\n\"b" + std::string(3 << 20, 'x');
    EXPECT_EQ(ReadAll(text).error, "t.csv:2: a quote that isn't closed within 1048576 bytes");
}

TEST(CsvReaderTest, RefusesHugeLines)
{
    const std::string line((1u << 20) + 1, 'x');
    EXPECT_EQ(ReadAll("a\n" + line + "\n").error, "t.csv:2: a line of more than 1048576 bytes");
    EXPECT_EQ(ReadAll(line).error, "t.csv:1: a line of more than 1048576 bytes");
    const ReadFile longest = ReadAll("a\n" + line.substr(1) + "\nb\n");
    EXPECT_EQ(longest.error, "");
    EXPECT_EQ(longest.records.size(), 3u);
}

TEST(CsvReaderTest, RefusesNulBytes)
{
    const ReadFile read = ReadAll(std::string("a,b\n1,2\n3,\0\n", 13));
    EXPECT_EQ(read.records.size(), 2u);
    EXPECT_EQ(read.error, "t.csv:3: a NUL byte: this is no text");
}

TEST(CsvReaderTest, RefusesOtherEncodingsAndPackedFiles)
{
    EXPECT_EQ(ReadAll(std::string("\xFF\xFE"
                                  "a\0",
                                  4))
                  .error,
              "t.csv:1: is UTF-16 text; save it as UTF-8");
    EXPECT_THAT(ReadAll("\x1F\x8B\x08").error, testing::HasSubstr("t.csv:1: is compressed"));
}

TEST(CsvReaderTest, AnEmptyFileHasNoRecords)
{
    EXPECT_TRUE(Records("").empty());
    EXPECT_TRUE(Records("\n\r\n").empty());
    EXPECT_TRUE(Records("\xEF\xBB\xBF").empty());
}

TEST(CsvReaderTest, TellsAFailureOfTheSource)
{
    TextSource source("a,b\n1,2\n");
    source.error = "can't be read: gone";
    CsvReader reader(source);
    ASSERT_TRUE(reader.Open({',', '.'}));
    EXPECT_TRUE(reader.Next());
    EXPECT_TRUE(reader.Next());
    EXPECT_FALSE(reader.Next());
    EXPECT_EQ(reader.Error().Message(), "t.csv: can't be read: gone");
}

// How a cell would be written, quoted where it must be and sometimes where it need not.
std::string Written(const std::string& cell, bool quoted)
{
    if (!quoted && cell.find_first_of(",\"\n\r") == std::string::npos) {
        return cell;
    }
    std::string text = "\"";
    for (const char byte : cell) {
        text += byte == '"' ? "\"\"" : std::string(1, byte);
    }
    return text + '"';
}

TEST(CsvReaderTest, GivesBackAnyCellsWhateverThePiecesTheyComeIn)
{
    std::mt19937 random(7);
    const std::string letters = "ab,\"\n;1. \t";
    for (int round = 0; round < 300; ++round) {
        std::vector<Record> records;
        std::string text;
        for (std::size_t r = 0; r < 1 + random() % 20; ++r) {
            Record record;
            const std::size_t width = 2 + random() % 4;
            for (std::size_t c = 0; c < width; ++c) {
                std::string cell;
                for (std::size_t i = random() % 6; i > 0; --i) {
                    cell += letters[random() % letters.size()];
                }
                text += (c > 0 ? "," : "") + Written(cell, random() % 3 == 0);
                record.push_back(cell);
            }
            text += random() % 2 == 0 ? "\n" : "\r\n";
            records.push_back(record);
        }
        const ReadFile read = ReadAll(text, 1 + random() % 9);
        ASSERT_EQ(read.error, "") << text;
        ASSERT_EQ(read.records, records) << text;
    }
}

TEST(CsvReaderTest, TellsHowFarItIs)
{
    TextSource source("a,b\n1,2\n");
    CsvReader reader(source);
    ASSERT_TRUE(reader.Open({',', '.'}));
    reader.Next();
    EXPECT_EQ(reader.BytesTaken(), 4u);
    reader.Next();
    EXPECT_EQ(reader.BytesTaken(), 8u);
}

}  // namespace
}  // namespace zr
