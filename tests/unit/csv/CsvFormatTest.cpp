#include "siblings/tools/CsvReader.h"

#include <gtest/gtest.h>
#include <ostream>

namespace zr {

static void PrintTo(const CsvFormat& format, std::ostream* out)
{
    *out << '\'' << format.separator << "' '" << format.decimal << '\'';
}

namespace {

TEST(CsvFormatTest, FindsSeparatorAndDecimalMark)
{
    EXPECT_EQ(DetectCsvFormat("time,p,u\n2006-12-16T17:24,4.2,234.8\n", {}), (CsvFormat{',', '.'}));
    EXPECT_EQ(DetectCsvFormat("time;p;u\n2006-12-16T17:24;4,2;234,8\n", {}), (CsvFormat{';', ','}));
    EXPECT_EQ(DetectCsvFormat("time;p;u\n2006-12-16T17:24;4.2;234.8\n", {}), (CsvFormat{';', '.'}));
    EXPECT_EQ(DetectCsvFormat("time\tp\tu\n2006-12-16T17:24\t4,2\t234,8\n", {}), (CsvFormat{'\t', ','}));
    EXPECT_EQ(DetectCsvFormat("time;p\n1;-4,2e-7\n", {}), (CsvFormat{';', ','}));
    EXPECT_EQ(DetectCsvFormat("time,p,u\r\n2006-12-16,\"4,2\",\"234,8\"\r\n", {}), (CsvFormat{',', ','}));
}

TEST(CsvFormatTest, TakesTheSeparatorThatGivesEveryRecordTheSameWidth)
{
    EXPECT_EQ(DetectCsvFormat("time;a, b and c;d\n1;2,5;3,5\n2;2,5;3,5\n", {}), (CsvFormat{';', ','}));
    EXPECT_EQ(DetectCsvFormat("\"time, of day\";p\n1;2\n", {}).separator, ';');
}

TEST(CsvFormatTest, IsNotMisledByAShortRecord)
{
    EXPECT_EQ(DetectCsvFormat("time;p;u\n1;2,5;3,5\n2;2,5\n", {}).separator, ';');
}

TEST(CsvFormatTest, TakesCommaAndPointWhereNothingTells)
{
    EXPECT_EQ(DetectCsvFormat("", {}), (CsvFormat{',', '.'}));
    EXPECT_EQ(DetectCsvFormat("time", {}), (CsvFormat{',', '.'}));
    EXPECT_EQ(DetectCsvFormat("time,p\n1,2\n", {}), (CsvFormat{',', '.'}));
}

TEST(CsvFormatTest, LeavesWhatIsGiven)
{
    EXPECT_EQ(DetectCsvFormat("time,p\n1,2.5\n", {';', ','}), (CsvFormat{';', ','}));
    EXPECT_EQ(DetectCsvFormat("time;p\n1;2,5\n", {'\0', '.'}), (CsvFormat{';', '.'}));
}

TEST(CsvFormatTest, DoesNotCountARecordThatTheHeadCuts)
{
    EXPECT_EQ(DetectCsvFormat("time;p;u\n1;2;3\n2;2", {}).separator, ';');
}

}  // namespace
}  // namespace zr
