// Texts of a plain size: every character as wide as the others.
#pragma once

#include "siblings/graphsupport/GraphScene.h"

namespace zr::graph {

class FixedExtents final : public TextExtents {
public:
    explicit FixedExtents(int width = 7, int height = 15) : m_width(width), m_height(height) {}

    [[nodiscard]] int Width(std::u16string_view text, TextFont) const override
    {
        return static_cast<int>(text.size()) * m_width;
    }
    [[nodiscard]] int Height(TextFont) const override { return m_height; }

private:
    int m_width;
    int m_height;
};

}  // namespace zr::graph
