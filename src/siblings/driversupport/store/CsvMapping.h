// Where the values of a column of a CSV file go.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace zr {

// As text:  COLUMN=VARIABLE[*NUMBER | /NUMBER]...[:CLASS][:sum[=START]]
//
// COLUMN is a name of the header row, with or without the unit in brackets behind it, or `#N` for the N-th cell from 1;
// alone, without `=VARIABLE`, it is the variable's name as well. A stored value is the cell's times the factors, over
// the divisors. CLASS is instantaneous, maximum, minimum, state or counter. With `sum` the cells are what came on top
// since the row before, and the stored values their sum from START on.
struct CsvMapping {
    std::string column;
    ZRBasicString variable;     // plain reference
    double factor = 1.0;        // not 0
    double divisor = 1.0;       // not 0
    std::int32_t infoCode = 0;  // 0: not told
    bool isSum = false;
    bool hasStart = false;
    double start = 0.0;  // of the sum, in the scale of the stored values

    // False, with error "'TEXT': REASON", when it isn't understood.
    static bool Parse(std::string_view text, CsvMapping& mapping, std::string& error);
};

// The cell of a record that a mapping means, by the names of the header row. False when there is none.
bool FindCsvColumn(std::span<const std::string> names, std::string_view column, std::size_t& cell);

}  // namespace zr
