// Publication between two processes: updates a second, round trips, and what a stopped client costs.
#include "BenchLine.h"
#include "MqttPeer.h"
#include "platform/Ddeml.h"

#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <new>
#include <numeric>
#include <string>
#include <vector>

namespace {

using Steady = std::chrono::steady_clock;
using zr::ddeml::Dispatch;
using zr::ddeml::Reply;

constexpr int kLinks = 100;
constexpr std::chrono::milliseconds kWait{100};

DWORD g_instance = 0;
std::uint64_t g_received = 0;
bool g_done = false;
std::array<BYTE, 8> g_value{};

double Seconds(Steady::time_point since)
{
    return std::chrono::duration<double>(Steady::now() - since).count();
}

HSZ String(const std::u16string& text)
{
    return DdeCreateStringHandleW(g_instance, text.c_str(), CP_WINUNICODE);
}

std::u16string ItemName(int number)
{
    const std::string digits = std::to_string(number);
    return u"V" + std::u16string(digits.begin(), digits.end());
}

HDDEDATA CALLBACK OnServer(UINT type, UINT format, HCONV, HSZ, HSZ item, HDDEDATA, ULONG_PTR, ULONG_PTR)
{
    switch (type) {
        case XTYP_CONNECT:
        case XTYP_ADVSTART:
            return Reply(1);
        case XTYP_ADVREQ:
            return DdeCreateDataHandle(g_instance, g_value.data(), g_value.size(), 0, item, format, 0);
        case XTYP_POKE:
            g_done = true;
            return Reply(DDE_FACK);
        default:
            return nullptr;
    }
}

HDDEDATA CALLBACK OnClient(UINT type, UINT, HCONV, HSZ, HSZ, HDDEDATA data, ULONG_PTR, ULONG_PTR)
{
    if (type == XTYP_ADVDATA) {
        std::array<BYTE, 8> bytes{};
        g_received += DdeGetData(data, bytes.data(), bytes.size(), 0) == bytes.size() ? 1U : 0U;
    }
    return Reply(type == XTYP_ADVDATA ? DDE_FACK : 0);
}

void Serve(const char16_t* name)
{
    g_instance = 0;
    DdeInitializeW(&g_instance, OnServer, 0, 0);
    DdeNameService(g_instance, String(name), nullptr, DNS_REGISTER);
}

// A client in a process of its own, which ends with the function.
pid_t StartClient(const char16_t* service, int links, const std::function<void(HCONV)>& run)
{
    const pid_t child = fork();
    if (child != 0) {
        return child;
    }
    // Its parent may not have registered yet.
    g_instance = 0;
    DdeInitializeW(&g_instance, OnClient, 0, 0);
    HCONV conversation = nullptr;
    while ((conversation = DdeConnect(g_instance, String(service), String(u"bench"), nullptr)) == nullptr) {
        Dispatch(kWait);
    }
    for (int i = 0; i < links; ++i) {
        DdeClientTransaction(nullptr, 0, conversation, String(ItemName(i)), CF_TEXT, XTYP_ADVSTART, 10000, nullptr);
    }
    run(conversation);
    _exit(0);
}

void AwaitLinks(std::uint64_t links)
{
    while (zr::ddeml::GetStatistics(g_instance).links < links) {
        Dispatch(kWait);
    }
}

std::vector<HSZ> Items()
{
    std::vector<HSZ> items;
    for (int i = 0; i < kLinks; ++i) {
        items.push_back(String(ItemName(i)));
    }
    return items;
}

void MeasureAdvise()
{
    constexpr std::uint64_t kUpdates = 3'000'000;
    const pid_t client = StartClient(u"BenchAdvise", kLinks, [](HCONV conversation) {
        while (g_received < kUpdates) {
            Dispatch(kWait);
        }
        std::array<BYTE, 1> yes{};
        DdeClientTransaction(yes.data(), 1, conversation, String(u"done"), CF_TEXT, XTYP_POKE, 10000, nullptr);
    });
    Serve(u"BenchAdvise");
    AwaitLinks(kLinks);
    const HSZ topic = String(u"bench");
    const std::vector<HSZ> items = Items();
    const auto start = Steady::now();
    std::uint64_t posted = 0;
    while (!g_done) {
        if (posted < kUpdates && zr::ddeml::PendingUpdates(g_instance) == 0) {
            for (const HSZ item : items) {
                DdePostAdvise(g_instance, topic, item);
            }
            posted += items.size();
            Dispatch(std::chrono::milliseconds(0));
        } else {
            Dispatch(kWait);
        }
    }
    zr::bench::PrintLine("dde.advise_100_links_per_s", static_cast<double>(kUpdates) / Seconds(start), "1/s");
    zr::bench::PrintLine("dde.advise_merged", static_cast<double>(zr::ddeml::GetStatistics(g_instance).merged),
                         "updates");
    waitpid(client, nullptr, 0);
    DdeUninitialize(g_instance);
}

constexpr int kRounds = 100'000;

double RoundTrip()
{
    const pid_t server = fork();
    if (server == 0) {
        Serve(u"BenchRound");
        while (!g_done) {
            Dispatch(kWait);
        }
        Dispatch(std::chrono::milliseconds(0));
        _exit(0);
    }
    g_instance = 0;
    DdeInitializeW(&g_instance, OnClient, 0, 0);
    HCONV conversation = nullptr;
    while ((conversation = DdeConnect(g_instance, String(u"BenchRound"), String(u"bench"), nullptr)) == nullptr) {
        Dispatch(kWait);
    }
    const HSZ item = String(u"V1");
    const auto start = Steady::now();
    for (int i = 0; i < kRounds; ++i) {
        DdeClientTransaction(nullptr, 0, conversation, item, CF_TEXT, XTYP_REQUEST, 10000, nullptr);
    }
    const double us = Seconds(start) / kRounds * 1e6;
    std::array<BYTE, 1> yes{};
    DdeClientTransaction(yes.data(), 1, conversation, String(u"done"), CF_TEXT, XTYP_POKE, 10000, nullptr);
    waitpid(server, nullptr, 0);
    DdeUninitialize(g_instance);
    return us;
}

// The frames of a request of "V1" and of its refusal.
constexpr std::size_t kRequestSize = 16 + 2 + 2 * 2 + 2;
constexpr std::size_t kReplySize = 16 + 2;

double BareRoundTrip()
{
    std::array<int, 2> pair{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair.data()) != 0) {
        return 0;
    }
    std::array<char, 64> buffer{};
    const pid_t server = fork();
    if (server == 0) {
        close(pair[0]);
        while (recv(pair[1], buffer.data(), kRequestSize, MSG_WAITALL) > 0) {
            send(pair[1], buffer.data(), kReplySize, MSG_NOSIGNAL);
        }
        _exit(0);
    }
    close(pair[1]);
    const auto start = Steady::now();
    for (int i = 0; i < kRounds; ++i) {
        send(pair[0], buffer.data(), kRequestSize, MSG_NOSIGNAL);
        recv(pair[0], buffer.data(), kReplySize, MSG_WAITALL);
    }
    const double us = Seconds(start) / kRounds * 1e6;
    close(pair[0]);
    waitpid(server, nullptr, 0);
    return us;
}

