#include "hosts/kestrix/ui/Theme.h"

#include <QApplication>
#include <QStyleFactory>

namespace zr::desktop {
namespace {

struct Scheme {
    QRgb window;
    QRgb page;
    QRgb alternate;
    QRgb button;
    QRgb text;
    QRgb quiet;
    QRgb disabled;
    QRgb line;
    QRgb highlight;
    QRgb highlightedText;
    QRgb selected;
    QRgb link;
    QRgb notice;
    QRgb noticeText;
    QRgb light;
    QRgb dark;
};

constexpr Scheme kLight{0xfff1f3f6, 0xffffffff, 0xfff6f8fa, 0xfff8f9fb, 0xff1b2430, 0xff5b6675, 0xff9aa3ae, 0xffdde2e8,
                        0xff1f6fc9, 0xffffffff, 0xffcfe2f8, 0xff1a5fb4, 0xfffff2cc, 0xff4a3700, 0xffffffff, 0xffa9b1bc};
constexpr Scheme kDark{0xff22272e, 0xff1a1e24, 0xff20252c, 0xff2d333c, 0xffe4e9f0, 0xff9aa7b8, 0xff6a7481, 0xff363e49,
                       0xff2f7fd8, 0xffffffff, 0xff2c4768, 0xff6cb0ff, 0xff4d3d0c, 0xffffe9a8, 0xff4a525e, 0xff10141a};

bool& DesktopIsDark()
{
    static bool isDark = false;
    return isDark;
}

bool& DarkInForce()
{
    static bool isDark = false;
    return isDark;
}

const Scheme& SchemeInForce()
{
    return DarkInForce() ? kDark : kLight;
}

QColor Opaque(QRgb colour)
{
    return QColor::fromRgb(colour);
}

QPalette PaletteOf(const Scheme& scheme)
{
    QPalette palette;
    const auto set = [&palette](QPalette::ColorRole role, QRgb colour) { palette.setColor(role, Opaque(colour)); };
    set(QPalette::Window, scheme.window);
    set(QPalette::WindowText, scheme.text);
    set(QPalette::Base, scheme.page);
    set(QPalette::AlternateBase, scheme.alternate);
    set(QPalette::Text, scheme.text);
    set(QPalette::Button, scheme.button);
    set(QPalette::ButtonText, scheme.text);
    set(QPalette::BrightText, scheme.text);
    set(QPalette::ToolTipBase, scheme.button);
    set(QPalette::ToolTipText, scheme.text);
    set(QPalette::PlaceholderText, scheme.quiet);
    set(QPalette::Highlight, scheme.highlight);
    set(QPalette::HighlightedText, scheme.highlightedText);
    set(QPalette::Link, scheme.link);
    set(QPalette::LinkVisited, scheme.link);
    set(QPalette::Light, scheme.light);
    set(QPalette::Midlight, scheme.line);
    set(QPalette::Mid, scheme.line);
    set(QPalette::Dark, scheme.dark);
    set(QPalette::Shadow, scheme.dark);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, Opaque(scheme.disabled));
    }
    return palette;
}

}  // namespace

void PrepareTheme()
{
    const QColor window = QApplication::palette().color(QPalette::Window);
    DesktopIsDark() = window.lightness() < 128;
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
}

void UseColours(Colours colours)
{
    DarkInForce() = colours == Colours::Dark || (colours == Colours::System && DesktopIsDark());
    QApplication::setPalette(PaletteOf(SchemeInForce()));
}

bool IsDark()
{
    return DarkInForce();
}

QPalette PagePalette()
{
    QPalette palette = PaletteOf(SchemeInForce());
    palette.setColor(QPalette::Window, Opaque(SchemeInForce().page));
    return palette;
}

QPalette TreePalette()
{
    QPalette palette = PaletteOf(SchemeInForce());
    palette.setColor(QPalette::Highlight, Opaque(SchemeInForce().selected));
    palette.setColor(QPalette::HighlightedText, Opaque(SchemeInForce().text));
    return palette;
}

QColor LineColour()
{
    return Opaque(SchemeInForce().line);
}

QColor QuietTextColour()
{
    return Opaque(SchemeInForce().quiet);
}

QColor NoticeColour()
{
    return Opaque(SchemeInForce().notice);
}

QColor NoticeTextColour()
{
    return Opaque(SchemeInForce().noticeText);
}

}  // namespace zr::desktop
