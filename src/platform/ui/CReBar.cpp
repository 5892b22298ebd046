#include "platform/ui/CReBar.h"

#include <QLayout>
#include <QToolButton>

CReBar::CReBar(QWidget* parent, unsigned id)
    : QWidget(parent), m_target(parent), m_band(new QWidget(this)), m_chevron(new QToolButton(this))
{
    zr::ui::SetControlId(*this, id);
    m_chevron->setText(QStringLiteral("\u00bb"));
    m_chevron->setAutoRaise(true);
    m_chevron->setFocusPolicy(Qt::TabFocus);
    m_chevron->setObjectName(QStringLiteral("chevron"));
    m_chevron->hide();
    connect(m_chevron, &QToolButton::clicked, this, [this] {
        const zr::ui::NMREBARCHEVRON notice{{this, zr::ui::ControlId(*this), zr::ui::RBN_CHEVRONPUSHED},
                                            m_chevron->geometry()};
        zr::ui::SendNotify(m_target, notice.hdr);
    });
}

void CReBar::AddBar(CToolBar& bar)
{
    m_bar = &bar;
    bar.setParent(m_band);
    bar.show();
    Layout();
}

int CReBar::GetBarHeight() const
{
    return m_bar != nullptr ? m_bar->sizeHint().height() : 0;
}

QRect CReBar::GetBandRect() const
{
    return m_band->rect();
}

void CReBar::Layout()
{
    if (m_bar == nullptr) {
        return;
    }
    // Always as wide as its buttons: the chevron is the strip's.
    const int needed = m_bar->sizeHint().width();
    m_bar->setGeometry(0, 0, needed, height());
    if (m_bar->layout() != nullptr) {
        // The places of the buttons are asked for below, maybe before the first event.
        m_bar->layout()->invalidate();
        m_bar->layout()->setGeometry(m_bar->rect());
    }
    const bool fits = needed <= width();
    const int room = fits ? width() : width() - m_chevron->sizeHint().width();
    int visible = room;
    if (!fits) {
        visible = 0;
        for (const unsigned id : m_bar->Buttons()) {
            const int right = m_bar->GetButtonRect(id).right() + 1;
            visible = right <= room ? std::max(visible, right) : visible;
        }
    }
    m_band->setGeometry(0, 0, visible, height());
    m_chevron->setVisible(!fits);
    m_chevron->setGeometry(std::max(room, 0), 0, m_chevron->sizeHint().width(), height());
}

void CReBar::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    Layout();
}

bool CReBar::event(QEvent* event)
{
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::FontChange) {
        Layout();
    }
    return QWidget::event(event);
}
