// The legends of a graph's zones: a row of swatches with title and value for each zone, wrapped where it is too long.
#pragma once

#include "siblings/graphsupport/GraphScene.h"
#include "siblings/graphsupport/GraphState.h"

#include <span>
#include <vector>

namespace zr::graph {

// Of one curve, in pixels from the left and in rows of its zone's legend.
struct LegendEntry {
    int curve = 0;
    int zone = 0;
    int row = 0;
    int left = 0;        // of the swatch
    int title = 0;       // left end of it
    int value = 0;       // likewise
    int valueWidth = 0;  //
};

struct Legend {
    std::vector<LegendEntry> entries;
    std::vector<int> rows;  // one a zone
    int dateWidth = 0;      // of the date that stands first in the uppermost zone; 0 without data
};

// The geometry is that of a legend strip: the date at 5, 2; a swatch of 10 by 10 pixels 10 behind what stands before
// it, the text 3 behind the swatch, over its stored width and 2 more.
Legend MakeLegend(const GraphState& state, const GraphTarget& target, std::span<const int> valueWidths);
// Stores more, where the data need it: of each curve as wide as the text of any value that it has. Never less.
void WidenValues(const GraphState& state, const TextExtents& texts, std::vector<int>& valueWidths);

// The dashes that tell a curve from its neighbours without colours, as PS_SOLID and so on.
unsigned MonochromeStyle(int curve);

// Date and values: those at the cursor, else the last in view. Without either, and on paper, the curves have their
// units alone.
void AppendLegend(const Legend& legend, const GraphState& state, const GraphTarget& target,
                  const std::vector<Rect>& places, SceneLayer& out);

}  // namespace zr::graph
