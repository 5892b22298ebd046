// The numeric display of one live variable, without its window: its state, its text, its colours and its places.
#pragma once

#include "controls/DrawList.h"
#include "controls/LimitChecks.h"
#include "siblings/driversupport/ZRDriverVariable.h"

#include <cstdint>

namespace zr::controls {

// As a value is told to hosts.
enum class ValueState : std::uint32_t { Normal = 1, Warning = 2, Alarm = 3 };

// How a text is placed in a rectangle; numbered as DrawTextW numbers its format.
inline constexpr std::uint32_t kAlignCentre = 0x01;
inline constexpr std::uint32_t kAlignRight = 0x02;
inline constexpr std::uint32_t kAlignVCentre = 0x04;
inline constexpr std::uint32_t kAlignBottom = 0x08;
inline constexpr std::uint32_t kSingleLine = 0x20;

// Texts of the two states of a digital input.
inline constexpr unsigned kTextDigitalOff = 607;
inline constexpr unsigned kTextDigitalOn = 608;

// The rectangle of a text of that size in the client rectangle, as the format places it. Without kSingleLine a text
// stands at the top. A text that is too large hangs over.
[[nodiscard]] Rect PlaceText(Size client, Size text, std::uint32_t drawFlags);

// Colours of the text and of what is behind it.
struct ValueColours {
    Rgb text = 0;
    Rgb background = 0;
    friend bool operator==(const ValueColours&, const ValueColours&) = default;
};
[[nodiscard]] ValueColours ColoursOf(ValueState state, bool isSelected, const SystemColours& system);

// SetupVariable and SetupChecks once, then Update periodically. UI thread only.
class ValueReading {
public:
    ValueReading();

    // Takes hold of the variable; one that isn't there leaves the display blank. alignment: 2, 4, 8 left, centred and
    // right; 32, 64, 128 likewise and centred in the height; any other leaves the placement as it was.
    void SetupVariable(const ZRBasicString& name, int alignment);
    // See LimitChecks. The state stays as it was until the next change of the value.
    void SetupChecks(int flags, double lowWarning, double lowAlarm, double highWarning, double highAlarm,
                     double nominal);
    void SetDigital(bool isDigital) { m_digital = isDigital; }
    void SetEnableSelection(bool isEnabled) { m_enableSelection = isEnabled; }
    void Select(bool isSelected) { m_selected = m_enableSelection && isSelected; }
    // As a click does.
    void Toggle() { Select(!m_selected); }

    [[nodiscard]] bool Selected() const { return m_selected; }
    [[nodiscard]] bool SelectionEnabled() const { return m_enableSelection; }
    [[nodiscard]] bool IsLocked() const { return m_variable.IsLocked(); }
    // 0 when not locked.
    [[nodiscard]] unsigned VarId() const { return m_variable.Id(); }
    [[nodiscard]] const ZRBasicString& Name() const { return m_variable.fullName; }
    [[nodiscard]] ValueState State() const { return m_state; }
    [[nodiscard]] double Value() const { return m_value; }
    [[nodiscard]] std::uint32_t DrawFlags() const { return m_drawFlags; }

    // Reads the variable; true when the window must be painted again.
    bool Update();

    // What stands in the window: the number, one of the two words, or "-".
    [[nodiscard]] ZRBasicString CurrentText() const;
    [[nodiscard]] Rgb Background(const SystemColours& system) const;
    // What a window of that size paints on its background; nothing when not locked.
    [[nodiscard]] DrawList Layout(Size client, const SystemColours& system, const TextMeasure& measure) const;

private:
    ZRDriverVariable m_variable;
    double m_value;
    LimitChecks m_limits;
    ValueState m_state = ValueState::Normal;
    bool m_selected = false;
    bool m_enableSelection = true;
    bool m_digital = false;
    std::uint32_t m_drawFlags = kAlignBottom;
    bool m_valid = false;
};

}  // namespace zr::controls
