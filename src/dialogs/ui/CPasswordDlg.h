// Asks the user for a password.
#pragma once

#include "dialogs/PasswordCheck.h"
#include "platform/ui/CButton.h"
#include "platform/ui/CDialog.h"
#include "platform/ui/CEdit.h"
#include "platform/ui/CStatic.h"
#include "siblings/tools/ui/ZRLayout.h"

// DoModal gives IDOK for the right password only, or for any in the type that collects a new one. The user may try
// again as often as he likes. UI thread only.
class CPasswordDlg : public CDialog {
public:
    // Compares with a number, or with a text. maxLength: most characters of the entry; 0 or below: no limit.
    // promptFlag: asks for a new password. promptId: number of another text to ask with; below 0: the standard one.
    CPasswordDlg(QWidget* parent, int password, int maxLength, bool promptFlag, int promptId);
    CPasswordDlg(QWidget* parent, const ZRBasicString& password, int maxLength, bool promptFlag, int promptId);

    // 0, the default, asks; 1 collects a new password, whatever it is; any other asks to repeat one. Before the dialog
    // opens.
    void SetPasswordType(int type) { m_check.SetType(type); }
    // The entry, once the dialog has ended with OK.
    [[nodiscard]] const ZRBasicString& GetPassword() const { return m_entry; }

    bool CheckIntPassword(int password) { return m_check.IsInt(password); }
    bool CheckStringPassword(const ZRBasicString& password) { return m_check.IsString(password); }

protected:
    void OnInitDialog() override;
    void OnOK() override;
    void resizeEvent(QResizeEvent* event) override;

private:
    CPasswordDlg(QWidget* parent, zr::dialogs::PasswordCheck check, int maxLength);

    zr::dialogs::PasswordCheck m_check;
    int m_maxLength;
    ZRBasicString m_entry;
    CStatic m_prompt;
    CEdit m_edit;
    CImageButton m_ok;
    CImageButton m_cancel;
    ZRVerticalLayout m_layout;
};
