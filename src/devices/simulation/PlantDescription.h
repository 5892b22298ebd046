// What the file of a plant says: lines, devices, faults.
#pragma once

#include "devices/simulation/FaultSwitch.h"
#include "devices/simulation/MeterModel.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace zr {

struct PlantDevice {
    std::string name;
    std::string profile;    // type name; the profile is the file of that name in the profile folder
    std::uint8_t unit = 1;  // 1 to 247
    MeterSetup meter;
    std::size_t fileLine = 0;
};

struct PlantLine {
    enum class Kind {
        Converter,  // UDP, one frame a datagram
        Serial,     // a pseudo-terminal
    };
    Kind kind = Kind::Converter;
    std::string name;
    std::string address;     // of a converter, numeric
    std::uint16_t port = 0;  // of a converter; 0: any free one
    std::string link;        // of a serial line: symbolic link to its terminal; empty: none
    std::vector<PlantDevice> devices;
};

// The format is told in docs/plant.md.
struct PlantDescription {
    std::string file;                     // as given
    std::filesystem::path series;         // resolved against the folder of the file
    std::filesystem::path profileFolder;  // likewise
    std::vector<PlantLine> lines;
    std::vector<FaultOrder> faults;

    static constexpr std::size_t kMaxDevices = 10'000;

    // False if the file can't be read or says something that isn't understood; the description is then empty and
    // error tells "FILE:LINE: REASON".
    bool Load(const std::filesystem::path& path, std::string& error);
    // As Load(), from memory; path stands for the file.
    bool LoadText(std::string_view text, const std::filesystem::path& path, std::string& error);
};

}  // namespace zr
