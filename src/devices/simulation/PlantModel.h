// The plant as a whole: its devices on their lines, its time, its faults, its record.
#pragma once

#include "devices/modbus/ProfileCatalogue.h"
#include "devices/simulation/HouseholdSeries.h"
#include "devices/simulation/PlantDescription.h"
#include "devices/simulation/SimulatedDevice.h"
#include "devices/simulation/TruthLog.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zr {

// What a person chooses at the start.
struct PlantOptions {
    double speed = 1.0;                          // minutes of the series a minute of the clock, 0 to kMaxSpeed
    std::string start;                           // time of a row, "YYYY-MM-DDThh:mm"; empty: by the time of day
    std::uint64_t seed = 1;                      // of the faults
    std::optional<std::filesystem::path> truth;  // record of what was served
    std::vector<std::string> faults;             // as ParseFaultOrder() reads them; come after those of the file

    static constexpr double kMaxSpeed = 1'000'000.0;
};

// Knows frames, but neither sockets nor terminals. Time comes from zr::CurrentClock(). Not thread-safe.
class PlantModel {
public:
    PlantModel() = default;
    PlantModel(const PlantModel&) = delete;
    PlantModel& operator=(const PlantModel&) = delete;

    // Reads the plant's file and all that it names; once an object. False with "FILE:LINE: REASON" in error; the object
    // is of no use then. The time of the plant begins to run here.
    bool Load(const std::filesystem::path& file, const PlantOptions& options, std::string& error);

    // Position by position the `line` of the operations below.
    [[nodiscard]] const std::vector<PlantLine>& Lines() const { return m_description.lines; }
    // Whatever a person should know about the plant though it works; one line each.
    [[nodiscard]] const std::vector<std::string>& Warnings() const { return m_warnings; }
    // Minutes since the first row of the series.
    [[nodiscard]] double Position() const;
    // Null if there is none.
    [[nodiscard]] SimulatedDevice* Find(std::string_view device);
    // Replies so far, faults not counted off.
    [[nodiscard]] std::uint64_t Replies() const { return m_replies; }

    // What goes out for a datagram on a converter; nothing unless it is one whole good request to a device there.
    std::vector<Delivery> AnswerDatagram(std::size_t line, std::span<const std::uint8_t> datagram);
    // What goes out for the bytes on a serial line. Takes requests, and what is none, off the front of received and
    // leaves the beginning of one.
    std::vector<Delivery> AnswerStream(std::size_t line, std::vector<std::uint8_t>& received);
    // Carries out one line of a person: "fault ...", "help". False if it isn't understood; answer tells either way.
    bool Command(std::string_view text, std::string& answer);

private:
    struct Line {
        modbus::Framing framing = modbus::Framing::Rtu;
        std::vector<std::unique_ptr<SimulatedDevice>> devices;
    };
    bool LoadDevices(std::uint64_t seed, std::string& error);
    bool SetStart(const PlantOptions& options, std::string& error);
    bool SetFaults(const PlantOptions& options, std::string& error);
    bool Apply(const FaultOrder& order, std::string& error);
    void Answer(Line& line, const modbus::ReceivedRequest& received, std::vector<Delivery>& deliveries);
    void AnswerFrom(SimulatedDevice& device, const Line& line, const modbus::Request& request,
                    std::vector<Delivery>& deliveries);

    PlantDescription m_description;
    HouseholdSeries m_series;
    std::vector<Line> m_lines;
    std::vector<std::string> m_warnings;
    TruthLog m_truth;
    double m_speed = 1.0;
    double m_startPosition = 0.0;
    std::chrono::steady_clock::time_point m_startTime;
    std::uint64_t m_replies = 0;
};

}  // namespace zr
