#include "controls/ui/LineText.h"

#include "platform/ui/UiText.h"

#include <gtest/gtest.h>
#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <string>

namespace zr::controls {
namespace {

QFont TestFont()
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(14);
    return font;
}

// The rectangle of what was painted at (10, 10) on white.
QRect InkOf(const LineText& line, std::u16string_view text, int scale)
{
    QImage image(400 * scale, 40 * scale, QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::white);
    QPainter painter(&image);
    const Size size = line.Measure(text);
    line.Paint(painter, {10, 10, 10 + size.cx, 10 + size.cy}, text, 0);
    painter.end();
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if ((image.pixel(x, y) & 0xffffffu) != 0xffffffu) {
                ink |= QRect(x / scale, y / scale, 1, 1);
            }
        }
    }
    return ink;
}

TEST(LineTextTest, MeasuresAsTheFontDoes)
{
    const LineText line(TestFont());
    QFont unkerned = TestFont();
    unkerned.setKerning(false);
    const QFontMetricsF metrics(unkerned);
    for (const std::u16string& text :
         {std::u16string(u"8"), std::u16string(u"-123,456.78"), std::u16string(u" 230.1 V "), std::u16string(u"\u03a9"),
          std::u16string(u"12 m\u00b3"), std::u16string()}) {
        const Size size = line.Measure(text);
        EXPECT_NEAR(size.cx, metrics.horizontalAdvance(ui::ToQt(text)), 1.0) << ui::ToQt(text).toStdString();
        EXPECT_NEAR(size.cy, metrics.height(), 1.0);
    }
}

TEST(LineTextTest, KeepsItsInkWhereItWasMeasured)
{
    const LineText line(TestFont());
    for (const std::u16string& text : {std::u16string(u"230.15"), std::u16string(u"gjpq\u00c4|"),
                                       std::u16string(u"\u03a9 \u65e5"), std::u16string(u"WWWWW")}) {
        const Size size = line.Measure(text);
        for (const int scale : {1, 2}) {
            const QRect ink = InkOf(line, text, scale);
            ASSERT_FALSE(ink.isEmpty());
            EXPECT_TRUE(QRect(9, 9, size.cx + 2, size.cy + 2).contains(ink)) << ui::ToQt(text).toStdString();
            EXPECT_GT(ink.width(), size.cx / 2);
        }
    }
}

TEST(LineTextTest, PaintsNothingForAnEmptyText)
{
    EXPECT_TRUE(InkOf(LineText(TestFont()), u"", 1).isEmpty());
}

TEST(LineTextTest, PaintsAPlainTextAsTheToolkitWould)
{
    // The same place and size; anti-aliased pixels may differ.
    QImage image(400, 40, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setFont(TestFont());
    painter.drawText(QPointF(10, 10 + std::round(QFontMetricsF(TestFont()).ascent())), QStringLiteral("1234567890"));
    painter.end();
    QRect theirs;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if ((image.pixel(x, y) & 0xffffffu) != 0xffffffu) {
                theirs |= QRect(x, y, 1, 1);
            }
        }
    }
    const QRect ours = InkOf(LineText(TestFont()), u"1234567890", 1);
    EXPECT_NEAR(ours.left(), theirs.left(), 1);
    EXPECT_NEAR(ours.right(), theirs.right(), 1);
    EXPECT_EQ(ours.top(), theirs.top());
    EXPECT_EQ(ours.bottom(), theirs.bottom());
}

}  // namespace
}  // namespace zr::controls
