#include "devices/simulation/PlantServer.h"

#include "platform/PseudoTerminal.h"

#include <asio/io_context.hpp>
#include <asio/ip/udp.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <asio/steady_timer.hpp>

#include <functional>
#include <utility>

namespace zr {
namespace {

using asio::ip::udp;
using std::chrono::steady_clock;

constexpr std::size_t kRoom = 512;  // more than any frame
// Replies held back at a time; what comes beyond is lost, as on a line that is overrun.
constexpr std::size_t kMaxPending = 10'000;
// A pause within a request that ends it; far above the 3.5 characters of a real line, since a busy machine pauses too.
constexpr std::chrono::milliseconds kSilence{200};

}  // namespace

struct PlantServer::State {
    class Converter;
    class Serial;

    explicit State(PlantModel& model) : plant(model) {}

    // Sends what is due now at once, the rest when its time has come.
    void Deliver(std::vector<Delivery> deliveries, const std::function<void(const Delivery&)>& send)
    {
        for (Delivery& delivery : deliveries) {
            if (delivery.delay.count() == 0) {
                send(delivery);
                continue;
            }
            if (pending == kMaxPending) {
                continue;
            }
            ++pending;
            auto timer = std::make_shared<asio::steady_timer>(loop, delivery.delay);
            timer->async_wait([this, timer, send, late = std::move(delivery)](const asio::error_code& error) {
                --pending;
                if (!error) {
                    send(late);
                }
            });
        }
    }

    bool OpenConverter(std::size_t line, std::string& error);
    bool OpenSerial(std::size_t line, const std::filesystem::path& linkFolder, std::string& error);

    PlantModel& plant;
    asio::io_context loop{1};
    std::size_t pending = 0;
    std::vector<std::unique_ptr<Converter>> converters;
    std::vector<std::unique_ptr<Serial>> serials;
    std::vector<std::string> endpoints;
    std::vector<std::string> warnings;
};

class PlantServer::State::Converter {
public:
    Converter(State& state, std::size_t line) : m_state(state), m_line(line), m_socket(state.loop) {}

    bool Open(const std::string& address, std::uint16_t port, std::string& error)
    {
        asio::error_code code;
        const auto numeric = asio::ip::make_address(address, code);
        const udp::endpoint endpoint(numeric, port);
        if (!code) {
            m_socket.open(endpoint.protocol(), code);
        }
        if (!code) {
            m_socket.bind(endpoint, code);
        }
        if (!code) {
            m_socket.non_blocking(true, code);
        }
        if (code) {
            error = address + ":" + std::to_string(port) + ": " + code.message();
            return false;
        }
        Receive();
        return true;
    }
    [[nodiscard]] std::uint16_t Port() const { return m_socket.local_endpoint().port(); }

private:
    void Receive()
    {
        m_socket.async_receive_from(asio::buffer(m_room), m_sender,
                                    [this](const asio::error_code& code, std::size_t size) {
                                        if (code == asio::error::operation_aborted) {
                                            return;
                                        }
                                        // Any other error tells of an earlier reply that found nobody.
                                        if (!code) {
                                            Answer(size);
                                        }
                                        Receive();
                                    });
    }

    void Answer(std::size_t size)
    {
        const auto send = [this, whom = m_sender](const Delivery& delivery) {
            asio::error_code ignored;
            m_socket.send_to(asio::buffer(delivery.bytes), whom, 0, ignored);
        };
        m_state.Deliver(m_state.plant.AnswerDatagram(m_line, std::span(m_room).first(size)), send);
    }

    State& m_state;
    std::size_t m_line;
    udp::socket m_socket;
    udp::endpoint m_sender;
    std::array<std::uint8_t, kRoom> m_room{};
};

class PlantServer::State::Serial {
public:
#if defined(ASIO_HAS_POSIX_STREAM_DESCRIPTOR)
    Serial(State& state, std::size_t line) : m_state(state), m_line(line), m_descriptor(state.loop) {}

