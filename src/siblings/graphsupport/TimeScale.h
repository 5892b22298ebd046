// The scale of time below a graph: which ticks there are, and what stands at them.
#pragma once

#include "siblings/graphsupport/CalendarStep.h"
#include "siblings/graphsupport/GraphScene.h"
#include "siblings/graphsupport/GraphZoom.h"
#include "siblings/graphsupport/TimeTexts.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace zr::graph {

// Times are UTC, microseconds since 1970; columns are counted from the left edge of the curves.

// The column of a time; below 0 or from width on for what is out of view. Held to a few widths around it. -1 when there
// is no width or nothing in view.
int ColumnOf(std::int64_t time, Zoom view, int width);
// The time at the left edge of a column.
std::int64_t TimeOf(double column, Zoom view, int width);

struct TimeTick {
    std::int64_t time = 0;
    int column = 0;
    bool isMajor = false;
    ZRBasicString label;    // of some major ones
    ZRBasicString context;  // likewise: a second line, where a day or a year begins
};

struct TimeScaleInput {
    Zoom view;
    int width = 0;      // of the curves, pixels
    int roomLeft = 0;   // how far texts may stand out
    int roomRight = 0;  //
    double scale = 1.0;
    const TextExtents* texts = nullptr;  // null: ticks without texts
    int firstDayOfWeek = 1;
};

// A plain value.
struct TimeScale {
    std::optional<CalendarStep> step;  // of the major ticks; none: nothing in view, or no width
    std::vector<TimeTick> ticks;       // strictly ascending
    ZRBasicString leftContext;  // of the left edge, so that the date is always known; empty where a tick tells it
};

// Takes the finest step whose labels keep apart from each other. Where a change of the clock brings two ticks closer
// together, the second has no label.
TimeScale MakeTimeScale(const TimeScaleInput& input, const TimeZone& zone, const TimeTexts& texts);

}  // namespace zr::graph
