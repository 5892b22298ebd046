// A row of buttons that send commands.
#pragma once

#include "platform/ui/CWnd.h"

#include <QIcon>
#include <QToolBar>
#include <string_view>
#include <vector>

class CFrameWnd;

namespace zr::ui {

inline constexpr unsigned TBN_DROPDOWN = static_cast<unsigned>(-710);

// Follows TBN_DROPDOWN.
struct NMTOOLBAR {
    NMHDR hdr;
    unsigned iItem = 0;  // the button's command
};

}  // namespace zr::ui

// A button sends its number as a command to the window that the bar was made for. UI thread only.
class CToolBar : public QToolBar {
public:
    // Docks at the frame's top and is owned by it. title: for screen readers.
    CToolBar(CFrameWnd& frame, unsigned id, std::u16string_view title);
    // Docks nowhere, see CReBar; its buttons show text beside the picture. target: takes commands and notices.
    CToolBar(QWidget* target, unsigned id, std::u16string_view title);

    // A button without a picture shows its text; the text is the tool tip in any case.
    void AddButton(unsigned id, const QIcon& image, std::u16string_view text);
    // One that drops a menu: a push is told as TBN_DROPDOWN, and the menu is the target's matter.
    void AddDropDown(unsigned id, const QIcon& image, std::u16string_view text);
    void AddSeparator() { addSeparator(); }
    // Each: nothing for a number that isn't there.
    // Shown as pressed.
    void CheckButton(unsigned id, bool check);
    void EnableButton(unsigned id, bool enable);

    // Numbers from left to right.
    [[nodiscard]] const std::vector<unsigned>& Buttons() const { return m_buttons; }
    // Of a button, in the bar's coordinates; empty where there is none.
    [[nodiscard]] QRect GetButtonRect(unsigned id) const;
    [[nodiscard]] QString GetButtonText(unsigned id) const;
    [[nodiscard]] bool IsButtonEnabled(unsigned id) const;
    [[nodiscard]] bool IsDropDown(unsigned id) const;

private:
    [[nodiscard]] QAction* FindButton(unsigned id) const;
    void Name(QAction& action, unsigned id);

    QWidget* m_target;
    std::vector<unsigned> m_buttons;
};
