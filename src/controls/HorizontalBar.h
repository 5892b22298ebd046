// A measurement on a horizontal scale with three markers; a power factor on a scale with 1 in the middle.
#pragma once

#include "controls/BarScale.h"
#include "controls/ValueBar.h"

namespace zr::controls {

// The bar with everything that ZRBarValueControl shows. With kPowerFactor among the flags the scale and the zones are
// those of a power factor; all else is the same. UI thread only.
class HorizontalBar : public ValueBar {
public:
    // Whether the window must be invalidated, without erasing.
    bool Update(const BarReadings& readings);
    // What the window paints, in client coordinates. Valid until the next call. Changes side and textRect of the
    // slots, and ends the clearing that Update asked for. A client without pixels yields an empty list, and one too
    // small for a bar the present value alone.
    const DrawList& Compose(const BarPaint& paint, const TextMeasure& measure);

    // Where the scale begins and ends, as last composed; empty when there was no room.
    [[nodiscard]] const Rect& BarRect() const { return m_bar; }
    // X of a slot's marker, as last composed.
    [[nodiscard]] int MarkerOf(int slot) const { return m_markers.at(static_cast<std::size_t>(slot)); }

private:
    // Each finds the zones and the places of the markers.
    void PlaceByScale();
    void PlaceByPowerFactor();
    void PlaceByMarks();
    void PlaceWithoutChecks(const BarScales& scales);
    void PlaceByLimits(const BarScales& scales);

    void AddLabel(const BarPaint& paint, const TextMeasure& measure, Size sample);
    void AddNumbers(const BarPaint& paint, const TextMeasure& measure);
    // Where the numbers of the two marks stand under the bar.
    void PlaceMarkNumbers(Size highMark, Size lowMark);
    void AddStrips(const BarPaint& paint);
    void AddTicks(const BarPaint& paint);

    Rect m_bar;
    BarPlaces m_markers = {};
};

}  // namespace zr::controls
