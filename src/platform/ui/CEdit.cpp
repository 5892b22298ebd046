#include "platform/ui/CEdit.h"

#include "platform/ui/UiText.h"

namespace {
constexpr int kMostCharacters = 32767;  // as the control of Qt has it
}

CEdit::CEdit(QWidget* parent, unsigned id) : QLineEdit(parent)
{
    zr::ui::SetControlId(*this, id);
}

std::u16string CEdit::GetWindowText() const
{
    return zr::ui::FromQt(text());
}

void CEdit::SetWindowText(std::u16string_view text)
{
    setText(zr::ui::ToQt(text));
}

void CEdit::LimitText(int characters)
{
    setMaxLength(characters > 0 ? characters : kMostCharacters);
}

void CEdit::SetSel(int first, int last)
{
    setSelection(first, (last < 0 ? static_cast<int>(text().size()) : last) - first);
}

void CEdit::SetPassword(bool password)
{
    setEchoMode(password ? QLineEdit::Password : QLineEdit::Normal);
}
