// What a value control paints, prepared without a window: rectangles, colours, texts and one bitmap, in painting order.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

namespace zr::controls {

// Device-independent pixels; y grows downwards.
struct Point {
    int x = 0;
    int y = 0;
    friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
    int cx = 0;
    int cy = 0;
    friend bool operator==(const Size&, const Size&) = default;
};

// Left and top inclusive, right and bottom exclusive.
struct Rect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    [[nodiscard]] int Width() const { return right - left; }
    [[nodiscard]] int Height() const { return bottom - top; }
    [[nodiscard]] bool IsEmpty() const { return right <= left || bottom <= top; }
    [[nodiscard]] bool Contains(Point point) const
    {
        return point.x >= left && point.x < right && point.y >= top && point.y < bottom;
    }
    [[nodiscard]] bool Meets(const Rect& other) const
    {
        return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
    }
    friend bool operator==(const Rect&, const Rect&) = default;
};

// 0x00RRGGBB.
using Rgb = std::uint32_t;
constexpr Rgb MakeRgb(unsigned red, unsigned green, unsigned blue)
{
    return (red << 16) | (green << 8) | blue;
}

// What the desktop gives; never assumed, so that a dark desktop looks right.
struct SystemColours {
    Rgb face = MakeRgb(240, 240, 240);         // COLOR_3DFACE
    Rgb activeCaption = MakeRgb(0, 120, 215);  // COLOR_ACTIVECAPTION
};

enum class FontRole { Value, Label };

// How much room a text takes in a control's fonts. UI thread only.
class TextMeasure {
public:
    [[nodiscard]] virtual Size Measure(FontRole font, const ZRBasicString& text) const = 0;

protected:
    ~TextMeasure() = default;
};

// Rows of `width` pixels from the top, each 0xffRRGGBB.
struct Bitmap {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;
};

struct Fill {
    Rect rect;
    Rgb colour = 0;
};
// A bumped edge on the inside of all four sides, two pixels wide.
struct BumpFrame {
    Rect rect;
};
// The bar's picture at that place, not scaled.
struct Picture {
    Rect rect;
};
// The text fills the rectangle exactly as measured; it is not cut there.
struct Text {
    Rect rect;
    ZRBasicString text;
    FontRole font = FontRole::Value;
    Rgb colour = 0;
    std::optional<Rgb> background;  // none: transparent
};

using DrawItem = std::variant<Fill, BumpFrame, Picture, Text>;
// In painting order.
using DrawList = std::vector<DrawItem>;

}  // namespace zr::controls
