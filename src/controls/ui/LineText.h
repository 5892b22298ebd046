// Measures and paints lines of text in one font, fast enough for hundreds of live values.
#pragma once

#include "controls/DrawList.h"

#include <memory>
#include <QFont>
#include <string_view>

class QPainter;

namespace zr::controls {

// Lines of plain characters are measured and painted from a table of the font's glyphs that all controls share,
// anything else by Qt's own layout. Both ways set a character after the other, without kerning. UI thread only.
class LineText {
public:
    explicit LineText(const QFont& font);

    // Height of a line and width of the text, in device-independent pixels, rounded up.
    [[nodiscard]] Size Measure(std::u16string_view text) const;
    // rect: as measured; the line starts at its left and is not cut at its right.
    void Paint(QPainter& painter, const Rect& rect, std::u16string_view text, Rgb colour) const;

private:
    struct Glyphs;
    std::shared_ptr<Glyphs> m_glyphs;
};

}  // namespace zr::controls
