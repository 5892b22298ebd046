#include "platform/ui/CToolBar.h"

#include "platform/ui/CFrameWnd.h"
#include "platform/ui/UiText.h"

#include <QAction>

CToolBar::CToolBar(CFrameWnd& frame, unsigned id, std::u16string_view title) : QToolBar(zr::ui::ToQt(title), &frame)
{
    zr::ui::SetControlId(*this, id);
    setMovable(false);
    frame.addToolBar(Qt::TopToolBarArea, this);
}

void CToolBar::AddButton(unsigned id, const QIcon& image, std::u16string_view text)
{
    QAction* const action = addAction(image, zr::ui::ToQt(text));
    action->setObjectName(QString::number(id));
    connect(action, &QAction::triggered, this, [this, id, action] {
        if (action->isCheckable()) {
            // It is pressed when CheckButton says so.
            action->setChecked(!action->isChecked());
        }
        zr::ui::SendCommand(parentWidget(), id, 0, nullptr);
    });
    widgetForAction(action)->setObjectName(QString::number(id));
}

void CToolBar::CheckButton(unsigned id, bool check)
{
    if (QAction* const action = FindButton(id); action != nullptr) {
        action->setCheckable(true);
        action->setChecked(check);
    }
}

QAction* CToolBar::FindButton(unsigned id) const
{
    return findChild<QAction*>(QString::number(id), Qt::FindDirectChildrenOnly);
}
