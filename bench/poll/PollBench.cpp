// Speed and size of the device side: reading, ticking, polling.
#include "BenchLine.h"
#include "EchoPeer.h"
#include "PollDriver.h"
#include "siblings/driversupport/ZRDeviceWorkGroup.h"
#include "siblings/driversupport/ZRDriverVariable.h"
#include "siblings/driversupport/ZRUDPDeviceConnection.h"
#include "siblings/tools/XmlDocument.h"

#include <sys/resource.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>

namespace {

using namespace zr::bench;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

double Seconds(Clock::duration span)
{
    return std::chrono::duration<double>(span).count();
}

void Wait(double seconds)
{
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

double ProcessCpuSeconds()
{
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

double ResidentMegabytes()
{
    std::ifstream statm("/proc/self/statm");
    double total = 0;
    double resident = 0;
    statm >> total >> resident;
    return resident * static_cast<double>(::sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0);
}

ZRBasicString Name(const char* prefix, int number)
{
    ZRBasicString name;
    for (const char character : prefix + std::to_string(number)) {
        name += static_cast<wchar>(character);
    }
    return name;
}

void Configure(ZRUDPDeviceConnection& connection, const ZRBasicString& name, int port, int timeOut = 1000)
{
    XmlDocument document;
    document.Create(u"Connection");
    document.root->SetValue(u"Name", name);
    document.root->SetValue(u"Address", u"127.0.0.1");
    document.root->SetValue(u"Socket", Name("", port));
    document.root->SetValue(u"TimeOut", Name("", timeOut));
    if (!connection.LoadCfg(*document.root)) {
        std::fprintf(stderr, "the connection was refused\n");
        std::exit(1);
    }
}

// One line: a connection, its group and its drivers.
struct Line {
    Line(const ZRBasicString& name, int port, int drivers, milliseconds period, int timeOut = 1000) : group(name)
    {
        static const auto table = NumberTable(10);
        Configure(connection, name, port, timeOut);
        for (int i = 0; i < drivers; ++i) {
            members.push_back(
                std::make_unique<PollDriver>(name + Name("-", i), static_cast<std::uint8_t>(i + 1), period, table));
            group.Add(members.back().get());
        }
        group.Start(&connection);
    }

    ZRUDPDeviceConnection connection;
    std::vector<std::unique_ptr<PollDriver>> members;  // before the group: it goes first
    ZRDeviceWorkGroup group;
};

void BenchRead()
{
    PollDriver driver(u"READ", 1, milliseconds(1000), NumberTable(100));
    driver.Store()->At(50).WriteNumber(1.5);
    ZRDriverVariable variable;
    variable.Setup(u"READ.V50");
    if (!variable.Lock()) {
        return;
    }
    constexpr int kReads = 5000000;
    double best = 1e9;
    for (int round = 0; round < 5; ++round) {
        tagSVariableValue value;
        const auto begin = Clock::now();
        for (int i = 0; i < kReads; ++i) {
            variable.Value(value);
            asm volatile("" : : "g"(&value) : "memory");
        }
        best = std::min(best, 1e9 * Seconds(Clock::now() - begin) / kReads);
    }
    PrintLine("variable.read_ns", best, "ns");
}

// Opens at once and never answers: so that the groups are started without ten thousand sockets.
class IdleConnection final : public ZRDeviceConnection {
public:
    bool CanDoTransaction() const override { return false; }
    void DoTransaction(ZRDeviceTransaction&) override {}
    bool Open() override { return true; }
    void Close() override {}
    bool LoadCfg(const XmlNode&) override { return true; }
    bool CanSetOutput() const override { return false; }
    void SetOutput(int, int, int, int) override {}
};

void BenchTick()
{
    constexpr int kGroups = 10000;
    const auto table = NumberTable(1);
    std::vector<std::unique_ptr<IdleConnection>> connections;
    std::vector<std::unique_ptr<PollDriver>> drivers;
    std::vector<std::unique_ptr<ZRDeviceWorkGroup>> groups;
    for (int i = 0; i < kGroups; ++i) {
        connections.push_back(std::make_unique<IdleConnection>());
        drivers.push_back(std::make_unique<PollDriver>(Name("TICK", i), std::uint8_t{1}, milliseconds(1000), table));
        groups.push_back(std::make_unique<ZRDeviceWorkGroup>(Name("GROUP", i)));
        groups.back()->Add(drivers.back().get());
        groups.back()->Start(connections.back().get());
    }
    std::vector<double> passes;
    for (int pass = 0; pass < 51; ++pass) {
        Wait(0.02);  // the passes of the worker are a second apart: the last one is done with
        const auto begin = Clock::now();
        for (const auto& group : groups) {
            group->OneHzCall(ZRDateTime(static_cast<std::uint32_t>(pass), 0));
        }
        passes.push_back(1e3 * Seconds(Clock::now() - begin));
    }
    std::sort(passes.begin(), passes.end());
    PrintLine("tick.10k_groups_ms", passes[passes.size() / 2], "ms");
    for (const auto& group : groups) {
        group->Stop();
    }
}

double PollRate(int port, double seconds)
{
    Line line(u"RATE", port, 1, milliseconds(0));
    Wait(0.2);
    const std::uint64_t before = line.members[0]->Replies();
    const auto begin = Clock::now();
    Wait(seconds);
    const double count = static_cast<double>(line.members[0]->Replies() - before);
    return count / Seconds(Clock::now() - begin);
}

// Ours and the peers in turn, so that what else the machine does meets them all alike.
void BenchRatio(const char* cores, int peerCore)
{
    PinTo(0);
    std::vector<double> ratios;
    std::vector<double> ours;
    std::vector<double> bare;
    std::vector<double> modbus;
    for (int round = 0; round < 5; ++round) {
        const EchoPeer peer(1, peerCore);
        bare.push_back(EchoRate(peer.Port(0), 0.5));
        ours.push_back(PollRate(peer.Port(0), 0.5));
        modbus.push_back(LibmodbusRate(peerCore, 0.5));
        ratios.push_back(ours.back() / bare.back());
    }
    const auto median = [](std::vector<double>& values) {
        std::sort(values.begin(), values.end());
        return values[values.size() / 2];
    };
    const std::string tail(cores);
    PrintLine(("poll.udp_ratio_" + tail).c_str(), median(ratios), "of bare UDP echo");
    PrintLine(("poll.udp_" + tail + "_per_s").c_str(), median(ours), "transactions/s");
    PrintLine(("poll.udp_echo_" + tail + "_per_s").c_str(), median(bare), "round trips/s");
    PrintLine(("poll.libmodbus_tcp_" + tail + "_per_s").c_str(), median(modbus), "transactions/s");
    PinTo(-1);
}

void BenchConnections()
{
    constexpr int kConnections = 2000;
    constexpr int kTicks = 6;
    const EchoPeer peer(kConnections, -1);
    std::vector<std::unique_ptr<Line>> lines;
    for (int i = 0; i < kConnections; ++i) {
        lines.push_back(std::make_unique<Line>(Name("C", i), peer.Port(i), 1, milliseconds(1000)));
    }
    Wait(1.0);
    const auto replies = [&] {
        std::uint64_t sum = 0;
        for (const auto& line : lines) {
            sum += line->members[0]->Replies();
        }
        return sum;
    };
    const std::uint64_t before = replies();
    const double cpu = ProcessCpuSeconds();
    const auto begin = Clock::now();
    for (int tick = 0; tick < kTicks; ++tick) {
        for (const auto& line : lines) {
            line->group.OneHzCall(ZRDateTime(static_cast<std::uint32_t>(tick), 0));
        }
        Wait(1.0);
    }
    const double used = ProcessCpuSeconds() - cpu;
    PrintLine("poll.2000_connections_cpu_pct", 100.0 * used / Seconds(Clock::now() - begin), "% of a core");
    PrintLine("poll.2000_connections_polls", static_cast<double>(replies() - before) / kTicks, "answered a second");
}

void BenchDevices()
{
    const double before = ResidentMegabytes();
    std::vector<std::unique_ptr<PollDriver>> drivers;
    for (int i = 0; i < 1000; ++i) {
        // A table each, as if all devices were of different types.
        drivers.push_back(
            std::make_unique<PollDriver>(Name("DEV", i), std::uint8_t{1}, milliseconds(1000), NumberTable(100)));
        for (std::size_t v = 0; v < 100; ++v) {
            drivers.back()->Store()->At(v).WriteNumber(static_cast<double>(v));
        }
    }
    PrintLine("devices.1000x100_mb", ResidentMegabytes() - before, "MB");
}

// Cycles a second of nine good devices, alone and with a silent tenth.
double NeighbourRate(int drivers, double seconds)
{
    const EchoPeer peer(1, -1, 10);
    Line line(u"NEIGHBOURS", peer.Port(0), drivers, milliseconds(20), 100);
    Wait(1.5);  // until the silent one was found silent
    const auto good = [&] {
        std::uint64_t sum = 0;
        for (std::size_t i = 0; i < 9; ++i) {
            sum += line.members[i]->Replies();
        }
        return static_cast<double>(sum);
    };
    const double before = good();
    const auto begin = Clock::now();
    Wait(seconds);
    return (good() - before) / Seconds(Clock::now() - begin);
}

void BenchSilentNeighbour()
{
    // Long enough for the first two probes of the silent one.
    const double alone = NeighbourRate(9, 12.0);
    const double beside = NeighbourRate(10, 12.0);
    PrintLine("poll.silent_neighbour_pct", 100.0 * (alone / beside - 1.0), "% longer period");
}

void RaiseDescriptorLimit()
{
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

}  // namespace

// With an argument, only the benches whose lines begin with it.
int main(int argc, char** argv)
{
    const struct {
        const char* line;
        void (*run)();
    } benches[] = {
        {"devices.1000x100_mb", BenchDevices},
        {"variable.read_ns", BenchRead},
        {"tick.10k_groups_ms", BenchTick},
        {"poll.udp_ratio_1core", [] { BenchRatio("1core", 0); }},
        {"poll.udp_ratio_2core", [] { BenchRatio("2core", 1); }},
        {"poll.2000_connections_cpu_pct", BenchConnections},
        {"poll.silent_neighbour_pct", BenchSilentNeighbour},
    };
    RaiseDescriptorLimit();
    const char* filter = argc > 1 ? argv[1] : "";
    for (const auto& bench : benches) {
        if (std::strncmp(bench.line, filter, std::strlen(filter)) == 0) {
            bench.run();
        }
    }
    return 0;
}
