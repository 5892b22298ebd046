// A measurement on an upright scale with three markers, the limits beside it, and two labels.
#pragma once

#include "controls/BarScale.h"
#include "controls/ValueBar.h"
#include "siblings/tools/ZRBasicString.h"

#include <array>

namespace zr::controls {

// displayFlags of an upright bar.
inline constexpr int kShowLabel = 1;         // the label above the bar
inline constexpr int kShowLimits = 2;        // the limits beside the bar
inline constexpr int kShowUnits = 4;         // units behind the numbers
inline constexpr int kRoomForLabelInfo = 8;  // room below the bar for the second label

// The bar with everything that ZRVerticalBarValueControl shows. A power factor has no scale of its own here: the flag
// kPowerFactor plays no part. UI thread only.
class VerticalBar : public ValueBar {
public:
    void SetupBar(int displayFlags, int barHeight, int fontSize);
    void SetLabelInfo(const ZRBasicString& text) { m_labelInfo = text; }
    // The measuring unit of a slot's variable; empty for one that couldn't be locked.
    void SetUnits(int slot, const ZRBasicString& units);
    // The texts of the limits, by FormatNumber with these decimals. The limits of SetupChecks stay as they are.
    void SetupLimits(const ZRBasicString& units, double lowWarning, double lowAlarm, double highWarning,
                     double highAlarm, int lowWarningDecimals, int lowAlarmDecimals, int highWarningDecimals,
                     int highAlarmDecimals);
    // Greys the zones until the next SetupBar, for a device out of use. Numbers and markers stay.
    void Disable();

    // Whether the window must be invalidated, without erasing.
    bool Update(const BarReadings& readings);
    // A present value from outside, until the next Update. Returns as Update.
    bool SetInstValue(double value);

    // As HorizontalBar::Compose. A disabled window shows frame and zones alone.
    const DrawList& Compose(const BarPaint& paint, const TextMeasure& measure);

    [[nodiscard]] const Rect& BarRect() const { return m_bar; }
    // Y of a slot's marker, as last composed.
    [[nodiscard]] int MarkerOf(int slot) const { return m_markers.at(static_cast<std::size_t>(slot)); }
    // Whether the present value stands on the scale, as last composed; an arrow stands for it otherwise.
    [[nodiscard]] bool IsOnScale() const { return m_onScale; }

private:
    enum Limit { LowAlarm, LowWarning, HighAlarm, HighWarning, LimitCount };

    [[nodiscard]] bool Shows(int displayFlag) const { return (m_displayFlags & displayFlag) != 0; }
    void PlaceBar(const TextMeasure& measure);
    void PlaceMarkers();
    void PlaceByMarks();
    void PlaceWithoutChecks();
    void PlaceByLimits();
    // Holds the present value to its range, or takes it off the scale.
    void ClampPresent(const BarRange& range);

    void AddNumbers(const BarPaint& paint, const TextMeasure& measure);
    void AddStrips(const BarPaint& paint);
    void AddLabel(const BarPaint& paint, const TextMeasure& measure);
    // The frame's width, or more for a wider label while no number stands there.
    [[nodiscard]] Rect LabelCell(int labelWidth) const;
    void AddMarkers(const BarPaint& paint);
    void AddArrow(const BarPaint& paint);
    void AddLabelInfo(const BarPaint& paint, const TextMeasure& measure);
    void AddLimits(const BarPaint& paint, const TextMeasure& measure);
    void AddLimitTick(int row, const BarPaint& paint);
    void AddLowLimit(Limit limit, int row, const BarPaint& paint, const TextMeasure& measure);
    void AddHighLimit(Limit limit, int row, const BarPaint& paint, const TextMeasure& measure);
    // Ends left of the frame, with its bottom on that row.
    void AddLimitText(const ZRBasicString& text, Size size, int bottom, const BarPaint& paint);

    int m_displayFlags = 0;
    ZRBasicString m_labelInfo;
    ZRBasicString m_limitUnits;
    std::array<ZRBasicString, LimitCount> m_limitTexts;
    bool m_hasInstantValue = false;

    Rect m_bar;
    Rect m_frame;
    BarScales m_scales;
    BarPlaces m_markers = {};
    bool m_onScale = true;
};

}  // namespace zr::controls
