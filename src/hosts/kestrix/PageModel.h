// What a page shows of a device, or of several side by side, made from their variables.
#pragma once

#include "siblings/driversupport/VariableStore.h"
#include "siblings/driversupport/ZRDeviceDriver.h"
#include "siblings/tools/ZRBasicString.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace zr::desktop {

// The parts of a page, in their order.
enum class Section { Voltages, Currents, Powers, PowerFactors, Energies, Inputs, Outputs, Counters, Harmonics, Other };

// How the value of a row is shown.
enum class RowKind {
    Number,
    Digital,  // one of two words
    Text,     // a text, or one of a list of names
};

struct PageRow {
    std::size_t variable = 0;  // position in the device's table
    ZRBasicString name;
    ZRBasicString description;
    ZRBasicString unit;  // of the displayed value; empty for none
    RowKind kind = RowKind::Number;
    std::optional<VariableLimits> limits;
    bool isPowerFactor = false;

    // For SetupChecks of a value control.
    [[nodiscard]] int CheckFlags() const;
};

struct PageSection {
    Section section = Section::Other;
    std::vector<PageRow> rows;
};

// One device: every variable has a row.
struct DevicePage {
    std::vector<PageSection> sections;  // none is empty
    std::vector<PageRow> bars;          // voltages, currents and power factors that have limits
};
[[nodiscard]] DevicePage MakeDevicePage(const VariableTable& variables);

// The same variables of several devices.
struct GroupRow {
    PageRow row;                                        // of the first device that has it
    std::vector<std::optional<std::size_t>> variables;  // position in the table of each device
};
struct GroupSection {
    Section section = Section::Other;
    std::vector<GroupRow> rows;
};
struct GroupTable {
    std::vector<std::size_t> devices;  // positions in what MakeGroupTables was given, in its order
    std::vector<GroupSection> sections;
};
// Devices that have a variable of one name and unit in common share a table. A null table is a device without
// variables, which stands in no table.
[[nodiscard]] std::vector<GroupTable> MakeGroupTables(const std::vector<const VariableTable*>& devices);

}  // namespace zr::desktop
