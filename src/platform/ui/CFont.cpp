#include "platform/ui/CFont.h"

#include "platform/ui/UiText.h"

#include <algorithm>
#include <QFontDatabase>

bool CFont::CreatePointFont(int tenthsOfAPoint, std::u16string_view face)
{
    const QString family = zr::ui::ToQt(face);
    // Asked for first: naming a family that isn't there makes Qt search through the aliases of all.
    if (QFontDatabase::hasFamily(family)) {
        m_font = QFont(family);
    } else {
        m_font = QFontDatabase::systemFont(QFontDatabase::SmallestReadableFont);
    }
    m_font.setStyleHint(QFont::SansSerif);
    m_font.setPointSizeF(std::max(tenthsOfAPoint, 10) / 10.0);
    return true;
}
