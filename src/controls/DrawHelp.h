// Pieces of a draw list that several controls are put together from.
#pragma once

#include "controls/DrawList.h"

namespace zr::controls {

// Fills what up to two holes leave free of an area.
void AddFillAround(DrawList& list, const Rect& area, const Rect& hole, const Rect& secondHole, Rgb colour);
// A black mark over a bar and what is around it. What stands on the face takes the colour that is readable there; so
// does all of it on a bar without zones.
void AddMark(DrawList& list, const Rect& mark, const Rect& bar, bool hasZones, Rgb face);
// A rectangle that is wide and high enough for a text of that size, by one of its corners or edges.
[[nodiscard]] constexpr Rect RectAt(int left, int top, Size size)
{
    return {left, top, left + size.cx, top + size.cy};
}

}  // namespace zr::controls
