// What the password dialog asks and what it takes for an answer.
#pragma once

#include "siblings/tools/ZRBasicString.h"

namespace zr::dialogs {

// The password is a number or a text, as the constructor says; the caller owns it. UI thread only.
class PasswordCheck {
public:
    // promptId: number of the text to ask with, 0 included; below 0: a standard prompt, which promptIsForNew chooses.
    PasswordCheck(int password, bool promptIsForNew, int promptId);
    PasswordCheck(const ZRBasicString& password, bool promptIsForNew, int promptId);

    static constexpr int kAsk = 0;
    // Collects a new password: every entry is taken.
    static constexpr int kCollect = 1;
    // Any other type asks for the same password a second time. kAsk at first.
    void SetType(int type) { m_type = type; }

    // Numbers of texts.
    [[nodiscard]] unsigned Title() const;
    [[nodiscard]] unsigned Prompt() const;
    // For a wrong entry; no use for kCollect, which knows none.
    [[nodiscard]] unsigned Message() const;

    [[nodiscard]] bool IsInt(int password) const { return password == m_number; }
    // Case counts.
    [[nodiscard]] bool IsString(const ZRBasicString& password) const { return password == m_text; }
    // Whether the dialog may close with OK. A number is read as TextToInt() does.
    [[nodiscard]] bool Accepts(const ZRBasicString& entry) const;

private:
    [[nodiscard]] bool IsRepeat() const { return m_type != kAsk && m_type != kCollect; }

    int m_number = 0;
    ZRBasicString m_text;
    bool m_isText = false;
    int m_type = kAsk;
    bool m_promptIsForNew = false;
    int m_promptId = -1;
};

}  // namespace zr::dialogs
