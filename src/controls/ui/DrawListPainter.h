// Paints what a value control prepared.
#pragma once

#include "controls/DrawList.h"
#include "controls/ui/LineText.h"

class QPainter;
class QWidget;

namespace zr::controls {

// The fonts of one control. UI thread only.
class ControlFonts final : public TextMeasure {
public:
    ControlFonts(const QFont& value, const QFont& label) : m_value(value), m_label(label) {}

    [[nodiscard]] Size Measure(FontRole font, const ZRBasicString& text) const override
    {
        return Line(font).Measure(text.Text());
    }
    [[nodiscard]] const LineText& Line(FontRole font) const { return font == FontRole::Label ? m_label : m_value; }

private:
    LineText m_value;
    LineText m_label;
};

// Face and caption colours of the desktop that the window is on.
[[nodiscard]] SystemColours ColoursOf(const QWidget& window);

// Walks the list. picture: what stands for Picture items; null when the list has none.
void PaintDrawList(QPainter& painter, const QWidget& window, const DrawList& list, const ControlFonts& fonts,
                   const Bitmap* picture);

// The dotted or coloured line that shows which value the keyboard is at.
void PaintFocus(QPainter& painter, const QWidget& window, const Rect& rect);

}  // namespace zr::controls
