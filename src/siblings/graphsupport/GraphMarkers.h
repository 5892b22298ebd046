// Two markers of a graph.
#pragma once

#include "siblings/graphsupport/GraphZoom.h"

#include <array>
#include <cstdint>
#include <optional>

namespace zr::graph {

// Two times, each of which may be missing. UTC, microseconds since 1970.
class GraphMarkers {
public:
    static constexpr int kCount = 2;

    [[nodiscard]] std::optional<std::int64_t> At(int which) const;
    [[nodiscard]] bool AreBoth() const { return m_times[0] && m_times[1]; }
    // From the earlier to the later; empty unless both stand.
    [[nodiscard]] Zoom Between() const;

    // Anything but 0 and 1 is ignored.
    void Set(int which, std::int64_t time);
    // Sets the first, then the second, then moves the nearer one.
    void SetNext(std::int64_t time);
    // Whether there was one.
    bool Remove();

private:
    std::array<std::optional<std::int64_t>, kCount> m_times;
};

}  // namespace zr::graph
