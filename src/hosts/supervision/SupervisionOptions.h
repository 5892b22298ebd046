// What a program that supervises a document is told by its command line.
#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <string>

namespace zr::supervision {

struct SupervisionOptions {
    std::filesystem::path document;    // the configuration document
    std::filesystem::path dataFolder;  // of the filter files and of logged data; the user's when empty
    std::filesystem::path recording;   // the recording file; empty: the one beside the document, if there is one
    bool recordsNothing = false;       // as if there were no recording file
    std::map<int, std::string> ports;  // device file of a serial port number
    std::string serviceName;           // under which the values are published; none when empty
    std::chrono::milliseconds updatePeriod{0};  // between two looks for changed values
};

}  // namespace zr::supervision
