// Puts a plant on real sockets and real terminals.
#pragma once

#include "devices/simulation/PlantModel.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace zr {

// All work is done within RunFor(), on the thread that calls it.
class PlantServer {
public:
    // Not owned; must outlive this, and must be loaded.
    explicit PlantServer(PlantModel& plant);
    ~PlantServer();
    PlantServer(const PlantServer&) = delete;
    PlantServer& operator=(const PlantServer&) = delete;

    // Opens every line; links of serial lines with a relative path are made in linkFolder. False at the first that
    // can't be opened, with a reason in error. Serial lines are passed over, with a warning, where the system has no
    // pseudo-terminals.
    bool Open(const std::filesystem::path& linkFolder, std::string& error);
    // One line each, in the order of the plant: "converter NAME udp ADDRESS:PORT" or "serial NAME PATH".
    [[nodiscard]] const std::vector<std::string>& Endpoints() const;
    [[nodiscard]] const std::vector<std::string>& Warnings() const;
    // Serves for that long.
    void RunFor(std::chrono::milliseconds duration);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace zr
