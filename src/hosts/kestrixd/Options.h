// The command line of kestrixd.
#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace zr::service {

struct Options {
    std::filesystem::path document;            // the configuration document
    std::filesystem::path dataFolder;          // of the filter files; the user's when empty
    std::optional<std::chrono::seconds> span;  // how long to supervise; until a signal when absent
    bool json = false;                         // one line of figures at the end, on standard output
    std::map<int, std::string> ports;          // device file of a serial port number
    std::string serviceName;                   // under which the values are published; none when empty
    std::chrono::milliseconds updatePeriod{};  // between two looks for changed values
};

// Either the options, or the exit status to end with (help: 0, a mistake: 2) after the parser has said why.
struct ParsedOptions {
    std::optional<Options> options;
    int exitStatus = 0;
};
ParsedOptions ParseOptions(int argc, char** argv);

}  // namespace zr::service
