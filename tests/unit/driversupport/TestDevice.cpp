#include "TestDevice.h"

#include "siblings/driversupport/DeviceWarning.h"
#include "siblings/tools/XmlDocument.h"

#include <asio/buffer.hpp>
#include <asio/io_context.hpp>
#include <asio/ip/udp.hpp>
#ifdef _WIN32
#include <windows.h>
// After it:
#include <tlhelp32.h>
#endif

#include <array>
#include <filesystem>
#include <stdexcept>

namespace zr::test {

namespace {

constexpr std::size_t kFrame = 4;

std::uint8_t Sum(std::span<const std::uint8_t> frame)
{
    return static_cast<std::uint8_t>(frame[0] + 3 * frame[1] + 5 * frame[2]);
}

struct ActivitySignal {
    std::mutex guard;
    std::condition_variable happened;
};

ActivitySignal& Activity()
{
    static ActivitySignal signal;
    return signal;
}

}  // namespace

bool WaitFor(const std::function<bool()>& condition, std::chrono::seconds limit)
{
    // Looked at again whenever a device or a driver did something, and now and then for what nobody tells.
    const auto end = std::chrono::steady_clock::now() + limit;
    std::unique_lock lock(Activity().guard);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        Activity().happened.wait_for(lock, std::chrono::milliseconds(1));
    }
    return true;
}

void EchoTransaction::Ask(std::uint8_t askedUnit, std::uint8_t askedRegister)
{
    unit = askedUnit;
    reg = askedRegister;
    request = {'Q', askedUnit, askedRegister};
    request[3] = Sum(request);
    requestSize = kFrame;
}

ZRDeviceTransaction::Verdict EchoTransaction::Examine(std::span<const std::uint8_t> received) const
{
    if (received[0] != 'R') {
        return {Verdict::Kind::Drop, 1};
    }
    if (received.size() < kFrame) {
        return {Verdict::Kind::NeedMore, 0};
    }
    const bool isOurs = received[1] == unit && received[3] == Sum(received);
    return {isOurs ? Verdict::Kind::Accept : Verdict::Kind::Drop, kFrame};
}

std::vector<std::uint8_t> EchoReply(std::uint8_t unit, std::uint8_t value)
{
    std::vector<std::uint8_t> frame{'R', unit, value, 0};
    frame[3] = Sum(frame);
    return frame;
}

EchoDriver::EchoDriver(const char16_t* deviceName, std::uint8_t unit, std::chrono::milliseconds period, int registers)
    : m_unit(unit), m_period(period), m_registers(registers)
{
    isRight = [unit](std::uint8_t reg, std::uint8_t value) { return IsRegisterPlusUnit(unit, reg, value); };
    std::vector<VariableDescription> variables(static_cast<std::size_t>(registers));
    for (int i = 0; i < registers; ++i) {
        VariableDescription& variable = variables[static_cast<std::size_t>(i)];
        variable.name = ZRBasicString(u"V");
        variable.name += static_cast<wchar>(u'0' + i);
        variable.output = i == 0;
        variable.maximum = 200.0;
    }
    SetVariables(std::make_shared<VariableTable>(variables));
    SetName(deviceName);
}

ZRDeviceTransaction* EchoDriver::NextTransaction()
{
    const int output = m_outputs.exchange(0);
    m_sendingOutput = output > 0;
    m_transaction.mayBeRepeated = !m_sendingOutput;
    if (m_sendingOutput) {
        m_transaction.Ask(m_unit, static_cast<std::uint8_t>(output));
        return &m_transaction;
    }
    if (m_next >= m_registers) {
        return nullptr;
    }
    m_transaction.Ask(m_unit, static_cast<std::uint8_t>(m_next++));
    return &m_transaction;
}

void EchoDriver::TransactionDone(ZRDeviceTransaction& transaction)
{
    switch (transaction.outcome) {
        case ZRDeviceTransaction::Outcome::Replied:
            wrongValues += isRight(m_transaction.reg, transaction.reply[2]) ? 0 : 1;
            outputsSent += m_sendingOutput ? 1 : 0;
            if (!m_sendingOutput) {
                Store()->At(m_transaction.reg).WriteNumber(transaction.reply[2]);
            }
            ++replies;
            break;
        case ZRDeviceTransaction::Outcome::TimedOut:
            ++timeouts;
            break;
        default:
            ++cancelled;
    }
    Activity().happened.notify_all();
}

