// A Modbus slave for tests: RTU frames over UDP on a port of its own, with the faults of a bad line. Posix.
#pragma once

#include "devices/modbus/ModbusFrame.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <random>
#include <set>
#include <span>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace zr::test {

// Answers every unit from one map of registers, which serves all functions; registers that aren't in it read as 0.
// Writes change the map. One thread of its own; all operations on any thread.
class ModbusResponder {
public:
    // Probabilities of each reply, drawn one after the other; the first that strikes is what happens.
    struct Faults {
        double mute = 0.0;     // no reply
        double late = 0.0;     // the reply comes so much later
        double doubled = 0.0;  // the reply comes twice
        double corrupt = 0.0;  // one byte of the reply is another
        double cut = 0.0;      // the reply ends early
        double foreign = 0.0;  // replies of another unit, of another function and from another port come first
        std::chrono::milliseconds delay{150};
    };
    // What register `address` of a read holds, in the request of that number, counted from 1.
    using Source = std::function<std::uint16_t(std::uint16_t address, std::uint32_t request)>;

    explicit ModbusResponder(std::uint32_t seed = 1) : m_random(seed)
    {
        m_socket = BoundSocket(m_port);
        std::uint16_t ignored = 0;
        m_stranger = BoundSocket(ignored);
        m_wake = ::eventfd(0, EFD_CLOEXEC);
        m_thread = std::thread([this] { Serve(); });
    }
    ModbusResponder(const ModbusResponder&) = delete;
    ModbusResponder& operator=(const ModbusResponder&) = delete;
    ~ModbusResponder()
    {
        const std::uint64_t one = 1;
        EXPECT_EQ(::write(m_wake, &one, sizeof one), static_cast<ssize_t>(sizeof one));
        m_thread.join();
        ::close(m_socket);
        ::close(m_stranger);
        ::close(m_wake);
    }

    [[nodiscard]] std::string Port() const { return std::to_string(m_port); }

    void SetMuted(bool muted)
    {
        const std::lock_guard lock(m_guard);
        m_muted = muted;
    }
    void SetFaults(const Faults& faults)
    {
        const std::lock_guard lock(m_guard);
        m_faults = faults;
    }
    void SetRegister(std::uint16_t address, std::uint16_t value)
    {
        const std::lock_guard lock(m_guard);
        m_registers[address] = value;
    }
    // Takes the place of the map.
    void SetSource(Source source)
    {
        const std::lock_guard lock(m_guard);
        m_source = std::move(source);
    }
    // Whether that register has ever been given that value in a reply, whatever became of the reply.
    [[nodiscard]] bool HasServed(std::uint16_t address, std::uint16_t value)
    {
        const std::lock_guard lock(m_guard);
        return m_served.contains({address, value});
    }
    [[nodiscard]] std::uint32_t Requests()
    {
        const std::lock_guard lock(m_guard);
        return m_requests;
    }
    // Faults that struck, muted requests included.
    [[nodiscard]] std::uint32_t Struck()
    {
        const std::lock_guard lock(m_guard);
        return m_struck;
    }
    // Waits until so many requests more than now have come, whether answered or not. False after the limit.
    bool WaitForRequests(std::uint32_t more, std::chrono::milliseconds limit = std::chrono::seconds(20))
    {
        std::unique_lock lock(m_guard);
        const std::uint32_t wanted = m_requests + more;
        return m_changed.wait_for(lock, limit, [&] { return m_requests >= wanted; });
    }

private:
    using Clock = std::chrono::steady_clock;
    using Bytes = std::vector<std::uint8_t>;
    struct Late {
        Bytes frame;
        sockaddr_in whom;
    };

