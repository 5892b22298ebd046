#include "ServerProcess.h"

#include "Peer.h"

#include <asio/buffer.hpp>
#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/read_until.hpp>
#include <asio/write.hpp>
#ifdef _WIN32
#include <process.h>
#else
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <chrono>
#include <cstdio>
#include <stdexcept>

namespace conformance {

namespace {

using Tcp = asio::ip::tcp;
#ifdef _WIN32
using ProcessId = std::intptr_t;

ProcessId StartServer(const char* program, const std::string& port)
{
    return ::_spawnl(_P_NOWAIT, program, program, "serve", port.c_str(), nullptr);
}

void AwaitEnd(ProcessId process)
{
    int status = 0;
    ::_cwait(&status, process, 0);
}
#else
using ProcessId = pid_t;

ProcessId StartServer(const char* program, const std::string& port)
{
    std::string words[] = {program, "serve", port};
    char* const arguments[] = {words[0].data(), words[1].data(), words[2].data(), nullptr};
    pid_t process = -1;
    return ::posix_spawn(&process, program, nullptr, nullptr, arguments, ::environ) == 0 ? process : -1;
}

void AwaitEnd(ProcessId process)
{
    ::waitpid(process, nullptr, 0);
}
#endif

Tcp::endpoint Loopback(int port)
{
    return {asio::ip::address_v4::loopback(), static_cast<asio::ip::port_type>(port)};
}

// Lines of any bytes: those that a line can't hold are written as two hexadecimal digits each, as all the others.
std::string Hex(const std::string& bytes)
{
    constexpr const char* kDigits = "0123456789ABCDEF";
    std::string hex;
    for (const char byte : bytes) {
        hex += kDigits[static_cast<unsigned char>(byte) >> 4U];
        hex += kDigits[static_cast<unsigned char>(byte) & 0xFU];
    }
    return hex;
}

std::string Unhex(const std::string& hex)
{
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    }
    return bytes;
}

// One line at a time, both ways.
class Line {
public:
    explicit Line(asio::io_context& context) : socket(context) {}

    void Write(const std::string& line) { asio::write(socket, asio::buffer(line + "\n")); }
    std::string Read()
    {
        const std::size_t size = asio::read_until(socket, asio::dynamic_buffer(m_received), '\n');
        std::string line = m_received.substr(0, size - 1);
        m_received.erase(0, size);
        return line;
    }
    [[nodiscard]] bool HasSomething() { return !m_received.empty() || socket.available() > 0; }

    Tcp::socket socket;

private:
    std::string m_received;
};

void DispatchAll()
{
    while (zr::ddeml::Dispatch(std::chrono::milliseconds(0))) {
    }
}

}  // namespace

void OwnServer::Run(const std::string& command, const std::string& text)
{
    Server::Run(command, text);
}

std::vector<std::string> OwnServer::TakeNotes()
{
    return Server::TakeNotes();
}

struct ServerProcess::Impl {
    asio::io_context context;
    Line line{context};
    ProcessId process = -1;
};

ServerProcess::ServerProcess(const char* program) : m_impl(std::make_unique<Impl>())
{
    Tcp::acceptor acceptor(m_impl->context, Loopback(0));
    m_impl->process = StartServer(program, std::to_string(acceptor.local_endpoint().port()));
    if (m_impl->process == -1) {
        throw std::runtime_error("the server's process can't be started");
    }
    bool isThere = false;
    acceptor.async_accept(m_impl->line.socket, [&isThere](const asio::error_code& error) { isThere = !error; });
    m_impl->context.run_for(std::chrono::seconds(20));
    if (!isThere || m_impl->line.Read() != "serving") {
        throw std::runtime_error("the server's process doesn't serve");
    }
}

ServerProcess::~ServerProcess()
{
    m_impl->line.Write("end");
    AwaitEnd(m_impl->process);
}

void ServerProcess::Run(const std::string& command, const std::string& text)
{
    m_impl->line.Write(command + " " + Hex(text));
    m_impl->line.Read();
}

std::vector<std::string> ServerProcess::TakeNotes()
{
    m_impl->line.Write("notes");
    std::vector<std::string> notes;
    for (std::string note = m_impl->line.Read(); !note.empty(); note = m_impl->line.Read()) {
        notes.push_back(note);
    }
    return notes;
}

int ServeFor(const char* port)
{
    asio::io_context context;
    Line line(context);
    line.socket.connect(Loopback(std::stoi(port)));
    if (!Server::Start()) {
        return 1;
    }
    line.Write("serving");
    for (std::string order; order != "end";) {
        zr::ddeml::Dispatch(std::chrono::milliseconds(2));
        if (!line.HasSomething()) {
            continue;
        }
        order = line.Read();
        // What the client sent before it told this has come by now, and is seen to first.
        DispatchAll();
        if (order == "notes") {
            for (const std::string& note : Server::TakeNotes()) {
                line.Write(note);
            }
            line.Write("");
        } else if (order != "end") {
            const std::size_t space = order.find(' ');
            Server::Run(order.substr(0, space), Unhex(order.substr(space + 1)));
            DispatchAll();
            line.Write("done");
        }
    }
    Server::Stop();
    return 0;
}

}  // namespace conformance
