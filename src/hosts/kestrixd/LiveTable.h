// The live values of all devices as text for a terminal.
#pragma once

#include "hosts/supervision/Summary.h"
#include "siblings/driversupport/ZRDriverVariable.h"

#include <deque>
#include <list>
#include <memory>
#include <string>
#include <vector>

namespace zr::service {

// Holds the variables of the registry's devices locked. Made after a load, gone before a reset. Main loop only.
class LiveTable {
public:
    LiveTable();

    // Lines of at most that many columns and rows, first the figures and what is recorded, then a line a device with as
    // many values as there is room for, then the latest messages. Every line ends with a line feed. recording: empty
    // for no line.
    [[nodiscard]] std::string Render(int columns, int rows, const supervision::Summary& summary,
                                     const std::string& recording, const std::deque<std::string>& messages) const;

private:
    struct Row {
        ZRDeviceDriver* driver;
        mutable std::vector<ZRDriverVariable> variables;
    };
    [[nodiscard]] static std::string RenderRow(const Row& row, int columns);

    std::list<Row> m_rows;
};

}  // namespace zr::service
