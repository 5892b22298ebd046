#include "siblings/graphsupport/ui/ScreenPicture.h"

#include "siblings/graphsupport/GraphModel.h"
#include "siblings/graphsupport/ui/CurvePainter.h"

#include <cmath>
#include <QPainter>
#include <QWidget>

namespace zr::graph {

namespace {

constexpr int kStaleAlpha = 150;  // of the ground over a picture whose data are being replaced

}  // namespace

ScreenPicture::ScreenPicture(const QWidget& window)
    : m_window(window), m_colours(window.palette()), m_fonts(GraphFonts::ForScale(window.font(), m_ratio))
{
}

void ScreenPicture::LooksChanged()
{
    m_colours = SceneColours(m_window.palette());
    m_targetSize = QSize();
    m_isOld = true;
}

void ScreenPicture::Fit(GraphModel& model, double ratio)
{
    const QSize size(static_cast<int>(std::ceil(m_window.width() * ratio)),
                     static_cast<int>(std::ceil(m_window.height() * ratio)));
    if (size == m_targetSize && ratio == m_ratio) {
        return;
    }
    m_targetSize = size;
    m_ratio = ratio;
    m_fonts = GraphFonts::ForScale(m_window.font(), ratio);
    model.SetTarget({size.width(), size.height(), ratio, &m_fonts, false, false});
    m_isOld = true;
}

void ScreenPicture::Paint(QPainter& painter, GraphModel& model)
{
    Renew(model);
    painter.save();
    DrawPicture(painter);
    PaintLayer(painter, model.Scene().over, PaintOf(model));
    painter.restore();
}

void ScreenPicture::PaintStale(QPainter& painter) const
{
    QColor ground = m_colours.Of(SceneRole::Ground);
    painter.fillRect(m_window.rect(), ground);
    painter.save();
    DrawPicture(painter);
    painter.restore();
    ground.setAlpha(kStaleAlpha);
    painter.fillRect(m_window.rect(), ground);
}

void ScreenPicture::Renew(GraphModel& model)
{
    if (!m_isOld && m_picture.size() == m_targetSize) {
        return;
    }
    m_isOld = false;
    if (m_picture.size() != m_targetSize) {
        m_picture = MakePicture(m_targetSize);
    }
    if (m_picture.isNull()) {
        return;
    }
    const GraphScene& scene = model.Scene();
    {
        QPainter painter(&m_picture);
        painter.fillRect(m_picture.rect(), m_colours.Of(SceneRole::Ground));
        PaintLayer(painter, scene.under, PaintOf(model));
    }
    PaintCurves(m_picture, model, scene, m_colours);
}

// The painter's units are pixels of the picture then.
void ScreenPicture::DrawPicture(QPainter& painter) const
{
    painter.scale(1.0 / m_ratio, 1.0 / m_ratio);
    painter.drawImage(0, 0, m_picture);
}

ScenePaint ScreenPicture::PaintOf(const GraphModel& model) const
{
    return {m_colours, m_fonts, [&model](int curve) { return model.Colour(curve); }, m_ratio};
}

}  // namespace zr::graph
