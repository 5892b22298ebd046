#include "siblings/driversupport/store/CsvMapping.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace zr {
namespace {

CsvMapping Parsed(const std::string& text)
{
    CsvMapping mapping;
    std::string error;
    EXPECT_TRUE(CsvMapping::Parse(text, mapping, error)) << error;
    return mapping;
}

TEST(CsvMappingTest, NamesAColumnAndAVariable)
{
    const CsvMapping mapping = Parsed("voltage_V=METER-1.U1");
    EXPECT_EQ(mapping.column, "voltage_V");
    EXPECT_EQ(mapping.variable, u"METER-1.U1");
    EXPECT_EQ(mapping.factor, 1.0);
    EXPECT_EQ(mapping.divisor, 1.0);
    EXPECT_EQ(mapping.infoCode, 0);
    EXPECT_FALSE(mapping.isSum);
}

TEST(CsvMappingTest, AColumnAloneIsTheVariableToo)
{
    EXPECT_EQ(Parsed("METER-1.U1").column, "METER-1.U1");
    EXPECT_EQ(Parsed("METER-1.U1").variable, u"METER-1.U1");
    EXPECT_EQ(Parsed("METER-1.EAI:counter").infoCode, 8);
}

TEST(CsvMappingTest, TakesFactorsAndDivisors)
{
    const CsvMapping mapping = Parsed("active_kW=METER-1.EAI*1000/60*-1e-1:counter:sum=12840000");
    EXPECT_EQ(mapping.factor, -100.0);
    EXPECT_EQ(mapping.divisor, 60.0);
    EXPECT_EQ(mapping.infoCode, 8);
    EXPECT_TRUE(mapping.isSum);
    EXPECT_TRUE(mapping.hasStart);
    EXPECT_EQ(mapping.start, 12840000.0);
    EXPECT_EQ(mapping.variable, u"METER-1.EAI");
    EXPECT_FALSE(Parsed("a=M.E:sum").hasStart);
}

TEST(CsvMappingTest, TakesEveryClass)
{
    const std::vector<std::pair<std::string, int>> classes = {
        {"instantaneous", 1}, {"maximum", 2}, {"minimum", 3}, {"state", 4}, {"counter", 8}};
    for (const auto& [name, infoCode] : classes) {
        EXPECT_EQ(Parsed("a=M.E:" + name).infoCode, infoCode);
    }
}

TEST(CsvMappingTest, ANameOfAColumnMayHoldColonsAndEqualsSigns)
{
    EXPECT_EQ(Parsed("P = U*I: total=M 1.P*2:state").column, "P = U*I: total");
    EXPECT_EQ(Parsed("P = U*I: total=M 1.P*2:state").variable, u"M 1.P");
}

TEST(CsvMappingTest, TellsWhatItDoesNotUnderstand)
{
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"", "no column is named"},
        {"=M.U", "no column is named"},
        {"a", "\"a\" is no variable"},
        {"a=", "\"\" is no variable"},
        {"a=b", "\"b\" is no variable"},
        {"a=M.", "\"M.\" is no variable"},
        {"a=T.MVDF@day#M.U", "is no variable"},
        {"a=\xFF.U", "is no variable"},
        {"a=M.U*", "\"\" is no factor"},
        {"a=M.U/0", "\"0\" is no factor"},
        {"a=M.U*x", "\"x\" is no factor"},
        {"a=M.U:meter", "\"meter\" is neither a class"},
        {"a=M.U:sum=x", "\"sum=x\" is neither a class"},
    };
    for (const auto& [text, reason] : rows) {
        CsvMapping mapping;
        mapping.column = "kept";
        std::string error;
        EXPECT_FALSE(CsvMapping::Parse(text, mapping, error)) << text;
        EXPECT_THAT(error, testing::StartsWith("'" + text + "': "));
        EXPECT_THAT(error, testing::HasSubstr(reason)) << text;
        EXPECT_EQ(mapping.column, "kept");
    }
}

TEST(CsvMappingTest, FindsAColumnByNameWithOrWithoutItsUnitOrByNumber)
{
    const std::vector<std::string> names = {"time", "METER-1.U1 [V]", "METER-1.U1", "#1", "P"};
    std::size_t cell = 99;
    EXPECT_TRUE(FindCsvColumn(names, "METER-1.U1", cell));
    EXPECT_EQ(cell, 2u);
    EXPECT_TRUE(FindCsvColumn(names, "METER-1.U1 [V]", cell));
    EXPECT_EQ(cell, 1u);
    EXPECT_TRUE(FindCsvColumn(names, "#1", cell));
    EXPECT_EQ(cell, 3u);
    EXPECT_TRUE(FindCsvColumn(names, "#5", cell));
    EXPECT_EQ(cell, 4u);
    for (const char* none : {"p", "", "#", "#0", "#6", "#1x", "U1"}) {
        EXPECT_FALSE(FindCsvColumn(names, none, cell)) << none;
    }
    EXPECT_TRUE(FindCsvColumn(std::vector<std::string>{"a", "M.U [V]"}, "M.U", cell));
    EXPECT_EQ(cell, 1u);
}

}  // namespace
}  // namespace zr
