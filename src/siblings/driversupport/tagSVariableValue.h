// The value of a variable as it travels from a driver to a reader.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <cstdint>

// Only the payload of the current type is kept up to date; the others stay as they last were.
struct tagSVariableValue {
    static constexpr std::int32_t kNone = 0;
    static constexpr std::int32_t kBoolean = 1;
    static constexpr std::int32_t kNumber = 2;
    static constexpr std::int32_t kText = 3;
    static constexpr std::int32_t kWords = 4;

    std::int32_t type = kNone;
    std::int32_t first = -1;   // kWords
    std::int32_t second = 0;   // kWords
    ZRBasicString text;        // kText
    double number = 0.0;       // kNumber, in units of ten to the variable's valueExponent
    std::uint8_t boolean = 0;  // kBoolean, 0 or 1
};
