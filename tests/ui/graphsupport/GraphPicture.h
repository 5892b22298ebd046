// What a graph paints, as pixels, and where in it the curves are.
#pragma once

#include <QImage>
#include <QRect>
#include <vector>

class QWidget;

namespace zr::graph {

// The ground of the curves in the fixture's palette.
constexpr QRgb kPanelGround = 0xfffefdfc;

class GraphPicture {
public:
    GraphPicture(QWidget& graph, int scale);

    [[nodiscard]] const QImage& Image() const { return m_image; }
    // The zones, from top to bottom, by their ground; device pixels.
    [[nodiscard]] const std::vector<QRect>& Panels() const { return m_panels; }
    // Of a zone: parts of its width from the left and of its height from the bottom.
    [[nodiscard]] QPoint Place(std::size_t panel, double across, double up) const;
    // Whether a colour (blue in the high byte of three) is within so many pixels of scale 1 of a place.
    [[nodiscard]] bool Has(QPoint place, unsigned long colour, int within = 1) const;
    // How many pixels have that colour, nearly.
    [[nodiscard]] int Count(const QRect& rect, unsigned long colour) const;
    [[nodiscard]] int CountAll(unsigned long colour) const { return Count(m_image.rect(), colour); }
    // Pixels that aren't the ground of the curves.
    [[nodiscard]] int Painted(const QRect& rect) const;

private:
    int m_scale;
    QImage m_image;
    std::vector<QRect> m_panels;
};

}  // namespace zr::graph
