#include "dialogs/PasswordCheck.h"

#include "dialogs/DialogsIds.h"
#include "siblings/tools/Numbers.h"

namespace zr::dialogs {

PasswordCheck::PasswordCheck(int password, bool promptIsForNew, int promptId)
    : m_number(password), m_promptIsForNew(promptIsForNew), m_promptId(promptId)
{
}

PasswordCheck::PasswordCheck(const ZRBasicString& password, bool promptIsForNew, int promptId)
    : m_text(password), m_isText(true), m_promptIsForNew(promptIsForNew), m_promptId(promptId)
{
}

unsigned PasswordCheck::Title() const
{
    return IsRepeat() ? kTextConfirmPassword : kTextPassword;
}

unsigned PasswordCheck::Prompt() const
{
    if (m_promptId >= 0) {
        return static_cast<unsigned>(m_promptId);
    }
    if (IsRepeat()) {
        return kTextEnterPasswordAgain;
    }
    return m_promptIsForNew ? kTextEnterNewPassword : kTextEnterPassword;
}

unsigned PasswordCheck::Message() const
{
    return IsRepeat() ? kTextPasswordsDiffer : kTextWrongPassword;
}

bool PasswordCheck::Accepts(const ZRBasicString& entry) const
{
    if (m_type == kCollect) {
        return true;
    }
    // A text that is no number reads as 0 and one with letters behind its digits as these digits; both are meant.
    return m_isText ? IsString(entry) : IsInt(TextToInt(entry));
}

}  // namespace zr::dialogs
