// The common base of the dialogs that a host fills with value controls.
#pragma once

#include "platform/ui/CDialog.h"

// Has no behaviour of its own.
class ZRBaseViewDlg : public CDialog {
public:
    // templateId: the number of the dialog.
    explicit ZRBaseViewDlg(unsigned templateId, QWidget* parent = nullptr);
};
