// A folder for one test, gone with it.
#pragma once

#include <gtest/gtest.h>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace zr::test {

class TempFolder {
public:
    TempFolder()
    {
        std::random_device random;
        do {
            m_path = std::filesystem::temp_directory_path() / ("kestrix-test-" + std::to_string(random()));
        } while (!std::filesystem::create_directory(m_path));
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    [[nodiscard]] const std::filesystem::path& Path() const { return m_path; }
    [[nodiscard]] std::filesystem::path operator/(const std::string& name) const { return m_path / name; }

    std::filesystem::path Write(const std::string& name, std::string_view bytes) const
    {
        std::ofstream file(m_path / name, std::ios::binary);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        EXPECT_TRUE(file.flush().good()) << name;
        return m_path / name;
    }

    [[nodiscard]] std::string Read(const std::string& name) const
    {
        std::ifstream file(m_path / name, std::ios::binary);
        EXPECT_TRUE(file.is_open()) << name;
        return std::string(std::istreambuf_iterator<char>(file), {});
    }

    // Names of what it holds, sorted.
    [[nodiscard]] std::vector<std::string> Names() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_path)) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    std::filesystem::path m_path;
};

}  // namespace zr::test
