// Commands of the service in a folder of their own.
#pragma once

#include "support/Process.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace zr::test {

class CommandFixture : public testing::Test {
protected:
    struct Outcome {
        int status = -1;
        std::string output;
        std::string errors;
    };

    [[nodiscard]] std::vector<std::string> Environment() const
    {
        return {"HOME=" + m_folder.Path().string(), "XDG_DATA_HOME=" + (m_folder / "data").string(), "TZ=UTC0",
                // Freed memory that is kept for reports isn't what a command needs.
                "ASAN_OPTIONS=quarantine_size_mb=4"};
    }

    [[nodiscard]] std::unique_ptr<Process> Start(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), ZR_KESTRIXD);
        return std::make_unique<Process>(arguments, Environment());
    }

    Outcome Run(const std::vector<std::string>& arguments, const std::string& input = {}) const
    {
        const auto process = Start(arguments);
        EXPECT_TRUE(process->Started());
        if (!input.empty()) {
            EXPECT_TRUE(process->Write(input));
        }
        process->CloseInput();
        Outcome outcome;
        outcome.status = process->WaitForExit(std::chrono::seconds(120)).value_or(-1);
        outcome.output = process->Output();
        outcome.errors = process->Errors();
        return outcome;
    }

    [[nodiscard]] std::string Store() const { return (m_folder / "s.zrlog").string(); }

    // Of a file with the column p into M.P.
    Outcome Import(const std::string& text, const std::vector<std::string>& more = {}) const
    {
        std::vector<std::string> arguments{
            "import", m_folder.Write("t.csv", text).string(), "--dataset", "mains", "--store", Store(), "--map",
            "p=M.P"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Run(arguments);
    }
    Outcome Export(const std::vector<std::string>& more = {}) const
    {
        std::vector<std::string> arguments{"export", "--dataset", "mains", "--store", Store()};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Run(arguments);
    }

    TempFolder m_folder;
};

}  // namespace zr::test
