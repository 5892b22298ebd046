#include "diagnostics/DebugBarSizes.h"

#include "platform/BarStyles.h"

#include <algorithm>

namespace zr {

using namespace ui;

BarSize DebugBarSizes::CalcDynamicLayout(int length, unsigned mode, BarSize client)
{
    if ((mode & (LM_HORZDOCK | LM_VERTDOCK)) != 0) {
        if ((mode & LM_STRETCH) == 0) {
            sizeHorz = client;
            return sizeHorz;
        }
        return (mode & LM_HORZ) != 0 ? BarSize{kAsLongAsTheSide, sizeHorz.cy} : BarSize{sizeHorz.cx, kAsLongAsTheSide};
    }
    if ((mode & LM_MRUWIDTH) != 0) {
        return sizeFloat;
    }
    int BarSize::*const side = (mode & LM_LENGTHY) != 0 ? &BarSize::cy : &BarSize::cx;
    sizeFloat.*side = length;
    if (changeDockedSize) {
        sizeHorz.*side = length;
    }
    return sizeFloat;
}

void DebugBarSizes::Grow(int d)
{
    sizeHorz.cy += d;
    // It is meant that the floating height goes along.
    sizeFloat.cy += d;
}

HotZone HotZoneOf(unsigned alignment, int clientHeight, int edge)
{
    // It is meant that the zones differ: at the bottom edge what lies beyond three edge widths, at the top edge two.
    if (alignment == CBRS_ALIGN_TOP) {
        const int first = std::max(clientHeight - 3 * edge + 1, 0);
        return {first, std::max(clientHeight - first, 0)};
    }
    return alignment == CBRS_ALIGN_BOTTOM ? HotZone{0, std::clamp(2 * edge, 0, std::max(clientHeight, 0))} : HotZone{};
}

void EdgeDrag::Hover(unsigned alignment, BarPoint point, int clientHeight, int edge)
{
    dockSide = HotZoneOf(alignment, clientHeight, edge).Holds(point.y) ? alignment : 0;
}

void EdgeDrag::Begin(BarPoint point)
{
    start = point;
    current = point;
    dragging = true;
}

void EdgeDrag::Follow(BarPoint point, const DragLimits& limits)
{
    current = RestrictMovingArea(point, limits);
}

int EdgeDrag::End(BarPoint point, const DragLimits& limits)
{
    const int change = ChangeInHeight(RestrictMovingArea(point, limits));
    dragging = false;
    dockSide = 0;
    return change;
}

BarPoint EdgeDrag::RestrictMovingArea(BarPoint point, const DragLimits& limits) const
{
    const int most = limits.frameHeight - limits.frameHeight / 2;
    const int height = std::min(std::max(limits.barHeight + ChangeInHeight(point), limits.least), most);
    const int change = height - limits.barHeight;
    return {point.x, dockSide == CBRS_ALIGN_TOP ? start.y + change : start.y - change};
}

int EdgeDrag::ChangeInHeight(BarPoint point) const
{
    return dockSide == CBRS_ALIGN_TOP ? point.y - start.y : start.y - point.y;
}

int WarningColumnWidth(int listWidth, int lines, int linesOnPage, int border, int scrollBar)
{
    return std::max(listWidth - 2 * border - (lines > linesOnPage ? scrollBar : 0), 0);
}

}  // namespace zr
