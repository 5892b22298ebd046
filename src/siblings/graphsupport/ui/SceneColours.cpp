#include "siblings/graphsupport/ui/SceneColours.h"

#include "siblings/graphsupport/CurveColours.h"

#include <QPalette>

namespace zr::graph {

namespace {

// So much of a colour over a ground: 0 to 100.
QColor Over(const QColor& ground, const QColor& colour, int percent)
{
    const auto mix = [percent](int below, int above) { return (below * (100 - percent) + above * percent) / 100; };
    return {mix(ground.red(), colour.red()), mix(ground.green(), colour.green()), mix(ground.blue(), colour.blue())};
}

unsigned long NumberOf(const QColor& colour)
{
    return static_cast<unsigned long>(colour.red()) | static_cast<unsigned long>(colour.green()) << 8 |
           static_cast<unsigned long>(colour.blue()) << 16;
}

QColor WithAlpha(QColor colour, int alpha)
{
    colour.setAlpha(alpha);
    return colour;
}

}  // namespace

SceneColours::SceneColours(const QPalette& palette)
{
    const QColor face = palette.color(QPalette::Active, QPalette::Window);
    const QColor ground = palette.color(QPalette::Active, QPalette::Base);
    const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    const QColor highlight = palette.color(QPalette::Active, QPalette::Highlight);
    At(SceneRole::Ground) = face;
    At(SceneRole::Panel) = ground;
    At(SceneRole::Frame) = Over(ground, text, 35);
    At(SceneRole::Grid) = Over(ground, text, 14);
    At(SceneRole::MinorGrid) = Over(ground, text, 6);
    At(SceneRole::Axis) = Over(face, text, 50);
    At(SceneRole::Text) = text;
    At(SceneRole::DimText) = Over(face, text, 68);
    At(SceneRole::Marker) = Over(text, highlight, 60);
    At(SceneRole::Cursor) = Over(ground, text, 55);
    At(SceneRole::Band) = WithAlpha(highlight, 60);
    At(SceneRole::BoxGround) = Over(ground, text, 4);
    At(SceneRole::BoxFrame) = Over(ground, text, 40);
    At(SceneRole::Swatch) = text;
    At(SceneRole::SwatchFrame) = Over(face, text, 45);
    At(SceneRole::Highlight) = WithAlpha(highlight, 70);
    At(SceneRole::Point) = text;
}

QColor SceneColours::OfCurve(SceneRole role, unsigned long colour) const
{
    if (role == SceneRole::Text || role == SceneRole::DimText) {
        return ColourOf(TextColourOn(NumberOf(Of(SceneRole::Ground)), colour));
    }
    return OfLine(colour);
}

QColor SceneColours::OfLine(unsigned long colour) const
{
    return ColourOf(LineColourOn(NumberOf(Of(SceneRole::Panel)), colour));
}

SceneColours SceneColours::OfPaper()
{
    QPalette paper(QColor(Qt::white));
    for (const auto role : {QPalette::Window, QPalette::Base}) {
        paper.setColor(role, Qt::white);
    }
    for (const auto role : {QPalette::WindowText, QPalette::Highlight}) {
        paper.setColor(role, Qt::black);
    }
    return SceneColours(paper);
}

}  // namespace zr::graph
