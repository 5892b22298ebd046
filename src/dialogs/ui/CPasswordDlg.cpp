#include "dialogs/ui/CPasswordDlg.h"

#include "dialogs/DialogsIds.h"
#include "platform/ui/AfxMessageBox.h"
#include "siblings/support/ui/DialogTexts.h"
#include "siblings/tools/ZRLoadString.h"

#include <memory>
#include <utility>

using zr::dialogs::PasswordCheck;

namespace {

// In layout units.
constexpr int kWidth = 150;
constexpr int kInset = 2 * ZRLayout::kGap;

}  // namespace

CPasswordDlg::CPasswordDlg(QWidget* parent, int password, int maxLength, bool promptFlag, int promptId)
    : CPasswordDlg(parent, PasswordCheck(password, promptFlag, promptId), maxLength)
{
}

CPasswordDlg::CPasswordDlg(QWidget* parent, const ZRBasicString& password, int maxLength, bool promptFlag, int promptId)
    : CPasswordDlg(parent, PasswordCheck(password, promptFlag, promptId), maxLength)
{
}

CPasswordDlg::CPasswordDlg(QWidget* parent, PasswordCheck check, int maxLength)
    : CDialog(zr::dialogs::kPasswordDialog, parent),
      m_check(std::move(check)),
      m_maxLength(maxLength),
      m_prompt(this, zr::dialogs::kPasswordPrompt),
      m_edit(this, zr::dialogs::kPasswordEdit),
      m_ok(this, zr::ui::IDOK),
      m_cancel(this, zr::ui::IDCANCEL),
      m_layout(*this)
{
    m_edit.SetPassword(true);
    m_prompt.setBuddy(&m_edit);
    const auto inset = [this](QWidget& control) {
        auto row = std::make_unique<ZRHoritzontalLayout>(*this);
        row->AddGap(ZRLayout::Size::Fixed(kInset));
        row->AddControl(control, ZRLayout::Size::Percent(100));
        row->AddGap(ZRLayout::Size::Fixed(kInset));
        return row;
    };
    auto buttons = std::make_unique<ZRHoritzontalLayout>(*this);
    buttons->AddGap(ZRLayout::Size::Fixed(kInset));
    buttons->AddControl(m_ok, ZRLayout::Size::Percent(50));
    buttons->AddGap();
    buttons->AddControl(m_cancel, ZRLayout::Size::Percent(50));
    buttons->AddGap(ZRLayout::Size::Fixed(kInset));
    m_layout.AddGap(ZRLayout::Size::Fixed(kInset));
    m_layout.AddLayout(inset(m_prompt), ZRLayout::Size::Natural());
    m_layout.AddGap();
    m_layout.AddLayout(inset(m_edit), ZRLayout::Size::Fixed(ZRLayout::kControlSize));
    m_layout.AddGap(ZRLayout::Size::Fixed(kInset));
    m_layout.AddGap(ZRLayout::Size::Percent(100));
    m_layout.AddLayout(std::move(buttons), ZRLayout::Size::Natural());
    m_layout.AddGap(ZRLayout::Size::Fixed(kInset));
}

void CPasswordDlg::OnInitDialog()
{
    zr::ui::SetSuiteIcon(*this);
    zr::ui::SetTitle(*this, m_check.Title());
    ZRBasicString prompt;
    m_prompt.SetWindowText(ZRLoadString(m_check.Prompt(), prompt));
    m_edit.LimitText(m_maxLength);
    zr::ui::SetOkAndCancel(m_ok, m_cancel);
    const int width = ZRLayout::ToPixels(kWidth, *this);
    m_prompt.setMinimumHeight(m_prompt.heightForWidth(width - 2 * ZRLayout::ToPixels(kInset, *this)));
    setMinimumSize(m_layout.NeededSize().expandedTo(QSize(width, 0)));
    resize(minimumSize());
}

void CPasswordDlg::OnOK()
{
    m_entry = m_edit.GetWindowText();
    if (m_check.Accepts(m_entry)) {
        CDialog::OnOK();
        return;
    }
    ZRBasicString message;
    AfxMessageBox(ZRLoadString(m_check.Message(), message));
    m_edit.setFocus();
    m_edit.SetSel(0, -1);
}

void CPasswordDlg::resizeEvent(QResizeEvent* event)
{
    CDialog::resizeEvent(event);
    m_layout.Fill(rect());
}
