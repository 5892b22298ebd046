// Files that are larger than memory should be: through a pipe, so that nothing of them lies on the disk.
#include "integration/csv/CommandFixture.h"

#include <gmock/gmock.h>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace zr::test {
namespace {

// As set in the environment for longer runs.
std::size_t Megabytes()
{
    const char* const text = std::getenv("ZR_CSV_MEGABYTES");
    return text != nullptr ? static_cast<std::size_t>(std::atol(text)) : 48;
}

// A line of a process' status file that begins with a key; empty when there is none.
std::string StatusOf(const Process& process, const std::string& key)
{
    std::ifstream file("/proc/" + std::to_string(process.Pid()) + "/status");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(key)) {
            return line.substr(key.size());
        }
    }
    return {};
}

class LargeCsvTest : public CommandFixture {
protected:
    LargeCsvTest() { std::signal(SIGPIPE, SIG_IGN); }

    // About a megabyte of rows a second apart, with much that isn't mapped.
    std::string NextRows()
    {
        std::string text;
        while (text.size() < (1u << 20)) {
            text += std::to_string(m_second) + ",some text that nobody asked for,1.25,230.5,12.75,0,0," +
                    std::to_string(m_second % 1000) + "\n";
            ++m_second;
            ++m_rows;
        }
        return text;
    }

    std::unique_ptr<Process> StartImport()
    {
        auto process = Start({"import", "-", "--dataset", "mains", "--store", Store(), "--map", "p=M.P"});
        EXPECT_TRUE(process->Write("time,a,b,c,d,e,f,p\n"));
        return process;
    }

    long m_second = 1041379200;
    std::size_t m_rows = 0;
};

TEST_F(LargeCsvTest, AnImportTakesNoMoreMemoryForALargerFile)
{
    const auto process = StartImport();
    for (std::size_t i = 0; i < Megabytes(); ++i) {
        ASSERT_TRUE(process->Write(NextRows()));
    }
    // It waits for more, having read almost all.
    const std::string peak = StatusOf(*process, "VmHWM:");
    ASSERT_NE(peak, "");
    constexpr long kLimit = 128 * 1024;  // KiB
    EXPECT_LT(std::atol(peak.c_str()), kLimit);
    process->CloseInput();
    ASSERT_EQ(process->WaitForExit(std::chrono::seconds(250)), 0) << process->Errors();
    std::string rows = std::to_string(m_rows);
    for (std::size_t at = rows.size(); at > 3;) {
        at -= 3;
        rows.insert(at, 1, ',');
    }
    EXPECT_THAT(process->Output(), testing::HasSubstr(rows + " rows, " + rows + " values"));
}

// What was read before stays, and the store is sound.
TEST_F(LargeCsvTest, ASignalEndsAnImportCleanly)
{
    const auto process = StartImport();
    // Sent before the program is ready for it, the signal would just kill it.
    const auto catches = [&] {
        return (std::strtoull(StatusOf(*process, "SigCgt:").c_str(), nullptr, 16) & (1u << (SIGINT - 1))) != 0;
    };
    while (!catches()) {
        ASSERT_FALSE(process->HasEnded());
        ASSERT_TRUE(process->Write(NextRows()));
    }
    process->Send(SIGINT);
    // It may be gone before it has read all of this.
    process->Write(NextRows());
    process->CloseInput();
    EXPECT_EQ(process->WaitForExit(), 130);
    EXPECT_THAT(process->Errors(), testing::HasSubstr("cancelled"));
    EXPECT_EQ(Run({"check-store", "--store", Store()}).status, 0);
}

TEST_F(LargeCsvTest, ASignalLeavesNoHalfFileOfAnExport)
{
    const auto import = StartImport();
    for (int i = 0; i < 8; ++i) {
        ASSERT_TRUE(import->Write(NextRows()));
    }
    import->CloseInput();
    ASSERT_EQ(import->WaitForExit(std::chrono::seconds(120)), 0) << import->Errors();
    const std::string file = m_folder.Write("out.csv", "old").string();
    // Sooner or later the signal comes before the end.
    const auto process = Start({"export", "--store", Store(), "--dataset", "mains", "--output", file});
    while (!process->HasEnded() &&
           (std::strtoull(StatusOf(*process, "SigCgt:").c_str(), nullptr, 16) & (1u << (SIGINT - 1))) == 0) {
    }
    process->Send(SIGINT);
    const std::optional<int> status = process->WaitForExit();
    ASSERT_TRUE(status == 130 || status == 0) << process->Errors();
    if (status == 130) {
        EXPECT_EQ(m_folder.Read("out.csv"), "old");
    }
    for (const std::string& name : m_folder.Names()) {
        EXPECT_FALSE(name.starts_with(".out")) << name;
    }
}

}  // namespace
}  // namespace zr::test
