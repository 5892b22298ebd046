// A dialog whose controls are found by number.
#pragma once

#include "platform/ui/CWnd.h"

#include <functional>
#include <QDialog>

namespace zr::ui {

inline constexpr unsigned IDOK = 1;
inline constexpr unsigned IDCANCEL = 2;

// Tests only: drives the modal dialogs that open while it is set, instead of the user. Called once a dialog, when it is
// on the screen and takes input. Null to end it.
void SetModalHook(std::function<void(QDialog&)> hook);

}  // namespace zr::ui

// A window derives from it, makes its controls in its constructor and fills them in OnInitDialog. The controls IDOK and
// IDCANCEL, the return key and the escape key end it through OnOK and OnCancel. UI thread only.
class CDialog : public QDialog, public zr::ui::WndMessageTarget {
public:
    // templateId: the number of the dialog, its objectName.
    CDialog(unsigned templateId, QWidget* parent);

    // Blocks until the dialog is closed; IDOK or IDCANCEL.
    int DoModal();
    // Makes it ready without showing it: calls OnInitDialog, once.
    void Create();

    [[nodiscard]] QWidget* GetDlgItem(unsigned id) const { return zr::ui::FindControl(*this, id); }
    // The control of that number and that kind; it must be there.
    template <typename Control>
    [[nodiscard]] Control& DlgItem(unsigned id) const
    {
        return *static_cast<Control*>(GetDlgItem(id));
    }

protected:
    // Once, before it is shown. The focus is where it sets it, else on the first control.
    virtual void OnInitDialog() {}
    // Each ends the dialog unless overridden.
    virtual void OnOK();
    virtual void OnCancel();
    void EndDialog(unsigned result);

    bool OnCommand(unsigned id, unsigned code, QWidget* from) override;
    bool event(QEvent* event) override;
    // The return key and a button of Qt's own end here, like the escape key and the close box in reject.
    void accept() override { OnOK(); }
    void reject() override { OnCancel(); }
    void showEvent(QShowEvent* event) override;

private:
    bool m_isReady = false;
};
