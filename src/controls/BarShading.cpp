#include "controls/BarShading.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace zr::controls {

namespace {

constexpr std::uint32_t kOpaque = 0xff000000;

double Channel(Rgb colour, int shift)
{
    return (colour >> shift) & 0xff;
}

// The shades of a colour over an extent of pixels. Kept as steps and truncated per pixel, as is meant.
class Ramp {
public:
    Ramp(Rgb colour, int extent)
    {
        for (std::size_t i = 0; i < m_bright.size(); ++i) {
            const double channel = Channel(colour, 16 - 8 * static_cast<int>(i));
            const auto bright = static_cast<int>(std::min(channel * 1.2, 255.0));
            const auto dark = static_cast<int>(channel * 0.8);
            m_bright[i] = bright;
            m_step[i] = static_cast<double>(dark - bright) / extent;
        }
    }
    // Zero-based, less than the extent.
    [[nodiscard]] std::uint32_t At(int pixel) const
    {
        std::uint32_t colour = 0xff;
        for (std::size_t i = 0; i < m_bright.size(); ++i) {
            colour = (colour << 8) | static_cast<std::uint32_t>(static_cast<int>(m_bright[i] + m_step[i] * pixel));
        }
        return colour;
    }

private:
    std::array<double, 3> m_bright = {};
    std::array<double, 3> m_step = {};
};

Rect Clipped(const Bitmap& bitmap, const Rect& rect)
{
    return {std::max(rect.left, 0), std::max(rect.top, 0), std::min(rect.right, bitmap.width),
            std::min(rect.bottom, bitmap.height)};
}

std::uint32_t* RowOf(Bitmap& bitmap, int y)
{
    return bitmap.pixels.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(bitmap.width);
}

// The colour of a blend so many pixels after its first one.
Rgb Mixed(Rgb first, Rgb last, int pixel, int length)
{
    Rgb colour = 0;
    for (const int shift : {16, 8, 0}) {
        const double from = Channel(first, shift);
        const double change = (Channel(last, shift) - from) * pixel / std::max(length, 1);
        colour = (colour << 8) | static_cast<Rgb>(static_cast<int>(from + change));
    }
    return colour;
}

void BlendColumns(Bitmap& bitmap, const Rect& rect, Rgb first, Rgb last)
{
    const Rect seen = Clipped(bitmap, {rect.left, rect.top, rect.right + 1, rect.bottom});
    if (seen.IsEmpty()) {
        return;
    }
    std::vector<Ramp> ramps;
    ramps.reserve(static_cast<std::size_t>(seen.Width()));
    for (int x = seen.left; x < seen.right; ++x) {
        ramps.emplace_back(Mixed(first, last, x - rect.left, rect.Width()), rect.Height());
    }
    for (int y = seen.top; y < seen.bottom; ++y) {
        std::uint32_t* pixel = RowOf(bitmap, y) + seen.left;
        for (const Ramp& ramp : ramps) {
            *pixel++ = ramp.At(y - rect.top);
        }
    }
}

// Row by row, so that both axes fill memory in its order.
void ShadeRows(Bitmap& bitmap, const Rect& rect, Rgb colour)
{
    const Rect seen = Clipped(bitmap, rect);
    const Ramp ramp(colour, rect.Height());
    for (int y = seen.top; y < seen.bottom && !seen.IsEmpty(); ++y) {
        std::fill_n(RowOf(bitmap, y) + seen.left, seen.Width(), ramp.At(y - rect.top));
    }
}

void ShadeColumns(Bitmap& bitmap, const Rect& rect, Rgb colour)
{
    const Rect seen = Clipped(bitmap, rect);
    if (seen.IsEmpty()) {
        return;
    }
    const Ramp ramp(colour, rect.Width());
    std::uint32_t* const head = RowOf(bitmap, seen.top) + seen.left;
    for (int x = seen.left; x < seen.right; ++x) {
        head[x - seen.left] = ramp.At(x - rect.left);
    }
    for (int y = seen.top + 1; y < seen.bottom; ++y) {
        std::copy_n(head, seen.Width(), RowOf(bitmap, y) + seen.left);
    }
}

void PaintStretch(Bitmap& bitmap, const BarStretch& stretch, BarAxis axis)
{
    const Rect rect = axis == BarAxis::Horizontal ? Rect{stretch.from, 0, stretch.to, bitmap.height}
                                                  : Rect{0, stretch.from, bitmap.width, stretch.to};
    if (stretch.isBlend) {
        Blend(bitmap, rect, stretch.first, stretch.last, axis);
    } else {
        Shade(bitmap, rect, stretch.first, axis);
    }
}

}  // namespace

void Shade(Bitmap& bitmap, const Rect& rect, Rgb colour, BarAxis axis)
{
    if (rect.IsEmpty()) {
        return;
    }
    if (axis == BarAxis::Horizontal) {
        ShadeRows(bitmap, rect, colour);
    } else {
        ShadeColumns(bitmap, rect, colour);
    }
}

void Blend(Bitmap& bitmap, const Rect& rect, Rgb first, Rgb last, BarAxis axis)
{
    if (rect.right < rect.left || rect.bottom < rect.top) {
        return;
    }
    if (axis == BarAxis::Horizontal) {
        BlendColumns(bitmap, rect, first, last);
        return;
    }
    const int end = std::min(rect.bottom, bitmap.height - 1);
    for (int y = std::max(rect.top, 0); y <= end; ++y) {
        Shade(bitmap, {rect.left, y, rect.right, y + 1}, Mixed(first, last, y - rect.top, rect.Height()), axis);
    }
}

bool BarPicture::Paint(const BarPictureContent& content)
{
    if (m_version != 0 && content == m_content) {
        return false;
    }
    m_content = content;
    m_bitmap.width = std::max(content.size.cx, 0);
    m_bitmap.height = std::max(content.size.cy, 0);
    const std::size_t area = static_cast<std::size_t>(m_bitmap.width) * static_cast<std::size_t>(m_bitmap.height);
    m_bitmap.pixels.assign(area, kOpaque | content.background);
    for (const BarStretch& stretch : content.stretches) {
        PaintStretch(m_bitmap, stretch, content.axis);
    }
    ++m_version;
    return true;
}

}  // namespace zr::controls
