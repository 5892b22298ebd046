// A graph as prepared geometry: what a painter walks.
#pragma once

#include "siblings/graphsupport/CurveInfo.h"
#include "siblings/graphsupport/GraphData.h"
#include "siblings/tools/ZRBasicString.h"

#include <string_view>
#include <variant>
#include <vector>

namespace zr::graph {

// All places and lengths are pixels of the picture: of a screen of scale 2 twice as many as its coordinates, of a
// printer its dots. Columns run from left to right, rows from top to bottom.

struct Point {
    int x = 0;
    int y = 0;
};

// Right and bottom are exclusive. Empty when there is nothing between.
struct Rect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    [[nodiscard]] int Width() const { return right - left; }
    [[nodiscard]] int Height() const { return bottom - top; }
    [[nodiscard]] bool IsEmpty() const { return right <= left || bottom <= top; }
    [[nodiscard]] bool Holds(Point at) const { return at.x >= left && at.x < right && at.y >= top && at.y < bottom; }
    friend bool operator==(const Rect&, const Rect&) = default;
};

// What a thing is; the painter has a colour for it, from the palette.
enum class SceneRole {
    Ground,       // of the whole picture
    Panel,        // ground of a zone's curves
    Frame,        // around it
    Grid,         // through it, at the labelled ticks
    MinorGrid,    // at the others
    Axis,         // lines and ticks outside
    Text,         // labels, titles, values
    DimText,      // units, hints
    Marker,       // 1 and 2: their lines, flags and numbers
    Cursor,       // line at the pointer
    Band,         // of a zoom under way: painted half transparent
    BoxGround,    // of the tooltip and the table of the markers
    BoxFrame,     // around them
    Swatch,       // of a curve, in its colour
    SwatchFrame,  // sunken edge around it
    Highlight,    // behind the legend entry of the curve under the pointer
    Point,        // dot of a curve at the cursor, in its colour: a filled circle within the rectangle
};

// How a text is set; fonts are the painter's.
enum class TextFont { Normal, Bold };
enum class TextAlign { Left, Centre, Right };

// A filled area.
struct SceneRect {
    Rect rect;
    SceneRole role = SceneRole::Ground;
    int curve = -1;  // whose colour it has; -1: its role's
};

// One pixel of scale 1 wide, upright or level: from a pixel to another, both inclusive.
struct SceneLine {
    Point from;
    Point to;
    SceneRole role = SceneRole::Grid;
    int curve = -1;         // as above
    bool isDashed = false;  // the second marker
};

// One line of text, in the middle of the height of its rectangle, cut with dots where it is too narrow.
struct SceneText {
    Rect rect;
    ZRBasicString text;
    TextAlign align = TextAlign::Left;
    SceneRole role = SceneRole::Text;
    TextFont font = TextFont::Normal;
    int curve = -1;  // as above
};

using SceneItem = std::variant<SceneRect, SceneLine, SceneText>;
// To be painted in this order.
using SceneLayer = std::vector<SceneItem>;

// What rows a value has: `high` the top edge of the panel, `low` its bottom edge. low < high, both finite.
struct ValueMap {
    double low = 0.0;
    double high = 1.0;
};

// One curve in its zone. Zoomed or not, its columns are those of the rectangle.
struct CurvePanel {
    Rect rect;      // of the zone's curves: clip to it
    int curve = 0;  // zero-based, in the order of those shown
    CurveShape shape = CurveShape::Line;
    ValueMap map;
    LOGPEN pen;  // width in pixels of the picture; black and dashed for a monochrome target
    LOGBRUSH brush;
    bool isHighlighted = false;  // under the pointer: paint it a pixel of scale 1 wider
};

struct GraphScene {
    int width = 0;
    int height = 0;
    SceneLayer under;                // grounds, grid, axes: changes with data, stretch of time and size
    std::vector<CurvePanel> panels;  // from back to front
    SceneLayer over;                 // legend, markers, cursor, tooltip, band: changes with the pointer as well
};

// How much room texts take. The edge to the fonts of a screen or a printer.
class TextExtents {
public:
    virtual ~TextExtents() = default;
    [[nodiscard]] virtual int Width(std::u16string_view text, TextFont font) const = 0;
    // Of a line with its leading.
    [[nodiscard]] virtual int Height(TextFont font) const = 0;
};

// What a scene is made for.
struct GraphTarget {
    int width = 0;
    int height = 0;
    double scale = 1.0;                  // pixels for each of a screen of 96 dpi
    const TextExtents* texts = nullptr;  // Not owned; must outlive this. Null: no texts.
    bool isPaper = false;                // no cursor, no tooltip, no band, no highlight
    bool isMonochrome = false;           // curves in black, told apart by their dashes
};

}  // namespace zr::graph