double ResidentKilobytes()
{
    std::ifstream statm("/proc/self/statm");
    double size = 0;
    double resident = 0;
    statm >> size >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1024;
}

constexpr std::size_t kReaders = 10;

// What each client has received so far, seen by the server's process.
class ReceivedCounts {
public:
    ReceivedCounts()
    {
        void* const memory = mmap(nullptr, sizeof(Counts), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) {
            std::perror("bench_dde: mmap");
            std::exit(1);
        }
        m_counts = new (memory) Counts{};
    }
    std::atomic<std::uint64_t>& operator[](std::size_t client) { return (*m_counts)[client]; }
    // Of the clients that are never stopped.
    std::uint64_t OfReaders() const
    {
        return std::accumulate(m_counts->begin(), m_counts->begin() + kReaders, std::uint64_t{0});
    }

private:
    using Counts = std::array<std::atomic<std::uint64_t>, kReaders + 1>;
    Counts* m_counts;
};

struct Rates {
    double posts;     // a second
    double received;  // a second, by all readers together
};

void MeasureStuckClient()
{
    constexpr int kPosts = 1'000'000;
    ReceivedCounts counts;
    std::vector<pid_t> clients;
    for (std::size_t i = 0; i < kReaders + 1; ++i) {
        clients.push_back(StartClient(u"BenchStuck", kLinks, [&counts, i](HCONV) {
            for (;;) {
                Dispatch(kWait);
                counts[i] = g_received;
            }
        }));
    }
    Serve(u"BenchStuck");
    AwaitLinks(static_cast<std::uint64_t>(kLinks) * clients.size());
    const HSZ topic = String(u"bench");
    const std::vector<HSZ> items = Items();
    const auto post = [&](int posts) -> Rates {
        const auto start = Steady::now();
        const std::uint64_t before = counts.OfReaders();
        for (int i = 0; i < posts; i += kLinks) {
            for (const HSZ item : items) {
                DdePostAdvise(g_instance, topic, item);
            }
            Dispatch(std::chrono::milliseconds(0));
        }
        const double time = Seconds(start);
        return {posts / time, static_cast<double>(counts.OfReaders() - before) / time};
    };
    post(kPosts / 10);
    const Rates before = post(kPosts);
    const double memory = ResidentKilobytes();
    kill(clients.back(), SIGSTOP);
    const Rates after = post(kPosts);
    zr::bench::PrintLine("dde.stuck_client_kb", ResidentKilobytes() - memory, "kB");
    zr::bench::PrintLine("dde.stuck_rate_ratio", after.posts / before.posts, "of the posts with all reading");
    zr::bench::PrintLine("dde.neighbours_per_s", after.received, "1/s, updates of the ten others");
    zr::bench::PrintLine("dde.neighbours_rate_ratio", after.received / before.received, "of the same with all reading");
    for (const pid_t client : clients) {
        kill(client, SIGKILL);
        waitpid(client, nullptr, 0);
    }
    DdeUninitialize(g_instance);
}

}  // namespace

int main()
{
    std::string folder = (std::filesystem::temp_directory_path() / "ddebenchXXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) {
        std::perror("bench_dde: mkdtemp");
        return 1;
    }
    setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);
    MeasureAdvise();
    g_done = false;
    const double bare = BareRoundTrip();
    const double ours = RoundTrip();
    zr::bench::PrintLine("dde.unix_socket_roundtrip_us", bare, "us");
    zr::bench::PrintLine("dde.roundtrip_us", ours, "us");
    zr::bench::PrintLine("dde.roundtrip_ratio", ours / bare, "x");
    MeasureStuckClient();
    zr::bench::PrintLine("dde.mqtt_per_s", zr::bench::MqttMessagesPerSecond(300'000), "1/s");
    std::filesystem::remove_all(folder);
    return 0;
}
