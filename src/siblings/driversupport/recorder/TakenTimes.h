// The times at which a store held samples before this program came to them.
#pragma once

#include "siblings/driversupport/recorder/RecordNames.h"
#include "siblings/driversupport/store/LoggerStore.h"

#include <cstdint>
#include <deque>
#include <unordered_map>
#include <vector>

namespace zr {

// So that a clock that was set back while the program wasn't running, or to before it was started, overwrites nothing.
// The store is asked once for a day at a time; what comes there later is this program's own. One thread at a time.
class TakenTimes {
public:
    // Whether LookFrom has to be called for samples of that time.
    [[nodiscard]] bool IsUnknown(std::int64_t time) const { return Find(time) == nullptr; }
    // Asks a store for all variables. False when it fails; what is known is then as before.
    bool LookFrom(std::int64_t time, const RecordNames& names, LoggerReader& reader);
    // Whether the variable had a sample there.
    [[nodiscard]] bool IsTaken(int variable, std::int64_t time) const;

private:
    // Times at one pace, as they are recorded.
    struct Range {
        std::int64_t first = 0;
        std::int64_t last = 0;  // inclusive
        std::int64_t step = 0;  // 0: a single one
    };
    struct Window {
        std::int64_t from = 0;
        std::int64_t to = 0;                                 // exclusive
        std::unordered_map<int, std::vector<Range>> ranges;  // by variable
    };
    class Collector;

    [[nodiscard]] const Window* Find(std::int64_t time) const;

    std::deque<Window> m_windows;  // oldest knowledge first; they don't overlap
};

}  // namespace zr
