// The command line of kestrix.
#pragma once

#include "hosts/supervision/SupervisionOptions.h"

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

namespace zr::desktop {

// Exit statuses of the program.
inline constexpr int kEndedAsAsked = 0;
inline constexpr int kBadInput = 2;

struct DesktopOptions {
    supervision::SupervisionOptions supervision;
    std::filesystem::path snapshotFolder;  // where pictures of the windows go; empty: the windows are shown
    std::chrono::seconds snapshotAfter{10};
    std::string language;  // title of a language file; empty: as remembered
};

// Either the options, or the exit status to end with (help: 0, a mistake: 2) after the parser has said why.
struct ParsedOptions {
    std::optional<DesktopOptions> options;
    int exitStatus = 0;
};
ParsedOptions ParseOptions(int argc, char** argv);

}  // namespace zr::desktop
