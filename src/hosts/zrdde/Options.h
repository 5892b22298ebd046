// The command line of zrdde.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zr::ddeclient {

// Exit statuses of the program.
inline constexpr int kDone = 0;
inline constexpr int kRefused = 1;      // no such service, topic or item; DDE can't be begun
inline constexpr int kBadCommand = 2;   // the command line
inline constexpr int kServerEnded = 3;  // the server ended the conversation, or died
inline constexpr int kTimedOut = 4;     // the time was over before the values came

enum class Command { Advise, Services, Link };
enum class Format { XlTable, Text };

struct Options {
    Command command = Command::Services;

    // Advise and link.
    std::u16string service;
    // Advise.
    std::u16string topic;
    std::vector<std::u16string> items;  // as typed, each once
    Format format = Format::XlTable;
    std::optional<std::uint64_t> count;                // updates in all; without end when absent
    std::optional<std::chrono::milliseconds> timeout;  // of the whole run
    bool json = false;
    // Link.
    std::u16string device;
    std::u16string variable;
};

// Either the options, or the exit status to end with (help: 0, a mistake: kBadCommand) after the parser has said why.
struct ParsedOptions {
    std::optional<Options> options;
    int exitStatus = 0;
};
ParsedOptions ParseOptions(int argc, char** argv);

}  // namespace zr::ddeclient
