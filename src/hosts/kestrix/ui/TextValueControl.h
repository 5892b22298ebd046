// A window that shows one live variable that is a text, or one of a list of names.
#pragma once

#include "platform/ui/CWnd.h"
#include "siblings/driversupport/ZRDriverVariable.h"

#include <QString>

namespace zr::desktop {

// Behaves as ZRValueControl does: a click or the space bar selects it and sends its number as a command to the parent.
// UI thread only.
class TextValueControl : public CWnd {
public:
    TextValueControl(QWidget* parent, unsigned id);

    // name: `driver.variable`; one that isn't there leaves the control blank.
    void SetupVariable(const wchar* name);
    // What the tool tip tells after the text itself, which may be too long for the control.
    void Describe(const QString& tip);
    void Update();
    void Select(bool isSelected);
    [[nodiscard]] bool Selected() const { return m_isSelected; }
    [[nodiscard]] const QString& Shown() const { return m_text; }

protected:
    void OnPaint(QPainter& painter) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Toggle();

    ZRDriverVariable m_variable;
    QString m_text;
    QString m_tip;
    bool m_isSelected = false;
};

}  // namespace zr::desktop
