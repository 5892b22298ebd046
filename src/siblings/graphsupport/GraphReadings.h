// What the curves of a graph show at a time and between the markers, in words.
#pragma once

#include "siblings/graphsupport/GraphState.h"
#include "siblings/tools/ZRBasicString.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace zr::graph {

// A curve at a time.
struct CurveReading {
    int curve = 0;
    ZRBasicString title;
    ZRBasicString value;               // with unit; "-" in a gap
    ZRBasicString range;               // least to largest of the column of pixels where it has several samples
    std::optional<CurvePoint> sample;  // that the value is of
};

// A curve between the markers.
struct MarkerReading {
    int curve = 0;
    ZRBasicString title;
    ZRBasicString atFirst;  // "-" in a gap, as are those below without a sample
    ZRBasicString atSecond;
    ZRBasicString difference;  // second less first; of power factors along their folded scale
    ZRBasicString minimum;
    ZRBasicString mean;  // of power factors along their folded scale
    ZRBasicString maximum;
    ZRBasicString sum;  // of bars; else empty
};

// The time that the values shown in the legend are of: the cursor; without one the last record in view.
std::optional<std::int64_t> TimeOfReadings(const GraphState& state);
// One a curve; a column of pixels is so long. All are "-" where there are no data.
std::vector<CurveReading> ReadingsAt(const GraphState& state, std::int64_t time, std::int64_t columnLength);
// The same of one curve.
CurveReading ReadingAt(const GraphState& state, int curve, std::int64_t time, std::int64_t columnLength);
// Of the samples read, the time that is nearest to a time, the highlighted curve's before all; that time itself without
// any.
std::int64_t SampledTime(const GraphState& state, const std::vector<CurveReading>& readings, std::int64_t time);

// One a curve, from the earlier marker to the later; the sample at the later one doesn't count between them. Empty
// unless both stand.
std::vector<MarkerReading> MarkerReadingsOf(const GraphState& state);

}  // namespace zr::graph
