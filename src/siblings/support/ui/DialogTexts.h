// What the dialogs of the suite have in common: their icon, and the texts and pictures of their buttons.
#pragma once

class CImageButton;
class QWidget;

namespace zr::ui {

inline constexpr unsigned kTextOk = 311;
inline constexpr unsigned kTextCancel = 312;
inline constexpr unsigned kImageCancel = 65;
inline constexpr unsigned kImageOk = 66;

// The text and the picture of those numbers.
void SetButton(CImageButton& button, unsigned text, unsigned image);
// SetButton with what every dialog's OK and Cancel show.
void SetOkAndCancel(CImageButton& ok, CImageButton& cancel);
// The text of that number as the window's title.
void SetTitle(QWidget& window, unsigned text);
// The icon of the number that ZRKestrixSetup gives.
void SetSuiteIcon(QWidget& window);

}  // namespace zr::ui
