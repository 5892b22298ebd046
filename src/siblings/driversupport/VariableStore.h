// The live values of one device, written by its driver and read from any thread.
#pragma once

#include "siblings/driversupport/tagSVariableValue.h"
#include "siblings/tools/ZRBasicString.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace zr {

// Class of a variable (`infoCode`): how its samples are grouped when they are logged.
enum class VariableClass : std::int32_t {
    Instantaneous = 1,  // mean
    Maximum = 2,        // largest
    Minimum = 3,        // smallest
    State = 4,          // last
    Counter = 8,        // consumption
};

// Within which bounds a variable is expected, in units of the stored number. The limits stand in the order alarm,
// warning, nominal, warning, alarm; those of a power factor on its folded scale, where -0.9 follows 1.
struct VariableLimits {
    double nominal = 0.0;  // above 0
    bool hasLow = false;
    double lowWarning = 0.0;
    double lowAlarm = 0.0;
    bool hasHigh = false;
    double highWarning = 0.0;
    double highAlarm = 0.0;
};

// What never changes about a variable while its device is configured.
struct VariableDescription {
    ZRBasicString name;         // within its driver; upper case, see IsValidId
    ZRBasicString description;  // text for people
    VariableClass variableClass = VariableClass::Instantaneous;
    std::int32_t measureUnits = 0;   // unit code, see MeasureUnitsText
    std::int32_t valueExponent = 0;  // decimal exponent of the stored number
    std::int32_t decimals = 0;       // of the stored number's text form
    std::int32_t unitsExponent = 0;  // decimal exponent of the displayed unit
    std::int32_t unitsDecimals = 0;  // of a value in the displayed unit
    bool splittable = false;         // by a filter and hour type
    bool output = false;             // can be set
    bool isText = false;             // its value is a text, never a number
    double minimum = 0.0;            // allowed range of the stored number; both 0: not limited
    double maximum = 0.0;
    std::optional<VariableLimits> limits;   // none: no value is out of the ordinary
    std::vector<ZRBasicString> valueTexts;  // names of the values of a closed list, with
    std::vector<int> values;                // the integer of each; empty for any other variable
};

// The variables of one device type, shared by all its devices. Immutable once built. Any thread.
class VariableTable {
public:
    // Names must differ; of two equal ones the first is found.
    explicit VariableTable(std::vector<VariableDescription> variables);
    [[nodiscard]] std::size_t Size() const { return m_variables.size(); }
    // Zero-based; no range test.
    [[nodiscard]] const VariableDescription& operator[](std::size_t index) const { return m_variables[index]; }
    [[nodiscard]] std::optional<std::size_t> Find(const ZRBasicString& name) const;

private:
    std::vector<VariableDescription> m_variables;
    std::unordered_map<ZRBasicString, std::size_t> m_index;
};

// One value behind a sequence lock: a reader never waits for a writer that is doing I/O, only retries while a
// store of a few words is under way. One writer at a time; readers on any thread.
class LiveValue {
public:
    LiveValue() = default;
    LiveValue(const LiveValue&) = delete;
    LiveValue& operator=(const LiveValue&) = delete;
    ~LiveValue();

    void WriteBoolean(bool value);
    void WriteNumber(double value);
    void WriteText(const ZRBasicString& value);
    void WriteWords(std::int32_t first, std::int32_t second);
    // The last value stays readable.
    void Invalidate();
    [[nodiscard]] bool IsValid() const { return (m_typeAndValid.load(std::memory_order_acquire) & kValidBit) != 0; }
    // Another number after each write of a value, whether it changed or not; odd while one is under way.
    [[nodiscard]] std::uint32_t Writes() const { return m_sequence.load(std::memory_order_acquire); }
    // Writes `type` and the payload of that type; nothing else of the record. Type 0 before the first write.
    void Read(tagSVariableValue& out) const;

private:
    static constexpr std::uint32_t kValidBit = 0x80000000u;
    void Write(std::int32_t type, std::uint64_t payload);

    std::atomic<std::uint32_t> m_sequence{0};  // odd while a store is under way
    std::atomic<std::uint32_t> m_typeAndValid{0};
    std::atomic<std::uint64_t> m_payload{0};
    // Texts are rare and longer than a word: guarded by one of a few mutexes that all values share. Owned.
    ZRBasicString* m_text = nullptr;
};

// The values of one device. Outlives the device while a reader holds it; nothing is valid then.
class VariableStore {
public:
    explicit VariableStore(std::shared_ptr<const VariableTable> table);
    [[nodiscard]] const VariableTable& Table() const { return *m_table; }
    [[nodiscard]] LiveValue& At(std::size_t index) { return m_values[index]; }
    [[nodiscard]] const LiveValue& At(std::size_t index) const { return m_values[index]; }
    // When the device falls silent, or goes.
    void InvalidateAll();

private:
    std::shared_ptr<const VariableTable> m_table;
    std::unique_ptr<LiveValue[]> m_values;
};

}  // namespace zr
