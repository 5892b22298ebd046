// Merges the reads of a device's variables into requests.
#pragma once

#include "devices/modbus/ModbusFrame.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zr::modbus {

// What one request of a device may read.
struct ReadLimits {
    std::uint16_t gapRegisters = 0;  // longest run of registers that no variable uses and that may yet be read
    std::uint16_t gapBits = 0;       // likewise of coils or discrete inputs
    std::uint16_t maxRegisters = kMaxReadRegisters;  // 1 to kMaxReadRegisters
    std::uint16_t maxBits = kMaxReadBits;            // 1 to kMaxReadBits
};

// What one variable needs. count is at least 1 and at most the limit of its function; first + count at most 65536.
struct ReadItem {
    Function function = Function::ReadHoldingRegisters;  // 1 to 4
    std::uint16_t first = 0;
    std::uint16_t count = 1;
};

struct PlannedRead {
    Function function = Function::ReadHoldingRegisters;
    std::uint16_t first = 0;
    std::uint16_t count = 0;
    std::vector<std::size_t> items;  // positions in the list of items, in order of address
};

// The fewest requests that read every item whole, each item once. None crosses functions, the limits, or a run of
// unused addresses longer than the gap limit; addresses that some item uses are no gap, whichever request reads it.
// Ordered by function and address.
//
// Taking from the lowest address on all that fits into a request is the optimum: the lowest item must lie in some
// request, none that holds it can hold an item that this one doesn't, and what is left is never made harder by there
// being less of it.
[[nodiscard]] std::vector<PlannedRead> PlanReads(std::span<const ReadItem> items, const ReadLimits& limits);

}  // namespace zr::modbus
