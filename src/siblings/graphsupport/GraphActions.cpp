// What the keys of a graph do.
#include "siblings/graphsupport/GraphParts.h"

#include <algorithm>
#include <cmath>

namespace zr::graph {

namespace {

constexpr double kPart = 0.1;
constexpr double kKeyFactor = 2.0;

std::int64_t Middle(Zoom zoom)
{
    return zoom.from + (zoom.to - zoom.from) / 2;
}

}  // namespace

void GraphModel::PanByPart(double part)
{
    m_parts->EndDrag();
    GraphState& state = m_parts->state;
    const Zoom view = state.view.InView();
    if (state.view.PanBy(std::llround(part * static_cast<double>(view.to - view.from)))) {
        m_parts->ChangeShown();
    }
}

void GraphModel::ZoomByKey(double factor)
{
    m_parts->EndDrag();
    GraphState& state = m_parts->state;
    const Zoom view = state.view.InView();
    const std::int64_t about = std::clamp(state.cursor.value_or(Middle(view)), view.from, view.to);
    if (state.view.ZoomAbout(about, factor)) {
        m_parts->ChangeShown();
    }
}

// By whole columns, from the middle where there is no cursor; the tooltip goes along.
void GraphModel::MoveCursor(int columns)
{
    GraphState& state = m_parts->state;
    const Rect place = m_parts->Plan().Columns();
    if (place.IsEmpty() || state.view.IsEmpty()) {
        return;
    }
    m_parts->EndDrag();
    const Zoom view = state.view.InView();
    const int width = place.Width();
    const int now = state.cursor ? ColumnOf(*state.cursor, view, width) : width / 2;
    const int column = std::clamp(state.cursor ? now + columns : now, 0, width - 1);
    state.cursor = TimeOf(column, view, width);
    const int row = state.pointer ? state.pointer->y : (place.top + place.bottom) / 2;
    state.pointer = Point{place.left + column, row};
    state.highlighted = graph::CurveAt(m_parts->Plan(), state, *state.pointer);
    m_parts->ChangeOver();
}

void GraphModel::SetMarkerAtCursor()
{
    m_parts->EndDrag();
    GraphState& state = m_parts->state;
    if (!state.view.IsEmpty()) {
        state.markers.SetNext(state.cursor.value_or(Middle(state.view.InView())));
        m_parts->ChangeMarkers();
    }
}

void GraphModel::Do(GraphAction action)
{
    switch (action) {
        case GraphAction::PanLeft:
            return PanByPart(-kPart);
        case GraphAction::PanRight:
            return PanByPart(kPart);
        case GraphAction::PageLeft:
            return PanByPart(-1.0);
        case GraphAction::PageRight:
            return PanByPart(1.0);
        case GraphAction::ZoomIn:
            return ZoomByKey(1.0 / kKeyFactor);
        case GraphAction::ZoomOut:
            return ZoomByKey(kKeyFactor);
        case GraphAction::Cancel:
            return IsDragging() ? CancelDrag() : UndoZoom();
        case GraphAction::Whole:
            return UndoZoom();
        case GraphAction::UndoZoom:
            return UndoLastZoom();
        case GraphAction::SetMarker:
            return SetMarkerAtCursor();
        case GraphAction::RemoveMarkers:
            return RemoveMarkers();
        case GraphAction::CursorLeft:
            return MoveCursor(-1);
        case GraphAction::CursorRight:
            return MoveCursor(1);
        case GraphAction::TooltipMode:
            return SetMode(kTooltipMode);
        case GraphAction::ZoomMode:
            return SetMode(kZoomMode);
        case GraphAction::PanMode:
            return SetMode(kPanMode);
    }
}

}  // namespace zr::graph
