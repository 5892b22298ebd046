// What watching the published values costs: one item whose value is unchanged, and a pass over all items with real
// links of a client in this process.
#include "BenchLine.h"
#include "dde/ZRDDEServer.h"
#include "dde/ZRDDEValues.h"
#include "platform/Ddeml.h"
#include "siblings/driversupport/ZRDeviceDriver.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kDevices = 1000;
constexpr int kVariablesOfEach = 100;
constexpr int kItems = kDevices * kVariablesOfEach;
constexpr int kChanged = kItems / 100;
constexpr int kRounds = 41;
constexpr int kReads = 2'000'000;
constexpr const char16_t* kService = u"ZRBENCH";

std::u16string Numbered(const char* prefix, int number)
{
    const std::string text = prefix + std::to_string(number);
    return {text.begin(), text.end()};
}

class BenchDevice : public ZRDeviceDriver {
public:
    BenchDevice(const std::u16string& deviceName, std::shared_ptr<const zr::VariableTable> table)
    {
        SetName(ZRBasicString(deviceName));
        SetVariables(std::move(table));
        for (std::size_t i = 0; i < kVariablesOfEach; ++i) {
            Store()->At(i).WriteNumber(static_cast<double>(i));
        }
    }
};

std::vector<std::unique_ptr<BenchDevice>> Devices()
{
    std::vector<zr::VariableDescription> descriptions(kVariablesOfEach);
    for (int i = 0; i < kVariablesOfEach; ++i) {
        descriptions[static_cast<std::size_t>(i)].name = ZRBasicString(Numbered("V", i));
    }
    const auto table = std::make_shared<const zr::VariableTable>(std::move(descriptions));
    std::vector<std::unique_ptr<BenchDevice>> devices;
    for (int i = 0; i < kDevices; ++i) {
        devices.push_back(std::make_unique<BenchDevice>(Numbered("METER-", i), table));
    }
    return devices;
}

std::uint64_t received = 0;

HDDEDATA CALLBACK OnClient(UINT type, UINT, HCONV, HSZ, HSZ, HDDEDATA, ULONG_PTR, ULONG_PTR)
{
    if (type != XTYP_ADVDATA) {
        return nullptr;
    }
    ++received;
    return zr::ddeml::Reply(DDE_FACK);
}

HSZ Handle(DWORD instance, const std::u16string& text)
{
    return DdeCreateStringHandleW(instance, text.c_str(), CP_WINUNICODE);
}

void Fail(const char* what)
{
    std::fprintf(stderr, "bench_dde_values: %s\n", what);
    std::exit(1);
}

// A link on every variable: a conversation a device.
void LinkAll(DWORD client)
{
    const HSZ service = Handle(client, kService);
    const UINT format = RegisterClipboardFormatW(u"XlTable");
    for (int device = 0; device < kDevices; ++device) {
        const HCONV conversation = DdeConnect(client, service, Handle(client, Numbered("METER-", device)), nullptr);
        if (conversation == nullptr) {
            Fail("a conversation was refused");
        }
        for (int i = 0; i < kVariablesOfEach; ++i) {
            if (DdeClientTransaction(nullptr, 0, conversation, Handle(client, Numbered("V", i)), format, XTYP_ADVSTART,
                                     10000, nullptr) == nullptr) {
                Fail("a link was refused");
            }
        }
    }
}

// Lets the client take what was posted.
void TakeUpdates(std::uint64_t total)
{
    const auto deadline = Clock::now() + std::chrono::seconds(60);
    while (received < total) {
        zr::ddeml::Dispatch(std::chrono::milliseconds(10));
        if (Clock::now() > deadline) {
            Fail("updates did not arrive");
        }
    }
}

double Median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + kRounds / 2, values.end());
    return values[kRounds / 2];
}

double MillisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Keeps the compiler from taking the loop out.
void Use(const void* value)
{
    asm volatile("" : : "g"(value) : "memory");
}

void MeasureOneItem(DWORD instance)
{
    ZRDDEValues::ZRTopicItem item;
    if (!item.Setup(Handle(instance, u"METER-0"), Handle(instance, u"V1"))) {
        Fail("no such variable");
    }
    item.Update();  // the first one posts
    std::vector<double> update;
    std::vector<double> read;
    for (int round = 0; round < kRounds; ++round) {
        auto start = Clock::now();
        for (int i = 0; i < kReads / kRounds; ++i) {
            tagSVariableValue value;
            item.variable.Value(value);
            Use(&value);
        }
        read.push_back(MillisecondsSince(start) * 1e6 / (kReads / kRounds));
        start = Clock::now();
        for (int i = 0; i < kReads / kRounds; ++i) {
            item.Update();
            Use(&item);
        }
        update.push_back(MillisecondsSince(start) * 1e6 / (kReads / kRounds));
    }
    zr::bench::PrintLine("dde.update_unchanged_ns", Median(update), "ns");
    zr::bench::PrintLine("variable.read_beside_ns", Median(read), "ns");
}

enum class Written { Changes, Everything };

// 1 % of the values change before each pass; the others are not written, or written anew with what they have.
void MeasureAllItems(const std::vector<std::unique_ptr<BenchDevice>>& devices, Written written, const char* line)
{
    std::uint64_t total = received;
    for (int settle = 0; settle < 2; ++settle) {
        const std::uint64_t before = ZRDDEValues::PostCount();
        ZRDDEValues::UpdateValues();
        total += ZRDDEValues::PostCount() - before;
        TakeUpdates(total);
    }
    std::vector<double> times;
    static std::vector<double> values(kItems, -1.0);
    static double fresh = 1000.0;
    for (int round = 0; round < kRounds; ++round) {
        fresh += 1.0;
        const int step = written == Written::Everything ? 1 : 100;
        for (int i = 0; i < kItems; i += step) {
            const auto item = static_cast<std::size_t>((i + round * 7) % kItems);
            double& value = values[item];
            value = i % 100 == 0 ? fresh : value < 0.0 ? static_cast<double>(item % kVariablesOfEach) : value;
            devices[item / kVariablesOfEach]->Store()->At(item % kVariablesOfEach).WriteNumber(value);
        }
        const std::uint64_t before = ZRDDEValues::PostCount();
        const auto start = Clock::now();
        ZRDDEValues::UpdateValues();
        times.push_back(MillisecondsSince(start));
        if (ZRDDEValues::PostCount() - before != kChanged) {
            Fail("not every change was posted");
        }
        total += kChanged;
        TakeUpdates(total);
    }
    zr::bench::PrintLine(line, Median(times), "ms");
}

}  // namespace

int main()
{
    const auto devices = Devices();
    ZRDDEServer server;
    if (!server.Start()) {
        Fail("DDE can't be begun");
    }
    server.AddService(kService, &ZRDDEValues::CanConnect, &ZRDDEValues::Connect);
    MeasureOneItem(ZRDDEServer::DDEInstance());

    DWORD client = 0;
    if (DdeInitializeW(&client, &OnClient, APPCMD_CLIENTONLY, 0) != DMLERR_NO_ERROR) {
        Fail("DDE can't be begun as a client");
    }
    LinkAll(client);
    if (ZRDDEValues::WatchedItemCount() != kItems) {
        Fail("not every item is watched");
    }
    MeasureAllItems(devices, Written::Changes, "dde.update_values_100k_ms");
    MeasureAllItems(devices, Written::Everything, "dde.update_values_rewritten_ms");
    DdeUninitialize(client);
    server.Stop();
    return 0;
}
