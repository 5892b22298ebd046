#include "hosts/kestrix/TableExport.h"

#include "platform/FileReplace.h"
#include "unit/logger/LoggedFixture.h"
#ifndef _WIN32
#include "support/SmallDisk.h"
#endif

#include <algorithm>
#include <array>

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

    // A record a second.
    void RecordSeconds(int count)
    {
        const int series = store.OpenSeries(u"M.U", 1);
        std::vector<LoggerAppend> batch;
        for (int i = 0; i < count; ++i) {
            batch.push_back({series, (946684800 + std::int64_t{kDay.seconds} + i) * 1000000, 2300.0 + i % 1009});
        }
        ASSERT_TRUE(store.Append(batch));
    }

    bool Write(const char* name, const ExportedTable& table, Progress* progress = nullptr)
    {
        reason.clear();
        return ExportKindOf(name) == ExportKind::Csv ? WriteCsv(table, folder / name, progress, reason)
                                                     : WriteXlsx(table, folder / name, progress, reason);
    }

    ZRTableProfile profile;
    std::string reason;
};

constexpr std::array kFiles = {"table.csv", "table.xlsx"};
#ifdef _WIN32
constexpr const char* kNoFolder = "system error 3";  // ERROR_PATH_NOT_FOUND
#else
constexpr const char* kNoFolder = "No such file";
#endif

// Stops the work as soon as it has come so far.
class StoppingProgress final : public Progress {
public:
    explicit StoppingProgress(int at) : m_at(at) {}
    void SetText(const wchar*) override {}
    void SetPos(int percent) override { positions.push_back(percent); }
    [[nodiscard]] bool IsCancelled() const override { return !positions.empty() && positions.back() >= m_at; }

    std::vector<int> positions;

private:
    int m_at;
};

TEST_F(TableExportTest, WritesTimesWithTheirZoneAndNumbersWithAPoint)
{
    RecordVoltages(kDay, {2301, 2302});
    Record(u"M.PF", kDay, 0.5);
    ASSERT_TRUE(WriteCsv(Table(), folder / "table.csv", nullptr, reason)) << reason;
    EXPECT_EQ(folder.Read("table.csv"),
              "Date and time,M Voltage (V),\"M \"\"Power\"\", factor (PF)\"\r\n"
              "2002-12-30T00:00:00+01:00,230.1,0.500\r\n2002-12-30T00:01:00+01:00,230.2,\r\n");
}

TEST_F(TableExportTest, WritesTheTitlesAloneForNoRecords)
{
    ASSERT_TRUE(WriteCsv(Table(), folder / "table.csv", nullptr, reason));
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
    ASSERT_TRUE(WriteCsv(table, folder / "graph.csv", nullptr, reason)) << reason;
    EXPECT_EQ(folder.Read("graph.csv"),
              "Date and time,M Energy (kWh),M Voltage (V)\r\n"
              "2002-12-30T00:00:00+01:00,12.34,230.1\r\n");
}

TEST_F(TableExportTest, TheExtensionTellsTheKindInSmallAndCapitalLetters)
{
    for (const char* const name : {"a.csv", "a.CSV", "a.b.Csv"}) {
        EXPECT_EQ(ExportKindOf(name), ExportKind::Csv) << name;
    }
    EXPECT_EQ(ExportKindOf("a.XLSX"), ExportKind::Workbook);
    EXPECT_EQ(ExportKindOf("a.Pdf"), ExportKind::Pdf);
    for (const char* const name : {"a", "a.", "a.txt", "a.csv.gz", "csv", ".csv", "a.xls"}) {
        EXPECT_EQ(ExportKindOf(name), std::nullopt) << name;
    }
    for (const ExportKind kind : {ExportKind::Csv, ExportKind::Workbook, ExportKind::Pdf}) {
        EXPECT_EQ(ExportKindOf(std::string("a") + ExtensionOf(kind)), kind);
    }
}

TEST_F(TableExportTest, AFileTitleHasNothingThatAFileSystemRefuses)
{
    EXPECT_EQ(FileTitleOf(u"METER-1"), u"METER-1");
    EXPECT_EQ(FileTitleOf(u"a/b\\c:d*e?f\"g<h>i|j\nk"), u"a_b_c_d_e_f_g_h_i_j_k");
    EXPECT_EQ(FileTitleOf(u"Z\u00E4hler 1.2"), u"Z\u00E4hler 1.2");
}

