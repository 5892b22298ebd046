#include "siblings/driversupport/SerialWire.h"

#include "platform/SerialLine.h"

#include <asio/buffer.hpp>
#include <asio/io_context.hpp>
#include <asio/serial_port.hpp>
#include <asio/write.hpp>

#include <array>
#include <utility>
#include <vector>

namespace zr {

using asio::serial_port_base;

namespace {

// What outlives the wire while something of it is under way.
struct Port : std::enable_shared_from_this<Port> {
    Port(asio::io_context& loop, Wire::Listener& wireListener, SerialSettings portSettings)
        : listener(wireListener), settings(std::move(portSettings)), port(loop)
    {
    }

    template <typename Option>
    void Set(const Option& option, asio::error_code& error)
    {
        if (!error) {
            port.set_option(option, error);
        }
    }

    void Open()
    {
        serial_port_base::parity parity(serial_port_base::parity::none);
        if (settings.parity != SerialParity::None) {
            parity = serial_port_base::parity(settings.parity == SerialParity::Even ? serial_port_base::parity::even
                                                                                    : serial_port_base::parity::odd);
        }
        asio::error_code error;
        port.open(settings.device, error);
        Set(serial_port_base::baud_rate(static_cast<unsigned int>(settings.baudRate)), error);
        Set(serial_port_base::character_size(8), error);
        Set(parity, error);
        Set(serial_port_base::stop_bits(serial_port_base::stop_bits::one), error);
        Set(serial_port_base::flow_control(serial_port_base::flow_control::none), error);
        if (error) {
            listener.WireFailed(Wire::Failure::Line, settings.device + ": " + error.message());
            return;
        }
        Receive();
        listener.WireOpened();
    }

    void Receive()
    {
        port.async_read_some(asio::buffer(room),
                             [self = shared_from_this()](const asio::error_code& error, std::size_t size) {
                                 self->Received(error, size);
                             });
    }

    void Received(const asio::error_code& error, std::size_t size)
    {
        if (isGone) {
            return;
        }
        if (error) {
            listener.WireFailed(Wire::Failure::Line, settings.device + ": " + error.message());
            return;
        }
        listener.WireReceived({room.data(), size});
        if (!isGone) {
            Receive();
        }
    }

    void Write()
    {
        isWriting = true;
        asio::async_write(port, asio::buffer(outgoing),
                          [self = shared_from_this()](const asio::error_code&, std::size_t) {
                              self->isWriting = false;  // what went wrong shows when reading
                          });
    }

    Wire::Listener& listener;
    SerialSettings settings;
    asio::serial_port port;
    std::array<std::uint8_t, 512> room{};
    std::vector<std::uint8_t> outgoing;
    bool isWriting = false;
    bool isGone = false;
};

class SerialWire final : public Wire {
public:
    SerialWire(asio::io_context& loop, Listener& listener, const SerialSettings& settings)
        : m_port(std::make_shared<Port>(loop, listener, settings))
    {
    }
    ~SerialWire() override
    {
        asio::error_code ignored;
        m_port->isGone = true;
        if (m_port->port.is_open()) {
            DropSerialOutput(m_port->port.native_handle());  // or closing waits until it is sent
            m_port->port.close(ignored);
        }
    }

    void Open() override
    {
        const std::shared_ptr<Port> port = m_port;  // a failure may destroy this wire
        port->Open();
    }
    void Send(std::span<const std::uint8_t> bytes) override
    {
        // A request that is still being written means that the line stands still: the new one is lost, too.
        if (!m_port->isWriting) {
            m_port->outgoing.assign(bytes.begin(), bytes.end());
            m_port->Write();
        }
    }
    std::size_t Discard() override { return DropSerialInput(m_port->port.native_handle()) > 0 ? 1 : 0; }

private:
    std::shared_ptr<Port> m_port;
};

}  // namespace

std::unique_ptr<Wire> MakeSerialWire(IoContext& context, Wire::Listener& listener, const SerialSettings& settings)
{
    return std::make_unique<SerialWire>(context.Loop(), listener, settings);
}

}  // namespace zr
