// The measured days of the demo on paper.
#include "LoggedDataFixture.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <sstream>

namespace zr::desktop {
namespace {

using Words = std::vector<std::string>;

class DemoPrintTest : public LoggedDataFixture {
protected:
    // As scripts/demo brings them in, at the time at which they were measured.
    void Import()
    {
        WriteDocument("47997");
        m_folder.Write("plant.recording.xml",
                       "<Recording><DataSet Name=\"mains\" Period=\"60\"><Variable Name=\"METER.U1\"/></DataSet>"
                       "</Recording>\n");
        test::Process service({ZR_KESTRIXD,
                               "import",
                               ZR_RESOURCES "/demo/household/household_1min.csv",
                               "--document",
                               m_document.string(),
                               "--data",
                               DataFolder(),
                               "--dataset",
                               "mains",
                               "--map",
                               "voltage_V=METER.U1*1.002",
                               "voltage_V=METER.U2*0.997",
                               "voltage_V=METER.U3*1.001",
                               "current_A=METER.I1*0.42",
                               "current_A=METER.I2*0.33",
                               "current_A=METER.I3*0.25",
                               "active_kW=METER.P*1000",
                               "reactive_kvar=METER.Q*1000",
                               "active_kW=METER.EAI*1000/60:counter:sum=11600000",
                               "reactive_kvar=METER.ERI*1000/60:counter:sum=1530000"},
                              ProcessEnvironment());
        const auto status = service.WaitForExit(std::chrono::seconds(120));
        ASSERT_EQ(status, 0) << service.Errors();
    }
    std::string File() const { return (m_folder / "demo.pdf").string(); }
    std::string OutputOf(const Words& command) const
    {
        test::Process reader(command);
        EXPECT_TRUE(reader.Started()) << command[0] << " is needed";
        EXPECT_EQ(reader.WaitForExit(std::chrono::seconds(60)), 0) << reader.Errors();
        return reader.Output();
    }
    int PageCount() const
    {
        const std::string info = OutputOf({"pdfinfo", File()});
        const std::size_t at = info.find("Pages:");
        return at == std::string::npos ? 0 : std::stoi(info.substr(at + 6));
    }
    // Each page as its lines of words, empty lines left out.
    std::vector<std::vector<Words>> Pages() const
    {
        std::vector<std::vector<Words>> pages;
        std::istringstream text(OutputOf({"pdftotext", "-layout", File(), "-"}));
        for (std::string page; std::getline(text, page, '\f');) {
            pages.emplace_back();
            std::istringstream lines(page);
            for (std::string line; std::getline(lines, line);) {
                std::istringstream words(line);
                const Words found{std::istream_iterator<std::string>(words), {}};
                if (!found.empty()) {
                    pages.back().push_back(found);
                }
            }
        }
        return pages;
    }
    static std::string Joined(const Words& words)
    {
        std::string line;
        for (const std::string& word : words) {
            line += word;
        }
        return line;
    }
};

TEST_F(DemoPrintTest, HoldsEveryCellOfAMonthOnNumberedPages)
{
    ASSERT_NO_FATAL_FAILURE(Import());
    ZRDateTime newYear;
    newYear.SetDateTime(2007, 1, 1, 0, 0, 0, 0, 0);
    LoggedDataWindow& window = OpenWindow(newYear, logger::kGroupByMonth, ZRDateTimeSpan(30 * 60, 0));
    test::Cells shown = Shown(window);
    // From 16 December at 17:24 on.
    ASSERT_EQ(shown.size() - 1, 15U * 48 + 14);
    ASSERT_EQ(shown[0].size(), 11U);
    ASSERT_TRUE(window.ExportTo(File()));
    const std::vector<std::vector<Words>> pages = Pages();
    ASSERT_EQ(static_cast<int>(pages.size()), PageCount());

    // What stands in a row of all bands, by its time.
    std::map<std::string, Words> printed;
    std::size_t rows = 0;
    for (std::size_t page = 0; page < pages.size(); ++page) {
        const std::vector<Words>& lines = pages[page];
        ASSERT_GT(lines.size(), 3U);
        EXPECT_EQ(lines[0], (Words{"December", "2006"}));
        EXPECT_EQ(Words(lines[1].begin(), lines[1].begin() + 3), (Words{"Date", "and", "time"}));
        EXPECT_EQ(Joined(lines.back()), std::to_string(page + 1) + "/" + std::to_string(pages.size()));
        for (std::size_t i = 2; i + 1 < lines.size(); ++i, ++rows) {
            ASSERT_GT(lines[i].size(), 2U);
            Words& row = printed[lines[i][0] + " " + lines[i][1]];
            row.insert(row.end(), lines[i].begin() + 2, lines[i].end());
        }
    }
    Settle();
    // A column that passes the edge by less than the gap before it stands on no page, of which the user is told.
    std::string told;
    for (const std::u16string& message : m_asked) {
        told += Utf16ToUtf8(ZRBasicString(message)) + "\n";
    }
    EXPECT_LE(m_asked.size(), 1U) << told;
    const auto isTold = [&](const std::string& title) {
        return told.find(": " + title.substr(0, title.rfind(" (")) + ".") != std::string::npos;
    };
    // Every band has every row, and full pages hold whole blocks of three.
    const std::size_t bands = rows / (shown.size() - 1);
    EXPECT_GT(bands, 1U);
    EXPECT_EQ(rows, bands * (shown.size() - 1));
    const std::size_t onAPage = pages[0].size() - 3;
    EXPECT_EQ(onAPage % 3, 0U);
    EXPECT_EQ(pages.size(), bands * ((shown.size() - 1 + onAPage - 1) / onAPage));
    ASSERT_EQ(printed.size(), shown.size() - 1);
    for (std::size_t i = 1; i < shown.size(); ++i) {
        Words values;
        for (std::size_t column = 1; column < shown[i].size(); ++column) {
            if (!shown[i][column].empty() && !isTold(shown[0][column])) {
                values.push_back(shown[i][column]);
            }
        }
        EXPECT_EQ(printed[shown[i][0]], values) << shown[i][0];
    }
    // For people to look at.
    const std::filesystem::path pictures =
        std::filesystem::path(QApplication::applicationDirPath().toStdString()) / ".." / "pictures";
    std::filesystem::create_directories(pictures);
    std::filesystem::copy_file(File(), pictures / "demo.pdf", std::filesystem::copy_options::overwrite_existing);
}

}  // namespace
}  // namespace zr::desktop
