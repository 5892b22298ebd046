#include "TestDevice.h"

#include "siblings/driversupport/DeviceWarning.h"
#include "siblings/tools/XmlDocument.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
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

sockaddr_in Loopback(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return address;
}

int BoundSocket()
{
    const int fd = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = Loopback(0);
    if (fd < 0 || ::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        throw std::runtime_error("no loopback socket");
    }
    return fd;
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

UdpDevice::UdpDevice(Answer answer) : m_answer(std::move(answer)), m_socket(BoundSocket()), m_foreign(BoundSocket())
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    ::getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &size);
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { Serve(); });
}

UdpDevice::~UdpDevice()
{
    m_stop = true;
    // Wakes the thread; a receiver that is stopping doesn't look at what comes.
    const sockaddr_in address = Loopback(m_port);
    ::sendto(m_foreign, "", 0, 0, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    m_thread.join();
    ::close(m_socket);
    ::close(m_foreign);
}

void UdpDevice::Serve()
{
    while (!m_stop) {
        std::array<std::uint8_t, 512> room;
        std::vector<std::uint8_t> from(sizeof(sockaddr_in));
        socklen_t size = sizeof(sockaddr_in);
        const ssize_t received =
            ::recvfrom(m_socket, room.data(), room.size(), 0, reinterpret_cast<sockaddr*>(from.data()), &size);
        if (received <= 0 || m_stop) {
            continue;
        }
        m_peer = from;
        ++requests;
        Activity().happened.notify_all();
        m_answer(*this, {room.data(), static_cast<std::size_t>(received)});
    }
}

void UdpDevice::Send(std::span<const std::uint8_t> frame)
{
    ::sendto(m_socket, frame.data(), frame.size(), 0, reinterpret_cast<const sockaddr*>(m_peer.data()),
             static_cast<socklen_t>(m_peer.size()));
}

void UdpDevice::SendForeign(std::span<const std::uint8_t> frame)
{
    ::sendto(m_foreign, frame.data(), frame.size(), 0, reinterpret_cast<const sockaddr*>(m_peer.data()),
             static_cast<socklen_t>(m_peer.size()));
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
