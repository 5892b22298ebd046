// The font of a control.
#pragma once

#include <QFont>
#include <string_view>
#include <utility>

// A value: a copy is a font of its own. UI thread only.
class CFont {
public:
    // The font of the application.
    CFont() = default;
    explicit CFont(QFont font) : m_font(std::move(font)) {}

    // Takes a face in so many tenths of a point; sizes below one point count as one. A face that the machine hasn't,
    // such as "Smallfonts" where there is none, becomes the system's font for small texts. Returns true.
    bool CreatePointFont(int tenthsOfAPoint, std::u16string_view face);

    [[nodiscard]] const QFont& Font() const { return m_font; }

private:
    QFont m_font;
};
