// What a graph holds of its window's data and of its user: read by all that makes its picture.
#pragma once

#include "siblings/graphsupport/DateText.h"
#include "siblings/graphsupport/GraphCurves.h"
#include "siblings/graphsupport/GraphData.h"
#include "siblings/graphsupport/GraphMarkers.h"
#include "siblings/graphsupport/GraphScene.h"
#include "siblings/graphsupport/GraphView.h"
#include "siblings/graphsupport/TimeTexts.h"
#include "siblings/tools/TimeZone.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace zr::graph {

struct GraphState {
    GraphCurves curves;
    GraphData data;        // of those curves, in their order
    bool hasData = false;  // false: the data are not to be asked
    GraphView view;
    TimeZone zone;
    DateText dateText = nullptr;
    int mode = 0;  // kTooltipMode and so on
    GraphMarkers markers;

    std::optional<std::int64_t> cursor;  // time under the pointer, or where the keys have put it
    std::optional<Point> pointer;        // while it is over the curves
    int highlighted = -1;                // the curve under the pointer
    std::optional<Zoom> band;            // a zoom under way

    [[nodiscard]] TimeTexts Texts() const { return {dateText, zone}; }
    [[nodiscard]] std::size_t Records() const { return hasData ? data.Records() : 0; }
};

}  // namespace zr::graph