    bool Open(std::string& error)
    {
        if (!m_terminal.Open(error)) {
            return false;
        }
        m_descriptor.assign(m_terminal.DuplicateDescriptor());
        Wait();
        return true;
    }
#else
    Serial(State&, std::size_t) {}
    bool Open(std::string& error)
    {
        return m_terminal.Open(error);
    }
#endif
    [[nodiscard]] PseudoTerminal& Terminal()
    {
        return m_terminal;
    }

private:
    PseudoTerminal m_terminal;
#if defined(ASIO_HAS_POSIX_STREAM_DESCRIPTOR)
    void Wait()
    {
        m_descriptor.async_wait(asio::posix::stream_descriptor::wait_read, [this](const asio::error_code& code) {
            if (!code) {
                Receive();
                Wait();
            }
        });
    }

    void Receive()
    {
        const auto now = steady_clock::now();
        if (now - m_lastByte > kSilence) {
            m_received.clear();
        }
        m_lastByte = now;
        std::array<std::uint8_t, kRoom> room{};
        while (const std::size_t size = m_terminal.Read(room.data(), room.size())) {
            m_received.insert(m_received.end(), room.begin(), room.begin() + static_cast<std::ptrdiff_t>(size));
            m_state.Deliver(m_state.plant.AnswerStream(m_line, m_received), [this](const Delivery& delivery) {
                m_terminal.Write(delivery.bytes.data(), delivery.bytes.size());
            });
        }
    }

    State& m_state;
    std::size_t m_line;
    asio::posix::stream_descriptor m_descriptor;
    std::vector<std::uint8_t> m_received;
    steady_clock::time_point m_lastByte;
#endif
};

bool PlantServer::State::OpenConverter(std::size_t line, std::string& error)
{
    const PlantLine& description = plant.Lines()[line];
    auto converter = std::make_unique<Converter>(*this, line);
    if (!converter->Open(description.address, description.port, error)) {
        error = "converter " + description.name + ": " + error;
        return false;
    }
    endpoints.push_back("converter " + description.name + " udp " + description.address + ":" +
                        std::to_string(converter->Port()));
    converters.push_back(std::move(converter));
    return true;
}

bool PlantServer::State::OpenSerial(std::size_t line, const std::filesystem::path& linkFolder, std::string& error)
{
    const PlantLine& description = plant.Lines()[line];
    if (!PseudoTerminal::IsAvailable()) {
        warnings.push_back("serial " + description.name +
                           ": this system has no pseudo-terminals, the line is left out");
        return true;
    }
    auto serial = std::make_unique<Serial>(*this, line);
    std::string path;
    bool isOpen = serial->Open(error);
    if (isOpen) {
        path = serial->Terminal().Name();
    }
    if (isOpen && !description.link.empty()) {
        path = (linkFolder / description.link).string();
        isOpen = serial->Terminal().Link(path, error);
    }
    if (!isOpen) {
        error = "serial " + description.name + ": " + error;
        return false;
    }
    endpoints.push_back("serial " + description.name + " " + path);
    serials.push_back(std::move(serial));
    return true;
}

PlantServer::PlantServer(PlantModel& plant) : m_state(std::make_unique<State>(plant)) {}

PlantServer::~PlantServer() = default;

bool PlantServer::Open(const std::filesystem::path& linkFolder, std::string& error)
{
    for (std::size_t line = 0; line < m_state->plant.Lines().size(); ++line) {
        const bool isConverter = m_state->plant.Lines()[line].kind == PlantLine::Kind::Converter;
        if (!(isConverter ? m_state->OpenConverter(line, error) : m_state->OpenSerial(line, linkFolder, error))) {
            return false;
        }
    }
    return true;
}

const std::vector<std::string>& PlantServer::Endpoints() const
{
    return m_state->endpoints;
}

const std::vector<std::string>& PlantServer::Warnings() const
{
    return m_state->warnings;
}

void PlantServer::RunFor(std::chrono::milliseconds duration)
{
    m_state->loop.restart();
    m_state->loop.run_for(duration);
}

}  // namespace zr
