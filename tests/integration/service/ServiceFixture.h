// What the tests of the service share: a home of its own for each test, documents, the process, the registry.
#pragma once

#include "support/Process.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace zr::test {

// A device of a document.
struct DeviceLine {
    std::string name;
    std::string type;
    std::string connection;
    std::string more = "Period=\"0.1\"";
};

inline std::string UdpLine(const std::string& name, const std::string& port, int timeOut)
{
    return "<Connection Name=\"" + name + "\" Type=\"UDP\" Address=\"127.0.0.1\" Socket=\"" + port + "\" TimeOut=\"" +
           std::to_string(timeOut) + "\"/>\n";
}

inline std::string DocumentText(const std::string& connections, const std::vector<DeviceLine>& devices)
{
    std::string text = "<Configuration>\n<CommSystem>\n<Connections>\n" + connections + "</Connections>\n<Devices>\n";
    for (const DeviceLine& device : devices) {
        text += "<Device Name=\"" + device.name + "\" Driver=\"" + device.type + "\" Connection=\"" +
                device.connection + "\" " + device.more + "/>\n";
    }
    return text + "</Devices>\n</CommSystem>\n</Configuration>\n";
}

// The number behind a key of the line of figures; -1 if there is none.
inline long Figure(const std::string& json, const std::string& key)
{
    const std::size_t at = json.find("\"" + key + "\":");
    return at == std::string::npos ? -1 : std::stol(json.substr(at + key.size() + 3));
}

inline std::size_t CountEntries(const std::filesystem::path& folder)
{
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

// Descriptors and threads of a process.
struct Holdings {
    std::size_t descriptors = 0;
    std::size_t threads = 0;
    friend bool operator==(const Holdings&, const Holdings&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Holdings& holdings)
    {
        return out << holdings.descriptors << " descriptors, " << holdings.threads << " threads";
    }
};
inline Holdings HoldingsOf(const std::string& process)
{
    return {CountEntries("/proc/" + process + "/fd"), CountEntries("/proc/" + process + "/task")};
}

// Looks again and again until it holds; false after the limit.
inline bool Eventually(const std::function<bool()>& holds, std::chrono::milliseconds limit = std::chrono::seconds(20))
{
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!holds()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        ::poll(nullptr, 0, 1);
    }
    return true;
}

class ServiceFixture : public testing::Test {
protected:
    // The child's environment leads nowhere but into the test's folder.
    [[nodiscard]] std::vector<std::string> Environment() const
    {
        return {"HOME=" + m_folder.Path().string(), "XDG_RUNTIME_DIR=" + (m_folder / "run").string(),
                "XDG_CONFIG_HOME=" + (m_folder / "config").string(), "XDG_DATA_HOME=" + (m_folder / "data").string(),
                "KESTRIX_RESOURCES=" + m_resources.string()};
    }

    [[nodiscard]] std::unique_ptr<Process> StartService(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), ZR_KESTRIXD);
        return std::make_unique<Process>(arguments, Environment());
    }

    // Copies the resources into the test's folder, where it may spoil them.
    void CopyResources()
    {
        m_resources = m_folder / "resources";
        std::filesystem::create_directory(m_resources);
        for (const char* part : {"devices", "filters", "language"}) {
            std::filesystem::copy(std::filesystem::path(ZR_RESOURCES) / part, m_resources / part,
                                  std::filesystem::copy_options::recursive);
        }
    }

    TempFolder m_folder;
    std::filesystem::path m_resources = ZR_RESOURCES;
};

}  // namespace zr::test
