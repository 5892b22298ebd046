#include "platform/ui/CToolBar.h"

#include "platform/ui/CFrameWnd.h"
#include "platform/ui/UiText.h"

#include <QAction>
#include <QStyleOptionToolButton>
#include <QStylePainter>
#include <QToolButton>

namespace {

// Shows the arrow of a menu, beside its text, without having one: it is made when the button is pushed.
class DropDownButton : public QToolButton {
public:
    using QToolButton::QToolButton;

    QSize sizeHint() const override { return QToolButton::sizeHint() + QSize(kArrow + kArrowMargin, 0); }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QStylePainter painter(this);
        QStyleOptionToolButton option;
        initStyleOption(&option);
        painter.drawComplexControl(QStyle::CC_ToolButton, option);
        const int room = kArrow + kArrowMargin;
        option.rect = QRect(width() - room, (height() - kArrow) / 2, kArrow, kArrow);
        painter.drawPrimitive(QStyle::PE_IndicatorArrowDown, option);
    }

private:
    static constexpr int kArrow = 8;
    static constexpr int kArrowMargin = 4;
};

}  // namespace

CToolBar::CToolBar(CFrameWnd& frame, unsigned id, std::u16string_view title)
    : QToolBar(zr::ui::ToQt(title), &frame), m_target(&frame)
{
    zr::ui::SetControlId(*this, id);
    setMovable(false);
    frame.addToolBar(Qt::TopToolBarArea, this);
}

CToolBar::CToolBar(QWidget* target, unsigned id, std::u16string_view title)
    : QToolBar(zr::ui::ToQt(title), target), m_target(target)
{
    zr::ui::SetControlId(*this, id);
    setMovable(false);
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
}

void CToolBar::AddButton(unsigned id, const QIcon& image, std::u16string_view text)
{
    QAction* const action = addAction(image, zr::ui::ToQt(text));
    connect(action, &QAction::triggered, this, [this, id, action] {
        if (action->isCheckable()) {
            // It is pressed when CheckButton says so.
            action->setChecked(!action->isChecked());
        }
        zr::ui::SendCommand(m_target, id, 0, nullptr);
    });
    widgetForAction(action)->setObjectName(QString::number(id));
    Name(*action, id);
}

void CToolBar::AddDropDown(unsigned id, const QIcon& image, std::u16string_view text)
{
    auto* const button = new DropDownButton(this);
    button->setIcon(image);
    button->setText(zr::ui::ToQt(text));
    button->setToolTip(button->text());
    button->setAutoRaise(true);
    button->setToolButtonStyle(toolButtonStyle());
    button->setIconSize(iconSize());
    button->setFocusPolicy(Qt::TabFocus);
    button->setObjectName(QString::number(id));
    connect(this, &QToolBar::iconSizeChanged, button, &QToolButton::setIconSize);
    connect(button, &QToolButton::clicked, this, [this, id] {
        const zr::ui::NMTOOLBAR notice{{this, zr::ui::ControlId(*this), zr::ui::TBN_DROPDOWN}, id};
        zr::ui::SendNotify(m_target, notice.hdr);
    });
    QAction* const action = addWidget(button);
    action->setText(button->text());
    Name(*action, id);
}

void CToolBar::Name(QAction& action, unsigned id)
{
    action.setObjectName(QString::number(id));
    m_buttons.push_back(id);
}

void CToolBar::CheckButton(unsigned id, bool check)
{
    if (QAction* const action = FindButton(id); action != nullptr) {
        action->setCheckable(true);
        action->setChecked(check);
    }
}

void CToolBar::EnableButton(unsigned id, bool enable)
{
    if (QAction* const action = FindButton(id); action != nullptr) {
        action->setEnabled(enable);
    }
}

QRect CToolBar::GetButtonRect(unsigned id) const
{
    QAction* const action = FindButton(id);
    return action != nullptr ? widgetForAction(action)->geometry() : QRect();
}

QString CToolBar::GetButtonText(unsigned id) const
{
    const QAction* const action = FindButton(id);
    return action != nullptr ? action->text() : QString();
}

bool CToolBar::IsButtonEnabled(unsigned id) const
{
    const QAction* const action = FindButton(id);
    return action != nullptr && action->isEnabled();
}

bool CToolBar::IsDropDown(unsigned id) const
{
    QAction* const action = FindButton(id);
    return action != nullptr && dynamic_cast<const DropDownButton*>(widgetForAction(action)) != nullptr;
}

QAction* CToolBar::FindButton(unsigned id) const
{
    return findChild<QAction*>(QString::number(id), Qt::FindDirectChildrenOnly);
}
