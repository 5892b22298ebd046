// The desktop on the demo plant, as a process off screen: how soon its window is there, and what memory it holds then.
#include "BenchLine.h"
#include "support/Process.h"
#include "support/TempFolder.h"

#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace zr::bench {
namespace {

using std::chrono::steady_clock;
using test::Process;

constexpr std::chrono::seconds kRunTime{10};  // until the memory is looked at

// Resident memory of a process in MB; 0 when it can't be told.
double ResidentMegabytes(pid_t process)
{
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.starts_with("VmRSS:")) {
            return std::stod(line.substr(6)) / 1024.0;  // given in KiB
        }
    }
    return 0.0;
}

int Run()
{
    const test::TempFolder folder;
    const std::string path = folder.Path().string();
    Process plant({ZR_PLANT, ZR_RESOURCES "/demo/plant.xml", "--until-eof"});
    const auto serial = plant.ReadLineWith("serial");
    const std::string line = serial.value_or("");
    const std::size_t device = line.find("/dev/");
    const std::string port =
        device != std::string::npos ? line.substr(device, line.find_first_of(" \t", device) - device) : "/dev/null";

    const auto start = steady_clock::now();
    Process desktop({ZR_KESTRIX, ZR_RESOURCES "/demo/kestrix.xml", "--port", "1=" + port, "--no-publication"},
                    {"QT_QPA_PLATFORM=offscreen", "XDG_RUNTIME_DIR=" + path, "XDG_CONFIG_HOME=" + path,
                     "XDG_DATA_HOME=" + path, "KESTRIX_RESOURCES=" ZR_RESOURCES});
    const auto shown = desktop.ReadErrorLine(
        [](const std::string& text) { return text.find("the window is shown") != std::string::npos; });
    if (!shown) {
        std::fprintf(stderr, "bench_kestrix: no window:\n%s\n", desktop.Errors().c_str());
        return 1;
    }
    const std::chrono::duration<double, std::milli> taken = steady_clock::now() - start;
    PrintLine("kestrix.first_window_ms", taken.count(), "ms");
    // It reads values and writes warnings meanwhile; nothing here asks for the line.
    desktop.ReadErrorLine([](const std::string&) { return false; }, kRunTime);
    PrintLine("kestrix.rss_mb", ResidentMegabytes(desktop.Pid()), "MB");
    desktop.Send(SIGTERM);
    return desktop.WaitForExit() == 0 ? 0 : 1;
}

}  // namespace
}  // namespace zr::bench

int main()
{
    return zr::bench::Run();
}
