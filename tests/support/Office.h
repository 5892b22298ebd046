// An office suite that is not ours, as the reader of what our programs hand over.
#pragma once

#include "support/Process.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace zr::test {

using Cells = std::vector<std::vector<std::string>>;  // rows of cells, UTF-8

// RFC 4180, any line ends.
inline Cells CellsOfCsv(std::string_view text)
{
    Cells rows(1);
    std::string cell;
    bool isQuoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char character = text[i];
        if (isQuoted && character == '"' && i + 1 < text.size() && text[i + 1] == '"') {
            cell += text[++i];
        } else if (character == '"') {
            isQuoted = !isQuoted;
        } else if (isQuoted || (character != ',' && character != '\n' && character != '\r')) {
            cell += character;
        } else if (character != '\r') {
            rows.back().push_back(std::move(cell));
            cell.clear();
            if (character == '\n') {
                rows.emplace_back();
            }
        }
    }
    if (rows.back().empty() && cell.empty()) {
        rows.pop_back();
    } else {
        rows.back().push_back(std::move(cell));
    }
    return rows;
}

// Runs without a window, with a profile of its own, and is ended with all its processes when it takes too long. What it
// leaves behind lies in a folder that goes with this.
class Office {
public:
    // What a spreadsheet shows of a file: its only sheet. filter: of the file's format.
    Cells Spreadsheet(const std::filesystem::path& file, const std::string& filter)
    {
        return CellsOfCsv(Convert(file, filter, "csv:Text - txt - csv (StarCalc):44,34,76,1,,0,false,true", "csv"));
    }
    // What a word processor makes of a file: its only table.
    Cells TableOfDocument(const std::filesystem::path& file, const std::string& filter)
    {
        if (Convert(file, filter, "odt:writer8", "odt").empty()) {
            return {};
        }
        Process reader({"python3", ZR_ODT_TABLE, (m_folder / (file.stem().string() + ".odt")).string()});
        EXPECT_TRUE(reader.Started()) << "python3 is needed";
        EXPECT_EQ(reader.WaitForExit(), 0) << reader.Errors();
        return CellsOfCsv(reader.Output());
    }

private:
    static constexpr std::chrono::seconds kPatience{150};
    static constexpr int kNotFound = 127;  // exit status of "timeout"

    // The bytes that it has written; empty after a failed expectation.
    std::string Convert(const std::filesystem::path& file, const std::string& filter, const std::string& to,
                        const std::string& extension)
    {
        const std::string folder = m_folder.Path().string();
        // It is a script that starts a program: "timeout" ends both.
        Process office(
            {"timeout", "--kill-after=5", "120", "soffice", "-env:UserInstallation=file://" + folder + "/profile",
             "--headless", "--norestore", "--infilter=" + filter, "--convert-to", to, "--outdir", folder,
             file.string()},
            {"HOME=" + folder, "XDG_CONFIG_HOME=" + folder + "/config", "XDG_CACHE_HOME=" + folder + "/cache",
             "XDG_RUNTIME_DIR=" + folder, "TMPDIR=" + folder, "LC_ALL=C.UTF-8", "LANG=C.UTF-8", "DISPLAY="});
        const auto status = office.WaitForExit(kPatience);
        if (status == kNotFound) {
            ADD_FAILURE() << "soffice is needed; scripts/setup test installs it";
            return {};
        }
        EXPECT_EQ(status.value_or(-1), 0) << office.Output() << office.Errors();
        std::ifstream result(m_folder / (file.stem().string() + "." + extension), std::ios::binary);
        EXPECT_TRUE(result.is_open()) << office.Output() << office.Errors();
        return std::string(std::istreambuf_iterator<char>(result), {});
    }

    TempFolder m_folder;
};

}  // namespace zr::test
