// A year of ten variables a minute, of the demo's kind of data: what the benches of the store record and load.
#pragma once

#include "siblings/driversupport/VariableStore.h"
#include "siblings/tools/ZRBasicString.h"
#include "siblings/tools/ZRDateTime.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zr::bench {

// The measured minutes of the demo's household, one after another and again from the first until the year is full, and
// three counters that add up what was measured. Times are UTC, microseconds since 1970.
struct DemoYear {
    static constexpr std::size_t kVariables = 10;
    static constexpr std::size_t kRecords = 365 * 24 * 60;
    static constexpr std::int64_t kMicros = 1000000;
    static constexpr std::int64_t kFirstSecond = 1041379200;  // 1 January 2003 UTC

    std::vector<std::int64_t> times;
    std::array<std::vector<double>, kVariables> values;

    static ZRBasicString NameOf(std::size_t variable);
    static VariableClass ClassOf(std::size_t variable);
    // The year, to be read where the plant's zone is UTC.
    static ZRDateTime From();
    static ZRDateTime To();
};

// A record every so many seconds from the first second on. Ends the program when the demo's data can't be read.
DemoYear MakeDemoYear(std::size_t records = DemoYear::kRecords, std::int64_t period = 60);

// Ends the program with that message unless it is right.
void Require(bool isRight, const char* what);

}  // namespace zr::bench
