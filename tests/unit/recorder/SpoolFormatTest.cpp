#include "siblings/driversupport/recorder/SpoolFormat.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace {

using zr::RecordBatch;
using zr::RecordNames;

std::string Hex(std::string_view bytes)
{
    std::string text;
    for (const char byte : bytes) {
        constexpr const char* kDigits = "0123456789ABCDEF";
        const auto number = static_cast<unsigned char>(byte);
        text += {kDigits[number / 16], kDigits[number % 16], ' '};
    }
    return text.substr(0, text.empty() ? 0 : text.size() - 1);
}

TEST(SpoolFormat, TheWorkedExampleHolds)
{
    RecordNames names;
    const RecordBatch batch{1700000000000000, names.DataSet(u"mains"), false, {{names.Variable(u"M.U", 1), 230.5}}};
    zr::SpoolWriter writer(names);
    std::string bytes;
    ASSERT_TRUE(writer.Encode(std::span(&batch, 1), 7, bytes));
    EXPECT_EQ(Hex(bytes),
              "5A 52 53 50 4F 4F 4C 31 "
              "5A 52 72 63 0C 00 00 00 3F 9C D6 62 02 00 00 00 00 05 00 6D 61 69 6E 73 "
              "5A 52 72 63 0E 00 00 00 E5 E0 A6 DB 01 00 00 00 00 01 00 00 00 03 00 4D 2E 55 "
              "5A 52 72 63 25 00 00 00 7D ED 74 A1 03 07 00 00 00 00 00 00 00 00 40 1E 18 24 0A 06 00 "
              "00 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00 00 D0 6C 40");
}

TEST(SpoolFormat, ANameIsWrittenOnceAFile)
{
    RecordNames names;
    const RecordBatch batch{5, names.DataSet(u"mains"), false, {{names.Variable(u"M.U", 1), 230.5}}};
    zr::SpoolWriter writer(names);
    std::string bytes;
    ASSERT_TRUE(writer.Encode(std::span(&batch, 1), 0, bytes));
    const std::string first = bytes;
    ASSERT_TRUE(writer.Encode(std::span(&batch, 1), 1, bytes));
    EXPECT_EQ(bytes.size(), 12u + 25 + 12);
    const std::string file = first + bytes;
    RecordNames others;
    zr::SpoolReader reader(file, others);
    RecordBatch read;
    std::uint64_t sequence = 9;
    EXPECT_TRUE(reader.Next(read, sequence));
    EXPECT_EQ(read, batch);
    EXPECT_EQ(sequence, 0u);
    EXPECT_TRUE(reader.Next(read, sequence));
    EXPECT_EQ(sequence, 1u);
    EXPECT_FALSE(reader.Next(read, sequence));
    EXPECT_FALSE(reader.Next(read, sequence));
    EXPECT_EQ(reader.End(), 2u);
    EXPECT_EQ(reader.Skipped(), 0u);
}

TEST(SpoolFormat, BytesFullOfMarksTakeNoTimeWithoutEnd)
{
    // Each mark claims most of a mebibyte, and none has the right sum.
    std::string bytes(zr::kSpoolHead);
    while (bytes.size() < (2u << 20)) {
        bytes += std::string("ZRrc\0\0\x0F\0....", 12);
    }
    RecordNames names;
    zr::SpoolReader reader(bytes, names);
    RecordBatch batch;
    std::uint64_t sequence = 0;
    EXPECT_FALSE(reader.Next(batch, sequence));
}

TEST(SpoolFormat, AnyBytesAreReadWithoutHarm)
{
    std::mt19937 random(5);
    RecordNames names;
    std::vector<RecordBatch> batches;
    for (int i = 0; i < 6; ++i) {
        batches.push_back({i, names.DataSet(u"mains"), false, {{names.Variable(u"M.U", 1), 1.0}}});
    }
    zr::SpoolWriter writer(names);
    std::string bytes;
    ASSERT_TRUE(writer.Encode(batches, 0, bytes));
    for (int round = 0; round < 3000; ++round) {
        std::string damaged = bytes;
        for (int i = 0; i < 4; ++i) {
            damaged[random() % damaged.size()] = static_cast<char>(random());
        }
        RecordNames others;
        zr::SpoolReader reader(damaged, others);
        RecordBatch batch;
        std::uint64_t sequence = 0;
        std::size_t read = 0;
        while (reader.Next(batch, sequence)) {
            ++read;
        }
        ASSERT_LE(read, batches.size());
    }
}

}  // namespace