bool EchoDriver::SetOutput(VariableHandle handle, double value)
{
    if (!AcceptsOutput(handle, value)) {
        return false;
    }
    m_outputs = static_cast<int>(value);
    AskForService();
    return true;
}

struct UdpDevice::Sockets {
    using Udp = asio::ip::udp;

    static Udp::endpoint Loopback(int port)
    {
        return {asio::ip::address_v4::loopback(), static_cast<asio::ip::port_type>(port)};
    }

    asio::io_context context;
    Udp::socket own{context, Loopback(0)};
    Udp::socket foreign{context, Loopback(0)};
    Udp::endpoint peer;
};

UdpDevice::UdpDevice(Answer answer) : m_answer(std::move(answer)), m_sockets(std::make_unique<Sockets>())
{
    m_port = m_sockets->own.local_endpoint().port();
    m_thread = std::thread([this] { Serve(); });
}

UdpDevice::~UdpDevice()
{
    m_stop = true;
    // Wakes the thread; a receiver that is stopping doesn't look at what comes.
    asio::error_code ignored;
    m_sockets->foreign.send_to(asio::buffer("", 0), Sockets::Loopback(m_port), 0, ignored);
    m_thread.join();
}

void UdpDevice::Serve()
{
    while (!m_stop) {
        std::array<std::uint8_t, 512> room;
        asio::ip::udp::endpoint from;
        asio::error_code error;
        const std::size_t received = m_sockets->own.receive_from(asio::buffer(room), from, 0, error);
        if (error || received == 0 || m_stop) {
            continue;
        }
        m_sockets->peer = from;
        ++requests;
        Activity().happened.notify_all();
        m_answer(*this, {room.data(), received});
    }
}

void UdpDevice::Send(std::span<const std::uint8_t> frame)
{
    asio::error_code ignored;
    m_sockets->own.send_to(asio::buffer(frame.data(), frame.size()), m_sockets->peer, 0, ignored);
}

void UdpDevice::SendForeign(std::span<const std::uint8_t> frame)
{
    asio::error_code ignored;
    m_sockets->foreign.send_to(asio::buffer(frame.data(), frame.size()), m_sockets->peer, 0, ignored);
}

void AnswerAtOnce(UdpDevice& device, std::span<const std::uint8_t> request)
{
    device.Send(EchoReply(request[1], static_cast<std::uint8_t>(request[1] + request[2])));
}

void Configure(ZRDeviceConnection& connection, std::initializer_list<std::pair<const char16_t*, std::string>> values)
{
    XmlDocument document;
    document.Create(u"Connection");
    for (const auto& [key, value] : values) {
        document.root->SetValue(key, ZRBasicString(std::u16string(value.begin(), value.end())));
    }
    if (!connection.LoadCfg(*document.root)) {
        throw std::runtime_error("the connection was refused");
    }
}

#ifdef _WIN32
int OpenDescriptors()
{
    DWORD count = 0;
    ::GetProcessHandleCount(::GetCurrentProcess(), &count);
    return static_cast<int>(count);
}

int RunningThreads()
{
    const HANDLE all = ::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    int count = 0;
    for (BOOL is = ::Thread32First(all, &entry); is != FALSE; is = ::Thread32Next(all, &entry)) {
        count += entry.th32OwnerProcessID == ::GetCurrentProcessId() ? 1 : 0;
    }
    ::CloseHandle(all);
    return count;
}
#else
namespace {

int Entries(const char* folder)
{
    int count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder)) {
        ++count;
    }
    return count;
}

}  // namespace

int OpenDescriptors()
{
    return Entries("/proc/self/fd");
}

int RunningThreads()
{
    return Entries("/proc/self/task");
}
#endif

int CountNotices(int type, const char16_t* name)
{
    static std::vector<DeviceNotice> seen;
    for (DeviceNotice& notice : TakeNotices()) {
        seen.push_back(std::move(notice));
    }
    int count = 0;
    for (const DeviceNotice& notice : seen) {
        count += static_cast<int>(notice.type) == type && notice.name == name ? 1 : 0;
    }
    return count;
}

}  // namespace zr::test
