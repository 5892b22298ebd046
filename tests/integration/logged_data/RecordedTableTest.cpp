// From the plant by the recording service and its store to the desktop's window, the clipboard and exported files.
#include "LoggedDataFixture.h"
#include "siblings/driversupport/store/SqliteLoggerStore.h"
#include "support/SampleMap.h"

#include <gmock/gmock.h>
#include <cmath>
#include <csignal>
#include <limits>
#include <QClipboard>
#include <QDateTime>
#include <QMimeData>

namespace zr::desktop {
namespace {

using Samples = std::map<std::int64_t, double>;

class RecordedTableTest : public LoggedDataFixture {
protected:
    static constexpr std::size_t kSamples = 6;

    // What the service has recorded of a meter of the plant.
    void Record()
    {
        const std::string resources = ZR_RESOURCES;
        const auto plantFile = m_folder.Write(
            "plant-file.xml", "<Plant Series=\"" + resources + "/demo/household/household_1min.csv\" Profiles=\"" +
                                  resources +
                                  "/devices\"><Converter Name=\"N\"><Device Name=\"METER\" Profile=\"EM3\" "
                                  "Unit=\"1\"/></Converter></Plant>\n");
        test::Process plant(
            {ZR_PLANT, plantFile.string(), "--speed", "600", "--start", "2006-12-18T06:00", "--until-eof"},
            ProcessEnvironment());
        std::string port;
        ASSERT_TRUE(plant.ReadLine([&](const std::string& line) {
            port = line.starts_with("converter ") ? line.substr(line.rfind(':') + 1) : port;
            return line == "ready";
        })) << plant.Errors();
        WriteDocument(port);
        m_folder.Write("plant.recording.xml",
                       "<Recording><DataSet Name=\"mains\" Period=\"1\"><Variable Name=\"METER.U1\"/><Variable "
                       "Name=\"METER.P\"/></DataSet></Recording>\n");
        test::Process service({ZR_KESTRIXD, m_document.string(), "--data", DataFolder(), "--no-publication"},
                              ProcessEnvironment());
        ASSERT_TRUE(test::Eventually([&] { return Stored(u"METER.P").size() >= kSamples; })) << service.Errors();
        service.Send(SIGTERM);
        ASSERT_EQ(service.WaitForExit(), 0) << service.Errors();
    }

    // As another reader of the store's file finds them, by microseconds of UTC.
    [[nodiscard]] Samples Stored(const wchar* variable) const
    {
        test::SampleMap collector;
        if (const auto file = m_folder / "data" / "plant.zrlog"; std::filesystem::is_regular_file(file)) {
            SqliteLoggerStore store(file);
            if (const std::unique_ptr<LoggerReader> reader = store.OpenReader(); reader != nullptr) {
                reader->ReadBlocks(variable, 0, std::numeric_limits<std::int64_t>::max(), LoggerNeed::Samples,
                                   collector);
            }
        }
        return collector.samples;
    }

    // The window on all of this year's records; a year more at New Year's Eve does no harm.
    LoggedDataWindow& OpenYear() { return OpenWindow(ZRDateTime::LTC(), logger::kGroupByYear, ZRDateTimeSpan(0, 0)); }

    // Local time of a sample and its distance from UTC, in the formats of Qt.
    [[nodiscard]] std::string Local(std::int64_t time, const char* format) const
    {
        const std::int64_t local = m_zone.ToLocal(time / 1'000'000);
        return QDateTime::fromSecsSinceEpoch(local, Qt::UTC).toString(format).toStdString();
    }
    [[nodiscard]] std::string Offset(std::int64_t time) const
    {
        return m_zone.SpanAt(time / 1'000'000).offset == 3600 ? "+01:00" : "+02:00";
    }
    static double Number(std::string cell)
    {
        std::erase(cell, ',');
        return cell.empty() ? std::nan("") : std::stod(cell);
    }
    // Volts with one decimal, kilowatts of watts with as many as the meter's profile says.
    void ExpectValues(const std::vector<std::string>& row, std::size_t first, std::int64_t time)
    {
        EXPECT_NEAR(Number(row.at(first)), m_volts.at(time), 0.0501);
        EXPECT_NEAR(Number(row.at(first + 1)), m_watts.at(time) / 1000.0, 0.00501);
    }

    Samples m_volts;
    Samples m_watts;
};

TEST_F(RecordedTableTest, IsShownCopiedAndExportedAsItWasRecorded)
{
    ASSERT_NO_FATAL_FAILURE(Record());
    m_volts = Stored(u"METER.U1");
    m_watts = Stored(u"METER.P");
    ASSERT_GE(m_volts.size(), kSamples);
    ASSERT_EQ(m_volts.size(), m_watts.size());

    LoggedDataWindow& window = OpenYear();
    const test::Cells shown = Shown(window);
    ASSERT_EQ(shown.size(), m_volts.size() + 1);
    EXPECT_EQ(shown[0], (std::vector<std::string>{"Date and time", "METER Voltage L1 (V)", "METER Active power (kW)"}));
    std::size_t row = 1;
    for (const auto& [time, volts] : m_volts) {
        EXPECT_EQ(shown[row].at(0), Local(time, "dd/MM/yyyy HH:mm:ss"));
        ExpectValues(shown[row], 1, time);
        ++row;
    }

    window.OnEditCopy();
    const QStringList lines = QApplication::clipboard()->text().split("\r\n", Qt::SkipEmptyParts);
    ASSERT_EQ(static_cast<std::size_t>(lines.size()), shown.size());
    for (std::size_t i = 1; i < shown.size(); ++i) {
        EXPECT_EQ(lines.at(static_cast<qsizetype>(i)).toStdString(),
                  shown[i][0] + "\t" + shown[i][1] + "\t" + shown[i][2]);
    }

    ASSERT_TRUE(window.ExportTo(m_folder / "table.csv"));
    const test::Cells csv = test::CellsOfCsv(m_folder.Read("table.csv"));
    ASSERT_TRUE(window.ExportTo(m_folder / "table.xlsx"));
    test::Office office;
    const test::Cells sheet = office.Spreadsheet(m_folder / "table.xlsx", "Calc MS Excel 2007 XML");
    ASSERT_EQ(csv.size(), shown.size());
    ASSERT_EQ(sheet.size(), shown.size());
    EXPECT_EQ(csv[0], shown[0]);
    EXPECT_EQ(sheet[0], (std::vector<std::string>{shown[0][0], "UTC offset", shown[0][1], shown[0][2]}));
    row = 1;
    for (const auto& [time, volts] : m_volts) {
        EXPECT_EQ(csv[row].at(0), Local(time, "yyyy-MM-ddTHH:mm:ss") + Offset(time));
        EXPECT_EQ(QDateTime::fromString(QString::fromStdString(csv[row].at(0)), Qt::ISODate).toSecsSinceEpoch(),
                  time / 1'000'000);
        ExpectValues(csv[row], 1, time);
        EXPECT_EQ(sheet[row].at(0), Local(time, "yyyy-MM-dd HH:mm:ss"));
        EXPECT_EQ(sheet[row].at(1), Offset(time));
        ExpectValues(sheet[row], 2, time);
        ++row;
    }
    EXPECT_TRUE(m_asked.empty());
}

}  // namespace
}  // namespace zr::desktop
