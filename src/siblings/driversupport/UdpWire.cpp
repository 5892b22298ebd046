#include "siblings/driversupport/UdpWire.h"

#include <asio/buffer.hpp>
#include <asio/io_context.hpp>
#include <asio/ip/udp.hpp>

#include <algorithm>
#include <array>
#include <utility>

namespace zr {

using asio::ip::udp;

namespace {

// More than any frame: what is longer is damage, and is cut without harm.
constexpr std::size_t kRoom = 512;
constexpr std::size_t kMostDiscarded = 64;

// The system's own lookup. It ends with the resolver.
HostLookup SystemLookup(std::shared_ptr<udp::resolver> resolver)
{
    return [resolver = std::move(resolver)](const std::string& host, HostsFound found) {
        resolver->async_resolve(host, "", [found = std::move(found)](const asio::error_code& error, const auto& all) {
            std::vector<std::string> addresses;
            for (const auto& each : all) {
                addresses.push_back(each.endpoint().address().to_string());
            }
            found(addresses, error.message());
        });
    };
}

// That nobody listens at the far end is told on some systems only; it is silence on all of them.
bool IsHarmless(const asio::error_code& error)
{
    return error == asio::error::connection_refused || error == asio::error::connection_reset ||
           error == asio::error::message_size || error == asio::error::host_unreachable ||
           error == asio::error::network_unreachable;
}

// What outlives the wire while something of it is under way.
struct UdpSocket : std::enable_shared_from_this<UdpSocket> {
    UdpSocket(asio::io_context& eventLoop, Wire::Listener& wireListener, std::string host, std::uint16_t hostPort)
        : loop(eventLoop), listener(wireListener), address(std::move(host)), port(hostPort), socket(eventLoop)
    {
    }

    void Open()
    {
        asio::error_code error;
        const auto numeric = asio::ip::make_address(address, error);
        if (error) {
            LookUp();
        } else {
            lookup = nullptr;
            Found({numeric.to_string()}, {});
        }
    }

    void LookUp()
    {
        const HostLookup ask = lookup;  // what is found may destroy the wire, and with it the lookup
        if (ask && !std::exchange(isLookingUp, true)) {
            ask(address, [self = shared_from_this()](const auto& addresses, const std::string& reason) {
                self->isLookingUp = false;
                if (!self->isGone) {
                    self->Found(addresses, reason);
                }
            });
        }
    }

    void Found(const std::vector<std::string>& addresses, const std::string& reason)
    {
        std::vector<udp::endpoint> candidates;
        asio::error_code error;
        for (const std::string& each : addresses) {
            const auto host = asio::ip::make_address(each, error);
            if (!error) {
                candidates.emplace_back(host, port);
            }
        }
        if (socket.is_open()) {
            TakeOther(std::move(candidates));
        } else if (candidates.empty()) {
            listener.WireFailed(Wire::Failure::AddressUnknown, reason);
        } else if (Take(candidates, error)) {
            listener.WireOpened();
        } else {
            listener.WireFailed(Wire::Failure::Line, error.message());
        }
    }

    void TakeOther(std::vector<udp::endpoint> candidates)
    {
        const auto present = std::find(candidates.begin(), candidates.end(), peer);
        if (present != candidates.end()) {
            if (hasAnswered) {
                return;
            }
            std::rotate(candidates.begin(), present + 1, candidates.end());
        }
        asio::error_code ignored;
        Take(candidates, ignored);
    }

    // The first of them that a socket can be made for; false if there is none, and all stays as it is.
    bool Take(const std::vector<udp::endpoint>& candidates, asio::error_code& error)
    {
        for (const udp::endpoint& candidate : candidates) {
            udp::socket fresh(loop);
            fresh.open(candidate.protocol(), error);
            if (!error) {
                fresh.bind(udp::endpoint(candidate.protocol(), 0), error);
            }
            if (!error) {
                fresh.non_blocking(true, error);
            }
            if (!error) {
                socket = std::move(fresh);  // closes the one before
                peer = candidate;
                hasAnswered = false;
                ++generation;
                Receive();
                return true;
            }
        }
        return false;
    }

    void Receive()
    {
        socket.async_receive_from(
            asio::buffer(room), sender,
            [self = shared_from_this(), of = generation](const asio::error_code& error, std::size_t size) {
                if (!self->isGone && self->generation == of) {
                    self->Received(error, size);
                }
            });
    }

    void Received(const asio::error_code& error, std::size_t size)
    {
        if (error && !IsHarmless(error)) {
            listener.WireFailed(Wire::Failure::Line, error.message());
            return;
        }
        const std::uint32_t of = generation;
        if (!error && sender != peer) {
            listener.WireForeign();
        } else if (!error) {
            hasAnswered = true;
            listener.WireReceived({room.data(), size});
        }
        if (!isGone && generation == of) {
            Receive();
        }
    }

    std::size_t Discard()
    {
        std::array<std::uint8_t, kRoom> ignored;
        std::size_t count = 0;
        asio::error_code error;
        while (count < kMostDiscarded) {
            udp::endpoint from;
            socket.receive_from(asio::buffer(ignored), from, 0, error);
            if (error) {
                break;
            }
            ++count;
        }
        return count;
    }

    asio::io_context& loop;
    Wire::Listener& listener;
    std::string address;
    std::uint16_t port;
    HostLookup lookup;  // none for an address in numbers
    udp::socket socket;
    udp::endpoint peer;
    udp::endpoint sender;
    std::array<std::uint8_t, kRoom> room{};
    std::uint32_t generation = 0;  // of the socket: what was under way on an earlier one doesn't count
    bool hasAnswered = false;
    bool isLookingUp = false;
    bool isGone = false;
};

class UdpWire final : public Wire {
public:
    UdpWire(asio::io_context& loop, Listener& listener, const std::string& address, std::uint16_t port,
            HostLookup lookup)
        : m_socket(std::make_shared<UdpSocket>(loop, listener, address, port))
    {
        if (!lookup) {
            m_resolver = std::make_shared<udp::resolver>(loop);
            lookup = SystemLookup(m_resolver);
        }
        m_socket->lookup = std::move(lookup);
    }
    ~UdpWire() override
    {
        asio::error_code ignored;
        m_socket->isGone = true;
        m_socket->lookup = nullptr;
        if (m_resolver) {
            m_resolver->cancel();
        }
        m_socket->socket.close(ignored);
    }

    void Open() override
    {
        const std::shared_ptr<UdpSocket> keptAlive = m_socket;  // a failure may destroy this wire
        keptAlive->Open();
    }
    void Send(std::span<const std::uint8_t> bytes) override
    {
        asio::error_code ignored;
        m_socket->socket.send_to(asio::buffer(bytes.data(), bytes.size()), m_socket->peer, 0, ignored);
    }
    std::size_t Discard() override { return m_socket->Discard(); }
    void LookAgain() override { m_socket->LookUp(); }

private:
    std::shared_ptr<UdpSocket> m_socket;
    std::shared_ptr<udp::resolver> m_resolver;
};

}  // namespace

std::unique_ptr<Wire> MakeUdpWire(IoContext& context, Wire::Listener& listener, const std::string& address,
                                  std::uint16_t port, HostLookup lookup)
{
    return std::make_unique<UdpWire>(context.Loop(), listener, address, port, std::move(lookup));
}

}  // namespace zr
