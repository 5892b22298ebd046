// How large the warning bar is, and how its edge is dragged: what the bar decides without a window.
#pragma once

namespace zr {

// Pixels.
struct BarSize {
    int cx = 0;
    int cy = 0;
    friend bool operator==(const BarSize&, const BarSize&) = default;
};

// The bar's own coordinates; y grows downwards.
struct BarPoint {
    int x = 0;
    int y = 0;
    friend bool operator==(const BarPoint&, const BarPoint&) = default;
};

// The length of a bar that is as long as its side, as the frame understands it.
inline constexpr int kAsLongAsTheSide = 32767;

struct DebugBarSizes {
    BarSize sizeHorz;   // docked
    BarSize sizeFloat;  // floating
    bool changeDockedSize = false;

    // The size to give the frame; see LM_... of BarStyles.h. Keeps what the frame tells: the client size of a docked
    // bar, the length of a floating one.
    BarSize CalcDynamicLayout(int length, unsigned mode, BarSize client);
    // The edge was dragged: d pixels more height.
    void Grow(int d);
};

// Rows of the bar in which its edge can be taken, counted from the top.
struct HotZone {
    int first = 0;
    int rows = 0;  // 0: there is none
    [[nodiscard]] bool Holds(int y) const { return y >= first && y < first + rows; }
};
// alignment: CBRS_ALIGN_...; edge: SM_CXEDGE. The free edge of a bar at the top is its bottom, of one at the bottom its
// top; others have none.
HotZone HotZoneOf(unsigned alignment, int clientHeight, int edge);

// What limits a drag, in pixels.
struct DragLimits {
    int barHeight = 0;    // before the drag
    int least = 0;        // SM_CYMIN
    int frameHeight = 0;  // of the frame's client area
};

// The mouse on the edge: idle (no dockSide), armed (over the zone), dragging.
class EdgeDrag {
public:
    // The side under the mouse: CBRS_ALIGN_TOP, CBRS_ALIGN_BOTTOM or 0.
    [[nodiscard]] unsigned DockSide() const { return dockSide; }
    [[nodiscard]] bool IsDragging() const { return dragging; }
    // Where the line is.
    [[nodiscard]] BarPoint Current() const { return current; }

    // The mouse moves with no drag going on: armed in the zone of the side that the bar is docked at, else idle.
    void Hover(unsigned alignment, BarPoint point, int clientHeight, int edge);
    // Armed becomes dragging.
    void Begin(BarPoint point);
    // The line follows the mouse as far as the limits let it.
    void Follow(BarPoint point, const DragLimits& limits);
    // Idle again; the change in height.
    int End(BarPoint point, const DragLimits& limits);
    // The capture is lost: no drag any more, but it stays armed, which is meant.
    void Lose() { dragging = false; }

    // Moves the point up or down to where the bar is neither lower than `least` nor higher than half of the frame. In a
    // frame too low for both, half of the frame counts.
    [[nodiscard]] BarPoint RestrictMovingArea(BarPoint point, const DragLimits& limits) const;
    // How much higher the bar would get with its edge at the point.
    [[nodiscard]] int ChangeInHeight(BarPoint point) const;

private:
    bool dragging = false;
    BarPoint current;
    BarPoint start;
    unsigned dockSide = 0;
};

// The width of the list's only column: what a list of that width shows, less the scroll bar where there are more lines
// than fit. Not below 0.
int WarningColumnWidth(int listWidth, int lines, int linesOnPage, int border, int scrollBar);

// The side of the close button's cell, from the size of a standard control.
constexpr int CloseButtonCell(int controlSize)
{
    return controlSize * 2 / 3 - 1;
}

}  // namespace zr
