// What the desktop keeps of a device beside its live values: its state, and how far each value has gone.
#pragma once

#include "hosts/kestrix/DeviceState.h"
#include "siblings/driversupport/VariableStore.h"
#include "siblings/driversupport/ZRDeviceDriver.h"
#include "siblings/tools/ZRBasicString.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace zr::desktop {

// The lowest and the highest reading since the program began to watch, in units of the stored number.
struct HistoryMark {
    bool any = false;  // false: there was no valid reading yet
    double low = 0.0;
    double high = 0.0;

    // What is no number isn't taken. A power factor is compared on its folded scale.
    void Take(double value, bool isPowerFactor);
};

// How a reading stands to its limits.
enum class LimitState { Normal, Warning, Alarm };
[[nodiscard]] LimitState StateOf(const VariableLimits& limits, bool isPowerFactor, double value);
[[nodiscard]] bool IsPowerFactor(const VariableDescription& variable);

// Watches one device. Its marks are live variables themselves, so that a bar can show them. UI thread only; gone before
// its device.
class DeviceWatch {
public:
    // Not owned; must outlive this.
    explicit DeviceWatch(ZRDeviceDriver& driver);
    ~DeviceWatch();
    DeviceWatch(const DeviceWatch&) = delete;
    DeviceWatch& operator=(const DeviceWatch&) = delete;

    // Reads every variable once. isPolled: whether this program supervises the device.
    void Update(bool isPolled);
    // A warning says that the device does not answer. It stays silent until it answers.
    void FellSilent() { m_fellSilent = true; }

    [[nodiscard]] ZRDeviceDriver& Driver() const { return m_driver; }
    [[nodiscard]] DeviceState State() const { return m_state; }
    // Position of the variable in the device's table; no range test.
    [[nodiscard]] const HistoryMark& Mark(std::size_t variable) const { return m_marks[variable]; }
    // Begins the marks of a variable anew.
    void Forget(std::size_t variable);

    // The names, for ZRDriverVariable::Setup, of the live variables of a mark. They live as long as this.
    [[nodiscard]] static ZRBasicString HighName(const ZRBasicString& device, const ZRBasicString& variable);
    [[nodiscard]] static ZRBasicString LowName(const ZRBasicString& device, const ZRBasicString& variable);

private:
    class MarkDriver;

    // The state of the limits of what was read.
    LimitState ReadValues();
    void WriteMark(std::size_t variable);

    ZRDeviceDriver& m_driver;
    std::shared_ptr<VariableStore> m_store;  // null for a device without variables
    std::unique_ptr<MarkDriver> m_markDriver;
    std::vector<HistoryMark> m_marks;
    DeviceState m_state = DeviceState::NotAsked;
    bool m_fellSilent = false;
    bool m_wasOnline = false;
};

}  // namespace zr::desktop
