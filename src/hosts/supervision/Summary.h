// The figures of a run.
#pragma once

#include "siblings/driversupport/recorder/RecorderFigures.h"

#include <cstdint>
#include <string>

namespace zr::supervision {

struct Summary {
    std::uint64_t devices = 0;        // configured
    std::uint64_t online = 0;         // of them, answering
    std::uint64_t variables = 0;      // of all devices
    std::uint64_t valid = 0;          // of them, with a value on hand
    std::uint64_t ticks = 0;          // of the one-second worker
    std::uint64_t transactions = 0;   // requests sent
    std::uint64_t timeouts = 0;       // of them, unanswered
    std::uint64_t droppedFrames = 0;  // received, and not believed
    std::uint64_t warnings = 0;       // entered in the warning list; events are not counted

    std::uint64_t ddeConversations = 0;  // open with clients
    std::uint64_t ddeLinks = 0;          // open with clients
    std::uint64_t ddePosts = 0;          // changes published
    std::uint64_t ddeMerged = 0;         // updates that a newer one replaced before a slow client took them

    RecorderCounts recording;  // samples

    // One line of JSON without a line end, keys in the order above.
    [[nodiscard]] std::string Json() const;
};

// What the registry holds now. Communication counters are those since its last reset. Main loop only.
Summary Summarise();

}  // namespace zr::supervision