    static int BoundSocket(std::uint16_t& port)
    {
        const int descriptor = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        EXPECT_EQ(::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), size), 0);
        EXPECT_EQ(::getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size), 0);
        port = ntohs(address.sin_port);
        return descriptor;
    }

    void Serve()
    {
        for (;;) {
            std::array<pollfd, 2> waited{{{m_socket, POLLIN, 0}, {m_wake, POLLIN, 0}}};
            ::poll(waited.data(), waited.size(), SendWhatIsDue());
            if (waited[1].revents != 0) {
                return;
            }
            if (waited[0].revents != 0) {
                Receive();
            }
        }
    }

    // Milliseconds until the next is due, -1 if none is.
    int SendWhatIsDue()
    {
        const auto now = Clock::now();
        while (!m_late.empty() && m_late.begin()->first <= now) {
            Send(m_socket, m_late.begin()->second.frame, m_late.begin()->second.whom);
            m_late.erase(m_late.begin());
        }
        if (m_late.empty()) {
            return -1;
        }
        return static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(m_late.begin()->first - now).count());
    }

    void Receive()
    {
        std::array<std::uint8_t, 512> bytes{};
        sockaddr_in whom{};
        socklen_t size = sizeof whom;
        const ssize_t got =
            ::recvfrom(m_socket, bytes.data(), bytes.size(), MSG_DONTWAIT, reinterpret_cast<sockaddr*>(&whom), &size);
        if (got <= 0) {
            return;
        }
        const auto received =
            modbus::ParseRequest(modbus::Framing::Rtu, std::span(bytes).first(static_cast<std::size_t>(got)));
        if (received.verdict.kind != modbus::Verdict::Kind::Accept) {
            return;
        }
        const std::lock_guard lock(m_guard);
        ++m_requests;
        if (m_muted || Strikes(m_faults.mute)) {
            m_struck += m_muted ? 1u : 0u;
        } else {
            Deliver(received.request, Reply(received), whom);
        }
        m_changed.notify_all();
    }

    Bytes Reply(const modbus::ReceivedRequest& received)
    {
        const modbus::Request& request = received.request;
        Bytes frame(modbus::kMaxFrame);
        std::array<std::uint8_t, 252> data{};
        if (received.exception != modbus::Exception::None) {
            frame.resize(modbus::EncodeException(modbus::Framing::Rtu, request, received.exception, frame));
            return frame;
        }
        for (std::uint16_t i = 0; i < request.count; ++i) {
            Carry(request, i, data);
        }
        const std::size_t used =
            modbus::IsReadFunction(request.function) ? modbus::DataBytes(request.function, request.count) : 0;
        frame.resize(modbus::EncodeReply(modbus::Framing::Rtu, request, std::span(data).first(used), frame));
        return frame;
    }

    // Reads or writes one bit or register of the request.
    void Carry(const modbus::Request& request, std::uint16_t index, std::span<std::uint8_t> data)
    {
        const auto address = static_cast<std::uint16_t>(request.first + index);
        switch (request.function) {
            case modbus::Function::WriteSingleCoil:
                m_registers[address] = request.value == modbus::kCoilOn ? 1 : 0;
                return;
            case modbus::Function::WriteSingleRegister:
                m_registers[address] = request.value;
                return;
            case modbus::Function::WriteMultipleCoils:
                m_registers[address] = modbus::BitAt(request.data, index) ? 1 : 0;
                return;
            case modbus::Function::WriteMultipleRegisters:
                m_registers[address] = modbus::RegisterAt(request.data, index);
                return;
            default:
                break;
        }
        const std::uint16_t value = m_source ? m_source(address, m_requests) : m_registers[address];
        m_served.insert({address, value});
        if (modbus::IsBitFunction(request.function)) {
            modbus::SetBit(data, index, value != 0);
        } else {
            modbus::SetRegister(data, index, value);
        }
    }

    void Deliver(const modbus::Request& request, Bytes frame, const sockaddr_in& whom)
    {
        if (Strikes(m_faults.late)) {
            m_late.emplace(Clock::now() + m_faults.delay, Late{frame, whom});
            return;
        }
        if (Strikes(m_faults.corrupt)) {
            frame[m_random() % frame.size()] ^= static_cast<std::uint8_t>(1 + m_random() % 255);
        } else if (Strikes(m_faults.cut)) {
            frame.resize(1 + m_random() % (frame.size() - 1));
        } else if (Strikes(m_faults.doubled)) {
            Send(m_socket, frame, whom);
        } else if (Strikes(m_faults.foreign)) {
            SendForeign(request, whom);
        }
        Send(m_socket, frame, whom);
    }

    // Whole frames with right checksums that aren't replies to the request; their registers are FFFFh.
    void SendForeign(const modbus::Request& request, const sockaddr_in& whom)
    {
        std::array<std::uint8_t, 252> data{};
        data.fill(0xFF);
        modbus::Request other = request;
        const auto send = [&](int from) {
            Bytes frame(modbus::kMaxFrame);
            const std::size_t used = modbus::DataBytes(other.function, other.count);
            frame.resize(modbus::EncodeReply(modbus::Framing::Rtu, other, std::span(data).first(used), frame));
            Send(from, frame, whom);
        };
        send(m_stranger);
        other.unit = static_cast<std::uint8_t>(request.unit + 1);
        send(m_socket);
        other = request;
        other.function = request.function == modbus::Function::ReadHoldingRegisters
                             ? modbus::Function::ReadInputRegisters
                             : modbus::Function::ReadHoldingRegisters;
        send(m_socket);
    }

    bool Strikes(double probability)
    {
        const bool strikes = std::uniform_real_distribution<>(0.0, 1.0)(m_random) < probability;
        m_struck += strikes ? 1u : 0u;
        return strikes;
    }

    static void Send(int descriptor, const Bytes& frame, const sockaddr_in& whom)
    {
        // Whoever asked may be gone.
        ::sendto(descriptor, frame.data(), frame.size(), 0, reinterpret_cast<const sockaddr*>(&whom), sizeof whom);
    }

    int m_socket = -1;
    int m_stranger = -1;
    int m_wake = -1;
    std::uint16_t m_port = 0;
    std::multimap<Clock::time_point, Late> m_late;  // by the time when it is due; serving thread only

    std::mutex m_guard;
    std::condition_variable m_changed;
    bool m_muted = false;
    Faults m_faults;
    std::map<std::uint16_t, std::uint16_t> m_registers;
    Source m_source;
    std::set<std::pair<std::uint16_t, std::uint16_t>> m_served;
    std::uint32_t m_requests = 0;
    std::uint32_t m_struck = 0;
    std::mt19937 m_random;

    std::thread m_thread;
};

}  // namespace zr::test
