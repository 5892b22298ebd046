// The colours of curves.
#pragma once

#include <array>

namespace zr::graph {

// Blue in the high byte of three, red in the low one. To be told apart on a light and on a dark ground, by people who
// are colour-blind too: found by a search for the twelve whose two nearest are furthest apart (CIEDE2000, the first six
// counting most) to full vision and to protanopia, deuteranopia and tritanopia (Machado, Oliveira, Fernandes 2009,
// severity 1.0), with a contrast of at least 2.2 to #ffffff and #1e1e1e. Their test measures all of that.
inline constexpr std::array<unsigned long, 12> kPredefinedColors = {
    0x686E38,  // dark teal
    0x0286EA,  // orange
    0xEC0179,  // violet
    0xF497B7,  // lavender
    0x0008B6,  // red
    0xA0B17F,  // sage
    0x997C92,  // mauve
    0x80446C,  // plum
    0xF1648F,  // periwinkle
    0x7BB6A3,  // pale green
    0x6D8B6D,  // moss
    0x4141DE,  // coral
};

}  // namespace zr::graph
