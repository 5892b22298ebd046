// What the registry of the communication core costs.
#include "BenchLine.h"
#include "comm/ZRCommSystem.h"
#include "siblings/driversupport/ZRDeviceDriver.h"
#include "siblings/tools/XmlDocument.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iterator>
#include <string>
#include <vector>

namespace {

constexpr int kConnections = 500;
constexpr int kDevicesOfEach = 100;
constexpr int kRounds = 9;

// A device that knows its name alone.
class TrivialDriver : public ZRDeviceDriver {
public:
    bool LoadCfg(const XmlNode& node) override
    {
        SetName(node.Value(u"Name", u""));
        return !name.IsEmpty();
    }
};

std::string Document()
{
    std::string text = "<Kestrix><CommSystem><Connections>\n";
    for (int i = 0; i < kConnections; ++i) {
        text += "<Connection Name=\"Line " + std::to_string(1000 + i) +
                "\" Type=\"UDP\" Address=\"127.0.0.1\" Socket=\"" + std::to_string(10001 + i) + "\"/>\n";
    }
    text += "</Connections><Devices>\n";
    for (int i = 0; i < kConnections * kDevicesOfEach; ++i) {
        text += "<Device Driver=\"TRIVIAL\" Name=\"METER-" + std::to_string(100000 + i) + "\" Connection=\"Line " +
                std::to_string(1000 + i % kConnections) + "\"/>\n";
    }
    return text + "</Devices></CommSystem></Kestrix>\n";
}

}  // namespace

int main()
{
    XmlDocument document;
    if (!document.LoadText(Document(), "bench")) {
        std::fprintf(stderr, "%s\n", document.Error().Message().c_str());
        return 1;
    }
    ZRDeviceDriver::AddFactory([](const ZRBasicString&) -> ZRDeviceDriver* { return new TrivialDriver; });
    const XmlNode& node = *document.root->Node(u"CommSystem");

    std::vector<double> load;
    std::vector<double> reset;
    for (int round = 0; round < kRounds; ++round) {
        using Clock = std::chrono::steady_clock;
        using Milliseconds = std::chrono::duration<double, std::milli>;
        ZRCommSystem system;
        const auto begin = Clock::now();
        system.LoadCfg(node);
        const auto loaded = Clock::now();
        if (std::distance(system.DriversBegin(), system.DriversEnd()) != kConnections * kDevicesOfEach ||
            std::distance(system.GroupsBegin(), system.GroupsEnd()) != kConnections) {
            std::fprintf(stderr, "not everything was loaded\n");
            return 1;
        }
        const auto beginReset = Clock::now();
        system.Reset();
        load.push_back(Milliseconds(loaded - begin).count());
        reset.push_back(Milliseconds(Clock::now() - beginReset).count());
    }
    for (auto* const times : {&load, &reset}) {
        std::nth_element(times->begin(), times->begin() + kRounds / 2, times->end());
    }
    zr::bench::PrintLine("comm.loadcfg_50k_ms", load[kRounds / 2], "ms");
    zr::bench::PrintLine("comm.reset_50k_ms", reset[kRounds / 2], "ms");
    return 0;
}
