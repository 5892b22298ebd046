// A text in a dialog.
#pragma once

#include "platform/ui/CWnd.h"

#include <QLabel>
#include <string_view>

class CStatic : public QLabel {
public:
    CStatic(QWidget* parent, unsigned id);

    // Plain text, never read as markup.
    void SetWindowText(std::u16string_view text);
};
