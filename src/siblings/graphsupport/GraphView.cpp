#include "siblings/graphsupport/GraphView.h"

#include <algorithm>
#include <cmath>

namespace zr::graph {

namespace {

bool AreEqual(Zoom left, Zoom right)
{
    return left.from == right.from && left.to == right.to;
}

}  // namespace

bool GraphView::SetWhole(Zoom whole, std::int64_t leastLength)
{
    if (whole.to <= whole.from) {
        whole = {};
    }
    m_leastLength = std::max<std::int64_t>(leastLength, 1);
    m_isTurning = false;
    if (AreEqual(whole, m_whole)) {
        m_view = Held(m_view);
        if (!IsZoomed()) {
            m_history.clear();
        }
        return false;
    }
    m_whole = whole;
    m_view = whole;
    m_history.clear();
    return true;
}

Zoom GraphView::Held(Zoom zoom) const
{
    const std::int64_t all = m_whole.to - m_whole.from;
    const std::int64_t from = std::clamp(std::min(zoom.from, zoom.to), m_whole.from, m_whole.to);
    const std::int64_t to = std::clamp(std::max(zoom.from, zoom.to), m_whole.from, m_whole.to);
    const std::int64_t length = std::min(std::max(to - from, m_leastLength), all);
    // A stretch that is too short grows to both sides.
    Zoom held;
    held.from = std::clamp(from - (length - (to - from)) / 2, m_whole.from, m_whole.to - length);
    held.to = held.from + length;
    return held;
}

bool GraphView::Change(Zoom zoom, bool isRemembered)
{
    const Zoom held = Held(zoom);
    if (IsEmpty() || AreEqual(held, m_view)) {
        return false;
    }
    if (isRemembered) {
        m_history.push_back(m_view);
    }
    m_view = held;
    if (!IsZoomed()) {
        m_history.clear();
    }
    return true;
}

bool GraphView::ZoomTo(Zoom zoom)
{
    m_isTurning = false;
    return Change(zoom, true);
}

bool GraphView::ZoomAbout(std::int64_t time, double factor)
{
    if (IsEmpty() || !(factor > 0.0) || !std::isfinite(factor)) {
        return false;
    }
    const double all = static_cast<double>(m_whole.to - m_whole.from);
    const double length = static_cast<double>(m_view.to - m_view.from);
    const double least = static_cast<double>(std::min(m_leastLength, m_whole.to - m_whole.from));
    const double wanted = std::clamp(length * factor, least, all);
    const std::int64_t about = std::clamp(time, m_view.from, m_view.to);
    const double share = static_cast<double>(about - m_view.from) / length;
    const std::int64_t newLength = std::max<std::int64_t>(std::llround(wanted), 1);
    const std::int64_t before = std::llround(share * static_cast<double>(newLength));
    Zoom zoom;
    zoom.from = std::clamp(about - before, m_whole.from, m_whole.to - newLength);
    zoom.to = zoom.from + newLength;
    const bool isChanged = Change(zoom, !m_isTurning);
    m_isTurning = isChanged && IsZoomed();
    return isChanged;
}

bool GraphView::PanBy(std::int64_t by)
{
    m_isTurning = false;
    const std::int64_t held = std::clamp(by, m_whole.from - m_view.from, m_whole.to - m_view.to);
    return Change({m_view.from + held, m_view.to + held}, false);
}

bool GraphView::Show(Zoom zoom)
{
    m_isTurning = false;
    return Change(zoom, false);
}

bool GraphView::UndoLast()
{
    m_isTurning = false;
    if (m_history.empty()) {
        return false;
    }
    const Zoom before = m_history.back();
    m_history.pop_back();
    Change(before, false);
    return true;
}

bool GraphView::UndoAll()
{
    m_isTurning = false;
    m_history.clear();
    return Change(m_whole, false);
}

}  // namespace zr::graph
