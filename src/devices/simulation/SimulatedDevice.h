// One device of the plant: its registers and what lies in them.
#pragma once

#include "devices/modbus/DeviceProfile.h"
#include "devices/modbus/ModbusFrame.h"
#include "devices/simulation/FaultSwitch.h"
#include "devices/simulation/MeterModel.h"
#include "devices/simulation/PlantDescription.h"
#include "devices/simulation/Quantity.h"
#include "devices/simulation/TruthLog.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zr {

// What a request came to.
struct DeviceReply {
    modbus::Exception exception = modbus::Exception::None;
    std::vector<std::uint8_t> data;   // of a read, as on the wire
    std::vector<ServedValue> values;  // whole variables that were read or set; name the device and its variables
};

// Takes its registers from the profile and their content, by the names of the variables, from the model. Outputs keep
// what was written to them, at first 0. Addresses between those of variables read as 0; addresses outside are an
// exception, as is a write to what isn't an output. Not thread-safe.
class SimulatedDevice {
public:
    // The series isn't owned and must outlive this. The profile must not be null.
    SimulatedDevice(PlantDevice setup, std::shared_ptr<const modbus::DeviceProfile> profile,
                    const HouseholdSeries& series, std::uint64_t seed);

    [[nodiscard]] const std::string& Name() const { return m_setup.name; }
    [[nodiscard]] std::uint8_t Unit() const { return m_setup.unit; }
    [[nodiscard]] const modbus::DeviceProfile& Profile() const { return *m_profile; }
    [[nodiscard]] FaultSwitch& Faults() { return m_faults; }
    // Variables that the plant has nothing for; they read as 0.
    [[nodiscard]] const std::vector<std::string>& Unknown() const { return m_unknown; }

    // Position of the plant in minutes, at least 0. What Check() finds in the request is answered likewise.
    DeviceReply Answer(const modbus::Request& request, double position);
    // The content of a variable, register by register; of a bit one word, 0 or 1. No range test.
    [[nodiscard]] std::vector<std::uint16_t> Content(std::size_t variable, Snapshot& snapshot) const;

private:
    struct Source {
        std::string name;
        std::optional<Quantity> quantity;
        std::vector<std::uint16_t> written;  // of an output
        bool isOutput = false;
    };
    // The addresses that one read function knows.
    struct Space {
        std::multimap<std::uint16_t, std::size_t> variables;  // by first address
        std::uint32_t lowest = 0x10000;
        std::uint32_t end = 0;  // Exclusive.
    };
    using WriteAddress = std::pair<bool, std::uint16_t>;     // whether a coil; address
    using WritePlace = std::pair<std::size_t, std::size_t>;  // variable, word of it

    void AddVariable(std::size_t index);
    void Read(const modbus::Request& request, double position, DeviceReply& reply) const;
    void Place(const modbus::Request& request, std::size_t variable, Snapshot& snapshot, DeviceReply& reply) const;
    void Write(const modbus::Request& request, DeviceReply& reply);
    [[nodiscard]] ServedValue Served(std::size_t variable, const std::vector<std::uint16_t>& words) const;

    PlantDevice m_setup;
    std::shared_ptr<const modbus::DeviceProfile> m_profile;
    MeterModel m_model;
    FaultSwitch m_faults;
    std::string m_serialNumber;
    std::vector<Source> m_sources;  // position by position of the profile's variables
    std::array<Space, 5> m_spaces;  // by read function
    std::map<WriteAddress, WritePlace> m_outputs;
    std::vector<std::string> m_unknown;
};

}  // namespace zr
