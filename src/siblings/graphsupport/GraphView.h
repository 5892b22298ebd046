// Which part of a graph's window of time is in view, and what was before.
#pragma once

#include "siblings/graphsupport/GraphZoom.h"

#include <cstdint>
#include <vector>

namespace zr::graph {

// Never less is in view than the least length, unless the window is shorter, and never anything outside the window.
// An empty window has nothing in view.
class GraphView {
public:
    // Another window forgets the history; the same keeps what is in view, as far as the least length allows. Whether it
    // was another.
    bool SetWhole(Zoom whole, std::int64_t leastLength);

    [[nodiscard]] Zoom Whole() const { return m_whole; }
    [[nodiscard]] Zoom InView() const { return m_view; }
    [[nodiscard]] bool IsEmpty() const { return m_whole.to <= m_whole.from; }
    [[nodiscard]] bool IsZoomed() const { return m_view.from != m_whole.from || m_view.to != m_whole.to; }
    // Oldest first; empty while all is in view.
    [[nodiscard]] const std::vector<Zoom>& History() const { return m_history; }

    // Each of these is false when nothing has changed.

    // Shows a stretch, remembering the one before.
    bool ZoomTo(Zoom zoom);
    // Shows so many times as much about a time, which keeps its place. Calls in a row are remembered as one zoom.
    bool ZoomAbout(std::int64_t time, double factor);
    // Shows as much, so much later.
    bool PanBy(std::int64_t by);
    // Shows a stretch without remembering: while dragging, and to take a drag back.
    bool Show(Zoom zoom);
    bool UndoLast();
    bool UndoAll();

private:
    [[nodiscard]] Zoom Held(Zoom zoom) const;
    bool Change(Zoom zoom, bool isRemembered);

    Zoom m_whole;
    Zoom m_view;
    std::int64_t m_leastLength = 1;
    std::vector<Zoom> m_history;
    bool m_isTurning = false;  // the last was ZoomAbout
};

}  // namespace zr::graph
