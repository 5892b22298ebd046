// Light and dark colours of all windows.
#pragma once

#include "hosts/kestrix/DesktopSettings.h"

#include <QColor>
#include <QPalette>

namespace zr::desktop {

// Takes the style that all windows have, and remembers what the desktop itself looks like. Once, before the first
// window.
void PrepareTheme();
// Light, dark, or whichever the desktop is. Windows that are shown follow at once.
void UseColours(Colours colours);
// Whether the palette in force is a dark one.
bool IsDark();

// The palette of a page: its values stand on the colour of paper, not on that of the frame.
QPalette PagePalette();
// That of the tree: what is selected keeps the colours of its picture.
QPalette TreePalette();
// Lines between rows, texts of less weight, the ground of a message that asks for attention and its text.
QColor LineColour();
QColor QuietTextColour();
QColor NoticeColour();
QColor NoticeTextColour();

}  // namespace zr::desktop
