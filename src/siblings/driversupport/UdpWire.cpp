#include "siblings/driversupport/UdpWire.h"

#include <asio/buffer.hpp>
#include <asio/io_context.hpp>
#include <asio/ip/udp.hpp>

#include <array>
#include <utility>

namespace zr {

using asio::ip::udp;

struct UdpWire::Impl : std::enable_shared_from_this<UdpWire::Impl> {
    // More than any frame: what is longer is damage, and is cut without harm.
    static constexpr std::size_t kRoom = 512;
    static constexpr std::size_t kMostDiscarded = 64;

    Impl(asio::io_context& loop, Listener& wireListener, std::string host, std::uint16_t hostPort)
        : listener(wireListener), address(std::move(host)), port(hostPort), resolver(loop), socket(loop)
    {
    }

    void Resolve()
    {
        resolver.async_resolve(
            address, std::to_string(port),
            [self = shared_from_this()](const asio::error_code& error, const udp::resolver::results_type& found) {
                if (self->isGone) {
                    return;
                }
                if (error || found.empty()) {
                    self->listener.WireFailed(Failure::AddressUnknown, error.message());
                    return;
                }
                self->OpenSocket(found.begin()->endpoint());
            });
    }

    void OpenSocket(const udp::endpoint& whom)
    {
        asio::error_code error;
        peer = whom;
        socket.open(peer.protocol(), error);
        if (!error) {
            socket.bind(udp::endpoint(peer.protocol(), 0), error);
        }
        if (!error) {
            socket.non_blocking(true, error);
        }
        if (error) {
            listener.WireFailed(Failure::Line, error.message());
            return;
        }
        Receive();
        listener.WireOpened();
    }

    void Receive()
    {
        socket.async_receive_from(asio::buffer(room), sender,
                                  [self = shared_from_this()](const asio::error_code& error, std::size_t size) {
                                      if (!self->isGone) {
                                          self->Received(error, size);
                                      }
                                  });
    }

    void Received(const asio::error_code& error, std::size_t size)
    {
        // That nobody listens at the far end is told on some systems only; it is silence on all of them.
        const bool isHarmless = error == asio::error::connection_refused || error == asio::error::connection_reset ||
                                error == asio::error::message_size || error == asio::error::host_unreachable ||
                                error == asio::error::network_unreachable;
        if (error && !isHarmless) {
            listener.WireFailed(Failure::Line, error.message());
            return;
        }
        if (!error && sender != peer) {
            listener.WireForeign();
        } else if (!error) {
            listener.WireReceived({room.data(), size});
        }
        if (!isGone) {
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

    Listener& listener;
    std::string address;
    std::uint16_t port;
    udp::resolver resolver;
    udp::socket socket;
    udp::endpoint peer;
    udp::endpoint sender;
    std::array<std::uint8_t, kRoom> room{};
    bool isGone = false;
};

UdpWire::UdpWire(IoContext& context, Listener& listener, const std::string& address, std::uint16_t port)
    : m_impl(std::make_shared<Impl>(context.Loop(), listener, address, port))
{
}

UdpWire::~UdpWire()
{
    asio::error_code ignored;
    m_impl->isGone = true;
    m_impl->resolver.cancel();
    m_impl->socket.close(ignored);
}

void UdpWire::Open()
{
    const std::shared_ptr<Impl> self = m_impl;  // a failure may destroy this wire
    asio::error_code error;
    const auto numeric = asio::ip::make_address(m_impl->address, error);
    if (error) {
        self->Resolve();
    } else {
        self->OpenSocket({numeric, self->port});
    }
}

void UdpWire::Send(std::span<const std::uint8_t> bytes)
{
    asio::error_code ignored;
    m_impl->socket.send_to(asio::buffer(bytes.data(), bytes.size()), m_impl->peer, 0, ignored);
}

std::size_t UdpWire::Discard()
{
    return m_impl->Discard();
}

}  // namespace zr
