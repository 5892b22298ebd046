// A push button that tells its parent by a command.
#pragma once

#include "platform/ui/CWnd.h"

#include <QPushButton>
#include <string_view>

// A click sends the button's number as a command to the window that the button was made in.
class CButton : public QPushButton {
public:
    CButton(QWidget* parent, unsigned id);

    void SetWindowText(std::u16string_view text);
};

// With a picture of the suite before its text.
class CImageButton : public CButton {
public:
    using CButton::CButton;

    // image: its number, see ImageTable.h; one that isn't there leaves the button without a picture. colourKey: the
    // colour of a bitmap that stands for nothing; our images have transparency of their own and need none.
    void SetImage(unsigned image, unsigned colourKey);
};
