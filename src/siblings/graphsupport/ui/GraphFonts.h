// The fonts of a graph, and how much room texts take in them.
#pragma once

#include "siblings/graphsupport/GraphScene.h"

#include <QFont>
#include <QFontMetrics>

namespace zr::graph {

// In pixels of the picture, whatever it is: a screen, a printer, a drawing. UI thread only.
class GraphFonts final : public TextExtents {
public:
    GraphFonts(const QFont& font, int pixelSize);
    // As the desktop sets it, on a picture of so many pixels for each of a screen of 96 dpi.
    static GraphFonts ForScale(const QFont& font, double scale);

    [[nodiscard]] int Width(std::u16string_view text, TextFont font) const override;
    [[nodiscard]] int Height(TextFont font) const override;

    [[nodiscard]] const QFont& Font(TextFont font) const { return font == TextFont::Bold ? m_bold : m_normal; }
    [[nodiscard]] const QFontMetrics& Metrics(TextFont font) const
    {
        return font == TextFont::Bold ? m_boldMetrics : m_normalMetrics;
    }

private:
    QFont m_normal;
    QFont m_bold;
    QFontMetrics m_normalMetrics;
    QFontMetrics m_boldMetrics;
};

}  // namespace zr::graph
