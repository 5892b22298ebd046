// The live values of the registry in other programs.
#pragma once

#include "dde/ZRDDEServer.h"

#include <chrono>
#include <cstdint>
#include <string>

namespace zr::supervision {

// Publishes every device under one service name while it is begun. Main loop only.
class Publication {
public:
    Publication(std::string serviceName, std::chrono::milliseconds period);

    // False when publication can't be had on this machine; the supervision goes on without.
    bool Begin();
    // Clients are told; to be called before the devices go, since an open link would keep a value that is gone.
    void End();
    [[nodiscard]] bool IsRunning() const { return m_isRunning; }

    // Answers clients for that long, and posts what changed once a period.
    void Run(std::chrono::milliseconds duration);

    struct Figures {
        std::uint64_t conversations = 0;  // open now
        std::uint64_t links = 0;          // open now
        std::uint64_t posts = 0;          // since the program started
        std::uint64_t merged = 0;         // updates that a newer one replaced before the client took them
    };
    [[nodiscard]] Figures Count() const;

private:
    std::string m_serviceName;
    std::chrono::milliseconds m_period;
    std::chrono::steady_clock::time_point m_nextUpdate{};
    ZRDDEServer m_server;
    bool m_isRunning = false;
    std::uint64_t m_mergedBefore = 0;  // of the instances that were ended
};

}  // namespace zr::supervision
