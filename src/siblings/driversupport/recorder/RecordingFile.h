// What is recorded, how often, for how long and where: the file beside the configuration document.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace zr {

// A plain value. The format is told in docs/formats/recording.md.
struct RecordingFile {
    static constexpr std::int32_t kLongestPeriod = 31 * 86'400;  // seconds
    static constexpr std::int32_t kLongestRetention = 36'525;    // days: a century
    static constexpr std::int32_t kLargestSpool = 1'048'576;     // MiB
    static constexpr std::int32_t kDefaultSpool = 1024;          // MiB
    static constexpr std::size_t kMostNodes = 256;
    static constexpr std::size_t kMostDataSets = 1000;
    static constexpr std::size_t kLongestConnection = 4096;  // bytes

    struct Entry {
        ZRBasicString device;
        ZRBasicString variable;  // empty: all of the device that hold a number
        friend bool operator==(const Entry&, const Entry&) = default;
    };
    struct DataSet {
        ZRBasicString name;
        std::int32_t period = 60;    // seconds
        std::int32_t retention = 0;  // days; 0: for ever
        std::vector<Entry> entries;  // at least one, each once
        friend bool operator==(const DataSet&, const DataSet&) = default;
    };

    std::filesystem::path store;              // as it is written; empty: the default, or nodes
    std::vector<std::string> nodes;           // connection texts; they may hold a password and belong in no message
    std::filesystem::path spoolFolder;        // as it is written; empty: the default
    std::int32_t spoolLimit = kDefaultSpool;  // MiB, of all nodes together
    std::vector<DataSet> dataSets;            // in order of the file

    friend bool operator==(const RecordingFile&, const RecordingFile&) = default;

    // False if the file can't be read or says something that isn't understood; this is then as it was and error tells
    // "FILE:LINE: REASON", with nothing of a connection text in it.
    bool Load(const std::filesystem::path& file, std::string& error);
    // As Load, from memory; name stands for the file in errors.
    bool LoadText(std::string_view bytes, const std::string& name, std::string& error);
};

// Where the recording file of a document lies unless the command line says otherwise: beside it, `plant.xml` having
// `plant.recording.xml`.
std::filesystem::path RecordingFileOf(const std::filesystem::path& document);

}  // namespace zr
