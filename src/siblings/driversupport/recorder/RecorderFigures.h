// What a recorder tells of itself: counts of samples, the state of its nodes, notices.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zr {

class RecorderBooks;

// Why a sample that was due is in no store and in no spool.
enum class UnrecordedReason : std::uint8_t {
    Invalid,       // the variable has no valid number: its device is silent, or it is a text
    Missing,       // there is no such variable
    Late,          // the computer was held up for longer than the period allows
    ClockSetBack,  // the clock was set back, and there is a sample of that time already
    NoRoom,        // neither the store nor the spool takes it
    Damaged,       // was in the spool, and can't be read any more
};
inline constexpr std::size_t kUnrecordedReasons = 6;

// Of samples. One that several data sets ask for counts in each.
struct RecorderCounts {
    std::uint64_t recorded = 0;                                     // the store has acknowledged it
    std::uint64_t spooled = 0;                                      // the spool has, and it waits there now
    std::array<std::uint64_t, kUnrecordedReasons> unrecorded = {};  // by UnrecordedReason

    [[nodiscard]] std::uint64_t Unrecorded(UnrecordedReason reason) const
    {
        return unrecorded[static_cast<std::size_t>(reason)];
    }
    [[nodiscard]] std::uint64_t Unrecorded() const
    {
        std::uint64_t sum = 0;
        for (const std::uint64_t count : unrecorded) {
            sum += count;
        }
        return sum;
    }
};

enum class RecorderNodeState : std::uint8_t {
    Stopped,
    Recording,  // into the store
    Resending,  // the store is there, and gets first what waits in the spool
    Spooling,   // the store is away
    Full,       // the store is away, and the spool takes nothing
};

struct RecorderNodeFigures {
    RecorderNodeState state = RecorderNodeState::Stopped;
    std::int64_t since = 0;        // of the state; microseconds UTC
    std::string error;             // of the store, or of the spool; UTF-8; empty while there is none
    std::uint64_t spoolBytes = 0;  // on disk
    std::uint64_t spoolLimit = 0;  // likewise
    std::uint64_t spooled = 0;     // samples that wait in the spool
    std::uint64_t queued = 0;      // samples in memory, not acknowledged yet
    std::uint64_t variables = 0;   // that are recorded there
};

struct RecorderDataSetFigures {
    ZRBasicString name;
    std::int32_t period = 0;      // seconds
    std::uint64_t variables = 0;  // of the configuration
    std::int64_t lastTime = 0;    // of the last sample that was acknowledged; microseconds UTC; 0: none yet
    RecorderCounts counts;
};

struct RecorderFigures {
    // Of all data sets, and of what an earlier program left in the spool for data sets that are no more.
    RecorderCounts total;
    std::vector<RecorderDataSetFigures> dataSets;  // in the order of the configuration
    std::vector<RecorderNodeFigures> nodes;        // likewise
};

struct RecorderNotice {
    enum class Kind : std::uint8_t {
        StoreAway,      // node, text: why
        StoreBack,      // node, count: samples resent from the spool
        SpoolFailed,    // node, text: why it takes nothing, or is not in use
        SpoolBack,      // node: it takes samples again
        SpoolDamaged,   // node, count: samples that can't be read, text: where
        NotRecorded,    // dataSet, reason, count: samples so far
        Finding,        // node, text: what the store's upkeep found wrong
        ClockWentBack,  // count: by so many seconds
        ClockJumped,    // count: by so many seconds
    };

    Kind kind = Kind::StoreAway;
    std::size_t node = 0;
    ZRBasicString dataSet;
    UnrecordedReason reason = UnrecordedReason::Invalid;
    std::uint64_t count = 0;
    std::string text;  // UTF-8
};

// Samples of one time and data set that have become durable. Lives while the callee looks at it.
struct RecorderAcknowledgement {
    bool isSpooled = false;  // else it is in the store; what was spooled is acknowledged once more then
    std::size_t node = 0;
    std::int64_t time = 0;  // microseconds UTC
    const ZRBasicString* dataSet = nullptr;
    std::size_t samples = 0;
};

}  // namespace zr
