#include "controls/ui/LineText.h"

#include "platform/ui/UiText.h"

#include <array>
#include <cmath>
#include <map>
#include <QFontMetricsF>
#include <QGlyphRun>
#include <QPainter>
#include <QRawFont>
#include <QTextLayout>
#include <QVector>

namespace zr::controls {

struct LineText::Glyphs {
    // Latin-1: digits, signs and the units of measured values. They need no shaping.
    static constexpr std::size_t kTableSize = 256;

    explicit Glyphs(const QFont& theFont);
    static std::shared_ptr<Glyphs> Of(const QFont& font);

    [[nodiscard]] bool IsPlain(std::u16string_view text) const;
    [[nodiscard]] double Width(std::u16string_view text) const;
    void PaintPlain(QPainter& painter, QPointF baseline, std::u16string_view text);

    QFont font;
    QRawFont raw;
    QFontMetricsF metrics;
    std::array<quint32, kTableSize> index{};  // 0: the font hasn't it
    std::array<double, kTableSize> advance{};
    // Kept between lines, so that painting one allocates nothing.
    QVector<quint32> indexes;
    QVector<QPointF> positions;
    QGlyphRun run;
};

LineText::Glyphs::Glyphs(const QFont& theFont) : font(theFont), raw(QRawFont::fromFont(theFont)), metrics(theFont)
{
    QVector<quint32> one(1);
    for (std::size_t i = 0x20; i < kTableSize && raw.isValid(); ++i) {
        const QVector<quint32> found = raw.glyphIndexesForString(QChar(static_cast<char16_t>(i)));
        if (i == 0x7f || i == 0xad || (i > 0x7f && i < 0xa0) || found.size() != 1 || found[0] == 0) {
            continue;
        }
        index[i] = found[0];
        one[0] = found[0];
        advance[i] = raw.advancesForGlyphIndexes(one).value(0).x();
    }
    run.setRawFont(raw);
}

// The tables live as long as a control uses them, so that no font outlives the application.
std::shared_ptr<LineText::Glyphs> LineText::Glyphs::Of(const QFont& font)
{
    static std::map<QString, std::weak_ptr<Glyphs>> tables;
    QFont unkerned = font;
    unkerned.setKerning(false);
    std::weak_ptr<Glyphs>& kept = tables[unkerned.key()];
    std::shared_ptr<Glyphs> found = kept.lock();
    if (found == nullptr) {
        found = std::make_shared<Glyphs>(unkerned);
        kept = found;
    }
    return found;
}

bool LineText::Glyphs::IsPlain(std::u16string_view text) const
{
    for (const char16_t character : text) {
        if (character >= kTableSize || index[character] == 0) {
            return false;
        }
    }
    return true;
}

double LineText::Glyphs::Width(std::u16string_view text) const
{
    if (!IsPlain(text)) {
        return metrics.horizontalAdvance(ui::ToQt(text));
    }
    double width = 0.0;
    for (const char16_t character : text) {
        width += advance[character];
    }
    return width;
}

void LineText::Glyphs::PaintPlain(QPainter& painter, QPointF baseline, std::u16string_view text)
{
    indexes.resize(static_cast<qsizetype>(text.size()));
    positions.resize(static_cast<qsizetype>(text.size()));
    double x = 0.0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        indexes[static_cast<qsizetype>(i)] = index[text[i]];
        positions[static_cast<qsizetype>(i)] = QPointF(x, 0.0);
        x += advance[text[i]];
    }
    run.setRawData(indexes.constData(), positions.constData(), static_cast<int>(text.size()));
    painter.drawGlyphRun(baseline, run);
}

LineText::LineText(const QFont& font) : m_glyphs(Glyphs::Of(font)) {}

Size LineText::Measure(std::u16string_view text) const
{
    // A tenth of a pixel is rounding, not ink.
    return {static_cast<int>(std::ceil(m_glyphs->Width(text) - 0.1)),
            static_cast<int>(std::ceil(m_glyphs->metrics.height() - 0.1))};
}

void LineText::Paint(QPainter& painter, const Rect& rect, std::u16string_view text, Rgb colour) const
{
    if (text.empty()) {
        return;
    }
    painter.setPen(QColor::fromRgb(colour));
    const QPointF baseline(rect.left, rect.top + std::round(m_glyphs->metrics.ascent()));
    if (m_glyphs->IsPlain(text)) {
        m_glyphs->PaintPlain(painter, baseline, text);
        return;
    }
    painter.setFont(m_glyphs->font);
    painter.drawText(baseline, ui::ToQt(text));
}

}  // namespace zr::controls
