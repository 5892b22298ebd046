// The command line of kestrixd.
#pragma once

#include "hosts/supervision/SupervisionOptions.h"

#include <chrono>
#include <optional>

namespace zr::service {

struct Options {
    supervision::SupervisionOptions supervision;
    std::optional<std::chrono::seconds> span;  // how long to supervise; until a signal when absent
    bool json = false;                         // one line of figures at the end, on standard output
};

// Either the options, or the exit status to end with (help: 0, a mistake: 2) after the parser has said why.
struct ParsedOptions {
    std::optional<Options> options;
    int exitStatus = 0;
};
ParsedOptions ParseOptions(int argc, char** argv);

}  // namespace zr::service
