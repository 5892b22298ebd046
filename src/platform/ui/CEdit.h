// A line of text to type into.
#pragma once

#include "platform/ui/CWnd.h"

#include <QLineEdit>

class CEdit : public QLineEdit {
public:
    CEdit(QWidget* parent, unsigned id);

    [[nodiscard]] std::u16string GetWindowText() const;
    void SetWindowText(std::u16string_view text);
    // In characters; 0 or below: as many as the control takes.
    void LimitText(int characters);
    // Selects from first to last, exclusive; (0, -1) selects all. Brings the end of it into view.
    void SetSel(int first, int last);
    // The characters are not shown.
    void SetPassword(bool password);
};
