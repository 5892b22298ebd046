// The message box of the suite.
#pragma once

#include <functional>
#include <string>
#include <string_view>

class QWidget;

namespace zr::ui {

// Styles, as the system numbers them: buttons in bits 0 to 3, the picture in bits 4 to 7, the second button as default
// by bit 8.
inline constexpr unsigned MB_OK = 0x00;
inline constexpr unsigned MB_OKCANCEL = 0x01;
inline constexpr unsigned MB_YESNOCANCEL = 0x03;
inline constexpr unsigned MB_YESNO = 0x04;
inline constexpr unsigned MB_ICONSTOP = 0x10;
inline constexpr unsigned MB_ICONQUESTION = 0x20;
inline constexpr unsigned MB_ICONEXCLAMATION = 0x30;
inline constexpr unsigned MB_ICONINFORMATION = 0x40;
inline constexpr unsigned MB_DEFBUTTON2 = 0x100;

// Answers, likewise; IDOK and IDCANCEL stand in CDialog.h.
inline constexpr int IDYES = 6;
inline constexpr int IDNO = 7;

// Tests only: answers the message boxes while it is set, instead of the user. Null to end it.
void SetMessageBoxHook(std::function<int(const std::u16string& text, unsigned style)> hook);

}  // namespace zr::ui

// Blocks until the user has answered; the number of the button. Plain text. Escape gives IDCANCEL where there is such a
// button, else IDNO or IDOK. Without a picture in the style the box shows an exclamation. UI thread only.
int AfxMessageBox(std::u16string_view text, unsigned style = zr::ui::MB_OK);
