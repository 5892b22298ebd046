// A tiny protocol, a driver that speaks it, and devices that answer: over real sockets and pseudo-terminals.
#pragma once

#include "siblings/driversupport/ZRDeviceDriver.h"
#include "siblings/driversupport/ZRDeviceWorkGroup.h"
#include "siblings/driversupport/ZRUDPDeviceConnection.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace zr::test {

// Waits, without a fixed sleep, until the condition holds; false after a generous limit.
bool WaitFor(const std::function<bool()>& condition, std::chrono::seconds limit = std::chrono::seconds(20));

// Request: 'Q', unit, register, sum. Reply: 'R', unit, value, sum. The register isn't in the reply, as on real lines.
struct EchoTransaction final : ZRDeviceTransaction {
    void Ask(std::uint8_t askedUnit, std::uint8_t askedRegister);
    Verdict Examine(std::span<const std::uint8_t> received) const override;
    std::uint8_t reg = 0;
};
std::vector<std::uint8_t> EchoReply(std::uint8_t unit, std::uint8_t value);

// Reads `registers` registers a cycle into variables V0, V1, ...; V0 is an output.
class EchoDriver final : public ZRDeviceDriver {
public:
    EchoDriver(const char16_t* deviceName, std::uint8_t unit, std::chrono::milliseconds period, int registers = 1);

    std::chrono::milliseconds Period() const override { return m_period; }
    void BeginCycle() override { m_next = 0; }
    ZRDeviceTransaction* NextTransaction() override;
    void TransactionDone(ZRDeviceTransaction& transaction) override;
    bool SetOutput(VariableHandle handle, double value) override;
    std::uint8_t Unit() const override { return m_unit; }

    std::atomic<int> replies{0};
    std::atomic<int> timeouts{0};
    std::atomic<int> cancelled{0};
    std::atomic<int> wrongValues{0};  // neither what the device serves nor an output
    std::atomic<int> outputsSent{0};
    std::function<bool(std::uint8_t reg, std::uint8_t value)> isRight;

private:
    std::uint8_t m_unit;
    std::chrono::milliseconds m_period;
    int m_registers;
    int m_next = 0;
    bool m_sendingOutput = false;
    std::atomic<int> m_outputs{0};
    EchoTransaction m_transaction;
};

// Answers on a loopback UDP port, on a thread of its own, as the given function says.
class UdpDevice {
public:
    using Answer = std::function<void(UdpDevice&, std::span<const std::uint8_t> request)>;
    explicit UdpDevice(Answer answer);
    ~UdpDevice();
    void Send(std::span<const std::uint8_t> frame);
    // From another port than the one that is asked.
    void SendForeign(std::span<const std::uint8_t> frame);
    [[nodiscard]] int Port() const { return m_port; }
    std::atomic<int> requests{0};

private:
    void Serve();
    Answer m_answer;
    struct Sockets;
    std::unique_ptr<Sockets> m_sockets;
    int m_port = 0;
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

// value = register + unit, at once.
void AnswerAtOnce(UdpDevice& device, std::span<const std::uint8_t> request);
inline bool IsRegisterPlusUnit(std::uint8_t unit, std::uint8_t reg, std::uint8_t value)
{
    return value == static_cast<std::uint8_t>(unit + reg);
}

// A connection configured from such values, as from a document.
void Configure(ZRDeviceConnection& connection, std::initializer_list<std::pair<const char16_t*, std::string>> values);

int OpenDescriptors();
int RunningThreads();
int CountNotices(int type, const char16_t* name);

}  // namespace zr::test
