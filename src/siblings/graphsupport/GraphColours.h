// The colours of curves.
#pragma once

#include <array>

namespace zr::graph {

// Blue in the high byte of three, red in the low one. To be told apart on a light and on a dark ground, by people who
// are colour-blind too.
inline constexpr std::array<unsigned long, 12> kPredefinedColors = {
    // Placeholder order until the palette is measured by its test.
    0xB27200, 0x005ED5, 0x739E00, 0xA779CC, 0x009FE6, 0xE9B456,
    0x4B4BAA, 0x7A7A00, 0x9C3C6E, 0x2F7F4F, 0x8080FF, 0x808080};

}  // namespace zr::graph
