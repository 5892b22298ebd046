#include "siblings/graphsupport/GraphMarkers.h"

#include <algorithm>
#include <cstddef>

namespace zr::graph {

std::optional<std::int64_t> GraphMarkers::At(int which) const
{
    return which >= 0 && which < kCount ? m_times[static_cast<std::size_t>(which)] : std::nullopt;
}

Zoom GraphMarkers::Between() const
{
    if (!AreBoth()) {
        return {};
    }
    return {std::min(*m_times[0], *m_times[1]), std::max(*m_times[0], *m_times[1])};
}

void GraphMarkers::Set(int which, std::int64_t time)
{
    if (which >= 0 && which < kCount) {
        m_times[static_cast<std::size_t>(which)] = time;
    }
}

void GraphMarkers::SetNext(std::int64_t time)
{
    if (!m_times[0]) {
        Set(0, time);
        return;
    }
    if (!m_times[1]) {
        Set(1, time);
        return;
    }
    const auto distance = [time](std::int64_t marker) { return marker > time ? marker - time : time - marker; };
    Set(distance(*m_times[1]) < distance(*m_times[0]) ? 1 : 0, time);
}

bool GraphMarkers::Remove()
{
    const bool hadOne = m_times[0] || m_times[1];
    m_times = {};
    return hadOne;
}

}  // namespace zr::graph
