#include "siblings/graphsupport/GraphPointer.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <utility>

namespace zr::graph {

namespace {

constexpr double kGrabDistance = 4.0;  // pixels of scale 1 from a marker's line
constexpr double kLeastBand = 4.0;     // likewise: a shorter band is a click

// The time at a place, held to what is in view.
std::int64_t TimeAt(const GraphState& state, const GraphPlan& plan, Point at)
{
    const Rect columns = plan.Columns();
    const Zoom view = state.view.InView();
    return std::clamp(TimeOf(at.x - columns.left, view, columns.Width()), view.from, view.to);
}

bool IsOverCurves(const GraphState& state, const GraphPlan& plan, Point at)
{
    const Rect columns = plan.Columns();
    return !state.view.IsEmpty() && columns.Holds(at);
}

// The marker whose line is near a place.
std::optional<int> MarkerAt(const GraphState& state, const GraphPlan& plan, Point at)
{
    const Rect columns = plan.Columns();
    int nearest = Scaled(kGrabDistance, plan.target.scale) + 1;
    std::optional<int> found;
    for (int which = 0; which < GraphMarkers::kCount; ++which) {
        const std::optional<std::int64_t> time = state.markers.At(which);
        if (!time || !IsOverCurves(state, plan, at)) {
            continue;
        }
        const int column = columns.left + ColumnOf(*time, state.view.InView(), columns.Width());
        if (std::abs(column - at.x) < nearest) {
            nearest = std::abs(column - at.x);
            found = which;
        }
    }
    return found;
}

}  // namespace

PointerEffect GraphPointer::Press(GraphState& state, const GraphPlan& plan, Point at, bool isShift)
{
    PointerEffect effect = Cancel(state);
    if (!IsOverCurves(state, plan, at)) {
        return effect;
    }
    m_pressed = at;
    if (isShift) {
        state.markers.SetNext(TimeAt(state, plan, at));
        effect.markers = true;
        return effect;
    }
    if (const std::optional<int> marker = MarkerAt(state, plan, at)) {
        m_drag = Drag::Marker;
        m_marker = *marker;
        m_markersBefore = state.markers;
    } else if (state.mode == kZoomMode) {
        m_drag = Drag::Band;
    } else if (state.mode == kPanMode && state.view.IsZoomed()) {
        m_drag = Drag::Pan;
        m_viewBefore = state.view.InView();
    }
    return effect;
}

PointerEffect GraphPointer::PanTo(GraphState& state, const GraphPlan& plan, Point at) const
{
    const double length = static_cast<double>(m_viewBefore.to - m_viewBefore.from);
    const double share = static_cast<double>(at.x - m_pressed.x) / std::max(plan.Columns().Width(), 1);
    const Zoom whole = state.view.Whole();
    const auto by = std::clamp(static_cast<std::int64_t>(-share * length), whole.from - m_viewBefore.from,
                               whole.to - m_viewBefore.to);
    PointerEffect effect;
    effect.view = state.view.Show({m_viewBefore.from + by, m_viewBefore.to + by});
    return effect;
}

// The cursor and the curve that it is at.
PointerEffect GraphPointer::Follow(GraphState& state, const GraphPlan& plan, Point at) const
{
    PointerEffect effect;
    effect.over = true;
    if (!IsOverCurves(state, plan, at)) {
        state.pointer.reset();
        state.cursor.reset();
        state.highlighted = -1;
        return effect;
    }
    state.pointer = at;
    state.cursor = TimeAt(state, plan, at);
    state.highlighted = m_drag == Drag::None ? CurveAt(plan, state, at) : -1;
    return effect;
}

PointerEffect GraphPointer::Move(GraphState& state, const GraphPlan& plan, Point at)
{
    PointerEffect effect;
    switch (m_drag) {
        case Drag::Pan:
            effect = PanTo(state, plan, at);
            break;
        case Drag::Marker:
            state.markers.Set(m_marker, TimeAt(state, plan, at));
            effect.markers = true;
            break;
        case Drag::Band: {
            const std::int64_t one = TimeAt(state, plan, m_pressed);
            const std::int64_t other = TimeAt(state, plan, at);
            state.band = Zoom{std::min(one, other), std::max(one, other)};
            break;
        }
        case Drag::None:
            break;
    }
    effect.over = Follow(state, plan, at).over;
    return effect;
}

PointerEffect GraphPointer::Release(GraphState& state, const GraphPlan& plan, Point at)
{
    PointerEffect effect = Move(state, plan, at);
    const Drag drag = std::exchange(m_drag, Drag::None);
    if (drag != Drag::Band) {
        return effect;
    }
    const std::optional<Zoom> band = std::exchange(state.band, std::nullopt);
    if (band && std::abs(at.x - m_pressed.x) >= Scaled(kLeastBand, plan.target.scale)) {
        effect.view = state.view.ZoomTo(*band) || effect.view;
    }
    return effect;
}

PointerEffect GraphPointer::Leave(GraphState& state)
{
    PointerEffect effect;
    effect.over = state.cursor || state.pointer || state.highlighted >= 0;
    state.pointer.reset();
    state.cursor.reset();
    state.highlighted = -1;
    return effect;
}

PointerEffect GraphPointer::Cancel(GraphState& state)
{
    PointerEffect effect;
    switch (std::exchange(m_drag, Drag::None)) {
        case Drag::Band:
            effect.over = state.band.has_value();
            state.band.reset();
            break;
        case Drag::Pan:
            effect.view = state.view.Show(m_viewBefore);
            break;
        case Drag::Marker:
            state.markers = m_markersBefore;
            effect.markers = true;
            break;
        case Drag::None:
            break;
    }
    return effect;
}

PointerShape GraphPointer::Shape(const GraphState& state, const GraphPlan& plan) const
{
    const bool isMarker = m_drag == Drag::Marker ||
                          (m_drag == Drag::None && state.pointer && MarkerAt(state, plan, *state.pointer).has_value());
    if (isMarker) {
        return PointerShape::SizeMarker;
    }
    if (!state.pointer && m_drag == Drag::None) {
        return PointerShape::Arrow;
    }
    if (state.mode == kZoomMode) {
        return PointerShape::Cross;
    }
    if (state.mode == kPanMode && state.view.IsZoomed()) {
        return m_drag == Drag::Pan ? PointerShape::ClosedHand : PointerShape::OpenHand;
    }
    return PointerShape::Arrow;
}

}  // namespace zr::graph
