// The server of the checks: in this process, or in one of its own that is told over a connection what to do.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace conformance {

// What the checks make the server do, directly: not every system's client takes updates while it waits for a reply.
class ServerControl {
public:
    virtual ~ServerControl() = default;
    // As Server::Run and Server::TakeNotes.
    virtual void Run(const std::string& command, const std::string& text) = 0;
    virtual std::vector<std::string> TakeNotes() = 0;
};

class OwnServer final : public ServerControl {
public:
    void Run(const std::string& command, const std::string& text) override;
    std::vector<std::string> TakeNotes() override;
};

class ServerProcess final : public ServerControl {
public:
    // Starts the program once more as its server; throws when it can't be had within 20 s.
    explicit ServerProcess(const char* program);
    // Has it end and waits for that.
    ~ServerProcess() override;
    void Run(const std::string& command, const std::string& text) override;
    std::vector<std::string> TakeNotes() override;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

// The process that ServerProcess started: serves until it is told to end. Returns its exit status.
int ServeFor(const char* port);

}  // namespace conformance