TEST_F(TableExportTest, TellsWhyAFileWasNotWritten)
{
    RecordVoltages(kDay, {2301});
    for (const char* const name : {"none/table.csv", "none/table.xlsx"}) {
        EXPECT_FALSE(Write(name, Table())) << name;
        EXPECT_NE(reason.find(kNoFolder), std::string::npos) << reason;
        profile.DeleteAll();
    }
    for (const char* const name : kFiles) {
        std::filesystem::create_directory(folder / name);
        EXPECT_FALSE(Write(name, Table())) << name;
        EXPECT_FALSE(reason.empty()) << name;
        profile.DeleteAll();
    }
    EXPECT_EQ(folder.Names().size(), 2U);
}

TEST_F(TableExportTest, StopsWhereTheUserAsksForItAndKeepsTheOldFile)
{
    RecordSeconds(20000);
    const ExportedTable table = Table();
    for (const char* const name : kFiles) {
        folder.Write(name, "old");
        StoppingProgress progress(20);
        EXPECT_FALSE(Write(name, table, &progress)) << name;
        EXPECT_EQ(reason, "") << name;
        EXPECT_LT(progress.positions.size(), 5U) << name;
        EXPECT_EQ(folder.Read(name), "old") << name;
    }
    EXPECT_EQ(folder.Names().size(), 2U);
}

TEST_F(TableExportTest, TellsHowFarItIs)
{
    RecordSeconds(20000);
    const ExportedTable table = Table();
    for (const char* const name : kFiles) {
        StoppingProgress progress(101);
        EXPECT_TRUE(Write(name, table, &progress)) << name << reason;
        EXPECT_GE(progress.positions.size(), 5U) << name;
        EXPECT_EQ(progress.positions.front(), 0) << name;
        EXPECT_GT(progress.positions.back(), 40) << name;
        EXPECT_TRUE(std::is_sorted(progress.positions.begin(), progress.positions.end())) << name;
    }
}

TEST_F(TableExportTest, WritesAWorkbookAndLeavesNothingBesideIt)
{
    RecordVoltages(kDay, {2301});
    ASSERT_TRUE(Write("table.xlsx", Table())) << reason;
    EXPECT_EQ(folder.Read("table.xlsx").substr(0, 4), "PK\x03\x04");
    EXPECT_EQ(folder.Names().size(), 1U);
}

TEST_F(TableExportTest, WritesFilesWithNamesInAnyScript)
{
    RecordVoltages(kDay, {2301});
    const ExportedTable table = Table();
    for (const char* const name : {"Z\u00E4hler \u2460.csv", "Z\u00E4hler \u2460.xlsx"}) {
        const std::filesystem::path file = folder.Path() / PathFromText(std::string_view(name));
        const bool isCsv = ExportKindOf(file) == ExportKind::Csv;
        EXPECT_TRUE(isCsv ? WriteCsv(table, file, nullptr, reason) : WriteXlsx(table, file, nullptr, reason)) << reason;
        EXPECT_GT(std::filesystem::file_size(file), 0U);
    }
    EXPECT_EQ(folder.Names().size(), 2U);
}

#ifndef _WIN32
TEST_F(TableExportTest, KeepsTheOldFileWhenTheDiskIsFull)
{
    RecordSeconds(80000);
    const ExportedTable table = Table();
    for (const char* const name : kFiles) {
        folder.Write(name, "old");
        bool isWritten = true;
        {
            const test::SmallDisk disk(128 * 1024);
            isWritten = Write(name, table);
        }
        EXPECT_FALSE(isWritten) << name;
        EXPECT_FALSE(reason.empty()) << name;
        EXPECT_EQ(folder.Read(name), "old") << name;
    }
    EXPECT_EQ(folder.Names().size(), 2U);
    EXPECT_TRUE(Write("table.xlsx", table)) << reason;
    EXPECT_GT(std::filesystem::file_size(folder / "table.xlsx"), 128U * 1024);
}

TEST_F(TableExportTest, WritesWhereALinkLeads)
{
    RecordVoltages(kDay, {2301});
    const ExportedTable table = Table();
    std::filesystem::create_directory(folder / "there");
    for (const char* const name : kFiles) {
        folder.Write(std::string("there/") + name, "old");
        std::filesystem::create_symlink(folder / "there" / name, folder / name);
        EXPECT_TRUE(Write(name, table)) << reason;
        EXPECT_TRUE(std::filesystem::is_symlink(folder / name)) << name;
        EXPECT_NE(folder.Read(std::string("there/") + name), "old") << name;
    }
}

TEST_F(TableExportTest, WritesFilesForTheirUserAlone)
{
    RecordVoltages(kDay, {2301});
    const ExportedTable table = Table();
    using std::filesystem::perms;
    for (const char* const name : kFiles) {
        ASSERT_TRUE(Write(name, table)) << reason;
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
