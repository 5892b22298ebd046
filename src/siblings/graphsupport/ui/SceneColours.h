// What colour each thing of a graph has.
#pragma once

#include "siblings/graphsupport/GraphScene.h"

#include <array>
#include <QColor>

class QPalette;

namespace zr::graph {

// A plain value.
class SceneColours {
public:
    // Of a desktop, light or dark.
    explicit SceneColours(const QPalette& palette);
    // Black on white, as paper and documents have it.
    static SceneColours OfPaper();

    [[nodiscard]] const QColor& Of(SceneRole role) const { return m_colours[static_cast<std::size_t>(role)]; }
    // Of a thing that belongs to a curve, by the colour chosen for that.
    [[nodiscard]] QColor OfCurve(SceneRole role, unsigned long colour) const;
    // Of the curve itself, likewise.
    [[nodiscard]] QColor OfLine(unsigned long colour) const;

private:
    QColor& At(SceneRole role) { return m_colours[static_cast<std::size_t>(role)]; }

    std::array<QColor, static_cast<std::size_t>(SceneRole::Point) + 1> m_colours;
};

// Of a colour with blue in the high byte of three.
inline QColor ColourOf(unsigned long colour)
{
    return {static_cast<int>(colour & 0xff), static_cast<int>(colour >> 8 & 0xff),
            static_cast<int>(colour >> 16 & 0xff)};
}

}  // namespace zr::graph
