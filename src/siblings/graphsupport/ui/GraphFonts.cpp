#include "siblings/graphsupport/ui/GraphFonts.h"

#include "platform/ui/UiText.h"

#include <algorithm>
#include <cmath>
#include <QFontInfo>

namespace zr::graph {

namespace {

QFont Sized(const QFont& font, int pixelSize, bool isBold)
{
    QFont sized(font);
    sized.setPixelSize(std::max(pixelSize, 1));
    sized.setBold(isBold);
    return sized;
}

}  // namespace

GraphFonts::GraphFonts(const QFont& font, int pixelSize)
    : m_normal(Sized(font, pixelSize, false)),
      m_bold(Sized(font, pixelSize, true)),
      m_normalMetrics(m_normal),
      m_boldMetrics(m_bold)
{
}

GraphFonts GraphFonts::ForScale(const QFont& font, double scale)
{
    return {font, static_cast<int>(std::lround(QFontInfo(font).pixelSize() * scale))};
}

int GraphFonts::Width(std::u16string_view text, TextFont font) const
{
    return Metrics(font).horizontalAdvance(ui::ToQt(text));
}

int GraphFonts::Height(TextFont font) const
{
    return Metrics(font).height();
}

}  // namespace zr::graph
