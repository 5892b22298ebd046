// Where the parts of a graph lie.
#pragma once

#include "siblings/graphsupport/GraphScene.h"

#include <span>
#include <vector>

namespace zr::graph {

struct ZonePlace {
    Rect legend;  // empty where there is no room
    Rect units;   // a line between legend and curves, where the axes have their units; likewise
    Rect panel;   // the curves
};

// The strip beside a panel that a value scale has for itself, as high as the panel.
struct AxisPlace {
    Rect rect;           // empty: no room, or no texts
    bool isLeft = true;  // its line is at the right end then
};

struct GraphLayout {
    std::vector<ZonePlace> zones;  // from the top
    std::vector<AxisPlace> axes;   // one a run
    Rect timeAxis;                 // below all, as wide as the panels; empty where there is no room
    Rect table;                    // of the markers, at the bottom; likewise
};

struct RowsInput {
    int zones = 1;
    int lineHeight = 0;           // of texts; 0: there are none
    std::vector<int> legendRows;  // one a zone
    int tableRows = 0;
};

// The rows of all parts: zones of equal height. Texts give way to the curves where a picture is small.
GraphLayout LayRows(const GraphTarget& target, const RowsInput& input);

struct AxisWidth {
    int zone = 0;
    int width = 0;
};

// The columns: of each zone the first run's axis stands to the left, the second's to the right, and so on outwards.
// Panels are equally wide in all zones; axes that would take more than half of the picture are left out, last first.
void LayColumns(GraphLayout& layout, const GraphTarget& target, std::span<const AxisWidth> axes);

// Pixels of the target for pixels of scale 1, at least 1 where there are any.
int Scaled(double pixels, double scale);

}  // namespace zr::graph
