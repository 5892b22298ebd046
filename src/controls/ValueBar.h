// What the horizontal and the upright bar have in common.
#pragma once

#include "controls/BarShading.h"
#include "controls/BarSlots.h"
#include "controls/BarZones.h"
#include "controls/DrawList.h"
#include "controls/LimitChecks.h"
#include "controls/MeasuredText.h"
#include "siblings/driversupport/ZRDeviceDriver.h"
#include "siblings/tools/ZRBasicString.h"

#include <array>
#include <cstdint>
#include <vector>

namespace zr::controls {

// What a window knows when it paints.
struct BarPaint {
    Size client;  // device-independent pixels
    std::array<ZRDeviceDriver::tagSVariableInfo, kBarSlots>
        info;  // by Info() of the locked slots, others not looked at
    SystemColours colours;
    bool isEnabled = true;  // the window's own state; an upright bar that is disabled shows no text and no marker
};

// Settings, slots and picture of a bar. Order of use: SetupBar, FontsChanged, SetupChecks, SetLabel, then Update and
// Compose (of the derived classes) again and again. UI thread only.
class ValueBar {
public:
    // Heights in pixels and in tenths of a point, raised to at least 10 and 90. The zones take their usual colours.
    void SetupBar(int barHeight, int fontSize);
    [[nodiscard]] int BarHeight() const { return m_barHeight; }
    [[nodiscard]] int FontSize() const { return m_fontSize; }
    // To be called when the window has made its fonts, and whenever texts measure otherwise than before (another font
    // or screen): takes the ideal height and forgets what was measured.
    void FontsChanged(const TextMeasure& measure);
    // barHeight + 2 * (height of "8" in the value font) + 6; 0 before the first FontsChanged.
    [[nodiscard]] int IdealHeight() const { return m_idealHeight; }

    // Limits as LimitChecks::Setup takes them. All slots go to the lower side with kCheckLowLimits, else to the upper.
    void SetupChecks(int flags, double lowWarning, double lowAlarm, double highWarning, double highAlarm,
                     double nominal);
    [[nodiscard]] const LimitChecks& Limits() const { return m_limits; }
    void SetLabel(const ZRBasicString& label) { m_label = label; }

    [[nodiscard]] BarSlots& Slots() { return m_slots; }
    [[nodiscard]] const BarSlots& Slots() const { return m_slots; }
    [[nodiscard]] const BarColours& Colours() const { return m_colours; }

    // The pixels for the Picture of the draw list. Stay the same object; see PictureVersion.
    [[nodiscard]] const Bitmap& PicturePixels() const { return m_picture.Pixels(); }
    // Changes when the pixels do; 0 while there are none.
    [[nodiscard]] std::uint64_t PictureVersion() const { return m_picture.Version(); }

protected:
    ValueBar() = default;
    ~ValueBar() = default;
    ValueBar(const ValueBar&) = default;
    ValueBar& operator=(const ValueBar&) = default;

    // Starts a draw list and forgets where the numbers stood. False when the client has no pixels.
    bool BeginCompose(const BarPaint& paint);
    // Frame and picture, from the stretches that were put into m_content in client coordinates.
    void AddPicture(BarAxis axis, const Rect& bar, const SystemColours& colours);
    // A client too small for a bar: the present value alone, centred at the top.
    void ComposeNumberOnly(const BarPaint& paint, const TextMeasure& measure);
    // The shown number of a slot, or "-" when it isn't valid.
    [[nodiscard]] ZRBasicString SlotText(int slot, const BarPaint& paint) const;
    // A text at the slot's textRect, in the colours of its selection.
    void AddNumber(int slot, const ZRBasicString& text, const SystemColours& colours);
    // The bar with two pixels more on each side.
    [[nodiscard]] static Rect FrameOf(const Rect& bar);
    // Whether the bar has any zone; without, it shows the face.
    [[nodiscard]] bool HasZones() const { return !m_content.stretches.empty(); }

    LimitChecks m_limits;
    BarColours m_colours;
    BarSlots m_slots;
    ZRBasicString m_label;
    int m_barHeight = 0;
    int m_fontSize = 0;
    int m_idealHeight = 0;
    bool m_dirty = false;  // numbers moved: what they leave free must be cleared
    Rect m_client;         // of the paint under way
    MeasuredTexts m_measured;
    BarPictureContent m_content;  // of the paint under way, kept for its memory
    BarPicture m_picture;
    DrawList m_list;
};

}  // namespace zr::controls
