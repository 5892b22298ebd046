// A row of buttons below the menu.
#pragma once

#include "platform/ui/CWnd.h"

#include <QIcon>
#include <QToolBar>
#include <string_view>

class CFrameWnd;

// A button sends its number as a command to the frame. UI thread only.
class CToolBar : public QToolBar {
public:
    // Docks at the frame's top and is owned by it. title: for screen readers.
    CToolBar(CFrameWnd& frame, unsigned id, std::u16string_view title);

    // A button without a picture shows its text; the text is the tool tip in any case.
    void AddButton(unsigned id, const QIcon& image, std::u16string_view text);
    void AddSeparator() { addSeparator(); }
    // Shown as pressed. Nothing for a number that isn't there.
    void CheckButton(unsigned id, bool check);

private:
    [[nodiscard]] QAction* FindButton(unsigned id) const;
};
