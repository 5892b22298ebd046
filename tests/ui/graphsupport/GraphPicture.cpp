#include "ui/graphsupport/GraphPicture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <QWidget>

namespace zr::graph {

namespace {

constexpr double kLeastPart = 0.35;  // of a pixel that a soft edge covers
constexpr double kNearly = 40.0;     // of each part of a colour

using Parts = std::array<double, 3>;

Parts PartsOf(QRgb pixel)
{
    return {static_cast<double>(qRed(pixel)), static_cast<double>(qGreen(pixel)), static_cast<double>(qBlue(pixel))};
}

// Whether a pixel is a colour, or a mixture of it and the ground.
bool IsNear(QRgb pixel, unsigned long colour)
{
    const Parts ground = PartsOf(kPanelGround);
    const Parts seen = PartsOf(pixel);
    const Parts full = PartsOf(qRgb(static_cast<int>(colour & 0xff), static_cast<int>(colour >> 8 & 0xff),
                                    static_cast<int>(colour >> 16 & 0xff)));
    double along = 0.0;
    double length = 0.0;
    for (std::size_t i = 0; i < ground.size(); ++i) {
        along += (seen[i] - ground[i]) * (full[i] - ground[i]);
        length += (full[i] - ground[i]) * (full[i] - ground[i]);
    }
    const double part = along / length;
    for (std::size_t i = 0; i < ground.size(); ++i) {
        if (std::abs(ground[i] + part * (full[i] - ground[i]) - seen[i]) > kNearly) {
            return false;
        }
    }
    return part >= kLeastPart;
}

// Rows of a picture that are mostly ground of curves, with the first and the last column of it.
struct Row {
    bool isPanel = false;
    int left = 0;
    int right = 0;
};

Row RowOf(const QImage& image, int y)
{
    Row row;
    int pixels = 0;
    for (int x = 0; x < image.width(); ++x) {
        if (image.pixel(x, y) == kPanelGround) {
            row.left = pixels++ == 0 ? x : row.left;
            row.right = x;
        }
    }
    row.isPanel = pixels > image.width() / 6;
    return row;
}

// Lines of the grid and broad curves part a zone by no more than this.
constexpr int kLine = 12;

std::vector<QRect> FindPanels(const QImage& image, int scale)
{
    std::vector<QRect> panels;
    int lastRow = -1000;
    for (int y = 0; y < image.height(); ++y) {
        const Row row = RowOf(image, y);
        if (!row.isPanel) {
            continue;
        }
        if (y - lastRow > kLine * scale) {
            panels.emplace_back(QPoint(row.left, y), QPoint(row.right, y));
        }
        panels.back() |= QRect(QPoint(row.left, y), QPoint(row.right, y));
        lastRow = y;
    }
    return panels;
}

}  // namespace

GraphPicture::GraphPicture(QWidget& graph, int scale)
    : m_scale(scale),
      m_image(std::max(graph.width(), 1) * scale, std::max(graph.height(), 1) * scale, QImage::Format_RGB32)
{
    m_image.setDevicePixelRatio(scale);
    m_image.fill(Qt::magenta);
    graph.render(&m_image);
    m_image.setDevicePixelRatio(1.0);
    m_panels = FindPanels(m_image, scale);
}

QPoint GraphPicture::Place(std::size_t panel, double across, double up) const
{
    const QRect& rect = m_panels.at(panel);
    return {rect.left() + static_cast<int>(std::lround(across * (rect.width() - 1))),
            rect.bottom() - static_cast<int>(std::lround(up * (rect.height() - 1)))};
}

bool GraphPicture::Has(QPoint place, unsigned long colour, int within) const
{
    const int far = within * m_scale;
    return Count(QRect(place - QPoint(far, far), place + QPoint(far, far)), colour) > 0;
}

int GraphPicture::Count(const QRect& rect, unsigned long colour) const
{
    const QRect inside = rect & m_image.rect();
    int count = 0;
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        for (int x = inside.left(); x <= inside.right(); ++x) {
            count += IsNear(m_image.pixel(x, y), colour) ? 1 : 0;
        }
    }
    return count;
}

int GraphPicture::Painted(const QRect& rect) const
{
    const QRect inside = rect & m_image.rect();
    int count = 0;
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        for (int x = inside.left(); x <= inside.right(); ++x) {
            count += m_image.pixel(x, y) == kPanelGround ? 0 : 1;
        }
    }
    return count;
}

}  // namespace zr::graph
