#include "controls/DrawHelp.h"

#include "controls/TextOn.h"

#include <algorithm>

namespace zr::controls {

namespace {

void AddFill(DrawList& list, const Rect& rect, Rgb colour)
{
    if (!rect.IsEmpty()) {
        list.emplace_back(Fill{rect, colour});
    }
}

// The up to four pieces of an area around a hole, each to the function.
template <typename Function>
void Around(const Rect& area, const Rect& hole, const Function& piece)
{
    if (hole.IsEmpty() || !area.Meets(hole)) {
        piece(area);
        return;
    }
    const int top = std::max(area.top, hole.top);
    const int bottom = std::min(area.bottom, hole.bottom);
    piece(Rect{area.left, area.top, area.right, top});
    piece(Rect{area.left, top, hole.left, bottom});
    piece(Rect{hole.right, top, area.right, bottom});
    piece(Rect{area.left, bottom, area.right, area.bottom});
}

}  // namespace

void AddFillAround(DrawList& list, const Rect& area, const Rect& hole, const Rect& secondHole, Rgb colour)
{
    Around(area, hole, [&](const Rect& rest) {
        if (!rest.IsEmpty()) {
            Around(rest, secondHole, [&](const Rect& piece) { AddFill(list, piece, colour); });
        }
    });
}

void AddMark(DrawList& list, const Rect& mark, const Rect& bar, bool hasZones, Rgb face)
{
    const Rgb onFace = TextOn(face);
    if (!hasZones || onFace == kBlack) {
        AddFill(list, mark, onFace);
        return;
    }
    Around(mark, bar, [&](const Rect& piece) { AddFill(list, piece, onFace); });
    AddFill(list,
            {std::max(mark.left, bar.left), std::max(mark.top, bar.top), std::min(mark.right, bar.right),
             std::min(mark.bottom, bar.bottom)},
            kBlack);
}

}  // namespace zr::controls
