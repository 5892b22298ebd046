#include "platform/ui/SystemColours.h"

#include <QPalette>
#include <QStyle>
#include <QWidget>

namespace zr::ui {

QColor GetSysColor(int index, const QWidget& widget)
{
    const QPalette palette = widget.palette();
    return palette.color(QPalette::Active, index == COLOR_ACTIVECAPTION ? QPalette::Highlight : QPalette::Window);
}

int GetSystemMetrics(int index, const QWidget& widget)
{
    const QStyle& style = *widget.style();
    switch (index) {
        case SM_CXVSCROLL:
            return style.pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, &widget);
        case SM_CXBORDER:
            return 1;
        case SM_CYMIN:
            // A caption and its frame: the least that a window keeps.
            return style.pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &widget) +
                   2 * style.pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, &widget);
        case SM_CXEDGE:
            return 2;
        case SM_CXMENUSIZE:
            return style.pixelMetric(QStyle::PM_SmallIconSize, nullptr, &widget) + 2;
        default:
            return 0;
    }
}

}  // namespace zr::ui
