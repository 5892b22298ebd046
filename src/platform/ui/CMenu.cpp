#include "platform/ui/CMenu.h"

#include "platform/ui/UiText.h"

#include <QAction>
#include <QActionGroup>
#include <QKeySequence>

CMenu::CMenu(QWidget* target, std::u16string_view title) : QMenu(zr::ui::ToQt(title), target), m_target(target) {}

void CMenu::AppendMenu(unsigned id, std::u16string_view text, const QIcon& image)
{
    const QString whole = zr::ui::ToQt(text);
    const qsizetype tab = whole.indexOf(QLatin1Char('\t'));
    QAction* const action = addAction(image, tab < 0 ? whole : whole.left(tab));
    action->setObjectName(QString::number(id));
    if (tab >= 0) {
        action->setShortcut(QKeySequence(whole.mid(tab + 1), QKeySequence::PortableText));
    }
    connect(action, &QAction::triggered, this, [this, id, action] {
        if (action->isCheckable() && action->actionGroup() == nullptr) {
            // The mark follows CheckMenuItem alone.
            action->setChecked(!action->isChecked());
        }
        zr::ui::SendCommand(m_target, id, 0, nullptr);
    });
}

void CMenu::CheckMenuItem(unsigned id, bool check)
{
    if (QAction* const action = FindItem(id); action != nullptr) {
        action->setCheckable(true);
        action->setChecked(check);
    }
}

void CMenu::CheckMenuRadioItem(unsigned first, unsigned last, unsigned id)
{
    auto* const group = new QActionGroup(this);
    for (QAction* const action : actions()) {
        const unsigned number = action->objectName().toUInt();
        if (number >= first && number <= last) {
            action->setCheckable(true);
            group->addAction(action);
            action->setChecked(number == id);
        }
    }
}

QAction* CMenu::FindItem(unsigned id) const
{
    const QString name = QString::number(id);
    for (QAction* const action : actions()) {
        if (action->objectName() == name) {
            return action;
        }
        const auto* const popup = dynamic_cast<const CMenu*>(action->menu());
        if (QAction* const found = popup != nullptr ? popup->FindItem(id) : nullptr; found != nullptr) {
            return found;
        }
    }
    return nullptr;
}
