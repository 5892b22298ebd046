// Colours and measures that the desktop sets.
#pragma once

#include <QColor>

class QWidget;

namespace zr::ui {

// Numbered as the system numbers them.
inline constexpr int COLOR_ACTIVECAPTION = 2;
inline constexpr int COLOR_3DFACE = 15;

// From the widget's palette, so that it follows a dark desktop. An unknown number gives COLOR_3DFACE.
QColor GetSysColor(int index, const QWidget& widget);

inline constexpr int SM_CXVSCROLL = 2;
inline constexpr int SM_CXBORDER = 5;
inline constexpr int SM_CYMIN = 29;
inline constexpr int SM_CXEDGE = 45;
inline constexpr int SM_CXMENUSIZE = 54;

// In device-independent pixels, from the widget's style. 0 for an unknown number.
int GetSystemMetrics(int index, const QWidget& widget);

}  // namespace zr::ui
