#include "hosts/kestrix/TableExport.h"

#include "unit/logger/LoggedFixture.h"
#ifndef _WIN32
#include "support/SmallDisk.h"
#endif

#include <limits>

namespace zr::desktop {
namespace {

using logger::Date;
using logger::FindValueColumns;
using logger::MatchBy;

class TableExportTest : public logger::LoggedFixture {
protected:
    // Every record of the day with M.U and M.PF.
    ExportedTable Table()
    {
        ZRLoggerInfo info = Info({u"M.U", u"M.PF"});
        info.Lock();
        profile.AddVariable(u"M.U", u"M Voltage", 0, 1, -1, 1, 100, 0);
        profile.AddVariable(u"M.PF", u"M \"Power\", factor", 1, 7, 0, 3, 100, 0);
        ExportedTable table;
        table.titles = {"Date and time", "M Voltage (V)", "M \"Power\", factor (PF)"};
        table.values = FindValueColumns(profile, info, MatchBy::Name);
        table.group = &LoadDay(info);
        table.zone = TimeZone(3600, {});
        table.offsetTitle = "UTC offset";
        return table;
    }

    ZRTableProfile profile;
    std::string reason;
};

TEST_F(TableExportTest, WritesTimesWithTheirZoneAndNumbersWithAPoint)
{
    RecordVoltages(kDay, {2301, 2302});
    Record(u"M.PF", kDay, 0.5);
    ASSERT_TRUE(WriteCsv(Table(), folder / "table.csv", reason)) << reason;
    EXPECT_EQ(folder.Read("table.csv"),
              "Date and time,M Voltage (V),\"M \"\"Power\"\", factor (PF)\"\r\n"
              "2002-12-30T00:00:00+01:00,230.1,0.500\r\n2002-12-30T00:01:00+01:00,230.2,\r\n");
}

TEST_F(TableExportTest, WritesTheTitlesAloneForNoRecords)
{
    ASSERT_TRUE(WriteCsv(Table(), folder / "table.csv", reason));
    EXPECT_EQ(folder.Read("table.csv"), "Date and time,M Voltage (V),\"M \"\"Power\"\", factor (PF)\"\r\n");
}

TEST_F(TableExportTest, AGraphIsExportedWithTheColumnsOfATable)
{
    ZRLoggerInfo info = Info({u"M.U", u"M.E", u"M.PF"});
    info.Lock();
    ZRGraphProfile curves;
    const auto add = [&](const wchar* name, int unit, int valueExponent, int decimals, int unitsExponent) {
        ZRGraphProfile::CVariableProfile curve;
        curve.Name = name;
        curve.Title = u"Curve";
        curve.MeasureUnits = unit;
        curve.ValueExponent = valueExponent;
        curve.Decimals = decimals;
        curve.UnitsExponent = unitsExponent;
        curves.AddVariable(curve);
    };
    add(u"M.E", 8, 0, 2, 3);
    add(u"M.GONE", 1, 0, 0, 0);
    add(u"M.U", 1, -1, 1, 0);
    ExportedTable table;
    SetColumns(table, curves, info);
    EXPECT_EQ(table.titles, (std::vector<std::string>{"Date and time", "M Energy (kWh)", "M Voltage (V)"}));
    Record(u"M.U", kDay, 2301);
    Record(u"M.E", kDay, 12340);
    table.group = &LoadDay(info);
    table.zone = TimeZone(3600, {});
    ASSERT_TRUE(WriteCsv(table, folder / "graph.csv", reason)) << reason;
    EXPECT_EQ(folder.Read("graph.csv"),
              "Date and time,M Energy (kWh),M Voltage (V)\r\n"
              "2002-12-30T00:00:00+01:00,12.34,230.1\r\n");
}

TEST_F(TableExportTest, TellsWhyAFileWasNotWritten)
{
    RecordVoltages(kDay, {2301});
    EXPECT_FALSE(WriteCsv(Table(), folder / "none" / "table.csv", reason));
    EXPECT_FALSE(reason.empty());
    reason.clear();
    EXPECT_FALSE(WriteXlsx(Table(), folder / "none" / "table.xlsx", reason));
    EXPECT_FALSE(reason.empty());
}

TEST_F(TableExportTest, WritesAWorkbookAndLeavesNothingBesideIt)
{
    RecordVoltages(kDay, {2301});
    ASSERT_TRUE(WriteXlsx(Table(), folder / "table.xlsx", reason)) << reason;
    EXPECT_EQ(folder.Read("table.xlsx").substr(0, 4), "PK\x03\x04");
    EXPECT_FALSE(std::filesystem::exists(folder / "table.xlsx.part"));
}

#ifndef _WIN32
TEST_F(TableExportTest, KeepsTheOldFileWhenTheDiskIsFull)
{
    const int series = store.OpenSeries(u"M.U", 1);
    std::vector<LoggerAppend> batch;
    for (int i = 0; i < 80000; ++i) {
        batch.push_back({series, (946684800 + std::int64_t{kDay.seconds} + i) * 1000000, 2300.0 + i % 1009});
    }
    ASSERT_TRUE(store.Append(batch));
    const ExportedTable table = Table();
    for (const char* const name : {"table.csv", "table.xlsx"}) {
        folder.Write(name, "old");
        bool isWritten = true;
        reason.clear();
        {
            const test::SmallDisk disk(128 * 1024);
            const bool isCsv = std::string(name) == "table.csv";
            isWritten = isCsv ? WriteCsv(table, folder / name, reason) : WriteXlsx(table, folder / name, reason);
        }
        EXPECT_FALSE(isWritten) << name;
        EXPECT_FALSE(reason.empty()) << name;
        EXPECT_EQ(folder.Read(name), "old") << name;
    }
    EXPECT_EQ(folder.Names().size(), 2U);
    EXPECT_TRUE(WriteXlsx(table, folder / "table.xlsx", reason)) << reason;
    EXPECT_GT(std::filesystem::file_size(folder / "table.xlsx"), 128U * 1024);
}

TEST_F(TableExportTest, WritesFilesForTheirUserAlone)
{
    RecordVoltages(kDay, {2301});
    ASSERT_TRUE(WriteCsv(Table(), folder / "table.csv", reason));
    ASSERT_TRUE(WriteXlsx(Table(), folder / "table.xlsx", reason));
    using std::filesystem::perms;
    for (const char* const name : {"table.csv", "table.xlsx"}) {
        EXPECT_EQ(std::filesystem::status(folder / name).permissions(), perms::owner_read | perms::owner_write);
    }
}
#endif

TEST_F(TableExportTest, TellsTheSecondPassOfADoubledHourByTheOrder)
{
    // 1 hour ahead of UTC until 2002-10-27 01:00 UTC of the moment, when 2 hours become 1.
    const std::int64_t change = 1035680400;
    const TimeZone zone(7200, {{change, 3600}});
    RecordOffsets offsets(zone);
    const auto at = [](int hour, int minute) { return Date(27, 10, 2002, hour, minute); };
    EXPECT_EQ(offsets.Of(at(2, 0)), 7200);
    EXPECT_EQ(offsets.Of(at(2, 30)), 7200);
    EXPECT_EQ(offsets.Of(at(2, 0)), 3600);
    EXPECT_EQ(offsets.Of(at(2, 30)), 3600);
    EXPECT_EQ(offsets.Of(at(3, 0)), 3600);
}

TEST_F(TableExportTest, WritesOffsetsOfBothSigns)
{
    EXPECT_EQ(OffsetText(0), "+00:00");
    EXPECT_EQ(OffsetText(20700), "+05:45");
    EXPECT_EQ(OffsetText(-12600), "-03:30");
}

}  // namespace
}  // namespace zr::desktop
