#include "siblings/graphsupport/ui/GraphDrawing.h"

#include "siblings/graphsupport/GraphModel.h"
#include "siblings/graphsupport/ui/CurvePainter.h"
#include "siblings/graphsupport/ui/ScenePainter.h"

#include <algorithm>
#include <cmath>
#include <QBuffer>
#include <QImage>
#include <QMimeData>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>

namespace zr::graph {

namespace {

constexpr double kScreenDpi = 96.0;
constexpr double kPointsPerInch = 72.0;
constexpr double kInchesPerMetre = 100.0 / 2.54;
constexpr int kPdfDpi = 1200;
// Curves finer than 300 dots an inch nobody sees, and every reader of the file pays for.
constexpr double kFinest = 300.0 / kScreenDpi;

// A scene for paper with what it is painted with.
class PaperScene {
public:
    PaperScene(const GraphModel& model, const QSize& size, double scale, const QFont& font, PaperColours colours)
        : m_isMonochrome(colours == PaperColours::BlackAndWhite),
          m_colours(SceneColours::OfPaper()),
          m_fonts(GraphFonts::ForScale(font, scale)),
          m_paint{m_colours, m_fonts, [this, &model](int curve) { return m_isMonochrome ? 0 : model.Colour(curve); },
                  scale},
          m_scene(model.SceneFor({size.width(), size.height(), scale, &m_fonts, true, m_isMonochrome}))
    {
    }
    PaperScene(const PaperScene&) = delete;
    PaperScene& operator=(const PaperScene&) = delete;

    [[nodiscard]] const GraphScene& Scene() const { return m_scene; }
    [[nodiscard]] const SceneColours& Colours() const { return m_colours; }
    void PaintUnder(QPainter& painter) const { PaintLayer(painter, m_scene.under, m_paint); }
    void PaintOver(QPainter& painter) const { PaintLayer(painter, m_scene.over, m_paint); }

private:
    bool m_isMonochrome;
    SceneColours m_colours;
    GraphFonts m_fonts;
    ScenePaint m_paint;
    GraphScene m_scene;
};

QImage PictureOf(const GraphModel& model, const QSize& size, double scale, const QFont& font, PaperColours colours)
{
    const QSize pixels(static_cast<int>(std::lround(size.width() * scale)),
                       static_cast<int>(std::lround(size.height() * scale)));
    const PaperScene scene(model, pixels, scale, font, colours);
    QImage picture(pixels, QImage::Format_ARGB32_Premultiplied);
    if (picture.isNull()) {
        return {};
    }
    picture.fill(Qt::white);
    {
        QPainter painter(&picture);
        scene.PaintUnder(painter);
    }
    PaintCurves(picture, model, scene.Scene(), scene.Colours());
    {
        QPainter painter(&picture);
        scene.PaintOver(painter);
    }
    const int dotsPerMetre = static_cast<int>(std::lround(kScreenDpi * scale * kInchesPerMetre));
    picture.setDotsPerMeterX(dotsPerMetre);
    picture.setDotsPerMeterY(dotsPerMetre);
    return picture;
}

QByteArray SvgOf(const GraphModel& model, const QSize& size, const QFont& font, PaperColours colours)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QSvgGenerator drawing;
    drawing.setOutputDevice(&buffer);
    drawing.setSize(size);
    drawing.setViewBox(QRect(QPoint(0, 0), size));
    drawing.setResolution(static_cast<int>(kScreenDpi));
    QPainter painter(&drawing);
    DrawOnPaper(painter, QRect(QPoint(0, 0), size), 1.0, model, font, colours);
    painter.end();
    return bytes;
}

QByteArray PdfOf(const GraphModel& model, const QSize& size, const QFont& font, PaperColours colours)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter page(&buffer);
    page.setResolution(kPdfDpi);
    page.setPageSize(
        QPageSize(QSizeF(size) * kPointsPerInch / kScreenDpi, QPageSize::Point, QString(), QPageSize::ExactMatch));
    page.setPageMargins(QMarginsF());
    QPainter painter(&page);
    DrawOnPaper(painter, QRect(0, 0, page.width(), page.height()), kPdfDpi / kScreenDpi, model, font, colours);
    painter.end();
    return bytes;
}

}  // namespace

void DrawOnPaper(QPainter& painter, const QRect& rect, double scale, const GraphModel& model, const QFont& font,
                 PaperColours colours)
{
    const double dots = std::max(scale / kFinest, 1.0);
    const QSize size(static_cast<int>(rect.width() / dots), static_cast<int>(rect.height() / dots));
    const PaperScene scene(model, size, scale / dots, font, colours);
    painter.save();
    painter.translate(rect.topLeft());
    painter.scale(dots, dots);
    scene.PaintUnder(painter);
    DrawCurves(painter, model, scene.Scene(), scene.Colours());
    scene.PaintOver(painter);
    painter.restore();
}

std::unique_ptr<QMimeData> GraphMimeData(const GraphModel& model, const QSize& size, double scale, const QFont& font,
                                         PaperColours colours)
{
    const QImage picture = PictureOf(model, size, scale, font, colours);
    if (picture.isNull()) {
        return nullptr;
    }
    auto data = std::make_unique<QMimeData>();
    data->setImageData(picture);
    data->setData(QStringLiteral("image/svg+xml"), SvgOf(model, size, font, colours));
    data->setData(QStringLiteral("application/pdf"), PdfOf(model, size, font, colours));
    return data;
}

}  // namespace zr::graph
