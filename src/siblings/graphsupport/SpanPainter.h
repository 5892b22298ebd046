// Curves as upright spans written straight into a picture.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace zr::graph {

// Pixels of 32 bits, alpha in the high byte, then red, green and blue, colours multiplied by alpha. Not owned.
struct PixelArea {
    std::uint32_t* pixels = nullptr;  // of the top left corner
    int width = 0;
    int height = 0;
    std::ptrdiff_t stride = 0;  // pixels from a row to the next
};

// What a curve covers of one column of pixels: rows from the top, fractions included, where 0 is the upper edge of the
// first row of pixels. Empty unless top <= bottom.
struct RowSpan {
    float top = 1.0F;
    float bottom = 0.0F;
};

struct SpanPen {
    unsigned style = 0;        // zr::graph::PS_..., dashes run along the curve
    int width = 1;             // pixels of the picture, at least 1
    std::uint32_t colour = 0;  // as a pixel, not multiplied
    // There are several samples to a column: where the curve is within it isn't known.
    bool isDense = false;
};

// Blends the stroke of a pen that is drawn along a curve: a disc as wide as the pen at every point of it, so that
// slopes are as wide as level parts; each pixel by how much of it is covered. A curve goes on from a column to the next
// where their spans touch, otherwise it ends. A piece of a single column is at least two pixels wide and high. A dense
// piece that goes up and down within its columns has no slopes to be seen: it covers them over their width.
//
// There is one span for every column of the area, further ones are ignored. They may lie outside, at infinity too.
void PaintLine(const PixelArea& area, std::span<const RowSpan> spans, const SpanPen& pen);
// The spans themselves, without a pen: filled areas, as of bars.
void PaintFill(const PixelArea& area, std::span<const RowSpan> spans, std::uint32_t colour);

}  // namespace zr::graph
