#include "siblings/tools/CsvCells.h"

#include <gtest/gtest.h>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>

namespace zr {
namespace {

TEST(CsvNumberTest, ReadsNumbersWithEitherMark)
{
    const struct {
        const char* text;
        char decimal;
        double value;
    } rows[] = {{"4.216", '.', 4.216}, {"-0.5", '.', -0.5}, {"+7", '.', 7.0},          {"1e3", '.', 1000.0},
                {"4,216", ',', 4.216}, {"5", ',', 5.0},     {"-1,5E-3", ',', -1.5e-3}, {".5", '.', 0.5}};
    for (const auto& row : rows) {
        double value = 99.0;
        EXPECT_TRUE(ParseCsvNumber(row.text, row.decimal, value)) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
    }
}

TEST(CsvNumberTest, RefusesWhatIsNoFiniteNumber)
{
    for (const char* text :
         {"", "-", "+", "+-1", "?", "nan", "inf", "-inf", "1e999", "1.2.3", "0x10", "1 000", "12a", "1,5", "1.000,5"}) {
        double value = 99.0;
        EXPECT_FALSE(ParseCsvNumber(text, '.', value)) << text;
        EXPECT_EQ(value, 99.0) << text;
    }
    double value = 99.0;
    EXPECT_FALSE(ParseCsvNumber("1.5", ',', value));
    EXPECT_FALSE(ParseCsvNumber("1.000,5", ',', value));
    EXPECT_FALSE(ParseCsvNumber("1,000,5", ',', value));
}

TEST(CsvNumberTest, ReadsBackTheShortestTextOfAnyDouble)
{
    std::mt19937_64 random(3);
    for (int i = 0; i < 100000; ++i) {
        const auto value = std::bit_cast<double>(random());
        if (!std::isfinite(value)) {
            continue;
        }
        char text[32];
        const std::string shortest(text, std::to_chars(text, text + sizeof text, value).ptr);
        double read = 0.0;
        ASSERT_TRUE(ParseCsvNumber(shortest, '.', read)) << shortest;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(read), std::bit_cast<std::uint64_t>(value)) << shortest;
    }
}

TEST(CsvNumberTest, TrimsBlanks)
{
    EXPECT_EQ(TrimCsvCell(" \t1 2\t "), "1 2");
    EXPECT_EQ(TrimCsvCell("  "), "");
    EXPECT_EQ(TrimCsvCell(""), "");
}

}  // namespace
}  // namespace zr
