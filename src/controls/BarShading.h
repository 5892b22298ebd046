// The rounded look of a bar's zones, painted into pixels.
#pragma once

#include "controls/DrawList.h"

#include <cstdint>
#include <vector>

namespace zr::controls {

// The way a bar's scale runs: left to right, or upright. The shading runs across it.
enum class BarAxis { Horizontal, Upright };

// Paints a rectangle of one colour, across the scale from a bright to a dark form: from top to bottom of a horizontal
// bar, from left to right of an upright one. Each channel c goes from min(1.2 c, 255) to 0.8 c, both truncated, in
// steps of (dark - bright) / extent, truncated per pixel. What lies outside the bitmap is left out.
void Shade(Bitmap& bitmap, const Rect& rect, Rgb colour, BarAxis axis);
// The same with a colour that changes linearly along the scale from first to last: over the columns from left to right
// of a horizontal bar, over the rows from top to bottom of an upright one, the last one INCLUSIVE.
void Blend(Bitmap& bitmap, const Rect& rect, Rgb first, Rgb last, BarAxis axis);

// A piece of a bar along its scale, of one colour or running from one to another.
struct BarStretch {
    int from = 0;  // pixels along the scale from the bar's left or top. Inclusive.
    int to = 0;    // Exclusive for one colour, inclusive for a blend. Nothing is painted if it isn't beyond from.
    Rgb first = 0;
    Rgb last = 0;
    bool isBlend = false;
    friend bool operator==(const BarStretch&, const BarStretch&) = default;
};

// Everything that a bar's picture shows.
struct BarPictureContent {
    Size size;
    BarAxis axis = BarAxis::Horizontal;
    Rgb background = 0;                 // where no stretch is
    std::vector<BarStretch> stretches;  // in painting order
    friend bool operator==(const BarPictureContent&, const BarPictureContent&) = default;
};

// The picture of a bar, painted anew only when its content differs. UI thread only.
class BarPicture {
public:
    // Whether it was painted anew.
    bool Paint(const BarPictureContent& content);
    [[nodiscard]] const Bitmap& Pixels() const { return m_bitmap; }
    // Changes with every new painting; 0: never painted.
    [[nodiscard]] std::uint64_t Version() const { return m_version; }

private:
    BarPictureContent m_content;
    Bitmap m_bitmap;
    std::uint64_t m_version = 0;
};

}  // namespace zr::controls
